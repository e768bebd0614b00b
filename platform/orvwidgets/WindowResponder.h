// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/MessageResponder.h"

namespace orv {

// Puts every question into a window of its own, in front of the window that asks or, when none is named, of the active
// one. Texts are shown as they are, letters that look like markup included. Escape and the window's close button mean
// the answer that changes least. The windows have object names: "MessageBox", "InputDialog", "FileDialog",
// "ColorDialog".
//
// While the host has a batch under way, a message is answered at once where nobody can be waiting for it, by no where
// that is offered, and goes to the log with its answer.
class WindowResponder : public MessageResponder
{
public:
    int ask(const MessageRequest& request) override;
    std::optional<QString> chooseItem(const ItemRequest& request) override;
    std::optional<FileAnswer> chooseFile(const FileRequest& request) override;
    std::optional<QColor> chooseColor(const ColorRequest& request) override;
};

} // namespace orv
