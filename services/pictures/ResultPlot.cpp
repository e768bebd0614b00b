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

constexpr double broadLine = 6.0; // of a curve that lies beneath the others

const QString& keyAlong(const PlottedImages& images, const KeyPair& pair)
{
    return images.axis == SPECTRUMAXIS_EXCITATION ? pair.first : pair.second;
}

const QString& otherKey(const PlottedImages& images, const KeyPair& pair)
{
    return images.axis == SPECTRUMAXIS_EXCITATION ? pair.second : pair.first;
}

double placeAlong(const PlottedImages& images, const KeyPair& pair)
{
    QString key = keyAlong(images, pair);
    if (images.axis != SPECTRUMAXIS_TIME) {
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

TimeUnit timeUnitOf(const PlottedImages& images)
{
    double latest = 0.0;
    for (const KeyPair& pair : images.pairs) {
        latest = std::max(latest, placeAlong(images, pair));
    }
    if (latest <= 600.0) {
        return {1.0, QStringLiteral("s")};
    }
    return latest <= 3.0 * 3600.0 ? TimeUnit{60.0, QStringLiteral("min")} : TimeUnit{3600.0, QStringLiteral("h")};
}

// Whether no interval begins before the one ahead of it has ended: then time runs through all of them, and so does a
// curve.
bool timeRunsOn(const PlottedImages& images)
{
    QList<KeyPair> pairs = images.pairs;
    std::stable_sort(pairs.begin(), pairs.end(), [&images](const KeyPair& a, const KeyPair& b) {
        return placeAlong(images, a) < placeAlong(images, b);
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
        if (i > 0 && placeAlong(images, pairs[i]) == placeAlong(images, pairs[i - 1])) {
            return false;
        }
    }
    return true;
}

// The values of the other key, each of which has a line of its own: a spectrum is broken where the excitation changes.
// A null one stands for all images.
QStringList linesOf(const PlottedImages& images)
{
    if (images.axis == SPECTRUMAXIS_TIME && timeRunsOn(images)) {
        return {QString()};
    }
    QStringList others;
    for (const auto& pair : images.pairs) {
        if (!others.contains(otherKey(images, pair))) {
            others.append(otherKey(images, pair));
        }
    }
    return others;
}

// Those of a line, in the order of their places.
void takePoints(const PlottedImages& images, const std::vector<double>& values, const QString& strOther, double dUnit,
                PlotCurve& curve)
{
    QVector<double> x;
    QVector<double> y;
    for (int j = 0; j < images.pairs.size(); ++j) {
        const KeyPair& pair = images.pairs[j];
        if (!strOther.isNull() && otherKey(images, pair) != strOther) {
            continue;
        }
        x.append(images.channels.isEmpty() ? placeAlong(images, pair) / dUnit : images.channels.place(pair));
        y.append(values[static_cast<std::size_t>(j)]);
    }
    QVector<int> order(x.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&x](int a, int b) { return x[a] < x[b]; });
    for (const int i : order) {
        curve.x.append(x[i]);
        curve.y.append(y[i]);
    }
}

QVector<PlotName> namesOf(const PlottedImages& images)
{
    QVector<PlotName> names;
    for (const KeyPair& pair : images.pairs) {
        names.append({images.channels.place(pair), images.channels.label(pair)});
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

QString lineText(const PlottedImages& images, QString strOther)
{
    if (images.axis == SPECTRUMAXIS_TIME) {
        return strOther;
    }
    const QString unit = wavelengthDigits(strOther) ? QStringLiteral(" nm") : QString();
    return (images.axis == SPECTRUMAXIS_EXCITATION ? QStringLiteral("em ") : QStringLiteral("ex ")) + strOther + unit;
}

QString plotAxisLabel(const PlottedImages& images, const TimeUnit& unit)
{
    if (!images.channels.isEmpty()) {
        return images.channels.axisText();
    }
    return images.axis == SPECTRUMAXIS_TIME
               ? axisLabel(images.axis).replace(QStringLiteral("[s]"), QStringLiteral("[%1]").arg(unit.name))
               : axisLabel(images.axis);
}

} // namespace

PlottedImages PlottedImages::of(const CORVSpumKyvo& engine)
{
    return {engine.m_selectedKeyPairs, engine.m_eAxis, ChannelLabels(engine)};
}

PlottedImages PlottedImages::of(const CORVSpumKyvo& engine, const QList<KeyPair>& pairs)
{
    QList<KeyPair> trial = pairs;
    const SelectionCheck check = checkSelection(trial, engine.m_eSeqKind == SEQKIND_TEMPORAL);
    return {pairs, check.result == SelectionCheck::Unusable ? engine.m_eAxis : check.axis, ChannelLabels(engine)};
}

QList<PlotCurve> linesInLegend(const PlottedImages& images)
{
    QList<PlotCurve> keys;
    const QStringList lines = linesOf(images);
    for (int i = 0; i < lines.size() && lines.size() > 1; ++i) {
        PlotCurve key;
        key.label = lineText(images, lines[i]);
        key.color = Qt::black;
        key.marker = PlotMarker::None;
        takeLineStyle(i, key);
        keys.append(key);
    }
    return keys;
}

PlotCurve curveInLegend(const ValuesOverImages& values, int nPlace)
{
    PlotCurve curve;
    curve.label = values.name;
    curve.color = readable(values.color);
    curve.marker = values.beneath ? PlotMarker::None : markerOf(nPlace);
    curve.width = values.beneath ? broadLine : curve.width;
    return curve;
}

SpectrumPlot plotOverImages(const PlottedImages& images, const QString& strTitle, const QString& strYLabel,
                            const QList<ValuesOverImages>& all)
{
    const TimeUnit time = images.axis == SPECTRUMAXIS_TIME ? timeUnitOf(images) : TimeUnit();
    SpectrumPlot plot(strTitle, plotAxisLabel(images, time), strYLabel);
    if (!images.channels.isEmpty() && images.channels.areNumbers()) {
        plot.setXNames(namesOf(images));
    }
    const QStringList lines = linesOf(images);
    for (int k = 0; k < all.size(); ++k) {
        for (int i = 0; i < lines.size() && !all[k].values.empty(); ++i) {
            PlotCurve curve = curveInLegend(all[k], k);
            takePoints(images, all[k].values, lines[i], time.seconds, curve);
            curve.label = i == 0 ? curve.label : QString();
            takeLineStyle(i, curve);
            plot.addCurve(curve);
        }
    }
    for (const PlotCurve& key : linesInLegend(images)) {
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
    return plotOverImages(PlottedImages::of(engine),
                          temporal ? QStringLiteral("Time courses") : QStringLiteral("Pure spectra"),
                          QStringLiteral("relative intensity"), all);
}
