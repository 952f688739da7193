#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>

namespace brimsett {

// A small square of a slot type's colour (0xRRGGBB), as the book paints its slots.
inline QIcon slotSwatch(int color) {
    QPixmap square(14, 14);
    square.fill(QColor::fromRgb(QRgb(color)));
    return QIcon(square);
}

}  // namespace brimsett
