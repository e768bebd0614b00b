// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ui_CORVSpumBrowseDlg.h"

#include <QDialog>

// A list of folders to pick the datasets of a batch from, for a host that has no dialog of its own for it: those that
// lie in the folder that the setting "Batch/SpumDatasetPath" names when the dialog is made. A folder that is missing
// gives an empty list, and none is ever made.
//
// What the buttons do is the matter of whoever shows the dialog; by itself it closes through its window frame.
class CORVSpumBrowseDlg : public QDialog, public Ui::CORVSpumBrowseDlg
{
    Q_OBJECT

public:
    explicit CORVSpumBrowseDlg(QWidget* pParent = nullptr);

Q_SIGNALS:
    void browseUnmix();

public Q_SLOTS:
    // What is picked is asked for when it is needed.
    void onSelectListItem(QListWidgetItem* pItem);
    // Where no entry is the current one, the last becomes it.
    void onListViewSelectionChanged();

private:
    void fillList();
};
