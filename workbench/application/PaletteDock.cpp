// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/PaletteDock.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTextOption>
#include <QVBoxLayout>

namespace {

QLabel* textLabel(QWidget* pParent, const char* pName)
{
    auto* pLabel = new QLabel(pParent);
    pLabel->setObjectName(QLatin1String(pName));
    pLabel->setTextFormat(Qt::PlainText);
    pLabel->setWordWrap(true);
    pLabel->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return pLabel;
}

// A text to read and to copy from, whose paths break anywhere.
QPlainTextEdit* readOnlyText(QWidget* pParent, const char* pName)
{
    auto* pText = new QPlainTextEdit(pParent);
    pText->setObjectName(QLatin1String(pName));
    pText->setReadOnly(true);
    pText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    pText->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    pText->setTabChangesFocus(true);
    return pText;
}

} // namespace

PaletteDock::PaletteDock(QWidget* pParent)
    : QDockWidget(tr("Spectral Unmixing"), pParent), m_pPages(new QStackedWidget(this)),
      m_pScroll(new QScrollArea(m_pPages)), m_pReasonPage(makeReasonPage()), m_pMissingPage(makeMissingPage())
{
    setObjectName(QStringLiteral("paletteDock"));
    m_pPages->setObjectName(QStringLiteral("palettePages"));
    m_pScroll->setObjectName(QStringLiteral("paletteScroll"));
    m_pScroll->setWidgetResizable(true);
    m_pScroll->setFrameShape(QFrame::NoFrame);
    m_pScroll->setFocusPolicy(Qt::NoFocus);
    m_pScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_pPages->addWidget(m_pReasonPage);
    m_pPages->addWidget(m_pMissingPage);
    m_pPages->addWidget(m_pScroll);
    m_pPages->setMinimumWidth(240);
    setWidget(m_pPages);
}

PaletteDock::~PaletteDock()
{
    if (m_pPalette && m_pPalette == m_pScroll->widget()) {
        m_pScroll->takeWidget();
        m_pPalette->hide();
        m_pPalette->setParent(nullptr);
    }
}

QWidget* PaletteDock::makeReasonPage()
{
    auto* pPage = new QWidget(m_pPages);
    auto* pLayout = new QVBoxLayout(pPage);
    m_pReason = textLabel(pPage, "paletteReason");
    m_pReason->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    pLayout->addWidget(m_pReason, 1);
    return pPage;
}

QWidget* PaletteDock::makeMissingPage()
{
    auto* pPage = new QWidget(m_pPages);
    pPage->setObjectName(QStringLiteral("pluginMissingPage"));
    auto* pLayout = new QVBoxLayout(pPage);
    auto* pHeading = textLabel(pPage, "pluginMissingHeading");
    QFont bold = pHeading->font();
    bold.setBold(true);
    pHeading->setFont(bold);
    pHeading->setText(tr("The tools for unmixing could not be loaded."));
    m_pMissingReason = readOnlyText(pPage, "pluginMissingReason");
    m_pMissingReason->setAccessibleName(tr("Reason"));
    auto* pRest = textLabel(pPage, "pluginMissingRest");
    // The option stands on a line of its own, as it would be broken behind its hyphens.
    pRest->setText(tr("Everything else works. Name a folder that holds the tools, or start the program with\n"
                      "--plugins FOLDER"));
    auto* pButton = new QPushButton(tr("Load from another &folder ..."), pPage);
    pButton->setObjectName(QStringLiteral("pluginFolderButton"));
    connect(pButton, &QPushButton::clicked, this, &PaletteDock::otherFolderWanted);
    pLayout->addWidget(pHeading);
    pLayout->addWidget(m_pMissingReason, 1);
    pLayout->addWidget(pRest);
    pLayout->addWidget(pButton, 0, Qt::AlignLeft);
    pLayout->addStretch(1);
    return pPage;
}

void PaletteDock::setTool(QWidget* pPalette)
{
    m_pPalette = pPalette;
    if (pPalette == nullptr) {
        return;
    }
    if (!pPalette->windowTitle().isEmpty()) {
        setWindowTitle(pPalette->windowTitle());
    }
    m_pScroll->setWidget(pPalette);
    // As wide as the palette asks for, so that it is scrolled in height alone.
    const int nWidth = pPalette->minimumSizeHint().width() + m_pScroll->verticalScrollBar()->sizeHint().width();
    m_pPages->setMinimumWidth(qMax(m_pPages->minimumWidth(), nWidth));
}

void PaletteDock::showPalette()
{
    if (m_pPalette) {
        m_pPages->setCurrentWidget(m_pScroll);
        m_pPalette->show();
    }
}

void PaletteDock::showReason(const QString& strReason)
{
    m_pReason->setText(strReason);
    m_pPages->setCurrentWidget(m_pReasonPage);
}

void PaletteDock::showMissingPlugin(const QString& strReason, const QString& strFile)
{
    m_pMissingReason->setPlainText(strFile.isEmpty() ? strReason : strReason + QLatin1String("\n\n") + strFile);
    m_pPages->setCurrentWidget(m_pMissingPage);
}

bool PaletteDock::isPaletteShown() const
{
    return m_pPalette && m_pPages->currentWidget() == m_pScroll;
}
