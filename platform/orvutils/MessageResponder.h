// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace orv {

// One question or notice to the user.
struct MessageRequest
{
    enum class Kind
    {
        Warning,
        Information,
        Error
    };
    Kind kind = Kind::Information;
    QWidget* parent = nullptr;
    QString caption;
    QString text;
    QString detail;
    // Either standard buttons with a default (CORVMessageBox::Button), or texts; the answer to texts is their position.
    int buttons = 0;
    int defaultButton = 0;
    QStringList buttonTexts;
};

// Who answers. User-interface thread only.
class MessageResponder
{
public:
    virtual ~MessageResponder() = default;
    virtual int ask(const MessageRequest& request) = 0;
};

// The answer of somebody who presses Return: the default button, else the first button, position 0 among texts.
int defaultAnswer(const MessageRequest& request);

// Writes the text to standard error and gives the default answer: for a command line.
class TextResponder : public MessageResponder
{
public:
    int ask(const MessageRequest& request) override;
};

// Gives the default answer and only logs the text: for a batch.
class BatchResponder : public MessageResponder
{
public:
    int ask(const MessageRequest& request) override;
};

// Installs who answers from now on; not owned, null restores the text responder.
void setMessageResponder(MessageResponder* pResponder);
MessageResponder& messageResponder();

} // namespace orv
