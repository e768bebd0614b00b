// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/SimulateCommand.h"

#include "services/basis/Failure.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/ExitStatus.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Runs the command with these arguments in an empty folder; returns the failure's status, 0 without one.
int runSimulate(const QStringList& arguments, QString* pMessage)
{
    SimulateCommand command;
    CommandParser parser;
    CliSession::declareOptions(parser);
    command.declare(parser);
    const QStringList all = QStringList{QStringLiteral("spum simulate"), QStringLiteral("--quiet")} + arguments;
    EXPECT_TRUE(parser.parse(all)) << qPrintable(parser.errorText());
    try {
        CliSession session(parser);
        command.run(parser, session);
        return 0;
    } catch (const Failure& failure) {
        *pMessage = failure.text();
        return ExitStatus::of(failure);
    }
}

QStringList entries(const QTemporaryDir& folder)
{
    return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

struct BadUse
{
    const char* arguments; // split at blanks; OUT follows
    const char* word;      // that the message holds
};

void PrintTo(const BadUse& use, std::ostream* pStream)
{
    *pStream << use.arguments;
}

class SimulateCommandUsage : public ::testing::TestWithParam<BadUse>
{
};

} // namespace

TEST_P(SimulateCommandUsage, IsRefusedAndNothingIsWritten)
{
    QTemporaryDir folder;
    QString message;
    QStringList arguments = QString::fromLatin1(GetParam().arguments).split(QLatin1Char(' '));
    arguments.append(folder.filePath(QStringLiteral("out")));
    EXPECT_EQ(runSimulate(arguments, &message), ExitStatus::usage);
    EXPECT_TRUE(message.contains(QLatin1String(GetParam().word))) << qPrintable(message);
    EXPECT_TRUE(entries(folder).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, SimulateCommandUsage,
    ::testing::Values(BadUse{"--size big", "--size"}, BadUse{"--size -5", "size"}, BadUse{"--size 1e9", "--size"},
                      BadUse{"--bands 1", "bands"}, BadUse{"--gain nan", "gain"}, BadUse{"--peak -20000", "brightest"},
                      BadUse{"--offset inf", "offset"}, BadUse{"--depths 2,x", "--depths"},
                      BadUse{"--depths 2,-6", "depth"}, BadUse{"--seed -1", "--seed"}, BadUse{"--seed 1.5", "--seed"},
                      BadUse{"--noise some", "--noise"}, BadUse{"--exposure 0", "exposure"},
                      BadUse{"--probes AF68", "did you mean"}, BadUse{"--probes AF680,,AF700", "probe"},
                      BadUse{"--noise none --mixed-binning", "binning"},
                      BadUse{"--excitations 640,660nm", "--excitations"}, BadUse{"second-folder", "one folder"},
                      BadUse{"--kind xray", "--kind"}, BadUse{"--kind temporal --bands 4", "--bands does not go"},
                      BadUse{"--kind cherenkov --probes AF750", "--probes does not go"},
                      BadUse{"--kind cherenkov --excitations 600", "--excitations does not go"},
                      BadUse{"--kind luminescent --food-ratio 1", "--food-ratio does not go"},
                      BadUse{"--kind luminescent --spots 2", "--spots does not go"},
                      BadUse{"--kind transillumination --mixed-binning", "--mixed-binning does not go"},
                      BadUse{"--times 0,10", "--times does not go with the kind epi"},
                      BadUse{"--no-time-keys", "--no-time-keys does not go"}, BadUse{"--isotope F-18", "--isotope"},
                      BadUse{"--kind epi --span 2", "--span does not go"},
                      BadUse{"--kind temporal --times 0,x", "--times"}, BadUse{"--kind temporal --times 0", "times"},
                      BadUse{"--kind cherenkov --isotope He-4", "F-18"},
                      BadUse{"--kind transillumination --spots 0", "spots"},
                      BadUse{"--kind luminescent --probes AF750", "luciferase"}));

TEST(SimulateCommandTest, NoFolderIsAUsageError)
{
    QString message;
    EXPECT_EQ(runSimulate({}, &message), ExitStatus::usage);
}

TEST(SimulateCommandTest, WritesTheSequenceWithItsTruth)
{
    QTemporaryDir folder;
    QString message;
    const QString out = folder.filePath(QStringLiteral("out"));
    const QStringList arguments{QStringLiteral("--size"), QStringLiteral("32"), QStringLiteral("--bands"),
                                QStringLiteral("3"), out};
    ASSERT_EQ(runSimulate(arguments, &message), 0) << qPrintable(message);
    EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("/SequenceInfo.txt")));
    EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("/truth/radiance/spectra.csv")));
    EXPECT_EQ(runSimulate(arguments, &message), ExitStatus::failed); // it exists
    EXPECT_TRUE(message.contains(out)) << qPrintable(message);
    EXPECT_EQ(runSimulate(arguments + QStringList(QStringLiteral("--force")), &message), 0);
}

TEST(SimulateCommandTest, WritesEveryKind)
{
    for (const char* kind : {"luminescent", "transillumination", "temporal", "cherenkov"}) {
        QTemporaryDir folder;
        QString message;
        const QString out = folder.filePath(QStringLiteral("out"));
        const QStringList arguments{QStringLiteral("--size"),  QStringLiteral("32"),     QStringLiteral("--kind"),
                                    QString::fromLatin1(kind), QStringLiteral("--full"), out};
        EXPECT_EQ(runSimulate(arguments, &message), 0) << kind << ": " << qPrintable(message);
        EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("/truth/radiance/spectra.csv"))) << kind;
    }
}

TEST(SimulateCommandTest, InterruptionEndsWithItsStatusAndLeavesNothing)
{
    QTemporaryDir folder;
    QString message;
    CliSession::setInterrupted(true);
    EXPECT_EQ(
        runSimulate({QStringLiteral("--size"), QStringLiteral("32"), folder.filePath(QStringLiteral("out"))}, &message),
        ExitStatus::aborted);
    CliSession::setInterrupted(false);
    EXPECT_TRUE(entries(folder).isEmpty());
}
