// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "driver/DrivenProgram.h"
#include "end_to_end/Screen.h"

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

// The windowed program with sequences that the command line has simulated, each made once a run of the tests. Every
// test ends with a look at what the program wrote: nothing to standard error that Qt writes about connections, and no
// crash.
class WorkbenchFixture : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // A copy of a folder that a test may write into.
    QString copyOf(const QString& strFolder, const QString& strName);

    // Starts the program on folders (or none) and waits for its window.
    void startProgram(const QStringList& arguments);
    // Without a folder, in a window of the size of the screen.
    void startOn(const Screen& screen);
    DrivenProgram& program() { return *m_pProgram; }

    QString text(const QString& strWidget) { return program().state(strWidget)["text"].toString(); }
    bool isEnabled(const QString& strWidget) { return program().state(strWidget)["enabled"].toBool(); }
    // Waits for the palette with its table filled, presses Start with a method, waits for the wizard's tab. A result
    // that is in the way is given up. False when there is no wizard in the end.
    [[nodiscard]] bool openWizard(const QString& strMethod = QStringLiteral("Automatic"));
    // Presses Finish and waits until the run has ended and the results are shown.
    [[nodiscard]] bool finishWizard();
    // From the tiles to the window of the composite, by a double click on its tile.
    bool openComposite();
    // Back in the console, to its images without the overview.
    bool openCube();
    // Names of the rows of the console's list.
    QStringList rowNames();

    std::unique_ptr<DrivenProgram> m_pProgram;
    QTemporaryDir m_work;
};
