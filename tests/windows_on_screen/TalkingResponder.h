// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVMessageBox.h"
#include "platform/orvutils/MessageResponder.h"

#include <QStringList>

// What a user is asked and answers, in order. Without an answer left he backs out.
struct Talk
{
    QStringList files;     // to questions for a file
    QList<int> buttons;    // to message boxes
    QStringList questions; // titles and texts that came
    QList<int> offered;
    QStringList folders; // in which questions for files start
    QStringList filters;
    QStringList proposed; // filters
    QString inUse;        // the filter with which files are chosen; empty for the first
};

class TalkingResponder : public orv::MessageResponder
{
public:
    explicit TalkingResponder(Talk& talk) : m_talk(talk) {}
    int ask(const orv::MessageRequest& request) override
    {
        m_talk.questions << request.m_strText;
        m_talk.offered << request.m_nButtons;
        return m_talk.buttons.isEmpty() ? static_cast<int>(CORVMessageBox::CancelButton) : m_talk.buttons.takeFirst();
    }
    std::optional<orv::FileAnswer> chooseFile(const orv::FileRequest& request) override
    {
        m_talk.questions << request.m_strTitle;
        m_talk.folders << request.m_strFolder;
        m_talk.filters << request.m_filters;
        m_talk.proposed << request.m_strSelectedFilter;
        if (m_talk.files.isEmpty()) {
            return std::nullopt;
        }
        return orv::FileAnswer{m_talk.files.takeFirst(),
                               m_talk.inUse.isEmpty() ? request.m_filters.value(0) : m_talk.inUse};
    }

private:
    Talk& m_talk;
};
