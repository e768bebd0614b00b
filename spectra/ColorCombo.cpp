// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/ColorCombo.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QToolTip>

namespace {

constexpr int kIconGap = 4; // that styles leave between icon and text

} // namespace

ColorCombo::ColorCombo(QWidget* pParent) : QComboBox(pParent) {}

bool ColorCombo::showsName() const
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect field = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    const int nIcon = option.currentIcon.isNull() ? 0 : option.iconSize.width() + kIconGap;
    return fontMetrics().horizontalAdvance(option.currentText) <= field.width() - nIcon;
}

void ColorCombo::showPopup()
{
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + 2 * view()->frameWidth());
    QComboBox::showPopup();
}

bool ColorCombo::event(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::ToolTip) {
        QToolTip::showText(static_cast<QHelpEvent*>(pEvent)->globalPos(), currentText(), this);
        return true;
    }
    return QComboBox::event(pEvent);
}

void ColorCombo::paintEvent(QPaintEvent* /*pEvent*/)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (!showsName()) {
        option.currentText.clear();
    }
    painter.setPen(palette().color(QPalette::Text));
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
