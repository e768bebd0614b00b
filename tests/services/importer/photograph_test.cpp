// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/Photograph.h"

#include "services/importer/ImporterFixture.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

class PhotographTest : public ImporterFixture
{
protected:
    static void add(MeanImage& mean, const CILImage& image)
    {
        QString error;
        EXPECT_TRUE(mean.add(image, &error)) << qPrintable(error);
    }
};

} // namespace

TEST_F(PhotographTest, TheMeanIsStretchedBetweenItsHalfPercentEnds)
{
    // 0 to 999 once each in both images; the ends are pulled far out in single pixels.
    MeanImage mean;
    const auto ramp = [](long x, long y) {
        const double n = static_cast<double>(y * 40 + x);
        return n == 0 ? -1e6 : n == 999 ? 1e6 : n;
    };
    add(mean, makeImage(ORVTYPE_FLOAT, 40, 25, ramp));
    add(mean, makeImage(ORVTYPE_DOUBLE, 40, 25, ramp));
    CILImage out;
    ASSERT_TRUE(mean.stretched(out));
    ASSERT_EQ(out.dataType(), ORVTYPE_BYTE);
    ASSERT_EQ(out.m_lWidth, 40);
    ASSERT_EQ(out.m_lHeight, 25);
    EXPECT_EQ(out.bytes()[0], 0);
    EXPECT_EQ(out.bytes()[5], 0);
    EXPECT_EQ(out.bytes()[994], 255);
    EXPECT_EQ(out.bytes()[999], 255);
    // (500 - 5) / (994 - 5) of 255
    EXPECT_NEAR(out.bytes()[500], 127.6, 0.51);
}

TEST_F(PhotographTest, TheMeanTakesEveryType)
{
    for (const ORVDataTypes type : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
        MeanImage mean;
        add(mean, makeImage(type, 16, 16, [](long x, long y) { return static_cast<double>(y * 16 + x); }));
        CILImage out;
        ASSERT_TRUE(mean.stretched(out));
        EXPECT_EQ(out.bytes()[0], 0) << type;
        EXPECT_EQ(out.bytes()[255], 255) << type;
        EXPECT_NEAR(out.bytes()[128], 128, 2) << type;
    }
}

TEST_F(PhotographTest, TheMeanOfBandsHasTheBytesOfThatOfTheWhole)
{
    constexpr long w = 37;
    constexpr long h = 23;
    const CILImage a = makeImage(ORVTYPE_FLOAT, w, h,
                                 [](long x, long y) { return std::sin(static_cast<double>(7 * x * y + x)) * 1e3; });
    const CILImage b = makeImage(ORVTYPE_DOUBLE, w, h, [](long x, long y) {
        return x == y ? -1e9 : std::cos(static_cast<double>(3 * x + y * y));
    });
    std::vector<double> sums;
    for (std::size_t i = 0; i < a.pixelCount(); ++i) {
        sums.push_back(a.value(i) + b.value(i));
    }
    std::vector<double> sorted = sums;
    std::sort(sorted.begin(), sorted.end());
    const double low = sorted[4];    // round(0.005 * 850)
    const double high = sorted[846]; // round(0.995 * 850)
    for (const long band : {1L, w, 5 * w + 3, w * h - 1, w * h, 1L << 20}) {
        MeanImage mean(path(QString()), band);
        add(mean, a);
        add(mean, b);
        CILImage out;
        ASSERT_TRUE(mean.stretched(out)) << band;
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const double value = std::clamp((sums[i] - low) / (high - low) * 255.0, 0.0, 255.0);
            ASSERT_EQ(out.bytes()[i], static_cast<unsigned char>(std::lround(value))) << band << ", pixel " << i;
        }
    }
    EXPECT_TRUE(QDir(path(QString())).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

TEST_F(PhotographTest, AMeanOfBandsSaysWhereItsSumsCannotLie)
{
    MeanImage mean(path("absent"), 4);
    QString error;
    EXPECT_FALSE(mean.add(makeImage(ORVTYPE_BYTE, 4, 4, [](long, long) { return 1.0; }), &error));
    EXPECT_TRUE(error.startsWith(path("absent") + ": the mean image: ")) << qPrintable(error);
}

TEST_F(PhotographTest, TheMemoryOfAPhotographIsKnownByItsHeader)
{
    EXPECT_EQ(photographMemory(writeRamp("photo.tif", 1, 40, 30)), 40 * 30 * 4); // as it lies there, and as it is read
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(path("photo.png")));
    EXPECT_EQ(photographMemory(path("photo.png")), 40 * 30 * 6);
    EXPECT_EQ(photographMemory(path("absent.png")), 0);
    EXPECT_EQ(photographMemory(path("absent.tif")), 0);
}

TEST_F(PhotographTest, AConstantMeanIsGreyAndAlmostConstantOnesShowTheirDifference)
{
    MeanImage constant;
    add(constant, makeImage(ORVTYPE_USHORT, 3, 3, [](long, long) { return 7.0; }));
    CILImage out;
    ASSERT_TRUE(constant.stretched(out));
    EXPECT_EQ(out.bytes()[4], 128);

    MeanImage spot;
    add(spot, makeImage(ORVTYPE_USHORT, 30, 30, [](long x, long y) { return x == 4 && y == 4 ? 9.0 : 7.0; }));
    ASSERT_TRUE(spot.stretched(out));
    EXPECT_EQ(out.bytes()[0], 0);
    EXPECT_EQ(out.bytes()[4 * 30 + 4], 255);

    EXPECT_FALSE(MeanImage().stretched(out));
}

TEST_F(PhotographTest, APhotographOfTheSizeIsTakenAsItIs)
{
    const CILImage photo =
        makeImage(ORVTYPE_USHORT, 4, 3, [](long x, long y) { return static_cast<double>(1000 * y + x); });
    CILImage out;
    QStringList warnings;
    QString error;
    ASSERT_TRUE(loadPhotograph(writeTiffFile("photo.tif", photo), 4, 3, out, &warnings, &error)) << qPrintable(error);
    EXPECT_EQ(out.dataType(), ORVTYPE_USHORT);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(out.value(i), photo.value(i));
    }
    EXPECT_TRUE(warnings.isEmpty());
}

TEST_F(PhotographTest, APhotographOfAnotherSizeCoversTheSameExtent)
{
    const CILImage photo = makeImage(ORVTYPE_BYTE, 8, 6, [](long x, long) { return x < 4 ? 20.0 : 200.0; });
    CILImage out;
    QStringList warnings;
    QString error;
    const QString file = writeTiffFile("photo.tif", photo);
    ASSERT_TRUE(loadPhotograph(file, 4, 3, out, &warnings, &error)) << qPrintable(error);
    ASSERT_EQ(out.m_lWidth, 4);
    ASSERT_EQ(out.m_lHeight, 3);
    EXPECT_EQ(out.m_fBinning, 1.0F);
    EXPECT_EQ(out.value(0), 20);
    EXPECT_EQ(out.value(3), 200);
    EXPECT_TRUE(warnings.isEmpty());
    ASSERT_TRUE(loadPhotograph(file, 16, 12, out, &warnings, &error)) << qPrintable(error);
    ASSERT_EQ(out.m_lWidth, 16);
    EXPECT_EQ(out.value(0), 20);
    EXPECT_EQ(out.value(15), 200);
}

TEST_F(PhotographTest, AnotherShapeIsTold)
{
    const CILImage photo = makeImage(ORVTYPE_BYTE, 8, 8, [](long, long) { return 1.0; });
    CILImage out;
    QStringList warnings;
    QString error;
    const QString file = writeTiffFile("photo.tif", photo);
    ASSERT_TRUE(loadPhotograph(file, 8, 4, out, &warnings, &error));
    EXPECT_EQ(out.m_lHeight, 4);
    EXPECT_EQ(warnings, QStringList{file + " has 8 x 8 pixels and is squeezed into the shape of the images, 8 x 4"});
}

TEST_F(PhotographTest, PicturesOfOtherFormatsBecomeGrey)
{
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(QColor(0, 0, 0));
    picture.setPixelColor(2, 1, QColor(255, 255, 255));
    ASSERT_TRUE(picture.save(path("photo.png")));
    CILImage out;
    QStringList warnings;
    QString error;
    ASSERT_TRUE(loadPhotograph(path("photo.png"), 3, 2, out, &warnings, &error)) << qPrintable(error);
    EXPECT_EQ(out.dataType(), ORVTYPE_BYTE);
    EXPECT_EQ(out.value(0), 0);
    EXPECT_EQ(out.value(5), 255);
}

TEST_F(PhotographTest, RefusesWhatIsNoPicture)
{
    CILImage out;
    QStringList warnings;
    QString error;
    for (const char* name : {"photo.png", "photo.tif"}) {
        EXPECT_FALSE(loadPhotograph(write(name, "no picture"), 3, 2, out, &warnings, &error));
        EXPECT_TRUE(error.startsWith(path(name) + ": ")) << qPrintable(error);
        EXPECT_TRUE(out.isEmpty());
        EXPECT_FALSE(loadPhotograph(path(QString("none.") + name), 3, 2, out, &warnings, &error));
        EXPECT_TRUE(error.startsWith(path(QString("none.") + name) + ": ")) << qPrintable(error);
    }
    const CILImage holed = makeImage(ORVTYPE_FLOAT, 3, 2, [](long x, long) { return x == 1 ? std::nan("") : 1.0; });
    EXPECT_FALSE(loadPhotograph(writeTiffFile("holed.tif", holed), 3, 2, out, &warnings, &error));
    EXPECT_EQ(error, path("holed.tif") + ": the photograph has pixels that are not finite");
}

TEST_F(PhotographTest, PadsAtTheRightOrTheBottom)
{
    for (const ORVDataTypes type : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
        for (const auto& [w, h] : {std::pair<long, long>{4, 2}, {2, 4}, {3, 3}, {1, 1}}) {
            CILImage image = makeImage(type, w, h, [](long x, long y) { return static_cast<double>(10 * y + x + 1); });
            ASSERT_TRUE(padToSquare(image));
            const long side = std::max(w, h);
            ASSERT_EQ(image.m_lWidth, side);
            ASSERT_EQ(image.m_lHeight, side);
            EXPECT_EQ(image.dataType(), type);
            for (long y = 0; y < side; ++y) {
                for (long x = 0; x < side; ++x) {
                    const double expected = x < w && y < h ? static_cast<double>(10 * y + x + 1) : 0.0;
                    EXPECT_EQ(image.value(static_cast<std::size_t>(y * side + x)), expected);
                }
            }
        }
    }
}

TEST_F(PhotographTest, FindsPixelsThatNoAnalysisCanTake)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {std::nan(""), infinity, -infinity}) {
        for (const ORVDataTypes type : {ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
            const CILImage image =
                makeImage(type, 3, 2, [bad](long x, long y) { return x == 1 && y == 1 ? bad : 5.0; });
            EXPECT_EQ(firstUnusablePixel(image), 4) << bad;
        }
    }
    EXPECT_EQ(firstUnusablePixel(makeImage(ORVTYPE_DOUBLE, 2, 1, [](long, long) { return -1e39; })), 0);
    EXPECT_EQ(firstUnusablePixel(makeImage(ORVTYPE_DOUBLE, 2, 1, [](long, long) { return 3.4e38; })), -1);
    EXPECT_EQ(firstUnusablePixel(makeImage(ORVTYPE_INT, 2, 1, [](long, long) { return -2147483648.0; })), -1);
}
