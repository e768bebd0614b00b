// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The text form of sections of keys:
//
//     [section key] section name
//     key: value
//
// A backslash escapes what would not survive: "\\", "\n", "\r", "\0" (NUL), "\s" and "\t" (a blank or tab at an end),
// "\:" in keys, "\]" in section keys, "\[" and "\#" at the start of a key. Ordinary texts stand as they are.
namespace KeyText {

QString escapeKey(const QString& strKey);
QString escapeSectionKey(const QString& strKey);
QString escapeValue(const QString& strValue);
// Undoes each of the three; an unknown escape stands for the character behind the backslash.
QString unescape(const QString& strText);
// Position of the first `separator` that no backslash escapes, from `nFrom` on; -1 when there is none.
int findUnescaped(const QString& strText, QChar separator, int nFrom = 0);
// Without the blanks and tabs at both ends that no backslash escapes.
QString trim(const QString& strText);

} // namespace KeyText
