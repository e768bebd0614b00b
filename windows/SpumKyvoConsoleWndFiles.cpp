// SPDX-License-Identifier: GPL-3.0-or-later
// Files: the library of spectra, the table of the plot.
#include "windows/SpumKyvoConsoleWnd.h"

#include "host/CORVFileDialog.h"
#include "host/CORVGLXYPlot1.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "host/orv_paths.h"
#include "spectra/SpumKyvoDatabase.h"
#include "spectra/logLine.h"
#include "windows/exportName.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <iterator>

namespace {

const char* const kTableFilter = "Plot Data (*.csv)";

// A path to write the table to, overwriting what the user agreed to; empty when the user backs out.
QString askForTable(QWidget* pParent)
{
    const QPointer<QWidget> alive(pParent);
    while (!alive.isNull()) {
        const QString folder = CORVPreference::getSettings()->getRecentFilePath();
        const QString answer = CORVFileDialog::getSaveFileName(pParent, QObject::tr("Save Plot Data"), folder,
                                                               QLatin1String(kTableFilter), nullptr, true);
        if (answer.isEmpty() || alive.isNull()) {
            return QString();
        }
        CORVPreference::getSettings()->setRecentFilePath(QFileInfo(answer).absolutePath());
        const QString path = exportName::withSuffix(answer, QLatin1String(kTableFilter), {QStringLiteral("csv")});
        if (exportName::isTooLong(path)) {
            if (CORVMessageBox::information(pParent, CORVUtilityFns::getAppName(), exportName::tooLongText(path),
                                            CORVMessageBox::Ok | CORVMessageBox::CancelButton,
                                            CORVMessageBox::Ok) != CORVMessageBox::Ok) {
                return QString();
            }
            continue;
        }
        if (!QFileInfo::exists(path)) {
            return path;
        }
        const int nAnswer = CORVMessageBox::warning(
            pParent, CORVUtilityFns::getAppName(), exportName::overwriteText(path),
            CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer | CORVMessageBox::CancelButton,
            CORVMessageBox::NoButtonAnswer);
        if (nAnswer == CORVMessageBox::YesButton) {
            return path;
        }
        if (nAnswer != CORVMessageBox::NoButtonAnswer) {
            return QString();
        }
    }
    return QString();
}

// The folder of the libraries, made if it is missing; empty when it cannot be.
QString libraryFolder()
{
    const QString base = getORVPath(ORV_PATH_USER_DATA, true, nullptr);
    const QString folder = base + QStringLiteral("Spum");
    return !base.isEmpty() && QDir().mkpath(folder) ? folder : QString();
}

} // namespace

void SpumKyvoConsoleWnd::onClickExportData()
{
    m_pExportDataBtn->setEnabled(false);
    const QPointer<SpumKyvoConsoleWnd> alive(this);
    const QString path = askForTable(this);
    if (alive.isNull()) {
        return;
    }
    if (!path.isEmpty()) {
        CORVUtilityFns::setCursor(Qt::WaitCursor);
        bool bSaved = true;
        if (!exportName::isTable(path)) {
            logLine("Unable to save spectral plot data in the selected format.", CORVLOG_ERROR);
        } else {
            bSaved = m_pSpectrumPlot->saveData(QFile::encodeName(path).constData(), 0, ',');
        }
        CORVUtilityFns::restoreCursor();
        if (!bSaved) {
            CORVMessageBox::error(this, CORVUtilityFns::getAppName(),
                                  tr("Writing failed! Check for write permissions or disk space."));
        }
    }
    if (!alive.isNull()) {
        m_pExportDataBtn->setEnabled(true);
    }
}

void SpumKyvoConsoleWnd::onClickSaveSpectrumLibrary()
{
    readRows();
    if (m_spectra.isEmpty()) {
        return;
    }
    // A row that nothing was painted for would be a spectrum of zeros, with which no one can unmix.
    QList<SpectrumPlotParams*> measured;
    std::copy_if(m_spectra.cbegin(), m_spectra.cend(), std::back_inserter(measured),
                 [](const SpectrumPlotParams* pSpectrum) { return pSpectrum->hasData(); });
    if (measured.isEmpty()) {
        CORVMessageBox::warning(this, CORVUtilityFns::getAppName(),
                                tr("No row has a spectrum yet that could be saved."));
        return;
    }
    const QString folder = libraryFolder();
    if (folder.isEmpty()) {
        CORVMessageBox::warning(this, CORVUtilityFns::getAppName(), tr("Failed to create the SPUM database folder"));
        return;
    }
    const QPointer<SpumKyvoConsoleWnd> alive(this);
    const QString answer =
        CORVFileDialog::getSaveFileName(this, tr("Save spectrum library"), folder, QStringLiteral("*.csv"));
    if (alive.isNull() || answer.isEmpty()) {
        return;
    }
    const QString path = exportName::ofLibrary(answer);
    if (SpumKyvoDatabase().saveLibrary(path, measured, m_pNotationLE->text()) && !exportName::isListedLibrary(path)) {
        CORVMessageBox::warning(this, CORVUtilityFns::getAppName(),
                                tr("\"%1\" is saved, but it will not be among the libraries to load, as its name does "
                                   "not end in \".csv\".")
                                    .arg(QFileInfo(path).fileName()));
    }
}
