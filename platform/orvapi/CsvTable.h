// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// A table of comma-separated cells in UTF-8: lines that begin with '#' and blank lines do not count, the first other
// line names the columns, and every further one has as many cells. Cells are without blanks at their ends; there is no
// quoting.
struct CsvTable
{
    struct Row
    {
        int line = 0; // in the file, from 1
        QStringList cells;
    };
    QString file;
    QStringList header;
    QList<Row> rows;

    // "file:line: what is wrong".
    QString problem(int nLine, const QString& strWhat) const;
};

// False when the file cannot be read or has no header; `problems` tells why. A row with another number of cells than
// the header is left out and told.
bool readCsvTable(const QString& strFile, CsvTable* pTable, QStringList& problems);

// A finite number in the C locale that is the whole cell.
std::optional<double> csvNumber(const QString& strCell);
