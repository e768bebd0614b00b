// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/pureSpectrum.h"

#include "XTNT/simplex_fit.h"
#include "XTNT/xtnt_matrix.h"
#include "spectra/DefaultColors.h"

#include <algorithm>

namespace {

constexpr int kMostRows = 9; // to which "New" can be added
constexpr double kLargestTolerance = 0.1;
constexpr int kDigits = 2;

// The known spectra as rows of A's length. False when one has another length.
bool stack(const PureSpectrumTask& task, XTNT::Matrix<double>& rows)
{
    rows = XTNT::Matrix<double>(task.known.size(), task.mixed.n_);
    bool bFit = true;
    for (int i = 0; i < task.known.size(); ++i) {
        bFit = rows.setRow(i, task.known.at(i)) && bFit;
    }
    return bFit;
}

XTNT::Vector<double> withoutOffset(const XTNT::Vector<double>& rest)
{
    const double dSmallest = rest.Min();
    XTNT::Vector<double> values = rest.deepCopy();
    for (long long i = 0; i < values.n_; ++i) {
        values[i] -= dSmallest;
    }
    return values;
}

} // namespace

bool PureSpectrum::compute(const PureSpectrumTask& task)
{
    XTNT::Matrix<double> known;
    bool bDone = stack(task, known);
    if (bDone && task.autoScale) {
        bDone = XTNT::simplexFit(task.mixed, known, m_rest, m_amounts, task.tolerance) == 0;
    } else if (bDone) {
        XTNT::Vector<double> amounts(task.known.size());
        amounts.fill(1.0);
        bDone = XTNT::subtractAmounts(task.mixed, known, m_rest, amounts) == 0;
        m_amounts = bDone ? amounts : m_amounts;
    }
    if (bDone) {
        m_strEquation = pureSpectrumEquation(m_amounts);
    }
    m_values = task.fitOffset ? withoutOffset(m_rest) : m_rest;
    return bDone;
}

void PureSpectrum::reset()
{
    *this = PureSpectrum();
}

bool PureSpectrum::isLeft() const
{
    return m_rest.Max() > 0.0;
}

QString pureSpectrumEquation(const XTNT::Vector<double>& amounts)
{
    QString equation = QStringLiteral("A");
    for (long long i = 0; i < amounts.n_; ++i) {
        equation += QStringLiteral("-%1*B").arg(amounts[i], 0, 'g', kDigits);
        equation += amounts.n_ > 1 ? QString::number(i + 1) : QString();
    }
    return equation;
}

double errorTolerance(int nValue, int nMaximum)
{
    return nValue * kLargestTolerance / nMaximum;
}

QString rowText(int nRow, const QString& strName)
{
    return QString::number(nRow + 1) + QLatin1Char(':') + strName;
}

int rowOfText(const QString& strText)
{
    return strText.section(QLatin1Char(':'), 0, 0).toInt() - 1;
}

QStringList savePlaces(int nRows)
{
    QStringList places;
    for (int i = 1; i <= nRows; ++i) {
        places << QString::number(i);
    }
    if (nRows < kMostRows) {
        places << QStringLiteral("New");
    }
    return places;
}

SaveSuggestion saveSuggestion(const QList<SpectrumPlotParams*>& spectra, int nPlace, int nPlaces)
{
    if (nPlace < nPlaces - 1 && nPlace < spectra.size()) {
        const SpectrumSettings& settings = spectra.at(nPlace)->settings;
        return {settings.name, std::max(0, defaultColorPosition(settings.color))};
    }
    return {QStringLiteral("UMX%1").arg(nPlace + 1), nPlace % defaultSpectrumColors().size()};
}

int unusedColorPosition(const QList<SpectrumPlotParams*>& spectra, int nStart)
{
    for (int i = std::max(0, nStart); i < defaultSpectrumColors().size(); ++i) {
        const bool bUsed = std::any_of(spectra.begin(), spectra.end(), [i](const SpectrumPlotParams* pSpectrum) {
            return defaultColorPosition(pSpectrum->settings.color) == i;
        });
        if (!bUsed) {
            return i;
        }
    }
    return -1;
}

bool isApplyText(QString strText)
{
    return strText.remove(QLatin1Char('&')).contains(QLatin1String("Apply"));
}
