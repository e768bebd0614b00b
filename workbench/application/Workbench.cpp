// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/Workbench.h"

#include "host/CORVPreference.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/MessageResponder.h"
#include "platform/orvwidgets/WindowResponder.h"
#include "workbench/application/MainWindow.h"
#include "workbench/application/WorkbenchOptions.h"

#include <QApplication>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>

namespace {

constexpr int failed = 1;
constexpr int wrongCall = 2;

// Paths and names are UTF-8. Where the environment names no such character set, C.UTF-8 takes its place.
void settleLocale()
{
    std::setlocale(LC_ALL, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        ::setenv("LC_ALL", "C.UTF-8", 1);
    }
}

QStringList argumentsOf(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    return arguments;
}

void print(std::FILE* pFile, const QString& strText)
{
    std::fputs(strText.toLocal8Bit().constData(), pFile);
}

// Help and version ask for no display.
int answerWithoutWindow(const WorkbenchOptions& options)
{
    if (!options.error.isEmpty()) {
        print(stderr, QStringLiteral("spum-workbench: %1. See \"spum-workbench --help\".\n").arg(options.error));
        return wrongCall;
    }
    print(stdout, options.help ? WorkbenchOptions::helpText()
                               : QStringLiteral("spum-workbench %1\n").arg(CORVPreference::getAppVersion()));
    return std::fflush(stdout) == 0 ? 0 : failed;
}

} // namespace

int runWorkbench(int argc, char** argv)
{
    settleLocale();
    const WorkbenchOptions early = WorkbenchOptions::parse(argumentsOf(argc, argv));
    if (early.help || early.version) {
        return answerWithoutWindow(early);
    }
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("spum-workbench"));
    QApplication::setApplicationDisplayName(CORVUtilityFns::getAppName());
    QApplication::setApplicationVersion(CORVPreference::getAppVersion());
    // Without the options that Qt has taken.
    const WorkbenchOptions options = WorkbenchOptions::parse(QApplication::arguments().mid(1));
    if (!options.error.isEmpty()) {
        return answerWithoutWindow(options);
    }
    orv::setMessageResponder(std::make_unique<orv::WindowResponder>());
    int status = 0;
    {
        MainWindow window(options);
        window.show();
        window.openLater(options.paths.isEmpty() ? MainWindow::lastSession() : options.paths);
        status = QApplication::exec();
    }
    orv::setMessageResponder(nullptr);
    return status;
}
