// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/ResultFiles.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CILImage.h"
#include "platform/orvimage/RenderMap.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/AtomicFile.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"
#include "workbench/cli/CliFailure.h"
#include "workbench/cli/ModeNames.h"
#include "workbench/cli/ResultPlot.h"
#include "workbench/cli/TextTable.h"
#include "workbench/cli/UnitNames.h"

#include <QBuffer>
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

QByteArray pngOf(const QImage& picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    // Weak compression: a stronger one takes longer than the fit and saves a quarter of the bytes.
    picture.save(&buffer, "PNG", 80);
    return bytes;
}

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

QJsonValue jsonNumber(double dValue)
{
    return std::isfinite(dValue) ? QJsonValue(dValue) : QJsonValue();
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
        if (c.isLetterOrNumber() || c == QLatin1Char('.') || c == QLatin1Char('-') || c == QLatin1Char('_'))
            name += c;
        else if (c.isSpace())
            name += QLatin1Char('_');
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
    writeSpectra();
    writePlot();
    writeMask();
    writeProperties();
    writeSummary();
}

void ResultFiles::put(const QString& strName, const QByteArray& bytes)
{
    QString error;
    if (!orv::writeFileAtomically(m_strFolder + strName, bytes, &error))
        throw CliFailure(error);
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
    if (!writeTiff(m_strFolder + name + QStringLiteral(".tif"), map, tiff, &error))
        throw CliFailure(error);
    m_files.append(name + QStringLiteral(".tif"));

    orvimage::RenderMapOptions options;
    options.title = label;
    options.unit = valueText(m_engine.m_eUnit);
    options.colorTable = m_engine.m_nColorMap;
    options.reversed = m_engine.m_bReverse;
    options.logScale = m_engine.m_bLogScale;
    const QImage picture = orvimage::renderMapOverPhotograph(map, m_engine.m_pPhoto, options);
    put(name + QStringLiteral(".png"), pngOf(picture));
    if (m_pictures.size() < overviewMaps)
        m_pictures.append(picture);
}

// All maps on one sheet, about as many in a row as there are rows.
void ResultFiles::writeOverview()
{
    const int count = m_pictures.size();
    const int columns = count <= 3 ? count : static_cast<int>(std::ceil(std::sqrt(count)));
    QSize cell;
    for (const auto& picture : m_pictures)
        cell = cell.expandedTo(picture.size());
    const int rows = (count + columns - 1) / columns;
    QImage sheet(cell.width() * columns, cell.height() * rows, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < count; ++i)
        painter.drawImage(cell.width() * (i % columns), cell.height() * (i / columns), m_pictures[i]);
    painter.end();
    put(QStringLiteral("overview.png"), pngOf(sheet));
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
    for (auto& copy : copies)
        list.append(&copy);
    const QString name = QStringLiteral("spectra.csv");
    const QString note = QStringLiteral("spectra in %1").arg(UnitNames::text(m_engine.m_eUnit));
    if (!database.saveLibrary(m_strFolder + name, list, note))
        throw CliFailure(QStringLiteral("%1 cannot be written").arg(m_strFolder + name));
    m_files.append(name);
}

void ResultFiles::writePlot()
{
    const SpectrumPlot plot = plotOfSpectra(m_engine);
    put(QStringLiteral("spectra.png"), pngOf(plot.toImage(plotSize)));
    put(QStringLiteral("spectra.svg"), plot.toSvg(plotSize));
}

void ResultFiles::writeMask()
{
    if (!m_engine.m_cube.m_bHasMask)
        return;
    QImage mask(m_engine.m_nWidth, m_engine.m_nHeight, QImage::Format_Grayscale8);
    mask.fill(0);
    for (const int index : m_engine.m_cube.m_maskIndices)
        mask.scanLine(index / m_engine.m_nWidth)[index % m_engine.m_nWidth] = 255;
    put(QStringLiteral("mask.png"), pngOf(mask));
}

void ResultFiles::writeProperties()
{
    TextTable table({QStringLiteral("property"), QStringLiteral("value")});
    for (const auto& property : m_engine.m_properties)
        table.addRow({property.first, property.second});
    put(QStringLiteral("properties.csv"), table.toCsv().toUtf8());
}

void ResultFiles::writeSummary()
{
    TextTable table({QStringLiteral("component"), QStringLiteral("share"), QStringLiteral("maximum"),
                     QStringLiteral("correlation"), QStringLiteral("relative error")});
    const QJsonArray components = summaryJson().value(QStringLiteral("components")).toArray();
    for (const auto& value : components) {
        const QJsonObject component = value.toObject();
        const auto cell = [&component](const char* pKey) {
            const QJsonValue number = component.value(QLatin1String(pKey));
            return number.isDouble() ? TextTable::number(number.toDouble(), 9) : QString();
        };
        table.addRow({component.value(QStringLiteral("name")).toString(), cell("share"), cell("maximum"),
                      cell("truthCorrelation"), cell("truthRelativeError")});
    }
    put(QStringLiteral("summary.csv"), table.toCsv().toUtf8());
    // Last, as it names the other files; it also marks the folder as ours.
    m_files.append(QStringLiteral("summary.json"));
    const QByteArray json = QJsonDocument(summaryJson()).toJson(QJsonDocument::Indented);
    m_files.removeLast();
    put(QStringLiteral("summary.json"), json);
}

QString ResultFiles::summaryText() const
{
    const bool truth = std::any_of(m_numbers.truth.begin(), m_numbers.truth.end(),
                                   [](const MapComparison& comparison) { return comparison.known; });
    QStringList header = {QStringLiteral("component"), QStringLiteral("share [%]"), QStringLiteral("maximum")};
    if (truth)
        header << QStringLiteral("correlation") << QStringLiteral("rel. error");
    TextTable table(header);
    for (int k = 0; k < m_engine.m_spectrumPlots.size(); ++k) {
        const auto i = static_cast<std::size_t>(k);
        QStringList row = {m_engine.m_spectrumPlots[k]->settings.name,
                           TextTable::number(m_numbers.shares[i] * 100.0, 4),
                           TextTable::number(m_engine.m_concentrations.row(k).Max(), 5)};
        if (m_numbers.truth[i].known)
            row << TextTable::number(m_numbers.truth[i].correlation, 5)
                << TextTable::number(m_numbers.truth[i].relativeError, 3);
        table.addRow(row);
    }
    return QStringLiteral("%1, %2 images of %3 x %4 pixels at binning %5, %6 pixels analysed\n\n%7\n"
                          "residual %8 % of the data's norm; the fit took %9 s\n")
        .arg(UnitNames::text(m_engine.m_eUnit))
        .arg(m_engine.m_selectedKeyPairs.size())
        .arg(m_engine.m_nWidth)
        .arg(m_engine.m_nHeight)
        .arg(m_engine.m_nBinning)
        .arg(m_engine.m_cube.pixelsPerSpot())
        .arg(table.toText(), TextTable::number(m_numbers.residual * 100.0, 4), TextTable::number(m_numbers.seconds, 3));
}

QJsonObject ResultFiles::summaryJson() const
{
    QJsonArray components;
    for (int k = 0; k < m_engine.m_spectrumPlots.size(); ++k) {
        const auto i = static_cast<std::size_t>(k);
        QJsonObject component{{"name", m_engine.m_spectrumPlots[k]->settings.name},
                              {"color", m_engine.m_spectrumPlots[k]->settings.color},
                              {"share", jsonNumber(m_numbers.shares[i])},
                              {"maximum", jsonNumber(m_engine.m_concentrations.row(k).Max())}};
        if (m_numbers.truth[i].known) {
            component.insert(QStringLiteral("truthCorrelation"), jsonNumber(m_numbers.truth[i].correlation));
            component.insert(QStringLiteral("truthRelativeError"), jsonNumber(m_numbers.truth[i].relativeError));
        }
        components.append(component);
    }
    QJsonObject properties;
    for (const auto& property : m_engine.m_properties)
        properties.insert(property.first, property.second);
    return QJsonObject{{"method", ModeNames::option(m_engine.m_eMode)},
                       {"unit", UnitNames::text(m_engine.m_eUnit)},
                       {"images", m_engine.m_selectedKeyPairs.size()},
                       {"width", m_engine.m_nWidth},
                       {"height", m_engine.m_nHeight},
                       {"binning", m_engine.m_nBinning},
                       {"pixels", static_cast<qint64>(m_engine.m_cube.pixelsPerSpot())},
                       {"residual", jsonNumber(m_numbers.residual)},
                       {"seconds", m_numbers.seconds},
                       {"components", components},
                       {"properties", properties},
                       {"files", QJsonArray::fromStringList(m_files)}};
}
