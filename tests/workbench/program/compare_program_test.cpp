// SPDX-License-Identifier: GPL-3.0-or-later
// `spum compare` from end to end, and what it is made of.
#include "engine/EngineEnums.h"
#include "services/results/ComparedResult.h"
#include "services/results/ComparisonPicture.h"
#include "services/results/ResultComparison.h"
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QImage>
#include <QJsonDocument>

#include <cmath>

namespace {

constexpr int side = 4;

class CompareProgramTest : public ProgramFixture
{
protected:
    // A result as unmix leaves it: components with a map each, and spectra over 700 and 720 nm.
    struct Component
    {
        QString name;
        std::function<float(int)> map;
        double first;
        double second;
    };
    QString writeResult(const QString& strFolder, const QList<Component>& components,
                        const QByteArray& keys = "640,7") const
    {
        QJsonArray list;
        QStringList names;
        QByteArray rows[2];
        for (const auto& component : components) {
            const QString map = QStringLiteral("0%1.tif").arg(list.size() + 1);
            writeTiffFile(strFolder + '/' + map, imageOf(side, side, component.map));
            list.append(QJsonObject{{"name", component.name}, {"map", map}});
            names.append(component.name);
            rows[0] += ',' + QByteArray::number(component.first);
            rows[1] += ',' + QByteArray::number(component.second);
        }
        const QByteArray commas(names.size() - 1, ',');
        write(strFolder + "/spectra.csv", "$,NumSpec," + QByteArray::number(names.size()) + "\n$,Color," + commas +
                                              "\n$,Select," + commas + "\nExcitation,Emission," +
                                              names.join(',').toUtf8() + '\n' + keys + "00" + rows[0] + '\n' + keys +
                                              "20" + rows[1] + '\n');
        write(strFolder + "/summary.json",
              QJsonDocument(QJsonObject{{"unit", "Counts"}, {"components", list}}).toJson());
        return path(strFolder);
    }
    ResultComparison compare(const QStringList& folders) const
    {
        std::vector<std::unique_ptr<ComparedResult>> results;
        for (const auto& folder : folders) {
            results.push_back(std::make_unique<ComparedResult>());
            results.back()->readResult(folder);
        }
        return ResultComparison(results);
    }
    static float mapA(int i) { return static_cast<float>(i); }
    static float mapB(int i) { return static_cast<float>((i * 5) % 7); }
};

} // namespace

TEST_F(CompareProgramTest, ComponentsStandInTheColumnOfTheirName)
{
    writeResult("one", {{"A", mapA, 1, 0.5}, {"B", mapB, 0, 1}});
    writeResult("two", {{"B", mapB, 0, 1}, {"A", mapA, 1, 0.5}, {"C", mapA, 1, 1}});
    const ResultComparison comparison = compare({path("one"), path("two")});
    EXPECT_EQ(comparison.rowNames(), (QStringList{"one", "two"}));
    EXPECT_EQ(comparison.columnNames(), (QStringList{"A", "B", "C"}));
    EXPECT_EQ(comparison.at(1, 0).name, "A");
    EXPECT_NEAR(comparison.at(1, 0).cosine, 1.0, 1e-12);
    EXPECT_NEAR(comparison.at(1, 1).correlation, 1.0, 1e-12);
    EXPECT_NEAR(comparison.at(1, 1).relativeError, 0.0, 1e-12);
    EXPECT_FALSE(comparison.at(0, 2).present);
    EXPECT_TRUE(comparison.at(1, 2).present);
    EXPECT_TRUE(std::isnan(comparison.at(1, 2).correlation));
    EXPECT_EQ(comparison.imageCount(), 2);
    EXPECT_EQ(comparison.pixelCount(), side * side);
}

TEST_F(CompareProgramTest, WithoutACommonNameTheyStandWhereTheyLookLike)
{
    writeResult("one", {{"A", mapA, 1, 0.5}, {"B", mapB, 0, 1}});
    writeResult("two", {{"UMX1", mapB, 0.1, 1}, {"UMX2", mapA, 1, 0.6}});
    const ResultComparison comparison = compare({path("one"), path("two")});
    EXPECT_EQ(comparison.at(1, 0).name, "UMX2");
    EXPECT_EQ(comparison.at(1, 1).name, "UMX1");
    EXPECT_EQ(comparison.columnCount(), 2);
}

// One source, told with its spectrum's maximum at 1 and at 4.
TEST_F(CompareProgramTest, ScalesOfSpectraAndMapsAreBroughtTogether)
{
    writeResult("one", {{"A", mapA, 1, 0.5}});
    writeResult("two", {{"A", [](int i) { return 0.25F * mapA(i); }, 4, 2}});
    EXPECT_NEAR(compare({path("one"), path("two")}).at(1, 0).relativeError, 0.0, 1e-6);
}

TEST_F(CompareProgramTest, OnlyPixelsThatAllAnalysedCount)
{
    writeResult("one", {{"A", mapA, 1, 0.5}});
    writeResult("two", {{"A", [](int i) { return i < 8 ? mapA(i) : 0.0F; }, 1, 0.5}});
    QImage mask(side, side, QImage::Format_Grayscale8);
    mask.fill(0);
    for (int i = 0; i < 8; ++i) {
        mask.scanLine(i / side)[i % side] = 255;
    }
    ASSERT_TRUE(mask.save(path("two/mask.png")));
    const ResultComparison comparison = compare({path("one"), path("two")});
    EXPECT_EQ(comparison.pixelCount(), 8);
    EXPECT_NEAR(comparison.at(1, 0).correlation, 1.0, 1e-12);
}

// Two images that have an excitation each, and a third of the second.
TEST_F(CompareProgramTest, SpectraStandOverWavelengthBrokenBetweenExcitations)
{
    writeResult("one", {{"A", mapA, 1, 0.5}});
    writeResult("two", {{"A", mapA, 0.5, 1}, {"B", mapB, 0, 1}});
    const ResultComparison comparison = compare({path("one"), path("two")});
    PlottedImages images;
    images.axis = SPECTRUMAXIS_EMISSION;
    images.pairs = {{"605nm", "760nm"}, {"675nm", "720nm"}};
    const SpectrumPlot plot = comparisonPlot(comparison, 0, images);
    EXPECT_EQ(plot.xLabel(), "Emission Wavelength [nm]");
    ASSERT_EQ(plot.curves().size(), 6); // of each result two, and the excitations of the legend
    EXPECT_EQ(plot.curves()[0].x, QVector<double>{760.0});
    EXPECT_EQ(plot.curves()[1].x, QVector<double>{720.0});
    EXPECT_EQ(plot.curves()[2].y, QVector<double>{0.5});
    EXPECT_NE(plot.curves()[2].style, plot.curves()[3].style);
    EXPECT_GT(plot.curves()[0].width, plot.curves()[2].width);
    EXPECT_EQ(plot.curves()[0].marker, PlotMarker::None);
    EXPECT_EQ(plot.curves()[4].label, "ex 605 nm");
    // What the first has no part in has the second's look still.
    const SpectrumPlot other = comparisonPlot(comparison, 1, images);
    ASSERT_EQ(other.curves().size(), 4);
    EXPECT_EQ(other.curves()[0].color, plot.curves()[2].color);
    EXPECT_EQ(other.curves()[0].marker, plot.curves()[2].marker);
}

TEST_F(CompareProgramTest, TimeCoursesStandOverTheirTrueTimes)
{
    writeResult("one", {{"A", mapA, 1, 0.5}});
    writeResult("two", {{"A", mapA, 0.5, 1}});
    PlottedImages images;
    images.axis = SPECTRUMAXIS_TIME;
    images.pairs = {{"Int1", "20"}, {"Int2", "1200"}};
    const SpectrumPlot plot = comparisonPlot(compare({path("one"), path("two")}), 0, images);
    ASSERT_EQ(plot.curves().size(), 2);
    EXPECT_EQ(plot.curves()[0].x, (QVector<double>{20.0 / 60.0, 20.0}));
    EXPECT_EQ(plot.xLabel(), "Time Point [min]");
    EXPECT_TRUE(linesInLegend(images).isEmpty());
}

TEST_F(CompareProgramTest, WhatCannotBeComparedIsRefused)
{
    writeResult("one", {{"A", mapA, 1, 0.5}});
    writeResult("other", {{"A", mapA, 1, 0.5}}, "605,6");
    EXPECT_EQ(failureOf([&] {
                  compare({path("one"), path("other")});
              }),
              "the spectra of one and other have no image in common");
    writeResult("large", {{"A", mapA, 1, 0.5}});
    writeTiffFile("large/01.tif", imageOf(8, 8, mapA));
    EXPECT_EQ(failureOf([&] {
                  compare({path("one"), path("large")});
              }),
              "the maps of large have 8 x 8 pixels, those of one 4 x 4");
}

TEST_F(CompareProgramTest, AFolderThatIsNoResultIsToldByName)
{
    const auto refusalOf = [&](const QString& strFolder) {
        return failureOf([&] { ComparedResult().readResult(strFolder); });
    };
    EXPECT_EQ(refusalOf(path("absent")), path("absent") + ": this is no folder with results of \"spum unmix\"");
    write("broken/summary.json", "{ \"components\": [");
    EXPECT_EQ(refusalOf(path("broken")), path("broken/summary.json") + ":1: this is no JSON: unterminated array");
    write("empty/summary.json", "{ \"components\": [] }");
    EXPECT_EQ(refusalOf(path("empty")), path("empty/summary.json") + " names no components");
    writeResult("mapless", {{"A", mapA, 1, 0.5}});
    QFile::remove(path("mapless/01.tif"));
    EXPECT_EQ(refusalOf(path("mapless")), path("mapless/01.tif") + ": the map is not there");
    writeResult("torn", {{"A", mapA, 1, 0.5}});
    write("torn/01.tif", "II*");
    EXPECT_TRUE(refusalOf(path("torn")).startsWith(path("torn/01.tif") + ": "));
    writeResult("few", {{"A", mapA, 1, 0.5}, {"B", mapB, 0, 1}});
    write("few/spectra.csv", contentOf(writeResult("x", {{"A", mapA, 1, 0.5}}) + "/spectra.csv"));
    EXPECT_TRUE(refusalOf(path("few")).endsWith("spectra.csv does not hold one spectrum a component"));
}

// A summary that somebody else wrote does not make the program read elsewhere.
TEST_F(CompareProgramTest, MapsAreReadFromTheFolderAlone)
{
    writeResult("one", {{"A", mapA, 1, 0.5}});
    writeTiffFile("secret.tif", imageOf(side, side, mapA));
    write("one/summary.json", "{\"unit\":\"Counts\",\"components\":[{\"name\":\"A\",\"map\":\"../secret.tif\"}]}");
    EXPECT_EQ(failureOf([&] { ComparedResult().readResult(path("one")); }),
              path("one/secret.tif") + ": the map is not there");
}

TEST_F(CompareProgramTest, ResultsStandBesideTheTruth)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--quiet"});
    succeed({"unmix", "seq", "--ncomponents", "2", "--out", "mine", "--quiet"});
    const QJsonObject json = succeed({"compare", "seq", "unmixed-library", "mine", "--json"}).json();
    EXPECT_EQ(json["reference"], "truth");
    EXPECT_EQ(json["images"], 8);
    ASSERT_EQ(json["results"].toArray().size(), 2);
    const QJsonObject library = json["results"].toArray()[0].toObject();
    EXPECT_EQ(library["result"], "unmixed-library");
    ASSERT_EQ(library["components"].toArray().size(), 4);
    EXPECT_EQ(library["components"].toArray()[2].toObject()["reference"], "AlexaFluor 750");
    EXPECT_GT(library["components"].toArray()[2].toObject()["correlation"].toDouble(), 0.9);
    EXPECT_EQ(json["results"].toArray()[1].toObject()["components"].toArray().size(), 2);
    EXPECT_EQ(entriesOf(path("seq/comparison")), (QStringList{"comparison.csv", "comparison.png"}));
    const QImage picture(path("seq/comparison/comparison.png"));
    EXPECT_GT(picture.width(), 4 * 320);
    EXPECT_GT(picture.height(), 3 * 320);
    EXPECT_TRUE(refusal({"compare", "seq", "mine"}).contains("--force"));
    const QString text = QString::fromUtf8(succeed({"compare", "seq", "mine", "--out", "other"}).out);
    EXPECT_TRUE(text.contains("results in " + path("other")));
}

TEST_F(CompareProgramTest, ResultsOfTwoUnitsAreNotCompared)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--quiet"});
    succeed({"unmix", "seq", "--library", truth("counts"), "--unit", "counts", "--out", "counts", "--quiet"});
    EXPECT_EQ(refusal({"compare", "seq", "unmixed-library", "counts"}),
              "unmixed-library is in Radiant Efficiency, counts in Counts: results of one unit can be compared");
    EXPECT_FALSE(entriesOf(path("seq")).contains("comparison"));
}

TEST_F(CompareProgramTest, WithoutATruthTwoResultsAreNeeded)
{
    smallSequence().writeTo(path("seq"));
    succeed({"unmix", "seq", "--library", library(), "--quiet"});
    EXPECT_EQ(refusal({"compare", "seq", "unmixed-library"}),
              "the sequence has no truth to compare with; name two results at least");
    succeed({"unmix", "seq", "--library", library(), "--method", "manual", "--quiet"});
    const QJsonObject json = succeed({"compare", "seq", "unmixed-library", "unmixed-manual", "--json"}).json();
    EXPECT_EQ(json["reference"], "unmixed-library");
    EXPECT_NEAR(json["results"].toArray()[0].toObject()["components"].toArray()[1].toObject()["correlation"].toDouble(),
                1.0, 1e-12);
    EXPECT_TRUE(refusal({"compare", "seq", "nowhere"}).contains("nowhere"));
}
