// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/PcaFiles.h"

#include "engine/CORVSpumKyvo.h"
#include "files/AtomicFile.h"
#include "platform/orvimage/pngBytes.h"
#include "services/basis/Failure.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/basis/jsonSchema.h"
#include "services/pictures/MaskPicture.h"
#include "services/pictures/SpectrumPlot.h"

#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

const QSize plotSize(1100, 700);

// What a share of the variance is drawn at least: rounding makes the last ones of exact data tiny or 0.
constexpr double smallestShown = 1e-12;

PlotCurve curveOf(const QString& strLabel, const QColor& color, Qt::PenStyle eStyle = Qt::SolidLine)
{
    PlotCurve curve;
    curve.label = strLabel;
    curve.color = color;
    curve.style = eStyle;
    return curve;
}

} // namespace

PcaFiles::PcaFiles(const CORVSpumKyvo& engine, const XTNT::Vector<double>& eigenvalues)
    : m_engine(engine), m_extent(analysedExtent(engine)), m_eigenvalues(eigenvalues),
      m_explained(explainedVariance(eigenvalues)), m_above(ComponentNumber::of(engine.m_cube.m_data))
{
}

// Of each component by itself, or of it and those before it.
QString PcaFiles::tableCell(int i, bool bShare) const
{
    const double before = i > 0 && bShare ? m_explained.percent[i - 1] : 0.0;
    return explainedVarianceText(m_explained.percent[i] - before);
}

QString PcaFiles::text() const
{
    TextTable table(
        {QStringLiteral("# of Components"), QStringLiteral("Explained Variance(%)"), QStringLiteral("of this one(%)")});
    for (int i = 0; i < m_explained.percent.size(); ++i) {
        table.addRow({QString::number(i + 1), tableCell(i, false), tableCell(i, true)});
    }
    return QStringLiteral("%1, %2 images of %3 x %4 pixels at binning %5, %6 of %7 pixels analysed\n\n%8\n"
                          "Suggested # of components: %9\n"
                          "Explained variance (%): %10\n")
               .arg(UnitNames::text(m_engine.m_eUnit))
               .arg(m_engine.m_selectedKeyPairs.size())
               .arg(m_extent.width())
               .arg(m_extent.height())
               .arg(m_engine.m_nBinning)
               .arg(m_engine.m_cube.pixelsPerSpot())
               .arg(static_cast<qint64>(m_extent.width()) * m_extent.height())
               .arg(table.toText())
               .arg(m_explained.nSuggested)
               .arg(explainedVarianceText(m_explained.dSuggestedPercent)) +
           QStringLiteral(
               "Note: Suggestion is made based on the assumption that the variance due to the noise is less than "
               "1%. Otherwise, it may overestimate the real components.\n") +
           QStringLiteral("Components above the noise: %1\n").arg(m_above.text());
}

QJsonObject PcaFiles::json() const
{
    QJsonArray explained;
    QJsonArray eigenvalues;
    for (int i = 0; i < m_explained.percent.size(); ++i) {
        explained.append(m_explained.percent[i] / 100.0);
        eigenvalues.append(m_eigenvalues[i]);
    }
    QJsonObject json{{"schema", kJsonSchema},
                     {"answer", QStringLiteral("pca")},
                     {"sequence", m_engine.getSequenceId()},
                     {"unit", UnitNames::text(m_engine.m_eUnit)},
                     {"images", m_engine.m_selectedKeyPairs.size()},
                     {"width", m_extent.width()},
                     {"height", m_extent.height()},
                     {"binning", m_engine.m_nBinning},
                     {"pixels", static_cast<qint64>(m_engine.m_cube.pixelsPerSpot())},
                     {"suggested", m_explained.nSuggested},
                     {"suggestedExplains", m_explained.dSuggestedPercent / 100.0},
                     {"explainedVariance", explained},
                     {"eigenvalues", eigenvalues},
                     {"files", QJsonArray::fromStringList(m_files)}};
    m_above.addTo(json);
    return json;
}

SpectrumPlot PcaFiles::screePlot() const
{
    SpectrumPlot plot(QStringLiteral("Principal components: %1 suggested").arg(m_explained.nSuggested),
                      QStringLiteral("number of components"), QStringLiteral("variance [%]"));
    plot.setLogarithmicY(true);
    plot.setWholeX(true);
    PlotCurve each = curveOf(QStringLiteral("explained by this one"), QColor(31, 119, 180));
    PlotCurve left = curveOf(QStringLiteral("left unexplained"), QColor(214, 39, 40));
    PlotCurve limit =
        curveOf(QStringLiteral("%1 %: the limit").arg(100.0 - kExplainedTarget), QColor(110, 110, 110), Qt::DashLine);
    limit.marker = PlotMarker::None;
    double before = 0.0;
    const int count = static_cast<int>(m_explained.percent.size());
    for (int i = 0; i < count; ++i) {
        const double share = m_explained.percent[i] - before;
        const double rest = 100.0 - m_explained.percent[i];
        before = m_explained.percent[i];
        if (share > smallestShown) {
            each.x.append(i + 1.0);
            each.y.append(share);
        }
        if (i + 1 < count && rest > smallestShown) {
            left.x.append(i + 1.0);
            left.y.append(rest);
        }
        limit.x.append(i + 1.0);
        limit.y.append(100.0 - kExplainedTarget);
    }
    plot.addCurve(each);
    plot.addCurve(left);
    plot.addCurve(limit);
    return plot;
}

void PcaFiles::put(const QString& strPath, const QByteArray& bytes)
{
    QString error;
    if (!orv::writeFileAtomically(strPath, bytes, &error)) {
        throw Failure(error);
    }
    m_files.append(QFileInfo(strPath).fileName());
}

void PcaFiles::write(const QString& strFolder)
{
    const SpectrumPlot plot = screePlot();
    put(strFolder + QStringLiteral("scree.png"), orvimage::pngBytes(plot.toImage(plotSize)));
    put(strFolder + QStringLiteral("scree.svg"), plot.toSvg(plotSize));
    if (m_engine.m_cube.pixelsPerSpot() < static_cast<long long>(m_extent.width()) * m_extent.height()) {
        put(strFolder + QStringLiteral("mask.png"), orvimage::pngBytes(maskPicture(m_engine)));
    }
    TextTable table({QStringLiteral("components"), QStringLiteral("explainedVariance"),
                     QStringLiteral("explainedByThisOne"), QStringLiteral("eigenvalue")});
    for (int i = 0; i < m_explained.percent.size(); ++i) {
        const double before = i > 0 ? m_explained.percent[i - 1] : 0.0;
        table.addRow({QString::number(i + 1), TextTable::number(m_explained.percent[i] / 100.0, 9),
                      TextTable::number((m_explained.percent[i] - before) / 100.0, 9),
                      TextTable::number(m_eigenvalues[i], 9)});
    }
    put(strFolder + QStringLiteral("pca.csv"), table.toCsv().toUtf8());
    // Last, as it names the other files; it also marks the folder as ours.
    const QByteArray document = QJsonDocument(json()).toJson(QJsonDocument::Indented);
    put(strFolder + QStringLiteral("pca.json"), document);
}
