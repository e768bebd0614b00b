// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/batchNames.h"

#include "services/support/CliFixture.h"

#include <algorithm>

namespace {

BatchJob job(const QString& strSequence, const QString& strName = {}, const QString& strPlace = {})
{
    BatchJob made;
    made.sequence = strSequence;
    made.name = strName;
    made.place = strPlace;
    return made;
}

QStringList named(QList<BatchJob> jobs)
{
    nameJobs(jobs);
    QStringList names;
    for (const BatchJob& made : jobs) {
        names.append(made.name);
    }
    return names;
}

QString refused(const QList<BatchJob>& jobs)
{
    return failureOf([&] { named(jobs); });
}

} // namespace

TEST(BatchNamesTest, ASequenceHasTheNameOfItsFolder)
{
    EXPECT_EQ(named({job("/data/mouse 1"), job("/data/mouse 2"), job("/data/x", "given")}),
              (QStringList{"mouse 1", "mouse 2", "given"}));
}

TEST(BatchNamesTest, FoldersAboveTellNamesakesApart)
{
    EXPECT_EQ(named({job("/d/mon/m"), job("/d/tue/m"), job("/d/n")}), (QStringList{"mon_m", "tue_m", "n"}));
    EXPECT_EQ(named({job("/a/x/m"), job("/b/x/m")}), (QStringList{"a_x_m", "b_x_m"}));
    EXPECT_EQ(named({job("/m"), job("/a/m")}), (QStringList{"m", "a_m"}));
    EXPECT_EQ(named({job("/d/m", "n"), job("/d/n")}), (QStringList{"n", "d_n"}));
}

// Or a batch would do again what it has done under other names.
TEST(BatchNamesTest, TheOrderOfTheSequencesDoesNotMatter)
{
    const QList<BatchJob> jobs = {job("/d/mon/m"), job("/e/tue/m"), job("/d/n"), job("/q/n/m")};
    QList<BatchJob> turned = jobs;
    std::reverse(turned.begin(), turned.end());
    QStringList names = named(turned);
    std::reverse(names.begin(), names.end());
    EXPECT_EQ(names, named(jobs));
}

TEST(BatchNamesTest, NoNameHidesOrStandsForAnOverallFile)
{
    EXPECT_EQ(named({job("/d/.m"), job("/d/batch.csv"), job("/")}), (QStringList{"_.m", "_batch.csv", "_"}));
    const QString rule = ": \"%1\" cannot be the name of a folder of results (no slash in it, no point and no "
                         "\"batch.\" at its begin)";
    EXPECT_EQ(refused({job("/a", "../x", "t.csv:2")}), "[2] t.csv:2" + rule.arg("../x"));
    EXPECT_EQ(refused({job("/a", ".batch", "t.csv:2")}), "[2] t.csv:2" + rule.arg(".batch"));
    EXPECT_EQ(refused({job("/a", "batch.html", "t.csv:2")}), "[2] t.csv:2" + rule.arg("batch.html"));
}

TEST(BatchNamesTest, WhatIsNamedTwiceIsRefused)
{
    EXPECT_EQ(refused({job("/a", "n", "t.csv:2"), job("/b", "n", "t.csv:3")}),
              "[2] t.csv:3: the name \"n\" is that of t.csv:2 already");
    EXPECT_EQ(refused({job("/a"), job("/a")}), "[2] /a: /a was named already (/a); a table may give each its own "
                                               "name, in a column \"name\"");
    EXPECT_EQ(named({job("/a"), job("/a", "again")}), (QStringList{"a", "again"}));
    EXPECT_EQ(refused({job("/a_b/c"), job("/a/b_c"), job("/c"), job("/b_c")}),
              "[2] /a/b_c: its results would lie in \"a_b_c\" like those of another sequence; a table may give each "
              "its own name, in a column \"name\"");
}
