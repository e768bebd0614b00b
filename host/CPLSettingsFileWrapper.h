// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLClickInfo.h"

#include <QStringList>

// A keyed file of named entries: each section is an entry with a menu name and a file name, stored under tags that the
// caller sets before use. Comparisons of menu names are exact.
class CPLSettingsFileWrapper : public CPLClickInfo
{
public:
    // Reads the file; false when it cannot be read or is broken (a skipped line counts: saving would lose it), with the
    // reasons in the log. An empty file is an empty list. The path is kept for save().
    bool load(const QString& strPath);
    // Writes to the path of the last load, atomically; false on failure, the file is then as it was.
    bool save() const;

    void setMenuNameTag(const QString& strTag) { m_strMenuNameTag = strTag; }
    void setFileNameTag(const QString& strTag) { m_strFileNameTag = strTag; }
    void setAutoMenuNameTag(const QString& strTag) { m_strAutoMenuNameTag = strTag; }

    // The menu names of all entries, or of those added under `strSectionKey`, in file order.
    QStringList getMenuNames() const;
    QStringList getMenuNames(const QString& strSectionKey) const;
    // The file name of the entry, or the default when there is no such entry or it has no file name.
    QString getFileNameForMenuName(const QString& strMenuName, QString strDefault) const;
    // False when there is no such entry.
    bool setFileNameForMenuName(const QString& strMenuName, const QString& strFileName);
    // The tag with the smallest positive number, in three digits at least, that no entry has yet: "SPUM_001".
    QString getNextAutoMenuName() const;
    // Appends an entry; false when a tag is unset, the key or the menu name is empty, or the menu name is taken. The
    // entry's section bears `strSectionKey` as its name; as its key the same, made unique by a number behind, so that
    // removeSection() of the key read from an entry removes exactly that entry.
    bool addSection(const QString& strSectionKey, const QString& strMenuName, const QString& strFileName);
    using CPLClickInfo::addSection;
    // The entry, or null; owned by the wrapper.
    CPLSection* getSectionByMenuName(const QString& strMenuName);

private:
    const CPLSection* find(const QString& strMenuName) const;

    QString m_strPath;
    QString m_strMenuNameTag;
    QString m_strFileNameTag;
    QString m_strAutoMenuNameTag;
};
