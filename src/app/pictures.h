#pragma once

#include <QIcon>
#include <QImage>
#include <QPalette>
#include <QString>
#include <vector>

#include "platform/desktop.h"
#include "render/view.h"

class QPainter;

// What is painted here: the texts over the picture of the view, its colours, and icons.

namespace facet {

/// Writes the texts at their places, in the small type of the overlay, on a dark rim.
void paintOverlay(QPainter& painter, const std::vector<OverlayLine>& overlay);

/// Draws the directions of the axes as a camera of these angles, in degrees, sees them, in the lower left
/// corner of `area`.
void paintGizmo(QPainter& painter, const QRect& area, float yaw, float pitch);

/// A copy of a picture of format RGB32 as a display with this ramp would show it.
QImage throughRamp(QImage picture, const GammaRamp& ramp);

/// An icon of the program by its file name without ".svg". It takes the text colour of the palette that is
/// current when it is painted, so it is legible in light and dark.
QIcon themedIcon(const QString& name);

/// The current palette with the text colour of errors, legible in light and dark.
QPalette errorPalette();

/// The icon of the program itself.
inline constexpr const char* applicationIconName = "vxmviewer";

}  // namespace facet
