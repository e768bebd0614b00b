// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/resultsTableText.h"

namespace resultsTableText {

namespace {

QString quoted(const QString& strText)
{
    return QLatin1Char('"') + strText + QLatin1Char('"');
}

QString line(const QStringList& texts, const QString& strSeparator)
{
    return texts.join(strSeparator) + QLatin1Char('\n');
}

QString lines(const QVector<QStringList>& rows, const QString& strSeparator)
{
    QString strText;
    for (const QStringList& row : rows) {
        QStringList texts;
        for (const QString& text : row) {
            texts.append(text.contains(QLatin1Char(',')) ? quoted(text) : text);
        }
        strText += line(texts, strSeparator);
    }
    return strText;
}

} // namespace

QString forClipboard(const QStringList& titles, const QVector<QStringList>& rows)
{
    const QString strTab = QStringLiteral("\t");
    return line(titles, strTab) + lines(rows, strTab);
}

QString forFile(const QStringList& titles, const QVector<QStringList>& rows, const QString& strSeparator)
{
    QStringList quotedTitles;
    for (const QString& title : titles) {
        quotedTitles.append(quoted(title));
    }
    return line(quotedTitles, strSeparator) + lines(rows, strSeparator);
}

QString separatorOf(const QString& strPath)
{
    if (strPath.contains(QLatin1String(".txt"), Qt::CaseInsensitive)) {
        return QStringLiteral(" ");
    }
    return strPath.contains(QLatin1String(".csv"), Qt::CaseInsensitive) ? QStringLiteral(",") : QString();
}

} // namespace resultsTableText
