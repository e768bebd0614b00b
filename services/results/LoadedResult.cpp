// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/LoadedResult.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/basis/ModeNames.h"
#include "services/basis/UnitNames.h"
#include "services/results/ResultStore.h"
#include "services/session/OpenedSequence.h"
#include "storage/SavedDocument.h"

#include "XTNT/xtnt_parallel.h"

#include <QElapsedTimer>

namespace {

// "NTF Efficiency" is efficiency by another name; -1 for none of the units.
int unitOf(const SavedDocument& document)
{
    const QString text = document.property(QStringLiteral("DataUnit"));
    return UnitNames::fromText(text == QLatin1String("NTF Efficiency") ? UnitNames::text(DISPLAYUNIT_EFFICIENCY)
                                                                       : text);
}

// A load is done although the mask or the selection does not go with the images; there are no maps then. Those of an
// old file are shown as stored, whatever their size.
void checkMaps(const CORVSpumKyvo& engine, const QString& strName)
{
    if (!hasMapsOfItsImages(engine)) {
        throw Failure(
            QStringLiteral("the result \"%1\" has no maps: its images, its mask or its maps do not go with the images "
                           "of the sequence")
                .arg(strName));
    }
}

} // namespace

LoadedResult::LoadedResult(OpenedSequence& opened, const QString& strName, const JobMonitor& monitor)
{
    const QDateTime started = QDateTime::currentDateTimeUtc();
    const XTNT::CancellationCheck check([&monitor] { monitor.stopIfRequested(); });
    if (!opened.canBeAnalysed()) {
        throw Failure(QStringLiteral("the result cannot be computed again: the sequence cannot be analysed: %1")
                          .arg(opened.reasonAgainst()));
    }
    const SavedDocument document = readSavedDocument(ResultStore::pathOf(opened.sequence(), strName));
    if (!document.error.isEmpty()) {
        throw Failure(QStringLiteral("%1: %2").arg(document.path.isEmpty() ? strName : document.path, document.error));
    }
    auto& engine = opened.engine();
    m_unitLimit.set(unitOf(document));
    const int mode = ModeNames::fromText(document.property(QStringLiteral("Method")));
    engine.resetAnalysis(mode >= 0 ? mode : engine.m_eMode);
    // As after a run: the files have pictures of their own.
    engine.ownResultView().setShowsUnmixedImages(false);
    QElapsedTimer timer;
    timer.start();
    ResultStore(engine, false).load(strName);
    checkMaps(engine, strName);
    engine.storeDecayState();
    m_strNote = engine.resultView().getNote();
    m_provenance = provenanceOf(opened.sequence(), engine);
    m_provenance.started = started;
    m_provenance.options.insert(QStringLiteral("saved"), strName);
    m_provenance.files = hashedFiles(opened.folder(), analysedFiles(opened.sequence(), engine.m_imageList),
                                     [&monitor] { return !monitor.isStopRequested(); });
    monitor.stopIfRequested();
    m_numbers = numbersOfResult(engine, opened.truthFolder(engine.m_eUnit, engine.m_bDecayApplied));
    m_numbers.seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}
