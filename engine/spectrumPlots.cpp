// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/spectrumPlots.h"

#include "XTNT/xtnt_assert.h"
#include "spectra/DefaultColors.h"
#include "spectra/SpectrumPlotParams.h"

#include <QtAlgorithms>

namespace {

QVector<SpectrumPoint> pointsOf(const double* pValues, const QList<KeyPair>& selection)
{
    QVector<SpectrumPoint> points;
    points.reserve(selection.size());
    for (int k = 0; k < selection.size(); ++k) {
        points.append({selection.at(k).first, selection.at(k).second, pValues[k]});
    }
    return points;
}

SpectrumPlotParams* newPlot(int eAxis, int i, const QString& strLabel)
{
    auto* pPlot = new SpectrumPlotParams;
    pPlot->axis = eAxis;
    pPlot->settings.index = i;
    pPlot->settings.name = strLabel;
    pPlot->settings.color = defaultSpectrumColor(i);
    return pPlot;
}

} // namespace

QString plotLabel(const QStringList& labels, int i, int n)
{
    return labels.size() == n ? labels.at(i) : QStringLiteral("UMX%1").arg(i + 1);
}

void updateSpectrumPlots(QList<SpectrumPlotParams*>& plots, const XTNT::Matrix<double>& spectra,
                         const QList<KeyPair>& selection, int eAxis, const QStringList& labels)
{
    const int nComponents = static_cast<int>(spectra.num_rows());
    XTNT_ASSERT(nComponents == 0 || spectra.num_cols() == selection.size());
    const bool bFresh = plots.size() != nComponents;
    if (bFresh) {
        qDeleteAll(plots);
        plots.clear();
        for (int i = 0; i < nComponents; ++i) {
            plots.append(newPlot(eAxis, i, plotLabel(labels, i, nComponents)));
        }
    }
    for (int i = 0; i < nComponents; ++i) {
        plots.at(i)->points = pointsOf(spectra[i], selection);
    }
}
