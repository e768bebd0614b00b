// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/TextTable.h"

#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

bool isNumber(const QString& strText)
{
    bool ok = false;
    strText.toDouble(&ok);
    return ok || strText == QLatin1String("-");
}

QString csvField(const QString& strText)
{
    const bool plain = !strText.contains(QLatin1Char(',')) && !strText.contains(QLatin1Char('"')) &&
                       !strText.contains(QLatin1Char('\n')) && !strText.contains(QLatin1Char('\r'));
    if (plain) {
        return strText;
    }
    QString quoted = strText;
    return QLatin1Char('"') + quoted.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

QString csvLine(const QStringList& row)
{
    QStringList fields;
    for (const auto& text : row) {
        fields.append(csvField(text));
    }
    return fields.join(QLatin1Char(',')) + QLatin1Char('\n');
}

QString textLine(const QStringList& row, const QVector<int>& widths)
{
    QString line;
    for (int i = 0; i < row.size(); ++i) {
        if (i > 0) {
            line += QLatin1String("  ");
        }
        const QString text = TextTable::oneLine(row[i]);
        line += isNumber(text) ? text.rightJustified(widths[i]) : text.leftJustified(widths[i]);
    }
    while (line.endsWith(QLatin1Char(' '))) {
        line.chop(1);
    }
    return line + QLatin1Char('\n');
}

} // namespace

void TextTable::addRow(const QStringList& row)
{
    QStringList filled = row;
    while (filled.size() < m_header.size()) {
        filled.append(QString());
    }
    m_rows.append(filled);
}

QString TextTable::toText() const
{
    QVector<int> widths;
    for (int i = 0; i < m_header.size(); ++i) {
        int width = m_header[i].size();
        for (const auto& row : m_rows) {
            width = std::max(width, static_cast<int>(row[i].size()));
        }
        widths.append(width);
    }
    QString text = textLine(m_header, widths);
    for (const auto& row : m_rows) {
        text += textLine(row, widths);
    }
    return text;
}

QString TextTable::toCsv() const
{
    QString text = csvLine(m_header);
    for (const auto& row : m_rows) {
        text += csvLine(row);
    }
    return text;
}

QString TextTable::oneLine(QString strText)
{
    const auto breaksLine = [](QChar c) {
        return c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
    };
    std::replace_if(strText.begin(), strText.end(), breaksLine, QChar(QLatin1Char(' ')));
    return strText;
}

QString TextTable::number(double dValue, int nDigits)
{
    return std::isnan(dValue) ? QStringLiteral("-") : QString::number(dValue, 'g', nDigits);
}
