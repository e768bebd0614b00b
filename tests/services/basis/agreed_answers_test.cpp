// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/AgreedAnswers.h"

#include "host/CORVMessageBox.h"
#include "platform/orvutils/MessageResponder.h"

#include <gtest/gtest.h>

namespace {

// Says No, chooses "b", and counts.
class Asked : public orv::MessageResponder
{
public:
    explicit Asked(int& count) : m_count(count) {}
    int ask(const orv::MessageRequest& request) override
    {
        ++m_count;
        return request.answers().last();
    }
    std::optional<QString> chooseItem(const orv::ItemRequest&) override
    {
        ++m_count;
        return QStringLiteral("b");
    }

private:
    int& m_count;
};

int ask(int nButtons)
{
    orv::MessageRequest request;
    request.m_nButtons = nButtons;
    return orv::messageResponder().ask(request);
}

constexpr int yesNo = CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer;

class AgreedAnswersTest : public ::testing::Test
{
protected:
    AgreedAnswersTest() : m_pEarlier(orv::setMessageResponder(std::make_unique<Asked>(m_nAsked))) {}
    ~AgreedAnswersTest() override { orv::setMessageResponder(std::move(m_pEarlier)); }

    int m_nAsked = 0;

private:
    std::unique_ptr<orv::MessageResponder> m_pEarlier;
};

} // namespace

TEST_F(AgreedAnswersTest, WhatCanBeAnsweredWithYesIsAndNobodyIsAsked)
{
    const AgreedAnswers agreed;
    EXPECT_EQ(ask(yesNo), CORVMessageBox::YesButton);
    EXPECT_EQ(ask(yesNo | CORVMessageBox::CancelButton), CORVMessageBox::YesButton);
    EXPECT_EQ(m_nAsked, 0);
}

TEST_F(AgreedAnswersTest, AllElseGoesToWhoeverIsAskedOtherwise)
{
    const AgreedAnswers agreed;
    EXPECT_EQ(ask(CORVMessageBox::Ok), CORVMessageBox::Ok);
    EXPECT_EQ(orv::messageResponder().chooseItem(orv::ItemRequest()), QStringLiteral("b"));
    EXPECT_EQ(m_nAsked, 2);
}

TEST_F(AgreedAnswersTest, ItsEndBringsTheEarlierOneBack)
{
    {
        const AgreedAnswers agreed;
        const AgreedAnswers again;
        EXPECT_EQ(ask(yesNo), CORVMessageBox::YesButton);
    }
    EXPECT_EQ(ask(yesNo), CORVMessageBox::NoButtonAnswer);
    EXPECT_EQ(m_nAsked, 1);
}
