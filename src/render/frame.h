#pragma once

#include "render/view.h"

namespace facet {

/// Draws one frame: moves the camera by the pending moves, decides which meshes are near enough, draws
/// scenery and model, presents, and leaves the texts that belong over the picture in `overlay`. While a frame
/// is being drawn, or before there is a device, does nothing. A lost device draws nothing; one that is ready
/// again is reset first. When memory runs out the device is left without a picture, and the next frame tries
/// again.
void renderFrame(ModelView& view);

}  // namespace facet
