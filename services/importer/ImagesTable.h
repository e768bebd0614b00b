// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/ImageFacts.h"
#include "services/importer/PageProjection.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

// The names of the table's columns.
namespace ImageColumns {
constexpr const char* const kFile = "file";
constexpr const char* const kPage = "page";
constexpr const char* const kProjection = "projection";
constexpr const char* const kBand = "band";
constexpr const char* const kExcitation = "excitation";
constexpr const char* const kEmission = "emission";
constexpr const char* const kChannel = "channel";
constexpr const char* const kWavelength = "wavelength";
constexpr const char* const kWavenumber = "wavenumber";
constexpr const char* const kInterval = "interval";
constexpr const char* const kTime = "time";
constexpr const char* const kSpotX = "spot_x";
constexpr const char* const kSpotY = "spot_y";
constexpr const char* const kExposure = "exposure";
constexpr const char* const kPixelSize = "pixel_size";
constexpr const char* const kStart = "start";
constexpr const char* const kIsotope = "isotope";
constexpr const char* const kUnit = "unit";
constexpr const char* const kOrigin = "origin"; // says nothing to the program
} // namespace ImageColumns

// One row of the table: where an image is, and what it shows. What the row leaves open is empty.
struct ImageRow
{
    int line = 0; // in the file, from 1
    QString file;
    std::optional<int> page; // from 1; of several the first
    PageProjection projection;
    std::optional<int> band;          // from 1
    std::optional<double> excitation; // nm
    std::optional<double> emission;   // nm
    QString channel;                  // name
    std::optional<double> wavelength; // nm, of a numbered channel
    std::optional<double> wavenumber; // 1/cm, of a numbered channel
    std::optional<double> time;       // s
    std::optional<int> interval;
    QString spotX; // a number as it was written; empty without
    QString spotY;
    ImageFacts facts;
};

// The table "images.csv". Its first line names the columns, those of ImageColumns in any order and case; others are
// passed over with a warning. Fields are separated by commas, or by semicolons when the
// first line has those and no comma. Text is UTF-8, with or without a byte order mark, and lines end in either way;
// empty ones are skipped. Wavelengths may have "nm" behind them, times "s"; numbers have a decimal point.
class ImagesTable
{
public:
    // False with "file:line: reason" in *pError; the table is then empty.
    bool load(const QString& strPath, QString* pError);
    // As load(), from text; `strName` stands for the file in messages.
    bool parse(const QByteArray& text, const QString& strName, QString* pError);

    const QVector<ImageRow>& rows() const { return m_rows; }
    // Whether there is a column "channel", "wavelength" or "wavenumber": without wavelengths of filters and times the
    // images are numbered channels.
    bool hasChannels() const { return m_bChannels; }
    const QStringList& warnings() const { return m_warnings; }
    // "file:line", for messages about a row.
    QString place(const ImageRow& row) const;

private:
    bool parseLines(const QStringList& lines, QString* pError);

    QString m_strName;
    QVector<ImageRow> m_rows;
    QStringList m_warnings;
    bool m_bChannels = false;
};
