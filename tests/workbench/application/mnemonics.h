// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QWidget>

#include <gtest/gtest.h>

namespace mnemonics {

// Each letter with Alt serves one control of the window, and none that the caller's menu bar has.
inline void expectUnique(const QWidget& window, QString taken = QString())
{
    const auto take = [&](const QString& text) {
        const QString key = QKeySequence::mnemonic(text).toString();
        if (!key.isEmpty()) {
            EXPECT_FALSE(taken.contains(key.right(1))) << qPrintable(text);
            taken += key.right(1);
        }
    };
    for (const QLabel* pLabel : window.findChildren<QLabel*>()) {
        if (pLabel->buddy() != nullptr) {
            take(pLabel->text());
        }
    }
    for (const QAbstractButton* pButton : window.findChildren<QAbstractButton*>()) {
        take(pButton->text());
    }
    for (const QGroupBox* pGroup : window.findChildren<QGroupBox*>()) {
        take(pGroup->title());
    }
}

// Of the main window: File, Edit, View, Window, Help.
const char* const kMenus = "FEVWH";

} // namespace mnemonics
