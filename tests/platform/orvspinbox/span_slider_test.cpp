// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/QSpanSlider.h"

#include <QAbstractSlider>
#include <QAccessible>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class SpanSliderTest : public ::testing::Test
{
protected:
    SpanSliderTest()
    {
        auto* pLayout = new QVBoxLayout(&m_window);
        m_pSlider = new QSpanSlider(Qt::Horizontal, &m_window);
        m_pBehind = new QLineEdit(&m_window);
        pLayout->addWidget(m_pSlider);
        pLayout->addWidget(m_pBehind);
        m_pSlider->setRange(0, 100);
        m_pSlider->setSpan(5, 95);
        m_pSlider->setMinimumWidth(218); // a groove of 200 pixels: two a step
        m_window.resize(m_window.minimumSizeHint());
        m_window.show();
        QApplication::setActiveWindow(&m_window);
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    }

    QAbstractSlider* handle(const char* pName) { return m_pSlider->findChild<QAbstractSlider*>(QLatin1String(pName)); }
    QAbstractSlider* lower() { return handle("lowerHandle"); }
    QAbstractSlider* upper() { return handle("upperHandle"); }
    QPair<int, int> span() const { return {m_pSlider->lowerValue(), m_pSlider->upperValue()}; }

    // Presses a handle in its middle and releases it `nDistance` pixels further.
    void drag(QAbstractSlider* pHandle, QPoint distance)
    {
        const QPoint from = pHandle->rect().center();
        QTest::mousePress(pHandle, Qt::LeftButton, {}, from);
        const QPoint to = m_pSlider->mapToGlobal(pHandle->mapTo(m_pSlider, from) + distance);
        QTest::mouseMove(pHandle, pHandle->mapFromGlobal(to));
        QMouseEvent move(QEvent::MouseMove, pHandle->mapFromGlobal(to), to, Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(pHandle, &move);
        QTest::mouseRelease(pHandle, Qt::LeftButton, {}, pHandle->mapFromGlobal(to));
    }

    using Span = QPair<int, int>;

    QWidget m_window;
    QSpanSlider* m_pSlider;
    QLineEdit* m_pBehind;
};

TEST_F(SpanSliderTest, TellsOfEachEndOnceWhenItChanges)
{
    QSignalSpy lowerSpy(m_pSlider, SIGNAL(lowerValueChanged(int)));
    QSignalSpy upperSpy(m_pSlider, SIGNAL(upperValueChanged(int)));
    m_pSlider->setLowerValue(20);
    m_pSlider->setLowerValue(20);
    m_pSlider->setUpperValue(60);
    EXPECT_EQ(span(), Span(20, 60));
    ASSERT_EQ(lowerSpy.size(), 1);
    EXPECT_EQ(lowerSpy[0][0].toInt(), 20);
    ASSERT_EQ(upperSpy.size(), 1);
    EXPECT_EQ(upperSpy[0][0].toInt(), 60);
}

TEST_F(SpanSliderTest, EndsMayMeetAndCannotCross)
{
    m_pSlider->setSpan(20, 60);
    m_pSlider->setLowerValue(60);
    EXPECT_EQ(span(), Span(60, 60));
    m_pSlider->setLowerValue(80);
    EXPECT_EQ(span(), Span(60, 60));
    m_pSlider->setSpan(20, 60);
    m_pSlider->setUpperValue(10);
    EXPECT_EQ(span(), Span(20, 20));
}

TEST_F(SpanSliderTest, StaysInItsRange)
{
    m_pSlider->setLowerValue(-7);
    m_pSlider->setUpperValue(107);
    EXPECT_EQ(span(), Span(0, 100));
    m_pSlider->setRange(10, 40);
    EXPECT_EQ(span(), Span(10, 40));
    m_pSlider->setRange(60, 50);
    EXPECT_EQ(m_pSlider->minimum(), 60);
    EXPECT_EQ(m_pSlider->maximum(), 60);
    EXPECT_EQ(span(), Span(60, 60));
}

TEST_F(SpanSliderTest, ARangeSetByItsEndsKeepsTheOther)
{
    m_pSlider->setMinimum(20);
    m_pSlider->setMaximum(300);
    EXPECT_EQ(m_pSlider->minimum(), 20);
    EXPECT_EQ(m_pSlider->maximum(), 300);
    m_pSlider->setMaximum(10);
    EXPECT_EQ(m_pSlider->minimum(), 10);
}

TEST_F(SpanSliderTest, BothEndsAtOnceGoWhereTheOtherWas)
{
    m_pSlider->setSpan(10, 30);
    m_pSlider->setSpan(50, 90);
    EXPECT_EQ(span(), Span(50, 90));
    m_pSlider->setSpan(20, 5);
    EXPECT_EQ(span(), Span(5, 20));
}

TEST_F(SpanSliderTest, BlockedSignalsLeaveTheHandlesInPlaceAndUsable)
{
    QSignalSpy lowerSpy(m_pSlider, SIGNAL(lowerValueChanged(int)));
    m_pSlider->blockSignals(true);
    m_pSlider->setLowerValue(30);
    m_pSlider->blockSignals(false);
    EXPECT_EQ(lowerSpy.size(), 0);
    EXPECT_EQ(lower()->value(), 30);
    QTest::keyClick(lower(), Qt::Key_Right);
    EXPECT_EQ(m_pSlider->lowerValue(), 31);
}

TEST_F(SpanSliderTest, TabGoesFromEndToEndAndOn)
{
    m_pSlider->setFocus();
    EXPECT_EQ(QApplication::focusWidget(), lower());
    QTest::keyClick(lower(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), upper());
    QTest::keyClick(upper(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), m_pBehind);
    QTest::keyClick(m_pBehind, Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), upper());
}

TEST_F(SpanSliderTest, KeysMoveTheFocusedEnd)
{
    m_pSlider->setFocus();
    QTest::keyClick(lower(), Qt::Key_Right);
    EXPECT_EQ(span(), Span(6, 95));
    QTest::keyClick(lower(), Qt::Key_PageUp);
    EXPECT_EQ(span(), Span(16, 95));
    QTest::keyClick(lower(), Qt::Key_PageDown);
    QTest::keyClick(lower(), Qt::Key_Left);
    EXPECT_EQ(span(), Span(5, 95));
    QTest::keyClick(lower(), Qt::Key_Home);
    EXPECT_EQ(span(), Span(0, 95));
    QTest::keyClick(lower(), Qt::Key_End);
    EXPECT_EQ(span(), Span(95, 95));
    upper()->setFocus();
    QTest::keyClick(upper(), Qt::Key_End);
    EXPECT_EQ(span(), Span(95, 100));
    QTest::keyClick(upper(), Qt::Key_Home);
    EXPECT_EQ(span(), Span(95, 95));
}

TEST_F(SpanSliderTest, KeysSentToTheSliderReachTheEndThatWasUsedLast)
{
    QTest::keyClick(m_pSlider, Qt::Key_Right);
    EXPECT_EQ(span(), Span(6, 95));
    upper()->setFocus();
    QTest::keyClick(m_pSlider, Qt::Key_Left);
    EXPECT_EQ(span(), Span(6, 94));
}

TEST_F(SpanSliderTest, AHandleFollowsThePointerAndStopsAtTheOther)
{
    m_pSlider->setSpan(20, 60);
    drag(lower(), QPoint(20, 0));
    EXPECT_EQ(span(), Span(30, 60));
    drag(lower(), QPoint(200, 0));
    EXPECT_EQ(span(), Span(60, 60));
    drag(upper(), QPoint(-20, 0));
    EXPECT_EQ(span(), Span(60, 60));
}

TEST_F(SpanSliderTest, EndsThatMeetCanEachBeTaken)
{
    m_pSlider->setSpan(50, 50);
    EXPECT_FALSE(lower()->geometry().intersects(upper()->geometry()));
    drag(upper(), QPoint(40, 0));
    EXPECT_EQ(span(), Span(50, 70));
    m_pSlider->setSpan(50, 50);
    drag(lower(), QPoint(-40, 0));
    EXPECT_EQ(span(), Span(30, 50));
}

TEST_F(SpanSliderTest, APressThatDoesNotMoveChangesNothing)
{
    QSignalSpy lowerSpy(m_pSlider, SIGNAL(lowerValueChanged(int)));
    QSignalSpy upperSpy(m_pSlider, SIGNAL(upperValueChanged(int)));
    drag(lower(), QPoint(0, 0));
    drag(upper(), QPoint(0, 0));
    EXPECT_EQ(lowerSpy.size() + upperSpy.size(), 0);
}

TEST_F(SpanSliderTest, AClickBesideTheHandlesBringsTheNearer)
{
    m_pSlider->setSpan(20, 60);
    QTest::mouseClick(m_pSlider, Qt::LeftButton, {}, QPoint(9 + 20, 11));
    EXPECT_EQ(span(), Span(10, 60));
    EXPECT_EQ(QApplication::focusWidget(), lower());
    QTest::mouseClick(m_pSlider, Qt::LeftButton, {}, QPoint(9 + 160, 11));
    EXPECT_EQ(span(), Span(10, 80));
    EXPECT_EQ(QApplication::focusWidget(), upper());
}

TEST_F(SpanSliderTest, VerticallyValuesGrowUpwards)
{
    m_pSlider->setOrientation(Qt::Vertical);
    m_pSlider->setMinimumWidth(0);
    m_window.resize(80, 300);
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_pSlider->height() > 200; }, 20000));
    m_pSlider->setSpan(20, 60);
    EXPECT_GT(lower()->y(), upper()->y());
    QTest::keyClick(lower(), Qt::Key_Up);
    EXPECT_EQ(span(), Span(21, 60));
    drag(upper(), QPoint(0, -20));
    EXPECT_EQ(m_pSlider->lowerValue(), 21);
    EXPECT_GT(m_pSlider->upperValue(), 60);
}

TEST_F(SpanSliderTest, InALayoutFromRightToLeftValuesGrowToTheLeft)
{
    m_window.setLayoutDirection(Qt::RightToLeft);
    m_pSlider->setSpan(20, 60);
    EXPECT_GT(lower()->x(), upper()->x());
    drag(lower(), QPoint(-20, 0));
    EXPECT_EQ(span(), Span(30, 60));
}

TEST_F(SpanSliderTest, AssistiveToolsSeeTwoNamedValuesWithWhereTheyMayGo)
{
    m_pSlider->setSpan(20, 60);
    for (QAbstractSlider* pHandle : {lower(), upper()}) {
        QAccessibleInterface* pInterface = QAccessible::queryAccessibleInterface(pHandle);
        ASSERT_NE(pInterface, nullptr);
        ASSERT_NE(pInterface->valueInterface(), nullptr);
        const bool bLower = pHandle == lower();
        EXPECT_EQ(pInterface->text(QAccessible::Name), bLower ? "Lower end" : "Upper end");
        EXPECT_EQ(pInterface->valueInterface()->currentValue().toInt(), bLower ? 20 : 60);
        EXPECT_EQ(pInterface->valueInterface()->minimumValue().toInt(), bLower ? 0 : 20);
        EXPECT_EQ(pInterface->valueInterface()->maximumValue().toInt(), bLower ? 60 : 100);
    }
}

TEST_F(SpanSliderTest, AFormSetsItByProperties)
{
    for (const auto& [pName, nValue] :
         {std::pair{"minimum", -10}, {"maximum", 10}, {"lowerValue", -3}, {"upperValue", 4}}) {
        EXPECT_TRUE(m_pSlider->setProperty(pName, nValue));
        EXPECT_EQ(m_pSlider->property(pName).toInt(), nValue);
    }
}

TEST_F(SpanSliderTest, ASlotThatDeletesTheSliderIsTheLastThatHears)
{
    QSignalSpy upperSpy(m_pSlider, SIGNAL(upperValueChanged(int)));
    QObject::connect(m_pSlider, &QSpanSlider::lowerValueChanged, m_pSlider, [this] { delete m_pSlider; });
    m_pSlider->setSpan(30, 40);
    EXPECT_EQ(upperSpy.size(), 0);
}

} // namespace
