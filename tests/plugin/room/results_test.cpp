// SPDX-License-Identifier: GPL-3.0-or-later
// The tab of results: the table with its copies and exports, and saved results.
#include "WorkArea.h"

#include "support/PlainUser.h"

#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"

#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QGuiApplication>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>

using namespace workarea;

namespace {

class ResultsTest : public WorkAreaTest
{
protected:
    void fill(const QList<QPair<QString, QString>>& properties)
    {
        open();
        engine().m_properties = properties;
        m_palette->fillResultsTree();
    }
    void activate(const char* pAction)
    {
        m_palette->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_palette.get()));
        QApplication::setActiveWindow(m_palette.get());
        for (QAction* pCandidate : m_palette->findChild<QMenu*>("m_pResultsMenu")->actions()) {
            if (pCandidate->text() == pAction) {
                pCandidate->trigger();
                return;
            }
        }
        FAIL() << pAction;
    }
    QString path(const QString& strName) const { return m_folder.filePath(strName); }
    QString content(const QString& strName) const
    {
        QFile file(path(strName));
        return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString("no file");
    }
    QStringList written() const { return QDir(m_folder.path()).entryList(QDir::Files, QDir::Name); }
    static QString clipboard() { return QGuiApplication::clipboard()->text(); }

    const QList<QPair<QString, QString>> m_two{{"Method", "Automatic"}, {"Bands", "640, 720"}};
    QTemporaryDir m_folder;
};

TEST_F(ResultsTest, TheTableHasTheProperties)
{
    fill(m_two);
    QTreeWidget& tree = *m_palette->m_pSPUnResultsLV;
    EXPECT_EQ(tree.headerItem()->text(0), "Item");
    EXPECT_EQ(tree.headerItem()->text(1), "Value");
    ASSERT_EQ(tree.topLevelItemCount(), 2);
    EXPECT_EQ(tree.topLevelItem(1)->text(0), "Bands");
    EXPECT_EQ(tree.topLevelItem(1)->text(1), "640, 720");
    m_palette->fillResultsTree();
    EXPECT_EQ(tree.topLevelItemCount(), 2);
}

TEST_F(ResultsTest, TheMenuSeparatesItsThreeEntries)
{
    const QList<QAction*> actions = m_palette->findChild<QMenu*>("m_pResultsMenu")->actions();
    QStringList texts;
    for (const QAction* pAction : actions) {
        texts << (pAction->isSeparator() ? QString("-") : pAction->text());
    }
    EXPECT_EQ(texts, (QStringList{"-", "Copy", "-", "Select All", "-", "Export Results"}));
}

TEST_F(ResultsTest, CopyTakesTheSelectedItems)
{
    fill(m_two);
    m_palette->m_pSPUnResultsLV->topLevelItem(1)->setSelected(true);
    activate("Copy");
    EXPECT_EQ(clipboard(), "Item\tValue\nBands\t\"640, 720\"\n");
}

TEST_F(ResultsTest, CopyOfNothingGivesTheHeader)
{
    fill(m_two);
    activate("Copy");
    EXPECT_EQ(clipboard(), "Item\tValue\n");
}

TEST_F(ResultsTest, SelectAllChangesTheModeForGood)
{
    fill(m_two);
    activate("Select All");
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->selectedItems().size(), 2);
    activate("Copy");
    EXPECT_EQ(clipboard(), "Item\tValue\nMethod\tAutomatic\nBands\t\"640, 720\"\n");
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->selectionMode(), QAbstractItemView::ExtendedSelection);
}

// Docked, the window that is active is the host's.
TEST_F(ResultsTest, TheMenuWorksInADockOfTheActiveWindow)
{
    fill(m_two);
    QDockWidget dock;
    dock.setWidget(m_palette.get());
    m_main.addDockWidget(Qt::RightDockWidgetArea, &dock);
    m_main.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_main));
    QApplication::setActiveWindow(&m_main);
    QAction* pCopy = m_palette->findChild<QMenu*>("m_pResultsMenu")->actions().at(1);
    pCopy->trigger();
    EXPECT_EQ(clipboard(), "Item\tValue\n");
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QGuiApplication::clipboard()->setText("before");
    pCopy->trigger();
    EXPECT_EQ(clipboard(), "before");
    m_palette->setParent(nullptr);
}

TEST_F(ResultsTest, APaletteThatIsNotActiveDoesNothing)
{
    fill(m_two);
    QGuiApplication::clipboard()->setText("before");
    m_palette->hide();
    for (QAction* pAction : m_palette->findChild<QMenu*>("m_pResultsMenu")->actions()) {
        pAction->trigger();
    }
    m_palette->onMenuActivated();
    EXPECT_EQ(clipboard(), "before");
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

TEST_F(ResultsTest, AnExportWritesTextOrTable)
{
    fill(m_two);
    bool bHeldOpen = false;
    m_answers.whileOpen = [&bHeldOpen] { bHeldOpen = !CORVUtilityFns::canClose(); };
    m_answers.files = QStringList{path("a.txt")};
    activate("Export Results");
    EXPECT_TRUE(bHeldOpen);
    EXPECT_TRUE(CORVUtilityFns::canClose());
    ASSERT_EQ(m_answers.asked.size(), 1);
    EXPECT_EQ(m_answers.asked.first().caption, "Save SpUnmix Results");
    EXPECT_EQ(m_answers.asked.first().text, "SpUnmix Results File (*.txt);;CSv(*.csv)");
    EXPECT_EQ(content("a.txt"), "\"Item\" \"Value\"\nMethod Automatic\nBands \"640, 720\"\n");
    m_answers.files = QStringList{path("b")};
    m_answers.filter = "CSv(*.csv)";
    m_palette->exportSpUnmixResults();
    EXPECT_EQ(content("b.csv"), "\"Item\",\"Value\"\nMethod,Automatic\nBands,\"640, 720\"\n");
    EXPECT_EQ(QDir(CORVPreference::getSettings()->getRecentFilePath()), QDir(m_folder.path()));
}

TEST_F(ResultsTest, NothingChosenWritesNothing)
{
    fill(m_two);
    m_palette->exportSpUnmixResults();
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(CORVUtilityFns::canClose());
    EXPECT_EQ(written(), QStringList());
}

TEST_F(ResultsTest, ANameOf185CharactersIsWrittenAndOneOf186AsksAgain)
{
    fill(m_two);
    const QString strLongest = QString(181, 'n') + ".csv";
    const QString strTooLong = QString(182, 'n') + ".csv";
    m_answers.files = QStringList{path(strTooLong), path(strLongest)};
    m_palette->exportSpUnmixResults();
    ASSERT_EQ(m_answers.asked.size(), 3);
    EXPECT_EQ(m_answers.asked.at(1).text, "The path you entered, \n'" + QString(93, 'n') + "\n" + QString(89, 'n') +
                                              ".csv',\nis too long. Enter a shorter path");
    EXPECT_EQ(m_answers.asked.at(1).caption, "Orvia");
    EXPECT_EQ(written(), QStringList(strLongest));
}

TEST_F(ResultsTest, AFolderWithTxtInItsNameTakesBlanksForATable)
{
    fill(m_two);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("all.txt files"));
    m_answers.files = QStringList{path("all.txt files/b.csv")};
    m_palette->exportSpUnmixResults();
    EXPECT_TRUE(content("all.txt files/b.csv").startsWith("\"Item\" \"Value\"\n"));
}

TEST_F(ResultsTest, AFileThatCannotBeOpenedGivesNothing)
{
    fill(m_two);
    m_palette->writeSpUnmixResultsToFile(",", path("no such folder/b.csv"));
    EXPECT_TRUE(m_answers.asked.isEmpty());
    EXPECT_EQ(written(), QStringList());
}

TEST_F(ResultsTest, AnUnwritableFolderIsToldToAPlainUser)
{
    fill(m_two);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("locked") && QDir(m_folder.path()).mkdir("open"));
    ASSERT_TRUE(QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7755)));
    ASSERT_TRUE(QFile::setPermissions(path("locked"), QFile::Permissions(0x5555)));
    ASSERT_TRUE(QFile::setPermissions(path("open"), QFile::Permissions(0x7777)));
    {
        const PlainUser user;
        ASSERT_TRUE(user.isPlain());
        m_answers.files = QStringList{path("locked/b.csv")};
        m_palette->exportSpUnmixResults();
        ASSERT_EQ(m_answers.asked.size(), 2);
        EXPECT_EQ(m_answers.asked.last().text, "The folder \"" + path("locked") +
                                                   "\" cannot be written to. Choose another folder or change its "
                                                   "permissions.");
        EXPECT_EQ(m_answers.asked.last().parent, m_palette.get());
        EXPECT_FALSE(QFile::exists(path("locked/b.csv")));
        EXPECT_TRUE(CORVUtilityFns::canClose());
        m_answers.files = QStringList{path("open/b.csv")};
        m_palette->exportSpUnmixResults();
        EXPECT_EQ(m_answers.asked.size(), 3);
    }
    EXPECT_EQ(content("open/b.csv"), "\"Item\",\"Value\"\nMethod,Automatic\nBands,\"640, 720\"\n");
}

// A sequence in memory has no folder, and nobody gives it one.
TEST_F(ResultsTest, WithoutAHomeAResultStaysUnsaved)
{
    auto& opened = open();
    unmixAutomatically();
    ASSERT_TRUE(opened.sequence().getSequenceInfoPath().isEmpty());
    m_palette->m_pSaveButton->click();
    EXPECT_TRUE(m_palette->m_pSaveButton->isEnabled());
    EXPECT_EQ(m_palette->m_pSavedResultsCB->currentText(), "SPUM_001(new)");
    EXPECT_FALSE(m_palette->m_pLoadButton->isEnabled());
}

} // namespace
