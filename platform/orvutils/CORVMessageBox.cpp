// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVMessageBox.h"

#include "platform/orvutils/MessageResponder.h"
#include "platform/orvutils/TextResponder.h"

#include <atomic>
#include <iostream>

namespace orv {

namespace {

std::unique_ptr<MessageResponder>& installedResponder()
{
    static std::unique_ptr<MessageResponder> pResponder;
    return pResponder;
}

std::atomic<bool> cancelClicked{false};

int askButtons(MessageRequest::Kind eKind, QWidget* pParent, const QString& strCaption, const QString& strText,
               int nButtons, int nDefault)
{
    MessageRequest request;
    request.m_eKind = eKind;
    request.m_pParent = pParent;
    request.m_strCaption = strCaption;
    request.m_strText = strText;
    request.m_nButtons = nButtons;
    request.m_nDefault = nDefault;
    return messageResponder().ask(request);
}

int askTexts(MessageRequest::Kind eKind, QWidget* pParent, const QString& strCaption, const QString& strText,
             const QStringList& buttonTexts, const QString& strDetail)
{
    MessageRequest request;
    request.m_eKind = eKind;
    request.m_pParent = pParent;
    request.m_strCaption = strCaption;
    request.m_strText = strText;
    request.m_strDetail = strDetail;
    request.m_buttonTexts = buttonTexts;
    return messageResponder().ask(request);
}

} // namespace

std::unique_ptr<MessageResponder> setMessageResponder(std::unique_ptr<MessageResponder> pResponder)
{
    std::swap(installedResponder(), pResponder);
    return pResponder;
}

MessageResponder& messageResponder()
{
    return installedResponder() ? *installedResponder() : firstResponder();
}

MessageResponder& firstResponder()
{
    static TextResponder s_ofTheStart(std::cerr);
    return s_ofTheStart;
}

std::optional<QString> MessageResponder::chooseItem(const ItemRequest&)
{
    return std::nullopt;
}

std::optional<FileAnswer> MessageResponder::chooseFile(const FileRequest&)
{
    return std::nullopt;
}

std::optional<QColor> MessageResponder::chooseColor(const ColorRequest&)
{
    return std::nullopt;
}

} // namespace orv

int CORVMessageBox::warning(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons,
                            int nDefault)
{
    return orv::askButtons(orv::MessageRequest::Warning, pParent, strCaption, strText, nButtons, nDefault);
}

int CORVMessageBox::information(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons,
                                int nDefault)
{
    return orv::askButtons(orv::MessageRequest::Information, pParent, strCaption, strText, nButtons, nDefault);
}

int CORVMessageBox::error(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons,
                          int nDefault)
{
    return orv::askButtons(orv::MessageRequest::Error, pParent, strCaption, strText, nButtons, nDefault);
}

int CORVMessageBox::warning(QWidget* pParent, const QString& strCaption, const QString& strText,
                            const QString& strButton0, const QString& strButton1, const QString& strButton2,
                            const QString& strDetail)
{
    return orv::askTexts(orv::MessageRequest::Warning, pParent, strCaption, strText,
                         {strButton0, strButton1, strButton2}, strDetail);
}

int CORVMessageBox::information(QWidget* pParent, const QString& strCaption, const QString& strText,
                                const QString& strButton0, const QString& strButton1, const QString& strButton2,
                                const QString& strDetail)
{
    return orv::askTexts(orv::MessageRequest::Information, pParent, strCaption, strText,
                         {strButton0, strButton1, strButton2}, strDetail);
}

int CORVMessageBox::error(QWidget* pParent, const QString& strCaption, const QString& strText,
                          const QString& strButton0, const QString& strButton1, const QString& strButton2,
                          const QString& strDetail)
{
    return orv::askTexts(orv::MessageRequest::Error, pParent, strCaption, strText, {strButton0, strButton1, strButton2},
                         strDetail);
}

void CORVMessageBox::setCancelClicked(bool bClicked)
{
    orv::cancelClicked = bClicked;
}

bool CORVMessageBox::getCancelClicked()
{
    return orv::cancelClicked;
}
