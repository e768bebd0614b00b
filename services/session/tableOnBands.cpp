// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/tableOnBands.h"

#include "engine/EngineEnums.h"
#include "services/basis/Failure.h"
#include "services/session/PairSelection.h"
#include "services/session/SpectraTable.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

// Wavelengths that differ by less (nm) are one: a filter's is told in whole nanometres, and a table in um is rounded.
constexpr double sameWavelength = 1e-3;

bool isSame(double dA, double dB)
{
    return std::fabs(dA - dB) < sameWavelength || (std::isnan(dA) && std::isnan(dB));
}

const FilterBand& along(const SpectralBand& band, int nAxis)
{
    return nAxis == SPECTRUMAXIS_EXCITATION ? band.excitation : band.emission;
}

const FilterBand& across(const SpectralBand& band, int nAxis)
{
    return nAxis == SPECTRUMAXIS_EXCITATION ? band.emission : band.excitation;
}

double between(const QPointF& a, const QPointF& b, double x)
{
    return a.y() + (b.y() - a.y()) * (x - a.x()) / (b.x() - a.x());
}

// The integral of the straight lines from the curve's beginning to x.
double integralTo(const QVector<QPointF>& curve, double x)
{
    double sum = 0.0;
    for (int i = 1; i < curve.size() && curve.at(i - 1).x() < x; ++i) {
        const double end = std::min(x, curve.at(i).x());
        sum += 0.5 * (curve.at(i - 1).y() + between(curve.at(i - 1), curve.at(i), end)) * (end - curve.at(i - 1).x());
    }
    return sum;
}

// The points of a spectrum that are there, over the wavelengths of the rows that `takes` accepts.
template <class Takes>
QVector<QPointF> curveOf(const SpectraTable& table, int nSpectrum, Takes takes,
                         double (*abscissa)(const SpectraTable::Row&))
{
    QVector<QPointF> curve;
    const QVector<double>& values = table.values(nSpectrum);
    for (int i = 0; i < table.rows().size(); ++i) {
        if (takes(table.rows().at(i)) && std::isfinite(values.at(i))) {
            curve.append({abscissa(table.rows().at(i)), values.at(i)});
        }
    }
    std::sort(curve.begin(), curve.end(), [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); });
    return curve;
}

double wavelengthOf(const SpectraTable::Row& row)
{
    return row.wavelength;
}

double excitationOf(const SpectraTable::Row& row)
{
    return row.excitation;
}

// In a table of pairs the value of a band, at the middle of its filter.
bool valueOfPair(const SpectraTable& table, int nSpectrum, const SpectralBand& band, int nAxis, double* pValue)
{
    const bool overExcitation = nAxis == SPECTRUMAXIS_EXCITATION;
    const double other = across(band, nAxis).centre;
    const auto takes = [=](const SpectraTable::Row& row) {
        return isSame(overExcitation ? row.wavelength : row.excitation, other) &&
               std::isfinite(overExcitation ? row.excitation : row.wavelength);
    };
    const auto curve = curveOf(table, nSpectrum, takes, overExcitation ? excitationOf : wavelengthOf);
    return curveOverBand(curve, along(band, nAxis).centre, 0.0, pValue);
}

// A curve over one wavelength says nothing of the other.
void requireOneFilterAcross(const SpectraTable& table, const QList<SpectralBand>& bands, int nAxis,
                            const QString& strSource)
{
    const bool overExcitation = nAxis == SPECTRUMAXIS_EXCITATION;
    const QString axis = overExcitation ? QStringLiteral("excitation") : QStringLiteral("emission");
    const QString other = overExcitation ? QStringLiteral("emission") : QStringLiteral("excitation");
    const SpectraTable::Axis told = overExcitation ? SpectraTable::Axis::Excitation : SpectraTable::Axis::Emission;
    if (table.axis() != SpectraTable::Axis::Unsaid && table.axis() != told) {
        throw Failure(QStringLiteral("%1: the table is over %2, the images are told apart by their %3")
                          .arg(strSource, other, axis));
    }
    const bool one = std::all_of(bands.begin(), bands.end(), [&](const SpectralBand& band) {
        return isSame(across(band, nAxis).centre, across(bands.first(), nAxis).centre);
    });
    if (!one) {
        throw Failure(
            QStringLiteral("%1: the table says nothing of the %2, and the images have several").arg(strSource, other),
            QStringLiteral("\"spum library template\" writes one with both to fill in, --select takes images "
                           "of one %1")
                .arg(other));
    }
}

QString reachOf(const SpectraTable& table, int nSpectrum)
{
    const auto curve = curveOf(
        table, nSpectrum, [](const SpectraTable::Row&) { return true; }, wavelengthOf);
    return QStringLiteral("%1 to %2 nm").arg(curve.first().x()).arg(curve.last().x());
}

} // namespace

bool curveOverBand(const QVector<QPointF>& curve, double dCentre, double dWidth, double* pValue)
{
    const double from = dCentre - dWidth / 2.0;
    const double to = dCentre + dWidth / 2.0;
    if (curve.isEmpty() || !(from > curve.first().x() - sameWavelength) || !(to < curve.last().x() + sameWavelength)) {
        return false;
    }
    if (dWidth > 0.0 && curve.size() > 1) {
        const double first = std::max(from, curve.first().x());
        const double last = std::min(to, curve.last().x());
        *pValue = (integralTo(curve, last) - integralTo(curve, first)) / (last - first);
        return true;
    }
    const auto upper = std::find_if(curve.begin(), curve.end(),
                                    [=](const QPointF& point) { return point.x() > dCentre - sameWavelength; });
    if (upper == curve.begin() || isSame(upper->x(), dCentre)) {
        *pValue = upper->y();
    } else {
        *pValue = between(*(upper - 1), *upper, dCentre);
    }
    return true;
}

XTNT::Vector<double> tableOnBands(const SpectraTable& table, int nSpectrum, const QList<SpectralBand>& bands, int nAxis,
                                  const QString& strSource)
{
    QVector<QPointF> curve;
    if (!table.hasPairs()) {
        requireOneFilterAcross(table, bands, nAxis, strSource);
        curve = curveOf(
            table, nSpectrum, [](const SpectraTable::Row&) { return true; }, wavelengthOf);
    }
    XTNT::Vector<double> values(bands.size());
    QStringList missing;
    for (int j = 0; j < bands.size(); ++j) {
        const FilterBand& filter = along(bands.at(j), nAxis);
        double value = 0.0;
        const bool there = table.hasPairs()
                               ? valueOfPair(table, nSpectrum, bands.at(j), nAxis, &value)
                               : filter.isKnown() && curveOverBand(curve, filter.centre, filter.width, &value);
        if (!there) {
            missing.append(table.hasPairs() ? pairText(bands.at(j).pair) : bands.at(j).text(nAxis));
        }
        values[j] = value;
    }
    if (!missing.isEmpty()) {
        throw Failure(QStringLiteral("%1: the spectrum \"%2\" has no value for %3%4")
                          .arg(strSource, table.names().at(nSpectrum), missing.join(QStringLiteral(", ")),
                               table.hasPairs() ? QString()
                                                : QStringLiteral("; it reaches from %1, and nothing is extrapolated")
                                                      .arg(reachOf(table, nSpectrum))));
    }
    return values;
}
