// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/MessageResponder.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <utility>

// Answers the program's questions while it lives: messages with one answer, files with one path. What was asked is
// kept.
class ScriptedResponder
{
public:
    ScriptedResponder() { m_pBefore = orv::setMessageResponder(std::make_unique<Answers>(*this)); }
    ~ScriptedResponder() { orv::setMessageResponder(std::move(m_pBefore)); }
    ScriptedResponder(const ScriptedResponder&) = delete;
    ScriptedResponder& operator=(const ScriptedResponder&) = delete;

    int m_nAnswer = 0;
    std::optional<QString> m_file;
    QStringList m_asked;                // texts of messages
    QStringList m_titles;               // of questions for files
    std::function<void()> m_whileAsked; // what happens while the question is open

private:
    class Answers : public orv::MessageResponder
    {
    public:
        explicit Answers(ScriptedResponder& script) : m_script(script) {}
        int ask(const orv::MessageRequest& request) override
        {
            m_script.m_asked << request.m_strText;
            if (m_script.m_whileAsked) {
                m_script.m_whileAsked();
            }
            return m_script.m_nAnswer;
        }
        std::optional<orv::FileAnswer> chooseFile(const orv::FileRequest& request) override
        {
            m_script.m_titles << request.m_strTitle;
            return m_script.m_file ? std::optional<orv::FileAnswer>({*m_script.m_file, QString()}) : std::nullopt;
        }

    private:
        ScriptedResponder& m_script;
    };

    std::unique_ptr<orv::MessageResponder> m_pBefore;
};
