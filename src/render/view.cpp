#include "render/view.h"

#include <chrono>

#include "platform/desktop.h"
#include "render/frame.h"

namespace facet {

uint32_t colorByte(float channel) {
  if (channel >= 1.0f) return 255;
  if (!(channel > 0.0f)) return 0;
  return static_cast<uint32_t>(channel * 255.0f + 0.5f);
}

D3DCOLOR packColor(const std::array<float, 4>& color) {
  return colorByte(color[3]) << 24 | colorByte(color[0]) << 16 | colorByte(color[1]) << 8 |
         colorByte(color[2]);
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

void closeModel(ModelView& view) {
  if (!view.scene.model) return;
  view.scene.buffersBuilt = false;
  releaseModel(*view.scene.model);
  view.scene.model.reset();
  setWindowTitle(applicationTitle);
  renderFrame(view);
}

}  // namespace facet
