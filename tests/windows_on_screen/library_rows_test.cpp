// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the window that picks spectra out of libraries: of thousands of spectra, by keyboard, and how they look.
#include "windows_on_screen/LibraryFixture.h"

#include <QComboBox>

namespace {

TEST_F(LibraryWindowTest, AThousandSpectraGetTheirRowsWhenAskedFor)
{
    write("many", library::dyes(1000, 4, 1000));
    open();
    click("many");
    EXPECT_EQ(window().m_spectra.size(), 1000);
    EXPECT_TRUE(window().m_pNextBtn->isEnabled());
    EXPECT_EQ(handedBack().size(), 1000);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().m_rows.size() == 200; }));
    QTest::qWait(50);
    EXPECT_EQ(window().m_rows.size(), 200);
    EXPECT_TRUE(window().textEdit->toPlainText().endsWith("Name: Dye 200\nOrigin: lab\nWavelengthPairs: "
                                                          "500,520;500,540;500,560;500,580;\n "));
    ASSERT_TRUE(window().m_pShowAllBtn->isVisible());
    EXPECT_EQ(window().m_pShowAllBtn->text(), "Show all 1000 spectra");
    EXPECT_LE(window().m_pPlot->dataLines().size(), 50);
    EXPECT_EQ(window().m_pHintLabel->text(), "50 of 1000 selected spectra are drawn.");
    row(3).m_pNameEdit->setText("mine");
    QTest::mouseClick(window().m_pShowAllBtn, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().m_rows.size() == 1000; }));
    EXPECT_FALSE(window().m_pShowAllBtn->isVisible());
    EXPECT_EQ(handedBack()[3], "mine");
    EXPECT_TRUE(window().textEdit->toPlainText().contains("\n \nIndex: 201\nName: Dye 201\n"));
}

TEST_F(LibraryWindowTest, AnotherLibraryEndsTheMakingOfRows)
{
    write("few", library::twoDyes());
    write("many", library::dyes(1000, 4, 1000));
    open();
    click("many");
    click("few");
    QTest::qWait(50);
    EXPECT_EQ(window().m_rows.size(), 2);
    EXPECT_FALSE(window().m_pShowAllBtn->isVisible());
}

// The one that is kept of several stands among the rows.
TEST_F(LibraryWindowTest, AnImportOfManyKeepsOneThatIsSeen)
{
    write("many", library::dyes(300, 2, 300));
    open();
    window().setMultiSelect(false);
    click("many");
    EXPECT_EQ(handedBack(), QStringList{"Dye 200"});
    QTest::mouseClick(window().m_pShowAllBtn, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().m_rows.size() == 300; }));
    EXPECT_EQ(handedBack(), QStringList{"Dye 200"});
    row(299).m_pSelectBox->click();
    EXPECT_EQ(handedBack(), QStringList{"Dye 300"});
}

TEST_F(LibraryWindowTest, TheKeyboardGoesThroughTheRows)
{
    write("dyes", library::twoDyes());
    open();
    click("dyes");
    const QList<QWidget*> expected{window().m_pNotationLE,
                                   row(0).m_pSelectBox,
                                   row(0).m_pNameEdit,
                                   row(0).m_pColorCombo,
                                   row(1).m_pSelectBox,
                                   row(1).m_pNameEdit,
                                   row(1).m_pColorCombo,
                                   window().m_pAppendChk,
                                   window().m_pNextBtn,
                                   window().m_pCloseBtn,
                                   &list(),
                                   window().m_pQualifiedCkb,
                                   window().textEdit,
                                   window().m_pNormalizedCkb};
    QWidget* pAt = window().m_pNotationLE;
    QList<QWidget*> found{pAt};
    while (found.size() < expected.size()) {
        do {
            pAt = pAt->nextInFocusChain();
        } while ((pAt->focusPolicy() & Qt::TabFocus) == 0 || pAt->focusProxy() != nullptr || !pAt->isVisible() ||
                 !pAt->isEnabled());
        found << pAt;
    }
    EXPECT_EQ(found, expected);
}

TEST_F(LibraryWindowTest, EveryControlHasAName)
{
    write("dyes", library::twoDyes());
    open();
    click("dyes");
    for (const QWidget* pControl : window().findChildren<QWidget*>()) {
        const auto* pButton = qobject_cast<const QAbstractButton*>(pControl);
        const bool bText = pButton != nullptr && !pButton->text().isEmpty();
        const bool bBuddy = pControl == &list() || pControl == window().textEdit || pControl == window().m_pNotationLE;
        if ((pControl->focusPolicy() & Qt::TabFocus) != 0 && pControl->isVisible() && !bText && !bBuddy &&
            !window().m_pPlot->isAncestorOf(pControl)) {
            EXPECT_FALSE(pControl->accessibleName().isEmpty())
                << pControl->metaObject()->className() << qPrintable(pControl->objectName());
        }
    }
}

class LibraryLookTest : public LibraryWindowTest, public ::testing::WithParamInterface<bool>
{
};

TEST_P(LibraryLookTest, ShowsAllOfItsTexts)
{
    write("dyes of the lab in the second floor", library::twoDyes());
    write("many", library::dyes(1000, 24, 6));
    write("two", library::twoDyes());
    m_pWindow = std::make_unique<SpUnmixSpectrumLibraryWnd>();
    if (GetParam()) {
        window().setPalette(screen::darkPalette());
    }
    window().setLoadMode(true);
    screen::show(window());
    click("two");
    screen::keep(screen::grab(window()), GetParam() ? "library_dark" : "library");
    window().m_pLegendCkb->click();
    click("many");
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().m_rows.size() == 200; }));
    QTest::qWait(50);
    screen::keep(screen::grab(window()), GetParam() ? "library_many_dark" : "library_many");
    for (const QLabel* pLabel : window().findChildren<QLabel*>()) {
        if (pLabel->isVisible()) {
            EXPECT_GE(pLabel->width(), pLabel->wordWrap() ? 0 : pLabel->sizeHint().width())
                << qPrintable(pLabel->text());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, LibraryLookTest, ::testing::Bool());

} // namespace
