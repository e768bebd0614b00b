// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The fields of one line of a CSV file (RFC 4180 but for line breaks inside quotes, which are refused): a field that
// begins with a quote ends at the next one that is not doubled, and may hold the separator. Blanks around a field are
// dropped, inside quotes they stay. False, with the reason in *pError, when a quote is not closed or is followed by
// text.
bool splitCsvLine(const QString& strLine, QChar separator, QStringList* pFields, QString* pError);

// A field as splitCsvLine() reads it back with the separator ",": quoted where the text alone would be read as
// something else.
QString csvField(const QString& strText);
// A number with all its digits, an empty field without one.
QString csvNumber(const std::optional<double>& value);
QString csvNumber(const std::optional<int>& value);
