// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/datasetKeeper.h"

#include "host/CORVDataset.h"
#include "host/CORVFileDialog.h"
#include "host/CORVImageWindow.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "workbench/application/datasetTitle.h"
#include "workbench/application/freePlace.h"

#include <QCoreApplication>
#include <QDir>

namespace {

QString tr(const char* pText)
{
    return QCoreApplication::translate("datasetKeeper", pText);
}

QString proposedPlace(const CORVDataset& dataset)
{
    QString name = datasetTitle(dataset);
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    return freePlace(QDir(CORVPreference::getSettings()->getRecentFilePath()).filePath(name));
}

// A folder that holds something stays as it is.
bool isFree(const QString& strFolder)
{
    const QFileInfo info(strFolder);
    return !info.exists() || (info.isDir() && QDir(strFolder).isEmpty());
}

} // namespace

namespace datasetKeeper {

bool isAtStake(const CORVDataset& dataset)
{
    return dataset.isModified() && !dataset.belongsToSequence();
}

bool save(QWidget* pParent, CORVDataset& dataset)
{
    const QString target = CORVFileDialog::getSaveFileName(pParent, tr("Folder of the image"), proposedPlace(dataset),
                                                           QString(), nullptr, true);
    if (target.isEmpty()) {
        return false;
    }
    QString problem;
    if (!isFree(target)) {
        problem = tr("%1 is there already and holds something else. Choose another name.");
    } else if (dataset.saveDatasetAs(target) != ESTATUS_SUCCESS) {
        problem = tr("The image could not be saved in %1. The log tells why.");
    }
    if (!problem.isEmpty()) {
        CORVMessageBox::error(pParent, CORVUtilityFns::getAppName(), problem.arg(target));
        return false;
    }
    if (CORVImageWindow* pWindow = CORVImageWindow::getImageWindow(&dataset)) {
        pWindow->refreshImage();
    }
    return true;
}

bool mayClose(QWidget* pParent, CORVDataset& dataset)
{
    if (!isAtStake(dataset) || CORVUtilityFns::getNoToAllClicked()) {
        return true;
    }
    int nButtons = CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer | CORVMessageBox::CancelButton;
    if (CORVUtilityFns::getCloseAllClicked()) {
        nButtons |= CORVMessageBox::NoToAllButton;
    }
    const int nAnswer = CORVMessageBox::warning(pParent, CORVUtilityFns::getAppName(),
                                                tr("\"%1\" is not saved anywhere. Save it?").arg(datasetTitle(dataset)),
                                                nButtons, CORVMessageBox::YesButton);
    if (nAnswer == CORVMessageBox::YesButton) {
        return save(pParent, dataset);
    }
    if (nAnswer == CORVMessageBox::NoToAllButton) {
        CORVUtilityFns::setNoToAllClicked(true);
        return true;
    }
    return nAnswer == CORVMessageBox::NoButtonAnswer;
}

} // namespace datasetKeeper
