// SPDX-License-Identifier: GPL-3.0-or-later
// A program that ends at any of its calls that change the disk.
#include "storage/saved_fixture.h"

#include "faults/faults.h"
#include "support/ForkedChild.h"

#include <string>

namespace {

class KilledTest : public SavedFixture
{
protected:
    static constexpr int killed = 201;

    // Ends `work` at each of its calls in turn, whole and half done, each time in the folder that `prepare` makes, and
    // has `check` look at what is left. The number of calls that the work takes.
    int endAtEach(const std::function<void()>& prepare, const std::function<void()>& work,
                  const std::function<void()>& check)
    {
        int nCalls = 0;
        for (const bool bHalf : {false, true}) {
            for (int nCall = 1;; ++nCall) {
                QDir(path("XML")).removeRecursively();
                prepare();
                const int nStatus = inForkedChild([&] {
                    // What a process has handed to the system outlives it: there is no need to wait for the disk.
                    const std::string rules = "change@" + std::to_string(nCall) + (bHalf ? "=half" : "=kill");
                    armFaults((rules + ";sync@1+=skip").c_str(), QFile::encodeName(path("XML")).constData(), nullptr);
                    work();
                    return 0;
                });
                SCOPED_TRACE(testing::Message() << "ended at call " << nCall << (bHalf ? ", half done" : ""));
                check();
                openAgain();
                saveAfterwards();
                if (nStatus == 0) {
                    break;
                }
                EXPECT_EQ(nStatus, killed);
                if (HasFailure() || nCall > 1000) {
                    return 0;
                }
                nCalls = nCall;
            }
        }
        return nCalls;
    }

    // What is half written goes as soon as the next program shows the sequence.
    void openAgain()
    {
        m_results.setEngine(&m_engine);
        for (const char* folder : {"XML", "XML/SpecUnmix"}) {
            const QStringList left = QDir(path(folder)).entryList({".*"}, QDir::Files | QDir::Hidden);
            EXPECT_TRUE(left.isEmpty()) << left.join(' ').toStdString();
        }
    }

    // The next program can save, at the latest when the lock of the dead one is old.
    void saveAfterwards()
    {
        QFile lock(path("XML/SPUM.txt.lock"));
        if (lock.exists() && lock.open(QIODevice::ReadWrite)) {
            lock.setFileTime(QDateTime::currentDateTime().addSecs(-40), QFileDevice::FileModificationTime);
            lock.close();
        }
        const QStringList before = names();
        m_moment = m_moment.addSecs(60);
        EXPECT_EQ(save("afterwards"), SaveOutcome::Saved);
        EXPECT_EQ(names(), before + QStringList("afterwards"));
        EXPECT_EQ(noteOf("afterwards"), QString("note of afterwards"));
    }
};

TEST_F(KilledTest, ASaveIsThereOrNotAndNothingElseChanges)
{
    int nThere = 0;
    const int nCalls = endAtEach(
        [this] {
            ASSERT_TRUE(saveAll({"kidney", "liver"}));
        },
        [this] { save("spleen"); },
        [this, &nThere] {
            const QStringList found = names();
            const bool bThere = found == QStringList({"kidney", "liver", "spleen"});
            EXPECT_TRUE(bThere || found == QStringList({"kidney", "liver"}));
            EXPECT_TRUE(isSound());
            nThere += bThere ? 1 : 0;
        });
    // The document and the index at the least, each opened, written and put in place; and the lock.
    EXPECT_GT(nCalls, 8);
    EXPECT_GT(nThere, 2);
}

TEST_F(KilledTest, TheFirstSaveOfASequenceLeavesAFolderThatTheNextCanUse)
{
    // With no program to have made the index yet, there may be none.
    const int nCalls = endAtEach([] {}, [this] { save("kidney"); },
                                 [this] {
                                     EXPECT_TRUE(QFile::exists(path("XML/SPUM.txt")) ? isSound() : true);
                                     QDir().mkdir(path("XML"));
                                     QFile(path("XML/SPUM.txt")).open(QIODevice::Append);
                                 });
    EXPECT_GT(nCalls, 10);
}

TEST_F(KilledTest, OverwritingPointsAtTheOldDocumentOrTheNew)
{
    m_boxes.answer = CORVMessageBox::YesButton;
    const auto prepare = [this] {
        ASSERT_TRUE(saveAll({"kidney", "liver"}));
        m_engine.resultView().setNote("new");
    };
    const auto work = [this] {
        m_list.setCurrentText("kidney");
        m_results.onClickSaveResults();
    };
    endAtEach(prepare, work, [this] {
        EXPECT_EQ(names(), QStringList({"kidney", "liver"}));
        EXPECT_TRUE(noteOf("kidney") == "new" || noteOf("kidney") == "note of kidney");
        EXPECT_EQ(noteOf("liver"), QString("note of liver"));
    });
}

TEST_F(KilledTest, RenamingGivesTheOldNameOrTheNew)
{
    const auto work = [this] {
        m_list.updateSavedResultsForSelSeqId("seq-7");
        m_results.m_nEditedIndex = 0;
        m_list.setCurrentText("spleen");
        m_results.renameResult();
    };
    endAtEach(
        [this] {
            ASSERT_TRUE(saveAll({"kidney", "liver"}));
        },
        work,
        [this] {
            EXPECT_TRUE(names() == QStringList({"kidney", "liver"}) || names() == QStringList({"spleen", "liver"}));
            EXPECT_EQ(noteOf(names().first()), QString("note of kidney"));
            EXPECT_EQ(noteOf("liver"), QString("note of liver"));
        });
}

TEST_F(KilledTest, DeletingHarmsNoOtherResult)
{
    m_boxes.answer = CORVMessageBox::YesButton;
    const auto work = [this] {
        m_list.updateSavedResultsForSelSeqId("seq-7");
        m_list.setCurrentText("kidney");
        m_results.onClickDeleteResults();
    };
    endAtEach(
        [this] {
            ASSERT_TRUE(saveAll({"kidney", "liver"}));
        },
        work,
        [this] {
            EXPECT_TRUE(names() == QStringList({"kidney", "liver"}) || names() == QStringList("liver"));
            EXPECT_EQ(noteOf("liver"), QString("note of liver"));
        });
}

} // namespace
