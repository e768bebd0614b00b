// SPDX-License-Identifier: GPL-3.0-or-later
// The units below the saving of results: names and paths, the list, the lock, files as a whole, and what holds for any
// name.
#include "storage/SavedResultsLock.h"
#include "storage/resultsIndex.h"
#include "storage/saved_fixture.h"
#include "storage/writeWholeFile.h"

#include <rapidcheck/gtest.h>

namespace {

TEST(ResultsIndexTest, PathsAreMadeOfTheInfoPath)
{
    EXPECT_EQ(resultsIndex::folder("/data/mouse 7/"), QString("/data/mouse 7/XML"));
    EXPECT_EQ(resultsIndex::batchFolder("/data/mouse 7/", "20240131235959"),
              QString("/data/mouse 7/SPUM20240131235959"));
    EXPECT_EQ(resultsIndex::indexPath("/x/XML"), QString("/x/XML/SPUM.txt"));
    EXPECT_EQ(resultsIndex::filesFolder("/x/XML"), QString("/x/XML/SpecUnmix"));
    const QDateTime moment(QDate(2024, 1, 31), QTime(23, 59, 59));
    EXPECT_EQ(resultFileStamp(moment), QString("SPUM-20240131-235959"));
    EXPECT_EQ(resultsIndex::batchStamp(moment), QString("20240131235959"));
    EXPECT_EQ(resultsIndex::resultFile(moment), QString("SpecUnmix/SPUM-20240131-235959.xml"));
    EXPECT_EQ(resultsIndex::batchResultFile("20240131235959"), QString("SpecUnmix/SPUM-XML20240131235959.xml"));
}

TEST(ResultsIndexTest, RelativeFilesBeginAtTheLastFolderOfFiles)
{
    EXPECT_EQ(resultsIndex::relativeFile("SpecUnmix/a.xml"), QString("SpecUnmix/a.xml"));
    EXPECT_EQ(resultsIndex::relativeFile("/SpecUnmix/b/SpecUnmix/a.xml"), QString("SpecUnmix/a.xml"));
    EXPECT_EQ(resultsIndex::relativeFile("specunmix/a.xml"), QString("specunmix/a.xml"));
    EXPECT_EQ(resultsIndex::relativeFile("-"), QString("-"));
    EXPECT_EQ(resultsIndex::relativeFile(""), QString());
}

TEST(ResultsIndexTest, ANameInOtherCaseServesWhenNoneIsEqual)
{
    EXPECT_EQ(resultsIndex::findName({"a", "A"}, "A").value_or("none"), QString("A"));
    EXPECT_EQ(resultsIndex::findName({"a", "\u00c4"}, "\u00e4").value_or("none"), QString("\u00c4"));
    EXPECT_EQ(resultsIndex::findName({"a", "A"}, "b").value_or("none"), QString("none"));
}

using ResultsListTest = SavedFixture;

TEST_F(ResultsListTest, ListsTheSavedNamesInTheirOrder)
{
    ASSERT_TRUE(saveAll({"kidney", "SPUM_001", "liver"}));
    m_list.updateSavedResultsForSelSeqId("seq-7");
    EXPECT_EQ(m_list.count(), 3);
    EXPECT_EQ(m_list.getSavedMenuNames(), QStringList({"kidney", "SPUM_001", "liver"}));
    EXPECT_EQ(m_list.itemText(2), QString("liver"));
    EXPECT_EQ(m_list.itemText(3), QString());
    EXPECT_EQ(m_list.itemText(-1), QString());
}

TEST_F(ResultsListTest, AnUnsavedResultGetsTheNextAutomaticNameAndIsChosen)
{
    ASSERT_TRUE(saveAll({"kidney", "SPUM_001"}));
    m_list.m_bResultModified = true;
    m_list.updateSavedResultsForSelSeqId("Mouse seven");
    EXPECT_EQ(m_list.currentText(), QString("SPUM_002(new)"));
    EXPECT_EQ(m_list.currentIndex(), 2);
    EXPECT_EQ(m_list.getSavedMenuNames(), QStringList({"kidney", "SPUM_001"}));
    EXPECT_EQ(save(m_list.currentText()), SaveOutcome::Saved);
    EXPECT_EQ(m_list.currentText(), QString("SPUM_002"));
    EXPECT_EQ(m_list.count(), 3);
}

TEST_F(ResultsListTest, TheChosenNameStaysChosen)
{
    ASSERT_TRUE(saveAll({"kidney", "liver", "spleen"}));
    EXPECT_EQ(m_list.currentText(), QString("spleen"));
    EXPECT_TRUE(m_list.choose("liver"));
    EXPECT_FALSE(m_list.choose("LIVER"));
    m_list.updateSavedResultsForSelSeqId("seq-7");
    EXPECT_EQ(m_list.currentIndex(), 1);
    m_boxes.answer = CORVMessageBox::YesButton;
    EXPECT_TRUE(m_results.onClickDeleteResults());
    EXPECT_EQ(m_list.currentText(), QString("spleen"));
    EXPECT_TRUE(m_results.onClickDeleteResults());
    EXPECT_EQ(m_list.currentText(), QString("kidney"));
    EXPECT_TRUE(m_results.onClickDeleteResults());
    EXPECT_EQ(m_list.currentText(), QString());
    EXPECT_EQ(m_list.currentIndex(), -1);
}

TEST_F(ResultsListTest, WithoutASequenceOrAnIndexThereIsNothing)
{
    m_list.updateSavedResultsForSelSeqId("seq-7");
    EXPECT_EQ(m_list.count(), 0);
    m_list.m_bResultModified = true;
    m_list.updateSavedResultsForSelSeqId("no such sequence");
    EXPECT_EQ(m_list.currentText(), QString("SPUM_001(new)"));
    EXPECT_EQ(m_log.reports(), "") << "a sequence without results is nothing to tell of";
}

TEST(SavedResultsLockTest, OneHolderAtATime)
{
    QTemporaryDir folder;
    {
        SavedResultsLock first(folder.path());
        ASSERT_TRUE(first.obtain());
        EXPECT_TRUE(QFile::exists(folder.filePath("SPUM.txt.lock")));
        QLockFile second(folder.filePath("SPUM.txt.lock"));
        EXPECT_FALSE(second.tryLock(0));
    }
    EXPECT_FALSE(QFile::exists(folder.filePath("SPUM.txt.lock")));
}

TEST(SavedResultsLockTest, OfAFolderThatIsNotThereItCannotBeObtained)
{
    const LogCapture log;
    SavedResultsLock lock("/no such folder");
    EXPECT_FALSE(lock.obtain());
    EXPECT_TRUE(log.mentions("/no such folder/SPUM.txt: the index of saved results cannot be locked"));
}

TEST(WriteWholeFileTest, ReplacesAFileOrLeavesIt)
{
    const LogCapture log;
    const QTemporaryDir folder;
    const QString strPath = folder.filePath("a file");
    EXPECT_TRUE(writeWholeFile(strPath, "first"));
    EXPECT_TRUE(writeWholeFile(strPath, QByteArray(100000, 'x')));
    EXPECT_EQ(QFileInfo(strPath).size(), 100000);
    EXPECT_TRUE(writeWholeFile(strPath, QByteArray()));
    EXPECT_EQ(QFileInfo(strPath).size(), 0);
    EXPECT_EQ(log.reports(), "");
    EXPECT_FALSE(writeWholeFile(folder.path() + "/missing/a file", "x"));
    EXPECT_FALSE(writeWholeFile(folder.path(), "x"));
    EXPECT_TRUE(log.mentions(folder.path() + "/missing/a file: cannot be written"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList("a file"));
}

// Any text that can be typed into one line.
QString anyName()
{
    const auto units = *rc::gen::nonEmpty(rc::gen::container<std::vector<char16_t>>(
        rc::gen::oneOf(rc::gen::element<char16_t>(u'"', u'&', u' ', u'<', u'[', u']', u'#', u':', u'\\', u'%',
                                                  u'\u00e4', u'\u4e2d', u'(', u')', u'\t'),
                       rc::gen::inRange<char16_t>(u'!', u'~'))));
    return QString::fromUtf16(units.data(), static_cast<int>(units.size()));
}

RC_GTEST_FIXTURE_PROP(SavedFixture, AnyNameComesBackFromTheIndex, ())
{
    QDir(path("XML")).removeRecursively();
    const QString strFirst = anyName();
    const QString strSecond = anyName();
    const QString strFirstSaved = resultsIndex::withoutNewMark(strFirst);
    const QString strSecondSaved = resultsIndex::withoutNewMark(strSecond);
    RC_PRE(strFirstSaved.compare(strSecondSaved, Qt::CaseInsensitive) != 0);
    RC_PRE(!strFirstSaved.isEmpty() && !strSecondSaved.isEmpty());
    RC_ASSERT(save(strFirst) == SaveOutcome::Saved);
    m_moment = m_moment.addSecs(1);
    RC_ASSERT(save(strSecond) == SaveOutcome::Saved);
    m_list.updateSavedResultsForSelSeqId("seq-7");
    RC_ASSERT(m_list.getSavedMenuNames() == QStringList({strFirstSaved, strSecondSaved}));

    const QString strThird = strFirstSaved + " and " + strSecondSaved;
    RC_ASSERT(m_list.choose(strFirstSaved));
    m_list.setCurrentText(strThird);
    m_results.onChangeResultsName(strThird);
    m_results.onKeyPressed(Qt::Key_Return);
    RC_ASSERT(m_list.getSavedMenuNames() == QStringList({strThird, strSecondSaved}));

    m_boxes.answer = CORVMessageBox::YesButton;
    m_list.setCurrentText(strSecondSaved);
    RC_ASSERT(m_results.onClickDeleteResults());
    RC_ASSERT(m_list.getSavedMenuNames() == QStringList(strThird));
    RC_ASSERT(files() == QStringList(resultFileStamp(m_moment.addSecs(-1)) + ".xml"));
}

} // namespace
