// SPDX-License-Identifier: GPL-3.0-or-later
// What whoever works by the keyboard sees: which label belongs to which control, and where the focus is.
#include "CompositeFixture.h"
#include "WizardFixture.h"

#include "host/QSpanSlider.h"
#include "windows/SpumKyvoPCAWnd.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>

#include <map>

namespace {

std::map<QString, QString> buddiesOf(const QWidget& window)
{
    std::map<QString, QString> buddies;
    for (const QLabel* pLabel : window.findChildren<QLabel*>()) {
        if (pLabel->buddy() != nullptr) {
            buddies[pLabel->text()] = pLabel->buddy()->objectName();
        }
    }
    return buddies;
}

TEST(BuddyTest, LabelsOfTheWizardBelongToTheirControls)
{
    const SpUnmixWizardWnd wizard;
    EXPECT_EQ(buddiesOf(wizard),
              (std::map<QString, QString>{{"Threshold:", "m_pThresholdSlider"},
                                          {"Imaging Subject:", "m_pSubjectCB"},
                                          {"Isotope:", "m_pCherenkovIsotopeCombobox"},
                                          {"Isotope Half Life (minutes):", "m_pCherenkovHalfLifeEditBox"}}));
}

TEST(BuddyTest, LabelsOfTheCompositeBelongToTheirControls)
{
    const SpUnmixCompositeWnd window;
    EXPECT_EQ(buddiesOf(window), (std::map<QString, QString>{{"Units:", "m_pUnitCB"},
                                                             {"Spot:", "m_pSpotSpinBox"},
                                                             {"Image List:", "m_pImageList"},
                                                             {"Min:", "m_pMinSpinBox"},
                                                             {"Max:", "m_pMaxSpinBox"},
                                                             {"Color:", "m_pColorBtn"},
                                                             {"Brightness:", "m_pBrightnessSlider"},
                                                             {"Label:", "m_pLabelEdit"}}));
}

// Each control looks otherwise while it has the focus. What blinks is no mark: a cursor is hidden for the moment.
void expectFocusIsSeen(QWidget& window)
{
    QApplication::setCursorFlashTime(0);
    QApplication::setActiveWindow(&window);
    window.setAttribute(Qt::WA_KeyboardFocusChange); // as the Tab key does
    int nSeen = 0;
    for (QWidget* pControl : window.findChildren<QWidget*>()) {
        if ((pControl->focusPolicy() & Qt::TabFocus) != Qt::TabFocus || !pControl->isVisible() ||
            !pControl->isEnabled() || pControl->focusProxy() != nullptr) {
            continue;
        }
        window.setFocus();
        if (QWidget* pFocus = QApplication::focusWidget()) {
            pFocus->clearFocus();
        }
        QApplication::processEvents();
        const QImage without = screen::grab(*pControl);
        pControl->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        ASSERT_EQ(QApplication::focusWidget(), pControl) << qPrintable(pControl->objectName());
        EXPECT_TRUE(screen::grab(*pControl) != without)
            << pControl->metaObject()->className() << " " << qPrintable(pControl->objectName());
        ++nSeen;
    }
    EXPECT_GT(nSeen, 1);
}

class FocusTest : public ::testing::TestWithParam<bool>
{
protected:
    static void paint(QWidget& window)
    {
        if (GetParam()) {
            window.setPalette(screen::darkPalette());
        }
    }
};

TEST_P(FocusTest, IsSeenInTheWizard)
{
    CILImage photo = bodyPhoto(64, 48);
    SpUnmixWizardWnd wizard;
    paint(wizard);
    wizard.m_nImageCount = 8;
    wizard.setAnalysisType(1);
    wizard.setPhotoImage(&photo);
    wizard.m_pCherenkovGroupBox->show();
    wizard.m_pCherenkovIsotopeCombobox->setCurrentText("Undefined");
    screen::show(wizard);
    expectFocusIsSeen(wizard);
    wizard.m_pDrawMaskRB->setChecked(true);
    expectFocusIsSeen(wizard);
}

TEST_P(FocusTest, IsSeenInTheComposite)
{
    CILImage photo = constantImage(480, 480, 50.0);
    SpUnmixCompositeWnd window;
    paint(window);
    window.setCompositeData(&photo, mapsOf({{0.0, 40.0, 60.0, 100.0}}), 0, {}, 2, 2, {namedChannel("Cy5", "red")}, 1);
    screen::show(window);
    expectFocusIsSeen(window);
}

TEST_P(FocusTest, IsSeenInTheWindowOfThePca)
{
    SpumKyvoPCAWnd window;
    paint(window);
    XTNT::Vector<double> values(2);
    values[0] = 2.0;
    values[1] = 1.0;
    window.setEigenvalues(values);
    screen::show(window);
    expectFocusIsSeen(window);
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, FocusTest, ::testing::Bool(),
                         [](const auto& named) { return named.param ? "dark" : "light"; });

} // namespace
