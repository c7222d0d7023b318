#include "render/light.h"

#include <algorithm>
#include <cmath>

namespace facet {

namespace {

/// The colours of the textured modes by the hour: `level` is 0.7 at noon and falls to 0.1 at midnight.
struct Daylight {
  float level;
  D3DCOLORVALUE diffuse;
};

Daylight daylight(float envTime) {
  const float level = 0.7f - std::fabs(envTime - 12.0f) * 0.05f;
  const float bright = std::min(2.5f * level, 1.0f);
  if (envTime < 12.0f) return {level, {bright, level, 0.5f * level, 1.0f}};
  return {level, {bright, bright, level, 1.0f}};
}

}  // namespace

void setLight(ModelView& view, const Vector3& forward) {
  DeviceState& state = view.p_device->state;
  state.lightEnable = view.lightMode != lightOff && view.renderMode != renderWireframe;
  if (!state.lightEnable) return;
  D3DLIGHT9& light = state.light;
  if (view.renderMode == renderLit) {
    light.Ambient = {0.3f, 0.3f, 0.3f, 1.0f};
    light.Diffuse = {1, 1, 1, 1};
    light.Specular = {0.3f, 0.3f, 0.3f, 1.0f};
  } else {
    const Daylight day = daylight(view.envTime);
    const auto& clear = view.clearColor;
    light.Ambient = view.envMode ? D3DCOLORVALUE{day.level, day.level, day.level, 1.0f}
                                 : D3DCOLORVALUE{clear[0], clear[1], clear[2], clear[3]};
    light.Diffuse = day.diffuse;
  }
  if (view.lightMode == lightHead) {
    light.Direction = {forward.x, forward.y, forward.z};
  } else {
    const float theta = view.envTime * 3.1415925f / 12.0f;
    light.Direction = {std::sin(theta), std::cos(theta), std::cos(theta)};
  }
}

}  // namespace facet
