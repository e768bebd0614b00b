// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/AnalysisRequest.h"
#include "services/basis/UnitLimit.h"
#include "services/session/OpenedSequence.h"

#include <QString>
#include <QStringList>

class JobMonitor;

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
    // Where results go: --out, or that folder beside the images.
    QString outFolder(const QString& strDefaultName) const;
    void select();
    // Resets the engine for that mode, chooses binning and size.
    void reset(int nMode);
    // The mask of the request becomes the engine's. With `nPixelsNeeded` above 0 the pixels that are left must be so
    // many.
    void takeMask(int nPixelsNeeded);
    void checkUnit();
    // Looks at every pixel; shows progress up to `dFraction`.
    void checkImages(double dFraction);

    // After checkImages(): images of the selection whose analysed pixels are all the same, in the order of the cube.
    const QStringList& constantImages() const { return m_constantImages; }
    bool allImagesConstant();

private:
    AnalysisRequest m_request;
    JobMonitor& m_monitor;
    OpenedSequence m_opened;
    UnitLimit m_unitLimit;
    int m_nUnit = -1;
    QStringList m_constantImages;
};
