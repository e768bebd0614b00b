// SPDX-License-Identifier: GPL-3.0-or-later
// Deleting and renaming.
#include "storage/saved_fixture.h"

#include "support/ForkedChild.h"

#include <QLockFile>

namespace {

QString deleteQuestion(const QString& strName)
{
    return asked("Are you sure you want to delete the results for " + strName + "?");
}

class DeleteTest : public SavedFixture
{
protected:
    DeleteTest() { m_boxes.answer = CORVMessageBox::YesButton; }

    bool remove(const QString& strName)
    {
        m_list.updateSavedResultsForSelSeqId("seq-7");
        m_list.updates.clear();
        m_boxes.shown.clear();
        m_list.setCurrentText(strName);
        return m_results.onClickDeleteResults();
    }
};

TEST_F(DeleteTest, AResultGoesWithItsFile)
{
    ASSERT_TRUE(saveAll({"kidney", "liver", "spleen"}));
    EXPECT_TRUE(remove("liver"));
    EXPECT_EQ(m_boxes.shown, QStringList(deleteQuestion("liver")));
    EXPECT_EQ(m_boxes.parents.last(), nullptr);
    EXPECT_EQ(names(), QStringList({"kidney", "spleen"}));
    EXPECT_EQ(files(), QStringList({"SPUM-20240131-235950.xml", "SPUM-20240131-235952.xml"}));
    EXPECT_EQ(m_list.updates, QStringList("Mouse seven"));
    EXPECT_TRUE(isSound());
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(DeleteTest, AnythingButYesLeavesIt)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_boxes.answer = CORVMessageBox::NoButtonAnswer;
    EXPECT_FALSE(remove("kidney"));
    EXPECT_EQ(names(), QStringList("kidney"));
    EXPECT_EQ(files().size(), 1);
    EXPECT_TRUE(m_list.updates.isEmpty());
}

TEST_F(DeleteTest, AMissingFileDoesNotKeepTheEntry)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    ASSERT_TRUE(QFile::remove(path("XML/SpecUnmix/" + files().first())));
    EXPECT_TRUE(remove("kidney"));
    EXPECT_EQ(names(), QStringList("liver"));
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(DeleteTest, TheNameIsFoundWithoutRegardToCase)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    EXPECT_TRUE(remove("KIDNEY"));
    EXPECT_TRUE(names().isEmpty());
}

TEST_F(DeleteTest, OfNamesThatDifferInCaseTheEqualOneGoes)
{
    ASSERT_TRUE(saveAll({"kidney", "Kidney"}));
    EXPECT_TRUE(remove("Kidney"));
    EXPECT_EQ(names(), QStringList("kidney"));
    EXPECT_TRUE(isSound());
}

TEST_F(DeleteTest, TheFileIsFoundWithoutRegardToCase)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    ASSERT_TRUE(
        QFile::rename(path("XML/SpecUnmix/SPUM-20240131-235950.xml"), path("XML/SpecUnmix/spum-20240131-235950.XML")));
    EXPECT_TRUE(remove("kidney"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(DeleteTest, ANameThatIsNotListedIsTold)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    EXPECT_FALSE(remove("liver"));
    EXPECT_TRUE(m_log.has("File not found.", 3));
    EXPECT_EQ(names(), QStringList("kidney"));
}

TEST_F(DeleteTest, WithoutTheFolderOfFilesTheEntryStays)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    ASSERT_TRUE(QDir(path("XML/SpecUnmix")).removeRecursively());
    EXPECT_FALSE(remove("kidney"));
    EXPECT_TRUE(m_log.has("Folder not found.", 3));
    EXPECT_EQ(names(), QStringList("kidney"));
}

TEST_F(DeleteTest, AnEmptyFolderOfFilesDoesNotKeepTheEntry)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    ASSERT_TRUE(QFile::remove(path("XML/SpecUnmix/" + files().first())));
    EXPECT_TRUE(remove("kidney"));
    EXPECT_TRUE(names().isEmpty());
}

TEST_F(DeleteTest, AFileThatCannotBeRemovedKeepsItsEntry)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    QFile::setPermissions(path("XML"), QFile::Permissions(0x7777));
    QFile::setPermissions(path("XML/SPUM.txt"), QFile::Permissions(0x6666));
    QFile::setPermissions(path("XML/SpecUnmix"), QFile::Permissions(0x5555));
    const int nFailed = inForkedChild([this] {
        return becomePlainUser() && !remove("kidney") && m_log.has("File could not be removed.", 3) ? 0 : 1;
    });
    QFile::setPermissions(path("XML/SpecUnmix"), QFile::Permissions(0x7777));
    EXPECT_EQ(nFailed, 0);
    EXPECT_EQ(names(), QStringList("kidney"));
    EXPECT_TRUE(isSound());
}

TEST_F(DeleteTest, AnIndexThatCannotBeChangedEndsItSilentlyWithTheFileInPlace)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    QFile::setPermissions(path("XML"), QFile::Permissions(0x5555));
    QFile::setPermissions(path("XML/SpecUnmix"), QFile::Permissions(0x7777));
    const int nFailed =
        inForkedChild([this] { return becomePlainUser() && !remove("kidney") && m_boxes.shown.size() == 1 ? 0 : 1; });
    QFile::setPermissions(path("XML"), QFile::Permissions(0x7777));
    EXPECT_EQ(nFailed, 0);
    EXPECT_TRUE(isSound());
    EXPECT_EQ(names(), QStringList("kidney"));
}

TEST_F(DeleteTest, AnIndexThatCannotBeWrittenKeepsItsEntryAndTheList)
{
    ASSERT_TRUE(saveAll({"kidney", QString(1000, 'x')}));
    const QByteArray before = bytes("XML/SPUM.txt");
    // Room for the lock, but for no index that has the other result.
    const int nFailed = inForkedChild([this] {
        if (!limitFileSize(500)) {
            return 1;
        }
        return !remove("kidney") && m_list.updates.isEmpty() && m_boxes.shown.size() == 1 ? 0 : 2;
    });
    EXPECT_EQ(nFailed, 0);
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_EQ(files().size(), 2) << "the file goes when no list names it any more";
    EXPECT_EQ(noteOf("kidney"), QString("note of kidney"));
}

TEST_F(DeleteTest, ABrokenIndexEndsItSilently)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_boxes.whileOpen = [this] { writeBytes("XML/SPUM.txt", "no index"); };
    EXPECT_FALSE(remove("kidney"));
    EXPECT_EQ(m_boxes.shown.size(), 1);
    EXPECT_EQ(files().size(), 1);
}

TEST_F(DeleteTest, AnEntryThatAnotherProgramRemovedMeanwhileHarmsNoOther)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    m_boxes.whileOpen = [this] {
        writeBytes("XML/SPUM.txt", "[SPUM]\nMenuName: liver\nFileName: SpecUnmix/SPUM-20240131-235951.xml\n");
    };
    EXPECT_FALSE(remove("kidney"));
    EXPECT_EQ(names(), QStringList("liver"));
    EXPECT_EQ(files().size(), 2);
}

TEST_F(DeleteTest, OfSectionsWithTheSameKeyTheRightOneGoes)
{
    ASSERT_TRUE(saveAll({"kidney", "liver", "spleen"}));
    writeBytes("XML/SPUM.txt", bytes("XML/SPUM.txt").replace("[SPUM 2]", "[SPUM]").replace("[SPUM 3]", "[SPUM]"));
    ASSERT_EQ(names(), QStringList({"kidney", "liver", "spleen"}));
    EXPECT_TRUE(remove("liver"));
    EXPECT_EQ(names(), QStringList({"kidney", "spleen"}));
    EXPECT_TRUE(isSound());
}

TEST_F(DeleteTest, AFileThatAnotherResultSharesStays)
{
    ASSERT_EQ(save("kidney"), SaveOutcome::Saved);
    ASSERT_EQ(save("liver"), SaveOutcome::FileWasThere);
    EXPECT_TRUE(remove("liver"));
    EXPECT_EQ(names(), QStringList("kidney"));
    EXPECT_TRUE(isSound());
    EXPECT_TRUE(remove("kidney"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(DeleteTest, WithoutAnEngineNothingIsAsked)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_results.setEngine(nullptr);
    EXPECT_FALSE(remove("kidney"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(DeleteTest, WithoutTheSequenceNothingIsDeleted)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    CORVSpumKyvo stranger("no such sequence");
    m_results.setEngine(&stranger);
    EXPECT_FALSE(remove("kidney"));
    EXPECT_EQ(m_boxes.shown.size(), 1);
    EXPECT_EQ(names(), QStringList("kidney"));
    EXPECT_EQ(files().size(), 1);
}

class RenameTest : public SavedFixture
{
protected:
    // Chooses an item and types over it.
    void edit(const QString& strItem, const QString& strText)
    {
        m_list.updateSavedResultsForSelSeqId("seq-7");
        ASSERT_TRUE(m_list.choose(strItem));
        m_list.updates.clear();
        m_list.setCurrentText(strText);
        m_results.onChangeResultsName(strText);
    }
    void rename(const QString& strItem, const QString& strText)
    {
        edit(strItem, strText);
        m_results.onKeyPressed(Qt::Key_Return);
        EXPECT_FALSE(m_results.m_bEditingName);
    }
    const QString m_strFailed = "Unable to rename Spectral Unmixing analysis results for sequence [seq-7]...";
    const QString m_strDone = "Spectral Unmixing analysis results renamed for sequence [seq-7]...?";
};

TEST_F(RenameTest, OnlyTheIndexChanges)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    const QStringList before = files();
    rename("kidney", "left kidney");
    EXPECT_EQ(entries(), QStringList({"left kidney > SpecUnmix/SPUM-20240131-235950.xml",
                                      "liver > SpecUnmix/SPUM-20240131-235951.xml"}));
    EXPECT_EQ(files(), before);
    EXPECT_EQ(noteOf("left kidney"), QString("note of kidney"));
    EXPECT_TRUE(m_log.has(m_strDone, 16));
    EXPECT_FALSE(m_log.has(m_strFailed, 16));
    EXPECT_EQ(m_list.updates, QStringList("Mouse seven"));
    EXPECT_EQ(m_list.currentText(), QString("left kidney"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(RenameTest, AnAbsoluteFileNameBecomesRelative)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    writeBytes(
        "XML/SPUM.txt",
        "[SPUM]\nMenuName: kidney\nFileName: /old/SpecUnmix/x/SpecUnmix/SPUM-20240131-235950.xml\nOther: kept\n");
    rename("kidney", "liver");
    EXPECT_EQ(entries(), QStringList("liver > SpecUnmix/SPUM-20240131-235950.xml"));
    EXPECT_TRUE(bytes("XML/SPUM.txt").contains("Other: kept"));
}

TEST_F(RenameTest, ANameInOtherCaseIsRefusedAsADuplicate)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    rename("kidney", "LIVER");
    EXPECT_EQ(m_boxes.shown, QStringList(told("Result \"LIVER\" already exist. Please choose a different name.")));
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_EQ(m_list.currentText(), QString("LIVER")) << "left as the user typed it";
    EXPECT_FALSE(m_log.has(m_strFailed, 16));
    EXPECT_FALSE(m_log.has(m_strDone, 16));
    EXPECT_TRUE(m_list.updates.isEmpty());
}

TEST_F(RenameTest, AnEmptyTextRestoresTheList)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    rename("liver", "  ");
    EXPECT_EQ(m_list.updates, QStringList("Mouse seven"));
    EXPECT_EQ(m_list.currentText(), QString("liver"));
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(RenameTest, TheSameTextInOtherCaseDoesNothing)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    rename("kidney", "Kidney");
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_EQ(m_list.currentText(), QString("Kidney"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(RenameTest, AResultThatIsNotSavedYetCannotBeRenamed)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    m_list.m_bResultModified = true;
    rename("SPUM_001(new)", "liver");
    EXPECT_TRUE(m_log.has(m_strFailed, 16));
    EXPECT_EQ(m_list.currentText(), QString("SPUM_001(new)"));
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(RenameTest, AResultThatIsNotSavedYetCannotTakeATakenNameEither)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_list.m_bResultModified = true;
    rename("SPUM_001(new)", "kidney");
    EXPECT_EQ(m_boxes.shown, QStringList(told("Result \"kidney\" already exist. Please choose a different name.")));
    EXPECT_FALSE(m_log.has(m_strFailed, 16));
}

TEST_F(RenameTest, AnEntryWithoutAFileCannotBeRenamed)
{
    QDir().mkdir(path("XML"));
    for (const char* pEntry : {"[SPUM]\nMenuName: kidney\n", "[SPUM]\nMenuName: kidney\nFileName:\n"}) {
        writeBytes("XML/SPUM.txt", pEntry);
        rename("kidney", "liver");
        EXPECT_EQ(bytes("XML/SPUM.txt"), QByteArray(pEntry));
        EXPECT_EQ(m_list.currentText(), QString("kidney"));
    }
    EXPECT_EQ(m_log.count(m_strFailed, 16), 2);
}

TEST_F(RenameTest, ABrokenIndexIsTold)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    edit("kidney", "liver");
    writeBytes("XML/SPUM.txt", "no index");
    m_results.onKeyPressed(Qt::Key_Return);
    EXPECT_TRUE(m_log.has("Unable to load SPUM.txt file", 1));
    EXPECT_EQ(m_boxes.shown, QStringList(told("Unable to load Spectral Unmixing analysis data for sequence [seq-7].")));
    EXPECT_TRUE(m_log.has(m_strFailed, 16));
    EXPECT_EQ(m_list.currentText(), QString("kidney"));
}

TEST_F(RenameTest, AnIndexThatCannotBeLockedIsToldAsOneThatCannotBeRead)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    QFile::setPermissions(path("XML"), QFile::Permissions(0x5555));
    const int nFailed = inForkedChild([this] {
        if (!becomePlainUser()) {
            return 1;
        }
        rename("kidney", "liver");
        return m_log.has("Unable to load SPUM.txt file", 1) && m_log.has(m_strFailed, 16) && m_boxes.shown.size() == 1
                   ? 0
                   : 2;
    });
    QFile::setPermissions(path("XML"), QFile::Permissions(0x7777));
    EXPECT_EQ(nFailed, 0);
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
}

TEST_F(RenameTest, AnIndexThatCannotBeWrittenKeepsTheOldName)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    // Room for the lock, and for the index as it is.
    const int nFailed = inForkedChild([this, &before] {
        if (!limitFileSize(static_cast<rlim_t>(before.size()) + 100)) {
            return 1;
        }
        rename("kidney", QString(500, 'x'));
        return m_log.has(m_strFailed, 16) && m_boxes.shown.isEmpty() && m_list.currentText() == "kidney" ? 0 : 2;
    });
    EXPECT_EQ(nFailed, 0);
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
}

TEST_F(RenameTest, EscapeRestoresTheText)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    edit("liver", "spleen");
    EXPECT_EQ(m_results.m_nEditedIndex, 1);
    EXPECT_TRUE(m_results.m_bEditingName);
    m_results.onKeyPressed(Qt::Key_Escape);
    EXPECT_EQ(m_list.currentText(), QString("liver"));
    EXPECT_FALSE(m_results.m_bEditingName);
    EXPECT_EQ(names(), QStringList({"kidney", "liver"}));
}

TEST_F(RenameTest, OtherKeysAndKeysWithoutAnEditDoNothing)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    edit("kidney", "liver");
    m_results.onKeyPressed(Qt::Key_Enter);
    m_results.onKeyPressed(Qt::Key_A);
    EXPECT_TRUE(m_results.m_bEditingName);
    EXPECT_EQ(names(), QStringList("kidney"));
    m_results.m_bEditingName = false;
    m_results.onKeyPressed(Qt::Key_Return);
    m_results.onKeyPressed(Qt::Key_Escape);
    EXPECT_EQ(names(), QStringList("kidney"));
    EXPECT_EQ(m_list.currentText(), QString("liver"));
}

TEST_F(RenameTest, TypingIsAWordOfTheUsersOwn)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    m_results.m_bUseAutoName = true;
    edit("kidney", "x");
    EXPECT_FALSE(m_results.m_bUseAutoName);
    EXPECT_EQ(m_results.m_nEditedIndex, 0);
}

TEST_F(RenameTest, WithoutTheSequenceNothingIsRenamed)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    edit("kidney", "liver");
    CORVSpumKyvo stranger("no such sequence");
    m_results.setEngine(&stranger);
    EXPECT_FALSE(m_results.renameResult());
    m_results.setEngine(nullptr);
    EXPECT_FALSE(m_results.renameResult());
    EXPECT_EQ(names(), QStringList("kidney"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

} // namespace
