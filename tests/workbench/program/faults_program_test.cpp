// SPDX-License-Identifier: GPL-3.0-or-later
// The program on disks that fail, killed at a call, and without threads or memory.
#include "workbench/program/ProgramFixture.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>

#include <string>
#include <thread>
#include <vector>

namespace {

class FaultsProgramTest : public ProgramFixture
{
protected:
    // Success, or one failure in words that blame the machine and not the data.
    static void expectAWord(const ProgramResult& result, const std::string& what)
    {
        EXPECT_TRUE(result.status == 0 || result.status == 1) << what << "\n" << result.err.constData();
        EXPECT_FALSE(result.errText().contains("No solution")) << what << "\n" << result.err.constData();
        EXPECT_EQ(result.status == 0, result.err.isEmpty()) << what << "\n" << result.err.constData();
    }
};

} // namespace

TEST_F(FaultsProgramTest, AnyRefusedSyncIsAFailureThatNamesTheFileAndLeavesNothing)
{
    setFaults("", ".", "log");
    succeed({"simulate", "seq", "--size", "32", "--bands", "3"});
    const int syncs = contentOf(path("log")).count("sync\t");
    ASSERT_GT(syncs, 20);
    // The first files, one in the middle, the folders at the end.
    for (const int number : {1, 2, 3, 4, syncs / 2, syncs - 1, syncs}) {
        setFaults("sync@" + QString::number(number) + "=EDQUOT");
        const ProgramResult result = spum({"simulate", "other", "--size", "32", "--bands", "3"});
        EXPECT_EQ(result.status, 1) << number;
        EXPECT_TRUE(result.errText().contains("Disk quota exceeded")) << number << "\n" << result.err.constData();
        EXPECT_FALSE(entriesOf(path(".")).join(' ').contains("other")) << number;
    }
}

TEST_F(FaultsProgramTest, WhatAKilledCommandLeftIsGoneAfterTheNextOnTheSameTarget)
{
    setFaults("write@40=kill");
    EXPECT_EQ(spum({"simulate", "seq", "--size", "32", "--bands", "3"}).status, -1);
    setFaults("");
    EXPECT_TRUE(entriesOf(path(".")).join(' ').contains(".seq-"));
    succeed({"simulate", "seq", "--size", "32", "--bands", "3"});
    EXPECT_FALSE(entriesOf(path(".")).join(' ').contains(".seq-"));
}

// Of a disk that cannot exchange names: the place is empty until a reader comes.
TEST_F(FaultsProgramTest, ASequenceThatAKilledCommandLeftAsideIsFoundByWhoeverReadsItAndTold)
{
    const QStringList simulation = {"simulate", "seq", "--size", "32", "--bands", "3", "--force"};
    succeed(simulation);
    setFaults("", ".", "log");
    succeed(simulation);
    // The last rename of all is that of the folder.
    const int renames = contentOf(path("log")).count("rename\t");
    ASSERT_GT(renames, 3);
    const QString kill = QStringLiteral("rename@%1=EINVAL;rename@%2=killafter").arg(renames).arg(renames + 1);
    succeed({"library", "save", "dyes", "--from", library()});
    const std::vector<QStringList> readers = {
        {"info", "seq"},
        {"export", "seq", "--format", "csv", "--unit", "counts", "--out", "cube.csv"},
        {"roi", "seq", "list"},
        {"results", "list", "seq"},
        {"pca", "seq/SequenceInfo.txt", "--unit", "counts", "--out", "components"},
        {"compare", "seq", "kept"},
        {"unmix", "seq", "--library", "nothing", "--out", "run"}};
    for (const QStringList& reader : readers) {
        setFaults(kill);
        EXPECT_EQ(spum(simulation).status, -1);
        setFaults("");
        ASSERT_FALSE(QFileInfo::exists(path("seq"))) << qPrintable(reader.join(' '));
        const ProgramResult result = spum(reader);
        EXPECT_TRUE(result.errText().contains("/seq was left aside by a program that was ended while it replaced it; "
                                              "it is back in its place now, as it was before"))
            << qPrintable(reader.join(' ')) << "\n"
            << result.err.constData();
        EXPECT_FALSE(result.errText().contains("try again")) << result.err.constData();
        EXPECT_TRUE(QFileInfo::exists(path("seq/SequenceInfo.txt"))) << qPrintable(reader.join(' '));
        EXPECT_FALSE(entriesOf(path(".")).join(' ').contains(".seq-")) << qPrintable(reader.join(' '));
    }
    EXPECT_EQ(succeed({"info", "seq", "--json"}).status, 0);
}

TEST_F(FaultsProgramTest, AResultThatAKilledCommandLeftAsideIsFoundByWhoeverReadsItAndTold)
{
    smallSequence().writeTo(path("small"));
    succeed({"roi", "small", "add", "--shape", "rect:0,0,2,2"});
    const auto unmixTo = [this](const QString& out) {
        return QStringList{"unmix", "small", "--library", library(), "--out", out, "--force"};
    };
    succeed(unmixTo("other"));
    struct Reader
    {
        QString out;
        QStringList arguments;
    };
    const std::vector<Reader> readers = {{"run", {"compare", "small", "run", "other", "--force"}},
                                         {"run", {"roi", "small", "measure", "--result", "run"}},
                                         {"small/inside", {"compare", "small", "inside", "other", "--force"}},
                                         {"small/inside", {"info", "small"}}};
    for (const Reader& reader : readers) {
        QFile::remove(path("log"));
        setFaults("", ".", "log");
        succeed(unmixTo(reader.out));
        const int renames = contentOf(path("log")).count("rename\t");
        setFaults(QStringLiteral("rename@%1=EINVAL;rename@%2=killafter").arg(renames).arg(renames + 1));
        EXPECT_EQ(spum(unmixTo(reader.out)).status, -1);
        setFaults("");
        ASSERT_FALSE(QFileInfo::exists(path(reader.out)));
        const ProgramResult result = spum(reader.arguments);
        EXPECT_EQ(result.status, 0) << result.err.constData();
        EXPECT_EQ(result.errText(), "spum: warning: " + path(reader.out) +
                                        " was left aside by a program that was ended while it replaced it; it is back "
                                        "in its place now, as it was before\n");
        EXPECT_TRUE(QFileInfo::exists(path(reader.out) + "/summary.json"));
        EXPECT_EQ(spum(reader.arguments).err, QByteArray());
    }
}

TEST_F(FaultsProgramTest, WhatAKilledExportOfAResultLeftInTheTemporaryFolderGoesWithTheNextCommand)
{
    smallSequence().writeTo(path("small"));
    succeed({"unmix", "small", "--library", library(), "--out", "run", "--save", "kept"});
    ASSERT_TRUE(QDir().mkpath(path("tmp")));
    program().setVariable("TMPDIR", path("tmp"));
    write("tmp/SPUM_OTHER/mine.txt", "kept");
    const QStringList exported = {"results", "export", "small", "kept", "--out", "maps"};
    succeed(exported);
    EXPECT_EQ(entriesOf(path("tmp")).filter("SPUM_"), QStringList{"SPUM_OTHER"});
    int left = 0;
    int locked = 0;
    // Some of the many calls, each a whole export.
    for (int call = 2; call < 400; call += 6) {
        QDir(path("maps")).removeRecursively();
        setFaults(QStringLiteral("change@%1=kill").arg(call), "tmp");
        if (spum(exported).status != -1) {
            break;
        }
        setFaults("");
        left += QFileInfo(path("tmp/SPUM_SMALL")).isDir() ? 1 : 0;
        locked += QFileInfo::exists(path("tmp/SPUM_SMALL.lock")) ? 1 : 0;
        succeed({"library", "list"});
        EXPECT_EQ(entriesOf(path("tmp")).filter(QRegularExpression("^SPUM_(?!OTHER)")), QStringList()) << call;
    }
    EXPECT_GT(left, 2);
    EXPECT_GT(locked, 2);
    EXPECT_EQ(contentOf(path("tmp/SPUM_OTHER/mine.txt")), "kept");
}

// Between its lock and its record an export has nothing but the lock, which at first is empty.
TEST_F(FaultsProgramTest, TheLockOfAnExportThatWasKilledAtOnceGoesWithTheNextCommand)
{
    smallSequence().writeTo(path("small"));
    succeed({"unmix", "small", "--library", library(), "--out", "run", "--save", "kept"});
    ASSERT_TRUE(QDir().mkpath(path("tmp")));
    program().setVariable("TMPDIR", path("tmp"));
    const QString lock = path("tmp/SPUM_SMALL.lock");
    for (const char* rule : {"change@1=kill", "change@2=kill", "change@3=kill"}) {
        setFaults(rule, "tmp");
        EXPECT_EQ(spum({"results", "export", "small", "kept", "--out", "maps"}).status, -1) << rule;
        setFaults("");
        if (QFileInfo::exists(lock) && contentOf(lock).isEmpty()) {
            // Another program may be about to fill one that is younger.
            QFile file(lock);
            ASSERT_TRUE(file.open(QIODevice::ReadWrite));
            ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
        }
        succeed({"library", "list"});
        EXPECT_EQ(entriesOf(path("tmp")).filter("SPUM_"), QStringList()) << rule;
    }
    succeed({"results", "export", "small", "kept", "--out", "maps"});
}

TEST_F(FaultsProgramTest, TheLockOfALivingExportStays)
{
    smallSequence().writeTo(path("small"));
    ASSERT_TRUE(QDir().mkpath(path("tmp")));
    program().setVariable("TMPDIR", path("tmp"));
    QLockFile lock(path("tmp/SPUM_SMALL.lock"));
    ASSERT_TRUE(lock.tryLock(0));
    succeed({"library", "list"});
    EXPECT_EQ(entriesOf(path("tmp")).filter("SPUM_"), QStringList{"SPUM_SMALL.lock"});
}

TEST_F(FaultsProgramTest, AnEnviExportThatIsKilledBetweenItsFilesIsNotReadInSilence)
{
    simulate();
    succeed({"export", "seq", "--format", "envi", "--unit", "counts", "--out", "cube.hdr"});
    succeed({"import", "cube.hdr", "counts"});
    const QByteArray header = contentOf(path("cube.hdr"));
    int killed = 0;
    for (const char* when : {"rename@1=kill", "rename@1=killafter", "rename@2=kill", "rename@2=killafter"}) {
        setFaults(when);
        EXPECT_EQ(
            spum({"export", "seq", "--format", "envi", "--unit", "radiance", "--out", "cube.hdr", "--force"}).status,
            -1)
            << when;
        setFaults("");
        const ProgramResult result = spum({"import", "cube.hdr", "back", "--force"});
        if (result.status != 0) {
            ++killed;
            EXPECT_TRUE(result.errText().contains("these are not the data that the header was written for"))
                << result.err.constData();
        }
        // Read in full are old data under the old header or new under the new.
        EXPECT_EQ(contentOf(path("cube.hdr")) == header, std::string(when) != "rename@2=killafter") << when;
        succeed({"export", "seq", "--format", "envi", "--unit", "counts", "--out", "cube.hdr", "--force"});
    }
    EXPECT_EQ(killed, 2);
}

TEST_F(FaultsProgramTest, OfManyThatSaveALibraryOfOneNameOneSucceeds)
{
    constexpr int savers = 8;
    std::vector<std::thread> threads;
    std::vector<ProgramResult> results(savers);
    for (int i = 0; i < savers; ++i) {
        threads.emplace_back([&, i] {
            results[static_cast<std::size_t>(i)] = spum({"library", "save", "dyes", "--from", library()});
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    int saved = 0;
    for (const ProgramResult& result : results) {
        saved += result.status == 0 ? 1 : 0;
        EXPECT_TRUE(result.status == 0 || result.err == "spum: the library dyes exists already; --force replaces it\n")
            << result.err.constData();
    }
    EXPECT_EQ(saved, 1);
}

TEST_F(FaultsProgramTest, WithoutThreadsACommandGoesOnOrSaysWhyNot)
{
    smallSequence().writeTo(path("small"));
    const QString dyes = library();
    int succeeded = 0;
    for (const char* rules : {"thread@1=EAGAIN", "thread@2=EAGAIN", "thread@3=EAGAIN", "thread@4=EAGAIN",
                              "thread@2+=EAGAIN", "thread@1+=EAGAIN"}) {
        setFaults(rules);
        const ProgramResult result = spum({"unmix", "small", "--library", dyes, "--out", path("run"), "--force"});
        expectAWord(result, rules);
        succeeded += result.status == 0 ? 1 : 0;
        expectAWord(spum({"simulate", "made", "--size", "32", "--bands", "3", "--force"}), rules);
    }
    EXPECT_GE(succeeded, 2);
}

// A sanitizer takes all the address space there is.
#if !defined(ORV_SANITIZED)

// From where the program can be loaded at all to where the command succeeds.
TEST_F(FaultsProgramTest, WithLittleMemoryACommandSaysSo)
{
    constexpr int step = 6; // MB
    constexpr int most = 600;
    constexpr int notLoaded = 127;
    simulate();
    const std::vector<QStringList> commands = {
        {"unmix", "seq", "--library", truth("counts"), "--unit", "counts", "--out", path("run"), "--force"},
        {"pca", "seq", "--unit", "counts", "--out", path("components"), "--force"},
        {"export", "seq", "--format", "csv", "--unit", "counts", "--out", path("cube.csv"), "--force"},
        {"simulate", "made", "--size", "64", "--bands", "4", "--force"}};
    for (const QStringList& command : commands) {
        int failed = 0;
        ProgramResult result;
        for (int limit = 80; result.status != 0 && limit < most; limit += step) {
            program().setMemoryLimit(limit);
            result = spum(command);
            if (result.status != notLoaded) {
                expectAWord(result, command.first().toStdString() + " in MB " + std::to_string(limit));
                failed += result.status == 1 ? 1 : 0;
            }
        }
        EXPECT_EQ(result.status, 0) << command.first().toStdString();
        EXPECT_GT(failed, 1) << command.first().toStdString();
        program().setMemoryLimit(0);
    }
}

#endif
