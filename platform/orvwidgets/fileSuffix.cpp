// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/fileSuffix.h"

#include <QRegularExpression>

namespace orv {

QString firstSuffix(const QString& strFilter)
{
    // Of "Data (old) (*.csv)" the last brackets count.
    QString patterns = strFilter.mid(strFilter.lastIndexOf(QLatin1Char('(')) + 1);
    patterns.remove(QLatin1Char(')'));
    static const QRegularExpression separators(QStringLiteral("[ ;]+"));
    const QString first = patterns.split(separators, Qt::SkipEmptyParts).value(0);
    static const QRegularExpression plain(QStringLiteral(R"(^\*\.([^*?\[\]]+)$)"));
    return plain.match(first).captured(1);
}

QString withSuffix(const QString& strPath, const QString& strSuffix)
{
    const QString name = strPath.mid(strPath.lastIndexOf(QLatin1Char('/')) + 1);
    const int nDot = name.lastIndexOf(QLatin1Char('.'));
    const bool bHasSuffix = nDot > 0 && nDot < name.size() - 1;
    if (name.isEmpty() || strSuffix.isEmpty() || bHasSuffix) {
        return strPath;
    }
    const bool bDotAtEnd = nDot > 0 && nDot == name.size() - 1;
    return strPath + (bDotAtEnd ? QString() : QStringLiteral(".")) + strSuffix;
}

} // namespace orv
