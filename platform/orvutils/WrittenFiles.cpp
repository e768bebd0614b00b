// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/WrittenFiles.h"

#include "files/AtomicFile.h"
#include "platform/orvutils/InputFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace orv {

namespace {

const QString listName = QStringLiteral(".written.json");
constexpr qint64 largestHashed = 1 << 20;
constexpr int largestList = 64; // MiB
constexpr int mostNamed = 3;

QJsonObject factsOf(const QFileInfo& info)
{
    QJsonObject facts{{"size", info.size()}};
    if (info.size() <= largestHashed) {
        QFile file(info.filePath());
        QString reason;
        QByteArray bytes;
        if (openInput(file, &reason)) {
            bytes = file.readAll();
        }
        facts.insert(QStringLiteral("sha256"),
                     QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex()));
    }
    return facts;
}

// All but the list itself and folders, relative to the folder.
QStringList entriesBelow(const QString& strFolder)
{
    const QDir folder(strFolder);
    QStringList entries;
    QDirIterator it(strFolder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString entry = folder.relativeFilePath(path);
        if ((it.fileInfo().isSymLink() || !it.fileInfo().isDir()) && entry != listName) {
            entries.append(entry);
        }
    }
    entries.sort();
    return entries;
}

QJsonObject readList(const QString& strFolder)
{
    QByteArray text;
    QString reason;
    if (!readInput(QDir(strFolder).filePath(listName), largestList, QStringLiteral("list"), &text, &reason)) {
        return QJsonObject();
    }
    return QJsonDocument::fromJson(text).object().value(QLatin1String("files")).toObject();
}

bool isSpared(const QString& strEntry, const QStringList& spared)
{
    return spared.contains(strEntry) ||
           (spared.contains(strEntry.section(QLatin1Char('/'), 0, 0)) && strEntry.contains(QLatin1Char('/')));
}

} // namespace

bool noteWrittenFiles(const QString& strFolder, QString* pError)
{
    const QDir folder(strFolder);
    QJsonObject files;
    for (const QString& entry : entriesBelow(strFolder)) {
        files.insert(entry, factsOf(QFileInfo(folder.filePath(entry))));
    }
    return writeFileAtomically(folder.filePath(listName), QJsonDocument(QJsonObject{{"files", files}}).toJson(),
                               pError);
}

QStringList foreignFiles(const QString& strFolder, const QStringList& spared)
{
    const QDir folder(strFolder);
    const QJsonObject files = readList(strFolder);
    QStringList foreign;
    for (const QString& entry : entriesBelow(strFolder)) {
        const QFileInfo info(folder.filePath(entry));
        if (isSpared(entry, spared)) {
            continue;
        }
        if (!files.contains(entry) || info.isSymLink() || !info.isFile()) {
            foreign.append(entry);
        } else if (factsOf(info) != files.value(entry).toObject()) {
            foreign.append(entry + QStringLiteral(" (changed)"));
        }
    }
    return foreign;
}

QString reasonAgainstReplacing(const QString& strFolder, const QStringList& foreign)
{
    if (foreign.isEmpty()) {
        return QString();
    }
    QString named = foreign.mid(0, mostNamed).join(QStringLiteral(", "));
    if (foreign.size() > mostNamed) {
        named += QStringLiteral(" and %1 more").arg(foreign.size() - mostNamed);
    }
    return QStringLiteral("%1 holds what was not written with it and would be lost: %2; move this away, or choose "
                          "another folder")
        .arg(QDir::cleanPath(strFolder), named);
}

} // namespace orv
