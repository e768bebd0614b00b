// SPDX-License-Identifier: GPL-3.0-or-later
// The ways to leave a result that is not saved, each with every answer to its question: what the user wants kept is
// kept, and nothing else.
#include "WorkArea.h"

#include "host/CORVDataset.h"
#include "host/CORVUtilityFns.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>

#include <ostream>

using namespace workarea;

namespace {

constexpr int yes = CORVMessageBox::YesButton;
constexpr int no = CORVMessageBox::NoButtonAnswer;
constexpr int cancel = CORVMessageBox::CancelButton;
constexpr int noToAll = CORVMessageBox::NoToAllButton;

// A sequence with a saved result, "SPUM_001", and another on screen that is not saved.
class UnsavedResultTest : public WorkAreaTest
{
public:
    void SetUp() override
    {
        Plan plan;
        plan.folder = m_folder.filePath("first");
        m_pFirst = &open(plan);
        unmixAutomatically();
        console().setNote("saved");
        m_palette->m_pSaveButton->click();
        unmixAutomatically();
        console().setNote("unsaved");
        ASSERT_EQ(m_palette->m_pSavedResultsCB->currentText(), "SPUM_002(new)");
        ASSERT_EQ(kept(m_folder.filePath("first")), QStringList("SPUM_001: saved 6"));
        ASSERT_TRUE(m_answers.asked.isEmpty());
    }
    ~UnsavedResultTest() override
    {
        CORVUtilityFns::setCloseAllClicked(false);
        CORVUtilityFns::setNoToAllClicked(false);
    }

    static Plan secondPlan(const QString& strFolder)
    {
        Plan plan = otherPlan();
        plan.folder = strFolder;
        return plan;
    }
    // Names of saved results with the notes of their documents and the numbers of their images.
    static QStringList kept(const QString& strFolder)
    {
        const QDir xml(strFolder + "/XML");
        QFile index(xml.filePath("SPUM.txt"));
        QStringList results;
        if (!index.open(QIODevice::ReadOnly)) {
            return results;
        }
        QString strName;
        for (const QString& line : QString::fromUtf8(index.readAll()).split('\n')) {
            const QString strValue = line.section(':', 1).trimmed();
            strName = line.startsWith("MenuName") ? strValue : strName;
            if (line.startsWith("FileName")) {
                QFile file(xml.filePath(strValue));
                QDomDocument document;
                const bool bWhole = file.open(QIODevice::ReadOnly) && document.setContent(file.readAll());
                const int nImages = document.elementsByTagName("KeyPair").size();
                const QString strNote = document.documentElement().attribute("Note");
                results << QString("%1: ").arg(strName) +
                               (bWhole ? QString("%1 %2").arg(strNote).arg(nImages) : "none");
            }
        }
        return results;
    }

    // The ways.
    void startAnew() { start("Automatic"); }
    void openAnother() { open(secondPlan(m_folder.filePath("second"))); }
    void lookAtADatasetOfAnother()
    {
        m_opened.push_back(std::make_unique<OpenedInWindow>(secondPlan(m_folder.filePath("second")), *m_pArea));
        m_palette->onDatasetChanged(m_opened.back()->sequence().getDatasets().last());
    }
    void load()
    {
        m_palette->m_pSavedResultsCB->setCurrentIndex(0);
        ASSERT_TRUE(m_palette->m_pLoadButton->isEnabled());
        m_palette->m_pLoadButton->click();
    }
    void closeSequence() { m_palette->onCloseSequenceDataset(&m_pFirst->sequence()); }
    void closeAll()
    {
        CORVUtilityFns::setCloseAllClicked(true);
        closeSequence();
    }
    // As a host does ahead of a close that can be called off.
    void hostAsks() { m_palette->askToSaveResults(true); }
    void hostAsksClosingAll()
    {
        CORVUtilityFns::setCloseAllClicked(true);
        hostAsks();
    }
    void sequenceAsks() { m_palette->askToSaveExistingResults(); }
    void editInConsole() { Q_EMIT console().askToSaveExistingResult(); }
    void unmixFromConsole() { engine().onClickDrawingFinished(1); }
    void loseTheBands()
    {
        setBandsOf(*m_pFirst, "700nm");
        m_palette->onSequenceChanged(&m_pFirst->sequence());
        ASSERT_EQ(m_palette->engine(), nullptr);
    }
    void becomeAScanThatIsNotUnmixed()
    {
        m_pFirst->sequence().setCTScan(true, true);
        m_pFirst->sequence().isSecondKind = true;
        m_palette->onSequenceChanged(&m_pFirst->sequence());
        ASSERT_EQ(m_palette->engine(), nullptr);
    }

protected:
    QTemporaryDir m_folder;
    OpenedInWindow* m_pFirst = nullptr;
};

struct Way
{
    const char* name;
    void (UnsavedResultTest::*leave)();
    QList<int> offered; // beside yes and no, in the order of the box
    int answer;
};

class WayTest : public UnsavedResultTest, public ::testing::WithParamInterface<Way>
{
};

TEST_P(WayTest, KeepsWhatIsWantedAndNothingElse)
{
    const Way& way = GetParam();
    const std::vector<double> maps = concentrations();
    m_answers.answer = way.answer;
    (this->*way.leave)();
    ASSERT_EQ(m_answers.texts(), QStringList("Save Spectral Unmixing results for sequence [name of seq-A]?"));
    EXPECT_EQ(m_answers.asked.first().caption, "Orvia");
    EXPECT_EQ(m_answers.asked.first().offered, (QList<int>{yes, no} + way.offered));
    EXPECT_FALSE(CORVUtilityFns::getNoToAllClicked() != (way.answer == noToAll));
    QStringList wanted{"SPUM_001: saved 6"};
    if (way.answer == yes) {
        wanted << "SPUM_002: unsaved 6";
    }
    EXPECT_EQ(kept(m_folder.filePath("first")), wanted);
    EXPECT_EQ(kept(m_folder.filePath("second")), QStringList());
    if (way.answer != cancel) {
        return;
    }
    // Nothing has changed: the result is on screen, and can still be saved.
    EXPECT_EQ(concentrations(), maps);
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_EQ(console().getNote(), "unsaved");
    EXPECT_TRUE(m_palette->isEnabled());
    CORVMessageBox::setCancelClicked(false);
    CORVUtilityFns::setCloseAllClicked(false);
    m_answers.asked.clear();
    m_answers.answer = yes;
    EXPECT_TRUE(m_palette->askToSaveResults(true));
    EXPECT_EQ(kept(m_folder.filePath("first")).last(), "SPUM_002: unsaved 6");
}

std::string nameOf(const ::testing::TestParamInfo<Way>& info)
{
    return info.param.name;
}

void PrintTo(const Way& way, std::ostream* pStream)
{
    *pStream << way.name;
}

INSTANTIATE_TEST_SUITE_P(
    Ways, WayTest,
    ::testing::Values(
        Way{"NewStartYes", &WayTest::startAnew, {cancel}, yes}, Way{"NewStartNo", &WayTest::startAnew, {cancel}, no},
        Way{"NewStartCancel", &WayTest::startAnew, {cancel}, cancel},
        Way{"OtherSequenceYes", &WayTest::openAnother, {}, yes}, Way{"OtherSequenceNo", &WayTest::openAnother, {}, no},
        Way{"DatasetOfOtherSequenceYes", &WayTest::lookAtADatasetOfAnother, {}, yes},
        Way{"DatasetOfOtherSequenceNo", &WayTest::lookAtADatasetOfAnother, {}, no},
        Way{"LoadYes", &WayTest::load, {cancel}, yes}, Way{"LoadNo", &WayTest::load, {cancel}, no},
        Way{"LoadCancel", &WayTest::load, {cancel}, cancel}, Way{"CloseYes", &WayTest::closeSequence, {}, yes},
        Way{"CloseNo", &WayTest::closeSequence, {}, no}, Way{"CloseAllYes", &WayTest::closeAll, {noToAll}, yes},
        Way{"CloseAllNo", &WayTest::closeAll, {noToAll}, no},
        Way{"CloseAllNoToAll", &WayTest::closeAll, {noToAll}, noToAll},
        Way{"HostAsksYes", &WayTest::hostAsks, {cancel}, yes}, Way{"HostAsksNo", &WayTest::hostAsks, {cancel}, no},
        Way{"HostAsksCancel", &WayTest::hostAsks, {cancel}, cancel},
        Way{"HostAsksClosingAllYes", &WayTest::hostAsksClosingAll, {cancel}, yes},
        Way{"HostAsksClosingAllNo", &WayTest::hostAsksClosingAll, {cancel}, no},
        Way{"HostAsksClosingAllCancel", &WayTest::hostAsksClosingAll, {cancel}, cancel},
        Way{"SequenceAsksYes", &WayTest::sequenceAsks, {}, yes}, Way{"SequenceAsksNo", &WayTest::sequenceAsks, {}, no},
        Way{"EditInConsoleYes", &WayTest::editInConsole, {}, yes},
        Way{"EditInConsoleNo", &WayTest::editInConsole, {}, no},
        Way{"UnmixFromConsoleYes", &WayTest::unmixFromConsole, {cancel}, yes},
        Way{"UnmixFromConsoleNo", &WayTest::unmixFromConsole, {cancel}, no},
        Way{"UnmixFromConsoleCancel", &WayTest::unmixFromConsole, {cancel}, cancel},
        Way{"BandsLostYes", &WayTest::loseTheBands, {}, yes}, Way{"BandsLostNo", &WayTest::loseTheBands, {}, no},
        Way{"ScanYes", &WayTest::becomeAScanThatIsNotUnmixed, {}, yes},
        Way{"ScanNo", &WayTest::becomeAScanThatIsNotUnmixed, {}, no}),
    nameOf);

TEST_F(UnsavedResultTest, NoToAllHoldsForTheSequencesThatClose)
{
    m_answers.answer = yes;
    auto& second = open(secondPlan(m_folder.filePath("second")));
    unmixAutomatically();
    m_answers.asked.clear();
    m_answers.answer = noToAll;
    CORVUtilityFns::setCloseAllClicked(true);
    m_palette->onCloseSequenceDataset(&second.sequence());
    EXPECT_EQ(m_answers.asked.size(), 1);
    m_palette->onSequenceChanged(&m_pFirst->sequence());
    m_palette->onCloseSequenceDataset(&m_pFirst->sequence());
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_EQ(kept(m_folder.filePath("first")).size(), 2);
    EXPECT_EQ(kept(m_folder.filePath("second")), QStringList());
}

// The question of the start has been answered; the wizard's Finish must not put it again.
TEST_F(UnsavedResultTest, ARunAsksOnce)
{
    m_answers.answer = no;
    unmixAutomatically();
    EXPECT_EQ(m_answers.asked.size(), 1);
}

TEST_F(UnsavedResultTest, ASavedOrLoadedResultIsLeftWithoutAQuestion)
{
    waitForNextSecond();
    m_palette->m_pSaveButton->click();
    load();
    start("Automatic");
    EXPECT_TRUE(m_answers.asked.isEmpty());
    EXPECT_EQ(kept(m_folder.filePath("first")), (QStringList{"SPUM_001: saved 6", "SPUM_002: unsaved 6"}));
}

// A result that was given up on the way to another sequence is found there again, and may still be saved.
TEST_F(UnsavedResultTest, WhoComesBackCanSaveWhatWasGivenUp)
{
    m_answers.answer = no;
    open(secondPlan(m_folder.filePath("second")));
    m_palette->onSequenceChanged(&m_pFirst->sequence());
    ASSERT_TRUE(m_palette->m_pSaveButton->isEnabled());
    waitForNextSecond();
    m_palette->m_pSavedResultsCB->setEditText("after all");
    m_palette->m_pSaveButton->click();
    EXPECT_EQ(kept(m_folder.filePath("first")), (QStringList{"SPUM_001: saved 6", "after all: unsaved 6"}));
}

} // namespace
