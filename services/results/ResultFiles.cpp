// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultFiles.h"

#include "XTNT/xtnt_parallel.h"
#include "engine/CORVSpumKyvo.h"
#include "files/AtomicFile.h"
#include "host/CILImage.h"
#include "platform/orvimage/RenderMap.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/pngBytes.h"
#include "services/basis/Failure.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/pictures/MaskPicture.h"
#include "services/pictures/ResultComposite.h"
#include "services/pictures/ResultPlot.h"
#include "services/results/ReportHtml.h"
#include "services/results/ReportPdf.h"
#include "services/results/resultSummary.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

const QSize plotSize(1100, 700);
// A scan of many spots has too many maps for one sheet.
constexpr int overviewMaps = 12;
constexpr int reportedComposites = 6;

// A component's row of maps (components x pixels) at a spot as an image of the shape that the images had; 0 outside the
// mask.
CILImage imageOfMap(const CORVSpumKyvo& engine, const XTNT::Matrix<double>& maps, int nComponent, int nSpot)
{
    CILImage image;
    image.InitWithType(ORVTYPE_FLOAT, engine.m_nWidth, engine.m_nHeight);
    image.m_fBinning = static_cast<float>(engine.m_nBinning);
    const long long pixels = engine.m_cube.pixelsPerSpot();
    const double* row = maps[nComponent] + nSpot * pixels;
    float* target = image.floats();
    for (long long j = 0; j < pixels; ++j) {
        const auto place =
            engine.m_cube.m_bHasMask ? engine.m_cube.m_maskIndices[static_cast<std::size_t>(j)] : static_cast<int>(j);
        target[place] = static_cast<float>(row[j]);
    }
    const QSize extent = analysedExtent(engine);
    image = croppedImage(image, extent.width(), extent.height());
    image.RefreshImageStats();
    return image;
}

// The photograph without what was added to make a square of it; null where there is none.
std::optional<CILImage> photographOf(const CORVSpumKyvo& engine)
{
    if (engine.m_pPhoto == nullptr) {
        return std::nullopt;
    }
    const QSize extent = extentOfPicture(engine, engine.m_pPhoto->m_lWidth, engine.m_pPhoto->m_lHeight);
    return croppedImage(*engine.m_pPhoto, extent.width(), extent.height());
}

// What the numbers of a map are: "Radiance [p/s/cm²/sr]", and "Counts", which is its own unit.
QString valueText(int nUnit)
{
    const QString text = UnitNames::text(nUnit);
    const QString quantity = UnitNames::quantity(nUnit);
    return quantity == text.toLower() ? text : QStringLiteral("%1 [%2]").arg(text, quantity);
}

} // namespace

ResultFiles::ResultFiles(const CORVSpumKyvo& engine, const ResultNumbers& numbers, const QString& strFolder)
    : m_engine(engine), m_facts(factsOfResult(engine, numbers)), m_errors(numbers.errors), m_strFolder(strFolder)
{
}

QString ResultFiles::summaryText() const
{
    return resultText(m_facts);
}

QJsonObject ResultFiles::summaryJson() const
{
    return jsonOf(m_files);
}

QJsonObject ResultFiles::jsonOf(const QStringList& files) const
{
    QJsonObject json = resultJson(m_facts, files);
    if (!m_errorMaps.isEmpty()) {
        json.insert(QStringLiteral("errorMaps"), QJsonArray::fromStringList(m_errorMaps));
    }
    return json;
}

void ResultFiles::write(const std::function<void(double fraction)>& step)
{
    const int components = m_engine.m_spectrumPlots.size();
    const int spots = m_facts.spots;
    const double steps = components * spots + 1.0;
    for (int k = 0; k < components; ++k) {
        for (int s = 0; s < spots; ++s) {
            step((k * spots + s) / steps);
            writeMap(k, s);
        }
    }
    using Part = void (ResultFiles::*)();
    for (const Part part : {&ResultFiles::writeOverview, &ResultFiles::writeComposites, &ResultFiles::writeSpectra,
                            &ResultFiles::writePlot, &ResultFiles::writeMask, &ResultFiles::writeProperties,
                            &ResultFiles::writeReport, &ResultFiles::writePdf, &ResultFiles::writeSummary}) {
        step((steps - 1.0) / steps);
        (this->*part)();
    }
}

void ResultFiles::writeSummary()
{
    put(QStringLiteral("summary.csv"), resultCsv(m_facts));
    // Last, as it names the other files; it also marks the folder as ours.
    const QString name = QStringLiteral("summary.json");
    put(name, QJsonDocument(jsonOf(m_files + QStringList(name))).toJson(QJsonDocument::Indented));
}

void ResultFiles::setReport(const ReportFrame& frame, bool bPdf)
{
    m_bReport = true;
    m_bPdf = bPdf;
    m_frame = frame;
    m_frame.maps.clear();
    m_frame.composites.clear();
}

void ResultFiles::put(const QString& strName, const QByteArray& bytes)
{
    // Between packing a picture and the disk: each may take its time.
    XTNT::cancellationPoint();
    QString error;
    if (!orv::writeFileAtomically(m_strFolder + strName, bytes, &error)) {
        throw Failure(error);
    }
    m_files.append(strName);
}

void ResultFiles::writeMapTiff(const QString& strName, const CILImage& map, const QString& strDescription)
{
    QString error;
    TiffWriteOptions tiff;
    tiff.description = strDescription;
    if (!writeTiff(m_strFolder + strName, map, tiff, &error)) {
        throw Failure(error);
    }
    m_files.append(strName);
}

void ResultFiles::writeMap(int nComponent, int nSpot)
{
    const CILImage map = imageOfMap(m_engine, m_engine.m_concentrations, nComponent, nSpot);
    const QString label = m_facts.components[nComponent].name;
    const QString name = resultMapName(nComponent, label, nSpot, m_facts.spots);
    const QString quantity = UnitNames::quantity(m_engine.m_eUnit);
    writeMapTiff(name + QStringLiteral(".tif"), map, QStringLiteral("%1, %2").arg(label, quantity));
    if (!m_errors.empty()) {
        const QString file = resultErrorMapName(nComponent, label, nSpot, m_facts.spots) + QStringLiteral(".tif");
        writeMapTiff(file, imageOfMap(m_engine, m_errors, nComponent, nSpot),
                     QStringLiteral("standard error of %1, %2").arg(label, quantity));
        m_errorMaps.append(file);
    }

    orvimage::RenderMapOptions options;
    options.title = m_facts.spots > 1 ? QStringLiteral("%1, spot %2").arg(label).arg(nSpot + 1) : label;
    options.unit = valueText(m_engine.m_eUnit);
    options.colorTable = m_engine.m_nColorMap;
    options.reversed = m_engine.m_bReverse;
    options.logScale = m_engine.m_bLogScale;
    if (!m_bPhotograph) {
        m_photograph = photographOf(m_engine);
        m_bPhotograph = true;
    }
    const QImage picture = orvimage::renderMapOverPhotograph(map, m_photograph ? &*m_photograph : nullptr, options);
    const QByteArray png = orvimage::pngBytes(picture);
    put(name + QStringLiteral(".png"), png);
    if (m_pictures.size() >= overviewMaps) {
        return;
    }
    m_pictures.append(picture);
    const QString title = m_facts.spots > 1 ? QStringLiteral("%1, spot %2").arg(label).arg(nSpot + 1) : label;
    m_frame.maps.append({title, png, picture.size(), QByteArray()});
}

// All maps on one sheet, about as many in a row as there are rows.
void ResultFiles::writeOverview()
{
    const int count = m_pictures.size();
    const int columns = count <= 3 ? count : static_cast<int>(std::ceil(std::sqrt(count)));
    QSize cell;
    for (const auto& picture : m_pictures) {
        cell = cell.expandedTo(picture.size());
    }
    const int rows = (count + columns - 1) / columns;
    QImage sheet(cell.width() * columns, cell.height() * rows, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < count; ++i) {
        painter.drawImage(cell.width() * (i % columns), cell.height() * (i / columns), m_pictures[i]);
    }
    painter.end();
    put(QStringLiteral("overview.png"), orvimage::pngBytes(sheet));
}

void ResultFiles::writeComposites()
{
    const QList<CompositeFile> composites = m_composites ? *m_composites : compositeFilesOf(m_engine);
    for (const CompositeFile& file : composites) {
        const QByteArray png = orvimage::pngBytes(file.picture);
        put(file.name, png);
        if (m_frame.composites.size() < reportedComposites) {
            m_frame.composites.append({QStringLiteral("Composite"), png, file.picture.size(), QByteArray()});
        }
    }
}

void ResultFiles::writeSpectra()
{
    SpumKyvoDatabase database;
    QList<SpectrumPlotParams> copies;
    for (int k = 0; k < m_engine.m_spectrumPlots.size(); ++k) {
        copies.append(*m_engine.m_spectrumPlots[k]);
        copies.last().setValues(m_engine.m_spectra.row(k));
    }
    QList<SpectrumPlotParams*> list;
    for (auto& copy : copies) {
        list.append(&copy);
    }
    const QString name = QStringLiteral("spectra.csv");
    const QString note = QStringLiteral("spectra in %1").arg(UnitNames::text(m_engine.m_eUnit));
    if (!database.saveLibrary(m_strFolder + name, list, note)) {
        throw Failure(QStringLiteral("%1 cannot be written").arg(m_strFolder + name));
    }
    m_files.append(name);
}

void ResultFiles::writePlot()
{
    const SpectrumPlot plot = plotOfSpectra(m_engine);
    put(QStringLiteral("spectra.png"), orvimage::pngBytes(plot.toImage(plotSize)));
    put(QStringLiteral("spectra.svg"), plot.toSvg(plotSize));
}

void ResultFiles::writeMask()
{
    // Of all pixels of the images there is nothing to tell.
    if (!m_engine.m_cube.m_bHasMask || m_facts.pixels == static_cast<long long>(m_facts.width) * m_facts.height) {
        return;
    }
    put(QStringLiteral("mask.png"), orvimage::pngBytes(maskPicture(m_engine)));
}

void ResultFiles::writeProperties()
{
    TextTable table({QStringLiteral("property"), QStringLiteral("value")});
    for (const auto& property : m_engine.m_properties) {
        table.addRow({property.first, property.second});
    }
    put(QStringLiteral("properties.csv"), table.toCsv().toUtf8());
}

void ResultFiles::writeReport()
{
    if (m_bReport) {
        put(QStringLiteral("report.html"), reportHtml(contentOfReport(m_engine, m_facts, m_frame)));
    }
}

void ResultFiles::writePdf()
{
    if (!m_bReport || !m_bPdf) {
        return;
    }
    const QByteArray pdf = reportPdf(contentOfReport(m_engine, m_facts, m_frame));
    if (pdf.isEmpty()) {
        throw Failure(QStringLiteral("the report cannot be made as PDF"));
    }
    put(QStringLiteral("report.pdf"), pdf);
}
