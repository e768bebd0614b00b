// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/relativeResidual.h"

#include <gtest/gtest.h>

namespace {

using Matrix = XTNT::Matrix<double>;

class RelativeResidualTest : public ::testing::Test
{
protected:
    // Two pixels in three images, one component.
    RelativeResidualTest() : m_data(2, 3, 0.0), m_maps(1, 2, 0.0), m_spectra(1, 3, 0.0)
    {
        m_maps[0][0] = 1.0;
        m_maps[0][1] = 2.0;
        for (int j = 0; j < 3; ++j) {
            m_spectra[0][j] = 1.0;
            m_data[0][j] = 1.0;
            m_data[1][j] = 2.0;
        }
    }

    Matrix m_data;
    Matrix m_maps;
    Matrix m_spectra;
};

TEST_F(RelativeResidualTest, NothingIsLeftOfAPerfectFit)
{
    ASSERT_TRUE(relativeResidual(m_data, m_maps, m_spectra).has_value());
    EXPECT_DOUBLE_EQ(*relativeResidual(m_data, m_maps, m_spectra), 0.0);
}

TEST_F(RelativeResidualTest, WhatIsNotExplainedIsAPartOfTheNorm)
{
    // 3 more in one element: the rest has the norm 3, the data 1 + 1 + 1 + 4 + 4 + 25 = 36 of squares.
    m_data[1][2] = 5.0;
    EXPECT_DOUBLE_EQ(relativeResidual(m_data, m_maps, m_spectra).value_or(-1.0), 0.5);
}

TEST_F(RelativeResidualTest, SizesThatDoNotFitAndDataOfNothingGiveNone)
{
    EXPECT_FALSE(relativeResidual(Matrix(), m_maps, m_spectra));
    EXPECT_FALSE(relativeResidual(m_data, Matrix(), m_spectra));
    EXPECT_FALSE(relativeResidual(m_data, Matrix(1, 3, 0.0), m_spectra));
    EXPECT_FALSE(relativeResidual(m_data, m_maps, Matrix(1, 2, 0.0)));
    EXPECT_FALSE(relativeResidual(Matrix(2, 3, 0.0), m_maps, m_spectra));
}

} // namespace
