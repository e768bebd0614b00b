// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/QDoubleSpinBoxEx.h"

#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class DoubleSpinBoxExTest : public ::testing::Test
{
protected:
    DoubleSpinBoxExTest()
    {
        m_box.setLocale(QLocale::c());
        m_box.setRange(0.0, 2e9);
        m_box.show();
        QApplication::setActiveWindow(&m_box);
        m_box.setFocus();
    }

    void type(const char* pText)
    {
        m_box.selectAll();
        QTest::keyClicks(&m_box, QString::fromLatin1(pText));
        QTest::keyClick(&m_box, Qt::Key_Return);
    }

    QString text() const { return m_box.findChild<QLineEdit*>()->text(); }

    QDoubleSpinBoxEx m_box;
};

TEST_F(DoubleSpinBoxExTest, ShowsDecimalsUntilTheExponentIsTurnedOn)
{
    EXPECT_FALSE(m_box.m_bExponentDisplay);
    m_box.setValue(1.3e9);
    EXPECT_EQ(text(), "1300000000.00");
    m_box.m_bExponentDisplay = true;
    m_box.setValue(m_box.value());
    EXPECT_EQ(text(), "1.3e+09");
    m_box.m_bExponentDisplay = false;
    m_box.setValue(m_box.value());
    EXPECT_EQ(text(), "1300000000.00");
}

TEST_F(DoubleSpinBoxExTest, TakesEitherFormWhateverItShows)
{
    for (const bool bExponent : {false, true}) {
        m_box.m_bExponentDisplay = bExponent;
        type("1.25e6");
        EXPECT_DOUBLE_EQ(m_box.value(), 1.25e6);
        type("987.5");
        EXPECT_DOUBLE_EQ(m_box.value(), 987.5);
    }
}

TEST_F(DoubleSpinBoxExTest, TakesThePointAndTheCommaOfTheLocale)
{
    m_box.setLocale(QLocale(QLocale::German));
    type("109,8");
    EXPECT_DOUBLE_EQ(m_box.value(), 109.8);
    EXPECT_EQ(text(), "109,80");
    type("54.25");
    EXPECT_DOUBLE_EQ(m_box.value(), 54.25);
    m_box.m_bExponentDisplay = true;
    type("1,5e8");
    EXPECT_DOUBLE_EQ(m_box.value(), 1.5e8);
    EXPECT_EQ(text(), "1,5e+08");
}

TEST_F(DoubleSpinBoxExTest, EnterWithoutAnEditKeepsTheDigitsThatAreNotShown)
{
    m_box.m_bExponentDisplay = true;
    m_box.setValue(123456789.25);
    EXPECT_EQ(text(), "1.23457e+08");
    QTest::keyClick(&m_box, Qt::Key_Return);
    EXPECT_DOUBLE_EQ(m_box.value(), 123456789.25);
    m_box.clearFocus();
    EXPECT_DOUBLE_EQ(m_box.value(), 123456789.25);
}

TEST_F(DoubleSpinBoxExTest, StepsFromTheWholeValue)
{
    m_box.m_bExponentDisplay = true;
    m_box.setSingleStep(1.0);
    m_box.setValue(123456789.0);
    QTest::keyClick(&m_box, Qt::Key_Up);
    EXPECT_DOUBLE_EQ(m_box.value(), 123456790.0);
}

TEST_F(DoubleSpinBoxExTest, ANumberOutsideTheRangeGoesToItsEndOnceItIsComplete)
{
    m_box.setRange(0.0, 10.0);
    type("13e-1");
    EXPECT_DOUBLE_EQ(m_box.value(), 1.3);
    type("150");
    EXPECT_DOUBLE_EQ(m_box.value(), 10.0);
    type("1e400");
    EXPECT_DOUBLE_EQ(m_box.value(), 10.0);
    m_box.setRange(-5.0, 10.0);
    type("-1e9");
    EXPECT_DOUBLE_EQ(m_box.value(), -5.0);
}

TEST_F(DoubleSpinBoxExTest, RefusesWhatIsNoNumber)
{
    m_box.setValue(5.0);
    type("nan");
    EXPECT_DOUBLE_EQ(m_box.value(), 5.0);
    EXPECT_EQ(text(), "5.00");
    // What stood there last as a number counts.
    type("1e");
    EXPECT_DOUBLE_EQ(m_box.value(), 1.0);
    EXPECT_EQ(text(), "1.00");
}

TEST_F(DoubleSpinBoxExTest, RoundsWhatIsTypedToTheDecimals)
{
    type("1.23456");
    EXPECT_DOUBLE_EQ(m_box.value(), 1.23);
    m_box.setDecimals(10);
    type("1.5e-9");
    EXPECT_DOUBLE_EQ(m_box.value(), 1.5e-9);
}

TEST_F(DoubleSpinBoxExTest, ReadsBehindAPrefixAndBeforeASuffix)
{
    m_box.setPrefix("about ");
    m_box.setSuffix(" nm");
    m_box.setValue(3.0);
    type("1e2");
    EXPECT_DOUBLE_EQ(m_box.value(), 100.0);
    EXPECT_EQ(text(), "about 100.00 nm");
}

} // namespace
