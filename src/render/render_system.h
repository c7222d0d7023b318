#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/system.h"
#include "render/view.h"

namespace facet {

/// Where a set-up gets what it does not make itself.
struct RenderPlatform {
  /// The root of all devices for an SDK version, or none.
  std::function<std::shared_ptr<IDirect3D9>(uint32_t sdkVersion)> direct3DCreate9;
  /// An export of a library: none when the library does not load.
  std::function<std::optional<void*>(const std::string& library, const std::string& entry)> loadEntry =
      loadLibraryEntry;
};

/// Sets the view up on the first device that its window can have: asks whether to use software, tries each
/// device type with each depth format, tells the choice or the failure in message boxes, sets the device's
/// states and builds the scenery. False when there is no device; OnDestroy is due all the same.
bool createRenderSystem(ModelView& view, const RenderPlatform& platform);

/// The view's window is there: sets the view up, and says so when that fails. 0, or -1 to end the window.
int OnCreate(ModelView& view, const RenderPlatform& platform);

/// The view's window goes: closes the model and releases what the set-up created, as far as it came.
void OnDestroy(ModelView& view);

}  // namespace facet
