// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageJMetadata.h"

#include "services/importer/NameFigures.h"

#include <QHash>

#include <cmath>

namespace {

using Entries = QHash<QString, QString>;

// The keys that count come first; what follows is notes of any length.
constexpr int maxHeadLength = 65536;

Entries entriesOf(const QString& description)
{
    Entries entries;
    const QStringList lines =
        description.left(maxHeadLength).replace(QLatin1Char('\r'), QLatin1Char('\n')).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const int at = line.indexOf(QLatin1Char('='));
        if (at > 0) {
            entries.insert(line.left(at).trimmed().toLower(), line.mid(at + 1).trimmed());
        }
    }
    return entries;
}

int countOf(const Entries& entries, const char* key)
{
    bool bNumber = false;
    const int count = entries.value(QLatin1String(key), QStringLiteral("1")).toInt(&bNumber);
    return bNumber && count > 0 ? count : 1;
}

// Seconds a unit; 0 for one that is not known.
double secondsOf(const QString& unit)
{
    static const QHash<QString, double> factors{{QString(), 1.0},
                                                {QStringLiteral("s"), 1.0},
                                                {QStringLiteral("sec"), 1.0},
                                                {QStringLiteral("seconds"), 1.0},
                                                {QStringLiteral("ms"), 1e-3},
                                                {QStringLiteral("msec"), 1e-3},
                                                {QStringLiteral("min"), 60.0},
                                                {QStringLiteral("h"), 3600.0},
                                                {QStringLiteral("hr"), 3600.0},
                                                {QStringLiteral("hour"), 3600.0},
                                                {QStringLiteral("hours"), 3600.0}};
    return factors.value(unit.toLower(), 0.0);
}

} // namespace

bool ImageJMetadata::isImageJ(const QString& strDescription)
{
    return strDescription.startsWith(QLatin1String("ImageJ="));
}

// Channels change fastest, then slices, then frames.
void ImageJMetadata::placePlanes(int nChannels, int nSlices, int nFrames, int nPages)
{
    m_planes = FilePlanes();
    m_planes.pages.resize(nPages);
    const bool bPlain = nChannels == 1 && nFrames == 1;
    const qint64 framePages = static_cast<qint64>(nChannels) * nSlices;
    if (bPlain || framePages > nPages || framePages * nFrames != nPages) {
        return;
    }
    m_planes.sizes = {nChannels, nSlices, nFrames};
    for (int page = 0; page < nPages; ++page) {
        m_planes.pages[page] = PlanePosition{page % nChannels, page / nChannels % nSlices, page / nChannels / nSlices};
    }
}

void ImageJMetadata::parse(const QString& strDescription, const QStringList& labels, int nPages)
{
    m_pages = QVector<QVector<Figure>>(nPages);
    m_doubts.clear();
    const Entries entries = entriesOf(strDescription);
    const int images = countOf(entries, "images");
    const int channels = countOf(entries, "channels");
    const int slices = countOf(entries, "slices");
    const int frames = countOf(entries, "frames");
    m_bFrames = frames > 1;
    placePlanes(channels, slices, frames, nPages);
    if (images > 1 && images != nPages) {
        m_doubts.append(
            QStringLiteral("ImageJ's description tells of %1 images, the file has %2 pages").arg(images).arg(nPages));
    }
    const double unit = secondsOf(entries.value(QStringLiteral("tunit")));
    bool bNumber = false;
    const double interval = entries.value(QStringLiteral("finterval")).toDouble(&bNumber) * unit;
    const bool bTimes = bNumber && std::isfinite(interval) && interval > 0.0;
    if (!(unit > 0.0) && frames > 1) {
        m_doubts.append(QStringLiteral("ImageJ's unit of time \"%1\" is not known")
                            .arg(entries.value(QStringLiteral("tunit")).left(40)));
    }
    const qint64 framePages = static_cast<qint64>(channels) * slices;
    for (int page = 0; page < nPages; ++page) {
        const qint64 number = page / framePages;
        const auto frame = static_cast<double>(number);
        if (frames > 1 && bTimes) {
            m_pages[page].append({Figure::Time, frame * interval, QStringLiteral("ImageJ finterval")});
        } else if (frames > 1) {
            m_pages[page].append({Figure::Frame, frame, QStringLiteral("ImageJ frames")});
        }
        const NameFigures label = NameFigures::read(labels.value(page), QStringLiteral("ImageJ label"));
        for (const Figure& figure : label.figures) {
            // A number says less than the frame that is known, or nothing.
            if (figure.kind != Figure::Frame) {
                m_pages[page].append(figure);
            }
        }
        for (const QString& doubt : label.doubts) {
            m_doubts.append(QStringLiteral("label of page %1: %2").arg(QString::number(page + 1), doubt));
        }
    }
}
