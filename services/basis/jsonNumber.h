// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonValue>

#include <cmath>

// A number of JSON, which has none that is not finite: null then.
inline QJsonValue jsonNumber(double dValue)
{
    return std::isfinite(dValue) ? QJsonValue(dValue) : QJsonValue();
}
