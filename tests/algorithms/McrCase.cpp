// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"

#include <cmath>
#include <cstring>
#include <random>
#include <regex>
#include <vector>

namespace testsupport {

namespace {

struct Trace
{
    std::string texts;
    std::vector<double> numbers;
};

Trace taken(const std::string& text)
{
    static const std::regex number("-?([0-9]+\\.?[0-9]*(e[+-]?[0-9]+)?|nan|inf)");
    Trace trace;
    auto after = text.cbegin();
    for (std::sregex_iterator it(text.begin(), text.end(), number), end; it != end; ++it) {
        const std::smatch& match = *it;
        trace.texts.append(after, match[0].first);
        trace.texts += '#';
        trace.numbers.push_back(std::stod(match.str()));
        after = match[0].second;
    }
    trace.texts.append(after, text.cend());
    return trace;
}

bool bothNaN(double a, double b)
{
    return std::isnan(a) && std::isnan(b);
}

// Printed with six digits.
bool closeAsPrinted(double a, double b)
{
    return bothNaN(a, b) || a == b || std::abs(a - b) <= 1e-5 * std::max(std::abs(a), std::abs(b)) + 1e-6;
}

XTNT::Matrix<double> asMatrix(const reference::Table& table)
{
    XTNT::Matrix<double> a(table.rows, table.columns);
    for (long long i = 0; i < a.storage.n_; ++i) {
        a.storage[i] = table(i / table.columns, i % table.columns);
    }
    return a;
}

bool closePercentages(double a, double b)
{
    return bothNaN(a, b) || std::abs(a - b) <= 1e-8 * b + 1e-10;
}

void expectAgreement(int result, const MCR& mcr, int expected, const reference::Resolution& reference)
{
    EXPECT_EQ(result, expected);
    EXPECT_EQ(mcr.iteration, reference.iteration);
    EXPECT_EQ(mcr.notImprovingCount, reference.notImprovingCount);
    EXPECT_EQ(mcr.lastError, reference.lastError);
    if (expected == 3) {
        EXPECT_EQ(mcr.lackOfFitPCA, reference.lackOfFitPCA);
        EXPECT_EQ(mcr.lackOfFitRaw, reference.lackOfFitRaw);
        return;
    }
    EXPECT_EQ(mcr.warmUp, reference.warmUp);
    EXPECT_TRUE(agree(mcr.conc, reference.conc)) << "conc";
    EXPECT_TRUE(agree(mcr.spec, reference.spec)) << "spec";
    EXPECT_TRUE(agree(mcr.data, reference.data)) << "data";
    EXPECT_TRUE(agree(mcr.fitData, reference.fitData)) << "fitData";
    EXPECT_TRUE(agree(mcr.rawData, reference.rawData)) << "rawData";
    EXPECT_PRED2(closePercentages, mcr.lackOfFitPCA, reference.lackOfFitPCA);
    EXPECT_PRED2(closePercentages, mcr.lackOfFitRaw, reference.lackOfFitRaw);
    const double scale = mcr.fitData.norm(0);
    EXPECT_LE((mcr.residualPCA - asMatrix(reference.residualPCA)).norm(0), 1e-8 * scale);
    for (long long i = 0; i < mcr.residualRaw.storage.n_; ++i) {
        const double expectedHere = reference.residualRaw(i / mcr.nCols, i % mcr.nCols);
        const double here = mcr.residualRaw.storage[i];
        ASSERT_TRUE(bothNaN(here, expectedHere) || std::abs(here - expectedHere) <= 1e-8 * scale) << i;
    }
}

} // namespace

XTNT::Matrix<double> mixture(long long M, long long N, int K, double noise, std::uint32_t seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> uniform(0, 1);
    XTNT::Matrix<double> conc(M, K);
    for (long long i = 0; i < conc.storage.n_; ++i) {
        const double amount = uniform(generator);
        conc.storage[i] = amount < 0.25 ? 0 : amount;
    }
    XTNT::Matrix<double> spec(K, N);
    for (long long c = 0; c < K; ++c) {
        const double peak = (static_cast<double>(c) + 0.5) * static_cast<double>(N) / K;
        const double width = (0.6 + 0.3 * uniform(generator)) * static_cast<double>(N) / K;
        for (long long j = 0; j < N; ++j) {
            const double distance = (static_cast<double>(j) - peak) / width;
            spec[c][j] = std::exp(-distance * distance);
        }
    }
    XTNT::Matrix<double> data = conc * spec;
    for (long long i = 0; i < data.storage.n_; ++i) {
        data.storage[i] += noise * (2 * uniform(generator) - 1);
    }
    return data;
}

Configure bareLoop()
{
    return [](MCR& mcr) {
        mcr.autoSorting = 0;
        mcr.forceAF = 0;
        mcr.normalization = 0;
        mcr.warmUp = 0;
    };
}

std::unique_ptr<MCR> preparedMcr(const XTNT::Matrix<double>& data, int K)
{
    auto mcr = std::make_unique<MCR>();
    EXPECT_EQ(mcr->setData(data), 1);
    EXPECT_EQ(mcr->setComponents(K), 0);
    return mcr;
}

XTNT::Matrix<int> oneRowOfBands(long long N)
{
    return XTNT::Matrix<int>(1, N, 1);
}

McrOutcome runMcr(const XTNT::Matrix<double>& data, int K, const Configure& configure, bool plain)
{
    McrOutcome outcome;
    outcome.mcr = preparedMcr(data, K);
    outcome.mcr->usePlainPath(plain);
    configure(*outcome.mcr);
    std::ostringstream trace;
    outcome.result = outcome.mcr->run(trace);
    outcome.trace = trace.str();
    return outcome;
}

McrOutcome expectAsReference(const XTNT::Matrix<double>& data, int K, const Configure& configure, bool compareTrace)
{
    McrOutcome ordinary;
    for (const bool plain : {true, false}) {
        SCOPED_TRACE(plain ? "plain path" : "ordinary path");
        auto mcr = preparedMcr(data.deepCopy(), K);
        mcr->usePlainPath(plain);
        configure(*mcr);
        reference::Resolution reference(*mcr);
        const int expected = reference.run();
        std::ostringstream trace;
        const int result = mcr->run(trace);
        expectAgreement(result, *mcr, expected, reference);
        if (compareTrace) {
            EXPECT_TRUE(sameTrace(trace.str(), reference.trace()));
        }
        ordinary = McrOutcome{result, trace.str(), std::move(mcr)};
    }
    return ordinary;
}

::testing::AssertionResult agree(const XTNT::Matrix<double>& a, const reference::Table& b, double tolerance)
{
    if (a.M != b.rows || a.N != b.columns) {
        return ::testing::AssertionFailure() << a.M << " x " << a.N << " against " << b.rows << " x " << b.columns;
    }
    double scale = 0;
    for (long long i = 0; i < a.M; ++i) {
        for (long long j = 0; j < a.N; ++j) {
            scale = std::max(scale, std::abs(b(i, j)));
        }
    }
    for (long long i = 0; i < a.M; ++i) {
        for (long long j = 0; j < a.N; ++j) {
            if (!bothNaN(a[i][j], b(i, j)) && !(std::abs(a[i][j] - b(i, j)) <= tolerance * scale)) {
                return ::testing::AssertionFailure()
                       << "[" << i << "][" << j << "]: " << a[i][j] << " against " << b(i, j);
            }
        }
    }
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult agree(const XTNT::Matrix<double>& a, const XTNT::Matrix<double>& b, double tolerance)
{
    return agree(a, reference::Table(b), tolerance);
}

::testing::AssertionResult sameTrace(const std::string& actual, const std::string& expected)
{
    const Trace a = taken(actual);
    const Trace b = taken(expected);
    if (a.texts != b.texts || a.numbers.size() != b.numbers.size()) {
        return ::testing::AssertionFailure() << "trace\n" << actual << "\nagainst\n" << expected;
    }
    for (std::size_t i = 0; i < a.numbers.size(); ++i) {
        if (!closeAsPrinted(a.numbers[i], b.numbers[i])) {
            return ::testing::AssertionFailure() << a.numbers[i] << " against " << b.numbers[i] << " in trace\n"
                                                 << actual << "\nagainst\n"
                                                 << expected;
        }
    }
    return ::testing::AssertionSuccess();
}

bool sameBits(const XTNT::Matrix<double>& a, const XTNT::Matrix<double>& b)
{
    return a.M == b.M && a.N == b.N &&
           std::memcmp(a.storage.data, b.storage.data, static_cast<std::size_t>(a.storage.n_) * sizeof(double)) == 0;
}

} // namespace testsupport
