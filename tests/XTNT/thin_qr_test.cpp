// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/thin_qr.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using testsupport::randomMatrix;
using XTNT::Matrix;
using XTNT::ThinQr;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

} // namespace

TEST(ThinQrTest, ReproducesTheMatrixWithAnOrthonormalBasis)
{
    // Nearly dependent columns: one pass of orthogonalisation would lose the basis.
    Matrix<double> columns = randomMatrix(4, 9, 42);
    for (long long i = 0; i < 9; ++i) {
        columns[2][i] = columns[0][i] + 1e-9 * columns[2][i];
    }
    const ThinQr factor(columns.storage.data, 9, 4);
    for (long long a = 0; a < 4; ++a) {
        for (long long b = 0; b < 4; ++b) {
            double dot = 0;
            for (long long i = 0; i < 9; ++i) {
                dot += factor.q(a)[i] * factor.q(b)[i];
            }
            EXPECT_NEAR(a == b ? 1 : 0, dot, 32 * epsilon);
        }
        for (long long i = 0; i < 9; ++i) {
            double sum = 0;
            for (long long k = 0; k <= a; ++k) {
                sum += factor.q(k)[i] * factor.r(k, a);
            }
            EXPECT_NEAR(columns[a][i], sum, 32 * epsilon);
        }
    }
    EXPECT_GT(factor.conditionBound(), 1e8);
    EXPECT_LT(factor.conditionBound(), 1e11);
}

TEST(ThinQrTest, SingularMatrixHasNoFiniteCondition)
{
    const double zeroColumn[] = {1, 2, 3, 0, 0, 0};
    EXPECT_FALSE(ThinQr(zeroColumn, 3, 2).conditionBound() <= 1e300);
    const double notFinite[] = {1, 2, std::nan(""), 0, 1, 0};
    EXPECT_FALSE(ThinQr(notFinite, 3, 2).conditionBound() <= 1e300);
}
