// SPDX-License-Identifier: GPL-3.0-or-later
// usage: orv_manuals FOLDER VERSION DATE; writes man1/*.1, bash/spum and zsh/_spum below FOLDER.
#include "workbench/application/WorkbenchOptions.h"
#include "workbench/commands/Command.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/CommandManuals.h"
#include "workbench/manual/completion.h"
#include "workbench/manual/manPage.h"

#include <QFile>

#include <cstdio>

namespace {

bool write(const QString& strPath, const QByteArray& bytes)
{
    QFile file(strPath);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()) {
        return true;
    }
    std::fprintf(stderr, "%s: %s\n", qPrintable(strPath), qPrintable(file.errorString()));
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: orv_manuals FOLDER VERSION DATE\n");
        return 2;
    }
    const QString folder = QFile::decodeName(argv[1]);
    const CommandManual program = manualOfProgram(CommandLine::commands());
    ManPageFrame frame;
    frame.version = QFile::decodeName(argv[2]);
    frame.date = QFile::decodeName(argv[3]);

    QStringList pages;
    for (const CommandManual& command : program.commands) {
        pages.append(manPageFile(command).section(QLatin1Char('.'), 0, 0));
    }
    const auto writePage = [&](const CommandManual& manual, const QStringList& seeAlso) {
        frame.seeAlso = seeAlso;
        return write(folder + QStringLiteral("/man1/") + manPageFile(manual), manPage(manual, frame));
    };
    bool written = writePage(program, QStringList(QStringLiteral("spum-workbench")) + pages) &&
                   writePage(WorkbenchOptions::manual(), {QStringLiteral("spum")});
    for (const CommandManual& command : program.commands) {
        written = written && writePage(command, {QStringLiteral("spum")});
    }
    written = written && write(folder + QStringLiteral("/bash/spum"), bashCompletion(program)) &&
              write(folder + QStringLiteral("/zsh/_spum"), zshCompletion(program));
    return written ? 0 : 1;
}
