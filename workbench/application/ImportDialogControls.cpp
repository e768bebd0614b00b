// SPDX-License-Identifier: GPL-3.0-or-later
// The controls of the dialog, and how they stand.
#include "host/CORVFileDialog.h"
#include "services/importer/CommonSize.h"
#include "workbench/application/ImportDialog.h"
#include "workbench/application/ImportTable.h"
#include "workbench/application/ImportTableModel.h"
#include "workbench/application/PlaneBoxes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTextOption>

namespace {

constexpr int kMessageLines = 4;
constexpr int kKindLetters = 15;

} // namespace

void ImportDialog::makeControls()
{
    m_pSourceEdit = new QLineEdit(this);
    m_pFolderButton = new QPushButton(tr("&Folder ..."), this);
    m_pFileButton = new QPushButton(tr("Fil&e ..."), this);
    m_pKindBox = new QComboBox(this);
    m_pIntervalEdit = new QLineEdit(this);
    m_pTableButton = new QPushButton(tr("&Load Table ..."), this);
    m_pPlaneBoxes = new PlaneBoxes(this);
    m_pSummaryLabel = new QLabel(this);
    m_pTableView = new QTableView(this);
    m_pMessages = new QPlainTextEdit(this);
    m_pConfirmBox = new QCheckBox(tr("The table is &right as it stands"), this);
    m_pPhotoEdit = new QLineEdit(this);
    m_pDarkEdit = new QLineEdit(this);
    m_pFlatEdit = new QLineEdit(this);
    m_pBackgroundEdit = new QLineEdit(this);
    m_pSizesBox = new QComboBox(this);
    m_pInvalidBox = new QCheckBox(tr("Leave out in&valid pixels"), this);
    m_pExposureEdit = new QLineEdit(this);
    m_pPixelEdit = new QLineEdit(this);
    m_pOutputEdit = new QLineEdit(this);
    m_pOutputButton = new QPushButton(tr("C&hoose ..."), this);
    m_pReplaceBox = new QCheckBox(tr("Re&place it"), this);
    m_pProgressBar = new QProgressBar(this);
    m_pAbortButton = new QPushButton(tr("A&bort"), this);
    m_pImportButton = new QPushButton(tr("&Import"), this);
    m_pCancelButton = new QPushButton(tr("Cancel"), this);
    m_pKindBox->addItems(ImportTable::kindTexts());
    m_pSizesBox->addItem(tr("refuse"), static_cast<int>(SizeRule::Refuse));
    m_pSizesBox->addItem(tr("crop"), static_cast<int>(SizeRule::Crop));
    m_pSizesBox->addItem(tr("bin"), static_cast<int>(SizeRule::Bin));
    m_pSizesBox->addItem(tr("pad"), static_cast<int>(SizeRule::Pad));
    // On a small screen a long one is cut; its list shows all of it.
    m_pKindBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_pKindBox->setMinimumContentsLength(kKindLetters);
    m_pSourceEdit->setReadOnly(true);
    m_pSummaryLabel->setTextFormat(Qt::PlainText);
    m_pMessages->setReadOnly(true);
    m_pMessages->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_pIntervalEdit->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("not known...")) + 16);
    m_pMessages->setTabChangesFocus(true);
    m_pMessages->setFixedHeight(m_pMessages->fontMetrics().lineSpacing() * kMessageLines + 12);
    m_pTableView->setModel(m_pModel);
    m_pTableView->setSelectionMode(QAbstractItemView::ContiguousSelection);
    m_pTableView->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                  QAbstractItemView::AnyKeyPressed);
    m_pTableView->setTabKeyNavigation(false);
    m_pTableView->horizontalHeader()->setStretchLastSection(true);
    m_pTableView->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    m_pTableView->installEventFilter(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) {
        pButton->setAutoDefault(false);
    }
}

void ImportDialog::nameControls()
{
    m_pTableView->setAccessibleName(tr("Images to import"));
    m_pMessages->setAccessibleName(tr("Messages"));
    m_pProgressBar->setAccessibleName(tr("Progress"));
    m_pIntervalEdit->setPlaceholderText(tr("not known"));
    m_pIntervalEdit->setToolTip(tr("Makes times of the numbers of frames; a table that was loaded tells its own"));
    m_pTableButton->setToolTip(tr("Takes what is what from a table (CSV) such as images.csv"));
    m_pPhotoEdit->setPlaceholderText(tr("mean of the images"));
    m_pPhotoEdit->setToolTip(tr("Photograph of the same extent as the images"));
    m_pDarkEdit->setPlaceholderText(tr("none"));
    m_pDarkEdit->setToolTip(tr("Image that is subtracted from all images; or one for each, a stack in their order or a "
                               "folder with their names"));
    m_pFlatEdit->setPlaceholderText(tr("none"));
    m_pFlatEdit->setToolTip(tr("Flat field that every image is divided by, brought to a mean of 1"));
    m_pBackgroundEdit->setPlaceholderText(tr("none"));
    m_pBackgroundEdit->setToolTip(
        tr("What is subtracted from each image: percentile:1, or the mean in a region such as "
           "rect:X,Y,W,H (pixels)"));
    m_pSizesBox->setToolTip(tr("Images that differ in size: crop to the smallest, from the upper left; bin to the "
                               "smallest by whole numbers; pad to the largest, the rest without a value"));
    m_pInvalidBox->setToolTip(tr("Pixels that are not finite in an image are left out of every analysis"));
    m_pExposureEdit->setPlaceholderText(tr("as in the table"));
    m_pExposureEdit->setToolTip(tr("Exposure of all images in seconds"));
    m_pPixelEdit->setPlaceholderText(tr("as in the files"));
    m_pPixelEdit->setToolTip(tr("Side of a pixel in the object, in micrometres"));
    m_pReplaceBox->setToolTip(tr("The sequence that lies there goes, unless it holds results"));
    const QList<QPair<QWidget*, const char*>> names{
        {m_pSourceEdit, "m_pSourceEdit"},     {m_pFolderButton, "m_pFolderButton"},
        {m_pFileButton, "m_pFileButton"},     {m_pKindBox, "m_pKindBox"},
        {m_pIntervalEdit, "m_pIntervalEdit"}, {m_pTableButton, "m_pTableButton"},
        {m_pTableView, "m_pTableView"},       {m_pMessages, "m_pMessages"},
        {m_pConfirmBox, "m_pConfirmBox"},     {m_pPhotoEdit, "m_pPhotoEdit"},
        {m_pDarkEdit, "m_pDarkEdit"},         {m_pFlatEdit, "m_pFlatEdit"},
        {m_pExposureEdit, "m_pExposureEdit"}, {m_pPixelEdit, "m_pPixelEdit"},
        {m_pOutputEdit, "m_pOutputEdit"},     {m_pOutputButton, "m_pOutputButton"},
        {m_pReplaceBox, "m_pReplaceBox"},     {m_pAbortButton, "m_pAbortButton"},
        {m_pImportButton, "m_pImportButton"}, {m_pCancelButton, "m_pCancelButton"},
        {m_pSummaryLabel, "m_pSummaryLabel"}, {m_pBackgroundEdit, "m_pBackgroundEdit"},
        {m_pSizesBox, "m_pSizesBox"},         {m_pInvalidBox, "m_pInvalidBox"}};
    for (const auto& [pWidget, pName] : names) {
        pWidget->setObjectName(QString::fromLatin1(pName));
    }
}

QWidget* ImportDialog::makeHead()
{
    auto* pHead = new QWidget(this);
    auto* pGrid = new QGridLayout(pHead);
    pGrid->setContentsMargins(0, 0, 0, 0);
    const auto label = [pHead](const QString& text, QWidget* pBuddy) {
        auto* pLabel = new QLabel(text, pHead);
        pLabel->setBuddy(pBuddy);
        return pLabel;
    };
    pGrid->addWidget(label(tr("I&mages:"), m_pSourceEdit), 0, 0);
    pGrid->addWidget(m_pSourceEdit, 0, 1, 1, 3);
    pGrid->addWidget(m_pFolderButton, 0, 4);
    pGrid->addWidget(m_pFileButton, 0, 5);
    pGrid->addWidget(label(tr("&Kind of sequence:"), m_pKindBox), 1, 0);
    pGrid->addWidget(m_pKindBox, 1, 1);
    pGrid->addWidget(label(tr("&Seconds between frames:"), m_pIntervalEdit), 1, 2);
    pGrid->addWidget(m_pIntervalEdit, 1, 3);
    pGrid->addWidget(m_pTableButton, 1, 4, 1, 2);
    pGrid->addWidget(m_pPlaneBoxes, 2, 0, 1, 6);
    pGrid->addWidget(m_pSummaryLabel, 3, 0, 1, 6);
    pGrid->setColumnStretch(1, 2);
    pGrid->setColumnStretch(3, 1);
    return pHead;
}

QPushButton* ImportDialog::addChooser(QGridLayout* pGrid, int nRow, int nColumn, QWidget* pBuddy,
                                      const QString& strName)
{
    auto* pEdit = qobject_cast<QLineEdit*>(pBuddy);
    auto* pButton = new QPushButton(QStringLiteral("..."), pBuddy->parentWidget());
    pButton->setAutoDefault(false);
    pButton->setAccessibleName(tr("Choose: %1").arg(strName));
    pButton->setToolTip(tr("Choose a file"));
    pButton->setFixedWidth(pButton->fontMetrics().horizontalAdvance(QStringLiteral("......")) + 8);
    pGrid->addWidget(pButton, nRow, nColumn);
    connect(pButton, &QPushButton::clicked, this, [this, pEdit, strName] {
        const QString path = CORVFileDialog::getOpenFileName(this, strName, pEdit->text(),
                                                             tr("Images (*.tif *.tiff *.png *.jpg);;All files (*)"));
        if (!path.isEmpty()) {
            pEdit->setText(path);
        }
    });
    return pButton;
}

QWidget* ImportDialog::makeOptions()
{
    auto* pGroup = new QGroupBox(tr("Options"), this);
    m_pOptions = pGroup;
    auto* pGrid = new QGridLayout(pGroup);
    const auto add = [&](int row, int column, const QString& text, QWidget* pEdit) {
        auto* pLabel = new QLabel(text, pGroup);
        pLabel->setBuddy(pEdit);
        pGrid->addWidget(pLabel, row, column);
        pGrid->addWidget(pEdit, row, column + 1);
        pEdit->setParent(pGroup);
        pGrid->addWidget(pEdit, row, column + 1);
    };
    add(0, 0, tr("Ph&otograph:"), m_pPhotoEdit);
    addChooser(pGrid, 0, 2, m_pPhotoEdit, tr("Photograph"));
    add(0, 3, tr("E&xposure (s):"), m_pExposureEdit);
    add(1, 0, tr("&Dark image:"), m_pDarkEdit);
    addChooser(pGrid, 1, 2, m_pDarkEdit, tr("Dark image"));
    add(1, 3, tr("Pixel si&ze (µm):"), m_pPixelEdit);
    add(2, 0, tr("Fla&t field:"), m_pFlatEdit);
    addChooser(pGrid, 2, 2, m_pFlatEdit, tr("Flat field"));
    add(2, 3, tr("Differe&nt sizes:"), m_pSizesBox);
    add(3, 0, tr("Back&ground:"), m_pBackgroundEdit);
    m_pInvalidBox->setParent(pGroup);
    pGrid->addWidget(m_pInvalidBox, 3, 3, 1, 2);
    pGrid->setColumnStretch(1, 3);
    pGrid->setColumnStretch(4, 1);
    return pGroup;
}

QWidget* ImportDialog::makeFoot()
{
    auto* pFoot = new QWidget(this);
    auto* pGrid = new QGridLayout(pFoot);
    pGrid->setContentsMargins(0, 0, 0, 0);
    auto* pLabel = new QLabel(tr("&Write to:"), pFoot);
    pLabel->setBuddy(m_pOutputEdit);
    pGrid->addWidget(pLabel, 0, 0);
    pGrid->addWidget(m_pOutputEdit, 0, 1);
    pGrid->addWidget(m_pReplaceBox, 0, 2);
    pGrid->addWidget(m_pOutputButton, 0, 3);
    auto* pRow = new QHBoxLayout;
    pRow->addWidget(m_pProgressBar, 1);
    pRow->addWidget(m_pAbortButton);
    pRow->addStretch();
    pRow->addWidget(m_pImportButton);
    pRow->addWidget(m_pCancelButton);
    pGrid->addLayout(pRow, 1, 0, 1, 4);
    pGrid->setColumnStretch(1, 1);
    return pFoot;
}
