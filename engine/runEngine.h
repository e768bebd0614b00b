// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class CORVSpumKyvo;

// What the owner of a run does along the way, on the thread that called runEngine(). Any may be left empty. One that
// throws ends the run's process too, and the exception goes on to the caller.
struct RunSteps
{
    // The long process has been announced; the thread starts next.
    std::function<void()> started;
    // The thread has come to its end by itself, with an error or without.
    std::function<void()> ended;
    // The run brought a result. The progress of an unmixing is still shown; the process of a PCA is over.
    std::function<void()> succeeded;
};

enum class RunOutcome
{
    Succeeded,
    Failed, // the engine has the error code; its text has been reported
    Aborted // the engine's members are as the run left them: reset before the next analysis
};

// Runs the engine once from the user-interface thread: announces a long process that can be aborted, starts the
// engine's thread and that of its progress display, keeps events flowing until the thread ends or the user aborts, and
// reports. The engine's m_bRunPCA decides whether it is a PCA or an unmixing, and is false once the thread has ended,
// whichever way. No run may be under way. m_pProgress is valid meanwhile and null afterwards.
RunOutcome runEngine(CORVSpumKyvo& engine, const RunSteps& steps = RunSteps());
