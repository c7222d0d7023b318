#pragma once

#include <QImage>
#include <vector>

#include "render/view.h"

class QPainter;

namespace facet {

/// Writes the texts at their places, in the small type of the overlay.
void paintOverlay(QPainter& painter, const std::vector<OverlayLine>& overlay);

/// The texts on a transparent picture whose top left corner is that of the window, just large enough. Null
/// when there are none. `scale` is device pixels for each unit of length.
QImage overlayImage(const std::vector<OverlayLine>& overlay, qreal scale);

}  // namespace facet
