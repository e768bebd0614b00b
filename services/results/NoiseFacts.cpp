// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/NoiseFacts.h"

#include "services/basis/TextTable.h"

#include <cmath>

namespace {

constexpr int digits = 3;
// A camera counts some electrons to some hundred as one.
constexpr double mostElectronsPerCount = 1e6;

QString number(double dValue)
{
    return TextTable::number(dValue, digits);
}

// Whether the maps are those of a second fit.
bool isWeighted(const NoiseFacts& facts)
{
    return facts.model != QLatin1String("uniform");
}

} // namespace

QJsonObject NoiseFacts::json() const
{
    QJsonObject json{{"model", model}};
    if (isWeighted(*this) && resolved) {
        json.insert(QStringLiteral("mapsFittedAgain"), true);
    }
    if (electronsPerCount && readNoise && !hidesLight()) {
        json.insert(QStringLiteral("electronsPerCount"), *electronsPerCount);
        json.insert(QStringLiteral("readNoiseElectrons"), *readNoise);
        json.insert(QStringLiteral("estimated"), estimated);
    }
    if (std::isfinite(residualOverNoise)) {
        json.insert(QStringLiteral("residualOverNoise"), residualOverNoise);
    }
    return json;
}

bool NoiseFacts::hidesLight() const
{
    return estimated && electronsPerCount && readNoise && *electronsPerCount > mostElectronsPerCount;
}

QString NoiseFacts::label() const
{
    return modelLabel() + (isWeighted(*this) && resolved
                               ? QStringLiteral("; maps fitted again with the resolved spectra")
                               : QString());
}

QString NoiseFacts::modelLabel() const
{
    if (model != QLatin1String("poisson")) {
        return model == QLatin1String("gaussian") ? QStringLiteral("Gaussian, by image")
                                                  : QStringLiteral("Uniform, by what the fit leaves");
    }
    if (!electronsPerCount || !readNoise) {
        return QStringLiteral("Poisson, by the noise of each image");
    }
    if (hidesLight()) {
        return QStringLiteral("Poisson, not seen beside a read noise of %1 counts (estimated)")
            .arg(number(*readNoise / *electronsPerCount));
    }
    return QStringLiteral("Poisson, %1 e a count, read noise %2 e%3")
        .arg(number(*electronsPerCount), number(*readNoise), estimated ? QStringLiteral(" (estimated)") : QString());
}

QString NoiseFacts::text() const
{
    if (!isWeighted(*this)) {
        return QStringLiteral("standard errors for noise of one size everywhere, as large as what the fit leaves") +
               (resolved ? QStringLiteral(", the resolved spectra taken for certain") : QString());
    }
    const QString again = resolved ? QStringLiteral("maps fitted again with the resolved spectra, ") : QString();
    if (model == QLatin1String("gaussian")) {
        return again + QStringLiteral("each image weighted by its noise");
    }
    QString text = again + QStringLiteral("pixels weighted by the noise of their light");
    if (hidesLight()) {
        text += QStringLiteral(", which is not seen beside a read noise of %1 counts (estimated)")
                    .arg(number(*readNoise / *electronsPerCount));
    } else if (electronsPerCount && readNoise) {
        text += QStringLiteral(", %1 e a count and a read noise of %2 e%3")
                    .arg(number(*electronsPerCount), number(*readNoise),
                         estimated ? QStringLiteral(" (estimated)") : QString());
    }
    if (std::isfinite(residualOverNoise)) {
        text += QStringLiteral("; the residual is %1 times that noise").arg(number(residualOverNoise));
    }
    return text;
}
