// SPDX-License-Identifier: GPL-3.0-or-later
// What all commands of the program have in common.
#include "workbench/program/ProgramFixture.h"

#include "support/ForkedChild.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QMap>
#include <QRegularExpression>

namespace {

const QStringList commands = {"simulate", "import", "info", "export", "pca", "unmix", "compare", "library"};

class ProgramTest : public ProgramFixture
{
protected:
    void writeWithoutCalibration() const
    {
        SmallSequence sequence = smallSequence();
        for (auto& image : sequence.images) {
            image.calibratedUnit = DISPLAYUNIT_COUNTS;
        }
        sequence.writeTo(path("seq"));
    }
};

} // namespace

TEST_F(ProgramTest, TellsItsVersion)
{
    for (const QStringList& arguments :
         {QStringList{"--version"}, QStringList{"-v"}, QStringList{"unmix", "--version"}}) {
        EXPECT_EQ(succeed(arguments).out, "spum 0.1.0\n");
    }
}

TEST_F(ProgramTest, HelpListsTheCommands)
{
    for (const QStringList& words : {QStringList{"--help"}, QStringList{"-h"}, QStringList{"help"},
                                     QStringList{"help", "help"}, QStringList{"help", "--help"}}) {
        const QString text = QString::fromUtf8(succeed(words).out);
        EXPECT_TRUE(text.startsWith("Usage: spum COMMAND [options]\n"));
        for (const auto& command : commands) {
            EXPECT_TRUE(text.contains("\n  " + command + ' ')) << qPrintable(command);
        }
    }
}

TEST_F(ProgramTest, EachCommandHasItsHelp)
{
    for (const auto& command : commands) {
        const QString text = QString::fromUtf8(succeed({command, "--help"}).out);
        EXPECT_TRUE(text.startsWith("Usage: spum " + command + " [options]")) << qPrintable(text);
        for (const char* option : {"--help", "--json", "--quiet", "--verbose", "--log <FILE>", "--trace <FILE>"}) {
            EXPECT_TRUE(text.contains(option)) << qPrintable(command) << option;
        }
        EXPECT_EQ(succeed({command, "-h"}).out, text.toUtf8());
        EXPECT_EQ(succeed({"help", command}).out, text.toUtf8());
        EXPECT_TRUE(text.contains("\nExamples:\n  spum " + command)) << qPrintable(text);
    }
}

TEST_F(ProgramTest, HelpTakesOneCommandThatThereIs)
{
    EXPECT_EQ(refusal({"help", "unmixx"}, 2),
              "there is no command \"unmixx\"; did you mean \"unmix\"? See \"spum --help\".");
    EXPECT_EQ(refusal({"help", "zzz"}, 2), "there is no command \"zzz\". See \"spum --help\".");
    EXPECT_EQ(refusal({"help", "unmix", "pca"}, 2), "help takes one command. See \"spum --help\".");
}

TEST_F(ProgramTest, ACommandThatIsUnknownOrMissingIsAUsageError)
{
    EXPECT_EQ(refusal({"unmixx"}, 2), "there is no command \"unmixx\"; did you mean \"unmix\"? See \"spum --help\".");
    EXPECT_EQ(refusal({"comp"}, 2), "there is no command \"comp\"; did you mean \"compare\"? See \"spum --help\".");
    EXPECT_EQ(refusal({"quux"}, 2), "there is no command \"quux\". See \"spum --help\".");
    EXPECT_EQ(refusal({"--json"}, 2), "there is no command \"--json\". See \"spum --help\".");
    EXPECT_EQ(refusal({}, 2), "no command given: simulate, import, info, export, pca, unmix, batch, results, compare, "
                              "redo, library, sources, roi. See \"spum --help\".");
}

TEST_F(ProgramTest, AnUnknownOptionIsAUsageError)
{
    // Arguments and options that leave nothing else wrong; of the others a word.
    const QMap<QString, QStringList> complete = {
        {"import", {"x", "y"}},     {"export", {"x", "--format", "csv", "--out", "y"}},
        {"compare", {"x", "y"}},    {"results", {"list", "x"}},
        {"library", {"show", "x"}}, {"roi", {"x", "list"}}};
    for (const auto& command : commands + QStringList{"results", "roi", "redo"}) {
        const QStringList call = QStringList{command} + complete.value(command, {"x"});
        EXPECT_EQ(refusal(call + QStringList("--bogus"), 2),
                  QStringLiteral("Unknown option 'bogus'. See \"spum %1 --help\".").arg(command));
        refusal(call + QStringList("--log"), 2);
    }
}

TEST_F(ProgramTest, ASlipInAnOptionIsToldWithWhatWasMeant)
{
    EXPECT_EQ(refusal({"unmix", "seq", "--compnents", "A,B"}, 2),
              "Unknown option 'compnents'; did you mean --components or --ncomponents? See \"spum unmix --help\".");
    EXPECT_EQ(refusal({"simulate", "seq", "--sizes=64"}, 2),
              "Unknown option 'sizes'; did you mean --size? See \"spum simulate --help\".");
    EXPECT_EQ(refusal({"info", "seq", "-json"}, 1), refusal({"info", "seq", "--json"}, 1));
}

TEST_F(ProgramTest, EveryUnknownOptionOfACallIsTold)
{
    const ProgramResult result = spum({"unmix", "seq", "--bogus", "--maks=none", "-zz", "--log"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, QByteArray());
    const QStringList lines = result.errText().split('\n');
    ASSERT_EQ(lines.size(), 6) << result.err.constData();
    EXPECT_EQ(lines[0], "spum: Unknown option 'bogus'.");
    EXPECT_EQ(lines[1], "spum: Unknown option 'maks'; did you mean --mask?");
    EXPECT_EQ(lines[2], "spum: Unknown option 'zz'.");
    EXPECT_TRUE(lines[3].contains("log")) << qPrintable(lines[3]);
    EXPECT_EQ(lines[4], "spum: See \"spum unmix --help\".");
}

TEST_F(ProgramTest, AWrongNumberOfArgumentsIsAUsageError)
{
    for (const QStringList& arguments :
         {QStringList{"simulate"}, QStringList{"simulate", "a", "b"}, QStringList{"info"},
          QStringList{"info", "a", "b"}, QStringList{"import", "a"}, QStringList{"unmix"}, QStringList{"pca"},
          QStringList{"pca", "a", "b"}, QStringList{"compare"}, QStringList{"compare", "a"},
          QStringList{"unmix", "a", "b", "--library", "l"}, QStringList{"library"}, QStringList{"library", "show"},
          QStringList{"library", "list", "x"}, QStringList{"library", "save", "x"},
          QStringList{"library", "drop", "x"}}) {
        EXPECT_TRUE(refusal(arguments, 2).contains("--help")) << qPrintable(arguments.join(' '));
    }
    EXPECT_EQ(entriesOf(path(".")), QStringList());
}

TEST_F(ProgramTest, AnOptionThatMakesNoSenseIsAUsageError)
{
    for (const QStringList& options :
         {QStringList{"--method", "guided"}, QStringList{"--method", "x"}, QStringList{"--unit", "lux"},
          QStringList{"--binning", "0"}, QStringList{"--binning", "65"}, QStringList{"--binning", "two"},
          QStringList{"--select", " "}, QStringList{"--trace", ""}, QStringList{"--log", ""}}) {
        refusal(QStringList{"unmix", "seq", "--library", "l"} + options, 2);
    }
    for (const QStringList& options :
         {QStringList{"--components", "A,,B"}, QStringList{"--components", "A,B", "--ncomponents", "2"},
          QStringList{"--ncomponents", "two"}, QStringList{"--constraints", "--no-constraints"},
          QStringList{"--decay", "soon"}, QStringList{"--decay", "0"}, QStringList{"--library", "l"},
          QStringList{"--mask", "rect:1,2,3"}, QStringList{"--mask", ""}, QStringList{"--threshold", "101"},
          QStringList{"--threshold", "20", "--mask", "none"}}) {
        refusal(QStringList{"unmix", "seq", "--method", "automatic"} + options, 2);
    }
    EXPECT_TRUE(refusal({"unmix", "seq", "--method", "library"}, 2).startsWith("--library is missing"));
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", "l", "--components", "A,B", "--decay", "auto"}, 2)
                    .startsWith("--components, --decay takes --method automatic."));
    refusal({"pca", "seq", "--binning", "0"}, 2);
    EXPECT_TRUE(refusal({"import", "a", "b", "--images", ""}, 2).startsWith("--images takes the table"));
    for (const QStringList& options :
         {QStringList{"--size", "many"}, QStringList{"--noise", "loud"}, QStringList{"--size", "-5"},
          QStringList{"--probes", "Nobody"}, QStringList{"--seed", "-1"}, QStringList{"--bands", "1"}}) {
        refusal(QStringList{"simulate", "out"} + options, 2);
    }
    EXPECT_EQ(entriesOf(path(".")), QStringList());
}

TEST_F(ProgramTest, InAPipeStandardErrorStaysEmpty)
{
    simulate();
    succeed({"info", "seq"});
    succeed({"unmix", "seq", "--library", truth()});
    succeed({"library", "list"});
}

TEST_F(ProgramTest, OnATerminalProgressIsShownAndTakenAway)
{
    const ProgramResult result = program().runOnTerminal({"simulate", "seq", "--size", "128", "--bands", "8"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.err.contains("simulating")) << result.err.constData();
    EXPECT_TRUE(result.err.endsWith("\r\x1b[K")) << result.err.toHex().constData();
    for (const char* option : {"--quiet", "--json"}) {
        EXPECT_EQ(program().runOnTerminal({"simulate", "seq", "--size", "64", "--bands", "8", "--force", option}).err,
                  QByteArray());
    }
}

TEST_F(ProgramTest, QuietSaysNothingButErrors)
{
    const ProgramResult made = succeed({"simulate", "seq", "--size", "64", "--bands", "8", "--quiet"});
    EXPECT_EQ(made.out, QByteArray());
    EXPECT_EQ(succeed({"unmix", "seq", "--library", truth(), "--quiet"}).out, QByteArray());
    write(QStringLiteral("seq/%1/luminescent.TIF").arg(entriesOf(path("seq")).filter("SIM").first()), "cut");
    EXPECT_EQ(succeed({"info", "seq", "--quiet"}).out, QByteArray());
    EXPECT_TRUE(refusal({"unmix", "nowhere", "--library", truth(), "--quiet"}).contains("nowhere"));
}

TEST_F(ProgramTest, JsonIsOneObjectAndNothingElse)
{
    EXPECT_EQ(succeed({"simulate", "seq", "--size", "64", "--bands", "8", "--json"}).json()["size"], 64);
    EXPECT_EQ(succeed({"info", "seq", "--json"}).json()["images"].toArray().size(), 8);
    EXPECT_EQ(succeed({"unmix", "seq", "--library", truth(), "--json"}).json()["images"], 8);
    EXPECT_TRUE(succeed({"library", "list", "--json"}).json()["libraries"].toArray().isEmpty());
    EXPECT_EQ(succeed({"library", "show", truth(), "--json"}).json()["spectra"].toArray().size(), 4);
}

TEST_F(ProgramTest, AWarningGoesBesideTheJson)
{
    simulate();
    write(QStringLiteral("seq/%1/luminescent.TIF").arg(entriesOf(path("seq")).filter("SIM").at(1)), "cut");
    const ProgramResult result = spum({"info", "seq", "--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json()["warnings"].toArray().size(), 1);
    EXPECT_TRUE(result.err.startsWith("spum: warning: "));
}

// The engine logs each unit that it cannot have.
TEST_F(ProgramTest, TheLogIsAppendedToItsFile)
{
    writeWithoutCalibration();
    succeed({"unmix", "seq", "--library", library(), "--log", path("my log.txt")});
    const QByteArray first = contentOf(path("my log.txt"));
    EXPECT_TRUE(first.contains("WARNING   SpumKyvo: Will try the radiance unit!\n")) << first.constData();
    succeed({"unmix", "seq", "--library", library(), "--log", path("my log.txt"), "--force"});
    const QByteArray both = contentOf(path("my log.txt"));
    EXPECT_TRUE(both.startsWith(first));
    EXPECT_GT(both.size(), first.size());
}

TEST_F(ProgramTest, TheTraceHasAFileOfItsOwn)
{
    simulate();
    const ProgramResult result = succeed({"unmix", "seq", "--library", truth(), "--trace", "trace.txt", "--json"});
    EXPECT_TRUE(result.json().contains("components"));
    EXPECT_TRUE(QFileInfo::exists(path("trace.txt")));
    // Iterations are told there, and nowhere else.
    const ProgramResult automatic =
        succeed({"unmix", "seq", "--ncomponents", "2", "--trace", "iterations.txt", "--json"},
                {"unexplained", "too-few-components"});
    const QByteArray trace = contentOf(path("iterations.txt"));
    EXPECT_EQ(trace.count("Iteration: "), automatic.json()["iterations"].toInt()) << trace.right(400).constData();
    EXPECT_FALSE(automatic.out.contains("Iteration: "));
}

TEST_F(ProgramTest, ALogOrTraceThatCannotBeWrittenStopsTheCommand)
{
    EXPECT_TRUE(refusal({"simulate", "seq", "--log", path("no/log.txt")}).contains("no/log.txt"));
    EXPECT_TRUE(refusal({"simulate", "seq", "--trace", path("no/trace.txt")}).contains("no/trace.txt"));
    EXPECT_EQ(entriesOf(path(".")), QStringList());
}

TEST_F(ProgramTest, VerboseShowsTheLog)
{
    writeWithoutCalibration();
    const ProgramResult result = spum({"unmix", "seq", "--library", library(), "--verbose"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.err.contains("SpumKyvo: Will try the radiance unit!")) << result.err.constData();
    EXPECT_FALSE(result.out.contains("SpumKyvo"));
}

TEST_F(ProgramTest, AnOutputThatExistsIsRefusedAndStaysAsItIs)
{
    simulate();
    const QByteArray before = contentOf(path("seq/SequenceInfo.txt"));
    EXPECT_TRUE(refusal({"simulate", "seq", "--size", "64", "--bands", "8", "--seed", "9"})
                    .contains("exists already; --force replaces it"));
    EXPECT_EQ(contentOf(path("seq/SequenceInfo.txt")), before);
    succeed({"unmix", "seq", "--library", truth()});
    const QByteArray summary = contentOf(path("seq/unmixed-library/summary.json"));
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", truth(), "--unit", "counts"}).contains("--force"));
    EXPECT_EQ(contentOf(path("seq/unmixed-library/summary.json")), summary);
    succeed({"unmix", "seq", "--library", truth("counts"), "--unit", "counts", "--force"});
    EXPECT_NE(contentOf(path("seq/unmixed-library/summary.json")), summary);
    ASSERT_TRUE(QDir(path("seq/unmixed-library")).removeRecursively());
    succeed({"simulate", "seq", "--size", "64", "--bands", "8", "--seed", "9", "--force"});
    EXPECT_NE(contentOf(path("seq/SequenceInfo.txt")), before);
}

TEST_F(ProgramTest, ASequenceIsReplacedOnlyWhereItHoldsNothingElse)
{
    const QStringList again = {"simulate", "seq", "--size", "64", "--bands", "8", "--force", "--discard-results"};
    simulate();
    const QStringList plain = filesBelow(path("seq"));
    succeed({"unmix", "seq", "--library", truth(), "--save", "--out", "seq/unmixed", "--quiet"});
    write("seq/truth/my notes.txt", "dear");
    write("seq/.hidden", "x");
    succeed({"roi", "seq", "add", "--shape", "rect:20,20,99,99", "--quiet"});
    const QStringList full = filesBelow(path("seq"));
    QString told = refusal(again);
    EXPECT_TRUE(told.contains("/seq holds what was not written with it and would be lost: .hidden, SIM"))
        << qPrintable(told);
    EXPECT_TRUE(told.contains("_001/ClickInfo.txt (changed), ")) << qPrintable(told);
    EXPECT_TRUE(told.contains(" more; move this away, or choose another folder")) << qPrintable(told);
    EXPECT_EQ(filesBelow(path("seq")), full);
    succeed({"roi", "seq", "remove", "all", "--quiet"});
    ASSERT_TRUE(QFile::remove(path("seq/.hidden")));
    ASSERT_TRUE(QDir(path("seq/unmixed")).removeRecursively());
    told = refusal(again);
    EXPECT_TRUE(told.contains(" would be lost: truth/my notes.txt; move")) << qPrintable(told);
    ASSERT_TRUE(QFile::remove(path("seq/truth/my notes.txt")));
    ASSERT_TRUE(QFile::link(path("home"), path("seq/link")));
    EXPECT_TRUE(refusal(again).contains(" would be lost: link; move"));
    ASSERT_TRUE(QFile::remove(path("seq/link")));
    // The saved results are given up by an option of their own.
    succeed(again);
    EXPECT_EQ(filesBelow(path("seq")), plain);
}

TEST_F(ProgramTest, ForceReplacesNoFolderOfSomebodyElse)
{
    simulate();
    write("mine/letter.txt", "dear");
    EXPECT_TRUE(refusal({"simulate", "mine", "--force"}).contains("was not made by this program"));
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", truth(), "--out", "mine", "--force"})
                    .contains("was not made by this program"));
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", truth(), "--out", "seq", "--force"}).contains("was not made"));
    EXPECT_EQ(entriesOf(path("mine")), (QStringList{"letter.txt"}));
    EXPECT_EQ(entriesOf(path(".")), (QStringList{"mine", "seq"}));
}

TEST_F(ProgramTest, AFileInTheWayIsRefused)
{
    write("file", "x");
    EXPECT_TRUE(refusal({"simulate", "file"}).contains("exists already"));
    EXPECT_TRUE(refusal({"simulate", "file", "--force"}).contains("not replaced"));
    EXPECT_TRUE(refusal({"simulate", "file/seq"}).contains("is not a folder"));
    EXPECT_TRUE(refusal({"simulate", "absent/seq"}).contains("is not a folder"));
    EXPECT_EQ(contentOf(path("file")), "x");
}

// Root may write anywhere, so it becomes another user.
TEST_F(ProgramTest, AParentThatCannotBeWrittenToIsRefused)
{
    ASSERT_TRUE(QDir().mkpath(path("closed")));
    ASSERT_EQ(::chmod(QFile::encodeName(path("..")).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(path("closed")).constData(), 0555), 0);
    const QByteArray log = QFile::encodeName(path("stderr.txt"));
    const QByteArray temporary = QFile::encodeName(path("temporary"));
    ASSERT_EQ(::mkdir(temporary.constData(), 0777), 0);
    ASSERT_EQ(::chmod(temporary.constData(), 0777), 0);
    const QByteArray target = QFile::encodeName(path("closed/seq"));
    const QByteArray binary = QFile::encodeName(SpumProgram::path());
    const int status = inForkedChild([&] {
        if (::freopen(log.constData(), "w", stderr) == nullptr || ::setenv("TMPDIR", temporary.constData(), 1) != 0 ||
            !becomePlainUser() || ::access(binary.constData(), X_OK) != 0) {
            return 99;
        }
        ::execl(binary.constData(), "spum", "simulate", target.constData(), static_cast<char*>(nullptr));
        return 98;
    });
    if (status == 99) {
        GTEST_SKIP() << "another user cannot run the program where it was built";
    }
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(contentOf(path("stderr.txt")).startsWith("spum: " + target + " cannot be made: "))
        << contentOf(path("stderr.txt")).constData();
    EXPECT_EQ(entriesOf(path("closed")), QStringList());
}

TEST_F(ProgramTest, AFullOutputIsAnError)
{
    if (!QFileInfo::exists("/dev/full")) {
        GTEST_SKIP() << "there is no /dev/full";
    }
    simulate();
    const QByteArray binary = QFile::encodeName(SpumProgram::path());
    const QByteArray sequence = QFile::encodeName(path("seq"));
    const int status = inForkedChild([&] {
        if (::freopen("/dev/full", "w", stdout) == nullptr || ::freopen("/dev/null", "w", stderr) == nullptr) {
            return 99;
        }
        ::execl(binary.constData(), "spum", "info", sequence.constData(), static_cast<char*>(nullptr));
        return 98;
    });
    EXPECT_EQ(status, 1);
}

// Names come from files that others wrote; a terminal obeys what it is shown.
TEST_F(ProgramTest, WhatWouldSteerATerminalIsShownEscaped)
{
    smallSequence().writeTo(path("seq"));
    write("seq/SequenceInfo.txt",
          contentOf(path("seq/SequenceInfo.txt"))
              .replace("Sequence Name: SMALL", "Sequence Name: a\x1b[2J \xC2\x9b \xE2\x80\xAE gpj.exe"));
    const QByteArray text = spum({"info", "seq"}).out;
    EXPECT_TRUE(text.contains("a\\x1b[2J \\x9b \\u202e gpj.exe")) << text.constData();
    for (const char* raw : {"\x1b", "\xC2\x9b", "\xE2\x80\xAE"}) {
        EXPECT_FALSE(text.contains(raw));
        EXPECT_FALSE(spum({"info", "seq", "--json"}).out.contains(raw));
    }
    const QJsonObject json = spum({"info", "seq", "--json"}).json();
    EXPECT_TRUE(QString::fromUtf8(QJsonDocument(json).toJson()).contains(QChar(0x202E)));
    const QByteArray told = spum({"info", QString::fromUtf8("no\x1b]0;x\x07")}).err;
    EXPECT_TRUE(told.contains("no\\x1b]0;x\\x07")) << told.constData();
    EXPECT_FALSE(told.contains('\x1b'));
}

TEST_F(ProgramTest, QuietKeepsTheReasonOfAFailure)
{
    simulate();
    QString image;
    for (const auto& name : filesBelow(path("seq"))) {
        image = image.isEmpty() && name.endsWith("luminescent.TIF") ? name : image;
    }
    QFile file(path("seq/" + image));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.resize(file.size() / 2));
    file.close();
    const QStringList unmix = {"unmix", "seq", "--library", truth()};
    const ProgramResult plain = spum(unmix);
    EXPECT_NE(plain.status, 0);
    EXPECT_EQ(spum(unmix + QStringList{"--quiet"}).err, plain.err);
}

TEST_F(ProgramTest, ABrokenIndexSaysWhatIsBroken)
{
    smallSequence().writeTo(path("seq"));
    succeed({"unmix", "seq", "--library", library(), "--save", "--quiet"});
    write("seq/XML/SPUM.txt", contentOf(path("seq/XML/SPUM.txt")) + "\nno key here\n");
    const QString told = refusal({"results", "list", "seq"});
    EXPECT_TRUE(told.contains("SPUM.txt: the list of saved results cannot be read (")) << qPrintable(told);
    EXPECT_TRUE(told.contains("no key here") || told.contains(QRegularExpression("SPUM\\.txt:\\d+: ")))
        << qPrintable(told);
}

// 24 bands ended in "No solution!" with what is proposed without options.
TEST_F(ProgramTest, ManyBandsAreUnmixedWithoutOptions)
{
    for (const char* bands : {"24", "36", "40"}) {
        const QString name = QStringLiteral("seq") + bands;
        succeed({"simulate", name, "--size", "96", "--bands", bands, "--quiet"});
        // So close together the names of a fed animal's sources have no solution; that is told.
        EXPECT_EQ(succeed({"unmix", name, "--json"}, {"not-by-names"}).json()["images"], QString(bands).toInt());
    }
}
