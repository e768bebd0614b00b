// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/Questions.h"

#include "host/CORVMessageBox.h"
#include "platform/orvutils/MessageResponder.h"
#include "platform/orvutils/TextResponder.h"

#include <iostream>
#include <unistd.h>

namespace {

class AgreedResponder : public orv::TextResponder
{
public:
    explicit AgreedResponder(bool bAgreed)
        : orv::TextResponder(std::cerr, ::isatty(STDIN_FILENO) != 0 ? &std::cin : nullptr), m_bAgreed(bAgreed)
    {
    }

    int ask(const orv::MessageRequest& request) override
    {
        if (m_bAgreed && request.answers().contains(CORVMessageBox::YesButton)) {
            return CORVMessageBox::YesButton;
        }
        return orv::TextResponder::ask(request);
    }

private:
    bool m_bAgreed;
};

} // namespace

Questions::Questions(bool bAgreed) : m_pEarlier(orv::setMessageResponder(std::make_unique<AgreedResponder>(bAgreed))) {}

Questions::~Questions()
{
    orv::setMessageResponder(std::move(m_pEarlier));
}
