// SPDX-License-Identifier: GPL-3.0-or-later
// Summaries in folders of results: whatever the bytes, names of maps in the folder itself, or an error that names the
// file.
#include "require.h"
#include "services/basis/Failure.h"
#include "services/results/ResultMaps.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace {

const QString& resultFolder()
{
    static const QString memory = QStringLiteral("/dev/shm");
    static const QTemporaryDir folder((QDir(memory).exists() ? memory : QDir::tempPath()) +
                                      QStringLiteral("/result-XXXXXX"));
    static const QString path = folder.path() + QLatin1Char('/');
    return path;
}

// No map is there, so each is refused by its name.
void readMaps(const ResultMaps& maps)
{
    require(maps.count() > 0);
    for (int i = 0; i < maps.count(); ++i) {
        require(maps.name(i).size() >= 0);
        try {
            maps.read(i);
            require(false);
        } catch (const Failure& failure) {
            require(failure.text().startsWith(resultFolder()));
        }
    }
}

} // namespace

// Qt's parser does not give back all of a text that breaks off within an object.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Core";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QFile file(resultFolder() + QStringLiteral("summary.json"));
    require(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    try {
        readMaps(ResultMaps(resultFolder()));
    } catch (const Failure& failure) {
        require(failure.text().startsWith(resultFolder()));
    }
    return 0;
}
