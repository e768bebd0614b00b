// SPDX-License-Identifier: GPL-3.0-or-later
// While a run goes on nothing but its abort reaches the engine.
#include "end_to_end/WorkbenchFixture.h"
#include "support/simulated.h"

#include <QElapsedTimer>
#include <QThread>

#include <random>

namespace {

class DuringRunTest : public WorkbenchFixture
{
protected:
    // A run of some seconds: with as many components as there may be.
    [[nodiscard]] bool startLongRun()
    {
        if (!openWizard()) {
            return false;
        }
        while (isEnabled("m_pAddProbeTB")) {
            program().click("m_pAddProbeTB");
        }
        return program().waitUntilEnabled("qt_wizard_finish") && program().click("qt_wizard_finish") &&
               program().waitFor("abortButton", 20000);
    }

    // A random gesture somewhere above the panel with the abort button. Tab is none of them: it leads to that button,
    // and the next Return or Space would press it.
    void doAnything(std::mt19937& random, const QJsonArray& place)
    {
        const QJsonArray at{static_cast<int>(random() % static_cast<unsigned>(place[2].toInt())),
                            static_cast<int>(random() % static_cast<unsigned>(place[3].toInt() - 60))};
        const char* const keys[] = {"Return", "Ctrl+W", "Space", "Down"};
        switch (random() % 4) {
        case 0:
            program().call({{"do", "click"}, {"widget", "mainWindow"}, {"at", at}});
            break;
        case 1:
            program().call({{"do", "move"}, {"widget", "mainWindow"}, {"at", at}});
            break;
        case 2:
            program().call({{"do", "key"}, {"keys", keys[random() % 4]}, {"widget", "mainWindow"}});
            break;
        default:
            program().call({{"do", "drop"},
                            {"widget", "mainWindow"},
                            {"at", at},
                            {"files", QJsonArray{simulated::sequence({"--size", "64", "--bands", "9"})}}});
        }
    }

    QStringList longSequence() { return {simulated::sequence({"--size", "1024", "--bands", "24"})}; }
    bool runs() { return program().isVisible("abortButton"); }
};

TEST_F(DuringRunTest, AbortByButtonAndByEscapeBringsThePaletteBack)
{
    startProgram(longSequence());
    std::mt19937 random(1);
    for (int i = 0; i < 6; ++i) {
        ASSERT_TRUE(startLongRun());
        QThread::msleep(random() % 500);
        if (i % 2 == 0) {
            program().click("abortButton");
        } else {
            program().key("Esc");
        }
        ASSERT_TRUE(program().waitUntil([&] { return !runs() && isEnabled("tabWidget1"); }, 20000)) << i;
        program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Analyze"}});
    }
    ASSERT_TRUE(openWizard());
    ASSERT_TRUE(finishWizard());
    EXPECT_GE(rowNames().size(), 3);
}

TEST_F(DuringRunTest, ClicksKeysAndDropsChangeNothing)
{
    startProgram(longSequence());
    ASSERT_TRUE(startLongRun());
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(program().waitUntil([&] { return !runs(); }, 120000));
    const qint64 nWholeRun = clock.elapsed();
    ASSERT_TRUE(program().waitFor("m_pSPUnResultsLV", 20000));
    const QJsonArray results = program().state("m_pSPUnResultsLV")["rows"].toArray();
    const QStringList names = rowNames();

    std::mt19937 random(2);
    const QJsonArray place = program().state("mainWindow")["place"].toArray();
    int nDone = 0;
    for (int nRun = 0; nRun < 8; ++nRun) {
        ASSERT_TRUE(startLongRun());
        clock.start();
        // What comes late finds the run over, and would rightly do something.
        while (clock.elapsed() < nWholeRun / 3 && runs()) {
            doAnything(random, place);
            ++nDone;
        }
        // Whoever closes the sequence is asked.
        ASSERT_TRUE(program().waitUntil(
            [&] {
                if (program().isVisible(".QMessageBox")) {
                    program().click(".QMessageBox/.QPushButton[No]");
                }
                return !runs();
            },
            60000));
        ASSERT_TRUE(program().waitFor("m_pSPUnResultsLV", 20000)) << nRun;
        const QJsonObject windows = program().call({{"do", "find"}, {"widget", ".CORVSequenceWindow"}, {"all", true}});
        ASSERT_EQ(windows["found"].toArray().size(), 1) << nRun;
        ASSERT_EQ(program().state("m_pSPUnResultsLV")["rows"].toArray(), results);
        ASSERT_EQ(rowNames(), names);
    }
    EXPECT_GT(nDone, 8);
}

TEST_F(DuringRunTest, ClosingTheProgramAsksAbortsAndCloses)
{
    startProgram(longSequence());
    ASSERT_TRUE(startLongRun());
    program().call({{"do", "close"}, {"widget", "mainWindow"}});
    ASSERT_TRUE(program().waitFor(".QMessageBox", 5000));
    program().picture("end_to_end/close_during_run.png");
    EXPECT_EQ(program().state(".QMessageBox")["message"].toString().toStdString(),
              "An analysis is running. Abort it and quit?");
    ASSERT_TRUE(program().click(".QMessageBox/.QPushButton[Yes]"));
    // A run that came to its end meanwhile has a result to be asked about.
    EXPECT_TRUE(program().waitUntilEnded([&] { program().click(".QMessageBox/.QPushButton[No]", {}, 1000); }));
    EXPECT_EQ(program().exitCode(), 0);
}

TEST_F(DuringRunTest, ARunThatEndsWhileItsAbortIsAskedAboutLosesNothing)
{
    startProgram({simulated::sequence({"--size", "512", "--bands", "24"})});
    ASSERT_TRUE(startLongRun());
    program().call({{"do", "close"}, {"widget", "mainWindow"}});
    ASSERT_TRUE(program().waitFor(".QMessageBox", 5000));
    // The worker is through long before that; what comes after it waits for the answer.
    QThread::msleep(3000);
    program().click(".QMessageBox/.QPushButton[No]");
    ASSERT_TRUE(program().waitUntil([&] { return !runs(); }, 60000));
    ASSERT_TRUE(program().waitFor("m_pSPUnResultsLV", 20000));
    EXPECT_EQ(rowNames().size(), 6);
    EXPECT_TRUE(isEnabled("m_pSaveButton"));
}

} // namespace
