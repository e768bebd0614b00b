// SPDX-License-Identifier: GPL-3.0-or-later
// What the saving and loading of results asks of the palette and of the windows around it.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/sequenceWindows.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVChildWindow.h"
#include "host/CORVSequenceWindow.h"
#include "storage/SavedResultsOwner.h"

class CORVSpumKyvoPalette::ResultsOwner : public SavedResultsOwner
{
public:
    explicit ResultsOwner(CORVSpumKyvoPalette& palette) : m_palette(palette) {}

    QWidget* messageParent() override { return &m_palette; }

    QWidget* activeChildWindow() override { return CORVChildWindow::getActiveChildWnd(); }

    int giveSequenceHome(CORVSequenceDataset* pSequence) override
    {
        CORVSequenceWindow* pWindow = CORVSequenceWindow::getSequenceWindow(pSequence);
        return pWindow != nullptr ? pWindow->giveSequenceHome() : 0;
    }

    void showMinimisedWindow(CORVSequenceDataset* pSequence) override
    {
        sequenceWindows::showMinimisedFrame(CORVSequenceWindow::getSequenceWindow(pSequence));
    }

    void activateSequenceWindow(CORVSequenceDataset* pSequence) override
    {
        sequenceWindows::showFrame(CORVSequenceWindow::getSequenceWindow(pSequence));
    }

    void setEnabled(bool bEnabled) override { m_palette.setEnabled(bEnabled); }

    void takeSelection() override
    {
        if (m_palette.m_pEngine != nullptr) {
            m_palette.m_selection = m_palette.m_pEngine->m_selectedKeyPairs;
            m_palette.m_eAxis = m_palette.m_pEngine->m_eAxis;
        }
    }

    void updateUI() override { m_palette.updateUI(); }

    bool showsResult() const override { return m_palette.m_pSPUnResultsLV->topLevelItemCount() > 0; }

    void fillResultsTree() override { m_palette.fillResultsTree(); }

    void clearResultsTree() override { m_palette.clearResultsTree(); }

    void showResultsTab() override { m_palette.tabWidget1->setCurrentIndex(1); }

private:
    CORVSpumKyvoPalette& m_palette;
};

std::unique_ptr<SavedResultsOwner> CORVSpumKyvoPalette::makeResultsOwner()
{
    return std::make_unique<ResultsOwner>(*this);
}
