// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/ColorRequest.h"
#include "platform/orvutils/FileRequest.h"
#include "platform/orvutils/ItemRequest.h"
#include "platform/orvutils/MessageRequest.h"

#include <memory>
#include <optional>

namespace orv {

// Who answers the questions of CORVMessageBox, CORVInputDialog, CORVFileDialog and CORVColorDialog.
class MessageResponder
{
public:
    virtual ~MessageResponder() = default;
    // The button chosen: a value of CORVMessageBox::Button, or the position of the text for a request with button
    // texts.
    virtual int ask(const MessageRequest& request) = 0;
    // The item chosen, or no value when the user backs out. Who has no user to ask backs out: no item is the one that
    // changes least.
    virtual std::optional<QString> chooseItem(const ItemRequest& request);
    // The path, or no value when the user backs out, as who has no user to ask does. Whether a file that exists may be
    // overwritten is not asked here.
    virtual std::optional<FileAnswer> chooseFile(const FileRequest& request);
    virtual std::optional<QColor> chooseColor(const ColorRequest& request);
};

// Installs a responder and hands back the earlier one; null installs the one of the start, which puts the text on
// standard error and answers with the default. Questions are asked on the user-interface thread, and so is this called.
std::unique_ptr<MessageResponder> setMessageResponder(std::unique_ptr<MessageResponder> pResponder);
// The one in use; valid until another is installed.
MessageResponder& messageResponder();
// The one of the start.
MessageResponder& firstResponder();

} // namespace orv
