// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/ReadOut.h"

#include <cmath>

namespace {

constexpr int kDigits = 4;
constexpr int kLongestName = 41; // characters

// A status bar is a line.
QString shortened(const QString& strName)
{
    const QString line = strName.simplified();
    const int half = kLongestName / 2;
    return line.size() <= kLongestName ? line : line.left(half) + QChar(0x2026) + line.right(half);
}

} // namespace

QString ReadOut::text(const QLocale& locale) const
{
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = image.isEmpty() ? QString() : shortened(image) + QStringLiteral("   ");
    text += QStringLiteral("x %1, y %2").arg(pixel.x()).arg(pixel.y());
    if (pixelMm) {
        // The middle of the pixel, to hundredths of a millimetre.
        text += QStringLiteral(" (%1 mm, %2 mm)")
                    .arg(plain.toString((pixel.x() + 0.5) * *pixelMm, 'f', 2),
                         plain.toString((pixel.y() + 0.5) * *pixelMm, 'f', 2));
    }
    if (!value) {
        return text;
    }
    text += QStringLiteral(": ");
    if (std::isnan(*value)) {
        return text + QStringLiteral("no value");
    }
    text += plain.toString(*value, 'g', kDigits);
    if (!quantity.isEmpty()) {
        text += QLatin1Char(' ') + quantity;
    }
    if (averaged > 1) {
        text += QStringLiteral(" (mean of %1 x %1 pixels)").arg(averaged);
    }
    return text;
}
