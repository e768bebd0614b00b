// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/PlaneBoxes.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

namespace {

// What an entry stands for, where it is no plane's number.
enum Entry
{
    NotChosen = 0,
    LargestOfAll = -1,
    MeanOfAll = -2,
    EachAChannel = -3
};

Entry entryOf(PageProjection::Kind eKind)
{
    return eKind == PageProjection::Kind::Max ? LargestOfAll : MeanOfAll;
}

bool projects(int nEntry)
{
    return nEntry == LargestOfAll || nEntry == MeanOfAll;
}

void addNumbers(QComboBox& box, int nCount)
{
    for (int i = 1; i <= nCount; ++i) {
        box.addItem(QString::number(i), i);
    }
}

void choose(QComboBox* pBox, int nEntry)
{
    const QSignalBlocker blocker(pBox);
    pBox->setCurrentIndex(qMax(0, pBox->findData(nEntry)));
}

} // namespace

PlaneBoxes::PlaneBoxes(QWidget* pParent)
    : QWidget(pParent), m_pDepthLabel(new QLabel(tr("Depth:"), this)), m_pDepthBox(new QComboBox(this)),
      m_pTimeLabel(new QLabel(tr("Time:"), this)), m_pTimeBox(new QComboBox(this)),
      m_pChannelLabel(new QLabel(tr("Channel:"), this)), m_pChannelBox(new QComboBox(this))
{
    m_pDepthBox->setObjectName(QStringLiteral("m_pDepthBox"));
    m_pTimeBox->setObjectName(QStringLiteral("m_pTimeBox"));
    m_pChannelBox->setObjectName(QStringLiteral("m_pChannelBox"));
    m_pDepthBox->setToolTip(tr("Plane in depth that makes the images, or what is made of all planes"));
    m_pTimeBox->setToolTip(tr("Time whose channels make the images, or what is made of all times"));
    m_pChannelBox->setToolTip(tr("Channel whose times make the images"));
    auto* pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    const QList<QPair<QLabel*, QComboBox*>> rows{
        {m_pDepthLabel, m_pDepthBox}, {m_pTimeLabel, m_pTimeBox}, {m_pChannelLabel, m_pChannelBox}};
    for (const auto& [pLabel, pBox] : rows) {
        pLabel->setBuddy(pBox);
        pLayout->addWidget(pLabel);
        pLayout->addWidget(pBox);
    }
    pLayout->addStretch();
    connect(m_pDepthBox, QOverload<int>::of(&QComboBox::activated), this, [this] {
        takeProjection(m_pDepthBox, m_pTimeBox);
        noteChosen(m_pDepthBox);
    });
    connect(m_pTimeBox, QOverload<int>::of(&QComboBox::activated), this, [this] {
        takeProjection(m_pTimeBox, m_pDepthBox);
        noteChosen(m_pTimeBox);
    });
    connect(m_pChannelBox, QOverload<int>::of(&QComboBox::activated), this, [this] { noteChosen(m_pChannelBox); });
    fill();
}

void PlaneBoxes::setSizes(const PlanePosition& sizes)
{
    if (sizes.c != m_sizes.c || sizes.z != m_sizes.z || sizes.t != m_sizes.t) {
        m_sizes = sizes;
        fill();
    }
}

void PlaneBoxes::fill()
{
    const bool depth = m_sizes.z > 1;
    const bool times = m_sizes.t > 1 && m_sizes.c > 1;
    m_pDepthBox->clear();
    m_pTimeBox->clear();
    m_pChannelBox->clear();
    for (QComboBox* pBox : {m_pDepthBox, m_pTimeBox}) {
        pBox->addItem(tr("not chosen"), NotChosen);
        pBox->addItem(tr("largest of all"), LargestOfAll);
        pBox->addItem(tr("mean of all"), MeanOfAll);
    }
    m_pDepthBox->addItem(tr("each a channel"), EachAChannel);
    m_pChannelBox->addItem(tr("all"), NotChosen);
    addNumbers(*m_pDepthBox, m_sizes.z);
    addNumbers(*m_pTimeBox, m_sizes.t);
    addNumbers(*m_pChannelBox, m_sizes.c);
    m_pDepthLabel->setVisible(depth);
    m_pDepthBox->setVisible(depth);
    for (QWidget* pWidget : std::initializer_list<QWidget*>{m_pTimeLabel, m_pTimeBox, m_pChannelLabel, m_pChannelBox}) {
        pWidget->setVisible(times);
    }
    setFocusProxy(depth ? m_pDepthBox : m_pTimeBox);
    setVisible(depth || times);
}

PlaneChoice PlaneBoxes::choice() const
{
    PlaneChoice choice;
    const int depth = m_pDepthBox->currentData().toInt();
    const int time = m_pTimeBox->currentData().toInt();
    choice.each = depth == EachAChannel;
    if (choice.each) {
        return choice;
    }
    choice.projectsDepth = projects(depth);
    choice.projectsTimes = projects(time);
    if (choice.projectsDepth || choice.projectsTimes) {
        const int entry = choice.projectsDepth ? depth : time;
        choice.projection = entry == LargestOfAll ? PageProjection::Kind::Max : PageProjection::Kind::Mean;
    }
    choice.z = qMax(depth, 0);
    choice.t = qMax(time, 0);
    choice.c = m_pChannelBox->currentData().toInt();
    return choice;
}

void PlaneBoxes::setChoice(const PlaneChoice& choice)
{
    choose(m_pDepthBox, choice.each ? EachAChannel : choice.projectsDepth ? entryOf(choice.projection) : choice.z);
    choose(m_pTimeBox, choice.projectsTimes ? entryOf(choice.projection) : choice.t);
    choose(m_pChannelBox, choice.c);
}

void PlaneBoxes::noteChosen(QComboBox* pBox)
{
    m_pChosenBox = pBox->hasFocus() ? pBox : nullptr;
    Q_EMIT chosen();
}

bool PlaneBoxes::takeFocusBack()
{
    const bool had = m_pChosenBox != nullptr;
    if (had) {
        m_pChosenBox->setFocus();
        m_pChosenBox = nullptr;
    }
    return had;
}

void PlaneBoxes::takeProjection(const QComboBox* pFrom, QComboBox* pTo)
{
    const int chosen = pFrom->currentData().toInt();
    if (projects(chosen) && projects(pTo->currentData().toInt())) {
        choose(pTo, chosen);
    }
}
