// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/PlaneChoice.h"

QString PlaneChoice::reasonAgainst(const PlanePosition& sizes) const
{
    const auto missing = [](int wanted, int size, const char* pWhat) {
        return wanted > size
                   ? QStringLiteral("there is no %1 %2, it has %3").arg(QLatin1String(pWhat)).arg(wanted).arg(size)
                   : QString();
    };
    for (const QString& reason : {missing(z, sizes.z, "plane in depth (Z)"), missing(t, sizes.t, "time (T)"),
                                  missing(c, sizes.c, "channel (C)")}) {
        if (!reason.isEmpty()) {
            return reason;
        }
    }
    if (each) {
        return QString();
    }
    if (sizes.z > 1 && z == 0) {
        return QStringLiteral(
                   "it has %1 planes in depth (Z), which are no channels; --z N takes one of them, --channels "
                   "all for channels")
            .arg(sizes.z);
    }
    if (sizes.t > 1 && sizes.c > 1 && t == 0 && c == 0) {
        return QStringLiteral("it has %1 channels at %2 times, and a sequence is either spectral or temporal; --t N "
                              "takes the channels of one time, --c N the times of one channel")
            .arg(sizes.c)
            .arg(sizes.t);
    }
    return QString();
}

bool PlaneChoice::takes(const std::optional<PlanePosition>& page) const
{
    const auto is = [](int wanted, int at) { return wanted == 0 || wanted == at + 1; };
    if (!page) {
        return z == 0 && t == 0 && c == 0;
    }
    return is(z, page->z) && is(t, page->t) && is(c, page->c);
}
