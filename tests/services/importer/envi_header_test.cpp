// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/EnviHeader.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const QByteArray minimal = "ENVI\nsamples = 4\nlines = 3\nbands = 2\ndata type = 12\ninterleave = bsq\n";

EnviHeader parsed(const QByteArray& text)
{
    EnviHeader header;
    QString error;
    EXPECT_TRUE(header.parse(text, &error)) << qPrintable(error);
    return header;
}

QString refusal(const QByteArray& text)
{
    EnviHeader header;
    header.width = 77;
    QString error;
    EXPECT_FALSE(header.parse(text, &error)) << text.constData();
    EXPECT_EQ(header.width, 77); // untouched
    return error;
}

QByteArray with(const char* line)
{
    return minimal + line + "\n";
}

QByteArray replaced(const char* from, const char* to)
{
    return QByteArray(minimal).replace(from, to);
}

} // namespace

TEST(EnviHeaderTest, ReadsTheLeast)
{
    const EnviHeader header = parsed(minimal);
    EXPECT_EQ(header.width, 4);
    EXPECT_EQ(header.height, 3);
    EXPECT_EQ(header.bands, 2);
    EXPECT_EQ(header.dataType, 12);
    EXPECT_EQ(header.interleave, EnviHeader::Interleave::Bsq);
    EXPECT_FALSE(header.bigEndian);
    EXPECT_EQ(header.headerOffset, 0);
    EXPECT_TRUE(header.wavelengths.isEmpty());
    EXPECT_EQ(header.requiredBytes(), 48);
}

TEST(EnviHeaderTest, ReadsEverythingElse)
{
    const EnviHeader header =
        parsed("\xef\xbb\xbf"
               "ENVI\r\n; a comment = of no use\r\n\r\ndescription = {\r\n  of = several\r\n  lines }\r\n"
               "SAMPLES=4\r\n Lines  =  3\r\nbands = 2\r\nheader offset = 128\r\nData   Type = 4\r\nbyte order = 1\r\n"
               "interleave = BIL\r\nwavelength units = Micrometers\r\nwavelength = {\r\n 0.51,\r\n 0.5305}\r\n"
               "map info = {x, y}\r\nfile compression = 0\r\nmajor frame offsets = {0, 0}\r\n");
    EXPECT_EQ(header.width, 4);
    EXPECT_EQ(header.height, 3);
    EXPECT_EQ(header.headerOffset, 128);
    EXPECT_TRUE(header.bigEndian);
    EXPECT_EQ(header.interleave, EnviHeader::Interleave::Bil);
    ASSERT_EQ(header.wavelengths.size(), 2);
    EXPECT_DOUBLE_EQ(header.wavelengths[0], 510);
    EXPECT_DOUBLE_EQ(header.wavelengths[1], 530.5);
    EXPECT_EQ(header.requiredBytes(), 128 + 4 * 3 * 2 * 4);
}

TEST(EnviHeaderTest, WavelengthsAreNanometresUnlessTheHeaderSaysOtherwise)
{
    EXPECT_EQ(parsed(with("wavelength = {510, 530}")).wavelengths, (QVector<double>{510, 530}));
    EXPECT_EQ(parsed(with("wavelength units = nm\nwavelength = {510, 530}")).wavelengths, (QVector<double>{510, 530}));
    EXPECT_EQ(parsed(with("wavelength units = Unknown\nwavelength = {510,530}")).wavelengths,
              (QVector<double>{510, 530}));
    // Micrometres, whose unit many programs leave out; but not the numbers of the bands.
    const auto bare = parsed(with("wavelength units = Unknown\nwavelength = {0.45, 1.5}")).wavelengths;
    ASSERT_EQ(bare.size(), 2);
    EXPECT_DOUBLE_EQ(bare[0], 450);
    EXPECT_DOUBLE_EQ(bare[1], 1500);
    EXPECT_EQ(parsed(with("wavelength = {1, 2}")).wavelengths, (QVector<double>{1, 2}));
    EXPECT_EQ(parsed(with("wavelength = {0.05, 2.5}")).wavelengths, (QVector<double>{0.05, 2.5}));
    EXPECT_EQ(parsed(with("wavelength units = nm\nwavelength = {0.45, 1.5}")).wavelengths,
              (QVector<double>{0.45, 1.5}));
    EXPECT_TRUE(parsed(with("wavelength units = Wavenumber\nwavelength = {510, 530}")).wavelengths.isEmpty());
}

TEST(EnviHeaderTest, KnowsItsTypes)
{
    struct Case
    {
        const char* type;
        int bytes;
        ORVDataTypes image;
    };
    for (const Case& c :
         {Case{"1", 1, ORVTYPE_BYTE}, Case{"2", 2, ORVTYPE_INT}, Case{"3", 4, ORVTYPE_INT}, Case{"4", 4, ORVTYPE_FLOAT},
          Case{"5", 8, ORVTYPE_DOUBLE}, Case{"12", 2, ORVTYPE_USHORT}, Case{"13", 4, ORVTYPE_DOUBLE},
          Case{"14", 8, ORVTYPE_DOUBLE}, Case{"15", 8, ORVTYPE_DOUBLE}}) {
        const EnviHeader header = parsed(replaced("type = 12", QByteArray("type = ") + c.type));
        EXPECT_EQ(header.bytesPerPixel(), c.bytes) << c.type;
        EXPECT_EQ(header.imageType(), c.image) << c.type;
    }
}

TEST(EnviHeaderTest, RefusesByLine)
{
    EXPECT_EQ(refusal(""), "line 1: the first line is not \"ENVI\"");
    EXPECT_EQ(refusal("ENVIRONMENT\n"), "line 1: the first line is not \"ENVI\"");
    EXPECT_EQ(refusal("ENVI"), "\"samples\" is missing");
    EXPECT_EQ(refusal(replaced("lines = 3\n", "")), "\"lines\" is missing");
    EXPECT_EQ(refusal(replaced("bands = 2\n", "")), "\"bands\" is missing");
    EXPECT_EQ(refusal(replaced("data type = 12\n", "")), "\"data type\" is missing");
    EXPECT_EQ(refusal(replaced("interleave = bsq\n", "")), "\"interleave\" is missing");
    EXPECT_EQ(refusal(replaced("samples = 4", "samples = 0")),
              "line 2: \"samples\" is \"0\", not a whole number from 1 to 16777216");
    EXPECT_EQ(refusal(replaced("samples = 4", "samples = 99999999999999999999")),
              "line 2: \"samples\" is \"99999999999999999999\", not a whole number from 1 to 16777216");
    EXPECT_EQ(refusal(replaced("lines = 3", "lines = 3.5")),
              "line 3: \"lines\" is \"3.5\", not a whole number from 1 to 16777216");
    EXPECT_EQ(refusal(replaced("bands = 2", "bands = -2")),
              "line 4: \"bands\" is \"-2\", not a whole number from 1 to 65536");
    EXPECT_EQ(refusal(replaced("bsq", "bsx")), "line 6: \"interleave\" is \"bsx\", not bsq, bil or bip");
    EXPECT_EQ(refusal(with("byte order = 2")), "line 7: \"byte order\" is \"2\", not a whole number from 0 to 1");
    EXPECT_EQ(refusal(with("header offset = -1")),
              "line 7: \"header offset\" is \"-1\", not a whole number from 0 to 4611686018427387904");
    EXPECT_EQ(refusal(with("a line of text")), "line 7: no \"key = value\"");
    EXPECT_EQ(refusal(with("Bands = 2")), "line 7: \"bands\" occurs twice");
    EXPECT_EQ(refusal(with("description = {never\nclosed")), "line 7: the brace of \"description\" is not closed");
    EXPECT_EQ(refusal(with("wavelength = {510}")), "line 7: 1 wavelengths for 2 bands");
    EXPECT_EQ(refusal(with("wavelength = {510, green}")), "line 7: the wavelength \"green\" is not a number");
    EXPECT_EQ(refusal(with("wavelength = {510, inf}")), "line 7: the wavelength \"inf\" is not a number");
    EXPECT_EQ(refusal(with("file compression = 1")), "line 7: compressed data are not supported");
    EXPECT_EQ(refusal(with("minor frame offsets = {0, 16}")), "line 7: \"minor frame offsets\" are not supported");
}

TEST(EnviHeaderTest, RefusesTypesThatItDoesNotKnow)
{
    for (const char* type : {"0", "6", "7", "9", "16"}) {
        EXPECT_EQ(refusal(replaced("type = 12", QByteArray("type = ") + type)),
                  QString("line 5: data type %1 is not supported (1, 2, 3, 4, 5, 12, 13, 14 and 15 are)").arg(type));
    }
}

TEST(EnviHeaderTest, RefusesMoreThanAFileCanHold)
{
    EXPECT_EQ(refusal("ENVI\nsamples = 16777216\nlines = 16777216\nbands = 65536\ndata type = 5\ninterleave = bip\n"),
              "16777216 x 16777216 pixels in 65536 bands are too many");
    // The largest that is let through does not overflow.
    const EnviHeader large =
        parsed("ENVI\nsamples = 16777216\nlines = 16777216\nbands = 2000\ndata type = 5\ninterleave = bip\n");
    EXPECT_EQ(large.requiredBytes(), Q_INT64_C(16777216) * 16777216 * 2000 * 8);
}

TEST(EnviHeaderTest, EveryShorterTextIsRefusedOrRead)
{
    for (int n = 0; n < minimal.size(); ++n) {
        EnviHeader header;
        QString error;
        const bool bRead = header.parse(minimal.left(n), &error);
        EXPECT_EQ(bRead, error.isEmpty()) << n;
        EXPECT_EQ(bRead, header.width > 0) << n;
    }
}

TEST(EnviHeaderTest, ReadsWhatAnExportNotes)
{
    const EnviHeader header = parsed(minimal + "orvia exposure seconds = {0.5, -}\norvia start = 2024-03-05T09:30:00\n"
                                               "Orvia Pixel Size Micrometres = 12.5\norvia isotope = {F-18}\n"
                                               "orvia unit = radiance\n");
    ASSERT_EQ(header.facts.size(), 2);
    EXPECT_EQ(header.facts[0].exposure, 0.5);
    EXPECT_FALSE(header.facts[1].exposure);
    EXPECT_EQ(header.facts[1].start, "2024-03-05T09:30:00.000"); // one for all
    EXPECT_EQ(header.facts[1].pixelSize, 12.5);
    EXPECT_EQ(header.facts[1].isotope, "F-18");
    EXPECT_EQ(header.facts[1].unit, "Radiance");
    EXPECT_TRUE(parsed(minimal).facts.isEmpty());
    EXPECT_TRUE(parsed(with("orvia exposure seconds = {1, 2, 3}")).facts.isEmpty());
    EXPECT_TRUE(parsed(with("orvia unit = lux")).facts.isEmpty());
}

TEST(EnviHeaderTest, TellsBadBandsTheIgnoredValueAndTheScale)
{
    const QByteArray start = "ENVI\nsamples = 2\nlines = 2\nbands = 3\ndata type = 2\ninterleave = bsq\n";
    const auto read = [&start](const QByteArray& lines) {
        EnviHeader header;
        QString error;
        EXPECT_TRUE(header.parse(start + lines, &error)) << qPrintable(error);
        return header;
    };
    EXPECT_EQ(read("bbl = {1, 0, 1.0}\n").badBands, (QVector<bool>{false, true, false}));
    EXPECT_TRUE(read("bbl = {1, 0}\n").badBands.isEmpty());
    EXPECT_TRUE(read("bbl = {0, 0, 0}\n").badBands.isEmpty()) << "nothing would be left";
    EXPECT_EQ(read("data ignore value = -9999.0\n").ignoreValue, -9999.0);
    EXPECT_TRUE(std::isnan(*read("data ignore value = NaN\n").ignoreValue));
    EXPECT_FALSE(read("").ignoreValue.has_value());
    EXPECT_EQ(read("reflectance scale factor = 10000\n").scale, 10000.0);
    EXPECT_EQ(read("reflectance scale factor = 0\n").scale, 1.0);
    EnviHeader header;
    QString error;
    EXPECT_FALSE(header.parse(start + "data ignore value = none\n", &error));
    EXPECT_EQ(error, "line 7: the data ignore value \"none\" is not a number");
    const auto wavelengths = [&read](const char* units) {
        return read("wavelength = {1, 2, 4}\nwavelength units = " + QByteArray(units) + "\n").wavelengths;
    };
    EXPECT_EQ(wavelengths("Micrometers"), (QVector<double>{1000, 2000, 4000}));
    EXPECT_EQ(wavelengths("Angstroms"), (QVector<double>{0.1, 0.2, 0.4}));
    EXPECT_EQ(wavelengths("Millimeters"), (QVector<double>{1e6, 2e6, 4e6}));
    EXPECT_EQ(wavelengths("GHz"), (QVector<double>{299792458.0, 149896229.0, 74948114.5}));
    EXPECT_TRUE(wavelengths("Index").isEmpty());
}
