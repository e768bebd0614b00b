// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/ReadOut.h"

#include <cmath>

namespace {

constexpr int kDigits = 4;

} // namespace

QString ReadOut::text(const QLocale& locale) const
{
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = image.isEmpty() ? QString() : image + QStringLiteral("   ");
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
