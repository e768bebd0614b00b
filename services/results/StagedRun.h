// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/resultPlace.h"

#include <QJsonObject>
#include <QString>

#include <memory>

class JobMonitor;
class StagedFolder;

// What there is to say of finished work: for people, and for programs.
struct RunAnswer
{
    QString text;
    QJsonObject json;
};

// Work whose files appear in a folder all together or not at all, from the choice of the folder to the answer. Without
// finish() nothing is left of it.
class StagedRun
{
public:
    // `strMark` is the file that marks such a folder as ours: an earlier one is replaced only with `bForce`. Throws
    // Failure where the folder cannot be written or holds something else.
    StagedRun(const ResultPlace& place, bool bForce, const QString& strMark);
    StagedRun(const QString& strTarget, bool bForce, const QString& strMark);
    ~StagedRun();
    StagedRun(const StagedRun&) = delete;
    StagedRun& operator=(const StagedRun&) = delete;

    // Where the files are to be written meanwhile, with a separator at its end.
    QString path() const;
    // Where they will be.
    QString target() const;
    // The name of that folder.
    QString name() const;
    // Puts them there, unless the user wants the work to stop, and ends the progress.
    void finish(JobMonitor& monitor);
    // The text and the object, both with the folder; the text with the place's remark.
    RunAnswer answer(const QString& strText, const QJsonObject& json) const;

private:
    std::unique_ptr<StagedFolder> m_pFolder;
    QString m_strRemark;
};
