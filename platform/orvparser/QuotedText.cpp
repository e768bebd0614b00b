// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvparser/QuotedText.h"

namespace QuotedText {

namespace {

// Control characters, ends of line of any kind, marks that readers drop, and halves of a surrogate pair, which UTF-8
// can't hold.
bool needsEscape(const QString& strText, int i)
{
    const ushort c = strText[i].unicode();
    if ((c < 0x20 && c != '\t') || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029 || c == 0xfeff ||
        c >= 0xfffe) {
        return true;
    }
    if (QChar::isHighSurrogate(c)) {
        return i + 1 >= strText.size() || !strText[i + 1].isLowSurrogate();
    }
    return QChar::isLowSurrogate(c) && (i == 0 || !strText[i - 1].isHighSurrogate());
}

bool canStand(const QString& strText, const QString& strReserved, const QString& strReservedFirst)
{
    if (strText.isEmpty()) {
        return true;
    }
    if (strText.front().isSpace() || strText.back().isSpace() || strText.front() == QLatin1Char('"') ||
        strReservedFirst.contains(strText.front())) {
        return false;
    }
    for (int i = 0; i < strText.size(); ++i) {
        if (needsEscape(strText, i) || strReserved.contains(strText[i])) {
            return false;
        }
    }
    return true;
}

QString escaped(const QString& strText, int i)
{
    switch (strText[i].unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    case '"':
        return QStringLiteral("\\\"");
    case '\\':
        return QStringLiteral("\\\\");
    default:
        break;
    }
    if (needsEscape(strText, i)) {
        return QStringLiteral("\\u%1").arg(strText[i].unicode(), 4, 16, QLatin1Char('0'));
    }
    return strText.mid(i, 1);
}

// The character of the escape at `*pPosition` (behind the backslash), which moves past it. False for an unknown escape.
bool readEscape(const QString& strLine, int* pPosition, QChar* pCharacter)
{
    if (*pPosition >= strLine.size()) {
        return false;
    }
    const QChar c = strLine[(*pPosition)++];
    switch (c.unicode()) {
    case 'n':
        *pCharacter = QLatin1Char('\n');
        return true;
    case 'r':
        *pCharacter = QLatin1Char('\r');
        return true;
    case 't':
        *pCharacter = QLatin1Char('\t');
        return true;
    case '"':
    case '\\':
        *pCharacter = c;
        return true;
    case 'u': {
        bool isNumber = false;
        const QString digits = strLine.mid(*pPosition, 4);
        const bool four = digits.size() == 4 && digits[0] != QLatin1Char('+') && digits[0] != QLatin1Char('-');
        *pCharacter = QChar(digits.toUShort(&isNumber, 16));
        *pPosition += 4;
        return four && isNumber;
    }
    default:
        return false;
    }
}

} // namespace

QString write(const QString& strText, const QString& strReserved, const QString& strReservedFirst)
{
    if (canStand(strText, strReserved, strReservedFirst)) {
        return strText;
    }
    QString result = QStringLiteral("\"");
    for (int i = 0; i < strText.size(); ++i) {
        result += escaped(strText, i);
    }
    return result + QLatin1Char('"');
}

bool read(const QString& strLine, int nFrom, QString* pText, int* pEnd)
{
    if (nFrom >= strLine.size() || strLine[nFrom] != QLatin1Char('"')) {
        return false;
    }
    QString text;
    int i = nFrom + 1;
    while (i < strLine.size()) {
        QChar c = strLine[i++];
        if (c == QLatin1Char('"')) {
            *pText = text;
            *pEnd = i;
            return true;
        }
        if (c == QLatin1Char('\\') && !readEscape(strLine, &i, &c)) {
            return false;
        }
        text += c;
    }
    return false;
}

QString readRest(const QString& strRest)
{
    const QString rest = strRest.trimmed();
    QString text;
    int end = 0;
    return read(rest, 0, &text, &end) && end == rest.size() ? text : rest;
}

} // namespace QuotedText
