// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ImportTable.h"

#include "services/importer/ImagesTable.h"
#include "workbench/application/ImportTableModel.h"
#include "workbench/application/importPlace.h"
#include "workbench/application/importWords.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using Column = ImportTable::Column;
using Kind = ImportTable::Kind;
using Mark = ImportTable::Mark;

FoundImage found(const QString& name, const QVector<Figure>& figures)
{
    FoundImage image;
    image.file = name;
    image.name = name;
    image.figures = figures;
    return image;
}

FoundImage pairOf(const QString& name, double excitation, double emission)
{
    return found(name, {{Figure::Excitation, excitation, "name: ex"}, {Figure::Emission, emission, "name: em"}});
}

ImportTable tableOf(const QVector<FoundImage>& images, const QStringList& doubts = {},
                    std::optional<double> interval = std::nullopt)
{
    return ImportTable(InferredTable(images, doubts, interval));
}

// As a file "images.csv" of that text tells it.
ImportTable userTable(const QByteArray& text)
{
    ImagesTable table;
    QString error;
    EXPECT_TRUE(table.parse(text, "images.csv", &error)) << qPrintable(error);
    return ImportTable(table, "images.csv");
}

// Frames numbered from 1 by their names.
QVector<FoundImage> frames(int nCount)
{
    QVector<FoundImage> images;
    for (int i = 1; i <= nCount; ++i) {
        const QString name = QStringLiteral("t%1").arg(i);
        images.append(found(name + ".tif", {{Figure::TimeNumber, static_cast<double>(i), "name: " + name}}));
    }
    return images;
}

TEST(ImportTableTest, ATableWithoutDoubtIsReadyAsItStands)
{
    const ImportTable table = tableOf({pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720)});
    EXPECT_EQ(table.kind(), Kind::Fluorescence);
    EXPECT_TRUE(table.isReady());
    EXPECT_EQ(table.todo(), "");
    EXPECT_EQ(table.summary(), "2 images: fluorescence, 1 excitation, 2 emissions");
    EXPECT_EQ(table.columns(), (QVector<Column>{Column::Use, Column::Image, Column::Excitation, Column::Emission,
                                                Column::Exposure, Column::Origin}));
}

TEST(ImportTableTest, KindsFollowFromWhatIsKnown)
{
    EXPECT_EQ(
        tableOf({found("a.tif", {{Figure::Emission, 700, "name"}}), found("b.tif", {{Figure::Emission, 720, "name"}})})
            .kind(),
        Kind::Luminescence);
    EXPECT_EQ(
        tableOf({found("a.tif", {{Figure::Time, 0, "name"}}), found("b.tif", {{Figure::Time, 9.5, "name"}})}).kind(),
        Kind::Times);
    FoundImage spot = pairOf("a.tif", 640, 700);
    spot.figures << Figure{Figure::SpotX, -0.45, "name", "-0.45"} << Figure{Figure::SpotY, 1.6, "name", "1.60"};
    const ImportTable scan = tableOf({spot});
    EXPECT_EQ(scan.kind(), Kind::Scan);
    EXPECT_EQ(scan.text(0, Column::SpotY), "1.60");
}

TEST(ImportTableTest, MissingFiguresAreMarkedAndStandInTheWay)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700), found("b.tif", {{Figure::Excitation, 640, "name"}})});
    EXPECT_EQ(table.mark(1, Column::Emission), Mark::Wrong);
    EXPECT_EQ(table.reason(1, Column::Emission), "the emission is missing");
    EXPECT_EQ(table.mark(0, Column::Emission), Mark::None);
    EXPECT_FALSE(table.isReady());
    EXPECT_EQ(table.todo(), "1 cell is to be filled in or corrected; the tool tip of a marked one tells why.");
    table.setText(1, Column::Emission, "720");
    EXPECT_TRUE(table.isReady());
    EXPECT_EQ(table.text(1, Column::Origin), "name; edited");
}

TEST(ImportTableTest, FluorescenceWithoutAnyEmissionFilterIsComplete)
{
    EXPECT_TRUE(tableOf({found("a.tif", {{Figure::Excitation, 640, "name"}}),
                         found("b.tif", {{Figure::Excitation, 675, "name"}})})
                    .isReady());
}

TEST(ImportTableTest, NothingKnownAsksForEveryExcitationOfFluorescence)
{
    ImportTable table = tableOf({found("a.tif", {}), found("b.tif", {})});
    table.setKind(Kind::Fluorescence);
    EXPECT_EQ(table.wrongCount(), 2);
}

TEST(ImportTableTest, NothingKnownMakesNumberedChannelsWhoseNamesCanBeEdited)
{
    FoundImage second = found("b.tif", {});
    second.channel = "GFP";
    ImportTable table = tableOf({found("a.tif", {}), second});
    EXPECT_EQ(table.kind(), Kind::Channels);
    EXPECT_TRUE(table.isReady());
    EXPECT_EQ(table.summary(), "2 images: numbered channels");
    EXPECT_EQ(table.columns(),
              (QVector<Column>{Column::Use, Column::Image, Column::Channel, Column::Exposure, Column::Origin}));
    table.setText(0, Column::Channel, "DAPI");
    EXPECT_EQ(table.toCsv(), "file,channel,exposure,origin\na.tif,DAPI,,edited\nb.tif,GFP,,\n");
}

TEST(ImportTableTest, WavelengthsOfNumberedChannelsMayLieAnywhereAboveZero)
{
    ImportTable table = tableOf({found("a.tif", {{Figure::Emission, 1250, "ENVI wavelength"}}),
                                 found("b.tif", {{Figure::Emission, 1260.5, "ENVI wavelength"}})});
    EXPECT_EQ(table.kind(), Kind::Channels);
    EXPECT_TRUE(table.isReady());
    EXPECT_EQ(table.text(1, Column::Wavelength), "1260.5");
    table.setText(1, Column::Wavelength, "0");
    EXPECT_EQ(table.reason(1, Column::Wavelength), "the wavelength is not above 0");
    table.setText(1, Column::Wavelength, "1300 nm");
    EXPECT_EQ(table.toCsv(), "file,channel,wavelength,exposure,origin\na.tif,,1250,,ENVI wavelength\n"
                             "b.tif,,1300,,ENVI wavelength; edited\n");
}

TEST(ImportTableTest, NumbersAreReadWithUnitsAndRefusedOutsideTheirRange)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700)});
    const auto tryText = [&](Column column, const char* text) {
        table.setText(0, column, text);
        return table.reason(0, column);
    };
    EXPECT_EQ(tryText(Column::Emission, " 710.5 nm "), "");
    EXPECT_EQ(table.text(0, Column::Emission), "710.5");
    EXPECT_EQ(tryText(Column::Emission, "99"), "the emission 99 nm is not within 100 to 999 nm");
    EXPECT_EQ(tryText(Column::Emission, "1000"), "the emission 1000 nm is not within 100 to 999 nm");
    EXPECT_EQ(tryText(Column::Emission, "red"), "the emission \"red\" is not a number");
    EXPECT_EQ(tryText(Column::Emission, "nan"), "the emission \"nan\" is not a number");
    EXPECT_EQ(tryText(Column::Emission, "1e400"), "the emission \"1e400\" is not a number");
    EXPECT_EQ(tryText(Column::Exposure, "0"), "the exposure is not above 0");
    EXPECT_EQ(tryText(Column::Exposure, "2.5s"), "");
    EXPECT_EQ(tryText(Column::Exposure, ""), "");
}

TEST(ImportTableTest, TheDecimalSignOfTheLocaleIsRead)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    ImportTable table = tableOf({pairOf("a.tif", 640, 700)});
    table.setText(0, Column::Exposure, "0,25");
    QLocale::setDefault(before);
    EXPECT_EQ(table.text(0, Column::Exposure), "0.25");
}

TEST(ImportTableTest, ImagesThatShareAKeyAreMarked)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700.2), pairOf("b.tif", 640, 700.4), pairOf("c.tif", 640, 720)});
    EXPECT_EQ(table.reason(1, Column::Emission), "a.tif has the same excitation and emission");
    EXPECT_EQ(table.mark(0, Column::Emission), Mark::None);
    table.setUsed(0, false);
    EXPECT_TRUE(table.isReady());
    EXPECT_EQ(table.usedCount(), 2);
}

TEST(ImportTableTest, TimesAreToldApartByWholeSeconds)
{
    ImportTable table =
        tableOf({found("a.tif", {{Figure::Time, 1.2, "name"}}), found("b.tif", {{Figure::Time, 1.7, "name"}})});
    EXPECT_EQ(table.reason(1, Column::Time), "a.tif has the same second");
    table.setText(1, Column::Time, "2.1 s");
    EXPECT_TRUE(table.isReady());
    table.setText(1, Column::Time, "2e8");
    EXPECT_EQ(table.reason(1, Column::Time), "the time 2e+08 s is not within 16777216 s");
}

TEST(ImportTableTest, ASeriesOfTimesHasOneWavelength)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720)});
    table.setText(0, Column::Time, "0");
    table.setText(1, Column::Time, "60");
    table.setKind(Kind::Times);
    EXPECT_EQ(table.reason(1, Column::Emission), "a series of times has one wavelength in all images");
    table.setText(1, Column::Emission, "700");
    EXPECT_TRUE(table.isReady());
}

TEST(ImportTableTest, ADoubtOfARowIsMarkedAndGoesWhenItIsEdited)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720)},
                                {"b.tif: \"640-720\" could be a range, or a pair of excitation and emission"});
    EXPECT_EQ(table.mark(1, Column::Image), Mark::Doubt);
    EXPECT_EQ(table.reason(1, Column::Image), "\"640-720\" could be a range, or a pair of excitation and emission");
    EXPECT_TRUE(table.isInDoubt());
    EXPECT_FALSE(table.isReady());
    table.setText(1, Column::Emission, "730");
    EXPECT_TRUE(table.isReady());
}

TEST(ImportTableTest, ADoubtGoesWhenTheTableIsConfirmedAndComesBackWithAChange)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720)}, {"b.tif: unclear"});
    EXPECT_EQ(table.todo(), "Something is in doubt. Correct the table, or tick that it is right.");
    table.setConfirmed(true);
    EXPECT_TRUE(table.isReady());
    table.setText(0, Column::Emission, "710");
    EXPECT_FALSE(table.isReady());
}

TEST(ImportTableTest, TimesThatCouldBeFramesAreAQuestion)
{
    const QVector<FoundImage> images = frames(2);
    const ImportTable table = tableOf(images);
    ASSERT_EQ(table.questions().size(), 1);
    EXPECT_EQ(table.questions().first(),
              "the times without a unit count up by one and could be frames: \"Seconds between "
              "frames\" tells which (1 when they are seconds)");
    EXPECT_FALSE(table.isReady());
    const ImportTable counted = tableOf(images, {}, 30.0);
    EXPECT_TRUE(counted.isReady());
    EXPECT_EQ(counted.text(1, Column::Time), "60");
}

TEST(ImportTableTest, WhatAUserHasEditedStaysWhenTheImagesAreLookedAtAgain)
{
    const QVector<FoundImage> images = frames(3);
    ImportTable before = tableOf(images, {}, 30.0);
    before.setText(1, Column::Time, "65");
    before.setText(0, Column::Exposure, "0.5");
    before.setUsed(2, false);
    // A file has gone since, another has come.
    ImportTable again = tableOf(frames(4).mid(1), {}, 60.0);
    again.takeEdits(before);
    EXPECT_EQ(again.text(0, Column::Time), "65") << "rows belong together by their image, not by their place";
    EXPECT_TRUE(again.text(0, Column::Origin).endsWith("; edited"));
    EXPECT_FALSE(again.isUsed(1));
    EXPECT_TRUE(again.isUsed(2));
    EXPECT_EQ(again.text(2, Column::Time), "240");
    // And again, though nothing was edited in between.
    ImportTable third = tableOf(images, {}, 10.0);
    third.takeEdits(again);
    EXPECT_EQ(third.text(1, Column::Time), "65");
    EXPECT_EQ(third.text(0, Column::Time), "10") << "not edited: the new figure";
    EXPECT_EQ(third.text(0, Column::Exposure), "") << "the row had gone";
}

TEST(ImportTableTest, AKindThatWasChosenStaysUnlessTheImagesBecomeASeriesOfTimes)
{
    const QVector<FoundImage> pairs{pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720)};
    ImportTable chosen = tableOf(pairs);
    chosen.setKind(Kind::Luminescence);
    ImportTable again = tableOf(pairs);
    again.takeEdits(tableOf(pairs));
    EXPECT_EQ(again.kind(), Kind::Fluorescence);
    again.takeEdits(chosen);
    EXPECT_EQ(again.kind(), Kind::Luminescence);
    ImportTable times = tableOf(frames(2), {}, 30.0);
    times.takeEdits(chosen);
    EXPECT_EQ(times.kind(), Kind::Times);
}

TEST(ImportTableTest, WhatIsWrittenIsReadBackTheSame)
{
    QVector<FoundImage> images{pairOf("a, \"b\".tif", 640, 700), pairOf("c.tif", 675, 720)};
    images[0].page = 3;
    images[0].facts.exposure = 0.5;
    images[0].facts.pixelSize = 6.5;
    images[0].facts.unit = images[1].facts.unit = "Radiance";
    images[0].facts.isotope = "F-18";
    images[0].facts.start = "2024-03-05T09:30:00.000";
    const ImportTable table = tableOf(images);
    ImagesTable read;
    QString error;
    ASSERT_TRUE(read.parse(table.toCsv(), "t", &error)) << qPrintable(error) << table.toCsv().constData();
    ASSERT_EQ(read.rows().size(), 2);
    const ImageRow& row = read.rows().at(0);
    EXPECT_EQ(row.file, "a, \"b\".tif");
    EXPECT_EQ(row.page.value_or(0), 3);
    EXPECT_EQ(row.excitation.value_or(0), 640.0);
    EXPECT_EQ(row.emission.value_or(0), 700.0);
    EXPECT_EQ(row.facts.exposure.value_or(0), 0.5);
    EXPECT_EQ(row.facts.pixelSize.value_or(0), 6.5);
    EXPECT_EQ(row.facts.unit, "Radiance");
    EXPECT_EQ(row.facts.isotope, "F-18");
    EXPECT_EQ(row.facts.start, "2024-03-05T09:30:00.000");
    EXPECT_TRUE(read.warnings().isEmpty());
}

TEST(ImportTableTest, AProjectionOfSeveralPagesStaysOne)
{
    ImagesTable given;
    QString error;
    ASSERT_TRUE(given.parse("file,page,projection,emission\na.tif,1..3 5,mean,700\na.tif,2,,720\n", "t", &error));
    const ImportTable table(given, "images.csv");
    EXPECT_EQ(table.text(0, ImportTable::Image), "a.tif mean of the pages 1, 2, 3, 5");
    EXPECT_EQ(table.text(1, ImportTable::Image), "a.tif page 2");
    ImagesTable read;
    ASSERT_TRUE(read.parse(table.toCsv(), "t", &error)) << qPrintable(error);
    EXPECT_EQ(read.rows().at(0).projection.kind, PageProjection::Kind::Mean);
    EXPECT_EQ(read.rows().at(0).projection.pages, (QVector<int>{1, 2, 3, 5}));
    EXPECT_TRUE(read.rows().at(1).projection.isNone());
    EXPECT_EQ(read.rows().at(1).page.value_or(0), 2);
}

TEST(ImportTableTest, OnlyTheColumnsOfTheKindAndTheRowsInUseAreWritten)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720), pairOf("c.tif", 640, 740)});
    table.setKind(Kind::Luminescence);
    table.setUsed(1, false);
    EXPECT_EQ(table.toCsv(), "file,emission,exposure,origin\n"
                             "a.tif,700,,\"name: ex, em\"\n"
                             "c.tif,740,,\"name: ex, em\"\n");
    EXPECT_EQ(table.rowOfLine(2), 0);
    EXPECT_EQ(table.rowOfLine(3), 2);
    EXPECT_EQ(table.rowOfLine(1), -1);
    EXPECT_EQ(table.rowOfLine(4), -1);
}

TEST(ImportTableTest, FilesThatWereNotMeantAreNotUsed)
{
    ImportTable table = tableOf({pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720)});
    table.useFiles({"b.tif"});
    EXPECT_FALSE(table.isUsed(0));
    EXPECT_TRUE(table.isUsed(1));
    table.setUsed(1, false);
    EXPECT_EQ(table.todo(), "No image is to be used.");
    EXPECT_FALSE(table.isReady());
}

TEST(ImportTableTest, ATableOfTheUserIsTaken)
{
    const ImportTable taken = userTable("file,page,time\ns.tif,1,0\ns.tif,2,60\n");
    EXPECT_EQ(taken.kind(), Kind::Times);
    EXPECT_EQ(taken.text(1, Column::Image), "s.tif page 2");
    EXPECT_EQ(taken.text(1, Column::Origin), "images.csv");
    EXPECT_TRUE(taken.isReady());
}

TEST(ImportTableTest, RowsOfOneFileNeedNotNameIt)
{
    const ImportTable taken = userTable("page,time\n1,0\n2,60\n");
    EXPECT_EQ(taken.text(0, Column::Image), "page 1");
    EXPECT_TRUE(taken.isReady());
}

TEST(ImportTableModelTest, ShowsAQuestionMarkWhereAFigureIsMissingAndTellsWhy)
{
    ImportTableModel model;
    model.setTable(tableOf({pairOf("a.tif", 640, 700), found("<b>.tif", {{Figure::Excitation, 640, "name"}})}));
    const QModelIndex cell = model.index(1, 3);
    EXPECT_EQ(model.headerData(3, Qt::Horizontal, Qt::DisplayRole), "Emission (nm)");
    EXPECT_EQ(cell.data(), "?");
    EXPECT_EQ(cell.data(Qt::EditRole), "");
    EXPECT_TRUE(cell.data(Qt::ToolTipRole).toString().contains("the emission is missing"));
    EXPECT_TRUE(cell.data(Qt::BackgroundRole).isValid());
    EXPECT_TRUE(model.index(1, 1).data(Qt::ToolTipRole).toString().contains("&lt;b&gt;"));
}

TEST(ImportTableModelTest, CellsTakeWhatASpreadsheetCopies)
{
    ImportTableModel model;
    model.setTable(tableOf({found("a.tif", {}), found("b.tif", {})}));
    model.setKind(Kind::Fluorescence);
    int changes = 0;
    QObject::connect(&model, &ImportTableModel::tableChanged, [&changes] { ++changes; });
    model.paste(model.index(0, 2), "640\t700\r\n640\t720\r\n999\t999\n");
    EXPECT_EQ(model.table().text(1, Column::Emission), "720");
    EXPECT_TRUE(model.table().isReady());
    EXPECT_EQ(changes, 1);
}

TEST(ImportTableModelTest, ARowThatIsNotUsedCannotBeEdited)
{
    ImportTableModel model;
    model.setTable(tableOf({pairOf("a.tif", 640, 700), pairOf("b.tif", 640, 720)}));
    EXPECT_TRUE(model.flags(model.index(0, 2)).testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(model.flags(model.index(0, 1)).testFlag(Qt::ItemIsEditable));
    EXPECT_TRUE(model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_FALSE(model.flags(model.index(0, 2)).testFlag(Qt::ItemIsEditable));
    EXPECT_EQ(model.table().usedCount(), 1);
}

TEST(ImportWordsTest, NoSentenceNamesAnOptionOfTheCommandLine)
{
    for (const char* sentence :
         {"--interval S makes times of numbered frames", "x exists already; --force replaces it",
          "a lies outside b; --follow reads it all the same",
          "images.csv lies in the folder and is not used; --images takes such a table",
          "the times without a unit count up by one and could be frames: --interval S tells the "
          "seconds between frames (1 "
          "when they are seconds)",
          "times without a unit are taken as seconds; --interval S makes frames of them",
          "it has 3 planes in depth (Z), which are no channels; --z N takes one of them, --z max "
          "or mean makes one of all, --channels all for channels",
          "it has 2 channels at 3 times, and a sequence is either spectral or temporal; --t N "
          "takes the channels of one time, --t max or mean those of all, --c N the times of one "
          "channel",
          "too large; --max-memory allows more"}) {
        EXPECT_FALSE(importWords(sentence).contains("--")) << sentence;
    }
    EXPECT_EQ(importWords("a.tif: the file is short"), "a.tif: the file is short");
}

TEST(ImportWordsTest, TheLineOfTheTableIsTaken)
{
    QString error = "inferred table:3: b.tif shares excitation 640nm and emission 700nm with a.tif (line 2)";
    EXPECT_EQ(takeTableLine(&error), 3);
    EXPECT_EQ(error, "b.tif shares excitation 640nm and emission 700nm with a.tif");
    EXPECT_EQ(takeTableLine(&error), 0);
}

TEST(ImportPlaceTest, PathsOfOneFolderGoTogether)
{
    QTemporaryDir folder;
    const auto touch = [&](const QString& name) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return folder.filePath(name);
    };
    const QString a = touch("a.tif");
    const QString b = touch("b.tif");
    EXPECT_EQ(ImportSource::of({}).path, "");
    EXPECT_EQ(ImportSource::of({a}).path, a);
    EXPECT_TRUE(ImportSource::of({a}).files.isEmpty());
    const ImportSource both = ImportSource::of({a, b});
    EXPECT_EQ(both.path, folder.path());
    EXPECT_EQ(both.files, (QStringList{"a.tif", "b.tif"}));
    EXPECT_FALSE(ImportSource::of({a, folder.path()}).error.isEmpty());
    EXPECT_EQ(ImportSource::of({a, folder.path()}).path, "");
}

TEST(ImportPlaceTest, TheSequenceIsProposedBesideTheImages)
{
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("mouse"));
    const QString source = folder.filePath("mouse");
    EXPECT_EQ(proposedSequenceFolder(source, "/tmp"), folder.filePath("mouse_sequence"));
    ASSERT_TRUE(QDir(folder.path()).mkdir("mouse_sequence"));
    EXPECT_EQ(proposedSequenceFolder(source, "/tmp"), folder.filePath("mouse_sequence_2"));
    EXPECT_EQ(proposedSequenceFolder(folder.filePath("stack.ome.tif"), "/tmp"), folder.filePath("stack_sequence"));
    EXPECT_EQ(proposedSequenceFolder("/nowhere/at/all", folder.path()), folder.filePath("all_sequence"));
    EXPECT_EQ(proposedSequenceFolder("", "/tmp"), "");
    ASSERT_TRUE(QDir(folder.path()).mkdir("50%2_sequence"));
    EXPECT_EQ(proposedSequenceFolder(folder.filePath("50%2"), "/tmp"), folder.filePath("50%2_sequence_2"));
}

} // namespace
