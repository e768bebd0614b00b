// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/StagedFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

bool fail(const QString& strReason, QString* pError)
{
    if (pError != nullptr) {
        *pError = strReason;
    }
    return false;
}

bool isReplaceable(const QString& strFolder, const QString& strMarker)
{
    const QFileInfo info(strFolder);
    return info.isDir() && !info.isSymLink() &&
           (QDir(strFolder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot) ||
            QFileInfo::exists(strFolder + QLatin1Char('/') + strMarker));
}

} // namespace

StagedFolder::StagedFolder() = default;
StagedFolder::~StagedFolder() = default;

bool StagedFolder::begin(const QString& strTarget, bool bForce, const QString& strMarker, QString* pError)
{
    m_bForce = bForce;
    m_strTarget = QDir::cleanPath(QFileInfo(strTarget).absoluteFilePath());
    const QFileInfo target(m_strTarget);
    if (target.exists() || target.isSymLink()) {
        if (!bForce) {
            return fail(QStringLiteral("%1 exists already; --force replaces it").arg(m_strTarget), pError);
        }
        if (!isReplaceable(m_strTarget, strMarker)) {
            return fail(
                QStringLiteral("%1 exists and was not made by this program (it holds no %2); it is not replaced")
                    .arg(m_strTarget, strMarker),
                pError);
        }
    }
    const QString parent = target.absolutePath();
    if (!QFileInfo(parent).isDir()) {
        return fail(QStringLiteral("%1 cannot be made: %2 is not a folder").arg(m_strTarget, parent), pError);
    }
    m_pHidden =
        std::make_unique<QTemporaryDir>(parent + QLatin1String("/.") + target.fileName() + QLatin1String("-XXXXXX"));
    if (!m_pHidden->isValid()) {
        const QString reason = m_pHidden->errorString();
        m_pHidden.reset();
        return fail(QStringLiteral("%1 cannot be made: %2").arg(m_strTarget, reason), pError);
    }
    // The hidden folder is private to its owner; what is built inside takes the user's ordinary permissions.
    if (!QDir(m_pHidden->path()).mkdir(QStringLiteral("new"))) {
        m_pHidden.reset();
        return fail(QStringLiteral("%1 cannot be made: no folder can be written beside it").arg(m_strTarget), pError);
    }
    return true;
}

QString StagedFolder::path() const
{
    return m_pHidden ? m_pHidden->path() + QLatin1String("/new/") : QString();
}

bool StagedFolder::commit(QString* pError)
{
    if (!m_pHidden) {
        return fail(QStringLiteral("nothing was prepared"), pError);
    }
    const QString fresh = m_pHidden->path() + QLatin1String("/new");
    const QString old = m_pHidden->path() + QLatin1String("/old");
    const bool replaced = QFileInfo::exists(m_strTarget);
    if (replaced && !m_bForce) {
        m_pHidden.reset();
        return fail(QStringLiteral("%1 exists by now; it is not replaced").arg(m_strTarget), pError);
    }
    QDir dir;
    const bool moved = (!replaced || dir.rename(m_strTarget, old)) && dir.rename(fresh, m_strTarget);
    if (!moved && replaced && QFileInfo::exists(old)) {
        dir.rename(old, m_strTarget);
    }
    m_pHidden.reset();
    return moved || fail(QStringLiteral("%1 cannot be put in place").arg(m_strTarget), pError);
}
