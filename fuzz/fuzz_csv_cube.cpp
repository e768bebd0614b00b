// SPDX-License-Identifier: GPL-3.0-or-later
// Cubes in CSV files: whatever the bytes, images of one size with a name each, or an error that names the file.
#include "require.h"
#include "services/importer/CsvCube.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace {

const QString& cubeFile()
{
    // In memory where there is such a place: waiting for the disk would be all that is done.
    static const QString memory = QStringLiteral("/dev/shm");
    static const QTemporaryDir folder((QDir(memory).exists() ? memory : QDir::tempPath()) +
                                      QStringLiteral("/cube-XXXXXX"));
    static const QString path = folder.filePath(QStringLiteral("cube.csv"));
    return path;
}

void readBands(const CsvCube& cube)
{
    require(cube.bands() > 0 && cube.width() > 0 && cube.height() > 0 && cube.names().size() == cube.bands());
    QString error;
    CILImage image;
    for (int i = 0; i < cube.bands(); ++i) {
        require(cube.readBand(i, image, &error));
        require(image.m_lWidth == cube.width() && image.m_lHeight == cube.height());
    }
    require(!cube.readBand(cube.bands(), image, &error) && error.startsWith(cubeFile()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QFile file(cubeFile());
    require(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    QStringList names;
    QString error;
    const bool named = CsvCube::readNames(cubeFile(), &names, &error);
    require(named || error.startsWith(cubeFile() + QLatin1Char(':')));
    CsvCube cube;
    error.clear();
    if (cube.open(cubeFile(), &error)) {
        require(named && cube.names() == names);
        readBands(cube);
    } else {
        require(error.startsWith(cubeFile() + QLatin1Char(':')));
    }
    return 0;
}
