// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLSection.h"

#include <QList>
#include <QSharedPointer>
#include <QString>

// The sections of one click, in file order. Copies share nothing.
class CPLClickInfo
{
public:
    CPLClickInfo() = default;
    CPLClickInfo(const CPLClickInfo& other);
    CPLClickInfo& operator=(const CPLClickInfo& other);
    virtual ~CPLClickInfo() = default;

    // The first section of that key, or null; owned by the click info.
    CPLSection* operator[](const QString& strKey);
    const CPLSection* operator[](const QString& strKey) const;
    CPLSection* section(int nIndex);
    const CPLSection* section(int nIndex) const;

    // Entry "ClickNumber" of the section "ClickNumber"; non-zero when absent.
    int getClickNumber(QString* pNumber) const;
    int getSectionCount(int* pCount) const;

    // Appends a copy; null is refused with non-zero.
    int addSection(const CPLSection* pSection);
    // Removes the first section of that key; non-zero when there is none.
    int removeSection(const QString& strKey);
    void clear() { m_sections.clear(); }

    // Reads a file, tolerantly: unknown keys and sections are kept, an unreadable line is skipped and told in
    // `pWarnings` as "file:line: what is wrong". Non-zero when the file cannot be read or is no text of this kind;
    // the sections are then empty and `pWarnings` tells the file and the reason.
    int loadClickInfo(const QString& strPath, QStringList* pWarnings = nullptr);
    // As above from text; strPath serves the messages.
    int parse(const QByteArray& text, const QString& strPath, QStringList* pWarnings = nullptr);
    // The text of a file.
    QByteArray toText() const;
    // Writes atomically. Non-zero on failure, with the reason in the log; an earlier file is then untouched.
    int saveClickInfo(const QString& strPath) const;

protected:
    QList<QSharedPointer<CPLSection>> m_sections;
};
