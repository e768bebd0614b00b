// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "host/CORVMultiImageView.h"
#include "host/CORVTextTag.h"
#include "platform/orvwidgets/TileGrid.h"
#include "platform/orvwidgets/TilePicture.h"

#include <QColor>
#include <QDeadlineTimer>
#include <QFont>
#include <QPoint>
#include <QPointF>
#include <QString>

#include <vector>

struct CORVMultiImageView::Tile
{
    orvwidgets::TilePicture m_picture;
    QString m_strLabel{};
    QString m_strToolTip{};
    bool m_bFrame = false;
    bool m_bSmooth = true;
    double m_dScale = 1.0;
};

struct CORVMultiImageView::State
{
    // A text of the unit, until it is drawn.
    struct PlacedText
    {
        QPointF at;
        QString text;
        QFont font;
        QColor color;
    };

    std::vector<Tile> m_tiles;
    orvwidgets::TileGrid m_grid;
    QSizeF m_lastSize; // of the grid while there were images
    // While the screen is painted: pictures are made until then, the rest in the next paintings.
    QDeadlineTimer m_deadline{QDeadlineTimer::Forever};
    QFont m_font;

    double m_dMin = 0.0; // of the bar
    double m_dMax = 1.0;
    CILPalette m_palette;
    CORVTextTag m_ownLower;
    CORVTextTag m_ownUpper;
    CORVTextTag* m_pLower = nullptr; // of the caller
    CORVTextTag* m_pUpper = nullptr;
    QPointF m_barBottomLeft; // as the caller placed it
    double m_dBarHeight = 0.0;
    std::vector<PlacedText> m_texts;

    int m_nCurrent = 0;
    int m_toldIndex = -1;
    QPoint m_toldPixel{-1, -1};

    bool m_bGridKnown = true;
    bool m_bSpots = false; // a row a spot
    bool m_bPicturesMissing = false;
    bool m_bHideBar = false;
    bool m_bPlaced = false;
    bool m_bOpenGL = false;     // drawColorBarTexts() runs with OpenGL
    bool m_bCollecting = false; // drawColorBarTexts() runs

    CORVTextTag& lower() { return m_pLower != nullptr ? *m_pLower : m_ownLower; }
    CORVTextTag& upper() { return m_pUpper != nullptr ? *m_pUpper : m_ownUpper; }
    bool isTile(int nIndex) const { return nIndex >= 0 && nIndex < static_cast<int>(m_tiles.size()); }
    const Tile& tile(int nIndex) const { return m_tiles[static_cast<std::size_t>(nIndex)]; }

    const orvwidgets::TileGrid& grid()
    {
        if (!m_bGridKnown) {
            QStringList labels;
            for (const Tile& each : m_tiles) {
                labels << each.m_strLabel;
            }
            const QSizeF first = m_tiles.empty() ? QSizeF() : QSizeF(m_tiles.front().m_picture.size());
            const int perSpot = orvwidgets::tilesPerSpot(labels);
            m_grid = orvwidgets::TileGrid(labels.size(), perSpot, first);
            m_bSpots = perSpot > 0 && perSpot < labels.size();
            m_bGridKnown = true;
        }
        return m_grid;
    }
};
