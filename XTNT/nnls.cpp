// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/nnls.h"

#include <cmath>
#include <cstddef>
#include <iostream>

namespace XTNT {

namespace {

// A column of which less than this share sticks out of the span of the positive set counts as dependent.
constexpr double independenceFactor = 0.01;

// Above every step length that can occur: a step stays here when no variable blocks it.
constexpr double noBlock = 2.0;

// Magnitudes between which a square neither overflows in a sum nor is denormal.
constexpr double smallestPlainScale = 1e-120;
constexpr double largestPlainScale = 1e120;

// Four partial sums let the chains run side by side.
double dot(int n, const double* __restrict u, const double* __restrict v)
{
    double s0 = 0;
    double s1 = 0;
    double s2 = 0;
    double s3 = 0;
    int i = 0;
    for (; i + 3 < n; i += 4) {
        s0 += u[i] * v[i];
        s1 += u[i + 1] * v[i + 1];
        s2 += u[i + 2] * v[i + 2];
        s3 += u[i + 3] * v[i + 3];
    }
    for (; i < n; ++i) {
        s0 += u[i] * v[i];
    }
    return (s0 + s1) + (s2 + s3);
}

// The reflection that maps column elements first..m - 1 onto a multiple of the first unit vector. It is kept as the
// untouched elements below `first` and `head`, the element that stands in their vector's first place.
struct Reflection
{
    double head = 0;     // first element of the reflection's vector
    double diagonal = 0; // what the column's first element becomes
    int first = 0;
};

// Euclidean norm of n elements, the largest magnitude of which is `scale`. It is divided out only where the squares
// could overflow or lose digits.
double lengthOf(const double* v, int n, double scale)
{
    if (scale > smallestPlainScale && scale < largestPlainScale) {
        return std::sqrt(dot(n, v, v));
    }
    double squares = 0;
    for (int i = 0; i < n; ++i) {
        squares += (v[i] / scale) * (v[i] / scale);
    }
    return scale * std::sqrt(squares);
}

Reflection makeReflection(const double* column, int first, int m)
{
    Reflection reflection;
    reflection.first = first;
    reflection.diagonal = column[first];
    // A comparison of its own: the library's maximum is a call for every element.
    double scale = 0;
    for (int i = first; i < m; ++i) {
        const double size = std::abs(column[i]);
        scale = size > scale ? size : scale;
    }
    if (!(scale > 0)) {
        return reflection;
    }
    const double length = lengthOf(column + first, m - first, scale);
    reflection.diagonal = column[first] > 0 ? -length : length;
    reflection.head = column[first] - reflection.diagonal;
    return reflection;
}

// Applies the reflection, whose lower part stands in `column`, to `target`.
void reflect(const Reflection& reflection, const double* __restrict column, int m, double* __restrict target)
{
    const double norm = reflection.head * reflection.diagonal;
    if (!(norm < 0)) {
        return;
    }
    const int below = reflection.first + 1;
    const double along = reflection.head * target[reflection.first] + dot(m - below, column + below, target + below);
    if (along == 0) {
        return;
    }
    const double factor = along / norm;
    target[reflection.first] += factor * reflection.head;
    for (int i = below; i < m; ++i) {
        target[i] += factor * column[i];
    }
}

// Whether a new diagonal element still counts beside the triangular part of its column. Plain double arithmetic, one
// rounding an operation: a fused multiply-add would see digits that the published routine has not.
bool sticksOut(double diagonal, double triangularNorm)
{
    const volatile double share = std::abs(diagonal) * independenceFactor;
    const volatile double sum = triangularNorm + share;
    return sum - triangularNorm > 0;
}

// One call's arrays and the state of its partition: index[0..positive) is the positive set, in the order of the
// triangular factor's columns; the rest of index are the variables at zero.
struct ActiveSet
{
    double* a;
    std::ptrdiff_t mda;
    int m;
    int n;
    double* b;
    double* x;
    double* w;
    double* zz;
    int* index;
    int positive = 0;

    double* column(int j) const { return a + j * mda; }

    bool admitVariable();
    bool tryCandidate(int place);
    void solveTriangle();
    double blockedStep(int& place) const;
    void retreat(double step, int place);
    void dropVariable(int place);
};

// Moves one variable from zero into the positive set, leaving the transformed right-hand side in b and zz. False when
// no variable can enter: the optimality conditions hold.
bool ActiveSet::admitVariable()
{
    for (int k = positive; k < n; ++k) {
        const int j = index[k];
        w[j] = dot(m - positive, column(j) + positive, b + positive);
    }
    for (;;) {
        int best = -1;
        double largest = 0;
        for (int k = positive; k < n; ++k) {
            if (w[index[k]] > largest) {
                largest = w[index[k]];
                best = k;
            }
        }
        if (best < 0) {
            return false;
        }
        if (tryCandidate(best)) {
            return true;
        }
        w[index[best]] = 0;
    }
}

// Takes the variable at index[place] in if its column is independent of the positive set and its value would be
// positive; otherwise changes nothing.
bool ActiveSet::tryCandidate(int place)
{
    const int p = positive;
    const int candidate = index[place];
    double* own = column(candidate);
    const Reflection reflection = makeReflection(own, p, m);
    if (!sticksOut(reflection.diagonal, std::sqrt(dot(p, own, own)))) {
        return false;
    }
    for (int i = 0; i < m; ++i) {
        zz[i] = b[i];
    }
    reflect(reflection, own, m, zz);
    if (!(zz[p] / reflection.diagonal > 0)) {
        return false;
    }

    for (int i = 0; i < m; ++i) {
        b[i] = zz[i];
    }
    index[place] = index[p];
    index[p] = candidate;
    ++positive;
    for (int k = positive; k < n; ++k) {
        reflect(reflection, own, m, column(index[k]));
    }
    own[p] = reflection.diagonal;
    for (int i = p + 1; i < m; ++i) {
        own[i] = 0;
    }
    w[candidate] = 0;
    return true;
}

// Back substitution in zz: from the transformed right-hand side to the values of the positive set, in its order.
void ActiveSet::solveTriangle()
{
    for (int k = positive - 1; k >= 0; --k) {
        const double* own = column(index[k]);
        zz[k] /= own[k];
        const double value = zz[k];
        for (int i = 0; i < k; ++i) {
            zz[i] -= value * own[i];
        }
    }
}

// The longest step from x towards zz that keeps the positive set feasible, and the place of the variable that blocks
// it; noBlock when none does.
double ActiveSet::blockedStep(int& place) const
{
    double step = noBlock;
    for (int k = 0; k < positive; ++k) {
        if (zz[k] <= 0) {
            const double value = x[index[k]];
            const double length = value / (value - zz[k]);
            if (length < step) {
                step = length;
                place = k;
            }
        }
    }
    return step;
}

// Goes the blocked step, then drops the blocking variable and any other that rounding has brought to zero or below.
void ActiveSet::retreat(double step, int place)
{
    for (int k = 0; k < positive; ++k) {
        double& value = x[index[k]];
        value += step * (zz[k] - value);
    }
    while (place >= 0) {
        dropVariable(place);
        place = -1;
        for (int k = 0; k < positive && place < 0; ++k) {
            if (x[index[k]] <= 0) {
                place = k;
            }
        }
    }
    for (int i = 0; i < m; ++i) {
        zz[i] = b[i];
    }
}

// Moves the variable at `place` of the positive set to zero. The columns behind it step forward, and a rotation each
// brings the factor back to triangular form.
void ActiveSet::dropVariable(int place)
{
    const int dropped = index[place];
    x[dropped] = 0;
    for (int k = place + 1; k < positive; ++k) {
        const int moved = index[k];
        index[k - 1] = moved;
        double* own = column(moved);
        const double length = std::hypot(own[k - 1], own[k]);
        const double cosine = length > 0 ? own[k - 1] / length : 1.0;
        const double sine = length > 0 ? own[k] / length : 0.0;
        const auto rotate = [cosine, sine, k](double* target) {
            const double upper = target[k - 1];
            const double lower = target[k];
            target[k - 1] = cosine * upper + sine * lower;
            target[k] = cosine * lower - sine * upper;
        };
        for (int j = 0; j < n; ++j) {
            rotate(column(j));
        }
        rotate(b);
        own[k - 1] = length;
        own[k] = 0;
    }
    --positive;
    index[positive] = dropped;
}

// Runs the method to its end. False when the limit of triangular solves is passed.
bool run(ActiveSet& set)
{
    const long long limit = 3LL * set.n;
    long long solves = 0;
    while (set.positive < set.n && set.positive < set.m && set.admitVariable()) {
        for (;;) {
            set.solveTriangle();
            if (++solves > limit) {
                return false;
            }
            int place = -1;
            const double step = set.blockedStep(place);
            if (place < 0) {
                break;
            }
            set.retreat(step, place);
        }
        for (int k = 0; k < set.positive; ++k) {
            set.x[set.index[k]] = set.zz[k];
        }
    }
    return true;
}

} // namespace

int NNLS(double* a, int mda, int m, int n, double* b, double* x, double* rnorm, double* w, double* zz, int* index,
         int* mode)
{
    *mode = 1;
    if (m < 1 || n < 1) {
        *mode = 2;
        return 0;
    }
    for (int j = 0; j < n; ++j) {
        x[j] = 0;
        w[j] = 0;
        index[j] = j;
    }
    ActiveSet set{a, mda, m, n, b, x, w, zz, index};
    if (!run(set)) {
        *mode = 3;
        std::cout << "\n NNLS quitting on iteration count.\n" << std::flush;
    }
    const int rest = m - set.positive;
    *rnorm = std::sqrt(dot(rest, b + set.positive, b + set.positive));
    if (rest == 0) {
        for (int j = 0; j < n; ++j) {
            w[j] = 0;
        }
    }
    return 0;
}

} // namespace XTNT
