// SPDX-License-Identifier: GPL-3.0-or-later
// The thin singular value decomposition, the principal components of the autoscaled data and the reconstruction from
// six of them, each beside a plain path: one Householder factorisation of the whole matrix, column by column, and
// whole-matrix products. Times also in units of R, one single-threaded pass that sums the same matrix; the highest
// memory beside the data in units of theirs.
#include "bench_support.h"
#include "process_memory.h"

#include "algorithms/PCA.h"

#include "XTNT/xtnt_svd.h"

#include <string>

namespace {

using bench::Size;
using XTNT::Matrix;
using XTNT::Vector;

constexpr int fastIterations = 9;
constexpr int slowIterations = 1;
constexpr int repetitions = 5;
constexpr int keptComponents = 6;
constexpr unsigned autoscale = 1;

struct Problem
{
    explicit Problem(const Size& of) : pixels(bench::makePixels(of, bench::makeSpectra(of)))
    {
        pca.decompose(pixels, 0);
    }

    Matrix<double> pixels;
    PCA pca;
};

double product(const double* a, const double* b, long long n)
{
    double sum = 0;
    for (long long i = 0; i < n; ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

// v becomes the vector of the reflection that takes it to its first axis; the number it has there is returned. Of
// length root of two, so that the reflection is x - v (v'x).
double makeReflection(double* v, long long n)
{
    const double length = -std::copysign(std::sqrt(product(v, v, n)), v[0]);
    v[0] -= length;
    const double scale = std::sqrt(2.0 / product(v, v, n));
    for (long long i = 0; i < n; ++i) {
        v[i] *= scale;
    }
    return length;
}

void reflect(const double* v, double* column, long long n)
{
    const double amount = product(v, column, n);
    for (long long i = 0; i < n; ++i) {
        column[i] -= amount * v[i];
    }
}

struct Factors
{
    Matrix<double> U;
    Vector<double> s;
    Matrix<double> V;
};

// Of a tall matrix of full rank: reflections a column of the whole matrix at a time, the small triangle by the class.
Factors plainSvd(const Matrix<double>& a)
{
    const long long m = a.num_rows();
    const long long n = a.num_cols();
    Matrix<double> columns = transpose(a);
    Matrix<double> triangle(n, n);
    for (long long k = 0; k < n; ++k) {
        triangle[k][k] = makeReflection(columns[k] + k, m - k);
        for (long long j = k + 1; j < n; ++j) {
            reflect(columns[k] + k, columns[j] + k, m - k);
            triangle[k][j] = columns[j][k];
        }
    }
    const XTNT::SVD small(triangle);
    Matrix<double> left(n, m);
    for (long long j = 0; j < n; ++j) {
        for (long long i = 0; i < n; ++i) {
            left[j][i] = small.U[i][j];
        }
        for (long long k = n - 1; k >= 0; --k) {
            reflect(columns[k] + k, left[j] + k, m - k);
        }
    }
    return {transpose(left), small.s, small.V};
}

Matrix<double> autoscaled(const Matrix<double>& x)
{
    const double m = static_cast<double>(x.num_rows());
    Matrix<double> result = x.deepCopy();
    for (long long j = 0; j < x.num_cols(); ++j) {
        double mean = 0;
        for (long long i = 0; i < x.num_rows(); ++i) {
            mean += x[i][j] / m;
        }
        double squares = 0;
        for (long long i = 0; i < x.num_rows(); ++i) {
            squares += (x[i][j] - mean) * (x[i][j] - mean);
        }
        for (long long i = 0; i < x.num_rows(); ++i) {
            result[i][j] = (x[i][j] - mean) / std::sqrt(squares / (m - 1));
        }
    }
    return result;
}

// What a path came to, for the comparison with its plain partner.
using Outcome = Vector<double>;

Outcome svdFast(const Problem& p)
{
    return XTNT::SVD(p.pixels).s;
}

Outcome svdPlain(const Problem& p)
{
    return plainSvd(p.pixels).s;
}

Outcome pcaFast(const Problem& p)
{
    PCA pca;
    pca.decompose(p.pixels, autoscale);
    return pca.eigenvalues();
}

Outcome pcaPlain(const Problem& p)
{
    Outcome values = plainSvd(autoscaled(p.pixels)).s;
    for (long long i = 0; i < values.n_; ++i) {
        values[i] *= values[i];
    }
    return values;
}

Outcome reconstructFast(const Problem& p)
{
    Matrix<double> out;
    return p.pca.reconstruct(out, keptComponents).storage;
}

Outcome reconstructPlain(const Problem& p)
{
    const long long last = keptComponents - 1;
    const Matrix<double> left = p.pca.U.subMatrix(0, p.pca.U.num_rows() - 1, 0, last);
    const Matrix<double> right = p.pca.V.subMatrix(0, p.pca.V.num_rows() - 1, 0, last);
    return (left * p.pca.S.subMatrix(0, last, 0, last) * transpose(right)).storage;
}

// Largest difference, relative to the largest magnitude.
double largestError(const Outcome& result, const Outcome& reference)
{
    double largest = 0;
    double difference = 0;
    for (long long i = 0; i < reference.n_; ++i) {
        largest = std::max(largest, std::abs(reference[i]));
        difference = std::max(difference, std::abs(result[i] - reference[i]));
    }
    return difference / largest;
}

using Path = Outcome (*)(const Problem&);

struct Pair
{
    const char* name;
    Path fast;
    Path plain;
};

void oneThread(benchmark::State& state, Path path, Path reference)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    const double peak = bench::peakBytes([&] { benchmark::DoNotOptimize(path(p).data); });
    bench::timeInUnits(state, p.pixels, [&] { benchmark::DoNotOptimize(path(p).data); });
    state.counters["error"] = largestError(path(p), reference(p));
    state.counters["peak_per_8_bytes"] = peak / (8.0 * static_cast<double>(p.pixels.storage.n_));
}

void twoThreads(benchmark::State& state, Path path)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    bench::timeTwoThreads(state, p.pixels, [&] { benchmark::DoNotOptimize(path(p).data); });
}

void settings(benchmark::internal::Benchmark* b, int size, int iterations)
{
    b->Arg(size)->ArgName("size")->Iterations(iterations)->Repetitions(repetitions)->UseManualTime();
    b->Unit(benchmark::kMillisecond)->ReportAggregatesOnly(true);
}

void registerAll()
{
    const Pair pairs[] = {{"svd", svdFast, svdPlain},
                          {"pca_autoscaled", pcaFast, pcaPlain},
                          {"reconstruct", reconstructFast, reconstructPlain}};
    for (int size = 0; size < 3; ++size) {
        for (const Pair& pair : pairs) {
            const std::string name = pair.name;
            settings(benchmark::RegisterBenchmark(("one_thread/" + name).c_str(), oneThread, pair.fast, pair.plain),
                     size, fastIterations);
            settings(benchmark::RegisterBenchmark(("one_thread/" + name + "_plain").c_str(), oneThread, pair.plain,
                                                  pair.fast),
                     size, slowIterations);
            settings(benchmark::RegisterBenchmark(("two_threads/" + name).c_str(), twoThreads, pair.fast), size,
                     fastIterations);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
