// SPDX-License-Identifier: GPL-3.0-or-later
// What the saving and loading of results asks of the palette and of the windows around it.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/sequenceWindows.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVChildWindow.h"
#include "host/CORVSequenceWindow.h"
#include "storage/SavedResultsOwner.h"

// The palette, and the windows around it, for the saving and loading of results.
class CORVSpumKyvoPalette::ResultsOwner : public SavedResultsOwner
{
public:
    explicit ResultsOwner(CORVSpumKyvoPalette& palette) : m_palette(palette) {}

    QWidget* messageParent() override;
    QWidget* activeChildWindow() override;
    int giveSequenceHome(CORVSequenceDataset* pSequence) override;
    void showMinimisedWindow(CORVSequenceDataset* pSequence) override;
    void activateSequenceWindow(CORVSequenceDataset* pSequence) override;
    void setEnabled(bool bEnabled) override;
    void takeSelection() override;
    void updateUI() override;
    bool showsResult() const override;
    void fillResultsTree() override;
    void clearResultsTree() override;
    void showResultsTab() override;

private:
    CORVSpumKyvoPalette& m_palette;
};

std::unique_ptr<SavedResultsOwner> CORVSpumKyvoPalette::makeResultsOwner()
{
    return std::make_unique<ResultsOwner>(*this);
}

QWidget* CORVSpumKyvoPalette::ResultsOwner::messageParent()
{
    return &m_palette;
}

QWidget* CORVSpumKyvoPalette::ResultsOwner::activeChildWindow()
{
    return CORVChildWindow::getActiveChildWnd();
}

int CORVSpumKyvoPalette::ResultsOwner::giveSequenceHome(CORVSequenceDataset* pSequence)
{
    CORVSequenceWindow* pWindow = CORVSequenceWindow::getSequenceWindow(pSequence);
    return pWindow != nullptr ? pWindow->giveSequenceHome() : 0;
}

void CORVSpumKyvoPalette::ResultsOwner::showMinimisedWindow(CORVSequenceDataset* pSequence)
{
    sequenceWindows::showMinimisedFrame(CORVSequenceWindow::getSequenceWindow(pSequence));
}

void CORVSpumKyvoPalette::ResultsOwner::activateSequenceWindow(CORVSequenceDataset* pSequence)
{
    sequenceWindows::showFrame(CORVSequenceWindow::getSequenceWindow(pSequence));
}

void CORVSpumKyvoPalette::ResultsOwner::setEnabled(bool bEnabled)
{
    m_palette.setEnabled(bEnabled);
}

void CORVSpumKyvoPalette::ResultsOwner::takeSelection()
{
    if (m_palette.m_pEngine != nullptr) {
        m_palette.m_selection = m_palette.m_pEngine->m_selectedKeyPairs;
        m_palette.m_eAxis = m_palette.m_pEngine->m_eAxis;
    }
}

void CORVSpumKyvoPalette::ResultsOwner::updateUI()
{
    m_palette.updateUI();
}

bool CORVSpumKyvoPalette::ResultsOwner::showsResult() const
{
    return m_palette.m_pSPUnResultsLV->topLevelItemCount() > 0;
}

void CORVSpumKyvoPalette::ResultsOwner::fillResultsTree()
{
    m_palette.fillResultsTree();
}

void CORVSpumKyvoPalette::ResultsOwner::clearResultsTree()
{
    m_palette.clearResultsTree();
}

void CORVSpumKyvoPalette::ResultsOwner::showResultsTab()
{
    m_palette.tabWidget1->setCurrentIndex(1);
}
