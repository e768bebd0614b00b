// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/saved_fixture.h"

#include <QLockFile>

namespace {

using SaveTest = SavedFixture;

const QString unreadable = told("Unable to save Specturm Unmixing analysis data");
const QString notSaved = told("Unable to save Spectral Unmixing analysis data for sequence [seq-7].");

TEST_F(SaveTest, AResultLiesBesideItsSequenceUnderItsTimeStamp)
{
    m_list.m_bResultModified = true;
    m_engine.resultView().setSpectraModified(true);
    EXPECT_EQ(save("first"), SaveOutcome::Saved);
    EXPECT_EQ(entries(), QStringList("first > SpecUnmix/SPUM-20240131-235950.xml"));
    EXPECT_EQ(files(), QStringList("SPUM-20240131-235950.xml"));
    EXPECT_EQ(noteOf("first"), QString("note of first"));
    EXPECT_FALSE(m_list.m_bResultModified);
    EXPECT_FALSE(m_engine.ownResultView().isSpectraModified());
    EXPECT_EQ(m_list.updates, QStringList("Mouse seven"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_EQ(m_log.reports(), "");
    EXPECT_EQ(QDir(path("XML")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name),
              QStringList({"SPUM.txt", "SpecUnmix"}));
}

TEST_F(SaveTest, TheFileHoldsTheDocumentInTheBytesOfTheLocale)
{
    m_engine.resultView().setNote("a < \"b\" & \u00e9");
    const QString strText = m_engine.resultToXml();
    m_list.setCurrentText("x");
    ASSERT_EQ(m_results.onClickSaveResults(), SaveOutcome::Saved);
    // The moment of writing may have changed its minute in between.
    const auto withoutMoment = [](QByteArray text) {
        const int nFrom = text.indexOf("Date.Time=\"");
        return text.remove(nFrom, text.indexOf('"', nFrom + 11) - nFrom);
    };
    EXPECT_EQ(withoutMoment(bytes("XML/SpecUnmix/SPUM-20240131-235950.xml")), withoutMoment(strText.toLocal8Bit()));
}

TEST_F(SaveTest, StampsHaveTwoDigitsEach)
{
    m_moment = QDateTime(QDate(2031, 2, 3), QTime(4, 5, 6));
    ASSERT_EQ(save("x"), SaveOutcome::Saved);
    EXPECT_EQ(files(), QStringList("SPUM-20310203-040506.xml"));
    EXPECT_EQ(m_results.batchStamp(), QString("20310203040506"));
}

TEST_F(SaveTest, TheMarkOfANewResultIsTakenOutOfItsName)
{
    ASSERT_TRUE(saveAll({"SPUM_003(new)", "a(new)b", "a(new)b(new)"}));
    EXPECT_EQ(names(), QStringList({"SPUM_003", "a(new)b", "ab"}));
}

TEST_F(SaveTest, ANameInOtherCaseIsANewEntry)
{
    ASSERT_TRUE(saveAll({"kidney", "Kidney"}));
    EXPECT_EQ(names(), QStringList({"kidney", "Kidney"}));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    m_engine.resultView().setNote(QString());
    EXPECT_EQ(noteOf("kidney"), QString("note of kidney"));
    EXPECT_EQ(noteOf("Kidney"), QString("note of Kidney"));
}

TEST_F(SaveTest, AnAutomaticNameThatIsTakenGivesWayWithoutAQuestion)
{
    ASSERT_TRUE(saveAll({"SPUM_001", "SPUM_002", "SPUM_004"}));
    m_results.m_bUseAutoName = true;
    m_results.m_strAutoName = "SPUM_002(new)";
    ASSERT_EQ(save("not looked at"), SaveOutcome::Saved);
    EXPECT_EQ(names(), QStringList({"SPUM_001", "SPUM_002", "SPUM_004", "SPUM_003"}));
    EXPECT_EQ(noteOf("SPUM_002"), QString("note of SPUM_002"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_TRUE(m_results.m_bUseAutoName);
}

TEST_F(SaveTest, AnAutomaticNameThatIsFreeIsUsed)
{
    m_results.m_bUseAutoName = true;
    m_results.m_strAutoName = "SPUM_001(new)";
    ASSERT_EQ(save("not looked at"), SaveOutcome::Saved);
    EXPECT_EQ(names(), QStringList("SPUM_001"));
}

TEST_F(SaveTest, NoToTheQuestionLeavesEverythingAsItWas)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    m_list.m_bResultModified = true;
    m_list.updates.clear();
    for (const int nAnswer : {static_cast<int>(CORVMessageBox::NoButtonAnswer), 0}) {
        m_boxes.shown.clear();
        m_boxes.answer = nAnswer;
        EXPECT_EQ(save("kidney"), SaveOutcome::Declined);
        EXPECT_EQ(m_boxes.shown, QStringList(overwriteQuestion("kidney")));
        EXPECT_EQ(m_boxes.parents.last(), nullptr);
        EXPECT_EQ(bytes("XML/SPUM.txt"), before);
        EXPECT_EQ(files(), QStringList("SPUM-20240131-235950.xml"));
        EXPECT_TRUE(m_list.m_bResultModified);
        EXPECT_TRUE(m_list.updates.isEmpty());
    }
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(SaveTest, OverwritingLeavesTheOldFileBehind)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    m_boxes.answer = CORVMessageBox::YesButton;
    EXPECT_EQ(save("kidney(new)"), SaveOutcome::Saved);
    EXPECT_EQ(m_boxes.shown, QStringList(overwriteQuestion("kidney")));
    EXPECT_EQ(entries(), QStringList({"kidney > SpecUnmix/SPUM-20240131-235952.xml",
                                      "liver > SpecUnmix/SPUM-20240131-235951.xml"}));
    EXPECT_EQ(files().size(), names().size() + 1);
    EXPECT_EQ(noteOf("kidney"), QString("note of kidney(new)"));
}

TEST_F(SaveTest, TheTemporalAnalysisHasItsOwnNameInTheQuestion)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_engine.m_eSeqKind = SEQKIND_TEMPORAL;
    save("kidney");
    EXPECT_EQ(m_boxes.shown, QStringList(asked("Temporal Unmixing results are present under \"kidney\".\n Do you want "
                                               "to overwrite?")));
}

TEST_F(SaveTest, NothingIsLockedWhileTheUserThinks)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_boxes.answer = CORVMessageBox::YesButton;
    bool bFree = false;
    m_boxes.whileOpen = [&] { bFree = QLockFile(path("XML/SPUM.txt.lock")).tryLock(0); };
    EXPECT_EQ(save("kidney"), SaveOutcome::Saved);
    EXPECT_TRUE(bFree);
}

TEST_F(SaveTest, WhatOthersSaveWhileTheUserThinksIsKept)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_boxes.answer = CORVMessageBox::YesButton;
    m_boxes.whileOpen = [this] {
        m_boxes.whileOpen = nullptr;
        RecordingList list;
        RecordingOwner owner;
        SavedResults other(list, owner);
        other.setEngine(&m_engine);
        other.m_clock = [] { return QDateTime(QDate(2023, 1, 1), QTime(1, 1, 1)); };
        list.setCurrentText("of another");
        EXPECT_EQ(other.onClickSaveResults(), SaveOutcome::Saved);
    };
    EXPECT_EQ(save("kidney"), SaveOutcome::Saved);
    EXPECT_EQ(names(), QStringList({"kidney", "of another"}));
    EXPECT_EQ(m_boxes.shown.size(), 1);
}

TEST_F(SaveTest, AStampThatTheIndexHasAlreadyIsTakenAnew)
{
    ASSERT_EQ(save("first"), SaveOutcome::Saved);
    m_nStep = 1;
    m_nAsked = 0;
    ASSERT_EQ(save("second"), SaveOutcome::Saved);
    EXPECT_EQ(entries().last(), QString("second > SpecUnmix/SPUM-20240131-235951.xml"));
    EXPECT_EQ(noteOf("second"), QString("note of second"));
}

TEST_F(SaveTest, AnEntryInOtherCaseAndWithAnAbsolutePathCountsAsTheSameFile)
{
    ASSERT_EQ(save("first"), SaveOutcome::Saved);
    writeBytes("XML/SPUM.txt",
               "[SPUM]\nMenuName: first\nFileName: /old/SpecUnmix/XML/SpecUnmix/Spum-20240131-235950.XML\n");
    m_nStep = 1;
    m_nAsked = 0;
    ASSERT_EQ(save("second"), SaveOutcome::Saved);
    EXPECT_EQ(entries().last(), QString("second > SpecUnmix/SPUM-20240131-235951.xml"));
}

TEST_F(SaveTest, TheWalkOverTheFilesGoesOnBehindATakenAutomaticName)
{
    ASSERT_TRUE(saveAll({"SPUM_001"}));
    ASSERT_EQ(save("later"), SaveOutcome::Saved);
    m_nStep = 1;
    m_nAsked = 0;
    m_results.m_bUseAutoName = true;
    m_results.m_strAutoName = "SPUM_001(new)";
    const QString strTaken = entries().last().section(" > ", 1);
    ASSERT_EQ(save("not looked at"), SaveOutcome::Saved);
    EXPECT_EQ(names().last(), QString("SPUM_002"));
    EXPECT_NE(entries().last().section(" > ", 1), strTaken);
    EXPECT_EQ(noteOf("later"), QString("note of later"));
}

// An index may hold results of other kinds; their names are taken too.
TEST_F(SaveTest, NamesInSectionsOfAnyKeyCount)
{
    QDir(path("")).mkpath("XML");
    writeBytes("XML/SPUM.txt", "[OTHER]\nMenuName: kidney\nFileName: SpecUnmix/other.xml\n");
    EXPECT_EQ(save("kidney"), SaveOutcome::Declined);
    EXPECT_EQ(m_boxes.shown.size(), 1);
}

TEST_F(SaveTest, TwoSavesOfOneSecondShareTheFileOfTheFirst)
{
    ASSERT_EQ(save("first"), SaveOutcome::Saved);
    m_list.m_bResultModified = true;
    EXPECT_TRUE(m_results.fileOfNextSaveExists());
    EXPECT_EQ(save("second"), SaveOutcome::FileWasThere);
    EXPECT_EQ(entries(), QStringList({"first > SpecUnmix/SPUM-20240131-235950.xml",
                                      "second > SpecUnmix/SPUM-20240131-235950.xml"}));
    EXPECT_EQ(noteOf("second"), QString("note of first"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_EQ(m_log.reports(), "");
    EXPECT_FALSE(m_list.m_bResultModified);
    m_moment = m_moment.addSecs(1);
    EXPECT_FALSE(m_results.fileOfNextSaveExists());
}

TEST_F(SaveTest, WhoWaitsLosesNoResultOfTheSameSecond)
{
    m_results.m_bWaitForFreeFile = true;
    m_results.m_clock = [this] { return m_moment.addSecs(m_nAsked++ / 8); };
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(save(QString("result %1").arg(i)), SaveOutcome::Saved);
    }
    EXPECT_EQ(files().size(), 5);
    EXPECT_TRUE(isSound());
}

TEST_F(SaveTest, AHundredSavesInARowAreAllThere)
{
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(save(QString("result %1").arg(i)), SaveOutcome::Saved);
        m_moment = m_moment.addSecs(1);
    }
    EXPECT_EQ(names().size(), 100);
    EXPECT_EQ(files().size(), 100);
    EXPECT_TRUE(isSound());
}

TEST_F(SaveTest, AHundredSavesOfOneSecondLoseNoEarlierResult)
{
    ASSERT_EQ(save("result 0"), SaveOutcome::Saved);
    for (int i = 1; i < 100; ++i) {
        ASSERT_EQ(save(QString("result %1").arg(i)), SaveOutcome::FileWasThere);
    }
    EXPECT_EQ(names().size(), 100);
    EXPECT_EQ(noteOf("result 99"), QString("note of result 0"));
}

TEST_F(SaveTest, NothingIsSavedDuringAnAcquisition)
{
    CORVProcess::startLongProcess(0, LONGPROCESS_ACQUISITION, false, QString());
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    CORVProcess::endLongProcess(LONGPROCESS_ACQUISITION);
    EXPECT_TRUE(m_log.has("Unable to proceed with saving Spectral Unmixing results for sequence [seq-7] as acquisition "
                          "is in progress, please try again later.",
                          2));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_FALSE(QDir(path("XML")).exists());
}

TEST_F(SaveTest, TheRegionsAreTakenEvenWhenTheSaveFails)
{
    // Asking for the document empties the list of regions.
    m_engine.m_roiResults.append(RoiRecord());
    writeBytes("XML", "a file in the folder's place");
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_TRUE(m_engine.m_roiResults.isEmpty());
}

TEST_F(SaveTest, WithoutAnEngineOrItsSequenceNothingHappens)
{
    CORVSpumKyvo stranger("no such sequence");
    m_results.setEngine(&stranger);
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    m_results.setEngine(nullptr);
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_EQ(m_log.reports(), "");
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(SaveTest, ASequenceWithoutAHomeIsGivenOneOrStaysUnsaved)
{
    CORVSequenceDataset homeless;
    homeless.setSequenceID("homeless");
    CORVSpumKyvo engine("homeless");
    m_results.setEngine(&engine);
    m_owner.homeAnswer = 1;
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_EQ(m_owner.calls, QStringList("home"));
    EXPECT_EQ(m_log.reports(), "");
    // A window that claims success without a folder.
    m_owner.homeAnswer = 0;
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_TRUE(m_log.has("Failed to create XML folder.", 3));
    EXPECT_FALSE(QDir("XML").exists());
}

TEST_F(SaveTest, AnEmptyNameCannotBeAdded)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    m_list.m_bResultModified = true;
    EXPECT_EQ(save(""), SaveOutcome::NotSaved);
    EXPECT_TRUE(m_log.has("Unable to add new section to SPUM.txt file", 1));
    EXPECT_EQ(m_boxes.shown, QStringList(notSaved));
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_EQ(files().size(), 1);
    EXPECT_TRUE(m_list.m_bResultModified);
}

TEST_F(SaveTest, AFileInTheFoldersPlaceEndsTheSave)
{
    writeBytes("XML", "no folder");
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_TRUE(m_log.has("Failed to create XML folder.", 3));
    EXPECT_EQ(bytes("XML"), QByteArray("no folder"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(SaveTest, AFileInThePlaceOfTheFolderOfFilesEndsTheSave)
{
    QDir().mkdir(path("XML"));
    writeBytes("XML/SpecUnmix", "no folder");
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_TRUE(m_log.has("Unable to create Directory to save the Results", 3));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_TRUE(QFileInfo(path("XML/SPUM.txt")).isFile()) << "the index is made before";
    EXPECT_EQ(bytes("XML/SPUM.txt"), QByteArray());
}

TEST_F(SaveTest, AnIndexThatCannotBeReadIsLeftAlone)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray broken = bytes("XML/SPUM.txt").replace("# end", "");
    for (const QByteArray& content : {broken, QByteArray("no index"), QByteArray("[SPUM]\n\0", 8)}) {
        m_boxes.shown.clear();
        writeBytes("XML/SPUM.txt", content);
        m_list.m_bResultModified = true;
        EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
        EXPECT_EQ(m_boxes.shown, QStringList(unreadable));
        EXPECT_EQ(bytes("XML/SPUM.txt"), content);
        EXPECT_EQ(files().size(), 1);
        EXPECT_TRUE(m_list.m_bResultModified);
    }
    EXPECT_EQ(m_log.count("SPUM.txt file could not be loaded...", 1), 3);
}

TEST_F(SaveTest, AFolderInTheIndexsPlaceEndsTheSave)
{
    QDir().mkpath(path("XML/SPUM.txt"));
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_EQ(m_boxes.shown, QStringList(unreadable));
    EXPECT_TRUE(m_log.has("SPUM.txt file could not be loaded...", 1));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(SaveTest, AFolderInTheResultsPlaceGetsNoEntry)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    QDir().mkpath(path("XML/SpecUnmix/SPUM-20240131-235951.xml"));
    m_list.m_bResultModified = true;
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_EQ(m_boxes.shown, QStringList(notSaved));
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_TRUE(m_list.m_bResultModified);
}

TEST_F(SaveTest, AnIndexThatAnotherProgramHoldsFailsAsOneThatCannotBeRead)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QByteArray before = bytes("XML/SPUM.txt");
    QLockFile held(path("XML/SPUM.txt.lock"));
    held.setStaleLockTime(0);
    ASSERT_TRUE(held.tryLock(0));
    EXPECT_EQ(save("x"), SaveOutcome::NotSaved);
    EXPECT_EQ(m_boxes.shown, QStringList(unreadable));
    EXPECT_TRUE(m_log.has("SPUM.txt file could not be loaded...", 1));
    EXPECT_TRUE(m_log.mentions("another program is changing it"));
    EXPECT_EQ(bytes("XML/SPUM.txt"), before);
    EXPECT_EQ(files().size(), 1);
    held.unlock();
    EXPECT_EQ(save("x"), SaveOutcome::Saved);
}

TEST_F(SaveTest, ALockOlderThanHalfAMinuteIsBroken)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    // Left by a program that cannot be asked whether it still runs: one of another computer.
    writeBytes("XML/SPUM.txt.lock", "1\nprogram\nanother computer\n");
    QFile file(path("XML/SPUM.txt.lock"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-40), QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(save("x"), SaveOutcome::Saved);
}

} // namespace
