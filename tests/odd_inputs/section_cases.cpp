// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"
#include "odd_inputs/OddTiff.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString clickFile = QStringLiteral("ClickInfo.txt");
const QString indexFile = QStringLiteral("SPUM.txt");
const QString soundGist = QStringLiteral("N1, 500nm, 2.5 s, 0 regions");

QByteArray sound()
{
    return OddTexts::clickInfo("N1", "500nm");
}

OddCase click(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
              const QString& says)
{
    return {"ClickInfo" + name,
            OddReaders::dataset(),
            clickFile,
            [text](const QString& path) { OddTexts::putDataset(path, text()); },
            outcome,
            says};
}

OddCase index(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
              const QString& says)
{
    return {"Index" + name, OddReaders::index(),
            indexFile,      [text](const QString& path) { putFile(path, text()); },
            outcome,        says};
}

QByteArray soundIndex()
{
    return OddTexts::sections("[SPUM] SPUM\nMenuName: SPUM_001\nFileName: SPUM_001.xml\n\n"
                              "[SPUM 2] SPUM\nMenuName: SPUM_002\nFileName: SPUM_002.xml\n");
}

QByteArray replaced(const QByteArray& what, const QByteArray& by)
{
    return sound().replace(what, by);
}

OddCases brokenClicks()
{
    using C = OddCase;
    return {
        click(
            "Empty", [] { return QByteArray(); }, C::Refused, "{path}: no section, a line \"[key] name\", in the file"),
        click(
            "OfOneZeroByte", [] { return QByteArray(1, '\0'); }, C::Refused, "{path}:1: a zero byte, this is no text"),
        click(
            "OfZeroBytes", [] { return QByteArray(4096, '\0'); }, C::Refused, "{path}:1: a zero byte, this is no text"),
        click(
            "WithZeroByteInside", [] { return replaced("dye", QByteArray("d\0e", 3)); }, C::Refused,
            "{path}:11: a zero byte, this is no text"),
        click(
            "ThatIsAnImage", [] { return OddTiff().bytes(); }, C::Refused, "{path}:1: a zero byte, this is no text"),
        click(
            "InUtf16", [] { return QByteArray("\xff\xfe[\0C\0]\0\n\0", 10); }, C::Refused,
            "{path}: the text is UTF-16; save it as UTF-8"),
        click(
            "WithoutItsNumber", [] { return replaced("ClickNumber: N1", "Comment: none"); }, C::Refused,
            "{path}: the click number is missing"),
        click(
            "WithAMillionKeys", [] { return OddTexts::many(sound(), "k%:\n", 1000000); }, C::Refused,
            "{path}:{n}: more than 200000 lines"),
        click(
            "WithAMillionSections", [] { return OddTexts::many(sound(), "[s%]\n", 1000000); }, C::Refused,
            "{path}:{n}: more than 200000 lines"),
        click(
            "OfTwentyMegabytes", [] { return sound() + QByteArray(20 << 20, 'a'); }, C::Refused,
            "{path}: cannot be read: more than 16 MiB, no text of keys is that large"),
    };
}

OddCases oddClicks()
{
    using C = OddCase;
    return {
        click(
            "WithByteOrderMark", [] { return "\xef\xbb\xbf" + sound(); }, C::Silent, soundGist),
        click(
            "InLatin1", [] { return replaced("a dye", "F\xe4rbung"); }, C::Warned,
            "{path}:11: not UTF-8, read as Latin-1"),
        click(
            "WithMixedLineEnds", [] { return replaced("\n[", "\r\n[").replace("Probe", "\rProbe"); }, C::Silent,
            soundGist),
        click(
            "WithCarriageReturnsAlone", [] { return replaced("\n", "\r"); }, C::Silent, soundGist),
        click(
            "WithDuplicateKeys",
            [] { return replaced("Emission Filter: 500nm", "Emission Filter: 500nm\nEmission Filter: 700nm"); },
            C::Silent, soundGist),
        click(
            "WithDuplicateSections",
            [] { return replaced("\n# end", "\n[luminescent image]\nEmission Filter: 700nm\n# end"); }, C::Silent,
            soundGist),
        click(
            "WithEntryAheadOfSections", [] { return replaced("[ClickNumber]", "Stray: 1\n[ClickNumber]"); }, C::Warned,
            "{path}:3: an entry before the first section, the line is skipped"),
        click(
            "WithLineThatIsNothing", [] { return replaced("Probe", "some words\nProbe"); }, C::Warned,
            "{path}:11: neither \"[section]\" nor \"key: value\", the line is skipped"),
        click(
            "WithOpenBracket", [] { return replaced("[Camera System Info]", "[Camera System Info"); }, C::Warned,
            "{path}:14: the section's key is not closed by \"]\""),
        click(
            "WithDecimalComma", [] { return replaced("2.5", "2,5"); }, C::Warned,
            "{path}: section \"luminescent image\": \"Exposure Time Sec\" is \"2,5\", which is no number"),
        click(
            "WithEndlessNumber", [] { return replaced("0.01", "1e999"); }, C::Warned,
            "{path}: section \"Camera System Info\": \"Pixel Size cm\" is \"1e999\", which is no number"),
        click(
            "WithUnknownUnit", [] { return replaced("Probe", "Native Unit: 7\nProbe"); }, C::Warned,
            "{path}: section \"luminescent image\": \"Native Unit\" is \"7\", which is no unit"),
        click(
            "With190000Keys", [] { return replaced("Probe: a dye\n", OddTexts::many("", "Key %: value\n", 190000)); },
            C::Silent, soundGist),
        click(
            "With190000Sections", [] { return replaced("\n# end", OddTexts::many("", "[s%]\n", 190000) + "\n# end"); },
            C::Silent, soundGist),
        click(
            "WithLineOf15Megabytes", [] { return replaced("a dye", QByteArray(15 << 20, 'a')); }, C::Silent, soundGist),
        click(
            "WithQuotedTextOf15Megabytes", [] { return replaced("a dye", '"' + QByteArray(15 << 20, 'a') + '"'); },
            C::Silent, soundGist),
        click(
            "With190000BrokenLines", [] { return replaced("Probe: a dye\n", OddTexts::many("", "line %\n", 190000)); },
            C::Warned, "{path}: 189950 more warnings"),
    };
}

OddCases brokenDatasets()
{
    return {
        {"DatasetWithoutImage", OddReaders::dataset(), clickFile, [](const QString& path) { putFile(path, sound()); },
         OddCase::Refused, "{dir}/luminescent.TIF: is missing"},
        {"DatasetWithFolderForImage", OddReaders::dataset(), clickFile,
         [](const QString& path) {
             putFile(path, sound());
             QDir().mkpath(QFileInfo(path).path() + QStringLiteral("/luminescent.TIF"));
         },
         OddCase::Refused, "{dir}/luminescent.TIF: is missing"},
        {"DatasetWithEmptyImage", OddReaders::dataset(), clickFile,
         [](const QString& path) {
             putFile(path, sound());
             putFile(QFileInfo(path).path() + QStringLiteral("/luminescent.TIF"), QByteArray());
         },
         OddCase::Refused, "{dir}/luminescent.TIF: the file is empty"},
        {"DatasetWithBrokenPhotograph", OddReaders::dataset(), clickFile,
         [](const QString& path) {
             OddTexts::putDataset(path, sound());
             putFile(QFileInfo(path).path() + QStringLiteral("/photograph.TIF"), "not a picture");
         },
         OddCase::Warned, "{dir}/photograph.TIF: not a readable TIFF file ({...})"},
    };
}

OddCases indexCases()
{
    using C = OddCase;
    const QString gist = QStringLiteral("2 results, next SPUM_003");
    return {
        index(
            "Empty", [] { return QByteArray(); }, C::Silent, "0 results, next SPUM_001"),
        index(
            "WithByteOrderMark", [] { return "\xef\xbb\xbf" + soundIndex(); }, C::Silent, gist),
        index(
            "WithMixedLineEnds", [] { return soundIndex().replace("xml\n", "xml\r\n"); }, C::Silent, gist),
        index(
            "WithDuplicateNames", [] { return soundIndex().replace("SPUM_002\n", "SPUM_001\n"); }, C::Silent,
            "2 results, next SPUM_002"),
        index(
            "WithLineThatIsNothing", [] { return soundIndex().replace("[SPUM 2]", "words\n[SPUM 2]"); }, C::Refused,
            "{path}:7: neither \"[section]\" nor \"key: value\", the line is skipped"),
        index(
            "WithAMillionKeys", [] { return OddTexts::many(soundIndex(), "k%:\n", 1000000); }, C::Refused,
            "{path}:{n}: more than 200000 lines"),
        index(
            "With60000Results",
            [] {
                return OddTexts::sections(OddTexts::many("", "[SPUM %]\nMenuName: SPUM_%\nFileName: %.xml\n", 60000));
            },
            C::Silent, "60000 results, next "),
    };
}

} // namespace

OddCases sectionCases()
{
    const QString cut = QStringLiteral("{path}:{n}: the file is cut off here, its last line \"# end\" is missing");
    OddCases cases =
        cutAtEachTenth("ClickInfo", OddReaders::dataset(), clickFile, sound(), std::vector<QString>(9, cut));
    OddCases index =
        cutAtEachTenth("Index", OddReaders::index(), indexFile, soundIndex(), std::vector<QString>(9, cut));
    // Within the line that tells that there must be a last one.
    index.front().says = QStringLiteral("{path}:1: no section, a line \"[key] name\", in the file");
    for (const OddCases& more : {index, brokenClicks(), oddClicks(), brokenDatasets(), indexCases()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
