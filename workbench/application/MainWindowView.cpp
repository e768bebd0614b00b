// SPDX-License-Identifier: GPL-3.0-or-later
// What the main window does with what it shows.
#include "host/CORVDataset.h"
#include "host/CORVImageWindow.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/DatasetView.h"
#include "workbench/application/DatasetWindow.h"
#include "workbench/application/MainWindow.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteControl.h"
#include "workbench/application/PaletteDock.h"
#include "workbench/application/PluginHost.h"
#include "workbench/application/PreferencesDialog.h"
#include "workbench/application/RunLock.h"
#include "workbench/application/StartPage.h"
#include "workbench/application/helpTexts.h"
#include "workbench/application/printing.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTextBrowser>
#include <QUndoStack>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// A toolbar with a button of its own for these keys is to be seen, and its keys work: those of a sub-window do while it
// has the focus.
bool hasButtonFor(const QKeySequence& keys, const QWidget* pWindow)
{
    const QWidget* pFocus = QApplication::focusWidget();
    if (pWindow == nullptr || pFocus == nullptr || !pWindow->isAncestorOf(pFocus)) {
        return false;
    }
    const auto buttons = pWindow->findChildren<QAbstractButton*>();
    return std::any_of(buttons.cbegin(), buttons.cend(), [&](const QAbstractButton* pButton) {
        return pButton->shortcut() == keys && pButton->isVisibleTo(pWindow);
    });
}

// The first widget in there that takes keys.
void focusFirst(QWidget* pPane)
{
    for (QWidget* pNext = pPane->nextInFocusChain(); pNext != pPane; pNext = pNext->nextInFocusChain()) {
        if (pPane->isAncestorOf(pNext) && pNext->isVisible() && pNext->isEnabled() &&
            (pNext->focusPolicy() & Qt::TabFocus) != 0) {
            pNext->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
}

} // namespace

void MainWindow::updateActions()
{
    const MainActions& actions = *m_pActions;
    const bool bFree = !m_pLock->isLocked();
    const int nOpen = m_pDocuments->count();
    const CORVSequenceWindow* pSequenceWindow = m_pDocuments->currentSequenceWindow();
    for (QAction* pAction : {actions.open, actions.import, actions.simulate, actions.preferences, actions.guide,
                             actions.about, actions.fullScreen, actions.switchPane}) {
        pAction->setEnabled(bFree);
    }
    actions.batch->setEnabled(bFree && m_pPlugin->canBatch());
    for (QAction* pAction :
         {actions.closeAll, actions.print, actions.preview, actions.copyPicture, actions.tile, actions.cascade}) {
        pAction->setEnabled(bFree && nOpen > 0);
    }
    for (QAction* pAction : {actions.nextWindow, actions.previousWindow}) {
        pAction->setEnabled(bFree && nOpen > 1);
    }
    for (QAction* pAction : {actions.nextTab, actions.previousTab}) {
        pAction->setEnabled(bFree && pSequenceWindow != nullptr && pSequenceWindow->tabWidget()->count() > 1);
    }
    const CORVDataset* pImage = m_pDocuments->currentDataset();
    actions.saveImage->setEnabled(bFree && pImage != nullptr && !pImage->belongsToSequence());
    // These two ask first, and end what runs.
    actions.close->setEnabled(nOpen > 0);
    actions.quit->setEnabled(true);
    m_pPaletteDock->toggleViewAction()->setEnabled(bFree);
    updatePrintKeys();
    takeHistory();
    m_pPages->setCurrentWidget(nOpen > 0 ? static_cast<QWidget*>(m_pArea) : m_pStart);
}

// Keys that two have are nobody's.
void MainWindow::updatePrintKeys()
{
    const QKeySequence keys(QKeySequence::Print);
    const QKeySequence now = hasButtonFor(keys, m_pDocuments->currentSequenceWindow()) ? QKeySequence() : keys;
    if (m_pActions->print->shortcut() != now) {
        m_pActions->print->setShortcut(now);
    }
}

void MainWindow::takeHistory()
{
    auto* pImage = qobject_cast<DatasetWindow*>(CORVImageWindow::getImageWindow(m_pDocuments->currentDataset()));
    if (pImage != nullptr) {
        m_histories.addStack(&pImage->history());
    }
    m_histories.setActiveStack(pImage != nullptr ? &pImage->history() : nullptr);
    showHistory();
}

void MainWindow::showHistory()
{
    const bool bFree = !m_pLock->isLocked();
    const auto offer = [bFree](QAction* pAction, const QString& strText, bool bPossible, const QString& strChange) {
        pAction->setEnabled(bFree && bPossible);
        pAction->setText(bPossible ? strText + QLatin1Char(' ') + strChange : strText);
    };
    offer(m_pActions->undo, tr("&Undo"), m_histories.canUndo(), m_histories.undoText());
    offer(m_pActions->redo, tr("&Redo"), m_histories.canRedo(), m_histories.redoText());
}

void MainWindow::fillWindowMenu()
{
    QMenu* pMenu = m_pActions->windowMenu;
    const auto old = pMenu->actions();
    for (QAction* pAction : old) {
        if (pAction->property("listed").toBool()) {
            delete pAction;
        }
    }
    int nPlace = 0;
    for (QMdiSubWindow* pFrame : m_pArea->subWindowList()) {
        if (pFrame->isHidden()) {
            continue;
        }
        if (nPlace == 0) {
            pMenu->addSeparator()->setProperty("listed", true);
        }
        ++nPlace;
        QString title = pFrame->windowTitle();
        title.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* pAction = pMenu->addAction(nPlace < 10 ? QStringLiteral("&%1  %2").arg(nPlace).arg(title) : title);
        pAction->setProperty("listed", true);
        pAction->setCheckable(true);
        pAction->setChecked(pFrame == m_pArea->currentSubWindow());
        connect(pAction, &QAction::triggered, pFrame, [this, pFrame] { m_pArea->setActiveSubWindow(pFrame); });
    }
}

void MainWindow::stepTab(int nStep)
{
    const CORVSequenceWindow* pWindow = m_pDocuments->currentSequenceWindow();
    QTabWidget* pTabs = pWindow != nullptr ? pWindow->tabWidget() : nullptr;
    const int nCount = pTabs != nullptr ? pTabs->count() : 0;
    if (nCount > 1) {
        pTabs->setCurrentIndex((pTabs->currentIndex() + nStep + nCount) % nCount);
    }
}

void MainWindow::switchPane()
{
    QWidget* pFocus = QApplication::focusWidget();
    const bool bInPanel = pFocus != nullptr && m_pPaletteDock->isAncestorOf(pFocus);
    QPointer<QWidget>& pHere = bInPanel ? m_pPanelFocus : m_pWorkFocus;
    const QPointer<QWidget>& pThere = bInPanel ? m_pWorkFocus : m_pPanelFocus;
    pHere = pFocus;
    if (!bInPanel) {
        m_pPaletteDock->show();
        m_pPaletteDock->raise();
    }
    if (pThere && pThere->isVisible() && pThere->isEnabled()) {
        pThere->setFocus(Qt::ShortcutFocusReason);
        return;
    }
    focusFirst(bInPanel ? m_pPages->currentWidget() : m_pPaletteDock->widget());
}

void MainWindow::focusWork()
{
    QMdiSubWindow* pFrame = m_pArea->currentSubWindow();
    focusFirst(pFrame != nullptr ? pFrame->widget() : m_pPages->currentWidget());
}

// What the tool shows it gives as a picture itself; everything else is taken as it is seen.
void MainWindow::printPicture(bool bPreview)
{
    m_bPictureTaken = false;
    if (m_pPlugin->isValid() && m_pDocuments->currentSequenceWindow() != nullptr) {
        m_pPlugin->askForPicture(bPreview);
    }
    if (!m_bPictureTaken) {
        showOnPaper(seenPicture(), bPreview);
    }
}

void MainWindow::showOnPaper(const QPixmap& picture, bool bPreview)
{
    m_bPictureTaken = true;
    if (bPreview) {
        printing::preview(this, picture);
    } else {
        printing::print(this, picture);
    }
}

// An image without the controls beside it, in all its pixels.
QPixmap MainWindow::seenPicture() const
{
    if (const CORVSequenceWindow* pWindow = m_pDocuments->currentSequenceWindow()) {
        QWidget* pTab = pWindow->tabWidget()->currentWidget();
        return pTab != nullptr ? pTab->grab() : QPixmap();
    }
    CORVImageWindow* pImage = CORVImageWindow::getImageWindow(m_pDocuments->currentDataset());
    if (auto* pWindow = qobject_cast<DatasetWindow*>(pImage)) {
        return QPixmap::fromImage(pWindow->view()->pictureToKeep());
    }
    return QPixmap();
}

void MainWindow::copyPicture()
{
    bool bCopied = false;
    const auto noted =
        connect(QApplication::clipboard(), &QClipboard::dataChanged, this, [&bCopied] { bCopied = true; });
    if (const CORVSequenceWindow* pWindow = m_pDocuments->currentSequenceWindow()) {
        m_pPlugin->askToCopy(pWindow->getCurrentTabName());
    }
    disconnect(noted);
    if (!bCopied) {
        const QPixmap picture = seenPicture();
        if (!picture.isNull()) {
            QApplication::clipboard()->setPixmap(picture);
        }
    }
}

// As the user would in the tab of the images.
void MainWindow::setUnit(const QString& strSequenceId, EDISPLAYUNIT eUnit)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(strSequenceId);
    const CORVSequenceWindow* pWindow = CORVSequenceWindow::getSequenceWindow(pSequence);
    auto* pBox = pWindow != nullptr ? pWindow->findChild<QComboBox*>(QStringLiteral("m_pSequenceUnitBox")) : nullptr;
    const int nPlace = pBox != nullptr ? pBox->findData(static_cast<int>(eUnit)) : -1;
    if (nPlace >= 0 && nPlace != pBox->currentIndex()) {
        pBox->setCurrentIndex(nPlace);
        Q_EMIT pBox->activated(nPlace);
    }
}

void MainWindow::showPreferences()
{
    PreferencesDialog(this).exec();
}

void MainWindow::showGuide()
{
    QDialog dialog(this);
    dialog.setObjectName(QStringLiteral("guideDialog"));
    dialog.setWindowTitle(tr("How to begin"));
    auto* pText = new QTextBrowser(&dialog);
    pText->setHtml(helpTexts::guide());
    pText->setAccessibleName(dialog.windowTitle());
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Close, &dialog);
    connect(pButtons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* pLayout = new QVBoxLayout(&dialog);
    pLayout->addWidget(pText);
    pLayout->addWidget(pButtons);
    dialog.resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 34);
    dialog.exec();
}

void MainWindow::showAbout()
{
    QString tools = tr("not loaded");
    if (m_pPlugin->isLoaded()) {
        tools = m_pPlugin->file().isEmpty() ? m_pPlugin->name()
                                            : tr("%1, from %2").arg(m_pPlugin->name(), m_pPlugin->file());
    }
    QMessageBox box(QMessageBox::NoIcon, tr("About"), helpTexts::about(CORVPreference::getAppVersion(), tools),
                    QMessageBox::Close, this);
    box.setObjectName(QStringLiteral("aboutBox"));
    box.setTextFormat(Qt::RichText);
    box.exec();
}
