// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CommandManuals.h"

#include "workbench/commands/CliSession.h"
#include "workbench/commands/Command.h"
#include "workbench/commands/CommandParser.h"

CommandManual manualOf(const Command& command)
{
    CommandParser parser;
    parser.beginGroup(QStringLiteral("Options"));
    command.declare(parser);
    parser.beginGroup(QStringLiteral("Options of every command"));
    CliSession::declareOptions(parser);

    CommandManual manual;
    manual.name = QStringLiteral("spum ") + command.name();
    manual.summary = command.summary();
    manual.usage = parser.usage();
    manual.arguments = parser.arguments();
    for (CommandManual::Group group : parser.groups()) {
        for (CommandManual::Entry& entry : group.entries) {
            entry.repeatable = command.repeatableOptions().contains(entry.names.last());
        }
        if (!group.entries.isEmpty()) {
            manual.options.append(group);
        }
    }
    manual.examples = command.examples();
    return manual;
}

CommandManual manualOfProgram(const std::vector<std::unique_ptr<Command>>& commands)
{
    CommandManual manual;
    manual.name = QStringLiteral("spum");
    manual.summary = QStringLiteral("Separates the sources of light in a sequence of optical images.");
    manual.usage = QStringLiteral("COMMAND [options]");
    for (const auto& command : commands) {
        manual.commands.append(manualOf(*command));
    }
    manual.notes = QStringList{
        QStringLiteral(
            "\"spum help COMMAND\" tells the options of a command and shows examples; \"spum --version\" the "
            "version."),
        QStringLiteral("The exit status is 0 (done), 1 (failed), 2 (a wrong call), 3 (warnings, under --strict) or 130 "
                       "(interrupted). Results appear as a whole or not at all.")};
    return manual;
}
