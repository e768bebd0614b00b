// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace orv {

// A question for a file or a folder.
struct FileRequest
{
    enum Kind
    {
        SaveFile,
        OpenFile,
        Folder // one that exists
    };

    Kind m_eKind = SaveFile;
    QWidget* m_pParent = nullptr; // may be null; borrowed for the time of the question
    QString m_strTitle;
    QString m_strFolder;         // where to start: a folder, or a file in it that is proposed
    QStringList m_filters;       // such as "PNG image (*.png)"; empty for every file
    QString m_strSelectedFilter; // the one that is proposed; the first when it is none of them
};

// The answer: a path, and the filter that was in use when it was chosen.
struct FileAnswer
{
    QString m_strPath;
    QString m_strFilter;
};

} // namespace orv
