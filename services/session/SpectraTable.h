// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

// A plain CSV table of spectra, as spreadsheet programs and instruments write them: over wavelength, a spectrum a
// column (the first column holds the wavelengths) or a row (the first line does), or over the columns "excitation" and
// "emission", a line an image. Fields are split by tabs, semicolons or commas; the decimal sign is a point or a comma;
// wavelengths are in nm or um, which the first field may tell and else their size does. UTF-8, UTF-16 with its mark, or
// Latin-1. Blank lines and lines that begin with '#' do not count. SpectraTableReader fills one.
class SpectraTable
{
public:
    // What the wavelengths of the rows are, as far as the table says.
    enum class Axis
    {
        Unsaid,
        Emission,
        Excitation
    };
    struct Row
    {
        double excitation = 0.0; // nm; NaN where the table does not tell, or the image has none
        double wavelength = 0.0; // nm; in a table of pairs of the emission, NaN where the image has none
    };

    // Tables beyond these sizes are refused.
    static constexpr int maxLines = 100000;
    static constexpr int maxSpectra = 10000;
    static constexpr int maxValues = 2000000;

    // Whether the bytes are those of a spectrum library, well formed or not: a line of theirs begins with "$,".
    static bool isLibrary(const QByteArray& bytes);

    Axis axis() const { return m_eAxis; }
    // Whether the rows name images by excitation and emission.
    bool hasPairs() const { return m_bPairs; }
    // By ascending excitation and wavelength, none twice. Of a table without pairs no row has an excitation.
    const QVector<Row>& rows() const { return m_rows; }
    // Unique, not empty, without commas (a library has no way to write them).
    const QStringList& names() const { return m_names; }
    // Of the spectrum `nSpectrum`, one a row, NaN where the table has no value; one value at least is there. Those of a
    // column in percent are divided by 100.
    const QVector<double>& values(int nSpectrum) const { return m_values.at(nSpectrum); }

private:
    friend class SpectraTableReader;

    Axis m_eAxis = Axis::Unsaid;
    bool m_bPairs = false;
    QVector<Row> m_rows;
    QStringList m_names;
    QVector<QVector<double>> m_values;
};
