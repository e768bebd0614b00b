// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/CsvTable.h"

#include "platform/orvutils/InputFile.h"

#include <QTextCodec>

#include <cmath>

namespace {

// The tables that come with the program are a tenth of this.
constexpr int maxMebibytes = 4;
constexpr int maxRows = 100000;
constexpr int maxColumns = 10000;
constexpr int mibUtf8 = 106;

// The text with LF alone for ends of line. What is not UTF-8 is read as Latin-1, with the line where that begins in
// *pLine, else 0.
QString decode(QByteArray bytes, int* pLine)
{
    if (bytes.startsWith("\xEF\xBB\xBF")) {
        bytes.remove(0, 3);
    }
    bytes.replace("\r\n", "\n").replace('\r', '\n');
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = QTextCodec::codecForMib(mibUtf8)->toUnicode(bytes.constData(), bytes.size(), &state);
    *pLine = 0;
    if (state.invalidChars == 0 && state.remainingChars == 0) {
        return text;
    }
    const int bad = text.indexOf(QChar::ReplacementCharacter);
    *pLine = text.leftRef(bad).count(QLatin1Char('\n')) + 1;
    return QString::fromLatin1(bytes);
}

QStringList cellsOf(const QString& strLine)
{
    QStringList cells = strLine.split(QLatin1Char(','));
    for (QString& cell : cells) {
        cell = cell.trimmed();
    }
    return cells;
}

} // namespace

QString CsvTable::problem(int nLine, const QString& strWhat) const
{
    return QStringLiteral("%1:%2: %3").arg(file, QString::number(nLine), strWhat);
}

bool readCsvTable(const QString& strFile, CsvTable* pTable, QStringList& problems)
{
    *pTable = CsvTable();
    pTable->file = strFile;
    QByteArray bytes;
    QString error;
    int number = 0;
    if (!orv::readInput(strFile, maxMebibytes, QStringLiteral("table"), &bytes, &error)) {
        problems.append(error);
        return false;
    }
    if (const int zero = bytes.indexOf('\0'); zero >= 0) {
        problems.append(
            pTable->problem(bytes.left(zero).count('\n') + 1, QStringLiteral("a zero byte, this is no text")));
        return false;
    }
    const QString text = decode(bytes, &number);
    if (number > 0) {
        problems.append(pTable->problem(number, QStringLiteral("not UTF-8, read as Latin-1")));
    }
    const QVector<QStringRef> lines = text.splitRef(QLatin1Char('\n'));
    number = 0;
    for (const QStringRef& raw : lines) {
        ++number;
        const QString line = raw.trimmed().toString();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const bool wide = pTable->header.isEmpty() && line.count(QLatin1Char(',')) >= maxColumns;
        if (wide || pTable->rows.size() >= maxRows) {
            problems.append(pTable->problem(number, wide ? QStringLiteral("more than %1 columns").arg(maxColumns)
                                                         : QStringLiteral("more than %1 rows").arg(maxRows)));
            return false;
        }
        const QStringList cells = cellsOf(line);
        if (pTable->header.isEmpty()) {
            pTable->header = cells;
        } else if (cells.size() == pTable->header.size()) {
            pTable->rows.append({number, cells});
        } else {
            problems.append(pTable->problem(
                number, QStringLiteral("%1 cells where %2 belong").arg(cells.size()).arg(pTable->header.size())));
        }
    }
    if (pTable->header.isEmpty()) {
        problems.append(QStringLiteral("%1: holds no table").arg(strFile));
    }
    return !pTable->header.isEmpty();
}

std::optional<double> csvNumber(const QString& strCell)
{
    bool ok = false;
    const double value = strCell.toDouble(&ok); // QString's own conversion keeps to the C locale
    return ok && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}
