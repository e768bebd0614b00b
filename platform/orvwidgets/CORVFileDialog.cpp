// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVFileDialog.h"

#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/MessageResponder.h"
#include "platform/orvwidgets/chosenFolder.h"
#include "platform/orvwidgets/fileSuffix.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace orv {

namespace {

QString& chosenFolder()
{
    static QString strFolder;
    return strFolder;
}

} // namespace

QString lastChosenFolder()
{
    return chosenFolder();
}

void setLastChosenFolder(const QString& strFolder)
{
    chosenFolder() = strFolder;
}

} // namespace orv

namespace {

orv::FileRequest request(orv::FileRequest::Kind eKind, QWidget* pParent, const QString& strTitle,
                         const QString& strFolder, const QString& strFilters, const QString* pSelected)
{
    orv::FileRequest asked;
    asked.m_eKind = eKind;
    asked.m_pParent = pParent;
    asked.m_strTitle = strTitle;
    asked.m_strFolder = strFolder.isEmpty() ? CORVPreference::getSettings()->getRecentFilePath() : strFolder;
    asked.m_filters = strFilters.split(QStringLiteral(";;"), Qt::SkipEmptyParts);
    asked.m_strSelectedFilter = pSelected != nullptr ? *pSelected : QString();
    if (!asked.m_filters.contains(asked.m_strSelectedFilter)) {
        asked.m_strSelectedFilter = asked.m_filters.value(0);
    }
    return asked;
}

void keep(const QString& strFolder)
{
    orv::setLastChosenFolder(strFolder);
    CORVPreference::getSettings()->setRecentFilePath(strFolder);
}

// The folder of a file without looking whether either exists.
QString folderOf(const QString& strFile)
{
    return QFileInfo(strFile).absolutePath();
}

bool mayOverwrite(QWidget* pParent, const QString& strFile)
{
    const QString text =
        QCoreApplication::translate("CORVFileDialog", "\"%1\" already exists.\nDo you want to replace it?")
            .arg(QDir::toNativeSeparators(strFile));
    return CORVMessageBox::warning(pParent, CORVUtilityFns::getAppName(), text,
                                   CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer,
                                   CORVMessageBox::NoButtonAnswer) == CORVMessageBox::YesButton;
}

} // namespace

QString CORVFileDialog::getSaveFileName(QWidget* pParent, const QString& strTitle, const QString& strFolder,
                                        const QString& strFilters, QString* pSelected, bool bCallerAsks)
{
    orv::FileRequest asked = request(orv::FileRequest::SaveFile, pParent, strTitle, strFolder, strFilters, pSelected);
    QString refused;
    while (true) {
        const auto answer = orv::messageResponder().chooseFile(asked);
        if (!answer || answer->m_strPath.isEmpty()) {
            return QString();
        }
        const QString path = orv::withSuffix(answer->m_strPath, orv::firstSuffix(answer->m_strFilter));
        // Who answers with the refused name again has no other: nobody sits there.
        if (path == refused) {
            return QString();
        }
        if (bCallerAsks || !QFileInfo::exists(path) || mayOverwrite(pParent, path)) {
            if (pSelected != nullptr) {
                *pSelected = answer->m_strFilter;
            }
            keep(folderOf(path));
            return path;
        }
        refused = path;
        asked.m_strFolder = path;
        asked.m_strSelectedFilter = answer->m_strFilter;
    }
}

QString CORVFileDialog::getOpenFileName(QWidget* pParent, const QString& strTitle, const QString& strFolder,
                                        const QString& strFilters, QString* pSelected)
{
    const auto answer = orv::messageResponder().chooseFile(
        request(orv::FileRequest::OpenFile, pParent, strTitle, strFolder, strFilters, pSelected));
    if (!answer || answer->m_strPath.isEmpty()) {
        return QString();
    }
    if (pSelected != nullptr) {
        *pSelected = answer->m_strFilter;
    }
    keep(folderOf(answer->m_strPath));
    return answer->m_strPath;
}

QString CORVFileDialog::getExistingDirectory(QWidget* pParent, const QString& strTitle, const QString& strFolder)
{
    const auto answer = orv::messageResponder().chooseFile(
        request(orv::FileRequest::Folder, pParent, strTitle, strFolder, QString(), nullptr));
    if (!answer || answer->m_strPath.isEmpty()) {
        return QString();
    }
    const QString folder = QDir::cleanPath(answer->m_strPath);
    keep(folder);
    return folder;
}
