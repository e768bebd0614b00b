// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>

// A program that ends with this one, however that ends, and that signals of the terminal reach only by way of it: it is
// told to stop once, and the second signal, which would end it at once, is left to need. Start it on the main thread.
class ChildProcess : public QProcess
{
public:
    ChildProcess();
    ~ChildProcess() override;

    // As start(), which does not keep the promise: with standard output and input at the null device.
    void startBound(const QString& strProgram, const QStringList& arguments);
    // Asks it to stop, if it runs.
    void askToStop() const;

protected:
    void setupChildProcess() override;

private:
    const qint64 m_nParent;
};
