// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVSortingTable.h"
#include "host/CORVTreeMenuComboBox.h"
#include "platform/orvwidgets/UprightHeader.h"
#include "platform/orvwidgets/probeFamilies.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QHelpEvent>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

namespace {

struct FamilyCase
{
    const char* name;
    const char* family;
};

class ProbeFamilyTest : public ::testing::TestWithParam<FamilyCase>
{
};

TEST_P(ProbeFamilyTest, IsWhatStandsBeforeTheLastNumber)
{
    EXPECT_EQ(orv::probeFamily(GetParam().name).toStdString(), GetParam().family);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ProbeFamilyTest,
    ::testing::Values(FamilyCase{"AlexaFluor 488", "AlexaFluor"}, FamilyCase{"Cy5", "Cy"}, FamilyCase{"Cy5.5", "Cy"},
                      FamilyCase{"mNeptune2.5", "mNeptune"}, FamilyCase{"iRFP670", "iRFP"},
                      FamilyCase{"NIR dye 800", "NIR dye"}, FamilyCase{"DsRed", "DsRed"}, FamilyCase{"DsRed2", "DsRed"},
                      FamilyCase{"F-18", "F"}, FamilyCase{"ICG", "ICG"}, FamilyCase{"ICG in water", "ICG in water"},
                      FamilyCase{"Chlorophyll_A", "Chlorophyll_A"}, FamilyCase{"QDot 705 (new)", "QDot"},
                      FamilyCase{"A1B22", "A1B"}, FamilyCase{"800", "800"}, FamilyCase{"", ""}));

TEST(ProbeFamiliesTest, StandInTheOrderOfTheirFirstEntries)
{
    const auto families = orv::probeFamilies({"Unknown", "Cy3", "ICG", "Cy7", "cy5"});
    ASSERT_EQ(families.size(), 4);
    EXPECT_EQ(families[0].m_strName, "Unknown");
    EXPECT_EQ(families[1].m_strName, "Cy");
    EXPECT_EQ(families[1].m_entries, (QVector<int>{1, 3}));
    EXPECT_EQ(families[2].m_strName, "ICG");
    EXPECT_EQ(families[3].m_strName, "cy");
}

TEST(SortingTableTest, HasAGridAndNeverSorts)
{
    CORVSortingTable table(2, 1);
    EXPECT_TRUE(table.showGrid());
    table.setSortingEnabled(true);
    EXPECT_FALSE(table.isSortingEnabled());
    table.setProperty("sortingEnabled", true);
    EXPECT_FALSE(table.isSortingEnabled());
    table.setItem(0, 0, new QTableWidgetItem("b"));
    table.setItem(1, 0, new QTableWidgetItem("a"));
    table.setHorizontalHeaderLabels({"570"});
    table.show();
    QSignalSpy clicked(table.horizontalHeader(), &QHeaderView::sectionClicked);
    const QPoint place(5, table.horizontalHeader()->height() / 2);
    QTest::mouseClick(table.horizontalHeader()->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(clicked.size(), 1);
    EXPECT_EQ(table.item(0, 0)->text(), "b");
}

TEST(SortingTableTest, KeysThatAreWiderThanTheirColumnStandUpright)
{
    CORVSortingTable table(1, 3);
    table.setHorizontalHeaderLabels({"7", "Int10", "a key that is far longer than any header could ever be"});
    for (int i = 0; i < 3; ++i) {
        table.setColumnWidth(i, 30);
        EXPECT_EQ(table.columnWidth(i), 30);
    }
    auto* pHeader = qobject_cast<orv::UprightHeader*>(table.horizontalHeader());
    ASSERT_NE(pHeader, nullptr);
    EXPECT_FALSE(pHeader->isUpright(0));
    EXPECT_TRUE(pHeader->isUpright(1));
    EXPECT_TRUE(pHeader->isUpright(2));
    table.show();
    QCoreApplication::processEvents();
    EXPECT_GE(pHeader->height(), QFontMetrics(pHeader->font()).horizontalAdvance("Int10"));
    EXPECT_LE(pHeader->height(), orv::UprightHeader::longestText + 20);
    // What the header shows is not what the item says.
    EXPECT_EQ(table.horizontalHeaderItem(1)->text(), "Int10");
    const int nTall = pHeader->height();
    table.setColumnWidth(1, 200);
    table.setColumnWidth(2, 500);
    QCoreApplication::processEvents();
    EXPECT_FALSE(pHeader->isUpright(1));
    EXPECT_LT(pHeader->height(), nTall);
}

TEST(SortingTableTest, AHeaderTellsItsWholeTextInATip)
{
    CORVSortingTable table(1, 2);
    table.setHorizontalHeaderLabels({"Int10", "own"});
    table.horizontalHeaderItem(1)->setToolTip("of its own");
    table.show();
    auto* pViewport = table.horizontalHeader()->viewport();
    const auto tipAt = [&](int nX) {
        QHelpEvent help(QEvent::ToolTip, QPoint(nX, 5), pViewport->mapToGlobal(QPoint(nX, 5)));
        QApplication::sendEvent(pViewport, &help);
        return QToolTip::text();
    };
    EXPECT_EQ(tipAt(5), "Int10");
    EXPECT_EQ(tipAt(table.columnWidth(0) + 5), "of its own");
}

class TreeComboTest : public ::testing::Test
{
protected:
    TreeComboTest()
    {
        m_combo.addItems({"Unknown", "AlexaFluor 488", "AlexaFluor 750", "Black & White", "Cy5.5", "Cy7"});
        m_combo.show();
        QApplication::setActiveWindow(&m_combo);
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_combo));
        m_combo.setFocus();
    }

    QMenu* menu() { return m_combo.findChild<QMenu*>("probeMenu"); }
    bool plainListShown() { return m_combo.view()->isVisible(); }

    CORVTreeMenuComboBox m_combo{PROBETREE_LIBRARY};
};

TEST_F(TreeComboTest, AClickOpensAMenuOfFamilies)
{
    QTest::mouseClick(&m_combo, Qt::LeftButton);
    ASSERT_NE(menu(), nullptr);
    EXPECT_FALSE(plainListShown());
    QStringList texts;
    for (QAction* pAction : menu()->actions()) {
        texts.append(pAction->text());
    }
    EXPECT_EQ(texts, (QStringList{"Unknown", "AlexaFluor", "Black && White", "Cy"}));
    EXPECT_EQ(menu()->actions()[0]->menu(), nullptr);
    ASSERT_NE(menu()->actions()[1]->menu(), nullptr);
    EXPECT_EQ(menu()->actions()[1]->menu()->actions()[1]->text(), "AlexaFluor 750");
}

TEST_F(TreeComboTest, AnEntryOfTheMenuIsChosen)
{
    QSignalSpy changed(&m_combo, SIGNAL(currentIndexChanged(int)));
    QSignalSpy activated(&m_combo, SIGNAL(activated(int)));
    m_combo.showPopup();
    menu()->actions()[3]->menu()->actions()[1]->trigger();
    EXPECT_EQ(m_combo.currentText(), "Cy7");
    EXPECT_EQ(changed.size(), 1);
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated[0][0].toInt(), 5);
    m_combo.hidePopup();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(menu(), nullptr);
    m_combo.showPopup();
    EXPECT_TRUE(menu()->actions()[3]->menu()->actions()[1]->isChecked());
    EXPECT_TRUE(menu()->actions()[3]->menu()->menuAction()->font().bold());
}

TEST_F(TreeComboTest, AKeyOpensThePlainList)
{
    QTest::keyClick(&m_combo, Qt::Key_F4);
    EXPECT_EQ(menu(), nullptr);
    EXPECT_TRUE(plainListShown());
    m_combo.hidePopup();
}

TEST_F(TreeComboTest, ALetterOverTheMenuFindsItsEntryInThePlainList)
{
    m_combo.showPopup();
    QTest::keyClick(menu(), Qt::Key_C);
    EXPECT_TRUE(plainListShown());
    EXPECT_EQ(m_combo.view()->currentIndex().data().toString(), "Cy5.5");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(menu(), nullptr);
    m_combo.hidePopup();
}

TEST_F(TreeComboTest, TheMenuKeepsItsOwnKeys)
{
    m_combo.showPopup();
    QTest::keyClick(menu(), Qt::Key_Down);
    EXPECT_FALSE(plainListShown());
    QTest::keyClick(menu(), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(menu(), nullptr);
}

TEST_F(TreeComboTest, IsAComboBoxWhoseEntriesAreFoundByTheirText)
{
    QComboBox* pCombo = &m_combo;
    EXPECT_EQ(pCombo->findData("Cy7", Qt::DisplayRole, Qt::MatchCaseSensitive), 5);
    EXPECT_EQ(pCombo->findData("cy7", Qt::DisplayRole, Qt::MatchExactly | Qt::MatchCaseSensitive), -1);
    EXPECT_EQ(m_combo.displayType(), PROBETREE_LIBRARY);
}

TEST_F(TreeComboTest, ThereIsATreeWhereTheDatabaseHasSources)
{
    EXPECT_TRUE(CORVTreeMenuComboBox::hasTree(PROBETREE_LIBRARY));
    EXPECT_FALSE(CORVTreeMenuComboBox::hasTree(static_cast<PROBETREEDISPLAYTYPE>(0)));
}

TEST_F(TreeComboTest, ASlotThatDeletesItIsTheLastThatHears)
{
    auto* pCombo = new CORVTreeMenuComboBox(PROBETREE_LIBRARY);
    pCombo->addItems({"Cy5", "Cy7"});
    pCombo->showPopup();
    QObject::connect(pCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), pCombo,
                     [pCombo] { pCombo->deleteLater(); });
    pCombo->findChild<QMenu*>("probeMenu")->actions()[0]->menu()->actions()[1]->trigger();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace
