// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/WorkbenchOptions.h"

WorkbenchOptions WorkbenchOptions::parse(const QStringList& arguments)
{
    WorkbenchOptions options;
    const QString plugins = QStringLiteral("--plugins");
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
        } else if (argument == plugins && i + 1 < arguments.size()) {
            options.pluginFolder = arguments.at(++i);
        } else if (argument.startsWith(plugins + QLatin1Char('='))) {
            options.pluginFolder = argument.mid(plugins.size() + 1);
        } else if (argument != plugins) {
            options.error = QStringLiteral("there is no option \"%1\"").arg(argument);
        }
        const bool named = argument == plugins || argument.startsWith(plugins + QLatin1Char('='));
        if (named && !onlyPaths && options.pluginFolder.isEmpty()) {
            options.error = QStringLiteral("--plugins needs the name of a folder");
        }
    }
    return options;
}

QString WorkbenchOptions::helpText()
{
    return QStringLiteral("Usage: spum-workbench [options] [sequence...]\n"
                          "Opens sequences of optical images in a window, to look at them and to unmix them.\n"
                          "A sequence is its folder; a folder or file of other images is imported.\n\n"
                          "Options:\n"
                          "  --plugins DIR    Load the analysis from DIR instead of the usual places.\n"
                          "  --reset-windows  Begin with windows and panels at their usual places.\n"
                          "  -h, --help       Show this text.\n"
                          "  -v, --version    Show the version.\n");
}
