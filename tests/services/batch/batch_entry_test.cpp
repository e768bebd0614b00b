// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchFolder.h"

#include <QDir>

#include <cmath>

using BatchEntryTest = BatchFolder;

TEST_F(BatchEntryTest, TellsHowASequenceEnded)
{
    addDone("well", 0.01, {"odd"});
    addFailed("broken", "no image");
    addJob("new");
    const QList<BatchEntry> found = entries();
    ASSERT_EQ(found.size(), 3);
    EXPECT_EQ(found[0].stateName(), "done");
    EXPECT_EQ(found[0].residual(), 0.01);
    EXPECT_EQ(found[0].warnings, QStringList{"odd"});
    EXPECT_EQ(found[0].message, QString());
    EXPECT_EQ(found[1].stateName(), "failed");
    EXPECT_EQ(found[1].message, "no image");
    EXPECT_TRUE(std::isnan(found[1].residual()));
    EXPECT_EQ(found[2].stateName(), "missing");
    EXPECT_EQ(found[2].message, "there is no result yet");
}

TEST_F(BatchEntryTest, AResultThatIsGoneIsMissing)
{
    addDone("gone", 0.01);
    ASSERT_TRUE(QDir(path("out/gone")).removeRecursively());
    EXPECT_EQ(entries()[0].stateName(), "missing");
    EXPECT_EQ(entries()[0].message, "its result has gone");
}

TEST_F(BatchEntryTest, WhatASchedulerSaysCountsWhereThereIsNoRecord)
{
    addJob("large");
    addDone("well", 0.01);
    write("out/.batch/large.ended", "the job ran\nout of memory (OUT_OF_MEMORY)\n");
    write("out/.batch/well.ended", "the job ran out of time\n");
    EXPECT_EQ(entries()[0].message, "the job ran out of memory (OUT_OF_MEMORY)");
    EXPECT_EQ(entries()[1].stateName(), "done");
}

TEST_F(BatchEntryTest, WhatNeedsALookComesFirst)
{
    addDone("good", 0.01);
    addDone("poor", 0.2);
    addDone("warned", 0.001, {"a"});
    addFailed("broken", "b");
    addDone("warned twice", 0.0001, {"a", "b"});
    addJob("new");
    addDone("also good", 0.01);
    QStringList names;
    const QList<BatchEntry> found = entries();
    for (const int i : orderOfNeed(found)) {
        names.append(found[i].job.name);
    }
    EXPECT_EQ(names, (QStringList{"broken", "new", "warned twice", "warned", "poor", "good", "also good"}));
}
