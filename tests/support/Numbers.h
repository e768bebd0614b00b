// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <cstdint>
#include <initializer_list>
#include <random>
#include <type_traits>
#include <vector>

// Short ways to write matrices and vectors in tests.
namespace testsupport {

// Keeps the element type double unless another is named: integer literals do not deduce it.
template <class T>
using Element = std::common_type_t<T>;

template <class T = double>
XTNT::Vector<T> vectorOf(std::initializer_list<Element<T>> elements)
{
    XTNT::Vector<T> v(static_cast<long long>(elements.size()));
    long long i = 0;
    for (const T& element : elements) {
        v[i++] = element;
    }
    return v;
}

// Rows of equal length.
template <class T = double>
XTNT::Matrix<T> matrixOf(std::initializer_list<std::initializer_list<Element<T>>> rows)
{
    const long long columns = rows.size() == 0 ? 0 : static_cast<long long>(rows.begin()->size());
    XTNT::Matrix<T> a(static_cast<long long>(rows.size()), columns);
    long long i = 0;
    for (const auto& row : rows) {
        a.setRow(i++, vectorOf<T>(row));
    }
    return a;
}

template <class T>
std::vector<T> elements(const XTNT::Vector<T>& v)
{
    return std::vector<T>(v.data, v.data + v.n_);
}

template <class T>
std::vector<T> elements(const XTNT::Matrix<T>& a)
{
    return elements(a.storage);
}

// Uniform in [low, high), the same for the same seed.
inline XTNT::Matrix<double> randomMatrix(long long rows, long long columns, std::uint32_t seed, double low = -1,
                                         double high = 1)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> distribution(low, high);
    XTNT::Matrix<double> a(rows, columns);
    for (long long i = 0; i < a.storage.n_; ++i) {
        a.storage[i] = distribution(generator);
    }
    return a;
}

} // namespace testsupport
