// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/MessageResponder.h"

namespace orv {

// Answers every question itself, without a word on the screen: with the preferred button where it is on offer, else
// with the default. Each message goes to the log with its answer, at the level of its kind. A question for an item is
// backed out of, which goes to the log as a warning.
class BatchResponder : public MessageResponder
{
public:
    // A value of CORVMessageBox::Button; NoButton prefers none. Without effect on questions with button texts.
    explicit BatchResponder(int nPreferred = 0) : m_nPreferred(nPreferred) {}

    int ask(const MessageRequest& request) override;
    std::optional<QString> chooseItem(const ItemRequest& request) override;

private:
    int m_nPreferred;
};

} // namespace orv
