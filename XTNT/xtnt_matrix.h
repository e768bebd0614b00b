// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_exception.h"
#include "XTNT/xtnt_vector.h"

#include <cmath>
#include <cstdlib>
#include <ostream>
#include <type_traits>

namespace XTNT {

namespace detail {

// rows * columns of sizes that are not negative; what overflows is the largest size, so that it fails as out of memory.
inline long long elementCount(long long rows, long long columns)
{
    long long count = 0;
    return __builtin_mul_overflow(rows, columns, &count) ? largestSize : count;
}

inline long long sizeOrZero(long long n)
{
    return n < 0 ? 0 : n;
}

// Writes "size mismatch" on standard output by way of the toolkit's exception, which does not leave this function.
inline void reportSizeMismatch()
{
    try {
        throw M_Exception("size mismatch");
    } catch (const M_Exception& mismatch) {
        mismatch.print();
    }
}

} // namespace detail

// A reference-counted dense matrix, rows contiguous and one after the other. Sharing, element types, threads and
// out-of-memory are those of Vector: copies and assignments share, deepCopy() copies.
//
// The fields are open, in this order, because the algorithms walk them:
//   storage   all M * N elements, row by row
//   rowTable  M pointers, entry i to the start of row i in storage; not filled when M < 1 or N < 1
//   M, N      number of rows and of columns
// storage.n_ equals M * N after every operation.
template <class T>
class Matrix
{
public:
    using value_type = T;

    Vector<T> storage;
    Vector<T*> rowTable;
    long long M = 0;
    long long N = 0;

    Matrix() = default;

    // m x n zeros; a negative size counts as zero.
    Matrix(long long m, long long n)
        : storage(detail::elementCount(detail::sizeOrZero(m), detail::sizeOrZero(n))), rowTable(m),
          M(detail::sizeOrZero(m)), N(detail::sizeOrZero(n))
    {
        fillRowTable();
    }

    Matrix(long long m, long long n, T value) : Matrix(m, n) { storage.fill(value); }

    // A view of m * n elements of the caller's memory, row by row; the memory must outlive the view and all its
    // shares. Only the row table is owned.
    template <class U, class = std::enable_if_t<std::is_same<U, T>::value>>
    Matrix(U* buffer, long long m, long long n)
        : storage(buffer, detail::elementCount(detail::sizeOrZero(m), detail::sizeOrZero(n))), rowTable(m),
          M(detail::sizeOrZero(m)), N(detail::sizeOrZero(n))
    {
        fillRowTable();
    }

    Matrix(const Matrix&) noexcept = default;
    ~Matrix() = default;
    Matrix& operator=(const Matrix& other) noexcept { return shareFrom(other); }

    // Shares the elements of `other`. Sharing from itself does nothing.
    Matrix& shareFrom(const Matrix& other) noexcept
    {
        if (this != &other) {
            rowTable.shareFrom(other.rowTable);
            storage.shareFrom(other.storage);
            M = other.M;
            N = other.N;
        }
        return *this;
    }

    // A matrix of equal elements that shares nothing. The copy of a view owns its elements.
    Matrix deepCopy() const
    {
        Matrix copy(M, N);
        detail::mapElements(storage.n_, storage.data, copy.storage.data, [](T value) { return value; });
        return copy;
    }

    // Lets go of the present elements and takes m x n new zeros. When memory runs out the matrix is left empty.
    void reshape(long long m, long long n)
    {
        shareFrom(Matrix());
        shareFrom(Matrix(m, n));
    }

    // Start of row i. No bounds test.
    T* operator[](long long i) { return rowTable.data[i]; }
    const T* operator[](long long i) const { return rowTable.data[i]; }

    long long num_rows() const { return M; }
    long long num_cols() const { return N; }
    bool empty() const { return storage.n_ < 1; }

    Vector<T> row(long long _i) const
    {
        XTNT_ASSERT(_i >= 0 && _i < this->num_rows());
        Vector<T> result(N);
        detail::mapElements(N, rowTable.data[_i], result.data, [](T value) { return value; });
        return result;
    }

    Vector<T> column(long long i) const
    {
        XTNT_ASSERT(i >= 0 && i < this->num_cols());
        Vector<T> result(M);
        for (long long r = 0; r < M; ++r) {
            result.data[r] = rowTable.data[r][i];
        }
        return result;
    }

    // The columns idx[0], idx[1], ... as an M x idx.n_ matrix. The upper bound is inclusive, as callers rely on: the
    // column one past the last passes and comes back as zeros.
    Matrix columns(const Vector<long long>& idx) const
    {
        XTNT_ASSERT(idx.Min() >= 0 && idx.Max() <= this->num_cols());
        Matrix result(M, idx.n_);
        for (long long r = 0; r < M && idx.n_ > 0; ++r) {
            const T* from = rowTable.data[r];
            T* to = result.rowTable.data[r];
            for (long long j = 0; j < idx.n_; ++j) {
                to[j] = idx.data[j] < N ? from[idx.data[j]] : T();
            }
        }
        return result;
    }

    // Copies v into row i. False, and nothing changed, when there is no such row or v has another length.
    bool setRow(long long i, const Vector<T>& v)
    {
        if (i < 0 || i >= M || v.n_ != N) {
            return false;
        }
        T* to = rowTable.data[i];
        for (long long j = 0; j < N; ++j) {
            to[j] = v.data[j];
        }
        return true;
    }

    // A new N x M matrix. Walks blocks of rows, so that both sides stay in the cache when one dimension is long.
    Matrix transpose() const
    {
        constexpr long long block = 32;
        Matrix result(N, M);
        for (long long first = 0; first < M; first += block) {
            const long long last = first + block < M ? first + block : M;
            for (long long j = 0; j < N; ++j) {
                T* __restrict to = result.rowTable.data[j];
                for (long long i = first; i < last; ++i) {
                    to[i] = rowTable.data[i][j];
                }
            }
        }
        return result;
    }

    // A copy of rows r0 to r1 and columns c0 to c1, both bounds included and inside the matrix. Bounds that cross give
    // an empty matrix.
    Matrix subMatrix(long long r0, long long r1, long long c0, long long c1) const
    {
        if (r1 < r0 || c1 < c0) {
            return Matrix();
        }
        Matrix result(r1 - r0 + 1, c1 - c0 + 1);
        for (long long i = 0; i < result.M; ++i) {
            detail::mapElements(result.N, rowTable.data[r0 + i] + c0, result.rowTable.data[i],
                                [](T value) { return value; });
        }
        return result;
    }

    // Element by element, into a new matrix of the operands' one shape.
    Matrix operator+(const Matrix& B) const
    {
        XTNT_ASSERT(M == B.num_rows());
        XTNT_ASSERT(N == B.num_cols());
        return combine(B, [](T a, T b) { return a + b; });
    }
    Matrix operator-(const Matrix& B) const
    {
        XTNT_ASSERT(M == B.num_rows());
        XTNT_ASSERT(N == B.num_cols());
        return combine(B, [](T a, T b) { return a - b; });
    }

    // Takes a share of a - b: other shares of the old elements keep them.
    Matrix& operator-=(const Matrix& B) { return shareFrom(*this - B); }

    // The matrix product. When the inner sizes differ, "size mismatch" goes to standard output and the result is empty;
    // no exception leaves, callers test emptiness. A plain loop: one of the dimensions is small wherever it is used.
    Matrix operator*(const Matrix& B) const
    {
        if (N != B.M) {
            detail::reportSizeMismatch();
            return Matrix();
        }
        Matrix result(M, B.N);
        if (B.empty()) {
            return result;
        }
        for (long long i = 0; i < M; ++i) {
            T* __restrict to = result.rowTable.data[i];
            for (long long k = 0; k < N; ++k) {
                const T factor = rowTable.data[i][k];
                const T* __restrict from = B.rowTable.data[k];
                for (long long j = 0; j < B.N; ++j) {
                    to[j] += factor * from[j];
                }
            }
        }
        return result;
    }

    // The product with a column vector of N elements; a mismatch is handled as in the matrix product.
    Vector<T> operator*(const Vector<T>& v) const
    {
        if (N != v.n_) {
            detail::reportSizeMismatch();
            return Vector<T>();
        }
        Vector<T> result(M);
        for (long long i = 0; i < M; ++i) {
            const T* a = rowTable.data[i];
            T total = T();
            for (long long j = 0; j < N; ++j) {
                total += a[j] * v.data[j];
            }
            result.data[i] = total;
        }
        return result;
    }

    // Over all elements: mode 0 the largest absolute value, mode 1 the sum of absolute values, any other mode the
    // Frobenius norm (which neither overflows nor underflows before the result does). An empty matrix gives 0.
    double norm(int mode) const
    {
        if (mode == 0) {
            return largestMagnitude();
        }
        if (mode == 1) {
            return accumulate([](double value) { return std::abs(value); });
        }
        const double squares = accumulate([](double value) { return value * value; });
        if (std::isnormal(squares)) {
            return std::sqrt(squares);
        }
        const double scale = largestMagnitude();
        if (!(scale > 0) || std::isinf(scale) || std::isnan(squares)) {
            return std::sqrt(squares);
        }
        return scale * std::sqrt(accumulate([scale](double value) { return (value / scale) * (value / scale); }));
    }

    // dim 0: sums of the columns (length N); dim 1: sums of the rows (length M); any other value: empty.
    Vector<T> sum(int dim) const
    {
        XTNT_ASSERT(M > 0 && N > 0);
        if (dim != 0 && dim != 1) {
            return Vector<T>();
        }
        Vector<T> result(dim == 0 ? N : M);
        T* __restrict total = result.data;
        for (long long i = 0; i < M; ++i) {
            const T* __restrict a = rowTable.data[i];
            for (long long j = 0; j < N; ++j) {
                total[dim == 0 ? j : i] += a[j];
            }
        }
        return result;
    }

    // dim 0: the maximum of each column (length N); dim 1: of each row (length M), 0 for an empty one; any other value:
    // empty.
    Vector<T> maxAlong(int dim) const
    {
        if (dim != 0 && dim != 1) {
            return Vector<T>();
        }
        Vector<T> result(dim == 0 ? N : M);
        for (long long i = 0; i < M; ++i) {
            for (long long j = 0; j < N; ++j) {
                T& best = result.data[dim == 0 ? j : i];
                const bool first = (dim == 0 ? i : j) == 0;
                if (first || rowTable.data[i][j] > best) {
                    best = rowTable.data[i][j];
                }
            }
        }
        return result;
    }

    // 1 where a[i][j] - s > 0, else 0.
    Matrix<int> greaterMask(T s) const
    {
        Matrix<int> mask(M, N);
        detail::mapElements(storage.n_, storage.data, mask.storage.data, [s](T a) { return a - s > 0 ? 1 : 0; });
        return mask;
    }

    Matrix absolute() const
    {
        Matrix result(M, N);
        detail::mapElements(storage.n_, storage.data, result.storage.data, [](T a) { return std::abs(a); });
        return result;
    }

    // X (N x B.N) that minimises the Frobenius norm of A X - B, where this is A (M x N, M not equal to N in any use)
    // and B has M rows. Orthogonal factorisation with column pivoting; a tall A is reduced block by block, so that
    // memory beyond A, B and X is a few small blocks. A rank-deficient or wide A gives the solution of smallest norm. A
    // and B are left alone. Empty result: sizes that do not fit, an empty A or B, an element that is not finite.
    // Defined for double only, in the mathematics library.
    Matrix lssolve(const Matrix& B) const;

    // X (N x B.N) with A X = B, A square. A and B are left alone. Empty result: A not square, sizes that do not fit, an
    // empty A or B, an element that is not finite, or an A that is singular to working precision. For double only.
    Matrix solve(Matrix& B) const;

    // The inverse of a square matrix; empty in the cases in which solve's result is. For double only.
    Matrix inverse() const;

private:
    void fillRowTable()
    {
        if (M < 1 || N < 1) {
            return;
        }
        for (long long i = 0; i < M; ++i) {
            rowTable.data[i] = storage.data + i * N;
        }
    }

    template <class Op>
    Matrix combine(const Matrix& B, Op op) const
    {
        Matrix result(M, N);
        detail::mapPairs(storage.n_, storage.data, B.storage.data, result.storage.data, op);
        return result;
    }

    double largestMagnitude() const
    {
        double largest = 0;
        for (long long i = 0; i < storage.n_; ++i) {
            const double magnitude = std::abs(static_cast<double>(storage.data[i]));
            largest = magnitude > largest ? magnitude : largest;
        }
        return largest;
    }

    // The sum of term(element) in four interleaved partial sums: independent chains that vectorise, in a fixed order.
    template <class Term>
    double accumulate(Term term) const
    {
        double partial[4] = {0, 0, 0, 0};
        const T* a = storage.data;
        const long long whole = storage.n_ - storage.n_ % 4;
        for (long long i = 0; i < whole; i += 4) {
            for (int lane = 0; lane < 4; ++lane) {
                partial[lane] += term(static_cast<double>(a[i + lane]));
            }
        }
        for (long long i = whole; i < storage.n_; ++i) {
            partial[0] += term(static_cast<double>(a[i]));
        }
        return (partial[0] + partial[1]) + (partial[2] + partial[3]);
    }
};

template <>
Matrix<double> Matrix<double>::lssolve(const Matrix<double>& B) const;
template <>
Matrix<double> Matrix<double>::solve(Matrix<double>& B) const;
template <>
Matrix<double> Matrix<double>::inverse() const;

template <class T>
Matrix<T> deepCopy(const Matrix<T>& a)
{
    return a.deepCopy();
}

template <class T>
Matrix<T> transpose(const Matrix<T>& a)
{
    return a.transpose();
}

// r[j] = sum over i of v[i] * a[i][j], for i up to the rows of a. No shape check.
template <class T>
Vector<T> operator*(const Vector<T>& v, const Matrix<T>& a)
{
    Vector<T> result(a.N);
    T* __restrict total = result.data;
    for (long long i = 0; i < a.M; ++i) {
        const T factor = v.data[i];
        const T* __restrict from = a.rowTable.data[i];
        for (long long j = 0; j < a.N; ++j) {
            total[j] += factor * from[j];
        }
    }
    return result;
}

// The u.n_ x v.n_ matrix u[i] * v[j].
template <class T>
Matrix<T> outerProduct(const Vector<T>& u, const Vector<T>& v)
{
    Matrix<T> result(u.n_, v.n_);
    for (long long i = 0; i < u.n_; ++i) {
        const T factor = u.data[i];
        detail::mapElements(v.n_, v.data, result.rowTable.data[i], [factor](T value) { return factor * value; });
    }
    return result;
}

// Element by element, into a new matrix. Operands of different shapes give an empty matrix, silently.
template <class T>
Matrix<T> elementProduct(const Matrix<T>& a, const Matrix<T>& b)
{
    if (a.M != b.M || a.N != b.N) {
        return Matrix<T>();
    }
    Matrix<T> result(a.M, a.N);
    detail::mapPairs(a.storage.n_, a.storage.data, b.storage.data, result.storage.data,
                     [](T left, T right) { return left * right; });
    return result;
}

// Rows, a blank and columns on a line, then a row a line, each element followed by a blank.
template <class T>
std::ostream& operator<<(std::ostream& out, const Matrix<T>& a)
{
    out << a.M << ' ' << a.N << '\n';
    for (long long i = 0; i < a.M; ++i) {
        for (long long j = 0; j < a.N; ++j) {
            out << a.rowTable.data[i][j] << ' ';
        }
        out << '\n';
    }
    return out;
}

} // namespace XTNT
