// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/PreparedImage.h"

#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvutils/NumberText.h"

#include <cmath>

void PreparedImage::write(CPLSection& section) const
{
    const auto set = [&section](const char* pKey, const QString& strValue) {
        section.setValue(QString::fromLatin1(pKey), strValue);
    };
    if (!projection.isEmpty()) {
        set(ClickKeys::kProjection, projection);
    }
    if (isSubtracted()) {
        set(ClickKeys::kBackgroundCorrected, QStringLiteral("1"));
        set(ClickKeys::kNegativePixels, QString::number(negatives));
    }
    if (!dark.isEmpty()) {
        set(ClickKeys::kDarkImage, dark.simplified());
    }
    if (background) {
        set(ClickKeys::kBackgroundLevel, orv::shortestText(*background));
        set(ClickKeys::kBackgroundRule, rule);
    }
}

QJsonObject PreparedImage::json() const
{
    QJsonObject json;
    if (!projection.isEmpty()) {
        json.insert(QStringLiteral("projection"), projection);
    }
    if (!dark.isEmpty()) {
        json.insert(QStringLiteral("dark"), dark);
    }
    if (background) {
        json.insert(QStringLiteral("background"), *background);
        json.insert(QStringLiteral("backgroundRule"), rule);
    }
    if (isSubtracted()) {
        json.insert(QStringLiteral("negativePixels"), static_cast<qint64>(negatives));
    }
    return json;
}

PreparedImage PreparedImage::of(const CPLClickInfo& info)
{
    PreparedImage prepared;
    const QStringList section{QString::fromLatin1(ClickKeys::kLuminescentImage)};
    prepared.projection = clickText(info, ClickKeys::kLuminescentImage, ClickKeys::kProjection);
    prepared.dark = clickText(info, ClickKeys::kLuminescentImage, ClickKeys::kDarkImage);
    prepared.background = clickNumberValue(info, section, ClickKeys::kBackgroundLevel);
    prepared.rule = clickText(info, ClickKeys::kLuminescentImage, ClickKeys::kBackgroundRule);
    constexpr double most = 1e15; // beyond every image, within whole numbers
    const double negatives = clickNumberValue(info, section, ClickKeys::kNegativePixels).value_or(0.0);
    prepared.negatives = negatives > 0.0 && negatives < most ? std::llround(negatives) : 0;
    return prepared;
}
