// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLClickInfo.h"

#include <QFile>

// What a section holds, to compare and to print.
struct SectionContent
{
    QString m_strKey;
    QString m_strName;
    QStringList m_keys;
    QStringList m_values;

    bool operator==(const SectionContent& other) const
    {
        return m_strKey == other.m_strKey && m_strName == other.m_strName && m_keys == other.m_keys &&
               m_values == other.m_values;
    }
};

inline SectionContent contentOf(const CPLSection& section)
{
    SectionContent content;
    section.getSectionKey(&content.m_strKey);
    section.getSectionName(&content.m_strName, false);
    section.getKeyList(&content.m_keys);
    section.getValueList(&content.m_values);
    return content;
}

inline QList<SectionContent> contentOf(const CPLClickInfo& info)
{
    QList<SectionContent> contents;
    for (int i = 0; info.section(i) != nullptr; ++i) {
        contents.append(contentOf(*info.section(i)));
    }
    return contents;
}

inline QByteArray bytesOf(const QString& strPath)
{
    QFile file(strPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool putBytes(const QString& strPath, const QByteArray& bytes)
{
    QFile file(strPath);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline QString valueOf(const CPLSection* pSection, const QString& strKey)
{
    QString value = QStringLiteral("(absent)");
    if (pSection != nullptr) {
        pSection->getValue(strKey, &value);
    }
    return value;
}
