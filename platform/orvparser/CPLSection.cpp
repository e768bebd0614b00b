// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CPLSection.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace {

enum Status
{
    Success = 0,
    Missing = 1,
    NotANumber = 2
};

// Characters that cannot follow a number: what stands there is then no number that we know, such as one with a decimal
// comma, a date or a time.
bool spoilsNumber(char c)
{
    return (c >= '0' && c <= '9') || c == '.' || c == ',' || c == ':' || c == '+' || c == '-';
}

// The decimal number at the start of the text, in the C locale whatever the program's is: "12.5 s" is 12.5. Neither
// infinity nor NaN is a number here.
bool leadingNumber(const QString& strText, double* pValue)
{
    const QByteArray text = strText.trimmed().toLatin1();
    const char* pBegin = text.constData();
    const char* const pEnd = pBegin + text.size();
    if (pBegin != pEnd && *pBegin == '+' && pEnd - pBegin > 1 && pBegin[1] != '-') {
        ++pBegin;
    }
    double value = 0.0;
    const auto [pStop, error] = std::from_chars(pBegin, pEnd, value);
    if (error != std::errc() || !std::isfinite(value) || (pStop != pEnd && spoilsNumber(*pStop))) {
        return false;
    }
    *pValue = value;
    return true;
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
    if (getValue(strKey, &text) != Success) {
        return Missing;
    }
    double value = 0.0;
    if (!leadingNumber(text, &value)) {
        return NotANumber;
    }
    *pValue = value;
    return Success;
}

int CPLSection::getValue(const QString& strKey, float* pValue) const
{
    double value = 0.0;
    const int status = getValue(strKey, &value);
    if (status != Success) {
        return status;
    }
    if (std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
        return NotANumber;
    }
    *pValue = static_cast<float>(value);
    return Success;
}

int CPLSection::getValue(const QString& strKey, int* pValue) const
{
    double value = 0.0;
    const int status = getValue(strKey, &value);
    if (status != Success) {
        return status;
    }
    const bool inRange = value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
    if (!inRange || value != std::trunc(value)) {
        return NotANumber;
    }
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
    for (int i = m_entries.size() - 1; i >= 0; --i) {
        if (m_entries[i].first == strKey) {
            m_entries.removeAt(i);
        }
    }
}

bool CPLSection::isKeyPresent(const QString& strKey) const
{
    QString value;
    return getValue(strKey, &value) == Success;
}

void CPLSection::getKeyList(QStringList* pKeys) const
{
    pKeys->clear();
    for (const auto& entry : m_entries) {
        pKeys->append(entry.first);
    }
}

void CPLSection::getValueList(QStringList* pValues) const
{
    pValues->clear();
    for (const auto& entry : m_entries) {
        pValues->append(entry.second);
    }
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
