// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/Quantiles.h"

#include "ImageSupport.h"

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using orvimage::quantiles;
using Pair = std::array<double, 2>;

CILImage rowOf(ORVDataTypes type, const std::vector<double>& values)
{
    return makeImage(type, static_cast<long>(values.size()), 1, values);
}

// What sorting gives.
Pair plain(const CILImage& image, double low, double high)
{
    std::vector<double> values = valuesOf(image);
    values.erase(std::remove_if(values.begin(), values.end(), [](double v) { return !std::isfinite(v); }),
                 values.end());
    if (values.empty()) {
        return {0.0, 0.0};
    }
    std::sort(values.begin(), values.end());
    const auto at = [&](double share) {
        return values[static_cast<std::size_t>(std::llround(share * static_cast<double>(values.size() - 1)))];
    };
    return {at(low), at(high)};
}

TEST(QuantilesTest, OfNoFiniteValueAreZero)
{
    EXPECT_EQ(quantiles(CILImage(), 0.1, 0.9), (Pair{0.0, 0.0}));
    EXPECT_EQ(quantiles(rowOf(ORVTYPE_FLOAT, {kNaN, kInfinity, -kInfinity}), 0.1, 0.9), (Pair{0.0, 0.0}));
}

TEST(QuantilesTest, EndsAreTheLeastAndTheGreatest)
{
    const CILImage image = rowOf(ORVTYPE_DOUBLE, {3, -7, kNaN, 12, kInfinity, 5});
    EXPECT_EQ(quantiles(image, 0.0, 1.0), (Pair{-7.0, 12.0}));
}

TEST(QuantilesTest, OneValueAndManyEqualOnes)
{
    EXPECT_EQ(quantiles(rowOf(ORVTYPE_DOUBLE, {4.5}), 0.0, 1.0), (Pair{4.5, 4.5}));
    EXPECT_EQ(quantiles(rowOf(ORVTYPE_USHORT, {9, 9, 9, 9}), 0.25, 0.75), (Pair{9.0, 9.0}));
}

TEST(QuantilesTest, TheWholeSpanOfADoubleAndTheSmallestOne)
{
    const double most = std::numeric_limits<double>::max();
    EXPECT_EQ(quantiles(rowOf(ORVTYPE_DOUBLE, {-most, 0, most}), 0.0, 1.0), (Pair{-most, most}));
    const double least = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(quantiles(rowOf(ORVTYPE_DOUBLE, {0, least, 3 * least}), 0.5, 1.0), (Pair{least, 3 * least}));
    EXPECT_EQ(quantiles(rowOf(ORVTYPE_DOUBLE, {1, std::nextafter(1.0, 2.0)}), 0.0, 1.0),
              (Pair{1.0, std::nextafter(1.0, 2.0)}));
}

TEST(QuantilesTest, AHotPixelDoesNotBlurTheOthers)
{
    std::vector<double> values(1000);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<double>(i);
    }
    values.push_back(1e30);
    EXPECT_EQ(quantiles(rowOf(ORVTYPE_DOUBLE, values), 0.1, 0.5), (Pair{100.0, 500.0}));
}

// The places are those of the values in their order, to the bit, for every type of pixel.
RC_GTEST_PROP(QuantilesLaw, AreThoseOfSorting, ())
{
    const auto type =
        *rc::gen::elementOf(std::vector<ORVDataTypes>(std::begin(kAllPixelTypes), std::end(kAllPixelTypes)));
    const auto count = *rc::gen::inRange<std::size_t>(1, 3000);
    std::mt19937_64 random(*rc::gen::arbitrary<std::uint64_t>());
    std::lognormal_distribution<double> bright(3.0, 2.0);
    std::vector<double> values(count);
    for (double& value : values) {
        value = bright(random) - 10.0;
        if (random() % 50 == 0) {
            value = random() % 2 == 0 ? kNaN : kInfinity;
        }
    }
    const CILImage image = rowOf(type, values);
    const double low = *rc::gen::inRange(0, 1001) / 1000.0;
    const double high = *rc::gen::inRange(0, 1001) / 1000.0;
    RC_ASSERT(quantiles(image, low, high) == plain(image, low, high));
}

} // namespace
