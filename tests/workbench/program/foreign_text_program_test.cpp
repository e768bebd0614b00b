// SPDX-License-Identifier: GPL-3.0-or-later
// Names, notes and paths that would steer a terminal, or turn what follows them around, are shown as escapes by every
// command, in answers and in errors.
#include "platform/orvimage/TiffIo.h"
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QJsonDocument>

namespace {

// Colours, a bell, C1, a mark, an override and an isolate of direction, a separator of lines.
const QString steering = QStringLiteral("a\u001b[31mb\u0007c\u009bd\u200fe\u202ef\u2066g\u2028h");
const QString shownSteering = QStringLiteral("a\\x1b[31mb\\x07c\\x9bd\\u200fe\\u202ef\\u2066g\\u2028h");
// What a name of one line may hold.
const QString turning = QStringLiteral("a\u202eb\u2067c");
const QString shownTurning = QStringLiteral("a\\u202eb\\u2067c");

bool steers(QChar c)
{
    return (c.category() == QChar::Other_Control && c != '\n') || c.category() == QChar::Separator_Line ||
           c.category() == QChar::Separator_Paragraph ||
           (c.category() == QChar::Other_Format && c.direction() != QChar::DirBN) || c == QChar(0x200E) ||
           c == QChar(0x200F);
}

class ForeignTextProgramTest : public ProgramFixture
{
protected:
    static void expectPlain(const QByteArray& bytes, const QStringList& arguments)
    {
        for (const QChar c : QString::fromUtf8(bytes)) {
            EXPECT_FALSE(steers(c)) << std::hex << c.unicode() << " in \"spum "
                                    << qPrintable(arguments.join(' ').toUtf8().toPercentEncoding())
                                    << "\": " << bytes.toPercentEncoding(" \n:/").constData();
        }
    }
    // What the command says on both streams, all of it fit for a terminal. It names the text in its escaped form.
    QString said(const QStringList& arguments, int nStatus, const QString& strShown) const
    {
        const ProgramResult result = spum(arguments);
        EXPECT_EQ(result.status, nStatus) << qPrintable(arguments.join(' ')) << "\n" << result.err.constData();
        expectPlain(result.out, arguments);
        expectPlain(result.err, arguments);
        const QString text = QString::fromUtf8(result.out + result.err);
        EXPECT_TRUE(text.contains(strShown)) << qPrintable(arguments.join(' ')) << "\n" << qPrintable(text);
        return text;
    }
    static SmallSequence evilSequence()
    {
        SmallSequence sequence = smallSequence();
        for (SmallImage& image : sequence.images) {
            image.subject = QStringLiteral("mouse");
            image.probe = turning;
        }
        sequence.truthFolder = "../" + turning;
        return sequence;
    }
    void writeLibrary(const QString& strFile) const
    {
        write(strFile, "$,Note,\"" + steering.toUtf8() + "\"\n$,NumSpec,2\n$,Color,red,blue\n$,Origin,a,b\n" +
                           "$,Select,1,1\nExcitation,Emission," + turning.toUtf8() +
                           ",Dye B\n640,740,0,1\n640,700,1,0\n640,720,0.5,0.25\n");
    }
};

} // namespace

TEST_F(ForeignTextProgramTest, PathsOfTheCommandLine)
{
    smallSequence().writeTo(path("seq"));
    const QStringList absent = {path(steering)};
    for (const QStringList& reader :
         {QStringList{"info"}, {"export"}, {"pca"}, {"unmix"}, {"results", "list"}, {"library", "show"}}) {
        QStringList arguments = reader + absent;
        if (reader.first() == "unmix") {
            arguments += {"--library", library()};
        }
        if (reader.first() == "export") {
            arguments += {"--format", "csv", "--out", "out.csv"};
        }
        said(arguments, 1, shownSteering);
    }
    said({"roi", path(steering), "list"}, 1, shownSteering);
    said({"import", path(steering), "out"}, 1, shownSteering);
    said({"compare", "seq", steering}, 1, shownSteering);
    said({"simulate", steering + "/out"}, 1, shownSteering);
    said({"export", "seq", "--format", "csv", "--out", steering + "/out.csv"}, 1, shownSteering);
    said({"unmix", "seq", "--library", steering}, 1, shownSteering);
}

TEST_F(ForeignTextProgramTest, WordsOfTheCommandLine)
{
    smallSequence().writeTo(path("seq"));
    said({steering}, 2, shownSteering);
    said({"info", "--" + steering}, 2, shownSteering);
    said({"export", "seq", "--format", steering, "--out", "x"}, 2, shownSteering);
    said({"results", "show", "seq", steering}, 1, "no saved results");
    said({"roi", "seq", "remove", steering}, 1, shownSteering);
}

TEST_F(ForeignTextProgramTest, NamesOfFolders)
{
    smallSequence().writeTo(path(steering));
    const QString line = said({"unmix", steering, "--library", library()}, 0, shownSteering);
    EXPECT_TRUE(line.contains("results in ")) << qPrintable(line);
    said({"unmix", steering, "--library", library()}, 1, shownSteering); // it exists
    said({"export", steering, "--format", "csv", "--out", steering + ".csv"}, 0, shownSteering);
    said({"pca", steering, "--mask", "none"}, 0, shownSteering);
}

// Nobody's folder speaks for the program.
TEST_F(ForeignTextProgramTest, ALineEndInANameBeginsNoLine)
{
    const QString broken = QStringLiteral("seq\nspum: all is lost\rx\u2028y\u0085z");
    const QString shown = QStringLiteral("seq\\x0aspum: all is lost\\x0dx\\u2028y\\x85z");
    smallSequence().writeTo(path(broken));
    const auto expectOneLine = [&](const QStringList& arguments, int nStatus) {
        const QString text = said(arguments, nStatus, shown);
        EXPECT_FALSE(text.contains("\nspum: all")) << qPrintable(text);
    };
    expectOneLine({"unmix", broken, "--library", library(), "--save"}, 0);
    expectOneLine({"pca", broken, "--mask", "none"}, 0);
    expectOneLine({"export", broken, "--format", "csv", "--out", broken + ".csv"}, 0);
    expectOneLine({"export", broken, "--format", "ome-tiff", "--out", broken + ".tif"}, 0);
    ASSERT_TRUE(QFile::copy(path(broken + ".tif"), path("cube.tif")));
    expectOneLine({"import", "cube.tif", broken + " again"}, 1);
    expectOneLine({"results", "export", broken, "SPUM_001", "--out", broken + " maps"}, 0);
    expectOneLine({"results", "show", broken, "SPUM_001"}, 0);
    expectOneLine({"unmix", broken, "--library", library(), "--out", broken + " two"}, 0);
    expectOneLine({"compare", broken, broken + "/unmixed-library", broken + " two", "--out", broken + " both"}, 0);
    // A header on which a name took two lines could not be read again.
    expectOneLine({"export", broken, "--format", "envi", "--out", broken + ".hdr"}, 1);
    expectOneLine({"info", broken + "x"}, 1);
    expectOneLine({"unmix", broken, "--library", library()}, 1); // it exists
    expectOneLine({"unmix", broken, "--library", broken}, 1);
    expectOneLine({"export", broken, "--format", "csv", "--out", broken + ".csv"}, 1);
    expectOneLine({"simulate", broken + " other"}, 1);
    expectOneLine({"library", "show", broken}, 1);
    EXPECT_FALSE(entriesOf(path(".")).contains(broken + ".hdr"));
}

TEST_F(ForeignTextProgramTest, TextsOfASequence)
{
    evilSequence().writeTo(path("seq"));
    const QString text = said({"info", "seq"}, 0, "Probes:       " + shownTurning);
    EXPECT_TRUE(text.contains("the truth folder ../" + shownTurning + " lies outside")) << qPrintable(text);
    said({"export", "seq", "--format", "csv", "--out", "out.csv"}, 0, shownTurning);
}

// JSON says the same by its own escapes.
TEST_F(ForeignTextProgramTest, JsonMeansWhatTheFilesSay)
{
    evilSequence().writeTo(path("seq"));
    const QStringList arguments = {"info", "seq", "--json"};
    const ProgramResult result = spum(arguments);
    EXPECT_EQ(result.status, 0);
    expectPlain(result.out, arguments);
    EXPECT_TRUE(result.out.contains("a\\u202eb\\u2067c")) << result.out.constData();
    EXPECT_TRUE(QJsonDocument(result.json()).toJson().contains(turning.toUtf8())) << result.out.constData();
}

TEST_F(ForeignTextProgramTest, NamesAndNotesOfLibraries)
{
    smallSequence().writeTo(path("seq"));
    writeLibrary("evil.csv");
    const QString text = said({"library", "show", "evil.csv"}, 0, shownTurning);
    EXPECT_TRUE(text.contains("\\x1b")) << qPrintable(text);
    said({"unmix", "seq", "--library", "evil.csv", "--save", "--out", "run"}, 0, shownTurning);
    said({"results", "list", "seq"}, 0, shownTurning);
    said({"results", "show", "seq", "SPUM_001"}, 0, shownTurning);
    said({"results", "load", "seq", "SPUM_001", "--out", "loaded"}, 0, shownTurning);
    said({"compare", "seq", "run", "loaded"}, 0, shownTurning);
    write("broken.csv", "$,Note," + steering.toUtf8() + "\n$,NumSpec,x" + steering.toUtf8() + "\n");
    said({"library", "show", "broken.csv"}, 1, "broken.csv");
}

TEST_F(ForeignTextProgramTest, NamesOfResultsAndRegions)
{
    smallSequence().writeTo(path("seq"));
    succeed({"unmix", "seq", "--library", library(), "--save", turning, "--note", steering, "--quiet"});
    said({"results", "list", "seq"}, 0, shownTurning);
    const QString shown = said({"results", "show", "seq", turning}, 0, shownTurning);
    EXPECT_TRUE(shown.contains("note: ")) << qPrintable(shown);
    said({"results", "export", "seq", turning, "--out", "maps"}, 0, "maps");
    said({"info", "maps"}, 0, "SMALL_UMX");
    said({"results", "rename", "seq", turning, "x" + turning}, 0, "x" + shownTurning);
    said({"results", "show", "seq", "none"}, 1, "x" + shownTurning);
    said({"results", "delete", "seq", "x" + turning, "--yes"}, 0, shownTurning);
    said({"roi", "seq", "add", "--shape", "rect:0,0,2,2", "--name", turning}, 0, shownTurning);
    said({"roi", "seq", "list"}, 0, shownTurning);
    said({"roi", "seq", "measure"}, 0, shownTurning);
    said({"roi", "seq", "rename", turning, "y" + turning}, 0, "y" + shownTurning);
    said({"roi", "seq", "remove", "y" + turning}, 0, shownTurning);
}

TEST_F(ForeignTextProgramTest, NamesOfImportedFiles)
{
    CILImage image;
    ASSERT_EQ(image.InitWithType(ORVTYPE_FLOAT, 8, 8), EIL_SUCCESS);
    ASSERT_TRUE(QDir().mkpath(path("stack")));
    for (const char* filter : {"_640_700.tif", "_640_740.tif"}) {
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            image.floats()[i] += static_cast<float>(i);
        }
        ASSERT_TRUE(writeTiff(path("stack/" + steering + filter), image, TiffWriteOptions(), nullptr));
    }
    write("images.csv", "file,excitation,emission\n" + steering.toUtf8() + "_640_700.tif,640,700\n" +
                            steering.toUtf8() + "_640_740.tif,640,740\n");
    said({"import", "stack", "out", "--images", "images.csv"}, 0, "2 images");
    said({"info", "out"}, 0, "640");
    write("stack/" + steering + "_640_740.tif", "cut");
    said({"import", "stack", "other", "--images", "images.csv"}, 1, "\\x1b[31m");
}

// What stands for figures in the sentences of the program.
TEST_F(ForeignTextProgramTest, NamesWithPlaceMarkersStayWhereTheyBelong)
{
    write("t%2 and %3.csv", "file,emission\na.tif,mile\n");
    EXPECT_EQ(refusal({"import", ".", "seq", "--images", "t%2 and %3.csv"}),
              "t%2 and %3.csv:2: the emission \"mile\" is not a number");
    write("batch%1%2.csv", "path,options\nseq,--unit mile\n");
    EXPECT_TRUE(refusal({"batch", "batch%1%2.csv", "--out", "out"}, 2).startsWith("batch%1%2.csv:2: --unit takes"));
    writeTiffFile("in%2/50%2 a.tif", imageOf(3, 2, [](int i) { return static_cast<float>(i); }));
    writeTiffFile("in%2/50%2 b.tif", imageOf(2, 2, [](int i) { return static_cast<float>(i); }));
    EXPECT_TRUE(refusal({"import", "in%2", "seq", "--channels"})
                    .contains("50%2 b.tif has 2 x 2 pixels where 50%2 a.tif has 3 x 2"))
        << spum({"import", "in%2", "seq", "--channels"}).err.constData();
    smallSequence().writeTo(path("seq"));
    EXPECT_EQ(refusal({"library", "save", "x", "--sequence", "seq", "--region", "r%2 %3=3,0,2,1"}),
              "the region \"r%2 %3\" leaves the image of 4 x 4 pixels");
    write("spectra %2.csv", "700,1,4\n720,2,5\n740,3,6\n");
    EXPECT_TRUE(spum({"library", "show", "spectra %2.csv"}).out.contains("spectra %2 1"))
        << spum({"library", "show", "spectra %2.csv"}).err.constData();
}
