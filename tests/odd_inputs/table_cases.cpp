// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"

namespace {

using C = OddCase;

const QString libraryFile = QStringLiteral("dyes.csv");

OddCase reference(const QByteArray& name, const char* file, const std::function<QByteArray()>& text,
                  OddCase::Outcome outcome, const QString& says)
{
    return {"ReferenceTable" + name,
            OddReaders::referenceTables(),
            QLatin1String(file),
            [text](const QString& path) { putFile(path, text()); },
            outcome,
            says};
}

OddCase library(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
                const QString& says)
{
    return {"Library" + name, OddReaders::library(),
            libraryFile,      [text](const QString& path) { putFile(path, text()); },
            outcome,          says};
}

QByteArray dyes(const QByteArray& what, const QByteArray& by)
{
    return OddTexts::library().replace(what, by);
}

const char* const sources = "luminescent_sources.csv";
const QByteArray twoSources = "wavelength_nm,A Em,B Em\n500,0.5,0.25\n510,1,0.5\n520,0.5,1\n";
const QByteArray isotopes = "isotope,half_life_s,cherenkov\nF-18,6584,yes\n";
const QString notNumbers = QStringLiteral("{path}:{n}: not numbers with an ascending wavelength");

} // namespace

OddCases referenceTableCases()
{
    const QString columns = QStringLiteral("{path}: the columns must begin with %1");
    const auto spoiled = [](const QByteArray& what, const QByteArray& by) {
        return [what, by] { return QByteArray(twoSources).replace(what, by); };
    };
    OddCases cases{
        reference(
            "Sound", sources, [] { return twoSources; }, C::Silent, "2 entries"),
        reference(
            "Empty", sources, [] { return QByteArray(); }, C::Warned, "{path}: holds no table"),
        reference(
            "OfZeroBytes", sources, [] { return QByteArray(64, '\0'); }, C::Warned,
            "{path}:1: a zero byte, this is no text"),
        reference("InLatin1", sources, spoiled("A Em", "Gr\xfcn Em"), C::Warned,
                  "{path}:1: not UTF-8, read as Latin-1"),
        reference(
            "WithByteOrderMark", sources, [] { return "\xef\xbb\xbf" + twoSources; }, C::Silent, "2 entries"),
        reference("WithMixedLineEnds", sources, spoiled("510,1,0.5\n", "510,1,0.5\r\n"), C::Silent, "2 entries"),
        reference("WithCarriageReturnsAlone", sources, spoiled("\n", "\r"), C::Silent, "2 entries"),
        reference("OfOtherColumns", sources, spoiled("wavelength_nm", "lambda"), C::Warned,
                  columns.arg("wavelength_nm")),
        reference("WithDuplicateColumns", sources, spoiled("B Em", "A Em"), C::Warned,
                  "{path}: column 3 has no name of its own (\"A Em\")"),
        reference("WithNegativeWavelength", sources, spoiled("500", "-500"), C::Warned, notNumbers),
        reference("WithDecimalCommas", sources, spoiled("0.25", "0,25"), C::Warned, "{path}:2: 4 cells where 3 belong"),
        reference("WithNumberThatIsNone", sources, spoiled("0.25", "inf"), C::Warned, notNumbers),
        reference(
            "WithAMillionRows", sources, [] { return OddTexts::many("wavelength_nm,A Em\n", "%,1\n", 1000000); },
            C::Warned, "{path}: more than 4 MiB, no table is that large"),
        reference(
            "WithAMillionColumns", sources, [] { return OddTexts::many("wavelength_nm", ",c%", 1000000); }, C::Warned,
            "{path}: more than 4 MiB, no table is that large"),
        reference(
            "With200000Rows", sources, [] { return OddTexts::many("wavelength_nm,A Em\n", "%,1\n", 200000); },
            C::Warned, "{path}:100002: more than 100000 rows"),
        reference(
            "With200000Columns", sources, [] { return OddTexts::many("wavelength_nm", ",c%", 200000); }, C::Warned,
            "{path}:1: more than 10000 columns"),
        reference(
            "OfTwentyMegabytes", sources, [] { return twoSources + QByteArray(20 << 20, '1'); }, C::Warned,
            "{path}: more than {n} MiB, no table is that large"),
        reference(
            "With100000BrokenRows", sources, [] { return OddTexts::many(twoSources, "x\n", 100000); }, C::Warned,
            "{path}: {n} more problems"),
        reference(
            "OfNegativeHalfLife", "isotopes.csv", [] { return isotopes + "X,-5,yes\n"; }, C::Warned,
            "{path}:3: not a name, a half life in seconds, and yes or no"),
        reference(
            "OfIsotopeTwice", "isotopes.csv", [] { return isotopes + "F-18,7000,yes\n"; }, C::Silent, "1 entries"),
        reference(
            "Of90000Isotopes", "isotopes.csv", [] { return OddTexts::many(isotopes, "X-%,5,no\n", 90000); }, C::Silent,
            "90001 entries"),
        reference(
            "OfShortTissueRow", "tissues.csv",
            [] {
                return QByteArray("tissue,wavelength_nm,absorption_per_cm,reduced_scattering_per_cm\nfat,500,0.1\n");
            },
            C::Warned, "{path}:2: 3 cells where 4 belong"),
    };
    const OddCases cut = cutAtEachTenth(
        "ReferenceTable", OddReaders::referenceTables(), QLatin1String(sources), twoSources,
        {"warning: " + columns.arg("wavelength_nm"), "warning: " + columns.arg("wavelength_nm"),
         "warning: {path}: A E has no figures", "warning: {path}: B E has no figures",
         "warning: {path}:2: 2 cells where 3 belong", "ok: 2 entries", "warning: {path}:3: 1 cells where 3 belong",
         "ok: 2 entries", "warning: {path}:4: 2 cells where 3 belong"});
    cases.insert(cases.end(), cut.begin(), cut.end());
    return cases;
}

OddCases libraryCases()
{
    const QString noLibrary =
        QStringLiteral("{path}: this is no spectrum library (lines \"$,NumSpec,n\", \"$,Color,...\", "
                       "\"Excitation,Emission,names...\", then one line a pair)");
    const QString none = QStringLiteral("{path}: the library holds no spectrum");
    const QString empty = QStringLiteral(
        "{path}: the library holds no value; it takes a line \"Excitation,Emission,names...\" and behind it "
        "one line a pair");
    const auto lacks = [](const char* name, const char* pairs) {
        return QStringLiteral("{path}: the spectrum \"%1\" has no value for %2")
            .arg(QLatin1String(name), QLatin1String(pairs));
    };
    OddCases cases{
        library(
            "Sound", [] { return OddTexts::library(); }, C::Silent, "A B"),
        library(
            "Empty", [] { return QByteArray(); }, C::Refused, none),
        library(
            "OfZeroBytes", [] { return QByteArray(64, '\0'); }, C::Refused, none),
        library(
            "WithByteOrderMark", [] { return "\xef\xbb\xbf" + OddTexts::library(); }, C::Silent, "A B"),
        library(
            "WithMixedLineEnds", [] { return dyes("A,B\n", "A,B\r\n"); }, C::Silent, "A B"),
        library(
            "WithNegativeCount", [] { return dyes("NumSpec,2", "NumSpec,-2"); }, C::Refused, noLibrary),
        library(
            "WithHugeCount", [] { return dyes("NumSpec,2", "NumSpec,2000000000"); }, C::Refused, noLibrary),
        library(
            "OfTenThousandSpectra",
            [] {
                const QByteArray color = "$,Color" + QByteArray(",red").repeated(10000);
                return "$,NumSpec,10000\n" + color + "\nExcitation,Emission" + QByteArray(",A").repeated(10000) + "\n" +
                       "Open,500nm" + QByteArray(",1").repeated(10000) + "\nOpen,520nm" +
                       QByteArray(",1").repeated(10000) + "\n";
            },
            C::Silent, "A A A A A"),
        library(
            "WithTooFewColours", [] { return dyes("red,blue", "red"); }, C::Refused, noLibrary),
        library(
            "WithDuplicatePairs", [] { return dyes("Open,540nm,0.3", "Open,500nm,0.9"); }, C::Silent, "A B"),
        library(
            "WithoutAPair", [] { return dyes("520nm", "521nm"); }, C::Refused, lacks("A", "Open/520nm")),
        library(
            "WithNumberThatIsNone", [] { return dyes("0.25", "nan"); }, C::Refused,
            "{path}: the spectrum \"B\" holds a value that is not a number"),
        library(
            "OfDarkness", [] { return dyes("0.1\n", "-1\n").replace("0.25", "0"); }, C::Refused,
            "{path}: the spectrum \"B\" has no value above 0 at the selected images"),
        library(
            "WithNothingSelected", [] { return dyes("Select,1,1", "Select,0,0"); }, C::Refused,
            "{path}: no spectrum of the library is selected"),
        library(
            "WithAMillionRows", [] { return OddTexts::many(OddTexts::library(), "Open,%,1,1\n", 900000); }, C::Refused,
            "{path}: more than 100000 lines, no library is that long"),
        library(
            "OfTwentyMegabytes", [] { return OddTexts::library() + QByteArray(20 << 20, 'a'); }, C::Refused,
            "{path}: more than {n} MiB, no library is that large"),
    };
    const OddCases cut =
        cutAtEachTenth("Library", OddReaders::library(), libraryFile, OddTexts::library(),
                       {none, empty, empty, empty, empty, empty, empty, lacks("A", "Open/520nm"), "ok: A B"});
    cases.insert(cases.end(), cut.begin(), cut.end());
    return cases;
}
