// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The words of a line as a POSIX shell takes them apart: blanks split, quotes of either kind and a backslash keep
// together; nothing is expanded. False, with the reason in *pError, where a quote is not closed or nothing follows a
// backslash.
bool optionWords(const QString& strLine, QStringList* pWords, QString* pError);
