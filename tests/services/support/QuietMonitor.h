// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/JobMonitor.h"

// Keeps the warnings and says nothing; asks the work to stop once `stop` is set.
class QuietMonitor : public JobMonitor
{
public:
    void startProgress(const QString&) override {}
    void showProgress(const QString&, double) override {}
    void endProgress() override {}
    void warn(const QString& strText) override { warnings.append(strText); }
    bool isStopRequested() const override { return stop; }

    QStringList warnings;
    bool stop = false;
};
