// SPDX-License-Identifier: GPL-3.0-or-later
// Saved results by the palette's controls: renamed by keys, overwritten, and loaded or saved where that cannot succeed.
#include "WorkArea.h"

#include "storage/hexText.h"
#include "support/PlainUser.h"
#include "windows/CORVDistributionView.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <ostream>

using namespace workarea;

namespace {

// A sequence with a saved result, "kidneys", on screen.
class SavedResultsTest : public MouseAreaTest
{
protected:
    void SetUp() override
    {
        unmixMouse();
        type("kidneys");
        m_palette->m_pSaveButton->click();
        ASSERT_EQ(list(), QStringList("kidneys"));
        ASSERT_TRUE(m_answers.asked.isEmpty());
        // A load solves for the maps anew, of the images as they are and not of what the run had made of them.
        load();
        ASSERT_EQ(complaints(), "");
        m_maps = concentrations();
    }

    // Into the field, as a user does.
    void press(Qt::Key eKey) { QTest::keyClick(m_palette->m_pSavedResultsCB->lineEdit(), eKey); }
    QDir files() const { return QDir(m_folder.filePath("mouse/XML/SpecUnmix")); }
    QString document() const { return files().filePath(files().entryList(QDir::Files).value(0)); }
    void write(const QByteArray& bytes) const
    {
        QFile file(document());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray read() const
    {
        QFile file(document());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void load()
    {
        type("kidneys");
        ASSERT_TRUE(m_palette->m_pLoadButton->isEnabled());
        m_palette->m_pLoadButton->click();
    }

    std::vector<double> m_maps;
};

TEST_F(SavedResultsTest, ReturnRenames)
{
    type("both kidneys");
    press(Qt::Key_Return);
    EXPECT_EQ(list(), QStringList("both kidneys"));
    EXPECT_EQ(text(), "both kidneys");
    EXPECT_TRUE(m_palette->m_pLoadButton->isEnabled());
    // What is typed by keys alone.
    m_palette->m_pSavedResultsCB->lineEdit()->selectAll();
    QTest::keyClicks(m_palette->m_pSavedResultsCB->lineEdit(), "left one");
    press(Qt::Key_Return);
    EXPECT_EQ(list(), QStringList("left one"));
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

TEST_F(SavedResultsTest, EscapeGivesTheNewNameUp)
{
    type("both kidneys");
    EXPECT_FALSE(m_palette->m_pLoadButton->isEnabled());
    press(Qt::Key_Escape);
    EXPECT_EQ(text(), "kidneys");
    EXPECT_TRUE(m_palette->m_pLoadButton->isEnabled());
    press(Qt::Key_Return);
    EXPECT_EQ(list(), QStringList("kidneys"));
}

TEST_F(SavedResultsTest, TheEnterKeyOfThePadDoesNotRename)
{
    type("both kidneys");
    press(Qt::Key_Enter);
    EXPECT_EQ(list(), QStringList("kidneys"));
    EXPECT_EQ(text(), "both kidneys");
}

TEST_F(SavedResultsTest, AnEmptyNameRestoresTheList)
{
    type("  ");
    press(Qt::Key_Return);
    EXPECT_EQ(list(), QStringList("kidneys"));
    EXPECT_EQ(text(), "kidneys");
}

// Filling the list is no edit: a key afterwards means nothing.
TEST_F(SavedResultsTest, AListThatIsFilledIsNotBeingEdited)
{
    m_palette->tabWidget1->setCurrentIndex(0);
    m_palette->tabWidget1->setCurrentIndex(1);
    press(Qt::Key_Return);
    press(Qt::Key_Escape);
    EXPECT_EQ(list(), QStringList("kidneys"));
    EXPECT_FALSE(m_log.mentions("Unable to rename"));
}

TEST_F(SavedResultsTest, OverwritingAsksAndNoLeavesEverything)
{
    const QByteArray before = read();
    console().setNote("the second");
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    m_palette->m_pSaveButton->click();
    ASSERT_EQ(m_answers.texts(),
              QStringList("Spectral Unmixing results are present under \"kidneys\".\n Do you want to overwrite?"));
    EXPECT_EQ(m_answers.asked.first().parent, nullptr);
    EXPECT_EQ(read(), before);
    EXPECT_EQ(files().entryList(QDir::Files).size(), 1);
    EXPECT_EQ(list(), QStringList("kidneys"));
}

TEST_F(SavedResultsTest, OverwritingKeepsTheOldFileAndShowsTheNewResult)
{
    waitForNextSecond();
    console().setNote("the second");
    m_palette->m_pSaveButton->click();
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_EQ(files().entryList(QDir::Files).size(), 2);
    EXPECT_EQ(list(), QStringList("kidneys"));
    console().setNote("");
    load();
    EXPECT_EQ(console().getNote(), "the second");
}

TEST_F(SavedResultsTest, ALoadedResultIsShownAndGivesTheSameMapsTimeAndAgain)
{
    m_palette->tabWidget1->setCurrentIndex(0);
    load();
    EXPECT_EQ(complaints(), "");
    EXPECT_EQ(concentrations(), m_maps);
    EXPECT_EQ(console().distributionView()->getImageNumber(), 3);
    EXPECT_EQ(m_palette->tabWidget1->currentIndex(), 1);
}

TEST_F(SavedResultsTest, AResultOfTheFirstGenerationIsShownAsStored)
{
    const auto hex = [](int nCount, double dFirst) {
        std::vector<double> values;
        for (int i = 0; i < nCount; ++i) {
            values.push_back(dFirst + i);
        }
        return hexText::fromDoubles(values.data(), values.size());
    };
    QString strPairs;
    for (const KeyPair& pair : engine().getSelectedKeyPairs()) {
        strPairs += QString("<p ex=\"%1\" em=\"%2\"/>").arg(pair.first, pair.second);
    }
    const int nPixels = side * side;
    write(QString("<SpectralUnmixingResults Version=\"1.5\"><SeqDataset id=\"seq-A\"/><SelectedWavelengths>%1"
                  "</SelectedWavelengths><MCRParams Components=\"2\"/><SpectrumPlots><p SpectrumType=\"2\" "
                  "SpectrumLabel=\"one\"/><p SpectrumType=\"2\" SpectrumLabel=\"two\"/></SpectrumPlots>"
                  "<ConcProfiles Total.Rows=\"2\" Total.Cols=\"%2\"><d Text.Data=\"%3\"/></ConcProfiles>"
                  "<PureSpectra Total.Rows=\"2\" Total.Cols=\"6\"><d Text.Data=\"%4\"/></PureSpectra>"
                  "</SpectralUnmixingResults>")
              .arg(strPairs)
              .arg(nPixels)
              .arg(hex(2 * nPixels, 1.0), hex(12, 0.5))
              .toUtf8());
    load();
    EXPECT_EQ(complaints(), "");
    ASSERT_EQ(concentrations().size(), static_cast<std::size_t>(2 * nPixels));
    EXPECT_EQ(concentrations()[5], 6.0);
    EXPECT_EQ(console().distributionView()->imageLabel(1), "two");
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "MCR");
}

// What the maps on screen were corrected by is another matter than what the console offers.
TEST_F(SavedResultsTest, ALoadedDecayCorrectionIsOfferedAndNotApplied)
{
    Plan plan;
    plan.id = "seq-C";
    plan.folder = m_folder.filePath("light of decay");
    plan.isotope = "F-18";
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    open(plan);
    ASSERT_TRUE(engine().m_bCherenkov);
    unmixAutomatically();
    type("light");
    m_palette->m_pSaveButton->click();
    const double dHalfLife = engine().m_dHalfLifeSec;
    const QString strIsotope = engine().m_strIsotope;
    const QDir folder(plan.folder + "/XML/SpecUnmix");
    QFile file(folder.filePath(folder.entryList(QDir::Files).value(0)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QString strText = QString::fromLocal8Bit(file.readAll());
    file.close();
    strText.replace(QRegularExpression("<Cherenkov_Decay_Correction [^>]*/>"),
                    "<Cherenkov_Decay_Correction IsotopeName=\"Undefined\" HalfLife=\"109.8\" "
                    "IsDecayCorrectionApplied=\"false\"/>");
    ASSERT_TRUE(strText.contains("109.8"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(strText.toLocal8Bit());
    file.close();
    m_palette->m_pLoadButton->click();
    EXPECT_EQ(complaints(), "");
    EXPECT_NEAR(console().m_dHalfLifeSeconds, 6588.0, 1e-3); // it is kept as a float of minutes
    EXPECT_EQ(engine().m_dHalfLifeSec, dHalfLife);
    EXPECT_EQ(engine().m_strIsotope, strIsotope);
    EXPECT_FALSE(engine().m_bDecayApplied);
}

// Of a machine with another code page: the letters that cannot be read are replaced, and that is told.
TEST_F(SavedResultsTest, ANoteInAnotherCodePageDoesNotKeepTheResult)
{
    write(read().replace("Note=\"\"", "Note=\"gro\xDF\""));
    load();
    EXPECT_EQ(concentrations(), m_maps);
    EXPECT_TRUE(console().getNote().startsWith("gro"));
    EXPECT_NE(complaints(), "");
}

struct BadDocument
{
    const char* test;
    QByteArray bytes; // null: no file at all
    const char* told; // a box; null when the load goes on to its end and fails there
};

void PrintTo(const BadDocument& bad, std::ostream* pStream)
{
    *pStream << bad.test;
}

class BadDocumentTest : public SavedResultsTest, public ::testing::WithParamInterface<BadDocument>
{
};

TEST_P(BadDocumentTest, IsToldAndLeavesAPaletteThatLoadsTheNext)
{
    const QByteArray whole = read();
    const QString strPath = document();
    if (GetParam().bytes.isNull()) {
        ASSERT_TRUE(QFile::remove(strPath));
    } else {
        write(GetParam().bytes);
    }
    load();
    if (GetParam().told != nullptr) {
        EXPECT_EQ(m_answers.texts(), QStringList(GetParam().told));
    } else {
        EXPECT_TRUE(m_answers.asked.isEmpty());
        EXPECT_TRUE(m_log.has("Loading Failed!", 16));
    }
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(processes(), 0);
    EXPECT_EQ(list(), QStringList("kidneys"));
    EXPECT_TRUE(resultItems().isEmpty());

    QFile file(strPath);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(whole);
    file.close();
    load();
    EXPECT_EQ(concentrations(), m_maps);
    EXPECT_FALSE(resultItems().isEmpty());
}

TEST_P(BadDocumentTest, CanBeDeleted)
{
    if (GetParam().bytes.isNull()) {
        ASSERT_TRUE(QFile::remove(document()));
    } else {
        write(GetParam().bytes);
    }
    type("kidneys");
    m_palette->m_pDeleteButton->click();
    EXPECT_EQ(m_answers.texts(), QStringList("Are you sure you want to delete the results for kidneys?"));
    EXPECT_EQ(list(), QStringList());
    EXPECT_EQ(files().entryList(QDir::Files), QStringList());
    EXPECT_FALSE(m_palette->m_pDeleteButton->isEnabled());
}

constexpr char cannotLoad[] = "Unable to load Spectral Unmixing data for sequence [seq-A]";

INSTANTIATE_TEST_SUITE_P(
    Documents, BadDocumentTest,
    ::testing::Values(BadDocument{"Missing", QByteArray(), nullptr}, BadDocument{"Empty", QByteArray(""), cannotLoad},
                      BadDocument{"NoDocument", "what is this", cannotLoad},
                      BadDocument{"CutShort", "<SpectralUnmixingResults Version=\"2\"><SeqDataset", cannotLoad},
                      BadDocument{"TooOld", "<SpectralUnmixingResults Version=\"1.0\"/>", nullptr},
                      BadDocument{"OtherSequence",
                                  "<SpectralUnmixingResults Version=\"2\"><SeqDataset id=\"other\"/>"
                                  "</SpectralUnmixingResults>",
                                  nullptr},
                      BadDocument{"OtherImages",
                                  "<SpectralUnmixingResults Version=\"2\"><SelectedKeyPairs><p Col=\"1\" Row=\"2\"/>"
                                  "</SelectedKeyPairs></SpectralUnmixingResults>",
                                  nullptr},
                      BadDocument{"NewerMask",
                                  "<SpectralUnmixingResults Version=\"2\"><DataMask Version=\"1.5\"/>"
                                  "</SpectralUnmixingResults>",
                                  nullptr}),
    [](const ::testing::TestParamInfo<BadDocument>& tested) { return std::string(tested.param.test); });

struct LockedPlace
{
    const char* test;
    const char* path; // below the sequence's folder
    const char* told; // a box; null for a line in the log
};

void PrintTo(const LockedPlace& place, std::ostream* pStream)
{
    *pStream << place.test;
}

class LockedPlaceTest : public SavedResultsTest, public ::testing::WithParamInterface<LockedPlace>
{
protected:
    // Everything is readable, and only the place cannot be changed.
    void lock(const QString& strPlace) const
    {
        QDirIterator entries(m_folder.path(), QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7755));
        while (entries.hasNext()) {
            const QString strEntry = entries.next();
            QFile::setPermissions(strEntry, QFile::Permissions(entries.fileInfo().isDir() ? 0x7777 : 0x6666));
        }
        QFile::setPermissions(strPlace, QFile::Permissions(0x5555));
    }
};

TEST_P(LockedPlaceTest, ASaveIsToldAndTheResultStaysUnsaved)
{
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    unmixAutomatically();
    m_answers.asked.clear();
    const QString strNew = text();
    waitForNextSecond();
    const QString strHome = m_folder.filePath("mouse");
    if (*GetParam().path == 0) {
        ASSERT_TRUE(QDir(strHome + "/XML").removeRecursively());
    }
    lock(strHome + GetParam().path);
    {
        const PlainUser user;
        ASSERT_TRUE(user.isPlain());
        m_palette->m_pSaveButton->click();
    }
    if (GetParam().told != nullptr) {
        EXPECT_EQ(m_answers.texts(), QStringList(GetParam().told));
    } else {
        EXPECT_TRUE(m_answers.asked.isEmpty());
        EXPECT_TRUE(m_log.has("Failed to create XML folder.", 3));
    }
    EXPECT_EQ(text(), strNew);
    EXPECT_TRUE(m_palette->m_pSaveButton->isEnabled());
    EXPECT_FALSE(resultItems().isEmpty());
    // Once it can be written to, the same click saves.
    lock(m_folder.filePath("mouse/click"));
    m_palette->m_pSaveButton->click();
    EXPECT_TRUE(list().contains(QString(strNew).remove("(new)"))) << text().toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Places, LockedPlaceTest,
    ::testing::Values(LockedPlace{"Home", "", nullptr},
                      LockedPlace{"List", "/XML", "Unable to save Specturm Unmixing analysis data"},
                      LockedPlace{"Documents", "/XML/SpecUnmix",
                                  "Unable to save Spectral Unmixing analysis data for sequence [seq-A]."}),
    [](const ::testing::TestParamInfo<LockedPlace>& tested) { return std::string(tested.param.test); });

TEST_F(LockedPlaceTest, RenamingAndDeletingAreToldOrLeftAndChangeNothing)
{
    lock(m_folder.filePath("mouse/XML"));
    {
        const PlainUser user;
        ASSERT_TRUE(user.isPlain());
        type("both kidneys");
        press(Qt::Key_Return);
        EXPECT_EQ(m_answers.texts(),
                  QStringList("Unable to load Spectral Unmixing analysis data for sequence [seq-A]."));
        EXPECT_EQ(text(), "kidneys");
        m_palette->m_pDeleteButton->click();
    }
    EXPECT_EQ(list(), QStringList("kidneys"));
    load();
    EXPECT_EQ(concentrations(), m_maps);
}

} // namespace
