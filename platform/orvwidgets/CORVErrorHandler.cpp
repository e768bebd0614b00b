// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVErrorHandler.h"

#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvwidgets/chosenFolder.h"

#include <QCoreApplication>
#include <QDir>

namespace {

QString translated(const char* pText)
{
    return QCoreApplication::translate("CORVErrorHandler", pText);
}

QString sentence(int nError, const QString& strText)
{
    if (nError != CORVErrorHandler::FolderNotWritable) {
        const QString number = translated("The operation failed with error %1.").arg(nError);
        return strText.isEmpty() ? number : number + QLatin1Char('\n') + strText;
    }
    const QString folder = strText.isEmpty() ? orv::lastChosenFolder() : strText;
    if (folder.isEmpty()) {
        return translated("The folder cannot be written to. Choose another folder or change its permissions.");
    }
    return translated("The folder \"%1\" cannot be written to. Choose another folder or change its permissions.")
        .arg(QDir::toNativeSeparators(folder));
}

} // namespace

void CORVErrorHandler::errorMessage(QWidget* pParent, int nError, const QString& strText)
{
    CORVMessageBox::error(pParent, CORVUtilityFns::getAppName(), sentence(nError, strText));
}
