// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileLock.h"
#include "files/OwnerRecord.h"

#include <QString>

class JobMonitor;

// The folder of the temporary directory by way of which every export of a sequence goes, held by one program at a time.
// What datasets were made in it goes with this object; those of a program that was killed go by clearAbandoned().
class ExportPlace
{
public:
    // Waits for another export of that sequence. Throws Failure where that lasts too long or the place cannot be had.
    ExportPlace(const QString& strSeqId, JobMonitor* pMonitor);
    ~ExportPlace();
    ExportPlace(const ExportPlace&) = delete;
    ExportPlace& operator=(const ExportPlace&) = delete;

    // To be called every few seconds.
    void keep() { m_lock.keep(); }

    // Removes what killed programs of this user have left, of any sequence.
    static void clearAbandoned();

private:
    QString m_strFolder;
    FileLock m_lock;
    orv::OwnerRecord m_owner;
};
