// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Keys, names and values as they stand in a line. A text that can stand as it is does, backslashes and percent signs
// included; any other is put in double quotes, and there a backslash begins an escape: \n \r \t \" \\ and \uXXXX (one
// UTF-16 unit).
namespace QuotedText {

// `strReserved`: characters that the place of the text does not allow unquoted (the colon in a key, ...).
// `strReservedFirst`: such characters at its beginning.
QString write(const QString& strText, const QString& strReserved = QString(),
              const QString& strReservedFirst = QString());

// Reads a quoted text that begins at nFrom. True with the text and the position behind the closing quote; false when
// there is no quoted text, which a caller then takes as an unquoted one.
bool read(const QString& strLine, int nFrom, QString* pText, int* pEnd);

// A value or name that fills the rest of a line, trimmed.
QString readRest(const QString& strRest);

} // namespace QuotedText
