// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CompareCommand.h"

#include "engine/CORVSpumKyvo.h"
#include "files/AtomicFile.h"
#include "platform/orvimage/pngBytes.h"
#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/results/ComparedResult.h"
#include "services/results/ComparisonPicture.h"
#include "services/results/ResultComparison.h"
#include "services/results/StagedRun.h"
#include "services/results/resultFolder.h"
#include "services/session/OpenedSequence.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/PictureOptions.h"

#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace {

using Results = std::vector<std::unique_ptr<ComparedResult>>;

// The truth of data as they stand, and that of data corrected for decay, as far as there are such and results to
// compare.
void addTruths(Results& results, const OpenedSequence& opened)
{
    const int unit = UnitNames::fromText(results.front()->unit());
    for (const bool corrected : {true, false}) {
        const bool wanted = std::any_of(results.begin(), results.end(), [corrected](const auto& result) {
            return !result->isTruth() && result->isDecayCorrected() == corrected;
        });
        const QString truth = wanted ? opened.truthFolder(unit, corrected) : QString();
        if (truth.isEmpty()) {
            continue;
        }
        results.insert(results.begin(), std::make_unique<ComparedResult>());
        results.front()->readTruth(truth, corrected);
    }
}

// All that cannot be read is told at once.
Results readResults(const QStringList& names, const OpenedSequence& opened, JobMonitor& monitor)
{
    Results results;
    QStringList wrong;
    for (const QString& name : names) {
        auto result = std::make_unique<ComparedResult>();
        try {
            result->readResult(resultFolder(name, opened.folder(), monitor));
            results.push_back(std::move(result));
        } catch (const Failure& failure) {
            if (failure.kind() == Failure::Kind::Aborted) {
                throw;
            }
            wrong.append(failure.text());
        }
    }
    if (!wrong.isEmpty()) {
        wrong.removeDuplicates();
        throw Failure(wrong.join(QStringLiteral("; ")));
    }
    return results;
}

// The truth, where there is one, ahead of the results.
Results readAll(const QStringList& names, const OpenedSequence& opened, JobMonitor& monitor)
{
    Results results = readResults(names, opened, monitor);
    for (const auto& result : results) {
        if (result->unit() != results.front()->unit()) {
            throw Failure(QStringLiteral("%1 is in %2, %3 in %4: results of one unit can be compared")
                              .arg(results.front()->label(), results.front()->unit(), result->label(), result->unit()));
        }
    }
    addTruths(results, opened);
    if (results.size() < 2) {
        throw Failure(QStringLiteral("the sequence has no truth to compare with"),
                      QStringLiteral("name two results at least"));
    }
    return results;
}

// Throws what is wrong with the call.
PictureRequest requestOf(const QCommandLineParser& parser)
{
    PictureRequest pictures;
    CallErrors errors(QStringLiteral("compare"));
    if (parser.positionalArguments().size() < 2) {
        errors.refuse(QStringLiteral("compare takes a sequence and one result at least."));
    }
    errors.collect([&] { pictures = pictureRequestOf(parser, "compare"); });
    errors.throwAll();
    return pictures;
}

QString number(double dValue, int nDigits)
{
    return std::isnan(dValue) ? QString() : TextTable::number(dValue, nDigits);
}

// A row a component; the names of the columns serve people, or programs that read the file.
TextTable tableOf(const ResultComparison& comparison, int nDigits, const QString& strErrorColumn)
{
    TextTable table({QStringLiteral("result"), QStringLiteral("component"), comparison.rowNames().first(),
                     QStringLiteral("cosine"), QStringLiteral("correlation"), strErrorColumn});
    for (int i = 0; i < comparison.rowCount(); ++i) {
        for (int j = 0; j < comparison.columnCount(); ++j) {
            const ComparedComponent& component = comparison.at(i, j);
            if (component.present && !comparison.isReference(i)) {
                table.addRow({comparison.rowNames().at(i), component.name,
                              comparison.at(comparison.referenceOf(i), j).name, number(component.cosine, nDigits),
                              number(component.correlation, nDigits), number(component.relativeError, nDigits)});
            }
        }
    }
    return table;
}

// "truth"; where there are two, which of them each result is compared with.
QString referenceText(const ResultComparison& comparison)
{
    QStringList references;
    QStringList pairs;
    for (int i = 0; i < comparison.rowCount(); ++i) {
        const QString reference = comparison.rowNames().at(comparison.referenceOf(i));
        if (comparison.isReference(i)) {
            references.append(reference);
        } else {
            pairs.append(QStringLiteral("%1 (%2)").arg(reference, comparison.rowNames().at(i)));
        }
    }
    return references.size() == 1 ? references.first() : pairs.join(QStringLiteral(", "));
}

QJsonObject jsonOf(const ResultComparison& comparison)
{
    const auto value = [](double dValue) { return std::isfinite(dValue) ? QJsonValue(dValue) : QJsonValue(); };
    QJsonArray results;
    for (int i = 0; i < comparison.rowCount(); ++i) {
        if (comparison.isReference(i)) {
            continue;
        }
        const int reference = comparison.referenceOf(i);
        QJsonArray components;
        for (int j = 0; j < comparison.columnCount(); ++j) {
            const ComparedComponent& component = comparison.at(i, j);
            if (component.present) {
                components.append(QJsonObject{{"name", component.name},
                                              {"reference", comparison.at(reference, j).name},
                                              {"cosine", value(component.cosine)},
                                              {"correlation", value(component.correlation)},
                                              {"relativeError", value(component.relativeError)}});
            }
        }
        results.append(QJsonObject{{"result", comparison.rowNames().at(i)},
                                   {"reference", comparison.rowNames().at(reference)},
                                   {"components", components}});
    }
    return QJsonObject{{"reference", comparison.rowNames().first()},
                       {"images", comparison.imageCount()},
                       {"pixels", comparison.pixelCount()},
                       {"results", results}};
}

void put(const QString& strPath, const QByteArray& bytes)
{
    QString error;
    if (!orv::writeFileAtomically(strPath, bytes, &error)) {
        throw Failure(error);
    }
}

} // namespace

void CompareCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    parser.addPositionalArgument(
        QStringLiteral("RESULT..."),
        QStringLiteral("Folders with results of \"spum unmix\", or their names in SEQ. The first "
                       "is what the others are compared with, unless SEQ has a truth."),
        QStringLiteral("RESULT..."));
    parser.addOption({QStringLiteral("out"), QStringLiteral("Folder for picture and table; SEQ/comparison."),
                      QStringLiteral("DIR")});
    declareColorsOption(parser);
    parser.addOption({QStringLiteral("force"), QStringLiteral("Replace an earlier comparison in that folder.")});
}

QList<CommandManual::Example> CompareCommand::examples() const
{
    return {{QStringLiteral("spum compare mouse by-name by-number"),
             QStringLiteral("Two results beside each other and, for a simulated sequence, beside the truth.")}};
}

void CompareCommand::check(const QCommandLineParser& parser) const
{
    requestOf(parser);
}

void CompareCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const PictureRequest pictures = requestOf(parser);
    const QStringList arguments = parser.positionalArguments();
    OpenedSequence opened(arguments[0]);
    session.warnAll(opened.warnings());
    const Results results = readAll(arguments.mid(1), opened, session);
    const ResultComparison comparison(results);
    session.stopIfRequested();

    StagedRun staged(resultPlace(parser.value(QStringLiteral("out")), opened.folder(), QStringLiteral("comparison")),
                     parser.isSet(QStringLiteral("force")), QStringLiteral("comparison.csv"));
    ComparisonStyle style;
    style.photograph = opened.engine().m_pPhoto;
    const PictureStyle look = pictureStyleOf(opened.engine(), pictures);
    style.colorTable = look.colorTable;
    style.reversed = look.reversed;
    style.images = PlottedImages::of(opened.engine(), comparison.pairs());
    style.unit = results.back()->unit();
    put(staged.path() + QStringLiteral("comparison.png"), orvimage::pngBytes(comparisonPicture(comparison, style)));
    put(staged.path() + QStringLiteral("comparison.csv"),
        tableOf(comparison, 9, QStringLiteral("relativeError")).toCsv().toUtf8());
    staged.finish(session);
    const QString text = QStringLiteral("compared with %1 over %2 pixels and %3 images\n\n%4\n")
                             .arg(orv::printableLine(referenceText(comparison)),
                                  QString::number(comparison.pixelCount()), QString::number(comparison.imageCount()),
                                  tableOf(comparison, 4, QStringLiteral("relative error")).toText());
    session.answer(staged.answer(text, jsonOf(comparison)));
}
