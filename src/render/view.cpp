#include "render/view.h"

#include <chrono>

#include "platform/desktop.h"
#include "render/frame.h"

namespace facet {

PerformanceCounter steadyCounter() {
  return {1'000'000'000, [] {
            const auto now = std::chrono::steady_clock::now().time_since_epoch();
            return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
          }};
}

void closeModel(ModelView& view) {
  if (!view.model) return;
  view.buffersBuilt = false;
  releaseModel(*view.model);
  view.model.reset();
  setWindowTitle(applicationTitle);
  renderFrame(view);
}

}  // namespace facet
