// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "windows/ui_SpUnmixWizardWnd.h"

#include <QFrame>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWizard>

class CILImage;
class CORVOverlayImage;
class CORVSimpleImageView;
class QComboBox;

// The set-up of an analysis: which pixels count, and which components are to be resolved. Of one page; it starts
// nothing by itself: finished(int) tells that it is done, 0 when the user backed out, and runPCA() that a PCA is
// wanted.
//
// One wizard serves one sequence. Before it is shown, m_nImageCount is written and setAnalysisType(),
// setImagingSubject(), setProbeNames() and setPhotoImage() are called, in this order.
class SpUnmixWizardWnd : public QWizard, public Ui::SpUnmixWizardWnd
{
    Q_OBJECT

public:
    explicit SpUnmixWizardWnd(QWidget* pParent = nullptr);
    ~SpUnmixWizardWnd() override;

    // Once, at creation. Offers the correction for decay when the sequence shows an isotope's Cherenkov light.
    void setSequenceID(const QString& strSequenceID);
    // See probeOffer.h; a type that there is not is stored and changes nothing else. The rows of the table stay, and
    // keep the names that they offered.
    void setAnalysisType(int nType);
    // Selects the subject that is spelled so, but for the first of the list, which a new wizard shows.
    void setImagingSubject(const QString& strSubject);
    // The probes that the next photograph's table starts with.
    void setProbeNames(const QStringList& names);
    // Starts the page over for another photograph, with an automatic threshold; with the one that is held already (the
    // same object of the same size), mask and rows stay. Borrowed until the next call; null is no photograph. Its
    // statistics are refreshed, and it is shown in colour from now on.
    void setPhotoImage(CILImage* pImage);

    // Bytes, 0 outside and above 0 inside, of the photograph's size and binning; owned by the wizard. Null when there
    // is none.
    CILImage* getMaskImage();
    // One for each component: the background signals that are on, then the texts of the table's rows.
    QStringList getComponentNames() const;
    QString getImagingSubject() const;
    bool isUseConstraints() const;

    // Always true: the page may be left at any time. Brings the page and the Finish button up to date.
    bool validateCurrentPage() override;
    void setVisible(bool bVisible) override;

    CORVOverlayImage* m_pOverlayImage = nullptr; // the photograph under the mask; owned
    CILImage* m_pMaskImage = nullptr;            // owned
    CILImage* m_pPhotoImage = nullptr;           // borrowed
    CORVSimpleImageView* m_pImageView = nullptr; // owned
    // Share of the photograph's range that 99.9 % of its pixels lie in; below 0 until it is computed. Once for the life
    // of the wizard: a threshold means the same in every photograph of the sequence.
    float m_fPhotoRange = -1.0F;
    int m_nAnalysisType = 1;
    QStringList m_probeNames; // that a row of the table offers
    int m_nImageCount = 0;    // wavelength pairs or time points that are selected
    QStringList m_initialProbes;
    bool m_bMaskValid = false;
    QPointer<QFrame> m_pToolbarFrame; // empty; for the strip above the tab. Owned
    QComboBox* m_pLastProbeCombo = nullptr;
    bool m_bCherenkovPresent = false;
    QString m_strSequenceID;
    bool m_bApplyDecayCorrection = false;
    double m_dHalfLifeSeconds = 0.0;
    QStringList m_isotopeNames;
    QString m_strIsotope;

Q_SIGNALS:
    void runPCA();

protected:
    virtual void init();
    virtual void destroy();

protected Q_SLOTS:
    virtual void languageChange();
    void onToggleMaskOption(bool bPhoto);
    void onThresholdSliderChanged(int nValue);
    // In photo mode a `mode` other than 0 takes an automatic threshold. Without a photograph the log is told.
    void updateMaskImage(int mode);
    void onDrawRectMask();
    void onUpdateNumber();
    // An empty name selects the first that is offered, one that is not offered in that spelling none.
    void onAddProbe(QString strProbe);
    void onAddProbe();
    void onRemoveProbe();
    void onProbeSelectionChanged();
    void onClickPCA();
    void onToggleApplyCherenkovDecayCorrection(bool isDecayCorrectionChecked);
    void onIsotopeComboboxSelectionChanged(int currentSelectedIndex);
    void onHalfLifeEditBoxChanged(QString currentHalfLife);

protected:
    void changeEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void orderTabs();
    void connectControls();
    void addProbeKeys();
    void initCherenkov();
    bool isHeldPhoto(const CILImage* pImage) const;
    bool makeMaskOfPhoto(int mode);
    bool makeMaskOfCrop();
    void showMask();
    void showNoMask(const QString& strReason);
    static void logLowMemory();
    void tellPixel(int nX, int nY);
    void setThreshold(int nValue);
    void setBackgroundDefaults();
    void fillProbeTable();
    QComboBox* makeProbeCombo();
    int rowOf(const QObject* pCombo) const;
    void arrangeRows();
    int componentNumber() const;
};
