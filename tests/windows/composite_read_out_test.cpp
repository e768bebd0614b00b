// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/compositeReadOut.h"

#include "windows/CompositeScene.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

CILImage risingImage(long lWidth, long lHeight)
{
    CILImage image;
    EXPECT_EQ(image.InitWithType(ORVTYPE_FLOAT, lWidth, lHeight), EIL_SUCCESS);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, static_cast<double>(i));
    }
    return image;
}

// Two maps of 4 x 2 pixels. A frame of 480 x 480 shows them at 120 pixels each, in its upper half.
class CompositeReadOutTest : public ::testing::Test
{
protected:
    std::optional<ReadOut> at(int nRow, int nX, int nY) const
    {
        return compositeReadOut(m_scene.maps(), m_nSpot, m_background, nRow, "Cy5", 1, QPoint(nX, nY));
    }
    QString text(int nRow, int nX, int nY) const
    {
        const auto found = at(nRow, nX, nY);
        return found ? found->text(QLocale::c()) : QString("nothing");
    }

    CompositeScene m_scene{4, 2, {{0, 1, 2, 3, 4, 5, 6, 7}, {10, 11, 12, 13, 14, 15, 16, 17}}};
    CILImage m_background;
    int m_nSpot = 0;
};

TEST_F(CompositeReadOutTest, TellsThePixelOfTheMapThatWasEnlarged)
{
    EXPECT_EQ(text(0, 0, 0), "Cy5   x 0, y 0: 0 p/s/cm²/sr");
    EXPECT_EQ(text(0, 119, 119), "Cy5   x 0, y 0: 0 p/s/cm²/sr");
    EXPECT_EQ(text(0, 120, 0), "Cy5   x 1, y 0: 1 p/s/cm²/sr");
    EXPECT_EQ(text(1, 479, 239), "Cy5   x 3, y 1: 17 p/s/cm²/sr");
}

TEST_F(CompositeReadOutTest, BesideTheMapsThereIsNothing)
{
    EXPECT_EQ(text(0, 0, 240), "nothing");
    EXPECT_EQ(text(0, 480, 0), "nothing");
    EXPECT_EQ(text(0, -1, -1), "nothing");
    EXPECT_EQ(text(-1, 0, 0), "nothing");
}

TEST_F(CompositeReadOutTest, TellsTheBackgroundInItsOwnPixelsAndCounts)
{
    EXPECT_EQ(text(2, 0, 0), "nothing");
    m_background = risingImage(2, 2);
    EXPECT_EQ(text(2, 0, 0), "Cy5   x 0, y 0: 0 counts");
    EXPECT_EQ(text(2, 479, 479), "Cy5   x 1, y 1: 3 counts");
    EXPECT_EQ(text(2, 480, 0), "nothing");
}

// The frame is as large as the background, 1000 x 600; the maps take up 1000 x 500 of it.
TEST_F(CompositeReadOutTest, ABackgroundWidensTheFrame)
{
    m_background = risingImage(1000, 600);
    EXPECT_EQ(text(0, 249, 0), "Cy5   x 0, y 0: 0 p/s/cm²/sr");
    EXPECT_EQ(text(0, 250, 499), "Cy5   x 1, y 1: 5 p/s/cm²/sr");
    EXPECT_EQ(text(0, 250, 500), "nothing");
    EXPECT_EQ(text(2, 251, 500), "Cy5   x 251, y 500: 5.003e+05 counts");
}

TEST_F(CompositeReadOutTest, TellsTheValueOfTheSpotThatIsShown)
{
    m_scene = CompositeScene(1, 2, {{1.0, 2.0, 3.0, 4.0}}, {}, 2);
    m_nSpot = 1;
    EXPECT_EQ(text(0, 0, 0), "Cy5   x 0, y 0: 3 p/s/cm²/sr");
    EXPECT_EQ(text(0, 0, 479), "Cy5   x 0, y 1: 4 p/s/cm²/sr");
}

TEST_F(CompositeReadOutTest, OutsideTheMaskThereIsNoValue)
{
    m_scene = CompositeScene(2, 2, {{8.0, 9.0, 7.0}}, {3, 0, 3});
    EXPECT_EQ(text(0, 0, 0), "Cy5   x 0, y 0: 9 p/s/cm²/sr");
    EXPECT_EQ(text(0, 479, 0), "Cy5   x 1, y 0: no value");
    EXPECT_EQ(text(0, 479, 479), "Cy5   x 1, y 1: 7 p/s/cm²/sr") << "the later of two is seen";
}

// What is told is what lies there: the picture of one pixel that shines is lit where its value is told.
TEST_F(CompositeReadOutTest, GoesWithThePicture)
{
    m_scene = CompositeScene(3, 5, {{0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}});
    m_scene.start({channelOf("white")});
    const QImage picture = m_scene.picture();
    for (int y = 10; y < picture.height(); y += 20) {
        for (int x = 10; x < picture.width(); x += 20) {
            const auto found = at(0, x, y);
            ASSERT_TRUE(found.has_value());
            // Pixels are interpolated: their middles tell which is which.
            const int column = static_cast<int>(std::floor(x * 3.0 / picture.width()));
            const int row = static_cast<int>(std::floor(y * 5.0 / picture.height()));
            EXPECT_EQ(found->pixel, QPoint(column, row));
            const double dX = x * 3.0 / picture.width() - column - 0.5;
            const double dY = y * 5.0 / picture.height() - row - 0.5;
            if (std::abs(dX) < 0.2 && std::abs(dY) < 0.2) {
                EXPECT_EQ(qRed(picture.pixel(x, y)) > 127, *found->value > 0.5) << x << " " << y;
            }
        }
    }
}

} // namespace
