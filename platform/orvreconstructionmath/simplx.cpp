// SPDX-License-Identifier: GPL-3.0-or-later
// The simplex method on a dictionary: every basic variable and the objective written as a constant plus a combination
// of the variables at zero. Two phases (V. Chvatal, Linear Programming, 1983), Bland's rule for entering and leaving.
#include "host/simplx.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace {

// Below these, after every row and column has been scaled to a largest coefficient near 1, a number counts as rounding
// error: a reduced cost, a coefficient to pivot on, and the infeasibility that the first phase may leave.
constexpr double costTolerance = 1e-12;
constexpr double pivotTolerance = 1e-11;
constexpr double feasibilityTolerance = 1e-9;

double powerOfTwoNear(double magnitude)
{
    return magnitude > 0 ? std::ldexp(1.0, std::clamp(std::ilogb(magnitude), -1000, 1000)) : 1.0;
}

// A linear program in dictionary form. Variables are numbered: 0 to n - 1 those of the problem, n + i the slack,
// surplus or (of an equality) artificial variable of constraint i, and from n + m on the artificial variables of the
// constraints "at least", which exist in the first phase only.
class Dictionary
{
public:
    Dictionary(const NRMat<double>& a, std::size_t m1, std::size_t m2, std::size_t m3);

    // False when no point meets the constraints.
    bool findFeasiblePoint();
    // False when the objective is unbounded.
    bool maximise();
    void store(NRMat<double>& a, NRVec<int>& izrov, NRVec<int>& iposv) const;

private:
    using Row = std::vector<double>;

    bool isArtificial(std::size_t variable) const { return variable >= m_variables + m_atMost + m_atLeast; }
    bool isForbidden(std::size_t j) const { return m_secondPhase && isArtificial(m_atZero[j]); }

    void readConstraints(const NRMat<double>& a);
    void scaleConstraints();
    void readObjective(const NRMat<double>& a);
    bool improve(Row& objective);
    std::size_t entering(const Row& objective) const;
    std::size_t leaving(std::size_t column) const;
    void pivot(std::size_t row, std::size_t column, Row& objective);
    void expelArtificials();

    std::size_t m_variables;
    std::size_t m_atMost;
    std::size_t m_atLeast;
    std::size_t m_equal;
    bool m_secondPhase = false;

    std::vector<Row> m_rows; // element 0 the constant, then a coefficient a column
    Row m_objective;         // the same, of the objective in terms of the variables at zero
    std::vector<std::size_t> m_basic;
    std::vector<std::size_t> m_atZero;
    std::vector<double> m_unit; // a variable is its value here times this
    double m_objectiveUnit = 1;
};

Dictionary::Dictionary(const NRMat<double>& a, std::size_t m1, std::size_t m2, std::size_t m3)
    : m_variables(a.ncols() - 1), m_atMost(m1), m_atLeast(m2), m_equal(m3), m_unit(m_variables + m1 + m2 + m3 + m2, 1.0)
{
    readConstraints(a);
    scaleConstraints();
    readObjective(a);
}

// Rows as they stand: slack = b - a x. In a row "at least" the artificial variable is basic and the surplus, at zero,
// has a column of its own: artificial = b - a x + surplus.
void Dictionary::readConstraints(const NRMat<double>& a)
{
    const std::size_t rows = m_atMost + m_atLeast + m_equal;
    for (std::size_t j = 0; j < m_variables; ++j) {
        m_atZero.push_back(j);
    }
    for (std::size_t i = 0; i < rows; ++i) {
        Row row(1 + m_variables + m_atLeast, 0.0);
        std::copy_n(a[i + 1], 1 + m_variables, row.begin());
        const bool atLeast = i >= m_atMost && i < m_atMost + m_atLeast;
        const std::size_t own = m_variables + i;
        if (atLeast) {
            row[1 + m_variables + (i - m_atMost)] = 1;
            m_atZero.push_back(own);
        }
        m_basic.push_back(atLeast ? m_variables + rows + (i - m_atMost) : own);
        m_rows.push_back(std::move(row));
    }
}

// Gives every row and then every column a largest coefficient near 1 and the constants a largest near 1, by powers of
// two. A surplus shares the unit of its row.
void Dictionary::scaleConstraints()
{
    double largestConstant = 0;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        Row& row = m_rows[i];
        double largest = 0;
        for (std::size_t j = 1; j <= m_variables; ++j) {
            largest = std::max(largest, std::abs(row[j]));
        }
        const double unit = powerOfTwoNear(largest);
        for (std::size_t j = 0; j <= m_variables; ++j) {
            row[j] /= unit;
        }
        m_unit[m_basic[i]] = unit;
        m_unit[m_variables + i] = unit;
        largestConstant = std::max(largestConstant, row[0]);
    }
    for (std::size_t j = 0; j < m_variables; ++j) {
        double largest = 0;
        for (const Row& row : m_rows) {
            largest = std::max(largest, std::abs(row[j + 1]));
        }
        m_unit[j] = 1 / powerOfTwoNear(largest);
        for (Row& row : m_rows) {
            row[j + 1] *= m_unit[j];
        }
    }
    const double constantUnit = powerOfTwoNear(largestConstant);
    for (Row& row : m_rows) {
        row[0] /= constantUnit;
    }
    for (double& unit : m_unit) {
        unit *= constantUnit;
    }
}

void Dictionary::readObjective(const NRMat<double>& a)
{
    m_objective.assign(1 + m_variables + m_atLeast, 0.0);
    double largest = 0;
    for (std::size_t j = 0; j < m_variables; ++j) {
        m_objective[j + 1] = a[0][j + 1] * m_unit[j];
        largest = std::max(largest, std::abs(m_objective[j + 1]));
    }
    m_objectiveUnit = powerOfTwoNear(largest);
    m_objective[0] = a[0][0];
    for (double& coefficient : m_objective) {
        coefficient /= m_objectiveUnit;
    }
}

// First phase: maximises minus the sum of the artificial variables.
bool Dictionary::findFeasiblePoint()
{
    Row shortfall(m_objective.size(), 0.0);
    for (std::size_t i = m_atMost; i < m_rows.size(); ++i) {
        for (std::size_t j = 0; j < shortfall.size(); ++j) {
            shortfall[j] -= m_rows[i][j];
        }
    }
    improve(shortfall);
    if (shortfall[0] < -feasibilityTolerance) {
        return false;
    }
    m_secondPhase = true;
    expelArtificials();
    return true;
}

bool Dictionary::maximise()
{
    m_secondPhase = true;
    return improve(m_objective);
}

// Pivots until no variable at zero would raise the objective. False when one raises it without bound. Bland's rule
// ends by itself; the limit is for rounding errors that would lead it in a circle.
bool Dictionary::improve(Row& objective)
{
    const std::size_t limit = 1000 * (1 + m_rows.size() + m_atZero.size());
    for (std::size_t pivots = 0; pivots < limit; ++pivots) {
        const std::size_t column = entering(objective);
        if (column == m_atZero.size()) {
            return true;
        }
        const std::size_t row = leaving(column);
        if (row == m_rows.size()) {
            return false;
        }
        pivot(row, column, objective);
    }
    throw std::runtime_error("The simplex method did not come to an end.");
}

// Bland's rule: of the variables that raise the objective the one with the lowest number.
std::size_t Dictionary::entering(const Row& objective) const
{
    std::size_t best = m_atZero.size();
    for (std::size_t j = 0; j < m_atZero.size(); ++j) {
        const bool raises = objective[j + 1] > costTolerance && !isForbidden(j);
        if (raises && (best == m_atZero.size() || m_atZero[j] < m_atZero[best])) {
            best = j;
        }
    }
    return best;
}

// Bland's rule: of the basic variables that reach zero first the one with the lowest number. An artificial variable
// that stayed basic at zero has a row of zeros and never blocks.
std::size_t Dictionary::leaving(std::size_t column) const
{
    std::size_t best = m_rows.size();
    double shortest = 0;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const double slope = m_rows[i][column + 1];
        if (slope >= -pivotTolerance) {
            continue;
        }
        const double length = m_rows[i][0] / -slope;
        const bool first = best == m_rows.size() || length < shortest;
        if (first || (length == shortest && m_basic[i] < m_basic[best])) {
            best = i;
            shortest = length;
        }
    }
    return best;
}

// Exchanges the basic variable of `row` and the variable at zero of `column`, in every row and both objectives.
void Dictionary::pivot(std::size_t row, std::size_t column, Row& objective)
{
    Row& pivotRow = m_rows[row];
    const std::size_t c = column + 1;
    const double divisor = -pivotRow[c];
    pivotRow[c] = -1;
    for (double& coefficient : pivotRow) {
        coefficient /= divisor;
    }
    const auto substitute = [&pivotRow, c](Row& target) {
        const double factor = target[c];
        if (factor == 0) {
            return;
        }
        target[c] = 0;
        for (std::size_t j = 0; j < target.size(); ++j) {
            target[j] += factor * pivotRow[j];
        }
    };
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (i != row) {
            substitute(m_rows[i]);
            m_rows[i][0] = std::max(m_rows[i][0], 0.0); // it is below only by rounding: the ratio test saw to that
        }
    }
    substitute(objective);
    if (&objective != &m_objective) {
        substitute(m_objective);
    }
    std::swap(m_basic[row], m_atZero[column]);
}

// Artificial variables that are still basic, at zero, leave in exchange for any other variable of their row. In a
// redundant equality there is none; its artificial variable stays at zero for good.
void Dictionary::expelArtificials()
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (!isArtificial(m_basic[i])) {
            continue;
        }
        m_rows[i][0] = 0;
        std::size_t best = m_atZero.size();
        for (std::size_t j = 0; j < m_atZero.size(); ++j) {
            const double size = isForbidden(j) ? 0.0 : std::abs(m_rows[i][j + 1]);
            if (size > pivotTolerance && (best == m_atZero.size() || size > std::abs(m_rows[i][best + 1]))) {
                best = j;
            }
        }
        if (best < m_atZero.size()) {
            pivot(i, best, m_objective);
        }
    }
}

// Back in the caller's units. The columns of the artificial variables of constraints "at least" are left out: they
// repeat the surplus.
void Dictionary::store(NRMat<double>& a, NRVec<int>& izrov, NRVec<int>& iposv) const
{
    const std::size_t rows = m_rows.size();
    std::vector<std::size_t> kept;
    for (std::size_t j = 0; j < m_atZero.size(); ++j) {
        if (m_atZero[j] < m_variables + rows) {
            kept.push_back(j);
        }
    }
    if (kept.size() != m_variables) {
        throw std::runtime_error("The simplex method lost a variable to rounding errors.");
    }
    izrov = NRVec<int>(m_variables);
    iposv = NRVec<int>(rows);
    std::fill_n(a[rows + 1], m_variables + 1, 0.0);
    a[0][0] = m_objective[0] * m_objectiveUnit;
    for (std::size_t j = 0; j < kept.size(); ++j) {
        izrov[j] = static_cast<int>(m_atZero[kept[j]]);
        a[0][j + 1] = m_objective[kept[j] + 1] * m_objectiveUnit / m_unit[m_atZero[kept[j]]];
    }
    for (std::size_t i = 0; i < rows; ++i) {
        const double unit = m_unit[m_basic[i]];
        iposv[i] = static_cast<int>(m_basic[i]);
        a[i + 1][0] = m_rows[i][0] * unit;
        for (std::size_t j = 0; j < kept.size(); ++j) {
            a[i + 1][j + 1] = m_rows[i][kept[j] + 1] * unit / m_unit[m_atZero[kept[j]]];
        }
    }
}

void checkTableau(const NRMat<double>& a, std::size_t rows)
{
    if (a.ncols() < 1 || a.nrows() != rows + 2) {
        throw std::invalid_argument("The tableau does not have the size of the linear program.");
    }
    for (std::size_t i = 0; i <= rows; ++i) {
        if (!std::all_of(a[i], a[i] + a.ncols(), [](double element) { return std::isfinite(element); })) {
            throw std::invalid_argument("The tableau holds an element that is not finite.");
        }
        if (i > 0 && a[i][0] < 0) {
            throw std::invalid_argument("A right-hand side of the linear program is negative.");
        }
    }
}

} // namespace

void NR::simplx(NRMat<double>& a, std::size_t m1, std::size_t m2, std::size_t m3, int& icase, NRVec<int>& izrov,
                NRVec<int>& iposv)
{
    checkTableau(a, m1 + m2 + m3);
    Dictionary dictionary(a, m1, m2, m3);
    icase = 0;
    if (m2 + m3 > 0 && !dictionary.findFeasiblePoint()) {
        icase = -1;
        return;
    }
    if (!dictionary.maximise()) {
        icase = 1;
        return;
    }
    dictionary.store(a, izrov, iposv);
}
