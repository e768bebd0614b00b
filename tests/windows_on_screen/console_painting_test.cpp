// SPDX-License-Identifier: GPL-3.0-or-later
// Painting over the cube in a user's terms: the pixels of a region are those that are seen under the brush, however the
// picture is zoomed and whatever the shape of its view.
#include "ConsoleFixture.h"

#include <cmath>
#include <ostream>
#include <set>

namespace {

struct PaintingCase
{
    const char* name;
    QSize window;
    int wheel; // eighths of a degree about the middle of the view
};

std::ostream& operator<<(std::ostream& stream, const PaintingCase& c)
{
    return stream << c.name;
}

class ConsolePaintingTest : public ConsoleTest
{
protected:
    // A cube whose value is the number of its pixel, under a picture whose colours tell column and line.
    void openNumbered(const QSize& window)
    {
        ASSERT_TRUE(m_cube.init(kCubeWidth, kCubeHeight, 1, kCubeImages, {}));
        std::vector<float> numbers;
        for (int p = 0; p < kCubeWidth * kCubeHeight; ++p) {
            numbers.push_back(static_cast<float>(p));
        }
        for (int i = 0; i < kCubeImages; ++i) {
            ASSERT_TRUE(m_cube.setImage(0, i, numbers));
        }
        m_cube.m_rgbImage = QImage(kCubeWidth, kCubeHeight, QImage::Format_RGB32);
        for (int y = 0; y < kCubeHeight; ++y) {
            for (int x = 0; x < kCubeWidth; ++x) {
                m_cube.m_rgbImage.setPixel(x, y, qRgb(6 * x, 8 * y, 100));
            }
        }
        ASSERT_TRUE(m_pConsole->setImageCube(cubeKeys(), 0, m_cube));
        view().setSmooth(false);
        view().setLabelList({});
        m_window.resize(window);
        screen::show(m_window);
    }
    CORVPaintQImageView& view() const { return *m_pConsole->m_pImageCubeView; }
    // The pixel that is seen at a point of the view, by its colours; -1 beside the picture.
    static int seenAt(const QImage& seen, const QPoint& at)
    {
        const double ratio = seen.devicePixelRatio();
        const QColor color =
            seen.pixelColor(static_cast<int>((at.x() + 0.5) * ratio), static_cast<int>((at.y() + 0.5) * ratio));
        return color.blue() == 100 ? color.green() / 8 * kCubeWidth + color.red() / 6 : -1;
    }
    // Whether a view pixel shows one pixel of the picture, and none of it that of another.
    static bool isInside(const QImage& seen, const QPoint& at)
    {
        const int nSeen = seenAt(seen, at);
        return seenAt(seen, at - QPoint(1, 0)) == nSeen && seenAt(seen, at + QPoint(1, 0)) == nSeen &&
               seenAt(seen, at - QPoint(0, 1)) == nSeen && seenAt(seen, at + QPoint(0, 1)) == nSeen;
    }
    QList<int> region(int nRow) const
    {
        QList<int> pixels;
        view().getPaintPixelIndex(static_cast<unsigned char>(row(nRow).m_nCurveId), pixels);
        return pixels;
    }
};

class ConsoleBrushTest : public ConsolePaintingTest, public ::testing::WithParamInterface<PaintingCase>
{
};

TEST_P(ConsoleBrushTest, PaintsThePixelsThatAreSeenUnderIt)
{
    openNumbered(GetParam().window);
    pointer::wheel(view(), QPointF(view().rect().center()), GetParam().wheel);
    const QImage seen = screen::grab(view());
    click(m_pConsole->m_pAddSpectrum);
    int nOnPicture = 0;
    // From beside the picture, where the view is wider or higher than that.
    const QRect looked = view().pictureRect().toRect().adjusted(-9, -9, 9, 9).intersected(view().rect());
    for (int y = looked.top() + 1; y < looked.bottom(); y += looked.height() / 6) {
        for (int x = looked.left() + 1; x < looked.right(); x += looked.width() / 6) {
            const int expected = seenAt(seen, QPoint(x, y));
            if (!isInside(seen, QPoint(x, y))) {
                continue;
            }
            for (const int diameter : {1, 3, 7}) {
                chooseTool(0, diameter == 1 ? "Thin" : diameter == 3 ? "Medium" : "Thick");
                QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, QPoint(x, y));
                const QList<int> painted = region(0);
                for (const int pixel : painted) {
                    ASSERT_TRUE(pixel >= 0 && pixel < kCubeWidth * kCubeHeight);
                    if (expected >= 0) {
                        EXPECT_LE(std::hypot(pixel % kCubeWidth - expected % kCubeWidth,
                                             pixel / kCubeWidth - expected / kCubeWidth),
                                  diameter / 2.0);
                    }
                }
                EXPECT_EQ(std::set<int>(painted.begin(), painted.end()).size(),
                          static_cast<std::size_t>(painted.size()));
                if (expected >= 0 && diameter == 1) {
                    ++nOnPicture;
                    EXPECT_EQ(values(0), std::vector<double>(kCubeImages, expected)) << x << ' ' << y;
                } else if (diameter == 1) {
                    EXPECT_TRUE(painted.isEmpty()) << x << ' ' << y;
                }
                view().takeStrokeBack();
            }
        }
    }
    EXPECT_GE(nOnPicture, 6);
}

INSTANTIATE_TEST_SUITE_P(Views, ConsoleBrushTest,
                         ::testing::Values(PaintingCase{"wide", {1500, 500}, 0}, PaintingCase{"tall", {700, 1000}, 0},
                                           PaintingCase{"zoomed in", {1000, 800}, 600},
                                           PaintingCase{"zoomed out", {1000, 800}, -240}));

TEST_F(ConsolePaintingTest, StrokesAndShapesTakenBackGiveTheFormerSpectraToTheBit)
{
    openCube();
    ASSERT_TRUE(fillWithFractions(m_cube));
    click(m_pConsole->m_pAddSpectrum);
    std::vector<std::vector<double>> spectra;
    const auto add = [&](int nKey, Qt::KeyboardModifiers keys, double x1, double y1, double x2, double y2) {
        spectra.push_back(values(0));
        QTest::keyClick(&view(), static_cast<Qt::Key>(nKey));
        pointer::drag(view(), at(x1, y1), at(x2, y2), Qt::LeftButton, keys);
        EXPECT_NE(values(0), spectra.back());
    };
    add(Qt::Key_B, Qt::NoModifier, 3, 3, 17, 8);
    add(Qt::Key_R, Qt::NoModifier, 20, 10, 30, 25);
    add(Qt::Key_E, Qt::ShiftModifier, 18, 8, 27, 19);
    add(Qt::Key_B, Qt::ShiftModifier, 4, 4, 9, 6);
    add(Qt::Key_E, Qt::NoModifier, 0, 15, 12, 29);
    while (!spectra.empty()) {
        QTest::keyClick(&view(), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(values(0), spectra.back());
        spectra.pop_back();
    }
}

TEST_F(ConsolePaintingTest, ASecondRegionOfTheRowAddsToTheFirst)
{
    openNumbered({1000, 800});
    click(m_pConsole->m_pAddSpectrum);
    QTest::keyClick(&view(), Qt::Key_R);
    paint(0, 0, 1, 0);
    paint(10, 1, 11, 1);
    EXPECT_EQ(region(0), (QList<int>{0, 1, 50, 51}));
    EXPECT_EQ(values(0), std::vector<double>(kCubeImages, 25.5));
}

TEST_F(ConsolePaintingTest, EscapeGivesUpAShapeAndNotTheWindow)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    QTest::keyClick(&view(), Qt::Key_R);
    QSignalSpy finished(m_pConsole, &QDialog::finished);
    pointer::press(view(), at(3, 3));
    pointer::move(view(), at(9, 9), Qt::LeftButton);
    QTest::keyClick(&view(), Qt::Key_Escape);
    pointer::release(view(), at(9, 9));
    EXPECT_TRUE(region(0).isEmpty());
    EXPECT_EQ(finished.count(), 0);
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_EQ(finished.count(), 1);
}

} // namespace
