// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableWidget>

// A table with a grid whose rows and columns stay where they are: a click on a header is for the owner of the table,
// and widgets in cells would not move with their rows. Column headers that are wider than their column stand upright,
// as far as there is room, and have their whole text as tool tip; the text of the header's item stays as it is.
class CORVSortingTable : public QTableWidget
{
    Q_OBJECT
    // Hides the property of the base, which a form could turn on.
    Q_PROPERTY(bool sortingEnabled READ isSortingEnabled WRITE setSortingEnabled)

public:
    explicit CORVSortingTable(QWidget* pParent = nullptr);
    CORVSortingTable(int nRows, int nColumns, QWidget* pParent = nullptr);

    // Sorting stays off.
    void setSortingEnabled(bool);

private:
    void init();
};
