// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/WorkbenchOptions.h"

#include "workbench/manual/helpText.h"

namespace {

// Options with a value, which comes behind "=" or as the next argument.
struct ValueOption
{
    const char* name;
    QString WorkbenchOptions::*value;
    const char* what;
};

constexpr ValueOption valueOptions[] = {{"--plugins", &WorkbenchOptions::pluginFolder, "a folder"},
                                        {"--log", &WorkbenchOptions::logFile, "a file"},
                                        {"--trace", &WorkbenchOptions::traceFile, "a file"}};

// Takes an option with a value at `place`, which it moves to the last argument that belongs to it. False for any other.
bool takeValue(const QStringList& arguments, int& place, WorkbenchOptions& options)
{
    const QString& argument = arguments.at(place);
    for (const ValueOption& option : valueOptions) {
        const QLatin1String name(option.name);
        const QString inPlace = name + QLatin1Char('=');
        QString& value = options.*option.value;
        if (argument == name && place + 1 < arguments.size()) {
            value = arguments.at(++place);
        } else if (argument.startsWith(inPlace)) {
            value = argument.mid(inPlace.size());
        } else if (argument != name) {
            continue;
        }
        if (value.isEmpty()) {
            options.error = QStringLiteral("%1 needs the name of %2").arg(name, QLatin1String(option.what));
        }
        return true;
    }
    return false;
}

} // namespace

WorkbenchOptions WorkbenchOptions::parse(const QStringList& arguments)
{
    WorkbenchOptions options;
    bool onlyPaths = false;
    for (int i = 0; i < arguments.size() && options.error.isEmpty(); ++i) {
        const QString& argument = arguments.at(i);
        if (onlyPaths || !argument.startsWith(QLatin1Char('-')) || argument == QLatin1String("-")) {
            options.paths.append(argument);
        } else if (argument == QLatin1String("--")) {
            onlyPaths = true;
        } else if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            options.help = true;
        } else if (argument == QLatin1String("--version") || argument == QLatin1String("-v")) {
            options.version = true;
        } else if (argument == QLatin1String("--reset-windows")) {
            options.freshPlaces = true;
        } else if (!takeValue(arguments, i, options)) {
            options.error = QStringLiteral("there is no option \"%1\"").arg(argument);
        }
    }
    return options;
}

CommandManual WorkbenchOptions::manual()
{
    const auto option = [](const QStringList& names, const char* pValue, const char* pText) {
        CommandManual::Entry entry;
        entry.names = names;
        entry.value = QLatin1String(pValue);
        entry.text = QLatin1String(pText);
        return entry;
    };
    CommandManual manual;
    manual.name = QStringLiteral("spum-workbench");
    manual.usage = QStringLiteral("[options] [sequence...]");
    manual.summary =
        QStringLiteral("Opens sequences of optical images in a window, to look at them and to unmix them.");
    CommandManual::Entry sequence;
    sequence.value = QStringLiteral("sequence...");
    sequence.text = QStringLiteral("A sequence is its folder; a folder or file of other images is imported. Without "
                                   "one the sequences that were open last are opened again.");
    manual.arguments = {sequence};
    manual.options = {
        {QStringLiteral("Options"),
         {option({QStringLiteral("plugins")}, "DIR",
                 "Load the tools for unmixing from DIR instead of the usual places."),
          option({QStringLiteral("reset-windows")}, "", "Begin with windows and panels at their usual places."),
          option({QStringLiteral("log")}, "FILE", "Append the log to FILE."),
          option({QStringLiteral("trace")}, "FILE", "Write the trace of the algorithms to FILE."),
          option({QStringLiteral("h"), QStringLiteral("help")}, "", "Show this text."),
          option({QStringLiteral("v"), QStringLiteral("version")}, "", "Show the version.")}}};
    manual.examples = {
        {QStringLiteral("spum-workbench mouse"), QStringLiteral("Open the sequence in the folder \"mouse\".")}};
    return manual;
}

QString WorkbenchOptions::helpText()
{
    return ::helpText(manual(), helpColumns);
}
