// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

// How a simulated sequence is asked of the command line program.
namespace simulateCall {

struct Kind
{
    QString word; // of the command line
    QString text; // for people
};

QVector<Kind> kinds();

// "spum" beside this program.
QString program(const QString& strProgramFolder);
QStringList arguments(const QString& strFolder, const QString& strKind, int nSize, bool bReplace);
// A folder below `strParent` that is not there yet: "mouse", "mouse-2", ...
QString freeFolder(const QString& strParent, const QString& strKind);
// What the program said on its standard error, without its name in front and without the line of its progress.
QString complaint(const QByteArray& errorOutput);

} // namespace simulateCall
