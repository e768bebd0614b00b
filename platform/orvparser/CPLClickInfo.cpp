// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CPLClickInfo.h"

#include "platform/orvparser/KeyText.h"
#include "platform/orvutils/AtomicFile.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

namespace {

enum Status
{
    Success = 0,
    Failure = 1
};

// A text of keys is small; what is larger is something else under that name.
constexpr qint64 largestFile = 16LL * 1024 * 1024;

void warn(QStringList* pWarnings, const QString& strText)
{
    if (pWarnings != nullptr)
        pWarnings->append(strText);
}

// UTF-8 with or without a byte order mark; bytes that are no UTF-8 are taken as Latin-1.
QString decode(const QByteArray& bytes, const QString& strPath, QStringList* pWarnings)
{
    QTextCodec::ConverterState state;
    const QString text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return text;
    warn(pWarnings, QStringLiteral("%1: not UTF-8 throughout; read as Latin-1").arg(strPath));
    return QString::fromLatin1(bytes);
}

// Line ends of any kind.
QStringList linesOf(QString strText)
{
    strText.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    strText.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return strText.split(QLatin1Char('\n'));
}

// "[key] name"; null when the line does not close its bracket.
QSharedPointer<CPLSection> parseHeader(const QString& strLine)
{
    const int close = KeyText::findUnescaped(strLine, QLatin1Char(']'), 1);
    if (close < 0)
        return {};
    const QString key = KeyText::unescape(KeyText::trim(strLine.mid(1, close - 1)));
    const QString name = KeyText::unescape(KeyText::trim(strLine.mid(close + 1)));
    return QSharedPointer<CPLSection>::create(key, name);
}

} // namespace

CPLClickInfo::CPLClickInfo(const CPLClickInfo& other)
{
    *this = other;
}

CPLClickInfo& CPLClickInfo::operator=(const CPLClickInfo& other)
{
    if (this == &other)
        return *this;
    m_sections.clear();
    for (const auto& section : other.m_sections)
        m_sections.append(QSharedPointer<CPLSection>::create(*section));
    return *this;
}

const CPLSection* CPLClickInfo::operator[](const QString& strKey) const
{
    QString key;
    for (const auto& section : m_sections)
        if (section->getSectionKey(&key) == 0 && key == strKey)
            return section.data();
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
    if (pSection == nullptr)
        return Failure;
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
    QFile file(strPath);
    if (QFileInfo(strPath).isDir()) {
        warn(pWarnings, QStringLiteral("%1: is a folder").arg(strPath));
        return Failure;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        warn(pWarnings, QStringLiteral("%1: cannot be opened (%2)").arg(strPath, file.errorString()));
        return Failure;
    }
    if (file.size() > largestFile) {
        warn(pWarnings, QStringLiteral("%1: %2 bytes are too many for a text of keys").arg(strPath).arg(file.size()));
        return Failure;
    }
    const QByteArray bytes = file.read(largestFile + 1);
    if (file.error() != QFileDevice::NoError) {
        warn(pWarnings, QStringLiteral("%1: cannot be read (%2)").arg(strPath, file.errorString()));
        return Failure;
    }
    return parse(bytes, strPath, pWarnings);
}

int CPLClickInfo::parse(const QByteArray& bytes, const QString& strPath, QStringList* pWarnings)
{
    m_sections.clear();
    if (bytes.size() > largestFile || bytes.contains('\0')) {
        warn(pWarnings, QStringLiteral("%1: this is no text of keys").arg(strPath));
        return Failure;
    }
    const QStringList lines = linesOf(decode(bytes, strPath, pWarnings));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = KeyText::trim(lines[i]);
        const auto complain = [&](const char* pWhat) {
            warn(pWarnings, QStringLiteral("%1:%2: %3").arg(strPath).arg(i + 1).arg(QLatin1String(pWhat)));
        };
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            const auto section = parseHeader(line);
            if (section)
                m_sections.append(section);
            else
                complain("the section's name is not closed by ]");
            continue;
        }
        const int colon = KeyText::findUnescaped(line, QLatin1Char(':'));
        if (colon < 0)
            complain("neither a section nor \"key: value\"");
        else if (m_sections.isEmpty())
            complain("an entry before the first section");
        else
            m_sections.last()->addKeyValue(KeyText::unescape(KeyText::trim(line.left(colon))),
                                           KeyText::unescape(KeyText::trim(line.mid(colon + 1))));
    }
    return Success;
}

QByteArray CPLClickInfo::toText() const
{
    QString text;
    for (const auto& section : m_sections) {
        QString key;
        QString name;
        section->getSectionKey(&key);
        section->getSectionName(&name, false);
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text += QLatin1Char('[') + KeyText::escapeSectionKey(key) + QLatin1Char(']');
        text += (name.isEmpty() ? QString() : QLatin1Char(' ') + KeyText::escapeValue(name)) + QLatin1Char('\n');
        QStringList keys;
        QStringList values;
        section->getKeyList(&keys);
        section->getValueList(&values);
        for (int i = 0; i < keys.size(); ++i) {
            text += KeyText::escapeKey(keys[i]) + QLatin1Char(':');
            text += (values[i].isEmpty() ? QString() : QLatin1Char(' ') + KeyText::escapeValue(values[i])) +
                    QLatin1Char('\n');
        }
    }
    return text.toUtf8();
}

int CPLClickInfo::saveClickInfo(const QString& strPath) const
{
    return orv::writeFileAtomically(strPath, toText()) ? Success : Failure;
}
