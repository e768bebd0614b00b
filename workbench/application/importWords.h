// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// A sentence of the importer as the window says it: with the names of its controls where it names options of the
// command line.
QString importWords(const QString& strSentence);

// The line of the table that an error of the importer speaks of, "inferred table:3: ..."; 0 for none. The place is
// replaced by "the table" in *pError.
int takeTableLine(QString* pError);
