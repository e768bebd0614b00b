// SPDX-License-Identifier: GPL-3.0-or-later
// The composite window when memory runs out: it is told, and what was there stays.
#include "windows_on_screen/CompositeFixture.h"
#include "windows_on_screen/HugeImage.h"

#include <QMenu>
#include <QToolButton>

namespace {

constexpr const char* kLowMemory = "SpUnmixCompositeWnd: low memory";

class CompositeMemoryTest : public CompositeWindowTest
{
protected:
    // Maps of one pixel in the mask of a picture that no memory holds.
    void fillHuge()
    {
        constexpr int kSide = 1 << 30;
        m_maps = mapsOf({{1.0}});
        m_window.setCompositeData(&m_photo, m_maps, 0, {0}, kSide, kSide, {namedChannel("Cy3", "red")}, 1);
    }
};

TEST_F(CompositeMemoryTest, APictureThatIsTooLargeIsToldAndTheOneBeforeStays)
{
    fillAndShow();
    const QImage before = m_window.getCompositeImage();
    LogCapture log;
    fillHuge();
    EXPECT_EQ(m_window.getCompositeImage(), before);
    EXPECT_EQ(log.count(kLowMemory, 2), 1) << log.reports();
    EXPECT_TRUE(m_window.isEnabled());
    EXPECT_EQ(m_window.m_pView->picture(), before);

    fill();
    EXPECT_EQ(m_window.getCompositeImage(), before);
    EXPECT_EQ(log.count(kLowMemory, 2), 1);
}

// Each control makes the picture anew.
TEST_F(CompositeMemoryTest, EveryControlTellsIt)
{
    fillHuge();
    screen::show(m_window);
    LogCapture log;
    m_window.m_pDataSpanSlider->setLowerValue(20);
    m_window.m_pDataSpanSlider->setUpperValue(80);
    m_window.m_pMinSpinBox->setValue(0.3);
    m_window.m_pMaxSpinBox->setValue(0.7);
    m_window.m_pBrightnessSlider->setValue(50);
    m_window.m_pBrightnessSpinBox->setValue(60.0);
    m_window.m_pLogScaleChkBox->setChecked(true);
    check(0, false);
    m_window.onTabSelected("Composite");
    EXPECT_EQ(log.count(kLowMemory, 2), 9) << log.reports();
    EXPECT_TRUE(m_window.isEnabled());
    EXPECT_TRUE(m_window.getCompositeImage().isNull());
    EXPECT_EQ(m_window.m_channels[0]->brightness, 0.6);
}

TEST_F(CompositeMemoryTest, WithoutMemoryForThePhotographTheResultBeforeStays)
{
    fillAndShow();
    const QImage before = m_window.getCompositeImage();
    HugeImage photo;
    LogCapture log;
    m_window.setCompositeData(&photo, m_maps, 2, {}, 2, 2, {namedChannel("A", "red"), namedChannel("B", "lime")}, 1);
    EXPECT_EQ(log.count(kLowMemory, 2), 1) << log.reports();
    EXPECT_EQ(item(0)->text(), "Cy5");
    EXPECT_EQ(m_window.m_pPhotoImage, &m_photo);
    EXPECT_EQ(m_window.m_pUnitCB->currentIndex(), 0);
    EXPECT_EQ(m_window.getCompositeImage(), before);
    m_window.m_pBrightnessSlider->setValue(10);
    EXPECT_NE(m_window.getCompositeImage(), before);
}

TEST_F(CompositeMemoryTest, WithoutMemoryForTheXRayThePhotographStaysChosen)
{
    fillAndShow();
    HugeImage xray;
    m_window.setXRayImage(&xray);
    const QList<QAction*> actions = m_window.m_pSetBackgroundTB->menu()->actions();
    ASSERT_EQ(actions.size(), 2);
    const QImage before = m_window.getCompositeImage();
    LogCapture log;
    m_window.m_pSetBackgroundTB->click();
    actions[1]->trigger();
    EXPECT_EQ(log.count(kLowMemory, 2), 2) << log.reports();
    EXPECT_TRUE(actions[0]->isChecked());
    EXPECT_FALSE(actions[1]->isChecked());
    EXPECT_EQ(m_window.m_pSetBackgroundTB->text(), "Photograph");
    EXPECT_EQ(item(2)->text(), "Photograph");
    EXPECT_EQ(m_window.m_backgroundImage.m_lWidth, 480);
    m_window.onTabSelected("Composite");
    EXPECT_EQ(m_window.getCompositeImage(), before);
}

} // namespace
