// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVector>

#include <utility>

// A quantity over the wavelength, given at ascending wavelengths in nm and linear between them.
class SpectralCurve
{
public:
    enum class Beyond
    {
        Zero, // a spectrum of light ends with its table
        Hold  // a property goes on as it ends
    };

    SpectralCurve() = default;
    // Both of the same length, at least one entry.
    SpectralCurve(QVector<double> wavelengths, QVector<double> values, Beyond beyond);

    bool isEmpty() const { return m_wavelengths.isEmpty(); }
    double at(double nm) const;
    // Wavelength of the largest value, the first of several; 0 when empty.
    double peak() const;
    const QVector<double>& wavelengths() const { return m_wavelengths; }
    const QVector<double>& values() const { return m_values; }

private:
    QVector<double> m_wavelengths;
    QVector<double> m_values;
    Beyond m_beyond = Beyond::Zero;
};
