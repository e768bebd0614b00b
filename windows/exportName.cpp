// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/exportName.h"

#include <QFileInfo>

namespace exportName {

QString withSuffix(const QString& strPath, const QString& strFilter, const QStringList& suffixes)
{
    QString strNamed = strPath;
    const QString strSuffix = QFileInfo(strNamed).suffix().toLower();
    if (strSuffix.isEmpty() && strNamed.endsWith(QLatin1Char('.'))) {
        strNamed.chop(1);
    }
    if (suffixes.contains(strSuffix)) {
        return strNamed;
    }
    for (const QString& suffix : suffixes) {
        if (strFilter.contains(QStringLiteral("*.") + suffix)) {
            return strNamed + QLatin1Char('.') + suffix;
        }
    }
    return strNamed;
}

bool isTooLong(const QString& strPath)
{
    return QFileInfo(strPath).fileName().length() > longest;
}

QString tooLongText(const QString& strPath)
{
    const QString strName = QFileInfo(strPath).fileName();
    const int nHalf = strName.length() / 2;
    return QStringLiteral("The path you entered, \n'") + strName.left(nHalf) + QLatin1Char('\n') + strName.mid(nHalf) +
           QStringLiteral("',\nis too long. Enter a shorter path");
}

QString overwriteText(const QString& strPath)
{
    return QStringLiteral("File: ") + QFileInfo(strPath).fileName() +
           QStringLiteral(" exists in the specified path.\nOverwrite existing file?");
}

bool isTable(const QString& strPath)
{
    return strPath.contains(QLatin1String(".csv"), Qt::CaseInsensitive);
}

QString ofLibrary(const QString& strPath)
{
    const QString strSuffix = QFileInfo(strPath).suffix();
    return strSuffix.isEmpty() ? withSuffix(strPath, QStringLiteral("*.csv"), {QStringLiteral("csv")})
                               : strPath.chopped(strSuffix.size()) + strSuffix.toLower();
}

bool isListedLibrary(const QString& strPath)
{
    return QFileInfo(strPath).suffix() == QLatin1String("csv");
}

} // namespace exportName
