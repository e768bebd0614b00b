// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/ColorButton.h"

#include <QPainter>

namespace {

constexpr double kFrame = 2.0; // pixels

} // namespace

void ColorButton::paintEvent(QPaintEvent* pEvent)
{
    QPushButton::paintEvent(pEvent);
    if (!hasFocus()) {
        return;
    }
    QPainter painter(this);
    const QRectF outer = QRectF(rect()).adjusted(kFrame / 2, kFrame / 2, -kFrame / 2, -kFrame / 2);
    // Two lines, so that one of them stands off whatever the colour is. A style sheet cuts the palette off.
    const QPalette around = parentWidget() != nullptr ? parentWidget()->palette() : palette();
    painter.setPen(QPen(around.color(QPalette::WindowText), kFrame));
    painter.drawRect(outer);
    painter.setPen(QPen(around.color(QPalette::Window), kFrame / 2));
    painter.drawRect(outer.adjusted(kFrame, kFrame, -kFrame, -kFrame));
}
