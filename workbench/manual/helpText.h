// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

struct CommandManual;

// Columns of a line of help where nobody says how wide the terminal is.
constexpr int helpColumns = 80;

// The help of --help, in lines of that many columns. Lines end between words only: a word that is wider stands alone
// in a line of its own length. Commands of an example are kept on one line, so that they can be copied.
QString helpText(const CommandManual& manual, int nColumns);

// A paragraph in lines of at most `nColumns`, each behind so many blanks but the first.
QString wrappedText(const QString& strText, int nColumns, int nIndent);
