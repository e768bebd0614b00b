// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/ResultPlot.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/keySelection.h"
#include "services/basis/ChannelLabels.h"
#include "services/basis/ModeNames.h"
#include "spectra/SpectrumPlotParams.h"

#include <algorithm>
#include <numeric>

namespace {

const QString& keyAlong(const CORVSpumKyvo& engine, const KeyPair& pair)
{
    return engine.m_eAxis == SPECTRUMAXIS_EXCITATION ? pair.first : pair.second;
}

const QString& otherKey(const CORVSpumKyvo& engine, const KeyPair& pair)
{
    return engine.m_eAxis == SPECTRUMAXIS_EXCITATION ? pair.second : pair.first;
}

double placeAlong(const CORVSpumKyvo& engine, const KeyPair& pair)
{
    QString key = keyAlong(engine, pair);
    if (engine.m_eAxis != SPECTRUMAXIS_TIME) {
        wavelengthDigits(key);
    }
    return key.toDouble();
}

// Seconds up to ten minutes, minutes up to three hours, then hours: axes with numbers that are easily read.
struct TimeUnit
{
    double seconds = 1.0;
    QString name;
};

TimeUnit timeUnitOf(const CORVSpumKyvo& engine)
{
    double latest = 0.0;
    for (const KeyPair& pair : engine.m_selectedKeyPairs) {
        latest = std::max(latest, placeAlong(engine, pair));
    }
    if (latest <= 600.0) {
        return {1.0, QStringLiteral("s")};
    }
    return latest <= 3.0 * 3600.0 ? TimeUnit{60.0, QStringLiteral("min")} : TimeUnit{3600.0, QStringLiteral("h")};
}

// Whether no interval begins before the one ahead of it has ended: then time runs through all of them, and so does a
// curve.
bool timeRunsOn(const CORVSpumKyvo& engine)
{
    QList<KeyPair> pairs = engine.m_selectedKeyPairs;
    std::stable_sort(pairs.begin(), pairs.end(), [&engine](const KeyPair& a, const KeyPair& b) {
        return placeAlong(engine, a) < placeAlong(engine, b);
    });
    QStringList begun;
    for (int i = 0; i < pairs.size(); ++i) {
        const QString& interval = pairs[i].first;
        if (begun.isEmpty() || begun.last() != interval) {
            if (begun.contains(interval)) {
                return false;
            }
            begun.append(interval);
        }
        if (i > 0 && placeAlong(engine, pairs[i]) == placeAlong(engine, pairs[i - 1])) {
            return false;
        }
    }
    return true;
}

// The values of the other key, each of which has a line of its own: a spectrum is broken where the excitation changes.
// A null one stands for all images.
QStringList linesOf(const CORVSpumKyvo& engine)
{
    if (engine.m_eAxis == SPECTRUMAXIS_TIME && timeRunsOn(engine)) {
        return {QString()};
    }
    QStringList others;
    for (const auto& pair : engine.m_selectedKeyPairs) {
        if (!others.contains(otherKey(engine, pair))) {
            others.append(otherKey(engine, pair));
        }
    }
    return others;
}

PlotCurve curveOf(const CORVSpumKyvo& engine, const ChannelLabels& channels, const std::vector<double>& values,
                  const QString& strOther, double dUnit)
{
    PlotCurve curve;
    QVector<double> x;
    QVector<double> y;
    for (int j = 0; j < engine.m_selectedKeyPairs.size(); ++j) {
        const KeyPair& pair = engine.m_selectedKeyPairs[j];
        if (!strOther.isNull() && otherKey(engine, pair) != strOther) {
            continue;
        }
        x.append(channels.isEmpty() ? placeAlong(engine, pair) / dUnit : channels.place(pair));
        y.append(values[static_cast<std::size_t>(j)]);
    }
    QVector<int> order(x.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&x](int a, int b) { return x[a] < x[b]; });
    for (const int i : order) {
        curve.x.append(x[i]);
        curve.y.append(y[i]);
    }
    return curve;
}

QVector<PlotName> namesOf(const CORVSpumKyvo& engine, const ChannelLabels& channels)
{
    QVector<PlotName> names;
    for (const KeyPair& pair : engine.m_selectedKeyPairs) {
        names.append({channels.place(pair), channels.label(pair)});
    }
    return names;
}

// The table's lightest colours do not show on white.
QColor readable(const QColor& color)
{
    return color.lightness() > 200 ? color.darker(150) : color;
}

// Each value of the other key has a style of its own, as far as there are styles; with more values than that the width
// of the line goes on telling them apart.
void takeLineStyle(int nLine, PlotCurve& curve)
{
    constexpr Qt::PenStyle styles[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine, Qt::DashDotDotLine};
    constexpr double narrower = 0.6;
    curve.style = styles[nLine % 5];
    curve.width = nLine < 5 ? curve.width : curve.width * narrower;
}

PlotMarker markerOf(int nComponent)
{
    constexpr PlotMarker markers[] = {PlotMarker::Circle,  PlotMarker::Square, PlotMarker::Triangle,
                                      PlotMarker::Diamond, PlotMarker::Cross,  PlotMarker::Star};
    return markers[nComponent % 6];
}

QString lineText(const CORVSpumKyvo& engine, QString strOther)
{
    if (engine.m_eAxis == SPECTRUMAXIS_TIME) {
        return strOther;
    }
    const QString unit = wavelengthDigits(strOther) ? QStringLiteral(" nm") : QString();
    return (engine.m_eAxis == SPECTRUMAXIS_EXCITATION ? QStringLiteral("em ") : QStringLiteral("ex ")) + strOther +
           unit;
}

QString plotAxisLabel(const CORVSpumKyvo& engine, const ChannelLabels& channels, const TimeUnit& unit)
{
    if (!channels.isEmpty()) {
        return channels.axisText();
    }
    return engine.m_eAxis == SPECTRUMAXIS_TIME
               ? axisLabel(engine.m_eAxis).replace(QStringLiteral("[s]"), QStringLiteral("[%1]").arg(unit.name))
               : axisLabel(engine.m_eAxis);
}

} // namespace

SpectrumPlot plotOverImages(const CORVSpumKyvo& engine, const QString& strTitle, const QString& strYLabel,
                            const QList<ValuesOverImages>& all)
{
    const ChannelLabels channels(engine);
    const TimeUnit time = engine.m_eAxis == SPECTRUMAXIS_TIME ? timeUnitOf(engine) : TimeUnit();
    SpectrumPlot plot(strTitle, plotAxisLabel(engine, channels, time), strYLabel);
    if (!channels.isEmpty() && channels.areNumbers()) {
        plot.setXNames(namesOf(engine, channels));
    }
    const QStringList lines = linesOf(engine);
    for (int k = 0; k < all.size(); ++k) {
        for (int i = 0; i < lines.size(); ++i) {
            PlotCurve curve = curveOf(engine, channels, all[k].values, lines[i], time.seconds);
            curve.label = i == 0 ? all[k].name : QString();
            curve.color = readable(all[k].color);
            curve.marker = markerOf(k);
            takeLineStyle(i, curve);
            plot.addCurve(curve);
        }
    }
    for (int i = 0; i < lines.size() && lines.size() > 1; ++i) {
        PlotCurve key;
        key.label = lineText(engine, lines[i]);
        key.color = Qt::black;
        key.marker = PlotMarker::None;
        takeLineStyle(i, key);
        plot.addCurve(key);
    }
    return plot;
}

SpectrumPlot plotOfSpectra(const CORVSpumKyvo& engine, const QList<QColor>& colors)
{
    const bool temporal = engine.m_eAxis == SPECTRUMAXIS_TIME;
    QList<ValuesOverImages> all;
    for (int k = 0; k < engine.m_spectrumPlots.size(); ++k) {
        const double* values = engine.m_spectra[k];
        all.append({engine.m_spectrumPlots[k]->settings.name, colors.value(k),
                    std::vector<double>(values, values + engine.m_spectra.num_cols())});
    }
    return plotOverImages(engine, temporal ? QStringLiteral("Time courses") : QStringLiteral("Pure spectra"),
                          QStringLiteral("relative intensity"), all);
}
