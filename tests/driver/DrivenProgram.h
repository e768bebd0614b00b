// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

class QLocalSocket;

// A program of ours, as it is, driven by the names of its widgets (CommandServer.h has the commands). It gets user
// folders of its own, and ends with the object.
class DrivenProgram
{
public:
    explicit DrivenProgram(const QString& strProgram);
    DrivenProgram(const DrivenProgram&) = delete;
    DrivenProgram& operator=(const DrivenProgram&) = delete;
    ~DrivenProgram();

    void setVariable(const QString& strName, const QString& strValue);
    // False when nobody answers within a minute.
    bool start(const QStringList& arguments);
    // The answer; "ok" is false when there is none.
    QJsonObject call(const QJsonObject& words, int nTimeoutMs = 30000);
    bool click(const QString& strWidget, const QJsonObject& more = {}, int nTimeoutMs = 30000);
    bool key(const QString& strKeys, const QString& strWidget = QString());
    bool type(const QString& strText, const QString& strWidget = QString());
    QJsonObject state(const QString& strWidget);
    bool isVisible(const QString& strWidget);
    // Asks every 20 ms until it is so; false when that took too long.
    bool waitUntil(const std::function<bool()>& holds, int nTimeoutMs = 30000);
    bool waitFor(const QString& strWidget, int nTimeoutMs = 30000);
    bool waitUntilEnabled(const QString& strWidget, int nTimeoutMs = 30000);
    // Of the screen, or of a widget; into pictures/ of the build folder.
    bool picture(const QString& strName, const QString& strWidget = QString());

    bool isRunning();
    // As by "kill -9".
    void kill();
    // Does `meanwhile` every 20 ms until the program has ended; false when that took too long.
    bool waitUntilEnded(const std::function<void()>& meanwhile, int nTimeoutMs = 30000);
    int exitCode() const { return m_process.exitCode(); }
    bool crashed() const { return m_process.exitStatus() == QProcess::CrashExit; }
    qint64 processId() const { return m_process.processId(); }
    QString standardError();
    // For the user's folders ("config", "data", ...) and whatever else belongs to the run.
    QString homePath(const QString& strName) const { return m_home.filePath(strName); }
    // In kB, of the process; 0 after its end.
    qint64 residentMemory() const;

private:
    QTemporaryDir m_home;
    QString m_strProgram;
    QProcessEnvironment m_environment;
    QProcess m_process;
    std::unique_ptr<QLocalSocket> m_pSocket;
    QString m_strErrors;
};
