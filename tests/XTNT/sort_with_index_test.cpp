// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/sort_with_index.h"

#include "support/CapturedOutput.h"
#include "support/Numbers.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testing::ElementsAre;
using testsupport::elements;
using testsupport::vectorOf;
using XTNT::Vector;

namespace {

Vector<double> vectorFrom(const std::vector<double>& values)
{
    Vector<double> v(static_cast<long long>(values.size()));
    std::copy(values.begin(), values.end(), v.data);
    return v;
}

// Sorted, and every element stands where `index` says that it came from.
void expectSorted(const std::vector<double>& before, const Vector<double>& v, const Vector<long long>& index)
{
    ASSERT_EQ(v.n_, static_cast<long long>(before.size()));
    ASSERT_EQ(index.n_, v.n_);
    EXPECT_TRUE(std::is_sorted(v.data, v.data + v.n_));
    std::vector<bool> seen(before.size(), false);
    for (long long i = 0; i < v.n_; ++i) {
        const auto from = static_cast<std::size_t>(index[i]);
        ASSERT_LT(from, before.size());
        EXPECT_FALSE(seen[from]);
        seen[from] = true;
        EXPECT_EQ(v[i], before[from]);
    }
}

} // namespace

TEST(SortWithIndexTest, ThreeElementsWithTheirOrigins)
{
    Vector<double> v = vectorOf({3, 1, 2});
    Vector<long long> index;
    XTNT::sortWithIndex(v, index);
    EXPECT_THAT(elements(v), ElementsAre(1, 2, 3));
    EXPECT_THAT(elements(index), ElementsAre(1, 2, 0));
}

TEST(SortWithIndexTest, EmptyAndSingle)
{
    Vector<double> nothing;
    Vector<long long> index = vectorOf<long long>({5});
    XTNT::sortWithIndex(nothing, index);
    EXPECT_TRUE(index.empty());
    Vector<double> one = vectorOf({4});
    XTNT::sortWithIndex(one, index);
    EXPECT_THAT(elements(index), ElementsAre(0));
}

TEST(SortWithIndexTest, SortsInPlaceForEveryShare)
{
    Vector<double> v = vectorOf({2, 1});
    const Vector<double> share = v;
    Vector<long long> index;
    XTNT::sortWithIndex(v, index);
    EXPECT_THAT(elements(share), ElementsAre(1, 2));
}

TEST(SortWithIndexTest, AscendingDescendingConstantAndOrganPipe)
{
    for (const int n : {7, 8, 9, 100, 5000}) {
        for (int shape = 0; shape < 4; ++shape) {
            std::vector<double> values;
            for (int i = 0; i < n; ++i) {
                const int shapes[] = {i, -i, 1, std::min(i, n - i)};
                values.push_back(shapes[shape]);
            }
            Vector<double> v = vectorFrom(values);
            Vector<long long> index;
            XTNT::sortWithIndex(v, index);
            expectSorted(values, v, index);
        }
    }
}

TEST(SortWithIndexTest, NanNeitherCrashesNorLosesElements)
{
    std::vector<double> values(50, std::nan(""));
    for (std::size_t i = 0; i < values.size(); i += 3) {
        values[i] = static_cast<double>(50 - i);
    }
    Vector<double> v = vectorFrom(values);
    Vector<long long> index;
    XTNT::sortWithIndex(v, index);
    std::vector<long long> origins = elements(index);
    std::sort(origins.begin(), origins.end());
    for (std::size_t i = 0; i < origins.size(); ++i) {
        EXPECT_EQ(origins[i], static_cast<long long>(i));
    }
}

TEST(SortWithIndexTest, FullStackIsToldAndTheResultSortedAllTheSame)
{
    const std::vector<double> values = elements(testsupport::randomMatrix(1, 500, 6));
    Vector<double> v = vectorFrom(values);
    Vector<long long> index;
    const testsupport::CapturedOutput output;
    XTNT::detail::sortWithIndex(v, index, 2);
    expectSorted(values, v, index);
    EXPECT_EQ(output.text().substr(0, 27), "NSTACK too small in sort.\nN");
}

TEST(SortWithIndexTest, ItsStackIsNeverFullOnOrdinaryInput)
{
    const std::vector<double> values = elements(testsupport::randomMatrix(1, 100000, 7));
    Vector<double> v = vectorFrom(values);
    Vector<long long> index;
    const testsupport::CapturedOutput output;
    XTNT::sortWithIndex(v, index);
    expectSorted(values, v, index);
    EXPECT_EQ(output.text(), "");
}

RC_GTEST_PROP(SortWithIndexLaw, ResultIsASortedPermutation, (std::vector<int> drawn))
{
    const std::vector<double> values(drawn.begin(), drawn.end());
    Vector<double> v = vectorFrom(values);
    Vector<long long> index;
    XTNT::sortWithIndex(v, index);
    expectSorted(values, v, index);
    RC_ASSERT(!testing::Test::HasFailure());
}
