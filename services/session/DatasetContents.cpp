// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/DatasetContents.h"

#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/ImageNames.h"

#include <QJsonArray>

#include <algorithm>
#include <optional>

namespace {

const char* const kFlags[] = {ClickKeys::kBackgroundCorrected, ClickKeys::kFLBackgroundCorrected,
                              ClickKeys::kFlatFieldCorrected, ClickKeys::kSaturated};

QString shapeText(tag_eroishape eShape)
{
    switch (eShape) {
    case ROISHAPE_RECTANGLE:
        return QStringLiteral("rectangle");
    case ROISHAPE_ELLIPSE:
        return QStringLiteral("ellipse");
    case ROISHAPE_POLYGON:
        return QStringLiteral("polygon");
    case ROISHAPE_FREEHAND:
        return QStringLiteral("free-hand");
    }
    return QString();
}

// "photographic image (0) in 1, luminescent image (1) in 18": how many hold each, in the order in which they turn up.
QString counted(const QList<QStringList>& lists)
{
    QStringList texts;
    QList<int> counts;
    for (const QStringList& list : lists) {
        for (const QString& text : list) {
            if (!texts.contains(text)) {
                texts.append(text);
                counts.append(0);
            }
            ++counts[texts.indexOf(text)];
        }
    }
    QStringList parts;
    for (int i = 0; i < texts.size(); ++i) {
        parts.append(counts[i] == lists.size() ? texts[i] : QStringLiteral("%1 in %2").arg(texts[i]).arg(counts[i]));
    }
    return parts.join(QStringLiteral(", "));
}

QStringList imageTexts(const DatasetContents& contents)
{
    QStringList texts;
    for (const tag_eimagetype type : contents.images) {
        texts.append(QStringLiteral("%1 (%2)").arg(imageSection(type)).arg(static_cast<int>(type)));
    }
    return texts;
}

// Sections that tell of nothing else in the list.
QStringList otherSections(const DatasetContents& contents)
{
    QStringList told = {QLatin1String(ClickKeys::kClickNumber), QLatin1String(ClickKeys::kCameraSystemInfo),
                        QLatin1String(ClickKeys::kROIs)};
    for (const tag_eimagetype type : allImageTypes()) {
        told.append(imageSection(type));
    }
    QStringList others;
    for (const QString& section : contents.sections) {
        if (!told.contains(section)) {
            others.append(section);
        }
    }
    return others;
}

} // namespace

DatasetContents DatasetContents::of(CORVDataset& dataset)
{
    DatasetContents contents;
    for (const CORVImageDetails& image : dataset.imageList().images()) {
        contents.images.append(image.imageType());
    }
    std::sort(contents.images.begin(), contents.images.end());
    for (const char* pFlag : kFlags) {
        const std::optional<bool> set = clickFlag(dataset.clickInfo, ClickKeys::kLuminescentImage, pFlag);
        if (set.has_value()) {
            contents.flags.append(QLatin1String(pFlag));
        }
        if (set.value_or(false)) {
            contents.setFlags.append(QLatin1String(pFlag));
        }
    }
    for (const tagROIInfo& region : dataset.roiManager()->regions()) {
        contents.regions.append(QStringLiteral("%1 (%2)").arg(region.name, shapeText(region.shape)));
    }
    int count = 0;
    dataset.clickInfo.getSectionCount(&count);
    for (int i = 0; i < count; ++i) {
        QString key;
        if (dataset.clickInfo.section(i)->getSectionKey(&key) == 0) {
            contents.sections.append(key);
        }
    }
    return contents;
}

QJsonObject DatasetContents::json() const
{
    QJsonArray held;
    for (const tag_eimagetype type : images) {
        held.append(QJsonObject{{"type", static_cast<int>(type)}, {"name", imageSection(type)}});
    }
    QJsonObject told;
    for (const QString& flag : flags) {
        told.insert(flag, setFlags.contains(flag));
    }
    return QJsonObject{{"images", held},
                       {"flags", told},
                       {"regions", QJsonArray::fromStringList(regions)},
                       {"sections", QJsonArray::fromStringList(sections)}};
}

QList<QPair<QString, QString>> contentsOfSequence(const CORVSequenceDataset& sequence,
                                                  const QList<DatasetContents>& datasets)
{
    QList<QStringList> images;
    QList<QStringList> flags;
    QList<QStringList> regions;
    QList<QStringList> sections;
    for (const DatasetContents& contents : datasets) {
        images.append(imageTexts(contents));
        flags.append(contents.setFlags);
        regions.append(contents.regions);
        sections.append(otherSections(contents));
    }
    QStringList scans;
    if (sequence.isSLASequence()) {
        scans.append(QStringLiteral("structured light"));
    }
    if (sequence.isCTSequence(true)) {
        scans.append(sequence.isCTSequence(false) ? QStringLiteral("CT") : QStringLiteral("CT (incomplete)"));
    }
    QList<QPair<QString, QString>> lines;
    const auto add = [&lines](const QString& strKey, const QString& strValue) {
        if (!strValue.isEmpty()) {
            lines.append({strKey, strValue});
        }
    };
    add(QStringLiteral("Holds"), counted(images));
    add(QStringLiteral("Flags"), counted(flags));
    add(QStringLiteral("Regions"), counted(regions));
    add(QStringLiteral("Sections"), counted(sections));
    add(QStringLiteral("Scans"), scans.join(QStringLiteral(", ")));
    return lines;
}
