// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/support/SmallSequence.h"

#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/SequenceWriter.h"

#include <gtest/gtest.h>

namespace {

CILImage pixelsOf(const SmallImage& image)
{
    CILImage pixels;
    EXPECT_EQ(pixels.InitWithType(ORVTYPE_FLOAT, image.width, image.height), EIL_SUCCESS);
    pixels.m_fBinning = static_cast<float>(image.binning);
    for (int i = 0; i < image.width * image.height; ++i) {
        pixels.floats()[i] = image.value(i);
    }
    return pixels;
}

CILImage photograph()
{
    CILImage photo;
    EXPECT_EQ(photo.InitWithType(ORVTYPE_BYTE, 32, 32), EIL_SUCCESS);
    for (int i = 0; i < 32 * 32; ++i) {
        photo.setValue(static_cast<std::size_t>(i), 8.0 * (i % 32));
    }
    return photo;
}

CPLSection luminescentSection(const SmallImage& image)
{
    CPLSection section(ClickKeys::kLuminescentImage);
    if (!image.excitation.isEmpty()) {
        section.setValue(ClickKeys::kExcitationFilter, image.excitation);
    }
    if (!image.emission.isEmpty()) {
        section.setValue(ClickKeys::kEmissionFilter, image.emission);
    }
    section.setValue(ClickKeys::kBackgroundCorrected, 1);
    section.setValue(ClickKeys::kBinning, image.binning);
    section.setValue(ClickKeys::kExposureTime, 1);
    section.setValue(ClickKeys::kFNumber, 1);
    if (image.calibratedUnit >= DISPLAYUNIT_RADIANT_EFFICIENCY) {
        section.setValue(ClickKeys::kExcitationIrradiance, 1);
    }
    if (image.calibratedUnit >= DISPLAYUNIT_EFFICIENCY) {
        section.setValue(ClickKeys::kReferenceRadiance, 1);
    }
    if (!image.isotope.isEmpty()) {
        section.setValue(ClickKeys::kIsotope, image.isotope);
    }
    if (!image.probe.isEmpty()) {
        section.setValue(ClickKeys::kProbe, image.probe);
    }
    if (!image.subject.isEmpty()) {
        section.setValue(ClickKeys::kSubjectType, image.subject);
    }
    if (!image.started.isEmpty()) {
        section.setValue(ClickKeys::kAcquisitionDate, QStringLiteral("2024-01-31"));
        section.setValue(ClickKeys::kAcquisitionTime, image.started);
    }
    if (image.nativeEfficiency) {
        section.setValue(ClickKeys::kNativeUnit, static_cast<int>(DISPLAYUNIT_EFFICIENCY));
    }
    return section;
}

} // namespace

void SmallSequence::addBands(const std::vector<std::function<float(int)>>& values)
{
    for (const auto& value : values) {
        SmallImage image;
        image.emission = QStringLiteral("%1nm").arg(700 + 20 * images.size());
        image.value = value;
        images.append(image);
    }
}

CPLClickInfo SmallSequence::clickInfo(int n) const
{
    const SmallImage& image = images.at(n);
    CPLSection number(ClickKeys::kClickNumber);
    number.setValue(ClickKeys::kClickNumber, click(n));
    if (!image.kyvoTime.isEmpty()) {
        number.setValue(ClickKeys::kKyVoTime, image.kyvoTime);
    }
    if (!image.kyvoInterval.isEmpty()) {
        number.setValue(ClickKeys::kKyVoInterval, image.kyvoInterval);
    }
    const CPLSection luminescent = luminescentSection(image);
    CPLClickInfo info;
    info.addSection(&number);
    info.addSection(&luminescent);
    if (image.calibratedUnit >= DISPLAYUNIT_RADIANCE) {
        CPLSection camera(ClickKeys::kCameraSystemInfo);
        camera.setValue(ClickKeys::kPhotonsPerCount, 1);
        camera.setValue(ClickKeys::kPixelSize, 1);
        camera.setValue(ClickKeys::kLensSolidAngle, 1);
        info.addSection(&camera);
    }
    return info;
}

void SmallSequence::writeTo(const QString& folder) const
{
    SequenceDescription description;
    description.id = id;
    description.temporal = temporal;
    description.fluorescence = fluorescence;
    description.transillumination = transillumination;
    description.truthFolder = truthFolder;
    SequenceWriter writer;
    QString error;
    ASSERT_TRUE(writer.begin(folder, description, false, &error)) << qPrintable(error);
    const CILImage photo = ::photograph();
    for (int n = 0; n < images.size(); ++n) {
        const CILImage data = pixelsOf(images[n]);
        SequenceWriter::Images files{{IMAGETYPE_LUMINESCENT, &data}};
        if (photograph && n == 0) {
            files.append({IMAGETYPE_PHOTOGRAPH, &photo});
        }
        ASSERT_TRUE(writer.addDataset({click(n), clickInfo(n)}, files, &error)) << qPrintable(error);
    }
    ASSERT_TRUE(writer.finish(&error)) << qPrintable(error);
}

std::unique_ptr<CORVSequenceDataset> SmallSequence::inMemory() const
{
    auto sequence = std::make_unique<CORVSequenceDataset>();
    sequence->setSequenceID(id);
    sequence->isFluorescence = fluorescence;
    sequence->isTransillumination = transillumination;
    sequence->setKyvoSequence(temporal);
    for (int n = 0; n < images.size(); ++n) {
        auto* dataset = new CORVDataset;
        dataset->clickInfo = clickInfo(n);
        dataset->setCoreImage(IMAGETYPE_MAIN_DATA, pixelsOf(images[n]));
        dataset->hasLuminescentImage = true;
        if (images[n].nativeEfficiency) {
            dataset->nativeUnit = DISPLAYUNIT_EFFICIENCY;
        }
        if (photograph) {
            dataset->setCoreImage(IMAGETYPE_PHOTOGRAPH, ::photograph());
        }
        EXPECT_TRUE(sequence->addDataset(dataset));
    }
    return sequence;
}
