// SPDX-License-Identifier: GPL-3.0-or-later
// The list of folders to pick the datasets of a batch from.
#include "plugin/CORVSpumBrowseDlg.h"
#include "plugin/CORVSpumKyvoPalettePlugin.h"

#include "host/CORVPreference.h"
#include "host/CORVSettings.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class BrowseDialogTest : public ::testing::Test
{
protected:
    ~BrowseDialogTest() override { settings().remove("Batch/SpumDatasetPath"); }

    static CORVSettings& settings() { return *CORVPreference::getSettings(); }
    static QStringList entriesOf(const CORVSpumBrowseDlg& dialog)
    {
        QStringList entries;
        for (int i = 0; i < dialog.m_pDatasetList->count(); ++i) {
            entries << dialog.m_pDatasetList->item(i)->text();
        }
        return entries;
    }
    void useFolder(const QStringList& datasets)
    {
        for (const QString& dataset : datasets) {
            ASSERT_TRUE(QDir(m_folder.path()).mkdir(dataset));
        }
        settings().setValue("Batch/SpumDatasetPath", m_folder.path());
    }

    QTemporaryDir m_folder;
};

TEST_F(BrowseDialogTest, TextsAndKeysAreThoseOfItsUsers)
{
    const CORVSpumBrowseDlg dialog;
    EXPECT_EQ(dialog.windowTitle(), "Select Spectral Unmixing Datasets for Batch Processing");
    EXPECT_EQ(dialog.m_pUnmixBtn->text(), "&Unmix");
    EXPECT_EQ(dialog.m_pUnmixBtn->shortcut(), QKeySequence("Shift+U"));
    EXPECT_EQ(dialog.m_pCloseBtn->text(), "&Close");
    EXPECT_EQ(dialog.m_pCloseBtn->shortcut(), QKeySequence("Alt+C"));
    EXPECT_EQ(dialog.m_pDatasetList->selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_FALSE(dialog.m_pDatasetList->accessibleName().isEmpty());
}

// Its folder looks like a drive's, and would be one of wherever the program was started.
TEST_F(BrowseDialogTest, WithoutASettingTheListIsEmptyAndNothingIsMade)
{
    const QString strBefore = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_folder.path()));
    const CORVSpumBrowseDlg dialog;
    EXPECT_TRUE(QDir::setCurrent(strBefore));
    EXPECT_EQ(entriesOf(dialog), QStringList());
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

TEST_F(BrowseDialogTest, AMissingFolderGivesAnEmptyList)
{
    const QString strMissing = m_folder.filePath("gone");
    settings().setValue("Batch/SpumDatasetPath", strMissing);
    const CORVSpumBrowseDlg dialog;
    EXPECT_EQ(entriesOf(dialog), QStringList());
    EXPECT_FALSE(QDir(strMissing).exists());
}

TEST_F(BrowseDialogTest, EveryDatasetOfTheFolderIsAnEntry)
{
    const QString strOdd = QString::fromUtf8("<b>M\xC3\xA4use");
    useFolder({"mouse 1", strOdd});
    const CORVSpumBrowseDlg dialog;
    EXPECT_EQ(entriesOf(dialog), (QStringList{m_folder.filePath(strOdd), m_folder.filePath("mouse 1")}));
}

TEST_F(BrowseDialogTest, WhereNoEntryIsTheCurrentOneTheLastBecomesIt)
{
    useFolder({"a", "b", "c"});
    CORVSpumBrowseDlg dialog;
    ASSERT_EQ(dialog.m_pDatasetList->currentRow(), -1);
    dialog.onListViewSelectionChanged();
    EXPECT_EQ(dialog.m_pDatasetList->currentRow(), 2);
    dialog.m_pDatasetList->setCurrentRow(0);
    dialog.m_pDatasetList->clearSelection();
    EXPECT_EQ(dialog.m_pDatasetList->currentRow(), 0);
    dialog.onSelectListItem(dialog.m_pDatasetList->item(1));
    EXPECT_EQ(dialog.m_pDatasetList->currentRow(), 0);
}

TEST_F(BrowseDialogTest, AnEmptyListStandsAChange)
{
    CORVSpumBrowseDlg dialog;
    dialog.onListViewSelectionChanged();
    EXPECT_EQ(dialog.m_pDatasetList->currentRow(), -1);
}

TEST_F(BrowseDialogTest, ItClosesByItsFrameAlone)
{
    CORVSpumBrowseDlg dialog;
    QSignalSpy unmix(&dialog, SIGNAL(browseUnmix()));
    ASSERT_TRUE(unmix.isValid());
    dialog.show();
    dialog.m_pUnmixBtn->click();
    dialog.m_pCloseBtn->click();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(unmix.count(), 0);
    dialog.close();
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(BrowseDialogTest, ThePlugInNamesTheFirstButtonAnew)
{
    CORVSpumKyvoPalettePlugin plugin;
    plugin.onStartUnmixing();
    plugin.m_pBrowseDlg.reset(new CORVSpumBrowseDlg);
    plugin.onStartUnmixing();
    EXPECT_EQ(plugin.m_pBrowseDlg->m_pUnmixBtn->text(), "Apply");
    EXPECT_EQ(plugin.m_pBrowseDlg->m_pCloseBtn->text(), "&Close");
}

} // namespace
