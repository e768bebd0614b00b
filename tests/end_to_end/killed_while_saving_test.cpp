// SPDX-License-Identifier: GPL-3.0-or-later
// A program that is killed ("kill -9") at any of the writes of a save, a rename, a deletion: no earlier result is lost,
// and the next start clears what was left behind.
#include "end_to_end/WorkbenchFixture.h"
#include "support/simulated.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

namespace {

class KilledWhileSavingTest : public WorkbenchFixture
{
protected:
    void SetUp() override
    {
        WorkbenchFixture::SetUp();
        m_strSequence = copyOf(simulated::sequence({"--size", "64"}), "a mouse");
        for (const char* pName : {"one", "two", "three", "four", "five", "six"}) {
            runSpum({"unmix", m_strSequence, "--quiet", "--ncomponents", "2", "--save", pName, "--force", "--out",
                     m_work.filePath("files")});
        }
        program().setVariable("LD_PRELOAD", ORV_BINARY_DIR "/lib/libfaults.so");
        program().setVariable("FAULTS_BELOW", QDir(m_strSequence).canonicalPath() + "/XML");
        // The sanitizer of a build under one wants to stand first; behind this library it does as well.
        program().setVariable("ASAN_OPTIONS", qEnvironmentVariable("ASAN_OPTIONS") + ":verify_asan_link_order=0");
    }

    // Starts the program until it survives: the first time `work` meets its end at the first call that writes, puts in
    // place or removes, half done, then at the second and so on. `work` gets the names of before. How often it ended.
    int endAtEach(const std::function<void(const QStringList&)>& work)
    {
        for (int n = 1; n < 30; ++n) {
            SCOPED_TRACE(testing::Message() << "ends at call " << n);
            program().setVariable("FAULTS", QString("write,rename,unlink@%1=half").arg(n));
            const QStringList before = start();
            if (HasFatalFailure() || HasFailure()) {
                return 0;
            }
            work(before);
            // A program that has met its end does not answer any more.
            if (program().call({{"do", "quiet"}, {"ms", 200}})["ok"].toBool()) {
                program().call({{"do", "close"}, {"widget", "mainWindow"}});
                EXPECT_TRUE(program().waitUntilEnded([] {}));
                return n - 1;
            }
            EXPECT_TRUE(program().waitUntilEnded([] {}));
            m_bKilled = true;
        }
        ADD_FAILURE() << "it always ends";
        return 0;
    }

    // Opens the sequence, or has it opened again, and shows the saved results, whose names it returns.
    QStringList start()
    {
        outdateLock();
        startProgram(m_bKilled ? QStringList() : QStringList(m_strSequence));
        if (m_bKilled) {
            EXPECT_TRUE(program().waitFor(".QMessageBox"));
            program().click(".QMessageBox/.QPushButton[Yes]");
        }
        m_bKilled = false;
        EXPECT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox"));
        program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Results"}});
        EXPECT_TRUE(program().waitFor("m_pSavedResultsCB"));
        expectNothingLeft();
        return names();
    }

    // The lock of a program that ended while it wrote it tells no owner, and counts for half a minute.
    void outdateLock()
    {
        QFile lock(m_strSequence + "/XML/SPUM.txt.lock");
        if (lock.exists() && lock.open(QIODevice::ReadWrite)) {
            lock.setFileTime(QDateTime::currentDateTime().addSecs(-40), QFileDevice::FileModificationTime);
        }
    }

    void expectNothingLeft()
    {
        for (const char* pFolder : {"/XML", "/XML/SpecUnmix"}) {
            const QStringList hidden = QDir(m_strSequence + pFolder).entryList({".*"}, QDir::Files | QDir::Hidden);
            EXPECT_EQ(hidden.join(' ').toStdString(), "") << pFolder;
        }
    }

    QStringList names()
    {
        QStringList all;
        for (const QJsonValue& entry : program().state("m_pSavedResultsCB")["entries"].toArray()) {
            all.append(entry.toString());
        }
        return all;
    }

    void choose(const QString& strName)
    {
        program().call({{"do", "choose"}, {"widget", "m_pSavedResultsCB"}, {"text", strName}});
        program().call({{"do", "quiet"}, {"ms", 100}});
    }

    void type(const QString& strName)
    {
        program().click("m_pSavedResultsCB");
        program().key("Ctrl+A", "m_pSavedResultsCB");
        program().type(strName, "m_pSavedResultsCB");
    }

    QString m_strSequence;
    bool m_bKilled = false;
};

TEST_F(KilledWhileSavingTest, ASavedResultIsThereOrNotAndNoEarlierOneIsLost)
{
    QStringList expected;
    int nSave = 0;
    const int nEnds = endAtEach([&](const QStringList& before) {
        if (nSave > 0) {
            EXPECT_TRUE(before == expected || before == expected + QStringList(QString("new %1").arg(nSave)))
                << before.join(", ").toStdString();
        }
        expected = before;
        choose("two");
        ASSERT_TRUE(program().waitUntilEnabled("m_pLoadButton"));
        program().click("m_pLoadButton");
        ASSERT_TRUE(program().waitFor("DistributionView"));
        program().call({{"do", "quiet"}, {"ms", 100}});
        type(QString("new %1").arg(++nSave));
        program().click("m_pSaveButton");
    });
    // The lock, the document and the index are written, put in place or removed.
    EXPECT_GE(nEnds, 5);
    EXPECT_TRUE(runSpum({"results", "load", m_strSequence, "one", "--out", m_work.filePath("loaded")}).size() > 0);
    EXPECT_TRUE(runSpum({"results", "list", m_strSequence}).contains("three"));
}

TEST_F(KilledWhileSavingTest, ARenamedResultHasTheOldNameOrTheNew)
{
    QStringList expected;
    QString strNew;
    int nRename = 0;
    const int nEnds = endAtEach([&](const QStringList& before) {
        if (nRename > 0) {
            EXPECT_TRUE(before == expected || before == QStringList({strNew}) + expected.mid(1))
                << before.join(", ").toStdString();
        }
        expected = before;
        strNew = QString("renamed %1").arg(++nRename);
        choose(before.first());
        type(strNew);
        program().key("Return", "m_pSavedResultsCB");
    });
    EXPECT_GE(nEnds, 3);
    EXPECT_TRUE(runSpum({"results", "list", m_strSequence}).contains(strNew.toUtf8()));
}

TEST_F(KilledWhileSavingTest, ADeletionHarmsNoOtherResult)
{
    QStringList expected;
    bool bFirst = true;
    const int nEnds = endAtEach([&](const QStringList& before) {
        if (!bFirst) {
            EXPECT_TRUE(before == expected || before == expected.mid(1)) << before.join(", ").toStdString();
        }
        bFirst = false;
        ASSERT_GE(before.size(), 2) << "deletions that came to their end have used them up";
        expected = before;
        choose(before.first());
        ASSERT_TRUE(program().waitUntilEnabled("m_pDeleteButton"));
        program().click("m_pDeleteButton");
        ASSERT_TRUE(program().waitFor(".QMessageBox"));
        program().click(".QMessageBox/.QPushButton[Yes]");
    });
    EXPECT_GE(nEnds, 3);
}

} // namespace
