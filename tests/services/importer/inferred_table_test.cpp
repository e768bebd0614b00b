// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/InferredTable.h"

#include "services/importer/ImagesTable.h"

#include <gtest/gtest.h>

namespace {

FoundImage imageOf(const QString& file, const QVector<Figure>& figures)
{
    FoundImage image;
    image.file = file;
    image.name = file;
    image.figures = figures;
    return image;
}

QVector<Figure> pairOf(double excitation, double emission)
{
    return {{Figure::Excitation, excitation, "name: ex"}, {Figure::Emission, emission, "name: em"}};
}

InferredTable tableOf(const QVector<QVector<Figure>>& figures, std::optional<double> interval = std::nullopt)
{
    QVector<FoundImage> images;
    for (int i = 0; i < figures.size(); ++i) {
        images.append(imageOf(QStringLiteral("%1.tif").arg(QChar('a' + i)), figures.at(i)));
    }
    return InferredTable(images, {}, interval);
}

QString doubtsOf(const QVector<QVector<Figure>>& figures)
{
    return tableOf(figures).doubts().join("; ");
}

} // namespace

TEST(InferredTableTest, PairsOfWavelengthsMakeASpectralTable)
{
    const InferredTable table = tableOf({pairOf(640, 700), pairOf(640, 720)});
    EXPECT_TRUE(table.doubts().isEmpty()) << qPrintable(table.doubts().join("; "));
    EXPECT_FALSE(table.isTemporal());
    EXPECT_EQ(table.toCsv(), "file,excitation,emission,origin\na.tif,640,700,\"name: ex, em\"\n"
                             "b.tif,640,720,\"name: ex, em\"\n");
    ImagesTable read;
    QString error;
    ASSERT_TRUE(read.parse(table.toCsv(), "table", &error)) << qPrintable(error);
    EXPECT_TRUE(read.warnings().isEmpty());
    EXPECT_EQ(read.rows()[1].emission, 720.0);
}

TEST(InferredTableTest, TimesMakeATemporalTableInTheirOrder)
{
    const InferredTable table =
        tableOf({{{Figure::Time, 20, "x"}}, {{Figure::Time, 2.5, "x"}, {Figure::Interval, 2, "x"}}});
    EXPECT_TRUE(table.doubts().isEmpty());
    EXPECT_TRUE(table.isTemporal());
    EXPECT_EQ(table.toCsv(), "file,interval,time,origin\nb.tif,2,2.5,x\na.tif,,20,x\n");
}

TEST(InferredTableTest, WavelengthsThatTellImagesApartCountBeforeTimes)
{
    QVector<Figure> first = pairOf(640, 700);
    QVector<Figure> second = pairOf(640, 720);
    first.append({Figure::Time, 0, "OME DeltaT"});
    second.append({Figure::Time, 3, "OME DeltaT"});
    const InferredTable table = tableOf({first, second});
    EXPECT_TRUE(table.doubts().isEmpty());
    EXPECT_FALSE(table.isTemporal());
    EXPECT_EQ(table.notes(), QStringList("the images' times are not used: wavelengths tell them apart"));
}

TEST(InferredTableTest, OnePairAtSeveralTimesIsTemporal)
{
    QVector<Figure> first = pairOf(640, 700);
    QVector<Figure> second = first;
    first.append({Figure::Time, 0, "x"});
    second.append({Figure::Time, 3, "x"});
    const InferredTable table = tableOf({first, second});
    EXPECT_TRUE(table.doubts().isEmpty());
    EXPECT_TRUE(table.isTemporal());
    EXPECT_EQ(table.notes(), QStringList("the images' times tell them apart: their wavelengths are the same in all"));
}

TEST(InferredTableTest, WavelengthsAndTimesThatBothDifferAreADoubt)
{
    QVector<QVector<Figure>> figures;
    for (int i = 0; i < 4; ++i) {
        figures.append(pairOf(640, 700 + 20 * (i % 2)));
        figures.last().append({Figure::Time, static_cast<double>(i / 2), "x"});
    }
    const InferredTable table = tableOf(figures);
    EXPECT_EQ(table.doubts().last(), "both wavelengths and times differ: a sequence is either spectral or temporal");
    EXPECT_TRUE(table.toCsv().startsWith("file,excitation,emission,time,origin\na.tif,640,700,0,"))
        << table.toCsv().constData();
}

TEST(InferredTableTest, DoubtsNameTheImages)
{
    EXPECT_EQ(doubtsOf({pairOf(640, 700), pairOf(640, 700)}),
              "a.tif and b.tif share excitation 640 nm and emission 700 nm");
    EXPECT_EQ(doubtsOf({pairOf(640, 700.2), pairOf(640, 699.8)}),
              "a.tif and b.tif share excitation 640 nm and emission 700 nm");
    EXPECT_EQ(doubtsOf({pairOf(640, 700), {{Figure::Emission, 720, "x"}}}),
              "1 of 2 lack the excitation, the first is b.tif");
    EXPECT_EQ(doubtsOf({pairOf(640, 700), {}}),
              "1 of 2 lack the excitation, the first is b.tif; 1 of 2 lack the emission, the first is b.tif");
    EXPECT_EQ(
        doubtsOf({{{Figure::Emission, 700, "name: em700"}, {Figure::Emission, 720, "OME channel 1"}}}),
        "a.tif: the emission is 700 (name: em700) or 720 (OME channel 1); nothing tells the images' wavelengths or "
        "times; names can (ex640_em700, 640-700, t12.5s), and --interval S makes times of numbered frames");
    EXPECT_EQ(doubtsOf({{{Figure::Time, 1.2, "x"}}, {{Figure::Time, 1.9, "x"}}}),
              "a.tif and b.tif share second 1; images are told apart by the whole seconds of their times");
}

TEST(InferredTableTest, FiguresThatAgreeAreOne)
{
    const InferredTable table =
        tableOf({{{Figure::Emission, 700, "name: em700"}, {Figure::Emission, 700.0000001, "OME"}}});
    EXPECT_TRUE(table.doubts().isEmpty());
    EXPECT_EQ(table.rows()[0].emission, 700.0);
}

TEST(InferredTableTest, NumberedFramesNeedTheSecondsBetweenThem)
{
    const QVector<QVector<Figure>> frames{{{Figure::Frame, 3, "name: 003"}}, {{Figure::Frame, 4, "name: 004"}}};
    const InferredTable numbered = tableOf(frames);
    EXPECT_TRUE(numbered.isNumbered());
    EXPECT_TRUE(numbered.notes().join(' ').contains("--interval S makes times"))
        << qPrintable(numbered.notes().join(' '));
    const InferredTable table = tableOf(frames, 0.1 * 30);
    EXPECT_TRUE(table.doubts().isEmpty());
    EXPECT_EQ(table.toCsv(), "file,time,origin\na.tif,9,name: 003 x 3 s\nb.tif,12,name: 004 x 3 s\n");
}

TEST(InferredTableTest, TimesWithoutAUnitAreSecondsUnlessTheyCouldBeFrames)
{
    const QVector<QVector<Figure>> apart{{{Figure::TimeNumber, 0, "name: t0"}},
                                         {{Figure::TimeNumber, 30, "name: t30"}}};
    const InferredTable seconds = tableOf(apart);
    EXPECT_TRUE(seconds.doubts().isEmpty());
    EXPECT_EQ(seconds.rows()[1].time, 30.0);
    EXPECT_EQ(seconds.rows()[1].origin, "name: t30, taken as s");
    EXPECT_EQ(seconds.notes().size(), 1);

    const QVector<QVector<Figure>> counted{{{Figure::TimeNumber, 7, "name: t7"}},
                                           {{Figure::TimeNumber, 6, "name: t6"}}};
    EXPECT_TRUE(doubtsOf(counted).startsWith("the times without a unit count up by one"))
        << qPrintable(doubtsOf(counted));
    const InferredTable told = tableOf(counted, 1.0);
    EXPECT_TRUE(told.doubts().isEmpty());
    EXPECT_EQ(told.rows()[0].time, 6.0);
    // Beside wavelengths that tell the images apart, the numbers do not matter.
    QVector<QVector<Figure>> spectral{pairOf(640, 700), pairOf(640, 720)};
    spectral[0] += counted[0];
    spectral[1] += counted[1];
    EXPECT_EQ(doubtsOf(spectral), QString());
}

TEST(InferredTableTest, ATemplateLeavesOpenWhatIsNotKnown)
{
    EXPECT_EQ(tableOf({{}, {}}, 2.0).toCsv(), "file,excitation,emission,time,origin\na.tif,,,,\nb.tif,,,,\n");
    EXPECT_EQ(tableOf({pairOf(640, 700), {}}).toCsv(),
              "file,excitation,emission,origin\na.tif,640,700,\"name: ex, em\"\nb.tif,,,\n");
}

TEST(InferredTableTest, NamesAreQuotedWhereTheyMustBe)
{
    QVector<FoundImage> images{imageOf(" a,\"b\".tif", pairOf(640, 700)), imageOf("c.tif", pairOf(640, 720))};
    images[1].page = 3;
    const InferredTable table(images, {}, std::nullopt);
    ImagesTable read;
    QString error;
    ASSERT_TRUE(read.parse(table.toCsv(), "table", &error)) << qPrintable(error);
    EXPECT_EQ(read.rows()[0].file, " a,\"b\".tif");
    EXPECT_EQ(read.rows()[1].page, 3);
    images[0].file = "a\nb.tif";
    EXPECT_EQ(InferredTable(images, {}, std::nullopt).doubts().size(), 1);
}

TEST(InferredTableTest, SpotsTellImagesOfOnePairApart)
{
    const auto scanned = [](const char* x) {
        QVector<Figure> figures = pairOf(640, 700);
        figures.append({Figure::SpotX, QString(x).toDouble(), "name: spot", x});
        figures.append({Figure::SpotY, 1.0, "name: spot", "1.0"});
        return figures;
    };
    const InferredTable table = tableOf({scanned("-0.50"), scanned("0.50")});
    EXPECT_TRUE(table.doubts().isEmpty()) << qPrintable(table.doubts().join("; "));
    EXPECT_TRUE(table.toCsv().startsWith("file,excitation,emission,spot_x,spot_y,origin\na.tif,640,700,-0.50,1.0,"))
        << table.toCsv().constData();
    EXPECT_EQ(doubtsOf({scanned("1"), scanned("1")}),
              "a.tif and b.tif share excitation 640 nm and emission 700 nm and the spot 1, 1.0");
    EXPECT_EQ(doubtsOf({scanned("1"), pairOf(640, 720)}), "1 of 2 lack the scan spot, the first is b.tif");
}

TEST(InferredTableTest, WhatTheMetadataTellBesidesIsKept)
{
    FoundImage image = imageOf("a.tif", pairOf(640, 700));
    image.facts.exposure = 0.25;
    image.facts.pixelSize = 12.5;
    image.facts.start = "2024-03-05T09:30:00.000";
    image.facts.isotope = "F-18, \"x\"";
    image.facts.unit = "Radiance";
    const InferredTable table({image, imageOf("b.tif", pairOf(640, 720))}, {}, std::nullopt);
    EXPECT_EQ(table.notes(), QStringList("the metadata also tell: exposures, the size of a pixel, the starts of the "
                                         "exposures, the isotope, the unit"));
    EXPECT_EQ(table.toCsv(),
              "file,excitation,emission,exposure,pixel_size,start,isotope,unit,origin\n"
              "a.tif,640,700,0.25,12.5,2024-03-05T09:30:00.000,\"F-18, \"\"x\"\"\",Radiance,\"name: ex, em\"\n"
              "b.tif,640,720,,,,,,\"name: ex, em\"\n");
    ImagesTable read;
    QString error;
    ASSERT_TRUE(read.parse(table.toCsv(), "table", &error)) << qPrintable(error);
    EXPECT_EQ(read.rows()[0].facts.isotope, "F-18, \"x\"");
    EXPECT_EQ(read.rows()[0].facts.exposure, 0.25);
    EXPECT_FALSE(read.rows()[1].facts.exposure);
}

TEST(InferredTableTest, QuestionsAreTheDoubtsThatRowsDoNotShow)
{
    EXPECT_TRUE(tableOf({pairOf(640, 700), {{Figure::Excitation, 640, "x"}}}).questions().isEmpty());
    EXPECT_TRUE(tableOf({pairOf(640, 700), pairOf(640, 700)}).questions().isEmpty());
    EXPECT_TRUE(tableOf({{}, {}}).questions().isEmpty());
    const InferredTable frames = tableOf({{{Figure::TimeNumber, 1, "x"}}, {{Figure::TimeNumber, 2, "x"}}});
    EXPECT_EQ(frames.questions(), frames.doubts());
    const InferredTable two = tableOf({{{Figure::Emission, 700, "x"}, {Figure::Emission, 720, "y"}}});
    EXPECT_TRUE(two.questions().contains("a.tif: the emission is 700 (x) or 720 (y)"))
        << qPrintable(two.doubts().join(';'));
}

TEST(InferredTableTest, ImagesOfWhichNothingIsToldAreNumberedChannelsWithTheFilesNames)
{
    QVector<FoundImage> images{imageOf("x.tif", {}), imageOf("y.tif", {})};
    images[0].channel = "DAPI, new";
    const InferredTable table(images, {}, std::nullopt);
    EXPECT_TRUE(table.doubts().isEmpty()) << qPrintable(table.doubts().join("; "));
    EXPECT_TRUE(table.isNumbered());
    EXPECT_FALSE(table.isTemporal());
    EXPECT_EQ(table.toCsv(), "file,channel,origin\nx.tif,\"DAPI, new\",\ny.tif,,\n");
    ImagesTable read;
    QString error;
    ASSERT_TRUE(read.parse(table.toCsv(), "table", &error)) << qPrintable(error);
    EXPECT_TRUE(read.hasChannels());
    EXPECT_EQ(read.rows()[0].channel, "DAPI, new");
}

TEST(InferredTableTest, EmissionsThatFiltersDoNotTellApartAreChannelsWithTheirWavelengths)
{
    const auto emissions = [](const QVector<double>& values) {
        QVector<QVector<Figure>> figures;
        for (const double value : values) {
            figures.append({{Figure::Emission, value, "ENVI wavelength"}});
        }
        return tableOf(figures);
    };
    EXPECT_EQ(emissions({900, 1250.5}).toCsv(),
              "file,channel,wavelength,origin\na.tif,,900,ENVI wavelength\nb.tif,,1250.5,ENVI wavelength\n");
    EXPECT_TRUE(emissions({500.1, 500.4}).isNumbered());
    EXPECT_TRUE(emissions({50, 500}).isNumbered());
    EXPECT_TRUE(emissions({-5, 500}).isNumbered());
    EXPECT_FALSE(emissions({500, 501}).isNumbered());
    EXPECT_EQ(emissions({500, 500}).doubts().join("; "), "a.tif and b.tif share emission 500 nm");
    const InferredTable waves = tableOf({{{Figure::Wavenumber, 1003.5, "ENVI wavenumber"}}, {}});
    EXPECT_EQ(waves.toCsv(), "file,channel,wavenumber,origin\na.tif,,1003.5,ENVI wavenumber\nb.tif,,,\n");
}

TEST(InferredTableTest, ChannelsOfOneFileThatTellsSomeWavelengthsAreNumbered)
{
    QVector<FoundImage> images{imageOf("a.tif", pairOf(640, 700)), imageOf("a.tif", {})};
    images[0].page = 1;
    images[1].page = 2;
    images[1].channel = "Brightfield";
    const InferredTable table(images, {}, std::nullopt);
    EXPECT_EQ(table.toCsv(), "file,page,channel,wavelength,origin\na.tif,1,ex 640 em 700,700,\"name: ex, em\"\n"
                             "a.tif,2,Brightfield,,\n");
}

TEST(InferredTableTest, AskedForChannelsNumbersWhatIsInDoubt)
{
    const QVector<FoundImage> images{imageOf("a.tif", pairOf(640, 700)), imageOf("b.tif", pairOf(640, 700))};
    const InferredTable table(images, {"a.tif: this could be read in two ways"}, std::nullopt, true);
    EXPECT_TRUE(table.doubts().isEmpty());
    EXPECT_TRUE(table.isNumbered());
    EXPECT_EQ(table.rows()[1].channel, "ex 640 em 700");
}

TEST(InferredTableTest, SecondsBetweenFramesOfASpectralStackAreAQuestion)
{
    const QVector<QVector<Figure>> figures{pairOf(640, 700), pairOf(640, 720)};
    const InferredTable table = tableOf(figures, 2.0);
    ASSERT_EQ(table.questions().size(), 1);
    EXPECT_TRUE(table.questions().first().startsWith("wavelengths tell the images apart, and --interval S"));
}
