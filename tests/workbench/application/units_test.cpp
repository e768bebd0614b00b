// SPDX-License-Identifier: GPL-3.0-or-later
// What the application decides without a window.

#include "support/simulated.h"

#include "host/CORVSequenceDataset.h"
#include "workbench/application/datasetTitle.h"
#include "workbench/application/elapsedText.h"
#include "workbench/application/openable.h"
#include "workbench/application/printing.h"
#include "workbench/application/recentPaths.h"
#include "workbench/application/sequenceOfDatasets.h"
#include "workbench/application/simulateCall.h"
#include "workbench/application/windowPlaces.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(ElapsedTextTest, MinutesAndSecondsAndHoursFromOneOn)
{
    EXPECT_EQ(elapsedText(-5), "0:00");
    EXPECT_EQ(elapsedText(7999), "0:07");
    EXPECT_EQ(elapsedText(725000), "12:05");
    EXPECT_EQ(elapsedText(3599999), "59:59");
    EXPECT_EQ(elapsedText(3729000), "1:02:09");
    EXPECT_EQ(elapsedText(90000000), "25:00:00");
}

TEST(RecentPathsTest, TheNewestComesFirstAndOnce)
{
    const QStringList paths = recentPaths::with({"/a", "/b"}, "/b/");
    EXPECT_EQ(paths, QStringList({"/b", "/a"}));
    EXPECT_EQ(recentPaths::without(paths, "/b"), QStringList("/a"));
    EXPECT_EQ(recentPaths::parentOf("/data/mouse/"), "/data");
}

TEST(RecentPathsTest, OldOnesAreForgotten)
{
    QStringList paths;
    for (int i = 0; i < 15; ++i) {
        paths = recentPaths::with(paths, QString("/%1").arg(i));
    }
    EXPECT_EQ(paths.size(), recentPaths::most);
    EXPECT_EQ(paths.first(), "/14");
}

TEST(RecentPathsTest, AMenuEntryHasItsKeyAndNoOther)
{
    EXPECT_EQ(recentPaths::menuText(0, "/data/R&D/mouse"), "&1  mouse   /data/R&&D");
    EXPECT_TRUE(recentPaths::menuText(9, "/data/mouse").startsWith("10  "));
    EXPECT_LT(recentPaths::menuText(0, "/" + QString(300, 'x') + "/mouse").size(), 90);
}

class OpenableTest : public ::testing::Test
{
protected:
    QString make(const QString& strFile) const
    {
        const QString path = m_folder.filePath(strFile);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return path;
    }
    QTemporaryDir m_folder;
};

TEST_F(OpenableTest, IsToldByNames)
{
    const QString info = make("s/SequenceInfo.txt");
    EXPECT_EQ(openableKind(info), Openable::Sequence);
    EXPECT_EQ(openableKind(m_folder.filePath("s")), Openable::Sequence);
    const QString click = make("t/one/ClickInfo.txt");
    EXPECT_EQ(openableKind(click), Openable::Dataset);
    EXPECT_EQ(openableKind(m_folder.filePath("t/one")), Openable::Dataset);
    EXPECT_EQ(openableKind(m_folder.filePath("t")), Openable::Sequence);
    EXPECT_EQ(openableKind(make("i/ex640_em700.tif")), Openable::Images);
    EXPECT_EQ(openableKind(m_folder.filePath("i")), Openable::Images);
    EXPECT_EQ(openableKind(m_folder.filePath("none")), Openable::Missing);
    EXPECT_EQ(openableKind(QString()), Openable::Missing);
}

struct PlaceCase
{
    const char* name;
    QRect place;
    QList<QRect> screens;
    QRect better;
};

class WindowPlacesTest : public ::testing::TestWithParam<PlaceCase>
{
};

const QRect left(0, 0, 1600, 1200);
const QRect right(1600, 0, 1920, 1080);

TEST_P(WindowPlacesTest, CanBeReached)
{
    EXPECT_EQ(windowPlaces::reachable(GetParam().place, GetParam().screens), GetParam().better);
}

INSTANTIATE_TEST_SUITE_P(
    Screens, WindowPlacesTest,
    ::testing::Values(PlaceCase{"OnAScreen", {100, 100, 800, 600}, {left}, {100, 100, 800, 600}},
                      PlaceCase{"OnTheSecondScreen", {1700, 100, 800, 600}, {left, right}, {1700, 100, 800, 600}},
                      PlaceCase{"OnAScreenThatIsGone", {1700, 100, 800, 600}, {left}, {800, 100, 800, 600}},
                      PlaceCase{"PartlyOutside", {1400, 1000, 800, 600}, {left}, {1400, 1000, 800, 600}},
                      PlaceCase{"TitleBarAboveTheScreen", {100, -300, 800, 600}, {left}, {100, 0, 800, 600}},
                      PlaceCase{"LargerThanTheScreen", {-3000, -2000, 2500, 1900}, {left}, {0, 0, 1600, 1200}},
                      PlaceCase{"NearestScreen", {3490, 100, 800, 600}, {left, right}, {2720, 100, 800, 600}},
                      PlaceCase{"NoScreenAtAll", {9000, 9000, 800, 600}, {}, {9000, 9000, 800, 600}}),
    [](const auto& test) { return test.param.name; });

TEST(PrintingTest, APictureFillsThePageAtTheTop)
{
    EXPECT_EQ(printing::placeOnPage({200, 100}, {0, 0, 1000, 1500}), QRectF(0, 0, 1000, 500));
    EXPECT_EQ(printing::placeOnPage({100, 200}, {0, 0, 1000, 1000}), QRectF(250, 0, 500, 1000));
    EXPECT_TRUE(printing::placeOnPage({0, 100}, {0, 0, 1000, 1000}).isNull());
}

TEST(SimulateCallTest, NamesAFolderThatIsNotThere)
{
    QTemporaryDir folder;
    EXPECT_EQ(simulateCall::freeFolder(folder.path(), "epi"), folder.filePath("mouse"));
    QDir(folder.path()).mkdir("mouse");
    EXPECT_EQ(simulateCall::freeFolder(folder.path(), "epi"), folder.filePath("mouse-2"));
    EXPECT_EQ(simulateCall::freeFolder(folder.path(), "temporal"), folder.filePath("mouse-temporal"));
}

TEST(SimulateCallTest, AFolderThatBeginsWithADashIsNoOption)
{
    EXPECT_EQ(simulateCall::arguments("-x", "epi", 64, false),
              QStringList({"simulate", "--kind", "epi", "--size", "64", "--", "-x"}));
}

TEST(SimulateCallTest, TheProgramKnowsEveryKind)
{
    for (const auto& kind : simulateCall::kinds()) {
        const QString folder = simulated::sequence(kind.word, {"--kind", kind.word, "--size", "16"});
        EXPECT_EQ(openableKind(folder), Openable::Sequence) << qPrintable(kind.word);
    }
}

TEST(SimulateCallTest, TheComplaintComesWithoutTheProgramsName)
{
    EXPECT_EQ(simulateCall::complaint("spum: no room\nspum: at all\n"), "no room\nat all");
}

// A dataset whose click info has these entries beside a click number.
void open(CORVDataset& dataset, const QByteArray& entries)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("ClickInfo.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[ClickNumber]\nClickNumber: C7\n\n[luminescent image]\n" + entries);
    file.close();
    CPLClickInfo info;
    ASSERT_EQ(info.loadClickInfo(file.fileName()), 0);
    dataset.clickInfo = info;
}

TEST(DatasetTitleTest, AMapIsCalledAfterItsComponent)
{
    CORVDataset map;
    open(map, "Unmixed Concentration: SIMBA16AF0UMX2\n");
    EXPECT_EQ(datasetTitle(map), "Map of component 2");
    open(map, "Unmixed Concentration: SIMBA16AF0UMX2\nUnmixed Component: Cy7 [*]\n");
    EXPECT_EQ(datasetTitle(map), "Map of Cy7 [*][*]");
    open(map, "Binning Factor: 4\n");
    EXPECT_FALSE(datasetTitle(map).startsWith("Map of")) << qPrintable(datasetTitle(map));
}

TEST(SequenceOfDatasetsTest, WritesASequenceThatOpens)
{
    CORVSequenceDataset source;
    ASSERT_EQ(source.open(simulated::sequence("mouse", {"--size", "32", "--bands", "6"})), ESTATUS_SUCCESS);
    QStringList clickInfos;
    for (const CORVDataset* pDataset : source.getDatasets().mid(0, 3)) {
        clickInfos << pDataset->folderPath() + "ClickInfo.txt";
    }
    QTemporaryDir folder;
    QString error;
    ASSERT_TRUE(writeSequenceOfDatasets(folder.filePath("maps"), clickInfos, &error)) << qPrintable(error);
    CORVSequenceDataset written;
    ASSERT_EQ(written.open(folder.filePath("maps"), &error), ESTATUS_SUCCESS) << qPrintable(error);
    EXPECT_EQ(written.getSequenceName(), "maps");
    ASSERT_EQ(written.getDatasets().size(), 3);
    EXPECT_EQ(written.getDatasets()[1]->getEmissionFilter(), source.getDatasets()[1]->getEmissionFilter());
    EXPECT_NE(written.getDatasets()[1]->getClickNumber(), source.getDatasets()[1]->getClickNumber());
    EXPECT_FALSE(writeSequenceOfDatasets(folder.filePath("maps"), clickInfos, &error));
    EXPECT_TRUE(error.contains("maps"));
    EXPECT_FALSE(writeSequenceOfDatasets(folder.filePath("none"), {}, &error));
    EXPECT_FALSE(QFile::exists(folder.filePath("none")));
}

TEST(SequenceOfDatasetsTest, TheProposedPlaceIsFree)
{
    QTemporaryDir folder;
    EXPECT_EQ(proposedPlace({}, folder.path()), folder.filePath("unmixed"));
    QDir(folder.path()).mkdir("unmixed");
    EXPECT_EQ(proposedPlace({}, folder.path()), folder.filePath("unmixed-2"));
}

} // namespace
