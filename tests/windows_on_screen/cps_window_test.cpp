// SPDX-License-Identifier: GPL-3.0-or-later
// The window that takes known spectra off a mixed one.
#include "support/screen.h"

#include "host/CORVGLXYPlot1.h"
#include "host/CORVUtilityFns.h"
#include "spectra/DefaultColors.h"
#include "windows/SpumKyvoCPSWnd.h"

#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <limits>
#include <vector>

namespace {

using List = std::vector<double>;

// What the plot draws, as the table that it saves.
QByteArray plotted(const CORVGLXYPlot1& plot)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("plot.csv");
    EXPECT_TRUE(plot.saveData(QFile::encodeName(path).constData(), 0, ','));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

class CpsWindowTest : public ::testing::Test
{
protected:
    ~CpsWindowTest() override { qDeleteAll(m_spectra); }

    SpectrumPlotParams& add(const char* pName, const List& values, const char* pColor = "red")
    {
        auto* pSpectrum = new SpectrumPlotParams;
        pSpectrum->settings.name = pName;
        pSpectrum->settings.color = pColor;
        int nBand = 0;
        for (const double value : values) {
            pSpectrum->points.append({"500", QString::number(520 + 20 * nBand++), value});
        }
        m_spectra.append(pSpectrum);
        return *pSpectrum;
    }
    // A known spectrum and one that holds it twice and something else.
    void addTwo()
    {
        add("TissueAF", {1.0, 2.0, 1.0}, "gold");
        add("Mixed", {2.0, 4.0, 6.0}, "blue");
    }
    void open()
    {
        ASSERT_TRUE(m_window.setSpectra(m_spectra));
        screen::show(m_window);
    }
    QPushButton& apply() const { return *m_window.m_pButtonBox->button(QDialogButtonBox::Apply); }
    static QStringList textsOf(const QListWidget& list)
    {
        QStringList texts;
        for (int i = 0; i < list.count(); ++i) {
            texts << list.item(i)->text();
        }
        return texts;
    }
    static QStringList textsOf(const QComboBox& combo)
    {
        QStringList texts;
        for (int i = 0; i < combo.count(); ++i) {
            texts << combo.itemText(i);
        }
        return texts;
    }
    List result()
    {
        List values;
        for (const SpectrumPoint& point : m_window.getResult().points) {
            values.push_back(point.value);
        }
        return values;
    }
    QString equation() const { return m_window.m_pResultEqLE->text(); }
    // Spectra as they are, and the result too.
    void normalizeNothing()
    {
        m_window.m_pNormalizedA->setChecked(false);
        m_window.m_pNormalizedB->setChecked(false);
    }

    QList<SpectrumPlotParams*> m_spectra;
    SpumKyvoCPSWnd m_window;
};

TEST_F(CpsWindowTest, OpensAsDesigned)
{
    EXPECT_EQ(m_window.windowTitle(), "Compute Pure Spectrum");
    EXPECT_EQ(m_window.m_pNormalizedA->text(), "Normalized");
    EXPECT_TRUE(m_window.m_pNormalizedA->isChecked());
    EXPECT_TRUE(m_window.m_pNormalizedB->isChecked());
    EXPECT_FALSE(m_window.m_pNormalizedC->isChecked());
    EXPECT_EQ(m_window.m_pAutoScale->text(), "Auto Scaling");
    EXPECT_TRUE(m_window.m_pAutoScale->isChecked());
    EXPECT_EQ(m_window.m_pOffset->text(), "Fit Offset");
    EXPECT_FALSE(m_window.m_pOffset->isChecked());
    EXPECT_EQ(m_window.label_5->text(), "Error Tolerance:");
    EXPECT_EQ(m_window.m_pErrorSlider->minimum(), 0);
    EXPECT_EQ(m_window.m_pErrorSlider->maximum(), 20);
    EXPECT_EQ(m_window.m_pErrorSlider->pageStep(), 5);
    EXPECT_EQ(m_window.m_pErrorSlider->toolTip(),
              "Error tolerance adjusts the nonnegative constraint boundary in the spectrum math. ");
    EXPECT_FALSE(m_window.m_pResultEqLE->isEnabled());
    EXPECT_EQ(m_window.label->text(), "Save to Spectrum Index");
    EXPECT_EQ(m_window.label_2->text(), "                Name");
    EXPECT_EQ(m_window.label_3->text(), "      Color");
    EXPECT_EQ(textsOf(*m_window.m_pColorCB), defaultSpectrumColors());
    EXPECT_EQ(m_window.m_pListBoxA->selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_EQ(m_window.m_pPlotA->accessibleName(), "Spectrum Plot A");
    EXPECT_EQ(m_window.m_pPlotC->accessibleName(), "Spectrum Plot C");
    EXPECT_EQ(m_window.gridLayoutB->itemAtPosition(0, 0)->widget(), m_window.m_pPlotB);
    EXPECT_NE(m_window.m_pButtonBox->button(QDialogButtonBox::Close), nullptr);
    EXPECT_FALSE(apply().isEnabled());
}

TEST_F(CpsWindowTest, FewerThanTwoSpectraAreRefused)
{
    EXPECT_FALSE(m_window.setSpectra(m_spectra));
    add("A", {1.0});
    EXPECT_FALSE(m_window.setSpectra(m_spectra));
    EXPECT_EQ(m_window.m_pListBoxA->count(), 0);
    add("B", {1.0});
    EXPECT_TRUE(m_window.setSpectra(m_spectra));
    QList<SpectrumPlotParams*> one = m_spectra.mid(0, 1);
    EXPECT_FALSE(m_window.setSpectra(one));
    EXPECT_EQ(m_window.m_pListBoxA->count(), 2);
}

TEST_F(CpsWindowTest, StartsWithTheFirstKnownAndTheSecondMixed)
{
    addTwo();
    m_window.m_pErrorSlider->setValue(7);
    open();
    EXPECT_EQ(textsOf(*m_window.m_pListBoxA), (QStringList{"1:TissueAF", "2:Mixed"}));
    EXPECT_EQ(textsOf(*m_window.m_pListBoxB), (QStringList{"1:TissueAF", "2:Mixed"}));
    EXPECT_FALSE(m_window.m_pListBoxA->item(0)->icon().isNull());
    EXPECT_EQ(m_window.m_pListBoxA->currentRow(), 1);
    EXPECT_TRUE(m_window.m_pListBoxB->item(0)->isSelected());
    EXPECT_FALSE(m_window.m_pListBoxB->item(1)->isSelected());
    EXPECT_EQ(m_window.m_pErrorSlider->value(), 0);
    EXPECT_EQ(textsOf(*m_window.m_pIndexCB), (QStringList{"1", "2", "New"}));
    EXPECT_EQ(m_window.m_pIndexCB->currentText(), "New");
    EXPECT_EQ(m_window.m_pNameLE->text(), "UMX3");
    EXPECT_EQ(m_window.m_pColorCB->currentText(), "blue");
    EXPECT_TRUE(apply().isEnabled());
    EXPECT_EQ(plotted(*m_window.m_pPlotA), "Emission Wavelength [nm],Mixed\n520,0.33333333333333331\n"
                                           "540,0.66666666666666663\n560,1\n");
    EXPECT_EQ(plotted(*m_window.m_pPlotB), "Emission Wavelength [nm],TissueAF\n520,0.5\n540,1\n560,0.5\n");
}

TEST_F(CpsWindowTest, TakesOffAsMuchAsItCan)
{
    addTwo();
    open();
    normalizeNothing();
    EXPECT_EQ(equation(), "A-2*B");
    EXPECT_EQ(result(), (List{0.0, 0.0, 4.0}));
    EXPECT_EQ(plotted(*m_window.m_pPlotC), "Emission Wavelength [nm],Computed\n520,0\n540,0\n560,4\n");
    m_window.m_pNormalizedC->click();
    EXPECT_EQ(plotted(*m_window.m_pPlotC), "Emission Wavelength [nm],Computed\n520,0\n540,0\n560,1\n");
    EXPECT_EQ(result(), (List{0.0, 0.0, 4.0}));
}

TEST_F(CpsWindowTest, EqualSpectraLeaveNothingToApply)
{
    add("A", {1.0, 3.0, 2.0});
    add("B", {1.0, 3.0, 2.0});
    open();
    EXPECT_EQ(equation(), "A-1*B");
    EXPECT_EQ(result(), (List{0.0, 0.0, 0.0}));
    EXPECT_FALSE(apply().isEnabled());
}

TEST_F(CpsWindowTest, WithoutScalingTheResultStopsAtZero)
{
    add("Known", {3.0, 1.0, 1.0});
    add("Mixed", {2.0, 4.0, 6.0});
    open();
    normalizeNothing();
    m_window.m_pAutoScale->click();
    EXPECT_EQ(equation(), "A-1*B");
    EXPECT_EQ(result(), (List{0.0, 3.0, 5.0}));
}

TEST_F(CpsWindowTest, AConstantResultWithoutItsOffsetCanStillBeApplied)
{
    add("Known", {1.0, 2.0, 3.0});
    add("Mixed", {3.0, 4.0, 5.0});
    open();
    normalizeNothing();
    m_window.m_pAutoScale->click();
    m_window.m_pOffset->click();
    EXPECT_EQ(result(), (List{0.0, 0.0, 0.0}));
    EXPECT_EQ(plotted(*m_window.m_pPlotC), "Emission Wavelength [nm],Computed\n520,0\n540,0\n560,0\n");
    EXPECT_TRUE(apply().isEnabled());
}

TEST_F(CpsWindowTest, SeveralKnownSpectraHaveANumberEach)
{
    add("One", {2.0, 0.0, 1.0});
    add("Mixed", {1.0, 1.0, 9.0});
    add("Two", {0.0, 4.0, 1.0});
    open();
    normalizeNothing();
    m_window.m_pListBoxB->item(2)->setSelected(true);
    EXPECT_EQ(equation(), "A-0.5*B1-0.25*B2");
    EXPECT_EQ(m_window.m_pPlotB->dataLines().size(), 2);
    // One more by keyboard and mouse, as in any list.
    m_window.m_pListBoxB->item(2)->setSelected(false);
    EXPECT_EQ(equation(), "A-0.5*B");
    QTest::mouseClick(m_window.m_pListBoxB->viewport(), Qt::LeftButton, Qt::ControlModifier,
                      m_window.m_pListBoxB->visualItemRect(m_window.m_pListBoxB->item(2)).center());
    EXPECT_EQ(equation(), "A-0.5*B1-0.25*B2");
}

TEST_F(CpsWindowTest, WithoutAKnownSpectrumTheMixedOneStays)
{
    addTwo();
    open();
    normalizeNothing();
    m_window.m_pListBoxB->clearSelection();
    EXPECT_EQ(equation(), "A");
    EXPECT_EQ(result(), (List{2.0, 4.0, 6.0}));
    EXPECT_TRUE(m_window.m_pPlotB->dataLines().isEmpty());
    EXPECT_TRUE(apply().isEnabled());
}

TEST_F(CpsWindowTest, ToleranceGoesFromZeroToATenth)
{
    add("Known", {1.0, 1.0});
    add("Mixed", {1.0, 10.0});
    open();
    normalizeNothing();
    EXPECT_EQ(equation(), "A-1*B");
    m_window.m_pErrorSlider->setFocus();
    QTest::keyClick(m_window.m_pErrorSlider, Qt::Key_End);
    EXPECT_EQ(m_window.m_pToleranceLabel->text(), "0.100");
    EXPECT_EQ(equation(), "A-2*B"); // 1 + 0.1 * 10
    EXPECT_EQ(result(), (List{0.0, 8.0}));
    QTest::keyClick(m_window.m_pErrorSlider, Qt::Key_Home);
    QTest::keyClick(m_window.m_pErrorSlider, Qt::Key_Right);
    EXPECT_EQ(m_window.m_pToleranceLabel->text(), "0.005");
}

TEST_F(CpsWindowTest, ASolverThatFailsKeepsAmountsAndEquation)
{
    add("Known", {1.0, 2.0});
    add("Mixed", {2.0, 6.0});
    add("Infinite", {1.0, std::numeric_limits<double>::infinity()});
    open();
    normalizeNothing();
    EXPECT_EQ(equation(), "A-2*B");
    m_window.m_pListBoxB->setCurrentRow(2);
    EXPECT_EQ(equation(), "A-2*B");
    EXPECT_EQ(result(), (List{0.0, 2.0}));
    EXPECT_TRUE(apply().isEnabled());
}

TEST_F(CpsWindowTest, SpectraWithoutDataAreNotListedAndRowsKeepTheirNumbers)
{
    add("Empty", {0.0, 0.0});
    add("Known", {1.0, 2.0});
    add("NaN", {std::numeric_limits<double>::quiet_NaN(), 2.0});
    add("Mixed", {2.0, 6.0});
    open();
    EXPECT_EQ(textsOf(*m_window.m_pListBoxA), (QStringList{"2:Known", "4:Mixed"}));
    const QSignalSpy updates(&m_window, &SpumKyvoCPSWnd::updateSpectrum);
    QTest::mouseClick(&apply(), Qt::LeftButton);
    ASSERT_EQ(updates.size(), 1);
    EXPECT_EQ(updates[0][0].toInt(), 3);
}

TEST_F(CpsWindowTest, OneSpectrumWithDataHasNoPartner)
{
    add("Empty", {0.0, 0.0});
    add("Known", {1.0, 2.0});
    open();
    EXPECT_EQ(m_window.m_pListBoxA->currentItem(), nullptr);
    EXPECT_FALSE(apply().isEnabled());
    EXPECT_TRUE(m_window.m_pPlotA->dataLines().isEmpty());
}

TEST_F(CpsWindowTest, NegativeSpectraAreTurnedByTheirLargest)
{
    add("Known", {-1.0, -2.0});
    add("Mixed", {-1.0, -4.0});
    open();
    EXPECT_EQ(plotted(*m_window.m_pPlotA), "Emission Wavelength [nm],Mixed\n520,1\n540,4\n");
}

TEST_F(CpsWindowTest, APlaceSuggestsItsNameAndColor)
{
    add("TissueAF", {1.0, 2.0}, "gold");
    add("Mixed", {2.0, 6.0}, "chartreuse");
    open();
    m_window.m_pIndexCB->setFocus();
    QTest::keyClick(m_window.m_pIndexCB, Qt::Key_Up);
    EXPECT_EQ(m_window.m_pNameLE->text(), "Mixed");
    EXPECT_EQ(m_window.m_pColorCB->currentText(), "lime");
    QTest::keyClick(m_window.m_pIndexCB, Qt::Key_Up);
    EXPECT_EQ(m_window.m_pNameLE->text(), "TissueAF");
    EXPECT_EQ(m_window.m_pColorCB->currentText(), "gold");
    QTest::keyClick(m_window.m_pIndexCB, Qt::Key_End);
    EXPECT_EQ(m_window.m_pNameLE->text(), "UMX3");
}

TEST_F(CpsWindowTest, OfNineRowsTheLastCountsAsNew)
{
    for (int i = 0; i < 9; ++i) {
        add("own", {1.0, 2.0 + i}, "black");
    }
    open();
    EXPECT_EQ(m_window.m_pIndexCB->count(), 9);
    EXPECT_EQ(m_window.m_pIndexCB->currentText(), "9");
    EXPECT_EQ(m_window.m_pNameLE->text(), "UMX9");
    EXPECT_EQ(m_window.m_pColorCB->currentText(), "green");
    EXPECT_EQ(m_window.getResult().settings.index, 9);
}

TEST_F(CpsWindowTest, ResultIsWhatTheControlsSay)
{
    addTwo();
    open();
    m_window.m_pIndexCB->setCurrentIndex(0);
    m_window.m_pNameLE->setText("<b>label</b>");
    m_window.m_pColorCB->setCurrentText("pink");
    const SpectrumPlotParams& result = m_window.getResult();
    EXPECT_EQ(result.settings.index, 1);
    EXPECT_EQ(result.settings.name, "<b>label</b>");
    EXPECT_EQ(result.settings.color, "pink");
    EXPECT_TRUE(result.control.isNull());
    EXPECT_EQ(result.points[2].second, "560");
}

TEST_F(CpsWindowTest, ColorIndexIsTheFirstThatIsFree)
{
    add("A", {1.0, 2.0}, "lime");
    add("B", {1.0, 3.0}, "blue");
    open();
    m_window.setColorIndex(m_spectra, 0);
    EXPECT_EQ(m_window.m_pColorCB->currentText(), "red");
    EXPECT_EQ(m_window.m_pIndexCB->currentIndex(), 1);
    m_window.setColorIndex(m_spectra, 5);
    EXPECT_EQ(m_window.m_pColorCB->currentText(), "cyan");
    EXPECT_EQ(m_window.m_pIndexCB->currentIndex(), 1);
}

// As the list of spectra does: the result goes to its place and the list comes back.
TEST_F(CpsWindowTest, KeysAloneChooseSpectraAndApply)
{
    add("TissueAF", {1.0, 2.0, 1.0});
    add("Food", {0.5, 0.25, 0.5});
    add("Mixed", {2.0, 4.0, 6.0});
    open();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    const QSignalSpy applied(&m_window, &SpumKyvoCPSWnd::updateSpectrum);
    m_window.m_pListBoxA->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(m_window.m_pListBoxA->currentRow(), 2);
    EXPECT_TRUE(m_window.m_pResultEqLE->text().startsWith("A-"));
    m_window.m_pListBoxB->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(m_window.m_pListBoxB->selectedItems().size(), 2);
    EXPECT_TRUE(m_window.m_pResultEqLE->text().contains("*B2"));
    for (int i = 0; i < 40 && QApplication::focusWidget() != &apply(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    ASSERT_EQ(QApplication::focusWidget(), &apply());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    ASSERT_EQ(applied.count(), 1);
    EXPECT_EQ(applied.at(0).at(0).toInt(), 2);
}

TEST_F(CpsWindowTest, AfterApplyItStartsAfresh)
{
    addTwo();
    open();
    QObject::connect(&m_window, &SpumKyvoCPSWnd::updateSpectrum, [this](int nRow) {
        EXPECT_EQ(nRow, 0);
        m_spectra.append(new SpectrumPlotParams(m_window.getResult()));
        m_window.setSpectra(m_spectra);
    });
    m_window.m_pListBoxB->setCurrentRow(1);
    m_window.m_pListBoxA->setCurrentRow(0);
    m_window.m_pErrorSlider->setValue(3);
    ASSERT_TRUE(apply().isEnabled());
    QTest::mouseClick(&apply(), Qt::LeftButton);
    EXPECT_TRUE(m_window.isVisible());
    EXPECT_EQ(m_window.m_pListBoxA->count(), 3);
    EXPECT_EQ(m_window.m_pListBoxA->item(2)->text(), "3:UMX3");
    EXPECT_EQ(m_window.m_pListBoxA->currentRow(), 1);
    EXPECT_TRUE(m_window.m_pListBoxB->item(0)->isSelected());
    EXPECT_EQ(m_window.m_pErrorSlider->value(), 0);
    EXPECT_EQ(m_window.m_pNameLE->text(), "UMX4");
}

TEST_F(CpsWindowTest, OnlyApplyApplies)
{
    addTwo();
    open();
    const QSignalSpy updates(&m_window, &SpumKyvoCPSWnd::updateSpectrum);
    apply().setText("&Apply");
    QTest::mouseClick(&apply(), Qt::LeftButton);
    EXPECT_EQ(updates.size(), 1);
    QTest::keyClick(m_window.m_pNameLE, Qt::Key_Return);
    EXPECT_TRUE(m_window.isVisible());
    QTest::mouseClick(m_window.m_pButtonBox->button(QDialogButtonBox::Close), Qt::LeftButton);
    EXPECT_EQ(updates.size(), 1);
    EXPECT_FALSE(m_window.isVisible());
}

TEST_F(CpsWindowTest, TheHostCannotBeClosedMeanwhile)
{
    addTwo();
    ASSERT_TRUE(CORVUtilityFns::canClose());
    {
        SpumKyvoCPSWnd window;
        ASSERT_TRUE(window.setSpectra(m_spectra));
        EXPECT_TRUE(CORVUtilityFns::canClose());
        screen::show(window);
        EXPECT_FALSE(CORVUtilityFns::canClose());
        QTest::keyClick(&window, Qt::Key_Escape);
        EXPECT_FALSE(window.isVisible());
        EXPECT_TRUE(CORVUtilityFns::canClose());
        window.show();
        EXPECT_FALSE(CORVUtilityFns::canClose());
    }
    EXPECT_TRUE(CORVUtilityFns::canClose());
}

TEST_F(CpsWindowTest, SomebodyElsesBanStays)
{
    addTwo();
    CORVUtilityFns::setCanClose(false);
    open();
    m_window.hide();
    EXPECT_FALSE(CORVUtilityFns::canClose());
    CORVUtilityFns::setCanClose(true);
}

TEST_F(CpsWindowTest, ItsSpectraAreCopies)
{
    addTwo();
    open();
    m_spectra[1]->points[0].value = 100.0;
    normalizeNothing();
    EXPECT_EQ(result(), (List{0.0, 0.0, 4.0}));
}

TEST_F(CpsWindowTest, SpectraOfAnotherLengthDoNotMeet)
{
    add("Known", {1.0, 2.0, 3.0});
    add("Mixed", {2.0, 6.0});
    open();
    EXPECT_EQ(equation(), "");
    EXPECT_FALSE(apply().isEnabled());
    EXPECT_TRUE(m_window.m_pPlotC->dataLines().isEmpty());
}

TEST_F(CpsWindowTest, EveryControlHasAName)
{
    addTwo();
    open();
    for (const QWidget* pControl : m_window.findChildren<QWidget*>()) {
        const auto* pButton = qobject_cast<const QAbstractButton*>(pControl);
        const bool bPlot = m_window.m_pPlotA->isAncestorOf(pControl) || m_window.m_pPlotB->isAncestorOf(pControl) ||
                           m_window.m_pPlotC->isAncestorOf(pControl);
        if ((pControl->focusPolicy() & Qt::TabFocus) != 0 && pControl->isVisible() && !bPlot &&
            (pButton == nullptr || pButton->text().isEmpty())) {
            EXPECT_FALSE(pControl->accessibleName().isEmpty())
                << pControl->metaObject()->className() << qPrintable(pControl->objectName());
        }
    }
}

class CpsLookTest : public CpsWindowTest, public ::testing::WithParamInterface<bool>
{
};

TEST_P(CpsLookTest, ShowsAllOfItsTexts)
{
    add("TissueAF", {0.4, 1.0, 0.8, 0.5, 0.3}, "gold");
    add("A probe whose name is much longer than the list is wide, <b>bold</b>", {0.5, 1.2, 1.5, 2.5, 1.0}, "magenta");
    add("FoodAF", {0.1, 0.1, 0.2, 0.5, 0.9}, "black");
    if (GetParam()) {
        m_window.setPalette(screen::darkPalette());
    }
    open();
    m_window.m_pListBoxB->item(2)->setSelected(true);
    m_window.m_pNameLE->setFocus();
    screen::keep(screen::grab(m_window), GetParam() ? "cps_dark" : "cps");
    for (const QLabel* pLabel : m_window.findChildren<QLabel*>()) {
        if (pLabel->isVisible()) {
            EXPECT_GE(pLabel->width(), pLabel->wordWrap() ? 0 : pLabel->sizeHint().width())
                << qPrintable(pLabel->text());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, CpsLookTest, ::testing::Bool());

} // namespace
