// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvapi/ClickInfoKeys.h"
#include "workbench/simulator/SimulationOptions.h"
#include "workbench/simulator/simulated_sequence.h"

#include <cfloat>

// Small sequences of every kind, and what their truth says.

constexpr SimulationKind simulatedKinds[] = {SimulationKind::Epi, SimulationKind::Luminescent,
                                             SimulationKind::Transillumination, SimulationKind::Temporal,
                                             SimulationKind::Cherenkov};

inline SimulationOptions smallKind(SimulationKind eKind)
{
    SimulationOptions options = SimulationOptions::standard(eKind);
    options.size = 40;
    if (eKind == SimulationKind::Transillumination) {
        options.bands = 4;
        options.spots = 3;
    }
    if (eKind == SimulationKind::Temporal) {
        options.timesSeconds = {0, 30, 60, 120, 240, 480, 960};
    }
    return options;
}

// As small as it can be with everything in it.
inline SimulationOptions smallestKind(SimulationKind eKind)
{
    SimulationOptions options = smallKind(eKind);
    options.size = 24;
    options.bands = 2;
    options.spots = 2;
    options.foodRatio = 0.0;
    if (eKind == SimulationKind::Temporal) {
        options.timesSeconds = {0, 60, 240};
    }
    return options;
}

// A simulated sequence, opened.
struct Simulated
{
    explicit Simulated(const SimulationOptions& options)
    {
        mustSimulate(path(), options);
        QString error;
        QStringList warnings;
        EXPECT_EQ(sequence.open(path(), &error, &warnings), ESTATUS_SUCCESS) << qPrintable(error);
        EXPECT_TRUE(warnings.isEmpty()) << qPrintable(warnings.join(QLatin1Char('\n')));
    }
    QString path() const { return folder.path(QStringLiteral("seq")); }
    QString luminescent(int image, const char* pKey) { return section(image, ClickKeys::kLuminescentImage, pKey); }
    QString section(int image, const char* pSection, const char* pKey)
    {
        QString text;
        CPLSection* pFound = sequence.getDatasets().at(image)->clickInfo[QString::fromLatin1(pSection)];
        if (pFound != nullptr) {
            pFound->getValue(QString::fromLatin1(pKey), &text);
        }
        return text;
    }
    std::vector<double> image(int index, tag_edisplayunit eUnit)
    {
        CILImage image;
        EXPECT_EQ(sequence.getDatasets().at(index)->getCalibratedLuminImage(eUnit, &image, QString()), ESTATUS_SUCCESS);
        std::vector<double> pixels(image.pixelCount());
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] = image.value(i);
        }
        return pixels;
    }
    ReadTruth truthOfSpot(tag_edisplayunit eUnit, int spot) const
    {
        return ReadTruth(path(), truthUnitFolder(eUnit),
                         [spot](const QString& strName) { return truthMapFile(strName, spot); });
    }

    SimulationFolder folder;
    CORVSequenceDataset sequence;
};

// Each pixel is the sum of true maps times true spectra; `factor` is what the pixels are multiplied by first.
inline void expectSum(const std::vector<double>& pixels, const ReadTruth& truth, std::size_t band, double factor = 1.0)
{
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        double sum = 0.0;
        for (std::size_t k = 0; k < truth.maps.size(); ++k) {
            sum += truth.maps[k][i] * truth.spectra[k][band];
        }
        // Stored image, converted image, reference and each map are rounded to floats.
        ASSERT_NEAR(factor * pixels[i], sum, 4.0 * static_cast<double>(FLT_EPSILON) * sum) << band << " " << i;
    }
}

inline QStringList foldersOfTruth(const QString& strSequence)
{
    return QDir(strSequence + QStringLiteral("/truth")).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}
