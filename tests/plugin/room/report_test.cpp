// SPDX-License-Identifier: GPL-3.0-or-later
// The report of a result, which a window writes while its events go on.
#include "WorkArea.h"

#include "support/PlainUser.h"

#include "platform/orvutils/ProcessControl.h"

#include "host/CORVProcess.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace workarea;

namespace {

class ReportTest : public MouseAreaTest
{
protected:
    void SetUp() override
    {
        unmixMouse();
        ASSERT_EQ(complaints(), "");
        m_nObserver = orv::addProcessObserver([this](const orv::ProcessState& state) {
            if (state.m_nSteps > 0 && m_whileWriting) {
                std::exchange(m_whileWriting, nullptr)(state);
            }
            m_bShownAsProcess = m_bShownAsProcess || (state.m_nRunning > 0 && state.m_bCanAbort);
        });
    }
    void TearDown() override { orv::removeProcessObserver(m_nObserver); }

    // Into "report"; `whileWriting` is called once, as the first step is told.
    void writeReport(const std::function<void(const orv::ProcessState&)>& whileWriting = nullptr)
    {
        m_whileWriting = whileWriting;
        m_answers.files = QStringList{m_folder.filePath("report")};
        m_palette->m_pReportButton->click();
    }
    QStringList entries() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    std::function<void(const orv::ProcessState&)> m_whileWriting;
    bool m_bShownAsProcess = false;
    int m_nObserver = 0;
};

TEST_F(ReportTest, ItProgressesWithEverythingElseOutOfReach)
{
    QSignalSpy windows(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows);
    bool bEnabled = true;
    QString strMessage;
    writeReport([&](const orv::ProcessState& state) {
        bEnabled = m_palette->isEnabled();
        strMessage = state.m_strMessage;
    });
    EXPECT_FALSE(bEnabled);
    EXPECT_EQ(strMessage.toStdString(), "Writing the report of sequence [seq-A]");
    EXPECT_TRUE(m_bShownAsProcess);
    ASSERT_EQ(windows.size(), 2);
    EXPECT_FALSE(windows.at(0).at(0).toBool());
    EXPECT_TRUE(windows.at(1).at(0).toBool());
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(processes(), 0);
    EXPECT_TRUE(QFile::exists(m_folder.filePath("report/report.html")));
    EXPECT_TRUE(QFile::exists(m_folder.filePath("report/summary.json")));
    EXPECT_TRUE(m_log.mentions("The report is in " + m_folder.filePath("report/report.html")));
    EXPECT_EQ(complaints(), "");
}

TEST_F(ReportTest, AnAbortLeavesNothingOfItAndTheResultAsItWas)
{
    const auto before = concentrations();
    writeReport([](const orv::ProcessState&) { orv::requestAbort(); });
    EXPECT_EQ(entries(), QStringList("mouse"));
    EXPECT_EQ(m_answers.asked.size(), 1) << "nothing but where to";
    EXPECT_TRUE(m_log.mentions("The report was aborted, and nothing of it is left."));
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(processes(), 0);
    EXPECT_EQ(concentrations(), before);
    writeReport();
    EXPECT_EQ(entries(), (QStringList{"mouse", "report"}));
}

TEST_F(ReportTest, NoRunStartsAndNoSecondReportWhileItIsWritten)
{
    const auto before = concentrations();
    writeReport([this](const orv::ProcessState&) {
        m_palette->onRunUnmixing();
        m_palette->onRunPCA();
        m_palette->onClickUnmixSpectra();
        m_palette->m_pReportButton->click();
    });
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_EQ(concentrations(), before);
    EXPECT_EQ(entries(), (QStringList{"mouse", "report"}));
}

TEST_F(ReportTest, ASequenceThatIsAnnouncedMeanwhileBecomesCurrentAfterwards)
{
    QString strMeanwhile;
    writeReport([&](const orv::ProcessState&) {
        open(otherPlan());
        strMeanwhile = engine().m_strSeqId;
    });
    EXPECT_EQ(strMeanwhile, "seq-A");
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    EXPECT_TRUE(QFile::exists(m_folder.filePath("report/report.html")));
}

// A host asks first and closes later; whatever it does, nothing is read that has gone.
TEST_F(ReportTest, ASequenceThatClosesMeanwhileEndsIt)
{
    writeReport([this](const orv::ProcessState&) { close(*m_opened.front()); });
    EXPECT_EQ(entries(), QStringList("mouse"));
    EXPECT_EQ(m_palette->engine(), nullptr);
    EXPECT_EQ(processes(), 0);
}

TEST_F(ReportTest, AFolderThatIsNotThereYetIsProposed)
{
    m_palette->m_pReportButton->click();
    EXPECT_EQ(m_answers.proposed, m_folder.filePath("mouse/unmixed"));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("mouse/unmixed"));
    m_palette->m_pReportButton->click();
    EXPECT_EQ(m_answers.proposed, m_folder.filePath("mouse/unmixed-2"));
}

// The name of a sequence may be anything; a folder has it without what leads elsewhere.
TEST_F(ReportTest, WhereNothingCanBeWrittenAFolderInTheHomeIsProposed)
{
    m_opened.front()->sequence().setSequenceName("../a mouse/of two");
    ASSERT_TRUE(QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7755)));
    ASSERT_TRUE(QFile::setPermissions(m_folder.filePath("mouse"), QFile::Permissions(0x5555)));
    {
        const PlainUser user;
        ASSERT_TRUE(user.isPlain());
        m_palette->m_pReportButton->click();
    }
    EXPECT_EQ(QFileInfo(m_answers.proposed).path(), QDir::homePath());
    EXPECT_EQ(QFileInfo(m_answers.proposed).fileName(), "_..a_mouseof_two-unmixed");
}

TEST_F(ReportTest, AFolderThatIsThereIsToldAndKept)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("report"));
    QFile file(m_folder.filePath("report/mine.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    writeReport();
    ASSERT_EQ(m_answers.asked.size(), 3) << "where to, whether to overwrite, and why not";
    EXPECT_TRUE(m_answers.texts().last().contains(m_folder.filePath("report")));
    EXPECT_EQ(QDir(m_folder.filePath("report")).entryList(QDir::Files), QStringList("mine.txt"));
}

} // namespace
