// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/PlaneChoice.h"

#include <QHash>

#include <numeric>

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
    if (sizes.z > 1 && z == 0 && !projectsDepth) {
        return QStringLiteral(
                   "it has %1 planes in depth (Z), which are no channels; --z N takes one of them, --z max or mean "
                   "makes one of all, --channels all for channels")
            .arg(sizes.z);
    }
    if (sizes.t > 1 && sizes.c > 1 && t == 0 && c == 0 && !projectsTimes) {
        return QStringLiteral("it has %1 channels at %2 times, and a sequence is either spectral or temporal; --t N "
                              "takes the channels of one time, --t max or mean those of all, --c N the times of one "
                              "channel")
            .arg(sizes.c)
            .arg(sizes.t);
    }
    return QString();
}

bool PlaneChoice::takes(const std::optional<PlanePosition>& page) const
{
    const auto is = [](int wanted, int at) { return wanted == 0 || wanted == at + 1; };
    if (!page) {
        return z == 0 && t == 0 && c == 0 && projection == PageProjection::Kind::None;
    }
    return is(z, page->z) && is(t, page->t) && is(c, page->c);
}

QVector<QVector<int>> PlaneChoice::images(const FilePlanes& planes) const
{
    const int pages = planes.pages.size();
    // Of a file without dimensions there is one plane in each, and every page has it.
    if (planes.sizes.c == 1 && planes.sizes.z == 1 && planes.sizes.t == 1) {
        if (projection != PageProjection::Kind::None) {
            QVector<int> all(pages);
            std::iota(all.begin(), all.end(), 0);
            return {all};
        }
        QVector<QVector<int>> images;
        for (int page = 0; page < pages; ++page) {
            images.append(QVector<int>{page});
        }
        return images;
    }
    QVector<QVector<int>> images;
    QHash<QString, int> imageOf; // by what tells it apart
    for (int page = 0; page < pages; ++page) {
        const std::optional<PlanePosition>& at = planes.pages.at(page);
        if (!takes(at)) {
            continue;
        }
        const QString key =
            !at || projection == PageProjection::Kind::None
                ? QString::number(page)
                : QStringLiteral("%1|%2|%3").arg(at->c).arg(projectsDepth ? 0 : at->z).arg(projectsTimes ? 0 : at->t);
        if (!imageOf.contains(key)) {
            imageOf.insert(key, images.size());
            images.append(QVector<int>());
        }
        images[imageOf.value(key)].append(page);
    }
    return images;
}
