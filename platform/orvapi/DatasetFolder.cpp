// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/DatasetFolder.h"

#include "files/AtomicFile.h"
#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvparser/SectionText.h"
#include "platform/orvutils/InputFile.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 kBlockBytes = 1 << 20;

bool holdsFolders(const QString& strFolder)
{
    return !QDir(strFolder).isEmpty(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
}

// Copies until the end or the first failure, of which the two files then tell.
void copyBytes(QFile& from, QFile& to)
{
    while (!from.atEnd() && from.error() == QFileDevice::NoError) {
        const QByteArray block = from.read(kBlockBytes);
        if (block.isEmpty() || to.write(block) != block.size()) {
            return;
        }
    }
    to.flush(); // what is still in a buffer may not fit either
}

} // namespace

ESTATUS DatasetFolder::unwritable(const QString& strReason, QString* pReason) const
{
    *pReason = strReason;
    if (!m_folder.path().isEmpty()) {
        pReason->replace(m_folder.path(), m_folder.target() + QLatin1Char('/'));
    }
    return ESTATUS_FILE_UNWRITABLE;
}

ESTATUS DatasetFolder::begin(const QString& strTarget, const QString& strOwn, QString* pReason)
{
    const QString target = QDir::cleanPath(QFileInfo(strTarget).absoluteFilePath());
    m_bOwn = !strOwn.isEmpty() && target == QDir::cleanPath(strOwn);
    if (!m_bOwn && holdsFolders(target)) {
        return unwritable(QStringLiteral("%1: holds folders; it is not replaced").arg(target), pReason);
    }
    QString reason;
    return m_folder.begin(target, true, QString::fromLatin1(SequenceFiles::kClickInfo), &reason)
               ? ESTATUS_SUCCESS
               : unwritable(reason, pReason);
}

ESTATUS DatasetFolder::addImage(const QString& strName, const CILImage& image, QString* pReason)
{
    QString reason;
    m_added.insert(strName.toLower());
    return writeTiff(m_folder.path() + strName, image, TiffWriteOptions(), &reason) ? ESTATUS_SUCCESS
                                                                                    : unwritable(reason, pReason);
}

ESTATUS DatasetFolder::addFile(const QString& strPath, const QString& strName, QString* pReason)
{
    m_added.insert(strName.toLower());
    QFile from(strPath);
    QString reason;
    if (!orv::openInput(from, &reason)) {
        *pReason = QStringLiteral("%1: cannot be read: %2").arg(strPath, reason);
        return ESTATUS_FILE_UNREADABLE;
    }
    QFile to(m_folder.path() + strName);
    if (to.open(QIODevice::WriteOnly)) {
        copyBytes(from, to);
    }
    if (from.error() != QFileDevice::NoError) {
        *pReason = QStringLiteral("%1: cannot be read: %2").arg(strPath, from.errorString());
        return ESTATUS_FILE_UNREADABLE;
    }
    if (to.error() != QFileDevice::NoError || to.size() != from.size()) {
        return unwritable(QStringLiteral("%1: cannot be written: %2").arg(to.fileName(), to.errorString()), pReason);
    }
    return ESTATUS_SUCCESS;
}

ESTATUS DatasetFolder::addClickInfo(const QString& strName, const CPLClickInfo& info, QString* pReason)
{
    m_added.insert(strName.toLower());
    const QString path = m_folder.path() + strName;
    const QByteArray text = info.toText();
    QString reason;
    // What could not be read back is not written.
    if (text.size() > SectionText::maximumBytes || text.count('\n') > SectionText::maximumLines) {
        return unwritable(QStringLiteral("%1: not written: too many keys").arg(path), pReason);
    }
    return orv::writeFileAtomically(path, text, &reason) ? ESTATUS_SUCCESS : unwritable(reason, pReason);
}

ESTATUS DatasetFolder::keepOtherFiles(QString* pReason)
{
    if (!m_bOwn) {
        return ESTATUS_SUCCESS;
    }
    const QDir own(target());
    const QSet<QString> added = m_added;
    QDirIterator files(target(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString name = own.relativeFilePath(path);
        if (added.contains(name.toLower())) {
            continue;
        }
        if (!QDir(m_folder.path()).mkpath(QFileInfo(name).path())) {
            return unwritable(QStringLiteral("%1: cannot be made").arg(QFileInfo(path).path()), pReason);
        }
        const ESTATUS status = addFile(path, name, pReason);
        if (status != ESTATUS_SUCCESS) {
            return status;
        }
    }
    return ESTATUS_SUCCESS;
}

ESTATUS DatasetFolder::commit(QString* pReason)
{
    QString reason;
    return m_folder.commit(&reason) ? ESTATUS_SUCCESS : unwritable(reason, pReason);
}
