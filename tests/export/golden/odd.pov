// This file uses meters as units for non-parametric coordinates.
#version 3.6;
#include "colors.inc"
#include "functions.inc"
#include "logo.inc"
global_settings { assumed_gamma 2.0 }
camera {location <0,5,-10> direction y sky z up z right (4/3)*x look_at <0, 0, 0> angle 90 }
background {color rgb < 0.30, 0.30, 0.30 >}
light_source {<1000,3000,0> rgb <1.0, 0.8, 0.4>}
// materials : 2
#declare Material_00000 = texture { // stone 
   pigment { rgb 0.5 }
   finish { phong 1 ambient 0.3 diffuse 0.7 specular 1.0 }
}
#declare Material_00001 = texture { // oak&elm 
   pigment { rgb 0.5 }
   finish { phong 1 ambient 0.3 diffuse 0.7 specular 1.0 }
}
// meshes : 3
// vertices : 4, was 5
#declare Mesh_00000=
mesh2{
  vertex_vectors{
   4
   <0.000000,0.000000,-0.000000>,
   <1.000000,-2.000000,-inf>,
   <0.000000,1.000000,-0.000000>,
   <5.000000,6.000000,-7.000000>,
}
// normales : 3, was 5
  normal_vectors{
   3
   <0.000000,1.000000,-0.000000>,
   <0.000000,0.000000,-1.000000>,
   <nan,0.000000,-0.000000>,
}
// uv's : 2, was 5
  uv_vectors{
   2
   <0.000000,1.000000>,
   <0.500000,0.000000>,
}
// faces : 2
// indices : 7
  face_indices{
   2
   <0,2,1>,
   <2,0,0>,
  }
  normal_indices{
   2
   <0,0,2>,
   <0,0,1>,
  }
  uv_indices{
   2
   <0,0,0>,
   <0,0,1>,
  }
  uv_mapping
  texture { Material_00001 }
}
object {
  Mesh_00000
  translate <0,0,0>
  rotate <0,clock,0>
}
// vertices : 3, was 3
#declare Mesh_00001=
mesh2{
  vertex_vectors{
   3
   <1.000000,2.000000,-3.000000>,
   <4.000000,5.000000,-6.000000>,
   <7.000000,8.000000,-10.000000>,
}
// normales : 3, was 3
  normal_vectors{
   3
   <0.000000,1.000000,-0.000000>,
   <1.000000,0.000000,-0.000000>,
   <0.000000,0.000000,-1.000000>,
}
// uv's : 3, was 3
  uv_vectors{
   3
   <0.250000,0.875000>,
   <0.500000,0.750000>,
   <0.750000,0.000000>,
}
// faces : 1
// indices : 3
  face_indices{
   1
   <0,2,1>,
  }
  normal_indices{
   1
   <0,2,1>,
  }
  uv_indices{
   1
   <0,2,1>,
  }
  uv_mapping
  texture { Material_00000 }
}
object {
  Mesh_00001
  translate <0,0,0>
  rotate <0,clock,0>
}
// vertices : 0, was 0
#declare Mesh_00002=
mesh2{
  vertex_vectors{
   0
}
// normales : 0, was 0
  normal_vectors{
   0
}
// uv's : 0, was 0
  uv_vectors{
   0
}
// faces : 0
// indices : 3
  face_indices{
   0
  }
  normal_indices{
   0
  }
  uv_indices{
   0
  }
  uv_mapping
  texture { Material_00254 }
}
object {
  Mesh_00002
  translate <0,0,0>
  rotate <0,clock,0>
}
