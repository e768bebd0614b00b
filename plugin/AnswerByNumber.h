// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "engine/AutomaticRunFacts.h"

#include <QList>
#include <QPair>
#include <QString>

#include <optional>

class CORVSequenceDataset;
class CORVSpumKyvo;
class JobMonitor;

// What makes one answer of an engine another one. Copies share the matrices.
struct EngineAnswer
{
    XTNT::Matrix<double> spectra; // components x images
    XTNT::Matrix<double> maps;    // components x pixels
    AutomaticRunFacts facts;
    QList<QPair<QString, QString>> properties;
};

// The answer of an automatic run of imported images that nothing was known of but how many components there are. It can
// be refined (refinedSpectra()), and the first one be brought back. The maps of a refined answer are the plain fit of
// its spectra to the images, as the load of a saved result computes them: what is shown, saved and loaded is the same
// to the bit. For that an offset of the camera stays in the images; a saved result does not know of it.
class AnswerByNumber
{
public:
    // The engine is borrowed.
    explicit AnswerByNumber(CORVSpumKyvo& engine) : m_engine(engine) {}

    // The engine has run to its end: what can be refined is on offer from now on, until it holds other maps, whether
    // by a run, a load or a reset. Not images of a camera that took a photograph as well, as in an animal no pixel is
    // pure; not scans of spots, components of which something was predicted, nor light that decays.
    void takeRun(CORVSequenceDataset& sequence);
    bool isOffered() const;
    // Nothing is on offer.
    void forget();
    bool isRefined() const { return m_first.has_value(); }

    // Computes the refined answer from the first one. Only reads engine and sequence, so that any thread can do it
    // while they do not change; passes cancellation points. Throws Failure with the reason where there is none.
    EngineAnswer refined(const CORVSequenceDataset& sequence, JobMonitor& monitor) const;

    // Give the engine the answer, and its view what is to be seen of it. The rows of the list of spectra keep their
    // names and colours.
    void showRefined(const EngineAnswer& answer);
    void showFirst();

private:
    void show(const EngineAnswer& answer);

    CORVSpumKyvo& m_engine;
    XTNT::Matrix<double> m_shown;        // the maps on offer
    std::optional<EngineAnswer> m_first; // while the refined answer is shown
};
