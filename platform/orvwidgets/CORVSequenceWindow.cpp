// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVSequenceWindow.h"

#include "host/CORVSequenceDataset.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QList<CORVSequenceWindow*>& openWindows()
{
    static QList<CORVSequenceWindow*> windows;
    return windows;
}

// A "&" in a title would underline the letter behind it.
QString shownTitle(QString strTitle)
{
    return strTitle.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

CORVSequenceWindow::CORVSequenceWindow(CORVSequenceDataset* pSequence, QWidget* pParent)
    : CORVChildWindow(pParent), m_pSequence(pSequence), m_pTabs(new QTabWidget(this)), m_pStrip(new QHBoxLayout)
{
    setWindowTitle(pSequence != nullptr ? pSequence->getSequenceName() : QString());
    m_pTabs->setObjectName(QStringLiteral("sequenceTabs"));
    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(0);
    pLayout->addLayout(m_pStrip);
    pLayout->addWidget(m_pTabs, 1);
    m_pStrip->setSpacing(0);
    connect(m_pTabs, &QTabWidget::currentChanged, this, &CORVSequenceWindow::onCurrentChanged);
    openWindows().prepend(this);
}

CORVSequenceWindow::~CORVSequenceWindow()
{
    openWindows().removeOne(this);
    CORVSequenceWindow::releaseForeignWidgets();
    // What is left dies when there is no window of this kind any more that could hear of it.
    m_pTabs->disconnect(this);
    for (const Tab& tab : qAsConst(m_tabs)) {
        if (tab.m_pWidget) {
            tab.m_pWidget->disconnect(this);
        }
    }
}

CORVSequenceWindow* CORVSequenceWindow::getSequenceWindow(const CORVSequenceDataset* pSequence)
{
    for (CORVSequenceWindow* pWindow : openWindows()) {
        if (pSequence != nullptr && pWindow->m_pSequence == pSequence) {
            return pWindow;
        }
    }
    return nullptr;
}

CORVSequenceDataset* CORVSequenceWindow::activeSequence()
{
    const auto* pWindow = qobject_cast<CORVSequenceWindow*>(getActiveChildWnd());
    return pWindow != nullptr ? pWindow->m_pSequence : nullptr;
}

const CORVSequenceWindow::Tab* CORVSequenceWindow::tabOf(const QWidget* pWidget) const
{
    const auto found = std::find_if(m_tabs.begin(), m_tabs.end(),
                                    [pWidget](const Tab& tab) { return pWidget != nullptr && tab.m_pKey == pWidget; });
    return found != m_tabs.end() ? &*found : nullptr;
}

int CORVSequenceWindow::tabIndex(const QString& strTitle) const
{
    for (int i = 0; i < m_pTabs->count(); ++i) {
        const Tab* pTab = tabOf(m_pTabs->widget(i));
        if (pTab != nullptr && pTab->m_strTitle.compare(strTitle, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

bool CORVSequenceWindow::isTabPresent(const QString& strTitle) const
{
    return tabIndex(strTitle) >= 0;
}

void CORVSequenceWindow::setActiveTab(const QString& strTitle)
{
    const int nIndex = tabIndex(strTitle);
    if (nIndex < 0) {
        return;
    }
    QPointer<QWidget> pWidget = m_pTabs->widget(nIndex);
    m_pTabs->setCurrentIndex(nIndex);
    // A dialog that said done() is hidden, and being current already it would stay so.
    if (pWidget) {
        pWidget->show();
    }
}

void CORVSequenceWindow::addTabWidget(QWidget* pWidget, QWidget* pToolBar, QWidget* pBeside, const QIcon& icon,
                                      const QString& strTitle, int nIndex, bool bActivate)
{
    if (isTabPresent(strTitle)) {
        setActiveTab(strTitle);
        return;
    }
    if (pWidget == nullptr) {
        return;
    }
    Tab tab;
    tab.m_pWidget = pWidget;
    tab.m_pKey = pWidget;
    tab.m_strTitle = strTitle;
    tab.m_pToolBar = pToolBar;
    tab.m_pToolBarParent = pToolBar != nullptr ? pToolBar->parentWidget() : nullptr;
    tab.m_pBeside = pBeside;
    tab.m_pBesideParent = pBeside != nullptr ? pBeside->parentWidget() : nullptr;
    tab.m_bOwn = pWidget->parentWidget() == this && !pWidget->isWindow();
    tab.m_bPartsInside = (pToolBar != nullptr && pWidget->isAncestorOf(pToolBar)) ||
                         (pBeside != nullptr && pWidget->isAncestorOf(pBeside));
    m_tabs.append(tab);
    connect(pWidget, &QObject::destroyed, this, [this, pWidget] { dropTab(pWidget); });
    for (QWidget* pPart : {pBeside, pToolBar}) {
        if (pPart != nullptr) {
            m_pStrip->addWidget(pPart);
            pPart->hide();
        }
    }
    const int nPlace = nIndex < 0 || nIndex > m_pTabs->count() ? m_pTabs->count() : nIndex;
    const QPointer<CORVSequenceWindow> guard(this);
    m_pTabs->insertTab(nPlace, pWidget, icon, shownTitle(strTitle));
    if (guard && bActivate) {
        setActiveTab(strTitle);
    }
}

void CORVSequenceWindow::removeTabWidget(const QString& strTitle)
{
    const int nIndex = tabIndex(strTitle);
    if (nIndex < 0) {
        return;
    }
    const Tab tab = *tabOf(m_pTabs->widget(nIndex));
    const QPointer<CORVSequenceWindow> guard(this);
    m_pTabs->removeTab(nIndex);
    if (guard) {
        takeOut(tab);
    }
}

// Of a tab that is gone from the tab widget, where its widget would stay as a hidden child of the stack.
void CORVSequenceWindow::takeOut(const Tab& tab)
{
    const auto handBack = [](QWidget* pPart, QWidget* pParent) {
        if (pPart != nullptr) {
            pPart->hide();
            pPart->setParent(pParent);
        }
    };
    QWidget* pWidget = tab.m_pWidget;
    // A toolbar whose parent died meanwhile goes with the widget that it serves.
    handBack(tab.m_pToolBar, tab.m_pToolBarParent != nullptr ? tab.m_pToolBarParent.data() : pWidget);
    handBack(tab.m_pBeside, tab.m_pBesideParent != nullptr ? tab.m_pBesideParent.data() : pWidget);
    const auto isThis = [&tab](const Tab& other) { return other.m_pKey == tab.m_pKey; };
    m_tabs.erase(std::remove_if(m_tabs.begin(), m_tabs.end(), isThis), m_tabs.end());
    if (pWidget == nullptr) {
        return;
    }
    pWidget->disconnect(this);
    if (tab.m_bOwn) {
        pWidget->hide();
        pWidget->setParent(this);
    } else {
        giveToMainWindow(pWidget);
    }
}

// Of a widget that is being deleted. Parts that came from inside it would have gone with it.
void CORVSequenceWindow::dropTab(const QWidget* pWidget)
{
    const Tab* pTab = tabOf(pWidget);
    if (pTab == nullptr) {
        return;
    }
    const Tab tab = *pTab;
    m_tabs.removeAt(static_cast<int>(pTab - m_tabs.constData()));
    for (QWidget* pPart : {tab.m_pToolBar.data(), tab.m_pBeside.data()}) {
        if (pPart != nullptr && tab.m_bPartsInside) {
            pPart->deleteLater();
        } else if (pPart != nullptr) {
            pPart->hide();
            pPart->setParent(nullptr);
        }
    }
}

QString CORVSequenceWindow::getCurrentTabName() const
{
    const Tab* pTab = tabOf(m_pTabs->currentWidget());
    return pTab != nullptr ? pTab->m_strTitle : QString();
}

void CORVSequenceWindow::showStripOfCurrentTab()
{
    const QWidget* pCurrent = m_pTabs->currentWidget();
    for (const Tab& tab : qAsConst(m_tabs)) {
        const bool bCurrent = pCurrent != nullptr && tab.m_pWidget == pCurrent;
        for (QWidget* pPart : {tab.m_pBeside.data(), tab.m_pToolBar.data()}) {
            if (pPart != nullptr) {
                pPart->setVisible(bCurrent);
            }
        }
    }
}

void CORVSequenceWindow::onCurrentChanged(int)
{
    showStripOfCurrentTab();
    const QString name = getCurrentTabName();
    // A tab that is inserted before the current one changes its place only.
    if (name != m_strReported) {
        m_strReported = name;
        Q_EMIT updatePluginPalette(name);
    }
}

int CORVSequenceWindow::giveSequenceHome()
{
    return m_pSequence != nullptr && !m_pSequence->getSequenceInfoPath().isEmpty() ? 0 : 1;
}

void CORVSequenceWindow::setAdaptiveBackground(bool bAdaptive)
{
    m_bAdaptiveBackground = bAdaptive;
    refreshView();
}

void CORVSequenceWindow::refreshView()
{
    update();
}

void CORVSequenceWindow::releaseForeignWidgets()
{
    CORVChildWindow::releaseForeignWidgets();
    // Nobody is to hear of tabs that go with their window.
    const QSignalBlocker blocker(m_pTabs);
    const QVector<Tab> tabs = m_tabs;
    for (const Tab& tab : tabs) {
        if (tab.m_pWidget && !tab.m_bOwn) {
            removeTabWidget(tab.m_strTitle);
        }
    }
}
