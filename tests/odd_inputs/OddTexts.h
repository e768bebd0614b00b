// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// Sound files of text, and sound sequences and results, for a case to spoil.
namespace OddTexts {

// Between the lines that tell that a file is whole.
QByteArray sections(const QByteArray& text);
QByteArray clickInfo(const QByteArray& clickNumber, const QByteArray& emission);
QByteArray sequenceInfo(int datasets);
// `begin`, then `line` so often, with every "%" in it replaced by the number.
QByteArray many(const QByteArray& begin, const QByteArray& line, int count);
QByteArray library();
QByteArray enviHeader();
QByteArray csvCube();
QByteArray imagesTable();
QByteArray summary();
QByteArray savedIndex();  // names the result "one"
QByteArray savedResult(); // of the sequence that putSequence() puts
QByteArray onePixelPng();

// A dataset of 32 x 32 pixels in the folder of the ClickInfo.txt at `path`, whose text is `info`.
void putDataset(const QString& path, const QByteArray& info);
// Three datasets with a photograph, C1 to C3, below the folder of the SequenceInfo.txt at `path`.
void putSequence(const QString& path, const QByteArray& info);
// Two maps and their spectra beside the summary.json at `path`.
void putResult(const QString& path, const QByteArray& summary);

// That sequence with its SequenceInfo.txt at `path`, the index of its saved results, and the document of the one.
void putSavedResult(const QString& path, const QByteArray& index, const QByteArray& document);

} // namespace OddTexts
