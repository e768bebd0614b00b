// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/runEngine.h"
#include "workbench/cli/OpenedSequence.h"
#include "workbench/cli/ResultFiles.h"

#include <QString>

class CliSession;

// What an unmixing is asked for.
struct UnmixRequest
{
    QString sequence;
    int mode = 0;
    QString library; // file or name
    QString select;  // empty: every image
    QString mask;    // file; empty: none
    int unit = -1;   // -1: the best that the images have
    int binning = 0; // 0: the most common of the images
    QString out;     // empty: beside the images
    bool force = false;
};

// One unmixing from the request to the files. Everything that can be refused is refused before the run; nothing is written
// unless all is.
class UnmixJob
{
public:
    UnmixJob(const UnmixRequest& request, CliSession& session);
    ~UnmixJob();

    // Throws CliFailure; 130 after an abort.
    void run();

private:
    void checkMode();
    void select();
    void chooseBinning();
    void checkUnit();
    void checkImages();
    void takeSpectra();
    void takeMask();
    RunOutcome runShown();
    void fit();
    QString outFolder() const;

    UnmixRequest m_request;
    CliSession& m_session;
    OpenedSequence m_opened;
    ResultNumbers m_numbers;
    int m_nUnit = -1;
};
