// SPDX-License-Identifier: GPL-3.0-or-later
// The toolbar of the composite window and the choice of the picture behind the maps.
#include "windows/SpUnmixCompositeWnd.h"

#include "host/CORVQImageView.h"
#include "windows/compositePicture.h"
#include "windows/widgets/drawnIcon.h"

#include <QActionGroup>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QSignalBlocker>
#include <QToolButton>

namespace {

constexpr int kButtonSide = 26;       // pixels
constexpr int kBackgroundWidth = 100; // pixels

QString photographText()
{
    return QStringLiteral("Photograph");
}

QString xRayText()
{
    return QStringLiteral("X-Ray");
}

QToolButton* addButton(QFrame& frame, const QString& strName, const QString& strToolTip)
{
    auto* pButton = new QToolButton(&frame);
    pButton->setObjectName(strName);
    pButton->setToolTip(strToolTip);
    pButton->setAccessibleName(strToolTip);
    pButton->setMinimumSize(kButtonSide, kButtonSide);
    frame.layout()->addWidget(pButton);
    return pButton;
}

} // namespace

void SpUnmixCompositeWnd::createToolbar()
{
    m_pToolbarFrame = new QFrame(this);
    m_pToolbarFrame->setObjectName(QStringLiteral("SpUnmixCompositeWndToolbar"));
    auto* pLayout = new QHBoxLayout(m_pToolbarFrame);
    pLayout->setContentsMargins(4, 2, 4, 2);
    pLayout->setSpacing(4);
    pLayout->addWidget(new QLabel(tr(" on "), m_pToolbarFrame));

    QFrame& frame = *m_pToolbarFrame;
    m_pSetBackgroundTB = addButton(frame, QStringLiteral("m_pSetBackgroundTB"), tr("Picture behind the images"));
    m_pSetBackgroundTB->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_pSetBackgroundTB->setPopupMode(QToolButton::MenuButtonPopup);
    m_pSetBackgroundTB->setMinimumWidth(kBackgroundWidth);
    m_pSetBackgroundTB->setMenu(new QMenu(m_pSetBackgroundTB));
    m_pBackgrounds = new QActionGroup(this);
    m_pTransferBtn = addButton(frame, QStringLiteral("m_pTransferBtn"), tr("Show as Overview of the Image Cube"));
    m_pCopyToClipboardButton = addButton(frame, QStringLiteral("m_pCopyToClipboardButton"), tr("Copy to Clipboard"));
    m_pExportGraphicButton =
        addButton(frame, QStringLiteral("m_pExportGraphicButton"), tr("Export Graphics (without labels)"));
    m_pPrintButton = addButton(frame, QStringLiteral("m_pPrintButton"), tr("Print"));
    m_pPrintButton->setShortcut(QKeySequence(QStringLiteral("Ctrl+P")));
    pLayout->addStretch(1);
    frame.hide();

    connect(m_pSetBackgroundTB, &QToolButton::clicked, this, &SpUnmixCompositeWnd::onSetBackgroundTBClicked);
    connect(m_pSetBackgroundTB->menu(), &QMenu::triggered, this, &SpUnmixCompositeWnd::onBackgroundMenuItemSelected);
    connect(m_pTransferBtn, &QToolButton::clicked, this, &SpUnmixCompositeWnd::onTransferCompositeImage);
    connect(m_pExportGraphicButton, &QToolButton::clicked, this, &SpUnmixCompositeWnd::onClickExportGraphics);
    rebuildBackgroundMenu();
    updateIcons();
}

void SpUnmixCompositeWnd::updateIcons()
{
    if (m_pToolbarFrame == nullptr) {
        return;
    }
    const QColor color = palette().color(QPalette::ButtonText);
    m_pTransferBtn->setIcon(drawnIcon(DrawnIcon::Transfer, color));
    m_pCopyToClipboardButton->setIcon(drawnIcon(DrawnIcon::Copy, color));
    m_pExportGraphicButton->setIcon(drawnIcon(DrawnIcon::Export, color));
    m_pPrintButton->setIcon(drawnIcon(DrawnIcon::Print, color));
    for (QAction* pAction : m_pSetBackgroundTB->menu()->actions()) {
        const bool bXRay = pAction->text() == xRayText();
        pAction->setIcon(drawnIcon(bXRay ? DrawnIcon::XRay : DrawnIcon::Photograph, color));
        if (pAction->isChecked()) {
            showBackgroundAction(*pAction);
        }
    }
}

// Starts with the photograph, as new data do.
void SpUnmixCompositeWnd::rebuildBackgroundMenu()
{
    QMenu* pMenu = m_pSetBackgroundTB->menu();
    pMenu->clear();
    QStringList texts{photographText()};
    if (m_bHasXRay) {
        texts.append(xRayText());
    }
    for (const QString& strText : texts) {
        QAction* pAction = pMenu->addAction(strText);
        pAction->setCheckable(true);
        m_pBackgrounds->addAction(pAction);
    }
    pMenu->actions().first()->setChecked(true);
    updateIcons();
}

void SpUnmixCompositeWnd::showBackgroundAction(const QAction& action)
{
    const QSignalBlocker blocker(m_pSetBackgroundTB);
    m_pSetBackgroundTB->setIcon(action.icon());
    m_pSetBackgroundTB->setText(action.text());
}

void SpUnmixCompositeWnd::setXRayImage(CILImage* pImage)
{
    if (pImage == nullptr) {
        return;
    }
    m_pXRayImage = pImage;
    m_bHasXRay = true;
    rebuildBackgroundMenu();
}

void SpUnmixCompositeWnd::onSetBackgroundTBClicked()
{
    const QList<QAction*> actions = m_pSetBackgroundTB->menu()->actions();
    for (int i = 0; i < actions.size(); ++i) {
        if (actions[i]->isChecked()) {
            QAction* pNext = actions[(i + 1) % actions.size()];
            actions[i]->setChecked(false);
            pNext->setChecked(true);
            onBackgroundMenuItemSelected(pNext);
            return;
        }
    }
}

// The picture shows it after the next change of a control, so that a look at the background's settings costs nothing.
void SpUnmixCompositeWnd::onBackgroundMenuItemSelected(QAction* pAction)
{
    if (!m_channels.isEmpty() && !takeBackground(pAction->text() == xRayText() ? m_pXRayImage : m_pPhotoImage)) {
        checkBackgroundAction(m_channels.last()->label);
        return;
    }
    showBackgroundAction(*pAction);
    if (m_channels.isEmpty()) {
        return;
    }
    m_bStale = true;
    m_channels.last()->label = pAction->text();
    m_ranges.last() = qMakePair(m_backgroundImage.Min(), m_backgroundImage.Max());
    {
        const QSignalBlocker blocker(m_pImageList);
        m_pImageList->setCurrentRow(m_channels.size() - 1);
    }
    onImageListItemSelectionChanged();
}

// False, and nothing changed but the log, without memory for a copy.
bool SpUnmixCompositeWnd::takeBackground(const CILImage* pImage)
{
    try {
        m_backgroundImage = copyOf(pImage);
        return true;
    } catch (const std::bad_alloc&) {
        logLowMemory();
        return false;
    }
}

void SpUnmixCompositeWnd::checkBackgroundAction(const QString& strText)
{
    for (QAction* pAction : m_pSetBackgroundTB->menu()->actions()) {
        pAction->setChecked(pAction->text() == strText);
    }
}
