// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The one among the known names that a text means: the name itself, the name in another case, or one that the
// database has the text as another name for ("AF750"). Empty for none.
QString probeMeant(const QString& strText, const QStringList& known);

// The known names that resemble the text the most, by themselves or by another name in use, nearest first, three at
// most.
QStringList nearestProbes(const QString& strText, const QStringList& known);

// "; did you mean \"A\", \"B\"?": the end of a sentence that refuses the text; empty where nothing is known.
QString nearestProbesText(const QString& strText, const QStringList& known);
