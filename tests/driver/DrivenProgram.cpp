// SPDX-License-Identifier: GPL-3.0-or-later
#include "driver/DrivenProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QThread>

namespace {

constexpr int startTimeoutMs = 60000;

} // namespace

DrivenProgram::DrivenProgram(const QString& strProgram)
    : m_strProgram(strProgram), m_environment(QProcessEnvironment::systemEnvironment())
{
    for (const char* pFolder : {"config", "data", "cache", "tmp"}) {
        QDir(m_home.path()).mkdir(pFolder);
    }
    m_environment.insert("XDG_CONFIG_HOME", m_home.filePath("config"));
    m_environment.insert("XDG_DATA_HOME", m_home.filePath("data"));
    m_environment.insert("XDG_CACHE_HOME", m_home.filePath("cache"));
    m_environment.insert("TMPDIR", m_home.filePath("tmp"));
    m_environment.insert("QT_PLUGIN_PATH", QStringLiteral(ORV_BINARY_DIR "/tests/plugins"));
    m_environment.insert("QT_QPA_GENERIC_PLUGINS", "orvdriver:" + m_home.filePath("socket"));
}

DrivenProgram::~DrivenProgram()
{
    if (isRunning()) {
        kill();
    }
}

void DrivenProgram::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

void DrivenProgram::setVariable(const QString& strName, const QString& strValue)
{
    m_environment.insert(strName, strValue);
}

bool DrivenProgram::start(const QStringList& arguments)
{
    m_pSocket = std::make_unique<QLocalSocket>();
    QFile::remove(m_home.filePath("socket"));
    m_process.setProcessEnvironment(m_environment);
    m_process.start(m_strProgram, arguments);
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < startTimeoutMs && isRunning()) {
        m_pSocket->connectToServer(m_home.filePath("socket"));
        if (m_pSocket->waitForConnected(100)) {
            return true;
        }
        QThread::msleep(20);
    }
    return false;
}

bool DrivenProgram::isRunning()
{
    m_process.waitForFinished(0);
    return m_process.state() != QProcess::NotRunning;
}

QJsonObject DrivenProgram::call(const QJsonObject& words, int nTimeoutMs)
{
    if (m_pSocket == nullptr || m_pSocket->state() != QLocalSocket::ConnectedState) {
        return {{"ok", false}, {"error", "not connected"}};
    }
    m_pSocket->write(QJsonDocument(words).toJson(QJsonDocument::Compact) + '\n');
    m_pSocket->flush();
    QElapsedTimer clock;
    clock.start();
    while (!m_pSocket->canReadLine()) {
        const int nLeft = nTimeoutMs - static_cast<int>(clock.elapsed());
        if (nLeft <= 0 || m_pSocket->state() != QLocalSocket::ConnectedState) {
            return {{"ok", false}, {"error", "no answer"}};
        }
        m_pSocket->waitForReadyRead(qMin(nLeft, 200));
        isRunning(); // takes in what the program writes, so that it never waits for a full pipe
    }
    return QJsonDocument::fromJson(m_pSocket->readLine()).object();
}

bool DrivenProgram::click(const QString& strWidget, const QJsonObject& more, int nTimeoutMs)
{
    QJsonObject words = more;
    words["do"] = "click";
    words["widget"] = strWidget;
    return call(words, nTimeoutMs)["ok"].toBool();
}

bool DrivenProgram::key(const QString& strKeys, const QString& strWidget)
{
    return call({{"do", "key"}, {"keys", strKeys}, {"widget", strWidget}})["ok"].toBool();
}

bool DrivenProgram::type(const QString& strText, const QString& strWidget)
{
    return call({{"do", "type"}, {"text", strText}, {"widget", strWidget}})["ok"].toBool();
}

QJsonObject DrivenProgram::state(const QString& strWidget)
{
    return call({{"do", "find"}, {"widget", strWidget}});
}

bool DrivenProgram::isVisible(const QString& strWidget)
{
    return state(strWidget)["visible"].toBool();
}

bool DrivenProgram::waitUntil(const std::function<bool()>& holds, int nTimeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds()) {
        if (clock.elapsed() > nTimeoutMs || !isRunning()) {
            return false;
        }
        QThread::msleep(20);
    }
    return true;
}

bool DrivenProgram::waitFor(const QString& strWidget, int nTimeoutMs)
{
    return waitUntil([&] { return isVisible(strWidget); }, nTimeoutMs);
}

bool DrivenProgram::waitUntilEnabled(const QString& strWidget, int nTimeoutMs)
{
    return waitUntil([&] { return state(strWidget)["enabled"].toBool(); }, nTimeoutMs);
}

bool DrivenProgram::picture(const QString& strName, const QString& strWidget)
{
    const QString strFile = QStringLiteral(ORV_BINARY_DIR "/pictures/") + strName;
    QDir().mkpath(QFileInfo(strFile).path());
    QJsonObject words{{"do", "grab"}, {"file", strFile}};
    if (!strWidget.isEmpty()) {
        words["widget"] = strWidget;
    }
    return call(words)["ok"].toBool();
}

bool DrivenProgram::waitUntilEnded(const std::function<void()>& meanwhile, int nTimeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (isRunning()) {
        if (clock.elapsed() > nTimeoutMs) {
            return false;
        }
        meanwhile();
        QThread::msleep(20);
    }
    return true;
}

QString DrivenProgram::standardError()
{
    m_strErrors += QString::fromLocal8Bit(m_process.readAllStandardError());
    return m_strErrors;
}

qint64 DrivenProgram::residentMemory() const
{
    QFile file(QStringLiteral("/proc/%1/status").arg(m_process.processId()));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').first().toLongLong();
        }
    }
    return 0;
}
