// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/RedoCommand.h"

#include "host/CORVPreference.h"
#include "platform/orvutils/printable.h"
#include "platform/orvutils/programCommit.h"
#include "services/basis/Failure.h"
#include "services/batch/ChildProcess.h"
#include "services/batch/childWords.h"
#include "services/results/ResultDifference.h"
#include "services/results/UnmixFolder.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>

namespace {

constexpr int waitMilliseconds = 100;

QStringList textsOf(const QJsonValue& value)
{
    QStringList texts;
    for (const auto& text : value.toArray()) {
        texts.append(text.toString());
    }
    return texts;
}

QString programText(const QString& strVersion, const QString& strCommit)
{
    return strCommit.isEmpty() ? QStringLiteral("spum %1").arg(strVersion)
                               : QStringLiteral("spum %1, commit %2").arg(strVersion, strCommit);
}

// One run of the command.
class Redoing
{
public:
    Redoing(const QCommandLineParser& parser, CliSession& session)
        : m_session(session), m_before(parser.positionalArguments()[0]),
          m_provenance(m_before.summary().value(QStringLiteral("provenance")).toObject()),
          m_sequence(sequenceOf(parser.value(QStringLiteral("sequence")))), m_out(parser.value(QStringLiteral("out")))
    {
    }

    void run()
    {
        const QStringList words = arguments();
        m_session.startProgress(QStringLiteral("Looking at the files"));
        m_changes = changedInputs(m_provenance, m_sequence);
        m_session.stopIfRequested();
        // The same name, as it stands in the tables.
        const QString target = m_out.isEmpty() ? m_temporary.filePath(m_before.label())
                                               : QDir::cleanPath(QFileInfo(m_out).absoluteFilePath());
        if (m_out.isEmpty() && !m_temporary.isValid()) {
            throw Failure(QStringLiteral("%1: %2").arg(m_temporary.path(), m_temporary.errorString()));
        }
        runAgain(words + QStringList(QStringLiteral("--out=") + target));
        m_session.endProgress();
        const UnmixFolder after(target);
        const ResultDifference difference(m_before, after);
        answer(difference);
        if (!difference.isSame()) {
            throw Failure(QStringLiteral("the bits are not the same: ") + difference.text(), Failure::Kind::OnlyWarned);
        }
    }

private:
    // Where it was, or else beside the result, which may have moved with it.
    QString sequenceOf(const QString& strAsked) const
    {
        if (m_provenance.isEmpty()) {
            throw Failure(QStringLiteral("%1 does not tell where the result comes from: an earlier version wrote it")
                              .arg(m_before.summaryPath()));
        }
        if (!strAsked.isEmpty()) {
            return QDir::cleanPath(QFileInfo(strAsked).absoluteFilePath());
        }
        const QString told =
            m_provenance.value(QStringLiteral("sequence")).toObject().value(QStringLiteral("path")).toString();
        const QString above = QDir::cleanPath(m_before.path() + QStringLiteral(".."));
        if (!QFileInfo(told).isDir() && QFileInfo::exists(above + QStringLiteral("/SequenceInfo.txt"))) {
            return above;
        }
        return told;
    }

    // The command that made the result, but for the folder, and for what would replace another result there.
    QStringList arguments() const
    {
        const QStringList command = textsOf(m_provenance.value(QStringLiteral("command")));
        const QString saved =
            m_provenance.value(QStringLiteral("options")).toObject().value(QStringLiteral("saved")).toString();
        if (command.value(1) == QLatin1String("unmix")) {
            QStringList options = textsOf(m_provenance.value(QStringLiteral("arguments")));
            options.removeAll(QStringLiteral("--force"));
            return QStringList{QStringLiteral("unmix"), m_sequence} + options;
        }
        if (command.value(1) == QLatin1String("results") && !saved.isEmpty()) {
            return {QStringLiteral("results"), QStringLiteral("load"), m_sequence, saved};
        }
        throw Failure(
            QStringLiteral("%1: no command has made this result, so none makes it again: it comes from a window")
                .arg(m_before.summaryPath()));
    }

    void runAgain(const QStringList& words)
    {
        ChildProcess process;
        process.startBound(QCoreApplication::applicationFilePath(), words);
        bool asked = false;
        while (!process.waitForFinished(waitMilliseconds) && process.state() != QProcess::NotRunning) {
            m_session.showProgress(QStringLiteral("Making the result again"), -1.0);
            if (m_session.isStopRequested() && !asked) {
                process.askToStop();
                asked = true;
            }
        }
        m_session.stopIfRequested();
        const bool failed = process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0;
        const ChildWords said = childWords(process.readAllStandardError(), failed);
        if (!failed) {
            return;
        }
        const QString reason = said.message.isEmpty()
                                   ? silentEndText(process.exitCode(), process.exitStatus() != QProcess::NormalExit)
                                   : said.message;
        throw Failure(
            m_changes.isEmpty()
                ? reason
                : QStringLiteral("%1; since the result was made %2").arg(reason, m_changes.join(QStringLiteral(", "))));
    }

    void answer(const ResultDifference& difference) const
    {
        const QJsonObject program = m_provenance.value(QStringLiteral("program")).toObject();
        const QString before = programText(program.value(QStringLiteral("version")).toString(),
                                           program.value(QStringLiteral("commit")).toString());
        const QString now = programText(CORVPreference::getAppVersion(), orv::programCommit());
        QString text = before == now ? QStringLiteral("made and made again by %1\n").arg(now)
                                     : QStringLiteral("made by %1, made again by %2\n").arg(before, now);
        for (const QString& change : m_changes) {
            text += QStringLiteral("since it was made %1\n").arg(orv::printableLine(change));
        }
        text += QStringLiteral("%1 of %2 files have the same bits%3\n")
                    .arg(difference.sameCount())
                    .arg(difference.files().size())
                    .arg(m_out.isEmpty() ? QString()
                                         : QStringLiteral("; the new ones are in ") + orv::printableLine(m_out));
        m_session.answer(text);
        QJsonArray files;
        for (const ResultDifference::File& file : difference.files()) {
            QJsonObject json{{"file", file.name}, {"same", file.same}, {"missing", file.missing}};
            if (file.largest >= 0.0) {
                json.insert(QStringLiteral("largestDifference"), file.largest);
            }
            files.append(json);
        }
        m_session.answerJson(QJsonObject{{"same", difference.isSame()},
                                         {"changes", QJsonArray::fromStringList(m_changes)},
                                         {"programChanged", before != now},
                                         {"files", files}});
    }

    CliSession& m_session;
    const UnmixFolder m_before;
    const QJsonObject m_provenance;
    const QString m_sequence;
    const QString m_out;
    QTemporaryDir m_temporary;
    QStringList m_changes;
};

} // namespace

void RedoCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(
        QStringLiteral("RESULT"),
        QStringLiteral("Folder of results of \"spum unmix\", \"spum batch\" or \"spum results load\". The exit status "
                       "is 0 where every file has the same bits (reports tell a time and do not count), 3 where one "
                       "differs, 1 where the result cannot be made again."));
    addValueOption(parser, "out", QStringLiteral("Folder to keep the new result in; without it none is kept."), "DIR");
    addValueOption(parser, "sequence",
                   QStringLiteral("Folder of the sequence, where it has moved since the result was made."), "SEQ");
}

QList<CommandManual::Example> RedoCommand::examples() const
{
    return {
        {QStringLiteral("spum redo by-name"), QStringLiteral("Whether the same command gives the same bits still.")},
        {QStringLiteral("spum redo by-name --out made-again"),
         QStringLiteral("The same, and the new result is kept.")}};
}

void RedoCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    if (parser.positionalArguments().size() != 1) {
        refuseUsage("redo", QStringLiteral("redo takes one folder of results."));
    }
    Redoing(parser, session).run();
}
