// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/DarkImages.h"

#include "services/importer/ImageFinder.h"
#include "services/importer/InferredTable.h"
#include "services/importer/Photograph.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace {

bool fail(QString* pError, const QString& file, const QString& reason)
{
    *pError = QStringLiteral("%1: %2").arg(file, reason);
    return false;
}

// What of a file's name tells the image: without its ending, and without "dark" and what parts it from the rest.
QString stemOf(const QString& file)
{
    static const QRegularExpression dark(QStringLiteral("^dark[-_. ]+|[-_. ]+dark$"),
                                         QRegularExpression::CaseInsensitiveOption);
    return QFileInfo(file).completeBaseName().toLower().remove(dark);
}

QString keyOf(const ImageRow& row)
{
    return QStringLiteral("%1|%2|%3").arg(row.page.value_or(1)).arg(row.band.value_or(1)).arg(stemOf(row.file));
}

} // namespace

// A table of them, as of any stack of which nothing is to be known but the order.
bool DarkImages::list(const QString& strSource, QString* pError)
{
    ImageFinder finder;
    PlaneChoice planes;
    planes.each = true;
    if (!finder.find(strSource, ImageFinder::Progress(), pError, false, planes)) {
        return false;
    }
    const QByteArray table = InferredTable(finder.images(), {}, std::nullopt, true).toCsv();
    return m_table.parse(table, strSource, pError) && m_stack.open(strSource, m_table, pError);
}

bool DarkImages::open(const QString& strSource, const QVector<ImageRow>& images, const QStringList& names,
                      const QVector<QSize>& sizes, QString* pError)
{
    *this = DarkImages();
    m_strSource = strSource;
    if (!list(strSource, pError) || !match(images, names, pError) || !checkSizes(names, sizes, pError)) {
        m_ofImage.clear();
        return false;
    }
    return true;
}

bool DarkImages::match(const QVector<ImageRow>& images, const QStringList& names, QString* pError)
{
    if (m_stack.count() == 1) {
        m_ofImage = QVector<int>(images.size(), 0);
        return true;
    }
    QHash<QString, int> dark;
    QHash<QString, int> alone; // of files with one image; -1 for others
    for (int i = 0; i < m_stack.count(); ++i) {
        const ImageRow& row = m_table.rows().at(i);
        dark.insert(keyOf(row), i);
        alone.insert(stemOf(row.file), alone.contains(stemOf(row.file)) ? -1 : i);
    }
    int missing = -1;
    for (int i = 0; i < images.size(); ++i) {
        const int ofFile = alone.value(stemOf(images.at(i).file), -1);
        m_ofImage.append(dark.value(keyOf(images.at(i)), ofFile));
        missing = m_ofImage.last() < 0 && missing < 0 ? i : missing;
    }
    const bool bFolder = QFileInfo(m_strSource).isDir();
    const bool bAny = std::any_of(m_ofImage.cbegin(), m_ofImage.cend(), [](int at) { return at >= 0; });
    if (bFolder && missing < 0) {
        m_eMatching = Matching::ByName;
        return true;
    }
    if (bFolder && bAny) {
        return fail(pError, m_strSource, QStringLiteral("no dark image is named as %1").arg(names.at(missing)));
    }
    if (m_stack.count() != images.size()) {
        return fail(
            pError, m_strSource,
            QStringLiteral("there are %1 dark images where the images are %2; one is needed for all, one each in the "
                           "same order, or a folder with one each of the same name")
                .arg(m_stack.count())
                .arg(images.size()));
    }
    for (int i = 0; i < m_ofImage.size(); ++i) {
        m_ofImage[i] = i;
    }
    m_eMatching = Matching::InOrder;
    return true;
}

bool DarkImages::checkSizes(const QStringList& names, const QVector<QSize>& sizes, QString* pError) const
{
    for (int i = 0; i < sizes.size(); ++i) {
        const QSize dark = m_stack.size(m_ofImage.at(i));
        if (dark != sizes.at(i)) {
            return fail(pError, m_strSource,
                        QStringLiteral("the dark image%1 has %2 x %3 pixels where %4 has %5 x %6")
                            .arg(m_stack.count() > 1 ? QLatin1Char(' ') + name(i) : QString(),
                                 QString::number(dark.width()), QString::number(dark.height()), names.at(i),
                                 QString::number(sizes.at(i).width()), QString::number(sizes.at(i).height())));
        }
    }
    return true;
}

QString DarkImages::matching() const
{
    switch (m_eMatching) {
    case Matching::ByName:
        return QStringLiteral("by name");
    case Matching::InOrder:
        return QStringLiteral("in their order");
    case Matching::OneForAll:
        break;
    }
    return QStringLiteral("one for all");
}

bool DarkImages::read(int i, std::vector<double>& pixels, QString* pError) const
{
    const int at = m_ofImage.at(i);
    CILImage image;
    if (!m_stack.readBand(at, image, pError)) {
        return false;
    }
    const QSize size = m_stack.size(at);
    if (image.m_lWidth != size.width() || image.m_lHeight != size.height()) {
        return fail(pError, m_strSource, QStringLiteral("the file has changed while it was read"));
    }
    if (const long long bad = firstUnusablePixel(image); bad >= 0) {
        return fail(pError, m_strSource,
                    QStringLiteral("%1the pixel in column %2, row %3 is not finite or too large")
                        .arg(m_stack.count() > 1 ? m_stack.name(at) + QStringLiteral(": ") : QString(),
                             QString::number(bad % image.m_lWidth), QString::number(bad / image.m_lWidth)));
    }
    const double scale = m_stack.scale(at);
    pixels.resize(image.pixelCount());
    for (std::size_t p = 0; p < pixels.size(); ++p) {
        pixels[p] = image.value(p) / scale;
    }
    return true;
}
