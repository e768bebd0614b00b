// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/datasetKeeper.h"

#include "host/CORVDataset.h"
#include "host/CORVFileDialog.h"
#include "host/CORVImageWindow.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "workbench/application/datasetTitle.h"
#include "workbench/application/freePlace.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

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

void tellFailure(QWidget* pParent, const QString& strFolder)
{
    CORVMessageBox::error(pParent, CORVUtilityFns::getAppName(),
                          tr("The image could not be saved in %1. The log tells why.").arg(strFolder));
}

void refreshWindow(const CORVDataset& dataset)
{
    if (CORVImageWindow* pWindow = CORVImageWindow::getImageWindow(&dataset)) {
        pWindow->refreshImage();
    }
}

enum class Answer
{
    Save,
    GiveUp,
    Stay
};

// While all windows close, "No to All" is offered, and once it was given nobody is asked.
Answer ask(QWidget* pParent, const QString& strQuestion)
{
    if (CORVUtilityFns::getNoToAllClicked()) {
        return Answer::GiveUp;
    }
    int nButtons = CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer | CORVMessageBox::CancelButton;
    if (CORVUtilityFns::getCloseAllClicked()) {
        nButtons |= CORVMessageBox::NoToAllButton;
    }
    const int nAnswer = CORVMessageBox::warning(pParent, CORVUtilityFns::getAppName(), strQuestion, nButtons,
                                                CORVMessageBox::YesButton);
    if (nAnswer == CORVMessageBox::NoToAllButton) {
        CORVUtilityFns::setNoToAllClicked(true);
    }
    return nAnswer == CORVMessageBox::YesButton                                                    ? Answer::Save
           : nAnswer == CORVMessageBox::NoButtonAnswer || nAnswer == CORVMessageBox::NoToAllButton ? Answer::GiveUp
                                                                                                   : Answer::Stay;
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
    if (!isFree(target)) {
        CORVMessageBox::error(pParent, CORVUtilityFns::getAppName(),
                              tr("%1 is there already and holds something else. Choose another name.").arg(target));
        return false;
    }
    if (dataset.saveDatasetAs(target) != ESTATUS_SUCCESS) {
        tellFailure(pParent, target);
        return false;
    }
    refreshWindow(dataset);
    return true;
}

bool mayClose(QWidget* pParent, CORVDataset& dataset)
{
    if (!isAtStake(dataset)) {
        return true;
    }
    switch (ask(pParent, tr("\"%1\" is not saved anywhere. Save it?").arg(datasetTitle(dataset)))) {
    case Answer::Save:
        return save(pParent, dataset);
    case Answer::GiveUp:
        return true;
    case Answer::Stay:
        break;
    }
    return false;
}

bool saveInPlace(QWidget* pParent, CORVDataset& dataset)
{
    if (dataset.saveDatasetAs(dataset.folderPath()) != ESTATUS_SUCCESS) {
        tellFailure(pParent, dataset.folderPath());
        return false;
    }
    refreshWindow(dataset);
    return true;
}

bool mayClose(QWidget* pParent, CORVSequenceDataset& sequence)
{
    QList<CORVDataset*> changed;
    for (CORVDataset* pDataset : sequence.getDatasets()) {
        if (pDataset->isModified()) {
            changed.append(pDataset);
        }
    }
    if (changed.isEmpty()) {
        return true;
    }
    const QString images = changed.size() == 1 ? tr("an image") : tr("%1 images").arg(changed.size());
    switch (ask(pParent,
                tr("The regions of %1 of \"%2\" are not saved. Save them?").arg(images, sequence.getSequenceName()))) {
    case Answer::Save:
        return std::all_of(changed.cbegin(), changed.cend(),
                           [pParent](CORVDataset* pDataset) { return saveInPlace(pParent, *pDataset); });
    case Answer::GiveUp:
        return true;
    case Answer::Stay:
        break;
    }
    return false;
}

} // namespace datasetKeeper
