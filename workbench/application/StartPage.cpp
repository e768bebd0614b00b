// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/StartPage.h"

#include "workbench/application/literalToolTip.h"

#include <QAction>
#include <QCommandLinkButton>
#include <QFileInfo>
#include <QLabel>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int pageWidth = 560;
constexpr int shownRecent = 6;

QLabel* heading(const QString& strText, double dScale, QWidget* pParent)
{
    auto* pLabel = new QLabel(strText, pParent);
    QFont font = pLabel->font();
    font.setPointSizeF(font.pointSizeF() * dScale);
    font.setBold(true);
    pLabel->setFont(font);
    return pLabel;
}

} // namespace

StartPage::StartPage(QAction* pOpen, QAction* pImport, QAction* pSimulate, QWidget* pParent)
    : QWidget(pParent), m_pRecent(new QWidget), m_pRecentHeading(heading(tr("Recent sequences"), 1.1, m_pRecent)),
      m_pRecentLayout(new QVBoxLayout)
{
    setObjectName(QStringLiteral("startPage"));
    auto* pColumn = new QWidget;
    pColumn->setMaximumWidth(pageWidth);
    auto* pLayout = new QVBoxLayout(pColumn);
    pLayout->addStretch(1);
    pLayout->addWidget(heading(tr("Unmix a sequence of images"), 1.6, pColumn));
    auto* pIntroduction = new QLabel(tr("A sequence holds images of one subject, taken through different filters or at "
                                        "different times. Drop one here, or begin with:"),
                                     pColumn);
    pIntroduction->setWordWrap(true);
    pLayout->addWidget(pIntroduction);
    pLayout->addSpacing(8);
    pLayout->addWidget(makeButton(pOpen, tr("Open a sequence ..."), tr("A folder with the images of one subject")));
    pLayout->addWidget(makeButton(pImport, tr("Import images ..."),
                                  tr("A folder of TIFF files, a TIFF stack, an ENVI cube or a CSV cube")));
    pLayout->addWidget(
        makeButton(pSimulate, tr("Simulate a mouse ..."), tr("Images with known truth, to try everything with")));
    pLayout->addSpacing(12);
    auto* pRecentOuter = new QVBoxLayout(m_pRecent);
    pRecentOuter->setContentsMargins(0, 0, 0, 0);
    pRecentOuter->addWidget(m_pRecentHeading);
    pRecentOuter->addLayout(m_pRecentLayout);
    pLayout->addWidget(m_pRecent);
    pLayout->addStretch(2);

    // On a small screen it is scrolled, not squeezed.
    auto* pInner = new QWidget;
    auto* pCentred = new QHBoxLayout(pInner);
    pCentred->addStretch(1);
    pCentred->addWidget(pColumn, 100);
    pCentred->addStretch(1);
    auto* pScroll = new QScrollArea(this);
    pScroll->setWidgetResizable(true);
    pScroll->setFrameShape(QFrame::NoFrame);
    pScroll->setFocusPolicy(Qt::NoFocus);
    pScroll->setWidget(pInner);
    auto* pOuter = new QVBoxLayout(this);
    pOuter->setContentsMargins(0, 0, 0, 0);
    pOuter->addWidget(pScroll);
    setRecent({});
}

QWidget* StartPage::makeButton(QAction* pAction, const QString& strText, const QString& strDescription)
{
    auto* pButton = new QCommandLinkButton(strText, strDescription, this);
    pButton->setObjectName(pAction->objectName() + QLatin1String("Button"));
    connect(pButton, &QCommandLinkButton::clicked, pAction, &QAction::trigger);
    return pButton;
}

// The name as a button, and where it lies beside it.
QWidget* StartPage::makeRecent(const QString& strPath)
{
    const QFileInfo info(strPath);
    auto* pRow = new QWidget(m_pRecent);
    auto* pLayout = new QHBoxLayout(pRow);
    pLayout->setContentsMargins(0, 0, 0, 0);
    auto* pButton = new QToolButton(pRow);
    QString text = pButton->fontMetrics().elidedText(info.fileName(), Qt::ElideMiddle, pageWidth / 2);
    pButton->setText(text.replace(QLatin1Char('&'), QLatin1String("&&")));
    pButton->setObjectName(QStringLiteral("recentButton"));
    pButton->setAutoRaise(true);
    pButton->setFocusPolicy(Qt::StrongFocus);
    pButton->setCursor(Qt::PointingHandCursor);
    pButton->setToolTip(literalToolTip(strPath));
    pButton->setAccessibleName(tr("Open %1").arg(strPath));
    // It is replaced by the list that the opening leaves.
    connect(
        pButton, &QToolButton::clicked, this, [this, strPath] { Q_EMIT recentChosen(strPath); }, Qt::QueuedConnection);
    auto* pPlace = new QLabel(pRow);
    pPlace->setTextFormat(Qt::PlainText);
    pPlace->setText(pPlace->fontMetrics().elidedText(info.path(), Qt::ElideMiddle, pageWidth / 2));
    pLayout->addWidget(pButton);
    pLayout->addWidget(pPlace);
    pLayout->addStretch(1);
    return pRow;
}

void StartPage::setRecent(const QStringList& paths)
{
    while (QLayoutItem* pItem = m_pRecentLayout->takeAt(0)) {
        delete pItem->widget();
        delete pItem;
    }
    for (const QString& path : paths.mid(0, shownRecent)) {
        m_pRecentLayout->addWidget(makeRecent(path));
    }
    m_pRecent->setVisible(!paths.isEmpty());
}
