// SPDX-License-Identifier: GPL-3.0-or-later
// Full disks, folders without the right to write, several programs at once.
#include "storage/saved_fixture.h"

#include "support/ForkedChild.h"

#include <sys/wait.h>
#include <unistd.h>

#include <vector>

namespace {

const QString unreadable = told("Unable to save Specturm Unmixing analysis data");
const QString notSaved = told("Unable to save Spectral Unmixing analysis data for sequence [seq-7].");

class SaveFaultTest : public SavedFixture
{
protected:
    SaveFaultTest()
    {
        EXPECT_TRUE(saveAll({"kidney", "liver"}));
        m_list.m_bResultModified = true;
    }

    // What a child found: 0 when the save failed with exactly this box, and the result still waits to be saved.
    // A level of 0 looks for a part of a line.
    int failsWith(const QString& strBox, const QString& strLogged, long nLevel)
    {
        if (save("new result") != SaveOutcome::NotSaved) {
            return 2;
        }
        if (m_boxes.shown != (strBox.isEmpty() ? QStringList() : QStringList(strBox))) {
            return 3;
        }
        const bool bLogged = nLevel > 0 ? m_log.has(strLogged, nLevel) : m_log.mentions(strLogged);
        return !m_list.m_bResultModified ? 4 : !bLogged ? 5 : 0;
    }
    void setRights(const QString& strFolder, int nRights) const
    {
        QFile::setPermissions(path(strFolder), QFile::Permissions(nRights));
    }
};

// Between two saves of a program, so that the others get their turn within the time that they wait; in microseconds.
constexpr unsigned breath = 20000;

constexpr int readOnly = 0x5555;
constexpr int writable = 0x7777;

TEST_F(SaveFaultTest, AFullDiskNeverLeavesATornFile)
{
    const QByteArray index = bytes("XML/SPUM.txt");
    m_engine.resultView().setNote(QString());
    const int nPlain = m_engine.resultToXml().size();
    // Below, about and above the buffer of 16 KB, with room for less and for nearly all of it.
    for (const int nNote : {1000, 15000, 16300, 16500, 200000}) {
        for (const int nShort : {1, 100, nNote / 2, nNote}) {
            const int nFailed = inForkedChild([&] {
                const int nWhole = nPlain + 8 + nNote;
                if (!limitFileSize(static_cast<rlim_t>(nWhole - nShort))) {
                    return 1;
                }
                m_engine.resultView().setNote("note of " + QString(nNote, 'x'));
                m_list.setCurrentText("new result");
                return m_results.onClickSaveResults() == SaveOutcome::NotSaved &&
                               m_boxes.shown == QStringList(notSaved) && m_list.m_bResultModified &&
                               m_log.mentions("cannot be written")
                           ? 0
                           : 2;
            });
            EXPECT_EQ(nFailed, 0) << nNote << " short of " << nShort;
            ASSERT_EQ(bytes("XML/SPUM.txt"), index);
            ASSERT_EQ(files().size(), 2);
        }
    }
    EXPECT_TRUE(isSound());
}

TEST_F(SaveFaultTest, ADiskWithoutRoomForTheLockFailsBeforeAnythingIsWritten)
{
    const QByteArray index = bytes("XML/SPUM.txt");
    for (const rlim_t room : {0, 5}) {
        EXPECT_EQ(inForkedChild([&] {
                      return limitFileSize(room) ? failsWith(unreadable, "SPUM.txt file could not be loaded...", 1) : 1;
                  }),
                  0)
            << room;
        EXPECT_EQ(bytes("XML/SPUM.txt"), index);
        EXPECT_EQ(QDir(path("XML")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name),
                  QStringList({"SPUM.txt", "SpecUnmix"}));
    }
}

TEST_F(SaveFaultTest, ADiskWithoutRoomForTheIndexLeavesTheDocumentBehind)
{
    // An index that is larger than a document.
    QByteArray index = "[SPUM]\nMenuName: kidney\nFileName: SpecUnmix/SPUM-20240131-235950.xml\n";
    for (int i = 0; i < 900; ++i) {
        index += "[SPUM " + QByteArray::number(i + 2) + "] SPUM\nMenuName: result " + QByteArray::number(i) +
                 "\nFileName: SpecUnmix/SPUM-20240131-235950.xml\n";
    }
    writeBytes("XML/SPUM.txt", index);
    EXPECT_EQ(inForkedChild(
                  [&] { return limitFileSize(20000) ? failsWith(notSaved, "Unable to save SPUM.txt file", 1) : 1; }),
              0);
    EXPECT_EQ(bytes("XML/SPUM.txt"), index);
    EXPECT_EQ(files().size(), 3);
    EXPECT_EQ(names().size(), 901);
}

TEST_F(SaveFaultTest, WithoutTheRightToWriteTheFilesTheIndexStays)
{
    const QByteArray index = bytes("XML/SPUM.txt");
    setRights("XML", writable);
    setRights("XML/SpecUnmix", readOnly);
    EXPECT_EQ(inForkedChild([&] { return becomePlainUser() ? failsWith(notSaved, "cannot be written", 0) : 1; }), 0);
    setRights("XML/SpecUnmix", writable);
    EXPECT_EQ(bytes("XML/SPUM.txt"), index);
    EXPECT_EQ(files().size(), 2);
    EXPECT_TRUE(isSound());
}

TEST_F(SaveFaultTest, WithoutTheRightToChangeTheIndexNoFileIsWritten)
{
    const QByteArray index = bytes("XML/SPUM.txt");
    setRights("XML/SpecUnmix", writable);
    setRights("XML", readOnly);
    EXPECT_EQ(inForkedChild([&] {
                  return becomePlainUser() ? failsWith(unreadable, "SPUM.txt file could not be loaded...", 1) : 1;
              }),
              0);
    setRights("XML", writable);
    EXPECT_EQ(bytes("XML/SPUM.txt"), index);
    EXPECT_EQ(files().size(), 2);
}

TEST_F(SaveFaultTest, WithoutTheRightToMakeTheFolderOfFilesItIsTold)
{
    ASSERT_TRUE(QDir(path("XML/SpecUnmix")).removeRecursively());
    setRights("XML", readOnly);
    EXPECT_EQ(inForkedChild([&] {
                  return becomePlainUser() ? failsWith(QString(), "Unable to create Directory to save the Results", 3)
                                           : 1;
              }),
              0);
    setRights("XML", writable);
}

TEST_F(SaveFaultTest, WithoutTheRightToMakeTheFolderItIsTold)
{
    ASSERT_TRUE(QDir(path("XML")).removeRecursively());
    setRights("", readOnly);
    EXPECT_EQ(
        inForkedChild([&] { return becomePlainUser() ? failsWith(QString(), "Failed to create XML folder.", 3) : 1; }),
        0);
    setRights("", writable);
}

TEST_F(SaveFaultTest, SeveralProgramsAtOnceLoseNothingWhenTheyWait)
{
    constexpr int programs = 4;
    constexpr int savesOfEach = 15;
    std::vector<pid_t> children;
    for (int p = 0; p < programs; ++p) {
        const pid_t child = ::fork();
        if (child == 0) {
            // All live through the same seconds.
            m_results.m_bWaitForFreeFile = true;
            m_nStep = 1;
            m_nAsked = 10;
            int nSaved = 0;
            for (int i = 0; i < savesOfEach; ++i) {
                nSaved += save(QString("result %1 of %2").arg(i).arg(p)) == SaveOutcome::Saved ? 1 : 0;
                ::usleep(breath);
            }
            ::_exit(nSaved);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == savesOfEach) << status;
    }
    EXPECT_EQ(names().size(), 2 + programs * savesOfEach);
    EXPECT_EQ(files().size(), 2 + programs * savesOfEach);
    EXPECT_TRUE(isSound());
}

TEST_F(SaveFaultTest, SeveralProgramsAtOnceLoseNoEarlierResultWhenTheyDoNot)
{
    std::vector<pid_t> children;
    for (int p = 0; p < 3; ++p) {
        const pid_t child = ::fork();
        if (child == 0) {
            m_nStep = 1;
            m_nAsked = 10;
            for (int i = 0; i < 15; ++i) {
                save(QString("result %1 of %2").arg(i).arg(p));
                ::usleep(breath);
            }
            ::_exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    }
    EXPECT_EQ(names().size(), 2 + 3 * 15);
    for (const QString& name : names()) {
        EXPECT_TRUE(noteOf(name).startsWith("note of ")) << name.toStdString();
    }
    EXPECT_EQ(noteOf("kidney"), QString("note of kidney"));
    EXPECT_EQ(noteOf("liver"), QString("note of liver"));
}

TEST_F(SaveFaultTest, TwoProgramsThatStartTogetherInAFreshFolderBothSave)
{
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(QDir(path("XML")).removeRecursively());
        std::vector<pid_t> children;
        for (int p = 0; p < 2; ++p) {
            const pid_t child = ::fork();
            if (child == 0) {
                m_moment = m_moment.addSecs(p);
                ::_exit(save(QString("result %1").arg(p)) == SaveOutcome::Saved ? 0 : 1);
            }
            children.push_back(child);
        }
        for (const pid_t child : children) {
            int status = 0;
            ASSERT_EQ(::waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
        }
        EXPECT_EQ(names().size(), 2);
        EXPECT_TRUE(isSound());
    }
}

} // namespace
