// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/simulate.h"
#include "workbench/simulator/OptionCheck.h"

#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/SequenceWriter.h"
#include "storage/savedResultsAtStake.h"
#include "workbench/simulator/CameraModel.h"
#include "workbench/simulator/FullDataset.h"
#include "workbench/simulator/MousePhotograph.h"
#include "workbench/simulator/ReferenceImage.h"
#include "workbench/simulator/SceneModel.h"
#include "workbench/simulator/ScenePlan.h"
#include "workbench/simulator/SourceList.h"
#include "workbench/simulator/TruthWriter.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <new>

namespace {

constexpr int kPhotographSide = 1024; // what a photograph may have even when the images are smaller
constexpr double kPhotographExposure = 0.1;

// Shares of the work, for the progress.
constexpr double kSceneDone = 0.15;
constexpr double kMapsDone = 0.30;
constexpr double kPhotographDone = 0.40;
constexpr double kImagesDone = 0.92;

QString listText(const QStringList& texts)
{
    return texts.join(QStringLiteral(", "));
}

QString numbersText(const QList<double>& values)
{
    QStringList texts;
    for (const double value : values) {
        texts.append(exactText(value));
    }
    return listText(texts);
}

// What only some kinds have.
void addKindEntries(CPLSection& section, const SimulationOptions& options)
{
    const auto set = [&section](const char* pKey, const QString& strValue) {
        section.setValue(QString::fromLatin1(pKey), strValue);
    };
    if (options.full) {
        set("Full", QStringLiteral("1"));
    }
    if (options.kind == SimulationKind::Epi) {
        return;
    }
    set("Simulated Kind", kindName(options.kind));
    if (options.kind == SimulationKind::Transillumination) {
        set("Spots", QString::number(options.spots));
    }
    if (options.kind == SimulationKind::Temporal) {
        set("Times Sec", numbersText(timesOf(options)));
        set("Time Keys", options.timeKeys ? QStringLiteral("1") : QStringLiteral("0"));
    }
    if (options.kind == SimulationKind::Cherenkov) {
        set("Simulated Isotope", options.isotope);
        set("Span Half Lives", exactText(options.spanHalfLives));
    }
}

// The options as entries of the info file: what made the sequence.
CPLSection optionsSection(const SimulationOptions& options, const ScenePlan& plan)
{
    QStringList components;
    QStringList depths;
    for (const SceneComponent& component : plan.components()) {
        components.append(component.name);
        depths.append(exactText(component.depthMm));
    }
    CPLSection section(QStringLiteral("Simulation"));
    const auto set = [&section](const char* pKey, const QString& strValue) {
        section.setValue(QString::fromLatin1(pKey), strValue);
    };
    set("Components", listText(components));
    set("Depths mm", listText(depths));
    set("Probe Ratio", exactText(options.ratio));
    set("Food Ratio", exactText(options.foodRatio));
    set("Noise", options.noise ? QStringLiteral("default") : QStringLiteral("none"));
    set("Seed", QString::number(options.seed));
    set("Peak Electrons", exactText(options.peakElectrons));
    set("Electrons per Count", exactText(options.gain));
    set("Read Noise Electrons", exactText(options.readNoise));
    set("Offset Counts", exactText(options.offset));
    set("Exposures Sec", numbersText(options.exposuresSeconds));
    set("Mixed Binning", options.mixedBinning ? QStringLiteral("1") : QStringLiteral("0"));
    addKindEntries(section, options);
    return section;
}

// The largest whole part of the binning that keeps the photograph within its size: it shares the images' field.
int photographMagnification(const SimulationOptions& options)
{
    for (int m = options.binning; m > 1; --m) {
        if (options.binning % m == 0 && options.size * m <= std::max(kPhotographSide, options.size)) {
            return m;
        }
    }
    return 1;
}

// One run; members live as long as it.
class Simulation
{
public:
    Simulation(const SimulationOptions& options, const SimulationProgress& progress, QString* pError)
        : m_options(options), m_progress(progress), m_pError(pError)
    {
    }

    bool run(const QString& strTarget)
    {
        return plan() && begin(strTarget) && build() && writeImages() && writeTruthFiles() &&
               tell(1.0, QStringLiteral("putting the sequence in place")) && m_writer.finish(m_pError);
    }

private:
    bool tell(double fraction, const QString& message) { return !m_progress || m_progress(fraction, message); }

    bool plan()
    {
        *m_pError = validate(m_options);
        QList<FilterPair> pairs;
        if (!m_pError->isEmpty() || !tell(0.0, QStringLiteral("laying out the animal")) ||
            !m_scene.build(m_options, m_pError) || !choosePairs(m_options, &pairs, m_pError) || !nameProbes()) {
            return false;
        }
        m_bands = planBands(m_options, pairs, QString(), m_scene.spots());
        m_scene.leaveOutUnlitFood(m_bands);
        return tell(kSceneDone, QStringLiteral("rendering the maps"));
    }

    // The text of the entry "Probe"; an isotope is marked as such.
    bool nameProbes()
    {
        if (m_options.kind == SimulationKind::Cherenkov) {
            Probe light;
            readIsotope(m_options.isotope, &light);
            m_probeText = QStringLiteral("RAD-") + light.name;
            return true;
        }
        QList<Probe> probes;
        if (!resolveProbes(m_options.probes, lightOf(m_options.kind), &probes, m_pError)) {
            return false;
        }
        QStringList texts;
        for (const Probe& probe : probes) {
            texts.append(probeText(probe.name));
        }
        m_probeText = listText(texts);
        return true;
    }

    // Click numbers are looked up among all open sequences, so they come from everything that made this one.
    void nameSequence(const QString& strTarget)
    {
        const QString folder = QFileInfo(QDir::cleanPath(strTarget)).fileName();
        const QString name = m_options.name.isEmpty() ? folder : m_options.name;
        CPLClickInfo everything;
        const CPLSection section = optionsSection(m_options, m_scene);
        everything.addSection(&section);
        QByteArray text = everything.toText() + folder.toUtf8() + name.toUtf8();
        for (const Band& band : m_bands) {
            text += QByteArray::number(band.filters.excitation) + ' ' + QByteArray::number(band.filters.emission) + ' ';
        }
        text += QByteArray::number(m_options.size) + ' ' + QByteArray::number(m_options.binning);
        const QByteArray hash = QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex().left(10);
        m_id = QStringLiteral("SIM%1").arg(QString::fromLatin1(hash).toUpper());
        for (Band& band : m_bands) {
            band.clickNumber.prepend(m_id);
        }
        m_description.id = m_id;
        m_description.name = name;
        m_description.fluorescence = isFluorescent(m_options.kind);
        m_description.transillumination = m_options.kind == SimulationKind::Transillumination;
        m_description.temporal = m_options.kind == SimulationKind::Temporal;
        m_description.ctScan = m_description.ctComplete = m_options.full;
        m_description.truthFolder = QString::fromLatin1(kTruthFolder);
        m_description.extraSections.addSection(&section);
    }

    bool begin(const QString& strTarget)
    {
        if (m_options.force && !m_options.discardResults) {
            const QString refusal = savedResultsAtStake(strTarget);
            if (!refusal.isEmpty()) {
                *m_pError = refusal + QStringLiteral("; --discard-results gives them up");
                return false;
            }
        }
        nameSequence(strTarget);
        const QStringList givenUp =
            m_options.discardResults ? savedResultsFolders(strTarget) : emptyResultsIndexes(strTarget);
        return m_writer.begin(strTarget, m_description, m_options.force, m_pError, givenUp);
    }

    bool build()
    {
        if (!m_model.build(m_scene, m_options, m_bands, m_pError) ||
            !tell(kMapsDone, QStringLiteral("taking the photograph"))) {
            return false;
        }
        const int magnification = photographMagnification(m_options);
        m_photograph = takeMousePhotograph(m_scene.shape(), m_options.size * magnification, m_options.seed);
        const int binning = m_options.binning / magnification;
        m_photograph.m_fBinning = static_cast<float>(binning);
        if (m_photograph.isEmpty() || (m_options.full && !m_full.prepare(m_options, m_scene.shape(), m_photograph))) {
            return outOfMemory();
        }
        return true;
    }

    bool writeImages()
    {
        for (int i = 0; i < m_bands.size(); ++i) {
            const double share = static_cast<double>(i) / m_bands.size();
            if (!tell(kPhotographDone + share * (kImagesDone - kPhotographDone),
                      QStringLiteral("exposing image %1 of %2").arg(i + 1).arg(m_bands.size())) ||
                !writeImage(i)) {
                return false;
            }
        }
        return true;
    }

    bool writeImage(int index)
    {
        const Band& band = m_bands.at(index);
        int side = m_options.size;
        std::vector<double> counts = m_model.expectedCounts(index);
        if (band.binning != m_options.binning) {
            counts = binTwofold(counts, side);
            side /= 2;
        }
        bool saturated = false;
        const CameraModel camera{m_options.gain, m_options.readNoise, m_options.offset, m_options.seed};
        CILImage image = m_options.noise ? camera.expose(counts, side, index, &saturated) : exactImage(counts, side);
        if (image.isEmpty()) {
            return outOfMemory();
        }
        image.m_fBinning = static_cast<float>(band.binning);
        DatasetDescription dataset;
        dataset.clickNumber = band.clickNumber;
        dataset.info = describeBand(m_options, band, band.binning, m_probeText);
        dataset.info[QString::fromLatin1(ClickKeys::kLuminescentImage)]->setValue(
            QString::fromLatin1(ClickKeys::kSaturated), saturated ? 1 : 0);
        SequenceWriter::Images images{{IMAGETYPE_LUMINESCENT, &image}};
        if (index == 0) {
            images.append({IMAGETYPE_PHOTOGRAPH, &m_photograph});
            const CPLSection photograph = photographSection();
            dataset.info.addSection(&photograph);
        }
        ReferenceImage reference;
        if (hasReference()) {
            reference = ReferenceImage::take(m_options, m_model, m_bands, index, m_bands.size() + index);
            if (reference.image.isEmpty()) {
                return outOfMemory();
            }
            dataset.info.addSection(&reference.section);
            images.append({IMAGETYPE_FLUORESCENT_REFERENCE, &reference.image});
        }
        if (m_options.full) {
            m_full.addTo(dataset, images, image, index == 0);
        }
        return m_writer.addDataset(dataset, images, m_pError);
    }

    // A scan is calibrated by the light that the animal transmits; the others have one number, and an image for all to
    // see when everything is asked for.
    bool hasReference() const
    {
        return m_options.kind == SimulationKind::Transillumination || (m_options.full && isFluorescent(m_options.kind));
    }

    CPLSection photographSection() const
    {
        CPLSection section(QString::fromLatin1(ClickKeys::kPhotographicImage));
        section.setValue(QString::fromLatin1(ClickKeys::kExposureTime), exactText(kPhotographExposure));
        section.setValue(QString::fromLatin1(ClickKeys::kBinning),
                         exactText(static_cast<double>(m_photograph.m_fBinning)));
        section.setValue(QString::fromLatin1(ClickKeys::kFNumber), exactText(CameraFigures::kFNumber));
        return section;
    }

    bool writeTruthFiles()
    {
        if (!tell(kImagesDone, QStringLiteral("writing the truth"))) {
            return false;
        }
        const QString folder = m_writer.extraFolder(QString::fromLatin1(kTruthFolder));
        if (folder.isEmpty()) {
            *m_pError = QStringLiteral("The folder for the truth cannot be made.");
            return false;
        }
        return writeTruth(folder, m_model, m_options, m_bands, m_pError);
    }

    bool outOfMemory()
    {
        *m_pError = QStringLiteral("There is not enough memory for images of this size.");
        return false;
    }

    const SimulationOptions& m_options;
    const SimulationProgress& m_progress;
    QString* m_pError;
    ScenePlan m_scene;
    SceneModel m_model;
    QList<Band> m_bands;
    QString m_probeText;
    QString m_id;
    CILImage m_photograph;
    FullDataset m_full;
    SequenceDescription m_description;
    SequenceWriter m_writer;
};

} // namespace

bool simulate(const QString& strTarget, const SimulationOptions& options, const SimulationProgress& progress,
              QString* pError)
{
    QString unread;
    QString* pReason = pError == nullptr ? &unread : pError;
    pReason->clear();
    try {
        return Simulation(options, progress, pReason).run(strTarget);
    } catch (const std::bad_alloc&) {
        *pReason = QStringLiteral("There is not enough memory for images of this size.");
        return false;
    }
}
