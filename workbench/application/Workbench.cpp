// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/Workbench.h"

#include "host/CORVLog.h"
#include "host/CORVPreference.h"
#include "host/CORVUtilityFns.h"
#include "host/LegibleBoxes.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/MessageResponder.h"
#include "platform/orvwidgets/WindowResponder.h"
#include "workbench/application/MainWindow.h"
#include "workbench/application/WorkbenchOptions.h"
#include "workbench/application/programIcon.h"

#include <QApplication>
#include <QFile>
#include <QStyle>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <langinfo.h>
#include <new>

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

// Where the style is Qt's own.
void makeBoxesLegible()
{
    const QString strName = QApplication::style()->objectName();
    if (strName == QLatin1String("fusion")) {
        auto* pStyle = new LegibleBoxes(strName);
        pStyle->setParent(QApplication::instance());
        QApplication::setStyle(pStyle);
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

// An exception has no way through the event loop. What throws has left its own things in order; the program goes on.
class Application : public QApplication
{
public:
    using QApplication::QApplication;
    bool notify(QObject* pReceiver, QEvent* pEvent) override
    {
        try {
            return QApplication::notify(pReceiver, pEvent);
        } catch (const std::bad_alloc&) {
            complain(tr("There is not enough memory for this."));
        } catch (const std::exception& error) {
            complain(tr("This failed: %1").arg(QString::fromUtf8(error.what())));
        }
        return false;
    }

private:
    static void complain(const QString& strText)
    {
        CORVLog::getLogObject()->log(strText, QString(), 0, QString(), CORVLOG_ERROR, false);
    }
};

// The algorithms write a trace of their iterations to std::cout; it goes to a file that is asked for, or nowhere.
class Trace
{
public:
    // False when the file cannot be written.
    bool open(const QString& strFile)
    {
        if (!strFile.isEmpty()) {
            m_file.open(QFile::encodeName(strFile).constData());
        }
        m_pBefore = std::cout.rdbuf(strFile.isEmpty() ? nullptr : m_file.rdbuf());
        return strFile.isEmpty() || m_file.is_open();
    }
    Trace() = default;
    ~Trace()
    {
        if (m_pBefore != nullptr) {
            std::cout.rdbuf(m_pBefore);
            std::cout.clear();
        }
    }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

private:
    std::ofstream m_file;
    std::streambuf* m_pBefore = nullptr;
};

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
    const Application application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("spum-workbench"));
    QApplication::setApplicationDisplayName(CORVUtilityFns::getAppName());
    QApplication::setApplicationVersion(CORVPreference::getAppVersion());
    // Without the options that Qt has taken.
    const WorkbenchOptions options = WorkbenchOptions::parse(QApplication::arguments().mid(1));
    if (!options.error.isEmpty()) {
        return answerWithoutWindow(options);
    }
    Trace trace;
    QString problem;
    if (!trace.open(options.traceFile)) {
        problem = QStringLiteral("%1: the trace file cannot be written").arg(options.traceFile);
    }
    if (problem.isEmpty() && !options.logFile.isEmpty()) {
        orv::setLogFile(options.logFile, &problem);
    }
    if (!problem.isEmpty()) {
        print(stderr, QStringLiteral("spum-workbench: %1\n").arg(problem));
        return failed;
    }
    QApplication::setWindowIcon(programIcon());
    makeBoxesLegible();
    orv::setMessageResponder(std::make_unique<orv::WindowResponder>());
    int status = 0;
    {
        MainWindow window(options);
        window.show();
        window.start(options.paths);
        status = QApplication::exec();
    }
    orv::setMessageResponder(nullptr);
    orv::setLogFile(QString(), nullptr);
    return status;
}
