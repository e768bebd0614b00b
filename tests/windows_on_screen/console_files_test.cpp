// SPDX-License-Identifier: GPL-3.0-or-later
// Files of the console: the table of the plot, the library of spectra.
#include "ConsoleFixture.h"
#include "TalkingResponder.h"

#include "engine/LogCapture.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "host/orv_paths.h"
#include "spectra/SpumKyvoDatabase.h"
#include "support/ForeignLocale.h"
#include "support/PlainUser.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <csignal>

namespace {

class ConsoleFilesTest : public ConsoleTest
{
protected:
    ConsoleFilesTest()
    {
        m_before = orv::setMessageResponder(std::make_unique<TalkingResponder>(m_talk));
        openCube();
        const auto pFirst = spectrumOf("ICG", "blue", {1.0, 2.0, 3.0, 4.0});
        const auto pSecond = spectrumOf("TissueAF", "lime", {4.0, 3.0, 2.0, 1.0});
        m_pConsole->setSpectra({pFirst.get(), pSecond.get()});
    }
    ~ConsoleFilesTest() override { orv::setMessageResponder(std::move(m_before)); }

    QString path(const QString& strName) const { return m_folder.filePath(strName); }
    static QString contents(const QString& strPath)
    {
        QFile file(strPath);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void exportData(const QStringList& files, const QList<int>& buttons = {})
    {
        m_talk = Talk();
        m_talk.files = files;
        m_talk.buttons = buttons;
        click(m_pConsole->m_pExportDataBtn);
        EXPECT_TRUE(m_pConsole->m_pExportDataBtn->isEnabled());
    }

    QTemporaryDir m_folder;
    Talk m_talk;
    std::unique_ptr<orv::MessageResponder> m_before;
};

TEST_F(ConsoleFilesTest, TheTableOfThePlotIsSaved)
{
    CORVPreference::getSettings()->setRecentFilePath(m_folder.path());
    exportData({path("plot.csv")});
    EXPECT_EQ(m_talk.questions, QStringList{"Save Plot Data"});
    EXPECT_EQ(m_talk.filters, QStringList{"Plot Data (*.csv)"});
    EXPECT_EQ(m_talk.folders, QStringList{m_folder.path()});
    EXPECT_TRUE(contents(path("plot.csv")).startsWith("Emission Wavelength [nm],ICG,TissueAF\n600,1,4\n"));
    EXPECT_EQ(CORVPreference::getSettings()->getRecentFilePath(), m_folder.path());
}

TEST_F(ConsoleFilesTest, WhoBacksOutSavesNothing)
{
    exportData({});
    EXPECT_EQ(m_talk.questions.size(), 1);
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(ConsoleFilesTest, NamesGetTheirSuffix)
{
    exportData({path("a")});
    exportData({path("b.")});
    exportData({path("c.txt")});
    exportData({path("d.CSV")});
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), (QStringList{"a.csv", "b.csv", "c.txt.csv", "d.CSV"}));
}

TEST_F(ConsoleFilesTest, ANameThatIsTooLongIsAskedForAgain)
{
    const QString name(182, 'n');
    exportData({path(name + ".csv"), path("short.csv")}, {CORVMessageBox::Ok});
    EXPECT_EQ(m_talk.questions, (QStringList{"Save Plot Data",
                                             "The path you entered, \n'" + QString(93, 'n') + "\n" + QString(89, 'n') +
                                                 ".csv',\nis too long. Enter a shorter path",
                                             "Save Plot Data"}));
    EXPECT_EQ(m_talk.offered, QList<int>{CORVMessageBox::Ok | CORVMessageBox::CancelButton});
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList{"short.csv"});
    exportData({path(name + ".csv"), path("other.csv")}, {CORVMessageBox::CancelButton});
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList{"short.csv"});
    exportData({path(QString(181, 'n') + ".csv")});
    EXPECT_EQ(m_talk.questions.size(), 1);
    EXPECT_TRUE(QFile::exists(path(QString(181, 'n') + ".csv")));
}

TEST_F(ConsoleFilesTest, AFileThatIsThereIsAskedFor)
{
    exportData({path("plot.csv")});
    tick(0);
    exportData({path("plot.csv"), path("new.csv")}, {CORVMessageBox::NoButtonAnswer});
    EXPECT_EQ(m_talk.questions,
              (QStringList{"Save Plot Data", "File: plot.csv exists in the specified path.\nOverwrite existing file?",
                           "Save Plot Data"}));
    EXPECT_EQ(m_talk.offered,
              QList<int>{CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer | CORVMessageBox::CancelButton});
    EXPECT_TRUE(contents(path("plot.csv")).contains("ICG"));
    EXPECT_FALSE(contents(path("new.csv")).contains("ICG"));
    exportData({path("plot.csv"), path("another.csv")}, {CORVMessageBox::CancelButton});
    EXPECT_TRUE(contents(path("plot.csv")).contains("ICG"));
    EXPECT_FALSE(QFile::exists(path("another.csv")));
    exportData({path("plot.csv")}, {CORVMessageBox::YesButton});
    EXPECT_FALSE(contents(path("plot.csv")).contains("ICG"));
}

TEST_F(ConsoleFilesTest, AFailedWriteIsTold)
{
    exportData({path("no such folder/plot.csv")});
    EXPECT_EQ(m_talk.questions.last(), "Writing failed! Check for write permissions or disk space.");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(ConsoleFilesTest, AFolderThatCannotBeWrittenKeepsItsFile)
{
    exportData({path("plot.csv")});
    const QString before = contents(path("plot.csv"));
    tick(0);
    ASSERT_TRUE(QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                           QFile::ReadOther | QFile::ExeOther));
    {
        const PlainUser plain;
        ASSERT_TRUE(plain.isPlain());
        exportData({path("plot.csv")}, {CORVMessageBox::YesButton});
        EXPECT_EQ(m_talk.questions.last(), "Writing failed! Check for write permissions or disk space.");
        exportData({path("new.csv")});
        EXPECT_EQ(m_talk.questions.last(), "Writing failed! Check for write permissions or disk space.");
    }
    EXPECT_EQ(contents(path("plot.csv")), before);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"plot.csv"});
}

TEST_F(ConsoleFilesTest, AFullDiskKeepsTheEarlierFile)
{
    exportData({path("plot.csv")});
    const QString before = contents(path("plot.csv"));
    tick(0);
    // A limit on the size of files stands for the end of the disk.
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit small = old;
    small.rlim_cur = 16;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    exportData({path("plot.csv")}, {CORVMessageBox::YesButton});
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(m_talk.questions.last(), "Writing failed! Check for write permissions or disk space.");
    EXPECT_EQ(contents(path("plot.csv")), before);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"plot.csv"});
}

TEST_F(ConsoleFilesTest, NumbersAreThoseOfTheCLocaleInEveryLanguage)
{
    const testsupport::ForeignLocale german;
    const auto pSpectrum = spectrumOf("ICG", "blue", {0.5, 1.25, 1234.5, 0.0625});
    m_pConsole->setSpectra({pSpectrum.get()});
    exportData({path("plot.csv")});
    EXPECT_EQ(contents(path("plot.csv")).toStdString(),
              "Emission Wavelength [nm],ICG\n600,0.5\n620,1.25\n640,1234.5\n660,0.0625\n");
    m_talk.files << path("library.csv");
    click(m_pConsole->m_pSaveDatabaseTB);
    EXPECT_TRUE(contents(path("library.csv")).contains("500,640,1234.5"));
}

TEST_F(ConsoleFilesTest, TheSpectraAreSavedAsALibrary)
{
    m_pConsole->setNote("two dyes");
    const QString folder = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum";
    m_talk.files << folder + "/Dyes";
    row(0).m_pNameEdit->setText("Renamed");
    click(m_pConsole->m_pSaveDatabaseTB);
    EXPECT_EQ(m_talk.questions, QStringList{"Save spectrum library"});
    EXPECT_EQ(m_talk.filters, QStringList{"*.csv"});
    EXPECT_EQ(m_talk.folders, QStringList{folder});
    EXPECT_TRUE(SpumKyvoDatabase().listLibraries().contains("Dyes"));
    QList<SpectrumPlotParams*> loaded;
    QString note;
    ASSERT_TRUE(SpumKyvoDatabase().loadLibrary("Dyes", loaded, note));
    EXPECT_EQ(note, "two dyes");
    ASSERT_EQ(loaded.size(), 2);
    EXPECT_EQ(loaded[0]->settings.name, "Renamed");
    EXPECT_EQ(loaded[1]->points[1].value, 3.0);
    qDeleteAll(loaded);
}

TEST_F(ConsoleFilesTest, RowsWithoutASpectrumAreNotSaved)
{
    click(m_pConsole->m_pAddSpectrum);
    const QList<SpectrumPlotParams*> selected = m_pConsole->getSelectedSpectra();
    EXPECT_EQ(selected.size(), 2);
    qDeleteAll(selected);
    m_talk.files << path("measured.csv");
    click(m_pConsole->m_pSaveDatabaseTB);
    EXPECT_TRUE(contents(path("measured.csv")).contains("NumSpec,2"));
    m_pConsole->setBackgroundMode(false);
    click(m_pConsole->m_pAddSpectrum);
    m_talk.questions.clear();
    click(m_pConsole->m_pSaveDatabaseTB);
    EXPECT_EQ(m_talk.questions, QStringList{"No row has a spectrum yet that could be saved."});
}

TEST_F(ConsoleFilesTest, ALibraryThatWillNotBeListedIsWarnedOf)
{
    m_talk.files << path("dyes.TXT");
    click(m_pConsole->m_pSaveDatabaseTB);
    EXPECT_TRUE(QFile::exists(path("dyes.txt")));
    ASSERT_EQ(m_talk.questions.size(), 2);
    EXPECT_TRUE(m_talk.questions[1].contains("dyes.txt"));
}

TEST_F(ConsoleFilesTest, WithoutRowsThereIsNothingToSave)
{
    m_pConsole->setBackgroundMode(false);
    EXPECT_FALSE(m_pConsole->m_pSaveDatabaseTB->isEnabled());
}

// Last, as it spoils the folder of the libraries.
TEST_F(ConsoleFilesTest, ZAFolderThatCannotBeMadeIsTold)
{
    const QString folder = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum";
    QDir(folder).removeRecursively();
    QFile inTheWay(folder);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    click(m_pConsole->m_pSaveDatabaseTB);
    EXPECT_EQ(m_talk.questions, QStringList{"Failed to create the SPUM database folder"});
    inTheWay.remove();
}

} // namespace
