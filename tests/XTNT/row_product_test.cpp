// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/row_product.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <limits>

using testsupport::randomMatrix;
using XTNT::Matrix;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

} // namespace

TEST(RowProductTest, EqualsThePlainSumForEveryShape)
{
    for (long long columns = 1; columns <= 19; ++columns) {
        for (long long bands : {1, 2, 7}) {
            for (long long rows : {1, 2, 3, 4, 5, 9}) {
                const Matrix<double> data = randomMatrix(rows, bands, 40);
                const Matrix<double> factor = randomMatrix(bands, columns, 41);
                const Matrix<double> result = XTNT::multiplyRows(data, factor);
                ASSERT_EQ(rows, result.num_rows());
                ASSERT_EQ(columns, result.num_cols());
                for (long long r = 0; r < rows; ++r) {
                    for (long long j = 0; j < columns; ++j) {
                        double sum = 0;
                        for (long long b = 0; b < bands; ++b) {
                            sum += data[r][b] * factor[b][j];
                        }
                        ASSERT_NEAR(sum, result[r][j], 8 * epsilon * static_cast<double>(bands));
                    }
                }
            }
        }
    }
}

TEST(RowProductTest, EmptyFactorsGiveEmptyResults)
{
    EXPECT_EQ(0, XTNT::multiplyRows(Matrix<double>(0, 3), Matrix<double>(3, 2)).num_rows());
    EXPECT_TRUE(XTNT::multiplyRows(Matrix<double>(4, 3), Matrix<double>(3, 0)).empty());
}
