// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVTreeMenuComboBox.h"

#include "host/CORVDatabase.h"
#include "platform/orvwidgets/probeFamilies.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>

namespace {

// A "&" in a name would underline the letter behind it.
QString menuText(QString strName)
{
    return strName.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

CORVTreeMenuComboBox::CORVTreeMenuComboBox(PROBETREEDISPLAYTYPE eType, QWidget* pParent)
    : QComboBox(pParent), m_eType(eType)
{
}

bool CORVTreeMenuComboBox::hasTree(PROBETREEDISPLAYTYPE eType)
{
    switch (eType) {
    case PROBETREE_SOURCES:
        return !CORVDatabase::getSourceList().isEmpty();
    case PROBETREE_RADIOACTIVE:
        return !CORVDatabase::getRADSourceList().isEmpty();
    case PROBETREE_LIBRARY:
        return !CORVDatabase::getLIBSourceList().isEmpty();
    }
    return false;
}

void CORVTreeMenuComboBox::showPopup()
{
    if (m_bPlain || count() == 0) {
        QComboBox::showPopup();
        return;
    }
    if (m_pMenu != nullptr) {
        return;
    }
    m_pMenu = new QMenu(this);
    m_pMenu->setObjectName(QStringLiteral("probeMenu"));
    m_pMenu->setAttribute(Qt::WA_DeleteOnClose);
    buildMenu(m_pMenu);
    m_pMenu->popup(mapToGlobal(QPoint(0, height())));
}

void CORVTreeMenuComboBox::hidePopup()
{
    if (m_pMenu != nullptr) {
        m_pMenu->close();
    }
    QComboBox::hidePopup();
}

void CORVTreeMenuComboBox::buildMenu(QMenu* pMenu)
{
    QStringList names;
    for (int i = 0; i < count(); ++i) {
        names.append(itemText(i));
    }
    pMenu->installEventFilter(this);
    for (const orv::ProbeFamily& family : orv::probeFamilies(names)) {
        if (family.m_entries.size() == 1) {
            addEntry(pMenu, family.m_entries.first());
            continue;
        }
        QMenu* pFamily = pMenu->addMenu(menuText(family.m_strName));
        pFamily->installEventFilter(this);
        if (family.m_entries.contains(currentIndex())) {
            QFont bold = pFamily->menuAction()->font();
            bold.setBold(true);
            pFamily->menuAction()->setFont(bold);
        }
        for (const int nIndex : family.m_entries) {
            addEntry(pFamily, nIndex);
        }
    }
}

void CORVTreeMenuComboBox::addEntry(QMenu* pMenu, int nIndex)
{
    QAction* pAction = pMenu->addAction(itemIcon(nIndex), menuText(itemText(nIndex)));
    pAction->setCheckable(true);
    pAction->setChecked(nIndex == currentIndex());
    connect(pAction, &QAction::triggered, this, [this, nIndex] { choose(nIndex); });
}

// As the plain list does it: `activated` goes out for the present entry as well.
void CORVTreeMenuComboBox::choose(int nIndex)
{
    const QPointer<CORVTreeMenuComboBox> guard(this);
    setCurrentIndex(nIndex);
    if (guard) {
        Q_EMIT activated(nIndex);
    }
    if (guard) {
        Q_EMIT textActivated(itemText(nIndex));
    }
}

void CORVTreeMenuComboBox::showPlainPopup()
{
    hidePopup();
    setFocus(Qt::PopupFocusReason);
    QComboBox::showPopup();
}

bool CORVTreeMenuComboBox::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    if (pEvent->type() == QEvent::KeyPress && qobject_cast<QMenu*>(pWatched) != nullptr) {
        const auto* pKey = static_cast<QKeyEvent*>(pEvent);
        const QString typed = pKey->text();
        if (!typed.isEmpty() && typed.at(0).isPrint() && !typed.at(0).isSpace()) {
            showPlainPopup();
            QKeyEvent again(QEvent::KeyPress, pKey->key(), pKey->modifiers(), typed);
            QApplication::sendEvent(view(), &again);
            return true;
        }
    }
    return QComboBox::eventFilter(pWatched, pEvent);
}

void CORVTreeMenuComboBox::keyPressEvent(QKeyEvent* pEvent)
{
    m_bPlain = true;
    QComboBox::keyPressEvent(pEvent);
    m_bPlain = false;
}
