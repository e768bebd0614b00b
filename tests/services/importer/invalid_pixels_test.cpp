// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/InvalidPixels.h"

#include "services/importer/ImporterFixture.h"

#include <cmath>
#include <limits>

namespace {

using InvalidPixelsTest = ImporterFixture;
const double notANumber = std::numeric_limits<double>::quiet_NaN();

// As an import takes one image after the other.
void take(InvalidPixels& invalid, CILImage& image, std::optional<double> ignore, bool bNotFinite)
{
    invalid.add(InvalidPixels::of(image, ignore, bNotFinite), image.m_lWidth, image.m_lHeight);
    invalid.clear(image);
}

} // namespace

TEST_F(InvalidPixelsTest, APixelWithoutAValueInOneImageIsLeftOutOfAll)
{
    InvalidPixels invalid;
    CILImage first = makeImage(ORVTYPE_INT, 3, 2, [](long x, long y) { return x == 1 && y == 0 ? -9999.0 : 5.0; });
    CILImage second = makeImage(ORVTYPE_INT, 3, 2, [](long x, long y) { return x == 2 && y == 1 ? -9999.0 : 7.0; });
    take(invalid, first, -9999.0, false);
    take(invalid, second, -9999.0, false);
    EXPECT_EQ(invalid.count(), 2);
    EXPECT_EQ(first.value(1), 0.0);
    EXPECT_EQ(second.value(1), 0.0) << "of another image";
    EXPECT_EQ(second.value(5), 0.0);
    EXPECT_EQ(second.value(0), 7.0);
    CILImage valid;
    ASSERT_TRUE(invalid.validSquare(valid));
    EXPECT_EQ(valid.m_lWidth, 3);
    EXPECT_EQ(valid.m_lHeight, 3);
    EXPECT_EQ(valid.value(0), 1.0);
    EXPECT_EQ(valid.value(1), 0.0);
    EXPECT_EQ(valid.value(6), 0.0) << "behind the images";
}

TEST_F(InvalidPixelsTest, ValuesOfSinglePrecisionAndNaNAreFound)
{
    InvalidPixels invalid;
    CILImage image = makeImage(ORVTYPE_FLOAT, 2, 1, [](long x, long) { return x == 0 ? -1.1 : 1.0; });
    take(invalid, image, -1.1, false);
    EXPECT_EQ(invalid.count(), 1);
    InvalidPixels marked;
    CILImage holes = makeImage(ORVTYPE_DOUBLE, 3, 1, [](long x, long) {
        return x == 0 ? notANumber : x == 1 ? HUGE_VAL : 1.0;
    });
    take(marked, holes, notANumber, false);
    EXPECT_EQ(marked.count(), 1);
    take(marked, holes, std::nullopt, true);
    EXPECT_EQ(marked.count(), 2);
    InvalidPixels none;
    take(none, holes, std::nullopt, false);
    EXPECT_EQ(none.count(), 0);
}
