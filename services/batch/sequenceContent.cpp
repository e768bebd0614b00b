// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/sequenceContent.h"

#include "services/basis/fileHash.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace {

constexpr int maxFiles = 200000;
constexpr int maxDepth = 8;

bool isRead(const QString& strName)
{
    static const QStringList endings = {QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("txt"),
                                        QStringLiteral("csv")};
    return endings.contains(QFileInfo(strName).suffix().toLower());
}

// Folders that lie beside the images and come from analyses of them.
bool holdsResults(const QString& strFolder, const QString& strName)
{
    static const QRegularExpression saved(QStringLiteral("^(XML|SPUM\\d{14})$"));
    if (saved.match(strName).hasMatch()) {
        return true;
    }
    for (const char* mark : {"summary.json", "pca.json", "comparison.csv"}) {
        if (QFileInfo::exists(strFolder + QLatin1Char('/') + QLatin1String(mark))) {
            return true;
        }
    }
    return false;
}

class ContentWalk
{
public:
    explicit ContentWalk(const QString& strRoot) : m_strRoot(strRoot) {}

    void walk(const QString& strBelow, int nDepth)
    {
        const QString folder = m_strRoot + strBelow;
        const QString real = QFileInfo(folder).canonicalFilePath();
        if (nDepth > maxDepth || m_seen.contains(real)) {
            return;
        }
        m_seen.insert(real);
        const QDir dir(folder);
        for (const QString& name : dir.entryList(QDir::Files | QDir::System, QDir::Name)) {
            if (m_files.size() < maxFiles && isRead(name)) {
                m_files.append(strBelow + name);
            }
        }
        for (const QString& name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
            if (!holdsResults(folder + name, name)) {
                walk(strBelow + name + QLatin1Char('/'), nDepth + 1);
            }
        }
    }

    QStringList files()
    {
        m_files.sort();
        return m_files;
    }

private:
    const QString m_strRoot; // with a separator at its end
    QSet<QString> m_seen;
    QStringList m_files;
};

QString folderOf(const QString& strSequence)
{
    const QFileInfo info(strSequence);
    return (info.isFile() ? info.absolutePath() : info.absoluteFilePath()) + QLatin1Char('/');
}

} // namespace

QStringList contentOfSequence(const QString& strSequence)
{
    ContentWalk content(folderOf(strSequence));
    content.walk(QString(), 0);
    return content.files();
}

qint64 bytesOfSequence(const QString& strSequence, const QStringList& files)
{
    const QString folder = folderOf(strSequence);
    qint64 bytes = 0;
    for (const QString& name : files) {
        bytes += QFileInfo(folder + name).size();
    }
    return bytes;
}

QString hashOfSequence(const QString& strSequence, const QStringList& files, const std::function<bool()>& goesOn)
{
    const QString folder = folderOf(strSequence);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const QString& name : files) {
        hash.addData(name.toUtf8());
        hash.addData("", 1);
        hash.addData(fileHash(folder + name, goesOn).toLatin1());
        hash.addData("", 1);
        if (goesOn && !goesOn()) {
            return QString();
        }
    }
    return QString::fromLatin1(hash.result().toHex());
}
