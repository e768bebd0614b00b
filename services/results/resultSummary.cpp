// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/resultSummary.h"

#include "platform/orvutils/NumberText.h"
#include "services/basis/TextTable.h"
#include "services/basis/jsonNumber.h"
#include "services/basis/jsonSchema.h"
#include "services/results/ResultFacts.h"

#include <QJsonArray>

#include <cmath>

namespace {

void addKnown(const std::optional<double>& value, const char* pKey, QJsonObject& json)
{
    if (value) {
        json.insert(QLatin1String(pKey), jsonNumber(*value));
    }
}

QJsonValue fractionOf(double dPercent)
{
    return jsonNumber(dPercent / 100.0);
}

QJsonObject componentJson(const ComponentFacts& facts)
{
    QJsonObject json{{"name", facts.name},
                     {"color", facts.color},
                     {"map", facts.map},
                     {"share", jsonNumber(facts.share)},
                     {"maximum", jsonNumber(facts.maximum)}};
    if (facts.highPass) {
        json.insert(QStringLiteral("highPass"), jsonWhole(*facts.highPass));
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
    json.insert(QStringLiteral("lackOfFit"), fractionOf(facts.lackOfFit));
    json.insert(QStringLiteral("lackOfFitDenoised"), fractionOf(facts.lackOfFitDenoised));
    json.insert(QStringLiteral("rank"), facts.rank);
    if (facts.principalLackOfFit > 0.0) {
        json.insert(QStringLiteral("principalLackOfFit"), fractionOf(facts.principalLackOfFit));
    }
    if (facts.decayCorrected) {
        json.insert(QStringLiteral("decayCorrected"),
                    QJsonObject{{"isotope", facts.isotope}, {"halfLifeSeconds", facts.halfLifeSeconds}});
    }
}

// A value as a cell: numbers as short as they read back the same, whole ones without an exponent.
QString cellOf(const QJsonValue& value)
{
    constexpr double mostExact = 9007199254740992.0; // 2^53: a double holds every whole number up to it
    if (value.isBool()) {
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    }
    if (!value.isDouble()) {
        return value.toString();
    }
    const double number = value.toDouble();
    return number == std::floor(number) && std::abs(number) <= mostExact ? QString::number(static_cast<qint64>(number))
                                                                         : orv::shortestText(number);
}

QString codesIn(const QJsonArray& warnings)
{
    QStringList codes;
    for (const auto& warning : warnings) {
        codes.append(warning.toObject().value(QStringLiteral("code")).toString());
    }
    codes.removeDuplicates();
    return codes.join(QLatin1Char(' '));
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
        properties.insert(property.first, jsonWhole(property.second));
    }
    QJsonObject json{{"schema", kJsonSchema},
                     {"answer", QStringLiteral("result")},
                     {"sequence", facts.sequence},
                     {"run", facts.run},
                     {"method", facts.method},
                     {"unit", facts.unit},
                     {"images", facts.images},
                     {"width", facts.width},
                     {"height", facts.height},
                     {"binning", facts.binning},
                     {"pixels", static_cast<qint64>(facts.pixels)},
                     {"residual", jsonNumber(facts.residual)},
                     {"explainedVariance", fractionOf(facts.explainedVariance)},
                     {"components", components},
                     {"warnings", jsonOf(facts.warnings)},
                     {"properties", properties},
                     {"files", QJsonArray::fromStringList(files)}};
    addKnown(facts.maskLight, "maskLight", json);
    if (!facts.provenance.isEmpty()) {
        json.insert(QStringLiteral("provenance"), facts.provenance);
    }
    addKnown(facts.condition, "condition", json);
    if (facts.noise) {
        json.insert(QStringLiteral("noiseModel"), facts.noise->json());
    }
    if (facts.refinement) {
        json.insert(QStringLiteral("refinement"), facts.refinement->json());
    }
    facts.above.addTo(json);
    if (facts.automatic) {
        addRun(*facts.automatic, json);
    }
    return json;
}

QStringList resultCsvColumns()
{
    return QStringLiteral(
               "sequence run method unit name map errorMap color share maximum highPass locked standardError "
               "noiseAmplification nameCosine truthName truthCosine truthCorrelation truthRelativeError images "
               "width height binning pixels residual explainedVariance condition rank iterations ending lackOfFit "
               "lackOfFitDenoised principalLackOfFit maskLight noise componentsAboveNoise "
               "componentsAboveNoiseLeast componentsAboveNoiseMost warnings")
        .split(QLatin1Char(' '));
}

QList<QStringList> resultCsvRows(const QJsonObject& summary)
{
    QList<QStringList> rows;
    for (const auto& value : summary.value(QStringLiteral("components")).toArray()) {
        const QJsonObject component = value.toObject();
        QStringList row;
        for (const QString& column : resultCsvColumns()) {
            const QJsonValue own = component.value(column);
            row.append(column == QLatin1String("warnings") ? codesIn(summary.value(column).toArray())
                                                           : cellOf(own.isUndefined() ? summary.value(column) : own));
        }
        rows.append(row);
    }
    return rows;
}

QByteArray resultCsv(const QJsonObject& summary)
{
    TextTable table(resultCsvColumns());
    for (const QStringList& row : resultCsvRows(summary)) {
        table.addRow(row);
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
    if (facts.refinement) {
        text += facts.refinement->text() + QLatin1Char('\n');
    }
    if (!facts.automatic) {
        return text;
    }
    const AutomaticFacts& run = *facts.automatic;
    if (facts.refinement) {
        return text + QStringLiteral("the first resolution: %1 after %2 iterations; lack of fit %3 % of the denoised "
                                     "data\n")
                          .arg(run.ending)
                          .arg(run.iterations)
                          .arg(TextTable::number(run.lackOfFitDenoised, 4));
    }
    return text + QStringLiteral("%1 after %2 iterations; lack of fit %3 % of the data, %4 % of the denoised data\n")
                      .arg(run.ending)
                      .arg(run.iterations)
                      .arg(TextTable::number(run.lackOfFit, 4), TextTable::number(run.lackOfFitDenoised, 4));
}
