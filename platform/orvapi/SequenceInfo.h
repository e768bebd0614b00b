// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLClickInfo.h"
#include "host/orv_types.h"

#include <QString>
#include <QStringList>

#include <optional>

// The contents of a "SequenceInfo.txt". What the file does not say, or says in a way that cannot be read, has no value.
struct SequenceInfo
{
    QString id;
    QString name;
    std::optional<bool> temporal;
    std::optional<bool> fluorescence;
    std::optional<bool> transillumination;
    bool secondKind = false;
    bool sceneOnly3D = false;
    bool ctScan = false;
    bool ctComplete = false;
    tag_simageadjust adjust;
    QStringList folders;               // of the datasets, in order
    int refusedFolders = 0;            // named, but not below the sequence's; empty names do not count
    std::optional<int> announcedCount; // how many folders the file announces
};

// Reads the sections. False when there is no section of a sequence at all; what could not be read is told in `warnings`
// with the file's name `strFile` in front. Folders that are not plainly below the sequence's are left out and told.
bool readSequenceInfo(const CPLClickInfo& sections, const QString& strFile, SequenceInfo* pInfo, QStringList& warnings);

// The sections of a file that reads as `info`.
CPLClickInfo sequenceInfoSections(const SequenceInfo& info);

// True for a relative path that stays below the folder it starts in.
bool staysBelow(const QString& strPath);
