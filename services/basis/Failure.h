// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

// Why something that was asked for is not done: what is wrong and, where that can be said, what to do about it. Whoever
// asked tells the user: the command line on standard error with an exit status, a window in a box. It never leaves the
// thread that throws it.
class Failure : public std::exception
{
public:
    enum class Kind
    {
        Failed,
        BadRequest, // what was asked for makes no sense, whatever the data
        Aborted,    // by the user
        OnlyWarned  // it is done, with warnings that were not to be
    };

    explicit Failure(const QString& strMessage, Kind eKind = Kind::Failed) : Failure(strMessage, QString(), eKind) {}
    Failure(const QString& strMessage, const QString& strWhatToDo, Kind eKind = Kind::Failed)
        : m_strMessage(strMessage), m_strWhatToDo(strWhatToDo), m_bytes(text().toUtf8()), m_eKind(eKind)
    {
    }

    const QString& message() const { return m_strMessage; }
    // Empty when there is nothing to advise.
    const QString& whatToDo() const { return m_strWhatToDo; }
    // Both in one sentence.
    QString text() const
    {
        return m_strWhatToDo.isEmpty() ? m_strMessage : m_strMessage + QStringLiteral("; ") + m_strWhatToDo;
    }
    Kind kind() const { return m_eKind; }
    const char* what() const noexcept override { return m_bytes.constData(); }

private:
    QString m_strMessage;
    QString m_strWhatToDo;
    QByteArray m_bytes;
    Kind m_eKind;
};
