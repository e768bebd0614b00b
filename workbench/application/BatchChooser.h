// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/application/batchCandidate.h"

#include <QDialog>
#include <QList>
#include <QTimer>

class QCheckBox;
class QLabel;
class QPushButton;
class QTableWidget;

// Lets the user choose the sequences of a batch, and shows of each whether it can be analysed, or why not.
class BatchChooser : public QDialog
{
    Q_OBJECT

public:
    // `strStart` is where the choice of folders begins, `bands` are those of the spectra that were chosen.
    BatchChooser(const QString& strStart, const BatchBands& bands, QWidget* pParent);

    // A folder that holds sequences stands for all of them; one that is listed already is not listed again.
    void add(const QStringList& folders);
    // All that are listed: those that cannot be analysed are told and passed over.
    QStringList folders() const;
    bool adaptiveBackground() const;

protected:
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;

private:
    void makeTable();
    void makeButtons();
    void choose();
    void remove();
    void lookAtNext();
    void showSummary();

    QString m_strStart;
    const BatchBands m_bands;
    QList<BatchCandidate> m_candidates; // as the rows of the table
    int m_nLookedAt = 0;
    QTimer m_look;
    QTableWidget* m_pTable;
    QLabel* m_pSummary;
    QCheckBox* m_pAdaptive;
    QPushButton* m_pAdd;
    QPushButton* m_pRemove;
    QPushButton* m_pStart;
};
