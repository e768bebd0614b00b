// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/pngBytes.h"

#include "XTNT/xtnt_parallel.h"

#include <QImage>

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

namespace {

QImage noise(const QSize& size, QImage::Format eFormat)
{
    QImage picture(size, eFormat);
    picture.fill(0); // what fills a row up to whole words, too
    std::mt19937 random(7);
    const int bytes = size.width() * picture.depth() / 8;
    for (int y = 0; y < size.height(); ++y) {
        for (int i = 0; i < bytes; ++i) {
            picture.scanLine(y)[i] = static_cast<uchar>(random());
        }
    }
    return picture;
}

} // namespace

TEST(PngBytesTest, PicturesComeBackPixelByPixel)
{
    for (const QSize& size : {QSize(1, 1), QSize(333, 217), QSize(70000, 2), QSize(1, 3000)}) {
        const QImage picture = noise(size, QImage::Format_RGB32);
        const QImage back = QImage::fromData(orvimage::pngBytes(picture), "PNG");
        EXPECT_FALSE(back.hasAlphaChannel());
        EXPECT_EQ(back.convertToFormat(QImage::Format_RGB888), picture.convertToFormat(QImage::Format_RGB888));
    }
}

TEST(PngBytesTest, GreyPicturesStayGrey)
{
    const QImage picture = noise({333, 217}, QImage::Format_Grayscale8);
    const QImage back = QImage::fromData(orvimage::pngBytes(picture), "PNG");
    EXPECT_EQ(back.format(), QImage::Format_Grayscale8);
    EXPECT_EQ(back, picture);
}

TEST(PngBytesTest, TheResolutionIsKept)
{
    QImage picture = noise({20, 10}, QImage::Format_RGB32);
    picture.setDotsPerMeterX(11811);
    picture.setDotsPerMeterY(5000);
    const QImage back = QImage::fromData(orvimage::pngBytes(picture), "PNG");
    EXPECT_EQ(back.dotsPerMeterX(), 11811);
    EXPECT_EQ(back.dotsPerMeterY(), 5000);
}

TEST(PngBytesTest, AnEmptyPictureHasNoBytes)
{
    EXPECT_TRUE(orvimage::pngBytes(QImage()).isEmpty());
}

// At the third time; a megapixel asks more often than that.
TEST(PngBytesTest, WorkThatIsToEndGoesNotOnToTheLastRow)
{
    const QImage picture = noise({1024, 1024}, QImage::Format_RGB32);
    int asked = 0;
    const XTNT::CancellationCheck check([&asked] {
        if (++asked == 3) {
            throw std::runtime_error("ended");
        }
    });
    EXPECT_THROW(orvimage::pngBytes(picture), std::runtime_error);
    EXPECT_EQ(asked, 3);
    asked = 3;
    EXPECT_FALSE(orvimage::pngBytes(picture).isEmpty());
    EXPECT_GE(asked, 3 + 10);
}
