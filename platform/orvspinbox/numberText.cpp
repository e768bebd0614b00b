// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvspinbox/numberText.h"

#include <QRegularExpression>

#include <charconv>
#include <limits>
#include <system_error>

namespace orv {

namespace {

// The text with the digits and signs of the C locale.
QString plainText(const QString& strText, const QLocale& locale)
{
    QString plain;
    for (const QChar c : strText.trimmed()) {
        if (c.digitValue() >= 0) {
            plain.append(QChar(u'0' + c.digitValue()));
        } else if (c == locale.decimalPoint()) {
            plain.append(QLatin1Char('.'));
        } else if (c == locale.negativeSign() || c == QChar(0x2212)) {
            plain.append(QLatin1Char('-'));
        } else {
            plain.append(c);
        }
    }
    return plain;
}

} // namespace

TypedNumber readTypedNumber(const QString& strText, const QLocale& locale)
{
    const QString plain = plainText(strText, locale);
    static const QRegularExpression complete(QStringLiteral(R"(^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$)"));
    static const QRegularExpression beginning(
        QStringLiteral(R"(^[+-]?(\d+\.?\d*([eE][+-]?)?|\.\d+([eE][+-]?)?|\.?)$)"));
    TypedNumber number;
    if (complete.match(plain).hasMatch()) {
        number.m_eState = TypedNumber::Complete;
        // Locale-independent, as from_chars() is; what a double does not hold is told apart by the size of the
        // exponent.
        const QByteArray bytes = (plain.startsWith(QLatin1Char('+')) ? plain.mid(1) : plain).toLatin1();
        const auto result = std::from_chars(bytes.constData(), bytes.constData() + bytes.size(), number.m_dValue);
        if (result.ec == std::errc::result_out_of_range) {
            const bool bSmall = plain.contains(QLatin1String("e-"), Qt::CaseInsensitive);
            const double dSize = bSmall ? 0.0 : std::numeric_limits<double>::infinity();
            number.m_dValue = plain.startsWith(QLatin1Char('-')) ? -dSize : dSize;
        }
    } else if (beginning.match(plain).hasMatch()) {
        number.m_eState = TypedNumber::Partial;
    }
    return number;
}

QString exponentText(double dValue, const QLocale& locale)
{
    QLocale plain(locale);
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    constexpr int digits = 6;
    return plain.toString(dValue, 'g', digits);
}

} // namespace orv
