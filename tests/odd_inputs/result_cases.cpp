// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"
#include "odd_inputs/OddTiff.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

using C = OddCase;

const QString file = QStringLiteral("spum/summary.json");

OddCase summary(const QByteArray& name, const OddReader& read, const std::function<QByteArray()>& text,
                OddCase::Outcome outcome, const QString& says)
{
    return {"Result" + name, read, file, [text](const QString& path) { OddTexts::putResult(path, text()); },
            outcome,         says};
}

OddCase compared(const QByteArray& name, const std::function<QByteArray()>& text, const QString& says)
{
    return summary(name, OddReaders::result(), text, C::Refused, says);
}

OddCase measured(const QByteArray& name, const std::function<QByteArray()>& text, const QString& says)
{
    return summary("Maps" + name, OddReaders::maps(), text, C::Refused, says);
}

// A sound result of which one file is spoiled.
OddCase spoiled(const QByteArray& name, const char* beside, const std::function<QByteArray()>& bytes,
                OddCase::Outcome outcome, const QString& says)
{
    return {"Result" + name,
            OddReaders::result(),
            file,
            [beside, bytes](const QString& path) {
                OddTexts::putResult(path, OddTexts::summary());
                putFile(QFileInfo(path).path() + QLatin1Char('/') + QLatin1String(beside), bytes());
            },
            outcome,
            says};
}

QByteArray replaced(const QByteArray& what, const QByteArray& by)
{
    return OddTexts::summary().replace(what, by);
}

} // namespace

OddCases resultCases()
{
    const QString noComponents = QStringLiteral("{path} names no components");
    const QString broken = QStringLiteral("{path}:{n}: this is no JSON: {...}");
    OddCases cases{
        summary(
            "Sound", OddReaders::result(), [] { return OddTexts::summary(); }, C::Silent, "A B"),
        summary(
            "MapsSound", OddReaders::maps(), [] { return OddTexts::summary(); }, C::Silent, "A B"),
        compared(
            "SummaryEmpty", [] { return QByteArray(); }, broken),
        compared(
            "SummaryOfZeroBytes", [] { return QByteArray(64, '\0'); }, broken),
        compared(
            "SummaryInLatin1", [] { return replaced("\"A\"", "\"gr\xfcn\""); }, broken),
        summary(
            "SummaryWithByteOrderMark", OddReaders::result(), [] { return "\xef\xbb\xbf" + OddTexts::summary(); },
            C::Silent, "A B"),
        compared(
            "SummaryOfOtherKind", [] { return QByteArray("[1, 2, 3]"); }, noComponents),
        compared(
            "SummaryWithComponentsOfOtherKind", [] { return QByteArray("{\"components\": 7}"); }, noComponents),
        compared(
            "SummaryNestedAMillionDeep", [] { return QByteArray(1000000, '['); }, broken),
        compared(
            "SummaryWithAMillionKeys", [] { return OddTexts::many("{\"a\": 0", ", \"k%\": 0", 1000000) + "}"; },
            "{path}: more than {n} MiB, no summary is that large"),
        compared(
            "SummaryOfTwentyMegabytes", [] { return OddTexts::summary() + QByteArray(20 << 20, ' '); },
            "{path}: more than {n} MiB, no summary is that large"),
        compared(
            "WithMapOutside", [] { return replaced("01_A.tif", "../../01_X.tif"); },
            "{dir}/01_X.tif: the map is not there"),
        compared(
            "WithoutAMap", [] { return replaced("01_A.tif", "03_C.tif"); }, "{dir}/03_C.tif: the map is not there"),
        compared(
            "WithAComponentMore",
            [] { return replaced("{\"name\": \"B\"", "{\"name\": \"C\", \"map\": \"02_B.tif\"}, {\"name\": \"B\""); },
            "{dir}/spectra.csv does not hold one spectrum a component"),
        measured(
            "WithoutBinning", [] { return replaced("\"binning\": 4", "\"binning\": null"); },
            "{path} does not tell the binning of the maps"),
        measured(
            "OfNegativeBinning", [] { return replaced("\"binning\": 4", "\"binning\": -4"); },
            "{path} does not tell the binning of the maps"),
        measured(
            "WithoutMaps", [] { return QByteArray("{\"binning\": 4}"); }, "{path} names no maps"),
        measured(
            "OfBrokenSummary", [] { return QByteArray("{\"binning\": "); }, broken),
        spoiled(
            "WithBrokenMap", "02_B.tif", [] { return QByteArray("II*\0", 4); }, C::Refused,
            "{dir}/02_B.tif: not a readable TIFF file ({...})"),
        spoiled(
            "WithMapOfAnotherSize", "02_B.tif",
            [] {
                return OddTiff()
                    .set(OddTiff::Height, OddTiff::Short, {4})
                    .set(OddTiff::RowsPerStrip, OddTiff::Short, {4})
                    .setBlocks({QByteArray(256, 'a')})
                    .bytes();
            },
            C::Refused, "{dir}/02_B.tif: the map is of another size than the others"),
        spoiled(
            "WithBrokenSpectra", "spectra.csv", [] { return QByteArray("$,NumSpec,2\n$,Color,red\n"); }, C::Refused,
            "{dir}/spectra.csv: this is no spectrum library ({...})"),
        spoiled(
            "WithBrokenMask", "mask.png", [] { return QByteArray("\x89PNG\r\n\x1a\n", 8); }, C::Refused,
            "{dir}/mask.png: the mask is broken or cut short"),
        spoiled(
            "WithMaskOfAnotherSize", "mask.png", [] { return OddTexts::onePixelPng(); }, C::Refused,
            "{dir}/mask.png: the mask has 1 x 1 pixels where the maps have 32 x 32"),
        {"ResultWithoutSummary", OddReaders::result(), file,
         [](const QString& path) {
             OddTexts::putResult(path, OddTexts::summary());
             QFile::remove(path);
         },
         C::Refused, "{dir}: this is no folder with results of \"spum unmix\""},
        {"ResultWithFolderForSummary", OddReaders::result(), file, [](const QString& path) { QDir().mkpath(path); },
         C::Refused, "{path}: not a file"},
    };
    OddCases cut = cutAtEachTenth("FitStatistics", OddReaders::result(), file, OddTexts::summary(),
                                  std::vector<QString>(9, broken));
    for (OddCase& oddCase : cut) {
        const auto put = oddCase.make;
        oddCase.make = [put](const QString& path) {
            OddTexts::putResult(path, QByteArray());
            put(path);
        };
    }
    cases.insert(cases.end(), cut.begin(), cut.end());
    return cases;
}
