#include "render/view.h"

#include <algorithm>
#include <chrono>

#include "platform/desktop.h"
#include "render/closer_look.h"

namespace facet {

D3DCOLOR packColor(const std::array<float, 4>& color) {
  const auto byte = [&](size_t channel) {  // NOLINTNEXTLINE: what follows is truncation
    return color[channel] > 0.0f ? static_cast<uint32_t>(std::min(color[channel], 1.0f) * 255.0f + 0.5f) : 0;
  };
  return byte(3) << 24 | byte(0) << 16 | byte(1) << 8 | byte(2);
}

std::array<float, 4> backgroundColor(uint8_t index) {
  constexpr float perByte = 0.003921569f;
  std::array<float, 4> color{};
  for (size_t i = 0; i < 3; ++i)
    color[i] = static_cast<float>(static_cast<int>(backgroundTable[index][i] * 255.0f) & 255) * perByte;
  return color;
}

PerformanceCounter steadyCounter() {
  return {1'000'000'000, [] {
            const auto now = std::chrono::steady_clock::now().time_since_epoch();
            return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
          }};
}

void applyFiltering(ModelView& view, uint32_t mode) {
  if (mode >= filterModes.size()) return;
  view.system.p_device->state.filter = filterModes[mode].filter;
  view.system.p_device->state.mipFilter = filterModes[mode].mip;
}

void setQuality(ModelView& view, bool high) {
  ViewSettings& settings = view.settings;
  if (high ? settings.smoothShading : settings.flatShading) return;
  if (settings.renderMode == renderTextured) applyFiltering(view, high ? settings.filterMode : 0);
  view.system.p_device->state.shadeMode = high ? D3DSHADE_GOURAUD : D3DSHADE_FLAT;
  settings.smoothShading = high;
  settings.flatShading = !high;
}

void setTextureStage(ModelView& view, bool lit) {
  view.system.p_device->state.colorOp = lit ? D3DTOP_MODULATE : D3DTOP_SELECTARG1;
}

void setModel(Scene& scene, std::unique_ptr<Model> model) {
  scene.model = std::move(model);
  scene.buffersBuilt = false;
  ++scene.generation;
  scene.selected.clear();
  scene.edges.clear();
  scene.edgesOf.clear();
  scene.measured.clear();
  visibleMeshesChanged(scene);
}

void closeModel(ModelView& view) {
  if (!view.scene.model) return;
  releaseModel(*view.scene.model);
  setModel(view.scene, nullptr);
  setWindowTitle(applicationTitle);
  renderFrame(view);
}

}  // namespace facet
