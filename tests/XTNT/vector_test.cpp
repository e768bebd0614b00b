// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_vector.h"

#include "support/AssertionReport.h"
#include "support/Numbers.h"

#include <cstddef>
#include <limits>
#include <new>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::elements;
using testsupport::vectorOf;
using XTNT::Vector;

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();

class VectorDeathTest : public testing::Test
{
protected:
    VectorDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

} // namespace

TEST(VectorTest, FieldsStandInTheOrderThatTheHostReads)
{
    EXPECT_EQ(offsetof(Vector<double>, base), 0U);
    EXPECT_EQ(offsetof(Vector<double>, refCount), 8U);
    EXPECT_EQ(offsetof(Vector<double>, n_), 16U);
    EXPECT_EQ(offsetof(Vector<double>, data), 24U);
    EXPECT_EQ(sizeof(*Vector<double>().refCount), 4U);
}

TEST(VectorTest, DefaultIsEmptyWithoutBlockOrCount)
{
    const Vector<double> v;
    EXPECT_EQ(v.base, nullptr);
    EXPECT_EQ(v.refCount, nullptr);
    EXPECT_EQ(v.data, nullptr);
    EXPECT_EQ(v.n_, 0);
    EXPECT_TRUE(v.empty());
}

TEST(VectorTest, SizedVectorIsZeroAndCountedOnce)
{
    const Vector<double> v(3);
    EXPECT_THAT(elements(v), ElementsAre(0.0, 0.0, 0.0));
    ASSERT_NE(v.refCount, nullptr);
    EXPECT_EQ(*v.refCount, 1);
    EXPECT_EQ(v.data, v.base);
}

TEST(VectorTest, NegativeSizeCountsAsZero)
{
    const Vector<int> v(-5);
    EXPECT_EQ(v.n_, 0);
    EXPECT_EQ(v.base, nullptr);
    EXPECT_EQ(v.refCount, nullptr);
}

TEST(VectorTest, SizeWhoseBytesOverflowIsOutOfMemory)
{
    EXPECT_THROW(Vector<double>{std::numeric_limits<long long>::max()}, std::bad_alloc);
    EXPECT_THROW(Vector<long long>(1LL << 61), std::bad_alloc);
    Vector<double> v(2);
    EXPECT_THROW(v.reshape(1LL << 61), std::bad_alloc);
    EXPECT_EQ(v.n_, 0);
    EXPECT_EQ(v.refCount, nullptr);
}

TEST(VectorTest, CopyAndAssignmentShareTheBlock)
{
    Vector<double> a = vectorOf({1, 2});
    Vector<double> b;
    b = a;
    const Vector<double> c(a);
    EXPECT_EQ(*a.refCount, 3);
    b[0] = 7;
    EXPECT_EQ(a[0], 7);
    EXPECT_EQ(c[0], 7);
}

TEST(VectorTest, LastShareDecidesAndEarlierOnesOnlyCountDown)
{
    Vector<double> a = vectorOf({1, 2});
    {
        const Vector<double> b = a;
        EXPECT_EQ(*a.refCount, 2);
    }
    EXPECT_EQ(*a.refCount, 1);
    Vector<double> c = a;
    a = Vector<double>();
    EXPECT_EQ(*c.refCount, 1);
    EXPECT_THAT(elements(c), ElementsAre(1, 2));
}

TEST(VectorTest, SelfAssignmentDoesNothing)
{
    Vector<double> a = vectorOf({1, 2});
    const Vector<double>& same = a;
    a = same;
    a.shareFrom(same);
    EXPECT_EQ(*a.refCount, 1);
    EXPECT_THAT(elements(a), ElementsAre(1, 2));
}

TEST(VectorTest, DeepCopySharesNothing)
{
    Vector<double> a = vectorOf({1, 2});
    Vector<double> b = deepCopy(a);
    b[0] = 7;
    EXPECT_EQ(a[0], 1);
    EXPECT_EQ(*a.refCount, 1);
    EXPECT_TRUE(deepCopy(Vector<double>()).empty());
}

TEST(VectorTest, ViewNeverFreesAndCountsNothing)
{
    double buffer[] = {1, 2, 3};
    {
        Vector<double> view(buffer, 3);
        Vector<double> share = view;
        EXPECT_EQ(view.refCount, nullptr);
        share[1] = 9;
        const Vector<double> own = view.deepCopy();
        ASSERT_NE(own.refCount, nullptr);
        EXPECT_NE(own.data, buffer);
    }
    EXPECT_EQ(buffer[1], 9);
    EXPECT_EQ(buffer[2], 3);
}

TEST(VectorTest, ReshapeReleasesAndZeroes)
{
    Vector<double> a = vectorOf({1, 2});
    const Vector<double> old = a;
    a.reshape(3);
    EXPECT_THAT(elements(a), ElementsAre(0, 0, 0));
    EXPECT_THAT(elements(old), ElementsAre(1, 2));
    EXPECT_EQ(*old.refCount, 1);
    a.reshape(-1);
    EXPECT_TRUE(a.empty());
}

TEST(VectorTest, FirstOfEqualExtremesWins)
{
    long long where = -1;
    EXPECT_EQ(vectorOf({2, 5, 5}).Max(&where), 5);
    EXPECT_EQ(where, 1);
    EXPECT_EQ(vectorOf<int>({3, 1, 1}).Min(&where), 1);
    EXPECT_EQ(where, 1);
    EXPECT_EQ(vectorOf<long long>({-3, -7}).Max(), -3);
    EXPECT_EQ(vectorOf<long long>({-3, -7}).Min(&where), -7);
    EXPECT_EQ(where, 1);
}

TEST(VectorTest, ExtremesOfNothingAreZeroAndLeaveTheIndexAlone)
{
    long long where = 42;
    EXPECT_EQ(Vector<double>().Max(&where), 0);
    EXPECT_EQ(Vector<int>().Min(&where), 0);
    EXPECT_EQ(where, 42);
}

TEST(VectorTest, NanIsNotAnExtremeUnlessItComesFirst)
{
    EXPECT_EQ(vectorOf({1, notANumber, 3}).Max(), 3);
    EXPECT_TRUE(std::isnan(vectorOf({notANumber, 3}).Max()));
}

TEST(VectorTest, ElementwiseOperationsGiveNewVectors)
{
    const Vector<double> a = vectorOf({1, 2, 3, 4, 5});
    const Vector<double> b = vectorOf({5, 4, 3, 2, 1});
    EXPECT_THAT(elements(a * b), ElementsAre(5, 8, 9, 8, 5));
    EXPECT_THAT(elements(a + b), ElementsAre(6, 6, 6, 6, 6));
    EXPECT_THAT(elements(a - b), ElementsAre(-4, -2, 0, 2, 4));
    EXPECT_THAT(elements(a * 2.0), ElementsAre(2, 4, 6, 8, 10));
    EXPECT_THAT(elements(a * a), ElementsAre(1, 4, 9, 16, 25));
    EXPECT_THAT(elements(a), ElementsAre(1, 2, 3, 4, 5));
}

TEST(VectorTest, SubtractionInPlaceIsSeenByEveryShare)
{
    Vector<double> a = vectorOf({5, 6});
    const Vector<double> share = a;
    a -= vectorOf({1, 2});
    EXPECT_THAT(elements(share), ElementsAre(4, 4));
    const Vector<double>& itself = a;
    a -= itself;
    EXPECT_THAT(elements(share), ElementsAre(0, 0));
}

TEST(VectorTest, SubtractionInPlaceTakesWhatBothHave)
{
    Vector<double> a = vectorOf({5, 6, 7});
    a -= vectorOf({1});
    EXPECT_THAT(elements(a), ElementsAre(4, 6, 7));
    a -= vectorOf({1, 1, 1, 1});
    EXPECT_THAT(elements(a), ElementsAre(3, 5, 6));
}

TEST(VectorTest, LessMaskMarksWhatIsStrictlyBelow)
{
    EXPECT_THAT(elements(vectorOf({1, 2, 3, notANumber}).lessMask(2)), ElementsAre(1, 0, 0, 0));
}

TEST(VectorTest, CumulativeSumRunsUp)
{
    EXPECT_THAT(elements(vectorOf({1, 2, -4}).cumulativeSum()), ElementsAre(1, 3, -1));
    EXPECT_THAT(elements(Vector<double>().cumulativeSum()), IsEmpty());
}

TEST(VectorTest, ClampedSqrtOfNegativeAndNanIsZero)
{
    EXPECT_THAT(elements(vectorOf({-4, 0, 4}).clampedSqrt()), ElementsAre(0, 0, 2));
    EXPECT_THAT(elements(vectorOf({notANumber}).clampedSqrt()), ElementsAre(0));
}

TEST(VectorTest, FillSetsEveryElementForEveryShare)
{
    Vector<double> a(2);
    const Vector<double> share = a;
    a.fill(3);
    EXPECT_THAT(elements(share), ElementsAre(3, 3));
}

TEST(VectorTest, EqualityOfIntegerVectorsComparesLengthThenElements)
{
    EXPECT_TRUE(vectorOf<int>({1, 2}) == vectorOf<int>({1, 2}));
    EXPECT_FALSE(vectorOf<int>({1, 2}) == vectorOf<int>({1, 3}));
    EXPECT_FALSE(vectorOf<int>({1, 2}) == vectorOf<int>({1, 2, 3}));
    EXPECT_TRUE(Vector<int>() == Vector<int>());
    EXPECT_TRUE(vectorOf<int>({1}) != vectorOf<int>({2}));
}

TEST(VectorTest, FindGivesAscendingIndicesForEveryOperator)
{
    const Vector<int> v = vectorOf<int>({1, 0, 1, 2});
    EXPECT_THAT(elements(find(v, "!=", 0)), ElementsAre(0, 2, 3));
    EXPECT_THAT(elements(find(v, "==", 1)), ElementsAre(0, 2));
    EXPECT_THAT(elements(find(v, ">", 1)), ElementsAre(3));
    EXPECT_THAT(elements(find(v, "<", 1)), ElementsAre(1));
    EXPECT_THAT(elements(find(v, ">=", 1)), ElementsAre(0, 2, 3));
    EXPECT_THAT(elements(find(v, "<=", 0)), ElementsAre(1));
    EXPECT_THAT(elements(find(vectorOf<long long>({1, 0, 1}), "!=", 0)), ElementsAre(0, 2));
}

TEST(VectorTest, FindKnowsNoOtherOperator)
{
    EXPECT_TRUE(find(vectorOf<int>({1}), "=", 1).empty());
    EXPECT_TRUE(find(vectorOf<int>({1}), "", 1).empty());
    EXPECT_TRUE(find(Vector<int>(), "==", 0).empty());
}

TEST(VectorTest, StreamsLengthThenAnElementALine)
{
    std::ostringstream out;
    out << vectorOf({1.5, -2});
    EXPECT_EQ(out.str(), "2\n1.5\n-2\n");
}

TEST_F(VectorDeathTest, BinaryOperationsAssertOneLength)
{
    const Vector<double> a(2);
    const Vector<double> b(3);
    const std::string report = testsupport::assertionReport("XTNT/xtnt_vector.h", "this->n_ == N");
    EXPECT_DEATH(a * b, report);
    EXPECT_DEATH(a + b, report);
    EXPECT_DEATH(a - b, report);
}
