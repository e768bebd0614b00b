// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/TextResponder.h"

#include "platform/orvutils/printable.h"

#include <istream>
#include <ostream>
#include <string>

namespace orv {

namespace {

std::string local(const QString& strText)
{
    return printable(strText).toLocal8Bit().toStdString();
}

const char* kindWord(MessageRequest::Kind eKind)
{
    switch (eKind) {
    case MessageRequest::Warning:
        return "Warning: ";
    case MessageRequest::Error:
        return "Error: ";
    case MessageRequest::Information:
        break;
    }
    return "";
}

// The answer that the typed text names, or -1: an exact text first, else the only one that begins so.
int matchAnswer(const MessageRequest& request, const QString& strTyped)
{
    QList<int> beginning;
    for (const int answer : request.answers()) {
        const QString text = request.answerText(answer);
        if (text.compare(strTyped, Qt::CaseInsensitive) == 0) {
            return answer;
        }
        if (text.startsWith(strTyped, Qt::CaseInsensitive)) {
            beginning.append(answer);
        }
    }
    return beginning.size() == 1 ? beginning.first() : -1;
}

// The item that the typed text names, by the same rules.
std::optional<QString> matchItem(const ItemRequest& request, const QString& strTyped)
{
    if (strTyped.isEmpty()) {
        return request.m_nCurrent >= 0 && request.m_nCurrent < request.m_items.size()
                   ? std::optional<QString>(request.m_items[request.m_nCurrent])
                   : std::nullopt;
    }
    QStringList beginning;
    for (const QString& item : request.m_items) {
        if (item.compare(strTyped, Qt::CaseInsensitive) == 0) {
            return item;
        }
        if (item.startsWith(strTyped, Qt::CaseInsensitive)) {
            beginning.append(item);
        }
    }
    if (beginning.size() == 1) {
        return beginning.first();
    }
    return request.m_bEditable ? std::optional<QString>(strTyped) : std::nullopt;
}

} // namespace

TextResponder::TextResponder(std::ostream& output, std::istream* pInput) : m_output(output), m_pInput(pInput) {}

int TextResponder::ask(const MessageRequest& request)
{
    m_output << kindWord(request.m_eKind);
    if (!request.m_strCaption.isEmpty()) {
        m_output << local(request.m_strCaption) << ": ";
    }
    m_output << local(request.m_strText) << '\n';
    if (!request.m_strDetail.isEmpty()) {
        m_output << local(request.m_strDetail) << '\n';
    }
    const QList<int> answers = request.answers();
    if (answers.size() == 1) {
        return answers.first();
    }
    if (m_pInput) {
        return readAnswer(request);
    }
    const int answer = request.defaultAnswer();
    m_output << "(answered: " << local(request.answerText(answer)) << ")\n";
    return answer;
}

int TextResponder::readAnswer(const MessageRequest& request)
{
    QStringList texts;
    for (const int answer : request.answers()) {
        texts.append(request.answerText(answer));
    }
    const int fallback = request.defaultAnswer();
    std::string line;
    while (true) {
        m_output << local(texts.join(QStringLiteral(" / "))) << " [" << local(request.answerText(fallback)) << "]? "
                 << std::flush;
        if (!std::getline(*m_pInput, line)) {
            m_output << '\n';
            return fallback;
        }
        const QString typed = QString::fromLocal8Bit(line.c_str()).trimmed();
        const int answer = typed.isEmpty() ? fallback : matchAnswer(request, typed);
        if (request.answers().contains(answer)) {
            return answer;
        }
    }
}

std::optional<QString> TextResponder::chooseItem(const ItemRequest& request)
{
    if (!request.m_strTitle.isEmpty()) {
        m_output << local(request.m_strTitle) << ": ";
    }
    m_output << local(request.m_strLabel) << '\n';
    if (m_pInput) {
        return readItem(request);
    }
    m_output << "(nothing chosen)\n";
    return std::nullopt;
}

std::optional<QString> TextResponder::readItem(const ItemRequest& request)
{
    std::string line;
    while (true) {
        m_output << local(request.m_items.join(QStringLiteral(" / ")));
        if (const std::optional<QString> proposed = matchItem(request, QString())) {
            m_output << " [" << local(*proposed) << ']';
        }
        m_output << "? " << std::flush;
        if (!std::getline(*m_pInput, line)) {
            m_output << '\n';
            return std::nullopt;
        }
        if (const std::optional<QString> item = matchItem(request, QString::fromLocal8Bit(line.c_str()).trimmed())) {
            return item;
        }
    }
}

} // namespace orv
