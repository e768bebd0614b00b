// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const QString file = QStringLiteral("SequenceInfo.txt");
const QString clickFile = QStringLiteral("ClickInfo.txt");
const QString soundGist = QStringLiteral("Odd one, 3 datasets");

OddCase sequence(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
                 const QString& says)
{
    return {"Sequence" + name,
            OddReaders::sequence(),
            file,
            [text](const QString& path) { OddTexts::putSequence(path, text()); },
            outcome,
            says};
}

QByteArray replaced(const QByteArray& what, const QByteArray& by)
{
    return OddTexts::sequenceInfo(3).replace(what, by);
}

OddCase spoiled(const QByteArray& name, const std::function<void(const QString& folder)>& spoil,
                OddCase::Outcome outcome, const QString& says)
{
    return {"Sequence" + name,
            OddReaders::sequence(),
            file,
            [spoil](const QString& path) {
                OddTexts::putSequence(path, OddTexts::sequenceInfo(3));
                spoil(QFileInfo(path).path() + QLatin1Char('/'));
            },
            outcome,
            says};
}

OddCases infos()
{
    using C = OddCase;
    const auto folders = [](const QByteArray& line, int count) {
        return [line, count] { return replaced("Dataset: C3\n", OddTexts::many("Dataset: C3\n", line, count)); };
    };
    return {
        sequence(
            "InfoEmpty", [] { return QByteArray(); }, C::Warned,
            "{path}: describes no sequence; the folders beside it are taken as datasets"),
        sequence(
            "InfoOfZeroBytes", [] { return QByteArray(512, '\0'); }, C::Warned,
            "{path}:1: a zero byte, this is no text"),
        sequence(
            "InfoWithMixedLineEnds", [] { return replaced("Kind", "\rKind").replace("C2\n", "C2\r\n"); }, C::Silent,
            soundGist),
        sequence(
            "InfoInLatin1", [] { return replaced("Odd one", "M\xe4use"); }, C::Warned,
            "{path}:5: not UTF-8, read as Latin-1"),
        sequence(
            "WithNegativeCount", [] { return replaced("Count: 3", "Count: -3"); }, C::Warned,
            "{path}: section \"Datasets\": \"Dataset Count\" is \"-3\", which is no whole number"),
        sequence(
            "WithHugeCount", [] { return replaced("Count: 3", "Count: 2000000000"); }, C::Warned,
            "{path}: the list of datasets is cut short (3 of 2000000000, or the last is not there); the other "
            "folders beside it are added"),
        sequence(
            "WithCountBeyondNumbers", [] { return replaced("Count: 3", "Count: 99999999999999999999"); }, C::Warned,
            "{path}: section \"Datasets\": \"Dataset Count\" is \"99999999999999999999\", which is no whole number"),
        sequence(
            "WithUnknownKind", [] { return replaced("spectral", "polar"); }, C::Warned,
            "{path}: section \"Sequence\": \"Kind\" is \"polar\", which is not known"),
        sequence(
            "WithDatasetOutside", [] { return replaced("C3", "../elsewhere"); }, C::Warned,
            "{path}: section \"Datasets\": \"Dataset\" is \"../elsewhere\", which is no folder below the sequence's"),
        sequence(
            "WithDatasetTwice", [] { return replaced("Dataset: C2\n", "Dataset: C2\nDataset: C2\n"); }, C::Warned,
            "{path}: section \"Datasets\": \"Dataset\" is \"C2\", which was listed before"),
        sequence("WithOneDataset100000Times", folders("Dataset: C2\n", 100000), C::Warned, "{path}: {n} more warnings"),
        sequence("With100000MissingDatasets", folders("Dataset: C1/no%\n", 100000), C::Warned,
                 "{path}: {n} more warnings"),
        sequence("With100000DatasetsOutside", folders("Dataset: ../%\n", 100000), C::Warned,
                 "{path}: {n} more warnings"),
        sequence(
            "WithAMillionKeys", [] { return OddTexts::many(OddTexts::sequenceInfo(3), "Key %: v\n", 1000000); },
            C::Warned, "{path}:{n}: more than 200000 lines"),
    };
}

OddCases folders()
{
    using C = OddCase;
    return {
        spoiled(
            "WithFolderForInfo",
            [](const QString& folder) {
                QFile::remove(folder + file);
                QDir().mkdir(folder + file);
            },
            C::Warned, "{path}: cannot be read: not a file"),
        spoiled(
            "WithOneClickNumberTwice",
            [](const QString& folder) { putFile(folder + "C2/" + clickFile, OddTexts::clickInfo("NC1", "510nm")); },
            C::Warned, "{dir}/C2/: has the click number NC1 of {dir}/C1/; the dataset is left out"),
        spoiled(
            "WithDatasetThatLinksBack",
            [](const QString& folder) {
                QDir(folder + "C2").removeRecursively();
                QFile::link(QStringLiteral("."), folder + "C2");
            },
            C::Warned, "{dir}/C2/ClickInfo.txt: cannot be read: no such file; the dataset is left out"),
        spoiled(
            "WithDatasetInACircle",
            [](const QString& folder) {
                QDir(folder + "C2").removeRecursively();
                QFile::link(QStringLiteral("C2"), folder + "C2");
            },
            C::Warned,
            "{dir}/C2/ClickInfo.txt: cannot be read: Too many levels of symbolic links; the dataset is left out"),
        spoiled(
            "WithImageOfAnotherDatasetCut",
            [](const QString& folder) { putFile(folder + "C3/luminescent.TIF", "II*"); }, C::Warned,
            "{dir}/C3/luminescent.TIF: not a readable TIFF file ({...}); the dataset is left out"),
        {"SequenceFolderEmpty", OddReaders::sequence(), "empty/" + file,
         [](const QString& path) { QDir().mkpath(QFileInfo(path).path()); }, OddCase::Refused,
         "{dir}: holds no dataset that can be read; {path}: is missing; the folders beside it are taken as datasets"},
        {"SequenceFolderMissing", OddReaders::sequence(), "none/" + file, [](const QString&) {}, OddCase::Refused,
         "{dir}: is no sequence folder"},
    };
}

} // namespace

OddCases sequenceCases()
{
    // What is lost is told, and the folders make up for it.
    const QString cut =
        QStringLiteral("warning: {path}:{n}: the file is cut off here, its last line \"# end\" is missing");
    OddCases cases = cutAtEachTenth("SequenceInfo", OddReaders::sequence(), file, OddTexts::sequenceInfo(3),
                                    std::vector<QString>(9, cut));
    for (OddCase& oddCase : cases) {
        const auto put = oddCase.make;
        oddCase.make = [put](const QString& path) {
            OddTexts::putSequence(path, QByteArray());
            put(path);
        };
    }
    for (const OddCases& more : {infos(), folders()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
