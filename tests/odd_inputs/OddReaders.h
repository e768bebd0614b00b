// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// What a reader made of a file.
struct Reading
{
    bool accepted = false;
    QStringList messages; // the error, or warnings
    QString gist;         // what was read, in few words
};

// Reads `path`, and writes the reading to the descriptor (writeReading()); or becomes a program that writes its own
// words there.
using OddReader = std::function<int(const QString& path, int descriptor)>;

// As a reader of this process writes it and parseReading() reads it.
void writeReading(int descriptor, const Reading& reading);
// Also of a program: lines that begin with "spum: " are messages, other lines the gist.
Reading parseReading(const QByteArray& output, int status);

// The readers, each with the message of the product's own call. `path` is the file in question; those that take folders
// take its own.
namespace OddReaders {

OddReader dataset();  // ClickInfo.txt and the images beside it
OddReader sequence(); // SequenceInfo.txt and the datasets below
OddReader index();    // SPUM.txt, the settings form
OddReader tiff();     // the first page
OddReader lastPage(); // the file's last page, after they have been counted
OddReader stack();    // images without a table: pages, metadata, ENVI headers
OddReader table();    // images.csv
OddReader envi();     // header or data
OddReader csvCube();
OddReader photograph();
OddReader dark();
OddReader flat();
OddReader mask();
OddReader referenceTables();
OddReader library();     // with the pairs Open/500nm and Open/520nm asked for
OddReader result();      // as compare reads the folder
OddReader maps();        // as roi reads the folder
OddReader savedResult(); // the document of a saved result, without its sequence
// The program with these arguments; {path}, {dir} and {out} (a name in {dir} that is free) are filled in.
OddReader spum(const QStringList& arguments);

} // namespace OddReaders
