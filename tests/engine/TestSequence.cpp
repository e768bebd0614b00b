// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/TestSequence.h"

#include "engine/CORVSpumKyvo.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLClickInfo.h"
#include "host/CPLSection.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "spectra/SpectrumPlotParams.h"

#include <cmath>

namespace {

void setUnlessEmpty(CPLSection& section, const char* pKey, const QString& strValue)
{
    if (!strValue.isEmpty()) {
        section.setValue(pKey, strValue);
    }
}

CPLSection clickSection(const QString& strClick, const TestImage& image)
{
    CPLSection section(ClickKeys::kClickNumber);
    section.setValue(ClickKeys::kClickNumber, strClick);
    setUnlessEmpty(section, ClickKeys::kKyVoTime, image.kyvoTime);
    setUnlessEmpty(section, ClickKeys::kKyVoInterval, image.kyvoInterval);
    return section;
}

CPLSection luminescentSection(const TestImage& image)
{
    CPLSection section(ClickKeys::kLuminescentImage);
    setUnlessEmpty(section, ClickKeys::kExcitationFilter, image.excitation);
    setUnlessEmpty(section, ClickKeys::kEmissionFilter, image.emission);
    setUnlessEmpty(section, ClickKeys::kFLXSpot, image.spotX);
    setUnlessEmpty(section, ClickKeys::kFLYSpot, image.spotY);
    setUnlessEmpty(section, ClickKeys::kProbe, image.probe);
    setUnlessEmpty(section, ClickKeys::kSubjectType, image.subjectType);
    setUnlessEmpty(section, ClickKeys::kIsotope, image.isotope);
    if (!image.acquisitionTime.isEmpty()) {
        section.setValue(ClickKeys::kAcquisitionDate, QString("2024-05-06"));
        section.setValue(ClickKeys::kAcquisitionTime, image.acquisitionTime);
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
    return section;
}

CPLSection cameraSection()
{
    CPLSection section(ClickKeys::kCameraSystemInfo);
    section.setValue(ClickKeys::kPhotonsPerCount, 1);
    section.setValue(ClickKeys::kPixelSize, 1);
    section.setValue(ClickKeys::kLensSolidAngle, 1);
    return section;
}

} // namespace

CILImage squareImage(int nSide, int nBinning, const std::function<float(int)>& value)
{
    CILImage image;
    image.InitWithType(ORVTYPE_FLOAT, nSide, nSide);
    image.m_fBinning = static_cast<float>(nBinning);
    for (int i = 0; i < nSide * nSide; ++i) {
        image.floats()[i] = value(i);
    }
    return image;
}

TestSequence::TestSequence(const QString& strId) : m_pSequence(std::make_unique<CORVSequenceDataset>())
{
    m_pSequence->setSequenceID(strId);
}

TestSequence::~TestSequence() = default;

QString TestSequence::id() const
{
    return m_pSequence->getSequenceID();
}

QString TestSequence::click(int n) const
{
    return QString("%1-%2").arg(id()).arg(n, 3, 10, QChar('0'));
}

CORVDataset* TestSequence::add(const TestImage& image)
{
    auto* pDataset = new CORVDataset;
    const CPLSection click = clickSection(this->click(m_nImages++), image);
    pDataset->clickInfo.addSection(&click);
    if (image.luminescentSection) {
        const CPLSection luminescent = luminescentSection(image);
        pDataset->clickInfo.addSection(&luminescent);
    }
    if (image.calibratedUnit >= DISPLAYUNIT_RADIANCE) {
        const CPLSection camera = cameraSection();
        pDataset->clickInfo.addSection(&camera);
    }
    if (image.dataImage) {
        pDataset->setCoreImage(IMAGETYPE_MAIN_DATA, squareImage(image.side, image.binning, image.value));
    }
    if (image.photograph) {
        pDataset->setCoreImage(IMAGETYPE_PHOTOGRAPH, squareImage(2, 2, [](int) { return 1.0F; }));
    }
    m_pSequence->addDataset(pDataset);
    return pDataset;
}

SpectrumPlotParams* plotOf(const QList<KeyPair>& pairs, const std::vector<double>& values)
{
    auto* pPlot = new SpectrumPlotParams;
    for (std::size_t i = 0; i < values.size(); ++i) {
        SpectrumPoint point;
        const int n = static_cast<int>(i);
        point.first = n < pairs.size() ? pairs.at(n).first : QString("640");
        point.second = n < pairs.size() ? pairs.at(n).second : QString::number(i);
        point.value = values[i];
        pPlot->points.append(point);
    }
    return pPlot;
}

double mapValue(int nComponent, int nPixel)
{
    return 1.0 + std::sin(0.01 * nPixel * (nComponent + 1) + nComponent);
}

std::vector<std::vector<double>> bellSpectra(int nComponents, int nImages)
{
    std::vector<std::vector<double>> spectra;
    for (int k = 0; k < nComponents; ++k) {
        const int nPeak = (2 * k + 1) * nImages / (2 * nComponents);
        std::vector<double> spectrum;
        for (int j = 0; j < nImages; ++j) {
            const double distance = 2.0 * nComponents * (j - nPeak) / nImages;
            spectrum.push_back(std::exp(-distance * distance));
        }
        spectra.push_back(spectrum);
    }
    return spectra;
}

void addMixture(TestSequence& sequence, int nSide, const std::vector<std::vector<double>>& spectra)
{
    for (std::size_t j = 0; j < spectra.front().size(); ++j) {
        TestImage image;
        image.excitation = "640nm";
        image.emission = QString("%1nm").arg(500 + 20 * static_cast<int>(j));
        image.side = nSide;
        image.value = [&spectra, j](int i) {
            double total = 0.0;
            for (std::size_t k = 0; k < spectra.size(); ++k) {
                total += spectra[k][j] * mapValue(static_cast<int>(k), i);
            }
            return static_cast<float>(total);
        };
        sequence.add(image);
    }
}

void takeSpectra(CORVSpumKyvo& engine, const std::vector<std::vector<double>>& spectra)
{
    for (const std::vector<double>& spectrum : spectra) {
        engine.m_spectrumPlots.append(plotOf(engine.m_selectedKeyPairs, spectrum));
    }
}
