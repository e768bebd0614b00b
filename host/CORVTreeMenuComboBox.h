// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QPointer>

class QMenu;

// The sources of the host's database that a CORVTreeMenuComboBox shows.
enum PROBETREEDISPLAYTYPE
{
    PROBETREE_SOURCES = 1,
    PROBETREE_RADIOACTIVE = 2,
    PROBETREE_LIBRARY = 3 // fluorescent
};

// A combo box for many probes. A click opens a menu with a sub-menu for each family of probes that has more than one;
// letters typed over the menu, and the keys that open a combo box, bring the plain list instead, which finds entries by
// their first letters.
class CORVTreeMenuComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit CORVTreeMenuComboBox(PROBETREEDISPLAYTYPE eType, QWidget* pParent = nullptr);

    // Whether the database has sources of that type.
    static bool hasTree(PROBETREEDISPLAYTYPE eType);
    PROBETREEDISPLAYTYPE displayType() const { return m_eType; }

    void showPopup() override;
    void hidePopup() override;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    void buildMenu(QMenu* pMenu);
    void addEntry(QMenu* pMenu, int nIndex);
    void choose(int nIndex);
    void showPlainPopup();

    PROBETREEDISPLAYTYPE m_eType;
    QPointer<QMenu> m_pMenu;
    bool m_bPlain = false; // the popup was asked for by a key
};
