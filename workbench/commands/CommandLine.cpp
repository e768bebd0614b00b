// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CommandLine.h"

#include "host/CORVLog.h"
#include "host/CORVPreference.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/LoggedErrors.h"
#include "services/basis/similarNames.h"
#include "services/transfer/ExportPlace.h"
#include "spectra/logLine.h"
#include "workbench/commands/BatchCommand.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/Command.h"
#include "workbench/commands/CommandManuals.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/CompareCommand.h"
#include "workbench/commands/ExitStatus.h"
#include "workbench/commands/ExportCommand.h"
#include "workbench/commands/ImportCommand.h"
#include "workbench/commands/InfoCommand.h"
#include "workbench/commands/LibraryCommand.h"
#include "workbench/commands/Output.h"
#include "workbench/commands/PcaCommand.h"
#include "workbench/commands/RedoCommand.h"
#include "workbench/commands/ResultsCommand.h"
#include "workbench/commands/RoiCommand.h"
#include "workbench/commands/SimulateCommand.h"
#include "workbench/commands/SourcesCommand.h"
#include "workbench/commands/UnmixCommand.h"
#include "workbench/manual/helpText.h"

#include <QApplication>
#include <QFileInfo>
#include <QLocale>
#include <QSemaphore>
#include <QThreadPool>

#include <algorithm>
#include <array>
#include <atomic>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <langinfo.h>
#include <new>
#include <optional>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// Paths and names are UTF-8. Where the environment names no such character set, C.UTF-8 takes its place; numbers are
// read and written in the C locale whatever it says.
void settleLocale()
{
    std::setlocale(LC_ALL, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        ::setenv("LC_ALL", "C.UTF-8", 1);
    }
    QLocale::setDefault(QLocale::c());
}

constexpr char noMemory[] = "not enough memory for this; try a coarser --binning or a smaller selection";

// For a shortage where no exception can pass: in a library that lets none through, or before a command begins. Says so
// without asking for memory; anything else is a fault of the program and ends as such.
[[noreturn]] void endWithoutMemory()
{
    try {
        if (std::current_exception()) {
            std::rethrow_exception(std::current_exception());
        }
    } catch (const std::bad_alloc&) {
        for (const char* part : {"spum: ", noMemory, "\n"}) {
            if (::write(STDERR_FILENO, part, std::strlen(part)) < 0) {
                break;
            }
        }
        ::_exit(ExitStatus::failed);
    } catch (...) {
    }
    std::abort();
}

// Whether the system has refused Qt a thread.
std::atomic<bool> threadRefused{false};

// What the libraries below have to say goes to the log, not between the lines of an answer.
void toLog(QtMsgType eType, const QMessageLogContext&, const QString& strMessage)
{
    if (strMessage.startsWith(QLatin1String("QThread::start: Thread creation error"))) {
        threadRefused = true; // whoever wanted it says so
    }
    const long level = !threadRefused && (eType == QtCriticalMsg || eType == QtFatalMsg) ? CORVLOG_ERROR : CORVLOG_NOTE;
    logLine(strMessage, level);
}

// Qt converts large images on its pool of threads, and waits for ever where the system gives it none. One thread that
// stays is enough for that, and whether there is one shows here.
bool poolHasItsThread()
{
    QThreadPool& pool = *QThreadPool::globalInstance();
    pool.setExpiryTimeout(-1);
    pool.setMaxThreadCount(1);
    QSemaphore started;
    pool.start([&started] { started.release(); });
    while (!started.tryAcquire(1, 20)) {
        if (threadRefused) {
            return false;
        }
    }
    return true;
}

void print(const QString& strText)
{
    writeAll(STDOUT_FILENO, strText.toUtf8());
}

void complain(const QString& strText)
{
    writeAll(STDERR_FILENO, (QLatin1String("spum: ") + orv::printableLine(strText) + QLatin1Char('\n')).toUtf8());
}

// All that is wrong with a call, and where its options are told: on the same line if it is one thing.
void refuseCall(const QStringList& sentences, const QString& strCommand)
{
    const QString hint = QStringLiteral("See \"spum %1 --help\".").arg(strCommand);
    if (sentences.size() == 1) {
        complain(sentences.first() + QLatin1Char(' ') + hint);
        return;
    }
    for (const QString& sentence : sentences) {
        complain(sentence);
    }
    complain(hint);
}

// As wide as the terminal that shows it, within what reads well.
int columnsOfOutput()
{
    constexpr int fewest = 60;
    constexpr int most = 110;
    winsize size = {};
    if (::isatty(STDOUT_FILENO) != 1 || ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return helpColumns;
    }
    return std::clamp<int>(size.ws_col, fewest, most);
}

void printHelp(const CommandManual& manual)
{
    print(helpText(manual, columnsOfOutput()));
}

void printVersion()
{
    print(QStringLiteral("spum %1\n").arg(CORVPreference::getAppVersion()));
}

// The arguments without those options; with `bValues` also without the word behind each, which may be its value.
QStringList withoutOptions(const QStringList& arguments, const QStringList& names, bool bValues)
{
    QStringList rest;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString name = arguments[i].section(QLatin1Char('='), 0, 0);
        const bool left = std::any_of(names.cbegin(), names.cend(), [&name](const QString& strName) {
            return name == QLatin1Char('-') + strName || name == QLatin1String("--") + strName;
        });
        if (!left) {
            rest.append(arguments[i]);
        } else if (bValues && name == arguments[i] && !arguments.value(i + 1).startsWith(QLatin1Char('-'))) {
            ++i;
        }
    }
    return rest;
}

// What is wrong with the options, a sentence each.
QStringList parseErrors(CommandParser& parser, const QStringList& arguments)
{
    const QStringList unknown = parser.unknownOptionNames();
    if (unknown.isEmpty()) {
        return {parser.errorText()};
    }
    QStringList errors;
    for (const QString& name : unknown) {
        QStringList meant;
        for (const QString& known : meantNames(name, parser.longNames())) {
            meant.append(QStringLiteral("--") + known);
        }
        errors.append(QStringLiteral("Unknown option '%1'%2").arg(name, meantNamesText(meant)));
    }
    if (!parser.parse(withoutOptions(arguments, unknown, false)) && parser.unknownOptionNames().isEmpty()) {
        errors.append(parser.errorText());
    }
    return errors;
}

// The arguments with every option that came without its optional value in the form "--name=".
QStringList withOptionalValues(const Command& command, CommandParser& parser, QStringList arguments)
{
    for (const QString& name : command.optionsWithOptionalValue()) {
        const int at = arguments.indexOf(QLatin1String("--") + name);
        if (at < 0) {
            continue;
        }
        arguments[at] += QLatin1Char('=');
        const QString next = arguments.value(at + 1, QStringLiteral("-"));
        parser.parse(arguments);
        if (next.startsWith(QLatin1Char('-')) || parser.positionalArguments().size() <= command.argumentCount()) {
            continue;
        }
        arguments[at] += next;
        arguments.removeAt(at + 1);
    }
    return arguments;
}

// A sentence for each option that has taken the next one for its value.
QStringList swallowedOptions(const CommandParser& parser, const QStringList& arguments)
{
    QStringList errors;
    for (const QString& name : parser.namesWithValue()) {
        const int at = arguments.indexOf(QLatin1String("--") + name);
        const QString next = at < 0 ? QString() : arguments.value(at + 1);
        if (next.startsWith(QLatin1String("--")) &&
            parser.longNames().contains(next.mid(2).section(QLatin1Char('='), 0, 0))) {
            errors.append(QStringLiteral("--%1 takes a value, and %2 stands behind it.").arg(name, next));
        }
    }
    return errors;
}

// What the parser has found, and what is wrong with the values of the other options and the arguments, whether or not
// the word behind an unknown option is its value.
int refuseWithValues(const Command& command, const QStringList& arguments, const QStringList& unknown,
                     QStringList wrong)
{
    std::array<QStringList, 2> readings;
    for (const bool values : {false, true}) {
        CommandParser parser;
        CliSession::declareOptions(parser);
        command.declare(parser);
        parser.parse(withoutOptions(arguments, unknown, values));
        CallErrors errors(command.name());
        errors.collect([&] { command.check(parser); });
        readings.at(values ? 1 : 0) = errors.sentences();
    }
    for (const QString& sentence : readings[0]) {
        if (readings[1].contains(sentence)) {
            wrong.append(sentence);
        }
    }
    refuseCall(wrong, command.name());
    return ExitStatus::usage;
}

// Takes the options into the parser. A status where that is the end: a wrong call, --help and --version.
std::optional<int> endsWithItsOptions(const Command& command, const QStringList& arguments, CommandParser& parser)
{
    CliSession::declareOptions(parser);
    command.declare(parser);
    const QStringList given = withOptionalValues(command, parser, arguments);
    if (!parser.parse(given)) {
        const QStringList unknown = parser.unknownOptionNames();
        return refuseWithValues(command, given, unknown, parseErrors(parser, given));
    }
    const QStringList swallowed = swallowedOptions(parser, given);
    if (!swallowed.isEmpty()) {
        refuseCall(swallowed, command.name());
        return ExitStatus::usage;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        printHelp(manualOf(command));
        return ExitStatus::success;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        printVersion();
        return ExitStatus::success;
    }
    const QString repeated = CommandLine::repeatedOption(command, parser);
    if (!repeated.isEmpty()) {
        return refuseWithValues(command, given, {},
                                {QStringLiteral("--%1 is given more than once and taken once.").arg(repeated)});
    }
    return std::nullopt;
}

int runCommand(Command& command, const QStringList& arguments)
{
    CommandParser parser;
    if (const std::optional<int> status = endsWithItsOptions(command, arguments, parser)) {
        return *status;
    }
    const LoggedErrors errors;
    std::unique_ptr<CliSession> pSession;
    QStringList warned;
    // Why a command failed is told once; what was logged beyond that goes ahead of it, unless the log was shown.
    const auto tell = [&](const QString& strFailure) {
        const bool shown =
            parser.isSet(QStringLiteral("verbose")) || (parser.isSet(QStringLiteral("quiet")) && strFailure.isEmpty());
        if (pSession && !strFailure.isEmpty()) {
            pSession->endProgress();
            for (const QString& line : pSession->withheldWarnings()) {
                complain(QStringLiteral("warning: ") + line);
            }
        }
        // A warning that says what was logged has told it.
        const QStringList lines =
            shown ? QStringList() : errors.linesBeyond(strFailure + QLatin1Char('\n') + warned.join(QLatin1Char('\n')));
        for (const QString& line : lines) {
            complain(line);
        }
        if (!strFailure.isEmpty()) {
            complain(strFailure);
        }
    };
    try {
        pSession = std::make_unique<CliSession>(parser);
        pSession->setCommand(command.name());
        ExportPlace::clearAbandoned();
        // An interrupt that comes when all is done does not make a failure of it.
        command.run(parser, *pSession);
        warned = pSession->toldWarnings();
        pSession.reset();
        tell(QString());
        return ExitStatus::success;
    } catch (const CallRefusal& refusal) {
        refuseCall(refusal.sentences(), refusal.command());
        return ExitStatus::usage;
    } catch (const Failure& failure) {
        // What was broken off, a question or a wait for another program, says in its own way that nothing came of it;
        // so does what would have failed anyway.
        if (CliSession::isInterrupted() && failure.kind() != Failure::Kind::Aborted) {
            tell(QStringLiteral("aborted by user: %1").arg(failure.text()));
            return ExitStatus::aborted;
        }
        tell(failure.text());
        return ExitStatus::of(failure);
    } catch (const std::bad_alloc&) {
        tell(QLatin1String(noMemory));
        return ExitStatus::failed;
    }
}

// `rest` are the words behind it.
int refuseCommand(const QString& strWord, const QStringList& rest,
                  const std::vector<std::unique_ptr<Command>>& commands)
{
    QStringList names(QStringLiteral("help"));
    for (const auto& command : commands) {
        names.append(command->name());
    }
    QStringList meant;
    for (const QString& name : meantNames(strWord, names)) {
        meant.append(QLatin1Char('"') + name + QLatin1Char('"'));
    }
    QString advice = meantNamesText(meant);
    const auto behind =
        std::find_if(rest.cbegin(), rest.cend(), [&names](const QString& s) { return names.contains(s); });
    if (meant.isEmpty() && behind != rest.cend()) {
        advice = QStringLiteral(": the command comes first, \"spum %1 %2\".").arg(*behind, strWord);
    } else if (meant.isEmpty() && QFileInfo::exists(strWord)) {
        advice = QStringLiteral(": a command comes ahead of what it is about, such as \"spum info %1\".").arg(strWord);
    }
    complain(QStringLiteral("there is no command \"%1\"%2 See \"spum --help\".").arg(strWord, advice));
    return ExitStatus::usage;
}

Command* commandOf(const QString& strWord, const std::vector<std::unique_ptr<Command>>& commands)
{
    const auto found = std::find_if(commands.cbegin(), commands.cend(),
                                    [&strWord](const auto& pCommand) { return pCommand->name() == strWord; });
    return found == commands.cend() ? nullptr : found->get();
}

// "help", or "help COMMAND".
int tellHelp(const QStringList& words, const std::vector<std::unique_ptr<Command>>& commands)
{
    if (words.size() > 1) {
        complain(QStringLiteral("help takes one command. See \"spum --help\"."));
        return ExitStatus::usage;
    }
    const QString word = words.value(0, QStringLiteral("help"));
    const Command* pCommand = commandOf(word, commands);
    if (pCommand != nullptr) {
        printHelp(manualOf(*pCommand));
    } else if (word == QLatin1String("help") || word.startsWith(QLatin1Char('-'))) {
        printHelp(manualOfProgram(commands));
    } else {
        return refuseCommand(word, {}, commands);
    }
    return ExitStatus::success;
}

int dispatch(const QStringList& arguments)
{
    const auto commands = CommandLine::commands();
    const QString word = arguments.value(1);
    if (word.isEmpty()) {
        QStringList names;
        for (const auto& pCommand : commands) {
            names.append(pCommand->name());
        }
        complain(QStringLiteral("no command given: %1. See \"spum --help\".").arg(names.join(QStringLiteral(", "))));
        return ExitStatus::usage;
    }
    if (word == QLatin1String("--version") || word == QLatin1String("-v") || word == QLatin1String("version")) {
        printVersion();
        return ExitStatus::success;
    }
    if (word == QLatin1String("--help") || word == QLatin1String("-h") || word == QLatin1String("help")) {
        return tellHelp(arguments.mid(2), commands);
    }
    Command* pCommand = commandOf(word, commands);
    if (pCommand == nullptr) {
        return refuseCommand(word, arguments.mid(2), commands);
    }
    QStringList rest = arguments.mid(1);
    rest[0] = QLatin1String("spum ") + word;
    return runCommand(*pCommand, rest);
}

} // namespace

QString CommandLine::repeatedOption(const Command& command, const QCommandLineParser& parser)
{
    for (const QString& name : parser.optionNames()) {
        if (parser.values(name).size() > 1 && !command.repeatableOptions().contains(name)) {
            return name;
        }
    }
    return QString();
}

std::vector<std::unique_ptr<Command>> CommandLine::commands()
{
    std::vector<std::unique_ptr<Command>> list;
    list.push_back(std::make_unique<SimulateCommand>());
    list.push_back(std::make_unique<ImportCommand>());
    list.push_back(std::make_unique<InfoCommand>());
    list.push_back(std::make_unique<ExportCommand>());
    list.push_back(std::make_unique<PcaCommand>());
    list.push_back(std::make_unique<UnmixCommand>());
    list.push_back(std::make_unique<BatchCommand>());
    list.push_back(std::make_unique<ResultsCommand>());
    list.push_back(std::make_unique<CompareCommand>());
    list.push_back(std::make_unique<RedoCommand>());
    list.push_back(std::make_unique<LibraryCommand>());
    list.push_back(std::make_unique<SourcesCommand>());
    list.push_back(std::make_unique<RoiCommand>());
    return list;
}

int CommandLine::run(int argc, char** argv)
{
    std::set_terminate(endWithoutMemory);
    settleLocale();
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    orv::setConsoleLogLevel(orv::ConsoleLog::Errors);
    qInstallMessageHandler(toLog);
    // Never deleted: with its end Qt reads what the system knows of fonts, if no picture has needed that yet, only to
    // forget it. It refers to the number of arguments as long as it lives.
    // While it is made it sees none of them: it would take those for its own that a user of a window system gives, such
    // as --name and --style.
    static int s_nArguments = std::min(argc, 1);
    static const QApplication* const s_pApplication = new QApplication(s_nArguments, argv);
    static_cast<void>(s_pApplication);
    s_nArguments = argc;
    std::setlocale(LC_NUMERIC, "C");
    if (!poolHasItsThread()) {
        complain(QStringLiteral("the system gives this program no thread: too many processes, or too little memory"));
        // The pool would wait for its thread at the end, too.
        ::_exit(ExitStatus::failed);
    }
    QCoreApplication::setApplicationName(QStringLiteral("spum"));
    QCoreApplication::setApplicationVersion(CORVPreference::getAppVersion());
    return dispatch(QCoreApplication::arguments());
}
