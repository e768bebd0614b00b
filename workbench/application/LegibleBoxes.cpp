// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/LegibleBoxes.h"

#include <QApplication>
#include <QStyleOptionButton>

namespace {

const QLatin1String ownStyle("fusion");

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
}

} // namespace

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

void makeBoxesLegible()
{
    if (QApplication::style()->objectName() == ownStyle) {
        auto* pStyle = new LegibleBoxes(ownStyle);
        pStyle->setParent(QApplication::instance());
        QApplication::setStyle(pStyle);
    }
}
