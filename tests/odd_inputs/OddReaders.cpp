// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddReaders.h"

#include "host/CORVSequenceDataset.h"
#include "host/CPLSettingsFileWrapper.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ReferenceTables.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/LogSinks.h"
#include "services/analysis/MaskFile.h"
#include "services/basis/Failure.h"
#include "services/importer/CsvCube.h"
#include "services/importer/DarkImages.h"
#include "services/importer/EnviCube.h"
#include "services/importer/ImageCorrection.h"
#include "services/importer/ImageFinder.h"
#include "services/importer/ImagesTable.h"
#include "services/importer/Photograph.h"
#include "services/results/ComparedResult.h"
#include "services/results/ResultMaps.h"
#include "services/session/LibrarySpectra.h"
#include "spectra/SpectrumPlotParams.h"
#include "storage/SavedDocument.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <cstdlib>
#include <unistd.h>

namespace {

// Dark images, flat fields, photographs and masks are asked for in this size.
constexpr int side = 32;
constexpr char separator = '\x1e';

QString folderOf(const QString& path)
{
    return QFileInfo(path).path();
}

QString sizeOf(const CILImage& image)
{
    return QStringLiteral("%1 x %2, %3 to %4")
        .arg(image.m_lWidth)
        .arg(image.m_lHeight)
        .arg(image.m_dMin, 0, 'g', 6)
        .arg(image.m_dMax, 0, 'g', 6);
}

// A reader of this process; what it throws is its error.
OddReader reader(const std::function<Reading(const QString& path)>& read)
{
    return [read](const QString& path, int descriptor) {
        Reading reading;
        // What a reader makes of wrong bytes must not depend on who runs the test.
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
        // Words that the log gets are words of the reader.
        orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
        QStringList logged;
        orv::addLogSink([&logged](const orv::LogRecord& line) { logged.append(line.m_strMessage); });
        try {
            reading = read(path);
        } catch (const Failure& failure) {
            reading.messages.append(failure.text());
        }
        reading.messages = logged + reading.messages;
        writeReading(descriptor, reading);
        return 0;
    };
}

Reading refused(const QString& error)
{
    return {false, {error}, QString()};
}

Reading ofImage(bool bRead, CILImage& image, const QString& error, const QStringList& warnings = {})
{
    if (!bRead) {
        return refused(error);
    }
    image.RefreshImageStats();
    return {true, warnings, sizeOf(image)};
}

Reading ofCorrection(bool bRead, const QString& error)
{
    return bRead ? Reading{true, {}, QStringLiteral("loaded")} : refused(error);
}

QString filled(const QString& text, const QString& path)
{
    QString result = text;
    const QString folder = folderOf(path);
    return result.replace(QLatin1String("{path}"), path)
        .replace(QLatin1String("{dir}"), folder)
        .replace(QLatin1String("{out}"), folder + QStringLiteral("/out"));
}

} // namespace

void writeReading(int descriptor, const Reading& reading)
{
    const QStringList parts = QStringList{reading.accepted ? "accepted" : "refused", reading.gist} + reading.messages;
    const QByteArray bytes = separator + parts.join(QLatin1Char(separator)).toUtf8();
    for (qint64 done = 0; done < bytes.size();) {
        const ssize_t n = ::write(descriptor, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (n <= 0) {
            return;
        }
        done += n;
    }
}

Reading parseReading(const QByteArray& output, int status)
{
    Reading reading;
    if (output.startsWith(separator)) {
        const QStringList parts = QString::fromUtf8(output.mid(1)).split(QLatin1Char(separator));
        reading.accepted = parts.first() == QLatin1String("accepted");
        reading.gist = parts.value(1);
        reading.messages = parts.mid(2);
        return reading;
    }
    reading.accepted = status == 0;
    QStringList rest;
    const QStringList lines = QString::fromUtf8(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        (line.startsWith(QLatin1String("spum: ")) ? reading.messages : rest).append(line);
    }
    reading.gist = rest.join(QLatin1Char('\n'));
    return reading;
}

namespace OddReaders {

OddReader dataset()
{
    return reader([](const QString& path) {
        CORVDataset dataset;
        QString error;
        QStringList warnings;
        if (dataset.open(folderOf(path), &error, &warnings) != ESTATUS_SUCCESS) {
            return refused(error);
        }
        double exposure = 0.0;
        dataset.getExposureTime(&exposure);
        return Reading{true, warnings,
                       QStringLiteral("%1, %2, %3 s, %4 regions")
                           .arg(dataset.getClickNumber(), dataset.getEmissionFilter())
                           .arg(exposure)
                           .arg(dataset.roiManager()->regions().size())};
    });
}

OddReader sequence()
{
    return reader([](const QString& path) {
        CORVSequenceDataset opened;
        QString error;
        QStringList warnings;
        if (opened.open(folderOf(path), &error, &warnings) != ESTATUS_SUCCESS) {
            return refused(error);
        }
        return Reading{
            true, warnings,
            QStringLiteral("%1, %2 datasets").arg(opened.getSequenceName()).arg(opened.getDatasets().size())};
    });
}

OddReader index()
{
    return reader([](const QString& path) {
        CPLSettingsFileWrapper wrapper;
        wrapper.setMenuNameTag(QStringLiteral("MenuName"));
        wrapper.setFileNameTag(QStringLiteral("FileName"));
        wrapper.setAutoMenuNameTag(QStringLiteral("SPUM_"));
        const bool loaded = wrapper.load(path);
        const QStringList names = wrapper.getMenuNames();
        return Reading{
            loaded,
            {},
            QStringLiteral("%1 results, next %2")
                .arg(QString::number(names.size()), names.size() > 5 ? QString() : wrapper.getNextAutoMenuName())};
    });
}

OddReader tiff()
{
    return reader([](const QString& path) {
        CILImage image;
        QString error;
        const bool read = readTiff(path, 0, image, &error);
        return ofImage(read, image, error);
    });
}

OddReader lastPage()
{
    return reader([](const QString& path) {
        CILImage image;
        QString error;
        const int pages = tiffPageCount(path, &error);
        const bool read = pages > 0 && readTiff(path, pages - 1, image, &error);
        return ofImage(read, image, error);
    });
}

OddReader stack()
{
    return reader([](const QString& path) {
        ImageFinder finder;
        QString error;
        if (!finder.find(path, {}, &error)) {
            return refused(error);
        }
        QString figures;
        for (const Figure& figure : finder.images().first().figures) {
            figures += QStringLiteral(", ") + figure.origin;
        }
        return Reading{true, finder.warnings() + finder.doubts(),
                       QStringLiteral("%1 images%2").arg(finder.images().size()).arg(figures)};
    });
}

OddReader table()
{
    return reader([](const QString& path) {
        ImagesTable images;
        QString error;
        if (!images.load(path, &error)) {
            return refused(error);
        }
        return Reading{true, images.warnings(), QStringLiteral("%1 rows").arg(images.rows().size())};
    });
}

OddReader envi()
{
    return reader([](const QString& path) {
        EnviCube cube;
        CILImage image;
        QString error;
        const bool read = cube.open(path, &error) && cube.readBand(cube.header().bands - 1, image, &error);
        return ofImage(read, image, error);
    });
}

OddReader csvCube()
{
    return reader([](const QString& path) {
        CsvCube cube;
        CILImage image;
        QString error;
        const bool read = cube.open(path, &error) && cube.readBand(cube.bands() - 1, image, &error);
        return ofImage(read, image, error);
    });
}

OddReader photograph()
{
    return reader([](const QString& path) {
        CILImage image;
        QString error;
        QStringList warnings;
        const bool read = loadPhotograph(path, side, side, image, &warnings, &error);
        return ofImage(read, image, error, warnings);
    });
}

OddReader dark()
{
    return reader([](const QString& path) {
        QString error;
        DarkImages dark;
        ImageRow image;
        image.file = QStringLiteral("image.tif");
        std::vector<double> pixels;
        const bool bRead =
            dark.open(path, {image}, {image.file}, {QSize(side, side)}, &error) && dark.read(0, pixels, &error);
        return ofCorrection(bRead, error);
    });
}

OddReader flat()
{
    return reader([](const QString& path) {
        QString error;
        return ofCorrection(ImageCorrection().loadFlat(path, side, side, &error), error);
    });
}

OddReader mask()
{
    return reader([](const QString& path) {
        CILImage image = readMaskFile(path, side, 1);
        return ofImage(true, image, QString());
    });
}

OddReader referenceTables()
{
    return reader([](const QString& path) {
        ReferenceTables tables;
        tables.addFolder(folderOf(path) + QLatin1Char('/'), false);
        const int entries = tables.luminescentSources.size() + tables.librarySources.size() +
                            tables.radioactiveSources.size() + tables.tissues.size() + tables.colorResponses.size() +
                            tables.isotopes.size() + tables.probes.size();
        return Reading{true, tables.problems, QStringLiteral("%1 entries").arg(entries)};
    });
}

OddReader library()
{
    return reader([](const QString& path) {
        LibrarySpectra spectra;
        spectra.load(path);
        KeyPair pairs[2];
        for (KeyPair& pair : pairs) {
            pair.first = QStringLiteral("Open");
        }
        pairs[0].second = QStringLiteral("500nm");
        pairs[1].second = QStringLiteral("520nm");
        const QList<SpectrumPlotParams*> fitted = spectra.fitTo({pairs[0], pairs[1]}, 0);
        QStringList names;
        for (const SpectrumPlotParams* spectrum : fitted) {
            names.append(spectrum->settings.name);
        }
        qDeleteAll(fitted);
        return Reading{true, {}, names.mid(0, 5).join(QLatin1Char(' '))};
    });
}

OddReader result()
{
    return reader([](const QString& path) {
        ComparedResult saved;
        saved.readResult(folderOf(path));
        return Reading{true, {}, saved.names().join(QLatin1Char(' '))};
    });
}

OddReader maps()
{
    return reader([](const QString& path) {
        const ResultMaps saved(folderOf(path));
        QStringList names;
        for (int i = 0; i < saved.count(); ++i) {
            saved.read(i);
            names.append(saved.name(i));
        }
        return Reading{true, {}, names.join(QLatin1Char(' '))};
    });
}

OddReader savedResult()
{
    return reader([](const QString& path) {
        const SavedDocument document = readSavedDocument(path);
        if (!document.error.isEmpty()) {
            return refused(path + QStringLiteral(": ") + document.error);
        }
        return Reading{true,
                       {},
                       QStringLiteral("%1: %2, %3 images, %4 properties, %5 regions")
                           .arg(document.sequence, document.names().join(QLatin1Char(' ')))
                           .arg(document.images)
                           .arg(document.properties.size())
                           .arg(document.regions)};
    });
}

OddReader spum(const QStringList& arguments)
{
    return [arguments](const QString& path, int descriptor) {
        QList<QByteArray> words{QByteArrayLiteral(ORV_BINARY_DIR "/bin/spum")};
        for (const QString& argument : arguments) {
            words.append(filled(argument, path).toUtf8());
        }
        const QByteArray home = folderOf(path).toUtf8();
        QList<QByteArray> settings{"PATH=/usr/bin:/bin", "HOME=" + home, "XDG_DATA_HOME=" + home + "/data"};
        for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS"}) {
            if (const char* value = std::getenv(name)) {
                settings.append(QByteArray(name) + '=' + value);
            }
        }
        std::vector<char*> argv;
        std::vector<char*> environment;
        for (QByteArray& word : words) {
            argv.push_back(word.data());
        }
        for (QByteArray& setting : settings) {
            environment.push_back(setting.data());
        }
        argv.push_back(nullptr);
        environment.push_back(nullptr);
        ::dup2(descriptor, STDOUT_FILENO);
        ::dup2(descriptor, STDERR_FILENO);
        ::execve(argv[0], argv.data(), environment.data());
        return 127;
    };
}

} // namespace OddReaders
