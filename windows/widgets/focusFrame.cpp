// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/focusFrame.h"

#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>
#include <QWidget>

namespace {

constexpr double kFrame = 2.0; // pixels

class FramingStyle : public QProxyStyle
{
public:
    void drawControl(ControlElement eElement, const QStyleOption* pOption, QPainter* pPainter,
                     const QWidget* pWidget) const override
    {
        QProxyStyle::drawControl(eElement, pOption, pPainter, pWidget);
        if (eElement == CE_PushButton && (pOption->state & State_HasFocus) != 0) {
            pPainter->save();
            paintFocusFrame(*pPainter, pOption->rect, pOption->palette);
            pPainter->restore();
        }
    }
};

} // namespace

void paintFocusFrame(QPainter& painter, const QRect& control, const QPalette& around)
{
    const QRectF outer = QRectF(control).adjusted(kFrame / 2, kFrame / 2, -kFrame / 2, -kFrame / 2);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(around.color(QPalette::WindowText), kFrame));
    painter.drawRect(outer);
    painter.setPen(QPen(around.color(QPalette::Window), kFrame / 2));
    painter.drawRect(outer.adjusted(kFrame, kFrame, -kFrame, -kFrame));
}

void frameFocusOf(QWidget& button)
{
    auto* pStyle = new FramingStyle;
    pStyle->setParent(&button);
    button.setStyle(pStyle);
}
