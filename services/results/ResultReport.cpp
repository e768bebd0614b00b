// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultReport.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVPreference.h"
#include "platform/orvimage/pngBytes.h"
#include "services/basis/ChannelLabels.h"
#include "services/basis/TextTable.h"
#include "services/pictures/ResultPlot.h"
#include "services/results/ResultFacts.h"
#include "services/session/PairSelection.h"
#include "spectra/SpectrumPlotParams.h"

#include <QColor>
#include <QImage>
#include <QMap>
#include <QPainter>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

const QSize plotSize(1100, 620);

// Twice the points of a screen, for paper.
QImage printedPlot(const SpectrumPlot& plot)
{
    constexpr int finer = 2;
    QImage image(plot.pageSize(plotSize) * finer, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(finer, finer);
    plot.draw(painter, plotSize);
    return image;
}

ReportFigure figureOf(const SpectrumPlot& plot, const QString& strTitle)
{
    ReportFigure figure;
    figure.title = strTitle;
    figure.png = orvimage::pngBytes(printedPlot(plot));
    figure.svg = plot.toSvg(plotSize);
    figure.size = plot.pageSize(plotSize);
    figure.paint = [plot](QPainter& painter) { plot.draw(painter, plotSize); };
    return figure;
}

QString numberOf(double dValue, int nDigits)
{
    return std::isfinite(dValue) ? TextTable::number(dValue, nDigits) : QStringLiteral("-");
}

QString percent(double dValue, int nDigits)
{
    return std::isfinite(dValue) ? QStringLiteral("%1 %").arg(TextTable::number(dValue, nDigits)) : QStringLiteral("-");
}

QString capitalised(QString strText)
{
    return strText.isEmpty() ? strText : strText.replace(0, 1, strText.at(0).toUpper());
}

QList<QPair<QString, QString>> factRows(const ResultFacts& facts)
{
    QList<QPair<QString, QString>> rows = {
        {QStringLiteral("Method"), capitalised(facts.method)},
        {QStringLiteral("Variance explained"), percent(facts.explainedVariance, 6)},
        {QStringLiteral("Residual of the data's norm"), percent(facts.residual * 100.0, 4)},
        {QStringLiteral("Components"), QString::number(facts.components.size())},
        {QStringLiteral("Images"), QString::number(facts.images)},
        {QStringLiteral("Pixels analysed"),
         QStringLiteral("%1 of %2").arg(facts.pixels).arg(static_cast<qint64>(facts.width) * facts.height)},
        {QStringLiteral("Size"),
         QStringLiteral("%1 x %2, binning %3").arg(facts.width).arg(facts.height).arg(facts.binning)},
        {QStringLiteral("Unit"), facts.unit}};
    if (facts.maskLight) {
        rows.append({QStringLiteral("Light in the mask"), percent(*facts.maskLight * 100.0, 3)});
    }
    if (facts.spots > 1) {
        rows.append({QStringLiteral("Scan spots"), QString::number(facts.spots)});
    }
    if (facts.noise) {
        rows.append({QStringLiteral("Noise"), facts.noise->label()});
        if (std::isfinite(facts.noise->residualOverNoise)) {
            rows.append({QStringLiteral("Residual over noise"), numberOf(facts.noise->residualOverNoise, 3)});
        }
    }
    if (facts.refinement) {
        rows.append({QStringLiteral("Refinement"), facts.refinement->text()});
    }
    if (facts.condition && !facts.automatic) {
        rows.append({QStringLiteral("Condition of the spectra"), numberOf(*facts.condition, 3)});
    }
    if (!facts.automatic) {
        return rows;
    }
    const AutomaticFacts& run = *facts.automatic;
    // The lack of fit of what was refined is its residual.
    const QString first = facts.refinement ? QStringLiteral(" of the first resolution") : QString();
    rows.append({QStringLiteral("Ending") + first,
                 QStringLiteral("%1 after %2 iterations").arg(run.ending).arg(run.iterations)});
    if (!facts.refinement) {
        rows.append({QStringLiteral("Lack of fit"), percent(run.lackOfFit, 4)});
    }
    rows.append({QStringLiteral("Lack of fit%1, denoised data").arg(first), percent(run.lackOfFitDenoised, 4)});
    return rows;
}

// Where a spectrum is largest: "675nm / 780nm", a channel's name, a time's key alone where the other is empty.
QString peakOf(const CORVSpumKyvo& engine, const ChannelLabels& channels, int nComponent)
{
    const XTNT::Vector<double> spectrum = engine.m_spectra.row(nComponent);
    int best = -1;
    for (int k = 0; k < static_cast<int>(spectrum.size()) && k < engine.m_selectedKeyPairs.size(); ++k) {
        if (best < 0 || spectrum[k] > spectrum[best]) {
            best = k;
        }
    }
    if (best < 0) {
        return QStringLiteral("-");
    }
    const KeyPair& pair = engine.m_selectedKeyPairs[best];
    if (!channels.isEmpty()) {
        return pairText(pair, channels);
    }
    if (engine.m_eAxis == SPECTRUMAXIS_TIME) {
        return pair.second + QStringLiteral(" s");
    }
    return pair.first.isEmpty() ? pair.second : pair.first + QStringLiteral(" / ") + pair.second;
}

ReportTable componentTable(const CORVSpumKyvo& engine, const ResultFacts& facts)
{
    const bool truth = facts.hasTruth();
    const bool bound = facts.hasHighPass();
    const bool named = facts.hasKnownCosine();
    const bool errors = std::any_of(facts.components.begin(), facts.components.end(),
                                    [](const ComponentFacts& c) { return c.standardError.has_value(); });
    ReportTable table;
    table.header = QStringList{QStringLiteral("Component"), QStringLiteral("Share of the signal"),
                               QStringLiteral("Largest value"), QStringLiteral("Peak")};
    if (bound) {
        table.header << QStringLiteral("High pass");
    }
    if (errors) {
        table.header << QStringLiteral("Standard error");
    }
    if (named) {
        table.header << QStringLiteral("Like its name");
    }
    if (truth) {
        table.header << QStringLiteral("Truth") << QStringLiteral("Cosine") << QStringLiteral("Correlation")
                     << QStringLiteral("Rel. error");
    }
    const QString none = QStringLiteral("-");
    const ChannelLabels channels(engine);
    for (int i = 0; i < facts.components.size(); ++i) {
        const ComponentFacts& component = facts.components[i];
        QStringList row = {component.name, percent(component.share * 100.0, 4), numberOf(component.maximum, 5),
                           peakOf(engine, channels, i)};
        if (bound) {
            row << component.highPass.value_or(none);
        }
        if (errors) {
            row << (component.standardError ? numberOf(*component.standardError, 3) : none);
        }
        if (named) {
            row << (component.knownCosine ? numberOf(*component.knownCosine, 4) : none);
        }
        if (truth && component.truth.known) {
            row << component.truth.trueName << numberOf(component.truth.cosine, 5)
                << numberOf(component.truth.correlation, 5) << numberOf(component.truth.relativeError, 3);
        } else if (truth) {
            row << none << none << none << none;
        }
        table.rows.append(row);
        table.colors.append(component.color);
    }
    return table;
}

ReportTable propertyTable(const CORVSpumKyvo& engine, const ResultFacts& facts)
{
    ReportTable table;
    table.title = QStringLiteral("Properties of the result");
    for (const auto& property : facts.properties) {
        table.rows.append({property.first, property.second});
    }
    if (engine.m_bCherenkov) {
        table.rows.append({QStringLiteral("Decay correction"),
                           engine.m_bDecayApplied ? QStringLiteral("applied") : QStringLiteral("not applied")});
        if (engine.m_bDecayApplied) {
            table.rows.append({engine.m_strIsotope.isEmpty() ? QStringLiteral("Half life") : engine.m_strIsotope,
                               QStringLiteral("half life %1 min").arg(engine.m_dHalfLifeSec / 60.0)});
        }
    }
    return table;
}

ReportTable parameterTable(const MCRParams& params)
{
    ReportTable table;
    table.title = QStringLiteral("Curve resolution");
    table.rows = {{QStringLiteral("Largest number of iterations"), QString::number(params.MaxIterations)},
                  {QStringLiteral("Weighting mode"), QString::number(params.WeightingMode)},
                  {QStringLiteral("Normalization"), QString::number(params.Normalization)},
                  {QStringLiteral("Non-negativity mode"), QString::number(params.NonNegMode)},
                  {QStringLiteral("Unimodality tolerance"), QStringLiteral("%1 %").arg(params.UnimodTol)},
                  {QStringLiteral("Extra principal components"), QString::number(params.DenoisePCA)}};
    return table;
}

ReportTable constraintTable(const CORVSpumKyvo& engine)
{
    ReportTable table;
    table.title = QStringLiteral("Constraints");
    table.header =
        QStringList{QStringLiteral("Component"), QStringLiteral("Initial guess"), QStringLiteral("Unimodality"),
                    QStringLiteral("High pass"), QStringLiteral("Low pass"),      QStringLiteral("Locked")};
    const auto& constraints = engine.m_lastParams.Constraints;
    for (int i = 0; i < constraints.size() && i < engine.m_spectrumPlots.size(); ++i) {
        table.rows.append({engine.m_spectrumPlots[i]->settings.name, constraints[i].InitGuess,
                           constraints[i].Unimodality, constraints[i].HighPass, constraints[i].LowPass,
                           constraints[i].Locked ? QStringLiteral("yes") : QStringLiteral("no")});
    }
    return table;
}

// The images as the selection names them, shortened to a line for each value of the other key.
ReportTable selectionTable(const CORVSpumKyvo& engine)
{
    ReportTable table;
    table.title = QStringLiteral("Images");
    const ChannelLabels channels(engine);
    if (!channels.isEmpty()) {
        QStringList texts;
        for (const KeyPair& pair : engine.m_selectedKeyPairs) {
            texts.append(pairText(pair, channels));
        }
        table.rows.append({QStringLiteral("Channels"), texts.join(QStringLiteral(", "))});
        return table;
    }
    QStringList order;
    QMap<QString, QStringList> groups;
    const bool byEmission = engine.m_eAxis != SPECTRUMAXIS_EXCITATION;
    for (const KeyPair& pair : engine.m_selectedKeyPairs) {
        const QString group = byEmission ? pair.first : pair.second;
        if (!groups.contains(group)) {
            order.append(group);
        }
        groups[group].append(byEmission ? pair.second : pair.first);
    }
    for (const QString& group : qAsConst(order)) {
        table.rows.append({group.isEmpty() ? QStringLiteral("all") : group, groups[group].join(QStringLiteral(", "))});
    }
    return table;
}

} // namespace

QString shellLine(const QStringList& arguments)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
    QStringList words;
    for (const QString& argument : arguments) {
        if (plain.match(argument).hasMatch()) {
            words.append(argument);
            continue;
        }
        QString quoted = argument;
        quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
        words.append(QLatin1Char('\'') + quoted + QLatin1Char('\''));
    }
    return words.join(QLatin1Char(' '));
}

ReportContent contentOfReport(const CORVSpumKyvo& engine, const ResultFacts& facts, const ReportFrame& frame)
{
    ReportContent content;
    content.title = engine.getAnalysisName();
    content.subtitle = frame.sequenceName;
    content.note = frame.note;
    content.warnings = sentencesOf(facts.warnings);
    content.facts = factRows(facts);
    content.composites = frame.composites;
    content.maps = frame.maps;
    QList<QColor> colors;
    for (const ComponentFacts& component : facts.components) {
        colors.append(QColor(component.color));
    }
    content.plots.append(figureOf(plotOfSpectra(engine, colors), engine.m_eAxis == SPECTRUMAXIS_TIME
                                                                     ? QStringLiteral("Time courses")
                                                                     : QStringLiteral("Pure spectra")));
    for (const SpectrumPlot& plot : frame.plots) {
        content.plots.append(figureOf(plot, QStringLiteral("What no component explains")));
    }
    content.components = componentTable(engine, facts);
    content.tables.append(propertyTable(engine, facts));
    if (engine.m_eMode == RUNMODE_AUTOMATIC) {
        content.tables.append(parameterTable(engine.m_lastParams));
        content.tables.append(constraintTable(engine));
    }
    content.tables.append(selectionTable(engine));
    content.command = frame.command;
    content.program = QStringLiteral("spum %1").arg(CORVPreference::getAppVersion());
    if (!frame.made.isEmpty()) {
        content.program += QStringLiteral(", ") + frame.made;
    }
    return content;
}
