// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvparser/KeyText.h"

namespace {

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

QString escapeBlank(QChar c)
{
    return c == QLatin1Char('\t') ? QStringLiteral("\\t") : QStringLiteral("\\s");
}

// What cannot stand in any text, and blanks at the ends, which reading drops.
QString escape(const QString& strText, const QString& strSpecial)
{
    QString result;
    result.reserve(strText.size() + 8);
    const int last = strText.size() - 1;
    for (int i = 0; i <= last; ++i) {
        const QChar c = strText[i];
        if (c == QLatin1Char('\n'))
            result += QStringLiteral("\\n");
        else if (c == QLatin1Char('\r'))
            result += QStringLiteral("\\r");
        else if (c.isNull())
            result += QStringLiteral("\\0");
        else if (isBlank(c) && (i == 0 || i == last))
            result += escapeBlank(c);
        else if (c == QLatin1Char('\\') || strSpecial.contains(c))
            result += QLatin1Char('\\') + QString(c);
        else
            result += c;
    }
    return result;
}

QChar meaningOf(QChar c)
{
    switch (c.unicode()) {
    case 'n':
        return QLatin1Char('\n');
    case 'r':
        return QLatin1Char('\r');
    case 't':
        return QLatin1Char('\t');
    case 's':
        return QLatin1Char(' ');
    case '0':
        return QChar();
    default:
        return c;
    }
}

bool isEscaped(const QString& strText, int nPosition)
{
    int backslashes = 0;
    while (nPosition - backslashes > 0 && strText[nPosition - backslashes - 1] == QLatin1Char('\\'))
        ++backslashes;
    return backslashes % 2 == 1;
}

} // namespace

namespace KeyText {

QString escapeKey(const QString& strKey)
{
    const QString text = escape(strKey, QStringLiteral(":"));
    const bool special = text.startsWith(QLatin1Char('[')) || text.startsWith(QLatin1Char('#'));
    return special ? QLatin1Char('\\') + text : text;
}

QString escapeSectionKey(const QString& strKey)
{
    return escape(strKey, QStringLiteral("]"));
}

QString escapeValue(const QString& strValue)
{
    return escape(strValue, QString());
}

QString unescape(const QString& strText)
{
    if (!strText.contains(QLatin1Char('\\')))
        return strText;
    QString result;
    result.reserve(strText.size());
    for (int i = 0; i < strText.size(); ++i) {
        if (strText[i] == QLatin1Char('\\') && i + 1 < strText.size())
            result += meaningOf(strText[++i]);
        else
            result += strText[i];
    }
    return result;
}

int findUnescaped(const QString& strText, QChar separator, int nFrom)
{
    for (int i = nFrom; i < strText.size(); ++i) {
        if (strText[i] == QLatin1Char('\\'))
            ++i;
        else if (strText[i] == separator)
            return i;
    }
    return -1;
}

QString trim(const QString& strText)
{
    int begin = 0;
    int end = strText.size();
    while (begin < end && isBlank(strText[begin]))
        ++begin;
    while (end > begin && isBlank(strText[end - 1]) && !isEscaped(strText, end - 1))
        --end;
    return strText.mid(begin, end - begin);
}

} // namespace KeyText
