// SPDX-License-Identifier: GPL-3.0-or-later
// Asking the user to keep a result that would be lost.
#include "storage/saved_fixture.h"

#include <QWidget>

namespace {

constexpr int cancel = CORVMessageBox::CancelButton;
constexpr int noToAll = CORVMessageBox::NoToAllButton;

class AskTest : public SavedFixture
{
protected:
    AskTest() { setUp(); }
    // A result on screen that has not been saved.
    void setUp()
    {
        m_list.m_bResultModified = true;
        m_list.updateSavedResultsForSelSeqId("seq-7");
        m_results.m_strAutoName = m_list.currentText();
        m_results.m_bResultFromFile = false;
        m_owner.treeFilled = true;
        m_owner.calls.clear();
        m_list.updates.clear();
        m_boxes.shown.clear();
    }
    QString question(int nButtons) const
    {
        return asked("Save Spectral Unmixing results for sequence [Mouse seven]?", nButtons);
    }
};

TEST_F(AskTest, TheButtonsDependOnWhetherAllIsClosedAndCancelIsOffered)
{
    struct Case
    {
        bool closeAll;
        bool canCancel;
        int buttons;
    };
    for (const Case& c : {Case{false, false, yesNo}, Case{false, true, yesNo | cancel},
                          Case{true, false, yesNo | noToAll}, Case{true, true, yesNo | cancel}}) {
        setUp();
        CORVUtilityFns::setCloseAllClicked(c.closeAll);
        EXPECT_TRUE(m_results.askToSaveResults(c.canCancel));
        EXPECT_EQ(m_boxes.shown, QStringList(question(c.buttons))) << c.closeAll << c.canCancel;
        EXPECT_FALSE(m_list.m_bResultModified);
        EXPECT_FALSE(m_owner.treeFilled);
        EXPECT_EQ(m_list.updates, QStringList("Mouse seven"));
        EXPECT_FALSE(CORVUtilityFns::getNoToAllClicked());
        EXPECT_FALSE(QDir(path("XML")).exists());
    }
}

TEST_F(AskTest, YesSavesUnderTheAutomaticName)
{
    for (const bool bCloseAll : {false, true}) {
        for (const bool bCanCancel : {false, true}) {
            setUp();
            m_list.setCurrentText("typed but not confirmed");
            m_results.m_bUseAutoName = false;
            CORVUtilityFns::setCloseAllClicked(bCloseAll);
            m_boxes.answer = CORVMessageBox::YesButton;
            EXPECT_TRUE(m_results.askToSaveResults(bCanCancel));
            EXPECT_TRUE(m_results.m_bUseAutoName);
            EXPECT_FALSE(m_list.m_bResultModified);
            EXPECT_FALSE(m_owner.treeFilled);
            m_moment = m_moment.addSecs(1);
        }
    }
    EXPECT_EQ(names(), QStringList({"SPUM_001", "SPUM_002", "SPUM_003", "SPUM_004"}));
    EXPECT_EQ(files().size(), 4);
}

TEST_F(AskTest, YesSavesInTheSecondOfAnotherSaveToo)
{
    ASSERT_EQ(save("of this second"), SaveOutcome::Saved);
    setUp();
    // The second goes by once the save has looked for a free name.
    int nLooks = 0;
    m_results.m_clock = [&] { return m_moment.addSecs(nLooks++ < 3 ? 0 : 1); };
    m_boxes.answer = CORVMessageBox::YesButton;
    EXPECT_TRUE(m_results.askToSaveResults(true));
    EXPECT_EQ(names(), QStringList({"of this second", "SPUM_001"}));
    EXPECT_EQ(files().size(), 2);
}

TEST_F(AskTest, YesWithAFailingSaveStillDropsTheResult)
{
    writeBytes("XML", "a file in the folder's place");
    m_boxes.answer = CORVMessageBox::YesButton;
    EXPECT_TRUE(m_results.askToSaveResults(true));
    EXPECT_TRUE(m_log.has("Failed to create XML folder.", 3));
    EXPECT_FALSE(m_list.m_bResultModified);
    EXPECT_FALSE(m_owner.treeFilled);
}

TEST_F(AskTest, CancelKeepsTheResultAndIsRemembered)
{
    for (const bool bCloseAll : {false, true}) {
        setUp();
        CORVMessageBox::setCancelClicked(false);
        CORVUtilityFns::setCloseAllClicked(bCloseAll);
        m_boxes.answer = cancel;
        EXPECT_FALSE(m_results.askToSaveResults(true));
        EXPECT_TRUE(CORVMessageBox::getCancelClicked());
        EXPECT_TRUE(m_list.m_bResultModified);
        EXPECT_TRUE(m_owner.treeFilled);
        EXPECT_TRUE(m_list.updates.isEmpty());
    }
}

TEST_F(AskTest, WithoutCancelAnythingButYesIsANo)
{
    m_boxes.answer = cancel;
    EXPECT_TRUE(m_results.askToSaveResults(false));
    EXPECT_FALSE(CORVMessageBox::getCancelClicked());
    EXPECT_FALSE(m_list.m_bResultModified);
    setUp();
    m_boxes.answer = noToAll;
    EXPECT_TRUE(m_results.askToSaveResults(false));
    EXPECT_FALSE(CORVUtilityFns::getNoToAllClicked());
    EXPECT_FALSE(QDir(path("XML")).exists());
}

TEST_F(AskTest, NoToAllIsSaidOnceForAll)
{
    CORVUtilityFns::setCloseAllClicked(true);
    m_boxes.answer = noToAll;
    EXPECT_TRUE(m_results.askToSaveResults(false));
    EXPECT_TRUE(CORVUtilityFns::getNoToAllClicked());
    EXPECT_FALSE(m_list.m_bResultModified);
    EXPECT_EQ(m_boxes.shown, QStringList(question(yesNo | noToAll)));
    for (const bool bCloseAll : {false, true}) {
        for (const bool bCanCancel : {false, true}) {
            setUp();
            m_results.m_bResultFromFile = false;
            CORVUtilityFns::setCloseAllClicked(bCloseAll);
            EXPECT_TRUE(m_results.askToSaveResults(bCanCancel));
            EXPECT_TRUE(m_boxes.shown.isEmpty());
            EXPECT_TRUE(m_list.m_bResultModified);
            EXPECT_EQ(m_owner.calls, QStringList("clear tree"));
        }
    }
}

TEST_F(AskTest, NothingIsAskedWithoutAResultToLose)
{
    const auto expectNoQuestion = [this] {
        EXPECT_TRUE(m_results.askToSaveResults(true));
        EXPECT_TRUE(m_boxes.shown.isEmpty());
        EXPECT_FALSE(m_owner.treeFilled);
        EXPECT_FALSE(m_results.m_bResultFromFile);
        EXPECT_TRUE(m_list.updates.isEmpty());
        setUp();
    };
    m_engine.m_bSkipSavePrompt = true;
    expectNoQuestion();
    m_engine.m_bSkipSavePrompt = false;
    m_owner.treeFilled = false;
    expectNoQuestion();
    m_list.m_bResultModified = false;
    expectNoQuestion();
    m_results.m_bResultFromFile = true;
    expectNoQuestion();
    CORVSpumKyvo stranger("no such sequence");
    m_results.setEngine(&stranger);
    expectNoQuestion();
    m_results.setEngine(&m_engine);
    EXPECT_TRUE(m_results.askToSaveResults(true));
    EXPECT_EQ(m_boxes.shown.size(), 1);
}

TEST_F(AskTest, ABatchAsksNothingAndKeepsEverything)
{
    m_results.m_bBatchMode = true;
    m_results.m_bResultFromFile = true;
    m_results.setEngine(nullptr);
    EXPECT_TRUE(m_results.askToSaveResults(true));
    EXPECT_TRUE(m_owner.treeFilled);
    EXPECT_TRUE(m_results.m_bResultFromFile);
    EXPECT_TRUE(m_boxes.shown.isEmpty());
}

TEST_F(AskTest, WithoutAnEngineTheAnswerIsNo)
{
    m_results.setEngine(nullptr);
    EXPECT_FALSE(m_results.askToSaveResults(true));
    EXPECT_TRUE(m_owner.treeFilled);
}

TEST_F(AskTest, ATemporalSequenceIsCalledSo)
{
    m_engine.m_eSeqKind = SEQKIND_TEMPORAL;
    EXPECT_TRUE(m_results.askToSaveResults(false));
    EXPECT_EQ(m_boxes.shown, QStringList(asked("Save Temporal Unmixing results for sequence [Mouse seven]?")));
}

TEST_F(AskTest, MessagesHaveTheParentsThatTheWindowNames)
{
    class Window : public RecordingOwner
    {
    public:
        QWidget* messageParent() override { return &message; }
        QWidget* activeChildWindow() override { return &child; }
        QWidget message;
        QWidget child;
    };
    Window window;
    window.treeFilled = true;
    SavedResults results(m_list, window);
    results.setEngine(&m_engine);
    EXPECT_TRUE(results.askToSaveResults(true));
    m_list.setCurrentText("x");
    EXPECT_FALSE(results.onClickLoadResults());
    EXPECT_EQ(m_boxes.parents, QList<QWidget*>({&window.child, &window.message}));
    // Questions about files that are there have none.
    m_boxes.parents.clear();
    m_boxes.answer = CORVMessageBox::YesButton;
    EXPECT_EQ(results.onClickSaveResults(), SaveOutcome::Saved);
    EXPECT_EQ(results.onClickSaveResults(), SaveOutcome::FileWasThere);
    m_list.updateSavedResultsForSelSeqId("seq-7");
    m_list.setCurrentText("x");
    EXPECT_TRUE(results.onClickDeleteResults());
    EXPECT_EQ(m_boxes.parents, QList<QWidget*>({nullptr, nullptr}));
}

} // namespace
