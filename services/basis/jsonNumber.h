// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonValue>
#include <QString>

#include <cmath>

// A number of JSON, which has none that is not finite: null then.
inline QJsonValue jsonNumber(double dValue)
{
    return std::isfinite(dValue) ? QJsonValue(dValue) : QJsonValue();
}

// A text that is a whole number as one, any other as it is.
inline QJsonValue jsonWhole(const QString& strText)
{
    bool good = false;
    const int number = strText.toInt(&good);
    return good && QString::number(number) == strText ? QJsonValue(number) : QJsonValue(strText);
}

// A text that is a number as one, any other as null.
inline QJsonValue jsonNumberIn(const QString& strText)
{
    bool good = false;
    const double number = strText.toDouble(&good);
    return good ? jsonNumber(number) : QJsonValue();
}
