// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"
#include "host/tagROIInfo.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class CILImage;
class CORVDataset;
class CPLClickInfo;

// The regions of interest of a dataset, each with a name of its own.
//
// Regions come back from texts in two steps, so that a caller can look at them between: loadROIData() takes the entries
// of a section "ROIs", or of a result that was made from one, and createROIFromFile() makes regions of what
// getCreatedROIInfoList() gives. readROIData() does both for a click info.
class CROIManager
{
public:
    // Without a dataset there is nothing to measure, the rest serves all the same.
    explicit CROIManager(CORVDataset* pDataset = nullptr);
    ~CROIManager();
    CROIManager(const CROIManager&) = delete;
    CROIManager& operator=(const CROIManager&) = delete;

    // In the order of their making.
    const QList<tagROIInfo>& regions() const { return m_regions; }
    // False, with the reason, when the name is taken or unfit or the shape is none (no extent, points on a line, ...).
    bool addRegion(const tagROIInfo& region, QString* pError = nullptr);
    // False when there is no region of that name.
    bool removeRegion(const QString& strName);
    bool hasRegion(const QString& strName) const;
    // The region keeps its place and its numbers. False, with the reason, when there is none of that name, or the new
    // name is taken or unfit.
    bool renameRegion(const QString& strName, const QString& strNewName, QString* pError = nullptr);

    // Measures every region over the dataset's main data image in that unit; the numbers stay with the regions until
    // the next measurement. What an import added to the image lies beyond it, and pixels that it left out have no
    // value. The image's status when it cannot be had, and ESTATUS_FILE_UNREADABLE, told in the log, when it cannot be
    // read which pixels have none; the regions are then as they were.
    ESTATUS measure(tag_edisplayunit eUnit);
    // The same over that image: the dataset's in that unit, where the caller has it already.
    ESTATUS measureOver(const CILImage& image, tag_edisplayunit eUnit);

    // Takes one entry. The key may have lost its blanks. False for a key that is not of a region.
    bool loadROIData(const QString& strKey, const QString& strValue);
    // The regions that the loaded entries describe, ordered by the number in their keys; owned by the manager and valid
    // until entries are loaded or cleared. messages() then tells what could not be read.
    const QList<tagROIInfo*>* getCreatedROIInfoList();
    // Makes regions of copies; with `bReplace` the present ones go first, without `bStatistics` the numbers that come
    // along are dropped. A name that is taken gets a number behind. ESTATUS_FAILURE when one was no region, told in
    // messages(); the others are made. Null gives ESTATUS_INVALID_ARGUMENT.
    ESTATUS createROIFromFile(const QList<tagROIInfo*>* pInfos, bool bReplace, bool bStatistics);
    // Replaces the regions by those of the click info's section "ROIs"; messages() tells what could not be read.
    void readROIData(const CPLClickInfo& info);
    // Writes regions, and numbers where they were measured, into the section "ROIs". Entries found there that are no
    // readable region stay, other regions go. Without regions and such entries there is no section. Keys consist of
    // letters and digits once their blanks are removed, and begin with a letter. Null gives ESTATUS_INVALID_ARGUMENT.
    ESTATUS saveROIData(CPLClickInfo* pInfo) const;

    // What the last reading or making had to leave out or change, one sentence each.
    const QStringList& messages() const { return m_messages; }

    // Regions, loaded entries and messages.
    void clearAllLists();
    // Loaded entries and what was made of them.
    void clearROIInfoList();

private:
    QString freeName(const QString& strName) const;
    QString reasonAgainstName(const QString& strName) const;

    CORVDataset* m_pDataset;
    QList<tagROIInfo> m_regions;
    QList<QPair<QString, QString>> m_loaded;
    std::vector<std::unique_ptr<tagROIInfo>> m_created;
    QList<tagROIInfo*> m_createdList;
    QStringList m_messages;
};
