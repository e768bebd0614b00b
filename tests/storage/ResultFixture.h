// SPDX-License-Identifier: GPL-3.0-or-later
// Engines over sequences in memory, and the documents of their results taken apart.
#pragma once

#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"

#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "spectra/SpectrumPlotParams.h"

#include <QDomDocument>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

inline const QString notSupportedLine = "SpumKyvo: this result file is not supported by current version!";
inline const QString failedLine = "SpumKyvo: failed to load the result!";
inline const QString idMismatchLine = "SpumKyvo: sequence id mismatch in the result file!";
inline const QString selectionLine = "SpumKyvo: Cannot match the image selections in the result to current sequence.";

constexpr int resultSide = 4;
constexpr int resultImages = 4;
constexpr int resultSpectra = 2;

// A sequence of four images of 4 x 4 pixels along an axis (0 emission, 1 excitation, 2 time).
inline void addImages(TestSequence& sequence, int eAxis)
{
    const std::vector<std::vector<double>> spectra = bellSpectra(resultSpectra, resultImages);
    sequence->setKyvoSequence(eAxis == 2);
    for (int j = 0; j < resultImages; ++j) {
        TestImage image;
        const QString strWavelength = QString("%1nm").arg(500 + 20 * j);
        image.excitation = eAxis == 1 ? strWavelength : QString("480nm");
        image.emission = eAxis == 1 ? QString("700nm") : strWavelength;
        image.kyvoTime = eAxis == 2 ? QString::number(10 * j) : QString();
        image.kyvoInterval = eAxis == 2 ? "1" : "";
        image.side = resultSide;
        image.value = [&spectra, j](int i) {
            const auto n = static_cast<std::size_t>(j);
            return static_cast<float>(spectra[0][n] * mapValue(0, i) + spectra[1][n] * mapValue(1, i));
        };
        sequence.add(image);
    }
}

// An engine with the spectra of its images, named and numbered, not yet run.
class ResultEngine
{
public:
    explicit ResultEngine(const TestSequence& sequence) : m_engine(sequence.id())
    {
        EXPECT_TRUE(m_engine.buildDatasetInfo());
    }

    CORVSpumKyvo* operator->() { return &m_engine; }
    CORVSpumKyvo& operator*() { return m_engine; }

    void takeSpectra()
    {
        ::takeSpectra(m_engine, bellSpectra(resultSpectra, resultImages));
        for (int i = 0; i < m_engine.m_spectrumPlots.size(); ++i) {
            SpectrumSettings& settings = m_engine.m_spectrumPlots.at(i)->settings;
            settings.index = i;
            settings.name = QString("Dye %1").arg(i + 1);
            m_engine.m_spectrumPlots.at(i)->axis = m_engine.m_eAxis;
        }
    }
    // With two spectra, or the first alone.
    void analyse(int nSpectra = resultSpectra)
    {
        takeSpectra();
        while (m_engine.m_spectrumPlots.size() > nSpectra) {
            delete m_engine.m_spectrumPlots.takeLast();
        }
        m_engine.run();
        ASSERT_FALSE(m_engine.hasError());
    }
    void useMask(const std::vector<int>& indices)
    {
        m_engine.m_bUseMask = 1;
        m_engine.m_maskIndices = indices;
    }

private:
    CORVSpumKyvo m_engine;
};

// A sequence along the emission axis and two engines of it: one that has a result, one that may load it.
class ResultFixture : public ::testing::Test
{
protected:
    ResultFixture() : ResultFixture(0) {}
    explicit ResultFixture(int eAxis) : m_bImages(addTo(m_sequence, eAxis)), m_first(m_sequence), m_second(m_sequence)
    {
    }

    // Loads a file of version 2 with these children into the second engine.
    bool loadElements(const QString& strElements, const QString& strVersion = "2")
    {
        return m_second->loadResult(rootText(strElements, strVersion));
    }
    static QString rootText(const QString& strElements, const QString& strVersion)
    {
        return QString("<SpectralUnmixingResults Version=\"%1\">%2</SpectralUnmixingResults>")
            .arg(strVersion, strElements);
    }
    // The root of a text; the document is kept.
    QDomElement rootOf(const QString& strText)
    {
        EXPECT_TRUE(m_document.setContent(strText));
        return m_document.documentElement();
    }
    QDomElement written(const QString& strName) { return rootOf(m_first->resultToXml()).firstChildElement(strName); }

    LogCapture m_log;
    TestSequence m_sequence;
    bool m_bImages; // before the engines, which inspect the sequence
    ResultEngine m_first;
    ResultEngine m_second;
    QDomDocument m_document;

private:
    static bool addTo(TestSequence& sequence, int eAxis)
    {
        addImages(sequence, eAxis);
        return true;
    }
};

// The text without the moment of its writing.
inline QString withoutMoment(QString strText)
{
    return strText.replace(QRegularExpression("Date\\.Time=\"[^\"]*\""), "Date.Time=\"\"");
}

// Spectra of the list that a version 2 file would have, over four pairs.
inline QString spectrumListText(int nSpectra)
{
    QString strText = "<SpectrumList>";
    const std::vector<std::vector<double>> spectra = bellSpectra(nSpectra, resultImages);
    for (int i = 0; i < nSpectra; ++i) {
        strText += QString("<Component%1 Version=\"1\" Selected=\"1\" Name=\"n\" Color=\"red\" Shape=\"1\" "
                           "Axis=\"Emission\" Origin=\"\">")
                       .arg(i);
        for (int j = 0; j < resultImages; ++j) {
            strText += QString("<Spectrum Col=\"480\" Row=\"%1\" Data=\"%2\"/>")
                           .arg(500 + 20 * j)
                           .arg(spectra[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)]);
        }
        strText += QString("</Component%1>").arg(i);
    }
    return strText + "</SpectrumList>";
}
