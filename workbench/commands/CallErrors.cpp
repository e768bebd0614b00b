// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CallErrors.h"

CallRefusal::CallRefusal(const QStringList& sentences, const QString& strCommand)
    : Failure(QStringLiteral("%1 See \"spum %2 --help\".").arg(sentences.join(QLatin1Char(' ')), strCommand),
              Kind::BadRequest),
      m_sentences(sentences), m_strCommand(strCommand)
{
}

void CallErrors::collect(const std::function<void()>& check)
{
    const auto keep = [this](const QStringList& sentences) {
        m_first = m_first ? m_first : std::current_exception();
        for (const QString& sentence : sentences) {
            // One cause may be met by two parts of the look.
            if (!m_sentences.contains(sentence)) {
                m_sentences.append(sentence);
            }
        }
    };
    try {
        check();
    } catch (const CallRefusal& refusal) {
        keep(refusal.sentences());
    } catch (const Failure& failure) {
        if (failure.kind() != Failure::Kind::BadRequest) {
            throw;
        }
        keep({failure.text()});
    }
}

void CallErrors::refuse(const QString& strSentence)
{
    collect([&] { throw CallRefusal({strSentence}, m_strCommand); });
}

void CallErrors::throwAll() const
{
    if (m_sentences.size() == 1) {
        std::rethrow_exception(m_first);
    }
    if (!m_sentences.isEmpty()) {
        throw CallRefusal(m_sentences, m_strCommand);
    }
}
