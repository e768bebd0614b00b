// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CPLSection.h"

#include <QLocale>

#include <cmath>
#include <limits>

namespace {

enum Status
{
    Success = 0,
    Missing = 1,
    NotANumber = 2
};

bool isNumberEnd(QChar c)
{
    return c.isSpace() ||
           (!c.isLetterOrNumber() && c != QLatin1Char('.') && c != QLatin1Char('+') && c != QLatin1Char('-'));
}

// The number at the start of the text, up to the first character that cannot belong to one: "12.5 s" is 12.5.
bool leadingNumber(const QString& strText, double* pValue)
{
    const QString text = strText.trimmed();
    int end = 0;
    while (end < text.size() && !isNumberEnd(text[end]))
        ++end;
    bool ok = false;
    for (; end > 0 && !ok; --end)
        *pValue = QLocale::c().toDouble(text.left(end), &ok);
    return ok;
}

} // namespace

CPLSection::CPLSection(const QString& strKey, const QString& strName) : m_strKey(strKey), m_strName(strName) {}

int CPLSection::getValue(const QString& strKey, QString* pValue) const
{
    for (const auto& entry : m_entries) {
        if (entry.first == strKey) {
            *pValue = entry.second;
            return Success;
        }
    }
    return Missing;
}

int CPLSection::getValue(const QString& strKey, double* pValue) const
{
    QString text;
    if (getValue(strKey, &text) != Success)
        return Missing;
    double value = 0.0;
    if (!leadingNumber(text, &value))
        return NotANumber;
    *pValue = value;
    return Success;
}

int CPLSection::getValue(const QString& strKey, float* pValue) const
{
    double value = 0.0;
    const int status = getValue(strKey, &value);
    if (status == Success)
        *pValue = static_cast<float>(value);
    return status;
}

int CPLSection::getValue(const QString& strKey, int* pValue) const
{
    double value = 0.0;
    const int status = getValue(strKey, &value);
    if (status != Success)
        return status;
    if (!(value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()))
        return NotANumber;
    *pValue = static_cast<int>(value);
    return Success;
}

void CPLSection::setValue(const QString& strKey, const QString& strValue)
{
    for (auto& entry : m_entries) {
        if (entry.first == strKey) {
            entry.second = strValue;
            return;
        }
    }
    addKeyValue(strKey, strValue);
}

void CPLSection::setValue(const QString& strKey, int nValue)
{
    setValue(strKey, QString::number(nValue));
}

void CPLSection::addKeyValue(const QString& strKey, const QString& strValue)
{
    m_entries.append(qMakePair(strKey, strValue));
}

void CPLSection::removeKey(const QString& strKey)
{
    for (int i = m_entries.size() - 1; i >= 0; --i)
        if (m_entries[i].first == strKey)
            m_entries.removeAt(i);
}

bool CPLSection::isKeyPresent(const QString& strKey) const
{
    QString value;
    return getValue(strKey, &value) == Success;
}

void CPLSection::getKeyList(QStringList* pKeys) const
{
    pKeys->clear();
    for (const auto& entry : m_entries)
        pKeys->append(entry.first);
}

void CPLSection::getValueList(QStringList* pValues) const
{
    pValues->clear();
    for (const auto& entry : m_entries)
        pValues->append(entry.second);
}

int CPLSection::getSectionName(QString* pName, bool bTrimmed) const
{
    *pName = bTrimmed ? m_strName.trimmed() : m_strName;
    return Success;
}

int CPLSection::getSectionKey(QString* pKey) const
{
    *pKey = m_strKey;
    return Success;
}
