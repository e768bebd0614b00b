// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/unimodality.h"

#include <algorithm>

namespace {

enum Mode
{
    Vertical = 1,
    Horizontal = 2,
    Average = 3,
    WideAverage = 4
};

// Averaging goes back over what it changed, and over again: with a tolerance of a few percent some hundred steps an
// element at most, but without any tolerance each further element multiplies the steps. A walk that takes longer than
// this stays as it is.
constexpr long long stepsPerElement = 4096;
constexpr long long stepsAtLeast = 1LL << 24;

// One column, walked away from its peak. Indices are those of the matrix; `inward` is the step towards the peak.
class Walk
{
public:
    Walk(XTNT::Matrix<double>& a, long long column, int mode, double tolerance)
        : m_a(a), m_column(column), m_mode(mode), m_tolerance(tolerance)
    {
    }

    // Both walks begin against the peak's value, whatever the other has made of the column.
    void left(long long peak, double value) { run(peak, value, +1); }
    void right(long long peak, double value) { run(peak, value, -1); }

private:
    double& at(long long i) { return m_a[i][m_column]; }
    bool inside(long long i) const { return i >= 0 && i < m_a.num_rows(); }

    void run(long long peak, double cur, int inward)
    {
        m_inward = inward;
        m_fallenBelowZero = false;
        long long steps = std::max(stepsPerElement * m_a.num_rows(), stepsAtLeast);
        for (long long i = peak - inward; inside(i) && steps > 0; i -= inward, --steps) {
            const double v = at(i);
            if (cur >= v) {
                cur = v;
                continue;
            }
            if (v > cur * m_tolerance) {
                i = correct(i, cur);
            }
            cur = at(i);
        }
    }

    // Corrects element i, which rises above `cur`; where the walk stands afterwards.
    long long correct(long long i, double cur)
    {
        switch (m_mode) {
        case Vertical:
            at(i) = 0;
            return i;
        case Horizontal:
            at(i) = at(i + m_inward);
            return i;
        case Average:
            return average(i, i + m_inward, cur);
        case WideAverage:
            return average(i, i + 2LL * m_inward, cur);
        default:
            return i;
        }
    }

    long long average(long long i, long long other, double cur)
    {
        // Behind an element below zero comes a zero, and whatever rises behind that is halved each time the walk goes
        // over the pair again, until nothing is left of it.
        const bool worksOff = m_mode == Average && m_fallenBelowZero;
        if (!(cur >= 0) || !inside(other) || worksOff) {
            m_fallenBelowZero = m_fallenBelowZero || cur < 0;
            at(i) = 0;
            return i;
        }
        const double mean = (at(i) + at(other)) / 2;
        at(i) = mean;
        at(i + m_inward) = mean;
        return std::clamp(i + 2LL * m_inward, 0LL, m_a.num_rows() - 1);
    }

    XTNT::Matrix<double>& m_a;
    long long m_column;
    int m_mode;
    double m_tolerance;
    int m_inward = 1;
    bool m_fallenBelowZero = false;
};

} // namespace

void makeUnimodal(XTNT::Matrix<double>& a, const XTNT::Vector<int>& modes, double tolerance)
{
    const long long columns = std::min(a.num_cols(), modes.size());
    for (long long c = 0; c < columns && a.num_rows() > 0; ++c) {
        if (modes[c] == 0) {
            continue;
        }
        long long peak = 0;
        const double value = a.column(c).Max(&peak);
        Walk walk(a, c, modes[c], tolerance);
        walk.left(peak, value);
        walk.right(peak, value);
    }
}
