// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ImageRecord.h"

#include "spectra/KeyPair.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

// The click number of the image of every selected pair, spot after spot: entry k is spot k / n, pair k % n of n pairs.
// The kind decides what an image is known by: interval and time, or its filters, with the scan spot in front in a scan.
// Of two images that are known alike the later click number counts. False when a pair has no image; `list` is then
// partly filled.
bool imagesOfSelection(const QMap<QString, ImageRecord>& records, const QList<KeyPair>& selection,
                       const QStringList& spots, int eSeqKind, QVector<QString>& list);

// The binning that most images have; when counts draw level in the walk, the coarser. Feed the binnings in image order;
// `nStart` is what stands before the first.
class BinningChoice
{
public:
    explicit BinningChoice(int nStart) : m_nBinning(nStart) {}
    void count(int nBinning);
    int binning() const { return m_nBinning; }

private:
    QMap<int, int> m_counts;
    int m_nBest = 0;
    int m_nBinning;
};

// Side in pixels, at binning nTo, of a square image of nSide pixels at binning nFrom; rounded down.
int sideAtBinning(int nSide, int nFrom, int nTo);
