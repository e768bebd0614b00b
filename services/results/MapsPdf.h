// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QPainter>
#include <QPdfWriter>
#include <QString>

namespace orvimage {
class MapPicture;
} // namespace orvimage

// Pictures of maps on A4 pages, two beside and three below each other: pixels as pixels, all the rest as lines and
// letters. Needs a QGuiApplication, which may be the "offscreen" one.
class MapsPdf
{
public:
    MapsPdf(const QString& strTitle, const QString& strCreator);
    MapsPdf(const MapsPdf&) = delete;
    MapsPdf& operator=(const MapsPdf&) = delete;

    void add(const orvimage::MapPicture& picture);
    // Ends the file. Empty when it could not be made.
    QByteArray finish();

private:
    QByteArray m_bytes;
    QBuffer m_buffer;
    QPdfWriter m_writer;
    QPainter m_painter;
    int m_nAdded = 0;
};
