// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/SpUnmixWizardWnd.h"

#include "host/CILImage.h"
#include "host/CORVDatabase.h"
#include "host/CORVLog.h"
#include "host/CORVOverlayImage.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSimpleImageView.h"
#include "host/LegibleBoxes.h"
#include "spectra/logLine.h"
#include "windows/componentCount.h"
#include "windows/halfLife.h"
#include "windows/probeOffer.h"
#include "windows/widgets/focusFrame.h"
#include "windows/widgets/isotopeControls.h"
#include "windows/wizardLook.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <new>

namespace {

constexpr int kFluorescent = 1;
constexpr int kTemporal = 3;

// What showMenuItems() takes for every group of entries.
constexpr int kAllMenuItems = 15;

} // namespace

SpUnmixWizardWnd::SpUnmixWizardWnd(QWidget* pParent) : QWizard(pParent)
{
    setupUi(this);
    SpUnmixWizardWnd::init();
}

SpUnmixWizardWnd::~SpUnmixWizardWnd()
{
    SpUnmixWizardWnd::destroy();
}

void SpUnmixWizardWnd::init()
{
    m_pToolbarFrame = new QFrame(this);
    m_pToolbarFrame->setObjectName(QStringLiteral("UnmixWizardToolbar"));
    auto* pToolbarLayout = new QGridLayout(m_pToolbarFrame);
    pToolbarLayout->setObjectName(QStringLiteral("gridLayoutToolbar"));
    pToolbarLayout->setContentsMargins(0, 0, 0, 0);
    pToolbarLayout->setSpacing(0);
    m_pToolbarFrame->hide();

    m_pMaskImage = new CILImage;
    m_pPhotoImage = nullptr;
    m_pOverlayImage = new CORVOverlayImage;
    m_fPhotoRange = -1.0F;
    m_bMaskValid = false;

    m_pImageView = new CORVSimpleImageView(m_pMaskFrame, "SimpleImageView", nullptr);
    m_pImageView->setAccessibleName(tr("Photograph with the data mask"));
    m_pImageView->showMenuItems(kAllMenuItems);
    m_pImageView->setFocusPolicy(Qt::StrongFocus);
    auto* pViewLayout = new QVBoxLayout(m_pMaskFrame);
    pViewLayout->setContentsMargins(0, 0, 0, 0);
    pViewLayout->addWidget(m_pImageView, 1);

    orderTabs();
    connectControls();
    addProbeKeys();
    auto* pStyle = new LegibleBoxes(QStringLiteral("fusion"));
    pStyle->setParent(this);
    for (QWidget* pButton : {m_pRectRB, m_pEllipseRB}) {
        pButton->setStyle(pStyle);
        pButton->setEnabled(false);
    }
    frameFocusOf(*button(QWizard::FinishButton));
    m_pMaskProbePage->installEventFilter(this);
    m_pProbeTable->horizontalHeader()->hide();
    setAnalysisType(kFluorescent);
    onAddProbe();
    m_pMaskProbePage->setInitialComplete(true);
    // Wizards lay pages on the colour of entry fields, where boxes without a tick can hardly be seen.
    m_pMaskProbePage->setBackgroundRole(QPalette::Window);
    m_pMaskProbePage->setAutoFillBackground(true);
    m_pPCABtn->show();
    m_bApplyDecayCorrection = false;
    m_dHalfLifeSeconds = 0.0;
    initCherenkov();
}

// As they are seen. The form cannot tell it: the view is none of its widgets, and moving one after another takes that
// one from its place.
void SpUnmixWizardWnd::orderTabs()
{
    const QList<QWidget*> widgets{m_pImageView,
                                  m_pPhotoRB,
                                  m_pDrawMaskRB,
                                  m_pThresholdSlider,
                                  m_pThresholdSpinBox,
                                  m_pRectRB,
                                  m_pEllipseRB,
                                  m_pSubjectCB,
                                  m_pTissueAFCB,
                                  m_pFoodAFCB,
                                  m_pProbeTable,
                                  m_pAddProbeTB,
                                  m_pRemoveProbeTB,
                                  m_pMatchCB,
                                  m_pUseConstraintsCB,
                                  m_pCherenkovIsotopeCombobox,
                                  m_pCherenkovHalfLifeEditBox,
                                  m_pApplyCherenkovDecayCorrectionCkb,
                                  m_pPCABtn,
                                  button(QWizard::FinishButton),
                                  button(QWizard::CancelButton)};
    for (int i = 1; i < widgets.size(); ++i) {
        setTabOrder(widgets[i - 1], widgets[i]);
    }
}

void SpUnmixWizardWnd::connectControls()
{
    connect(m_pImageView, &CORVSimpleImageView::cropModifiedSignal, this, &SpUnmixWizardWnd::updateMaskImage);
    connect(m_pImageView, &CORVSimpleImageView::cropShapeChanged, this,
            [this](bool bEllipse) { (bEllipse ? m_pEllipseRB : m_pRectRB)->setChecked(true); });
    connect(m_pImageView, &GLImageView::pixelUnderPointer, this, &SpUnmixWizardWnd::tellPixel);
    connect(m_pPhotoRB, &QRadioButton::toggled, this, &SpUnmixWizardWnd::onToggleMaskOption);
    connect(m_pThresholdSlider, &QSlider::valueChanged, this, &SpUnmixWizardWnd::onThresholdSliderChanged);
    connect(m_pThresholdSpinBox, qOverload<int>(&QSpinBox::valueChanged), this,
            &SpUnmixWizardWnd::onThresholdSliderChanged);
    connect(m_pRectRB, &QRadioButton::toggled, this, &SpUnmixWizardWnd::onDrawRectMask);
    connect(m_pTissueAFCB, &QCheckBox::toggled, this, &SpUnmixWizardWnd::onUpdateNumber);
    connect(m_pFoodAFCB, &QCheckBox::toggled, this, &SpUnmixWizardWnd::onUpdateNumber);
    connect(m_pAddProbeTB, &QToolButton::clicked, this, qOverload<>(&SpUnmixWizardWnd::onAddProbe));
    connect(m_pRemoveProbeTB, &QToolButton::clicked, this, &SpUnmixWizardWnd::onRemoveProbe);
    connect(m_pProbeTable, &QTableWidget::itemSelectionChanged, this, &SpUnmixWizardWnd::onProbeSelectionChanged);
    connect(m_pPCABtn, &QPushButton::clicked, this, &SpUnmixWizardWnd::onClickPCA);
    connect(m_pCherenkovIsotopeCombobox, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &SpUnmixWizardWnd::onIsotopeComboboxSelectionChanged);
    connect(m_pApplyCherenkovDecayCorrectionCkb, &QCheckBox::toggled, this,
            &SpUnmixWizardWnd::onToggleApplyCherenkovDecayCorrection);
    connect(m_pCherenkovHalfLifeEditBox, &QLineEdit::textChanged, this, &SpUnmixWizardWnd::onHalfLifeEditBoxChanged);
}

void SpUnmixWizardWnd::initCherenkov()
{
    m_isotopeNames = CORVDatabase::getRADSourceList();
    m_pCherenkovIsotopeCombobox->insertItems(0, m_isotopeNames);
    m_pCherenkovHalfLifeEditBox->setValidator(halfLifeValidator(this));
    m_pCherenkovGroupBox->hide();
}

void SpUnmixWizardWnd::destroy()
{
    delete m_pImageView;
    m_pImageView = nullptr;
    delete m_pOverlayImage;
    m_pOverlayImage = nullptr;
    delete m_pMaskImage;
    m_pMaskImage = nullptr;
    delete m_pToolbarFrame;
}

void SpUnmixWizardWnd::languageChange()
{
    retranslateUi(this);
    setAnalysisType(m_nAnalysisType);
    onUpdateNumber();
}

void SpUnmixWizardWnd::changeEvent(QEvent* pEvent)
{
    QWizard::changeEvent(pEvent);
    if (pEvent->type() == QEvent::LanguageChange) {
        languageChange();
    }
}

// The Return key ends an entry; it would press Finish, which stays the wizard's default button.
void SpUnmixWizardWnd::keyPressEvent(QKeyEvent* pEvent)
{
    if (pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter) {
        pEvent->accept();
        return;
    }
    QWizard::keyPressEvent(pEvent);
}

// A wizard that was cancelled starts over when it is shown, which takes the page for complete.
void SpUnmixWizardWnd::setVisible(bool bVisible)
{
    QWizard::setVisible(bVisible);
    if (bVisible) {
        validateCurrentPage();
    }
}

bool SpUnmixWizardWnd::validateCurrentPage()
{
    m_pMaskProbePage->setComplete(m_bMaskValid && isComponentCountValid(componentNumber(), m_nImageCount));
    // Set by hand, as completeChanged() is not sent: a stale button would end the wizard with an incomplete page.
    button(QWizard::FinishButton)->setEnabled(m_pMaskProbePage->isComplete());
    m_pPCABtn->setEnabled(m_bMaskValid);
    return true;
}

void SpUnmixWizardWnd::setSequenceID(const QString& strSequenceID)
{
    m_strSequenceID = strSequenceID;
    m_bCherenkovPresent =
        showIsotopeOf(strSequenceID, m_isotopeNames, *m_pCherenkovGroupBox, *m_pCherenkovIsotopeCombobox);
}

void SpUnmixWizardWnd::setAnalysisType(int nType)
{
    m_nAnalysisType = nType;
    m_pBKGGB->show();
    const QSignalBlocker tissue(m_pTissueAFCB);
    const QSignalBlocker food(m_pFoodAFCB);
    const std::optional<WizardLook> look = wizardLook(nType, m_nImageCount);
    if (!look) {
        return;
    }
    m_pSPUMTip->setVisible(!look->kinetics);
    m_pKYVOTip->setVisible(look->kinetics);
    m_pDataPointInfo->setText(look->pointInfo);
    m_pProbeInfoGB->setTitle(look->groupTitle);
    m_pTissueAFCB->setText(look->tissueText);
    m_pTissueAFCB->show();
    m_pBKGGB->setVisible(look->background);
    m_pFoodAFCB->setVisible(look->foodShown.value_or(!m_pFoodAFCB->isHidden()));
    m_pTissueAFCB->setChecked(look->tissueChecked.value_or(m_pTissueAFCB->isChecked()));
    m_pFoodAFCB->setChecked(look->foodChecked.value_or(m_pFoodAFCB->isChecked()));
    m_pMatchCB->hide();
    m_pUseConstraintsCB->hide();
    m_pProbeTable->show();
    m_pSubjectCB->show();
    label_11->show();

    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSequenceID);
    m_probeNames = offeredProbes(nType, pSequence != nullptr && pSequence->isFluorescence);
}

void SpUnmixWizardWnd::setImagingSubject(const QString& strSubject)
{
    if (strSubject.isEmpty()) {
        return;
    }
    // The first subject is what a new wizard shows, and is not chosen over the user's later choice.
    const int nIndex = m_pSubjectCB->findData(strSubject, Qt::DisplayRole, Qt::MatchCaseSensitive);
    if (nIndex >= 1) {
        m_pSubjectCB->setCurrentIndex(nIndex);
    }
}

void SpUnmixWizardWnd::setProbeNames(const QStringList& names)
{
    m_initialProbes = names;
}

void SpUnmixWizardWnd::setPhotoImage(CILImage* pImage)
{
    if (isHeldPhoto(pImage)) {
        onUpdateNumber();
        return;
    }
    m_pPhotoImage = pImage;
    try {
        if (pImage != nullptr) {
            pImage->RefreshImageStats();
        }
    } catch (const std::bad_alloc&) {
        logLowMemory();
    }
    m_pPhotoRB->setChecked(true);
    updateMaskImage(1);
    setBackgroundDefaults();
    fillProbeTable();
    onProbeSelectionChanged();
    m_pWarningLabel->clear();
    restart();
    onUpdateNumber();
}

// Another photograph may come to lie where the one before was, when its dataset is opened again.
bool SpUnmixWizardWnd::isHeldPhoto(const CILImage* pImage) const
{
    return pImage == m_pPhotoImage && (pImage == nullptr || (m_pMaskImage->m_lWidth == pImage->m_lWidth &&
                                                             m_pMaskImage->m_lHeight == pImage->m_lHeight));
}

void SpUnmixWizardWnd::setBackgroundDefaults()
{
    const QSignalBlocker tissue(m_pTissueAFCB);
    const QSignalBlocker food(m_pFoodAFCB);
    const bool bSpectral = m_nAnalysisType != kTemporal;
    m_pBKGGB->setVisible(bSpectral);
    m_pTissueAFCB->setChecked(isTissueByDefault(m_nAnalysisType));
    m_pFoodAFCB->setChecked(false);
    m_pMatchCB->setChecked(bSpectral);
    m_pUseConstraintsCB->setChecked(isConstrainedByDefault(m_nAnalysisType));
}

CILImage* SpUnmixWizardWnd::getMaskImage()
{
    return m_pMaskImage != nullptr && !m_pMaskImage->isEmpty() ? m_pMaskImage : nullptr;
}

QString SpUnmixWizardWnd::getImagingSubject() const
{
    return m_pSubjectCB->currentText();
}

bool SpUnmixWizardWnd::isUseConstraints() const
{
    return m_pUseConstraintsCB->isChecked();
}

void SpUnmixWizardWnd::onClickPCA()
{
    Q_EMIT runPCA();
}

void SpUnmixWizardWnd::onIsotopeComboboxSelectionChanged(int currentSelectedIndex)
{
    if (currentSelectedIndex == -1) {
        return;
    }
    const QString strIsotope = m_pCherenkovIsotopeCombobox->itemText(currentSelectedIndex);
    showHalfLifeOf(strIsotope, *m_pCherenkovHalfLifeEditBox);
    m_strIsotope = strIsotope;
}

void SpUnmixWizardWnd::onToggleApplyCherenkovDecayCorrection(bool isDecayCorrectionChecked)
{
    if (!isDecayCorrectionChecked) {
        m_bApplyDecayCorrection = false;
        return;
    }
    double dMinutes = 0.0;
    if (parseHalfLife(m_pCherenkovHalfLifeEditBox->text(), dMinutes, m_dHalfLifeSeconds)) {
        m_bApplyDecayCorrection = true;
        return;
    }
    const QSignalBlocker blocker(m_pApplyCherenkovDecayCorrectionCkb);
    m_pApplyCherenkovDecayCorrectionCkb->setChecked(false);
    logLine(invalidHalfLifeText(m_strIsotope, dMinutes, m_strSequenceID), CORVLOG_ERROR);
}

// A changed half life is applied anew.
void SpUnmixWizardWnd::onHalfLifeEditBoxChanged(QString)
{
    m_pApplyCherenkovDecayCorrectionCkb->setChecked(false);
}
