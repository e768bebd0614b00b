// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// A named set of key and value pairs in file order. Keys compare exactly; a section has a key (which names it in a
// file) and a display name.
class CPLSection
{
public:
    CPLSection() = default;
    explicit CPLSection(const QString& strKey, const QString& strName = QString());

    // The value of a key; 0 on success. Non-zero when the key is absent, or when the text does not begin with a decimal
    // number of the C locale that fits the type ("12.5 s" is 12.5; "12,5", "nan" and, for an int, "12.5" are refused);
    // the output is then untouched. Of a key that is there twice the first entry counts.
    int getValue(const QString& strKey, QString* pValue) const;
    int getValue(const QString& strKey, float* pValue) const;
    int getValue(const QString& strKey, double* pValue) const;
    int getValue(const QString& strKey, int* pValue) const;

    // Replaces the value of the first entry of the key, or appends an entry.
    void setValue(const QString& strKey, const QString& strValue);
    void setValue(const QString& strKey, int nValue);
    // Appends an entry, whether the key is there or not.
    void addKeyValue(const QString& strKey, const QString& strValue);
    // Removes every entry of the key.
    void removeKey(const QString& strKey);

    bool isKeyPresent(const QString& strKey) const;
    // In file order, both of the same length.
    void getKeyList(QStringList* pKeys) const;
    void getValueList(QStringList* pValues) const;
    int count() const { return m_entries.size(); }

    // With `bTrimmed` without blanks at the ends. 0 on success.
    int getSectionName(QString* pName, bool bTrimmed = true) const;
    void setSectionName(const QString& strName) { m_strName = strName; }
    int getSectionKey(QString* pKey) const;
    void setSectionKey(const QString& strKey) { m_strKey = strKey; }

private:
    QString m_strKey;
    QString m_strName;
    QList<QPair<QString, QString>> m_entries;
};
