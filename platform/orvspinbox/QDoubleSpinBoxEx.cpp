// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/QDoubleSpinBoxEx.h"

#include "platform/orvspinbox/numberText.h"

#include <algorithm>

QString QDoubleSpinBoxEx::textFromValue(double dValue) const
{
    return m_bExponentDisplay ? orv::exponentText(dValue, locale()) : QDoubleSpinBox::textFromValue(dValue);
}

QString QDoubleSpinBoxEx::bareText(const QString& strText) const
{
    QString bare = strText;
    if (!prefix().isEmpty() && bare.startsWith(prefix())) {
        bare.remove(0, prefix().size());
    }
    if (!suffix().isEmpty() && bare.endsWith(suffix())) {
        bare.chop(suffix().size());
    }
    return bare.trimmed();
}

double QDoubleSpinBoxEx::valueFromText(const QString& strText) const
{
    const QString bare = bareText(strText);
    // Enter without an edit reads the text again, which has fewer digits than the value.
    if (bare == textFromValue(value())) {
        return value();
    }
    const orv::TypedNumber number = orv::readTypedNumber(bare, locale());
    if (number.m_eState != orv::TypedNumber::Complete) {
        return value();
    }
    const double dInside = std::clamp(number.m_dValue, minimum(), maximum());
    return QString::number(dInside, 'f', decimals()).toDouble();
}

QValidator::State QDoubleSpinBoxEx::validate(QString& strText, int&) const
{
    const QString bare = bareText(strText);
    if (bare == specialValueText() && !bare.isEmpty()) {
        return QValidator::Acceptable;
    }
    const orv::TypedNumber number = orv::readTypedNumber(bare, locale());
    if (number.m_eState == orv::TypedNumber::Invalid) {
        return QValidator::Invalid;
    }
    // A number outside the range may come into it by what is typed next: of "13e-1" the first two digits are beyond 10.
    const bool bInside = number.m_dValue >= minimum() && number.m_dValue <= maximum();
    return number.m_eState == orv::TypedNumber::Complete && bInside ? QValidator::Acceptable : QValidator::Intermediate;
}

void QDoubleSpinBoxEx::fixup(QString& strText) const
{
    const orv::TypedNumber number = orv::readTypedNumber(bareText(strText), locale());
    if (number.m_eState == orv::TypedNumber::Complete) {
        strText = prefix() + textFromValue(std::clamp(number.m_dValue, minimum(), maximum())) + suffix();
    }
}
