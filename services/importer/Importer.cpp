// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/Importer.h"

#include "files/AtomicFile.h"
#include "files/liesInside.h"
#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/SequenceWriter.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/NumberText.h"
#include "services/importer/ImageKeys.h"
#include "services/importer/ImagePreparation.h"
#include "services/importer/ImageStack.h"
#include "services/importer/ImagesTable.h"
#include "services/importer/ImportMemory.h"
#include "services/importer/Photograph.h"
#include "storage/savedResultsAtStake.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <new>

namespace {

// A square of this side in double precision takes 8 GB; what is beyond is a header gone wrong.
constexpr long maxSide = 32768;

const char* const meanImageOrigin = "mean image";
// Where an image came from; for people.
const char* const sourceKey = "Source Image";
// The table that was inferred, in the new sequence.
const char* const tableName = "images.csv";
const char* const abortText = "the import was aborted";
constexpr double micrometresPerCentimetre = 1e4;

// The folder that will hold the new one, on whose disk there must be room anyway.
QString folderBeside(const QString& output)
{
    return QFileInfo(QDir::cleanPath(QFileInfo(output).absoluteFilePath())).path();
}

// One import from the table to the finished folder.
class Import
{
public:
    Import(const ImportOptions& options, const ImportProgress& progress, ImportReport& report)
        : m_options(options), m_progress(progress), m_report(report), m_mean(folderBeside(options.output))
    {
    }

    bool run(QString* pError)
    {
        // A target is refused before time is spent on images; the writer shows nothing before finish().
        return spareResults(pError) && readTable(pError) && m_images.begin(pError) && limitSize(pError) &&
               limitMemory(pError) && checkExposures(pError) && m_images.loadFlat(pError) &&
               m_writer.begin(m_options.output, describeSequence(), m_options.force, pError,
                              emptyResultsIndexes(m_options.output)) &&
               checkImages(pError) && makePhotograph(pError) && write(pError);
    }

private:
    bool spareResults(QString* pError) const;
    bool readTable(QString* pError);
    bool staysInside(QString* pError) const;
    bool limitSize(QString* pError) const;
    bool limitMemory(QString* pError) const;
    bool checkExposures(QString* pError) const;
    void tellTable();
    void tellImages();
    bool keepTable(QString* pError);
    bool keepValidPixels(QString* pError);
    bool checkImages(QString* pError);
    bool makePhotograph(QString* pError);
    bool write(QString* pError);
    bool step(const QString& what, QString* pError);
    bool readSquare(int i, CILImage& image, QString* pError);
    SequenceDescription describeSequence() const;
    DatasetDescription describeDataset(int i) const;
    ImageFacts factsOf(int i) const;
    QString clickNumber(int i) const;

    const ImportOptions& m_options;
    const ImportProgress& m_progress;
    ImportReport& m_report;
    ImagesTable m_table;
    ImageStack m_stack;
    ImageKeys m_keys;
    ImagePreparation m_images{m_options, m_stack, m_table};
    SequenceWriter m_writer;
    MeanImage m_mean;
    CILImage m_photo; // padded
    QString m_strId;
    QString m_strMark; // tells the click numbers of this sequence from those of others
    int m_nDone = 0;
};

bool Import::spareResults(QString* pError) const
{
    *pError = m_options.force ? savedResultsAtStake(m_options.output) : QString();
    return pError->isEmpty();
}

// A table may come from somebody else, and name files that are not meant to be read.
bool Import::staysInside(QString* pError) const
{
    if (m_options.follow || !QFileInfo(m_options.source).isDir()) {
        return true;
    }
    for (const ImageRow& row : m_table.rows()) {
        if (!orv::liesInside(m_options.source, row.file)) {
            *pError = QStringLiteral("%1: %2 lies outside %3; --follow reads it all the same")
                          .arg(m_table.place(row), row.file, m_options.source);
            return false;
        }
    }
    return true;
}

bool Import::readTable(QString* pError)
{
    const bool bTable = m_options.tableText.isEmpty()
                            ? m_table.load(m_options.table, pError)
                            : m_table.parse(m_options.tableText, QStringLiteral("inferred table"), pError);
    if (bTable && !staysInside(pError)) {
        return false;
    }
    const auto reading = [this](double dFraction) {
        constexpr int steps = 1000;
        const QString what = QStringLiteral("Reading %1").arg(QFileInfo(m_options.source).fileName());
        m_report.aborted = m_progress && !m_progress(static_cast<int>(dFraction * steps), steps, what);
        return !m_report.aborted;
    };
    if (!bTable || !m_stack.open(m_options.source, m_table, pError, reading, m_options.follow)) {
        *pError = m_report.aborted ? QString::fromLatin1(abortText) : *pError;
        return false;
    }
    if (!m_keys.make(m_table, m_stack, pError)) {
        return false;
    }
    for (const ImageRow& row : m_table.rows()) {
        if (row.facts.unit != m_table.rows().first().facts.unit) {
            *pError = QStringLiteral("%1: the unit is not that of line %2")
                          .arg(m_table.place(row), QString::number(m_table.rows().first().line));
            return false;
        }
    }
    if (!m_keys.fluorescence && m_table.rows().first().facts.unit == QLatin1String("Radiant Efficiency")) {
        *pError = QStringLiteral("%1: the unit Radiant Efficiency is one of fluorescence, and there is no excitation")
                      .arg(m_table.place(m_table.rows().first()));
        return false;
    }
    const QString output = QDir::cleanPath(QFileInfo(m_options.output).absoluteFilePath());
    m_strId = m_options.name.isEmpty() ? QFileInfo(output).fileName() : m_options.name;
    const QByteArray hash = QCryptographicHash::hash(output.toUtf8(), QCryptographicHash::Sha1).toHex().toUpper();
    m_strMark = QString::fromLatin1(hash.left(6));
    tellTable();
    return true;
}

void Import::tellTable()
{
    m_report.sequenceId = m_strId;
    m_report.images = m_stack.count();
    m_report.temporal = m_keys.temporal;
    m_report.fluorescence = m_keys.fluorescence;
    m_report.transillumination = m_keys.transillumination;
    m_report.numbered = m_keys.numbered;
    for (int i = 0; i < m_stack.count(); ++i) {
        m_report.names.append(m_stack.name(i));
        m_report.scaled = m_report.scaled || m_stack.scale(i) < 1.0 || m_stack.scale(i) > 1.0;
    }
    m_report.unit = m_table.rows().first().facts.unit;
    m_report.warnings = m_table.warnings() + m_stack.warnings();
}

bool Import::limitSize(QString* pError) const
{
    if (std::max(m_images.width(), m_images.height()) <= maxSide) {
        return true;
    }
    *pError = QStringLiteral("%1: images of %2 x %3 pixels are too large (at most %4 along a side)")
                  .arg(m_options.source, QString::number(m_images.width()), QString::number(m_images.height()),
                       QString::number(maxSide));
    return false;
}

bool Import::limitMemory(QString* pError) const
{
    const QString reason = reasonAgainstMemory(m_images.size(), m_options.maxMemory);
    if (!reason.isEmpty()) {
        *pError = QStringLiteral("%1: %2").arg(m_options.source, reason);
    }
    return reason.isEmpty();
}

bool Import::checkExposures(QString* pError) const
{
    const int nExposures = m_options.exposures.size();
    if (nExposures > 1 && nExposures != m_stack.count()) {
        *pError = QStringLiteral("%1: %2 exposures are given for %3 images")
                      .arg(m_options.source, QString::number(nExposures), QString::number(m_stack.count()));
        return false;
    }
    return true;
}

bool Import::step(const QString& what, QString* pError)
{
    if (m_progress && !m_progress(m_nDone, 2 * m_stack.count(), what)) {
        m_report.aborted = true;
        *pError = QString::fromLatin1(abortText);
        return false;
    }
    ++m_nDone;
    return true;
}

// All pixels are looked at before a file is written.
bool Import::checkImages(QString* pError)
{
    CILImage image;
    for (int i = 0; i < m_stack.count(); ++i) {
        if (!step(QStringLiteral("Reading %1").arg(m_stack.name(i)), pError) || !m_images.read(i, image, pError)) {
            return false;
        }
        if (m_options.photo.isEmpty() && !m_mean.add(image, pError)) {
            return false;
        }
    }
    m_report.warnings += m_stack.colourWarnings();
    const long long pixels = static_cast<long long>(m_images.width()) * m_images.height();
    m_report.invalid = m_images.invalid().count();
    if (m_report.invalid == pixels) {
        *pError = QStringLiteral("%1: no pixel has a value in all images").arg(m_options.source);
        return false;
    }
    if (m_report.invalid > 0) {
        m_report.warnings.append(QStringLiteral("%1 of %2 pixels have no value in some image and are left out")
                                     .arg(m_report.invalid)
                                     .arg(pixels));
    }
    return true;
}

bool Import::makePhotograph(QString* pError)
{
    if (m_options.photo.isEmpty()) {
        m_report.photographOrigin = QString::fromLatin1(meanImageOrigin);
        if (!m_mean.stretched(m_photo)) {
            *pError = QStringLiteral("%1: there is no memory for the mean image").arg(m_options.source);
            return false;
        }
        m_mean = MeanImage();
    } else {
        m_report.photographOrigin = QFileInfo(m_options.photo).fileName();
        if (!loadPhotograph(m_options.photo, m_images.width(), m_images.height(), m_photo, &m_report.warnings,
                            pError)) {
            return false;
        }
    }
    if (!padToSquare(m_photo)) {
        *pError = QStringLiteral("%1: there is no memory for the photograph").arg(m_options.source);
        return false;
    }
    return true;
}

bool Import::readSquare(int i, CILImage& image, QString* pError)
{
    if (!step(QStringLiteral("Writing %1").arg(m_stack.name(i)), pError) || !m_images.read(i, image, pError)) {
        return false;
    }
    if (!padToSquare(image)) {
        *pError = QStringLiteral("%1: there is no memory for the image").arg(m_stack.name(i));
        return false;
    }
    image.m_fBinning = 1.0F;
    return true;
}

bool Import::write(QString* pError)
{
    CILImage image;
    for (int i = 0; i < m_stack.count(); ++i) {
        if (!readSquare(i, image, pError)) {
            return false;
        }
        // The first dataset lends its photograph to the others.
        SequenceWriter::Images images{{IMAGETYPE_LUMINESCENT, &image}};
        if (i == 0) {
            images.append({IMAGETYPE_PHOTOGRAPH, &m_photo});
        }
        if (!m_writer.addDataset(describeDataset(i), images, pError)) {
            return false;
        }
        m_report.clickNumbers.append(clickNumber(i));
    }
    tellImages();
    return keepTable(pError) && keepValidPixels(pError) && spareResults(pError) && m_writer.finish(pError);
}

void Import::tellImages()
{
    m_report.width = m_images.width();
    m_report.height = m_images.height();
    m_report.side = std::max(m_report.width, m_report.height);
    m_report.dark = !m_images.dark().isEmpty();
    m_report.darkMatching = m_report.dark ? m_images.dark().matching() : QString();
    m_report.flat = m_images.hasFlat();
    m_report.background = m_options.background.text();
    m_report.sizes = m_images.commonSize().text();
    m_report.prepared = m_images.images();
}

// An inferred table goes along, to be edited and given by hand the next time.
bool Import::keepTable(QString* pError)
{
    if (m_options.tableText.isEmpty()) {
        return true;
    }
    const QString path = m_writer.extraFile(QString::fromLatin1(tableName));
    if (path.isEmpty() || !orv::writeFileAtomically(path, m_options.tableText)) {
        *pError = QStringLiteral("%1: %2 cannot be written").arg(m_options.output, QLatin1String(tableName));
        return false;
    }
    return true;
}

// Where every image has a value; nothing is written where all pixels do.
bool Import::keepValidPixels(QString* pError)
{
    if (m_images.invalid().count() == 0) {
        return true;
    }
    CILImage valid;
    const QString path = m_writer.extraFile(QString::fromLatin1(SequenceFiles::kValidPixels));
    if (!m_images.invalid().validSquare(valid)) {
        *pError = QStringLiteral("%1: there is no memory for the valid pixels").arg(m_options.source);
        return false;
    }
    return writeTiff(path, valid, TiffWriteOptions(), pError);
}

SequenceDescription Import::describeSequence() const
{
    SequenceDescription description;
    description.id = m_strId;
    description.name = m_strId;
    description.temporal = m_keys.temporal;
    description.fluorescence = m_keys.fluorescence;
    description.transillumination = m_keys.transillumination;
    if (m_options.photo.isEmpty()) {
        description.photographOrigin = QString::fromLatin1(meanImageOrigin);
    }
    return description;
}

QString Import::clickNumber(int i) const
{
    return QStringLiteral("IM%1-%2").arg(i + 1, 4, 10, QLatin1Char('0')).arg(m_strMark);
}

// What is known of an image; the options go before the table.
ImageFacts Import::factsOf(int i) const
{
    ImageFacts facts = m_table.rows().at(i).facts;
    if (!m_options.exposures.isEmpty()) {
        facts.exposure = m_options.exposures.value(m_options.exposures.size() > 1 ? i : 0);
    }
    if (m_options.pixelSize > 0.0) {
        facts.pixelSize = m_options.pixelSize;
    } else if (facts.pixelSize) {
        *facts.pixelSize *= m_images.images().at(i).binned; // the file's are those of its own pixels
    }
    return facts;
}

DatasetDescription Import::describeDataset(int i) const
{
    const auto text = [](const char* key) { return QString::fromLatin1(key); };
    const ImageKey& key = m_keys.images.at(i);
    CPLSection click(text(ClickKeys::kClickNumber));
    CPLSection image(text(ClickKeys::kLuminescentImage));
    if (m_keys.temporal) {
        click.setValue(text(ClickKeys::kKyVoTime), key.time);
        click.setValue(text(ClickKeys::kKyVoInterval), key.interval);
    }
    if (!key.excitation.isEmpty()) {
        image.setValue(text(ClickKeys::kExcitationFilter), key.excitation);
    }
    if (!key.emission.isEmpty()) {
        image.setValue(text(ClickKeys::kEmissionFilter), key.emission);
    }
    if (m_keys.transillumination) {
        image.setValue(text(ClickKeys::kFLXSpot), key.spotX);
        image.setValue(text(ClickKeys::kFLYSpot), key.spotY);
    }
    if (m_keys.numbered) {
        const ImageRow& row = m_table.rows().at(i);
        ChannelInfo{row.channel, row.wavelength, row.wavenumber}.write(image);
    }
    image.setValue(text(ClickKeys::kBinning), 1);
    image.setValue(text(ClickKeys::kImageExtent),
                   QStringLiteral("%1 x %2").arg(m_images.width()).arg(m_images.height()));
    m_images.images().at(i).write(image);
    if (m_images.hasFlat()) {
        image.setValue(text(ClickKeys::kFlatFieldCorrected), 1);
    }
    const ImageFacts facts = factsOf(i);
    if (facts.exposure) {
        image.setValue(text(ClickKeys::kExposureTime), orv::shortestText(*facts.exposure));
    }
    if (!facts.start.isEmpty()) {
        image.setValue(text(ClickKeys::kAcquisitionDate), facts.start.section(QLatin1Char('T'), 0, 0));
        image.setValue(text(ClickKeys::kAcquisitionTime), facts.start.section(QLatin1Char('T'), 1, 1));
    }
    if (!facts.isotope.isEmpty()) {
        image.setValue(text(ClickKeys::kIsotope), facts.isotope);
    }
    if (!facts.unit.isEmpty()) {
        image.setValue(text(ClickKeys::kStoredUnit), facts.unit);
    }
    image.setValue(text(sourceKey), m_stack.name(i).simplified());
    DatasetDescription dataset;
    dataset.clickNumber = clickNumber(i);
    dataset.info.addSection(&click);
    dataset.info.addSection(&image);
    if (facts.pixelSize) {
        CPLSection camera(text(ClickKeys::kCameraSystemInfo));
        camera.setValue(text(ClickKeys::kPixelSize), orv::shortestText(*facts.pixelSize / micrometresPerCentimetre));
        dataset.info.addSection(&camera);
    }
    return dataset;
}

} // namespace

bool importStack(const ImportOptions& options, const ImportProgress& progress, ImportReport* pReport, QString* pError)
{
    ImportReport report;
    QString error;
    bool bDone = false;
    try {
        bDone = Import(options, progress, report).run(&error);
    } catch (const std::bad_alloc&) {
        error = QStringLiteral("%1: there is not enough memory").arg(options.source);
    }
    if (pReport != nullptr) {
        *pReport = report;
    }
    if (pError != nullptr) {
        *pError = bDone ? QString() : error;
    }
    return bDone;
}
