// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

// Shows entries whose foreground is a colour that means something: with a swatch of it, and in letters of it as far as
// they can be read on the list.
class ChannelDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* pOption, const QModelIndex& index) const override;
};
