// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

// Why a command ends early: what the user is told, and the exit status. Thrown on the main thread only.
class CliFailure : public std::exception
{
public:
    enum Status
    {
        Failed = 1,
        Usage = 2,
        Aborted = 130
    };

    explicit CliFailure(const QString& strMessage, Status eStatus = Failed)
        : m_strMessage(strMessage), m_bytes(strMessage.toUtf8()), m_eStatus(eStatus)
    {
    }
    const QString& message() const { return m_strMessage; }
    Status status() const { return m_eStatus; }
    const char* what() const noexcept override { return m_bytes.constData(); }

private:
    QString m_strMessage;
    QByteArray m_bytes;
    Status m_eStatus;
};
