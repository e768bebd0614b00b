// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/AnalysisRequest.h"
#include "services/basis/UnitLimit.h"
#include "services/results/resultPlace.h"
#include "services/session/OpenedSequence.h"
#include "services/session/RunMemory.h"

#include "engine/CORVSpumKyvo.h"

#include <QString>
#include <QStringList>

class JobMonitor;

// Throws a Failure with the reason when the images of the engine's cube turned out unfit for an analysis.
void refuseUnusableImages(const CORVSpumKyvo& engine);

// An opened sequence on its way to a run: the steps between the request and the start of the engine, each of which
// throws Failure for what cannot be analysed. They are called in the order of their declaration.
class AnalysisSetUp
{
public:
    // Opens the sequence and hands on its warnings.
    AnalysisSetUp(const AnalysisRequest& request, JobMonitor& monitor);
    AnalysisSetUp(const AnalysisSetUp&) = delete;
    AnalysisSetUp& operator=(const AnalysisSetUp&) = delete;

    OpenedSequence& opened() { return m_opened; }
    CORVSpumKyvo& engine() { return m_opened.engine(); }

    // Whether the sequence takes that run mode.
    void checkMode(int nMode);
    // Where results go: --out, or that folder beside the images, see resultPlace().
    ResultPlace outPlace(const QString& strDefaultName) const;
    void select();
    // Resets the engine for that mode, chooses binning and size.
    void reset(int nMode);
    // The mask of the request becomes the engine's. With `nPixelsNeeded` above 0 the pixels that are left must be so
    // many.
    void takeMask(int nPixelsNeeded);
    // The unit that the images will be in; throws when it is not the one that was asked for.
    int checkUnit();
    // Whether the memory for a run is there: warns where less is free, refuses what this machine cannot hold at all.
    void checkMemory(const SystemMemory& memory);
    // Builds the cube and refuses images that cannot be analysed; shows progress up to `dFraction`. The run that
    // follows finds the cube ready, so that each image is read once.
    void readImages(double dFraction);

    // The mask that serves: that of the request, or none where its default does not.
    const MaskRequest& mask() const { return m_request.mask; }

    // After the cube was built: images of the selection whose analysed pixels are all the same, in the order of the
    // cube.
    const QStringList& constantImages() { return engine().m_imageFindings.constantImages(); }
    bool allImagesConstant();
    // Whether a photograph tells the pixels.
    bool hasMaskOfPhotograph() const { return m_request.mask.kind == MaskRequest::Kind::Photograph; }

private:
    AnalysisRequest m_request;
    JobMonitor& m_monitor;
    OpenedSequence m_opened;
    UnitLimit m_unitLimit;
};
