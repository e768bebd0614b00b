// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVMessageBox.h"
#include "host/CORVPaintQImageView.h"

#include "platform/orvwidgets/recordedResponder.h"
#include "support/pointer.h"
#include "support/screen.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>

namespace {

QImage grey(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(QColor(90, 90, 90));
    return image;
}

class PaintQImageViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_view.resize(400, 300);
        m_view.replaceImage(grey(40, 20)); // shown at (0, 50), ten view pixels each
        m_view.setUpChannelColor(1, QColor("lime"), true);
        m_view.setUpChannelColor(2, QColor("red"), true);
        m_view.setCurrentChannel(1);
        m_view.setPaintEnabled(true);
        screen::show(m_view);
    }
    static QPointF at(int x, int y) { return {10.0 * x + 5.0, 50.0 + 10.0 * y + 5.0}; }
    QList<int> painted(unsigned char channel) const
    {
        QList<int> indices;
        m_view.getPaintPixelIndex(channel, indices);
        return indices;
    }
    // The last number that signalDrawComplete sent, and how often it did.
    std::pair<int, int> sent() const
    {
        return {m_complete.isEmpty() ? 0 : m_complete.last().at(0).toInt(), m_complete.count()};
    }
    QList<int> told() const
    {
        QList<int> counts;
        for (const QList<QVariant>& signal : m_pixels) {
            counts << signal.at(0).toInt();
        }
        return counts;
    }
    QAction* menuAction(const QString& text)
    {
        auto* pMenu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (pMenu != nullptr) {
            for (QAction* pAction : pMenu->actions()) {
                if (pAction->text().contains(text)) {
                    return pAction;
                }
            }
        }
        return nullptr;
    }

    CORVPaintQImageView m_view;
    QSignalSpy m_complete{&m_view, &CORVPaintQImageView::signalDrawComplete};
    QSignalSpy m_cursor{&m_view, &CORVPaintQImageView::updateCursorPosition};
    QSignalSpy m_pens{&m_view, &CORVPaintQImageView::penChanged};
    QSignalSpy m_pixels{&m_view, &CORVPaintQImageView::paintedPixelsChanged};
};

TEST_F(PaintQImageViewTest, ALeftDragPaintsTheCurrentChannel)
{
    pointer::drag(m_view, at(2, 3), at(5, 3));
    EXPECT_EQ(painted(1), (QList<int>{122, 123, 124, 125}));
    EXPECT_TRUE(painted(2).isEmpty());
    EXPECT_EQ(sent(), std::make_pair(1, 1));
    QList<int> current;
    EXPECT_EQ(m_view.getCurrentChannel(current), 1);
    EXPECT_EQ(current, painted(1));
}

TEST_F(PaintQImageViewTest, NothingIsSentBeforeTheEndOfAStroke)
{
    pointer::press(m_view, at(2, 3));
    pointer::move(m_view, at(4, 3), Qt::LeftButton);
    EXPECT_EQ(m_complete.count(), 0);
    pointer::release(m_view, at(4, 3));
    EXPECT_EQ(sent(), std::make_pair(1, 1));
}

TEST_F(PaintQImageViewTest, ShiftOrTheRightButtonErases)
{
    pointer::drag(m_view, at(2, 3), at(9, 3));
    pointer::drag(m_view, at(2, 3), at(3, 3), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(painted(1), (QList<int>{124, 125, 126, 127, 128, 129}));
    EXPECT_EQ(sent(), std::make_pair(1, 2));
    pointer::drag(m_view, at(9, 3), at(8, 3), Qt::RightButton);
    EXPECT_EQ(painted(1), (QList<int>{124, 125, 126, 127}));
    EXPECT_EQ(sent(), std::make_pair(1, 3));
}

TEST_F(PaintQImageViewTest, PensAreOfPixelsOfThePicture)
{
    QString pen = "Medium";
    m_view.setPenSize(1, pen);
    QTest::mouseClick(&m_view, Qt::LeftButton, Qt::NoModifier, at(10, 10).toPoint());
    EXPECT_EQ(painted(1).size(), 9);
    m_view.setPenSize(1, "Import");
    QTest::mouseClick(&m_view, Qt::LeftButton, Qt::NoModifier, at(20, 10).toPoint());
    EXPECT_EQ(painted(1).size(), 18) << "another name leaves the pen";
}

TEST_F(PaintQImageViewTest, BracketsTakeTheNextPenOfTheCurrentChannel)
{
    m_view.setPenSize(1, "Thin");
    QTest::keyClick(&m_view, Qt::Key_BracketRight);
    ASSERT_EQ(m_pens.count(), 1);
    EXPECT_EQ(m_pens.last().at(0).toString(), "Medium");
    QTest::mouseClick(&m_view, Qt::LeftButton, Qt::NoModifier, at(10, 10).toPoint());
    EXPECT_EQ(painted(1).size(), 9);
    QTest::keyClick(&m_view, Qt::Key_BracketRight, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(m_pens.last().at(0).toString(), "Thick") << "as some keyboards type it";
    QTest::keyClick(&m_view, Qt::Key_BracketRight);
    EXPECT_EQ(m_pens.count(), 2) << "there is none thicker";
    QTest::keyClick(&m_view, Qt::Key_BracketLeft);
    QTest::keyClick(&m_view, Qt::Key_BracketLeft);
    QTest::keyClick(&m_view, Qt::Key_BracketLeft);
    EXPECT_EQ(m_pens.count(), 4);
    QTest::mouseClick(&m_view, Qt::LeftButton, Qt::NoModifier, at(30, 10).toPoint());
    EXPECT_EQ(painted(1).size(), 10);
    m_view.setPaintEnabled(false);
    QTest::keyClick(&m_view, Qt::Key_BracketRight);
    EXPECT_EQ(m_pens.count(), 4);
}

TEST_F(PaintQImageViewTest, ADragFillsARectangleFromPixelToPixelOnItsRelease)
{
    QTest::keyClick(&m_view, Qt::Key_R);
    EXPECT_EQ(m_view.paintShape(), CORVPaintQImageView::Rectangle);
    pointer::press(m_view, at(5, 6));
    pointer::move(m_view, at(3, 4), Qt::LeftButton);
    EXPECT_TRUE(painted(1).isEmpty()) << "an outline only";
    EXPECT_EQ(m_complete.count(), 0);
    pointer::release(m_view, at(3, 4));
    EXPECT_EQ(painted(1), (QList<int>{163, 164, 165, 203, 204, 205, 243, 244, 245}));
    EXPECT_EQ(sent(), std::make_pair(1, 1));
    pointer::drag(m_view, at(4, 5), at(20, 9), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(painted(1), (QList<int>{163, 164, 165, 203, 243}));
    pointer::drag(m_view, at(0, 0), at(3, 9), Qt::RightButton);
    EXPECT_EQ(painted(1), (QList<int>{164, 165}));
    EXPECT_EQ(sent(), std::make_pair(1, 3));
    QTest::keyClick(&m_view, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&m_view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(painted(1).size(), 9);
    QTest::keyClick(&m_view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(painted(1).isEmpty());
    EXPECT_EQ(sent(), std::make_pair(1, 6));
}

TEST_F(PaintQImageViewTest, AnEllipseIsFilledAndTheBrushComesBack)
{
    QTest::keyClick(&m_view, Qt::Key_E);
    pointer::drag(m_view, at(2, 2), at(6, 6));
    EXPECT_EQ(painted(1).size(), 21) << "all but the corners";
    EXPECT_FALSE(painted(1).contains(2 * 40 + 2));
    QTest::keyClick(&m_view, Qt::Key_B);
    pointer::drag(m_view, at(10, 2), at(12, 2));
    EXPECT_EQ(painted(1).size(), 24);
}

TEST_F(PaintQImageViewTest, AShapeBeyondThePictureFillsWhatLiesInIt)
{
    m_view.setPaintShape(CORVPaintQImageView::Rectangle);
    pointer::drag(m_view, {5, 10}, at(1, 1));
    EXPECT_EQ(painted(1), (QList<int>{0, 1, 40, 41}));
}

TEST_F(PaintQImageViewTest, EscapeGivesAShapeUpAndIsNobodyElsesMeanwhile)
{
    m_view.setPaintShape(CORVPaintQImageView::Rectangle);
    pointer::press(m_view, at(3, 3));
    pointer::move(m_view, at(6, 6), Qt::LeftButton);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&m_view, &escape);
    EXPECT_TRUE(escape.isAccepted());
    pointer::release(m_view, at(6, 6));
    EXPECT_TRUE(painted(1).isEmpty());
    EXPECT_EQ(m_complete.count(), 0);
    QKeyEvent another(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&m_view, &another);
    EXPECT_FALSE(another.isAccepted()) << "without a shape it is the window's";
}

TEST_F(PaintQImageViewTest, AShapeThatIsInterruptedCountsForNothing)
{
    m_view.setPaintShape(CORVPaintQImageView::Ellipse);
    for (const auto& interrupt : std::initializer_list<std::function<void()>>{
             [this] { m_view.setPaintEnabled(false); }, [this] { m_view.setCurrentChannel(2); },
             [this] { m_view.replaceImage(grey(41, 20)); }}) {
        m_view.setPaintEnabled(true);
        m_view.setCurrentChannel(1);
        pointer::press(m_view, at(3, 3));
        pointer::move(m_view, at(9, 9), Qt::LeftButton);
        interrupt();
        pointer::release(m_view, at(9, 9));
        EXPECT_TRUE(painted(1).isEmpty());
        EXPECT_TRUE(painted(2).isEmpty());
        EXPECT_EQ(m_complete.count(), 0);
    }
}

TEST_F(PaintQImageViewTest, TheNumberOfPaintedPixelsIsToldWhileItGrows)
{
    m_pixels.clear();
    pointer::press(m_view, at(2, 3));
    pointer::move(m_view, at(4, 3), Qt::LeftButton);
    EXPECT_EQ(told(), (QList<int>{1, 3}));
    pointer::release(m_view, at(4, 3));
    QTest::keyClick(&m_view, Qt::Key_Z, Qt::ControlModifier);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&m_view, &leave);
    pointer::move(m_view, at(5, 3));
    m_view.setPaintEnabled(false);
    EXPECT_EQ(told(), (QList<int>{1, 3, 0, -1, 0, -1}));
}

TEST_F(PaintQImageViewTest, TheMenuOffersShapesAndPens)
{
    QContextMenuEvent open(QContextMenuEvent::Keyboard, QPoint(5, 5));
    QApplication::sendEvent(&m_view, &open);
    ASSERT_NE(menuAction("&Ellipse"), nullptr);
    EXPECT_TRUE(menuAction("&Brush")->isChecked());
    menuAction("&Ellipse")->trigger();
    EXPECT_FALSE(menuAction("Pen\t[")->isEnabled());
    menuAction("Pen\t]")->trigger();
    QApplication::activePopupWidget()->close();
    EXPECT_EQ(m_view.paintShape(), CORVPaintQImageView::Ellipse);
    EXPECT_EQ(m_pens.last().at(0).toString(), "Medium");
    m_view.setPaintEnabled(false);
    QApplication::sendEvent(&m_view, &open);
    ASSERT_NE(menuAction("&Ellipse"), nullptr);
    EXPECT_FALSE(menuAction("&Ellipse")->isEnabled());
    EXPECT_FALSE(menuAction("Pen\t]")->isEnabled());
    QApplication::activePopupWidget()->close();
}

TEST_F(PaintQImageViewTest, UndoTakesAStrokeOfTheCurrentChannelBackAndSendsOne)
{
    pointer::drag(m_view, at(2, 3), at(5, 3));
    m_view.setCurrentChannel(2);
    pointer::drag(m_view, at(2, 5), at(5, 5));
    m_view.setCurrentChannel(1);
    m_complete.clear();
    QTest::keyClick(&m_view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(painted(1).isEmpty());
    EXPECT_EQ(painted(2).size(), 4);
    EXPECT_EQ(sent(), std::make_pair(1, 1));
    QTest::keyClick(&m_view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(sent(), std::make_pair(1, 1)) << "nothing is left to take back";
}

TEST_F(PaintQImageViewTest, NothingIsPaintedWhilePaintingIsOffOrWithoutAChannel)
{
    m_view.setPaintEnabled(false);
    pointer::drag(m_view, at(2, 3), at(5, 3));
    m_view.setPaintEnabled(true);
    m_view.setCurrentChannel(9);
    pointer::drag(m_view, at(2, 3), at(5, 3));
    QList<int> current{1};
    EXPECT_EQ(m_view.getCurrentChannel(current), 0);
    EXPECT_TRUE(current.isEmpty());
    m_view.setCurrentChannel(0);
    pointer::drag(m_view, at(2, 3), at(5, 3));
    EXPECT_TRUE(painted(1).isEmpty());
    EXPECT_EQ(m_complete.count(), 0);
}

TEST_F(PaintQImageViewTest, AStrokeFromBesideThePictureGivesOnlyItsPixels)
{
    pointer::drag(m_view, {5, 10}, {5, 290});
    EXPECT_EQ(painted(1).size(), 20);
    for (const int index : painted(1)) {
        EXPECT_EQ(index % 40, 0);
    }
}

TEST_F(PaintQImageViewTest, ThePixelUnderThePointerIsToldOnceAndItsLeavingToo)
{
    m_view.setPaintEnabled(false);
    pointer::move(m_view, at(3, 4));
    pointer::move(m_view, at(3, 4) + QPointF(1, 1));
    ASSERT_EQ(m_cursor.count(), 1);
    EXPECT_EQ(m_cursor.last(), (QList<QVariant>{3, 4}));
    pointer::move(m_view, {200, 20});
    ASSERT_EQ(m_cursor.count(), 2) << "beside the picture";
    EXPECT_EQ(m_cursor.last(), (QList<QVariant>{-1, -1}));
    pointer::move(m_view, at(5, 4));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&m_view, &leave);
    ASSERT_EQ(m_cursor.count(), 4) << "out of the view";
    EXPECT_EQ(m_cursor.last(), (QList<QVariant>{-1, -1}));
}

TEST_F(PaintQImageViewTest, TakingAToolUpTakesTheCursorAway)
{
    m_view.setPaintEnabled(false);
    pointer::move(m_view, at(3, 4));
    m_view.setPaintEnabled(true);
    ASSERT_EQ(m_cursor.count(), 2);
    EXPECT_EQ(m_cursor.last(), (QList<QVariant>{-1, -1}));
    pointer::move(m_view, at(7, 4));
    EXPECT_EQ(m_cursor.count(), 2);
}

TEST_F(PaintQImageViewTest, APictureOfAnotherSizeDropsTheRegionsNoPictureIsRefused)
{
    pointer::drag(m_view, at(2, 3), at(5, 3));
    EXPECT_TRUE(m_view.replaceImage(grey(40, 20)));
    EXPECT_EQ(painted(1).size(), 4);
    EXPECT_FALSE(m_view.replaceImage(QImage()));
    EXPECT_EQ(m_view.picture().size(), QSize(40, 20));
    EXPECT_TRUE(m_view.replaceImage(grey(20, 40)));
    EXPECT_TRUE(painted(1).isEmpty());
    EXPECT_TRUE(m_view.containsChannel(1));
}

TEST_F(PaintQImageViewTest, ChannelsComeAndGo)
{
    EXPECT_TRUE(m_view.containsChannel(2));
    EXPECT_FALSE(m_view.containsChannel(0));
    pointer::drag(m_view, at(2, 3), at(5, 3));
    m_view.removeChannelColor(1, QColor("lime"));
    m_view.resetMask(1);
    EXPECT_FALSE(m_view.containsChannel(1));
    EXPECT_TRUE(painted(1).isEmpty());
}

TEST_F(PaintQImageViewTest, ARightClickOpensTheMenuAndErasesNothing)
{
    pointer::drag(m_view, at(2, 3), at(5, 3));
    pointer::press(m_view, at(3, 3), Qt::RightButton);
    pointer::release(m_view, at(3, 3), Qt::RightButton);
    EXPECT_EQ(painted(1).size(), 4);
    ASSERT_NE(menuAction("Take Stroke Back"), nullptr);
    EXPECT_TRUE(menuAction("Take Stroke Back")->isEnabled());
    QApplication::activePopupWidget()->close();
}

TEST_F(PaintQImageViewTest, TheRegionCountsForEverySpectrumOnlyFromTheMenuAndAfterAQuestion)
{
    QContextMenuEvent open(QContextMenuEvent::Keyboard, QPoint(5, 5));
    QApplication::sendEvent(&m_view, &open);
    ASSERT_NE(menuAction("Use this region for every spectrum"), nullptr);
    EXPECT_FALSE(menuAction("Use this region for every spectrum")->isEnabled()) << "no region";
    QApplication::activePopupWidget()->close();
    pointer::drag(m_view, at(2, 3), at(5, 3));
    m_complete.clear();
    for (const int answer : {CORVMessageBox::NoButtonAnswer, CORVMessageBox::YesButton}) {
        const RecordedResponder responder(answer);
        QApplication::sendEvent(&m_view, &open);
        QAction* pAction = menuAction("Use this region for every spectrum");
        ASSERT_NE(pAction, nullptr);
        ASSERT_TRUE(pAction->isEnabled());
        pAction->trigger();
        QApplication::activePopupWidget()->close();
        EXPECT_EQ(responder.asked().size(), 1);
        EXPECT_EQ(sent(), answer == CORVMessageBox::YesButton ? std::make_pair(2, 1) : std::make_pair(0, 0));
    }
}

TEST_F(PaintQImageViewTest, AReleaseThatIsLostDoesNotHoldTheNextStrokeUp)
{
    pointer::press(m_view, at(2, 3));
    m_view.setEnabled(false);
    m_view.setEnabled(true);
    pointer::move(m_view, at(8, 3));
    EXPECT_EQ(painted(1), QList<int>{122});
    pointer::drag(m_view, at(2, 5), at(3, 5));
    EXPECT_EQ(painted(1).size(), 3);
    EXPECT_EQ(m_complete.count(), 2);
}

TEST_F(PaintQImageViewTest, PaintsOnAZoomedPicture)
{
    m_view.setPaintEnabled(false);
    pointer::wheel(m_view, {200, 150}, 480);
    EXPECT_GT(m_view.zoom(), 20.0);
    m_view.setPaintEnabled(true);
    QPoint pixel;
    ASSERT_TRUE(m_view.pixelAt({13, 17}, pixel));
    QTest::mouseClick(&m_view, Qt::LeftButton, Qt::NoModifier, QPoint(13, 17));
    EXPECT_EQ(painted(1), QList<int>{pixel.y() * 40 + pixel.x()});
}

TEST_F(PaintQImageViewTest, ShowsRegionsLabelsAndTheBrush)
{
    QString pen = "Thick";
    m_view.setPenSize(1, pen);
    m_view.setPenSize(2, pen);
    pointer::drag(m_view, at(6, 6), at(20, 12));
    m_view.setCurrentChannel(2);
    pointer::drag(m_view, at(30, 4), at(16, 10));
    pointer::move(m_view, at(33, 14));
    m_view.setLabelList({{"Pseudo Color", QColor("lime")}, {"black", QColor("black")}});
    const QImage seen = screen::grab(m_view);
    const double ratio = seen.devicePixelRatio();
    const auto color = [&](const QPointF& p) { return seen.pixelColor((p * ratio).toPoint()); };
    EXPECT_GT(color(at(6, 6)).green(), 150);
    EXPECT_GT(color(at(30, 4)).red(), 150);
    EXPECT_EQ(color(at(36, 2)), QColor(90, 90, 90));
    screen::keep(seen, "paint");
    m_view.setPaintShape(CORVPaintQImageView::Ellipse);
    pointer::press(m_view, at(22, 8));
    pointer::move(m_view, at(34, 17), Qt::LeftButton);
    screen::keep(screen::grab(m_view), "paint_ellipse");
    pointer::release(m_view, at(34, 17));
}

} // namespace
