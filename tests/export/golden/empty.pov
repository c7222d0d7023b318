// This file uses meters as units for non-parametric coordinates.
#version 3.6;
#include "colors.inc"
#include "functions.inc"
#include "logo.inc"
global_settings { assumed_gamma 2.0 }
camera {location <0,5,-10> direction y sky z up z right (4/3)*x look_at <0, 0, 0> angle 90 }
background {color rgb < 0.30, 0.30, 0.30 >}
light_source {<1000,3000,0> rgb <1.0, 0.8, 0.4>}
// materials : 0
// meshes : 0
