// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

// Questions for a file, answered by the responder that answers CORVMessageBox. `strFolder` is where to start, a folder
// or a file that is proposed; when it is empty, it is the folder in which the user saved or opened something last. The
// folder of every answer is kept for that. `strFilters` are separated by ";;", as in QFileDialog; *pSelected (may be
// null) holds the filter that is proposed and receives the one in use. All answers are empty when the user backs out.
class CORVFileDialog
{
public:
    // A name without a suffix gets the first of the filter in use. Before a file that exists is named the user is asked
    // whether to overwrite it, and after a "no" for another name, unless `bCallerAsks` tells that the caller will.
    static QString getSaveFileName(QWidget* pParent, const QString& strTitle, const QString& strFolder,
                                   const QString& strFilters, QString* pSelected = nullptr, bool bCallerAsks = false);
    static QString getOpenFileName(QWidget* pParent, const QString& strTitle, const QString& strFolder,
                                   const QString& strFilters, QString* pSelected = nullptr);
    // Without a separator at its end.
    static QString getExistingDirectory(QWidget* pParent, const QString& strTitle, const QString& strFolder);
};
