// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_assert.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iosfwd>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <type_traits>

namespace XTNT {

namespace detail {

// A size that cannot be: its byte count overflows in every element type, so a request for it ends as out of memory.
constexpr long long largestSize = std::numeric_limits<long long>::max();

// r[i] = op(a[i]) for i in [0, n). `r` is a fresh block, so it overlaps no operand and the loop vectorises.
template <class T, class R, class Op>
inline void mapElements(long long n, const T* __restrict a, R* __restrict r, Op op)
{
    for (long long i = 0; i < n; ++i) {
        r[i] = op(a[i]);
    }
}

// r[i] = op(a[i], b[i]) for i in [0, n). The operands may be one and the same; `r` is a fresh block.
template <class T, class R, class Op>
inline void mapPairs(long long n, const T* __restrict a, const T* __restrict b, R* __restrict r, Op op)
{
    for (long long i = 0; i < n; ++i) {
        r[i] = op(a[i], b[i]);
    }
}

} // namespace detail

// A reference-counted dense vector. Copies and assignments share the block: writing through one object changes every
// object that shares it, and deepCopy() is the only way to a block of one's own. A const object protects its own
// accessors, not the block: a copy of it may write. Element types are plain arithmetic types (double for data, int for
// masks, long long for indices) and the pointers of a matrix's row table.
//
// The fields are open, in this order, because the algorithms walk them:
//   base      the heap block, null when empty; freed when the last share goes
//   refCount  how many objects share the block; null for an empty vector and for a view of foreign memory
//   n_        number of elements
//   data      first element as used for access; equal to base
//
// The count is not atomic: two threads must not share a block that one of them can release or share anew. Element
// access does no bounds test. Out of memory surfaces as std::bad_alloc.
template <class T>
class Vector
{
    static_assert(std::is_trivially_copyable<T>::value, "blocks are zeroed and freed as raw memory");

public:
    using value_type = T;

    T* base = nullptr;
    std::int32_t* refCount = nullptr;
    long long n_ = 0;
    T* data = nullptr;

    Vector() = default;

    // `n` zeros. A negative size counts as zero; zero allocates nothing. Pages of a large block are untouched until
    // they are written.
    explicit Vector(long long n) { allocate(n); }

    // A view of `n` elements of the caller's memory, which must outlive the view and all its shares. Nothing is ever
    // freed.
    template <class U, class = std::enable_if_t<std::is_same<U, T>::value>>
    Vector(U* buffer, long long n) : base(n < 1 ? nullptr : buffer), n_(n < 0 ? 0 : n), data(base)
    {
    }

    Vector(const Vector& other) noexcept : base(other.base), refCount(other.refCount), n_(other.n_), data(other.data)
    {
        if (refCount != nullptr) {
            ++*refCount;
        }
    }

    ~Vector() { release(); }

    Vector& operator=(const Vector& other) noexcept { return shareFrom(other); }

    // Releases the own block, then shares that of `other`. Sharing from itself does nothing.
    Vector& shareFrom(const Vector& other) noexcept
    {
        if (this == &other) {
            return *this;
        }
        release();
        base = other.base;
        refCount = other.refCount;
        n_ = other.n_;
        data = other.data;
        if (refCount != nullptr) {
            ++*refCount;
        }
        return *this;
    }

    // A vector of equal elements that shares nothing. The copy of a view owns its block.
    Vector deepCopy() const
    {
        Vector copy(n_);
        detail::mapElements(n_, data, copy.data, [](T value) { return value; });
        return copy;
    }

    // Lets go of the present block and takes a new one of `n` zeros. When memory runs out the vector is left empty.
    void reshape(long long n)
    {
        release();
        allocate(n);
    }

    T& operator[](long long i) { return data[i]; }
    const T& operator[](long long i) const { return data[i]; }
    long long size() const { return n_; }
    bool empty() const { return n_ < 1; }

    void fill(T value)
    {
        for (long long i = 0; i < n_; ++i) {
            data[i] = value;
        }
    }

    // The extreme element, and on request where it stands. The comparison is strict, so the first of equals wins. An
    // empty vector gives 0 and leaves the index alone. A NaN is never taken, unless it comes first: then it stays.
    T Min(long long* index = nullptr) const
    {
        return extreme(index, [](T candidate, T best) { return candidate < best; });
    }
    T Max(long long* index = nullptr) const
    {
        return extreme(index, [](T candidate, T best) { return candidate > best; });
    }

    // Element by element, into a new vector. Both operands must have one length.
    Vector operator*(const Vector& B) const
    {
        const long long N = B.n_;
        XTNT_ASSERT(this->n_ == N);
        return combine(B, [](T a, T b) { return a * b; });
    }
    Vector operator+(const Vector& B) const
    {
        const long long N = B.n_;
        XTNT_ASSERT(this->n_ == N);
        return combine(B, [](T a, T b) { return a + b; });
    }
    Vector operator-(const Vector& B) const
    {
        const long long N = B.n_;
        XTNT_ASSERT(this->n_ == N);
        return combine(B, [](T a, T b) { return a - b; });
    }

    // In place, so every share sees it. No length is asserted here: what both vectors have is subtracted.
    Vector& operator-=(const Vector& B)
    {
        const long long common = n_ < B.n_ ? n_ : B.n_;
        for (long long i = 0; i < common; ++i) {
            data[i] -= B.data[i];
        }
        return *this;
    }

    Vector operator*(T s) const
    {
        Vector result(n_);
        detail::mapElements(n_, data, result.data, [s](T a) { return a * s; });
        return result;
    }

    // 1 where v[i] - s < 0, else 0.
    Vector<int> lessMask(T s) const
    {
        Vector<int> mask(n_);
        detail::mapElements(n_, data, mask.data, [s](T a) { return a - s < 0 ? 1 : 0; });
        return mask;
    }

    // r[0] = v[0], r[i] = r[i - 1] + v[i].
    Vector cumulativeSum() const
    {
        Vector result(n_);
        T total = T();
        for (long long i = 0; i < n_; ++i) {
            total = i == 0 ? data[0] : total + data[i];
            result.data[i] = total;
        }
        return result;
    }

    // sqrt(v[i]) where v[i] > 0; what is negative or NaN gives 0.
    Vector clampedSqrt() const
    {
        Vector result(n_);
        detail::mapElements(n_, data, result.data, [](T a) { return a > 0 ? static_cast<T>(std::sqrt(a)) : T(); });
        return result;
    }

private:
    // Fields must be those of an empty vector. Leaves them so when memory runs out.
    void allocate(long long n)
    {
        if (n < 1) {
            return;
        }
        if (n > detail::largestSize / static_cast<long long>(sizeof(T))) {
            throw std::bad_array_new_length();
        }
        auto count = std::make_unique<std::int32_t>(1);
        T* block = static_cast<T*>(std::calloc(static_cast<std::size_t>(n), sizeof(T)));
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        base = block;
        refCount = count.release();
        n_ = n;
        data = block;
    }

    // Out of line: a compiler that sees two shares end side by side, but can't follow their count, warns of a use after
    // the release.
    [[gnu::noinline]] static void freeBlock(T* block, std::int32_t* count) noexcept
    {
        std::free(block);
        delete count;
    }

    // Gives up the share; the last one frees the block and its count word. Leaves an empty vector.
    void release() noexcept
    {
        if (refCount != nullptr && --*refCount == 0) {
            freeBlock(base, refCount);
        }
        base = nullptr;
        refCount = nullptr;
        n_ = 0;
        data = nullptr;
    }

    template <class Better>
    T extreme(long long* index, Better better) const
    {
        if (n_ < 1) {
            return T();
        }
        T best = data[0];
        long long where = 0;
        for (long long i = 1; i < n_; ++i) {
            if (better(data[i], best)) {
                best = data[i];
                where = i;
            }
        }
        if (index != nullptr) {
            *index = where;
        }
        return best;
    }

    template <class Op>
    Vector combine(const Vector& B, Op op) const
    {
        Vector result(n_);
        detail::mapPairs(n_, data, B.data, result.data, op);
        return result;
    }
};

template <class T>
Vector<T> deepCopy(const Vector<T>& v)
{
    return v.deepCopy();
}

// Equality of integer vectors: false on different lengths, else element by element.
template <class T, class = std::enable_if_t<std::is_integral<T>::value>>
bool operator==(const Vector<T>& a, const Vector<T>& b)
{
    if (a.n_ != b.n_) {
        return false;
    }
    for (long long i = 0; i < a.n_; ++i) {
        if (a.data[i] != b.data[i]) {
            return false;
        }
    }
    return true;
}
template <class T, class = std::enable_if_t<std::is_integral<T>::value>>
bool operator!=(const Vector<T>& a, const Vector<T>& b)
{
    return !(a == b);
}

namespace detail {

template <class T, class Holds>
Vector<long long> indicesWhere(const Vector<T>& v, Holds holds)
{
    long long count = 0;
    for (long long i = 0; i < v.n_; ++i) {
        count += holds(v.data[i]) ? 1 : 0;
    }
    Vector<long long> indices(count);
    for (long long i = 0, next = 0; i < v.n_; ++i) {
        if (holds(v.data[i])) {
            indices.data[next++] = i;
        }
    }
    return indices;
}

} // namespace detail

// The indices, ascending, at which the comparison of the element with `value` holds. `op` is one of ">", "<", "==",
// ">=", "<=" and "!="; any other text gives an empty vector.
template <class T, class = std::enable_if_t<std::is_integral<T>::value>>
Vector<long long> find(const Vector<T>& v, const std::string& op, typename Vector<T>::value_type value)
{
    if (op == ">") {
        return detail::indicesWhere(v, [value](T element) { return element > value; });
    }
    if (op == "<") {
        return detail::indicesWhere(v, [value](T element) { return element < value; });
    }
    if (op == "==") {
        return detail::indicesWhere(v, [value](T element) { return element == value; });
    }
    if (op == ">=") {
        return detail::indicesWhere(v, [value](T element) { return element >= value; });
    }
    if (op == "<=") {
        return detail::indicesWhere(v, [value](T element) { return element <= value; });
    }
    if (op == "!=") {
        return detail::indicesWhere(v, [value](T element) { return element != value; });
    }
    return Vector<long long>();
}

// The length on a line, then one element a line.
template <class T>
std::ostream& operator<<(std::ostream& out, const Vector<T>& v)
{
    out << v.n_ << '\n';
    for (long long i = 0; i < v.n_; ++i) {
        out << v.data[i] << '\n';
    }
    return out;
}

} // namespace XTNT
