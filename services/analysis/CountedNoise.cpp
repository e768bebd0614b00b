// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/CountedNoise.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "services/results/ComponentNumber.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using XTNT::Matrix;

// Elements that an estimate looks at; rows are taken evenly.
constexpr long long mostElements = 400000;
constexpr int rounds = 20;

std::optional<double> figureOf(const CORVDataset& dataset, const char* pKey)
{
    const QStringList camera{QLatin1String(ClickKeys::kCameraSystemInfo)};
    const std::optional<double> value = clickNumberValue(dataset.clickInfo, camera, pKey);
    return value && *value > 0.0 && std::isfinite(*value) ? value : std::nullopt;
}

// Pixels of the image that an element of the cube gathers; not above the binning's square, below 1 where counts are
// spread over finer ones.
double pixelsOfElement(CORVDataset& dataset, int nBinning)
{
    const double ratio = nBinning / static_cast<double>(dataset.getBinningForImage(IMAGETYPE_MAIN_DATA));
    return ratio * ratio;
}

// What the counts of each image are multiplied by where the cube is corrected for decay; empty where it is not.
QVector<double> decayFactorsOf(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence)
{
    const AnalysisInput& input = engine.m_analysisInput;
    QVector<double> factors;
    if (engine.m_bCherenkov && engine.m_eMode == RUNMODE_AUTOMATIC && input.decayCorrection) {
        sequence.calculateDecayCorrectFactor_CherenkovData(engine.m_imageList, input.halfLifeSeconds, factors);
    }
    return factors;
}

// Without counts: noise that is in each image as large as it is seen to be.
void takeSeenNoise(const Matrix<double>& data, CountedNoise& noise)
{
    const std::vector<double> deviations = ComponentNumber::of(data).noiseOfImages;
    for (long long j = 0; j < data.num_cols(); ++j) {
        double sum = 0.0;
        for (long long p = 0; p < data.num_rows(); ++p) {
            sum += data[p][j];
        }
        const double mean = sum / static_cast<double>(std::max(1LL, data.num_rows()));
        const double deviation = deviations.empty() ? 0.0 : deviations[static_cast<std::size_t>(j)];
        const double known = mean > 0.0 && deviation > 0.0 ? deviation * deviation / mean : 1.0;
        for (long long s = 0; s < noise.light.num_rows(); ++s) {
            noise.light[s][j] = known;
            noise.reading[s][j] = known * known;
        }
    }
}

// One element's part of the estimate.
struct Square
{
    double light;   // of the variance for a gain of 1
    double reading; // of the variance for a read noise of a count
    double left;    // the square of what the fit leaves
};

std::vector<Square> squaresOf(const Matrix<double>& data, const Matrix<double>& spectra, const Matrix<double>& fit,
                              const CountedNoise& noise)
{
    std::vector<Square> telling;
    std::vector<Square> others;
    const long long images = data.num_cols();
    const long long stride = std::max(1LL, data.num_rows() * images / mostElements);
    const long long rowsOfSpot = std::max(1LL, data.num_rows() / noise.light.num_rows());
    for (long long p = 0; p < data.num_rows(); p += stride) {
        const auto above = std::count_if(fit[p], fit[p] + fit.num_cols(), [](double c) { return c > 0.0; });
        if (above >= images) {
            continue;
        }
        // The fit takes its degrees of freedom from all images alike.
        const double freedom = static_cast<double>(images - above) / static_cast<double>(images);
        std::vector<Square>& squares = XTNT::tellsOfNoise(data[p], images) ? telling : others;
        for (long long j = 0; j < images; ++j) {
            double expected = 0.0;
            for (long long k = 0; k < spectra.num_rows(); ++k) {
                expected += fit[p][k] * spectra[k][j];
            }
            const double left = data[p][j] - expected;
            const long long spot = p / rowsOfSpot;
            const Square square{noise.light[spot][j] * std::max(expected, 0.0), noise.reading[spot][j],
                                left * left / freedom};
            if (std::isfinite(square.left)) {
                squares.push_back(square);
            }
        }
    }
    // What was cut off at 0 scatters less than the noise.
    constexpr std::size_t tenth = 10;
    return tenth * telling.size() > others.size() ? telling : others;
}

// The factors a, b >= 0 of left = a * light + b * reading, by least squares with weights.
struct Factors
{
    double light = 1.0;
    double reading = 1.0;

    double varianceOf(const Square& square) const { return light * square.light + reading * square.reading; }
};

// With the weights of factors of before; with `bLightGiven` that of the light stays.
Factors solve(const std::vector<Square>& squares, const Factors& before, bool bLightGiven)
{
    double ll = 0.0;
    double lr = 0.0;
    double rr = 0.0;
    double ly = 0.0;
    double ry = 0.0;
    for (const Square& square : squares) {
        const double variance = before.varianceOf(square);
        if (!(variance > 0.0)) {
            continue;
        }
        const double light = square.light / variance;
        const double reading = square.reading / variance;
        const double left = square.left / variance;
        ll += light * light;
        lr += light * reading;
        rr += reading * reading;
        ly += light * left;
        ry += reading * left;
    }
    const auto ratio = [](double a, double b) { return b > 0.0 ? std::max(a / b, 0.0) : 0.0; };
    if (bLightGiven) {
        return {before.light, ratio(ry - before.light * lr, rr)};
    }
    const double determinant = ll * rr - lr * lr;
    const Factors both{ratio(ly * rr - ry * lr, determinant), ratio(ry * ll - ly * lr, determinant)};
    if (both.light > 0.0 && both.reading > 0.0) {
        return both;
    }
    return both.light > 0.0 ? Factors{ratio(ly, ll), 0.0} : Factors{0.0, ratio(ry, rr)};
}

// Where the read noise is told both follow from the gain: b = (readNoise * a)^2. One step of C. F. Gauss and I. Newton;
// to hold b of the step before would swing beyond the solution where reading makes up most of the noise.
Factors stepOfGain(const std::vector<Square>& squares, const Factors& before, double dReadNoise)
{
    constexpr double least = 0.1; // of the factor, so that it stays above 0
    const double square = dReadNoise * dReadNoise;
    double slopes = 0.0;
    double rests = 0.0;
    for (const Square& element : squares) {
        const double variance = before.varianceOf(element);
        if (!(variance > 0.0)) {
            continue;
        }
        const double slope = (element.light + 2.0 * square * before.light * element.reading) / variance;
        slopes += slope * slope;
        rests += slope * (element.left / variance - 1.0);
    }
    const double light = slopes > 0.0 ? std::max(before.light + rests / slopes, least * before.light) : before.light;
    return {light, square * light * light};
}

} // namespace

CountedNoise CountedNoise::of(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence)
{
    CountedNoise noise;
    const long long images = engine.m_cube.m_data.num_cols();
    const long long spots = std::max(1, engine.m_cube.m_nSpots);
    noise.light = Matrix<double>(spots, images, 1.0);
    noise.reading = Matrix<double>(spots, images, 1.0);
    const bool counts = engine.m_eUnit == DISPLAYUNIT_COUNTS;
    const QVector<double> decay = decayFactorsOf(engine, sequence);
    for (int i = 0; i < engine.m_imageList.size() && i < spots * images; ++i) {
        CORVDataset* dataset = sequence.getDataset(engine.m_imageList[i]);
        double count = 0.0;
        if (dataset == nullptr || !dataset->countInUnit(static_cast<tag_edisplayunit>(engine.m_eUnit), &count)) {
            noise.calibrated = false;
            break;
        }
        if (i == 0) {
            noise.gain = figureOf(*dataset, ClickKeys::kElectronsPerCount);
            noise.readNoise = figureOf(*dataset, ClickKeys::kReadNoise);
        }
        // Counts add up, other units are means.
        const double pixels = pixelsOfElement(*dataset, engine.m_nBinning);
        const double gathered = std::max(pixels, 1.0);
        const double factor = decay.isEmpty() ? 1.0 : decay.at(static_cast<int>(i % images));
        noise.light[i / images][i % images] = factor * (counts ? 1.0 : count / gathered);
        noise.reading[i / images][i % images] = factor * factor * (counts ? pixels : count * count / gathered);
    }
    if (!noise.calibrated) {
        noise.gain.reset();
        noise.readNoise.reset();
        takeSeenNoise(engine.m_cube.m_data, noise);
    }
    return noise;
}

void CountedNoise::estimate(const Matrix<double>& data, const Matrix<double>& spectra, const Matrix<double>& fit)
{
    if (gain && readNoise) {
        return;
    }
    const std::vector<Square> squares = squaresOf(data, spectra, fit, *this);
    double sumOfLight = 0.0;
    double sumOfReading = 0.0;
    double left = 0.0;
    for (const Square& square : squares) {
        sumOfLight += square.light;
        sumOfReading += square.reading;
        left += square.left;
    }
    if (!(left > 0.0) || !(sumOfLight > 0.0)) {
        gain = gain.value_or(1.0);
        readNoise = readNoise.value_or(1.0);
        return;
    }
    Factors factors{gain ? 1.0 / *gain : 0.5 * left / sumOfLight, 0.5 * left / sumOfReading};
    if (readNoise) {
        factors.reading = *readNoise * factors.light * *readNoise * factors.light;
    }
    for (int round = 0; round < rounds; ++round) {
        const Factors next =
            readNoise ? stepOfGain(squares, factors, *readNoise) : solve(squares, factors, gain.has_value());
        if (!(next.light > 0.0) && !(next.reading > 0.0)) {
            break;
        }
        factors = next;
    }
    // Noise that does not grow with the light at all is as if a count were a hardly seen part of an electron.
    constexpr double smallest = 1e-9;
    factors.light = std::max(factors.light, smallest * left / sumOfLight);
    gain = gain.value_or(1.0 / factors.light);
    readNoise = readNoise.value_or(std::sqrt(factors.reading) * *gain);
}

XTNT::NoiseModel CountedNoise::model() const
{
    const double electrons = gain.value_or(1.0);
    const double counts = std::max(readNoise.value_or(1.0), 1.0) / electrons;
    XTNT::NoiseModel model{light.deepCopy(), reading.deepCopy()};
    for (long long i = 0; i < model.slopes.storage.n_; ++i) {
        model.slopes.storage[i] /= electrons;
        model.floors.storage[i] *= counts * counts;
    }
    return model;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted
