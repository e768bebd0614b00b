// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/givenUnmixOptions.h"

#include "services/session/LibrarySpectra.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/MaskOptions.h"
#include "workbench/commands/UnmixOptions.h"

#include <QDir>
#include <QFileInfo>

QList<BatchOption> givenUnmixOptions(const QCommandLineParser& parser, const QString& strFolder)
{
    CommandParser known;
    declareUnmixOptions(known);
    QList<BatchOption> options;
    QStringList seen;
    for (const QString& name : parser.optionNames()) {
        const bool isFlag = parser.values(name).isEmpty();
        const QString trial = QStringLiteral("--") + name + (isFlag ? QString() : QStringLiteral("=x"));
        if (seen.contains(name) || !known.parse({QStringLiteral("spum"), trial})) {
            continue;
        }
        seen.append(name);
        BatchOption option;
        option.name = name;
        if (!isFlag) {
            option.value = parser.value(name);
        }
        const bool namesFile = name == QLatin1String("library") ||
                               (name == QLatin1String("mask") && option.value && namesMaskFile(*option.value));
        if (namesFile && option.value) {
            const QString beside = QDir(strFolder).absoluteFilePath(*option.value);
            const QFileInfo file(!strFolder.isEmpty() && QFileInfo(beside).isFile() ? beside : *option.value);
            if (file.isFile()) {
                // Wherever the process runs.
                option.value = QDir::cleanPath(file.absoluteFilePath());
                option.file = *option.value;
            } else if (name == QLatin1String("library")) {
                option.file = LibrarySpectra::fileOf(*option.value);
            }
        }
        options.append(option);
    }
    return options;
}

QStringList lastingUnmixArguments(const QCommandLineParser& parser)
{
    QStringList arguments;
    for (const BatchOption& option : givenUnmixOptions(parser, QString())) {
        if (option.name != QLatin1String("save")) {
            arguments.append(option.argument());
        }
    }
    // What is saved is not refined, and the same bits come without a refinement alone.
    if (parser.isSet(QStringLiteral("save")) && parser.isSet(QStringLiteral("ncomponents")) &&
        !parser.isSet(QStringLiteral("no-refinement"))) {
        arguments.append(QStringLiteral("--no-refinement"));
    }
    return arguments;
}
