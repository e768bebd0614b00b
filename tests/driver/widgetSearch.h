// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

// Widgets by a path of steps with "/" between them, each step somewhere below what the step before found:
//
//     name          the object name
//     .Class        of this class or one derived from it
//     name[text]    which shows this text (a button's, a label's, a window's title), without "&"
//     step@2        of several that fit, the one with this number, from 0
//
// So "m_pWaveLengthTable/.QCheckBox@3". The windows are searched in the order: popup, modal, active, others.
// Only what can be seen is found, unless `bHidden`.
QList<QWidget*> findWidgets(const QString& strPath, bool bHidden);

// Every window, as a search goes through them.
QList<QWidget*> searchedWindows(bool bHidden);
