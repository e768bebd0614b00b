// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ClickInfoValues.h"

#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ImageNames.h"

#include <cmath>

namespace {

const CPLSection* sectionOf(const CPLClickInfo& info, const QString& strSection)
{
    return info[strSection];
}

bool isNumber(const CPLSection& section, const char* pKey)
{
    double value = 0.0;
    return section.getValue(QString::fromLatin1(pKey), &value) == 0 && std::isfinite(value);
}

void tellWrongNumber(const CPLSection& section, const QString& strSection, const char* pKey, QStringList& wrong)
{
    const QString key = QString::fromLatin1(pKey);
    QString text;
    if (section.getValue(key, &text) == 0 && !text.trimmed().isEmpty() && !isNumber(section, pKey)) {
        wrong.append(QStringLiteral("section \"%1\": \"%2\" is \"%3\", which is no number").arg(strSection, key, text));
    }
}

} // namespace

QString clickText(const CPLClickInfo& info, const char* pSection, const char* pKey)
{
    QString text;
    const CPLSection* pFound = sectionOf(info, QString::fromLatin1(pSection));
    if (pFound != nullptr) {
        pFound->getValue(QString::fromLatin1(pKey), &text);
    }
    return text.trimmed();
}

std::optional<double> clickNumberValue(const CPLClickInfo& info, const QStringList& sections, const char* pKey)
{
    const QString key = QString::fromLatin1(pKey);
    for (const QString& name : sections) {
        const CPLSection* pSection = sectionOf(info, name);
        if (pSection == nullptr || !pSection->isKeyPresent(key)) {
            continue;
        }
        double value = 0.0;
        if (pSection->getValue(key, &value) == 0 && std::isfinite(value)) {
            return value;
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<bool> parseFlag(const QString& strText)
{
    const QString text = strText.trimmed().toLower();
    if (text == QLatin1String("1") || text == QLatin1String("yes") || text == QLatin1String("true")) {
        return true;
    }
    if (text == QLatin1String("0") || text == QLatin1String("no") || text == QLatin1String("false")) {
        return false;
    }
    return std::nullopt;
}

std::optional<bool> clickFlag(const CPLClickInfo& info, const char* pSection, const char* pKey)
{
    return parseFlag(clickText(info, pSection, pKey));
}

QStringList wrongNumbers(const CPLClickInfo& info)
{
    using namespace ClickKeys;
    QStringList wrong;
    for (const tag_eimagetype type : allImageTypes()) {
        const QString name = imageSection(type);
        if (const CPLSection* pSection = sectionOf(info, name)) {
            for (const char* pKey :
                 {kExposureTime, kBinning, kFNumber, kReadBiasLevel, kExcitationIrradiance, kReferenceRadiance}) {
                tellWrongNumber(*pSection, name, pKey, wrong);
            }
        }
    }
    const QString camera = QString::fromLatin1(kCameraSystemInfo);
    if (const CPLSection* pSection = sectionOf(info, camera)) {
        for (const char* pKey : {kPhotonsPerCount, kPixelSize, kLensSolidAngle}) {
            tellWrongNumber(*pSection, camera, pKey, wrong);
        }
    }
    const QString click = QString::fromLatin1(kClickNumber);
    if (const CPLSection* pSection = sectionOf(info, click)) {
        tellWrongNumber(*pSection, click, kKyVoTime, wrong);
    }
    return wrong;
}
