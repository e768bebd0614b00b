// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/NumberText.h"

#include <QLocale>

namespace orv {

QString shortestText(double dValue)
{
    return QString::number(dValue, 'g', QLocale::FloatingPointShortest);
}

bool numberAwareLess(const QString& strA, const QString& strB)
{
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    const auto digitsFrom = [&](const QString& text, int* pPlace) {
        const int begin = *pPlace;
        while (*pPlace < text.size() && isDigit(text.at(*pPlace))) {
            ++*pPlace;
        }
        int first = begin;
        while (first < *pPlace && text.at(first) == QLatin1Char('0')) {
            ++first;
        }
        return text.mid(first, *pPlace - first);
    };
    int a = 0;
    int b = 0;
    while (a < strA.size() && b < strB.size()) {
        if (isDigit(strA.at(a)) && isDigit(strB.at(b))) {
            const QString numberA = digitsFrom(strA, &a);
            const QString numberB = digitsFrom(strB, &b);
            if (numberA != numberB) {
                return numberA.size() != numberB.size() ? numberA.size() < numberB.size() : numberA < numberB;
            }
            continue;
        }
        if (strA.at(a) != strB.at(b)) {
            return strA.at(a) < strB.at(b);
        }
        ++a;
        ++b;
    }
    if (a < strA.size() || b < strB.size()) {
        return b < strB.size();
    }
    return strA < strB; // equal but for leading zeros
}

} // namespace orv
