// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDoubleSpinBox>

// A spin box for values of any magnitude. It shows "123.46" or, with the exponent on, "1.3e+09". Either form may be
// typed at any time, with the decimal point or with the sign that the user's locale puts there; a number outside the
// range is moved to its nearer end once it is complete.
class QDoubleSpinBoxEx : public QDoubleSpinBox
{
    Q_OBJECT

public:
    using QDoubleSpinBox::QDoubleSpinBox;

    // Six digits and, where the number needs one, an exponent, in place of the decimals. What is shown changes with the
    // next setValue(), be it with the same value.
    bool m_bExponentDisplay = false;

    QString textFromValue(double dValue) const override;
    // Rounded to the decimals. A text that shows the present value gives that value with all its digits.
    double valueFromText(const QString& strText) const override;
    QValidator::State validate(QString& strText, int& nCursor) const override;
    void fixup(QString& strText) const override;

private:
    // Without prefix and suffix.
    QString bareText(const QString& strText) const;
};
