// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultFiles.h"

#include "XTNT/xtnt_parallel.h"
#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "files/AtomicFile.h"
#include "host/CILImage.h"
#include "platform/orvimage/MapPicture.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/pngBytes.h"
#include "services/basis/ChannelLabels.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/pictures/MaskPicture.h"
#include "services/pictures/ResultComposite.h"
#include "services/pictures/ResultPlot.h"
#include "services/results/FitRest.h"
#include "services/results/MapsOme.h"
#include "services/results/MapsPdf.h"
#include "services/results/ReportHtml.h"
#include "services/results/ReportPdf.h"
#include "services/results/ResultMapPictures.h"
#include "services/results/resultSummary.h"
#include "services/session/pairTable.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"

#include <QDateTime>
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

// Names of the numbered channels of the analysis, in its order; empty for images of filters and times.
QStringList channelsOf(const CORVSpumKyvo& engine)
{
    return ChannelLabels(engine).labels(engine.m_selectedKeyPairs);
}

// A row an image: what is left of it, what its noise is where that is known, and what is missing, as a spectrum whose
// largest value is 1.
QByteArray restTable(const CORVSpumKyvo& engine, const FitRest& rest, const std::vector<double>& noise)
{
    constexpr int digits = 9;
    const bool temporal = engine.m_eAxis == SPECTRUMAXIS_TIME;
    const QStringList channels = channelsOf(engine);
    TextTable table(QStringList{temporal ? QStringLiteral("interval") : QStringLiteral("excitation"),
                                temporal ? QStringLiteral("time") : QStringLiteral("emission")} +
                    (channels.isEmpty() ? QStringList() : QStringList{QStringLiteral("channel")}) +
                    QStringList{QStringLiteral("residual"), QStringLiteral("noise"), QStringLiteral("missing")});
    const double most = rest.spectrum.empty() ? 0.0 : *std::max_element(rest.spectrum.begin(), rest.spectrum.end());
    for (std::size_t j = 0; j < rest.ofImages.size(); ++j) {
        const KeyPair& pair = engine.m_selectedKeyPairs[static_cast<int>(j)];
        table.addRow(QStringList{pair.first, pair.second} + channels.mid(static_cast<int>(j), 1) +
                     QStringList{TextTable::number(rest.ofImages[j], digits),
                                 j < noise.size() ? TextTable::number(noise[j], digits) : QString(),
                                 most > 0.0 ? TextTable::number(rest.spectrum[j] / most, digits) : QString()});
    }
    return table.toCsv().toUtf8();
}

} // namespace

ResultFiles::ResultFiles(const CORVSpumKyvo& engine, const ResultNumbers& numbers, const QString& strFolder)
    : m_engine(engine), m_facts(factsOfResult(engine, numbers)), m_errors(numbers.errors), m_strFolder(strFolder)
{
    setStyle(pictureStyleOf(engine));
}

ResultFiles::~ResultFiles() = default;

void ResultFiles::setStyle(const PictureStyle& style)
{
    m_style = style;
    for (int k = 0; k < m_facts.components.size(); ++k) {
        m_facts.components[k].color = style.components.value(k).name();
    }
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
    ResultMapPictures pictures(m_engine, m_facts, m_style);
    if (m_bReport && m_bPdf) {
        m_pMapsPdf = std::make_unique<MapsPdf>(m_engine.getAnalysisName(), QStringLiteral("spum"));
    }
    for (int k = 0; k < components; ++k) {
        for (int s = 0; s < spots; ++s) {
            step((k * spots + s) / steps);
            writeMap(pictures, k, s);
        }
    }
    step((steps - 1.0) / steps);
    writeRest(pictures);
    using Part = void (ResultFiles::*)();
    for (const Part part :
         {&ResultFiles::writeAllMaps, &ResultFiles::writeOverview, &ResultFiles::writeComposites,
          &ResultFiles::writeSpectra, &ResultFiles::writePlot, &ResultFiles::writeMask, &ResultFiles::writeProperties,
          &ResultFiles::writeReport, &ResultFiles::writePdf, &ResultFiles::writeSummary}) {
        step((steps - 1.0) / steps);
        (this->*part)();
    }
}

void ResultFiles::writeSummary()
{
    if (m_provenance) {
        m_provenance->finished = QDateTime::currentDateTimeUtc();
        m_facts.provenance = m_provenance->json();
    }
    put(QStringLiteral("summary.csv"), resultCsv(resultJson(m_facts, m_files)));
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
    m_frame.plots.clear();
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

void ResultFiles::writeMap(ResultMapPictures& pictures, int nComponent, int nSpot)
{
    const CILImage map = imageOfMap(m_engine, m_engine.m_concentrations, nComponent, nSpot, 0.0F);
    const QString label = m_facts.components[nComponent].name;
    const QString name = resultMapName(nComponent, label, nSpot, m_facts.spots);
    const QString quantity = UnitNames::quantity(m_engine.m_eUnit);
    writeMapTiff(name + QStringLiteral(".tif"), map, QStringLiteral("%1, %2").arg(label, quantity));
    if (!m_errors.empty()) {
        const QString file = resultErrorMapName(nComponent, label, nSpot, m_facts.spots) + QStringLiteral(".tif");
        writeMapTiff(file, imageOfMap(m_engine, m_errors, nComponent, nSpot, 0.0F),
                     QStringLiteral("standard error of %1, %2").arg(label, quantity));
        m_errorMaps.append(file);
    }

    const orvimage::MapPicture drawing = pictures.picture(map, nComponent, nSpot);
    if (m_pMapsPdf != nullptr) {
        m_pMapsPdf->add(drawing);
    }
    const QImage picture = drawing.toImage();
    const QByteArray png = orvimage::pngBytes(picture);
    put(name + QStringLiteral(".png"), png);
    if (m_pictures.size() >= overviewMaps) {
        return;
    }
    m_pictures.append(picture);
    ReportFigure figure{pictures.title(nComponent, nSpot), png, picture.size(), QByteArray(), nullptr};
    if (m_bPdf) {
        figure.paint = [drawing](QPainter& painter) { drawing.draw(painter); };
    }
    m_frame.maps.append(figure);
}

void ResultFiles::writeAllMaps()
{
    const QString name = QLatin1String(allMapsName);
    writeMapsOme(m_engine, m_facts, m_strFolder + name);
    m_files.append(name);
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
    const QList<CompositeFile> composites =
        m_composites ? *m_composites : compositeFilesOf(m_engine, m_style.components);
    for (const CompositeFile& file : composites) {
        const QByteArray png = orvimage::pngBytes(file.picture);
        put(file.name, png);
        if (m_frame.composites.size() < reportedComposites) {
            m_frame.composites.append({QStringLiteral("Composite"), png, file.picture.size(), QByteArray(), nullptr});
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
    put(QStringLiteral("spectra.csv"),
        pairTableText(list, m_engine.m_eAxis == SPECTRUMAXIS_TIME, channelsOf(m_engine)));
    const QString name = QStringLiteral("library.csv");
    const QString note = QStringLiteral("spectra in %1").arg(UnitNames::text(m_engine.m_eUnit));
    if (!database.saveLibrary(m_strFolder + name, list, note)) {
        throw Failure(QStringLiteral("%1 cannot be written").arg(m_strFolder + name));
    }
    m_files.append(name);
}

void ResultFiles::writePlot()
{
    const SpectrumPlot plot = plotOfSpectra(m_engine, m_style.components);
    put(QStringLiteral("spectra.png"), orvimage::pngBytes(plot.toImage(plotSize)));
    put(QStringLiteral("spectra.svg"), plot.toSvg(plotSize));
}

// Over all spots of a scan.
void ResultFiles::writeRest(const ResultMapPictures& pictures)
{
    const FitRest rest = FitRest::of(m_engine.m_cube.m_data, m_engine.m_concentrations, m_engine.m_spectra);
    const long long pixels = m_engine.m_cube.pixelsPerSpot();
    XTNT::Matrix<double> size(1, pixels);
    for (std::size_t p = 0; p < rest.ofRows.size(); ++p) {
        size[0][static_cast<long long>(p) % pixels] += rest.ofRows[p] * rest.ofRows[p] / m_facts.spots;
    }
    std::transform(size[0], size[0] + pixels, size[0], [](double square) { return std::sqrt(square); });
    const CILImage map = imageOfMap(m_engine, size, 0, 0, 0.0F);
    writeMapTiff(
        QLatin1String(residualMapName), map,
        QStringLiteral("residual, root mean square over the images, %1").arg(UnitNames::quantity(m_engine.m_eUnit)));
    const QString title = QStringLiteral("What no component explains");
    const orvimage::MapPicture drawing = pictures.pictureOf(map, title);
    const QImage picture = drawing.toImage();
    const QByteArray png = orvimage::pngBytes(picture);
    put(QStringLiteral("residual.png"), png);
    put(QStringLiteral("residual.csv"), restTable(m_engine, rest, m_facts.above.noiseOfImages));
    if (!codesOf(m_facts.warnings).contains(QStringLiteral("unexplained"))) {
        return;
    }
    ReportFigure figure{title, png, picture.size(), QByteArray(), nullptr};
    if (m_bPdf) {
        figure.paint = [drawing](QPainter& painter) { drawing.draw(painter); };
    }
    m_frame.maps.append(figure);
    QList<ValuesOverImages> values = {{QStringLiteral("residual"), QColor(Qt::red), rest.ofImages}};
    if (m_facts.above.noiseOfImages.size() == rest.ofImages.size()) {
        values.append({QStringLiteral("noise"), QColor(Qt::black), m_facts.above.noiseOfImages});
    }
    m_frame.plots = {plotOverImages(PlottedImages::of(m_engine), title, QStringLiteral("root mean square"), values)};
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
    for (const auto& property : m_facts.properties) {
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
    const QByteArray maps = m_pMapsPdf->finish();
    if (maps.isEmpty()) {
        throw Failure(QStringLiteral("the maps cannot be made as PDF"));
    }
    put(QStringLiteral("maps.pdf"), maps);
}
