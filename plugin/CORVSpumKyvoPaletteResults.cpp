// SPDX-License-Identifier: GPL-3.0-or-later
// The tab of results: saved results, and the table of properties with its copies and exports.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/AnalysisSetup.h"
#include "plugin/ComboResultsList.h"
#include "plugin/HeldOpen.h"
#include "plugin/resultsTableText.h"
#include "plugin/sequenceWindows.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVErrorHandler.h"
#include "host/CORVFileDialog.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVResultsTabControl.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "spectra/logLine.h"
#include "spectra/plainToolTip.h"
#include "storage/SavedResults.h"
#include "storage/writeWholeFile.h"
#include "windows/exportName.h"

#include <QAction>
#include <QClipboard>
#include <QCursor>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTreeWidgetItemIterator>

namespace {

QStringList textsOf(const QTreeWidgetItem& item)
{
    QStringList texts;
    for (int c = 0; c < item.columnCount(); ++c) {
        texts.append(item.text(c));
    }
    return texts;
}

bool isAction(const QAction& action, const char* pText)
{
    // A style may have put a mnemonic into it.
    return action.text().remove(QLatin1Char('&')).compare(QLatin1String(pText), Qt::CaseInsensitive) == 0;
}

} // namespace

void CORVSpumKyvoPalette::showStatus(QString strText)
{
    m_pResults->showStatus(strText);
}

bool CORVSpumKyvoPalette::askToSaveResults(bool bCanCancel)
{
    return m_pResults->askToSaveResults(bCanCancel);
}

bool CORVSpumKyvoPalette::renameResult()
{
    return m_pResults->renameResult();
}

void CORVSpumKyvoPalette::askToSaveExistingResults()
{
    askToSaveResults(false);
}

void CORVSpumKyvoPalette::onClickLoadResults()
{
    m_pResults->onClickLoadResults();
}

void CORVSpumKyvoPalette::onClickDeleteResults()
{
    m_pResults->onClickDeleteResults();
}

void CORVSpumKyvoPalette::onClickSaveResults()
{
    if (m_pResults->onClickSaveResults() == SaveOutcome::FileWasThere) {
        logLine(
            QStringLiteral("SpumKyvo: a result was saved within this second already, and its file stays: this result "
                           "is not saved. Save it once more."),
            CORVLOG_WARNING);
    }
}

void CORVSpumKyvoPalette::onChangeResultsName(QString str)
{
    m_pResults->onChangeResultsName(str);
}

void CORVSpumKyvoPalette::keyPressEvent(QKeyEvent* event)
{
    m_pResults->onKeyPressed(event->key());
}

void CORVSpumKyvoPalette::onTabChange(int nIndex)
{
    const CORVSequenceDataset* pSequence =
        m_pEngine != nullptr ? CORVSequenceDataset::getSequenceDataset(m_pEngine->m_strSeqId) : nullptr;
    if (nIndex == 1 && pSequence != nullptr && !CORVPreference::isSequenceLoading(pSequence)) {
        m_pResultsList->updateSavedResultsForSelSeqId(m_pEngine->m_strSeqId);
    }
}

void CORVSpumKyvoPalette::fillResultsTree()
{
    m_pSPUnResultsLV->clear();
    if (m_pEngine == nullptr) {
        m_pResultsTab->setHasResult(false);
        m_pReportButton->setEnabled(false);
        updateRefineButton();
        return;
    }
    for (const auto& property : qAsConst(m_pEngine->m_properties)) {
        auto* pItem = new QTreeWidgetItem(m_pSPUnResultsLV, {property.first, property.second});
        pItem->setToolTip(0, plainToolTip(property.first));
        pItem->setToolTip(1, plainToolTip(property.second));
    }
    m_pSPUnResultsLV->resizeColumnToContents(0);
    m_pSPUnResultsLV->scrollToItem(m_pSPUnResultsLV->topLevelItem(0));
    m_pResultsTab->setHasResult(m_pSPUnResultsLV->topLevelItemCount() > 0);
    m_pReportButton->setEnabled(m_pSPUnResultsLV->topLevelItemCount() > 0);
    updateRefineButton();
}

void CORVSpumKyvoPalette::clearResultsTree()
{
    m_pSPUnResultsLV->clear();
    m_pResultsTab->setHasResult(false);
    m_pReportButton->setEnabled(false);
    updateRefineButton();
}

void CORVSpumKyvoPalette::makeResultsMenu()
{
    m_pResultsMenu = new QMenu(this);
    m_pResultsMenu->setObjectName(QStringLiteral("m_pResultsMenu"));
    for (const QString& text : {tr("Copy"), tr("Select All"), tr("Export Results")}) {
        m_pResultsMenu->addSeparator();
        connect(m_pResultsMenu->addAction(text), &QAction::triggered, this, &CORVSpumKyvoPalette::onMenuActivated);
    }
}

void CORVSpumKyvoPalette::onMouseClicked(QPoint /*pos*/)
{
    m_pResultsMenu->popup(QCursor::pos());
}

QStringList CORVSpumKyvoPalette::resultTitles() const
{
    QStringList titles;
    for (int c = 0; c < m_pSPUnResultsLV->columnCount(); ++c) {
        titles.append(m_pSPUnResultsLV->headerItem()->text(c));
    }
    return titles;
}

QVector<QStringList> CORVSpumKyvoPalette::resultRows(bool bSelectedOnly) const
{
    QVector<QStringList> rows;
    for (QTreeWidgetItemIterator item(m_pSPUnResultsLV); *item != nullptr; ++item) {
        if (!bSelectedOnly || (*item)->isSelected()) {
            rows.append(textsOf(**item));
        }
    }
    return rows;
}

void CORVSpumKyvoPalette::onMenuActivated()
{
    const auto* pAction = qobject_cast<QAction*>(sender());
    if (!isActiveWindow() || pAction == nullptr) {
        return;
    }
    if (isAction(*pAction, "Select All")) {
        for (QTreeWidgetItemIterator item(m_pSPUnResultsLV); *item != nullptr; ++item) {
            m_pSPUnResultsLV->setSelectionMode(QAbstractItemView::ExtendedSelection);
            (*item)->setSelected(true);
        }
    } else if (isAction(*pAction, "Export Results")) {
        exportSpUnmixResults();
    } else if (isAction(*pAction, "Copy")) {
        QGuiApplication::clipboard()->setText(resultsTableText::forClipboard(resultTitles(), resultRows(true)));
    }
}

void CORVSpumKyvoPalette::exportSpUnmixResults()
{
    const QString strFilters = QStringLiteral("SpUnmix Results File (*.txt);;CSv(*.csv)");
    for (;;) {
        QString strFilter;
        QString strPath;
        {
            const HeldOpen held;
            strPath = CORVFileDialog::getSaveFileName(nullptr, QStringLiteral("Save SpUnmix Results"),
                                                      CORVPreference::getSettings()->getRecentFilePath(), strFilters,
                                                      &strFilter);
        }
        if (strPath.isEmpty()) {
            return;
        }
        const QString strFolder = strPath.left(strPath.lastIndexOf(QLatin1Char('/')));
        if (!QFileInfo(strFolder + QLatin1Char('/')).isWritable()) {
            CORVErrorHandler::errorMessage(this, CORVErrorHandler::FolderNotWritable, QString());
            return;
        }
        CORVPreference::getSettings()->setRecentFilePath(strFolder);
        strPath = exportName::withSuffix(strPath, strFilter, {QStringLiteral("txt"), QStringLiteral("csv")});
        if (!exportName::isTooLong(strPath)) {
            const QString strSeparator = resultsTableText::separatorOf(strPath);
            if (!strSeparator.isEmpty()) {
                writeSpUnmixResultsToFile(strSeparator, strPath);
            }
            return;
        }
        if (CORVMessageBox::information(this, CORVUtilityFns::getAppName(), exportName::tooLongText(strPath),
                                        CORVMessageBox::Ok) != CORVMessageBox::Ok) {
            return;
        }
    }
}

// A file that cannot be written is told in the log alone.
void CORVSpumKyvoPalette::writeSpUnmixResultsToFile(QString strSep, QString strFilePath)
{
    const QString strText = resultsTableText::forFile(resultTitles(), resultRows(false), strSep);
    writeWholeFile(strFilePath, strText.toLocal8Bit());
}

QImage CORVSpumKyvoPalette::pictureOfTab(const QString& strTabName) const
{
    auto* pSetup = m_pEngine != nullptr ? dynamic_cast<AnalysisSetup*>(m_pEngine->windows()) : nullptr;
    return pSetup != nullptr && m_pRunning == nullptr ? pSetup->pictureOfTab(strTabName) : QImage();
}

void CORVSpumKyvoPalette::CopyToClipboard(QString strTabName)
{
    const QImage picture = pictureOfTab(strTabName);
    if (!picture.isNull()) {
        QGuiApplication::clipboard()->setImage(picture);
    }
}

QPixmap CORVSpumKyvoPalette::getPrintPreviewPixmap()
{
    const CORVSequenceWindow* pWindow = m_pEngine != nullptr ? sequenceWindows::windowOf(*m_pEngine) : nullptr;
    return pWindow != nullptr ? QPixmap::fromImage(pictureOfTab(pWindow->getCurrentTabName())) : QPixmap();
}
