// SPDX-License-Identifier: GPL-3.0-or-later
// Sequence and click infos: whatever the text, the readers give figures that can be used, and what they read as a
// sequence reads the same after writing.
#include "host/CORVDataset.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/ImageCalibration.h"
#include "platform/orvapi/ImageNames.h"
#include "platform/orvapi/SequenceInfo.h"
#include "require.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

void readAsSequence(const CPLClickInfo& sections)
{
    SequenceInfo info;
    QStringList warnings;
    if (!readSequenceInfo(sections, QStringLiteral("file"), &info, warnings)) {
        return;
    }
    require(info.adjust.m_nColorTable >= 0 && info.refusedFolders >= 0);
    for (const QString& folder : info.folders) {
        require(staysBelow(folder));
    }
    CPLClickInfo copy;
    require(copy.parse(sequenceInfoSections(info).toText(), QStringLiteral("copy"), nullptr) == 0);
    SequenceInfo again;
    require(readSequenceInfo(copy, QStringLiteral("copy"), &again, warnings));
    require(again.id == info.id && again.name == info.name && again.folders == info.folders);
    require(again.ctScan == info.ctScan && again.ctComplete == info.ctComplete);
    require(again.adjust.m_nColorTable == info.adjust.m_nColorTable);
}

void readAsClick(const CPLClickInfo& sections)
{
    wrongNumbers(sections);
    for (const tag_eimagetype type : allImageTypes()) {
        const float binning = imageBinning(sections, type);
        require(binning > 0.0F && binning <= 1024.0F);
        require(std::isfinite(imageBias(sections, type)));
        double factor = -1.0;
        QString reason;
        const bool known = radianceOfCount(sections, type, std::nullopt, &factor, &reason);
        require(known ? std::isfinite(factor) && factor > 0.0 : factor == -1.0 && !reason.isEmpty());
    }
    CORVDataset dataset;
    dataset.clickInfo = sections;
    double seconds = 0.0;
    require(!dataset.getExposureStart(&seconds) || std::isfinite(seconds));
    require(!dataset.getExposureTime(&seconds) || std::isfinite(seconds));
    const QString number = dataset.getClickNumber();
    require(number.isEmpty() || CORVDataset::getDataset(number) == &dataset);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CPLClickInfo sections;
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    if (sections.parse(text, QStringLiteral("file"), nullptr) == 0) {
        readAsSequence(sections);
        readAsClick(sections);
    }
    return 0;
}
