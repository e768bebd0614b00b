// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImagePreparation.h"

#include "services/importer/Photograph.h"

#include <QSize>
#include <QStringList>

#include <algorithm>

namespace {

// By what the file tells. False without memory.
bool divide(CILImage& image, double scale)
{
    if (!(scale < 1.0 || scale > 1.0)) {
        return true;
    }
    if (!ImageCorrection::makeReal(image)) {
        return false;
    }
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, image.value(i) / scale);
    }
    return true;
}

} // namespace

bool ImagePreparation::begin(QString* pError)
{
    QVector<QSize> sizes;
    QStringList names;
    for (int i = 0; i < m_stack.count(); ++i) {
        sizes.append(m_stack.size(i));
        names.append(m_stack.name(i));
    }
    QString reason;
    int image = 0;
    if (!m_size.choose(sizes, names, m_options.sizes, &reason, &image)) {
        *pError = QStringLiteral("%1: %2").arg(m_table.place(m_table.rows().at(image)), reason);
        return false;
    }
    m_images = QVector<PreparedImage>(m_stack.count());
    return m_options.dark.isEmpty() || m_dark.open(m_options.dark, m_table.rows(), names, sizes, pError);
}

ImportSize ImagePreparation::size() const
{
    ImportSize size;
    size.width = width();
    size.height = height();
    for (int i = 0; i < m_stack.count(); ++i) {
        size.readPixels =
            std::max(size.readPixels, static_cast<qint64>(m_stack.size(i).width()) * m_stack.size(i).height());
    }
    size.readBytes = m_stack.readBytes() + m_dark.readBytes();
    size.pixelBytes = m_stack.pixelBytes();
    size.corrections = (m_options.dark.isEmpty() ? 0 : 1) + (m_options.flat.isEmpty() ? 0 : 1);
    size.sorted = !m_options.background.isEmpty();
    size.resized = m_size.isNeeded();
    size.photograph = m_options.photo.isEmpty() ? 0 : photographMemory(m_options.photo);
    return size;
}

// Images of another size than the flat field's are told before a pixel is read.
bool ImagePreparation::loadFlat(QString* pError)
{
    if (m_options.flat.isEmpty()) {
        return true;
    }
    const QSize first = m_stack.size(0);
    if (!m_correction.loadFlat(m_options.flat, first.width(), first.height(), pError)) {
        return false;
    }
    for (int i = 1; i < m_stack.count(); ++i) {
        if (m_stack.size(i) != first) {
            *pError = QStringLiteral("%1: the flat field has %2 x %3 pixels where %4 has %5 x %6")
                          .arg(m_options.flat, QString::number(first.width()), QString::number(first.height()),
                               m_stack.name(i), QString::number(m_stack.size(i).width()),
                               QString::number(m_stack.size(i).height()));
            return false;
        }
    }
    return true;
}

bool ImagePreparation::failWithoutMemory(int i, QString* pError) const
{
    *pError = QStringLiteral("%1: there is no memory for the image").arg(m_stack.name(i));
    return false;
}

bool ImagePreparation::checkPixels(int i, const CILImage& image, QString* pError) const
{
    const long long bad = firstUnusablePixel(image);
    if (bad < 0) {
        return true;
    }
    *pError = QStringLiteral("%1: %2: the pixel in column %3, row %4 is not finite or too large; --skip-invalid leaves "
                             "such pixels out")
                  .arg(m_table.place(m_table.rows().at(i)), m_stack.name(i), QString::number(bad % image.m_lWidth),
                       QString::number(bad / image.m_lWidth));
    return false;
}

bool ImagePreparation::takeDark(int i, QString* pError)
{
    if (m_dark.isEmpty()) {
        return true;
    }
    m_images[i].dark = m_dark.name(i);
    if (m_nDark >= 0 && m_dark.isSame(m_nDark, i)) {
        return true;
    }
    std::vector<double> pixels;
    if (!m_dark.read(i, pixels, pError)) {
        return false;
    }
    m_correction.setDark(std::move(pixels));
    m_nDark = i;
    return true;
}

// In its own size.
bool ImagePreparation::correct(int i, CILImage& image, QString* pError)
{
    return (divide(image, m_stack.scale(i)) && m_correction.apply(image)) || failWithoutMemory(i, pError);
}

bool ImagePreparation::read(int i, CILImage& image, QString* pError)
{
    if (!takeDark(i, pError) || !m_stack.readBand(i, image, pError)) {
        return false;
    }
    if (QSize(static_cast<int>(image.m_lWidth), static_cast<int>(image.m_lHeight)) != m_stack.size(i)) {
        *pError = QStringLiteral("%1: the file has changed while it was read").arg(m_stack.name(i));
        return false;
    }
    std::vector<bool> marks = InvalidPixels::of(image, m_stack.ignoreValue(i), m_options.skipInvalid);
    for (std::size_t p = 0; p < marks.size(); ++p) {
        if (marks[p]) {
            image.setValue(p, 0.0); // what marks them may be any number
        }
    }
    if (!correct(i, image, pError) || !checkPixels(i, image, pError)) {
        return false;
    }
    const bool bDensity = !m_table.rows().at(i).facts.unit.isEmpty();
    if (!m_size.fit(i, bDensity, image, marks)) {
        return failWithoutMemory(i, pError);
    }
    m_images[i].binned = m_size.factor(i);
    m_images[i].projection = m_stack.projectionText(i);
    m_invalid.add(marks, width(), height());
    if (!subtractBackground(i, marks, image, pError) || !checkPixels(i, image, pError)) {
        return false;
    }
    m_invalid.clear(image);
    countNegatives(i, image);
    return true;
}

bool ImagePreparation::subtractBackground(int i, const std::vector<bool>& marks, CILImage& image, QString* pError)
{
    if (m_options.background.isEmpty()) {
        return true;
    }
    double level = 0.0;
    QString reason;
    if (!m_options.background.level(image, marks, &level, &reason)) {
        if (reason.isEmpty()) {
            return failWithoutMemory(i, pError);
        }
        *pError = QStringLiteral("%1: %2: %3").arg(m_table.place(m_table.rows().at(i)), m_stack.name(i), reason);
        return false;
    }
    if (!ImageCorrection::makeReal(image)) {
        return failWithoutMemory(i, pError);
    }
    for (std::size_t p = 0; p < image.pixelCount(); ++p) {
        image.setValue(p, image.value(p) - level);
    }
    m_images[i].background = level;
    m_images[i].rule = m_options.background.text();
    return true;
}

// Of the pixels that will be analysed: those without a value in some image are 0.
void ImagePreparation::countNegatives(int i, const CILImage& image)
{
    if (m_dark.isEmpty() && m_options.background.isEmpty()) {
        return;
    }
    m_images[i].negatives = 0;
    for (std::size_t p = 0; p < image.pixelCount(); ++p) {
        m_images[i].negatives += image.value(p) < 0.0 ? 1 : 0;
    }
}
