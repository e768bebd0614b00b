// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/MessageRequest.h"

#include "host/CORVMessageBox.h"

namespace orv {

namespace {

struct NamedButton
{
    int m_nButton;
    const char* m_pText;
};

constexpr NamedButton namedButtons[] = {{CORVMessageBox::Ok, "OK"},
                                        {CORVMessageBox::YesButton, "Yes"},
                                        {CORVMessageBox::NoButtonAnswer, "No"},
                                        {CORVMessageBox::NoToAllButton, "No to All"},
                                        {CORVMessageBox::CancelButton, "Cancel"}};

} // namespace

QList<int> MessageRequest::answers() const
{
    QList<int> found;
    for (int i = 0; i < m_buttonTexts.size(); ++i) {
        if (!m_buttonTexts[i].isEmpty()) {
            found.append(i);
        }
    }
    if (!m_buttonTexts.isEmpty()) {
        return found.isEmpty() ? QList<int>{0} : found;
    }
    for (const auto& named : namedButtons) {
        if ((m_nButtons & named.m_nButton) != 0) {
            found.append(named.m_nButton);
        }
    }
    return found.isEmpty() ? QList<int>{CORVMessageBox::Ok} : found;
}

QString MessageRequest::answerText(int nAnswer) const
{
    if (!m_buttonTexts.isEmpty()) {
        return m_buttonTexts.value(nAnswer).isEmpty() ? QStringLiteral("OK") : m_buttonTexts.value(nAnswer);
    }
    for (const auto& named : namedButtons) {
        if (named.m_nButton == nAnswer) {
            return QString::fromLatin1(named.m_pText);
        }
    }
    return QString();
}

int MessageRequest::defaultAnswer() const
{
    const QList<int> offered = answers();
    if (!m_buttonTexts.isEmpty()) {
        return offered.first();
    }
    for (const int wish : {m_nDefault, static_cast<int>(CORVMessageBox::CancelButton),
                           static_cast<int>(CORVMessageBox::NoButtonAnswer)}) {
        if (offered.contains(wish)) {
            return wish;
        }
    }
    return offered.first();
}

} // namespace orv
