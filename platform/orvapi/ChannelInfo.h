// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

class CPLClickInfo;
class CPLSection;

// What is known of one channel of a sequence whose images are numbered, because their filters are not known by whole
// nanometres from 100 to 999. The emission filter of such an image, "Channel 007", is its number; what the file said of
// it stands in entries of our own beside.
struct ChannelInfo
{
    QString name;                     // as the file has it; empty without
    std::optional<double> wavelength; // nm, above 0
    std::optional<double> wavenumber; // 1/cm, above 0

    // Numbers are three digits, as keys of filters are.
    static constexpr int kMost = 999;
    static QString keyText(int nNumber);
    // The filter's text of channel `nNumber`, from 1 to kMost.
    static QString filterText(int nNumber);
    // The number in such a text; 0 for that of a real filter.
    static int numberOf(const QString& strFilter);

    // Those of an image; nothing for one of a real filter.
    static std::optional<ChannelInfo> of(const CPLClickInfo& info);
    // Appends the entries to the section of an image.
    void write(CPLSection& section) const;

    // For people: the name, else the wavelength or wavenumber with its unit, else the number as "channel 7".
    QString label(int nNumber) const;
    // The wavelength or wavenumber with its unit; empty without.
    QString placeText() const;
};
