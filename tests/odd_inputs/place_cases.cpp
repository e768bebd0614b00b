// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"
#include "odd_inputs/OddTiff.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace {

using C = OddCase;

// What each reader of one file says when there is none to be had. The readers' own words differ where one of them is
// also asked for names.
struct Place
{
    const char* name;
    OddReader read;
    const char* file;
    QString isFolder;
    QString inCircle;
    QString unreadable;
    QString isPipe;
};

std::vector<Place> places()
{
    const auto said = [](const char* what) { return QStringLiteral("{path}: ") + QLatin1String(what); };
    const QString denied = said("Permission denied");
    const QString circle = said("Too many levels of symbolic links");
    const QString cannot = said("cannot be read: ");
    const QString noFile = said("not a file");
    const QString noLibrary = QStringLiteral("{path} is neither a file nor a saved library; no library is saved");
    return {
        {"ClickInfo", OddReaders::dataset(), "ClickInfo.txt", cannot + "not a file",
         cannot + "Too many levels of symbolic links", cannot + "Permission denied", cannot + "not a file"},
        {"Index", OddReaders::index(), "SPUM.txt", cannot + "not a file", cannot + "Too many levels of symbolic links",
         cannot + "Permission denied", cannot + "not a file"},
        {"Tiff", OddReaders::tiff(), "image.tif", said("is a folder, not a TIFF file"), circle, denied,
         said("is not a regular file")},
        {"ImagesTable", OddReaders::table(), "images.csv", noFile, circle, denied, noFile},
        {"EnviHeader", OddReaders::envi(), "cube.hdr", noFile, circle, denied, noFile},
        {"CsvCube", OddReaders::csvCube(), "cube.csv", noFile, circle, denied, noFile},
        {"Photograph", OddReaders::photograph(), "photo.png", noFile, circle, denied, noFile},
        {"Dark", OddReaders::dark(), "dark.tif",
         said("there is no TIFF file, no PNG or JPEG picture and no ENVI header in the folder"),
         said("there is no such file or folder"), denied, said("is not a regular file")},
        {"Mask", OddReaders::mask(), "mask.tif", said("is a folder, not a TIFF file"), circle, denied,
         said("is not a regular file")},
        {"Library", OddReaders::library(), "dyes.csv",
         noLibrary + QStringLiteral("; of a folder it takes the file, such as the spectra.csv of a result"), noLibrary,
         said("Permission denied"), noLibrary},
        {"ComparedResult", OddReaders::savedResult(), "SPUM-20240131-235959.xml", noFile, circle, denied, noFile},
    };
}

} // namespace

OddCases placeCases()
{
    OddCases cases;
    for (const Place& place : places()) {
        const QString file = QLatin1String(place.file);
        const QByteArray name = place.name;
        cases.push_back({name + "IsAFolder", place.read, file, [](const QString& path) { QDir().mkpath(path); },
                         C::Refused, place.isFolder});
        cases.push_back({name + "IsALinkInACircle", place.read, file,
                         [](const QString& path) {
                             QFile::link(path + QStringLiteral(".b"), path);
                             QFile::link(path, path + QStringLiteral(".b"));
                         },
                         C::Refused, place.inCircle});
        cases.push_back({name + "IsUnreadable", place.read, file,
                         [](const QString& path) {
                             putFile(path, OddTiff().bytes());
                             ::chmod(QFile::encodeName(path).constData(), 0);
                         },
                         C::Refused, place.unreadable, true});
        cases.push_back({name + "IsAPipe", place.read, file,
                         [](const QString& path) { ::mkfifo(QFile::encodeName(path).constData(), 0644); }, C::Refused,
                         place.isPipe});
    }
    return cases;
}
