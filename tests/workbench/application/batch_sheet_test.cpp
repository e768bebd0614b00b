// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of the sequences of a batch, and what is told of it.
#include "support/simulated.h"

#include "host/CORVDataset.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "services/importer/CsvLine.h"
#include "workbench/application/BatchSheet.h"
#include "workbench/application/batchCandidate.h"

#include <QDir>
#include <QFile>

#include <functional>

namespace {

using State = BatchSheet::State;
using End = BatchSheet::End;

End done(double dResidual = 0.0123)
{
    End end;
    end.takenUp = end.saved = true;
    end.residual = dResidual;
    end.milliseconds = 2500;
    return end;
}

struct EndCase
{
    const char* name;
    std::function<void(End&)> change;
    QString lastError;
    State state;
    QString outcome;
};

class BatchEndTest : public ::testing::TestWithParam<EndCase>
{
};

TEST_P(BatchEndTest, TheFactsDecide)
{
    const EndCase& test = GetParam();
    BatchSheet sheet({"/data/one"});
    sheet.begin(0);
    if (!test.lastError.isEmpty()) {
        sheet.note(CORVLOG_ERROR, test.lastError);
    }
    End end = done();
    test.change(end);
    sheet.end(end);
    const BatchSheet::Row& row = sheet.rows().first();
    EXPECT_EQ(row.state, test.state);
    EXPECT_EQ(BatchSheet::outcomeText(row), test.outcome);
    EXPECT_EQ(row.residual.has_value(), test.state == State::Done);
    EXPECT_EQ(row.milliseconds, 2500);
    EXPECT_TRUE(sheet.isOver());
}

INSTANTIATE_TEST_SUITE_P(
    Ends, BatchEndTest,
    ::testing::Values(
        EndCase{"done", [](End&) {}, "", State::Done, "Unmixed"},
        EndCase{"done_with_an_error", [](End&) {}, "odd", State::Done, "Unmixed"},
        EndCase{"not_opened", [](End& end) { end.takenUp = false, end.openingError = "x: broken"; }, "", State::Failed,
                "Failed: x: broken"},
        EndCase{"not_taken_up", [](End& end) { end.takenUp = end.saved = false, end.whyNotTakenUp = "one image"; }, "",
                State::PassedOver, "Passed over: one image"},
        EndCase{"not_taken_up_by_the_log", [](End& end) { end.takenUp = end.saved = false; }, "odd", State::PassedOver,
                "Passed over: odd"},
        EndCase{"aborted", [](End& end) { end.aborted = true, end.saved = false; }, "", State::Aborted, "Aborted"},
        EndCase{"no_result", [](End& end) { end.saved = false; }, "no room", State::Failed, "Failed: no room"},
        EndCase{"no_result_and_no_word", [](End& end) { end.saved = false; }, "", State::Failed,
                "Failed: There is no result, and the log does not tell why."},
        EndCase{"without_maps", [](End& end) { end.stillOpen = true; }, "Failed to create x folder.", State::Failed,
                "Failed: Failed to create x folder."}),
    [](const auto& test) { return test.param.name; });

TEST(BatchSheetTest, OneAfterTheOther)
{
    BatchSheet sheet({"/data/one", "/data/two", "/data/one/"});
    ASSERT_EQ(sheet.rows().size(), 2);
    EXPECT_EQ(sheet.next(), 0);
    sheet.begin(0);
    EXPECT_EQ(sheet.next(), -1);
    EXPECT_FALSE(sheet.isOver());
    EXPECT_EQ(sheet.running(), 0);
    sheet.end(done());
    EXPECT_EQ(sheet.next(), 1);
    EXPECT_FALSE(sheet.isOver());
    sheet.begin(1);
    sheet.end(done());
    EXPECT_EQ(sheet.next(), -1);
    EXPECT_TRUE(sheet.isOver());
    EXPECT_TRUE(BatchSheet().isOver());
}

TEST(BatchSheetTest, WarningsBelongToWhatRuns)
{
    BatchSheet sheet({"/data/one", "/data/two"});
    sheet.note(CORVLOG_ERROR, "before");
    sheet.begin(0);
    sheet.note(CORVLOG_NOTE, "a note");
    sheet.note(CORVLOG_WARNING, "a warning");
    sheet.note(CORVLOG_PROGRESS, "progress");
    sheet.note(CORVLOG_ERROR, "an error");
    sheet.end(done());
    sheet.note(CORVLOG_ERROR, "between");
    sheet.begin(1);
    End without = done();
    without.saved = false;
    sheet.end(without);
    EXPECT_EQ(sheet.rows().at(0).warnings, (QStringList{"a warning", "an error"}));
    EXPECT_TRUE(sheet.rows().at(1).warnings.isEmpty());
    EXPECT_FALSE(sheet.rows().at(1).reason.contains("error")); // of the one before
}

TEST(BatchSheetTest, AnAbortBetweenLeavesTheRest)
{
    BatchSheet sheet({"/data/one", "/data/two", "/data/three"});
    sheet.begin(0);
    sheet.end(done());
    sheet.abort();
    EXPECT_TRUE(sheet.isAborted());
    EXPECT_TRUE(sheet.isOver());
    EXPECT_EQ(sheet.count(State::Left), 2);
    EXPECT_EQ(sheet.rows().at(0).state, State::Done);
}

TEST(BatchSheetTest, AnAbortInsideWaitsForTheEndOfTheRun)
{
    BatchSheet sheet({"/data/one", "/data/two"});
    sheet.begin(0);
    sheet.abort();
    EXPECT_FALSE(sheet.isOver());
    EXPECT_EQ(sheet.rows().at(0).state, State::Running);
    End aborted;
    aborted.takenUp = aborted.aborted = true;
    sheet.end(aborted);
    EXPECT_TRUE(sheet.isOver());
    EXPECT_EQ(sheet.totals(), "0 of 2 unmixed, 1 aborted, 1 not begun; 0 warnings; 0:00");
}

TEST(BatchSheetTest, TheTotalsNameWhatThereIs)
{
    BatchSheet sheet({"/data/one", "/data/two", "/data/three", "/data/four"});
    EXPECT_EQ(sheet.totals(), "0 of 4 unmixed, 4 to go; 0 warnings; 0:00");
    sheet.begin(0);
    sheet.note(CORVLOG_WARNING, "a warning");
    EXPECT_EQ(sheet.totals(), "0 of 4 unmixed, 4 to go; 1 warning; 0:00");
    sheet.end(done());
    sheet.begin(1);
    sheet.end(End());
    sheet.begin(2);
    sheet.note(CORVLOG_WARNING, "another");
    End broken;
    broken.openingError = "broken";
    broken.milliseconds = 60500;
    sheet.end(broken);
    EXPECT_EQ(sheet.totals(), "1 of 4 unmixed, 1 passed over, 1 failed, 1 to go; 2 warnings; 1:03");
}

TEST(BatchSheetTest, TheResidualIsAPercentage)
{
    BatchSheet::Row row;
    EXPECT_EQ(BatchSheet::residualText(row), "");
    row.residual = 0.012345;
    EXPECT_EQ(BatchSheet::residualText(row), "1.23 %");
}

TEST(BatchSheetTest, TheCsvHasARowASequenceAndTheTotals)
{
    BatchSheet sheet({"/data/one, \"odd\"", "/data/two", "/data/three"});
    sheet.begin(0);
    sheet.note(CORVLOG_WARNING, "a\nwarning");
    sheet.end(done());
    sheet.begin(1);
    End broken;
    broken.openingError = "cannot be read";
    sheet.end(broken);
    sheet.abort();
    const QStringList lines = QString::fromUtf8(sheet.csv()).split('\n');
    ASSERT_EQ(lines.size(), 6);
    EXPECT_EQ(lines.at(0), "sequence,folder,state,residual,warnings,seconds,message");
    QStringList fields;
    QString error;
    ASSERT_TRUE(splitCsvLine(lines.at(1), ',', &fields, &error)) << qPrintable(error);
    EXPECT_EQ(fields,
              (QStringList{"one, \"odd\"", "/data/one, \"odd\"", "Unmixed", "0.0123", "1", "2.5", "a warning"}));
    ASSERT_TRUE(splitCsvLine(lines.at(2), ',', &fields, &error));
    EXPECT_EQ(fields, (QStringList{"two", "/data/two", "Failed", "", "0", "0.0", "cannot be read"}));
    ASSERT_TRUE(splitCsvLine(lines.at(3), ',', &fields, &error));
    EXPECT_EQ(fields.at(2), "Not begun");
    ASSERT_TRUE(splitCsvLine(lines.at(4), ',', &fields, &error));
    EXPECT_EQ(fields, (QStringList{"total", "", "1 of 3 unmixed", "", "1", "2.5", sheet.totals()}));
    EXPECT_EQ(lines.at(5), "");
}

TEST(BatchCandidateTest, ASequenceOfSeveralBandsIsUsable)
{
    const BatchCandidate candidate = batchCandidate(simulated::sequence("candidate", {"--size", "32", "--bands", "4"}));
    EXPECT_TRUE(candidate.isUsable()) << qPrintable(candidate.reason);
    EXPECT_EQ(candidate.name, "candidate");
    EXPECT_EQ(candidate.images, 4);
    EXPECT_TRUE(CORVSequenceDataset::openSequences().isEmpty());
}

TEST(BatchCandidateTest, WhatCannotBeAnalysedIsToldWithTheReason)
{
    QTemporaryDir work;
    EXPECT_EQ(batchCandidate(work.filePath("nothing")).reason, "There is no such folder.");
    QDir(work.path()).mkdir("empty");
    EXPECT_TRUE(batchCandidate(work.filePath("empty")).reason.startsWith("It is no sequence."));
    QDir(work.path()).mkpath("broken/one");
    QFile info(work.filePath("broken/one/ClickInfo.txt"));
    ASSERT_TRUE(info.open(QIODevice::WriteOnly));
    info.close();
    EXPECT_FALSE(batchCandidate(work.filePath("broken")).isUsable());
    // One image is not enough.
    const QString two = simulated::sequence("pair", {"--size", "32", "--bands", "4"});
    QDir(work.path()).mkdir("single");
    const QString first = QDir(two).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name).value(0);
    QDir(work.path()).mkdir("single/" + first);
    const QDir from(two + "/" + first);
    for (const QString& file : from.entryList(QDir::Files)) {
        ASSERT_TRUE(QFile::copy(from.filePath(file), work.filePath("single/" + first + "/" + file)));
    }
    EXPECT_TRUE(batchCandidate(work.filePath("single")).reason.contains("has a single image"))
        << qPrintable(batchCandidate(work.filePath("single")).reason);
}

TEST(BatchCandidateTest, BandsThatTheSpectraLackAreNamed)
{
    const QString folder = simulated::sequence("candidate", {"--size", "32", "--bands", "4"});
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(folder), ESTATUS_SUCCESS);
    BatchBands bands;
    for (const CORVDataset* pDataset : sequence.getDatasets()) {
        // Images tell "640nm" where libraries have "640".
        bands.excitation << pDataset->getExcitationFilter().remove("nm");
        bands.emission << pDataset->getEmissionFilter().remove("nm");
    }
    EXPECT_TRUE(batchCandidate(folder, bands).isUsable());
    bands.excitation << "500nm";
    bands.emission << "520nm";
    EXPECT_TRUE(batchCandidate(folder, bands).isUsable()) << "more than needed";
    const QString gone = bands.excitation.takeFirst() + " / " + bands.emission.takeFirst();
    EXPECT_EQ(batchCandidate(folder, bands).reason, "The spectra have no value for its band " + gone + ".");
    const QString others = batchCandidate(folder, {{"500nm"}, {"520nm"}}).reason;
    EXPECT_TRUE(others.startsWith("The spectra have no values for 4 of its bands: " + gone + ", "))
        << qPrintable(others);
    // A light path without a filter has a name in place of a wavelength.
    const QString glowing = simulated::sequence("glowing", {"--kind", "luminescent", "--size", "32"});
    EXPECT_TRUE(batchCandidate(glowing, {{"500nm"}, {"520nm"}}).reason.contains("block / 500"));
    // A temporal sequence has images of one band at many times.
    const QString temporal = simulated::sequence("of times", {"--kind", "temporal", "--size", "32"});
    EXPECT_TRUE(batchCandidate(temporal, {{"500nm"}, {"520nm"}}).isUsable());
}

TEST(BatchCandidateTest, AFolderOfSequencesStandsForAllOfThem)
{
    QTemporaryDir work;
    EXPECT_EQ(sequencesIn(work.path()), QStringList(work.path())) << "itself, where there are none";
    for (const char* name : {"two", "one"}) {
        simulated::into(work.filePath(name), {"--size", "32", "--bands", "4"});
    }
    QDir(work.path()).mkdir("notes");
    EXPECT_EQ(sequencesIn(work.path()), (QStringList{work.filePath("one"), work.filePath("two")}));
    EXPECT_EQ(sequencesIn(work.filePath("two")), QStringList(work.filePath("two")));
}

} // namespace
