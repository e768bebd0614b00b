// SPDX-License-Identifier: GPL-3.0-or-later
// The log as the user sees it.
#include "MainWindowFixture.h"

#include "host/CORVLog.h"
#include "platform/orvutils/LogSinks.h"
#include "workbench/application/LogDock.h"
#include "workbench/application/LogFilter.h"
#include "workbench/application/LogModel.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QThread>
#include <QTreeView>

namespace {

void logLine(const QString& strText, long nLevel)
{
    CORVLog::getLogObject()->log(strText, QString(), 0, QString(), nLevel, false);
}

class LogTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
        MainWindowFixture::SetUp();
        makeWindow();
        settle();
        QTest::mouseClick(find("logClear"), Qt::LeftButton);
    }
    void TearDown() override
    {
        MainWindowFixture::TearDown();
        orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    }
    QStringList shown() const
    {
        const QAbstractItemModel* pModel = find<QTreeView>("logView")->model();
        QStringList lines;
        for (int i = 0; i < pModel->rowCount(); ++i) {
            lines << pModel->index(i, LogModel::MessageColumn).data().toString();
        }
        return lines;
    }
    void logAll()
    {
        logLine("an error", CORVLOG_ERROR);
        logLine("a warning", CORVLOG_WARNING);
        logLine("a note", CORVLOG_NOTE);
        logLine("a step", CORVLOG_PROGRESS);
        settle();
    }
    QString status() const
    {
        return find<QLabel>("statusText")->isVisible() ? find<QLabel>("statusText")->text() : QString();
    }
};

TEST_F(LogTest, LinesComeInOrder)
{
    logAll();
    EXPECT_EQ(shown(), QStringList({"an error", "a warning", "a note", "a step"}));
}

TEST_F(LogTest, LinesOfOtherThreadsComeToo)
{
    QThread* pThread = QThread::create([] { logLine("from the worker", CORVLOG_NOTE); });
    pThread->start();
    pThread->wait();
    delete pThread;
    settle();
    EXPECT_EQ(shown(), QStringList("from the worker"));
}

TEST_F(LogTest, LevelsCanBeHidden)
{
    logAll();
    find<QCheckBox>("logNotes")->setChecked(false);
    find<QCheckBox>("logProgress")->setChecked(false);
    EXPECT_EQ(shown(), QStringList({"an error", "a warning"}));
    find<QCheckBox>("logErrors")->setChecked(false);
    find<QCheckBox>("logWarnings")->setChecked(false);
    find<QCheckBox>("logNotes")->setChecked(true);
    EXPECT_EQ(shown(), QStringList("a note"));
}

TEST_F(LogTest, ATextFiltersWithoutRegardToCase)
{
    logAll();
    find<QLineEdit>("logFilter")->setText(" NOT");
    EXPECT_EQ(shown(), QStringList("a note"));
    find<QLineEdit>("logFilter")->clear();
    EXPECT_EQ(shown().size(), 4);
}

TEST_F(LogTest, CopyTakesWhatIsShownOrSelected)
{
    logAll();
    find<QCheckBox>("logProgress")->setChecked(false);
    QTest::mouseClick(find("logCopy"), Qt::LeftButton);
    QStringList copied = QApplication::clipboard()->text().split('\n');
    ASSERT_EQ(copied.size(), 3);
    EXPECT_TRUE(copied[0].contains("ERROR") && copied[0].endsWith("an error")) << qPrintable(copied[0]);
    auto* pView = find<QTreeView>("logView");
    pView->setCurrentIndex(pView->model()->index(1, 0));
    QTest::mouseClick(find("logCopy"), Qt::LeftButton);
    copied = QApplication::clipboard()->text().split('\n');
    ASSERT_EQ(copied.size(), 1);
    EXPECT_TRUE(copied[0].endsWith("a warning"));
}

TEST_F(LogTest, LevelsThatAreHiddenStaySoAtTheNextStart)
{
    find<QCheckBox>("logNotes")->setChecked(false);
    EXPECT_TRUE(m_pWindow->close());
    makeWindow();
    EXPECT_FALSE(find<QCheckBox>("logNotes")->isChecked());
    EXPECT_TRUE(find<QCheckBox>("logErrors")->isChecked());
}

TEST_F(LogTest, WarningsAndErrorsStandInTheStatusBarUntilTheNextAction)
{
    logLine("a note", CORVLOG_NOTE);
    settle();
    EXPECT_EQ(status(), QString());
    logLine("a warning", CORVLOG_WARNING);
    settle();
    EXPECT_EQ(status(), "a warning");
    QTest::qWait(50);
    EXPECT_EQ(status(), "a warning");
    QTest::keyClick(m_pWindow.get(), Qt::Key_Shift);
    EXPECT_EQ(status(), "a warning");
    QTest::mouseClick(find("startPage"), Qt::LeftButton);
    EXPECT_EQ(status(), QString());
    logLine("an error", CORVLOG_ERROR);
    settle();
    EXPECT_EQ(status(), "an error");
    QTest::keyClick(m_pWindow.get(), Qt::Key_Right);
    EXPECT_EQ(status(), QString());
}

TEST_F(LogTest, AnErrorIsNotPushedAwayByAWarning)
{
    logLine("an error", CORVLOG_ERROR);
    logLine("a warning", CORVLOG_WARNING);
    settle();
    EXPECT_EQ(status(), "an error");
    logLine("another error", CORVLOG_ERROR);
    settle();
    EXPECT_EQ(status(), "another error");
}

TEST(LogModelTest, TheOldestLinesAreDropped)
{
    LogModel model(100);
    QVector<orv::LogRecord> records;
    for (int i = 0; i < 250; ++i) {
        records.append({QDateTime::currentDateTimeUtc(), CORVLOG_NOTE, QString::number(i), QString()});
    }
    model.append(records);
    EXPECT_EQ(model.rowCount(), 100);
    EXPECT_EQ(model.index(99, LogModel::MessageColumn).data().toString(), "249");
    model.append({records.first()});
    EXPECT_LE(model.rowCount(), 100);
    EXPECT_GE(model.rowCount(), 90);
    EXPECT_EQ(model.index(model.rowCount() - 1, LogModel::MessageColumn).data().toString(), "0");
}

TEST(LogModelTest, UnknownLevelsAreNotes)
{
    EXPECT_EQ(LogModel::levelOf({QDateTime(), 7, QString(), QString()}), CORVLOG_NOTE);
    EXPECT_EQ(LogModel::levelText(CORVLOG_PROGRESS), "Progress");
}

TEST(LogModelTest, ATextThatLooksLikeMarkupIsShownAsItIs)
{
    LogModel model;
    model.append({{QDateTime::currentDateTimeUtc(), CORVLOG_ERROR, "<b>x</b>\ny", QString()}});
    EXPECT_EQ(model.index(0, LogModel::MessageColumn).data().toString(), "<b>x</b> y");
    EXPECT_TRUE(model.index(0, LogModel::MessageColumn).data(Qt::ToolTipRole).toString().contains("&lt;b&gt;x"));
}

} // namespace
