// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/CellCheckBox.h"

#include <QStyle>
#include <QStyleOptionButton>
#include <QStylePainter>

void CellCheckBox::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRect indicator = style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this);
    option.rect = QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, indicator.size(), rect());
    painter.drawPrimitive(QStyle::PE_IndicatorCheckBox, option);
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = rect().adjusted(1, 1, -1, -1);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
}
