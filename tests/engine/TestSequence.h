// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class CILImage;
class CORVDataset;
class CORVSequenceDataset;
class CORVSpumKyvo;
class SpectrumPlotParams;

// A square float image whose pixel i (row-major) is value(i).
CILImage squareImage(int nSide, int nBinning, const std::function<float(int)>& value);

// What a dataset of a test sequence is like. Empty texts are left out of its click info.
struct TestImage
{
    QString excitation;
    QString emission;
    int side = 4;
    int binning = 1;
    std::function<float(int)> value = [](int) { return 1.0F; };
    QString spotX;
    QString spotY;
    QString kyvoTime;
    QString kyvoInterval;
    QString probe;
    QString subjectType;
    bool luminescentSection = true;
    bool dataImage = true;
    bool photograph = true;
    // Which calibration figures the click info has: 0 none (counts only), 1 radiance, 2 radiant efficiency, 3
    // efficiency.
    int calibratedUnit = 2;
    QString isotope;
    QString acquisitionTime; // HH:mm:ss, with a date
};

// A sequence in memory, registered with the host as long as it lives. With calibration figures of 1 throughout, an
// image at binning B has radiance = counts / B^2, and every other unit the same numbers as radiance.
class TestSequence
{
public:
    explicit TestSequence(const QString& strId = "test-sequence");
    ~TestSequence();
    TestSequence(const TestSequence&) = delete;
    TestSequence& operator=(const TestSequence&) = delete;

    CORVSequenceDataset* operator->() const { return m_pSequence.get(); }
    QString id() const;
    // Click numbers are "<id>-0", "<id>-1", ... in the order of the calls.
    CORVDataset* add(const TestImage& image);
    QString click(int n) const;

private:
    std::unique_ptr<CORVSequenceDataset> m_pSequence;
    int m_nImages = 0;
};

// A spectrum over the pairs of the engine's selection.
SpectrumPlotParams* plotOf(const QList<KeyPair>& pairs, const std::vector<double>& values);

// Datasets "500" to "500 + 20 n" in emission at one excitation; the images are mixtures of `spectra` with smooth
// non-negative maps (map k of pixel i is mapValue(k, i)), so that a fit gives the maps back.
double mapValue(int nComponent, int nPixel);
void addMixture(TestSequence& sequence, int nSide, const std::vector<std::vector<double>>& spectra);
// Well separated spectra of nImages values and maximum 1.
std::vector<std::vector<double>> bellSpectra(int nComponents, int nImages);
// Gives the engine these spectra as its plots.
void takeSpectra(CORVSpumKyvo& engine, const std::vector<std::vector<double>>& spectra);
