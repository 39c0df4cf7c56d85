#pragma once

#include <QColor>
#include <QIcon>

namespace marlowen {

/// A thin arrow head of 20 pixels, sharp at up to three times that, for the kit's own buttons.
QIcon ribbonArrow(Qt::ArrowType direction, const QColor &color);

} // namespace marlowen
