// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/SpectraTableReader.h"

#include <QTextCodec>

#include <cmath>

#include <gtest/gtest.h>

namespace {

SpectraTable tableOf(const QByteArray& bytes)
{
    SpectraTable table;
    QString error;
    EXPECT_TRUE(SpectraTableReader::parse(bytes, QStringLiteral("dir/soil map.csv"), &table, &error))
        << qPrintable(error);
    return table;
}

QString refusal(const QByteArray& bytes)
{
    SpectraTable table;
    QString error;
    EXPECT_FALSE(SpectraTableReader::parse(bytes, QStringLiteral("t.csv"), &table, &error));
    EXPECT_TRUE(table.names().isEmpty() && table.rows().isEmpty());
    EXPECT_TRUE(error.startsWith("t.csv:")) << qPrintable(error);
    return error.mid(6);
}

QVector<double> wavelengthsOf(const SpectraTable& table)
{
    QVector<double> wavelengths;
    for (const SpectraTable::Row& row : table.rows()) {
        wavelengths.append(row.wavelength);
    }
    return wavelengths;
}

const QByteArray plain = "wavelength,soil,tree\n400,0.1,0.5\n500,0.2,0.25\n600,0.4,0\n";

void expectPlain(const QByteArray& bytes)
{
    const SpectraTable table = tableOf(bytes);
    EXPECT_EQ(table.names(), (QStringList{"soil", "tree"})) << bytes.constData();
    EXPECT_EQ(wavelengthsOf(table), (QVector<double>{400, 500, 600})) << bytes.constData();
    ASSERT_EQ(table.names().size(), 2);
    EXPECT_EQ(table.values(0), (QVector<double>{0.1, 0.2, 0.4})) << bytes.constData();
    EXPECT_EQ(table.values(1), (QVector<double>{0.5, 0.25, 0.0})) << bytes.constData();
    EXPECT_FALSE(table.hasPairs());
}

QByteArray utf16(const QByteArray& text)
{
    return QTextCodec::codecForName("UTF-16")->fromUnicode(QString::fromUtf8(text));
}

} // namespace

TEST(SpectraTableReaderTest, ASpectrumIsAColumn)
{
    expectPlain(plain);
}

TEST(SpectraTableReaderTest, ASpectrumIsARow)
{
    expectPlain("name,400,500,600\nsoil,0.1,0.2,0.4\ntree,0.5,0.25,0\n");
    expectPlain(",400 nm,500 nm,600 nm\nsoil,0.1,0.2,0.4\ntree,0.5,0.25,0\n");
    expectPlain("spectrum (um),0.4,0.5,0.6\nsoil,0.1,0.2,0.4\ntree,0.5,0.25,0\n");
}

TEST(SpectraTableReaderTest, TabsAndSemicolonsSplitToo)
{
    expectPlain(QByteArray(plain).replace(',', ';'));
    expectPlain(QByteArray(plain).replace(',', '\t'));
    expectPlain("sep=;\n" + QByteArray(plain).replace(',', ';'));
    EXPECT_EQ(tableOf("nm;soil, dry;tree\n400;1;2\n").names(), (QStringList{"soil; dry", "tree"}));
    EXPECT_EQ(tableOf("nm,\"soil; dry\",tree\n400,1,2\n").names(), (QStringList{"soil; dry", "tree"}));
}

TEST(SpectraTableReaderTest, WhatSpreadsheetProgramsWriteReads)
{
    expectPlain("\xEF\xBB\xBF" + QByteArray(plain).replace('\n', "\r\n"));
    expectPlain(QByteArray(plain).replace('\n', '\r'));
    expectPlain("wavelength;soil;tree\r\n400;0,1;0,5\r\n500;0,2;0,25\r\n600;0,4;0\r\n");
    expectPlain("wavelength\tsoil\ttree\n400\t0,1\t5E-1\n500\t0,2\t0,25\n600\t0,4\t0\n");
    expectPlain(
        "\"wavelength\",\"soil\",\"tree\"\n\"400\",\"0,1\",\"0,5\"\n\"500\",\"0,2\",\"0,25\"\n\"600\",\"0,4\",0\n");
    expectPlain("\n# made by hand\nwavelength,soil,tree,,\n\n400,0.1,0.5,,\n,,,,\n500,0.2,0.25,,\n600,0.4,0,,\n,,,,\n");
    expectPlain("wavelength,soil,tree\n400,10%,50 %\n500,20%,25%\n600,40%,0%\n");
    expectPlain("wavelength,soil (%),tree [%]\n400,10,50\n500,20,25\n600,40,0\n");
    expectPlain("wavelength,soil %,tree\n400,10,0.5\n500,20,0.25\n600,40,0\n");
    expectPlain(utf16(QByteArray(plain).replace(',', '\t')));
    EXPECT_EQ(tableOf("nm;Bl\xE4tter\n400;1\n").names(), QStringList{QString::fromUtf8("Bl\xC3\xA4tter")});
}

TEST(SpectraTableReaderTest, TheLastLineNeedsNoEnd)
{
    expectPlain(QByteArray(plain).trimmed());
}

TEST(SpectraTableReaderTest, WavelengthsAreInNanometresOrMicrometres)
{
    for (const char* first : {"um", "wavelength (um)", "wavelength [\xC2\xB5m]", "Wavelength_um", "lambda / \xCE\xBCm",
                              "microns", "wavelength", ""}) {
        EXPECT_EQ(wavelengthsOf(tableOf(QByteArray(first) + ",a\n0.4,1\n0.64,2\n2.5,3\n")),
                  (QVector<double>{400, 640, 2500}))
            << first;
    }
    for (const char* first : {"nm", "wavelength (nm)", "Wavelength_nm", "WL", "nanometers", "x"}) {
        EXPECT_EQ(wavelengthsOf(tableOf(QByteArray(first) + ",a\n400,1\n640.5,2\n")), (QVector<double>{400, 640.5}))
            << first;
    }
    EXPECT_EQ(refusal("wavelength,a\n40,1\n64,2\n"),
              "1: wavelengths from 40 to 64 are neither nm nor um; the first field may name their unit, as in "
              "\"wavelength (nm)\"");
    EXPECT_EQ(refusal("wavelength (um),a\n400,1\n640,2\n"), "1: wavelengths from 400000 to 640000 nm are out of range");
    for (const char* first : {"wavenumber", "cm-1", "energy (eV)"}) {
        EXPECT_EQ(refusal(QByteArray(first) + ",a\n400,1\n640,2\n"),
                  QStringLiteral("1: \"%1\": wavelengths are taken in nm or um").arg(first));
    }
}

TEST(SpectraTableReaderTest, RowsComeByAscendingWavelength)
{
    expectPlain("wavelength,soil,tree\n600,0.4,0\n400,0.1,0.5\n500,0.2,0.25\n");
    expectPlain("name,600,500,400\nsoil,0.4,0.2,0.1\ntree,0,0.25,0.5\n");
}

TEST(SpectraTableReaderTest, AnEmptyFieldIsNoValue)
{
    const SpectraTable table = tableOf("wavelength,soil,tree\n400,,1\n500,2,\n600,3,4\n");
    EXPECT_TRUE(std::isnan(table.values(0).at(0)));
    EXPECT_TRUE(std::isnan(table.values(1).at(1)));
    EXPECT_EQ(table.values(1).at(2), 4.0);
}

TEST(SpectraTableReaderTest, TheFirstFieldMayTellTheAxis)
{
    EXPECT_EQ(tableOf("wavelength,a\n400,1\n").axis(), SpectraTable::Axis::Unsaid);
    EXPECT_EQ(tableOf("Emission (nm),a\n400,1\n").axis(), SpectraTable::Axis::Emission);
    EXPECT_EQ(tableOf("excitation_nm,a\n400,1\n").axis(), SpectraTable::Axis::Excitation);
    EXPECT_EQ(tableOf("Excitation wavelength,a\n400,1\n").axis(), SpectraTable::Axis::Excitation);
}

TEST(SpectraTableReaderTest, ColumnsForExcitationAndEmissionMakePairs)
{
    const SpectraTable table = tableOf("Excitation,Emission,A,B\n640,720,3,4\n640nm,700nm,1,2\nOpen,800,5,\n");
    EXPECT_TRUE(table.hasPairs());
    EXPECT_EQ(table.names(), (QStringList{"A", "B"}));
    EXPECT_EQ(wavelengthsOf(table), (QVector<double>{800, 700, 720}));
    EXPECT_TRUE(std::isnan(table.rows().at(0).excitation));
    EXPECT_EQ(table.rows().at(1).excitation, 640.0);
    EXPECT_EQ(table.values(0), (QVector<double>{5, 1, 3}));
    EXPECT_EQ(refusal("excitation,emission,A\n,,1\n"), "2: neither an excitation nor an emission is told");
    EXPECT_EQ(refusal("excitation,emission,A\n640,700,1\n640,700,1\n"), "3: the wavelength 700 nm comes twice");
}

TEST(SpectraTableReaderTest, WithoutNamesTheFileNamesTheSpectra)
{
    EXPECT_EQ(tableOf("400,1\n410,2\n").names(), QStringList{"soil map"});
    EXPECT_EQ(tableOf("400,1,2\n410,2,3\n").names(), (QStringList{"soil map 1", "soil map 2"}));
    EXPECT_EQ(wavelengthsOf(tableOf("400,1\n410,2\n")), (QVector<double>{400, 410}));
}

// The numbers of samples may be taken for wavelengths, and the other way round.
TEST(SpectraTableReaderTest, NumbersServeAsNames)
{
    EXPECT_EQ(tableOf("wavelength,1,2\n400,0.1,0.2\n500,0.3,0.4\n").names(), (QStringList{"1", "2"}));
    EXPECT_EQ(tableOf("sample,400,500\n101,0.1,0.2\n102,0.3,0.4\n").names(), (QStringList{"101", "102"}));
    EXPECT_EQ(tableOf("sample,400,500\n1,0.1,0.2\n2,0.3,0.4\n").names(), (QStringList{"1", "2"}));
}

TEST(SpectraTableReaderTest, WhatIsNoNumberIsToldWithItsLine)
{
    EXPECT_EQ(refusal("wavelength,a\n400,1\n500,n/a\n"), "3: \"n/a\" is not a number");
    EXPECT_EQ(refusal("wavelength,a\n400,nan\n"), "2: \"nan\" is not a number");
    EXPECT_EQ(refusal("wavelength,a\n400,inf\n"), "2: \"inf\" is not a number");
    EXPECT_EQ(refusal("wavelength;a\n400;1.234,5\n"), "2: \"1.234,5\" is not a number");
    EXPECT_EQ(refusal("wavelength,a\n400,%\n"), "2: \"%\" is not a number");
    EXPECT_EQ(refusal("wavelength,a\n400,1\nbad,1\n"),
              "1: neither the first column nor the first line holds wavelengths");
}

TEST(SpectraTableReaderTest, DecimalSignsThatMayBeReadTwoWaysAreRefused)
{
    EXPECT_EQ(refusal("wavelength;a;b\n400;0.5;1\n500;0,5;1\n"),
              "3: decimal points (line 2) and decimal commas (line 3) in one table");
    EXPECT_EQ(refusal("wavelength,a\n400,\"1,000\"\n"), "2: \"1,000\" may have a decimal comma or one of thousands");
    EXPECT_EQ(tableOf("wavelength;a\n400;1,000\n").values(0), QVector<double>{1.0});
}

// A file that is cut short, or one with decimal commas between commas.
TEST(SpectraTableReaderTest, LinesOfAnotherLengthAreRefused)
{
    EXPECT_EQ(refusal(plain.left(plain.size() - 6)), "4: 2 fields where the first line has 3");
    EXPECT_EQ(refusal("wavelength,a\n400,0,1\n"), "2: 3 fields where the first line has 2");
    EXPECT_EQ(refusal("wavelength,\"a\n400,1\n"), "1: no tab, semicolon or comma splits the line and the next one");
    EXPECT_EQ(refusal("wavelength,a\n400,1\n500,\"1\n"), "3: a quote is not closed");
}

TEST(SpectraTableReaderTest, NamesAreToBeUniqueAndThere)
{
    EXPECT_EQ(refusal("wavelength,a,a\n400,1,2\n"), "1: two spectra have the name \"a\"");
    EXPECT_EQ(refusal("wavelength,a,,b\n400,1,2,3\n"), "1: spectrum 2 has no name");
    EXPECT_EQ(tableOf("wavelength,a,,b\n400,1,,3\n").names(), (QStringList{"a", "b"}));
    EXPECT_EQ(refusal("wavelength,a,b\n400,1,\n500,2,\n"), " the spectrum \"b\" has no value");
}

TEST(SpectraTableReaderTest, AWavelengthThatComesTwiceIsRefused)
{
    EXPECT_EQ(refusal("wavelength,a\n400,1\n500,2\n400,3\n"), "4: the wavelength 400 nm comes twice");
    EXPECT_EQ(refusal("name,400,400\na,1,2\n"), "1: the wavelength 400 nm comes twice");
}

TEST(SpectraTableReaderTest, WhatIsNoTableIsRefused)
{
    EXPECT_EQ(refusal(""), " it is empty");
    EXPECT_EQ(refusal("\n# nothing\n"), " it is empty");
    EXPECT_EQ(refusal("wavelength,a\n"), " it has one line only");
    EXPECT_EQ(refusal("wavelength,a\n,\n"), " it has no line of values");
    EXPECT_EQ(refusal("soil\ntree\n"), "1: no tab, semicolon or comma splits the line and the next one");
    EXPECT_EQ(refusal("a letter,\nto you,\n"), "1: the line names no spectrum and no wavelength");
    EXPECT_EQ(refusal(QByteArray(100, '\0')), " a zero byte, this is no text");
    EXPECT_EQ(refusal(QByteArray("wavelength,a\n400,1\n") + QByteArray(100001, '\n')), " more than 100000 lines");
}

TEST(SpectraTableReaderTest, ALibraryIsToldFromATable)
{
    EXPECT_TRUE(SpectraTable::isLibrary("$,Note,x\n"));
    EXPECT_TRUE(SpectraTable::isLibrary("\xEF\xBB\xBF$,Note,x\n"));
    EXPECT_TRUE(SpectraTable::isLibrary("a line\r\n$,NumSpec,1\r\n"));
    EXPECT_FALSE(SpectraTable::isLibrary(plain));
    EXPECT_FALSE(SpectraTable::isLibrary("price $,a\n400,1\n"));
    EXPECT_FALSE(SpectraTable::isLibrary(""));
}
