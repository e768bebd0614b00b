// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReferenceAlgebra.h"

#include <algorithm>
#include <cmath>

namespace reference {

namespace {

using LongColumn = std::vector<long double>;

long double dot(const LongColumn& a, const LongColumn& b)
{
    long double total = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        total += a[i] * b[i];
    }
    return total;
}

void rotate(LongColumn& a, LongColumn& b, long double cosine, long double sine)
{
    for (std::size_t i = 0; i < a.size(); ++i) {
        const long double first = a[i];
        a[i] = cosine * first - sine * b[i];
        b[i] = sine * first + cosine * b[i];
    }
}

// Makes the two images orthogonal; false when they were.
bool orthogonalise(SingularTriplet& a, SingularTriplet& b)
{
    const long double aa = dot(a.image, a.image);
    const long double bb = dot(b.image, b.image);
    const long double ab = dot(a.image, b.image);
    if (std::abs(ab) <= 1e-19L * std::sqrt(aa * bb)) {
        return false;
    }
    const long double zeta = (bb - aa) / (2 * ab);
    const long double tangent = (zeta < 0 ? -1 : 1) / (std::abs(zeta) + std::sqrt(1 + zeta * zeta));
    const long double cosine = 1 / std::sqrt(1 + tangent * tangent);
    rotate(a.image, b.image, cosine, cosine * tangent);
    rotate(a.vector, b.vector, cosine, cosine * tangent);
    return true;
}

double squaredResidual(const Table& a, const Table& x, const Column& b)
{
    const Table misfit = difference(product(a, x), asColumn(b));
    const double norm = frobenius(misfit);
    return norm * norm;
}

} // namespace

Column Table::row(Index i) const
{
    Column values;
    for (Index j = 0; j < columns; ++j) {
        values.push_back((*this)(i, j));
    }
    return values;
}

Column Table::column(Index j) const
{
    Column values;
    for (Index i = 0; i < rows; ++i) {
        values.push_back((*this)(i, j));
    }
    return values;
}

Table transposed(const Table& a)
{
    Table result(a.columns, a.rows);
    for (Index i = 0; i < a.rows; ++i) {
        for (Index j = 0; j < a.columns; ++j) {
            result(j, i) = a(i, j);
        }
    }
    return result;
}

Table product(const Table& a, const Table& b)
{
    Table result(a.rows, b.columns);
    for (Index i = 0; i < a.rows; ++i) {
        for (Index j = 0; j < b.columns; ++j) {
            long double total = 0;
            for (Index k = 0; k < a.columns; ++k) {
                total += static_cast<long double>(a(i, k)) * b(k, j);
            }
            result(i, j) = static_cast<double>(total);
        }
    }
    return result;
}

Table difference(const Table& a, const Table& b)
{
    Table result(a.rows, a.columns);
    for (Index i = 0; i < a.rows; ++i) {
        for (Index j = 0; j < a.columns; ++j) {
            result(i, j) = a(i, j) - b(i, j);
        }
    }
    return result;
}

Table identity(Index n)
{
    Table result(n, n);
    for (Index i = 0; i < n; ++i) {
        result(i, i) = 1;
    }
    return result;
}

Table asColumn(const Column& values)
{
    Table result(static_cast<Index>(values.size()), 1);
    for (Index i = 0; i < result.rows; ++i) {
        result(i, 0) = values[static_cast<std::size_t>(i)];
    }
    return result;
}

Table pickColumns(const Table& a, const std::vector<Index>& chosen)
{
    Table result(a.rows, static_cast<Index>(chosen.size()));
    for (Index i = 0; i < a.rows; ++i) {
        for (Index j = 0; j < result.columns; ++j) {
            result(i, j) = a(i, chosen[static_cast<std::size_t>(j)]);
        }
    }
    return result;
}

double frobenius(const Table& a)
{
    long double total = 0;
    for (Index i = 0; i < a.rows; ++i) {
        for (Index j = 0; j < a.columns; ++j) {
            total += static_cast<long double>(a(i, j)) * a(i, j);
        }
    }
    return static_cast<double>(std::sqrt(total));
}

std::vector<SingularTriplet> singularTriplets(const Table& a)
{
    std::vector<SingularTriplet> triplets(static_cast<std::size_t>(a.columns));
    for (Index j = 0; j < a.columns; ++j) {
        SingularTriplet& triplet = triplets[static_cast<std::size_t>(j)];
        triplet.vector.assign(static_cast<std::size_t>(a.columns), 0);
        triplet.vector[static_cast<std::size_t>(j)] = 1;
        for (Index i = 0; i < a.rows; ++i) {
            triplet.image.push_back(a(i, j));
        }
    }
    bool turned = true;
    for (int sweep = 0; turned && sweep < 60; ++sweep) {
        turned = false;
        for (std::size_t p = 0; p < triplets.size(); ++p) {
            for (std::size_t q = p + 1; q < triplets.size(); ++q) {
                turned = orthogonalise(triplets[p], triplets[q]) || turned;
            }
        }
    }
    for (SingularTriplet& triplet : triplets) {
        triplet.value = std::sqrt(dot(triplet.image, triplet.image));
    }
    std::stable_sort(triplets.begin(), triplets.end(), [](const SingularTriplet& first, const SingularTriplet& second) {
        return first.value > second.value;
    });
    return triplets;
}

Index numericalRank(const Table& a, const std::vector<SingularTriplet>& triplets)
{
    const long double largest = triplets.empty() ? 0 : triplets[0].value;
    const long double threshold = static_cast<long double>(std::max(a.rows, a.columns)) * largest * 0x1p-52L;
    Index rank = 0;
    for (const SingularTriplet& triplet : triplets) {
        rank += triplet.value > threshold ? 1 : 0;
    }
    return rank;
}

Table leadingPart(const Table& a, Index count)
{
    const std::vector<SingularTriplet> triplets = singularTriplets(a);
    const Index kept = std::min(count, numericalRank(a, triplets));
    Table result(a.rows, a.columns);
    for (Index i = 0; i < a.rows; ++i) {
        for (Index j = 0; j < a.columns; ++j) {
            long double total = 0;
            for (Index k = 0; k < kept; ++k) {
                const SingularTriplet& triplet = triplets[static_cast<std::size_t>(k)];
                total += triplet.image[static_cast<std::size_t>(i)] * triplet.vector[static_cast<std::size_t>(j)];
            }
            result(i, j) = static_cast<double>(total);
        }
    }
    return result;
}

Table leastSquares(const Table& a, const Table& b)
{
    const std::vector<SingularTriplet> triplets = singularTriplets(a);
    const Index rank = numericalRank(a, triplets);
    if (a.rows == a.columns && rank < a.rows) {
        return Table();
    }
    Table x(a.columns, b.columns);
    for (Index c = 0; c < b.columns; ++c) {
        LongColumn solution(static_cast<std::size_t>(a.columns), 0);
        for (Index k = 0; k < rank; ++k) {
            const SingularTriplet& triplet = triplets[static_cast<std::size_t>(k)];
            long double share = 0;
            for (Index i = 0; i < a.rows; ++i) {
                share += triplet.image[static_cast<std::size_t>(i)] * b(i, c);
            }
            share /= triplet.value * triplet.value;
            for (std::size_t j = 0; j < solution.size(); ++j) {
                solution[j] += share * triplet.vector[j];
            }
        }
        for (Index j = 0; j < a.columns; ++j) {
            x(j, c) = static_cast<double>(solution[static_cast<std::size_t>(j)]);
        }
    }
    return x;
}

Table leastSquaresFromRight(const Table& b, const Table& a)
{
    return transposed(leastSquares(transposed(a), transposed(b)));
}

Column nonNegativeLeastSquares(const Table& a, const Column& b)
{
    Column best(static_cast<std::size_t>(a.columns), 0);
    double least = squaredResidual(a, Table(a.columns, 1), b);
    for (Index set = 1; set < (Index(1) << a.columns); ++set) {
        std::vector<Index> chosen;
        for (Index j = 0; j < a.columns; ++j) {
            if ((set >> j & 1) != 0) {
                chosen.push_back(j);
            }
        }
        const Table part = pickColumns(a, chosen);
        if (numericalRank(part, singularTriplets(part)) < part.columns) {
            continue;
        }
        const Table x = leastSquares(part, asColumn(b));
        bool positive = true;
        for (Index j = 0; j < x.rows; ++j) {
            positive = positive && x(j, 0) > 0;
        }
        const double residual = squaredResidual(part, x, b);
        if (positive && residual < least) {
            least = residual;
            std::fill(best.begin(), best.end(), 0.0);
            for (Index j = 0; j < x.rows; ++j) {
                best[static_cast<std::size_t>(chosen[static_cast<std::size_t>(j)])] = x(j, 0);
            }
        }
    }
    return best;
}

} // namespace reference
