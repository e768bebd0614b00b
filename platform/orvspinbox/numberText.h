// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QString>

namespace orv {

// A number while it is typed.
struct TypedNumber
{
    enum State
    {
        Invalid, // nothing typed behind it makes it a number
        Partial, // the beginning of a number, such as "", "-", "1e" and "1e+"
        Complete
    };

    State m_eState = Invalid;
    double m_dValue = 0.0; // of a complete one; infinite when it is beyond what a double holds
};

// Reads a number with or without exponent, with a decimal point or the sign that the locale puts there. Groups of
// thousands are not read: "1.234" is 1.234 wherever it is typed. Blanks around it do not matter.
TypedNumber readTypedNumber(const QString& strText, const QLocale& locale);

// With six digits and, where it needs one, an exponent: "150", "0.25", "1.3e+09", "1e-09", with the locale's digits and
// decimal sign.
QString exponentText(double dValue, const QLocale& locale);

} // namespace orv
