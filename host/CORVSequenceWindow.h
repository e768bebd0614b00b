// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVChildWindow.h"

#include <QIcon>
#include <QPointer>
#include <QString>
#include <QVector>

class CORVSequenceDataset;
class QHBoxLayout;
class QTabWidget;

// The window of a sequence: tabs, and above them a strip in which the toolbar of the current tab is shown. Tools add
// tabs of theirs, whose widgets and toolbars stay their own: a tab that is removed, be it because the window closes,
// hands its widget out, hidden and with the main window as parent, and the toolbar back to the parent that it had. Only
// a widget that was a part of this window before, and no window by itself, stays with it.
//
// Tabs are found by their title without regard to case; titles are kept as they were given.
class CORVSequenceWindow : public CORVChildWindow
{
    Q_OBJECT

public:
    // The sequence is borrowed; whoever deletes it deletes the window first.
    explicit CORVSequenceWindow(CORVSequenceDataset* pSequence, QWidget* pParent = nullptr);
    ~CORVSequenceWindow() override;

    // The window of the sequence, or null; of several the newest.
    static CORVSequenceWindow* getSequenceWindow(const CORVSequenceDataset* pSequence);
    // The sequence of the active child window; null when that is no sequence's.
    static CORVSequenceDataset* activeSequence();
    CORVSequenceDataset* sequence() const { return m_pSequence; }

    bool isTabPresent(const QString& strTitle) const;
    // Nothing for a title that no tab has.
    void setActiveTab(const QString& strTitle);
    // Adds the widget as a tab before the one at `nIndex`, or at the end for -1 and places that there are not. The
    // toolbar and the third widget, which belongs to the left of the toolbar, may be null. A title that a tab has
    // already activates that tab, and nothing is added.
    void addTabWidget(QWidget* pWidget, QWidget* pToolBar, QWidget* pBeside, const QIcon& icon, const QString& strTitle,
                      int nIndex, bool bActivate);
    // Nothing for a title that no tab has.
    void removeTabWidget(const QString& strTitle);
    // Empty without tabs.
    QString getCurrentTabName() const;
    QTabWidget* tabWidget() const { return m_pTabs; }

    // Gives a sequence without a folder one; 0 when it has one afterwards.
    virtual int giveSequenceHome();
    // Whether images are shown with a background that adapts to their content.
    virtual void setAdaptiveBackground(bool bAdaptive);
    bool adaptiveBackground() const { return m_bAdaptiveBackground; }
    // Shows the images of the sequence anew.
    virtual void refreshView();

Q_SIGNALS:
    // Another tab is current: its title, empty when the last one went.
    void updatePluginPalette(QString strTabName);

protected:
    void releaseForeignWidgets() override;

private:
    // What belongs to one tab. The widget may die by itself; the tab goes with it.
    struct Tab
    {
        QPointer<QWidget> m_pWidget;
        const QWidget* m_pKey = nullptr; // the widget, also while it is being deleted
        QString m_strTitle;
        QPointer<QWidget> m_pToolBar;
        QPointer<QWidget> m_pToolBarParent;
        QPointer<QWidget> m_pBeside;
        QPointer<QWidget> m_pBesideParent;
        bool m_bOwn = false;         // the widget is this window's
        bool m_bPartsInside = false; // toolbar and third widget came from inside the widget
    };

    int tabIndex(const QString& strTitle) const;
    const Tab* tabOf(const QWidget* pWidget) const;
    void takeOut(const Tab& tab);
    void dropTab(const QWidget* pWidget);
    void onCurrentChanged(int nIndex);
    void showStripOfCurrentTab();

    CORVSequenceDataset* m_pSequence;
    QTabWidget* m_pTabs;
    QHBoxLayout* m_pStrip;
    QVector<Tab> m_tabs;   // without order
    QString m_strReported; // the title that was told last
    bool m_bAdaptiveBackground = false;
};
