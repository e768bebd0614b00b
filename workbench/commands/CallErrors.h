// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/Failure.h"

#include <QString>
#include <QStringList>

#include <exception>
#include <functional>

// Why a call of a command is wrong: sentences, and the command whose help tells how it is called.
class CallRefusal : public Failure
{
public:
    CallRefusal(const QStringList& sentences, const QString& strCommand);

    const QStringList& sentences() const { return m_sentences; }
    const QString& command() const { return m_strCommand; }

private:
    QStringList m_sentences;
    QString m_strCommand;
};

// Looks at everything that a call asks for before anything of it is refused, so that the user hears of all that is
// wrong at once.
class CallErrors
{
public:
    explicit CallErrors(const QString& strCommand) : m_strCommand(strCommand) {}

    // Runs one part of the look; a Failure that refuses the call (bad request) is kept, any other goes through.
    void collect(const std::function<void()>& check);
    // Keeps a sentence of this command's own.
    void refuse(const QString& strSentence);
    // Throws what was kept: a single one as it came, several as one CallRefusal.
    void throwAll() const;

    const QStringList& sentences() const { return m_sentences; }

private:
    QString m_strCommand;
    QStringList m_sentences;
    std::exception_ptr m_first;
};
