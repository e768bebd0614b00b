// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/MessageResponder.h"

#include <iosfwd>

namespace orv {

// Messages as text, for a program without windows. With an input stream a question that has a choice is put to the
// user: an answer is the button's text or as much of its beginning as tells it from the others, without regard to case;
// an empty line means the default, and so does the end of the input. Without an input every question is answered with
// the default, and the text says so. An item is chosen from a list in the same way, by its text or the beginning of it;
// an empty line means the one proposed, and the end of the input, or none at all, backs out.
class TextResponder : public MessageResponder
{
public:
    // Both are borrowed; the input may be null.
    explicit TextResponder(std::ostream& output, std::istream* pInput = nullptr);

    int ask(const MessageRequest& request) override;
    std::optional<QString> chooseItem(const ItemRequest& request) override;

private:
    int readAnswer(const MessageRequest& request);
    std::optional<QString> readItem(const ItemRequest& request);

    std::ostream& m_output;
    std::istream* m_pInput;
};

} // namespace orv
