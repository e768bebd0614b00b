// SPDX-License-Identifier: GPL-3.0-or-later
// Saved results: the index, the documents, and what the program makes of both.
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <sys/stat.h>

namespace {

using C = OddCase;

const QString gist = QStringLiteral("odd: A B, 3 images, 2 properties, 0 regions");

QByteArray replaced(const QByteArray& what, const QByteArray& by)
{
    return OddTexts::savedResult().replace(what, by);
}

// The document without its first line, which tells the encoding.
QByteArray undeclared()
{
    const QByteArray text = OddTexts::savedResult();
    return text.mid(text.indexOf('\n') + 1);
}

// The first generation of the document.
QByteArray old()
{
    return "<SpectralUnmixingResults Version=\"1.1\"><SeqDataset id=\"odd\"/>"
           "<MCRParams Components=\"2\"/><SpectrumPlots><a SpectrumType=\"2\" SpectrumLabel=\"A\"/></SpectrumPlots>"
           "<ConcProfiles Total.Rows=\"1\" Total.Cols=\"1\"><a Text.Data=\"000000000000F03F\"/></ConcProfiles>"
           "</SpectralUnmixingResults>";
}

// Each entity ten times the one before.
QByteArray laughs()
{
    QByteArray text = "<?xml version=\"1.0\"?>\n<!DOCTYPE a [<!ENTITY e0 \"<b/>\">\n";
    for (int i = 1; i < 10; ++i) {
        text += "<!ENTITY e" + QByteArray::number(i) + " \"" + ("&e" + QByteArray::number(i - 1) + ";").repeated(10) +
                "\">\n";
    }
    return text + "]><SpectralUnmixingResults Version=\"2\"><Results>&e9;</Results></SpectralUnmixingResults>";
}

OddCase document(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
                 const QString& says)
{
    return {"ComparedResult" + name,
            OddReaders::savedResult(),
            "SPUM-20240131-235959.xml",
            [text](const QString& path) { putFile(path, text()); },
            outcome,
            says};
}

OddCases documents()
{
    const QString other = QStringLiteral("{path}: this is no saved result (a version of 1.1 at least)");
    const QString wrong = QStringLiteral("{path}: line {n}, column {n}: {...}");
    return {
        document("Sound", OddTexts::savedResult, C::Silent, gist),
        document("OfFirstGeneration", old, C::Silent, "odd: , 0 images, 0 properties, 0 regions"),
        document(
            "Empty", [] { return QByteArray(); }, C::Refused, wrong),
        document(
            "OfZeroBytes", [] { return QByteArray(4096, '\0'); }, C::Refused, wrong),
        document(
            "WithZeroByte", [] { return replaced("Block", QByteArray("Blo\0k", 5)); }, C::Silent, gist),
        document(
            "OfAnotherKind", [] { return QByteArray("<html><body/></html>"); }, C::Refused, other),
        document(
            "OfVersionOne", [] { return replaced("Version=\"2\"", "Version=\"1\""); }, C::Refused, other),
        document(
            "OfVersionThatIsNoNumber", [] { return replaced("Version=\"2\"", "Version=\"nan\""); }, C::Refused, other),
        document(
            "WithByteOrderMark", [] { return "\xef\xbb\xbf" + OddTexts::savedResult(); }, C::Silent, gist),
        document(
            "WithByteOrderMarkAlone", [] { return QByteArray("\xef\xbb\xbf"); }, C::Refused, wrong),
        document(
            "InUtf16", [] { return QTextCodec::codecForName("UTF-16")->fromUnicode(QString(undeclared())); }, C::Silent,
            gist),
        document(
            "InUtf16WithoutMark",
            [] { return QTextCodec::codecForName("UTF-16BE")->fromUnicode(QString(undeclared())).mid(2); }, C::Silent,
            gist),
        document(
            "InLatin1", [] { return replaced("\"A\"", "\"gr\xfcn\""); }, C::Warned,
            "{path}: its text is in the bytes of another code page; what cannot be read is replaced"),
        document(
            "InLatin1AsDeclared", [] { return replaced("\"A\"", "\"gr\xfcn\"").replace("UTF-8", "ISO-8859-1"); },
            C::Silent, QString(gist).replace(" A ", QStringLiteral(u" gr\u00fcn "))),
        document(
            "InUnknownEncoding", [] { return replaced("UTF-8", "Klingon"); }, C::Refused,
            "{path}: its encoding is unknown"),
        document(
            "WithDuplicateAttributes", [] { return replaced("Name=", "Name=\"C\" Name="); }, C::Silent, gist),
        document(
            "WithDuplicateElements", [] { return replaced("<SeqDataset", "<SeqDataset id=\"no\"/><SeqDataset"); },
            C::Silent, gist),
        document(
            "WithComments", [] { return replaced("  <KeyPair", "<!-- one --> words <KeyPair"); }, C::Silent, gist),
        document(
            "WithCarriageReturnsAlone", [] { return replaced("\n", "\r"); }, C::Silent, gist),
        document(
            "WithWordsBehind", [] { return OddTexts::savedResult() + "words"; }, C::Refused, wrong),
        document(
            "OfTwoDocuments", [] { return OddTexts::savedResult() + undeclared(); }, C::Refused, wrong),
        document("WithEntitiesThatGrow", laughs, C::Refused, "{path}: it declares entities, no saved result does"),
        document(
            "WithEntitiesThatGrowInUtf16",
            [] { return QTextCodec::codecForName("UTF-16")->fromUnicode(QString(laughs())); }, C::Refused,
            "{path}: it declares entities, no saved result does"),
        document(
            "WithEntityOfAFile",
            [] {
                return "<!DOCTYPE a [<!ENTITY f SYSTEM \"file:///etc/hostname\">]>" +
                       undeclared().replace("\"A\"", "\"&f;\"");
            },
            C::Refused, "{path}: it declares entities, no saved result does"),
        document(
            "WithUnknownEntity", [] { return replaced("\"A\"", "\"&f;\""); }, C::Silent, "odd:  B, {...}"),
        document(
            "NestedAMillionDeep", [] { return QByteArray("<a>").repeated(1000000); }, C::Refused,
            "{path}: elements lie more than 256 deep"),
        document(
            "WithAMillionElements",
            [] { return OddTexts::many("<R Version=\"2\"><Results>", "<p% value=\"1\"/>", 1000000); }, C::Refused,
            "{path}: more than 500000 elements"),
        document(
            "WithAMillionAttributes", [] { return OddTexts::many("<R Version=\"2\"", " p%=\"1\"", 1000000) + "/>"; },
            C::Refused, "{path}: more than 1000 attributes in an element"),
        document(
            "WithNameOfTwentyMegabytes", [] { return "<R Version=\"2\" " + QByteArray(20 << 20, 'a'); }, C::Refused,
            wrong),
        {"SavedResultOfManyGigabytes", OddReaders::savedResult(), "SPUM-20240131-235959.xml",
         [](const QString& path) {
             putFile(path, OddTexts::savedResult());
             QFile::resize(path, qint64{100} << 30);
         },
         C::Refused, "{path}: more than 512 MiB, no saved result is that large"},
        {"SavedResultIsNotThere", OddReaders::savedResult(), "SPUM-20240131-235959.xml", [](const QString&) {},
         C::Refused, "{path}: the file is missing"},
    };
}

OddCase program(const QByteArray& name, const QStringList& action, const std::function<QByteArray()>& index,
                const std::function<QByteArray()>& text, OddCase::Outcome outcome, const QString& says)
{
    return {"SavedResultProgram" + name,
            OddReaders::spum(QStringList{"results"} + action),
            "SequenceInfo.txt",
            [index, text](const QString& path) { OddTexts::putSavedResult(path, index(), text()); },
            outcome,
            says};
}

const QStringList list{"list", "{dir}"};
const QStringList show{"show", "{dir}", "one"};
const QStringList load{"load", "{dir}", "one", "--out", "{out}"};

OddCase loaded(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
               const QString& says)
{
    return program("Load" + name, load, OddTexts::savedIndex, text, outcome, says);
}

OddCases loads()
{
    const QString cannot = QStringLiteral("spum: the result \"one\" cannot be loaded{...}");
    const QString noMaps =
        QStringLiteral("spum: the result \"one\" has no maps: its images, its mask or its maps do not go "
                       "with the images of the sequence");
    const auto pixels = [](const QByteArray& count) {
        return [count] { return replaced("Pixels=\"2\"", "Pixels=\"" + count + "\""); };
    };
    return {
        loaded("Sound", OddTexts::savedResult, C::Silent, "{...}results in {dir}/out"),
        loaded("OfHugePixels", pixels("2000000000"), C::Refused, cannot),
        loaded("OfMorePixelsThanTheCounter", pixels("99999999999999999999"), C::Silent,
               "{...} 1024 of {...} pixels analysed{...}"),
        loaded("OfNegativePixels", pixels("-1"), C::Refused, cannot),
        loaded("OfMorePixelsThanImages", pixels("16777216"), C::Refused, noMaps),
        loaded(
            "OfPixelsOutside", [] { return replaced("02000000", "FFFFFF7F"); }, C::Refused, noMaps),
        loaded(
            "OfNegativeBinning", [] { return replaced("ImageBinning=\"4\"", "ImageBinning=\"-4\""); }, C::Silent,
            "{...}at binning 4, 2 of {...} pixels analysed{...}"),
        loaded(
            "OfHugeImages", [] { return replaced("ImageWidth=\"32\"", "ImageWidth=\"2000000000\""); }, C::Silent,
            "{...}at binning 4, 2 of {...} pixels analysed{...}"),
        loaded(
            "OfAnotherSequence", [] { return replaced("id=\"odd\"", "id=\"even\""); }, C::Refused, cannot),
        loaded(
            "OfImagesThatAreNotThere", [] { return replaced("\"540\"", "\"700\""); }, C::Refused, noMaps),
        loaded(
            "OfInfiniteSpectrum", [] { return replaced("Data=\"1\"", "Data=\"inf\""); }, C::Refused, cannot),
        loaded(
            "OfNoSpectra", [] { return replaced("Component", "Other"); }, C::Refused, cannot),
        loaded("OfFirstGenerationWithSmallMatrix", old, C::Refused, cannot),
        loaded(
            "OfFirstGenerationWithHugeMatrix", [] { return old().replace("Cols=\"1\"", "Cols=\"4000000000\""); },
            C::Refused, cannot),
        loaded(
            "OfFirstGenerationWithNegativeMatrix", [] { return old().replace("Rows=\"1\"", "Rows=\"-1\""); },
            C::Refused, cannot),
        loaded("WithEntitiesThatGrow", laughs, C::Refused,
               "spum: {dir}/XML/SpecUnmix/SPUM-20240131-235959.xml: it declares entities, no saved result does"),
    };
}

OddCases programs()
{
    const QString file = QStringLiteral("{dir}/XML/SpecUnmix/SPUM-20240131-235959.xml");
    const QString broken = QStringLiteral("spum: {dir}/XML/SPUM.txt: the list of saved results cannot be read ({...})");
    const auto nothing = [] { return QByteArray(); };
    const auto index = [](const QByteArray& what, const QByteArray& by) {
        return [what, by] { return OddTexts::savedIndex().replace(what, by); };
    };
    return {
        program("ListSound", list, OddTexts::savedIndex, OddTexts::savedResult, C::Silent, "{...}one{...}A, B{...}"),
        program(
            "ListWithCutDocument", list, OddTexts::savedIndex, [] { return OddTexts::savedResult().left(400); },
            C::Silent, "{...}one{...}line {n}, column {n}: {...}"),
        program("ListOfNothing", list, nothing, nothing, C::Silent, "no results are saved with this sequence{...}"),
        program(
            "ListOfZeroBytes", list, [] { return QByteArray(64, '\0'); }, nothing, C::Refused, broken),
        program(
            "ListCut", list, [] { return OddTexts::savedIndex().left(60); }, nothing, C::Refused, broken),
        program("ListWithLineThatIsNothing", list, index("MenuName", "words\nMenuName"), nothing, C::Refused, broken),
        program(
            "ShowOfHugePixels", show, OddTexts::savedIndex,
            [] { return replaced("Pixels=\"2\"", "Pixels=\"2000000000\""); }, C::Silent, "one, saved 1/31/24{...}"),
        program("ShowOfNothing", show, OddTexts::savedIndex, nothing, C::Refused,
                "spum: " + file + ": line {n}, column {n}: {...}"),
        program("ShowWithoutFileName", show, index("FileName", "Other"), nothing, C::Refused,
                "spum: one: the list names no file"),
        program(
            "ShowOfFolderAbove", show, index("SpecUnmix/SPUM-20240131-235959.xml", "../../"), nothing, C::Refused,
            "spum: {dir}/XML/SPUM.txt: the file ../../ of the result \"one\" lies outside {dir}/XML and is not read"),
        program("ShowOfDevice", show, index("SpecUnmix/SPUM-20240131-235959.xml", "/dev/zero"), nothing, C::Refused,
                "spum: {dir}/XML/SPUM.txt: the file /dev/zero of the result \"one\" lies outside {dir}/XML and is not "
                "read"),
        {"SavedResultProgramListIsAFolder", OddReaders::spum(QStringList{"results"} + list), "SequenceInfo.txt",
         [](const QString& path) {
             OddTexts::putSequence(path, OddTexts::sequenceInfo(3));
             QDir().mkpath(QFileInfo(path).path() + QStringLiteral("/XML/SPUM.txt"));
         },
         C::Refused, broken},
        {"SavedResultProgramListIsALinkInACircle", OddReaders::spum(QStringList{"results"} + list), "SequenceInfo.txt",
         [](const QString& path) {
             OddTexts::putSavedResult(path, OddTexts::savedIndex(), OddTexts::savedResult());
             const QString spum = QFileInfo(path).path() + QStringLiteral("/XML/SPUM.txt");
             QFile::remove(spum);
             QFile::link("SPUM.txt", spum);
         },
         C::Refused, broken},
        {"SavedResultProgramListIsUnreadable", OddReaders::spum(QStringList{"results"} + list), "SequenceInfo.txt",
         [](const QString& path) {
             OddTexts::putSavedResult(path, OddTexts::savedIndex(), OddTexts::savedResult());
             ::chmod(QFile::encodeName(QFileInfo(path).path() + QStringLiteral("/XML/SPUM.txt")).constData(), 0);
         },
         C::Refused, broken, true},
    };
}

} // namespace

OddCases savedResultCases()
{
    OddCases cases = documents();
    const QString cut = QStringLiteral("{path}: line {n}, column {n}: {...}");
    for (const OddCases& more : {cutAtEachTenth("ComparedResult", OddReaders::savedResult(), "SPUM-20240131-235959.xml",
                                                OddTexts::savedResult(), std::vector<QString>(9, cut)),
                                 loads(), programs()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
