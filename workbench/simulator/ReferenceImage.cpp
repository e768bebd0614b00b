// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/ReferenceImage.h"

#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ImageCalibration.h"
#include "workbench/simulator/CameraModel.h"
#include "workbench/simulator/SceneModel.h"
#include "workbench/simulator/SimulationOptions.h"

#include <optional>

namespace {

CPLSection sectionOf(const SimulationOptions& options, double exposureSeconds)
{
    CPLSection section(QString::fromLatin1(ClickKeys::kFluorescentReferenceImage));
    const auto set = [&section](const char* pKey, const QString& strValue) {
        section.setValue(QString::fromLatin1(pKey), strValue);
    };
    set(ClickKeys::kExposureTime, exactText(exposureSeconds));
    set(ClickKeys::kBinning, QString::number(options.binning));
    set(ClickKeys::kFNumber, exactText(CameraFigures::kFNumber));
    set(ClickKeys::kReadBiasLevel, exactText(options.noise ? options.offset : 0.0));
    return section;
}

// Seconds in which the band's reference radiance gives the brightest pixel's counts.
double exposureOf(const SimulationOptions& options, const Band& band)
{
    CPLClickInfo info = describeBand(options, band, options.binning, QString());
    const CPLSection section = sectionOf(options, 1.0);
    info.addSection(&section);
    double radianceOfCountASecond = 0.0;
    radianceOfCount(info, IMAGETYPE_FLUORESCENT_REFERENCE, std::nullopt, &radianceOfCountASecond, nullptr);
    return ReferenceImage::kBrightest * radianceOfCountASecond / band.referenceRadiance;
}

} // namespace

ReferenceImage ReferenceImage::take(const SimulationOptions& options, const SceneModel& model, const QList<Band>& bands,
                                    int index, int imageNumber)
{
    ReferenceImage reference;
    reference.section = sectionOf(options, exposureOf(options, bands.at(index)));
    std::vector<double> counts(model.pixelsPerSpot(), kBrightest);
    if (!model.reference.empty()) {
        const std::size_t spot = static_cast<std::size_t>(index) / model.spectra.front().size();
        for (std::size_t i = 0; i < counts.size(); ++i) {
            counts[i] *= model.reference[spot * counts.size() + i];
        }
    }
    const CameraModel camera{options.gain, options.readNoise, options.offset, options.seed};
    reference.image =
        options.noise ? camera.expose(counts, options.size, imageNumber, nullptr) : exactImage(counts, options.size);
    reference.image.m_fBinning = static_cast<float>(options.binning);
    return reference;
}
