// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVMessageBox.h"

#include "host/CORVLog.h"
#include "platform/orvutils/MessageResponder.h"

#include <array>
#include <cstdio>

namespace {

using Kind = orv::MessageRequest::Kind;

orv::MessageResponder* installed = nullptr;
bool cancelClicked = false;

int askStandard(Kind eKind, QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons,
                int nDefault)
{
    orv::MessageRequest request;
    request.kind = eKind;
    request.parent = pParent;
    request.caption = strCaption;
    request.text = strText;
    request.buttons = nButtons;
    request.defaultButton = nDefault;
    return orv::messageResponder().ask(request);
}

int askTexts(Kind eKind, QWidget* pParent, const std::array<QString, 6>& texts)
{
    orv::MessageRequest request;
    request.kind = eKind;
    request.parent = pParent;
    request.caption = texts[0];
    request.text = texts[1];
    request.buttonTexts = QStringList{texts[2], texts[3], texts[4]};
    request.detail = texts[5];
    return orv::messageResponder().ask(request);
}

QString plainText(const orv::MessageRequest& request)
{
    QString text = request.caption.isEmpty() ? request.text : request.caption + QStringLiteral(": ") + request.text;
    return request.detail.isEmpty() ? text : text + QLatin1Char('\n') + request.detail;
}

} // namespace

namespace orv {

int defaultAnswer(const MessageRequest& request)
{
    if (!request.buttonTexts.isEmpty())
        return 0;
    if (request.defaultButton != CORVMessageBox::NoButton)
        return request.defaultButton;
    for (const int button :
         {static_cast<int>(CORVMessageBox::Ok), static_cast<int>(CORVMessageBox::YesButton),
          static_cast<int>(CORVMessageBox::NoButtonAnswer), static_cast<int>(CORVMessageBox::NoToAllButton),
          static_cast<int>(CORVMessageBox::CancelButton)})
        if ((request.buttons & button) != 0)
            return button;
    return CORVMessageBox::Ok;
}

int TextResponder::ask(const MessageRequest& request)
{
    const QByteArray text = plainText(request).toUtf8() + '\n';
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stderr);
    return defaultAnswer(request);
}

int BatchResponder::ask(const MessageRequest& request)
{
    const long level = request.kind == MessageRequest::Kind::Information ? CORVLOG_NOTE : CORVLOG_WARNING;
    CORVLog::getLogObject()->log(plainText(request), QString(), 0, QStringLiteral(__TIME__), level, false);
    return defaultAnswer(request);
}

void setMessageResponder(MessageResponder* pResponder)
{
    installed = pResponder;
}

MessageResponder& messageResponder()
{
    static TextResponder text;
    return installed != nullptr ? *installed : text;
}

} // namespace orv

int CORVMessageBox::warning(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons,
                            int nDefault)
{
    return askStandard(Kind::Warning, pParent, strCaption, strText, nButtons, nDefault);
}

int CORVMessageBox::information(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons,
                                int nDefault)
{
    return askStandard(Kind::Information, pParent, strCaption, strText, nButtons, nDefault);
}

int CORVMessageBox::error(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons,
                          int nDefault)
{
    return askStandard(Kind::Error, pParent, strCaption, strText, nButtons, nDefault);
}

int CORVMessageBox::warning(QWidget* pParent, const QString& strCaption, const QString& strText,
                            const QString& strButton0, const QString& strButton1, const QString& strButton2,
                            const QString& strDetail)
{
    return askTexts(Kind::Warning, pParent, {strCaption, strText, strButton0, strButton1, strButton2, strDetail});
}

int CORVMessageBox::information(QWidget* pParent, const QString& strCaption, const QString& strText,
                                const QString& strButton0, const QString& strButton1, const QString& strButton2,
                                const QString& strDetail)
{
    return askTexts(Kind::Information, pParent, {strCaption, strText, strButton0, strButton1, strButton2, strDetail});
}

int CORVMessageBox::error(QWidget* pParent, const QString& strCaption, const QString& strText,
                          const QString& strButton0, const QString& strButton1, const QString& strButton2,
                          const QString& strDetail)
{
    return askTexts(Kind::Error, pParent, {strCaption, strText, strButton0, strButton1, strButton2, strDetail});
}

void CORVMessageBox::setCancelClicked(bool bClicked)
{
    cancelClicked = bClicked;
}

bool CORVMessageBox::getCancelClicked()
{
    return cancelClicked;
}
