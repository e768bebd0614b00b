// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QTimer>

class BatchRun;
class QLabel;
class QPushButton;
class QTableWidget;

// Shows what a batch has done, a row a sequence, and aborts it. It cannot be closed while the batch runs; what it shows
// stays until then.
class BatchWindow : public QDialog
{
    Q_OBJECT

public:
    // The run is borrowed.
    BatchWindow(BatchRun& run, QWidget* pParent);

public Q_SLOTS:
    void reject() override;

private:
    void makeTable();
    void makeButtons();
    void showRows(int nRow);
    void showRow(int nRow);
    void showTime();
    void showFoot();
    void copy();

    BatchRun& m_run;
    QTableWidget* m_pTable;
    QLabel* m_pTotals;
    QPushButton* m_pAbortSequence;
    QPushButton* m_pAbortAll;
    QPushButton* m_pCopy;
    QPushButton* m_pClose;
    QTimer m_tick;
};
