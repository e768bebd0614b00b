// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/exportGraphics.h"

#include "host/CDicomExporter.h"
#include "host/CORVFileDialog.h"
#include "host/CORVImageExporter.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "windows/graphicsFormats.h"

#include <QCoreApplication>
#include <QPointer>

namespace {

const CORVSequenceDataset* sequenceOf(const QWidget* pWidget)
{
    for (; pWidget != nullptr; pWidget = pWidget->parentWidget()) {
        if (const auto* pWindow = qobject_cast<const CORVSequenceWindow*>(pWidget)) {
            return pWindow->sequence();
        }
    }
    return CORVSequenceWindow::activeSequence();
}

bool write(const QImage& picture, const QString& strFile, const QWidget* pParent, QString* pError)
{
    return graphicsFormats::isDicom(strFile)
               ? CDicomExporter(strFile, sequenceOf(pParent)).writeDicomGraphics(picture, pError)
               : CORVImageExporter::saveImage(picture, strFile, pError);
}

} // namespace

bool exportGraphics(QWidget* pParent, QImage picture)
{
    const QPointer<QWidget> pAsking(pParent);
    if (picture.isNull()) {
        CORVMessageBox::information(pParent, CORVUtilityFns::getAppName(),
                                    QCoreApplication::translate("exportGraphics", "There is no picture to export."));
        return false;
    }
    QStringList filters = graphicsFormats::filters();
    CORVPreference::modifySaveFilterListByPreference(filters);
    const QString strFile =
        CORVFileDialog::getSaveFileName(pParent, QCoreApplication::translate("exportGraphics", "Export Graphics"),
                                        QString(), filters.join(QStringLiteral(";;")));
    if (strFile.isEmpty()) {
        return false;
    }
    CORVPreference::setUsersPreferredFormat(graphicsFormats::rememberedFormat(strFile));
    QString strError;
    if (write(picture, strFile, pAsking, &strError)) {
        return true;
    }
    CORVMessageBox::error(pAsking, CORVUtilityFns::getAppName(), strError);
    return false;
}
