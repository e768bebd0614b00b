// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"
#include "odd_inputs/OddTiff.h"

#include <QFile>
#include <QFileInfo>

namespace {

using C = OddCase;

const QString tableFile = QStringLiteral("images.csv");
const QString headerFile = QStringLiteral("cube.hdr");
const QString cubeFile = QStringLiteral("cube.csv");
const QString enviGist = QStringLiteral("32 x 32, 0.5 to 0.5");
constexpr int cubeBytes = 2 * 32 * 32 * 4;

OddCase table(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
              const QString& says)
{
    return {"ImagesTable" + name,
            OddReaders::table(),
            tableFile,
            [text](const QString& path) { putFile(path, text()); },
            outcome,
            says};
}

QByteArray rows(const QByteArray& what, const QByteArray& by)
{
    return OddTexts::imagesTable().replace(what, by);
}

// A header, with sound data beside it or with as many bytes of nothing.
OddCase envi(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
             const QString& says, qint64 bytes = 0)
{
    return {"Envi" + name,
            OddReaders::envi(),
            headerFile,
            [text, bytes](const QString& path) {
                putFile(path, text());
                const QString data = QFileInfo(path).path() + QStringLiteral("/cube.dat");
                putFile(data, QByteArray("\0\0\0\x3f", 4).repeated(cubeBytes / 4));
                if (bytes > 0) {
                    QFile::resize(data, bytes); // a hole, which takes no room
                }
            },
            outcome,
            says};
}

QByteArray header(const QByteArray& what, const QByteArray& by)
{
    return OddTexts::enviHeader().replace(what, by);
}

OddCase csv(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
            const QString& says)
{
    return {"CsvCube" + name, OddReaders::csvCube(),
            cubeFile,         [text](const QString& path) { putFile(path, text()); },
            outcome,          says};
}

QByteArray cube(const QByteArray& what, const QByteArray& by)
{
    return OddTexts::csvCube().replace(what, by);
}

OddCases enviHeaders()
{
    return {
        envi(
            "Sound", [] { return OddTexts::enviHeader(); }, C::Silent, enviGist),
        envi(
            "Empty", [] { return QByteArray(); }, C::Refused, "{path}: line 1: the first line is not \"ENVI\""),
        envi(
            "OfZeroBytes", [] { return QByteArray(256, '\0'); }, C::Refused,
            "{path}: line 1: the first line is not \"ENVI\""),
        envi(
            "WithByteOrderMark", [] { return "\xef\xbb\xbf" + OddTexts::enviHeader(); }, C::Silent, enviGist),
        envi(
            "WithMixedLineEnds", [] { return header("\nlines", "\r\nlines").replace("\nbands", "\rbands"); }, C::Silent,
            enviGist),
        envi(
            "InLatin1", [] { return header("a cube", "W\xfcrfel"); }, C::Silent, enviGist),
        envi(
            "OfNegativeSize", [] { return header("lines = 32", "lines = -32"); }, C::Refused,
            "{path}: line 5: \"lines\" is \"-32\", not a whole number from 1 to 16777216"),
        envi(
            "OfSizeBeyondNumbers", [] { return header("lines = 32", "lines = 99999999999999999999"); }, C::Refused,
            "{path}: line 5: \"lines\" is \"99999999999999999999\", not a whole number from 1 to 16777216"),
        envi(
            "OfHugeSize",
            [] { return header("lines = 32", "lines = 16000000").replace("samples = 32", "samples = 16000000"); },
            C::Refused, "{dir}/cube.dat: the file has 8192 bytes where its header asks for 2048000000000000"),
        envi(
            "OfSixteenMillionBands",
            [] {
                return header("bands = 2", "bands = 16000000")
                    .replace("= 32", "= 1")
                    .replace("data type = 4", "data type = 1")
                    .replace("wavelength =", "w =");
            },
            C::Refused, "{path}: line 6: \"bands\" is \"16000000\", not a whole number from 1 to {n}", 16000000),
        envi(
            "WithNegativeOffset", [] { return header("offset = 0", "offset = -8"); }, C::Refused,
            "{path}: line 7: \"header offset\" is \"-8\", not a whole number from 0 to {n}"),
        envi(
            "OfUnknownType", [] { return header("type = 4", "type = 6"); }, C::Refused,
            "{path}: line 8: data type 6 is not supported (1, 2, 3, 4, 5, 12, 13, 14 and 15 are)"),
        envi(
            "WithDuplicateKeys", [] { return header("bands = 2", "bands = 2\nBands = 3"); }, C::Refused,
            "{path}: line 7: \"bands\" occurs twice"),
        envi(
            "WithThreeWavelengthsForTwo", [] { return header("520}", "520, 540}"); }, C::Refused,
            "{path}: line 11: 3 wavelengths for 2 bands"),
        envi(
            "WithOpenBrace", [] { return header("520}", "520"); }, C::Refused,
            "{path}: line 11: the brace of \"wavelength\" is not closed"),
        envi(
            "WithAMillionKeys", [] { return OddTexts::many(OddTexts::enviHeader(), "k%=v\n", 1000000); }, C::Refused,
            "{path}: line {n}: more than {n} lines"),
        envi(
            "WithValueOf15Megabytes", [] { return header("a cube", QByteArray(15 << 20, 'a')); }, C::Silent, enviGist),
        envi(
            "OfTwentyMegabytes", [] { return header("a cube", QByteArray(20 << 20, 'a')); }, C::Refused,
            "{path}: the file is too large for a header"),
        envi(
            "WithDataElsewhere", [] { return header("bands", "data file = ../none.dat\nbands"); }, C::Refused,
            "{path}: the data file ../none.dat lies outside {dir}; --follow reads it all the same"),
        envi(
            "WithDataThatAreItself", [] { return header("bands", "data file = cube.hdr\nbands"); }, C::Refused,
            "{path}: the file has {n} bytes where its header asks for 8192"),
    };
}

OddCases enviData()
{
    OddCases cases;
    for (int tenths = 0; tenths < 10; ++tenths) {
        cases.push_back({"EnviDataCutAt" + QByteArray::number(10 * tenths) + "Percent", OddReaders::envi(), headerFile,
                         [tenths](const QString& path) {
                             putFile(path, OddTexts::enviHeader());
                             putFile(QFileInfo(path).path() + QStringLiteral("/cube.dat"),
                                     QByteArray(cubeBytes * tenths / 10, 'a'));
                         },
                         C::Refused, "{dir}/cube.dat: the file has {n} bytes where its header asks for 8192"});
    }
    cases.push_back({"EnviWithoutData", OddReaders::envi(), headerFile,
                     [](const QString& path) { putFile(path, OddTexts::enviHeader()); }, C::Refused,
                     "{path}: no data file of that name lies beside the header"});
    cases.push_back({"EnviWithTwoFilesOfData", OddReaders::envi(), headerFile,
                     [](const QString& path) {
                         putFile(path, OddTexts::enviHeader());
                         putFile(QFileInfo(path).path() + QStringLiteral("/cube.dat"), "1");
                         putFile(QFileInfo(path).path() + QStringLiteral("/cube.img"), "1");
                     },
                     C::Refused, "{path}: several files could hold the data: cube.dat, cube.img; give the one meant"});
    return cases;
}

OddCases enviHeaderCuts()
{
    const auto missing = [](const char* key) {
        return QStringLiteral("{path}: \"%1\" is missing").arg(QLatin1String(key));
    };
    const auto noEntry = [](int line) { return QStringLiteral("{path}: line %1: no \"key = value\"").arg(line); };
    OddCases cases =
        cutAtEachTenth("EnviHeader", OddReaders::envi(), headerFile, OddTexts::enviHeader(),
                       {missing("samples"), "{path}: line 2: the brace of \"description\" is not closed",
                        missing("lines"), "{path}: line 6: \"bands\" is \"\", not a whole number from 1 to {n}",
                        missing("data type"), noEntry(9), noEntry(10), noEntry(11), noEntry(12)});
    for (OddCase& oddCase : cases) {
        const auto put = oddCase.make;
        oddCase.make = [put](const QString& path) {
            put(path);
            putFile(QFileInfo(path).path() + QStringLiteral("/cube.dat"),
                    QByteArray("\0\0\0\x3f", 4).repeated(cubeBytes / 4));
        };
    }
    return cases;
}

OddCases csvCubes()
{
    return {
        csv(
            "Sound", [] { return OddTexts::csvCube(); }, C::Silent, "4 x 4, 1.125 to 1.125"),
        csv(
            "Empty", [] { return QByteArray(); }, C::Refused,
            "{path}:1: the first line is not \"x,y\" and a name an image: this is no cube"),
        csv(
            "WithByteOrderMark", [] { return "\xef\xbb\xbf" + OddTexts::csvCube(); }, C::Silent,
            "4 x 4, 1.125 to 1.125"),
        csv(
            "WithMixedLineEnds", [] { return cube("2,2,10.25,1.125\n", "2,2,10.25,1.125\r\n"); }, C::Silent,
            "4 x 4, 1.125 to 1.125"),
        csv(
            "WithCarriageReturnsAlone", [] { return cube("\n", "\r"); }, C::Refused,
            "{path}:1: the lines end with carriage returns alone; save the file with LF or CR LF"),
        csv(
            "WithZeroByte", [] { return cube("3,2,10.25", QByteArray("3,2,1\0.25", 9)); }, C::Refused,
            "{path}:13: \"1\" is not a number"),
        csv(
            "WithDecimalCommas", [] { return cube("10.25", "10,25"); }, C::Refused,
            "{path}:2: 5 fields where the first line names 4"),
        csv(
            "WithPixelOutOfOrder", [] { return cube("\n2,1,", "\n7,1,"); }, C::Refused,
            "{path}:8: pixel 7, 1 comes where pixel 2, 1 is due"),
        csv(
            "WithNegativePlace", [] { return cube("\n0,0,", "\n-1,0,"); }, C::Refused,
            "{path}:2: pixel -1, 0 comes where pixel 0, 0 is due"),
        csv(
            "WithEndlessNumber", [] { return cube("\n0,0,10.25", "\n0,0,1e999"); }, C::Refused,
            "{path}:2: \"1e999\" is not a number"),
        csv(
            "WithHeaderOfTwoMegabytes", [] { return "x,y," + QByteArray(2 << 20, 'a') + "\n0,0,1\n"; }, C::Refused,
            "{path}:1: the line is longer than {n} bytes"),
        csv(
            "WithHalfAMillionColumns",
            [] { return "x,y" + QByteArray(500000, ',') + "\n0,0" + QByteArray(",1").repeated(500000) + "\n"; },
            C::Refused, "{path}:1: {n} images are too many, {n} at most"),
    };
}

OddCases csvCubeCuts()
{
    const QString fields = QStringLiteral("{path}:%1: %2 fields where the first line names 4");
    const QString ends = QStringLiteral("{path}:%1: the last row of the image ends after %2 of 4 pixels");
    // Cut in its first pixel, a cube of one pixel is left.
    return cutAtEachTenth("CsvCube", OddReaders::csvCube(), cubeFile, OddTexts::csvCube(),
                          {"ok: 1 x 1, 1 to 1", fields.arg(4).arg(3), fields.arg(6).arg(1), ends.arg(7).arg(2),
                           fields.arg(9).arg(3), fields.arg(11).arg(2), ends.arg(12).arg(3), fields.arg(14).arg(3),
                           fields.arg(16).arg(3)});
}

OddCases tables()
{
    return {
        table(
            "Sound", [] { return OddTexts::imagesTable(); }, C::Silent, "3 rows"),
        table(
            "Empty", [] { return QByteArray(); }, C::Refused, "{path}: the table names no image"),
        table(
            "OfItsFirstLineAlone", [] { return QByteArray("file,emission\n"); }, C::Refused,
            "{path}: the table names no image"),
        table(
            "OfZeroBytes", [] { return QByteArray(64, '\0'); }, C::Refused, "{path}:1: the text is not UTF-8"),
        table(
            "InLatin1", [] { return rows("cells_01", "gr\xfcn_01"); }, C::Refused, "{path}:3: the text is not UTF-8"),
        table(
            "InUtf16",
            [] {
                return QByteArray("\xff\xfe"
                                  "f\0i\0",
                                  6);
            },
            C::Refused, "{path}:1: the text is not UTF-8"),
        table(
            "WithByteOrderMark", [] { return "\xef\xbb\xbf" + OddTexts::imagesTable(); }, C::Silent, "3 rows"),
        table(
            "WithMixedLineEnds", [] { return rows("510\n", "510\r\n"); }, C::Silent, "3 rows"),
        table(
            "WithCarriageReturnsAlone", [] { return rows("\n", "\r"); }, C::Silent, "3 rows"),
        table(
            "WithDuplicateColumns", [] { return rows("excitation", "emission"); }, C::Refused,
            "{path}:1: the column \"emission\" occurs twice"),
        table(
            "WithUnknownColumn", [] { return rows("excitation", "colour"); }, C::Warned,
            "the column \"colour\" is passed over"),
        table(
            "WithoutFigures", [] { return QByteArray("file\na.tif\n"); }, C::Refused,
            "{path}:1: the first line names no column \"excitation\", \"emission\", \"time\" or \"channel\""),
        table(
            "WithNegativePage", [] { return QByteArray("page,emission\n-1,500\n"); }, C::Refused,
            "{path}:2: the page \"-1\" is not a whole number from 1 on"),
        table(
            "WithPageBeyondNumbers", [] { return QByteArray("page,emission\n99999999999,500\n"); }, C::Refused,
            "{path}:2: the page \"99999999999\" is not a whole number from 1 on"),
        table(
            "WithNumberThatIsNone", [] { return rows("530", "nan"); }, C::Refused,
            "{path}:3: the emission \"nan\" is not a number"),
        table(
            "WithOpenQuote", [] { return rows("cells_01", "\"cells_01"); }, C::Refused,
            "{path}:3: a quote is not closed"),
        table(
            "WithTooManyFields", [] { return rows("530", "530,9"); }, C::Refused,
            "{path}:3: 4 fields where the first line names 3 columns"),
        table(
            "WithAMillionRows", [] { return OddTexts::many("page,emission\n", "%,500\n", 1000000); }, C::Refused,
            "{path}:{n}: more than {n} images"),
        table(
            "WithAMillionColumns", [] { return OddTexts::many("emission", ",c%", 1000000); }, C::Refused,
            "{path}:1: more than {n} columns"),
        table(
            "OfTwentyMegabytes", [] { return rows("cells_01", QByteArray(20 << 20, 'a')); }, C::Refused,
            "{path}: the file is too large for a table of images"),
        table(
            "WithFieldOf15Megabytes", [] { return rows("cells_01", QByteArray(15 << 20, 'a')); }, C::Silent, "3 rows"),
    };
}

OddCases tableCuts()
{
    const QString none = QStringLiteral("{path}: the table names no image");
    return cutAtEachTenth(
        "ImagesTable", OddReaders::table(), tableFile, OddTexts::imagesTable(),
        {"{path}:1: the first line names no column \"excitation\", \"emission\", \"time\" or \"channel\"", none,
         "ok: 1 rows", "ok: 1 rows", "ok: 1 rows", "ok: 2 rows", "ok: 2 rows", "ok: 3 rows", "ok: 3 rows"});
}

} // namespace

OddCases imagesTableCases()
{
    OddCases cases = tables();
    const OddCases more = tableCuts();
    cases.insert(cases.end(), more.begin(), more.end());
    return cases;
}

OddCases cubeCases()
{
    OddCases cases = enviHeaders();
    for (const OddCases& more : {enviData(), enviHeaderCuts(), csvCubes(), csvCubeCuts()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
