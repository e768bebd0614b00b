// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures and blends to the byte: each is what the plain formulas give, whatever path makes it.
#include "host/CORVOverlayImage.h"
#include "platform/orvimage/ImageSupport.h"
#include "platform/orvimage/PlainPictures.h"
#include "support/PictureBytes.h"

#include <iomanip>
#include <string>
#include <vector>

using testsupport::fingerprint;
using testsupport::firstDifference;
using testsupport::FixedNumbers;

namespace {

constexpr unsigned kRgb = 0x1907;
constexpr unsigned kRgba = 0x1908;
constexpr unsigned kGrey = 0x1909;

struct Sides
{
    int width;
    int height;
};

// One pixel, a row, a column, no multiple of anything, and more than one piece of work for a thread.
const Sides kSides[] = {{1, 1}, {7, 1}, {1, 5}, {33, 19}, {201, 97}};

// Values over a range, some of them exactly at places where colours change, some far outside, some no numbers.
std::vector<double> awkwardValues(const Sides& sides, double minimum, double maximum, FixedNumbers& numbers)
{
    std::vector<double> values;
    for (int i = 0; i < sides.width * sides.height; ++i) {
        const double span = std::isfinite(maximum - minimum) ? maximum - minimum : 1.0;
        const double start = std::isfinite(minimum) ? minimum : 0.0;
        switch (numbers.below(12)) {
        case 0:
            values.push_back(kNaN);
            break;
        case 1:
            values.push_back(numbers.below(2) == 0 ? kInfinity : -kInfinity);
            break;
        case 2:
            values.push_back(numbers.below(2) == 0 ? minimum : maximum);
            break;
        case 3:
            values.push_back(start + span * ((numbers.below(255) + 0.5) / 255.0));
            break;
        case 4:
            values.push_back(start + span * (3.0 * numbers.fraction() - 1.0));
            break;
        case 5: // where the logarithm's colours change, from either side
            values.push_back(start + span * ((std::pow(10.0, (numbers.below(255) + 0.5) / 255.0) - 1.0) / 9.0) *
                                         (1.0 + (numbers.below(5) - 2) * 0x1p-52));
            break;
        default:
            values.push_back(start + span * numbers.fraction());
        }
    }
    return values;
}

struct Range
{
    bool set;
    double minimum;
    double maximum;
};

const Range kRanges[] = {{false, 0, 1},           {true, 0.0, 1.0},    {true, 10.0, 250.0},    {true, -3.0, 1e-3},
                         {true, 5.0, 5.0},        {true, 9.0, 2.0},    {true, 0.001, 1.0},     {true, kNaN, 1.0},
                         {true, -kInfinity, 1.0}, {true, 0.0, 1e-320}, {true, 0.0, kInfinity}, {true, -1e308, 1e308}};

// Shows an image in each way, compared with the plain formulas.
void expectPlain(CILImage& image, const std::string& what)
{
    for (const bool log : {false, true}) {
        for (const bool reversed : {false, true}) {
            for (const unsigned format : {kRgb, kRgba, kGrey}) {
                CILPalette& palette = *image.getPalette();
                palette.setLogScale(log ? 1 : 0);
                palette.setReversed(reversed ? 1 : 0);
                image.setGLFormat(format);
                EXPECT_EQ("", firstDifference(plain::pictureOf(image), image.toQImage()))
                    << what << " log " << log << " reversed " << reversed << " format " << std::hex << format;
            }
        }
    }
}

QImage randomPicture(const Sides& sides, FixedNumbers& numbers)
{
    QImage picture(sides.width, sides.height, QImage::Format_ARGB32);
    for (int y = 0; y < sides.height; ++y) {
        for (int x = 0; x < sides.width; ++x) {
            const auto colour = static_cast<QRgb>(numbers.next());
            const int kind = numbers.below(4);
            picture.setPixel(x, y, kind == 0 ? colour & 0xffffffU : kind == 1 ? colour : colour | 0xff000000U);
        }
    }
    return picture;
}

CILImage coloured(const QImage& picture)
{
    CILImage image;
    image.setRGBImage(picture);
    return image;
}

const float kOpacities[] = {0.0F,    1.0F,   0.5F,      1.0F / 3, 0.25F,     0.2F,        0.7F,
                            0.1515F, 0.003F, 0.999999F, 1e-30F,   0.501961F, 127.5F / 255};

} // namespace

TEST(PictureBytesTest, EveryTypeSizeRangeAndScaleIsThePlainPicture)
{
    FixedNumbers numbers(1);
    for (const ORVDataTypes type : kAllPixelTypes) {
        for (const Sides& sides : kSides) {
            for (const Range& range : kRanges) {
                CILImage image = makeImage(type, sides.width, sides.height,
                                           awkwardValues(sides, range.minimum, range.maximum, numbers));
                image.setColorTable(numbers.below(13));
                if (range.set) {
                    image.getPalette()->SetImageMinMax(range.minimum, range.maximum);
                }
                expectPlain(image, "type " + std::to_string(type) + " width " + std::to_string(sides.width) + " from " +
                                       std::to_string(range.minimum) + " to " + std::to_string(range.maximum));
            }
        }
    }
}

TEST(PictureBytesTest, EveryAlphaModeIsThePlainPicture)
{
    FixedNumbers numbers(2);
    for (const int mode : {0, 1, 2}) {
        for (const double factor : {0.0, 1.0, 0.3, 7.0, -1.0, kNaN, kInfinity}) {
            CILImage image = makeImage(ORVTYPE_DOUBLE, 61, 43, awkwardValues({61, 43}, 2.0, 3.0, numbers));
            image.getPalette()->SetImageMinMax(2.0, 3.0);
            image.getPalette()->setAlphaMode(mode, factor);
            expectPlain(image, "mode " + std::to_string(mode) + " factor " + std::to_string(factor));
        }
    }
}

TEST(PictureBytesTest, TablesOfAnyLengthAreThePlainPicture)
{
    FixedNumbers numbers(3);
    for (const int steps : {2, 3, 17, 256, 1000, 70000}) {
        CILImage image = makeImage(ORVTYPE_FLOAT, 83, 59, awkwardValues({83, 59}, 0.0, 4.0, numbers));
        image.setCustomColorTable(steps, 1.0, 0.3, 0.7);
        image.getPalette()->SetImageMinMax(0.0, 4.0);
        expectPlain(image, "steps " + std::to_string(steps));
    }
}

TEST(PictureBytesTest, SixteenBitImagesLargerThanTheirRangeAreThePlainPicture)
{
    FixedNumbers numbers(4);
    CILImage image;
    ASSERT_EQ(EIL_SUCCESS, image.InitWithType(ORVTYPE_USHORT, 400, 300));
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, numbers.below(65536));
    }
    image.setColorTable(1);
    expectPlain(image, "all levels");
    image.getPalette()->setAlphaMode(1, 0.8);
    expectPlain(image, "all levels, alpha");
}

TEST(PictureBytesTest, ABrightenedPictureIsThePlainOne)
{
    FixedNumbers numbers(5);
    for (const Sides& sides : kSides) {
        const QImage picture = randomPicture(sides, numbers);
        CILImage image = coloured(picture);
        for (const int level : {0, 1, 100, 255}) {
            image.AdjustRGBBrightness(static_cast<unsigned char>(level));
            EXPECT_EQ("", firstDifference(plain::brightened(picture, level), image.toQImage())) << level;
        }
        QImage dark(sides.width, sides.height, QImage::Format_ARGB32);
        dark.fill(qRgba(0, 3, 1, 255));
        image = coloured(dark);
        image.AdjustRGBBrightness(255);
        EXPECT_EQ("", firstDifference(plain::brightened(dark, 255), image.toQImage()));
    }
}

TEST(PictureBytesTest, GreyValuesOfAColourPictureAreItsLuma)
{
    FixedNumbers numbers(6);
    const QImage picture = randomPicture({301, 257}, numbers);
    const CILImage image = coloured(picture);
    double lowest = 255.0;
    double highest = 0.0;
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        const auto grey =
            static_cast<double>(plain::luma(picture.pixel(static_cast<int>(i % 301), static_cast<int>(i / 301))));
        ASSERT_EQ(grey, image.value(i)) << i;
        lowest = std::min(lowest, grey);
        highest = std::max(highest, grey);
    }
    EXPECT_EQ(lowest, image.Min());
    EXPECT_EQ(highest, image.Max());
}

TEST(OverlayBytesTest, EveryPairOfLayersIsThePlainBlend)
{
    FixedNumbers numbers(7);
    for (const Sides& back : kSides) {
        for (const Sides& front : kSides) {
            const QImage below = randomPicture(back, numbers);
            const QImage above = randomPicture(front, numbers);
            const CILImage background = coloured(below);
            const CILImage foreground = coloured(above);
            CORVOverlayImage overlay;
            overlay.setBackground(&background, IMAGETYPE_PHOTOGRAPH);
            overlay.setForeground(&foreground, IMAGETYPE_LUMINESCENT);
            for (const float opacity : kOpacities) {
                for (const bool smooth : {false, true}) {
                    ASSERT_EQ(EIL_SUCCESS, overlay.blend(opacity, smooth ? 1 : 0));
                    EXPECT_EQ("", firstDifference(plain::blendOf(below, above, opacity, smooth), overlay.toQImage()))
                        << back.width << " " << front.width << " opacity " << opacity << " smooth " << smooth;
                }
            }
        }
    }
}

TEST(OverlayBytesTest, OpaqueLayersOfEveryPairOfLevelsAtManyOpacities)
{
    QImage below(256, 256, QImage::Format_ARGB32);
    QImage above(256, 256, QImage::Format_ARGB32);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            below.setPixel(x, y, qRgb(x, 255 - x, x / 2));
            above.setPixel(x, y, qRgb(y, y, 255 - y));
        }
    }
    const CILImage background = coloured(below);
    const CILImage foreground = coloured(above);
    CORVOverlayImage overlay;
    overlay.setBackground(&background, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&foreground, IMAGETYPE_LUMINESCENT);
    FixedNumbers numbers(8);
    for (int i = 0; i < 60; ++i) {
        // Also quotients, which put pairs of levels right between two others.
        const float opacity = i % 2 == 0 ? static_cast<float>(numbers.fraction())
                                         : static_cast<float>(1 + numbers.below(64)) / static_cast<float>(64 + i);
        ASSERT_EQ(EIL_SUCCESS, overlay.blend(opacity, 1));
        EXPECT_EQ("", firstDifference(plain::blendOf(below, above, opacity, true), overlay.toQImage())) << opacity;
    }
}

TEST(OverlayBytesTest, EveryAlphaOverAnOpaqueBackgroundIsThePlainBlend)
{
    QImage below(256, 256, QImage::Format_ARGB32);
    QImage above(256, 256, QImage::Format_ARGB32);
    FixedNumbers numbers(9);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            below.setPixel(x, y, static_cast<QRgb>(numbers.next()) | 0xff000000U);
            above.setPixel(x, y, (static_cast<QRgb>(numbers.next()) & 0xffffffU) | (static_cast<QRgb>(y) << 24U));
        }
    }
    const CILImage background = coloured(below);
    const CILImage foreground = coloured(above);
    CORVOverlayImage overlay;
    overlay.setBackground(&background, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&foreground, IMAGETYPE_LUMINESCENT);
    for (const float opacity : kOpacities) {
        ASSERT_EQ(EIL_SUCCESS, overlay.blend(opacity, 1));
        EXPECT_EQ("", firstDifference(plain::blendOf(below, above, opacity, true), overlay.toQImage())) << opacity;
    }
}

TEST(OverlayBytesTest, MapsOverAPhotographAreThePlainBlend)
{
    FixedNumbers numbers(10);
    const QImage photo = randomPicture({120, 90}, numbers);
    const CILImage background = coloured(photo);
    for (const Sides& sides : {Sides{120, 90}, Sides{30, 23}, Sides{1, 1}, Sides{200, 150}}) {
        for (const Range& range : {Range{true, 0.2, 0.8}, Range{true, 0.8, 0.2}, Range{false, 0, 0}}) {
            CILImage map =
                makeImage(ORVTYPE_DOUBLE, sides.width, sides.height, awkwardValues(sides, 0.0, 1.0, numbers));
            map.setColorTable(1);
            map.setGLFormat(kRgba);
            if (range.set) {
                map.getPalette()->SetImageMinMax(range.minimum, range.maximum);
            }
            CORVOverlayImage overlay;
            overlay.setBackground(&background, IMAGETYPE_PHOTOGRAPH);
            overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
            const QImage over = plain::pictureOverBackground(map);
            const QImage alone = plain::pictureOf(map);
            for (const float opacity : kOpacities) {
                ASSERT_EQ(EIL_SUCCESS, overlay.blend(opacity, 1));
                EXPECT_EQ("", firstDifference(plain::blendOf(photo, over, opacity, true), overlay.toQImage()));
            }
            overlay.setBackground(nullptr, IMAGETYPE_PHOTOGRAPH);
            for (const float opacity : kOpacities) {
                ASSERT_EQ(EIL_SUCCESS, overlay.blend(opacity, 1));
                EXPECT_EQ("", firstDifference(plain::blendOf(QImage(), alone, opacity, true), overlay.toQImage()));
            }
        }
    }
}

TEST(OverlayBytesTest, ABlendOfBlendsIsThePlainOne)
{
    FixedNumbers numbers(11);
    const QImage photo = randomPicture({64, 48}, numbers);
    const CILImage photograph = coloured(photo);
    CORVOverlayImage composite;
    composite.setPhotograph(&photograph, IMAGETYPE_PHOTOGRAPH);
    QImage expected = photo;
    for (int n = 1; n <= 40; ++n) { // more than one picture is built upon another anywhere
        const QImage picture = randomPicture({n % 2 == 0 ? 64 : 16, n % 2 == 0 ? 48 : 12}, numbers);
        const CILImage layer = coloured(picture);
        composite.setLuminescent(&layer, IMAGETYPE_LUMINESCENT);
        ASSERT_EQ(EIL_SUCCESS, composite.blend(1.0F / static_cast<float>(n), 1));
        composite.setPhotograph(&composite, IMAGETYPE_PHOTOGRAPH);
        expected = plain::blendOf(expected, picture, 1.0F / static_cast<float>(n), true);
        EXPECT_EQ("", firstDifference(expected, composite.toQImage())) << n;
        if (n == 7) {
            composite.AdjustRGBBrightness(200);
            composite.setPhotograph(&composite, IMAGETYPE_PHOTOGRAPH);
            composite.AdjustRGBBrightness(0);
            expected = plain::brightened(expected, 200);
        }
    }
}

// Recorded from the plain loops that were here first.
TEST(OverlayBytesTest, FingerprintsStay)
{
    FixedNumbers numbers(12);
    const QImage photo = randomPicture({301, 257}, numbers);
    const CILImage background = coloured(photo);
    CILImage map = makeImage(ORVTYPE_DOUBLE, 301, 257, awkwardValues({301, 257}, 0.0, 1.0, numbers));
    map.setColorTable(1);
    map.getPalette()->setReversed(1);
    map.setGLFormat(kRgba);
    map.getPalette()->SetImageMinMax(0.1, 0.9);
    EXPECT_EQ(fingerprint(map.toQImage()), 4753816424559463949U);
    CORVOverlayImage overlay;
    overlay.setBackground(&background, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(0.7F, 1));
    EXPECT_EQ(fingerprint(overlay.toQImage()), 7380570029634195505U);
    overlay.AdjustRGBBrightness(240);
    EXPECT_EQ(fingerprint(overlay.toQImage()), 1490967998739638371U);
}
