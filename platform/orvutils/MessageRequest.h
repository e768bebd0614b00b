// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace orv {

// A message or question to the user.
struct MessageRequest
{
    enum Kind
    {
        Warning,
        Information,
        Error
    };

    Kind m_eKind = Information;
    QWidget* m_pParent = nullptr; // may be null; borrowed for the time of the question
    QString m_strCaption;
    QString m_strText;
    QString m_strDetail; // below the text, may be empty
    // Values of CORVMessageBox::Button, or-ed; NoButton when the button texts count.
    int m_nButtons = 0;
    int m_nDefault = 0; // NoButton: none was named
    // Three texts, of which empty ones are no buttons; an empty list when m_nButtons counts.
    QStringList m_buttonTexts;

    // The answers on offer, in the order of Ok, Yes, No, No to All, Cancel or of the texts. Never empty: a question
    // without a button is answered with Ok, or with position 0.
    QList<int> answers() const;
    // The text of an answer, such as "No to All".
    QString answerText(int nAnswer) const;
    // The default button when it is on offer, else the answer that changes least: Cancel before No before the first.
    // With button texts the first.
    int defaultAnswer() const;
};

} // namespace orv
