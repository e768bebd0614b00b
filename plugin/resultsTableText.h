// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

// The table of result properties as text, a row of texts an item. A text with a comma stands between double quotes, any
// other as it is; quotes are not doubled.
namespace resultsTableText {

// For the clipboard: columns end in tabs, the last in a line feed. The titles come first, whether there are rows or
// not.
QString forClipboard(const QStringList& titles, const QVector<QStringList>& rows);

// For a file: titles in double quotes, columns end in the separator, the last in a line feed.
QString forFile(const QStringList& titles, const QVector<QStringList>& rows, const QString& strSeparator);

// The separator of a file by its path: a blank when ".txt" stands anywhere in it, else a comma for ".csv"; null when
// neither does, and nothing is written then. Without regard to case.
QString separatorOf(const QString& strPath);

} // namespace resultsTableText
