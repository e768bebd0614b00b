// SPDX-License-Identifier: GPL-3.0-or-later
// `spum library` from end to end.
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QFile>

#include <array>
#include <thread>
#include <vector>

namespace {

class LibraryProgramTest : public ProgramFixture
{
protected:
    QStringList saved() const
    {
        QStringList names;
        for (const auto& library : succeed({"library", "list", "--json"}).json()["libraries"].toArray()) {
            names.append(library.toObject()["name"].toString());
        }
        return names;
    }
    QJsonArray spectra(const QString& strName) const
    {
        return succeed({"library", "show", strName, "--json"}).json()["spectra"].toArray();
    }
    // Each in a process of its own; all succeed.
    void runAtOnce(const QList<QStringList>& commands) const
    {
        std::vector<std::thread> threads;
        for (const QStringList& command : commands) {
            threads.emplace_back([this, command] {
                const ProgramResult result = program().run(command);
                EXPECT_EQ(result.status, 0) << qPrintable(command.join(' ')) << '\n' << result.err.constData();
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
    }
};

double valueOf(const QJsonValue& spectrum, int nPoint)
{
    return spectrum.toObject()["points"].toArray()[nPoint].toObject()["value"].toDouble(-1.0);
}

} // namespace

TEST_F(LibraryProgramTest, WithoutAnyTheListSaysSo)
{
    EXPECT_EQ(succeed({"library", "list"}).out, "no library is saved\n");
}

TEST_F(LibraryProgramTest, AFileIsSavedListedShownAndUsed)
{
    const QString text = QString::fromUtf8(succeed({"library", "save", "my dyes", "--from", library()}).out);
    EXPECT_TRUE(text.startsWith("saved 2 spectra of 3 points as my dyes (" + path("home/data/"))) << qPrintable(text);
    EXPECT_EQ(succeed({"library", "list"}).out, "library  spectra  points  note\n"
                                                "my dyes        2       3  by hand\n");
    EXPECT_EQ(succeed({"library", "show", "my dyes"}).out, "Note: by hand\n\n"
                                                           "first  second  Dye A  Dye B\n"
                                                           "  640     740      0      1\n"
                                                           "  640     700      1      0\n"
                                                           "  640     720    0.5   0.25\n");
    smallSequence().writeTo(path("seq"));
    EXPECT_EQ(succeed({"unmix", "seq", "--library", "my dyes", "--json"}).json()["components"].toArray().size(), 2);
}

// A sequence and the library of its spectra may well have one name.
TEST_F(LibraryProgramTest, AFolderOfThatNameDoesNotHideALibrary)
{
    succeed({"library", "save", "mouse", "--from", library()});
    smallSequence().writeTo(path("mouse"));
    EXPECT_EQ(spectra("mouse").size(), 2);
    succeed({"unmix", "mouse", "--library", "mouse"});
}

TEST_F(LibraryProgramTest, ASavedLibraryIsReplacedOnlyByForce)
{
    succeed({"library", "save", "dyes", "--from", library()});
    write("other.csv", "$,NumSpec,1\n$,Color,red\n$,Select,1\nExcitation,Emission,X\n640,700,1\n");
    EXPECT_EQ(refusal({"library", "save", "dyes", "--from", "other.csv"}),
              "the library dyes exists already; --force replaces it");
    EXPECT_EQ(spectra("dyes").size(), 2);
    succeed({"library", "save", "dyes", "--from", "other.csv", "--force", "--note", "new"});
    EXPECT_EQ(spectra("dyes").size(), 1);
    EXPECT_EQ(succeed({"library", "show", "dyes", "--json"}).json()["note"], "new");
    EXPECT_EQ(saved(), (QStringList{"dyes"}));
}

TEST_F(LibraryProgramTest, ANoteWithACommaIsToldOf)
{
    const ProgramResult result = spum({"library", "save", "dyes", "--from", library(), "--note", "one, two"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "spum: warning: the file's form ends a note at its first comma\n");
    EXPECT_EQ(succeed({"library", "show", "dyes", "--json"}).json()["note"], "one");
}

TEST_F(LibraryProgramTest, ANameThatIsNoFileNameIsAUsageError)
{
    for (const char* name : {"", "a/b", "../a", ".hidden"}) {
        refusal({"library", "save", name, "--from", library()}, 2);
    }
    EXPECT_EQ(saved(), QStringList());
}

TEST_F(LibraryProgramTest, SourcesOfTheDatabaseAreSavedForTheImagesOfASequence)
{
    simulate({"--probes", "AlexaFluor 750"});
    succeed({"library", "save", "dyes", "--probes", "AlexaFluor 750", "--sequence", "seq"});
    const QJsonArray list = spectra("dyes");
    ASSERT_EQ(list.size(), 1);
    EXPECT_EQ(list[0].toObject()["points"].toArray().size(), 8);
    double largest = 0.0;
    for (int j = 0; j < 8; ++j) {
        largest = std::max(largest, valueOf(list[0], j));
    }
    EXPECT_EQ(largest, 1.0);
    // A dye without the tissue that it lies in.
    const ProgramResult result =
        succeed({"unmix", "seq", "--library", "dyes", "--json"}, {"unexplained", "too-few-components"});
    EXPECT_EQ(result.json()["images"], 8);
}

TEST_F(LibraryProgramTest, RegionsAreMeasuredInTheImagesOfASequence)
{
    smallSequence().writeTo(path("seq"));
    succeed(
        {"library", "save", "measured", "--region", "left=0,0,1,4", "--region", "right=3,0,1,4", "--sequence", "seq"});
    const QJsonArray list = spectra("measured");
    ASSERT_EQ(list.size(), 2);
    // Left: pixels 0, 4, 8, 12 with the mean 6 of the first and 1 of the second map; in the second image 3.25.
    EXPECT_DOUBLE_EQ(valueOf(list[0], 0), 1.0);
    EXPECT_NEAR(valueOf(list[0], 1), 3.25 / 6.0, 1e-6);
    EXPECT_NEAR(valueOf(list[0], 2), 1.0 / 6.0, 1e-6);
    EXPECT_EQ(list[1].toObject()["name"], "right");
}

TEST_F(LibraryProgramTest, SaveAsksForOneSourceAndItsSequence)
{
    EXPECT_TRUE(refusal({"library", "save", "x"}, 2).startsWith("save takes one of"));
    EXPECT_TRUE(refusal({"library", "save", "x", "--from", library(), "--probes", "Cy5"}, 2)
                    .startsWith("--sequence is missing"));
    EXPECT_TRUE(refusal({"library", "save", "x", "--probes", "Cy5"}, 2).startsWith("--sequence is missing"));
    smallSequence().writeTo(path("seq"));
    EXPECT_TRUE(refusal({"library", "save", "x", "--region", "A=1", "--sequence", "seq"}, 2).contains("NAME=X,Y,W,H"));
    EXPECT_TRUE(
        refusal({"library", "save", "x", "--region", "A=3,3,2,2", "--sequence", "seq"}).contains("leaves the image"));
    EXPECT_TRUE(refusal({"library", "save", "x", "--probes", "Nobody", "--sequence", "seq"}).contains("\"Nobody\""));
    EXPECT_EQ(saved(), QStringList());
}

TEST_F(LibraryProgramTest, AnUnreadableLibraryIsListedAsSuch)
{
    succeed({"library", "save", "good", "--from", library()});
    const QString folder =
        QFileInfo(succeed({"library", "save", "bad", "--from", library(), "--json"}).json()["path"].toString()).path();
    QFile file(folder + "/bad.csv");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("$,NumSpec,0\n");
    file.close();
    const QByteArray text = succeed({"library", "list"}).out;
    EXPECT_TRUE(text.contains("unreadable")) << text.constData();
    EXPECT_TRUE(refusal({"library", "show", "bad"}).contains("no spectrum library"));
    EXPECT_TRUE(refusal({"library", "show", "absent"}).contains("saved are bad, good"));
}

// Two single stains: in each sequence one dye alone.
TEST_F(LibraryProgramTest, EachSequenceIsMeasuredByTheRegionsBehindIt)
{
    SmallSequence a = smallSequence();
    SmallSequence b = smallSequence();
    b.id = "OTHER";
    for (std::size_t j = 0; j < 3; ++j) {
        a.images[static_cast<int>(j)].value = [j](int) { return std::array{0.25F, 1.0F, 0.5F}[j]; };
        b.images[static_cast<int>(j)].value = [j](int) { return std::array{2.0F, 4.0F, 8.0F}[j]; };
    }
    a.writeTo(path("c488"));
    b.writeTo(path("c532"));
    succeed({"library", "save", "stains", "--sequence", "c488", "--region", "AF488=0,0,2,2", "--sequence", "c532",
             "--region", "AF532=1,1,2,2", "--region", "AF532 again=0,0,1,1"});
    const QJsonArray list = spectra("stains");
    ASSERT_EQ(list.size(), 3);
    for (int j = 0; j < 3; ++j) {
        EXPECT_DOUBLE_EQ(valueOf(list[0], j), (std::array{0.25, 1.0, 0.5}[static_cast<std::size_t>(j)]));
        EXPECT_DOUBLE_EQ(valueOf(list[1], j), (std::array{0.25, 0.5, 1.0}[static_cast<std::size_t>(j)]));
    }
    EXPECT_EQ(list[1].toObject()["name"], "AF532");
    EXPECT_NE(list[0].toObject()["origin"], list[1].toObject()["origin"]);
}

TEST_F(LibraryProgramTest, WhichSequenceIsMeantIsToBeClear)
{
    smallSequence().writeTo(path("a"));
    smallSequence().writeTo(path("b"));
    EXPECT_TRUE(refusal({"library", "save", "x", "--region", "A=0,0,1,1", "--sequence", "a", "--sequence", "b",
                         "--region", "B=0,0,1,1"},
                        2)
                    .startsWith("of several sequences each stands ahead of its --region and --probes."));
    EXPECT_TRUE(refusal({"library", "save", "x", "--sequence", "a", "--sequence", "b", "--region", "B=0,0,1,1"}, 2)
                    .startsWith("no --region, --probes or --from is for --sequence a."));
    EXPECT_EQ(refusal({"library", "save", "x", "--sequence", "a", "--region", "A=3,0,1,4", "--sequence", "b",
                       "--region", "A=3,0,1,4"}),
              "two spectra would have the name \"A\"; \"spum library rename NAME --spectrum OLD=NEW\" gives one of a "
              "library another");
    EXPECT_EQ(saved(), QStringList());
}

TEST_F(LibraryProgramTest, SequencesOfOtherImagesDoNotMakeOneLibrary)
{
    SmallSequence other = smallSequence();
    other.images[1].emission = "710nm";
    other.writeTo(path("b"));
    smallSequence().writeTo(path("a"));
    const QString refused = refusal({"library", "save", "x", "--sequence", "a", "--region", "A=3,0,1,4", "--sequence",
                                     "b", "--region", "B=3,0,1,4"});
    EXPECT_TRUE(refused.contains("\"B\" has no value for 640/") &&
                refused.endsWith("--select takes those that all have"))
        << qPrintable(refused);
    EXPECT_EQ(saved(), QStringList());
    const QString common = other.images[0].emission.left(3) + "," + other.images[2].emission.left(3);
    succeed({"library", "save", "x", "--select", common, "--sequence", "a", "--region", "A=3,0,1,4", "--sequence", "b",
             "--region", "B=3,0,1,4"});
    EXPECT_EQ(spectra("x")[1].toObject()["points"].toArray().size(), 2);
}

TEST_F(LibraryProgramTest, FilesAndRegionsGoTogether)
{
    smallSequence().writeTo(path("seq"));
    write("third.csv", "nm;Dye C\n690;0,5\n750;1\n");
    succeed({"library", "save", "x", "--from", library(), "--from", "third.csv", "--region", "left=0,0,1,4",
             "--sequence", "seq"});
    const QJsonArray list = spectra("x");
    ASSERT_EQ(list.size(), 4);
    EXPECT_EQ(list[2].toObject()["name"], "Dye C");
    EXPECT_EQ(list[3].toObject()["name"], "left");
    for (const auto& spectrum : list) {
        EXPECT_EQ(spectrum.toObject()["points"].toArray()[0].toObject()["second"],
                  list[3].toObject()["points"].toArray()[0].toObject()["second"]);
    }
}

TEST_F(LibraryProgramTest, ATableIsImportedAtTheImagesOfASequence)
{
    smallSequence().writeTo(path("seq"));
    write("t.csv", "wavelength,A,\"B, dry\"\n700,0,1\n740,1,0\n");
    EXPECT_TRUE(refusal({"library", "import", "t.csv", "t"}, 2).contains("--sequence is missing"));
    succeed({"library", "import", "t.csv", "t", "--sequence", "seq"});
    const QJsonArray list = spectra("t");
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list[1].toObject()["name"], "B; dry");
    for (const auto& point : list[0].toObject()["points"].toArray()) {
        EXPECT_NEAR(point.toObject()["value"].toDouble(), (point.toObject()["second"].toString().toDouble() - 700) / 40,
                    1e-6);
    }
    succeed({"unmix", "seq", "--library", "t", "--quiet", "--out", "out"});
}

TEST_F(LibraryProgramTest, ALibraryIsAppendedTo)
{
    smallSequence().writeTo(path("seq"));
    write("third.csv", "nm,Dye C\n690,0.5\n750,1\n");
    succeed({"library", "save", "x", "--from", library()});
    succeed({"library", "append", "x", "--region", "left=0,0,1,4", "--sequence", "seq"});
    succeed({"library", "append", "x", "--from", "third.csv"});
    ASSERT_EQ(spectra("x").size(), 4);
    EXPECT_EQ(spectra("x")[2].toObject()["name"], "left");
    EXPECT_EQ(spectra("x")[3].toObject()["name"], "Dye C");
    EXPECT_TRUE(refusal({"library", "append", "x", "--from", library()}).startsWith("two spectra would have the name"));
    EXPECT_TRUE(
        refusal({"library", "append", "y", "--from", library()}).startsWith("no library y is saved; saved are x"));
    EXPECT_TRUE(refusal({"library", "append", "x"}, 2).startsWith("append takes one of --from"));
    EXPECT_EQ(spectra("x").size(), 4);
}

// A file of the present folder is not meant, whatever its name.
TEST_F(LibraryProgramTest, AFileOfItsNameDoesNotHideTheLibraryThatIsAppendedTo)
{
    succeed({"library", "save", "x", "--from", library()});
    write("x", "$,NumSpec,1\n$,Color,red\nExcitation,Emission,Wrong\n640,700,1\n640,720,1\n640,740,1\n");
    write("third.csv", "nm,Dye C\n690,0.5\n750,1\n");
    succeed({"library", "append", "x", "--from", "third.csv"});
    EXPECT_TRUE(QFile::remove(path("x")));
    ASSERT_EQ(spectra("x").size(), 3);
    EXPECT_EQ(spectra("x")[0].toObject()["name"], "Dye A");
}

TEST_F(LibraryProgramTest, EightProcessesAtOnceLoseNoSpectrum)
{
    constexpr int count = 8;
    succeed({"library", "save", "x", "--from", library()});
    for (int round = 0; round < 3; ++round) {
        QList<QStringList> commands;
        for (int n = 0; n < count; ++n) {
            const QString file = QStringLiteral("%1-%2.csv").arg(round).arg(n);
            write(file, QStringLiteral("nm,D %1 of %2\n690,0.5\n750,1\n").arg(n).arg(round).toUtf8());
            commands.append({"library", "append", "x", "--from", file});
        }
        runAtOnce(commands);
    }
    EXPECT_EQ(spectra("x").size(), 2 + 3 * count);
    EXPECT_FALSE(filesBelow(path("home")).join(' ').contains(".lock"));
}

TEST_F(LibraryProgramTest, ChangesOfALibraryAtOnceAgree)
{
    write("four.csv", "$,NumSpec,4\n$,Color,red,red,red,red\nExcitation,Emission,a,b,c,d\n640,700,1,2,3,4\n");
    write("e.csv", "$,NumSpec,1\n$,Color,red\nExcitation,Emission,e\n640,700,1\n");
    write("f.csv", "$,NumSpec,1\n$,Color,red\nExcitation,Emission,f\n640,700,1\n");
    succeed({"library", "save", "x", "--from", "four.csv"});
    succeed({"library", "save", "old", "--from", "e.csv"});
    succeed({"library", "save", "one", "--from", "e.csv"});
    runAtOnce({{"library", "append", "x", "--from", "e.csv"},
               {"library", "rename", "x", "--spectrum", "a=y"},
               {"library", "remove", "x", "--spectrum", "b"},
               {"library", "merge", "both", "one", "f.csv"},
               {"library", "append", "x", "--from", "f.csv"},
               {"library", "rename", "x", "--spectrum", "c=z"},
               {"library", "remove", "x", "--spectrum", "d"},
               {"library", "rename", "old", "new"}});
    QStringList names;
    for (const auto& spectrum : spectra("x")) {
        names.append(spectrum.toObject()["name"].toString());
    }
    names.sort();
    EXPECT_EQ(names, (QStringList{"e", "f", "y", "z"}));
    EXPECT_EQ(spectra("both").size(), 2);
    EXPECT_EQ(saved(), (QStringList{"both", "new", "one", "x"}));
}

TEST_F(LibraryProgramTest, LibrariesAreMergedIntoOne)
{
    succeed({"library", "save", "a", "--from", library()});
    QByteArray text = contentOf(library());
    write("other.csv", text.replace("Dye A", "Dye C").replace("Dye B", "Dye D"));
    succeed({"library", "merge", "all", "a", "other.csv", "--note", "both"});
    EXPECT_EQ(spectra("all").size(), 4);
    EXPECT_EQ(succeed({"library", "show", "all", "--json"}).json()["note"], "both");
    EXPECT_TRUE(refusal({"library", "merge", "all", "a", "a"}).startsWith("two spectra would have the name \"Dye A\""));
    EXPECT_TRUE(refusal({"library", "merge", "all", "a"}).startsWith("the library all exists already"));
    write("narrow.csv", "$,NumSpec,1\n$,Color,red\nExcitation,Emission,E\n640,700,1\n");
    EXPECT_TRUE(refusal({"library", "merge", "more", "a", "narrow.csv"}).startsWith("\"E\" has no value for 640/7"));
    EXPECT_TRUE(refusal({"library", "merge", "more", "narrow.csv", "a"}).contains("\"E\" has no value for"));
}

TEST_F(LibraryProgramTest, LibrariesAndTheirSpectraAreRenamed)
{
    succeed({"library", "save", "a", "--from", library()});
    succeed({"library", "save", "b", "--from", library()});
    EXPECT_TRUE(refusal({"library", "rename", "a", "b"}).startsWith("the library b exists already"));
    succeed({"library", "rename", "a", "c"});
    EXPECT_EQ(saved(), (QStringList{"b", "c"}));
    succeed({"library", "rename", "c", "b", "--force"});
    EXPECT_EQ(saved(), QStringList{"b"});
    succeed({"library", "rename", "b", "--spectrum", "Dye A=first", "--spectrum", "Dye B=Dye A"});
    EXPECT_EQ(spectra("b")[0].toObject()["name"], "first");
    EXPECT_EQ(spectra("b")[1].toObject()["name"], "Dye A");
    EXPECT_TRUE(refusal({"library", "rename", "b", "--spectrum", "first=Dye A"}).startsWith("two spectra would have"));
    EXPECT_EQ(refusal({"library", "rename", "b", "--spectrum", "none=x"}),
              "the library b has no spectrum \"none\"; it has first, Dye A");
    EXPECT_TRUE(refusal({"library", "rename", "b", "--spectrum", "first"}, 2).contains("OLD=NEW"));
    refusal({"library", "rename", "b", "--spectrum", "first=a,b"}, 2);
    refusal({"library", "rename", "b"}, 2);
    EXPECT_TRUE(refusal({"library", "rename", "absent", "d"}).startsWith("no library absent is saved"));
}

TEST_F(LibraryProgramTest, LibrariesAndTheirSpectraAreRemoved)
{
    for (const char* name : {"a", "b", "c"}) {
        succeed({"library", "save", name, "--from", library()});
    }
    EXPECT_TRUE(
        refusal({"library", "remove", "a", "absent"}).startsWith("no library absent is saved; saved are a, b, c"));
    succeed({"library", "remove", "a", "c"});
    EXPECT_EQ(saved(), QStringList{"b"});
    succeed({"library", "remove", "b", "--spectrum", "Dye A"});
    ASSERT_EQ(spectra("b").size(), 1);
    EXPECT_EQ(spectra("b")[0].toObject()["name"], "Dye B");
    EXPECT_TRUE(refusal({"library", "remove", "b", "--spectrum", "Dye B"}).startsWith("nothing would be left"));
    refusal({"library", "remove", "b", "--spectrum", "Dye A"});
    EXPECT_EQ(saved(), QStringList{"b"});
}

TEST_F(LibraryProgramTest, ATemplateIsFilledInAndFitted)
{
    smallSequence().writeTo(path("seq"));
    const QJsonObject made =
        succeed({"library", "template", "seq", "--spectrum", "Dye A", "--spectrum", "B, dry", "--json"}).json();
    EXPECT_EQ(made["path"], "seq-spectra.csv");
    QStringList lines = QString::fromUtf8(contentOf(path("seq-spectra.csv"))).split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "excitation,emission,Dye A,\"B, dry\"");
    EXPECT_TRUE(lines[1].startsWith("640,7") && lines[1].endsWith(",,"));
    EXPECT_TRUE(
        refusal({"unmix", "seq", "--library", "seq-spectra.csv"}).contains("the spectrum \"Dye A\" has no value"));
    EXPECT_TRUE(refusal({"library", "template", "seq"}).endsWith("exists already; --force replaces it"));
    for (int j = 1; j < 4; ++j) {
        lines[j].replace(",,", j == 2 ? ",1,0.25" : ",0.5,1");
    }
    write("filled.csv", lines.join('\n').toUtf8());
    EXPECT_EQ(succeed({"unmix", "seq", "--library", "filled.csv", "--quiet", "--json", "--out", "out"})
                  .json()["components"]
                  .toArray()
                  .size(),
              2);
}

TEST_F(LibraryProgramTest, NamesThatTheListWouldCutAreRefused)
{
    EXPECT_TRUE(refusal({"library", "save", "dyes.csv", "--from", library()}, 2)
                    .startsWith("\"dyes.csv\" cannot be the name of a library: it is given without \".csv\""));
    for (const char* name : {"", "a/b", ".a"}) {
        refusal({"library", "save", name, "--from", library()}, 2);
    }
    EXPECT_EQ(saved(), QStringList());
}

TEST_F(LibraryProgramTest, AFileWithoutAValueIsNoLibraryToShow)
{
    write("cut.csv", "$,NumSpec,2\n$,Color,red,blue\n$,Select,1,1\n");
    write("nameless.csv", "$,NumSpec,1\n640,700,1\n640,720,0.5\n");
    write("letter.csv", "Dear reader,\nthis is a letter, and no library, of spectra\n");
    // The decimal points of another country make other columns.
    write("commas.csv", "$,NumSpec,1\n$,Color,red\n$,Select,1\nExcitation,Emission,X\n640,700,0,5\n640,720,1,0\n");
    for (const char* name : {"cut.csv", "nameless.csv", "commas.csv"}) {
        EXPECT_EQ(refusal({"library", "show", name}),
                  QLatin1String(name) +
                      ": the library holds no value; it takes a line \"Excitation,Emission,names...\" "
                      "and behind it one line a pair");
        refusal({"library", "save", "dyes", "--from", name});
    }
    EXPECT_EQ(
        refusal({"library", "show", "letter.csv"}),
        "letter.csv:1: the line names no spectrum and no wavelength; this is neither a spectrum library (lines that "
        "begin with \"$,\") nor a table of spectra (\"wavelength,name,...\")");
    EXPECT_EQ(saved(), QStringList());
}

// The dyes of the small sequence, whose maps are known, from a spreadsheet of another country.
TEST_F(LibraryProgramTest, APlainTableOfSpectraIsShownAndFitted)
{
    write("dyes table.csv", "\xEF\xBB\xBFWellenl\xC3\xA4nge (nm);\"Dye A\";\"Dye B\"\r\n\r\n"
                            "680;0,5;0\r\n700;1;0\r\n720;0,5;0,25\r\n740;0;1\r\n;;\r\n");
    EXPECT_EQ(succeed({"library", "show", "dyes table.csv"}).out, "A table of spectra over wavelength in nm.\n\n"
                                                                  "wavelength  Dye A  Dye B\n"
                                                                  "       680    0.5      0\n"
                                                                  "       700      1      0\n"
                                                                  "       720    0.5   0.25\n"
                                                                  "       740      0      1\n");
    const QJsonArray shown = spectra("dyes table.csv");
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[1].toObject()["points"].toArray()[2].toObject()["second"], "720");
    EXPECT_DOUBLE_EQ(valueOf(shown[1], 2), 0.25);

    smallSequence().writeTo(path("seq"));
    succeed({"unmix", "seq", "--library", library(), "--out", "by-library"});
    succeed({"unmix", "seq", "--library", "dyes table.csv", "--out", "by-table"});
    for (const char* file : {"01_Dye_A.tif", "02_Dye_B.tif"}) {
        EXPECT_FALSE(contentOf(path("by-table/") + file).isEmpty());
        EXPECT_EQ(contentOf(path("by-table/") + file), contentOf(path("by-library/") + file)) << file;
    }
}

TEST_F(LibraryProgramTest, ABandBeyondATableIsNamed)
{
    smallSequence().writeTo(path("seq"));
    write("short.csv", "wavelength\tDye A\n0.70\t1\n0.73\t0.5\n");
    EXPECT_EQ(
        refusal({"unmix", "seq", "--library", "short.csv"}),
        "short.csv: the spectrum \"Dye A\" has no value for 640/740; it reaches from 700 to 730 nm, and nothing is "
        "extrapolated");
    EXPECT_FALSE(QFileInfo::exists(path("seq/unmixed-library")));
}

// Their keys are numbers; where they lie the file of the images has told.
TEST_F(LibraryProgramTest, NumberedChannelsLieAtTheWavelengthsThatWereTold)
{
    for (int j = 0; j < 3; ++j) {
        writeTiffFile(QStringLiteral("far/%1.tif").arg(j), imageOf(4, 4, [j](int i) {
                          return static_cast<float>((i + 1) * (4 - j) + (16 - i) * j) * 0.25F;
                      }));
    }
    write("far.csv", "file,channel,wavelength\n0.tif,a,1200.5\n1.tif,b,1300.5\n2.tif,c,1400.5\n");
    succeed({"import", "far", "seq", "--images", "far.csv"});
    write("t.csv", "wavelength (um);A;B\n1,2005;1;0\n1,6005;0;1\n");
    EXPECT_EQ(
        succeed({"unmix", "seq", "--library", "t.csv", "--out", "out", "--json"}).json()["components"].toArray().size(),
        2);
    succeed({"library", "template", "seq", "--out", "fill.csv", "--spectrum", "A"});
    const QByteArray text = contentOf(path("fill.csv"));
    EXPECT_TRUE(text.contains(",1200.5,\n") && text.contains(",1400.5,\n")) << text.constData();
    write("short.csv", "wavelength (um),A,B\n1.25,1,0\n1.6005,0,1\n");
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", "short.csv"}).contains("nothing is extrapolated"));

    succeed({"import", "far", "nameless", "--channels"});
    EXPECT_TRUE(refusal({"unmix", "nameless", "--library", "t.csv"}).contains("\"A\" has no value for"));
}

TEST_F(LibraryProgramTest, OfNumberedChannelsWithoutWavelengthsATemplateNamesTheChannels)
{
    const QStringList files = {"DAPI.tif", "GFP, weak.tif", "Cy5.tif"};
    for (int j = 0; j < 3; ++j) {
        writeTiffFile("cells/" + files[j], imageOf(4, 4, [j](int i) {
                          return static_cast<float>((i + 1) * (4 - j) + (16 - i) * j) * 0.25F;
                      }));
    }
    succeed({"import", "cells", "seq", "--channels"});
    const QJsonObject made =
        succeed({"library", "template", "seq", "--spectrum", "A", "--spectrum", "B dry", "--json"}).json();
    EXPECT_EQ(made["images"], 3);
    const QStringList lines = QString::fromUtf8(contentOf(path("seq-spectra.csv"))).split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "excitation,emission,channel,A,B dry");
    EXPECT_TRUE(lines[1].endsWith(",001,Cy5,,")) << qPrintable(lines[1]);
    EXPECT_TRUE(lines[3].endsWith(",003,\"GFP, weak\",,")) << qPrintable(lines[3]);
    EXPECT_EQ(refusal({"unmix", "seq", "--library", "seq-spectra.csv"}),
              "seq-spectra.csv:2: the value of \"A\" is missing");

    // As a program for tables stores it; of one key the numbers' zeros go.
    const QString first = lines[1].section(',', 0, 0);
    const QByteArray filled = QStringLiteral("excitation;emission;channel;A;B dry\n%1;1;Cy5;1;0\n%1;2;DAPI;0,75;0,25\n"
                                             "%1;3;GFP, weak;0,5;0,5\n")
                                  .arg(first)
                                  .toUtf8();
    write("filled.csv", filled);
    const QJsonArray components =
        succeed({"unmix", "seq", "--library", "filled.csv", "--out", "out", "--json"}).json()["components"].toArray();
    ASSERT_EQ(components.size(), 2);
    EXPECT_EQ(components[1].toObject()["name"], "B dry");
    succeed({"library", "import", "filled.csv", "kept", "--sequence", "seq"});
    EXPECT_EQ(valueOf(spectra("kept")[0], 1), 0.75);
    write("filled.csv", QByteArray(filled).replace(";3;", ";4;"));
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", "filled.csv"}).contains("the spectrum \"A\" has no value for"));
}

// Whatever made a library, its file is of the form that the window lists and opens.
TEST_F(LibraryProgramTest, EveryWayToALibraryWritesTheFormOfTheWindow)
{
    smallSequence().writeTo(path("seq"));
    write("t.csv", "nm;A;\"B, dry\"\n700;0,5;1\n740;1;0\n");
    const QString file =
        succeed({"library", "import", "t.csv", "t", "--sequence", "seq", "--json"}).json()["path"].toString();
    const QList<QByteArray> lines = contentOf(file).split('\n');
    ASSERT_EQ(lines.size(), 10);
    EXPECT_EQ(lines[0], "$,Note,");
    EXPECT_EQ(lines[1], "$,NumSpec,2");
    EXPECT_EQ(lines[2], "$,Color,lime,red");
    EXPECT_EQ(lines[3], "$,Origin,t.csv,t.csv");
    EXPECT_EQ(lines[4], "$,Select,1,1");
    EXPECT_EQ(lines[5], "Excitation,Emission,A,B; dry");
    EXPECT_EQ(lines[6].count(','), 3);
    EXPECT_TRUE(lines[6].startsWith("640,7"));
    succeed({"library", "append", "t", "--sequence", "seq", "--region", "left=0,0,1,4"});
    succeed({"library", "rename", "t", "--spectrum", "A=C"});
    succeed({"library", "save", "u", "--from", library()});
    succeed({"library", "merge", "all", "t", "u"});
    const QByteArray merged = contentOf(QString(file).replace("t.csv", "all.csv"));
    EXPECT_TRUE(merged.contains("\n$,NumSpec,5\n") && merged.contains("\nExcitation,Emission,C,B; dry,left,Dye "))
        << merged.constData();
}
