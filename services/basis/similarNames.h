// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

// The names that are nearest to a text by the fewest letters and digits to insert, to remove, to exchange and to swap
// with their neighbours (F. J. Damerau, 1964; V. I. Levenshtein, 1965), nearest first, at most so many. Case, blanks
// and signs do not count.
QStringList similarNames(const QString& strText, const QStringList& names, int nMost);

// Those that the text may have been meant for, nearest first, three at most: a third of its letters may be wrong, or it
// is the beginning of a name.
QStringList meantNames(const QString& strText, const QStringList& names);

// "; did you mean A, B or C?" ("." for none): the end of a sentence that refuses the text.
QString meantNamesText(const QStringList& meant);
