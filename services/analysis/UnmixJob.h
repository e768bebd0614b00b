// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/AnalysisSetUp.h"
#include "services/analysis/AutomaticRequest.h"
#include "services/analysis/NoiseFit.h"
#include "services/analysis/NoiseRequest.h"
#include "services/analysis/Refinement.h"
#include "services/analysis/RunProvenance.h"
#include "services/analysis/ShownRun.h"
#include "services/results/ResultFiles.h"
#include "services/results/StagedRun.h"
#include "services/warnings/WarningCollector.h"

#include <QString>
#include <QStringList>

#include <optional>

class QElapsedTimer;

// What an unmixing is asked for.
struct UnmixRequest
{
    AnalysisRequest analysis;
    int mode = 0;
    QString library;            // file or name; of a run with known spectra
    AutomaticRequest automatic; // of an automatic run
    NoiseRequest noise;
    bool replace = false; // earlier results in the folder
    bool pdf = false;     // the report as PDF too
    PictureRequest pictures;
    bool save = false; // keep the result beside the sequence
    QString saveName;  // empty: the next automatic name
    QString note;
    QStringList command;   // the words that asked for it, the program's name first
    QStringList arguments; // its options, see Provenance
};

// One unmixing from the request to the files. Everything that can be refused is refused before the run; nothing is
// written unless all is.
class UnmixJob
{
public:
    UnmixJob(const UnmixRequest& request, JobMonitor& monitor);

    // Throws Failure, also after an abort.
    RunAnswer run();
    // Tells what run() would do, after all that can be refused ahead of a look at the images was; nothing is written.
    RunAnswer plan();
    // After the run.
    const QList<RunWarning>& warnings() const { return m_monitor.warnings(); }

private:
    bool isAutomatic() const;
    ResultPlace place() const;
    void checkPlaces();
    // Up to the reading of the images. The unit that they will be in.
    int prepare();
    // Whether so many components leave something that standard errors can be told by, where they are asked for.
    bool leavesFreedom(int nComponents);
    // Throws where they do not.
    void checkFreedom(int nComponents);
    void takeSpectra();
    void takeComponents();
    // Where nothing was asked for: adds food to what is proposed, if the images show it.
    void lookForFood();
    void checkConstantImages();
    void takeIsotope();
    RunOutcome resolve();
    void takeInstead(const AutomaticRequest& request);
    // The time is counted from the reading of the images on.
    void fit(const QElapsedTimer& timer);
    NoiseFitResult weigh();
    // Imported images by number alone; those of animals have light of the tissue beneath all else, so that no pixel is
    // pure.
    std::optional<RefinementResult> refine();
    QString adviceAgainstFailure();
    void takeWarnings();
    ReportFrame reportFrame();
    Provenance provenance();
    void showPictures();
    void write(ResultFiles& files);
    // The name it was saved under.
    QString saveResult(const QString& strFolder);
    RunAnswer answer(const ResultFiles& files, const StagedRun& staged, const QString& strSaved);

    UnmixRequest m_request;
    WarningCollector m_monitor;
    RunProvenance m_provenance;
    AnalysisSetUp m_setUp;
    ResultNumbers m_numbers;
    bool m_bFoodProposed = false;
    bool m_bFoodFits = false; // among what is proposed, whether it is seen or not
    QString m_strProposal;    // what was proposed, and why; empty where components were asked for
};
