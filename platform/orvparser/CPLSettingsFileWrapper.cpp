// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CPLSettingsFileWrapper.h"

#include "host/CORVLog.h"
#include "platform/orvparser/SectionText.h"

#include <QSet>

bool CPLSettingsFileWrapper::load(const QString& strPath)
{
    m_strPath = strPath;
    clear();
    QByteArray text;
    QString error;
    QStringList warnings;
    if (!SectionText::readFile(strPath, &text, &error)) {
        warnings.append(error);
    } else if (text.trimmed().isEmpty() ||
               // A list with a skipped line would be saved back without it, so it counts as broken as a whole.
               SectionText::parse(text, strPath, &m_sections, &warnings) == SectionText::Outcome::Complete) {
        return true;
    }
    for (const auto& warning : warnings) {
        CORVLog::getLogObject()->log(warning, QString(), 0, QString(), CORVLOG_WARNING, false);
    }
    clear();
    return false;
}

bool CPLSettingsFileWrapper::save() const
{
    return !m_strPath.isEmpty() && saveClickInfo(m_strPath) == 0;
}

QStringList CPLSettingsFileWrapper::getMenuNames() const
{
    return getMenuNames(QString());
}

QStringList CPLSettingsFileWrapper::getMenuNames(const QString& strSectionKey) const
{
    QStringList names;
    for (const auto& section : m_sections) {
        QString key;
        QString title;
        QString menuName;
        section->getSectionKey(&key);
        section->getSectionName(&title);
        const bool wanted = strSectionKey.isEmpty() || key == strSectionKey || title == strSectionKey;
        if (wanted && section->getValue(m_strMenuNameTag, &menuName) == 0) {
            names.append(menuName);
        }
    }
    return names;
}

const CPLSection* CPLSettingsFileWrapper::find(const QString& strMenuName) const
{
    QString menuName;
    for (const auto& section : m_sections) {
        if (section->getValue(m_strMenuNameTag, &menuName) == 0 && menuName == strMenuName) {
            return section.data();
        }
    }
    return nullptr;
}

CPLSection* CPLSettingsFileWrapper::getSectionByMenuName(const QString& strMenuName)
{
    return const_cast<CPLSection*>(find(strMenuName));
}

QString CPLSettingsFileWrapper::getFileNameForMenuName(const QString& strMenuName, QString strDefault) const
{
    QString fileName;
    const CPLSection* section = find(strMenuName);
    return section != nullptr && section->getValue(m_strFileNameTag, &fileName) == 0 ? fileName : strDefault;
}

bool CPLSettingsFileWrapper::setFileNameForMenuName(const QString& strMenuName, const QString& strFileName)
{
    CPLSection* section = getSectionByMenuName(strMenuName);
    if (section == nullptr || m_strFileNameTag.isEmpty()) {
        return false;
    }
    section->setValue(m_strFileNameTag, strFileName);
    return true;
}

QString CPLSettingsFileWrapper::getNextAutoMenuName() const
{
    const QStringList list = getMenuNames();
    const QSet<QString> taken(list.begin(), list.end());
    for (int number = 1;; ++number) {
        const QString name = m_strAutoMenuNameTag + QStringLiteral("%1").arg(number, 3, 10, QLatin1Char('0'));
        if (!taken.contains(name)) {
            return name;
        }
    }
}

bool CPLSettingsFileWrapper::addSection(const QString& strSectionKey, const QString& strMenuName,
                                        const QString& strFileName)
{
    const bool incomplete =
        m_strMenuNameTag.isEmpty() || m_strFileNameTag.isEmpty() || strSectionKey.isEmpty() || strMenuName.isEmpty();
    if (incomplete || find(strMenuName) != nullptr) {
        return false;
    }
    QSet<QString> taken;
    QString key;
    for (const auto& section : m_sections) {
        section->getSectionKey(&key);
        taken.insert(key);
    }
    key = strSectionKey;
    for (int number = 2; taken.contains(key); ++number) {
        key = strSectionKey + QLatin1Char(' ') + QString::number(number);
    }
    CPLSection section(key, strSectionKey);
    section.addKeyValue(m_strMenuNameTag, strMenuName);
    section.addKeyValue(m_strFileNameTag, strFileName);
    return CPLClickInfo::addSection(&section) == 0;
}
