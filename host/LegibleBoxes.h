// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

// Draws as the style that it is made with, but for check boxes and radio buttons in dark palettes: their outline is as
// bright as the text beside them. The style of Qt's own darkens the window's colour for it, which leaves an unticked
// box hardly seen. To be applied to a style that the desktop does not draw itself. It has the name of the style
// beneath.
class LegibleBoxes : public QProxyStyle
{
    Q_OBJECT

public:
    // `strBase` is a key of QStyleFactory.
    explicit LegibleBoxes(const QString& strBase);

    void drawPrimitive(PrimitiveElement eElement, const QStyleOption* pOption, QPainter* pPainter,
                       const QWidget* pWidget = nullptr) const override;
};
