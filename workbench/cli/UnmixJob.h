// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/cli/AnalysisSetUp.h"
#include "workbench/cli/AutomaticOptions.h"
#include "workbench/cli/ResultFiles.h"

#include <QString>

class CliSession;

// What an unmixing is asked for.
struct UnmixRequest
{
    AnalysisRequest analysis;
    int mode = 0;
    QString library;            // file or name; of a run with known spectra
    AutomaticRequest automatic; // of an automatic run
};

// One unmixing from the request to the files. Everything that can be refused is refused before the run; nothing is written
// unless all is.
class UnmixJob
{
public:
    UnmixJob(const UnmixRequest& request, CliSession& session);

    // Throws CliFailure; 130 after an abort.
    void run();

private:
    bool isAutomatic() const;
    void takeSpectra();
    void takeComponents();
    void checkConstantImages();
    void fit();
    void tell(const ResultFiles& files, const QString& strFolder);

    UnmixRequest m_request;
    CliSession& m_session;
    AnalysisSetUp m_setUp;
    ResultNumbers m_numbers;
};
