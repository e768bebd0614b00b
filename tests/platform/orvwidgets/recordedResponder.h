// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/MessageResponder.h"

#include <QStringList>

#include <utility>

// Answers every question with one button and keeps the texts, while it lives.
class RecordedResponder
{
public:
    explicit RecordedResponder(int nAnswer)
    {
        m_before = orv::setMessageResponder(std::make_unique<Answers>(nAnswer, m_asked));
    }
    ~RecordedResponder() { orv::setMessageResponder(std::move(m_before)); }
    RecordedResponder(const RecordedResponder&) = delete;
    RecordedResponder& operator=(const RecordedResponder&) = delete;

    const QStringList& asked() const { return m_asked; }

private:
    class Answers : public orv::MessageResponder
    {
    public:
        Answers(int nAnswer, QStringList& asked) : m_nAnswer(nAnswer), m_asked(asked) {}
        int ask(const orv::MessageRequest& request) override
        {
            m_asked << request.m_strText;
            return m_nAnswer;
        }

    private:
        int m_nAnswer;
        QStringList& m_asked;
    };

    QStringList m_asked;
    std::unique_ptr<orv::MessageResponder> m_before;
};
