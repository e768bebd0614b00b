// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// What a command told on standard error.
struct ChildWords
{
    QStringList warnings;
    QString message; // why it failed; empty where it did not, or did not say
};

// `bFailed` says whether it failed: its last line, but for warnings, then tells why; other lines are warnings.
ChildWords childWords(const QByteArray& err, bool bFailed);

// Why a program failed that says nothing: its exit status, or with `bSignal` the number of the signal that ended it.
QString silentEndText(int nCode, bool bSignal);
