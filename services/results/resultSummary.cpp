// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/resultSummary.h"

#include "services/basis/TextTable.h"
#include "services/basis/jsonNumber.h"
#include "services/results/ResultFacts.h"

#include <QJsonArray>

#include <cmath>

namespace {

constexpr int digitsOfCells = 9;

void addKnown(const std::optional<double>& value, const char* pKey, QJsonObject& json)
{
    if (value) {
        json.insert(QLatin1String(pKey), jsonNumber(*value));
    }
}

QJsonObject componentJson(const ComponentFacts& facts)
{
    QJsonObject json{{"name", facts.name},
                     {"color", facts.color},
                     {"map", facts.map},
                     {"share", jsonNumber(facts.share)},
                     {"maximum", jsonNumber(facts.maximum)}};
    if (facts.highPass) {
        json.insert(QStringLiteral("highPass"), *facts.highPass);
    }
    if (facts.locked) {
        json.insert(QStringLiteral("locked"), *facts.locked);
    }
    addKnown(facts.standardError, "standardError", json);
    if (!facts.errorMap.isEmpty()) {
        json.insert(QStringLiteral("errorMap"), facts.errorMap);
    }
    addKnown(facts.amplification, "noiseAmplification", json);
    addKnown(facts.knownCosine, "nameCosine", json);
    if (facts.truth.known) {
        json.insert(QStringLiteral("truthName"), facts.truth.trueName);
        json.insert(QStringLiteral("truthCosine"), jsonNumber(facts.truth.cosine));
        json.insert(QStringLiteral("truthCorrelation"), jsonNumber(facts.truth.correlation));
        json.insert(QStringLiteral("truthRelativeError"), jsonNumber(facts.truth.relativeError));
    }
    return json;
}

void addRun(const AutomaticFacts& facts, QJsonObject& json)
{
    json.insert(QStringLiteral("iterations"), facts.iterations);
    json.insert(QStringLiteral("ending"), facts.ending);
    json.insert(QStringLiteral("lackOfFit"), jsonNumber(facts.lackOfFit));
    json.insert(QStringLiteral("lackOfFitDenoised"), jsonNumber(facts.lackOfFitDenoised));
    json.insert(QStringLiteral("rank"), facts.rank);
    if (facts.principalLackOfFit > 0.0) {
        json.insert(QStringLiteral("principalLackOfFit"), jsonNumber(facts.principalLackOfFit));
    }
    if (facts.decayCorrected) {
        json.insert(QStringLiteral("decayCorrected"),
                    QJsonObject{{"isotope", facts.isotope}, {"halfLifeSeconds", facts.halfLifeSeconds}});
    }
}

QString cell(double dValue)
{
    return std::isfinite(dValue) ? TextTable::number(dValue, digitsOfCells) : QString();
}

QStringList cellsOf(const ComponentFacts& facts)
{
    QStringList row = {facts.name, cell(facts.share), cell(facts.maximum), facts.highPass.value_or(QString())};
    if (facts.truth.known) {
        row << facts.truth.trueName << cell(facts.truth.cosine) << cell(facts.truth.correlation)
            << cell(facts.truth.relativeError);
    } else {
        row << QString() << QString() << QString() << QString();
    }
    return row;
}

QStringList cellsOfTrust(const ComponentFacts& facts, const QList<RunWarning>& warnings)
{
    const auto known = [](const std::optional<double>& value) { return value ? cell(*value) : QString(); };
    return {known(facts.standardError), known(facts.amplification), known(facts.knownCosine),
            codesOf(warnings).join(QLatin1Char(' '))};
}

QStringList cellsOfRun(const ResultFacts& facts)
{
    QStringList row = {cell(facts.residual), cell(facts.explainedVariance)};
    if (facts.automatic) {
        row << cell(facts.automatic->iterations) << facts.automatic->ending << cell(facts.automatic->lackOfFit)
            << cell(facts.automatic->lackOfFitDenoised);
    } else {
        row << QString() << QString() << QString() << QString();
    }
    return row;
}

// For people; the columns of a truth only where there is one.
QString tableText(const ResultFacts& facts)
{
    const bool known = facts.hasTruth();
    const bool renamed = facts.isRenamed();
    QStringList header = {QStringLiteral("component"), QStringLiteral("share [%]"), QStringLiteral("maximum")};
    if (facts.automatic) {
        header << QStringLiteral("high pass");
    }
    if (known && renamed) {
        header << QStringLiteral("truth");
    }
    if (known) {
        header << QStringLiteral("cosine") << QStringLiteral("correlation") << QStringLiteral("rel. error");
    }
    TextTable table(header);
    for (const ComponentFacts& component : facts.components) {
        const TrueComparison& truth = component.truth;
        QStringList row = {component.name, TextTable::number(component.share * 100.0, 4),
                           TextTable::number(component.maximum, 5)};
        if (facts.automatic) {
            row << component.highPass.value_or(QStringLiteral("-"));
        }
        if (known && renamed) {
            row << (truth.known ? truth.trueName : QStringLiteral("-"));
        }
        if (truth.known) {
            row << TextTable::number(truth.cosine, 5) << TextTable::number(truth.correlation, 5)
                << TextTable::number(truth.relativeError, 3);
        }
        table.addRow(row);
    }
    return table.toText();
}

} // namespace

QJsonObject resultJson(const ResultFacts& facts, const QStringList& files)
{
    QJsonArray components;
    for (const ComponentFacts& component : facts.components) {
        components.append(componentJson(component));
    }
    QJsonObject properties;
    for (const auto& property : facts.properties) {
        properties.insert(property.first, property.second);
    }
    QJsonObject json{{"method", facts.method},
                     {"unit", facts.unit},
                     {"images", facts.images},
                     {"width", facts.width},
                     {"height", facts.height},
                     {"binning", facts.binning},
                     {"pixels", static_cast<qint64>(facts.pixels)},
                     {"residual", jsonNumber(facts.residual)},
                     {"explainedVariance", jsonNumber(facts.explainedVariance)},
                     {"components", components},
                     {"warnings", jsonOf(facts.warnings)},
                     {"properties", properties},
                     {"files", QJsonArray::fromStringList(files)}};
    addKnown(facts.maskLight, "maskLight", json);
    addKnown(facts.condition, "condition", json);
    if (facts.noise) {
        json.insert(QStringLiteral("noiseModel"), facts.noise->json());
    }
    facts.above.addTo(json);
    if (facts.automatic) {
        addRun(*facts.automatic, json);
    }
    return json;
}

QStringList resultCsvColumns()
{
    return {QStringLiteral("component"),      QStringLiteral("share"),
            QStringLiteral("maximum"),        QStringLiteral("high pass"),
            QStringLiteral("truth"),          QStringLiteral("cosine"),
            QStringLiteral("correlation"),    QStringLiteral("relative error"),
            QStringLiteral("residual"),       QStringLiteral("explained variance"),
            QStringLiteral("iterations"),     QStringLiteral("ending"),
            QStringLiteral("lack of fit"),    QStringLiteral("lack of fit denoised"),
            QStringLiteral("standard error"), QStringLiteral("noise amplification"),
            QStringLiteral("name cosine"),    QStringLiteral("warning codes")};
}

QByteArray resultCsv(const ResultFacts& facts)
{
    TextTable table(resultCsvColumns());
    for (const ComponentFacts& component : facts.components) {
        table.addRow(cellsOf(component) + cellsOfRun(facts) + cellsOfTrust(component, facts.warnings));
    }
    return table.toCsv().toUtf8();
}

QString resultText(const ResultFacts& facts)
{
    QString text =
        QStringLiteral("%1, %2 images of %3 x %4 pixels at binning %5, %6 of %7 pixels analysed%8\n\n%9\n"
                       "residual %10 % of the data's norm, %11 % of the variance explained; ")
            .arg(facts.unit)
            .arg(facts.images)
            .arg(facts.width)
            .arg(facts.height)
            .arg(facts.binning)
            .arg(facts.pixels)
            .arg(static_cast<qint64>(facts.width) * facts.height)
            .arg(facts.maskLight
                     ? QStringLiteral(", with %1 % of the light").arg(TextTable::number(*facts.maskLight * 100.0, 3))
                     : QString(),
                 tableText(facts), TextTable::number(facts.residual * 100.0, 4),
                 TextTable::number(facts.explainedVariance, 6));
    text += QStringLiteral("the fit took %1 s\n").arg(TextTable::number(facts.seconds, 3));
    if (facts.noise) {
        text += facts.noise->text() + QLatin1Char('\n');
    }
    if (!facts.automatic) {
        return text;
    }
    const AutomaticFacts& run = *facts.automatic;
    return text + QStringLiteral("%1 after %2 iterations; lack of fit %3 % of the data, %4 % of the denoised data\n")
                      .arg(run.ending)
                      .arg(run.iterations)
                      .arg(TextTable::number(run.lackOfFit, 4), TextTable::number(run.lackOfFitDenoised, 4));
}
