// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/kmeans.h"

#include "XTNT/xtnt_parallel.h"
#include "platform/orvreconstructionmath/kmeans_distances.h"
#include "platform/orvreconstructionmath/kmeans_seeds.h"
#include "platform/orvreconstructionmath/kmeans_solver.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <utility>
#include <vector>

using XTNT::KMeansSolver;
using XTNT::Matrix;
using Labels = std::vector<long long>;

namespace {

Labels cluster(Matrix<double> data, long long k, long long maxIterations = 10000)
{
    XTNT::Vector<long long> labels;
    XTNT::kmeans(data, k, labels, maxIterations, XTNT::KMEANS_EUCLIDEAN, 1);
    return Labels(labels.data, labels.data + labels.n_);
}

Matrix<double> matrixOf(const std::vector<std::vector<double>>& rows)
{
    Matrix<double> data(static_cast<long long>(rows.size()),
                        rows.empty() ? 0 : static_cast<long long>(rows.front().size()));
    for (std::size_t r = 0; r < rows.size(); ++r) {
        std::copy(rows[r].begin(), rows[r].end(), data[static_cast<long long>(r)]);
    }
    return data;
}

// Clouds of `spread` around random places; with `steps` the values are rounded to a coarse grid, which makes ties and
// equal rows.
Matrix<double> clouds(long long rows, long long columns, long long places, double spread, unsigned seed,
                      double steps = 0)
{
    std::mt19937_64 generator(seed);
    std::uniform_real_distribution<double> place(-1, 1);
    std::normal_distribution<double> noise(0, spread);
    Matrix<double> centres(places, columns);
    for (long long i = 0; i < centres.storage.n_; ++i) {
        centres.storage[i] = place(generator);
    }
    Matrix<double> data(rows, columns);
    for (long long r = 0; r < rows; ++r) {
        for (long long i = 0; i < columns; ++i) {
            const double value = centres[r % places][i] + noise(generator);
            data[r][i] = steps > 0 ? std::round(value * steps) / steps : value;
        }
    }
    return data;
}

std::vector<const double*> rowsOf(const Matrix<double>& data)
{
    std::vector<const double*> rows;
    for (long long r = 0; r < data.num_rows(); ++r) {
        rows.push_back(data[r]);
    }
    return rows;
}

std::set<long long> used(const Labels& labels)
{
    return std::set<long long>(labels.begin(), labels.end());
}

// Checks that each row lies at the mean nearest to it, within rounding: what Lloyd's method ends with.
void expectFixedPoint(const Matrix<double>& data, const Labels& labels, long long k)
{
    std::vector<std::vector<double>> means(static_cast<std::size_t>(k),
                                           std::vector<double>(static_cast<std::size_t>(data.num_cols()), 0.0));
    std::vector<double> counts(static_cast<std::size_t>(k), 0.0);
    for (long long r = 0; r < data.num_rows(); ++r) {
        const auto label = static_cast<std::size_t>(labels[static_cast<std::size_t>(r)]);
        counts[label] += 1;
        for (long long i = 0; i < data.num_cols(); ++i) {
            means[label][static_cast<std::size_t>(i)] += data[r][i];
        }
    }
    for (std::size_t j = 0; j < means.size(); ++j) {
        for (double& value : means[j]) {
            value /= std::max(1.0, counts[j]);
        }
    }
    for (long long r = 0; r < data.num_rows(); ++r) {
        const auto label = static_cast<std::size_t>(labels[static_cast<std::size_t>(r)]);
        const double own = XTNT::squaredDistance(data[r], means[label].data(), data.num_cols());
        for (std::size_t j = 0; j < means.size(); ++j) {
            if (counts[j] > 0) {
                const double other = XTNT::squaredDistance(data[r], means[j].data(), data.num_cols());
                ASSERT_LE(own, other * (1 + 1e-12) + 1e-12)
                    << "row " << r << " of cluster " << label << " beside " << j;
            }
        }
    }
}

class KMeansTest : public ::testing::Test
{
protected:
    void TearDown() override { XTNT::setThreadCount(0); }
};

} // namespace

TEST_F(KMeansTest, WellSeparatedCloudsComeOutWhole)
{
    const Matrix<double> data = clouds(900, 6, 3, 0.01, 4);
    const Labels labels = cluster(data, 3);
    EXPECT_EQ(3u, used(labels).size());
    for (std::size_t r = 3; r < labels.size(); ++r) {
        ASSERT_EQ(labels[r % 3], labels[r]) << r;
    }
}

TEST_F(KMeansTest, EveryRowEndsAtItsNearestMean)
{
    for (long long k : {2, 3, 7, 12}) {
        const Matrix<double> data = clouds(3000, 9, 5, 0.4, static_cast<unsigned>(k));
        const Labels labels = cluster(data, k);
        EXPECT_EQ(static_cast<std::size_t>(k), used(labels).size());
        expectFixedPoint(data, labels, k);
    }
}

TEST_F(KMeansTest, SameInputGivesSameLabelsOnAnyNumberOfThreads)
{
    const Matrix<double> data = clouds(20000, 7, 6, 0.5, 11);
    XTNT::setThreadCount(1);
    const Labels one = cluster(data, 6);
    EXPECT_EQ(one, cluster(data, 6));
    for (int threads : {2, 4}) {
        XTNT::setThreadCount(threads);
        EXPECT_EQ(one, cluster(data, 6)) << threads;
    }
}

TEST_F(KMeansTest, BoundedSweepsGiveLabelsAndCentresOfPlainOnes)
{
    unsigned seed = 0;
    for (double steps : {0.0, 2.0, 8.0}) {
        for (double spread : {0.02, 0.3, 2.0}) {
            for (long long k : {2, 5, 9, 24}) {
                ++seed;
                const Matrix<double> data = clouds(5000, 1 + seed % 13, 6, spread, seed, steps);
                KMeansSolver plain(rowsOf(data), data.num_cols(), k);
                KMeansSolver bounded(rowsOf(data), data.num_cols(), k);
                plain.run(10000, KMeansSolver::Method::Plain);
                bounded.run(10000, KMeansSolver::Method::Bounded);
                ASSERT_EQ(plain.labels(), bounded.labels()) << "seed " << seed << " k " << k << " steps " << steps;
                ASSERT_EQ(plain.centres(), bounded.centres()) << "seed " << seed << " k " << k << " steps " << steps;
                ASSERT_EQ(plain.sweeps(), bounded.sweeps());
            }
        }
    }
}

TEST_F(KMeansTest, BoundedSweepsAreEqualToPlainOnesAfterAnyNumberOfSweeps)
{
    const Matrix<double> data = clouds(4000, 8, 4, 1.0, 77);
    for (long long limit : {1, 2, 3, 10, 51, 60}) {
        KMeansSolver plain(rowsOf(data), data.num_cols(), 7);
        KMeansSolver bounded(rowsOf(data), data.num_cols(), 7);
        plain.run(limit, KMeansSolver::Method::Plain);
        bounded.run(limit, KMeansSolver::Method::Bounded);
        EXPECT_LE(plain.sweeps(), limit);
        ASSERT_EQ(plain.labels(), bounded.labels()) << limit;
        ASSERT_EQ(plain.centres(), bounded.centres()) << limit;
    }
}

TEST_F(KMeansTest, BoundedSweepsStayEqualToPlainOnesThroughAudits)
{
    const Matrix<double> data = clouds(20000, 6, 1, 1.0, 78);
    KMeansSolver plain(rowsOf(data), data.num_cols(), 9);
    KMeansSolver bounded(rowsOf(data), data.num_cols(), 9);
    plain.run(10000, KMeansSolver::Method::Plain);
    bounded.run(10000, KMeansSolver::Method::Bounded);
    EXPECT_GT(plain.sweeps(), 51) << "too easy a case for this test";
    EXPECT_EQ(plain.labels(), bounded.labels());
    EXPECT_EQ(plain.centres(), bounded.centres());
    expectFixedPoint(data, Labels(bounded.labels().begin(), bounded.labels().end()), 9);
}

TEST_F(KMeansTest, BoundsSaveComparisons)
{
    const Matrix<double> data = clouds(20000, 10, 8, 0.2, 5);
    KMeansSolver plain(rowsOf(data), data.num_cols(), 8);
    KMeansSolver bounded(rowsOf(data), data.num_cols(), 8);
    plain.run(10000, KMeansSolver::Method::Plain);
    bounded.run(10000, KMeansSolver::Method::Bounded);
    EXPECT_LT(bounded.comparedRows(), plain.comparedRows());
}

TEST_F(KMeansTest, ObjectiveNeverRisesFromSweepToSweep)
{
    const Matrix<double> data = clouds(6000, 6, 5, 0.8, 21);
    KMeansSolver solver(rowsOf(data), data.num_cols(), 9);
    solver.start();
    double last = solver.objective();
    for (int sweep = 0; sweep < 40; ++sweep) {
        solver.moveCentres();
        solver.fullSweep();
        EXPECT_LE(solver.objective(), last * (1 + 1e-13)) << sweep;
        last = solver.objective();
    }
}

TEST_F(KMeansTest, NoRowsGiveNoLabels)
{
    EXPECT_TRUE(cluster(Matrix<double>(), 3).empty());
    EXPECT_TRUE(cluster(Matrix<double>(0, 5), 3).empty());
}

TEST_F(KMeansTest, RowsWithoutColumnsTakeLabelZero)
{
    EXPECT_EQ((Labels{0, 0, 0}), cluster(Matrix<double>(3, 0), 2));
}

TEST_F(KMeansTest, OneRowIsItsOwnCluster)
{
    EXPECT_EQ((Labels{0}), cluster(matrixOf({{1, 2, 3}}), 1));
    EXPECT_EQ((Labels{0}), cluster(matrixOf({{1, 2, 3}}), 4));
}

TEST_F(KMeansTest, FewerThanOneClusterCountsAsOne)
{
    const Matrix<double> data = clouds(50, 3, 4, 0.1, 3);
    EXPECT_EQ(Labels(50, 0), cluster(data, 0));
    EXPECT_EQ(Labels(50, 0), cluster(data, -7));
    EXPECT_EQ(Labels(50, 0), cluster(data, 1));
}

TEST_F(KMeansTest, AsManyClustersAsRowsSeparatesThemAll)
{
    const Matrix<double> data = clouds(40, 3, 4, 0.5, 8);
    EXPECT_EQ(40u, used(cluster(data, 40)).size());
}

TEST_F(KMeansTest, MoreClustersThanRowsSeparatesThemAllWithinTheLabels)
{
    const Matrix<double> data = clouds(12, 3, 4, 0.5, 9);
    const Labels labels = cluster(data, 1000000);
    EXPECT_EQ(12u, used(labels).size());
    EXPECT_GE(*std::min_element(labels.begin(), labels.end()), 0);
    EXPECT_LT(*std::max_element(labels.begin(), labels.end()), 1000000);
}

TEST_F(KMeansTest, ConstantDataMakesOneCluster)
{
    EXPECT_EQ(1u, used(cluster(Matrix<double>(500, 4, 0.1), 5)).size());
    EXPECT_EQ(1u, used(cluster(Matrix<double>(500, 4, 0.0), 5)).size());
}

TEST_F(KMeansTest, FewerDistinctRowsThanClustersKeepsEqualRowsTogether)
{
    Matrix<double> data(3000, 2);
    for (long long r = 0; r < data.num_rows(); ++r) {
        data[r][0] = data[r][1] = 0.1 * static_cast<double>(r % 3) + 0.7;
    }
    const Labels labels = cluster(data, 8);
    EXPECT_EQ(3u, used(labels).size());
    for (std::size_t r = 3; r < labels.size(); ++r) {
        ASSERT_EQ(labels[r % 3], labels[r]);
    }
}

TEST_F(KMeansTest, NoClusterStaysEmptyWhenDistinctRowsDifferByOneBit)
{
    // Squared differences of neighbours vanish beside the largest rows: the start cannot tell them apart.
    std::vector<std::vector<double>> rows;
    double value = 1e-170;
    for (int r = 0; r < 6; ++r) {
        rows.push_back({value, 0.0});
        rows.push_back({value, 0.0});
        value = std::nextafter(value, 1.0);
    }
    rows.push_back({1.0, 1.0});
    const Labels labels = cluster(matrixOf(rows), 7);
    EXPECT_EQ(7u, used(labels).size());
}

TEST_F(KMeansTest, FarOutlierLeavesNoClusterEmpty)
{
    Matrix<double> data = clouds(200, 2, 1, 1e-6, 12);
    data[17][0] = 1e9;
    for (long long k : {2, 5, 20, 200}) {
        EXPECT_EQ(static_cast<std::size_t>(k), used(cluster(data, k)).size()) << k;
    }
}

TEST_F(KMeansTest, RowsThatAreNotFiniteTakeLabelZeroAndMoveNoCentre)
{
    const Matrix<double> clean = clouds(300, 4, 3, 0.05, 30);
    const Labels expected = cluster(clean, 3);
    const double bad[] = {std::nan(""), std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity()};
    Matrix<double> data(303, 4);
    for (long long r = 0; r < 303; ++r) {
        const long long from = r - r / 101 - (r % 101 == 100 ? 1 : 0);
        for (long long i = 0; i < 4; ++i) {
            data[r][i] = r % 101 == 100 ? bad[r / 101] : clean[std::min(from, 299LL)][i];
        }
    }
    const Labels labels = cluster(data, 3);
    Labels kept;
    for (std::size_t r = 0; r < labels.size(); ++r) {
        if (r % 101 == 100) {
            EXPECT_EQ(0, labels[r]);
        } else {
            kept.push_back(labels[r]);
        }
    }
    EXPECT_EQ(expected, kept);
}

TEST_F(KMeansTest, RowsOfZerosTakeLabelZeroAndMoveNoCentre)
{
    const Matrix<double> clean = clouds(300, 4, 3, 0.05, 30);
    const Labels expected = cluster(clean, 3);
    Matrix<double> data(600, 4);
    for (long long r = 0; r < 300; ++r) {
        data[2 * r + 1][0] = -0.0;
        std::copy_n(clean[r], 4, data[2 * r]);
    }
    const Labels labels = cluster(data, 3);
    for (std::size_t r = 0; r < 300; ++r) {
        ASSERT_EQ(labels[2 * r], expected[r]);
        ASSERT_EQ(labels[2 * r + 1], 0);
    }
}

// An empty background is the largest cloud of all, and would take a cluster for itself.
TEST_F(KMeansTest, TwoSpotsOnBlackAreTwoClusters)
{
    const Labels labels = cluster(matrixOf({{0, 0}, {1, 0}, {0, 0}, {0, 1}, {0, 0}, {0, 2}, {2, 0}, {0, 0}}), 2);
    EXPECT_EQ(labels[1], labels[6]);
    EXPECT_EQ(labels[3], labels[5]);
    EXPECT_NE(labels[1], labels[3]);
}

TEST_F(KMeansTest, AllRowsNotFiniteGiveZeros)
{
    EXPECT_EQ(Labels(10, 0), cluster(Matrix<double>(10, 2, std::nan("")), 3));
}

TEST_F(KMeansTest, ScaleOfTheDataDoesNotMatterWithinPowersOfTwo)
{
    const Matrix<double> data = clouds(500, 5, 4, 0.3, 44);
    const Labels expected = cluster(data, 4);
    for (int exponent : {-1000, -30, 30, 1000}) {
        Matrix<double> scaled = data.deepCopy();
        for (long long i = 0; i < scaled.storage.n_; ++i) {
            scaled.storage[i] = std::ldexp(scaled.storage[i], exponent);
        }
        EXPECT_EQ(expected, cluster(scaled, 4)) << exponent;
    }
}

TEST_F(KMeansTest, NoSweepsGiveTheStartsLabels)
{
    const Matrix<double> data = clouds(400, 3, 4, 0.2, 2);
    const XTNT::KMeansSeeds seeds = XTNT::drawSeeds(rowsOf(data), 3, 4);
    const Labels expected(seeds.labels.begin(), seeds.labels.end());
    EXPECT_EQ(expected, cluster(data, 4, 0));
    EXPECT_EQ(expected, cluster(data, 4, -1));
}

TEST_F(KMeansTest, DataAreLeftAloneAndOldLabelsReplaced)
{
    Matrix<double> data = clouds(100, 3, 4, 0.2, 2);
    const Matrix<double> copy = data.deepCopy();
    XTNT::Vector<long long> labels(7);
    labels.fill(99);
    XTNT::kmeans(data, 4, labels, 10000, XTNT::KMEANS_EUCLIDEAN, 1);
    EXPECT_EQ(100, labels.n_);
    EXPECT_TRUE(std::equal(copy.storage.data, copy.storage.data + copy.storage.n_, data.storage.data));
}

TEST_F(KMeansTest, OptionHasNoEffect)
{
    Matrix<double> data = clouds(300, 3, 4, 0.4, 2);
    XTNT::Vector<long long> one;
    XTNT::Vector<long long> other;
    XTNT::kmeans(data, 4, one, 10000, XTNT::KMEANS_EUCLIDEAN, 1);
    XTNT::kmeans(data, 4, other, 10000, XTNT::KMEANS_EUCLIDEAN, 0);
    EXPECT_TRUE(std::equal(one.data, one.data + one.n_, other.data));
}

TEST_F(KMeansTest, SeedsAreDistinctRowsWithTheLabelsOfTheNearest)
{
    const Matrix<double> data = clouds(3000, 4, 6, 0.3, 70, 4);
    const auto rows = rowsOf(data);
    const XTNT::KMeansSeeds seeds = XTNT::drawSeeds(rows, 4, 9);
    ASSERT_EQ(9u, seeds.rows.size());
    double objective = 0;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        double least = std::numeric_limits<double>::infinity();
        int label = -1;
        for (std::size_t j = 0; j < 9; ++j) {
            const double distance = XTNT::squaredDistance(rows[r], data[seeds.rows[j]], 4);
            if (distance < least) {
                least = distance;
                label = static_cast<int>(j);
            }
        }
        ASSERT_EQ(label, seeds.labels[r]);
        objective += least;
    }
    EXPECT_NEAR(objective, seeds.objective, 1e-12 * objective);
    for (std::size_t j = 0; j < 9; ++j) {
        EXPECT_EQ(static_cast<int>(j), seeds.labels[static_cast<std::size_t>(seeds.rows[j])]);
    }
}

// Small integers make ties, equal rows and empty clusters frequent.
RC_GTEST_PROP(KMeansLaws, EveryClusterHasARowWhileThereAreEnoughDistinctOnes, ())
{
    const auto columns = *rc::gen::inRange(1, 4);
    const auto values = *rc::gen::nonEmpty(rc::gen::container<std::vector<int>>(rc::gen::inRange(-2, 3)));
    const auto k = *rc::gen::inRange(1, 9);
    const auto count = static_cast<long long>(values.size()) / columns;
    RC_PRE(count >= 1);
    Matrix<double> data(count, columns);
    std::set<std::vector<int>> distinct;
    for (long long r = 0; r < count; ++r) {
        const auto first = values.begin() + static_cast<std::ptrdiff_t>(r * columns);
        std::copy_n(first, columns, data[r]);
        distinct.insert(std::vector<int>(first, first + columns));
    }
    const Labels labels = cluster(data, k);
    RC_ASSERT(static_cast<long long>(labels.size()) == count);
    RC_ASSERT(*std::min_element(labels.begin(), labels.end()) >= 0);
    RC_ASSERT(*std::max_element(labels.begin(), labels.end()) < k);
    distinct.erase(std::vector<int>(static_cast<std::size_t>(columns), 0)); // takes no part
    const std::size_t clusters = std::min(distinct.size(), static_cast<std::size_t>(k));
    RC_ASSERT(used(labels).size() == std::max<std::size_t>(clusters, 1));
}

RC_GTEST_PROP(KMeansLaws, BoundedSweepsEqualPlainOnes, ())
{
    const auto seed = *rc::gen::inRange(0U, 1000000U);
    const auto k = *rc::gen::inRange(1, 12);
    const auto columns = *rc::gen::inRange(1, 7);
    const auto steps = *rc::gen::element(0.0, 1.0, 3.0);
    const Matrix<double> data = clouds(300, columns, 3, 0.7, seed, steps);
    KMeansSolver plain(rowsOf(data), columns, k);
    KMeansSolver bounded(rowsOf(data), columns, k);
    plain.run(200, KMeansSolver::Method::Plain);
    bounded.run(200, KMeansSolver::Method::Bounded);
    RC_ASSERT(plain.labels() == bounded.labels());
    RC_ASSERT(plain.centres() == bounded.centres());
}
