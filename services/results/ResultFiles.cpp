// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultFiles.h"

#include "engine/CORVSpumKyvo.h"
#include "files/AtomicFile.h"
#include "host/CILImage.h"
#include "platform/orvimage/RenderMap.h"
#include "platform/orvimage/TiffIo.h"
#include "services/basis/Failure.h"
#include "services/basis/ModeNames.h"
#include "services/basis/PngBytes.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/basis/jsonNumber.h"
#include "services/pictures/MaskPicture.h"
#include "services/pictures/ResultComposite.h"
#include "services/pictures/ResultPlot.h"
#include "services/results/FitStatistics.h"
#include "services/results/NoiseEstimate.h"
#include "services/results/ReportHtml.h"
#include "services/results/ReportPdf.h"
#include "services/results/RunEnding.h"
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
// Bytes of a name within a file name; a folder takes names of 255, and there is more in ours.
constexpr int longestPart = 150;

// A component's map at a spot as an image; 0 outside the mask.
CILImage imageOfMap(const CORVSpumKyvo& engine, int nComponent, int nSpot)
{
    CILImage image;
    image.InitWithType(ORVTYPE_FLOAT, engine.m_nWidth, engine.m_nHeight);
    image.m_fBinning = static_cast<float>(engine.m_nBinning);
    const long long pixels = engine.m_cube.pixelsPerSpot();
    const double* row = engine.m_concentrations[nComponent] + nSpot * pixels;
    float* target = image.floats();
    for (long long j = 0; j < pixels; ++j) {
        const auto place =
            engine.m_cube.m_bHasMask ? engine.m_cube.m_maskIndices[static_cast<std::size_t>(j)] : static_cast<int>(j);
        target[place] = static_cast<float>(row[j]);
    }
    image.RefreshImageStats();
    return image;
}

// What the numbers of a map are: "Radiance [p/s/cm²/sr]", and "Counts", which is its own unit.
QString valueText(int nUnit)
{
    const QString text = UnitNames::text(nUnit);
    const QString quantity = UnitNames::quantity(nUnit);
    return quantity == text.toLower() ? text : QStringLiteral("%1 [%2]").arg(text, quantity);
}

int spotCount(const CORVSpumKyvo& engine)
{
    return std::max(1, engine.m_cube.m_nSpots);
}

} // namespace

ResultFiles::ResultFiles(const CORVSpumKyvo& engine, const ResultNumbers& numbers, const QString& strFolder)
    : m_engine(engine), m_numbers(numbers), m_strFolder(strFolder)
{
}

QString ResultFiles::fileNameOf(const QString& strLabel)
{
    QString name;
    for (const QChar c : strLabel.trimmed()) {
        if (c.isLetterOrNumber() || c == QLatin1Char('.') || c == QLatin1Char('-') || c == QLatin1Char('_')) {
            name += c;
        } else if (c.isSpace()) {
            name += QLatin1Char('_');
        }
    }
    while (name.toUtf8().size() > longestPart) {
        name.chop(1);
    }
    return name.startsWith(QLatin1Char('.')) ? QLatin1Char('_') + name : name;
}

// The number in front keeps two components of one name apart.
QString ResultFiles::mapName(int nComponent, int nSpot) const
{
    const QString spot = spotCount(m_engine) > 1 ? QStringLiteral("_spot%1").arg(nSpot + 1) : QString();
    return QStringLiteral("%1_%2%3")
        .arg(nComponent + 1, 2, 10, QLatin1Char('0'))
        .arg(fileNameOf(m_engine.m_spectrumPlots[nComponent]->settings.name), spot);
}

void ResultFiles::write(const std::function<void(double fraction)>& step)
{
    const int components = m_engine.m_spectrumPlots.size();
    const int spots = spotCount(m_engine);
    const double steps = components * spots + 1.0;
    for (int k = 0; k < components; ++k) {
        for (int s = 0; s < spots; ++s) {
            step((k * spots + s) / steps);
            writeMap(k, s);
        }
    }
    step((steps - 1.0) / steps);
    writeOverview();
    writeComposites();
    writeSpectra();
    writePlot();
    writeMask();
    writeProperties();
    if (m_bReport) {
        writeReport();
    }
    writeSummary();
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
    QString error;
    if (!orv::writeFileAtomically(m_strFolder + strName, bytes, &error)) {
        throw Failure(error);
    }
    m_files.append(strName);
}

void ResultFiles::writeMap(int nComponent, int nSpot)
{
    const CILImage map = imageOfMap(m_engine, nComponent, nSpot);
    const QString name = mapName(nComponent, nSpot);
    const QString label = m_engine.m_spectrumPlots[nComponent]->settings.name;
    QString error;
    TiffWriteOptions tiff;
    tiff.description = QStringLiteral("%1, %2").arg(label, UnitNames::quantity(m_engine.m_eUnit));
    if (!writeTiff(m_strFolder + name + QStringLiteral(".tif"), map, tiff, &error)) {
        throw Failure(error);
    }
    m_files.append(name + QStringLiteral(".tif"));

    orvimage::RenderMapOptions options;
    options.title = spotCount(m_engine) > 1 ? QStringLiteral("%1, spot %2").arg(label).arg(nSpot + 1) : label;
    options.unit = valueText(m_engine.m_eUnit);
    options.colorTable = m_engine.m_nColorMap;
    options.reversed = m_engine.m_bReverse;
    options.logScale = m_engine.m_bLogScale;
    const QImage picture = orvimage::renderMapOverPhotograph(map, m_engine.m_pPhoto, options);
    const QByteArray png = pngBytes(picture);
    put(name + QStringLiteral(".png"), png);
    if (m_pictures.size() >= overviewMaps) {
        return;
    }
    m_pictures.append(picture);
    const QString title = spotCount(m_engine) > 1 ? QStringLiteral("%1, spot %2").arg(label).arg(nSpot + 1) : label;
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
    put(QStringLiteral("overview.png"), pngBytes(sheet));
}

void ResultFiles::writeComposites()
{
    for (const CompositeFile& file : compositeFilesOf(m_engine)) {
        const QByteArray png = pngBytes(file.picture);
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
    put(QStringLiteral("spectra.png"), pngBytes(plot.toImage(plotSize)));
    put(QStringLiteral("spectra.svg"), plot.toSvg(plotSize));
}

void ResultFiles::writeMask()
{
    if (!m_engine.m_cube.m_bHasMask) {
        return;
    }
    put(QStringLiteral("mask.png"), pngBytes(maskPicture(m_engine)));
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
    const ReportContent content = contentOfReport(m_engine, summaryJson(), m_frame);
    put(QStringLiteral("report.html"), reportHtml(content));
    if (!m_bPdf) {
        return;
    }
    const QByteArray pdf = reportPdf(content);
    if (pdf.isEmpty()) {
        throw Failure(QStringLiteral("the report cannot be made as PDF"));
    }
    put(QStringLiteral("report.pdf"), pdf);
}

void ResultFiles::writeSummary()
{
    // Facts of the run stand in every row, so that a table program can filter and join them.
    const QList<QPair<QString, const char*>> ofComponent = {{QStringLiteral("component"), "name"},
                                                            {QStringLiteral("share"), "share"},
                                                            {QStringLiteral("maximum"), "maximum"},
                                                            {QStringLiteral("high pass"), "highPass"},
                                                            {QStringLiteral("truth"), "truthName"},
                                                            {QStringLiteral("cosine"), "truthCosine"},
                                                            {QStringLiteral("correlation"), "truthCorrelation"},
                                                            {QStringLiteral("relative error"), "truthRelativeError"}};
    const QList<QPair<QString, const char*>> ofRun = {
        {QStringLiteral("residual"), "residual"},     {QStringLiteral("explained variance"), "explainedVariance"},
        {QStringLiteral("iterations"), "iterations"}, {QStringLiteral("ending"), "ending"},
        {QStringLiteral("lack of fit"), "lackOfFit"}, {QStringLiteral("lack of fit denoised"), "lackOfFitDenoised"}};
    QStringList header;
    for (const auto& column : ofComponent + ofRun) {
        header.append(column.first);
    }
    TextTable table(header);
    const QJsonObject summary = summaryJson();
    const auto cell = [](const QJsonObject& object, const char* pKey) {
        const QJsonValue value = object.value(QLatin1String(pKey));
        return value.isDouble() ? TextTable::number(value.toDouble(), 9) : value.toString();
    };
    const QJsonArray components = summary.value(QStringLiteral("components")).toArray();
    for (const auto& component : components) {
        QStringList row;
        for (const auto& column : ofComponent) {
            row.append(cell(component.toObject(), column.second));
        }
        for (const auto& column : ofRun) {
            row.append(cell(summary, column.second));
        }
        table.addRow(row);
    }
    put(QStringLiteral("summary.csv"), table.toCsv().toUtf8());
    // Last, as it names the other files; it also marks the folder as ours.
    m_files.append(QStringLiteral("summary.json"));
    const QByteArray json = QJsonDocument(summaryJson()).toJson(QJsonDocument::Indented);
    m_files.removeLast();
    put(QStringLiteral("summary.json"), json);
}

QString ResultFiles::tableText() const
{
    const auto& truth = m_numbers.truth;
    const bool known = std::any_of(truth.begin(), truth.end(), [](const TrueComparison& c) { return c.known; });
    bool renamed = false;
    for (std::size_t i = 0; i < truth.size(); ++i) {
        renamed |= truth[i].known && truth[i].trueName != m_engine.m_spectrumPlots[static_cast<int>(i)]->settings.name;
    }
    QStringList header = {QStringLiteral("component"), QStringLiteral("share [%]"), QStringLiteral("maximum")};
    if (m_numbers.automatic) {
        header << QStringLiteral("high pass");
    }
    if (known && renamed) {
        header << QStringLiteral("truth");
    }
    if (known) {
        header << QStringLiteral("cosine") << QStringLiteral("correlation") << QStringLiteral("rel. error");
    }
    TextTable table(header);
    for (int k = 0; k < m_engine.m_spectrumPlots.size(); ++k) {
        const auto i = static_cast<std::size_t>(k);
        QStringList row = {m_engine.m_spectrumPlots[k]->settings.name,
                           TextTable::number(m_numbers.shares[i] * 100.0, 4),
                           TextTable::number(m_engine.m_concentrations.row(k).Max(), 5)};
        if (m_numbers.automatic) {
            row << componentJson(k).value(QStringLiteral("highPass")).toString(QStringLiteral("-"));
        }
        if (known && renamed) {
            row << (truth[i].known ? truth[i].trueName : QStringLiteral("-"));
        }
        if (truth[i].known) {
            row << TextTable::number(truth[i].cosine, 5) << TextTable::number(truth[i].correlation, 5)
                << TextTable::number(truth[i].relativeError, 3);
        }
        table.addRow(row);
    }
    return table.toText();
}

QString ResultFiles::summaryText() const
{
    QString text = QStringLiteral("%1, %2 images of %3 x %4 pixels at binning %5, %6 pixels analysed\n\n%7\n"
                                  "residual %8 % of the data's norm, %9 % of the variance explained; ")
                       .arg(UnitNames::text(m_engine.m_eUnit))
                       .arg(m_engine.m_selectedKeyPairs.size())
                       .arg(m_engine.m_nWidth)
                       .arg(m_engine.m_nHeight)
                       .arg(m_engine.m_nBinning)
                       .arg(m_engine.m_cube.pixelsPerSpot())
                       .arg(tableText(), TextTable::number(m_numbers.residual * 100.0, 4),
                            TextTable::number(FitStatistics::explainedVariance(m_numbers.residual), 6));
    text += QStringLiteral("the fit took %1 s\n").arg(TextTable::number(m_numbers.seconds, 3));
    if (!m_numbers.automatic) {
        return text;
    }
    const AutomaticRunFacts& facts = m_numbers.facts;
    return text +
           QStringLiteral("%1 after %2 iterations; lack of fit %3 % of the data, %4 % of the denoised data\n")
               .arg(endingText(facts.ending))
               .arg(facts.iterations)
               .arg(TextTable::number(facts.lackOfFitRaw, 4), TextTable::number(facts.lackOfFitDenoised, 4)) +
           NoiseEstimate::ofEigenvalues(facts.eigenvalues).text(m_engine.m_spectrumPlots.size());
}

QJsonObject ResultFiles::componentJson(int nComponent) const
{
    const auto i = static_cast<std::size_t>(nComponent);
    const SpectrumSettings& settings = m_engine.m_spectrumPlots[nComponent]->settings;
    QJsonObject component{{"name", settings.name},
                          {"color", settings.color},
                          {"map", mapName(nComponent, 0) + QStringLiteral(".tif")},
                          {"share", jsonNumber(m_numbers.shares[i])},
                          {"maximum", jsonNumber(m_engine.m_concentrations.row(nComponent).Max())}};
    const auto& constraints = m_engine.m_lastParams.Constraints;
    if (m_numbers.automatic && nComponent < constraints.size()) {
        const ComponentConstraint& constraint = constraints[nComponent];
        if (constraint.HighPass != QLatin1String("N/A")) {
            component.insert(QStringLiteral("highPass"), constraint.HighPass);
        }
        component.insert(QStringLiteral("locked"), constraint.Locked);
    }
    const TrueComparison& truth = m_numbers.truth[i];
    if (truth.known) {
        component.insert(QStringLiteral("truthName"), truth.trueName);
        component.insert(QStringLiteral("truthCosine"), jsonNumber(truth.cosine));
        component.insert(QStringLiteral("truthCorrelation"), jsonNumber(truth.correlation));
        component.insert(QStringLiteral("truthRelativeError"), jsonNumber(truth.relativeError));
    }
    return component;
}

void ResultFiles::addRunFacts(QJsonObject& json) const
{
    const AutomaticRunFacts& facts = m_numbers.facts;
    json.insert(QStringLiteral("iterations"), facts.iterations);
    json.insert(QStringLiteral("ending"), endingText(facts.ending));
    json.insert(QStringLiteral("lackOfFit"), jsonNumber(facts.lackOfFitRaw));
    json.insert(QStringLiteral("lackOfFitDenoised"), jsonNumber(facts.lackOfFitDenoised));
    json.insert(QStringLiteral("rank"), facts.rank);
    const NoiseEstimate noise = NoiseEstimate::ofEigenvalues(facts.eigenvalues);
    if (noise.components > 0) {
        json.insert(QStringLiteral("componentsAboveNoise"), noise.components);
        json.insert(QStringLiteral("principalLackOfFit"), jsonNumber(noise.lackOfFit));
    }
    const AnalysisInput& input = m_engine.m_analysisInput;
    if (m_engine.m_bCherenkov && input.decayCorrection) {
        json.insert(QStringLiteral("decayCorrected"),
                    QJsonObject{{"isotope", input.isotope}, {"halfLifeSeconds", input.halfLifeSeconds}});
    }
}

QJsonObject ResultFiles::summaryJson() const
{
    QJsonArray components;
    for (int k = 0; k < m_engine.m_spectrumPlots.size(); ++k) {
        components.append(componentJson(k));
    }
    QJsonObject properties;
    for (const auto& property : m_engine.m_properties) {
        properties.insert(property.first, property.second);
    }
    QJsonObject json{{"method", ModeNames::option(m_engine.m_eMode)},
                     {"unit", UnitNames::text(m_engine.m_eUnit)},
                     {"images", m_engine.m_selectedKeyPairs.size()},
                     {"width", m_engine.m_nWidth},
                     {"height", m_engine.m_nHeight},
                     {"binning", m_engine.m_nBinning},
                     {"pixels", static_cast<qint64>(m_engine.m_cube.pixelsPerSpot())},
                     {"residual", jsonNumber(m_numbers.residual)},
                     {"explainedVariance", jsonNumber(FitStatistics::explainedVariance(m_numbers.residual))},
                     {"components", components},
                     {"properties", properties},
                     {"files", QJsonArray::fromStringList(m_files)}};
    if (m_numbers.automatic) {
        addRunFacts(json);
    }
    return json;
}
