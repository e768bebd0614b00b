// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/MessageRequest.h"

#include <memory>

namespace orv {

// Who answers the questions of CORVMessageBox.
class MessageResponder
{
public:
    virtual ~MessageResponder() = default;
    // The button chosen: a value of CORVMessageBox::Button, or the position of the text for a request with button texts.
    virtual int ask(const MessageRequest& request) = 0;
};

// Installs a responder and hands back the earlier one; null installs the one of the start, which puts the text on standard error
// and answers with the default. Questions are asked on the user-interface thread, and so is this called.
std::unique_ptr<MessageResponder> setMessageResponder(std::unique_ptr<MessageResponder> pResponder);

} // namespace orv
