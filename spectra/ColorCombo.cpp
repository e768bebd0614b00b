// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/ColorCombo.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int kIconGap = 4; // that styles leave between icon and text

} // namespace

ColorCombo::ColorCombo(QWidget* pParent) : QComboBox(pParent) {}

bool ColorCombo::showsNames() const
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect field = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    const int nIcon = option.currentIcon.isNull() ? 0 : option.iconSize.width() + kIconGap;
    int nWidest = 0;
    for (int i = 0; i < count(); ++i) {
        nWidest = std::max(nWidest, fontMetrics().horizontalAdvance(itemText(i)));
    }
    return nWidest <= field.width() - nIcon;
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
    if (!showsNames()) {
        option.currentText.clear();
    }
    painter.setPen(palette().color(QPalette::Text));
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
