// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/AgreedAnswers.h"

#include "host/CORVMessageBox.h"
#include "platform/orvutils/MessageResponder.h"

#include <memory>

namespace {

class AgreedResponder : public orv::MessageResponder
{
public:
    int ask(const orv::MessageRequest& request) override
    {
        return request.answers().contains(CORVMessageBox::YesButton) ? CORVMessageBox::YesButton : other().ask(request);
    }
    std::optional<QString> chooseItem(const orv::ItemRequest& request) override { return other().chooseItem(request); }
    std::optional<orv::FileAnswer> chooseFile(const orv::FileRequest& request) override
    {
        return other().chooseFile(request);
    }
    std::optional<QColor> chooseColor(const orv::ColorRequest& request) override
    {
        return other().chooseColor(request);
    }

    std::unique_ptr<orv::MessageResponder> m_pOther; // null: that of the start

private:
    orv::MessageResponder& other() { return m_pOther ? *m_pOther : orv::firstResponder(); }
};

} // namespace

AgreedAnswers::AgreedAnswers()
{
    auto pAgreed = std::make_unique<AgreedResponder>();
    AgreedResponder& agreed = *pAgreed;
    agreed.m_pOther = orv::setMessageResponder(std::move(pAgreed));
}

AgreedAnswers::~AgreedAnswers()
{
    const auto pAgreed = orv::setMessageResponder(nullptr);
    orv::setMessageResponder(std::move(static_cast<AgreedResponder&>(*pAgreed).m_pOther));
}
