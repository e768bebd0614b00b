// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The twelve colours that spectra take in turn, as names that QColor::setNamedColor understands.
inline const QStringList& defaultSpectrumColors()
{
    static const QStringList colors{QStringLiteral("lime"),    QStringLiteral("red"),    QStringLiteral("blue"),
                                    QStringLiteral("magenta"), QStringLiteral("gold"),   QStringLiteral("cyan"),
                                    QStringLiteral("pink"),    QStringLiteral("tomato"), QStringLiteral("green"),
                                    QStringLiteral("brown"),   QStringLiteral("silver"), QStringLiteral("black")};
    return colors;
}

// The colour of spectrum `nIndex` (from 0; negative counts as 0), modulo the number of colours.
inline QString defaultSpectrumColor(int nIndex)
{
    const QStringList& colors = defaultSpectrumColors();
    return colors.at((nIndex < 0 ? 0 : nIndex) % colors.size());
}

// The place of a colour among the twelve, its name in any case; -1 for another colour.
inline int defaultColorPosition(const QString& strName)
{
    const QStringList& colors = defaultSpectrumColors();
    for (int i = 0; i < colors.size(); ++i) {
        if (colors.at(i).compare(strName, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}
