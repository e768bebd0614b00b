// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/printable.h"

namespace orv {

namespace {

// Control characters, line and paragraph separators, and marks, embeddings, overrides and isolates of direction.
bool steers(QChar c)
{
    const ushort code = c.unicode();
    if (code == '\n' || code == '\t') {
        return false;
    }
    return c.category() == QChar::Other_Control || code == 0x061C || code == 0x200E || code == 0x200F ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

QString escaped(QChar c, bool bJson)
{
    constexpr int hexadecimal = 16;
    const bool brief = c.unicode() <= 0xFF && !bJson;
    return QLatin1String(brief ? "\\x" : "\\u") +
           QString::number(c.unicode(), hexadecimal).rightJustified(brief ? 2 : 4, QLatin1Char('0'));
}

QString withEscapes(const QString& strText, bool bJson)
{
    QString text;
    text.reserve(strText.size());
    for (const QChar c : strText) {
        if (steers(c)) {
            text += escaped(c, bJson);
        } else {
            text += c;
        }
    }
    return text;
}

} // namespace

QString printable(const QString& strText)
{
    return withEscapes(strText, false);
}

QString printableLine(const QString& strText)
{
    return printable(strText).replace(QLatin1Char('\n'), escaped(QLatin1Char('\n'), false));
}

QByteArray printableJson(const QByteArray& json)
{
    return withEscapes(QString::fromUtf8(json), true).toUtf8();
}

} // namespace orv
