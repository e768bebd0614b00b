// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/warningsOfRun.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVLog.h"
#include "services/results/ComponentNumber.h"
#include "services/results/ResultNumbers.h"
#include "services/results/resultFindings.h"
#include "services/warnings/runWarnings.h"
#include "spectra/logLine.h"
#include "windows/SpUnmixWizardWnd.h"
#include "windows/probeOffer.h"

#include <QCoreApplication>
#include <QPushButton>

#include <exception>

namespace {

// Some thousand pixels of a dozen images: a few hundredths of a second.
constexpr long long mostElements = 200000;

// Names that the user gave, and none that stands for one that is not known.
QStringList givenNames(const QStringList& components)
{
    QStringList names;
    for (const QString& name : components) {
        if (!name.trimmed().isEmpty() && name.trimmed() != QLatin1String(kUnknownProbe)) {
            names.append(name.trimmed());
        }
    }
    return names;
}

} // namespace

QList<RunWarning> warningsOfRun(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence)
{
    if (!hasMapsOfItsImages(engine)) {
        return {};
    }
    const bool bResolved = engine.m_eMode == RUNMODE_AUTOMATIC;
    ResultNumbers numbers = numbersOfResult(engine, QString());
    numbers.above = ComponentNumber::of(engine.m_cube.m_data, mostElements);
    RunFindings findings = findingsOfResult(engine, sequence, bResolved, numbers);
    if (bResolved) {
        findings.askedNames = givenNames(engine.m_analysisInput.componentNames);
    }
    return runWarnings(findings);
}

void tellNumberOfComponents(const CORVSpumKyvo& engine)
{
    auto* pButton =
        engine.m_pWizard.isNull() ? nullptr : engine.m_pWizard->findChild<QPushButton*>(QStringLiteral("m_pPCABtn"));
    if (pButton == nullptr) {
        return;
    }
    ComponentNumber number;
    try {
        number = ComponentNumber::of(engine.m_cube.m_data, mostElements);
    } catch (const std::exception& failure) {
        // The eigenvalues are shown without it.
        logLine(QStringLiteral("SpumKyvo: the number of components could not be estimated: %1")
                    .arg(QString::fromUtf8(failure.what())),
                CORVLOG_WARNING);
    }
    pButton->setToolTip(
        number.likely > 0
            ? QCoreApplication::translate("warningsOfRun", "Components above the noise: %1").arg(number.text())
            : QString());
}
