// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class CORVSpumKyvo;

// What the images of a sequence of numbered channels are called, and where they truly lie: plots and tables tell these
// in place of the numbers that the engine knows the images by.
class ChannelLabels
{
public:
    ChannelLabels() = default; // of no channels
    // Those of the engine's sequence; empty for a sequence of filters or times, and where the sequence is closed.
    explicit ChannelLabels(const CORVSpumKyvo& engine);

    bool isEmpty() const { return m_labels.isEmpty(); }
    // "DAPI"; empty for a pair that is no channel.
    QString label(const KeyPair& pair) const { return m_labels.value(pair.second); }
    // Those of all pairs; empty where they are no channels.
    QStringList labels(const QList<KeyPair>& pairs) const;
    // Where the pair stands along axisText(): its wavelength or wavenumber where all channels have one, else its
    // number.
    double place(const KeyPair& pair) const;
    // "Wavelength [nm]", "Wavenumber [1/cm]" or "Channel".
    QString axisText() const;
    // Whether the places are the numbers of the channels.
    bool areNumbers() const { return m_ePlaces == Places::Numbers; }

private:
    enum class Places
    {
        Numbers,
        Wavelengths,
        Wavenumbers
    };
    QHash<QString, QString> m_labels; // by the emission's key
    QHash<QString, double> m_places;
    Places m_ePlaces = Places::Numbers;
};
