// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/simulateCall.h"

#include "workbench/application/freePlace.h"

#include <QCoreApplication>
#include <QDir>

namespace {

QString tr(const char* pText)
{
    return QCoreApplication::translate("simulateCall", pText);
}

} // namespace

namespace simulateCall {

QVector<Kind> kinds()
{
    return {{QStringLiteral("epi"), tr("Fluorescence, two dyes")},
            {QStringLiteral("luminescent"), tr("Luminescence, two luciferases")},
            {QStringLiteral("transillumination"), tr("Transillumination, a scan of spots")},
            {QStringLiteral("temporal"), tr("Kinetics of a dye over an hour")},
            {QStringLiteral("cherenkov"), tr("Cherenkov light of a decaying isotope")}};
}

QString program(const QString& strProgramFolder)
{
    return QDir(strProgramFolder).filePath(QStringLiteral("spum"));
}

QStringList arguments(const QString& strFolder, const QString& strKind, int nSize, bool bReplace)
{
    QStringList list{QStringLiteral("simulate"), QStringLiteral("--kind"), strKind, QStringLiteral("--size"),
                     QString::number(nSize)};
    if (bReplace) {
        list.append(QStringLiteral("--force"));
    }
    return list << QStringLiteral("--") << strFolder;
}

QString freeFolder(const QString& strParent, const QString& strKind)
{
    const QString name =
        strKind == QLatin1String("epi") ? QStringLiteral("mouse") : QStringLiteral("mouse-%1").arg(strKind);
    return freePlace(QDir(strParent).absoluteFilePath(name));
}

QString complaint(const QByteArray& errorOutput)
{
    QStringList lines;
    for (QString line : QString::fromLocal8Bit(errorOutput).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QString name = QStringLiteral("spum: ");
        lines.append(line.startsWith(name) ? line.mid(name.size()) : line);
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace simulateCall
