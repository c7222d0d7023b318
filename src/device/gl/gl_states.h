#pragma once

#include <cstdint>

#include "device/states.h"

namespace facet {

/// Hands depth test, blending, culling and fill mode to OpenGL's current context. Pictures are drawn with
/// their top row first, so that OpenGL's rows count as Direct3D's do.
void applyRenderStates(const DeviceStates& states);

/// Leaves OpenGL's context as others who draw with it expect it: with OpenGL's own defaults.
void applyNeutralStates();

/// Hands filters and address modes to an OpenGL sampler object. Anisotropy is not among them: the programs do
/// it.
void applySamplerStates(const DeviceStates& states, uint32_t sampler);

}  // namespace facet
