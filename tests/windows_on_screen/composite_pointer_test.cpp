// SPDX-License-Identifier: GPL-3.0-or-later
// What the composite tells of the pixel below the pointer.
#include "windows_on_screen/CompositeFixture.h"
#include "windows_on_screen/StatusTips.h"

#include "support/pointer.h"

#include <QCursor>

namespace {

class CompositePointerTest : public CompositeWindowTest
{
protected:
    // By a pixel of the composite, which shows a pixel of the maps at 240 x 240.
    void point(double dX, double dY) const
    {
        pointer::move(*m_window.m_pView, m_window.m_pView->toView(QPointF(dX, dY)));
    }

    StatusTips m_tips{m_window};
};

TEST_F(CompositePointerTest, TellsTheMapThatIsChosenInItsUnit)
{
    fillAndShow(2);
    point(300.0, 100.0);
    EXPECT_EQ(m_tips.last(), "Cy5   x 1, y 0: 40 (p/s/cm²/sr) / (µW/cm²)");
    select(1);
    point(100.0, 300.0);
    EXPECT_EQ(m_tips.last(), "Cy7   x 0, y 1: 4 (p/s/cm²/sr) / (µW/cm²)");
}

TEST_F(CompositePointerTest, TellsTheBackgroundWhenItIsChosen)
{
    m_photo.setValue(480 * 7 + 6, 51.0);
    fillAndShow(1);
    select(2);
    point(6.5, 7.5);
    EXPECT_EQ(m_tips.last(), "Photograph   x 6, y 7: 51 counts");
}

TEST_F(CompositePointerTest, BesideThePictureAndOutsideTheViewNothingIsTold)
{
    fillAndShow();
    point(100.0, 100.0);
    ASSERT_EQ(m_tips.last(), "Cy5   x 0, y 0: 0 counts");
    point(100.0, -2.0);
    EXPECT_EQ(m_tips.last(), "");
    point(100.0, 100.0);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_window.m_pView, &leave);
    EXPECT_EQ(m_tips.last(), "");
}

TEST_F(CompositePointerTest, TellsTheSpotThatIsShown)
{
    m_maps = mapsOf({{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0}});
    m_window.setCompositeData(&m_photo, m_maps, 0, {}, 2, 2, {namedChannel("Cy5", "red")}, 2);
    screen::show(m_window);
    m_window.m_pSpotSpinBox->setValue(2);
    point(300.0, 300.0);
    EXPECT_EQ(m_tips.last(), "Cy5   x 1, y 1: 8 counts");
}

// A window that goes hides its view, which is left by the pointer then.
TEST(CompositeEndTest, TheWindowMayGoWhileThePointerIsOverItsView)
{
    QWidget around;
    around.resize(900, 640);
    auto* pWindow = new SpUnmixCompositeWnd;
    pWindow->setParent(&around, Qt::Widget);
    pWindow->setGeometry(around.rect());
    CILImage photo = constantImage(480, 480, 50.0);
    pWindow->setCompositeData(&photo, mapsOf({{0.0, 40.0, 60.0, 100.0}}), 0, {}, 2, 2, {namedChannel("Cy5", "red")}, 1);
    screen::show(around);
    StatusTips tips(around);
    QCursor::setPos(pWindow->m_pView->mapToGlobal(pWindow->m_pView->rect().center()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return tips.last().startsWith("Cy5"); })) << qPrintable(tips.last());
    const int nTold = tips.m_told.size();
    delete pWindow;
    QApplication::processEvents();
    EXPECT_EQ(tips.m_told.size(), nTold);
}

TEST_F(CompositePointerTest, WithoutDataNothingIsTold)
{
    screen::show(m_window);
    Q_EMIT m_window.m_pView->pixelUnderPointer(0, 0);
    EXPECT_EQ(m_tips.last(), "");
}

} // namespace
