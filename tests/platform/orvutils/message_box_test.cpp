// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "platform/orvutils/BatchResponder.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/TextResponder.h"

#include <QMessageBox>

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace {

constexpr int yesNo = CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer;
constexpr int yesNoCancel = yesNo | CORVMessageBox::CancelButton;

// Keeps what was asked and answers as told.
class Recorder : public orv::MessageResponder
{
public:
    explicit Recorder(std::vector<orv::MessageRequest>* pAsked, int nAnswer) : m_pAsked(pAsked), m_nAnswer(nAnswer) {}
    int ask(const orv::MessageRequest& request) override
    {
        m_pAsked->push_back(request);
        return m_nAnswer;
    }

private:
    std::vector<orv::MessageRequest>* m_pAsked;
    int m_nAnswer;
};

class MessageBoxTest : public ::testing::Test
{
protected:
    void TearDown() override { orv::setMessageResponder(nullptr); }

    // A question with input; the stream keeps the text.
    int askWithInput(const std::string& input, int nButtons, int nDefault = CORVMessageBox::NoButton)
    {
        std::istringstream stream(input);
        orv::setMessageResponder(std::make_unique<orv::TextResponder>(m_output, &stream));
        const int answer = CORVMessageBox::warning(nullptr, "Orvia", "Overwrite?", nButtons, nDefault);
        orv::setMessageResponder(nullptr);
        return answer;
    }

    std::ostringstream m_output;
};

TEST_F(MessageBoxTest, ButtonsHaveTheValuesOfTheWindowSystem)
{
    EXPECT_EQ(static_cast<int>(CORVMessageBox::Ok), static_cast<int>(QMessageBox::Ok));
    EXPECT_EQ(static_cast<int>(CORVMessageBox::YesButton), static_cast<int>(QMessageBox::Yes));
    EXPECT_EQ(static_cast<int>(CORVMessageBox::NoButtonAnswer), static_cast<int>(QMessageBox::No));
    EXPECT_EQ(static_cast<int>(CORVMessageBox::NoToAllButton), static_cast<int>(QMessageBox::NoToAll));
    EXPECT_EQ(static_cast<int>(CORVMessageBox::CancelButton), static_cast<int>(QMessageBox::Cancel));
}

TEST_F(MessageBoxTest, EveryFormReachesTheInstalledResponder)
{
    std::vector<orv::MessageRequest> asked;
    orv::setMessageResponder(std::make_unique<Recorder>(&asked, 2));
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "w", yesNo, CORVMessageBox::NoButtonAnswer), 2);
    CORVMessageBox::information(nullptr, QString(), "i");
    CORVMessageBox::error(nullptr, "c", "e");
    CORVMessageBox::warning(nullptr, "c", "w", "0", "1", "2", "d");
    CORVMessageBox::information(nullptr, "c", "i", "0", "", "2", "d");
    CORVMessageBox::error(nullptr, "c", "e", "0", "1", "2", "d");
    ASSERT_EQ(asked.size(), 6U);
    EXPECT_EQ(asked[0].m_eKind, orv::MessageRequest::Warning);
    EXPECT_EQ(asked[0].m_strCaption, "c");
    EXPECT_EQ(asked[0].m_nButtons, yesNo);
    EXPECT_EQ(asked[0].m_nDefault, CORVMessageBox::NoButtonAnswer);
    EXPECT_EQ(asked[1].m_eKind, orv::MessageRequest::Information);
    EXPECT_EQ(asked[1].answers(), QList<int>{CORVMessageBox::Ok});
    EXPECT_EQ(asked[2].m_eKind, orv::MessageRequest::Error);
    EXPECT_EQ(asked[3].m_buttonTexts, QStringList({"0", "1", "2"}));
    EXPECT_EQ(asked[3].m_strDetail, "d");
    EXPECT_EQ(asked[4].answers(), QList<int>({0, 2}));
    EXPECT_EQ(asked[5].m_eKind, orv::MessageRequest::Error);
}

TEST_F(MessageBoxTest, InstallingHandsBackTheEarlierResponder)
{
    std::vector<orv::MessageRequest> asked;
    EXPECT_EQ(orv::setMessageResponder(std::make_unique<Recorder>(&asked, 1)), nullptr);
    EXPECT_NE(orv::setMessageResponder(nullptr), nullptr);
}

TEST_F(MessageBoxTest, WithoutAResponderTheTextGoesToStandardErrorAndTheDefaultIsTheAnswer)
{
    ::testing::internal::CaptureStderr();
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "Orvia", "Delete?", yesNo, CORVMessageBox::YesButton),
              CORVMessageBox::YesButton);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Warning: Orvia: Delete?\n(answered: Yes)\n");
}

TEST_F(MessageBoxTest, WithoutANamedDefaultTheAnswerChangesLeast)
{
    orv::setMessageResponder(std::make_unique<orv::TextResponder>(m_output));
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "t", yesNoCancel), CORVMessageBox::CancelButton);
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "t", yesNo), CORVMessageBox::NoButtonAnswer);
    // A default that is not among the buttons counts as none.
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "t", yesNo, CORVMessageBox::CancelButton),
              CORVMessageBox::NoButtonAnswer);
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "t", CORVMessageBox::Ok), CORVMessageBox::Ok);
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "t", 0), CORVMessageBox::Ok);
}

TEST_F(MessageBoxTest, SixTextFormsAnswerWithThePositionOfTheFirstText)
{
    orv::setMessageResponder(std::make_unique<orv::TextResponder>(m_output));
    EXPECT_EQ(CORVMessageBox::error(nullptr, "c", "t", "a", "b", "c", "detail"), 0);
    EXPECT_EQ(CORVMessageBox::error(nullptr, "c", "t", "", "b", "c", "detail"), 1);
    EXPECT_EQ(CORVMessageBox::error(nullptr, "c", "t", "", "", "", "detail"), 0);
    EXPECT_NE(m_output.str().find("Error: c: t\ndetail\n"), std::string::npos);
}

TEST_F(MessageBoxTest, TextAnswersMayBeShortenedAndInAnyCase)
{
    EXPECT_EQ(askWithInput("y\n", yesNo), CORVMessageBox::YesButton);
    EXPECT_EQ(askWithInput("YES\n", yesNo), CORVMessageBox::YesButton);
    EXPECT_EQ(askWithInput("  n \n", yesNo), CORVMessageBox::NoButtonAnswer);
    // "n" begins two answers and is exact for neither, "no" is exact.
    const int noAndNoToAll = yesNo | CORVMessageBox::NoToAllButton;
    EXPECT_EQ(askWithInput("n\nno\n", noAndNoToAll), CORVMessageBox::NoButtonAnswer);
    EXPECT_EQ(askWithInput("no t\n", noAndNoToAll), CORVMessageBox::NoToAllButton);
}

TEST_F(MessageBoxTest, UnknownAnswerIsAskedAgainAndTheEndOfInputMeansTheDefault)
{
    EXPECT_EQ(askWithInput("perhaps\n-1\nc\n", yesNoCancel), CORVMessageBox::CancelButton);
    EXPECT_EQ(askWithInput("\n", yesNo, CORVMessageBox::YesButton), CORVMessageBox::YesButton);
    EXPECT_EQ(askWithInput("", yesNo, CORVMessageBox::YesButton), CORVMessageBox::YesButton);
    EXPECT_EQ(askWithInput("perhaps", yesNo), CORVMessageBox::NoButtonAnswer);
}

TEST_F(MessageBoxTest, MessageWithOneButtonReadsNoInput)
{
    std::istringstream input("unread\n");
    orv::setMessageResponder(std::make_unique<orv::TextResponder>(m_output, &input));
    EXPECT_EQ(CORVMessageBox::information(nullptr, QString(), "Done."), CORVMessageBox::Ok);
    EXPECT_EQ(input.tellg(), std::streampos(0));
    EXPECT_EQ(m_output.str(), "Done.\n");
}

TEST_F(MessageBoxTest, BatchAnswersItselfAndLogsTheMessage)
{
    std::vector<orv::LogRecord> records;
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    const int sink = orv::addLogSink([&records](const orv::LogRecord& record) { records.push_back(record); });
    ::testing::internal::CaptureStderr();
    orv::setMessageResponder(std::make_unique<orv::BatchResponder>(CORVMessageBox::YesButton));
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "Overwrite?", yesNo, CORVMessageBox::NoButtonAnswer),
              CORVMessageBox::YesButton);
    EXPECT_EQ(CORVMessageBox::error(nullptr, "c", "Failed."), CORVMessageBox::Ok);
    EXPECT_EQ(CORVMessageBox::information(nullptr, "c", "t", "", "b", "", "d"), 1);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    orv::removeLogSink(sink);
    orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].m_nLevel, CORVLOG_WARNING);
    EXPECT_EQ(records[0].m_strMessage, "Overwrite?");
    EXPECT_EQ(records[0].m_strExtra, "answered: Yes");
    EXPECT_EQ(records[1].m_nLevel, CORVLOG_ERROR);
    EXPECT_EQ(records[2].m_nLevel, CORVLOG_NOTE);
    EXPECT_EQ(records[2].m_strMessage, "t\nd");
}

TEST_F(MessageBoxTest, BatchWithoutAPreferenceGivesTheDefault)
{
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    orv::setMessageResponder(std::make_unique<orv::BatchResponder>());
    EXPECT_EQ(CORVMessageBox::warning(nullptr, "c", "t", yesNo, CORVMessageBox::YesButton), CORVMessageBox::YesButton);
    orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
}

TEST_F(MessageBoxTest, CancelIsRemembered)
{
    EXPECT_FALSE(CORVMessageBox::getCancelClicked());
    CORVMessageBox::setCancelClicked(true);
    EXPECT_TRUE(CORVMessageBox::getCancelClicked());
    CORVMessageBox::setCancelClicked(false);
    EXPECT_FALSE(CORVMessageBox::getCancelClicked());
}

} // namespace
