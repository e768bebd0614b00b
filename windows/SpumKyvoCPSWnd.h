// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "windows/ui_SpumKyvoCPSWnd.h"

#include "spectra/SpectrumPlotParams.h"
#include "windows/pureSpectrum.h"

#include <QDialog>
#include <QList>

class CORVGLXYPlot1;
class QAbstractButton;

// Computes a pure spectrum C: a mixed spectrum A (that of a label over autofluorescence, say) without amounts of known
// spectra B (autofluorescence). The result goes to a row of the list that the spectra came from, or to a new one.
//
// One dialog serves one list: setSpectra(), then it is executed, and at updateSpectrum(row of A, from 0) its owner
// takes getResult() and gives it the new list by setSpectra(). The host's window can't be closed while it is shown.
class SpumKyvoCPSWnd : public QDialog, public Ui::SpumKyvoCPSWnd
{
    Q_OBJECT

public:
    explicit SpumKyvoCPSWnd(QWidget* pParent = nullptr);
    ~SpumKyvoCPSWnd() override;

    // Starts over with copies of these spectra, row by row: the first with data is the known one, the second the mixed
    // one. False, with nothing changed, with fewer than two spectra.
    bool setSpectra(QList<SpectrumPlotParams*>& spectra);
    // The result as it is to be stored: `index` is its row, from 1 (one more than there are rows for a new one).
    SpectrumPlotParams& getResult();
    // Selects the first colour, from nStart on, that no spectrum of the list has, and the place of that number if there
    // is one.
    void setColorIndex(const QList<SpectrumPlotParams*>& spectra, int nStart);

    CORVGLXYPlot1* m_pPlotA = nullptr; // owned, as the others
    CORVGLXYPlot1* m_pPlotB = nullptr;
    CORVGLXYPlot1* m_pPlotC = nullptr;
    QList<SpectrumPlotParams*> m_spectra; // owned
    SpectrumPlotParams m_result;

Q_SIGNALS:
    void updateSpectrum(int nRow);

protected Q_SLOTS:
    // Computes everything anew and draws the three plots.
    void updateSpectrumPlot();
    void onSaveIndexChanged(int nIndex);
    void onClickApply(QAbstractButton* pButton);

protected:
    void changeEvent(QEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;

private:
    void init();
    void connectControls();
    void allowClosing();
    void keepEquationLegible();
    void fillLists();
    int mixedRow() const;
    QList<int> knownRows() const;
    void setApplyEnabled(bool bEnabled);
    void drawMixed(int nRow, const PureSpectrumTask& task);
    void drawKnown(const QList<int>& rows, const PureSpectrumTask& task);
    void drawResult();

    PureSpectrum m_computed;
    bool m_bClosingForbidden = false; // by this dialog
};
