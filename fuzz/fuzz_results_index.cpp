// SPDX-License-Identifier: GPL-3.0-or-later
// The index of saved results: whatever the file says, what is asked of it is answered, it is written back as it was
// read, and a new entry, a renamed one and a removed one leave all others alone.
#include "storage/resultsIndex.h"

#include "host/CPLSettingsFileWrapper.h"
#include "platform/orvutils/LogSinks.h"
#include "require.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace {

const QString& indexFile()
{
    // In memory where there is such a place: waiting for the disk would be all that is done.
    static const QString memory = QStringLiteral("/dev/shm");
    static const QTemporaryDir folder((QDir(memory).exists() ? memory : QDir::tempPath()) +
                                      QStringLiteral("/index-XXXXXX"));
    static const QString path = folder.filePath(QStringLiteral("SPUM.txt"));
    return path;
}

bool load(CPLSettingsFileWrapper& index)
{
    resultsIndex::setTags(index);
    return index.load(indexFile());
}

QStringList names(const CPLSettingsFileWrapper& index)
{
    return index.getMenuNames(resultsIndex::sectionTag());
}

void addAndRemove(CPLSettingsFileWrapper& index)
{
    const QStringList before = names(index);
    const QString name = index.getNextAutoMenuName();
    const QString file = resultsIndex::resultFile(QDateTime(QDate(2024, 1, 31), QTime(23, 59, 59)));
    require(index.addSection(resultsIndex::sectionTag(), name, file) && index.save());
    CPLSettingsFileWrapper again;
    require(load(again) && names(again) == before + QStringList(name));
    require(again.getFileNameForMenuName(name, QString()) == file);
    const QString other = name + QStringLiteral(" renamed");
    CPLSection* pSection = again.getSectionByMenuName(name);
    pSection->setValue(resultsIndex::menuNameTag(), other);
    require(again.save());
    CPLSettingsFileWrapper renamed;
    require(load(renamed));
    QString key;
    pSection = renamed.getSectionByMenuName(other);
    require(pSection != nullptr && pSection->getSectionKey(&key) == 0);
    require(renamed[key] == pSection && renamed.removeSection(key) == 0 && names(renamed) == before);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t size)
{
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    QFile file(indexFile());
    require(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(pData), static_cast<qint64>(size));
    file.close();
    CPLSettingsFileWrapper index;
    if (!load(index)) {
        return 0;
    }
    for (const QString& name : names(index)) {
        require(resultsIndex::findName(names(index), name) == name);
        require(index.getSectionByMenuName(name) != nullptr);
        const QString relative = resultsIndex::relativeFile(index.getFileNameForMenuName(name, QStringLiteral("-")));
        require(resultsIndex::relativeFile(relative) == relative);
    }
    require(index.save());
    CPLSettingsFileWrapper again;
    require(load(again) && again.toText() == index.toText());
    addAndRemove(again);
    return 0;
}
