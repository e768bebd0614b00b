// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVSortingTable.h"

#include "platform/orvwidgets/UprightHeader.h"

CORVSortingTable::CORVSortingTable(QWidget* pParent) : QTableWidget(pParent)
{
    init();
}

CORVSortingTable::CORVSortingTable(int nRows, int nColumns, QWidget* pParent) : QTableWidget(nRows, nColumns, pParent)
{
    init();
}

void CORVSortingTable::init()
{
    setHorizontalHeader(new orv::UprightHeader(this));
    // Else a column of 30 pixels would be widened on platforms whose style asks for more.
    horizontalHeader()->setMinimumSectionSize(16);
    verticalHeader()->setMinimumSectionSize(16);
    setShowGrid(true);
    QTableWidget::setSortingEnabled(false);
}

void CORVSortingTable::setSortingEnabled(bool)
{
    QTableWidget::setSortingEnabled(false);
}
