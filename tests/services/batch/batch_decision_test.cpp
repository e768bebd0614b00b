// SPDX-License-Identifier: GPL-3.0-or-later
// When a sequence is unmixed again, and what is kept of how it ended.
#include "services/batch/batchDecision.h"

#include "services/support/CliFixture.h"

#include <QFile>

namespace {

class BatchDecisionTest : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        write("out/summary.json", R"({"files": ["map.tif", "summary.json"]})");
        write("out/map.tif", "map");
        m_record.done = true;
        m_record.fingerprint = m_now;
    }
    BatchReason reason(bool bAgain = false) const { return batchReason(m_record, m_now, path("out"), bAgain); }

    const BatchFingerprint m_now{"images", "options", "program"};
    BatchRecord m_record;
};

} // namespace

TEST_F(BatchDecisionTest, WhatHasNotChangedIsLeft)
{
    EXPECT_EQ(reason(), BatchReason::Unchanged);
    EXPECT_EQ(reason(true), BatchReason::Again);
}

TEST_F(BatchDecisionTest, EachChangeIsTold)
{
    EXPECT_EQ(batchReason(std::nullopt, m_now, path("out"), false), BatchReason::NoResult);
    m_record.fingerprint.program = "other";
    EXPECT_EQ(reason(), BatchReason::OtherProgram);
    m_record.fingerprint.options = "other";
    EXPECT_EQ(reason(), BatchReason::OtherOptions);
    m_record.fingerprint.images = "other";
    EXPECT_EQ(reason(), BatchReason::OtherImages);
    m_record.done = false;
    EXPECT_EQ(reason(), BatchReason::FailedBefore);
}

TEST_F(BatchDecisionTest, AResultThatLacksAFileIsNone)
{
    ASSERT_TRUE(QFile::remove(path("out/map.tif")));
    EXPECT_EQ(reason(), BatchReason::Incomplete);
    write("out/map.tif", "map");
    EXPECT_EQ(reason(), BatchReason::Unchanged);
    write("out/summary.json", "{");
    EXPECT_EQ(reason(), BatchReason::Incomplete);
    ASSERT_TRUE(QFile::remove(path("out/summary.json")));
    EXPECT_EQ(reason(), BatchReason::Incomplete);
}

TEST_F(BatchDecisionTest, EveryReasonHasWords)
{
    QStringList texts;
    for (int i = 0; i <= static_cast<int>(BatchReason::Unchanged); ++i) {
        texts.append(reasonText(static_cast<BatchReason>(i)));
    }
    EXPECT_EQ(texts, (QStringList{"there is no result yet", "it failed before", "the images have changed",
                                  "the options have changed", "the program has changed",
                                  "files of the result are missing", "--again", "unchanged since its result"}));
}

TEST_F(BatchDecisionTest, ARecordIsReadAsItWasWritten)
{
    BatchRecord record;
    record.message = QString::fromUtf8("n\xC3\xB6");
    record.warnings = QStringList{"a", "b"};
    record.seconds = 1.5;
    record.fingerprint = m_now;
    record.write(path("record.json"));
    const auto read = BatchRecord::read(path("record.json"));
    ASSERT_TRUE(read.has_value());
    EXPECT_FALSE(read->done);
    EXPECT_EQ(read->message, record.message);
    EXPECT_EQ(read->warnings, record.warnings);
    EXPECT_EQ(read->seconds, 1.5);
    EXPECT_EQ(read->fingerprint.images, "images");
    EXPECT_EQ(read->fingerprint.options, "options");
    EXPECT_EQ(read->fingerprint.program, "program");
    m_record.write(path("record.json"));
    EXPECT_TRUE(BatchRecord::read(path("record.json"))->done);
}

TEST_F(BatchDecisionTest, ABrokenRecordIsNone)
{
    EXPECT_FALSE(BatchRecord::read(path("none.json")).has_value());
    for (const char* text : {"", "{", "[]", "{\"state\": \"running\"}", "{\"state\": 1}"}) {
        EXPECT_FALSE(BatchRecord::read(write("record.json", text)).has_value()) << text;
    }
    EXPECT_NE(failureOf([&] { m_record.write(path("nowhere/record.json")); }), QString());
}
