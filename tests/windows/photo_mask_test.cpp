// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/photoMask.h"

#include "windows/MaskPicture.h"

#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ---- The range ----

TEST(PhotoRangeTest, LevelWhereExactlyTheShareIsCounted)
{
    // 999 of 1000 pixels are up to 128, which falls into bin 128 of 256 between 0 and 255.
    CILImage photo = plainImage(ORVTYPE_BYTE, 100, 10, 0.0);
    setPixel(photo, 7, 128.0);
    setPixel(photo, 8, 255.0);
    EXPECT_EQ(photoRange(photo), 0.5F);
}

TEST(PhotoRangeTest, OnePixelShortOfTheShareGoesOnToTheNextLevel)
{
    CILImage photo = plainImage(ORVTYPE_BYTE, 100, 10, 0.0);
    setPixel(photo, 7, 128.0);
    setPixel(photo, 8, 255.0);
    setPixel(photo, 9, 255.0);
    EXPECT_EQ(photoRange(photo), 255.0F / 256.0F);
}

TEST(PhotoRangeTest, SaturatedSpecksDoNotCount)
{
    CILImage photo = plainImage(ORVTYPE_USHORT, 64, 64, 10.0);
    paint(photo, 20, 20, 20, 20, 100.0);
    setPixel(photo, 5, 1000.0);
    setPixel(photo, 900, 1000.0);
    // (100 - 10) / (1000 - 10) * 256 = 23.3
    EXPECT_EQ(photoRange(photo), 23.0F / 256.0F);
}

TEST(PhotoRangeTest, AllInTheLowestBinIsZero)
{
    EXPECT_EQ(photoRange(plainImage(ORVTYPE_BYTE, 12, 12, 37.0)), 0.0F);
    EXPECT_EQ(photoRange(plainImage(ORVTYPE_FLOAT, 1, 1, -4.0)), 0.0F);
    CILImage dark = plainImage(ORVTYPE_USHORT, 64, 64, 3.0);
    setPixel(dark, 17, 60000.0);
    EXPECT_EQ(photoRange(dark), 0.0F);
}

TEST(PhotoRangeTest, PixelsWithoutAValueKeepTheCountFromBeingReached)
{
    CILImage photo = plainImage(ORVTYPE_FLOAT, 10, 10, 1.0);
    setPixel(photo, 1, 2.0);
    setPixel(photo, 2, kNaN);
    EXPECT_EQ(photoRange(photo), 255.0F / 256.0F);
    EXPECT_EQ(photoRange(plainImage(ORVTYPE_DOUBLE, 4, 4, kNaN)), 255.0F / 256.0F);
}

RC_GTEST_PROP(PhotoRangeLaw, FirstBinUpToWhichTheShareLies, ())
{
    const auto width = *rc::gen::inRange(1, 60);
    const auto height = *rc::gen::inRange(1, 60);
    const auto bright = *rc::gen::inRange(0, 8);
    CILImage photo = plainImage(ORVTYPE_USHORT, width, height, 0.0);
    const std::size_t n = photo.pixelCount();
    for (std::size_t i = 0; i < n; ++i) {
        photo.setValue(i, *rc::gen::inRange(0, 300));
    }
    for (int i = 0; i < bright; ++i) {
        photo.setValue(*rc::gen::inRange<std::size_t>(0, n), *rc::gen::inRange(0, 65536));
    }
    photo.RefreshImageStats();

    const auto lowest = static_cast<long long>(photo.getMin());
    const auto span = static_cast<long long>(photo.getMax()) - lowest;
    int level = 0;
    const auto countedUpTo = [&](int last) {
        double count = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            const long long above = static_cast<long long>(photo.value(i)) - lowest;
            const long long bin = span == 0 ? 0 : std::min(255LL, above * 256 / span);
            count += bin <= last ? 1.0 : 0.0;
        }
        return count;
    };
    while (level < 255 && countedUpTo(level) < static_cast<double>(static_cast<float>(width * 0.999 * height))) {
        ++level;
    }
    RC_ASSERT(photoRange(photo) == static_cast<float>(level) / 256.0F);
}

// ---- The thresholds ----

TEST(AutomaticThresholdTest, PercentOfTheRange)
{
    // Any level between the two separates them equally well: half of the span, over 255/256.
    CILImage photo = plainImage(ORVTYPE_BYTE, 20, 20, 10.0);
    paint(photo, 0, 0, 10, 20, 110.0);
    EXPECT_EQ(automaticThreshold(photo, 255.0F / 256.0F), 50.0F / (255.0F / 256.0F));
    EXPECT_EQ(automaticThreshold(photo, 0.25F), 200.0F);
}

TEST(AutomaticThresholdTest, MayPassAHundredAndStillSeparates)
{
    // The specks stand out more than anything in the bed, which alone makes the range.
    CILImage photo = plainImage(ORVTYPE_USHORT, 64, 64, 0.0);
    for (std::size_t i = 0; i < photo.pixelCount(); ++i) {
        photo.setValue(i, static_cast<double>(i % 5));
    }
    setPixel(photo, 100, 255.0);
    setPixel(photo, 2000, 255.0);
    const float range = photoRange(photo);
    EXPECT_EQ(range, 4.0F / 256.0F);
    const float v = automaticThreshold(photo, range);
    EXPECT_GT(v, 100.0F);
    EXPECT_GT(photoThreshold(photo, v, range), 4.0F);
    EXPECT_LT(photoThreshold(photo, v, range), 255.0F);
}

TEST(AutomaticThresholdTest, WithoutARangeIsTheLowestOfTheSlider)
{
    CILImage dark = plainImage(ORVTYPE_USHORT, 64, 64, 3.0);
    setPixel(dark, 17, 60000.0);
    for (const float range : {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(automaticThreshold(dark, range), 0.0F) << range;
    }
    EXPECT_EQ(photoThreshold(dark, 0.0F, 0.0F), 3.0F);
}

TEST(PhotoThresholdTest, PercentageBetweenTheMinimumAndTheRangeOfTheMaximum)
{
    CILImage photo = plainImage(ORVTYPE_USHORT, 2, 1, 10.0);
    setPixel(photo, 1, 1000.0);
    // 0.25 * 1000 = 250; the range scales the maximum and not the span.
    EXPECT_FLOAT_EQ(photoThreshold(photo, 0.0F, 0.25F), 10.0F);
    EXPECT_FLOAT_EQ(photoThreshold(photo, 50.0F, 0.25F), 130.0F);
    EXPECT_FLOAT_EQ(photoThreshold(photo, 100.0F, 0.25F), 250.0F);
    EXPECT_FLOAT_EQ(photoThreshold(photo, 10.0F, 1.0F), 109.0F);
    // A range below the minimum turns the scale round.
    EXPECT_FLOAT_EQ(photoThreshold(photo, 40.0F, 0.0F), 6.0F);
}

TEST(PhotoThresholdTest, EveryStepIsRoundedToFloat)
{
    // In double precision 5130.47719, with a fused last step 5130.47705.
    CILImage photo = plainImage(ORVTYPE_USHORT, 2, 1, 1785.0);
    setPixel(photo, 1, 51537.0);
    EXPECT_EQ(photoThreshold(photo, 21.0F, 88.0F / 256.0F), 0x1.40a7a4p+12F);
    setPixel(photo, 0, 1302.0);
    setPixel(photo, 1, 13280.0);
    EXPECT_EQ(photoThreshold(photo, 56.0F, 56.0F / 256.0F), 0x1.12f5c4p+11F);
}

TEST(PhotoThresholdTest, NegativeMinimum)
{
    CILImage photo = plainImage(ORVTYPE_FLOAT, 2, 1, -100.0);
    setPixel(photo, 1, 100.0);
    EXPECT_FLOAT_EQ(photoThreshold(photo, 50.0F, 0.5F), -25.0F);
}

// ---- The mask ----

// A range of 1 and values up to 100 make the percentage the brightness itself.
constexpr float kWholeRange = 1.0F;

CILImage darkBed(ORVDataTypes eType, long lWidth, long lHeight)
{
    CILImage photo = plainImage(eType, lWidth, lHeight, 0.0);
    setPixel(photo, 0, 100.0); // a speck
    return photo;
}

MaskPicture maskPicture(const CILImage& photo, float v)
{
    CILImage mask;
    EXPECT_TRUE(makePhotoMask(photo, v, kWholeRange, mask));
    return pictureOf(mask);
}

TEST(PhotoMaskTest, BytesOfOneAndZeroWithThePhotographsSizeAndBinning)
{
    CILImage photo = darkBed(ORVTYPE_USHORT, 30, 20);
    photo.m_fBinning = 4.0F;
    paint(photo, 10, 5, 12, 9, 80.0);
    CILImage mask = plainImage(ORVTYPE_DOUBLE, 3, 3, 9.0); // what it held goes
    ASSERT_TRUE(makePhotoMask(photo, 50.0F, kWholeRange, mask));
    EXPECT_EQ(mask.dataType(), ORVTYPE_BYTE);
    EXPECT_EQ(mask.m_fBinning, 4.0F);
    EXPECT_EQ(mask.getMin(), 0.0);
    EXPECT_EQ(mask.getMax(), 1.0);
    MaskPicture expected = blankPicture(30, 20);
    draw(expected, 10, 5, 12, 9);
    EXPECT_EQ(pictureOf(mask), expected);
}

TEST(PhotoMaskTest, PixelsAtTheThresholdAreOutside)
{
    CILImage photo = plainImage(ORVTYPE_BYTE, 20, 20, 50.0);
    paint(photo, 10, 0, 10, 20, 51.0);
    setPixel(photo, 0, 0.0);
    setPixel(photo, 19, 100.0);
    MaskPicture right = blankPicture(20, 20);
    draw(right, 10, 0, 10, 20);
    EXPECT_EQ(maskPicture(photo, 50.0F), right);
    EXPECT_EQ(maskPicture(photo, 51.0F), blankPicture(20, 20));
}

TEST(PhotoMaskTest, OpeningKeepsSevenBySevenAndRemovesWhatIsSmaller)
{
    CILImage photo = darkBed(ORVTYPE_BYTE, 40, 20);
    paint(photo, 2, 3, 7, 7, 100.0);
    paint(photo, 12, 3, 6, 12, 100.0);
    paint(photo, 20, 3, 7, 12, 100.0);
    paint(photo, 27, 6, 9, 1, 100.0); // a whisker
    MaskPicture expected = blankPicture(40, 20);
    draw(expected, 2, 3, 7, 7);
    draw(expected, 20, 3, 7, 12);
    EXPECT_EQ(maskPicture(photo, 50.0F), expected);
}

TEST(PhotoMaskTest, BodyAtTheBorderIsNotEatenFromOutside)
{
    CILImage photo = darkBed(ORVTYPE_BYTE, 24, 12);
    paint(photo, 20, 8, 4, 4, 100.0); // the corner of something larger
    paint(photo, 0, 9, 3, 3, 100.0);
    MaskPicture expected = blankPicture(24, 12);
    draw(expected, 20, 8, 4, 4);
    EXPECT_EQ(maskPicture(photo, 50.0F), expected);
}

TEST(PhotoMaskTest, EnclosedHolesAreFilledAndOpenOnesStay)
{
    CILImage photo = darkBed(ORVTYPE_BYTE, 60, 24);
    paint(photo, 4, 4, 17, 17, 100.0);
    paint(photo, 12, 12, 1, 1, 0.0); // an eye
    paint(photo, 30, 4, 17, 17, 100.0);
    paint(photo, 38, 4, 1, 9, 0.0); // a slit
    MaskPicture expected = blankPicture(60, 24);
    draw(expected, 4, 4, 17, 17);
    draw(expected, 30, 4, 17, 17);
    draw(expected, 38, 4, 1, 9, '.');
    EXPECT_EQ(maskPicture(photo, 50.0F), expected);
}

TEST(PhotoMaskTest, ThinRingGoesBeforeItsHoleCouldBeFilled)
{
    CILImage photo = darkBed(ORVTYPE_BYTE, 40, 40);
    paint(photo, 5, 5, 30, 30, 100.0);
    paint(photo, 8, 8, 24, 24, 0.0);
    EXPECT_EQ(maskPicture(photo, 50.0F), blankPicture(40, 40));
}

class PhotoMaskTypeTest : public ::testing::TestWithParam<ORVDataTypes>
{
};

TEST_P(PhotoMaskTypeTest, SameMaskFromEveryTypeOfPixelsAndThePhotographStays)
{
    CILImage photo = darkBed(GetParam(), 33, 25);
    photo.m_fBinning = 2.0F;
    paint(photo, 6, 6, 17, 15, 60.0);
    paint(photo, 14, 13, 1, 1, 0.0);
    const CILImage before = photo;

    CILImage mask;
    const float range = photoRange(photo);
    EXPECT_GT(automaticThreshold(photo, range), 0.0F);
    ASSERT_TRUE(makePhotoMask(photo, automaticThreshold(photo, range), range, mask));
    MaskPicture expected = blankPicture(33, 25);
    draw(expected, 6, 6, 17, 15);
    EXPECT_EQ(pictureOf(mask), expected);

    EXPECT_EQ(photo.dataType(), GetParam());
    EXPECT_EQ(photo.m_fBinning, 2.0F);
    EXPECT_EQ(photo.getMin(), before.getMin());
    EXPECT_EQ(photo.getMax(), before.getMax());
    ASSERT_EQ(photo.pixelCount(), before.pixelCount());
    EXPECT_EQ(0, std::memcmp(photo.m_pData, before.m_pData,
                             photo.pixelCount() * CILImageBase::bytesPerPixel(photo.dataType())));
}

INSTANTIATE_TEST_SUITE_P(Types, PhotoMaskTypeTest,
                         ::testing::Values(ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE));

TEST(PhotoMaskTest, NaNsAreDarkAndFilledInsideTheBody)
{
    CILImage photo = darkBed(ORVTYPE_FLOAT, 40, 30);
    paint(photo, 5, 5, 19, 19, 80.0);
    paint(photo, 14, 14, 1, 1, kNaN);
    paint(photo, 30, 20, 8, 8, kNaN);
    MaskPicture expected = blankPicture(40, 30);
    draw(expected, 5, 5, 19, 19);
    EXPECT_EQ(maskPicture(photo, 50.0F), expected);
    EXPECT_EQ(maskPicture(plainImage(ORVTYPE_FLOAT, 9, 9, kNaN), 0.0F), blankPicture(9, 9));
}

TEST(PhotoMaskTest, SaturatedSpecksDoNotHideTheBody)
{
    CILImage photo = plainImage(ORVTYPE_USHORT, 64, 64, 10.0);
    paint(photo, 20, 20, 20, 20, 100.0);
    for (const double speck : {1000.0, 65535.0}) { // the second leaves all the rest in the lowest bin
        setPixel(photo, 5, speck);
        setPixel(photo, 900, speck);
        CILImage mask;
        const float range = photoRange(photo);
        ASSERT_TRUE(makePhotoMask(photo, range > 0.0F ? 50.0F : automaticThreshold(photo, range), range, mask));
        MaskPicture expected = blankPicture(64, 64);
        draw(expected, 20, 20, 20, 20);
        EXPECT_EQ(pictureOf(mask), expected) << speck;
    }
}

TEST(PhotoMaskTest, ConstantPhotographAndOnePixelShowNoBody)
{
    for (const double value : {0.0, 1.0, 200.0}) {
        for (const auto& [width, height] : {std::pair(1L, 1L), std::pair(1L, 30L), std::pair(16L, 12L)}) {
            const CILImage photo = plainImage(ORVTYPE_BYTE, width, height, value);
            const float range = photoRange(photo);
            const float v = automaticThreshold(photo, range);
            EXPECT_TRUE(std::isfinite(v));
            CILImage mask;
            ASSERT_TRUE(makePhotoMask(photo, v, range, mask));
            EXPECT_EQ(pictureOf(mask), blankPicture(width, height)) << value;
        }
    }
}

TEST(PhotoMaskTest, EmptyPhotographGivesNoMask)
{
    CILImage mask = plainImage(ORVTYPE_BYTE, 4, 4, 1.0);
    EXPECT_FALSE(makePhotoMask(CILImage(), 50.0F, kWholeRange, mask));
    EXPECT_TRUE(mask.isEmpty());
}

// ---- The whole, from its description ----

bool inside(const MaskPicture& picture, long x, long y)
{
    return picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#';
}

// Three passes of 3 by 3: over the 7 by 7 neighbours that exist, whether all (erosion) or any (dilation) are set.
MaskPicture spread(const MaskPicture& from, bool bErode)
{
    const auto height = static_cast<long>(from.size());
    const auto width = static_cast<long>(from.front().size());
    MaskPicture to = blankPicture(width, height);
    overRectangle(0, 0, width, height, [&](long x, long y) {
        bool result = bErode;
        overRectangle(x - 3, y - 3, 7, 7, [&](long nx, long ny) {
            if (nx >= 0 && ny >= 0 && nx < width && ny < height && inside(from, nx, ny) != bErode) {
                result = !bErode;
            }
        });
        if (result) {
            draw(to, x, y, 1, 1);
        }
    });
    return to;
}

// What no way over sides leads out of.
MaskPicture withoutHoles(const MaskPicture& from)
{
    const auto height = static_cast<long>(from.size());
    const auto width = static_cast<long>(from.front().size());
    MaskPicture outside = from;
    for (bool changed = true; changed;) {
        changed = false;
        overRectangle(0, 0, width, height, [&](long x, long y) {
            const auto at = [&](long ax, long ay) {
                return ax < 0 || ay < 0 || ax >= width || ay >= height
                           ? 'o'
                           : outside[static_cast<std::size_t>(ay)][static_cast<std::size_t>(ax)];
            };
            const bool reached =
                at(x - 1, y) == 'o' || at(x + 1, y) == 'o' || at(x, y - 1) == 'o' || at(x, y + 1) == 'o';
            if (at(x, y) == '.' && reached) {
                draw(outside, x, y, 1, 1, 'o');
                changed = true;
            }
        });
    }
    MaskPicture filled = blankPicture(width, height);
    overRectangle(0, 0, width, height, [&](long x, long y) {
        if (outside[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] != 'o') {
            draw(filled, x, y, 1, 1);
        }
    });
    return filled;
}

RC_GTEST_PROP(PhotoMaskLaw, ThresholdThenOpeningThenHoles, ())
{
    const long width = *rc::gen::inRange(1, 40);
    const long height = *rc::gen::inRange(1, 40);
    CILImage photo = plainImage(ORVTYPE_BYTE, width, height, 20.0);
    const auto count = *rc::gen::inRange(0, 12);
    for (int i = 0; i < count; ++i) {
        const long left = *rc::gen::inRange(0L, width);
        const long top = *rc::gen::inRange(0L, height);
        paint(photo, left, top, *rc::gen::inRange(1L, width - left + 1), *rc::gen::inRange(1L, height - top + 1),
              *rc::gen::element(0.0, 20.0, 90.0, 200.0));
    }
    const float v = static_cast<float>(*rc::gen::inRange(0, 100));
    const float range = photoRange(photo);

    MaskPicture expected = blankPicture(width, height);
    overRectangle(0, 0, width, height, [&](long x, long y) {
        if (photo.value(static_cast<std::size_t>(y * width + x)) >
            static_cast<double>(photoThreshold(photo, v, range))) {
            draw(expected, x, y, 1, 1);
        }
    });
    expected = withoutHoles(spread(spread(expected, true), false));
    CILImage mask;
    RC_ASSERT(makePhotoMask(photo, v, range, mask));
    RC_ASSERT(pictureOf(mask) == expected);
}

} // namespace
