// SPDX-License-Identifier: GPL-3.0-or-later
// The unmixed images of the console: tiles, scale controls, colour bar, the window as a picture.
#include "ConsoleFixture.h"
#include "StatusTips.h"

#include "host/CILImage.h"
#include "host/CORVTextTag.h"
#include "host/QSpanSlider.h"
#include "windows/CORVDistributionView.h"

#include <QDoubleSpinBox>
#include <QHelpEvent>
#include <QTabWidget>
#include <QToolButton>
#include <QToolTip>

namespace {

std::unique_ptr<CILImage> mapOf(const QColor& color)
{
    auto pImage = std::make_unique<CILImage>();
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(color);
    pImage->setRGBImage(picture);
    return pImage;
}

class ConsoleImagesTest : public ConsoleTest
{
protected:
    void showImages()
    {
        openCube();
        for (const char* pColor : {"red", "green", "blue", "yellow"}) {
            m_images.push_back(mapOf(QColor(pColor)));
            m_pConsole->addUnmixedImage(m_images.back().get(), pColor);
        }
        m_pConsole->selectUnmixedTab(false);
        QApplication::processEvents();
    }
    ~ConsoleImagesTest() override { m_pConsole->removeAllUnmixedImages(); }

    CORVDistributionView& view() const { return *m_pConsole->m_pDistributionView; }
    QList<QWidget*> scaleControls() const
    {
        return {m_pConsole->m_pMinLabel, m_pConsole->m_pMinSpinBox, m_pConsole->m_pDataSpanSlider,
                m_pConsole->m_pMaxLabel, m_pConsole->m_pMaxSpinBox};
    }
    std::pair<double, double> range() const
    {
        std::pair<double, double> ends;
        m_pConsole->getScaleRange(&ends.first, &ends.second);
        return ends;
    }
    // The bar of a common scale in a unit.
    void showBar(int nUnit, bool bNTF = false)
    {
        m_pConsole->setColorBar(nUnit, bNTF, 0, 1e6, 3e8, false, false);
        m_pConsole->setHideColorBar(false);
        QApplication::processEvents();
    }

    std::vector<std::unique_ptr<CILImage>> m_images;
};

TEST_F(ConsoleImagesTest, TheToolbarIsAsDesigned)
{
    openCube();
    const QWidget& bar = *m_pConsole->toolbar();
    EXPECT_EQ(bar.objectName(), "ConsoleToolbar");
    EXPECT_NE(bar.findChild<QHBoxLayout*>("horizontalLayout_toolbar_1"), nullptr);
    EXPECT_NE(bar.findChild<QHBoxLayout*>("horizontalLayout_toolbar_2"), nullptr);
    for (const char* pName : {"m_pCopyToClipboardButton", "m_pExportGraphicsButton", "m_pPrintButton"}) {
        auto* pButton = bar.findChild<QToolButton*>(pName, Qt::FindDirectChildrenOnly);
        ASSERT_NE(pButton, nullptr) << pName;
        EXPECT_EQ(pButton->maximumSize(), QSize(26, 26));
        EXPECT_FALSE(pButton->icon().isNull());
        EXPECT_FALSE(pButton->accessibleName().isEmpty());
    }
    EXPECT_EQ(m_pConsole->m_pPrintButton->shortcut(), QKeySequence("Ctrl+P"));
    EXPECT_TRUE(m_pConsole->m_pShowImageLabelsCheckBox->isChecked());
    EXPECT_EQ(m_pConsole->m_pShowImageLabelsCheckBox->toolTip(), "Shows the image label in the image.");
    EXPECT_TRUE(m_pConsole->m_pIndividualScaleCkB->isChecked());
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->decimals(), 2);
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->singleStep(), 5.0);
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->minimum(), 0.0);
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->maximum(), 95.0);
    EXPECT_EQ(m_pConsole->m_pMaxSpinBox->minimum(), 5.0);
    EXPECT_EQ(m_pConsole->m_pMaxSpinBox->maximum(), 100.0);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->minimum(), 0);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->maximum(), 100);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->lowerValue(), 5);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->upperValue(), 95);
    EXPECT_EQ(range(), std::make_pair(0.05, 0.95));
}

TEST_F(ConsoleImagesTest, TilesAreShownInTheirOrderAndLetGoOf)
{
    EXPECT_FALSE(m_pConsole->m_pExportAsSequence->isEnabled());
    showImages();
    ASSERT_EQ(view().getImageNumber(), 4);
    EXPECT_EQ(view().imageLabel(2), "blue");
    EXPECT_TRUE(m_pConsole->m_pExportAsSequence->isEnabled());
    m_pConsole->removeAllUnmixedImages();
    m_images.clear();
    EXPECT_EQ(view().getImageNumber(), 0);
    EXPECT_FALSE(m_pConsole->m_pExportAsSequence->isEnabled());
    view().update();
    QApplication::processEvents();
}

TEST_F(ConsoleImagesTest, ATileTellsTheRangeThatItIsShownOver)
{
    showImages();
    showBar(1);
    m_pConsole->setUnmixedImageRange(1.2e6, 3.4e8); // of the last one
    const QPoint at = view().imageRect(3).center().toPoint();
    QHelpEvent help(QEvent::ToolTip, at, view().mapToGlobal(at));
    QApplication::sendEvent(&view(), &help);
    EXPECT_EQ(QToolTip::text(), "yellow<br>1.2e+06 to 3.4e+08 (Radiance)");
    QToolTip::hideText();
}

TEST_F(ConsoleImagesTest, ThePixelOfATileIsToldWithItsValueAndUnit)
{
    showImages();
    showBar(3);
    UnmixedValues values;
    values.size = QSize(20, 15); // the tiles have the size of a photograph
    values.data = XTNT::Matrix<double>(3, 300, 0.0);
    values.data[1][7 * 20 + 4] = 0.125;
    view().setValues(values);
    const StatusTips tips(m_window);
    const QRectF tile = view().imageRect(1);
    const QPointF within(4.5 / 20.0 * tile.width(), 7.5 / 15.0 * tile.height());
    pointer::move(view(), tile.topLeft() + within);
    EXPECT_EQ(tips.last(), "green   x 4, y 7: 0.125 efficiency");
    pointer::move(view(), view().imageRect(3).topLeft() + within);
    EXPECT_EQ(tips.last(), "yellow   x 4, y 7") << "the composite has colours";
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&view(), &leave);
    EXPECT_EQ(tips.last(), "");
    m_pConsole->removeAllUnmixedImages();
    m_pConsole->addUnmixedImage(m_images[0].get(), "ICG");
    QApplication::processEvents();
    pointer::move(view(), view().imageRect(0).center());
    EXPECT_EQ(tips.last(), "ICG   x 20, y 15") << "without numbers";
}

TEST_F(ConsoleImagesTest, AnImageThatIsTakenBelongsToTheConsole)
{
    openCube();
    EXPECT_EQ(m_pConsole->takeUnmixedImage(nullptr), 0);
    EXPECT_EQ(view().getImageNumber(), 0);
    EXPECT_NE(m_pConsole->takeUnmixedImage(mapOf(Qt::red).release()), 0);
    EXPECT_EQ(view().getImageNumber(), 1);
    EXPECT_EQ(m_pConsole->m_unmixedImages.size(), 1);
    m_pConsole->removeAllUnmixedImages();
    EXPECT_TRUE(m_pConsole->m_unmixedImages.isEmpty());
    m_pConsole->takeUnmixedImage(mapOf(Qt::red).release()); // and goes with it
}

TEST_F(ConsoleImagesTest, LabelsFollowTheirBox)
{
    showImages();
    click(m_pConsole->m_pShowImageLabelsCheckBox);
    EXPECT_FALSE(view().m_bShowLabels);
    click(m_pConsole->m_pShowImageLabelsCheckBox);
    EXPECT_TRUE(view().m_bShowLabels);
}

TEST_F(ConsoleImagesTest, ScaleControlsBelongToACommonScaleOfTheImages)
{
    showImages();
    for (const QWidget* pControl : scaleControls()) {
        EXPECT_TRUE(pControl->isHidden());
    }
    QSignalSpy scale(m_pConsole, &SpumKyvoConsoleWnd::individualScaleSignal);
    click(m_pConsole->m_pIndividualScaleCkB);
    ASSERT_EQ(scale.count(), 1);
    EXPECT_EQ(scale[0][0].toBool(), false);
    for (const QWidget* pControl : scaleControls()) {
        EXPECT_FALSE(pControl->isHidden());
    }
    m_pConsole->selectUnmixedTab(true);
    for (const QWidget* pControl : scaleControls()) {
        EXPECT_TRUE(pControl->isHidden());
    }
    EXPECT_TRUE(m_pConsole->m_pShowImageLabelsCheckBox->isHidden());
    EXPECT_FALSE(m_pConsole->m_pCopyToClipboardButton->isHidden());
    m_pConsole->selectUnmixedTab(false);
    EXPECT_FALSE(m_pConsole->m_pMinSpinBox->isHidden());
    click(m_pConsole->m_pIndividualScaleCkB);
    ASSERT_EQ(scale.count(), 2);
    EXPECT_EQ(scale[1][0].toBool(), true);
    EXPECT_TRUE(m_pConsole->m_pMinSpinBox->isHidden());
}

TEST_F(ConsoleImagesTest, SliderAndBoxesFollowEachOtherWithOneSignalAStep)
{
    showImages();
    click(m_pConsole->m_pIndividualScaleCkB);
    QSignalSpy scale(m_pConsole, &SpumKyvoConsoleWnd::individualScaleSignal);
    m_pConsole->m_pDataSpanSlider->setLowerValue(40);
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->value(), 40.0);
    EXPECT_EQ(m_pConsole->m_pMaxSpinBox->minimum(), 40.0);
    EXPECT_EQ(scale.count(), 1);
    m_pConsole->m_pDataSpanSlider->setUpperValue(60);
    EXPECT_EQ(m_pConsole->m_pMaxSpinBox->value(), 60.0);
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->maximum(), 60.0);
    EXPECT_EQ(scale.count(), 2);
    m_pConsole->m_pMinSpinBox->setValue(20.0);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->lowerValue(), 20);
    EXPECT_EQ(scale.count(), 3);
    m_pConsole->m_pMaxSpinBox->setValue(80.0);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->upperValue(), 80);
    EXPECT_EQ(scale.count(), 4);
    EXPECT_EQ(range(), std::make_pair(0.2, 0.8));
}

TEST_F(ConsoleImagesTest, TheWholeSpanIsAllowedAndTheEndsMayMeet)
{
    showImages();
    m_pConsole->m_pDataSpanSlider->setLowerValue(0);
    m_pConsole->m_pDataSpanSlider->setUpperValue(100);
    EXPECT_EQ(range(), std::make_pair(0.0, 1.0));
    m_pConsole->m_pDataSpanSlider->setUpperValue(30);
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->maximum(), 30.0);
    m_pConsole->m_pDataSpanSlider->setLowerValue(50); // stops at the other end
    EXPECT_EQ(range(), std::make_pair(0.3, 0.3));
    m_pConsole->m_pMinSpinBox->setValue(90.0);
    EXPECT_EQ(range(), std::make_pair(0.3, 0.3));
}

TEST_F(ConsoleImagesTest, AFractionStaysInTheBoxAndTheSliderTakesItsWholePart)
{
    showImages();
    m_pConsole->m_pMinSpinBox->setValue(12.75);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->lowerValue(), 12);
    EXPECT_EQ(m_pConsole->m_pMinSpinBox->value(), 12.75);
    m_pConsole->m_pMaxSpinBox->setValue(47.99);
    EXPECT_EQ(m_pConsole->m_pDataSpanSlider->upperValue(), 47);
    EXPECT_EQ(range(), std::make_pair(0.1275, 0.4799));
}

TEST_F(ConsoleImagesTest, ATypedNumberCountsOnceItIsComplete)
{
    showImages();
    click(m_pConsole->m_pIndividualScaleCkB);
    activate();
    QSignalSpy scale(m_pConsole, &SpumKyvoConsoleWnd::individualScaleSignal);
    m_pConsole->m_pMinSpinBox->setFocus();
    m_pConsole->m_pMinSpinBox->selectAll();
    QTest::keyClicks(m_pConsole->m_pMinSpinBox, "12");
    EXPECT_EQ(scale.count(), 0);
    QTest::keyClick(m_pConsole->m_pMinSpinBox, Qt::Key_Return);
    EXPECT_EQ(scale.count(), 1);
    EXPECT_EQ(range().first, 0.12);
}

TEST_F(ConsoleImagesTest, ADoubleClickOpensATileAndNothingBesideIt)
{
    showImages();
    QSignalSpy opened(&view(), &CORVDistributionView::imageDoubleClickedSignal);
    QTest::mouseDClick(&view(), Qt::LeftButton, Qt::NoModifier, view().imageRect(2).center().toPoint());
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toInt(), 2);
    const QPoint beside(1, 1);
    ASSERT_EQ(view().imageAt(beside), -1);
    QTest::mouseDClick(&view(), Qt::LeftButton, Qt::NoModifier, beside);
    EXPECT_EQ(opened.count(), 1);
    m_pConsole->removeAllUnmixedImages();
    QTest::mouseDClick(&view(), Qt::LeftButton, Qt::NoModifier, view().rect().center());
    EXPECT_EQ(opened.count(), 1);
}

TEST_F(ConsoleImagesTest, ReturnOpensTheChosenTile)
{
    showImages();
    QSignalSpy opened(&view(), &CORVDistributionView::imageDoubleClickedSignal);
    QTest::keyClick(&view(), Qt::Key_Right);
    QTest::keyClick(&view(), Qt::Key_Return);
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toInt(), 1);
}

TEST_F(ConsoleImagesTest, ADoubleClickWhileOneIsHandledIsNone)
{
    showImages();
    int nOpened = 0;
    QObject::connect(&view(), &CORVDistributionView::imageDoubleClickedSignal, &view(), [this, &nOpened] {
        ++nOpened;
        QTest::mouseDClick(&view(), Qt::LeftButton, Qt::NoModifier, view().imageRect(0).center().toPoint());
    });
    QTest::mouseDClick(&view(), Qt::LeftButton, Qt::NoModifier, view().imageRect(0).center().toPoint());
    EXPECT_EQ(nOpened, 1);
    QTest::mouseDClick(&view(), Qt::LeftButton, Qt::NoModifier, view().imageRect(0).center().toPoint());
    EXPECT_EQ(nOpened, 2);
}

TEST_F(ConsoleImagesTest, TheBarLeavesRoomForTheLinesOfItsUnit)
{
    showImages();
    EXPECT_FALSE(view().isColorBarShown());
    const double em = CORVTextTag().fontHeight();
    const struct
    {
        int unit;
        bool ntf;
        double room; // font heights
    } table[] = {{0, false, 4.0}, {1, false, 4.0}, {2, false, 5.0}, {2, true, 5.0}, {3, false, 4.0}, {9, false, 4.0}};
    for (const auto& c : table) {
        showBar(c.unit, c.ntf);
        ASSERT_TRUE(view().isColorBarShown());
        const QRectF bar = view().colorBarRect();
        EXPECT_NEAR(bar.bottom(), view().height() - c.room * em, 0.5) << c.unit;
        EXPECT_NEAR(bar.height(), view().height() - (c.room + 1.5) * em - 3.0, 0.5) << c.unit;
        EXPECT_GE(view().upperTag().y(), 0.0);
        EXPECT_EQ(view().m_nUnit, c.unit);
        EXPECT_EQ(view().m_bNTF, c.ntf);
    }
    m_pConsole->setHideColorBar(true);
    EXPECT_FALSE(view().isColorBarShown());
    m_pConsole->setHideColorBar(false);
    EXPECT_TRUE(view().isColorBarShown());
    m_pConsole->removeAllUnmixedImages();
    EXPECT_FALSE(view().isColorBarShown());
}

TEST_F(ConsoleImagesTest, TheBarFollowsTheSizeOfTheView)
{
    showImages();
    showBar(2);
    QSignalSpy layout(m_pConsole, &SpumKyvoConsoleWnd::updateColorBarSize);
    const double before = view().colorBarRect().height();
    m_window.resize(m_window.width(), m_window.height() - 150);
    QApplication::processEvents();
    EXPECT_GE(layout.count(), 1);
    EXPECT_NEAR(before - view().colorBarRect().height(), 150.0, 2.0);
}

TEST_F(ConsoleImagesTest, TheUnitIsPaintedUnderTheBar)
{
    showImages();
    QImage last;
    for (const int nUnit : {0, 1, 2, 3, 7}) {
        showBar(nUnit);
        const QRectF margin = view().colorBarMargin();
        const QRectF bar = view().colorBarRect();
        const QImage whole = view().renderImage();
        const double ratio = whole.devicePixelRatio();
        const QRectF beneath(margin.left() * ratio, (bar.bottom() + view().lowerTag().height()) * ratio,
                             margin.width() * ratio,
                             (view().height() - bar.bottom() - view().lowerTag().height()) * ratio);
        const QImage text = whole.copy(beneath.toAlignedRect());
        int nInk = 0;
        for (int y = 0; y < text.height(); ++y) {
            for (int x = 0; x < text.width(); ++x) {
                nInk += text.pixel(x, y) != text.pixel(0, 0) ? 1 : 0;
            }
        }
        EXPECT_GT(nInk, 50) << nUnit;
        EXPECT_NE(text, last) << nUnit;
        last = text;
    }
}

TEST_F(ConsoleImagesTest, TheTabOfTheImagesComesAndGoes)
{
    openCube();
    m_pConsole->setUnmixedTabVisible(true);
    EXPECT_EQ(m_pConsole->m_pImageTabWidget->count(), 1);
    m_pConsole->selectUnmixedTab(false);
    EXPECT_EQ(m_pConsole->m_pImageTabWidget->currentIndex(), 0);
    m_pConsole->setUnmixedTabVisible(false);
    m_pConsole->setUnmixedTabVisible(false);
    ASSERT_EQ(m_pConsole->m_pImageTabWidget->count(), 2);
    EXPECT_EQ(m_pConsole->m_pImageTabWidget->tabText(1), "Unmixed");
    m_pConsole->selectUnmixedTab(false);
    EXPECT_EQ(m_pConsole->m_pImageTabWidget->currentIndex(), 1);
    m_pConsole->selectUnmixedTab(true);
    EXPECT_EQ(m_pConsole->m_pImageTabWidget->currentIndex(), 0);
}

// What the view shows is in the picture of the window once, where the user sees it.
TEST_F(ConsoleImagesTest, ThePictureIsTheWindowAsTheUserSeesIt)
{
    showImages();
    m_pConsole->m_pShowImageLabelsCheckBox->setChecked(false);
    QApplication::processEvents();
    QImage picture;
    m_pConsole->getViewImage(&picture);
    const double ratio = picture.devicePixelRatio();
    EXPECT_EQ(picture.size(), m_pConsole->size() * ratio);
    const QList<QColor> colors{QColor("red"), QColor("green"), QColor("blue"), QColor("yellow")};
    for (int i = 0; i < colors.size(); ++i) {
        const QPointF middle = view().mapTo(m_pConsole, view().imageRect(i).center().toPoint());
        EXPECT_EQ(picture.pixelColor((middle * ratio).toPoint()), colors[i]) << i;
        int nColored = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                nColored += picture.pixelColor(x, y) == colors[i] ? 1 : 0;
            }
        }
        const QSizeF tile = view().imageRect(i).size() * ratio;
        EXPECT_NEAR(nColored, tile.width() * tile.height(), 0.05 * tile.width() * tile.height()) << i;
    }
    m_pConsole->selectUnmixedTab(true);
    QApplication::processEvents();
    m_pConsole->getViewImage(&picture);
    const QPoint cube = m_pConsole->m_pImageCubeView->mapTo(m_pConsole, at(30, 25).toPoint());
    EXPECT_EQ(picture.pixelColor(cube * ratio), QColor(30, 60, 120));
}

TEST_F(ConsoleImagesTest, TheToolbarGoesWithTheConsole)
{
    QWidget strip;
    auto pConsole = std::make_unique<SpumKyvoConsoleWnd>();
    const QPointer<QFrame> pToolbar = pConsole->toolbar();
    EXPECT_TRUE(pToolbar->isHidden());
    EXPECT_EQ(pToolbar->parentWidget(), pConsole.get());
    pConsole.reset();
    EXPECT_TRUE(pToolbar.isNull());
}

} // namespace
