// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class CPLClickInfo;

// Values of a click info with their meaning tested. An absent section, an absent key and a value that cannot be read
// are all "no value"; wrongNumbers() tells the last from the others.

// The text without blanks at its ends; empty when there is none.
QString clickText(const CPLClickInfo& info, const char* pSection, const char* pKey);
// A finite number from the first of the sections that has the key.
std::optional<double> clickNumberValue(const CPLClickInfo& info, const QStringList& sections, const char* pKey);
// "1", "yes", "true" and "0", "no", "false", without regard to case.
std::optional<bool> clickFlag(const CPLClickInfo& info, const char* pSection, const char* pKey);
std::optional<bool> parseFlag(const QString& strText);

// One sentence for each entry that must be a number and is none, without the file's name.
QStringList wrongNumbers(const CPLClickInfo& info);
