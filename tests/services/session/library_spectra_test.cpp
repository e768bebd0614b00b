// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/LibrarySpectra.h"
#include "services/support/CliFixture.h"

#include "engine/EngineEnums.h"
#include "host/orv_paths.h"
#include "spectra/SpectrumPlotParams.h"

#include <QDir>
#include <QFile>

#include <memory>
#include <vector>

namespace {

const QByteArray twoSpectra = "$,Note,made by hand\n"
                              "$,NumSpec,2\n"
                              "$,Color,red,#00ff00\n"
                              "$,Origin,here,there\n"
                              "$,Select,1,1\n"
                              "Excitation,Emission,Dye A,Dye B\n"
                              "640,700,1,0.25\n"
                              "640,720,0.5,1\n"
                              "640,740,0.125,0\n";

using Spectra = std::vector<std::unique_ptr<SpectrumPlotParams>>;

class LibrarySpectraTest : public CliFixture
{
protected:
    // Loads a library of that text and brings it to the pairs.
    Spectra fit(const QByteArray& text, const QList<KeyPair>& pairs) const
    {
        LibrarySpectra library;
        library.load(write("a library.csv", text));
        Spectra spectra;
        for (auto* spectrum : library.fitTo(pairs, SPECTRUMAXIS_EMISSION)) {
            spectra.emplace_back(spectrum);
        }
        return spectra;
    }
    QString refusal(const QByteArray& text, const QList<KeyPair>& pairs) const
    {
        return failureOf([&] { fit(text, pairs); }).remove(path("a library.csv"));
    }
    QString loadRefusal(const QByteArray& text) const
    {
        return failureOf([&] {
            LibrarySpectra library;
            library.load(write("a library.csv", text));
        });
    }
};

QByteArray replaced(const QByteArray& before, const QByteArray& after)
{
    QByteArray text = twoSpectra;
    EXPECT_TRUE(text.contains(before));
    return text.replace(before, after);
}

} // namespace

TEST_F(LibrarySpectraTest, SpectraComeInTheOrderOfThePairs)
{
    const auto spectra = fit(twoSpectra, {{"640", "740"}, {"640", "700"}});
    ASSERT_EQ(spectra.size(), 2u);
    EXPECT_EQ(spectra[0]->settings.name, "Dye A");
    EXPECT_EQ(spectra[1]->settings.color, "#00ff00");
    ASSERT_EQ(spectra[0]->points.size(), 2);
    EXPECT_EQ(spectra[0]->points[0].second, "740");
    EXPECT_EQ(spectra[0]->points[0].value, 0.125);
    EXPECT_EQ(spectra[0]->points[1].value, 1.0);
    EXPECT_EQ(spectra[1]->points[1].value, 0.25);
    EXPECT_EQ(spectra[1]->settings.index, 1);
    EXPECT_EQ(spectra[1]->axis, SPECTRUMAXIS_EMISSION);
}

TEST_F(LibrarySpectraTest, EveryPairThatASpectrumLacksIsNamed)
{
    EXPECT_EQ(refusal(twoSpectra, {{"640", "700"}, {"640", "760"}, {"605", "720"}}),
              ": the spectrum \"Dye A\" has no value for 640/760, 605/720");
}

TEST_F(LibrarySpectraTest, ASpectrumThatIsZeroAtTheImagesIsNamed)
{
    EXPECT_EQ(refusal(twoSpectra, {{"640", "740"}}),
              ": the spectrum \"Dye B\" has no value above 0 at the selected images");
    EXPECT_EQ(refusal(replaced("640,700,1,0.25\n640,720,0.5,1\n", "640,700,1,-1\n640,720,0.5,-2\n"),
                      {{"640", "700"}, {"640", "720"}}),
              ": the spectrum \"Dye B\" has no value above 0 at the selected images");
}

TEST_F(LibrarySpectraTest, AValueThatIsNoNumberIsNamed)
{
    for (const char* value : {"nan", "inf"}) {
        EXPECT_EQ(
            refusal(replaced("640,720,0.5,1", QByteArray("640,720,") + value + ",1"), {{"640", "700"}, {"640", "720"}}),
            ": the spectrum \"Dye A\" holds a value that is not a number")
            << value;
    }
}

TEST_F(LibrarySpectraTest, ASpectrumThatIsNotSelectedIsLeftOut)
{
    const auto spectra = fit(replaced("$,Select,1,1", "$,Select,0,1"), {{"640", "700"}, {"640", "720"}});
    ASSERT_EQ(spectra.size(), 1u);
    EXPECT_EQ(spectra[0]->settings.name, "Dye B");
    EXPECT_EQ(spectra[0]->settings.index, 0);
}

TEST_F(LibrarySpectraTest, WithoutASelectedSpectrumNothingCanBeFitted)
{
    EXPECT_EQ(refusal(replaced("$,Select,1,1", "$,Select,0,0"), {{"640", "700"}}),
              ": no spectrum of the library is selected");
}

TEST_F(LibrarySpectraTest, AFileOfAnotherKindIsRefused)
{
    EXPECT_TRUE(loadRefusal("$,NumSpec,2\n$,Color,red\n").contains("a library.csv: this is no spectrum library"));
    EXPECT_TRUE(loadRefusal("$,NumSpec,0\n").contains("this is no spectrum library"));
    EXPECT_TRUE(loadRefusal("").contains("a library.csv: the library holds no spectrum"));
    EXPECT_TRUE(loadRefusal("wavelength,value\n700,1\n").contains("the library holds no spectrum"));
    EXPECT_TRUE(loadRefusal(QByteArray(1000, '\0')).contains("the library holds no spectrum"));
}

TEST_F(LibrarySpectraTest, AFolderIsNoLibrary)
{
    const QString refusal = failureOf([&] {
        LibrarySpectra library;
        library.load(path("."));
    });
    EXPECT_TRUE(refusal.contains(" is neither a file nor a saved library")) << qPrintable(refusal);
}

TEST_F(LibrarySpectraTest, NeitherFileNorNameTellsWhatIsSaved)
{
    const auto refusal = [] {
        return failureOf([] {
            LibrarySpectra library;
            library.load("not there");
        });
    };
    EXPECT_EQ(refusal(), "not there is neither a file nor a saved library; no library is saved");
    const QString folder = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum/";
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile file(folder + "by name.csv");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(twoSpectra);
    file.close();
    EXPECT_EQ(refusal(), "not there is neither a file nor a saved library; saved are by name");
    LibrarySpectra library;
    library.load("by name");
    EXPECT_EQ(library.all().size(), 2);
    EXPECT_EQ(library.note(), "made by hand");
    EXPECT_TRUE(QDir(folder).removeRecursively());
}

TEST_F(LibrarySpectraTest, LineEndsOfAnyKindAndALineWithoutOneServe)
{
    QByteArray text = twoSpectra;
    text.replace('\n', "\r\n");
    text.chop(2);
    EXPECT_EQ(fit(text, {{"640", "700"}, {"640", "740"}}).size(), 2u);
}

TEST_F(LibrarySpectraTest, ATableIsTakenOnlyWhereItIsAskedFor)
{
    const QString file = write("a table.csv", "wavelength,soil,tree\n600,1,0\n700,0,1\n");
    EXPECT_TRUE(failureOf([&] { LibrarySpectra().load(file); }).contains("the library holds no spectrum"));
    LibrarySpectra library;
    library.loadWithTables(file);
    EXPECT_TRUE(library.isTable());
    std::vector<std::unique_ptr<SpectrumPlotParams>> spectra;
    for (auto* spectrum : library.fitTo(QList<KeyPair>{{"500", "625"}, {"500", "700"}}, SPECTRUMAXIS_EMISSION)) {
        spectra.emplace_back(spectrum);
    }
    ASSERT_EQ(spectra.size(), 2u);
    EXPECT_EQ(spectra[1]->settings.name, "tree");
    EXPECT_EQ(spectra[1]->settings.index, 1);
    EXPECT_EQ(spectra[1]->origin, "a table.csv");
    EXPECT_EQ(spectra[0]->points[0].second, "625");
    EXPECT_EQ(spectra[0]->points[0].value, 0.75);
    EXPECT_NE(spectra[0]->settings.color, spectra[1]->settings.color);
    EXPECT_TRUE(failureOf([&] {
                    library.fitTo(QList<KeyPair>{{"1", "0"}, {"1", "10"}}, SPECTRUMAXIS_TIME);
                }).endsWith("this is a table over wavelength, and the sequence is a temporal one"));
}

TEST_F(LibrarySpectraTest, WhatIsNeitherLibraryNorTableIsToldWithItsLine)
{
    const auto refusalOf = [this](const QByteArray& text) {
        return failureOf([&] { LibrarySpectra().loadWithTables(write("x.csv", text)); }).remove(path("x.csv"));
    };
    EXPECT_EQ(
        refusalOf("wavelength,a\n700,one\n"),
        ":2: \"one\" is not a number; this is neither a spectrum library (lines that begin with \"$,\") nor a table "
        "of spectra (\"wavelength,name,...\")");
    EXPECT_EQ(refusalOf(" \n"), ": the library holds no spectrum");
    EXPECT_EQ(refusalOf("$;Note;x\n$;NumSpec;1\n"),
              ": this is a spectrum library with other separators than commas; save it as CSV with commas");
    EXPECT_TRUE(refusalOf("$,NumSpec,0\nwavelength,a\n700,1\n").startsWith(": this is no spectrum library"));
    LibrarySpectra library;
    library.loadWithTables(write("lib.csv", twoSpectra));
    EXPECT_FALSE(library.isTable());
    EXPECT_EQ(library.all().size(), 2);
}
