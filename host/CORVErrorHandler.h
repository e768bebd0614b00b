// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

// Tells of an error by its number, with one sentence for each.
class CORVErrorHandler
{
public:
    enum Error
    {
        FolderNotWritable = 64
    };

    // `strText` is what the error is about: the folder for FolderNotWritable, where an empty text means the folder of
    // the file that was chosen last.
    static void errorMessage(QWidget* pParent, int nError, const QString& strText);
};
