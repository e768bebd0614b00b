// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/CsvTable.h"

#include <QFile>

#include <cmath>

namespace {

QStringList cellsOf(const QString& strLine)
{
    QStringList cells = strLine.split(QLatin1Char(','));
    for (QString& cell : cells)
        cell = cell.trimmed();
    return cells;
}

} // namespace

QString CsvTable::problem(int nLine, const QString& strWhat) const
{
    return QStringLiteral("%1:%2: %3").arg(file).arg(nLine).arg(strWhat);
}

bool readCsvTable(const QString& strFile, CsvTable* pTable, QStringList& problems)
{
    *pTable = CsvTable();
    pTable->file = strFile;
    QFile file(strFile);
    if (!file.open(QIODevice::ReadOnly)) {
        problems.append(QStringLiteral("%1: %2").arg(strFile, file.errorString()));
        return false;
    }
    QByteArray bytes = file.readAll();
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    int number = 0;
    for (const QByteArray& raw : bytes.split('\n')) {
        ++number;
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList cells = cellsOf(line);
        if (pTable->header.isEmpty())
            pTable->header = cells;
        else if (cells.size() == pTable->header.size())
            pTable->rows.append({number, cells});
        else
            problems.append(pTable->problem(
                number, QStringLiteral("%1 cells where %2 belong").arg(cells.size()).arg(pTable->header.size())));
    }
    if (pTable->header.isEmpty())
        problems.append(QStringLiteral("%1: holds no table").arg(strFile));
    return !pTable->header.isEmpty();
}

std::optional<double> csvNumber(const QString& strCell)
{
    bool ok = false;
    const double value = strCell.toDouble(&ok); // QString's own conversion keeps to the C locale
    return ok && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}
