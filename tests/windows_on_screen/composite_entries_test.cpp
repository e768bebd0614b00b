// SPDX-License-Identifier: GPL-3.0-or-later
// The controls of the composite window: what they show of the selected entry, and what they do to the picture.
#include "windows_on_screen/CompositeFixture.h"

#include "platform/orvutils/MessageResponder.h"
#include "support/ForeignLocale.h"

#include <QPushButton>

#include <memory>

namespace {

TEST_F(CompositeWindowTest, TheSelectedEntryFillsTheControls)
{
    fillAndShow();
    EXPECT_EQ(m_window.m_pDataSpanSlider->lowerValue(), 10);
    EXPECT_EQ(m_window.m_pDataSpanSlider->upperValue(), 90);
    EXPECT_EQ(m_window.m_pMinSpinBox->value(), 10.0);
    EXPECT_EQ(m_window.m_pMaxSpinBox->value(), 90.0);
    EXPECT_EQ(m_window.m_pMaxSpinBox->maximum(), 100.0);
    EXPECT_EQ(m_window.m_pMaxSpinBox->singleStep(), 5.0);
    EXPECT_EQ(m_window.m_pLabelEdit->text(), "Cy5");
    EXPECT_EQ(m_window.m_pColorBtn->styleSheet(), "QPushButton{ background-color: rgb(255,0,0) }");
    m_window.m_pImageList->setFocus();
    QTest::keyClick(m_window.m_pImageList, Qt::Key_Down);
    EXPECT_EQ(m_window.m_pLabelEdit->text(), "Cy7");
    EXPECT_EQ(m_window.m_pMaxSpinBox->value(), 9.0);
    EXPECT_TRUE(m_window.m_pColorBtn->isEnabled());
    QTest::keyClick(m_window.m_pImageList, Qt::Key_Down);
    EXPECT_EQ(m_window.m_pLabelEdit->text(), "Photograph");
    EXPECT_FALSE(m_window.m_pColorBtn->isEnabled());
    EXPECT_FALSE(m_window.m_pLabelEdit->isEnabled());
    EXPECT_EQ(m_window.m_pBrightnessSlider->value(), 35);
}

TEST_F(CompositeWindowTest, TheSliderSetsTheWindowOfTheChannel)
{
    fillAndShow();
    m_window.m_pDataSpanSlider->setLowerValue(50);
    EXPECT_EQ(m_window.m_channels[0]->minFraction, 0.5);
    EXPECT_EQ(m_window.m_pMinSpinBox->value(), 50.0);
    m_window.m_pDataSpanSlider->setUpperValue(60);
    EXPECT_EQ(m_window.m_channels[0]->maxFraction, 0.6);
    EXPECT_EQ(m_window.m_pMaxSpinBox->value(), 60.0);
    check(1, false);
    check(2, false);
    EXPECT_EQ(colorOf(1, 0), rgb(0, 0, 0));   // 40 of 100 is below the window
    EXPECT_EQ(colorOf(0, 1), rgb(255, 0, 0)); // 60 is its upper end
}

TEST_F(CompositeWindowTest, SpinBoxesSetTheWindowOfTheChannel)
{
    fillAndShow();
    m_window.m_pMinSpinBox->setValue(33.75);
    EXPECT_EQ(m_window.m_channels[0]->minFraction, 0.3375);
    EXPECT_EQ(m_window.m_pDataSpanSlider->lowerValue(), 33);
    m_window.m_pMaxSpinBox->setValue(66.5);
    EXPECT_EQ(m_window.m_channels[0]->maxFraction, 0.665);
    EXPECT_EQ(m_window.m_pDataSpanSlider->upperValue(), 66);
}

TEST_F(CompositeWindowTest, AMinimumAboveTheMaximumKeepsTheSliderInOrder)
{
    fillAndShow();
    m_window.m_pMinSpinBox->setValue(95.0);
    EXPECT_EQ(m_window.m_channels[0]->minFraction, 0.95);
    EXPECT_EQ(m_window.m_pDataSpanSlider->lowerValue(), 90);
    EXPECT_EQ(m_window.m_pDataSpanSlider->upperValue(), 90);
    select(1);
    select(0);
    EXPECT_EQ(m_window.m_pMinSpinBox->value(), 95.0);
    EXPECT_EQ(m_window.m_pMaxSpinBox->value(), 90.0);
    EXPECT_EQ(m_window.m_pDataSpanSlider->upperValue(), 90);
}

// Each key makes a picture, while which the window is disabled.
TEST_F(CompositeWindowTest, ANumberCanBeTypedDigitByDigit)
{
    m_maps = mapsOf({{0.0, 400.0, 600.0, 1000.0}, {10.0, 6.0, 4.0, 0.0}});
    fillAndShow();
    QApplication::setActiveWindow(&m_window);
    m_window.m_pMinSpinBox->setFocus();
    m_window.m_pMinSpinBox->selectAll();
    for (const char key : {'1', '2', '3'}) {
        QTest::keyClick(QApplication::focusWidget(), key);
    }
    EXPECT_EQ(QApplication::focusWidget(), m_window.m_pMinSpinBox);
    EXPECT_EQ(m_window.m_pMinSpinBox->value(), 123.0);
    EXPECT_EQ(m_window.m_channels[0]->minFraction, 0.123);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(m_window.isVisible());
}

TEST_F(CompositeWindowTest, NumbersAreTypedInTheLanguageOfTheUserOrWithAPoint)
{
    const testsupport::ForeignLocale german;
    SpUnmixCompositeWnd window;
    window.setCompositeData(&m_photo, m_maps, 0, {}, 2, 2, {namedChannel("A", "red"), namedChannel("B", "blue")}, 1);
    screen::show(window);
    QApplication::setActiveWindow(&window);
    for (const char* typed : {"12,5", "12.5"}) {
        window.m_pMinSpinBox->setValue(0.0);
        window.m_pMinSpinBox->setFocus();
        window.m_pMinSpinBox->selectAll();
        QTest::keyClicks(window.m_pMinSpinBox, typed);
        EXPECT_EQ(window.m_pMinSpinBox->value(), 12.5) << typed;
    }
}

TEST_F(CompositeWindowTest, UnitsOtherThanCountsHaveAnExponent)
{
    m_maps = mapsOf({{0.0, 1e9, 2e9, 4e9}, {10.0, 6.0, 4.0, 0.0}});
    fillAndShow(1);
    EXPECT_TRUE(m_window.m_pMinSpinBox->m_bExponentDisplay);
    EXPECT_EQ(m_window.m_pMaxSpinBox->text(), "3.6e+09");
    QApplication::setActiveWindow(&m_window);
    m_window.m_pMinSpinBox->setFocus();
    m_window.m_pMinSpinBox->selectAll();
    for (const char key : {'1', '.', '5', 'e', '9'}) {
        QTest::keyClick(QApplication::focusWidget(), key);
    }
    EXPECT_EQ(m_window.m_pMinSpinBox->value(), 1.5e9);
    select(2);
    EXPECT_FALSE(m_window.m_pMinSpinBox->m_bExponentDisplay);
    fill(3);
    EXPECT_EQ(m_window.m_pMaxSpinBox->decimals(), 10);
}

TEST_F(CompositeWindowTest, AnEmptyMapHasARangeWithoutWidth)
{
    m_maps = mapsOf({{0.0, 0.0, 0.0, 0.0}, {10.0, 6.0, 4.0, 0.0}});
    fillAndShow();
    EXPECT_EQ(m_window.m_pMaxSpinBox->maximum(), 0.0);
    m_window.m_pMinSpinBox->setValue(3.0);
    EXPECT_EQ(m_window.m_channels[0]->minFraction, 0.1);
    m_window.m_pDataSpanSlider->setLowerValue(20);
    check(2, false);
    EXPECT_EQ(colorOf(0, 0), rgb(0, 0, 255));
}

TEST_F(CompositeWindowTest, BrightnessGoesFromEitherControlToTheOther)
{
    fillAndShow();
    m_window.m_pBrightnessSlider->setFocus();
    QTest::keyClick(m_window.m_pBrightnessSlider, Qt::Key_Left);
    EXPECT_EQ(m_window.m_pBrightnessSpinBox->value(), 99.0);
    EXPECT_EQ(m_window.m_channels[0]->brightness, 0.99);
    m_window.m_pBrightnessSpinBox->stepDown();
    EXPECT_EQ(m_window.m_pBrightnessSlider->value(), 94);
    EXPECT_EQ(m_window.m_channels[0]->brightness, 0.94);
}

// At the lower end of its window a map is black on either scale.
TEST_F(CompositeWindowTest, TheLogScaleBrightensWhatIsInside)
{
    fillAndShow();
    check(1, false);
    check(2, false);
    const unsigned linear = colorOf(1, 0);
    QTest::mouseClick(m_window.m_pLogScaleChkBox, Qt::LeftButton);
    EXPECT_TRUE(m_window.m_channels[0]->logScale);
    EXPECT_GT(qRed(colorOf(1, 0)), qRed(linear));
    EXPECT_EQ(colorOf(0, 0), rgb(0, 0, 0));
    EXPECT_EQ(colorOf(1, 1), rgb(255, 0, 0));
}

TEST_F(CompositeWindowTest, ALabelGoesToTheListAndTheView)
{
    fillAndShow();
    m_window.m_pLabelEdit->setFocus();
    m_window.m_pLabelEdit->selectAll();
    QTest::keyClicks(m_window.m_pLabelEdit, "<b>mine");
    QTest::keyClick(m_window.m_pLabelEdit, Qt::Key_Return);
    EXPECT_TRUE(m_window.isVisible());
    EXPECT_EQ(item(0)->text(), "<b>mine");
    EXPECT_EQ(m_window.m_channels[0]->label, "<b>mine");
    ASSERT_EQ(m_window.m_pView->labelList().size(), 2);
    EXPECT_EQ(m_window.m_pView->labelList()[0].first, "Cy7");
    EXPECT_EQ(m_window.m_pView->labelList()[1].first, "<b>mine");
    EXPECT_EQ(m_window.m_pView->labelList()[1].second, QColor("red"));
}

TEST_F(CompositeWindowTest, ALabelOfThreeHundredCharactersMovesNothing)
{
    fillAndShow();
    const QSize before = m_window.minimumSizeHint();
    const QRect list = m_window.m_pImageList->geometry();
    const QRect frame = m_window.m_pViewFrame->geometry();
    m_window.m_pLabelEdit->setText(QString(300, 'W'));
    QApplication::processEvents();
    EXPECT_EQ(item(0)->text().size(), 300);
    EXPECT_EQ(m_window.m_channels[0]->label.size(), 300);
    EXPECT_EQ(m_window.minimumSizeHint(), before);
    EXPECT_EQ(m_window.m_pImageList->geometry(), list);
    EXPECT_EQ(m_window.m_pViewFrame->geometry(), frame);
    // On the picture it ends before the edge.
    const QImage shown = m_window.m_pView->renderImage();
    m_window.m_pView->setLabelList({});
    const QImage bare = m_window.m_pView->renderImage();
    const int nRight = shown.width() - 1;
    EXPECT_NE(shown, bare);
    EXPECT_EQ(shown.copy(nRight, 0, 1, shown.height()), bare.copy(nRight, 0, 1, bare.height()));
}

// Answers with one colour, and keeps what was asked.
class ColorAnswer : public orv::MessageResponder
{
public:
    ColorAnswer(const QColor& color, QStringList& titles) : m_color(color), m_titles(titles) {}
    int ask(const orv::MessageRequest&) override { return 0; }
    std::optional<QColor> chooseColor(const orv::ColorRequest& request) override
    {
        m_titles << request.m_strTitle << request.m_initial.name();
        return m_color.isValid() ? std::optional<QColor>(m_color) : std::nullopt;
    }

private:
    QColor m_color;
    QStringList& m_titles;
};

TEST_F(CompositeWindowTest, AColorIsAskedForAndTaken)
{
    fillAndShow();
    QStringList titles;
    auto before = orv::setMessageResponder(std::make_unique<ColorAnswer>(QColor(0, 255, 0), titles));
    QTest::mouseClick(m_window.m_pColorBtn, Qt::LeftButton);
    EXPECT_EQ(titles, (QStringList{"Select Solid Color", "#ff0000"}));
    EXPECT_EQ(m_window.m_channels[0]->color, QColor(0, 255, 0));
    EXPECT_EQ(item(0)->foreground().color(), QColor(0, 255, 0));
    EXPECT_EQ(m_window.m_pColorBtn->styleSheet(), "QPushButton{ background-color: rgb(0,255,0) }");
    check(2, false);
    EXPECT_EQ(colorOf(1, 1), rgb(0, 255, 0));
    orv::setMessageResponder(std::make_unique<ColorAnswer>(QColor(), titles));
    QTest::mouseClick(m_window.m_pColorBtn, Qt::LeftButton);
    EXPECT_EQ(m_window.m_channels[0]->color, QColor(0, 255, 0));
    orv::setMessageResponder(std::move(before));
}

} // namespace
