// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpectrumAxis.h"

QString axisLabel(int nAxis)
{
    switch (nAxis) {
    case SPECTRUMAXIS_EMISSION:
        return QStringLiteral("Emission Wavelength [nm]");
    case SPECTRUMAXIS_EXCITATION:
        return QStringLiteral("Excitation Wavelength [nm]");
    case SPECTRUMAXIS_TIME:
        return QStringLiteral("Time Point [s]");
    default:
        return QString();
    }
}
