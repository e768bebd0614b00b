// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/AutomaticSetUp.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/runTexts.h"
#include "engine/sourceCurves.h"
#include "engine/suggestedConstraints.h"
#include "host/CORVDatabase.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/Failure.h"
#include "services/basis/ProbeNames.h"
#include "windows/componentCount.h"
#include "windows/halfLife.h"
#include "windows/probeOffer.h"

#include <algorithm>

namespace {

constexpr double secondsPerMinute = 60.0;

QStringList offerFor(const CORVSpumKyvo& engine)
{
    const bool fluorescent = engine.m_eTemporalKind != 0;
    return offeredProbes(engine.m_eSeqKind, fluorescent);
}

// A probe of the sequence and what a run without names makes of it.
struct OwnProbe
{
    QString name;  // as the sequence has it
    QString meant; // as the database has it; empty where it has not
    bool isIsotope = false;
};

QString isotopeMark()
{
    return QStringLiteral("RAD-");
}

QList<OwnProbe> ownProbes(const CORVSpumKyvo& engine)
{
    const QStringList offered = proposeProbes(engine.m_probes, offerFor(engine)).offered;
    QList<OwnProbe> probes;
    for (const QString& text : engine.m_probes) {
        OwnProbe probe{text.trimmed(), QString(), text.contains(isotopeMark())};
        probe.name.remove(isotopeMark());
        probe.meant = probeMeant(probe.name, offered);
        probes.append(probe);
    }
    return probes;
}

// The names that mean something: those that the wizard offers, tissue and food, and the isotopes of Cherenkov light.
QStringList knownNames(const CORVSpumKyvo& engine)
{
    return componentNames(true, true, offerFor(engine)) +
           (engine.m_bCherenkov ? CORVDatabase::getRADSourceList() : QStringList());
}

// The sequence's own name for a probe of which the database knows nothing.
QString ownProbeMeant(const QString& strName, const CORVSpumKyvo& engine)
{
    const QList<OwnProbe> own = ownProbes(engine);
    const auto found = std::find_if(own.begin(), own.end(), [&strName](const OwnProbe& probe) {
        return probe.name.compare(strName.trimmed(), Qt::CaseInsensitive) == 0;
    });
    return found == own.end() ? QString() : found->name;
}

// As the database has them, or else the sequence, which is told in *pWarnings where it has another spelling. What a
// time course is named does not matter to its analysis.
QStringList componentsMeant(const AutomaticRequest& request, const CORVSpumKyvo& engine, QStringList* pWarnings)
{
    const QStringList known = knownNames(engine);
    QStringList names;
    QStringList wrong;
    for (const QString& name : request.components) {
        QString meant = probeMeant(name, known);
        if (meant.isEmpty()) {
            meant = ownProbeMeant(name, engine);
            if (!meant.isEmpty() && meant != name) {
                pWarnings->append(QStringLiteral("\"%1\" is taken for the sequence's probe \"%2\"").arg(name, meant));
            }
        }
        if (meant.isEmpty() && !request.anyName && engine.m_eSeqKind != SEQKIND_TEMPORAL) {
            wrong.append(QStringLiteral("there is no probe \"%1\"%2%3")
                             .arg(name, wrong.isEmpty() ? QStringLiteral(", and --any-name is not given") : QString(),
                                  nearestProbesText(name, known + engine.m_probes)));
        }
        names.append(meant.isEmpty() ? name : meant);
    }
    if (!wrong.isEmpty()) {
        throw Failure(QStringLiteral("--components: ") + wrong.join(QStringLiteral("; ")));
    }
    return names;
}

QStringList namesOf(const AutomaticRequest& request, const CORVSpumKyvo& engine, QStringList* pWarnings)
{
    if (!request.components.isEmpty()) {
        return componentsMeant(request, engine, pWarnings);
    }
    if (request.count == 0) {
        *pWarnings += notesOfProbes(engine);
        return proposedComponents(engine);
    }
    QStringList names;
    for (int k = 0; k < request.count; ++k) {
        names.append(QLatin1String(kUnknownProbe));
    }
    return names;
}

void checkCount(int nComponents, int nImages, bool bBeyondSix)
{
    if (isComponentCountValid(nComponents, nImages)) {
        return;
    }
    const bool fits = nComponents >= kMinComponents && nComponents <= nImages;
    if (bBeyondSix && fits) {
        return;
    }
    if (bBeyondSix && nComponents > nImages) {
        throw Failure(QStringLiteral("%1 (%2 components for %3 images)")
                          .arg(errorText(RUNERROR_NO_SOLUTION))
                          .arg(nComponents)
                          .arg(nImages));
    }
    throw Failure(QStringLiteral("%1 (asked for: %2%3)")
                      .arg(componentCountWarning(nComponents, nImages))
                      .arg(nComponents)
                      .arg(fits ? QStringLiteral("; --beyond-six takes as many as there are images") : QString()));
}

// What keeps the place of a component from being known; empty when it is known.
QString missingPrediction(const QString& strName, const CORVSpumKyvo& engine)
{
    const QString source = sourceOfLabel(strName) + sourceSuffix(engine.m_eAxis);
    sSourceSpecFileParameters curve;
    if (!readSourceCurve(source, engine.m_eSeqKind, engine.m_bCherenkov, curve)) {
        return QStringLiteral("the database has no source \"%1\": where it lies is not predicted").arg(source);
    }
    if (!(engine.sourceSpectrum(source, engine.m_primaryKeys).Max() > 0.0)) {
        return QStringLiteral("the source \"%1\" has no light at these images: where it lies is not predicted")
            .arg(source);
    }
    return QString();
}

QStringList predictionWarnings(const QStringList& names, bool bAsked, const CORVSpumKyvo& engine)
{
    QStringList warnings;
    const bool temporal = engine.m_eSeqKind == SEQKIND_TEMPORAL;
    if (temporal || !canPredict(names, engine.m_eSeqKind)) {
        if (bAsked) {
            warnings.append(temporal ? QStringLiteral("a temporal sequence takes no constraints")
                                     : QStringLiteral("nothing can be predicted of these components"));
        }
        return warnings;
    }
    for (const QString& name : names) {
        const QString missing = missingPrediction(name, engine);
        if (!missing.isEmpty()) {
            warnings.append(missing);
        }
    }
    return warnings;
}

// Why fewer places in the spectrum than components are known. Those of which nothing is known count as one.
QString undistinguishedText(const QStringList& names, const CORVSpumKyvo& engine)
{
    QStringList placeless;
    for (const QString& name : names) {
        if (!missingPrediction(name, engine).isEmpty()) {
            placeless.append(name);
        }
    }
    const int lost = names.size() - engine.m_suggestedLabels.size();
    QStringList reasons;
    if (placeless.size() > 1) {
        reasons.append(
            QStringLiteral("of %1 it is not known where they lie in the spectrum, so that nothing tells them "
                           "apart; use --no-constraints, or --ncomponents %2")
                .arg(placeless.join(QStringLiteral(", ")), QString::number(names.size())));
    }
    if (lost > std::max(0, placeless.size() - 1)) {
        QStringList placed = names;
        for (const QString& name : qAsConst(placeless)) {
            placed.removeOne(name);
        }
        reasons.append(
            QStringLiteral("of the components %1 two lie at one place of the spectrum, as far as is known; give "
                           "one of them another name, \"Unknown\", or use --no-constraints")
                .arg(placed.join(QStringLiteral(", "))));
    }
    return reasons.join(QStringLiteral("; "));
}

void takeDecay(const AutomaticRequest& request, const CORVSequenceDataset& sequence, CORVSpumKyvo& engine)
{
    AnalysisInput& input = engine.m_analysisInput;
    input.decayCorrection = request.correctDecay;
    if (!request.correctDecay) {
        return;
    }
    if (!sequence.isCherenkovIsotopeInData(input.isotope)) {
        throw Failure(QStringLiteral("--decay: the sequence holds no isotope with Cherenkov light"));
    }
    input.halfLifeSeconds = request.halfLifeMinutes > 0.0 ? request.halfLifeMinutes * secondsPerMinute
                                                          : CORVDatabase::getCherenkovRADHalflife(input.isotope);
    if (!(input.halfLifeSeconds > 0.0)) {
        throw Failure(invalidHalfLifeText(input.isotope, 0.0, engine.m_strSeqId) +
                      QStringLiteral(" Give it in minutes: --decay MINUTES"));
    }
    QVector<double> factors;
    if (!sequence.calculateDecayCorrectFactor_CherenkovData(engine.m_imageList, input.halfLifeSeconds, factors)) {
        throw Failure(QStringLiteral("the decay cannot be corrected for: an image lacks the start or the length of its "
                                     "exposure, or the half life is too short for the time between the images"));
    }
}

} // namespace

QStringList proposedComponents(const CORVSpumKyvo& engine)
{
    QStringList probes;
    for (const OwnProbe& probe : ownProbes(engine)) {
        probes.append((probe.isIsotope ? isotopeMark() : QString()) +
                      (probe.meant.isEmpty() ? probe.name : probe.meant));
    }
    return componentNames(isTissueByDefault(engine.m_eSeqKind), false,
                          proposedProbes(probes, offerFor(engine), engine.m_eSeqKind));
}

QStringList notesOfProbes(const CORVSpumKyvo& engine)
{
    QStringList notes;
    for (const OwnProbe& probe : ownProbes(engine)) {
        if (engine.m_eSeqKind == SEQKIND_TEMPORAL || probe.meant == probe.name) {
            continue;
        }
        notes.append(
            probe.meant.isEmpty()
                ? QStringLiteral("the sequence's probe \"%1\" is not in the database and not proposed; --components "
                                 "takes it")
                      .arg(probe.name)
                : QStringLiteral("the sequence's probe \"%1\" is taken for \"%2\"").arg(probe.name, probe.meant));
    }
    return notes;
}

QStringList setUpAutomatic(const AutomaticRequest& request, const CORVSequenceDataset& sequence, CORVSpumKyvo& engine)
{
    QStringList warnings;
    const QStringList names = namesOf(request, engine, &warnings);
    checkCount(names.size(), engine.getSelectedKeyPairs().size(), request.beyondSix);
    AnalysisInput& input = engine.m_analysisInput;
    input.componentNames = names;
    input.useConstraints = request.useConstraints && isConstrainedByDefault(engine.m_eSeqKind);
    if (request.useConstraints) {
        warnings += predictionWarnings(names, request.constraintsAsked, engine);
    }
    takeDecay(request, sequence, engine);
    engine.takeComponents();
    if (engine.m_params.Constraints.size() != names.size()) {
        throw Failure(undistinguishedText(names, engine));
    }
    return warnings;
}
