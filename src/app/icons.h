#pragma once

#include <QIcon>
#include <QString>

namespace facet {

/// An icon of the program by its file name without ".svg". It takes the text colour of the palette that is
/// current when it is painted, so it is legible in light and dark.
QIcon themedIcon(const QString& name);

/// The icon of the program itself.
QIcon applicationIcon();

}  // namespace facet
