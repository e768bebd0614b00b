// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_matrix.h"

#include "support/AssertionReport.h"
#include "support/CapturedOutput.h"
#include "support/Numbers.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::assertionReport;
using testsupport::elements;
using testsupport::matrixOf;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

const char* const file = "XTNT/xtnt_matrix.h";

class MatrixDeathTest : public testing::Test
{
protected:
    MatrixDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

void expectShape(const Matrix<double>& a, long long rows, long long columns)
{
    EXPECT_EQ(a.num_rows(), rows);
    EXPECT_EQ(a.num_cols(), columns);
    EXPECT_EQ(a.storage.n_, rows * columns);
}

} // namespace

TEST(MatrixTest, FieldsStandInTheOrderThatTheHostReads)
{
    EXPECT_EQ(offsetof(Matrix<double>, storage), 0U);
    EXPECT_EQ(offsetof(Matrix<double>, rowTable), sizeof(Vector<double>));
    EXPECT_EQ(offsetof(Matrix<double>, M), 2 * sizeof(Vector<double>));
    EXPECT_EQ(offsetof(Matrix<double>, N), 2 * sizeof(Vector<double>) + 8);
}

TEST(MatrixTest, SizedMatrixIsZeroWithContiguousRows)
{
    const Matrix<double> a(2, 3);
    EXPECT_THAT(elements(a), ElementsAre(0, 0, 0, 0, 0, 0));
    ASSERT_EQ(a.rowTable.n_, 2);
    EXPECT_EQ(a.rowTable[0], a.storage.data);
    EXPECT_EQ(a.rowTable[1], a.storage.data + 3);
    EXPECT_THAT(elements(Matrix<double>(1, 2, 4.5)), ElementsAre(4.5, 4.5));
    EXPECT_THAT(elements(Matrix<long long>(1, 2, 4)), ElementsAre(4, 4));
}

TEST(MatrixTest, MatrixWithoutRowsKeepsItsColumnsAndHasNoStorage)
{
    const Matrix<double> a(0, 5);
    expectShape(a, 0, 5);
    EXPECT_EQ(a.storage.base, nullptr);
    EXPECT_EQ(a.storage.refCount, nullptr);
}

TEST(MatrixTest, MatrixWithoutColumnsFillsNoRowPointers)
{
    const Matrix<double> a(3, 0);
    expectShape(a, 3, 0);
    for (long long i = 0; i < a.rowTable.n_; ++i) {
        EXPECT_EQ(a.rowTable[i], nullptr);
    }
    expectShape(Matrix<double>(-2, 3), 0, 3);
    expectShape(Matrix<double>(3, -2), 3, 0);
}

TEST(MatrixTest, ElementCountThatOverflowsIsOutOfMemory)
{
    EXPECT_THROW(Matrix<double>(1LL << 40, 1LL << 40), std::bad_alloc);
    EXPECT_THROW(Matrix<double>(1LL << 31, 1LL << 31), std::bad_alloc);
    Matrix<double> a(2, 2);
    EXPECT_THROW(a.reshape(1LL << 40, 1LL << 40), std::bad_alloc);
    expectShape(a, 0, 0);
}

TEST(MatrixTest, AssignmentSharesAndDeepCopyDoesNot)
{
    Matrix<double> a = matrixOf({{1, 2}, {3, 4}});
    Matrix<double> b;
    b = a;
    b[0][0] = 9;
    EXPECT_EQ(a[0][0], 9);
    EXPECT_EQ(*a.storage.refCount, 2);
    EXPECT_EQ(*a.rowTable.refCount, 2);
    b = deepCopy(a);
    b[0][0] = 1;
    EXPECT_EQ(a[0][0], 9);
    EXPECT_EQ(*a.storage.refCount, 1);
    EXPECT_EQ(b.rowTable[1], b.storage.data + 2);
}

TEST(MatrixTest, SelfAssignmentDoesNothing)
{
    Matrix<double> a = matrixOf({{1, 2}});
    const Matrix<double>& same = a;
    a = same;
    EXPECT_EQ(*a.storage.refCount, 1);
    EXPECT_THAT(elements(a), ElementsAre(1, 2));
}

TEST(MatrixTest, ViewOwnsOnlyItsRowTable)
{
    double buffer[] = {1, 2, 3, 4};
    {
        Matrix<double> view(buffer, 2, 2);
        EXPECT_EQ(view.storage.refCount, nullptr);
        ASSERT_NE(view.rowTable.refCount, nullptr);
        view[1][0] = 8;
    }
    EXPECT_EQ(buffer[2], 8);
}

TEST(MatrixTest, ReshapeReplacesByZeros)
{
    Matrix<double> a = matrixOf({{1, 2}});
    const Matrix<double> old = a;
    a.reshape(2, 1);
    expectShape(a, 2, 1);
    EXPECT_THAT(elements(a), ElementsAre(0, 0));
    EXPECT_THAT(elements(old), ElementsAre(1, 2));
    a.reshape(0, 4);
    expectShape(a, 0, 4);
}

TEST(MatrixTest, RowAndColumnAreCopies)
{
    Matrix<double> a = matrixOf({{1, 2, 3}, {4, 5, 6}});
    Vector<double> row = a.row(1);
    row[0] = 99;
    EXPECT_THAT(elements(row), ElementsAre(99, 5, 6));
    EXPECT_THAT(elements(a.column(2)), ElementsAre(3, 6));
    EXPECT_EQ(a[1][0], 4);
    EXPECT_THAT(elements(matrixOf<int>({{1, 2}, {3, 4}}).row(0)), ElementsAre(1, 2));
    EXPECT_THAT(elements(matrixOf<int>({{1, 2}, {3, 4}}).column(0)), ElementsAre(1, 3));
}

TEST(MatrixTest, ColumnsGathersInTheOrderAsked)
{
    const Matrix<double> a = matrixOf({{1, 2, 3}, {4, 5, 6}});
    EXPECT_THAT(elements(a.columns(vectorOf<long long>({2, 0, 2}))), ElementsAre(3, 1, 3, 6, 4, 6));
    expectShape(a.columns(Vector<long long>()), 2, 0);
}

TEST(MatrixTest, ColumnsLetsOnePastTheLastPass)
{
    const Matrix<double> a = matrixOf({{1, 2}, {3, 4}});
    EXPECT_THAT(elements(a.columns(vectorOf<long long>({1, 2}))), ElementsAre(2, 0, 4, 0));
}

TEST(MatrixTest, SetRowCopiesOrRefuses)
{
    Matrix<double> a(2, 2);
    EXPECT_TRUE(a.setRow(1, vectorOf({5, 6})));
    EXPECT_FALSE(a.setRow(2, vectorOf({5, 6})));
    EXPECT_FALSE(a.setRow(-1, vectorOf({5, 6})));
    EXPECT_FALSE(a.setRow(0, vectorOf({5})));
    EXPECT_THAT(elements(a), ElementsAre(0, 0, 5, 6));
}

TEST(MatrixTest, TransposeOfAnyShape)
{
    EXPECT_THAT(elements(matrixOf({{1, 2, 3}, {4, 5, 6}}).transpose()), ElementsAre(1, 4, 2, 5, 3, 6));
    expectShape(transpose(Matrix<double>(0, 4)), 4, 0);
    const Matrix<double> tall = testsupport::randomMatrix(77, 5, 1);
    const Matrix<double> wide = transpose(tall);
    expectShape(wide, 5, 77);
    for (long long i = 0; i < tall.M; ++i) {
        for (long long j = 0; j < tall.N; ++j) {
            ASSERT_EQ(wide[j][i], tall[i][j]);
        }
    }
}

TEST(MatrixTest, SubMatrixIncludesItsBounds)
{
    Matrix<double> a = matrixOf({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    Matrix<double> block = a.subMatrix(1, 2, 0, 1);
    expectShape(block, 2, 2);
    EXPECT_THAT(elements(block), ElementsAre(4, 5, 7, 8));
    block[0][0] = 99;
    EXPECT_EQ(a[1][0], 4);
    expectShape(a.subMatrix(1, 0, 0, 1), 0, 0);
    expectShape(a.subMatrix(0, 1, 2, 1), 0, 0);
    EXPECT_THAT(elements(matrixOf<int>({{1, 2}, {3, 4}}).subMatrix(1, 1, 0, 1)), ElementsAre(3, 4));
}

TEST(MatrixTest, SumAndDifferenceAreNewMatrices)
{
    const Matrix<double> a = matrixOf({{1, 2}, {3, 4}});
    const Matrix<double> b = matrixOf({{4, 3}, {2, 1}});
    EXPECT_THAT(elements(a + b), ElementsAre(5, 5, 5, 5));
    EXPECT_THAT(elements(a - b), ElementsAre(-3, -1, 1, 3));
}

TEST(MatrixTest, SubtractionTakesAShareOfTheResult)
{
    Matrix<double> a = matrixOf({{5, 6}});
    const Matrix<double> old = a;
    a -= matrixOf({{1, 1}});
    EXPECT_THAT(elements(a), ElementsAre(4, 5));
    EXPECT_THAT(elements(old), ElementsAre(5, 6));
    EXPECT_EQ(*a.storage.refCount, 1);
}

TEST(MatrixTest, ElementProductOfDifferentShapesIsEmptyInSilence)
{
    const testsupport::CapturedOutput output;
    const Matrix<double> a = matrixOf({{1, 2}, {3, 4}});
    EXPECT_THAT(elements(elementProduct(a, a)), ElementsAre(1, 4, 9, 16));
    expectShape(elementProduct(a, Matrix<double>(2, 3)), 0, 0);
    expectShape(elementProduct(Matrix<double>(1, 4), a), 0, 0);
    EXPECT_EQ(output.text(), "");
}

TEST(MatrixTest, ProductOfMatrices)
{
    const Matrix<double> a = matrixOf({{1, 2}, {3, 4}, {5, 6}});
    const Matrix<double> b = matrixOf({{1, 0, 2}, {0, 1, 3}});
    EXPECT_THAT(elements(a * b), ElementsAre(1, 2, 8, 3, 4, 18, 5, 6, 28));
    const Matrix<double> nothing = Matrix<double>(2, 0) * Matrix<double>(0, 3);
    EXPECT_THAT(elements(nothing), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST(MatrixTest, ProductOfUnequalInnerSizesPrintsAndIsEmpty)
{
    const testsupport::CapturedOutput output;
    expectShape(Matrix<double>(2, 3) * Matrix<double>(4, 2), 0, 0);
    EXPECT_EQ(output.text(), "size mismatch\n");
}

TEST(MatrixTest, ProductWithVectors)
{
    const Matrix<double> a = matrixOf({{1, 2}, {3, 4}, {5, 6}});
    EXPECT_THAT(elements(a * vectorOf({1, 10})), ElementsAre(21, 43, 65));
    EXPECT_THAT(elements(vectorOf({1, 10, 100}) * a), ElementsAre(531, 642));
    const testsupport::CapturedOutput output;
    EXPECT_TRUE((a * Vector<double>(3)).empty());
    EXPECT_EQ(output.text(), "size mismatch\n");
}

TEST(MatrixTest, NormsOverAllElements)
{
    const Matrix<double> a = matrixOf({{3, -4}, {0, 0}, {0, 12}});
    EXPECT_EQ(a.norm(0), 12);
    EXPECT_EQ(a.norm(1), 19);
    EXPECT_EQ(a.norm(2), 13);
    EXPECT_EQ(a.norm(7), 13);
    for (const int mode : {0, 1, 2}) {
        EXPECT_EQ(Matrix<double>().norm(mode), 0);
        EXPECT_EQ(Matrix<double>(2, 2).norm(mode), 0);
    }
}

TEST(MatrixTest, FrobeniusNormNeitherOverflowsNorUnderflows)
{
    EXPECT_DOUBLE_EQ(matrixOf({{3e200, 4e200}}).norm(2), 5e200);
    EXPECT_DOUBLE_EQ(matrixOf({{3e-200, 4e-200}}).norm(2), 5e-200);
    EXPECT_TRUE(std::isinf(matrixOf({{std::numeric_limits<double>::infinity(), 1}}).norm(2)));
    EXPECT_TRUE(std::isnan(matrixOf({{std::nan(""), 1}}).norm(2)));
}

TEST(MatrixTest, SumsOfColumnsAndRows)
{
    const Matrix<double> a = matrixOf({{1, 2, 3}, {4, 5, 6}});
    EXPECT_THAT(elements(a.sum(0)), ElementsAre(5, 7, 9));
    EXPECT_THAT(elements(a.sum(1)), ElementsAre(6, 15));
    EXPECT_TRUE(a.sum(2).empty());
    EXPECT_THAT(elements(matrixOf<int>({{1, 2}, {3, 4}}).sum(1)), ElementsAre(3, 7));
}

TEST(MatrixTest, MaxAlongColumnsAndRows)
{
    const Matrix<int> a = matrixOf<int>({{-1, -5}, {-3, -2}});
    EXPECT_THAT(elements(a.maxAlong(0)), ElementsAre(-1, -2));
    EXPECT_THAT(elements(a.maxAlong(1)), ElementsAre(-1, -2));
    EXPECT_THAT(elements(a.maxAlong(2)), IsEmpty());
    EXPECT_THAT(elements(Matrix<int>(2, 0).maxAlong(1)), ElementsAre(0, 0));
}

TEST(MatrixTest, GreaterMaskIsStrict)
{
    EXPECT_THAT(elements(matrixOf({{1, 2}, {3, std::nan("")}}).greaterMask(2)), ElementsAre(0, 0, 1, 0));
}

TEST(MatrixTest, AbsoluteValues)
{
    EXPECT_THAT(elements(matrixOf({{-1, 2}}).absolute()), ElementsAre(1, 2));
}

TEST(MatrixTest, OuterProduct)
{
    const Matrix<double> product = outerProduct(vectorOf({1, 2}), vectorOf({3, 4, 5}));
    expectShape(product, 2, 3);
    EXPECT_THAT(elements(product), ElementsAre(3, 4, 5, 6, 8, 10));
    expectShape(outerProduct(Vector<double>(), vectorOf({1})), 0, 1);
}

TEST(MatrixTest, StreamsShapeThenARowALine)
{
    std::ostringstream out;
    out << matrixOf({{1, 2.5}, {-3, 4}});
    EXPECT_EQ(out.str(), "2 2\n1 2.5 \n-3 4 \n");
}

TEST_F(MatrixDeathTest, RowAssertsItsIndex)
{
    const Matrix<double> a(2, 3);
    const std::string report = assertionReport(file, "_i >= 0 && _i < this->num_rows()");
    EXPECT_DEATH(a.row(2), report);
    EXPECT_DEATH(a.row(-1), report);
}

TEST_F(MatrixDeathTest, ColumnAssertsItsIndex)
{
    const Matrix<double> a(2, 3);
    const std::string report = assertionReport(file, "i >= 0 && i < this->num_cols()");
    EXPECT_DEATH(a.column(3), report);
    EXPECT_DEATH(a.column(-1), report);
}

TEST_F(MatrixDeathTest, ColumnsAssertsItsIndices)
{
    const Matrix<double> a(2, 3);
    const std::string report = assertionReport(file, "idx.Min() >= 0 && idx.Max() <= this->num_cols()");
    EXPECT_DEATH(a.columns(vectorOf<long long>({0, 4})), report);
    EXPECT_DEATH(a.columns(vectorOf<long long>({-1})), report);
}

TEST_F(MatrixDeathTest, SumAssertsAShape)
{
    const std::string report = assertionReport(file, "M > 0 && N > 0");
    EXPECT_DEATH(Matrix<double>(0, 5).sum(0), report);
    EXPECT_DEATH(Matrix<int>(5, 0).sum(1), report);
}

TEST_F(MatrixDeathTest, SumAndDifferenceAssertOneShape)
{
    Matrix<double> a(2, 3);
    const std::string rows = assertionReport(file, "M == B.num_rows()");
    const std::string columns = assertionReport(file, "N == B.num_cols()");
    EXPECT_DEATH(a + Matrix<double>(3, 3), rows);
    EXPECT_DEATH(a - Matrix<double>(3, 3), rows);
    EXPECT_DEATH(a + Matrix<double>(2, 2), columns);
    EXPECT_DEATH(a -= Matrix<double>(2, 2), columns);
}
