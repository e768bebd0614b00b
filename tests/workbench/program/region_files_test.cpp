// SPDX-License-Identifier: GPL-3.0-or-later
// Changes of regions that end half way, or that are made at once.
#include "services/basis/Failure.h"
#include "services/session/RegionFiles.h"
#include "workbench/program/ProgramFixture.h"

#include <QCryptographicHash>

#include <thread>
#include <vector>

namespace {

const QString square = QStringLiteral("rect:1,1,2,2");

class RegionFilesTest : public ProgramFixture
{
protected:
    void SetUp() override
    {
        ProgramFixture::SetUp();
        smallSequence().writeTo(path("seq"));
    }
    QString clickInfo(int n) const
    {
        return path(QStringLiteral("seq/SMALL-%1/ClickInfo.txt").arg(n, 3, 10, QChar('0')));
    }
    QList<QByteArray> clickInfos() const
    {
        return {contentOf(clickInfo(0)), contentOf(clickInfo(1)), contentOf(clickInfo(2))};
    }
    void addSquare(const QString& strName) const
    {
        succeed({"roi", "seq", "add", "--shape", square, "--name", strName, "--quiet"});
    }
    QList<RegionFiles::Change> appended(const QByteArray& bytes) const
    {
        QList<RegionFiles::Change> changes;
        for (int n = 0; n < 3; ++n) {
            const QByteArray before = contentOf(clickInfo(n));
            changes.append({clickInfo(n), before, before + bytes});
        }
        return changes;
    }
    // Hidden files of the sequence and its images.
    QStringList litter() const { return filesBelow(path("seq")).filter(QStringLiteral("/.")) + hidden(); }

    // Runs a change of the regions once for each of the calls of that kind that it makes, each time with another call
    // struck, and from the same files.
    void sweep(const QStringList& command, const QString& strKind, const char* pAction)
    {
        const auto before = clickInfos();
        setFaults(QString(), "seq", "calls.log");
        succeed(command);
        setFaults(QString());
        const auto after = clickInfos();
        ASSERT_NE(after, before);
        int undone = 0;
        const int calls = countedCalls(strKind == QLatin1String("change"));
        for (int call = 1; call <= calls; ++call) {
            for (int n = 0; n < 3; ++n) {
                write(QStringLiteral("seq/SMALL-%1/ClickInfo.txt").arg(n, 3, 10, QChar('0')), before[n]);
            }
            setFaults(QStringLiteral("%1@%2=%3").arg(strKind).arg(call).arg(QLatin1String(pAction)), "seq");
            const ProgramResult result = spum(command);
            setFaults(QString());
            // The next command only reads.
            if (QFileInfo::exists(path("seq/.regions.journal"))) {
                succeed({"roi", "seq", "list"});
            }
            const auto now = clickInfos();
            EXPECT_TRUE(now == before || now == after) << "call " << call;
            if (result.status == 0) {
                EXPECT_TRUE(now == after) << "success without a change at call " << call;
            } else if (result.status == 1) {
                EXPECT_TRUE(now == before) << "failure with a change at call " << call << result.err.constData();
                EXPECT_TRUE(result.err.startsWith("spum: ")) << call << result.err.constData();
            }
            undone += now == before ? 1 : 0;
        }
        EXPECT_GT(calls, 20);
        EXPECT_GT(undone, 10);
    }

private:
    int countedCalls(bool bChangesOnly) const
    {
        int calls = 0;
        for (const QByteArray& line : contentOf(path("calls.log")).split('\n')) {
            const QByteArray kind = line.left(line.indexOf('\t'));
            const bool changes = kind != "close" && kind != "read" && kind != "openread";
            calls += !line.isEmpty() && (changes || !bChangesOnly) ? 1 : 0;
        }
        return calls;
    }
    QStringList hidden() const
    {
        QStringList names;
        for (const QString& name : entriesOf(path("seq"))) {
            if (name.startsWith('.') && name != ".written.json") {
                names.append(name);
            }
        }
        return names;
    }
};

} // namespace

TEST_F(RegionFilesTest, EightProcessesAtOnceLoseNoRegion)
{
    constexpr int count = 8;
    for (int round = 0; round < 3; ++round) {
        std::vector<std::thread> threads;
        std::vector<ProgramResult> results(count);
        for (int n = 0; n < count; ++n) {
            threads.emplace_back([this, n, round, &results] {
                const QString name = QStringLiteral("region %1 of round %2").arg(n).arg(round);
                results[static_cast<std::size_t>(n)] =
                    program().run({"roi", "seq", "add", "--shape", square, "--name", name});
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        for (const ProgramResult& result : results) {
            EXPECT_EQ(result.status, 0) << result.err.constData();
        }
    }
    const QJsonArray regions = succeed({"roi", "seq", "list", "--json"}).json()["regions"].toArray();
    EXPECT_EQ(regions.size(), 3 * count);
    for (const auto& region : regions) {
        EXPECT_EQ(region.toObject()["images"], 3);
    }
    EXPECT_EQ(litter(), QStringList());
}

TEST_F(RegionFilesTest, AddingRemovingAndRenamingAtOnceAgree)
{
    for (const char* name : {"a", "b", "c", "d"}) {
        addSquare(name);
    }
    const QList<QStringList> commands = {{"add", "--shape", square, "--name", "e"},
                                         {"remove", "a"},
                                         {"rename", "b", "x"},
                                         {"measure", "--unit", "counts", "--save"},
                                         {"add", "--shape", square, "--name", "f"},
                                         {"remove", "c"},
                                         {"rename", "d", "y"},
                                         {"add", "--shape", square, "--name", "g"}};
    std::vector<std::thread> threads;
    for (const QStringList& command : commands) {
        threads.emplace_back([this, command] {
            const ProgramResult result = program().run(QStringList{"roi", "seq"} + command);
            EXPECT_EQ(result.status, 0) << result.err.constData();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    QStringList names;
    for (const auto& region : succeed({"roi", "seq", "list", "--json"}).json()["regions"].toArray()) {
        names.append(region.toObject()["name"].toString());
        EXPECT_EQ(region.toObject()["images"], 3);
    }
    names.sort();
    EXPECT_EQ(names, (QStringList{"e", "f", "g", "x", "y"}));
}

TEST_F(RegionFilesTest, WhoHoldsTheLockIsNamedAndNothingIsWritten)
{
    RegionFiles files(path("seq"));
    files.lock({});
    const auto before = clickInfos();
    RegionFiles other(path("seq"));
    int asked = 0;
    EXPECT_EQ(failureOf([&] { other.lock([&asked] { return ++asked < 3; }); }), "aborted by user");
    EXPECT_EQ(asked, 3);
    files.write(appended("\n"));
    EXPECT_NE(clickInfos(), before);
}

// As a program leaves it that was killed while it renamed: one file is new, the others are not.
TEST_F(RegionFilesTest, AChangeThatEndedHalfWayIsFinishedByTheNextCommand)
{
    addSquare("liver");
    const auto before = clickInfos();
    addSquare("kidney");
    const auto after = clickInfos();
    const auto putBack = [&](int first) {
        QByteArray files;
        for (int n = 0; n < 3; ++n) {
            const QString folder = QStringLiteral("seq/SMALL-%1/").arg(n, 3, 10, QChar('0'));
            write(folder + "ClickInfo.txt", n < first ? after[n] : before[n]);
            write(folder + ".ClickInfo.txt.old", before[n]);
            if (n >= first) {
                write(folder + ".ClickInfo.txt.new", after[n]);
            }
            const auto hash = [](const QByteArray& bytes) {
                return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
            };
            files += QByteArray(n > 0 ? "," : "") + R"({"path":"SMALL-00)" + QByteArray::number(n) +
                     R"(/ClickInfo.txt","before":")" + hash(before[n]) + R"(","after":")" + hash(after[n]) + "\"}";
        }
        write("seq/.regions.journal", "{\"files\":[" + files + "]}");
    };
    for (const QStringList& command : {QStringList{"roi", "seq", "list"}, QStringList{"info", "seq"},
                                       QStringList{"roi", "seq", "measure", "--unit", "counts"}}) {
        for (int first = 0; first <= 3; ++first) {
            putBack(first);
            succeed(command);
            EXPECT_EQ(clickInfos(), after);
            EXPECT_EQ(litter(), QStringList());
        }
    }
    // What cannot be finished is taken back.
    putBack(1);
    ASSERT_TRUE(QFile::remove(path("seq/SMALL-002/.ClickInfo.txt.new")));
    succeed({"roi", "seq", "list"});
    EXPECT_EQ(clickInfos(), before);
    EXPECT_EQ(litter(), QStringList());
    // What somebody has changed since is left alone, and told.
    putBack(1);
    write("seq/SMALL-002/ClickInfo.txt", before[2] + "\n");
    const QList<QByteArray> mixed = clickInfos();
    const ProgramResult reading = spum({"roi", "seq", "list"});
    EXPECT_EQ(reading.status, 0);
    EXPECT_TRUE(reading.errText().contains("a change of the regions has ended half way")) << reading.err.constData();
    EXPECT_TRUE(
        refusal({"roi", "seq", "remove", "liver"}).contains("/.regions.journal: the click infos that it tells"));
    EXPECT_EQ(clickInfos(), mixed);
}

TEST_F(RegionFilesTest, AJournalThatNamesOtherFilesIsRefused)
{
    write("ClickInfo.txt", "mine\n");
    write(".ClickInfo.txt.new", "theirs\n");
    write("seq/.regions.journal", R"({"files":[{"path":"../ClickInfo.txt","before":"","after":""}]})");
    EXPECT_TRUE(refusal({"roi", "seq", "add", "--shape", square}).contains("\"../ClickInfo.txt\" is no file of the"));
    EXPECT_EQ(contentOf(path("ClickInfo.txt")), "mine\n");
}

TEST_F(RegionFilesTest, AFaultAtAnyCallLeavesTheRegionInAllImagesOrInNone)
{
    sweep({"roi", "seq", "add", "--shape", square, "--name", "liver", "--quiet"}, "file", "EIO");
}

TEST_F(RegionFilesTest, AKillAtAnyCallLeavesTheRegionInAllImagesOrInNone)
{
    sweep({"roi", "seq", "add", "--shape", square, "--name", "liver", "--quiet"}, "change", "kill");
}

TEST_F(RegionFilesTest, AKillAtAnyCallRemovesTheRegionFromAllImagesOrFromNone)
{
    addSquare("liver");
    sweep({"roi", "seq", "remove", "liver", "--quiet"}, "change", "kill");
}

TEST_F(RegionFilesTest, AFaultAtAnyCallRenamesTheRegionInAllImagesOrInNone)
{
    addSquare("liver");
    sweep({"roi", "seq", "rename", "liver", "kidney", "--quiet"}, "change", "ENOSPC");
}
