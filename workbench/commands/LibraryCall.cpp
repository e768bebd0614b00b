// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/LibraryCall.h"

#include "services/analysis/SpectrumSources.h"
#include "services/session/SavedLibraries.h"
#include "workbench/commands/ActionOptions.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/Options.h"

#include <QCommandLineParser>

namespace {

struct ArgumentCount
{
    int fewest;
    int most;
};

// Of each action, behind it.
const QMap<QString, ArgumentCount>& actions()
{
    constexpr int any = 10000;
    static const QMap<QString, ArgumentCount> list = {
        {QStringLiteral("list"), {0, 0}},   {QStringLiteral("show"), {1, 1}},     {QStringLiteral("save"), {1, 1}},
        {QStringLiteral("import"), {2, 2}}, {QStringLiteral("append"), {1, 1}},   {QStringLiteral("merge"), {2, any}},
        {QStringLiteral("rename"), {1, 2}}, {QStringLiteral("remove"), {1, any}}, {QStringLiteral("template"), {1, 1}},
    };
    return list;
}

const ActionOptions& optionsOfActions()
{
    static const QStringList sources = {QStringLiteral("save"), QStringLiteral("append")};
    static const QStringList sequences = sources + QStringList(QStringLiteral("import"));
    static const ActionOptions owners = {
        {QStringLiteral("from"), sources},
        {QStringLiteral("probes"), sources},
        {QStringLiteral("region"), sources},
        {QStringLiteral("unit"), sources},
        {QStringLiteral("sequence"), sequences},
        {QStringLiteral("select"), sequences + QStringList(QStringLiteral("template"))},
        {QStringLiteral("spectrum"), {QStringLiteral("rename"), QStringLiteral("remove"), QStringLiteral("template")}},
        {QStringLiteral("out"), {QStringLiteral("template")}},
        {QStringLiteral("note"), sequences + QStringList(QStringLiteral("merge"))},
        {QStringLiteral("force"),
         {QStringLiteral("save"), QStringLiteral("import"), QStringLiteral("merge"), QStringLiteral("rename"),
          QStringLiteral("template")}}};
    return owners;
}

// Options belong to the sequence ahead of them; those ahead of all belong to the only one, if there is one only.
QList<LibraryCall::Part> partsOf(const QCommandLineParser& parser, const QString& strAction, CallErrors& errors)
{
    QMap<QString, int> seen;
    QList<LibraryCall::Part> parts = {LibraryCall::Part()};
    for (const QString& option : parser.optionNames()) {
        const QString value = parser.values(option).value(seen[option]++);
        if (option == QLatin1String("sequence")) {
            parts.append(LibraryCall::Part());
            parts.last().sequence = value;
        } else if (option == QLatin1String("from")) {
            parts.last().files.append(value);
        } else if (option == QLatin1String("probes")) {
            parts.last().probes.append(value);
        } else if (option == QLatin1String("region")) {
            parts.last().regions.append(value);
            errors.collect([&] { SpectrumSources::checkRegion(value); });
        }
    }
    const int sequences = parts.size() - 1;
    if (sequences == 1) {
        const LibraryCall::Part ahead = parts.takeFirst();
        parts.first().files = ahead.files + parts.first().files;
        parts.first().probes = ahead.probes + parts.first().probes;
        parts.first().regions = ahead.regions + parts.first().regions;
    } else if (parts.first().needsSequence()) {
        errors.refuse(sequences == 0
                          ? QStringLiteral("--sequence is missing: the images that the spectra are for.")
                          : QStringLiteral("of several sequences each stands ahead of its --region and --probes."));
        return parts;
    }
    for (const LibraryCall::Part& part : qAsConst(parts)) {
        if (!part.sequence.isEmpty() && part.isEmpty()) {
            errors.refuse(QStringLiteral("no --region, --probes or --from is for --sequence %1.").arg(part.sequence));
        }
    }
    if (sequences == 0 && parts.first().isEmpty()) {
        errors.refuse(
            QStringLiteral("%1 takes one of --from, --probes and --region, or several of them.").arg(strAction));
    }
    return parts;
}

// "OLD=NEW".
QList<QPair<QString, QString>> renamingsOf(const QStringList& texts, CallErrors& errors)
{
    QList<QPair<QString, QString>> names;
    for (const QString& text : texts) {
        const int equals = text.indexOf(QLatin1Char('='));
        if (equals < 1) {
            errors.refuse(QStringLiteral("rename: --spectrum takes OLD=NEW, not \"%1\".").arg(text));
        }
        names.append({text.left(equals).trimmed(), text.mid(equals + 1).trimmed()});
    }
    return names;
}

// What an action asks of its arguments and options beyond their number.
void checkAction(const QCommandLineParser& parser, LibraryCall& call, CallErrors& errors)
{
    const auto checkName = [&](int nArgument) {
        errors.collect([&] { SavedLibraries::checkName(call.arguments.at(nArgument)); });
    };
    if (call.action == QLatin1String("save") || call.action == QLatin1String("merge")) {
        checkName(0);
    } else if (call.action == QLatin1String("import")) {
        checkName(1);
        if (parser.values(QStringLiteral("sequence")).size() > 1) {
            errors.refuse(QStringLiteral("import takes one --sequence."));
        }
    } else if (call.action == QLatin1String("rename")) {
        if (call.spectra.isEmpty() != (call.arguments.size() == 2)) {
            errors.refuse(
                QStringLiteral("rename takes a library and its new name, or a library and --spectrum OLD=NEW."));
        } else if (call.spectra.isEmpty()) {
            checkName(1);
        }
        call.newSpectra = renamingsOf(call.spectra, errors);
    } else if (call.action == QLatin1String("remove") && !call.spectra.isEmpty() && call.arguments.size() != 1) {
        errors.refuse(QStringLiteral("remove takes --spectrum of one library."));
    }
}

} // namespace

LibraryCall LibraryCall::of(const QCommandLineParser& parser)
{
    LibraryCall call;
    call.arguments = parser.positionalArguments();
    call.action = call.arguments.isEmpty() ? QString() : call.arguments.takeFirst();
    CallErrors errors(QStringLiteral("library"));
    const bool known = actions().contains(call.action);
    const ArgumentCount count = actions().value(call.action, {0, 0});
    const bool counts = known && call.arguments.size() >= count.fewest && call.arguments.size() <= count.most;
    if (!counts) {
        errors.refuse(QStringLiteral("library takes: list; show NAME; save NAME; import FILE NAME; append NAME; merge "
                                     "NAME LIBRARY...; rename NAME NEW; remove NAME...; or template SEQ."));
    }
    if (known) {
        refuseForeignOptions(parser, optionsOfActions(), call.action, QStringLiteral("library ") + call.action, errors);
    }
    call.spectra = parser.values(QStringLiteral("spectrum"));
    if (optionsOfActions().value(QStringLiteral("from")).contains(call.action)) {
        call.parts = partsOf(parser, call.action, errors);
    }
    if (counts) {
        checkAction(parser, call, errors);
    }
    errors.collect([&] { call.unit = unitOption(parser, "library"); });
    errors.throwAll();
    call.sequence = parser.value(QStringLiteral("sequence"));
    call.select = parser.value(QStringLiteral("select"));
    call.out = parser.value(QStringLiteral("out"));
    call.hasNote = parser.isSet(QStringLiteral("note"));
    call.note = parser.value(QStringLiteral("note"));
    call.force = parser.isSet(QStringLiteral("force"));
    return call;
}
