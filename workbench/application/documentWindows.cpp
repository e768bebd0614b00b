// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/documentWindows.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/DatasetWindow.h"
#include "workbench/application/SequenceTab.h"

#include <QIcon>

namespace {

class SequenceWindow : public CORVSequenceWindow
{
public:
    explicit SequenceWindow(CORVSequenceDataset* pSequence)
        : CORVSequenceWindow(pSequence), m_pTab(new SequenceTab(pSequence, this))
    {
        addTabWidget(m_pTab, nullptr, nullptr, QIcon(), QStringLiteral("Sequence View"), -1, true);
    }
    void refreshView() override { m_pTab->refresh(); }
    SequenceTab* tab() const { return m_pTab; }

private:
    SequenceTab* m_pTab;
};

} // namespace

namespace documentWindows {

CORVSequenceWindow* makeSequenceWindow(CORVSequenceDataset* pSequence, const Listener& listener)
{
    auto* pWindow = new SequenceWindow(pSequence);
    SequenceTab* pTab = pWindow->tab();
    QObject::connect(pTab, &SequenceTab::imageActivated, pWindow, [listener, pTab](CORVDataset* pDataset, int nImage) {
        const tag_edisplayunit unit = pTab->unit();
        listener.showDataset(pDataset);
        if (auto* pShown = qobject_cast<DatasetWindow*>(CORVImageWindow::getImageWindow(pDataset))) {
            pShown->showImage(nImage, unit);
        }
    });
    QObject::connect(pTab, &SequenceTab::readOut, pWindow, listener.readOut);
    return pWindow;
}

CORVImageWindow* makeDatasetWindow(CORVDataset* pDataset, const Listener& listener)
{
    auto* pWindow = new DatasetWindow(pDataset);
    QObject::connect(pWindow, &DatasetWindow::readOut, pWindow, listener.readOut);
    return pWindow;
}

} // namespace documentWindows
