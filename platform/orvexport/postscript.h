// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QImage>

namespace orvexport {

// Encapsulated PostScript (language level 3) of one picture, a point wide and high for each pixel. `picture` is
// QImage::Format_RGB32 and not empty. Written here, as cairo's surface for PostScript collects its pages in a temporary
// file and ends the program where that cannot grow. Source: "PostScript Language Reference", third edition, 1999,
// 3.13.3 (ASCII85, Flate) and 4.10.5 (dictionaries of images); "Encapsulated PostScript File Format", version 3.0.
QByteArray postscriptBytes(const QImage& picture);

// Bytes as printable characters, four as five of them, in lines none of which looks like a comment; with the mark of
// the end.
QByteArray ascii85(const QByteArray& bytes);

} // namespace orvexport
