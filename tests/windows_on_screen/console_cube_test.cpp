// SPDX-License-Identifier: GPL-3.0-or-later
// The cube view of the console: overview, images, brightness, the spectrum under the cursor.
#include "ConsoleFixture.h"
#include "StatusTips.h"

#include "engine/LogCapture.h"

#include <QTabWidget>

namespace {

class ConsoleCubeTest : public ConsoleTest
{
protected:
    QImage shown() const { return m_pConsole->m_pImageCubeView->picture(); }
    QString label() const
    {
        const auto labels = m_pConsole->m_pImageCubeView->labelList();
        return labels.size() == 1 ? labels[0].first : QString();
    }
    void moveTo(int x, int y) const { pointer::move(*m_pConsole->m_pImageCubeView, at(x, y)); }
};

TEST_F(ConsoleCubeTest, StartsWithABlankPicture)
{
    EXPECT_EQ(shown().size(), QSize(100, 100));
    EXPECT_TRUE(m_pConsole->m_pVideoCheckBox->isChecked());
    EXPECT_EQ(m_pConsole->m_pImageIndexSlider->minimum(), 1);
    EXPECT_EQ(m_pConsole->m_ImageScaleSlider->minimum(), 1);
    EXPECT_EQ(m_pConsole->m_ImageScaleSlider->maximum(), 10);
    EXPECT_EQ(m_pConsole->m_pImageIndexSlider->toolTip(), "Image cube sllider");
}

TEST_F(ConsoleCubeTest, AnotherNumberOfKeysThanImagesIsRefused)
{
    openCube();
    CImageCube other;
    ASSERT_TRUE(other.init(3, 3, 1, 2, {}));
    EXPECT_FALSE(m_pConsole->setImageCube(cubeKeys(), 0, other));
    EXPECT_EQ(m_pConsole->m_pImageCube, &m_cube);
    EXPECT_EQ(m_pConsole->m_nImageWidth, kCubeWidth);
}

TEST_F(ConsoleCubeTest, TheOverviewComesFirst)
{
    openCube();
    EXPECT_EQ(shown(), m_cube.m_rgbImage);
    EXPECT_EQ(label(), "Pseudo Color");
    EXPECT_EQ(m_pConsole->m_pImageCubeView->labelList()[0].second, QColor("lime"));
    EXPECT_FALSE(m_pConsole->m_pImageIndexSlider->isEnabled());
    EXPECT_FALSE(m_pConsole->m_pImageIndexSpinBox->isEnabled());
    EXPECT_TRUE(m_pConsole->m_ImageScaleSlider->isHidden());
    EXPECT_TRUE(m_pConsole->label_BrigntnessScale->isHidden());
    EXPECT_EQ(m_pConsole->m_pImageIndexSlider->maximum(), kCubeImages);
    EXPECT_EQ(m_pConsole->m_pImageIndexSpinBox->maximum(), kCubeImages);
}

TEST_F(ConsoleCubeTest, ImagesAreShownOneByOne)
{
    openCube();
    click(m_pConsole->m_pVideoCheckBox);
    EXPECT_TRUE(m_pConsole->m_pImageIndexSlider->isEnabled());
    EXPECT_FALSE(m_pConsole->m_ImageScaleSlider->isHidden());
    EXPECT_FALSE(m_pConsole->label_BrigntnessScale->isHidden());
    EXPECT_EQ(shown(), m_cube.image(0));
    EXPECT_EQ(label(), "Emission:600, Excitation: 500");
    m_pConsole->m_pImageIndexSlider->setValue(3);
    EXPECT_EQ(m_pConsole->m_pImageIndexSpinBox->value(), 3);
    EXPECT_EQ(shown(), m_cube.image(2));
    EXPECT_EQ(label(), "Emission:640, Excitation: 500");
    m_pConsole->m_pImageIndexSpinBox->setValue(4);
    EXPECT_EQ(m_pConsole->m_pImageIndexSlider->value(), 4);
    EXPECT_EQ(shown(), m_cube.image(3));
    click(m_pConsole->m_pVideoCheckBox);
    EXPECT_EQ(shown(), m_cube.m_rgbImage);
    EXPECT_EQ(label(), "Pseudo Color");
}

TEST_F(ConsoleCubeTest, TimePointsAreNamedByTheClock)
{
    openCube(2);
    click(m_pConsole->m_pVideoCheckBox);
    m_pConsole->m_pImageIndexSlider->setValue(4);
    EXPECT_EQ(label(), "Time(hh:mm:ss):37:30:00, Interval: Int1");
}

TEST_F(ConsoleCubeTest, BrightnessNarrowsTheRangeOfImagesAlone)
{
    openCube();
    m_pConsole->m_ImageScaleSlider->setValue(4);
    EXPECT_EQ(m_cube.m_dMaxScale, 1.0);
    EXPECT_EQ(shown(), m_cube.m_rgbImage);
    m_pConsole->m_ImageScaleSlider->setValue(1);
    click(m_pConsole->m_pVideoCheckBox);
    const QImage plain = shown();
    m_pConsole->m_ImageScaleSlider->setValue(10);
    EXPECT_DOUBLE_EQ(m_cube.m_dMaxScale, 0.1);
    EXPECT_GT(qGray(shown().pixel(5, 10)), qGray(plain.pixel(5, 10)));
    EXPECT_EQ(shown(), m_cube.image(0));
}

TEST_F(ConsoleCubeTest, WithoutAnOverviewThePictureIsBlackAndOfTheCubesSize)
{
    fillCube(m_cube);
    m_cube.m_rgbImage = QImage();
    ASSERT_TRUE(m_pConsole->setImageCube(cubeKeys(), 0, m_cube));
    EXPECT_EQ(shown().size(), QSize(kCubeWidth, kCubeHeight));
    EXPECT_EQ(shown().pixel(3, 3), qRgb(0, 0, 0));
}

TEST_F(ConsoleCubeTest, APictureOfAnotherSizeIsBroughtToTheCubes)
{
    openCube();
    QImage composite(128, 96, QImage::Format_RGB32);
    composite.fill(Qt::red);
    click(m_pConsole->m_pVideoCheckBox);
    m_pConsole->setPseudoColorImage(composite);
    EXPECT_TRUE(m_pConsole->m_pVideoCheckBox->isChecked());
    EXPECT_EQ(shown().size(), QSize(kCubeWidth, kCubeHeight));
    EXPECT_EQ(shown().pixel(20, 15), qRgb(255, 0, 0));
    EXPECT_TRUE(m_pConsole->m_ImageScaleSlider->isHidden());
}

TEST_F(ConsoleCubeTest, TheSpectrumUnderTheCursorIsPlotted)
{
    openCube();
    moveTo(3, 4);
    EXPECT_EQ(lines(), QStringList{"Cursor"});
    pointer::move(*m_pConsole->m_pImageCubeView, QPointF(-1, -1));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_pConsole->m_pImageCubeView, &leave);
    EXPECT_TRUE(lines().isEmpty());
}

TEST_F(ConsoleCubeTest, ACursorBesideTheImageTakesTheLineAway)
{
    openCube();
    moveTo(3, 4);
    ASSERT_EQ(lines().size(), 1);
    Q_EMIT m_pConsole->m_pImageCubeView->updateCursorPosition(-1, -1);
    EXPECT_TRUE(lines().isEmpty());
    for (const QPoint& beyond : {QPoint(kCubeWidth, 0), QPoint(0, kCubeHeight), QPoint(4000, 4000)}) {
        Q_EMIT m_pConsole->m_pImageCubeView->updateCursorPosition(beyond.x(), beyond.y());
        EXPECT_TRUE(lines().isEmpty());
    }
}

TEST_F(ConsoleCubeTest, TakingUpAToolTakesTheCursorLineAway)
{
    openCube();
    moveTo(3, 4);
    ASSERT_EQ(lines().size(), 1);
    m_pConsole->m_pAddSpectrum->click();
    EXPECT_TRUE(lines().isEmpty());
    moveTo(5, 6);
    EXPECT_TRUE(lines().isEmpty());
    row(0).m_pToolButton->click();
    moveTo(6, 6);
    EXPECT_EQ(lines(), QStringList{"Cursor"});
}

TEST_F(ConsoleCubeTest, ThePixelUnderThePointerIsToldWithItsValueAndUnit)
{
    openCube(0, 1, {4 * kCubeWidth + 3, 4 * kCubeWidth + 4});
    m_pConsole->m_nCubeUnit = 1;
    const StatusTips tips(m_window);
    moveTo(3, 4);
    EXPECT_EQ(tips.last(), "x 3, y 4") << "the overview has colours";
    m_pConsole->m_pVideoCheckBox->setChecked(false);
    m_pConsole->m_pImageIndexSlider->setValue(2);
    moveTo(4, 4);
    EXPECT_EQ(tips.last(), QString::fromUtf8("Emission:620, Excitation: 500   x 4, y 4: 10 p/s/cm²/sr"));
    moveTo(4, 5);
    EXPECT_EQ(tips.last(), "Emission:620, Excitation: 500   x 4, y 5") << "outside the mask there is no value";
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_pConsole->m_pImageCubeView, &leave);
    EXPECT_EQ(tips.last(), "");
    openCube(0, 3);
    m_pConsole->m_pVideoCheckBox->setChecked(false);
    moveTo(0, 1);
    EXPECT_EQ(tips.last(), QString::fromUtf8("Emission:600, Excitation: 500, first spot   x 0, y 1: 2 p/s/cm²/sr"));
}

TEST_F(ConsoleCubeTest, WhoPaintsIsToldTheSizeOfTheRegion)
{
    openCube();
    const StatusTips tips(m_window);
    moveTo(3, 4);
    m_pConsole->m_pAddSpectrum->click();
    EXPECT_EQ(tips.last(), "Region of UMX1: 0 pixels");
    moveTo(6, 6);
    EXPECT_EQ(tips.last(), "Region of UMX1: 0 pixels");
    paint(5, 5, 5, 5);
    EXPECT_EQ(tips.last(), "Region of UMX1: 9 pixels");
    m_pConsole->m_pImageCubeView->takeStrokeBack();
    EXPECT_EQ(tips.last(), "Region of UMX1: 0 pixels");
    row(0).m_pToolButton->click();
    EXPECT_EQ(tips.last(), "");
}

TEST_F(ConsoleCubeTest, AWindowThatDiesUnderThePointerTellsNothing)
{
    openCube();
    QCursor::setPos(m_pConsole->m_pImageCubeView->mapToGlobal(at(5, 5).toPoint()));
    m_pConsole->m_pAddSpectrum->click();
    moveTo(5, 5);
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_pConsole->m_pImageCubeView->underMouse(); }));
    const StatusTips tips(m_window);
    delete m_pConsole;
    m_pConsole = nullptr;
    EXPECT_TRUE(tips.m_told.isEmpty());
}

TEST_F(ConsoleCubeTest, InAScanTheFirstSpotCounts)
{
    openCube(0, 3);
    addDab("Thin", 5, 9);
    EXPECT_EQ(values(0), (std::vector<double>{10.0, 20.0, 30.0, 40.0}));
}

TEST_F(ConsoleCubeTest, PixelsOutsideTheMaskAreNoPartOfARegion)
{
    openCube(0, 1, {9 * kCubeWidth + 5, 10 * kCubeWidth + 5});
    addDab("Thick", 5, 8);
    EXPECT_EQ(values(0), (std::vector<double>{10.5, 21.0, 31.5, 42.0}));
}

// An analysis empties the cube and builds it anew, of another size perhaps.
TEST_F(ConsoleCubeTest, ACubeThatChangesUnderTheWindowIsNotLookedAt)
{
    openCube();
    addPainted(true);
    const std::vector<double> before = values(0);
    row(0).m_pToolButton->click();
    const auto useEverything = [this] {
        moveTo(39, 29);
        moveTo(3, 4);
        m_pConsole->m_pVideoCheckBox->setChecked(false);
        m_pConsole->m_pImageIndexSlider->setValue(3);
        m_pConsole->m_ImageScaleSlider->setValue(7);
        m_pConsole->m_pImageIndexSlider->setValue(1);
        m_pConsole->m_pVideoCheckBox->setChecked(true);
        row(0).m_pToolButton->click();
        paint(20, 3, 25, 29);
        row(0).m_pToolButton->click();
    };
    const LogCapture log;
    m_cube.clear();
    useEverything();
    ASSERT_TRUE(m_cube.init(7, 5, 2, kCubeImages, {}));
    useEverything();
    ASSERT_TRUE(m_cube.init(kCubeWidth, kCubeHeight, 1, 9, {}));
    useEverything();
    m_cube.init(kCubeWidth, kCubeHeight, 1, kCubeImages, {-1});
    useEverything();
    m_pConsole->releaseImageCube();
    useEverything();
    EXPECT_EQ(values(0), before);
    EXPECT_TRUE(log.has("ImageCubeView: mismatch rgb image size", 2));
}

TEST_F(ConsoleCubeTest, ACubeThatDiesIsLetGoOf)
{
    auto pCube = std::make_unique<CImageCube>();
    fillCube(*pCube);
    ASSERT_TRUE(m_pConsole->setImageCube(cubeKeys(), 0, *pCube));
    screen::show(m_window);
    moveTo(3, 4);
    m_pConsole->releaseImageCube();
    pCube.reset();
    EXPECT_TRUE(lines().isEmpty());
    moveTo(5, 4);
    click(m_pConsole->m_pVideoCheckBox);
    EXPECT_TRUE(lines().isEmpty());
}

TEST_F(ConsoleCubeTest, SpectraOverTimeHaveNoLibrary)
{
    openCube(2);
    EXPECT_TRUE(m_pConsole->m_pLoadDatabaseTB->isHidden());
    EXPECT_TRUE(m_pConsole->m_pSaveDatabaseTB->isHidden());
    openCube(0);
    EXPECT_FALSE(m_pConsole->m_pLoadDatabaseTB->isHidden());
    EXPECT_FALSE(m_pConsole->m_pSaveDatabaseTB->isHidden());
}

TEST_F(ConsoleCubeTest, ANewCubeClearsTheRows)
{
    openCube();
    addPainted(true);
    m_pConsole->m_pImageIndexSlider->setValue(3);
    ASSERT_TRUE(m_pConsole->setImageCube(cubeKeys(), 0, m_cube));
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(lines().isEmpty());
    EXPECT_EQ(m_pConsole->m_pImageIndexSlider->value(), 1);
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->containsChannel(1));
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->isPaintEnabled());
}

} // namespace
