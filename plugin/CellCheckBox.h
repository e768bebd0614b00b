// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>

// A box without a text that fills a cell of a table: it stands in the middle, and a click anywhere in the cell is meant
// for it.
class CellCheckBox : public QCheckBox
{
public:
    using QCheckBox::QCheckBox;

protected:
    bool hitButton(const QPoint& pos) const override { return rect().contains(pos); }
    void paintEvent(QPaintEvent* pEvent) override;
};
