// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/BatchResponder.h"

#include "host/CORVLog.h"

namespace orv {

namespace {

long levelOf(MessageRequest::Kind eKind)
{
    switch (eKind) {
    case MessageRequest::Warning:
        return CORVLOG_WARNING;
    case MessageRequest::Error:
        return CORVLOG_ERROR;
    case MessageRequest::Information:
        break;
    }
    return CORVLOG_NOTE;
}

} // namespace

int BatchResponder::ask(const MessageRequest& request)
{
    const bool preferred = request.m_buttonTexts.isEmpty() && request.answers().contains(m_nPreferred);
    const int answer = preferred ? m_nPreferred : request.defaultAnswer();
    const QString text =
        request.m_strDetail.isEmpty() ? request.m_strText : request.m_strText + QLatin1Char('\n') + request.m_strDetail;
    CORVLog::getLogObject()->log(text, QStringLiteral("answered: ") + request.answerText(answer), 0, QString(),
                                 levelOf(request.m_eKind), false);
    return answer;
}

std::optional<QString> BatchResponder::chooseItem(const ItemRequest& request)
{
    CORVLog::getLogObject()->log(request.m_strLabel, QStringLiteral("nothing chosen"), 0, QString(), CORVLOG_WARNING,
                                 false);
    return std::nullopt;
}

} // namespace orv
