// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/ResultPlot.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
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

PlotCurve curveOf(const CORVSpumKyvo& engine, int nComponent, const QString& strOther)
{
    PlotCurve curve;
    QVector<double> x;
    QVector<double> y;
    for (int j = 0; j < engine.m_selectedKeyPairs.size(); ++j) {
        const KeyPair& pair = engine.m_selectedKeyPairs[j];
        if (otherKey(engine, pair) != strOther) {
            continue;
        }
        x.append(keyAlong(engine, pair).toDouble());
        y.append(engine.m_spectra[nComponent][j]);
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

// The table's lightest colours do not show on white.
QColor readable(const QString& strName)
{
    QColor color;
    color.setNamedColor(strName);
    return color.lightness() > 200 ? color.darker(150) : color;
}

// Each value of the other key has a style of its own, as far as there are styles.
Qt::PenStyle lineStyle(int nOther)
{
    constexpr Qt::PenStyle styles[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine, Qt::DashDotDotLine};
    return styles[nOther % 5];
}

} // namespace

SpectrumPlot plotOfSpectra(const CORVSpumKyvo& engine)
{
    const bool temporal = engine.m_eAxis == SPECTRUMAXIS_TIME;
    SpectrumPlot plot(temporal ? QStringLiteral("Time courses") : QStringLiteral("Pure spectra"),
                      axisLabel(engine.m_eAxis), QStringLiteral("relative intensity"));
    QStringList others;
    for (const auto& pair : engine.m_selectedKeyPairs) {
        if (!others.contains(otherKey(engine, pair))) {
            others.append(otherKey(engine, pair));
        }
    }
    for (int k = 0; k < engine.m_spectrumPlots.size(); ++k) {
        const SpectrumSettings& settings = engine.m_spectrumPlots[k]->settings;
        for (int i = 0; i < others.size(); ++i) {
            PlotCurve curve = curveOf(engine, k, others[i]);
            curve.label = others.size() > 1 ? QStringLiteral("%1 (%2)").arg(settings.name, others[i]) : settings.name;
            curve.color = readable(settings.color);
            curve.style = lineStyle(i);
            plot.addCurve(curve);
        }
    }
    return plot;
}
