// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QProcess;

// What a run of the program came to.
struct ProgramResult
{
    int status = -1; // -1 when it did not start, did not end in time, or died of a signal
    int signal = 0;  // that it died of
    QByteArray out;
    QByteArray err;
    QString errText() const { return QString::fromUtf8(err); }
    // Standard output as one JSON object; empty, with a test failure, when it is something else.
    QJsonObject json() const;
};

// The built program `spum`, run as from a bare shell: no display, no language, a user folder of the test's own.
class SpumProgram
{
public:
    // The user's data lie below `strHome`; programs run in `strFolder`.
    SpumProgram(const QString& strHome, const QString& strFolder) : m_strHome(strHome), m_strFolder(strFolder) {}

    static QString path();

    // From here on the program runs with the library of faults.h preloaded: rules, below which folder, which log (empty
    // for none). Empty rules and an empty log take it away again.
    void setFaults(const QString& strRules, const QString& strBelow, const QString& strLog = {});

    // From here on the program also finds this variable.
    void setVariable(const QString& strName, const QString& strValue) { m_variables.insert(strName, strValue); }
    // From here on the program may have that much address space; 0 for any.
    void setMemoryLimit(int nMegabytes) { m_nMegabytes = nMegabytes; }

    ProgramResult run(const QStringList& arguments) const;
    // Runs it, and once a name beginning with "." appears in `strWatched`, waits and interrupts it.
    ProgramResult runAndInterrupt(const QStringList& arguments, const QString& strWatched, int nMilliseconds,
                                  int nSignal) const;
    // The same with several signals at once.
    ProgramResult runAndInterrupt(const QStringList& arguments, const QString& strWatched, int nMilliseconds,
                                  const std::vector<int>& signalNumbers) const;
    // Runs it and gives it the signal once `isTime` says so.
    ProgramResult runAndSignal(const QStringList& arguments, const std::function<bool()>& isTime, int nSignal) const;
    // Only starts it.
    void startInBackground(QProcess& process, const QStringList& arguments) const;
    // Runs it with standard error on a terminal; `err` is what the terminal showed.
    ProgramResult runOnTerminal(const QStringList& arguments) const;
    // Runs it with standard input on a terminal and, once standard error ends with a question mark and a blank, types
    // that text, or with an empty one sends the signal.
    ProgramResult runAtQuestion(const QStringList& arguments, const QByteArray& typed, int nSignal = 0) const;

private:
    void prepare(QProcess& process, const QStringList& arguments) const;
    static ProgramResult finish(QProcess& process);

    QString m_strHome;
    QString m_strFolder;
    QProcessEnvironment m_faults;
    QProcessEnvironment m_variables;
    int m_nMegabytes = 0;
};
