// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVInputDialog.h"
#include "host/CORVLog.h"
#include "platform/orvutils/BatchResponder.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/TextResponder.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace {

const QStringList items{"No.1", "No.2", "No.10"};

// Keeps what was asked and answers as told.
class Chooser : public orv::MessageResponder
{
public:
    Chooser(std::vector<orv::ItemRequest>* pAsked, std::optional<QString> answer)
        : m_pAsked(pAsked), m_answer(std::move(answer))
    {
    }
    int ask(const orv::MessageRequest& request) override { return request.defaultAnswer(); }
    std::optional<QString> chooseItem(const orv::ItemRequest& request) override
    {
        m_pAsked->push_back(request);
        return m_answer;
    }

private:
    std::vector<orv::ItemRequest>* m_pAsked;
    std::optional<QString> m_answer;
};

// Knows nothing of items.
class ButtonPresser : public orv::MessageResponder
{
public:
    int ask(const orv::MessageRequest& request) override { return request.defaultAnswer(); }
};

class InputDialogTest : public ::testing::Test
{
protected:
    void TearDown() override { orv::setMessageResponder(nullptr); }

    QString choose(bool bEditable = false, int nCurrent = 0)
    {
        m_bOk = !m_bOk; // whatever it was
        return CORVInputDialog::getItem(nullptr, "Title", "Which one?", items, nCurrent, bEditable, &m_bOk);
    }
    // What is answered when these lines are typed.
    QString type(const std::string& input, bool bEditable = false, int nCurrent = 0)
    {
        std::istringstream stream(input);
        orv::setMessageResponder(std::make_unique<orv::TextResponder>(m_output, &stream));
        const QString answer = choose(bEditable, nCurrent);
        orv::setMessageResponder(nullptr);
        return answer;
    }

    bool m_bOk = false;
    std::ostringstream m_output;
    std::vector<orv::ItemRequest> m_asked;
};

TEST_F(InputDialogTest, QuestionReachesTheInstalledResponder)
{
    orv::setMessageResponder(std::make_unique<Chooser>(&m_asked, "No.2"));
    EXPECT_EQ(choose(false, 2), "No.2");
    EXPECT_TRUE(m_bOk);
    ASSERT_EQ(m_asked.size(), 1U);
    EXPECT_EQ(m_asked[0].m_strTitle, "Title");
    EXPECT_EQ(m_asked[0].m_strLabel, "Which one?");
    EXPECT_EQ(m_asked[0].m_items, items);
    EXPECT_EQ(m_asked[0].m_nCurrent, 2);
    EXPECT_FALSE(m_asked[0].m_bEditable);
    EXPECT_EQ(m_asked[0].m_pParent, nullptr);
}

TEST_F(InputDialogTest, BackingOutGivesNoText)
{
    orv::setMessageResponder(std::make_unique<Chooser>(&m_asked, std::nullopt));
    EXPECT_EQ(choose(), "");
    EXPECT_FALSE(m_bOk);
    EXPECT_EQ(CORVInputDialog::getItem(nullptr, "t", "l", items), "");
}

TEST_F(InputDialogTest, ATextBesideTheItemsIsNoAnswerUnlessItMayBeEdited)
{
    orv::setMessageResponder(std::make_unique<Chooser>(&m_asked, "No.7"));
    EXPECT_EQ(choose(), "");
    EXPECT_FALSE(m_bOk);
    EXPECT_EQ(choose(true), "No.7");
    EXPECT_TRUE(m_bOk);
}

TEST_F(InputDialogTest, WithoutItemsNobodyIsAsked)
{
    orv::setMessageResponder(std::make_unique<Chooser>(&m_asked, ""));
    EXPECT_EQ(CORVInputDialog::getItem(nullptr, "t", "l", QStringList(), 0, false, &m_bOk), "");
    EXPECT_FALSE(m_bOk);
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(InputDialogTest, AResponderThatKnowsNoItemsBacksOut)
{
    orv::setMessageResponder(std::make_unique<ButtonPresser>());
    choose();
    EXPECT_FALSE(m_bOk);
}

TEST_F(InputDialogTest, WithoutAResponderTheQuestionGoesToStandardErrorAndNothingIsChosen)
{
    ::testing::internal::CaptureStderr();
    choose();
    EXPECT_FALSE(m_bOk);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Title: Which one?\n(nothing chosen)\n");
}

TEST_F(InputDialogTest, TypedItemsMayBeShortenedAndInAnyCase)
{
    EXPECT_EQ(type("no.2\n"), "No.2");
    EXPECT_TRUE(m_bOk);
    EXPECT_EQ(type("No.10\n"), "No.10");
    // Exact, though it begins another item.
    EXPECT_EQ(type("no.1\n"), "No.1");
    EXPECT_EQ(type("\n", false, 1), "No.2");
    EXPECT_NE(m_output.str().find("Title: Which one?\nNo.1 / No.2 / No.10 [No.1]? "), std::string::npos);
}

TEST_F(InputDialogTest, UnknownItemIsAskedAgainAndTheEndOfInputBacksOut)
{
    EXPECT_EQ(type("No\nNo.3\nNo.2\n"), "No.2");
    EXPECT_EQ(type(""), "");
    EXPECT_FALSE(m_bOk);
    EXPECT_EQ(type("No.3\n"), "");
    EXPECT_FALSE(m_bOk);
    // Nothing is proposed, so an empty line chooses nothing.
    EXPECT_EQ(type("\nNo.2\n", false, -1), "No.2");
}

TEST_F(InputDialogTest, AnotherTextMayBeTypedWhereItMayBeEdited)
{
    EXPECT_EQ(type("mine\n", true), "mine");
    EXPECT_TRUE(m_bOk);
}

TEST_F(InputDialogTest, BatchBacksOutAndLogsTheQuestion)
{
    std::vector<orv::LogRecord> records;
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    const int sink = orv::addLogSink([&records](const orv::LogRecord& record) { records.push_back(record); });
    orv::setMessageResponder(std::make_unique<orv::BatchResponder>());
    choose();
    orv::removeLogSink(sink);
    orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    EXPECT_FALSE(m_bOk);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].m_nLevel, CORVLOG_WARNING);
    EXPECT_EQ(records[0].m_strMessage, "Which one?");
    EXPECT_EQ(records[0].m_strExtra, "nothing chosen");
}

} // namespace
