// SPDX-License-Identifier: GPL-3.0-or-later
// Many sequences with one library, in the window.
#include "end_to_end/Screen.h"
#include "end_to_end/WorkbenchFixture.h"
#include "support/filesWithBytes.h"
#include "support/simulated.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

class ManySequencesTest : public WorkbenchFixture
{
protected:
    // A sequence of the size, known by its name.
    QString mouse(const QString& strName, const QString& strSize, const QString& strBands = "6")
    {
        return copyOf(simulated::sequence({"--size", strSize, "--bands", strBands}), strName);
    }
    // The true spectra of a simulated mouse as a library of the program's user.
    void makeLibrary(const QString& strMouse, const QString& strUnit = "radiant-efficiency")
    {
        const QString strLibrary = program().homePath("data/orvia/data/Spum/batch.csv");
        QDir().mkpath(QFileInfo(strLibrary).path());
        ASSERT_TRUE(QFile::copy(strMouse + "/truth/" + strUnit + "/spectra.csv", strLibrary));
    }
    // From the menu to the dialog of sequences, with the first library taken.
    [[nodiscard]] bool openChooser()
    {
        program().call({{"do", "menu"}, {"text", "File"}});
        program().call({{"do", "menu"}, {"text", "Unmix many sequences ..."}});
        if (!program().waitFor("SpUnmixSpectrumLibraryWnd")) {
            return false;
        }
        for (int nRow = 0; nRow < 20 && !isEnabled("m_pNextBtn"); ++nRow) {
            program().call({{"do", "item"}, {"widget", "m_pSpumLibraryList"}, {"text", "batch"}});
        }
        return program().waitUntilEnabled("m_pNextBtn") && program().click("m_pNextBtn") &&
               program().waitFor("batchChooser");
    }
    [[nodiscard]] bool start(const QStringList& folders)
    {
        program().call({{"do", "drop"}, {"widget", "batchChooser"}, {"files", QJsonArray::fromStringList(folders)}});
        return program().waitUntilEnabled("batchStart") && program().picture("end_to_end/batch_chooser.png") &&
               program().click("batchStart") && program().waitFor("batchWindow");
    }
    [[nodiscard]] bool waitForEnd()
    {
        return program().waitUntil(
            [&] {
                m_bAsked = m_bAsked || program().isVisible(".QMessageBox");
                return isEnabled("batchClose");
            },
            120000);
    }
    QString totals() { return text("batchTotals"); }
    static QStringList batches(const QString& strMouse)
    {
        return QDir(strMouse).entryList({"SPUM*"}, QDir::Dirs, QDir::Name);
    }
    static int mapsOf(const QString& strMouse)
    {
        const QDir maps(strMouse + "/" + batches(strMouse).value(0) + "/UnmixedImages");
        return maps.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    }

    bool m_bAsked = false;
};

TEST_F(ManySequencesTest, ABrokenOneInTheMiddleIsToldAndPassedOver)
{
    const QString strOne = mouse("one", "64");
    const QString strBroken = mouse("two", "64", "9"); // the library knows nothing of its bands
    const QString strThree = mouse("three", "64");
    makeLibrary(strOne);
    startProgram({});
    ASSERT_TRUE(openChooser());
    ASSERT_TRUE(start({strOne, strBroken, strThree}));
    ASSERT_TRUE(waitForEnd());
    program().picture("end_to_end/batch_end.png");
    EXPECT_FALSE(m_bAsked);
    EXPECT_TRUE(totals().startsWith("2 of 3 unmixed, 1 failed; ")) << qPrintable(totals());
    ASSERT_EQ(batches(strOne).size(), 1);
    EXPECT_EQ(batches(strThree), batches(strOne)) << "one stamp for all";
    EXPECT_GE(mapsOf(strOne), 2);
    EXPECT_EQ(mapsOf(strThree), mapsOf(strOne));
    EXPECT_EQ(mapsOf(strBroken), 0);
    const QJsonArray rows = program().state("batchTable")["rows"].toArray();
    ASSERT_EQ(rows.size(), 3);
    const QString strResidual = rows[0].toArray()[2].toString();
    EXPECT_TRUE(strResidual.endsWith(" %")) << qPrintable(strResidual);
    EXPECT_NE(strResidual, "0 %");
    EXPECT_EQ(rows[1].toArray()[1].toString(), "Failed: SpumKyvo: Incorrect initial guess settings!");
    const QJsonObject windows = program().call({{"do", "find"}, {"widget", ".CORVSequenceWindow"}, {"all", true}});
    EXPECT_TRUE(windows["found"].toArray().isEmpty());
    program().click("batchClose");
    EXPECT_TRUE(program().waitUntil([&] { return !program().isVisible("batchWindow"); }));
}

// Whenever the click arrives: what was unmixed has its result, what was aborted or not begun has none.
TEST_F(ManySequencesTest, AnAbortEndsTheRunAndLeavesTheRest)
{
    QStringList folders{mouse("large", "1024", "24")};
    for (int i = 0; i < 24; ++i) {
        folders << mouse(QString("small %1").arg(i), "64", "24");
    }
    makeLibrary(folders.first());
    startProgram({});
    ASSERT_TRUE(openChooser());
    ASSERT_TRUE(start(folders));
    ASSERT_TRUE(program().click("batchAbortAll"));
    ASSERT_TRUE(waitForEnd());
    program().picture("end_to_end/batch_aborted.png");
    EXPECT_FALSE(m_bAsked);
    EXPECT_TRUE(totals().contains(" not begun")) << qPrintable(totals());
    EXPECT_FALSE(totals().contains("failed")) << qPrintable(totals());
    const QJsonArray rows = program().state("batchTable")["rows"].toArray();
    ASSERT_EQ(rows.size(), folders.size());
    for (int i = 0; i < folders.size(); ++i) {
        const QString strState = rows[i].toArray()[1].toString();
        EXPECT_EQ(batches(folders.at(i)).size(), strState == "Unmixed" ? 1 : 0) << i << ' ' << qPrintable(strState);
    }
    EXPECT_EQ(rows.last().toArray()[1].toString(), "Not begun");
}

// The background that adapts is of fluorescent light alone: one that glows by itself is unmixed as without it.
TEST_F(ManySequencesTest, ALuminescentSequenceIsUnmixedWithoutTheAdaptiveBackground)
{
    const QStringList kind{"--kind", "luminescent", "--size", "64"};
    const QString strWith = copyOf(simulated::sequence(kind), "with");
    const QString strWithout = copyOf(simulated::sequence(kind), "without");
    makeLibrary(strWith, "radiance");
    const auto before = filesWithBytes(strWith);
    startProgram({});
    for (const QString& strFolder : {strWithout, strWith}) {
        ASSERT_TRUE(openChooser());
        if (strFolder == strWith) {
            program().click("batchAdaptive", {{"at", QJsonArray{10, 10}}});
            ASSERT_TRUE(program().state("batchAdaptive")["checked"].toBool());
        }
        ASSERT_TRUE(start({strFolder}));
        ASSERT_TRUE(waitForEnd());
        EXPECT_TRUE(totals().startsWith("1 of 1 unmixed; ")) << qPrintable(totals());
        program().click("batchClose");
        ASSERT_TRUE(program().waitUntil([&] { return !program().isVisible("batchWindow"); }));
    }
    EXPECT_FALSE(m_bAsked);
    // What was there is as it was, and the maps are those of the batch without.
    const auto after = filesWithBytes(strWith);
    for (auto it = before.begin(); it != before.end(); ++it) {
        EXPECT_TRUE(after.value(it.key()) == it.value()) << qPrintable(it.key());
    }
    ASSERT_EQ(batches(strWith).size(), 1);
    ASSERT_EQ(batches(strWithout).size(), 1);
    EXPECT_EQ(mapsOf(strWith), 3);
    int nMaps = 0;
    const QString strMaps = strWith + "/" + batches(strWith).first();
    for (auto it = after.begin(); it != after.end(); ++it) {
        if (it.key().startsWith(strMaps) && it.key().endsWith("luminescent.TIF")) {
            QFile other(strWithout + "/" + batches(strWithout).first() + it.key().mid(strMaps.size()));
            ASSERT_TRUE(other.open(QIODevice::ReadOnly)) << qPrintable(other.fileName());
            EXPECT_TRUE(other.readAll() == it.value()) << qPrintable(it.key());
            ++nMaps;
        }
    }
    EXPECT_EQ(nMaps, 3);
}

class LooksOfManySequencesTest : public ManySequencesTest, public ::testing::WithParamInterface<Screen>
{
};

TEST_P(LooksOfManySequencesTest, NothingIsCutAndEverythingHasAName)
{
    const QString strOne = mouse("a mouse with a long name, before the second injection", "64");
    const QStringList folders{strOne, mouse("other bands", "64", "9"), mouse("three", "64")};
    makeLibrary(strOne);
    startOn(GetParam());
    ASSERT_TRUE(openChooser());
    look(program(), GetParam(), "batch_empty", "batchChooser");
    ASSERT_TRUE(start(folders));
    look(program(), GetParam(), "batch_runs", "batchWindow");
    ASSERT_TRUE(waitForEnd());
    look(program(), GetParam(), "batch_window", "batchWindow");
    program().click("batchClose");
    ASSERT_TRUE(program().waitUntil([&] { return !program().isVisible("batchWindow"); }));
    ASSERT_TRUE(openChooser());
    program().call({{"do", "drop"}, {"widget", "batchChooser"}, {"files", QJsonArray::fromStringList(folders)}});
    ASSERT_TRUE(program().waitUntilEnabled("batchStart"));
    EXPECT_EQ(text("batchSummary").toStdString(), "2 of 3 can be analysed; there will be no result of the others.");
    look(program(), GetParam(), "batch_chooser", "batchChooser");
    const QJsonArray place = program().state("batchChooser")["place"].toArray();
    EXPECT_LE(place[2].toInt(), GetParam().width);
    EXPECT_LE(place[3].toInt(), GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(Screens, LooksOfManySequencesTest, screens(), nameOfScreen);

} // namespace
