// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

// Message boxes that the host can answer itself. Every question goes through one responder, which the application
// installs: windows in a desktop, text in a command line, fixed answers in a batch.
class CORVMessageBox
{
public:
    // The values are those of QMessageBox::StandardButton.
    enum Button
    {
        NoButton = 0x0,
        Ok = 0x00000400,
        YesButton = 0x00004000,
        NoButtonAnswer = 0x00010000,
        NoToAllButton = 0x00020000,
        CancelButton = 0x00400000
    };

    // One box; the answer is the button that was pressed, 0 to 2 by position in the six-text forms.
    static int warning(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons = Ok,
                       int nDefault = NoButton);
    static int information(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons = Ok,
                           int nDefault = NoButton);
    static int error(QWidget* pParent, const QString& strCaption, const QString& strText, int nButtons = Ok,
                     int nDefault = NoButton);

    // Six texts: caption, text, three button texts (empty ones are left out), and a detail below the text.
    static int warning(QWidget* pParent, const QString& strCaption, const QString& strText, const QString& strButton0,
                       const QString& strButton1, const QString& strButton2, const QString& strDetail);
    static int information(QWidget* pParent, const QString& strCaption, const QString& strText,
                           const QString& strButton0, const QString& strButton1, const QString& strButton2,
                           const QString& strDetail);
    static int error(QWidget* pParent, const QString& strCaption, const QString& strText, const QString& strButton0,
                     const QString& strButton1, const QString& strButton2, const QString& strDetail);

    // Whether the user backed out of a question that stops a larger operation.
    static void setCancelClicked(bool bClicked);
    static bool getCancelClicked();
};
