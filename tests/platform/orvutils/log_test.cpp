// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVLog.h"
#include "platform/orvutils/LogSinks.h"
#include "support/ForkedChild.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

void logAt(long nLevel, const QString& strMessage, const QString& strExtra = QString())
{
    CORVLog::getLogObject()->log(strMessage, strExtra, 0, QStringLiteral("12:00:00"), nLevel, false);
}

class LogTest : public ::testing::Test
{
protected:
    void SetUp() override { orv::setConsoleLogLevel(orv::ConsoleLog::Nothing); }
    void TearDown() override
    {
        orv::setLogFile(QString());
        orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    }
    QStringList fileLines() const
    {
        QFile file(m_strPath);
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
        EXPECT_EQ(lines.takeLast(), QString());
        return lines;
    }
    // What a call writes to standard error.
    static std::string consoleOf(orv::ConsoleLog eLevel)
    {
        orv::setConsoleLogLevel(eLevel);
        ::testing::internal::CaptureStderr();
        logAt(CORVLOG_NOTE, "n");
        logAt(CORVLOG_WARNING, "w");
        logAt(CORVLOG_ERROR, "e");
        logAt(CORVLOG_PROGRESS, "p");
        const std::string text = ::testing::internal::GetCapturedStderr();
        std::string words;
        for (const auto& line : QString::fromStdString(text).split('\n', Qt::SkipEmptyParts)) {
            words += line.back().toLatin1();
        }
        return words;
    }

    QTemporaryDir m_folder;
    QString m_strPath = m_folder.filePath("the log.txt");
    QString m_strError;
};

TEST_F(LogTest, FileHoldsOneLineAMessageWithTimeLevelAndText)
{
    ASSERT_TRUE(orv::setLogFile(m_strPath, &m_strError)) << m_strError.toStdString();
    logAt(CORVLOG_NOTE, "note");
    logAt(CORVLOG_WARNING, "warning", "extra");
    logAt(CORVLOG_ERROR, QString::fromUtf8("\xc3\xa4rger"));
    logAt(CORVLOG_PROGRESS, "progress");
    const QStringList lines = fileLines();
    ASSERT_EQ(lines.size(), 4);
    const QRegularExpression stamp("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z  ");
    for (const auto& line : lines) {
        EXPECT_TRUE(stamp.match(line).hasMatch()) << line.toStdString();
    }
    EXPECT_TRUE(lines[0].endsWith("Z  NOTE      note"));
    EXPECT_TRUE(lines[1].endsWith("Z  WARNING   warning | extra"));
    EXPECT_TRUE(lines[2].endsWith(QString::fromUtf8("Z  ERROR     \xc3\xa4rger")));
    EXPECT_TRUE(lines[3].endsWith("Z  PROGRESS  progress"));
}

TEST_F(LogTest, EndsOfLineInAMessageDoNotBreakTheLine)
{
    ASSERT_TRUE(orv::setLogFile(m_strPath));
    logAt(CORVLOG_NOTE, "a\nb\r\nc");
    ASSERT_EQ(fileLines().size(), 1);
    EXPECT_TRUE(fileLines()[0].endsWith("a b  c"));
}

TEST_F(LogTest, FileIsAppendedToAndEndsWithAnEmptyPath)
{
    ASSERT_TRUE(orv::setLogFile(m_strPath));
    logAt(CORVLOG_NOTE, "first");
    ASSERT_TRUE(orv::setLogFile(QString()));
    logAt(CORVLOG_NOTE, "lost");
    ASSERT_TRUE(orv::setLogFile(m_strPath));
    logAt(CORVLOG_NOTE, "second");
    ASSERT_EQ(fileLines().size(), 2);
    EXPECT_TRUE(fileLines()[1].endsWith("second"));
}

TEST_F(LogTest, FileThatCannotBeOpenedLeavesTheEarlierOneInUse)
{
    ASSERT_TRUE(orv::setLogFile(m_strPath));
    const QString bad = m_folder.filePath("none/log.txt");
    EXPECT_FALSE(orv::setLogFile(bad, &m_strError));
    EXPECT_TRUE(m_strError.startsWith(bad + ": "));
    logAt(CORVLOG_NOTE, "still here");
    EXPECT_EQ(fileLines().size(), 1);
}

TEST_F(LogTest, FullDiskEndsTheFileAndNothingElse)
{
    const int status = inForkedChild([this] {
        if (!orv::setLogFile(m_strPath) || !limitFileSize(500) || !std::freopen("/dev/null", "w", stderr)) {
            return 1;
        }
        int received = 0;
        orv::addLogSink([&received](const orv::LogRecord&) { ++received; });
        for (int i = 0; i < 100; ++i) {
            logAt(CORVLOG_ERROR, "a line that fills the disk");
        }
        return received == 100 ? 0 : 2;
    });
    EXPECT_EQ(status, 0);
    EXPECT_LE(QFile(m_strPath).size(), 500);
    EXPECT_GT(QFile(m_strPath).size(), 0);
}

TEST_F(LogTest, StandardErrorShowsWhatTheLevelAllows)
{
    EXPECT_EQ(consoleOf(orv::ConsoleLog::Nothing), "");
    EXPECT_EQ(consoleOf(orv::ConsoleLog::Errors), "e");
    EXPECT_EQ(consoleOf(orv::ConsoleLog::Warnings), "we");
    EXPECT_EQ(consoleOf(orv::ConsoleLog::Everything), "nwep");
}

TEST_F(LogTest, NothingGoesToStandardOutput)
{
    orv::setConsoleLogLevel(orv::ConsoleLog::Everything);
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    logAt(CORVLOG_ERROR, "loud");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(LogTest, SinkReceivesTheTextsAsGivenUntilItIsRemoved)
{
    std::vector<orv::LogRecord> records;
    const int sink = orv::addLogSink([&records](const orv::LogRecord& record) { records.push_back(record); });
    logAt(16, "a\nb", "extra");
    orv::removeLogSink(sink);
    logAt(1, "lost");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].m_nLevel, 16);
    EXPECT_EQ(records[0].m_strMessage, "a\nb");
    EXPECT_EQ(records[0].m_strExtra, "extra");
    EXPECT_EQ(records[0].m_time.timeSpec(), Qt::UTC);
}

TEST_F(LogTest, SinkThatLogsDoesNotCallItself)
{
    int calls = 0;
    const int sink = orv::addLogSink([&calls](const orv::LogRecord&) {
        ++calls;
        logAt(CORVLOG_NOTE, "from the sink");
    });
    logAt(CORVLOG_NOTE, "x");
    orv::removeLogSink(sink);
    EXPECT_EQ(calls, 1);
}

TEST_F(LogTest, SinkMayRemoveItself)
{
    int calls = 0;
    int sink = 0;
    sink = orv::addLogSink([&calls, &sink](const orv::LogRecord&) {
        ++calls;
        orv::removeLogSink(sink);
    });
    logAt(CORVLOG_NOTE, "x");
    logAt(CORVLOG_NOTE, "y");
    EXPECT_EQ(calls, 1);
}

TEST_F(LogTest, ThreadsThatLogAtOnceLoseAndMixNoLine)
{
    constexpr int threads = 8;
    constexpr int linesEach = 200;
    ASSERT_TRUE(orv::setLogFile(m_strPath));
    int received = 0; // not atomic: one call at a time
    const int sink = orv::addLogSink([&received](const orv::LogRecord&) { ++received; });
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([t] {
            for (int i = 0; i < linesEach; ++i) {
                logAt(CORVLOG_PROGRESS, QString("thread %1 line %2").arg(t).arg(i));
            }
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    orv::removeLogSink(sink);
    EXPECT_EQ(received, threads * linesEach);
    QSet<QString> texts;
    for (const auto& line : fileLines()) {
        texts.insert(line.mid(line.indexOf("thread ")));
    }
    EXPECT_EQ(texts.size(), threads * linesEach);
    EXPECT_TRUE(texts.contains("thread 7 line 199"));
}

} // namespace
