// SPDX-License-Identifier: GPL-3.0-or-later
// A disk that is full, and folders without the right to write, at each write that the palette and its windows do.
#include "WorkArea.h"

#include "faults/fillTheDisk.h"
#include "support/PlainUser.h"
#include "support/filesWithBytes.h"

#include "host/orv_paths.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <string>

using namespace workarea;

namespace {

const char* const indexUnreadable = "Unable to save Specturm Unmixing analysis data";
const char* const notSaved = "Unable to save Spectral Unmixing analysis data for sequence [seq-A].";
const char* const notRenamed = "Unable to rename Spectral Unmixing analysis results for sequence [seq-A]...";
const char* const notLoaded = "Unable to load Spectral Unmixing analysis data for sequence [seq-A].";
const char* const overwriteQuestion =
    "Spectral Unmixing results are present under \"kidneys\".\n Do you want to overwrite?";
const char* const deleteQuestion = "Are you sure you want to delete the results for kidneys?";

constexpr auto readOnly = QFile::Permissions(0x5555);
constexpr auto writable = QFile::Permissions(0x7777);

// A sequence with a result on screen.
class ResultFaultsTest : public MouseAreaTest
{
protected:
    void SetUp() override
    {
        unmixMouse();
        ASSERT_EQ(complaints(), "");
    }

    // Saves "kidneys", and has another result on screen that is not saved.
    void saveKidneys()
    {
        type("kidneys");
        m_palette->m_pSaveButton->click();
        ASSERT_EQ(list(), QStringList("kidneys"));
        m_answers.answer = CORVMessageBox::NoButtonAnswer;
        unmixAutomatically();
        m_answers.answer = CORVMessageBox::YesButton;
        waitForNextSecond();
        m_before = files();
        m_answers.asked.clear();
    }

    int fillTheDisk(const std::function<void()>& work, const std::function<void()>& check, bool bDouble = false)
    {
        const auto workAnew = [this, &work] {
            m_answers.asked.clear();
            work();
        };
        return ::fillTheDisk(m_folder.path(), workAnew, check, bDouble);
    }

    void save(const QString& strName)
    {
        type(strName);
        m_palette->m_pSaveButton->click();
    }
    void rename(const QString& strName)
    {
        m_palette->m_pSavedResultsCB->setCurrentIndex(0);
        type(strName);
        QTest::keyClick(m_palette->m_pSavedResultsCB->lineEdit(), Qt::Key_Return);
    }
    void deleteKidneys()
    {
        type("kidneys");
        m_palette->m_pDeleteButton->click();
    }

    QString path(const QString& strName) const { return m_folder.filePath(strName); }
    static QByteArray bytes(const QString& strPath)
    {
        QFile file(strPath);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    QMap<QString, QByteArray> files() const { return filesWithBytes(m_folder.path()); }
    // Every file of before is as it was; a document that no entry names may lie beside them, and goes here.
    void expectFilesOfBefore()
    {
        QMap<QString, QByteArray> now = files();
        for (const QString& strFile : now.keys()) {
            if (!m_before.contains(strFile) && strFile.contains("/SpecUnmix/SPUM-")) {
                EXPECT_TRUE(now.take(strFile).contains("SpectralUnmixingResults")) << "a torn document";
                QFile::remove(strFile);
            }
        }
        EXPECT_EQ(now.keys().join(' ').toStdString(), m_before.keys().join(' ').toStdString());
        EXPECT_TRUE(now == m_before);
    }
    // The result on screen still waits to be saved: who leaves it is asked.
    void expectResultIsUnsaved()
    {
        m_answers.asked.clear();
        m_answers.answer = CORVMessageBox::NoButtonAnswer;
        close(*m_opened.front());
        EXPECT_EQ(m_answers.texts(), QStringList("Save Spectral Unmixing results for sequence [name of seq-A]?"));
    }
    void expectOneOf(const QStringList& asked, const QStringList& sentences)
    {
        ASSERT_EQ(asked.size(), 1) << asked.join('|').toStdString();
        EXPECT_TRUE(sentences.contains(asked.first())) << asked.first().toStdString();
    }

    QMap<QString, QByteArray> m_before;
};

TEST_F(ResultFaultsTest, ASaveOntoAFullDiskIsToldAndTheResultStaysUnsaved)
{
    saveKidneys();
    const int nFull = fillTheDisk([this] { save("spleen"); },
                                  [this] {
                                      expectOneOf(m_answers.texts(), {indexUnreadable, notSaved});
                                      EXPECT_FALSE(list().contains("spleen"));
                                      expectFilesOfBefore();
                                  });
    // The lock, the document and the index, each opened, written and brought to the disk.
    EXPECT_GE(nFull, 8);
    EXPECT_EQ(list(), (QStringList{"kidneys", "spleen"}));
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

TEST_F(ResultFaultsTest, AfterASaveThatFailedTheResultIsAskedAbout)
{
    saveKidneys();
    ASSERT_TRUE(armFaults("write@1+=ENOSPC", nullptr, nullptr));
    save("spleen");
    armFaults(nullptr, nullptr, nullptr);
    EXPECT_EQ(m_answers.asked.size(), 1);
    expectResultIsUnsaved();
}

TEST_F(ResultFaultsTest, TheFirstSaveOntoAFullDiskLeavesNoEntry)
{
    const auto check = [this] {
        const bool bToldInLog = m_log.mentions("Failed to create XML folder.") ||
                                m_log.mentions("Unable to create Directory to save the Results");
        EXPECT_TRUE(bToldInLog || !m_answers.asked.isEmpty());
        for (const QString& strText : m_answers.texts()) {
            EXPECT_TRUE(strText == indexUnreadable || strText == notSaved) << strText.toStdString();
        }
        EXPECT_FALSE(list().contains("spleen"));
        EXPECT_FALSE(bytes(path("mouse/XML/SPUM.txt")).contains("spleen"));
        ASSERT_TRUE(QDir(path("mouse/XML")).removeRecursively());
    };
    EXPECT_GE(fillTheDisk([this] { save("spleen"); }, check), 8);
    EXPECT_EQ(list(), QStringList("spleen"));
}

TEST_F(ResultFaultsTest, OverwritingOnAFullDiskKeepsTheResultOfBefore)
{
    saveKidneys();
    console().setNote("the second");
    const int nFull = fillTheDisk([this] { save("kidneys"); },
                                  [this] {
                                      QStringList asked = m_answers.texts();
                                      asked.removeAll(overwriteQuestion);
                                      expectOneOf(asked, {indexUnreadable, notSaved});
                                      expectFilesOfBefore();
                                  });
    EXPECT_GE(nFull, 8);
    EXPECT_EQ(list(), QStringList("kidneys"));
    m_palette->m_pLoadButton->click();
    EXPECT_EQ(console().m_pNotationLE->text(), "the second");
}

TEST_F(ResultFaultsTest, ARenameOnAFullDiskGivesTheNameBack)
{
    saveKidneys();
    const auto check = [this] {
        if (m_answers.asked.isEmpty()) {
            EXPECT_TRUE(m_log.mentions(notRenamed));
        } else {
            EXPECT_EQ(m_answers.texts(), QStringList(notLoaded));
        }
        EXPECT_EQ(text(), "kidneys");
        EXPECT_TRUE(list().contains("kidneys"));
        EXPECT_FALSE(list().contains("spleen"));
        expectFilesOfBefore();
    };
    EXPECT_GE(fillTheDisk([this] { rename("spleen"); }, check), 5);
    EXPECT_TRUE(list().contains("spleen"));
    EXPECT_FALSE(list().contains("kidneys"));
}

TEST_F(ResultFaultsTest, ADeletionOnAFullDiskKeepsTheResultAndTheLogTellsWhy)
{
    saveKidneys();
    const auto check = [this] {
        EXPECT_EQ(m_answers.texts(), QStringList(deleteQuestion));
        EXPECT_TRUE(m_log.mentions("SPUM.txt: "));
        EXPECT_TRUE(list().contains("kidneys"));
        expectFilesOfBefore();
        m_palette->m_pLoadButton->setEnabled(true);
    };
    EXPECT_GE(fillTheDisk([this] { deleteKidneys(); }, check), 5);
    EXPECT_FALSE(list().contains("kidneys"));
    EXPECT_EQ(QDir(path("mouse/XML/SpecUnmix")).entryList(QDir::Files | QDir::Hidden), QStringList());
}

// The folder of the index, that of the documents, and both.
class ReadOnlyResultsTest : public ResultFaultsTest, public testing::WithParamInterface<int>
{
protected:
    bool isIndexReadOnly() const { return (GetParam() & 1) != 0; }
    bool areDocumentsReadOnly() const { return (GetParam() & 2) != 0; }

    void asPlainUser(const std::function<void()>& work)
    {
        ASSERT_TRUE(QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7755)));
        const QString strIndex = path("mouse/XML");
        const QString strDocuments = path("mouse/XML/SpecUnmix");
        ASSERT_TRUE(QFile::setPermissions(strDocuments, areDocumentsReadOnly() ? readOnly : writable));
        ASSERT_TRUE(QFile::setPermissions(strIndex, isIndexReadOnly() ? readOnly : writable));
        ASSERT_TRUE(QFile::setPermissions(strIndex + "/SPUM.txt", QFile::Permissions(0x6666)));
        const PlainUser user;
        ASSERT_TRUE(user.isPlain());
        work();
    }
};

INSTANTIATE_TEST_SUITE_P(Folders, ReadOnlyResultsTest, testing::Values(1, 2, 3),
                         [](const testing::TestParamInfo<int>& folder) {
                             return std::string(folder.param == 1 ? "Index" : folder.param == 2 ? "Documents" : "Both");
                         });

TEST_P(ReadOnlyResultsTest, ASaveIsToldAndTheResultStaysUnsaved)
{
    saveKidneys();
    asPlainUser([this] { save("spleen"); });
    EXPECT_EQ(m_answers.texts(), QStringList(isIndexReadOnly() ? indexUnreadable : notSaved));
    EXPECT_FALSE(list().contains("spleen"));
    expectFilesOfBefore();
    expectResultIsUnsaved();
}

TEST_P(ReadOnlyResultsTest, OverwritingKeepsTheResultOfBefore)
{
    saveKidneys();
    asPlainUser([this] { save("kidneys"); });
    QStringList asked = m_answers.texts();
    asked.removeAll(overwriteQuestion);
    EXPECT_EQ(asked, QStringList(isIndexReadOnly() ? indexUnreadable : notSaved));
    expectFilesOfBefore();
    expectResultIsUnsaved();
}

TEST_P(ReadOnlyResultsTest, ARenameChangesTheIndexOrGivesTheNameBack)
{
    saveKidneys();
    asPlainUser([this] { rename("spleen"); });
    if (isIndexReadOnly()) {
        EXPECT_EQ(m_answers.texts(), QStringList(notLoaded));
        EXPECT_TRUE(m_log.mentions(notRenamed));
        EXPECT_EQ(text(), "kidneys");
        expectFilesOfBefore();
    } else {
        EXPECT_EQ(m_answers.texts(), QStringList());
        EXPECT_TRUE(list().contains("spleen"));
    }
}

TEST_P(ReadOnlyResultsTest, ADeletionKeepsTheResultAndTheLogTellsWhy)
{
    saveKidneys();
    asPlainUser([this] { deleteKidneys(); });
    EXPECT_EQ(m_answers.texts(), QStringList(deleteQuestion));
    EXPECT_TRUE(m_log.mentions(isIndexReadOnly() ? "SPUM.txt: " : "File could not be removed."));
    EXPECT_TRUE(list().contains("kidneys"));
    expectFilesOfBefore();
}

TEST_F(ResultFaultsTest, TheTableOfTheResultKeepsTheFileOfBeforeWhereTheDiskIsFull)
{
    const QString strTable = path("table.csv");
    ASSERT_TRUE(QFile(strTable).open(QIODevice::WriteOnly));
    m_before = files();
    const auto check = [this] {
        EXPECT_TRUE(m_log.mentions("table.csv: cannot be written"));
        expectFilesOfBefore();
    };
    const auto work = [&] {
        m_answers.files = QStringList{strTable};
        m_palette->exportSpUnmixResults();
    };
    EXPECT_GE(fillTheDisk(work, check), 3);
    EXPECT_TRUE(bytes(strTable).startsWith("\"Item\",\"Value\"\n"));
}

TEST_F(ResultFaultsTest, TheTableOfThePlotKeepsTheFileOfBeforeWhereTheDiskIsFull)
{
    const QString strTable = path("plot.csv");
    ASSERT_TRUE(QFile(strTable).open(QIODevice::WriteOnly));
    m_before = files();
    const auto check = [this] {
        EXPECT_EQ(m_answers.texts().value(2), "Writing failed! Check for write permissions or disk space.");
        EXPECT_TRUE(console().m_pExportDataBtn->isEnabled());
        expectFilesOfBefore();
    };
    const auto work = [&] {
        m_answers.files = QStringList{strTable};
        console().m_pExportDataBtn->click();
    };
    EXPECT_GE(fillTheDisk(work, check), 3);
    EXPECT_GT(bytes(strTable).size(), 10);
}

TEST_F(ResultFaultsTest, ALibraryKeepsTheFileOfBeforeWhereTheDiskIsFull)
{
    const QString strLibrary = path("dyes.csv");
    ASSERT_TRUE(QFile(strLibrary).open(QIODevice::WriteOnly));
    m_before = files();
    const auto check = [this] {
        EXPECT_TRUE(m_log.mentions("dyes.csv: cannot be written"));
        EXPECT_TRUE(m_log.mentions("SpumKyvo: Unable to open the spum database file to save."));
        expectFilesOfBefore();
    };
    const auto work = [&] {
        m_answers.files = QStringList{strLibrary};
        console().m_pSaveDatabaseTB->click();
    };
    EXPECT_GE(fillTheDisk(work, check), 3);
    EXPECT_GT(bytes(strLibrary).size(), 100);
}

TEST_F(ResultFaultsTest, APictureInAnyFormatKeepsTheFileOfBeforeWhereTheDiskIsFull)
{
    m_main.resize(500, 400);
    m_main.show();
    console().m_pImageTabWidget->setCurrentIndex(console().m_pImageTabWidget->count() - 1);
    for (const char* pSuffix : {"png", "jpg", "bmp", "tiff", "eps", "wmf", "emf", "dcm"}) {
        SCOPED_TRACE(pSuffix);
        const QString strPicture = path(QString("picture.") + pSuffix);
        ASSERT_TRUE(QFile(strPicture).open(QIODevice::WriteOnly));
        m_before = files();
        const auto check = [&] {
            // Where to, whether to overwrite, and why not.
            ASSERT_EQ(m_answers.asked.size(), 3);
            EXPECT_TRUE(m_answers.texts().last().startsWith(strPicture + ": "))
                << m_answers.texts().last().toStdString();
            expectFilesOfBefore();
        };
        const auto work = [&] {
            m_answers.files = QStringList{strPicture};
            console().m_pExportGraphicsButton->click();
        };
        EXPECT_GE(fillTheDisk(work, check, true), 2);
        EXPECT_EQ(m_answers.asked.size(), 2);
        EXPECT_GT(bytes(strPicture).size(), 500);
    }
}

TEST_F(ResultFaultsTest, AReportOntoAFullDiskIsToldAndLeavesNothing)
{
    m_before = files();
    const QString strFolder = path("a report");
    const auto check = [this] {
        ASSERT_EQ(m_answers.asked.size(), 2);
        EXPECT_TRUE(m_answers.texts().last().contains(path("")) || m_answers.texts().last().contains("space"))
            << m_answers.texts().last().toStdString();
        EXPECT_TRUE(m_palette->m_pReportButton->isEnabled());
        expectFilesOfBefore();
        EXPECT_FALSE(QFileInfo::exists(path("a report")));
    };
    const auto work = [&] {
        m_answers.files = QStringList{strFolder};
        m_palette->m_pReportButton->click();
    };
    EXPECT_GE(fillTheDisk(work, check, true), 5);
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(QFile::exists(strFolder + "/report.html"));
}

TEST_F(ResultFaultsTest, AReportIntoAFolderWithoutTheRightToWriteIsTold)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("locked"));
    ASSERT_TRUE(QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7755)));
    ASSERT_TRUE(QFile::setPermissions(path("locked"), readOnly));
    {
        const PlainUser user;
        ASSERT_TRUE(user.isPlain());
        m_answers.files = QStringList{path("locked/report")};
        m_palette->m_pReportButton->click();
    }
    ASSERT_EQ(m_answers.asked.size(), 2);
    EXPECT_TRUE(m_answers.texts().last().contains("locked")) << m_answers.texts().last().toStdString();
    EXPECT_FALSE(QFileInfo::exists(path("locked/report")));
    EXPECT_TRUE(m_palette->m_pReportButton->isEnabled());
}

// The maps become datasets in the temporary folder first; the host is asked for nothing unless all of them are there.
TEST_F(ResultFaultsTest, MapsThatDoNotFitOntoTheDiskAreNoSequence)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("tmp"));
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(path("tmp")));
    QSignalSpy wanted(m_palette.get(), &CORVSpumKyvoPalette::createSpumKyvoSequence);
    const auto check = [&] {
        EXPECT_EQ(wanted.size(), 0);
        EXPECT_TRUE(m_log.mentions("SpumKyvo: Unable to open the unmixed image because failed to access the system's "
                                   "temporary directory!"));
    };
    EXPECT_GE(fillTheDisk([this] { console().m_pExportAsSequence->click(); }, check, true), 4);
    EXPECT_EQ(wanted.size(), 1);
    before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
}

} // namespace
