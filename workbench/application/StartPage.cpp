// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/StartPage.h"

#include <QAction>
#include <QCommandLinkButton>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
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

void StartPage::setRecent(const QStringList& paths)
{
    while (QLayoutItem* pItem = m_pRecentLayout->takeAt(0)) {
        delete pItem->widget();
        delete pItem;
    }
    for (const QString& path : paths.mid(0, shownRecent)) {
        QString text = QFileInfo(path).fileName();
        auto* pButton = new QPushButton(text.replace(QLatin1Char('&'), QLatin1String("&&")), m_pRecent);
        pButton->setObjectName(QStringLiteral("recentButton"));
        pButton->setFlat(true);
        pButton->setCursor(Qt::PointingHandCursor);
        pButton->setToolTip(QLatin1String("<div>") + QDir::toNativeSeparators(path).toHtmlEscaped() +
                            QLatin1String("</div>"));
        connect(
            pButton, &QPushButton::clicked, this, [this, path] { Q_EMIT recentChosen(path); }, Qt::QueuedConnection);
        m_pRecentLayout->addWidget(pButton, 0, Qt::AlignLeft);
    }
    m_pRecent->setVisible(!paths.isEmpty());
}
