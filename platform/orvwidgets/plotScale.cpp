// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/plotScale.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace orv {

int commonPower(double dLargest, double dSmallest, double dLimit)
{
    if (!(dLargest > 0.0) || (dLargest >= dSmallest && dLargest < dLimit)) {
        return 0;
    }
    int nPower = static_cast<int>(std::floor(std::log10(dLargest)));
    // The logarithm of a number beside a power of ten may round to either side.
    if (mantissa(dLargest, nPower) >= 10.0) {
        ++nPower;
    } else if (mantissa(dLargest, nPower) < 1.0) {
        --nPower;
    }
    return nPower;
}

// Powers below 1e-308 are none of a double's, hence the wider type.
double mantissa(double dValue, int nPower)
{
    return static_cast<double>(static_cast<long double>(dValue) / std::pow(10.0L, nPower));
}

double fromMantissa(double dMantissa, int nPower)
{
    return static_cast<double>(static_cast<long double>(dMantissa) * std::pow(10.0L, nPower));
}

QString powerText(int nPower)
{
    if (nPower == 0) {
        return QString();
    }
    static const QString raised = QStringLiteral("\u2070\u00B9\u00B2\u00B3\u2074\u2075\u2076\u2077\u2078\u2079");
    QString text = QStringLiteral("\u00D710");
    for (const QChar c : QString::number(nPower)) {
        text.append(c == QLatin1Char('-') ? QChar(0x207B) : raised.at(c.digitValue()));
    }
    return text;
}

int formatDecimals(const QString& strFormat)
{
    static const QRegularExpression fixed(QStringLiteral(R"(^%\.(\d)f$)"));
    const auto match = fixed.match(strFormat);
    return match.hasMatch() ? match.captured(1).toInt() : 2;
}

namespace {

// 1, 2 or 5 times a power of ten, and no smaller than dRaw.
double roundStep(double dRaw)
{
    const double dUnit = std::pow(10.0, std::floor(std::log10(dRaw)));
    for (const double dFactor : {1.0, 2.0, 5.0}) {
        // The quotient of numbers that are equal on paper may be a trifle above.
        if (dFactor * dUnit >= dRaw * (1.0 - 1e-9)) {
            return dFactor * dUnit;
        }
    }
    return 10.0 * dUnit;
}

} // namespace

AxisScale axisScale(double dLow, double dHigh, int nMarks, int nDecimals, bool bRounded, double dSmallest,
                    double dLimit)
{
    AxisScale scale;
    scale.m_nPower = commonPower(std::max(std::abs(dLow), std::abs(dHigh)), dSmallest, dLimit);
    scale.m_dLow = mantissa(dLow, scale.m_nPower);
    scale.m_dHigh = mantissa(dHigh, scale.m_nPower);
    // An axis needs an extent that its numbers can still tell.
    const double dSize = std::max(std::abs(scale.m_dLow), std::abs(scale.m_dHigh));
    if (!(scale.m_dHigh - scale.m_dLow > 1e-9 * dSize)) {
        const double dHalf = dSize > 0.0 ? 0.1 * dSize : 0.5;
        const double dMiddle = dSize > 0.0 ? scale.m_dLow : 0.5;
        scale.m_dLow = dMiddle - dHalf;
        scale.m_dHigh = dMiddle + dHalf;
    }
    scale.m_dStep = roundStep((scale.m_dHigh - scale.m_dLow) / std::max(1, nMarks));
    if (bRounded) {
        scale.m_dLow = std::floor(scale.m_dLow / scale.m_dStep + 1e-9) * scale.m_dStep;
        scale.m_dHigh = std::ceil(scale.m_dHigh / scale.m_dStep - 1e-9) * scale.m_dStep;
    }
    const int nNeeded = static_cast<int>(std::ceil(-std::log10(scale.m_dStep) - 1e-9));
    scale.m_nDecimals = std::clamp(nNeeded, nDecimals, std::max(nDecimals, 12));
    return scale;
}

} // namespace orv
