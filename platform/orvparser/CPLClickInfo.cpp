// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CPLClickInfo.h"

#include "files/AtomicFile.h"
#include "host/CORVLog.h"
#include "platform/orvparser/SectionText.h"

namespace {

enum Status
{
    Success = 0,
    Failure = 1
};

} // namespace

CPLClickInfo::CPLClickInfo(const CPLClickInfo& other)
{
    *this = other;
}

CPLClickInfo& CPLClickInfo::operator=(const CPLClickInfo& other)
{
    if (this == &other) {
        return *this;
    }
    m_sections.clear();
    for (const auto& section : other.m_sections) {
        m_sections.append(QSharedPointer<CPLSection>::create(*section));
    }
    return *this;
}

const CPLSection* CPLClickInfo::operator[](const QString& strKey) const
{
    QString key;
    for (const auto& section : m_sections) {
        if (section->getSectionKey(&key) == 0 && key == strKey) {
            return section.data();
        }
    }
    return nullptr;
}

CPLSection* CPLClickInfo::operator[](const QString& strKey)
{
    return const_cast<CPLSection*>(static_cast<const CPLClickInfo&>(*this)[strKey]);
}

const CPLSection* CPLClickInfo::section(int nIndex) const
{
    return nIndex >= 0 && nIndex < m_sections.size() ? m_sections[nIndex].data() : nullptr;
}

CPLSection* CPLClickInfo::section(int nIndex)
{
    return const_cast<CPLSection*>(static_cast<const CPLClickInfo&>(*this).section(nIndex));
}

int CPLClickInfo::getClickNumber(QString* pNumber) const
{
    const CPLSection* section = (*this)[QStringLiteral("ClickNumber")];
    return section == nullptr ? static_cast<int>(Failure) : section->getValue(QStringLiteral("ClickNumber"), pNumber);
}

int CPLClickInfo::getSectionCount(int* pCount) const
{
    *pCount = m_sections.size();
    return Success;
}

int CPLClickInfo::addSection(const CPLSection* pSection)
{
    if (pSection == nullptr) {
        return Failure;
    }
    m_sections.append(QSharedPointer<CPLSection>::create(*pSection));
    return Success;
}

int CPLClickInfo::removeSection(const QString& strKey)
{
    QString key;
    for (int i = 0; i < m_sections.size(); ++i) {
        if (m_sections[i]->getSectionKey(&key) == 0 && key == strKey) {
            m_sections.removeAt(i);
            return Success;
        }
    }
    return Failure;
}

int CPLClickInfo::loadClickInfo(const QString& strPath, QStringList* pWarnings)
{
    m_sections.clear();
    QByteArray text;
    QString error;
    if (SectionText::readFile(strPath, &text, &error)) {
        return parse(text, strPath, pWarnings);
    }
    if (pWarnings != nullptr) {
        pWarnings->append(error);
    }
    return Failure;
}

int CPLClickInfo::parse(const QByteArray& text, const QString& strPath, QStringList* pWarnings)
{
    return SectionText::parse(text, strPath, &m_sections, pWarnings) == SectionText::Outcome::Refused ? Failure
                                                                                                      : Success;
}

QByteArray CPLClickInfo::toText() const
{
    return SectionText::toText(m_sections);
}

int CPLClickInfo::saveClickInfo(const QString& strPath) const
{
    const QByteArray text = toText();
    QString error;
    // What could not be read back is not put in a good file's place.
    if (text.size() > SectionText::maximumBytes || text.count('\n') > SectionText::maximumLines) {
        error = QStringLiteral("%1: not written: too many keys").arg(strPath);
    } else if (orv::writeFileAtomically(strPath, text, &error)) {
        return Success;
    }
    CORVLog::getLogObject()->log(error, QString(), 0, QString(), CORVLOG_ERROR, false);
    return Failure;
}
