// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/NonNegativeFit.h"

#include "XTNT/xtnt_assert.h"

using XTNT::Matrix;
using XTNT::Vector;

bool hasNegative(const Matrix<double>& a, long long column)
{
    for (long long i = 0; i < a.num_rows(); ++i) {
        if (a[i][column] < 0) {
            return true;
        }
    }
    return false;
}

NonNegativeFit::NonNegativeFit(const Matrix<double>& design)
    : m_design(design.transpose()), m_column(static_cast<std::size_t>(design.num_rows())),
      m_solution(design.num_cols()), m_fit(m_design)
{
}

Vector<double>& NonNegativeFit::fit(const Matrix<double>& rightHandSides, long long column)
{
    XTNT_ASSERT(rightHandSides.num_rows() == static_cast<long long>(m_column.size()));
    for (long long i = 0; i < rightHandSides.num_rows(); ++i) {
        m_column[static_cast<std::size_t>(i)] = rightHandSides[i][column];
    }
    m_fit.fit(m_column.data(), m_solution.data);
    return m_solution;
}
