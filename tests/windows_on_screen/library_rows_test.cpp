// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the window that picks spectra out of libraries: of thousands of spectra, by keyboard, and how they look.
#include "windows_on_screen/LibraryFixture.h"

#include <QComboBox>
#include <QPointer>
#include <QScrollArea>

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

TEST_F(LibraryWindowTest, RowsOfAnotherLibraryGoInTheEnd)
{
    write("few", library::twoDyes());
    write("many", library::dyes(300, 4, 3));
    open();
    click("many");
    QTest::mouseClick(window().m_pShowAllBtn, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().m_rows.size() == 300; }));
    const QList<QPointer<SpumKyvoSpectrumCtrl>> gone{window().m_rows[0].data(), window().m_rows[299].data()};
    const QPointer<QWidget> page(window().m_pRowArea->widget());
    const QPointer<QWidget> edit(row(299).m_pNameEdit);
    click("few");
    EXPECT_EQ(window().m_rows.size(), 2);
    EXPECT_EQ(handedBack(), (QStringList{"A", "B"}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return gone[0].isNull() && gone[1].isNull() && page.isNull(); }));
    EXPECT_TRUE(edit.isNull());
    click("many");
    click("few");
    m_pWindow.reset(); // while they go
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
    row(3).m_pSelectBox->click();
    EXPECT_EQ(handedBack(), QStringList{"Dye 4"});
    EXPECT_TRUE(window().m_pNextBtn->isEnabled());
}

// One that has no row yet gives way too.
TEST_F(LibraryWindowTest, AnImportOfManyGivesUpTheOneThatIsNotSeen)
{
    QByteArray library = library::dyes(300, 2, 0);
    const int nSelected = library.indexOf(",0", library.indexOf("$,Select")) + 2 * 250;
    library[nSelected + 1] = '1';
    write("many", library);
    open();
    window().setMultiSelect(false);
    click("many");
    EXPECT_EQ(handedBack(), QStringList{"Dye 251"});
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().m_rows.size() == 200; }));
    row(7).m_pSelectBox->click();
    EXPECT_EQ(handedBack(), QStringList{"Dye 8"});
}

// Rows stand one under another at the same distance, whatever slice they were made in.
TEST_F(LibraryWindowTest, RowsAreEvenlySpaced)
{
    write("many", library::dyes(100, 2, 0));
    open();
    click("many");
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().m_rows.size() == 100; }));
    QApplication::processEvents();
    const QWidget* pPage = window().m_pRowArea->widget();
    const auto top = [this, pPage](int nRow) {
        return row(nRow).m_pNameEdit->mapTo(const_cast<QWidget*>(pPage), QPoint(0, 0));
    };
    const QPoint step = top(1) - top(0);
    EXPECT_GT(step.y(), row(0).m_pNameEdit->height());
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(top(i), top(0) + i * step) << i;
    }
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
