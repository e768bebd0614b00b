// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/left_reduction.h"

#include "XTNT/row_blocks.h"
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_lanes.h"
#include "XTNT/xtnt_parallel.h"
#include "XTNT/xtnt_strips.h"

#include <algorithm>
#include <cmath>

namespace XTNT {

namespace {

// A sum of squares below this has lost digits to underflow. A column of a block that is so small is nothing beside a
// column in range.
constexpr double smallestSquares = 1e-280;
constexpr double smallestNorm = 1e-120;
constexpr double largestNorm = 1e120;

// Components whose sums over the rows are taken together: two vectors each leave registers for the data.
constexpr int mostTogether = 6;

double total(const Lanes& sums)
{
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

// Over blockRows elements.
double dot(const double* a, const double* b)
{
    Lanes s0{}, s1{};
    for (long long i = 0; i < blockRows; i += 2 * lanes) {
        s0 += lanesAt(a + i) * lanesAt(b + i);
        s1 += lanesAt(a + i + lanes) * lanesAt(b + i + lanes);
    }
    return total(s0 + s1);
}

// `n` pairs of running sums that live in registers: an array would not.
template <int n>
struct Sums
{
    Lanes low{};
    Lanes high{};
    Sums<n - 1> others;

    void add(const double* y, const Lanes& d0, const Lanes& d1)
    {
        low += y[0] * d0;
        high += y[0] * d1;
        others.add(y + blockRows, d0, d1);
    }
    void addNarrow(const double* y, const Lanes& d)
    {
        low += y[0] * d;
        others.addNarrow(y + blockRows, d);
    }
    void store(double* to, long long stride) const
    {
        putLanes(to, low);
        putLanes(to + lanes, high);
        others.store(to + stride, stride);
    }
    void storeNarrow(double* to, long long stride) const
    {
        putLanes(to, low);
        others.storeNarrow(to + stride, stride);
    }
};

template <>
struct Sums<0>
{
    void add(const double* /*y*/, const Lanes& /*d0*/, const Lanes& /*d1*/) {}
    void addNarrow(const double* /*y*/, const Lanes& /*d*/) {}
    void store(double* /*to*/, long long /*stride*/) const {}
    void storeNarrow(double* /*to*/, long long /*stride*/) const {}
};

// One strip of columns of the data of a block: row i begins at data + i * stride.
struct Strip
{
    const double* data;
    long long stride;
    long long rows;
};

// to[k * toStride + j] = sum over the rows i of y[k * blockRows + i] * strip[i][j], for n components.
template <int n>
void sumWide(const Strip& strip, const double* __restrict y, double* __restrict to, long long toStride)
{
    Sums<n> sums;
    const double* d = strip.data;
    for (long long i = 0; i < strip.rows; ++i, d += strip.stride) {
        sums.add(y + i, lanesAt(d), lanesAt(d + lanes));
    }
    sums.store(to, toStride);
}

template <int n>
void sumNarrow(const Strip& strip, const double* __restrict y, double* __restrict to, long long toStride)
{
    Sums<n> sums;
    const double* d = strip.data;
    for (long long i = 0; i < strip.rows; ++i, d += strip.stride) {
        sums.addNarrow(y + i, lanesAt(d));
    }
    sums.storeNarrow(to, toStride);
}

using SumKernel = void (*)(const Strip&, const double*, double*, long long);
constexpr SumKernel wideKernels[mostTogether] = {sumWide<1>, sumWide<2>, sumWide<3>,
                                                 sumWide<4>, sumWide<5>, sumWide<6>};
constexpr SumKernel narrowKernels[mostTogether] = {sumNarrow<1>, sumNarrow<2>, sumNarrow<3>,
                                                   sumNarrow<4>, sumNarrow<5>, sumNarrow<6>};

// All components, in groups of like size.
void sumOverRows(const SumKernel* kernels, const Strip& strip, const double* y, long long components, double* to,
                 long long toStride)
{
    const long long groups = (components + mostTogether - 1) / mostTogether;
    long long first = 0;
    for (long long group = 0; group < groups; ++group) {
        const long long next = components * (group + 1) / groups;
        kernels[next - first - 1](strip, y + first * blockRows, to + first * toStride, toStride);
        first = next;
    }
}

// Sum of the squares of strip[i][j] - sum over k of y[k * blockRows + i] * w[k * wStride + j], in lanes. Four rows at a
// time; y is zero beyond the rows, and a row that is missing is read as the last one and not counted.
template <bool wide>
Lanes restOfStrip(const Strip& strip, const double* __restrict y, const double* __restrict w, long long wStride,
                  long long components)
{
    Lanes sums[2] = {};
    const auto count = [&sums](const Lanes& low, const Lanes& high) {
        sums[0] += low * low;
        if (wide) {
            sums[1] += high * high;
        }
    };
    constexpr long long second = wide ? lanes : 0;
    for (long long i = 0; i < strip.rows; i += 4) {
        const long long last = strip.rows - 1;
        const double* d0 = strip.data + i * strip.stride;
        const double* d1 = strip.data + std::min(i + 1, last) * strip.stride;
        const double* d2 = strip.data + std::min(i + 2, last) * strip.stride;
        const double* d3 = strip.data + std::min(i + 3, last) * strip.stride;
        Lanes a0 = lanesAt(d0), b0 = lanesAt(d1), c0 = lanesAt(d2), e0 = lanesAt(d3);
        Lanes a1 = lanesAt(d0 + second), b1 = lanesAt(d1 + second), c1 = lanesAt(d2 + second),
              e1 = lanesAt(d3 + second);
        for (long long k = 0; k < components; ++k) {
            const double* v = y + k * blockRows + i;
            const Lanes w0 = lanesAt(w + k * wStride);
            a0 -= v[0] * w0;
            b0 -= v[1] * w0;
            c0 -= v[2] * w0;
            e0 -= v[3] * w0;
            if (wide) {
                const Lanes w1 = lanesAt(w + k * wStride + lanes);
                a1 -= v[0] * w1;
                b1 -= v[1] * w1;
                c1 -= v[2] * w1;
                e1 -= v[3] * w1;
            }
        }
        count(a0, a1);
        if (i + 1 <= last) {
            count(b0, b1);
        }
        if (i + 2 <= last) {
            count(c0, c1);
        }
        if (i + 3 <= last) {
            count(e0, e1);
        }
    }
    return sums[0] + sums[1];
}

} // namespace

// Absorbs blocks of rows into a triangle and its head; the work space of one thread.
class LeftReduction::Reducer
{
public:
    Reducer(long long components, long long bands)
        : m_components(components), m_bands(bands), m_padded((bands + lanes - 1) / lanes * lanes),
          m_panel(static_cast<std::size_t>(components * blockRows)),
          m_products(static_cast<std::size_t>(components * m_padded)),
          m_compact(static_cast<std::size_t>(components * components)),
          m_leftover(static_cast<std::size_t>(blockRows * lanes)), m_tau(static_cast<std::size_t>(components))
    {
    }

    // Makes [triangle; C] upper triangular by an orthogonal transformation, for at most blockRows rows, and applies
    // that to [head; D]. `triangle` is K x K and `head` K x N, row by row. Returns the sum of the squares of what
    // becomes of D.
    double absorb(const Matrix<double>& C, const Matrix<double>& D, long long begin, long long end, double* triangle,
                  double* head)
    {
        loadPanel(C, begin, end);
        for (long long k = 0; k < m_components; ++k) {
            reflect(k, triangle);
        }
        makeCompact();
        multiplyData(D, begin, end);
        updateHead(head);
        return restOfData(D, begin, end);
    }

private:
    double* panel(long long component) { return m_panel.data() + component * blockRows; }
    double& compact(long long i, long long j) { return m_compact[static_cast<std::size_t>(i * m_components + j)]; }
    double* product(long long component) { return m_products.data() + component * m_padded; }

    // The block of C, a column after the other, zeros below.
    void loadPanel(const Matrix<double>& C, long long begin, long long end)
    {
        const double* rows = C[begin];
        for (long long k = 0; k < m_components; ++k) {
            double* column = panel(k);
            for (long long i = 0; i < end - begin; ++i) {
                column[i] = rows[i * m_components + k];
            }
            std::fill(column + (end - begin), column + blockRows, 0.0);
        }
    }

    // The reflection that takes column k of the panel into the triangle's diagonal: it leaves the rows of the triangle
    // but k alone. Its vector, 1 in row k, stays in the panel.
    void reflect(long long k, double* triangle)
    {
        double* row = triangle + k * m_components;
        double* y = panel(k);
        const double squares = dot(y, y);
        if (squares < smallestSquares) {
            std::fill_n(y, blockRows, 0.0);
            m_tau[static_cast<std::size_t>(k)] = 0;
            return;
        }
        const double alpha = row[k];
        const double norm = std::sqrt(alpha * alpha + squares);
        const double beta = alpha > 0 ? -norm : norm;
        const double tau = (beta - alpha) / beta;
        const double scale = 1 / (alpha - beta);
        for (long long i = 0; i < blockRows; ++i) {
            y[i] *= scale;
        }
        row[k] = beta;
        m_tau[static_cast<std::size_t>(k)] = tau;
        for (long long j = k + 1; j < m_components; ++j) {
            double* column = panel(j);
            const double share = tau * (row[j] + dot(y, column));
            row[j] -= share;
            for (long long i = 0; i < blockRows; ++i) {
                column[i] -= share * y[i];
            }
        }
    }

    // The upper triangular T with which the product of the reflections is I - V T V'.
    void makeCompact()
    {
        for (long long k = 0; k < m_components; ++k) {
            const double tau = m_tau[static_cast<std::size_t>(k)];
            compact(k, k) = tau;
            for (long long i = 0; i < k; ++i) {
                compact(i, k) = -tau * dot(panel(i), panel(k));
            }
            for (long long i = 0; i < k; ++i) {
                double sum = 0;
                for (long long l = i; l < k; ++l) {
                    sum += compact(i, l) * compact(l, k);
                }
                compact(i, k) = sum;
            }
        }
    }

    // Calls work(strip, first column, whether it has two vectors) for the strips of the block's data. What the vectors
    // do not fill is copied, so that no row is read beyond its end.
    template <class Work>
    void forStrips(const Matrix<double>& D, long long begin, long long end, Work work)
    {
        const double* data = D[begin];
        const long long rows = end - begin;
        long long first = 0;
        for (; first + stripColumns <= m_bands; first += stripColumns) {
            work(Strip{data + first, m_bands, rows}, first, true);
        }
        if (first + lanes <= m_bands) {
            work(Strip{data + first, m_bands, rows}, first, false);
            first += lanes;
        }
        if (first < m_bands) {
            for (long long i = 0; i < rows; ++i) {
                std::copy_n(data + i * m_bands + first, m_bands - first, m_leftover.data() + i * lanes);
            }
            work(Strip{m_leftover.data(), lanes, rows}, first, false);
        }
    }

    // Y' D.
    void multiplyData(const Matrix<double>& D, long long begin, long long end)
    {
        forStrips(D, begin, end, [this](const Strip& strip, long long first, bool wide) {
            sumOverRows(wide ? wideKernels : narrowKernels, strip, m_panel.data(), m_components, product(0) + first,
                        m_padded);
        });
    }

    // Turns the products into W = T' (head + Y' D), and takes W off the head. From the last row up, as row k needs
    // those above.
    void updateHead(double* head)
    {
        for (long long k = 0; k < m_components; ++k) {
            double* __restrict to = product(k);
            const double* __restrict from = head + k * m_bands;
            for (long long j = 0; j < m_bands; ++j) {
                to[j] += from[j];
            }
        }
        for (long long k = m_components - 1; k >= 0; --k) {
            double* __restrict to = product(k);
            for (long long j = 0; j < m_padded; ++j) {
                to[j] *= compact(k, k);
            }
            for (long long l = 0; l < k; ++l) {
                const double factor = compact(l, k);
                const double* __restrict from = product(l);
                for (long long j = 0; j < m_padded; ++j) {
                    to[j] += factor * from[j];
                }
            }
            double* __restrict row = head + k * m_bands;
            for (long long j = 0; j < m_bands; ++j) {
                row[j] -= to[j];
            }
        }
    }

    // Sum of the squares of D - Y W.
    double restOfData(const Matrix<double>& D, long long begin, long long end)
    {
        Lanes sums{};
        forStrips(D, begin, end, [this, &sums](const Strip& strip, long long first, bool wide) {
            const auto rest = wide ? restOfStrip<true> : restOfStrip<false>;
            sums += rest(strip, m_panel.data(), product(0) + first, m_padded, m_components);
        });
        return total(sums);
    }

    long long m_components;
    long long m_bands;
    long long m_padded;
    std::vector<double> m_panel;
    std::vector<double> m_products;
    std::vector<double> m_compact;
    std::vector<double> m_leftover;
    std::vector<double> m_tau;
};

LeftReduction::LeftReduction(const Matrix<double>& D, long long components)
    : m_data(D), m_components(components), m_chunkRows(passChunkRows(D.num_rows()))
{
    XTNT_ASSERT(components > 0 && !D.empty());
    const long long chunks = (D.num_rows() - 1) / m_chunkRows + 1;
    m_triangles = Matrix<double>(chunks * components, components);
    m_heads = Matrix<double>(chunks * components, D.num_cols());
    m_rests.resize(static_cast<std::size_t>(chunks));
    m_pool = std::make_unique<WorkspacePool<Reducer>>([this] { return makeReducer(); });
}

LeftReduction::~LeftReduction() = default;

std::unique_ptr<LeftReduction::Reducer> LeftReduction::makeReducer() const
{
    return std::make_unique<Reducer>(m_components, m_data.num_cols());
}

void LeftReduction::add(const Matrix<double>& C, long long begin, long long end)
{
    XTNT_ASSERT(C.num_cols() == m_components && end - begin <= blockRows);
    const long long chunk = begin / m_chunkRows;
    const WorkspacePool<Reducer>::Lease lease(*m_pool);
    m_rests[static_cast<std::size_t>(chunk)] +=
        (*lease).absorb(C, m_data, begin, end, m_triangles[chunk * m_components], m_heads[chunk * m_components]);
}

void LeftReduction::finish()
{
    Matrix<double> triangle(m_components, m_components);
    Matrix<double> head(m_components, m_data.num_cols());
    double rest = 0;
    for (double part : m_rests) {
        rest += part;
    }
    const std::unique_ptr<Reducer> reducer = makeReducer();
    for (long long first = 0; first < m_triangles.num_rows(); first += blockRows) {
        const long long end = std::min(first + blockRows, m_triangles.num_rows());
        rest += reducer->absorb(m_triangles, m_heads, first, end, triangle[0], head[0]);
    }
    m_triangles = triangle;
    m_heads = head;
    m_rests.assign(1, rest);
}

void LeftReduction::addAll(const Matrix<double>& C)
{
    XTNT_ASSERT(C.num_rows() == m_data.num_rows() && C.num_cols() == m_components);
    parallelChunks(C.num_rows(), m_chunkRows, [&](long long begin, long long end) {
        for (long long first = begin; first < end; first += blockRows) {
            add(C, first, std::min(first + blockRows, end));
        }
    });
    finish();
}

void LeftReduction::reorder(const Vector<long long>& order)
{
    m_triangles = m_triangles.columns(order);
    finish();
}

bool LeftReduction::inRange() const
{
    for (long long k = 0; k < m_components; ++k) {
        double squares = 0;
        for (long long i = 0; i <= k; ++i) {
            squares += m_triangles[i][k] * m_triangles[i][k];
        }
        // Written so that NaN fails.
        if (!(squares > smallestNorm * smallestNorm && squares < largestNorm * largestNorm)) {
            return false;
        }
    }
    return true;
}

} // namespace XTNT
