// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/orv_types.h"
#include "workbench/application/DisplayRange.h"
#include "workbench/application/SequenceTiles.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QTimer>

#include <memory>
#include <vector>

class BackgroundWork;

// The thumbnails of a sequence. They are made of one image after another, which a thread reads, those that were asked
// for first; until then there is none, or that of before. The sequence is borrowed.
class Thumbnails : public QObject
{
    Q_OBJECT

public:
    enum class State
    {
        Waiting,
        Ready,
        Failed
    };

    explicit Thumbnails(const CORVSequenceDataset& sequence, QObject* pParent = nullptr);
    ~Thumbnails() override;

    const SequenceTiles& tiles() const { return m_tiles; }
    State state(int nTile) const { return m_thumbnails.at(index(nTile)).state; }
    // Why a tile failed; empty else.
    const QString& reason(int nTile) const { return m_thumbnails.at(index(nTile)).reason; }
    // Of the image itself, without what made a square of it; empty until it has been read.
    QSize imageSize(int nTile) const { return m_thumbnails.at(index(nTile)).size; }

    tag_edisplayunit unit() const { return m_eUnit; }
    // Table, sense and logarithm; ranges are set here.
    const CILPalette& palette() const { return m_palette; }
    bool isIndividual() const { return m_bIndividual; }
    // The range that a tile is shown with. 0 to 0 without one.
    DisplayRange range(int nTile) const;
    // That of all images that have been read.
    DisplayRange commonRange() const { return m_common; }

    // The picture in device pixels, as last made; null without one. A tile that has none comes next.
    QImage picture(int nTile);
    // The value shown at a place, in parts of the picture (0 to 1), and how many pixels of the image along a side it is
    // the mean of. False without a number: in the photograph, and in what has not been read.
    bool valueAt(int nTile, double dX, double dY, double* pValue, int* pAveraged) const;

    // All of them begin anew.
    void setUnit(tag_edisplayunit eUnit);
    void readAgain();
    // The longer side that thumbnails have at least, in device pixels, if their images have.
    void setSide(int nPixels);
    // Pictures are made of what has been read.
    void setColors(int nTable, bool bReversed, bool bLogScale);
    void setIndividual(bool bIndividual);
    bool isFinished() const { return m_nWaiting == 0; }

Q_SIGNALS:
    void changed(int nTile);
    // The common range is another one, or all pictures are.
    void allChanged();
    void finished();

private:
    struct Thumbnail
    {
        State state = State::Waiting;
        bool stale = true; // is to be read; an earlier one may be there
        QString reason;
        QSize size;
        CILImage reduced;
        DisplayRange range;
        QImage picture;
        DisplayRange shown; // of the picture
    };

    struct Reduced;

    static std::size_t index(int nTile) { return static_cast<std::size_t>(nTile); }
    void makeNext();
    // Begins to read the image; false where the tile is done with already.
    bool startReading(int nTile);
    void take(bool bSuccess, const QString& strError);
    void made(int nTile);
    void makePhotograph(int nTile);
    void fail(int nTile, const QString& strReason);
    void finish();
    int nextTile();

    SequenceTiles m_tiles;
    std::vector<Thumbnail> m_thumbnails;
    QVector<int> m_asked; // the last one comes first
    QTimer m_idle;
    std::unique_ptr<BackgroundWork> m_pReading;
    std::shared_ptr<Reduced> m_pReduced; // by the work
    CILPalette m_palette;
    tag_edisplayunit m_eUnit = DISPLAYUNIT_COUNTS;
    DisplayRange m_common;
    bool m_bIndividual = false;
    int m_nSide = 256;
    int m_nWaiting = 0;
    int m_nNext = 0;
};
