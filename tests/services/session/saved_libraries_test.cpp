// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/SavedLibraries.h"

#include "services/session/LibrariesLock.h"
#include "services/session/LibrarySpectra.h"
#include "services/support/CliFixture.h"

#include "host/orv_paths.h"
#include "spectra/SpectrumPlotParams.h"

#include <QDir>
#include <QFile>

namespace {

class SavedLibrariesTest : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        m_folder = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum/";
        LibrarySpectra library;
        library.load(write("made.csv", "$,NumSpec,3\nExcitation,Emission,A,B,C\n640,700,1,2,3\n640,720,4,5,6\n"));
        SavedLibraries::save(LibrariesLock(), "dyes", library.all(), "by hand", false);
    }
    void TearDown() override { EXPECT_TRUE(QDir(m_folder).removeRecursively()); }

    // Names and first values, "A1 B2 C3".
    static QString spectraOf(const QString& strLibrary)
    {
        LibrarySpectra library;
        library.load(SavedLibraries::fileOf(strLibrary));
        QStringList texts;
        for (const auto* spectrum : library.all()) {
            texts.append(QStringLiteral("%1%2").arg(spectrum->settings.name).arg(spectrum->points.first().value));
        }
        return texts.join(' ');
    }

    QString m_folder;
};

} // namespace

TEST_F(SavedLibrariesTest, SpectraExchangeTheirNames)
{
    SavedLibraries::renameSpectra(LibrariesLock(), "dyes", {{"A", "B"}, {"B", "A"}});
    EXPECT_EQ(spectraOf("dyes"), "B1 A2 C3");
}

TEST_F(SavedLibrariesTest, ANameThatAnotherSpectrumLeavesIsFree)
{
    SavedLibraries::renameSpectra(LibrariesLock(), "dyes", {{"A", "B"}, {"B", "D"}});
    EXPECT_EQ(spectraOf("dyes"), "B1 D2 C3");
}

TEST_F(SavedLibrariesTest, OneSpectrumTakesOneName)
{
    EXPECT_EQ(failureOf([] {
                  SavedLibraries::renameSpectra(LibrariesLock(), "dyes", {{"A", "D"}, {"A", "E"}});
              }),
              "[2] \"A\" is given two names");
    EXPECT_TRUE(failureOf([] {
                    SavedLibraries::renameSpectra(LibrariesLock(), "dyes", {{"A", "B"}});
                }).contains("the name \"B\""));
    EXPECT_EQ(spectraOf("dyes"), "A1 B2 C3");
}

// A link that leads nowhere is in the way too, though there is no file of that name.
TEST_F(SavedLibrariesTest, ANameThatSomethingHasMeanwhileIsNotTaken)
{
    ASSERT_TRUE(QFile::link(m_folder + "nowhere", m_folder + "mine.csv"));
    EXPECT_EQ(failureOf([] { SavedLibraries::rename(LibrariesLock(), "dyes", "mine", false); }),
              "the library mine exists already; --force replaces it");
    EXPECT_EQ(spectraOf("dyes"), "A1 B2 C3");
    SavedLibraries::rename(LibrariesLock(), "dyes", "mine", true);
    EXPECT_EQ(spectraOf("mine"), "A1 B2 C3");
    EXPECT_FALSE(QFile::exists(m_folder + "dyes.csv"));
}

TEST_F(SavedLibrariesTest, OneProgramAtATimeHasTheRightToChangeThem)
{
    int asked = 0;
    {
        const LibrariesLock lock;
        EXPECT_EQ(failureOf([&asked] { LibrariesLock([&asked] { return ++asked < 3; }); }), "aborted by user");
    }
    EXPECT_EQ(asked, 3);
    const LibrariesLock again([] { return false; });
    EXPECT_EQ(SavedLibraries::removeSpectra(again, "dyes", {"A"}), 2);
    EXPECT_EQ(spectraOf("dyes"), "B2 C3");
}
