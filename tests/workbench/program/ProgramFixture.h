// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"
#include "workbench/program/SpumProgram.h"

#include <QJsonArray>
#include <QJsonObject>

#include <mutex>

// Tests that run the built program in a folder of their own, whose path has blanks and letters beyond ASCII.
class ProgramFixture : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        ASSERT_TRUE(QFileInfo(SpumProgram::path()).isExecutable()) << qPrintable(SpumProgram::path());
        m_pSpum = std::make_unique<SpumProgram>(path("home"), path("."));
    }

    ProgramResult spum(const QStringList& arguments) const { return m_pSpum->run(arguments); }
    const SpumProgram& program() const { return *m_pSpum; }
    SpumProgram& program() { return *m_pSpum; }
    // As SpumProgram::setFaults, with names in the folder of the test.
    void setFaults(const QString& rules, const QString& below = QStringLiteral("."), const QString& log = {})
    {
        m_pSpum->setFaults(rules, path(below), log.isEmpty() ? QString() : path(log));
    }

    // Runs it and expects success without a word on standard error but for the warnings of those codes, in their order,
    // which its answer (--json) has too.
    ProgramResult succeed(const QStringList& arguments, const QStringList& codes = {}) const;
    // Runs it and expects that status, one line on standard error that begins "spum: ", and nothing on standard output;
    // the rest of that line is returned.
    QString refusal(const QStringList& arguments, int nStatus = 1) const;

    // The content of a file of results; of a report without the command and the time that made it, of a summary without
    // its origin and the name of the folder.
    QByteArray lastingContentOf(const QString& strFile) const;

    // A simulated sequence "seq", 64 x 64 pixels, 8 bands, binning 4.
    void simulate(const QStringList& options = {}) const;
    // The true spectra of "seq", in a unit.
    QString truth(const QString& strUnit = QStringLiteral("radiant-efficiency")) const
    {
        return path("seq/truth/" + strUnit + "/spectra.csv");
    }
    // Three images of 4 x 4 pixels, mixtures of "Dye A" and "Dye B", as the sequence "small"; library() has the
    // spectra.
    static SmallSequence smallSequence();
    // Written at the first call and never again: programs may be reading it.
    QString library() const;

private:
    std::unique_ptr<SpumProgram> m_pSpum;
    mutable std::once_flag m_libraryWritten;
};
