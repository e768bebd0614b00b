// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/TestSequence.h"
#include "storage/saved_fixture.h"

#include "host/CORVPreference.h"
#include "platform/orvapi/SequenceWriter.h"
#include "platform/orvutils/ProcessControl.h"
#include "spectra/SpectrumPlotParams.h"

#include <QGuiApplication>
#include <QTextCodec>
#include <QWindow>

#include <sys/stat.h>

namespace {

const QString notLoaded = told("Unable to load Spectral Unmixing data for sequence [seq-7]");

class LoadTest : public SavedFixture
{
protected:
    LoadTest()
    {
        m_nObserver = orv::addProcessObserver([this](const orv::ProcessState& state) {
            m_processes += QString("%1 %2|%3").arg(state.m_nRunning).arg(state.m_strMessage).arg(state.m_nMilliseconds);
        });
    }
    ~LoadTest() override { orv::removeProcessObserver(m_nObserver); }

    bool load(const QString& strName)
    {
        m_processes.clear();
        m_owner.calls.clear();
        m_list.updates.clear();
        m_list.setCurrentText(strName);
        return m_results.onClickLoadResults();
    }
    // Neither a long process nor a disabled window was needed to find out.
    void expectEarlyEnd() const
    {
        EXPECT_TRUE(m_processes.isEmpty());
        EXPECT_FALSE(m_owner.calls.contains("disable"));
        EXPECT_FALSE(m_results.m_bResultFromFile);
    }

    QStringList m_processes;
    int m_nObserver = 0;
};

// The sequence of a test with images, on disk.
bool writeSequence(const QString& strFolder)
{
    TestSequence sequence("made");
    addMixture(sequence, 4, bellSpectra(2, 3));
    SequenceDescription description;
    description.id = "made";
    description.fluorescence = true;
    SequenceWriter writer;
    bool bDone = writer.begin(strFolder, description, false);
    for (CORVDataset* pDataset : sequence->getDatasets()) {
        DatasetDescription dataset;
        dataset.clickNumber = pDataset->getClickNumber();
        dataset.info = pDataset->clickInfo;
        bDone =
            bDone && writer.addDataset(dataset, {{IMAGETYPE_LUMINESCENT, pDataset->getCoreImage(IMAGETYPE_MAIN_DATA)},
                                                 {IMAGETYPE_PHOTOGRAPH, pDataset->getCoreImage(IMAGETYPE_PHOTOGRAPH)}});
    }
    return bDone && writer.finish();
}

TEST_F(LoadTest, ASavedResultComesBack)
{
    ASSERT_TRUE(writeSequence(m_folder.filePath("images")));
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(m_folder.filePath("images")), ESTATUS_SUCCESS);
    sequence.setSequenceName("with images");
    CORVSpumKyvo saved(sequence.getSequenceID());
    ASSERT_TRUE(saved.buildDatasetInfo());
    ASSERT_TRUE(saved.setBinningAndSize(true));
    takeSpectra(saved, bellSpectra(2, 3));
    saved.resultView().setNote("note of kidney");
    saved.resultView().setSpectra(saved.m_spectrumPlots);
    m_results.setEngine(&saved);
    ASSERT_EQ(save("kidney"), SaveOutcome::Saved);

    CORVSpumKyvo loaded(sequence.getSequenceID());
    ASSERT_TRUE(loaded.buildDatasetInfo());
    m_results.setEngine(&loaded);
    m_list.m_bResultModified = true;
    loaded.m_bSkipSavePrompt = true;
    ASSERT_TRUE(load("KIDNEY")) << m_log.reports();
    EXPECT_EQ(loaded.resultView().getNote(), QString("note of kidney"));
    ASSERT_EQ(loaded.m_spectrumPlots.size(), 2);
    for (int i = 0; i < 3; ++i) {
        EXPECT_DOUBLE_EQ(loaded.m_spectrumPlots.at(1)->points.at(i).value,
                         saved.m_spectrumPlots.at(1)->points.at(i).value);
    }
    EXPECT_EQ(m_owner.calls, QStringList({"show window", "clear tree", "disable", "enable", "selection", "update",
                                          "fill tree", "activate window", "results tab"}));
    EXPECT_EQ(m_list.updates, QStringList("with images"));
    EXPECT_FALSE(m_list.m_bResultModified);
    EXPECT_FALSE(loaded.m_bSkipSavePrompt);
    EXPECT_TRUE(m_results.m_bResultFromFile);
    EXPECT_EQ(m_list.currentText(), QString("kidney"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    const QString strDone = "Spectral Unmixing Results loaded successfully for sequence [" + loaded.m_strSeqId + "].";
    EXPECT_TRUE(m_log.has("Loading Spectrum Unmixing results...", 16));
    EXPECT_TRUE(m_log.has(strDone, 16));
    EXPECT_EQ(m_processes.first(), QString("1 |0"));
    EXPECT_EQ(m_processes.last(), "0 " + strDone + "|1000");
}

// The codec of the locale as long as it lives.
class LocaleCodec
{
public:
    explicit LocaleCodec(const char* pName) : m_pBefore(QTextCodec::codecForLocale())
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(pName));
    }
    ~LocaleCodec() { QTextCodec::setCodecForLocale(m_pBefore); }
    LocaleCodec(const LocaleCodec&) = delete;
    LocaleCodec& operator=(const LocaleCodec&) = delete;

private:
    QTextCodec* m_pBefore;
};

// What the engine is handed of a saved result, whatever it makes of it.
class LoadNoteTest : public LoadTest
{
protected:
    void saveNote(const QString& strNote)
    {
        m_engine.resultView().setNote(strNote);
        m_list.setCurrentText("kidney");
        ASSERT_EQ(m_results.onClickSaveResults(), SaveOutcome::Saved);
    }
    QString loadedNote()
    {
        m_engine.resultView().setNote(QString());
        load("kidney");
        return m_engine.resultView().getNote();
    }
};

const QString umlauts = QString::fromUtf8("caf\u00e9, 3 \u00b5m, M\u00e4use");

TEST_F(LoadNoteTest, ANoteSurvivesInEachCodePage)
{
    for (const char* pName : {"UTF-8", "ISO-8859-1", "ISO-8859-15", "windows-1252"}) {
        const LocaleCodec codec(pName);
        saveNote(umlauts);
        EXPECT_EQ(loadedNote(), umlauts) << pName;
        EXPECT_FALSE(m_log.mentions("code page")) << pName;
        QDir(path("XML")).removeRecursively();
    }
}

TEST_F(LoadNoteTest, InBytesOfAnotherCodePageWhatCannotBeReadIsReplacedAndTold)
{
    {
        const LocaleCodec codec("ISO-8859-1");
        saveNote(umlauts);
    }
    const LocaleCodec codec("UTF-8");
    EXPECT_EQ(loadedNote(), QString::fromUtf8("caf\ufffd, 3 \ufffdm, M\ufffduse"));
    EXPECT_TRUE(m_log.has(path("XML/SpecUnmix/" + files().first()) +
                              ": its text is in the bytes of another code page; what cannot be read is replaced",
                          2))
        << m_log.reports();
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(LoadTest, AMissingFileGoesThroughTheProgressAndEndsInLoadingFailed)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    ASSERT_TRUE(QFile::remove(path("XML/SpecUnmix/" + files().first())));
    m_list.m_bResultModified = true;
    EXPECT_FALSE(load("kidney"));
    EXPECT_EQ(m_owner.calls, QStringList({"show window", "clear tree", "disable", "enable"}));
    EXPECT_TRUE(m_log.has("SpumKyvo: this result file is not supported by current version!", 3));
    EXPECT_TRUE(m_log.has("Loading Failed!", 16));
    EXPECT_EQ(m_processes.last(), QString("0 Loading Failed!|1000"));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_TRUE(m_list.m_bResultModified);
    EXPECT_FALSE(m_results.m_bResultFromFile);
}

TEST_F(LoadTest, AnEntryWithoutAFileEndsInLoadingFailedToo)
{
    QDir().mkdir(path("XML"));
    writeBytes("XML/SPUM.txt", "[SPUM]\nMenuName: kidney\n");
    EXPECT_FALSE(load("kidney"));
    EXPECT_TRUE(m_log.has("Loading Failed!", 16));
}

TEST_F(LoadTest, AResultOfAnotherSequenceIsRefusedByTheEngine)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QString strFile = "XML/SpecUnmix/" + files().first();
    writeBytes(strFile, bytes(strFile).replace("id=\"seq-7\"", "id=\"seq-8\""));
    EXPECT_FALSE(load("kidney"));
    EXPECT_TRUE(m_log.has("SpumKyvo: sequence id mismatch in the result file!", 3));
    EXPECT_TRUE(m_log.has("Loading Failed!", 16));
}

TEST_F(LoadTest, AFileThatIsNoDocumentIsToldBeforeTheProgress)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QString strFile = "XML/SpecUnmix/" + files().first();
    const QByteArray whole = bytes(strFile);
    for (const QByteArray& content : {whole.left(whole.size() / 2), QByteArray(), QByteArray("no document")}) {
        m_boxes.shown.clear();
        writeBytes(strFile, content);
        EXPECT_FALSE(load("kidney"));
        EXPECT_EQ(m_boxes.shown, QStringList(notLoaded));
        expectEarlyEnd();
    }
}

TEST_F(LoadTest, AFolderInTheFilesPlaceCannotBeOpened)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QString strFile = path("XML/SpecUnmix/" + files().first());
    ASSERT_TRUE(QFile::remove(strFile) && QDir().mkdir(strFile));
    EXPECT_FALSE(load("kidney"));
    EXPECT_EQ(m_boxes.shown, QStringList(notLoaded));
    expectEarlyEnd();
}

TEST_F(LoadTest, APipeInTheFilesPlaceIsNotWaitedFor)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    const QString strFile = path("XML/SpecUnmix/" + files().first());
    ASSERT_TRUE(QFile::remove(strFile) && ::mkfifo(strFile.toLocal8Bit().constData(), 0600) == 0);
    EXPECT_FALSE(load("kidney"));
    EXPECT_EQ(m_boxes.shown, QStringList(notLoaded));
    expectEarlyEnd();
}

TEST_F(LoadTest, WithoutAnIndexThereIsNothingToLoad)
{
    EXPECT_FALSE(load("kidney"));
    EXPECT_TRUE(m_log.has("Unable to load SPUM.txt file", 1));
    EXPECT_EQ(m_boxes.shown, QStringList(notLoaded));
    expectEarlyEnd();
}

TEST_F(LoadTest, ANameThatIsNotThereIsTold)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    EXPECT_FALSE(load("liver"));
    EXPECT_TRUE(m_log.has("No results exists with this name.", 3));
    EXPECT_EQ(m_boxes.shown, QStringList(notLoaded));
    expectEarlyEnd();
}

TEST_F(LoadTest, AnEmptyFileNameIsTold)
{
    QDir().mkdir(path("XML"));
    writeBytes("XML/SPUM.txt", "[SPUM]\nMenuName: 100 %s\nFileName:\n");
    EXPECT_FALSE(load("100 %S"));
    EXPECT_TRUE(m_log.has("No result file exist for this result: 100 %s", 3));
    EXPECT_EQ(m_boxes.shown, QStringList(notLoaded));
    expectEarlyEnd();
}

TEST_F(LoadTest, OfNamesThatDifferInCaseTheEqualOneIsLoaded)
{
    ASSERT_TRUE(saveAll({"kidney", "Kidney"}));
    load("Kidney");
    EXPECT_EQ(m_engine.resultView().getNote(), QString("note of Kidney"));
    load("kidney");
    EXPECT_EQ(m_engine.resultView().getNote(), QString("note of kidney"));
}

TEST_F(LoadTest, AnAbsoluteFileNameIsTakenFromItsLastFolderOfFilesOn)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    writeBytes("XML/SPUM.txt", "[SPUM]\nMenuName: kidney\nFileName: /elsewhere/SpecUnmix/XML/SpecUnmix/" +
                                   files().first().toUtf8() + "\n");
    m_engine.resultView().setNote(QString());
    load("kidney");
    EXPECT_EQ(m_engine.resultView().getNote(), QString("note of kidney"));
}

TEST_F(LoadTest, NothingIsLoadedDuringAnAcquisition)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    CORVProcess::startLongProcess(0, LONGPROCESS_ACQUISITION, false, QString());
    EXPECT_FALSE(load("kidney"));
    CORVProcess::endLongProcess(LONGPROCESS_ACQUISITION);
    EXPECT_TRUE(
        m_log.has("Unable to proceed with loading Spectral Unmixing results for sequence [seq-7] as acquisition "
                  "is in progress, please try again later.",
                  2));
    EXPECT_TRUE(m_owner.calls.isEmpty());
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(LoadTest, ASequenceThatIsStillBeingLoadedMustWait)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    CORVPreference::setSequenceLoading(&m_sequence, true);
    EXPECT_FALSE(load("kidney"));
    CORVPreference::setSequenceLoading(&m_sequence, false);
    EXPECT_TRUE(m_log.has("Loading Spectrum Unmixing results...", 16));
    EXPECT_TRUE(m_log.has("Unable to load Spectrum Unmixing results into a partially loaded sequence.", 3));
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    expectEarlyEnd();
}

TEST_F(LoadTest, BackingOutOfTheQuestionKeepsTheResultOnScreen)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    m_list.m_bResultModified = true;
    m_owner.treeFilled = true;
    m_boxes.answer = CORVMessageBox::CancelButton;
    EXPECT_FALSE(load("kidney"));
    EXPECT_EQ(m_boxes.shown.size(), 1);
    EXPECT_FALSE(CORVMessageBox::getCancelClicked());
    EXPECT_TRUE(m_list.m_bResultModified);
    EXPECT_TRUE(m_owner.treeFilled);
    EXPECT_FALSE(m_log.has("Loading Spectrum Unmixing results...", 16));
}

TEST_F(LoadTest, WithoutAnEngineOrItsSequenceNothingHappens)
{
    m_results.setEngine(nullptr);
    EXPECT_FALSE(load("kidney"));
    CORVSpumKyvo stranger("no such sequence");
    m_results.setEngine(&stranger);
    EXPECT_FALSE(load("kidney"));
    EXPECT_TRUE(m_owner.calls.isEmpty());
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(LoadTest, EveryEndGivesTheCursorBack)
{
    ASSERT_TRUE(saveAll({"kidney", "liver"}));
    QFile::remove(path("XML/SpecUnmix/" + files().first()));
    QWindow window;
    window.show();
    for (const char* pName : {"kidney", "liver", "no such name"}) {
        load(pName);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << pName;
    }
    writeBytes("XML/SPUM.txt", "no index");
    load("kidney");
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(LoadTest, TheCursorTellsToWaitWhileLoading)
{
    ASSERT_TRUE(saveAll({"kidney"}));
    QWindow window;
    window.show();
    Qt::CursorShape eShape = Qt::ArrowCursor;
    const int nObserver = orv::addProcessObserver([&eShape](const orv::ProcessState& state) {
        if (state.m_nRunning > 0 && QGuiApplication::overrideCursor() != nullptr) {
            eShape = QGuiApplication::overrideCursor()->shape();
        }
    });
    load("kidney");
    orv::removeProcessObserver(nObserver);
    EXPECT_EQ(eShape, Qt::WaitCursor);
}

} // namespace
