// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLClickInfo.h"

#include <QString>
#include <QStringList>

#include <functional>

class CORVDataset;
class CORVSequenceDataset;
class CORVSpumKyvo;
class StagedFolder;

// Makes a sequence of the datasets that an export of maps left in the temporary folder. Throws Failure with file and
// reason.
class MovedMaps
{
public:
    // All are borrowed.
    MovedMaps(CORVSpumKyvo& engine, CORVSequenceDataset& sequence, const StagedFolder& staged);

    // Copies the folder of that click info and completes its two click infos: click number and folder, as the host
    // gives them; the binning of the map's pixels; the component's name; the regions of interest of the map's source,
    // with their numbers.
    void add(const QString& strClickInfo);
    // Gives the first dataset a photograph when none has one, and writes the sequence's info file.
    void finish();

    QString sequenceId() const { return m_strId; }
    const QStringList& names() const { return m_names; }

private:
    void copyFiles(const QString& strFrom, const QString& strName) const;
    // Rewrites both click infos of a dataset.
    void change(const QString& strName, const std::function<void(CPLClickInfo&)>& edit) const;
    void complete(const QString& strName, int nComponent, CPLClickInfo& info) const;
    void takeRegions(const QString& strName, CORVDataset& source) const;
    void lendPhotograph() const;
    void writeInfo() const;

    CORVSpumKyvo& m_engine;
    CORVSequenceDataset& m_sequence;
    const StagedFolder& m_staged;
    QString m_strId;
    QString m_strMark; // tells the click numbers from those of other exports
    QStringList m_names;
};
