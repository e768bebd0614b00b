// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ComponentNumber.h"

#include "XTNT/row_product.h"
#include "XTNT/xtnt_parallel.h"
#include "XTNT/xtnt_svd.h"
#include "XTNT/xtnt_vector.h"
#include "algorithms/rowPasses.h"
#include "services/basis/jsonNumber.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using XTNT::Matrix;
using Values = std::vector<double>;

constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();
// Neighbouring images are added up beyond: their noise stays apart, and components that differ in one band of many are
// none that an unmixing could use.
constexpr long long mostColumns = 32;
// Where the camera's noise was cut off at 0 its mean is not 0 any more, which looks like a component.
constexpr double mostZeros = 0.125;
constexpr long long rowsAColumn = 10; // at least
// Images are stored in single precision.
constexpr double rounding = 1e-7;
// Quantile of the Tracy-Widom law (of order 1) that one eigenvalue of noise in a thousand passes.
constexpr double tracyWidom = 3.2724;
// Beyond the law: filtered or compressed images come to a tenth of the noise, and hundreds of thousands of pixels show
// it. A component with less light than that is none that an unmixing could use.
constexpr double margin = 0.15;
// What images of a camera share beside their sources (a shift of a part of a pixel between filters, unlike point
// spreads and flat fields, a detector that is not quite linear, a source whose spectrum differs from place to place)
// grows with the light: a few percent of it, at edges and in odd places more. Beyond this part of a pixel's light there
// is a source, if one pixel in a hundred has so much. Found with simulated scenes; docs/accuracy.md has those it was
// not found with.
constexpr double mostShared = 0.15;
constexpr long long onePixelIn = 100;
// Such errors fall off gradually, down into the noise. An eigenvalue so many times the next is the end of the sources,
// unless there was a far steeper fall ahead of it.
constexpr double abruptly = 12.0;
constexpr double asAbruptly = 0.3;
// More than noise, though within the margin, may go on falling: the last eigenvalue then counts against three margins.
constexpr double marginsBelow = 3.0;
// A sum of squares of noise passes its bound in one of e^8 = 3000 pixels at most.
constexpr double exponentOfChance = 8.0;
// An eigenvalue of 2 has as much signal as noise.
constexpr double clearly = 2.0;
constexpr int mostRounds = 60;
constexpr double settled = 1e-4;

// As many components as the noise of each of `n` images can be told beside (W. Ledermann, On the rank of the reduced
// correlational matrix in multiple-factor analysis, Psychometrika 2 (1937) 85).
int mostComponents(long long n)
{
    const double columns = static_cast<double>(n);
    return static_cast<int>(std::floor(columns + 0.5 - std::sqrt(2.0 * columns + 0.25)));
}

std::size_t at(long long i)
{
    return static_cast<std::size_t>(i);
}

// Which column of the estimate an image belongs to; -1 for one without light.
std::vector<long long> groupsOf(const Matrix<double>& data, const Values& sums)
{
    const long long lit = std::count_if(sums.begin(), sums.end(), [](double sum) { return sum > 0.0; });
    const long long columns = std::min(lit, mostColumns);
    std::vector<long long> groups;
    long long seen = 0;
    for (long long j = 0; j < data.num_cols(); ++j) {
        groups.push_back(sums[at(j)] > 0.0 ? seen++ * columns / std::max(lit, 1LL) : -1);
    }
    return groups;
}

Values columnSums(const Matrix<double>& data, long long nStride)
{
    Values sums(at(data.num_cols()), 0.0);
    for (long long p = 0; p < data.num_rows(); p += nStride) {
        for (long long j = 0; j < data.num_cols(); ++j) {
            sums[at(j)] += data[p][j];
        }
    }
    return sums;
}

// Rows that tell of the noise.
std::vector<long long> rowsOf(const Matrix<double>& data, const Values& sums, long long nStride)
{
    const long long lit = std::count_if(sums.begin(), sums.end(), [](double sum) { return sum > 0.0; });
    std::vector<long long> whole;
    std::vector<long long> bright;
    for (long long p = 0; p < data.num_rows(); p += nStride) {
        const long long zeros = std::count_if(data[p], data[p] + data.num_cols(), [](double v) { return !(v > 0.0); }) -
                                (data.num_cols() - lit);
        if (zeros < lit) {
            bright.push_back(p);
        }
        if (static_cast<double>(zeros) <= mostZeros * static_cast<double>(lit)) {
            whole.push_back(p);
        }
    }
    const bool enough = static_cast<long long>(whole.size()) >= rowsAColumn * lit && 8 * whole.size() >= bright.size();
    return enough ? whole : bright;
}

// The singular values and right vectors of a matrix as its square root: rows of diag(s) V'.
Matrix<double> triangleOf(const XTNT::SVD& svd)
{
    Matrix<double> triangle(svd.n, svd.n);
    for (long long i = 0; i < std::min(svd.n, svd.s.n_); ++i) {
        for (long long j = 0; j < svd.n; ++j) {
            triangle[i][j] = svd.s[i] * svd.V[j][i];
        }
    }
    return triangle;
}

// The factor model of second moments: `triangle` is their square root for `rows` rows.
class FactorModel
{
public:
    FactorModel(const Matrix<double>& triangle, long long nRows)
        : m_triangle(triangle), m_dRows(static_cast<double>(nRows))
    {
        const long long n = triangle.num_cols();
        for (long long j = 0; j < n; ++j) {
            double square = 0.0;
            for (long long i = 0; i < n; ++i) {
                square += triangle[i][j] * triangle[i][j];
            }
            m_moments.push_back(square / m_dRows);
        }
        startNoise();
    }

    // Brings the noise of each column to k components; afterwards eigenvalues() are those of the whitened moments.
    void fit(int k)
    {
        m_noise = m_start;
        for (int round = 0; round < mostRounds; ++round) {
            decompose();
            double change = 0.0;
            for (std::size_t j = 0; j < m_noise.size(); ++j) {
                double signal = 0.0;
                for (int i = 0; i < k; ++i) {
                    const double part = m_vectors[static_cast<long long>(j)][i];
                    signal += std::max(m_eigenvalues[at(i)] - 1.0, 0.0) * part * part;
                }
                const double noise = std::max(m_moments[j] - m_noise[j] * signal, floorOf(j));
                change = std::max(change, std::abs(noise / m_noise[j] - 1.0));
                m_noise[j] = noise;
            }
            if (change < settled) {
                break;
            }
        }
        decompose();
    }

    const Values& eigenvalues() const { return m_eigenvalues; }
    // Those of the whitened moments, a column each.
    const Matrix<double>& vectors() const { return m_vectors; }
    const Values& noise() const { return m_noise; }

private:
    double floorOf(std::size_t nColumn) const { return m_moments[nColumn] * rounding * rounding; }

    // Of each column what the others do not explain: the inverse of the diagonal of the moments' inverse.
    void startNoise()
    {
        const XTNT::SVD svd(m_triangle);
        for (std::size_t j = 0; j < m_moments.size(); ++j) {
            double inverse = 0.0;
            for (long long i = 0; i < svd.s.n_; ++i) {
                const double part = svd.V[static_cast<long long>(j)][i];
                const double value = std::max(svd.s[i], rounding * svd.s[0] * std::numeric_limits<double>::epsilon());
                inverse += part * part / (value * value);
            }
            m_start.push_back(std::max(1.0 / (inverse * m_dRows), floorOf(j)));
        }
    }

    void decompose()
    {
        const long long n = m_triangle.num_cols();
        Matrix<double> whitened(n, n);
        for (long long i = 0; i < n; ++i) {
            for (long long j = 0; j < n; ++j) {
                whitened[i][j] = m_triangle[i][j] / std::sqrt(m_noise[at(j)]);
            }
        }
        const XTNT::SVD svd(whitened);
        m_vectors = svd.V;
        m_eigenvalues.clear();
        for (long long i = 0; i < n; ++i) {
            m_eigenvalues.push_back(svd.s[i] * svd.s[i] / m_dRows);
        }
    }

    Matrix<double> m_triangle;
    double m_dRows;
    Values m_moments;
    Values m_start;
    Values m_noise;
    Values m_eigenvalues;
    Matrix<double> m_vectors;
};

// Largest eigenvalue of the second moments of noise of 1 in `n` columns of `rows` rows.
double edgeOfNoise(long long nRows, long long n)
{
    const double a = std::sqrt(static_cast<double>(nRows) - 0.5);
    const double b = std::sqrt(static_cast<double>(n) - 0.5);
    const double centre = (a + b) * (a + b);
    const double width = (a + b) * std::cbrt(1.0 / a + 1.0 / b);
    return (centre + tracyWidom * width) / static_cast<double>(nRows);
}

// By how much the sum of nSquares squares of noise of 1 may pass its mean (B. Laurent, P. Massart, Adaptive estimation
// of a quadratic functional by model selection, Ann. Statist. 28 (2000) 1302).
double largestChance(int nSquares)
{
    return 2.0 * std::sqrt(exponentOfChance * nSquares) + 2.0 * exponentOfChance;
}

// The data of the estimate, a row scaled each by its light.
struct ScaledRows
{
    Matrix<double> values;
    Values columnScales; // of the groups: what they were divided by
};

ScaledRows scaledRows(const Matrix<double>& data, const std::vector<long long>& rows,
                      const std::vector<long long>& groups)
{
    const long long columns = 1 + *std::max_element(groups.begin(), groups.end());
    ScaledRows scaled;
    scaled.values = Matrix<double>(static_cast<long long>(rows.size()), columns);
    scaled.columnScales.assign(at(columns), 0.0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        double* target = scaled.values[static_cast<long long>(i)];
        for (std::size_t j = 0; j < groups.size(); ++j) {
            if (groups[j] >= 0) {
                target[groups[j]] += data[rows[i]][static_cast<long long>(j)];
            }
        }
        for (long long g = 0; g < columns; ++g) {
            scaled.columnScales[at(g)] += target[g] / static_cast<double>(rows.size());
        }
    }
    for (long long i = 0; i < scaled.values.num_rows(); ++i) {
        double* row = scaled.values[i];
        double light = 0.0;
        for (long long g = 0; g < columns; ++g) {
            row[g] /= scaled.columnScales[at(g)];
            light += row[g] / static_cast<double>(columns);
        }
        for (long long g = 0; g < columns; ++g) {
            row[g] /= std::sqrt(light);
        }
    }
    return scaled;
}

// For each number of components below nAbove: the rows of which it leaves more than noise and mostShared of the light.
// Rest and light are sums of squares in the directions of the nAbove components, where noise has a variance of 1.
std::vector<long long> rowsLeft(const Matrix<double>& rows, const FactorModel& model, int nAbove)
{
    if (nAbove < 1) {
        return {};
    }
    Matrix<double> directions(rows.num_cols(), nAbove);
    for (long long j = 0; j < rows.num_cols(); ++j) {
        for (int i = 0; i < nAbove; ++i) {
            directions[j][i] = model.vectors()[j][i] / std::sqrt(model.noise()[at(j)]);
        }
    }
    const Matrix<double> scores = XTNT::multiplyRows(rows, directions);
    std::vector<long long> left(at(nAbove), 0);
    Values rest(at(nAbove), 0.0);
    for (long long p = 0; p < scores.num_rows(); ++p) {
        double squares = 0.0;
        for (int i = nAbove - 1; i >= 0; --i) {
            squares += scores[p][i] * scores[p][i];
            rest[at(i)] = squares;
        }
        const double shared = mostShared * mostShared * (squares - nAbove);
        for (int i = 0; i < nAbove; ++i) {
            const double beyond = rest[at(i)] - (nAbove - i);
            left[at(i)] += beyond > std::max(shared, largestChance(nAbove - i)) ? 1 : 0;
        }
    }
    return left;
}

// How many of the nAbove components above the noise are sources: behind them the rest is small against the light, or
// the eigenvalues fall off abruptly, as those of errors do not (R. B. Cattell, The scree test for the number of
// factors, Multivariate Behav. Res. 1 (1966) 245; by ratios as in S. C. Ahn, A. R. Horenstein, Eigenvalue ratio test
// for the number of factors, Econometrica 81 (2013) 1203). `dFollowing` stands for the signal behind the last.
int sourcesAmong(int nAbove, double dFollowing, const Values& eigenvalues, const std::vector<long long>& left,
                 long long nRows)
{
    int sources = std::min(nAbove, 1);
    // The first is the mean light, much larger than all others: its fall tells nothing.
    double steepest = 0.0;
    for (int k = 2; k <= nAbove; ++k) {
        const double following = k < nAbove ? std::max(eigenvalues[at(k)] - 1.0, margin) : dFollowing;
        const double fall = (eigenvalues[at(k - 1)] - 1.0) / following;
        if (left[at(k - 1)] * onePixelIn > nRows) {
            sources = k;
            steepest = fall;
        } else if (fall > std::max(abruptly, asAbruptly * steepest)) {
            sources = k;
        }
        steepest = std::max(steepest, fall);
    }
    return sources;
}

int countAbove(const Values& eigenvalues, double dLimit)
{
    return static_cast<int>(
        std::count_if(eigenvalues.begin(), eigenvalues.end(), [dLimit](double value) { return value > dLimit; }));
}

// From a model of the nAbove components above the noise; dEdge is the largest eigenvalue of noise beside them. With
// bOpen there is no telling what follows.
void tellNumber(const Matrix<double>& rows, const FactorModel& model, int nAbove, double dEdge, bool bOpen,
                ComponentNumber* pNumber)
{
    const Values& eigenvalues = model.eigenvalues();
    double following = eigenvalues[at(nAbove)] > dEdge ? marginsBelow * margin : margin;
    if (bOpen) {
        following = std::numeric_limits<double>::infinity();
    }
    const int sources = sourcesAmong(nAbove, following, eigenvalues, rowsLeft(rows, model, nAbove), rows.num_rows());
    // One component does not tell whether it is the last source or the first of the rest.
    pNumber->likely = nAbove - sources > 1 ? sources : nAbove;
    pNumber->open = bOpen && pNumber->likely == nAbove;
    pNumber->least = std::min(pNumber->likely, countAbove(eigenvalues, clearly));
    pNumber->most = bOpen ? static_cast<int>(rows.num_cols()) : std::max(nAbove, countAbove(eigenvalues, dEdge));
}

// The noise of the data's own images, over all rows by their light: a group's is shared by its images as theirs is.
// `sums` are those of every nStride-th row.
void tellNoise(const Matrix<double>& data, const Values& sums, const std::vector<long long>& groups,
               const ScaledRows& scaled, const Values& noise, long long nStride, ComponentNumber* pNumber)
{
    Values light(scaled.columnScales.size(), 0.0);
    for (std::size_t j = 0; j < groups.size(); ++j) {
        if (groups[j] >= 0) {
            light[at(groups[j])] += sums[j];
        }
    }
    const long long nSampled = (data.num_rows() + nStride - 1) / nStride;
    const auto sampled = static_cast<double>(nSampled);
    double meanLight = 0.0;
    for (std::size_t g = 0; g < light.size(); ++g) {
        meanLight += light[g] / sampled / scaled.columnScales[g] / static_cast<double>(light.size());
    }
    double noiseSquares = 0.0;
    for (std::size_t j = 0; j < groups.size(); ++j) {
        double variance = 0.0;
        if (groups[j] >= 0) {
            const auto g = at(groups[j]);
            variance = noise[g] * scaled.columnScales[g] * scaled.columnScales[g] * meanLight * sums[j] / light[g];
        }
        noiseSquares += variance * static_cast<double>(data.num_rows());
        pNumber->noiseOfImages.push_back(std::sqrt(variance));
    }
    const double size = rowpass::frobeniusNorm(data);
    pNumber->noise = size > 0.0 ? std::sqrt(noiseSquares) / size : notKnown;
}

} // namespace

void ComponentNumber::addTo(QJsonObject& json) const
{
    if (likely < 1) {
        return;
    }
    json.insert(QStringLiteral("componentsAboveNoise"), likely);
    json.insert(QStringLiteral("componentsAboveNoiseLeast"), least);
    json.insert(QStringLiteral("componentsAboveNoiseMost"), most);
    json.insert(QStringLiteral("noise"), jsonNumber(noise));
}

QString ComponentNumber::text() const
{
    if (likely < 1) {
        return QStringLiteral("unknown");
    }
    if (open) {
        return QStringLiteral("at least %1").arg(least);
    }
    return least == most ? QString::number(likely) : QStringLiteral("%1 (%2 to %3)").arg(likely).arg(least).arg(most);
}

ComponentNumber ComponentNumber::of(const Matrix<double>& data, long long mostElements)
{
    ComponentNumber number;
    number.noise = notKnown;
    const long long stride = std::max(1LL, data.num_rows() * data.num_cols() / mostElements);
    const Values sums = columnSums(data, stride);
    const std::vector<long long> groups = data.empty() ? std::vector<long long>() : groupsOf(data, sums);
    const bool finite = std::all_of(sums.begin(), sums.end(), [](double sum) { return std::isfinite(sum); });
    if (!finite || groups.empty()) {
        return number;
    }
    const long long columns = 1 + *std::max_element(groups.begin(), groups.end());
    const int limit = mostComponents(columns);
    const std::vector<long long> rows = rowsOf(data, sums, stride);
    const auto count = static_cast<long long>(rows.size());
    if (limit < 1 || count < rowsAColumn * columns) {
        return number;
    }
    const ScaledRows scaled = scaledRows(data, rows, groups);
    XTNT::cancellationPoint();
    FactorModel model(triangleOf(XTNT::SVD(scaled.values)), count);
    for (int k = 0; k <= limit; ++k) {
        XTNT::cancellationPoint();
        model.fit(k);
        const double edge = edgeOfNoise(count, columns - k);
        if (k == limit || !(model.eigenvalues()[at(k)] > edge + margin)) {
            tellNumber(scaled.values, model, k, edge, k == limit, &number);
            break;
        }
    }
    tellNoise(data, sums, groups, scaled, model.noise(), stride, &number);
    return number;
}
