// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/ColorButton.h"

#include "windows/widgets/focusFrame.h"

#include <QPainter>

void ColorButton::paintEvent(QPaintEvent* pEvent)
{
    QPushButton::paintEvent(pEvent);
    if (hasFocus()) {
        QPainter painter(this);
        // A style sheet cuts the palette off.
        paintFocusFrame(painter, rect(), parentWidget() != nullptr ? parentWidget()->palette() : palette());
    }
}
