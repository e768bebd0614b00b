// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/LegibleBoxes.h"

#include <QStyleOptionButton>

namespace {

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
}

} // namespace

LegibleBoxes::LegibleBoxes(const QString& strBase) : QProxyStyle(strBase)
{
    setObjectName(strBase);
}

void LegibleBoxes::drawPrimitive(PrimitiveElement eElement, const QStyleOption* pOption, QPainter* pPainter,
                                 const QWidget* pWidget) const
{
    const auto* pButton = qstyleoption_cast<const QStyleOptionButton*>(pOption);
    const bool bBox = eElement == PE_IndicatorCheckBox || eElement == PE_IndicatorRadioButton;
    if (!bBox || pButton == nullptr || !isDark(pButton->palette)) {
        QProxyStyle::drawPrimitive(eElement, pOption, pPainter, pWidget);
        return;
    }
    // The style takes nothing but the outline from that colour, and darkens it by a third.
    QStyleOptionButton legible(*pButton);
    legible.palette.setColor(QPalette::Window, legible.palette.color(QPalette::WindowText));
    QProxyStyle::drawPrimitive(eElement, &legible, pPainter, pWidget);
}
