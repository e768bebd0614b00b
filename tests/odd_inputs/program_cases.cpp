// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"
#include "odd_inputs/OddTiff.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace {

using C = OddCase;

const QString umlauts = QStringLiteral(u"M\u00e4use und gr\u00fcne K\u00fche (neu)/");

QString beside(const QString& path, const QString& name)
{
    return QFileInfo(path).path() + QLatin1Char('/') + name;
}

void putSound(const QString& path)
{
    OddTexts::putSequence(path, OddTexts::sequenceInfo(3));
}

OddCase program(const QByteArray& name, const QStringList& arguments, const QString& file,
                const std::function<void(const QString&)>& make, OddCase::Outcome outcome, const QString& says,
                bool plainUser = false)
{
    return {"Program" + name, OddReaders::spum(arguments), file, make, outcome, says, plainUser};
}

OddCases sequences()
{
    const QString file = QStringLiteral("SequenceInfo.txt");
    const QStringList info{"info", "{dir}"};
    return {
        program("InfoOfPathWithBlanksAndUmlauts", info, umlauts + file, putSound, C::Silent, "{...}Odd one{...}"),
        program(
            "InfoOfNothing", {"info", "{dir}/none"}, file, [](const QString&) {}, C::Refused,
            "spum: {dir}/none: is no sequence folder; there is no such file or folder"),
        program(
            "InfoOfAFile", {"info", "{path}"}, "image.tif",
            [](const QString& path) { putFile(path, OddTiff().bytes()); }, C::Refused,
            "spum: {path}: is no sequence folder; \"spum import IMAGES NEW\" makes a sequence of images"),
        program(
            "InfoOfUnreadableFolder", info, "closed/" + file,
            [](const QString& path) {
                putSound(path);
                ::chmod(QFile::encodeName(QFileInfo(path).path()).constData(), 0);
            },
            C::Refused, "spum: {dir}: the folder cannot be read, its permissions forbid it{...}", true),
        program(
            "InfoOfManyMissingDatasets", info, file,
            [](const QString& path) {
                OddTexts::putSequence(path,
                                      OddTexts::sections(OddTexts::many("[Sequence]\nSequence ID: odd\n[Datasets]\n",
                                                                        "Dataset: no%\n", 100000)));
                for (const char* folder : {"C1", "C2", "C3"}) {
                    QDir(beside(path, QLatin1String(folder))).removeRecursively();
                }
            },
            C::Refused, "spum: {dir}: holds no dataset that can be read; {...}more warnings"),
        program(
            "PcaWithCutImage", {"pca", "{dir}", "--mask", "none", "--out", "{out}"}, file,
            [](const QString& path) {
                putSound(path);
                const QByteArray bytes = OddTiff().deflated().bytes();
                putFile(beside(path, QStringLiteral("C2/luminescent.TIF")), bytes.left(bytes.size() * 7 / 10));
            },
            C::Refused, "spum: the image NC2 cannot be read; --verbose tells more"),
        program(
            "CompareWithBrokenSummary", {"compare", "{dir}", "{dir}/a", "{dir}/a"}, file,
            [](const QString& path) {
                putSound(path);
                OddTexts::putResult(beside(path, QStringLiteral("a/summary.json")), OddTexts::summary().left(60));
            },
            C::Refused, "spum: {dir}/a/summary.json:5: this is no JSON: unterminated array"),
        program(
            "RegionsIntoUnreadableClickInfo", {"roi", "{dir}", "add", "--shape", "rect:0,0,64,64"}, file,
            [](const QString& path) {
                putSound(path);
                putFile(beside(path, QStringLiteral("C2/ClickInfo.txt")),
                        OddTexts::clickInfo("NC2", "520nm").replace("Probe", "nothing\nProbe"));
            },
            C::Refused,
            "spum: {dir}/C2/ClickInfo.txt:11: neither \"[section]\" nor \"key: value\", the line is skipped; mend this "
            "first, to store "
            "regions writes the file anew"),
    };
}

// Images with something hostile beside them, and options that read it.
OddCases importsOfDarkImages()
{
    const auto put = [](const QString& name, const std::function<QByteArray()>& bytes) {
        return [=](const QString& path) {
            putFile(path, OddTexts::imagesTable());
            for (const char* image : {"cells_00.tif", "cells_01.tif", "cells_02.tif"}) {
                putFile(beside(path, QStringLiteral("stack/") + QLatin1String(image)), OddTiff().bytes());
            }
            putFile(beside(path, name), bytes());
        };
    };
    const auto with = [](const QStringList& options) {
        return QStringList{"import", "{dir}/stack", "{out}", "--images", "{path}"} + options;
    };
    const QStringList dark = with({"--dark", "{dir}/dark"});
    const auto flat = [] {
        return OddTiff().set(OddTiff::Height, OddTiff::Short, {4}).setBlocks({QByteArray(256, 'a')}).bytes();
    };
    return {
        program("ImportWithDarkThatIsCut", dark, "images.csv", put("dark", [] { return OddTiff().bytes().left(600); }),
                C::Refused, "spum: {dir}/dark: {...}"),
        program("ImportWithDarkThatIsText", dark, "images.csv", put("dark", [] { return QByteArray("dark"); }),
                C::Refused, "spum: {dir}/dark: {...}"),
        program("ImportWithDarkOfMillionsOfBands", dark, "images.csv",
                put("dark/cube.hdr", [] { return OddTexts::enviHeader().replace("bands = 2", "bands = 16000000"); }),
                C::Refused, "spum: {dir}/dark/cube.hdr: {...}"),
        program(
            "ImportWithDarkOfOneImageOnly", dark, "images.csv",
            [put](const QString& path) {
                put("dark/cells_01.tif", [] { return OddTiff().bytes(); })(path);
                putFile(beside(path, QStringLiteral("dark/x.tif")), OddTiff().bytes());
            },
            C::Refused, "spum: {dir}/dark: no dark image is named as cells_00.tif"),
        program("ImportWithDarkOfNoImage", dark, "images.csv", put("dark/readme.txt", [] { return QByteArray("x"); }),
                C::Refused,
                "spum: {dir}/dark: there is no TIFF file, no PNG or JPEG picture and no ENVI header in the folder"),
        program(
            "ImportBinnedWithoutAWholeNumber", with({"--sizes", "bin"}), "images.csv", put("stack/cells_01.tif", flat),
            C::Refused,
            "spum: {path}:2: cells_00.tif has 32 x 32 pixels, which cannot be binned to the 32 x 4 of cells_01.tif by "
            "a whole number, the same along both sides; --sizes crop or pad brings them to one size"),
        program("ImportPaddedToMoreThanThereIs", with({"--sizes", "pad"}), "images.csv",
                put("stack/cells_01.tif",
                    [] { return OddTiff().set(OddTiff::Width, OddTiff::Long, {4000000000U}).bytes(); }),
                C::Refused, "spum: {path}:3: cells_01.tif: the image of 4000000000 x 32 pixels is too large"),
        program("ImportWithEndlessBackground", with({"--background", "rect:0,0,1e300,1e300"}), "images.csv",
                put("none", [] { return QByteArray(); }), C::Refused, "spum: --background: {...}"),
    };
}

OddCases imports()
{
    const auto putStack = [](const QString& path) {
        putFile(path, OddTexts::imagesTable());
        for (const char* name : {"cells_00.tif", "cells_01.tif", "cells_02.tif"}) {
            putFile(beside(path, QStringLiteral("stack/") + QLatin1String(name)), OddTiff().bytes());
        }
    };
    const QStringList table{"import", "{dir}/stack", "{out}", "--images", "{path}"};
    return {
        program("ImportOfPathWithBlanksAndUmlauts", table, umlauts + "images.csv", putStack, C::Silent, "{...}"),
        program(
            "ImportOfOneImageTwice", table, "images.csv",
            [putStack](const QString& path) {
                putStack(path);
                putFile(path, OddTexts::imagesTable().replace("cells_01", "cells_00"));
            },
            C::Refused, "spum: {path}:3: cells_00.tif is the image of line 2 again"),
        program(
            "ImportOfImageOutsideTheStack", table, "images.csv",
            [putStack](const QString& path) {
                putStack(path);
                putFile(path, OddTexts::imagesTable().replace("cells_01.tif", "none.tif"));
            },
            C::Refused, "spum: {path}:3: {dir}/stack/none.tif: there is no such file"),
        program(
            "ImportOfImagesOfTwoSizes", table, "images.csv",
            [putStack](const QString& path) {
                putStack(path);
                putFile(beside(path, QStringLiteral("stack/cells_01.tif")),
                        OddTiff().set(OddTiff::Height, OddTiff::Short, {4}).setBlocks({QByteArray(256, 'a')}).bytes());
            },
            C::Refused,
            "spum: {path}:3: cells_01.tif has 32 x 4 pixels where cells_00.tif has 32 x 32; --sizes crop, bin or pad "
            "brings them to one size"),
        program(
            "ImportOfCutImage", table, "images.csv",
            [putStack](const QString& path) {
                putStack(path);
                const QByteArray bytes = OddTiff().deflated().bytes();
                putFile(beside(path, QStringLiteral("stack/cells_01.tif")), bytes.left(bytes.size() * 7 / 10));
            },
            C::Refused, "spum: {dir}/stack/cells_01.tif: the pixels from row {n} on cannot be read ({...})"),
        program(
            "ImportOfLinkInACircle", {"import", "{path}", "{out}"}, "stack",
            [](const QString& path) { QFile::link("stack", path); }, C::Refused,
            "spum: {path}: there is no such file or folder"),
        program(
            "ImportOfEmptyFolder", {"import", "{dir}", "{dir}-out"}, "stack/readme.txt",
            [](const QString& path) { putFile(path, "hello"); }, C::Refused,
            "spum: {dir}: there is no TIFF file, no PNG or JPEG picture and no ENVI header in the folder"),
        program(
            "ImportOfFolderWithABrokenHeader", {"import", "{dir}", "{dir}-out"}, "stack/cube.hdr",
            [](const QString& path) { putFile(path, "ENVI\nsamples = many\n"); }, C::Refused,
            "spum: {path}: line 2: \"samples\" is \"many\", not a whole number from 1 to 16777216"),
        program(
            "ImportOfUnreadableStack", {"import", "{path}", "{out}"}, "stack.tif",
            [](const QString& path) {
                putFile(path, OddTiff().bytes());
                ::chmod(QFile::encodeName(path).constData(), 0);
            },
            C::Refused, "spum: {path}: Permission denied", true),
        program(
            "ImportWithPhotographOfHugeSize", table + QStringList{"--photo", "{dir}/photo.jpg"}, "images.csv",
            [putStack](const QString& path) {
                putStack(path);
                putFile(beside(path, QStringLiteral("photo.jpg")), "P6\n30000 30000\n255\n");
            },
            C::Refused,
            "spum: {dir}/photo.jpg: the header claims 30000 x 30000 pixels, more than a file of {n} bytes can hold"),
    };
}

} // namespace

OddCases programCases()
{
    OddCases cases = sequences();
    for (const OddCases& more : {imports(), importsOfDarkImages()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
