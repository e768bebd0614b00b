// SPDX-License-Identifier: GPL-3.0-or-later
// The composite window: what it starts with, which maps it shows, the picture behind them, the spots, how it ends.
#include "windows_on_screen/CompositeFixture.h"

#include "spectra/DefaultColors.h"

#include <QAccessible>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>

#include <cmath>
#include <vector>

namespace {

TEST_F(CompositeWindowTest, StartsWithAnEntryForEachComponentAndThePhotograph)
{
    fillAndShow();
    ASSERT_EQ(m_window.m_pImageList->count(), 3);
    EXPECT_EQ(item(0)->text(), "Cy5");
    EXPECT_EQ(item(0)->foreground().color(), QColor("red"));
    EXPECT_EQ(item(2)->text(), "Photograph");
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(item(row)->checkState(), Qt::Checked);
    }
    EXPECT_EQ(m_window.m_pImageList->currentRow(), 0);
    ASSERT_EQ(m_window.m_channels.size(), 3);
    EXPECT_EQ(m_window.m_channels[2]->label, "Photograph");
    EXPECT_EQ(m_window.m_channels[2]->brightness, 0.35);
    EXPECT_EQ(m_window.m_ranges[0], qMakePair(0.0, 100.0));
    EXPECT_EQ(m_window.m_ranges[1], qMakePair(0.0, 10.0));
    EXPECT_FALSE(m_window.m_pUnitCB->isEnabled());
    EXPECT_FALSE(m_window.m_pView->picture().isNull());
}

TEST_F(CompositeWindowTest, SizesThatDoNotGoTogetherAreToldAndChangeNothing)
{
    fill();
    const QImage before = m_window.getCompositeImage();
    LogCapture log;
    m_window.setCompositeData(&m_photo, m_maps, 1, {}, 3, 2, {namedChannel("A", "red"), namedChannel("B", "lime")}, 1);
    m_window.setCompositeData(&m_photo, m_maps, 1, {}, 2, 2, {namedChannel("A", "red")}, 1);
    EXPECT_EQ(log.count("SpUnmixCompositeWnd: input data size mismatch for composite image.", 3), 2);
    EXPECT_EQ(item(0)->text(), "Cy5");
    EXPECT_EQ(m_window.m_pUnitCB->currentIndex(), 0);
    EXPECT_EQ(m_window.getCompositeImage(), before);
}

TEST_F(CompositeWindowTest, MapsAreEnlargedToThePictureBehindThem)
{
    fill();
    EXPECT_EQ(m_window.getCompositeImage().size(), QSize(480, 480));
    m_photo = constantImage(600, 500, 1.0);
    fill();
    EXPECT_EQ(m_window.getCompositeImage().size(), QSize(600, 500));
    check(2, false);
    EXPECT_EQ(m_window.getCompositeImage().size(), QSize(500, 500));
}

// Red rises to the lower right, blue to the upper left; 0.1 to 0.9 of the range are shown.
TEST_F(CompositeWindowTest, MapsAreMixedInTheirColors)
{
    fill();
    check(2, false);
    EXPECT_EQ(colorOf(0, 0), rgb(0, 0, 255));
    EXPECT_EQ(colorOf(1, 1), rgb(255, 0, 0));
    EXPECT_EQ(colorOf(1, 0), rgb(95, 0, 159)); // (0.4 - 0.1) / 0.8 and (0.6 - 0.1) / 0.8 of 255, truncated
}

TEST_F(CompositeWindowTest, AChannelThatIsOffAddsNothingAtOnce)
{
    fillAndShow();
    check(2, false);
    check(0, false);
    EXPECT_EQ(colorOf(1, 1), rgb(0, 0, 0));
    EXPECT_EQ(colorOf(0, 0), rgb(0, 0, 255));
    check(1, false);
    EXPECT_EQ(colorOf(0, 0), rgb(0, 0, 0));
}

TEST_F(CompositeWindowTest, ComponentsOffLeaveTheGreyBackgroundOverBlack)
{
    for (std::size_t i = 0; i < m_photo.pixelCount(); ++i) {
        m_photo.setValue(i, i % 480 < 240 ? 0.0 : 100.0);
    }
    m_photo.RefreshImageStats();
    fillAndShow();
    check(0, false);
    check(1, false);
    EXPECT_EQ(colorOf(0, 0), rgb(0, 0, 0));
    EXPECT_EQ(colorOf(1, 0), rgb(89, 89, 89)); // 0.35 of 255, truncated
    select(2);
    m_window.m_pBrightnessSlider->setValue(100);
    EXPECT_EQ(colorOf(1, 0), rgb(255, 255, 255));
    check(2, false);
    EXPECT_EQ(colorOf(1, 0), rgb(0, 0, 0)); // nothing is blended, whatever the brightness
}

TEST_F(CompositeWindowTest, TissueInItsColorIsDarkerThanProbes)
{
    m_window.setCompositeData(&m_photo, m_maps, 0, {}, 2, 2,
                              {namedChannel("TissueAF", "lime"), namedChannel("TissueAF 2", "red")}, 1);
    EXPECT_EQ(m_window.m_channels[0]->brightness, 0.3);
    EXPECT_EQ(m_window.m_channels[1]->brightness, 1.0);
    EXPECT_EQ(m_window.m_pBrightnessSlider->value(), 30);
    EXPECT_EQ(m_window.m_pBrightnessSpinBox->value(), 30.0);
}

TEST_F(CompositeWindowTest, WithoutAnXRayThePhotographIsTheOnlyChoice)
{
    fillAndShow();
    m_window.setXRayImage(nullptr);
    EXPECT_FALSE(m_window.m_bHasXRay);
    ASSERT_EQ(m_window.m_pSetBackgroundTB->menu()->actions().size(), 1);
    EXPECT_EQ(m_window.m_pSetBackgroundTB->text(), "Photograph");
    EXPECT_FALSE(m_window.m_pSetBackgroundTB->icon().isNull());
    EXPECT_TRUE(m_window.m_pSetBackgroundTB->menu()->actions()[0]->isChecked());
}

// The picture follows with the next change of a control.
TEST_F(CompositeWindowTest, AnotherBackgroundShowsWithTheNextChange)
{
    fillAndShowWithXRay();
    const QList<QAction*> actions = m_window.m_pSetBackgroundTB->menu()->actions();
    ASSERT_EQ(actions.size(), 2);
    const QImage before = m_window.getCompositeImage();
    m_window.m_pSetBackgroundTB->click();
    EXPECT_EQ(m_window.m_pSetBackgroundTB->text(), "X-Ray");
    EXPECT_TRUE(actions[1]->isChecked());
    EXPECT_FALSE(actions[0]->isChecked());
    EXPECT_EQ(m_window.m_pImageList->currentRow(), 2);
    EXPECT_EQ(item(2)->text(), "X-Ray");
    EXPECT_EQ(m_window.m_channels[2]->label, "X-Ray");
    EXPECT_EQ(m_window.m_ranges[2], qMakePair(10.0, 20.0));
    EXPECT_EQ(m_window.m_pMaxSpinBox->maximum(), 20.0);
    EXPECT_EQ(m_window.getCompositeImage(), before);
    m_window.m_pBrightnessSlider->setValue(100);
    EXPECT_NE(m_window.getCompositeImage(), before);
    EXPECT_EQ(colorAt(m_window.getCompositeImage(), 0, 0), rgb(255, 255, 255));

    m_window.m_pSetBackgroundTB->click();
    EXPECT_EQ(m_window.m_pSetBackgroundTB->text(), "Photograph");
    EXPECT_EQ(item(2)->text(), "Photograph");
    actions[1]->trigger();
    EXPECT_EQ(item(2)->text(), "X-Ray");
    fill();
    EXPECT_EQ(item(2)->text(), "Photograph");
    EXPECT_EQ(m_window.m_pSetBackgroundTB->text(), "Photograph");
}

TEST_F(CompositeWindowTest, TheTabShowsAnotherBackgroundWhenItIsSelected)
{
    fillAndShowWithXRay();
    const QImage before = m_window.getCompositeImage();
    m_window.m_pSetBackgroundTB->click();
    m_window.onTabSelected("Unmixing");
    EXPECT_EQ(m_window.getCompositeImage(), before);
    m_window.onTabSelected("composite");
    EXPECT_NE(m_window.getCompositeImage(), before);
}

TEST_F(CompositeWindowTest, SpotsAreShownOneByOne)
{
    const auto maps = mapsOf({{1.0, 2.0, 3.0, 4.0, 40.0, 30.0, 20.0, 10.0}, {1.0, 1.0, 1.0, 1.0, 5.0, 5.0, 5.0, 5.0}});
    m_window.setCompositeData(&m_photo, maps, 0, {}, 2, 2, {namedChannel("A", "red"), namedChannel("B", "blue")}, 2);
    screen::show(m_window);
    EXPECT_TRUE(m_window.m_pSpotSpinBox->isVisible());
    EXPECT_EQ(m_window.m_ranges[0].second, 40.0);
    const QImage first = m_window.getCompositeImage();
    m_window.setCurrentSpot(1);
    EXPECT_EQ(m_window.m_nCurrentSpot, 1);
    EXPECT_EQ(m_window.m_pSpotSpinBox->value(), 2);
    EXPECT_EQ(m_window.m_spotData.num_cols(), 4);
    EXPECT_EQ(m_window.m_spotData[0][0], 40.0);
    EXPECT_EQ(m_window.m_ranges[0].second, 40.0);
    EXPECT_NE(m_window.getCompositeImage(), first);
    m_window.m_pSpotSpinBox->setValue(1);
    EXPECT_EQ(m_window.m_nCurrentSpot, 0);
    EXPECT_EQ(m_window.m_ranges[0].second, 4.0);
    EXPECT_EQ(m_window.m_pMaxSpinBox->maximum(), 4.0);
    m_window.setCurrentSpot(2);
    m_window.setCurrentSpot(-1);
    EXPECT_EQ(m_window.m_nCurrentSpot, 0);
}

TEST_F(CompositeWindowTest, OneSpotHasNoChooser)
{
    fillAndShow();
    m_window.setCurrentSpot(1);
    EXPECT_EQ(m_window.m_nCurrentSpot, 0);
    EXPECT_FALSE(m_window.m_pSpotSpinBox->isVisible());
}

TEST_F(CompositeWindowTest, PixelsOutsideTheMaskAreBlack)
{
    const auto maps = mapsOf({{5.0, 10.0}});
    m_window.setCompositeData(&m_photo, maps, 0, {3, 0}, 2, 2, {namedChannel("A", "red")}, 1);
    check(1, false);
    EXPECT_EQ(colorOf(0, 0), rgb(255, 0, 0));
    EXPECT_EQ(colorOf(1, 1), rgb(127, 0, 0));
    EXPECT_EQ(colorOf(1, 0), rgb(0, 0, 0));
}

TEST_F(CompositeWindowTest, WithoutAPhotographThereAreTheMapsAlone)
{
    m_window.setCompositeData(nullptr, m_maps, 0, {}, 2, 2, {namedChannel("A", "red"), namedChannel("B", "blue")}, 1);
    screen::show(m_window);
    EXPECT_EQ(colorOf(1, 1), rgb(255, 0, 0));
    select(2);
    m_window.m_pSetBackgroundTB->click();
    EXPECT_EQ(colorOf(0, 0), rgb(0, 0, 255));
}

TEST_F(CompositeWindowTest, ANewResultKeepsTheSelectedRowAndNothingElse)
{
    fillAndShow();
    select(1);
    m_window.m_pBrightnessSlider->setValue(10);
    fill();
    EXPECT_EQ(m_window.m_pImageList->currentRow(), 1);
    EXPECT_EQ(m_window.m_channels[1]->brightness, 1.0);
    EXPECT_EQ(m_window.m_pBrightnessSlider->value(), 100);
    m_window.setCompositeData(&m_photo, m_maps, 0, {}, 2, 2, {namedChannel("C", "red"), namedChannel("D", "blue")}, 1);
    EXPECT_EQ(m_window.m_pImageList->currentRow(), 0);
}

TEST_F(CompositeWindowTest, TheViewFollowsWhenTheWindowIsShown)
{
    fill();
    EXPECT_TRUE(m_window.m_pView->picture().isNull());
    screen::show(m_window);
    EXPECT_FALSE(m_window.m_pView->picture().isNull());
    const QImage first = m_window.m_pView->picture();
    m_window.hide();
    check(0, false);
    EXPECT_EQ(m_window.m_pView->picture(), first);
    screen::show(m_window);
    EXPECT_NE(m_window.m_pView->picture(), first);
    fill();
    QApplication::processEvents();
    EXPECT_EQ(m_window.m_pView->picture(), first);
}

TEST_F(CompositeWindowTest, ThePictureOfTheViewHasLabels)
{
    fillAndShow();
    const QImage with = m_window.getViewImage();
    EXPECT_EQ(with.size(), m_window.m_pView->size() * m_window.m_pView->devicePixelRatioF());
    m_window.m_pView->setLabelList({});
    EXPECT_NE(m_window.getViewImage(), with);
}

TEST_F(CompositeWindowTest, ClosingTellsOneTwice)
{
    QSignalSpy finished(&m_window, &QDialog::finished);
    fillAndShow();
    QTest::mouseClick(m_window.m_pCloseBtn, Qt::LeftButton);
    EXPECT_FALSE(m_window.isVisible());
    ASSERT_EQ(finished.size(), 2);
    EXPECT_EQ(finished[0][0].toInt(), 1);
    EXPECT_EQ(finished[1][0].toInt(), 1);
    screen::show(m_window);
    QTest::keyClick(&m_window, Qt::Key_Escape);
    EXPECT_FALSE(m_window.isVisible());
    EXPECT_EQ(finished.size(), 4);
    EXPECT_EQ(finished[2][0].toInt(), 1);
}

TEST(CompositeClosingTest, AListenerMayDeleteTheWindow)
{
    auto* pWindow = new SpUnmixCompositeWnd;
    QObject::connect(pWindow, &QDialog::finished, pWindow, [pWindow] { delete pWindow; });
    const QPointer<SpUnmixCompositeWnd> watched(pWindow);
    pWindow->reject();
    EXPECT_TRUE(watched.isNull());
}

TEST_F(CompositeWindowTest, TheOverviewIsOffered)
{
    QSignalSpy asked(&m_window, &SpUnmixCompositeWnd::updateImageCubeRGB);
    fillAndShow();
    m_window.m_pTransferBtn->click();
    EXPECT_EQ(asked.size(), 1);
}

TEST_F(CompositeWindowTest, TheToolbarHasItsButtonsInOrder)
{
    const QFrame* pFrame = m_window.m_pToolbarFrame;
    EXPECT_EQ(pFrame->objectName(), "SpUnmixCompositeWndToolbar");
    QStringList names;
    for (int i = 0; i < pFrame->layout()->count(); ++i) {
        const QWidget* pWidget = pFrame->layout()->itemAt(i)->widget();
        if (pWidget != nullptr) {
            EXPECT_EQ(pWidget->parentWidget(), pFrame); // who copies and prints looks for it
            const auto* pLabel = qobject_cast<const QLabel*>(pWidget);
            names << (pLabel != nullptr ? pLabel->text() : pWidget->objectName());
        }
    }
    EXPECT_EQ(names, (QStringList{" on ", "m_pSetBackgroundTB", "m_pTransferBtn", "m_pCopyToClipboardButton",
                                  "m_pExportGraphicButton", "m_pPrintButton"}));
    EXPECT_FALSE(m_window.m_pExportGraphicButton->isHidden());
    EXPECT_EQ(m_window.m_pPrintButton->shortcut(), QKeySequence("Ctrl+P"));
    EXPECT_EQ(m_window.m_pSetBackgroundTB->minimumWidth(), 100);
}

TEST_F(CompositeWindowTest, EveryControlHasAName)
{
    fillAndShow();
    QWidgetList widgets = m_window.findChildren<QWidget*>();
    for (QWidget* pWidget : widgets) {
        if (pWidget->focusPolicy() == Qt::NoFocus || pWidget->focusProxy() != nullptr || pWidget->isHidden()) {
            continue;
        }
        const QAccessibleInterface* pInterface = QAccessible::queryAccessibleInterface(pWidget);
        ASSERT_NE(pInterface, nullptr);
        EXPECT_NE(pInterface->text(QAccessible::Name), "")
            << pWidget->metaObject()->className() << " " << qPrintable(pWidget->objectName());
    }
}

TEST_F(CompositeWindowTest, TheTabKeyGoesThroughTheWindowAsItIsSeen)
{
    fillAndShow();
    QApplication::setActiveWindow(&m_window);
    const std::vector<const QWidget*> expected{m_window.m_pMinSpinBox,
                                               m_window.m_pMaxSpinBox,
                                               nullptr,
                                               nullptr, // the ends of the slider
                                               m_window.m_pColorBtn,
                                               m_window.m_pLogScaleChkBox,
                                               m_window.m_pBrightnessSlider,
                                               m_window.m_pBrightnessSpinBox,
                                               m_window.m_pLabelEdit,
                                               m_window.m_pCloseBtn,
                                               m_window.m_pView,
                                               m_window.m_pImageList};
    m_window.m_pImageList->setFocus();
    for (const QWidget* pNext : expected) {
        QTest::keyClick(m_window.focusWidget(), Qt::Key_Tab);
        if (pNext == nullptr) {
            EXPECT_TRUE(m_window.m_pDataSpanSlider->isAncestorOf(m_window.focusWidget()));
        } else {
            EXPECT_EQ(m_window.focusWidget(), pNext)
                << qPrintable(m_window.focusWidget()->objectName()) << " for " << qPrintable(pNext->objectName());
        }
    }
}

TEST_F(CompositeWindowTest, ControlsAreOffWithoutData)
{
    screen::show(m_window);
    EXPECT_FALSE(m_window.groupBox->isEnabled());
    m_window.m_pDataSpanSlider->setLowerValue(3);
    m_window.m_pBrightnessSpinBox->setValue(3.0);
    m_window.m_pSetBackgroundTB->click();
    m_window.setCurrentSpot(0);
    m_window.onTabSelected("Composite");
    EXPECT_TRUE(m_window.getCompositeImage().isNull());
}

struct LookCase
{
    const char* name;
    QSize size;
    bool dark;
};

std::ostream& operator<<(std::ostream& out, const LookCase& c)
{
    return out << c.name;
}

class CompositeLookTest : public CompositeWindowTest, public ::testing::WithParamInterface<LookCase>
{
};

TEST_P(CompositeLookTest, FitsItsTexts)
{
    const LookCase& c = GetParam();
    if (c.dark) {
        m_window.setPalette(screen::darkPalette());
        m_window.m_pToolbarFrame->setPalette(screen::darkPalette());
    }
    std::vector<std::vector<double>> rows(7, std::vector<double>(64 * 64));
    QList<CompositeChannel> channels;
    for (int i = 0; i < 7; ++i) {
        channels.append(namedChannel(i == 6 ? QString(200, 'W') : QString("Probe %1").arg(i), defaultSpectrumColor(i)));
        for (int p = 0; p < 64 * 64; ++p) {
            const double dx = p % 64 - 10.0 - 7.0 * i;
            const double dy = p / 64 - 32.0;
            rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(p)] =
                1.3e9 * std::exp(-(dx * dx + dy * dy) / 60.0);
        }
    }
    CILImage photo = stepBackground();
    m_window.setCompositeData(&photo, mapsOf(rows), 1, {}, 64, 64, channels, 1);
    m_window.resize(c.size);
    screen::show(m_window);
    QApplication::setActiveWindow(&m_window);
    m_window.m_pColorBtn->setFocus();
    QApplication::processEvents();
    screen::keep(screen::grab(m_window), c.name);
    m_window.m_pToolbarFrame->setParent(nullptr);
    screen::show(*m_window.m_pToolbarFrame);
    screen::keep(screen::grab(*m_window.m_pToolbarFrame), (std::string(c.name) + "_toolbar").c_str());
    for (const QLabel* pLabel : m_window.findChildren<QLabel*>()) {
        if (pLabel->isVisible()) {
            EXPECT_GE(pLabel->width(), pLabel->minimumSizeHint().width()) << qPrintable(pLabel->text());
        }
    }
    EXPECT_GE(m_window.m_pControlArea->viewport()->width(), m_window.m_pControls->minimumSizeHint().width());
}

INSTANTIATE_TEST_SUITE_P(Windows, CompositeLookTest,
                         ::testing::Values(LookCase{"composite", {900, 640}, false},
                                           LookCase{"composite_dark", {900, 640}, true},
                                           LookCase{"composite_small", {600, 440}, false}));

} // namespace
