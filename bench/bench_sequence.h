// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bench_support.h"

#include "engine/CORVSpumKyvo.h"

#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLSection.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/SequenceWriter.h"
#include "spectra/SpectrumPlotParams.h"

#include <QString>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// A sequence on disk for the benchmarks of the engine: 16 bit camera images of the mixtures of bench_support.h,
// calibrated so that radiant efficiency can be had.
namespace bench {

constexpr double brightestCount = 20000.0;

[[noreturn]] inline void giveUp(const QString& strReason)
{
    std::fprintf(stderr, "%s\n", qPrintable(strReason));
    std::exit(1);
}

inline CILImage cameraImage(const Matrix<double>& pixels, long long side, long long band, double scale)
{
    CILImage image;
    image.InitWithType(ORVTYPE_USHORT, side, side);
    auto* counts = static_cast<std::uint16_t*>(image.m_pData);
    for (long long p = 0; p < pixels.num_rows(); ++p) {
        counts[p] = static_cast<std::uint16_t>(std::clamp(pixels[p][band] * scale, 0.0, 65535.0));
    }
    return image;
}

inline DatasetDescription datasetOf(long long band)
{
    DatasetDescription dataset;
    dataset.clickNumber = QStringLiteral("bench-%1").arg(band, 3, 10, QLatin1Char('0'));
    CPLSection luminescent(ClickKeys::kLuminescentImage);
    luminescent.setValue(ClickKeys::kExcitationFilter, QStringLiteral("640nm"));
    luminescent.setValue(ClickKeys::kEmissionFilter, QStringLiteral("%1nm").arg(660 + 10 * band));
    luminescent.setValue(ClickKeys::kBinning, 1);
    luminescent.setValue(ClickKeys::kExposureTime, 1);
    luminescent.setValue(ClickKeys::kFNumber, 1);
    luminescent.setValue(ClickKeys::kExcitationIrradiance, 1);
    CPLSection camera(ClickKeys::kCameraSystemInfo);
    camera.setValue(ClickKeys::kPhotonsPerCount, 1);
    camera.setValue(ClickKeys::kPixelSize, 1);
    camera.setValue(ClickKeys::kLensSolidAngle, 1);
    dataset.info.addSection(&luminescent);
    dataset.info.addSection(&camera);
    return dataset;
}

class DiskSequence
{
public:
    explicit DiskSequence(const Size& size) : m_spectra(makeSpectra(size))
    {
        QString error;
        const QString folder = m_folder.filePath(QStringLiteral("sequence"));
        write(size, folder, &error);
        if (!error.isEmpty() || m_sequence.open(folder, &error) != ESTATUS_SUCCESS) {
            giveUp(error);
        }
    }

    QString id() const { return m_sequence.getSequenceID(); }
    CORVSequenceDataset& sequence() { return m_sequence; }

    // Gives the engine the true spectra.
    void takeSpectra(CORVSpumKyvo& engine) const
    {
        for (long long k = 0; k < m_spectra.num_rows(); ++k) {
            auto* pPlot = new SpectrumPlotParams;
            pPlot->setPairs(engine.m_selectedKeyPairs);
            pPlot->setValues(m_spectra.row(k));
            engine.m_spectrumPlots.append(pPlot);
        }
    }

private:
    void write(const Size& size, const QString& strFolder, QString* pError)
    {
        const Matrix<double> pixels = makePixels(size, m_spectra);
        const double scale = brightestCount / pixels.storage.Max();
        SequenceDescription description;
        description.id = QStringLiteral("bench-%1").arg(size.side);
        description.fluorescence = true;
        SequenceWriter writer;
        bool ok = writer.begin(strFolder, description, false, pError);
        for (long long band = 0; ok && band < size.bands; ++band) {
            const CILImage image = cameraImage(pixels, size.side, band, scale);
            SequenceWriter::Images images{{IMAGETYPE_LUMINESCENT, &image}};
            if (band == 0) {
                images.append({IMAGETYPE_PHOTOGRAPH, &image});
            }
            ok = writer.addDataset(datasetOf(band), images, pError);
        }
        if (ok) {
            writer.finish(pError);
        }
    }

    QTemporaryDir m_folder;
    Matrix<double> m_spectra;
    CORVSequenceDataset m_sequence;
};

} // namespace bench
