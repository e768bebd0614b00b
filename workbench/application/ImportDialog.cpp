// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ImportDialog.h"

#include "host/CORVFileDialog.h"
#include "host/CORVLog.h"
#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "platform/orvspinbox/numberText.h"
#include "services/importer/ImageFinder.h"
#include "services/importer/ImagesTable.h"
#include "services/importer/Importer.h"
#include "workbench/application/ImportTable.h"
#include "workbench/application/ImportTableModel.h"
#include "workbench/application/importWords.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QTableView>
#include <QTextOption>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace {

constexpr int kMessageLines = 4;
constexpr long kWarning = 2;

// A number above 0; nothing and false for another text that is not empty.
bool positiveOf(const QLineEdit& edit, std::optional<double>* pValue)
{
    pValue->reset();
    if (edit.text().trimmed().isEmpty()) {
        return true;
    }
    const orv::TypedNumber number = orv::readTypedNumber(edit.text(), QLocale());
    if (number.m_eState != orv::TypedNumber::Complete || !std::isfinite(number.m_dValue) || number.m_dValue <= 0.0) {
        return false;
    }
    *pValue = number.m_dValue;
    return true;
}

} // namespace

// Filled by the thread, read once it has ended.
struct ImportDialog::Looked
{
    std::unique_ptr<InferredTable> table;
    QStringList warnings;
};

ImportDialog::ImportDialog(const QStringList& paths, QWidget* pParent)
    : QDialog(pParent), m_pModel(new ImportTableModel(this))
{
    setObjectName(QStringLiteral("ImportDialog"));
    setWindowTitle(tr("Import Images"));
    makeControls();
    nameControls();
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(makeHead());
    pLayout->addWidget(m_pTableView, 1);
    pLayout->addWidget(m_pMessages);
    pLayout->addWidget(m_pConfirmBox);
    pLayout->addWidget(makeOptions());
    pLayout->addWidget(makeFoot());
    resize(860, 640);
    connectControls();
    takeSource(ImportSource::of(paths));
    m_pFolderButton->setFocus();
}

ImportDialog::~ImportDialog() = default;

const ImportTable& ImportDialog::table() const
{
    return m_pModel->table();
}

void ImportDialog::makeControls()
{
    m_pSourceEdit = new QLineEdit(this);
    m_pFolderButton = new QPushButton(tr("&Folder ..."), this);
    m_pFileButton = new QPushButton(tr("Fil&e ..."), this);
    m_pKindBox = new QComboBox(this);
    m_pIntervalEdit = new QLineEdit(this);
    m_pTableButton = new QPushButton(tr("&Load Table ..."), this);
    m_pSummaryLabel = new QLabel(this);
    m_pTableView = new QTableView(this);
    m_pMessages = new QPlainTextEdit(this);
    m_pConfirmBox = new QCheckBox(tr("The table is &right as it stands"), this);
    m_pPhotoEdit = new QLineEdit(this);
    m_pDarkEdit = new QLineEdit(this);
    m_pFlatEdit = new QLineEdit(this);
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
    m_pIntervalEdit->setToolTip(tr("Makes times of the numbers of frames"));
    m_pTableButton->setToolTip(tr("Takes what is what from a table (CSV) such as images.csv"));
    m_pPhotoEdit->setPlaceholderText(tr("mean of the images"));
    m_pPhotoEdit->setToolTip(tr("Photograph of the same extent as the images"));
    m_pDarkEdit->setPlaceholderText(tr("none"));
    m_pDarkEdit->setToolTip(tr("Image that is subtracted from every image"));
    m_pFlatEdit->setPlaceholderText(tr("none"));
    m_pFlatEdit->setToolTip(tr("Flat field that every image is divided by, brought to a mean of 1"));
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
        {m_pSummaryLabel, "m_pSummaryLabel"}};
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
    pGrid->addWidget(m_pSummaryLabel, 2, 0, 1, 6);
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
    const auto add = [&](int row, int column, const QString& text, QLineEdit* pEdit) {
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

void ImportDialog::connectControls()
{
    connect(m_pFolderButton, &QPushButton::clicked, this, [this] { chooseSource(true); });
    connect(m_pFileButton, &QPushButton::clicked, this, [this] { chooseSource(false); });
    connect(m_pTableButton, &QPushButton::clicked, this, &ImportDialog::chooseTable);
    connect(m_pKindBox, QOverload<int>::of(&QComboBox::activated), this,
            [this](int nKind) { m_pModel->setKind(static_cast<ImportTable::Kind>(nKind)); });
    connect(m_pIntervalEdit, &QLineEdit::editingFinished, this, [this] {
        if (m_pIntervalEdit->isModified()) {
            m_pIntervalEdit->setModified(false);
            look();
        }
    });
    connect(m_pConfirmBox, &QCheckBox::toggled, this, [this](bool bOn) { m_pModel->setConfirmed(bOn); });
    connect(m_pModel, &ImportTableModel::modelReset, this, &ImportDialog::fitColumns);
    connect(m_pModel, &ImportTableModel::tableChanged, this, &ImportDialog::showState);
    connect(m_pOutputButton, &QPushButton::clicked, this, [this] {
        const QFileInfo now(m_pOutputEdit->text());
        const QString folder = CORVFileDialog::getExistingDirectory(this, tr("Write the Sequence into"), now.path());
        if (!folder.isEmpty()) {
            m_pOutputEdit->setText(QDir(folder).filePath(now.fileName()));
        }
    });
    connect(m_pOutputEdit, &QLineEdit::textChanged, this, &ImportDialog::showState);
    connect(m_pReplaceBox, &QCheckBox::toggled, this, &ImportDialog::showState);
    connect(m_pImportButton, &QPushButton::clicked, this, &ImportDialog::import);
    connect(m_pCancelButton, &QPushButton::clicked, this, &ImportDialog::reject);
    connect(m_pAbortButton, &QPushButton::clicked, this, &ImportDialog::reject);
    for (BackgroundWork* pWork : {&m_looking, &m_importing}) {
        connect(pWork, &BackgroundWork::progressed, this, &ImportDialog::showProgress);
    }
    connect(&m_looking, &BackgroundWork::done, this, &ImportDialog::endLook);
    connect(&m_importing, &BackgroundWork::done, this, &ImportDialog::endImport);
}

void ImportDialog::chooseSource(bool bFolder)
{
    const QString filters = tr("Stacks (*.tif *.tiff *.hdr *.csv *.dat *.img *.bsq *.bil *.bip);;All files (*)");
    const QString path = bFolder ? CORVFileDialog::getExistingDirectory(this, tr("Folder of Images"), QString())
                                 : CORVFileDialog::getOpenFileName(this, tr("Stack of Images"), QString(), filters);
    if (!path.isEmpty()) {
        takeSource(ImportSource::of({path}));
    }
}

void ImportDialog::takeSource(const ImportSource& source)
{
    m_source = source;
    m_pSourceEdit->setText(QDir::toNativeSeparators(source.path));
    m_pSourceEdit->setPlaceholderText(tr("a folder of TIFF files, a TIFF stack, an ENVI cube or a CSV cube"));
    m_pOutputEdit->setText(proposedSequenceFolder(source.path, CORVPreference::getSettings()->getRecentFilePath()));
    m_pReplaceBox->setChecked(false);
    m_pModel->setTable(ImportTable());
    m_errors = source.error.isEmpty() ? QStringList() : QStringList{source.error};
    showState();
    look();
}

void ImportDialog::look()
{
    if (m_source.path.isEmpty() || m_looking.isRunning() || m_importing.isRunning()) {
        return;
    }
    std::optional<double> interval;
    if (!positiveOf(*m_pIntervalEdit, &interval)) {
        m_errors = QStringList{tr("\"Seconds between frames\" takes a number above 0.")};
        showState();
        return;
    }
    m_errors.clear();
    m_pLooked = std::make_shared<Looked>();
    const auto pLooked = m_pLooked;
    const QString path = m_source.path;
    m_looking.start([pLooked, path, interval](const BackgroundWork::Progress& progress, QString* pError) {
        ImageFinder finder;
        if (!finder.find(path, progress, pError)) {
            return false;
        }
        pLooked->table = std::make_unique<InferredTable>(finder.images(), finder.doubts(), interval);
        pLooked->warnings = finder.warnings();
        return true;
    });
    showState();
}

void ImportDialog::endLook(bool bSuccess, const QString& strError)
{
    const bool stopped = m_looking.isStopWanted();
    if (!bSuccess) {
        m_errors = QStringList{stopped ? tr("Stopped before all images were looked at.") : importWords(strError)};
        m_pModel->setTable(ImportTable());
        return;
    }
    for (const QString& warning : m_pLooked->warnings) {
        m_errors.append(importWords(warning));
    }
    ImportTable table(*m_pLooked->table);
    if (!m_source.files.isEmpty()) {
        table.useFiles(m_source.files);
    }
    m_pModel->setTable(table);
    // A table that lies with the images tells more than their names, which leave something open.
    const QString own = QDir(m_source.path).filePath(QStringLiteral("images.csv"));
    if (!table.isReady() && m_source.files.isEmpty() && QFileInfo(own).isFile()) {
        takeOwnTable(own);
    }
    if (m_pImportButton->isEnabled()) {
        m_pImportButton->setFocus();
    } else {
        m_pTableView->setFocus();
    }
}

void ImportDialog::chooseTable()
{
    const QString path = CORVFileDialog::getOpenFileName(this, tr("Table of Images"),
                                                         QFileInfo(m_source.path).isDir() ? m_source.path : QString(),
                                                         tr("Tables (*.csv);;All files (*)"));
    if (!path.isEmpty()) {
        takeOwnTable(path);
    }
}

void ImportDialog::takeOwnTable(const QString& strPath)
{
    ImagesTable table;
    QString error;
    if (!table.load(strPath, &error)) {
        m_errors = QStringList{error};
        showState();
        return;
    }
    const QString name = QFileInfo(strPath).fileName();
    m_errors = QStringList{tr("The figures are those of %1.").arg(name)};
    m_pModel->setTable(ImportTable(table, name));
}

// The last one takes what is left; a long name leaves room for the figures.
void ImportDialog::fitColumns()
{
    for (int column = 0; column + 1 < m_pModel->columnCount(); ++column) {
        m_pTableView->resizeColumnToContents(column);
        const int most = m_pTableView->width() / 3;
        if (m_pTableView->columnWidth(column) > most && most > 0) {
            m_pTableView->setColumnWidth(column, most);
        }
    }
}

void ImportDialog::showState()
{
    const ImportTable& shown = m_pModel->table();
    m_pKindBox->setCurrentIndex(static_cast<int>(shown.kind()));
    const QSignalBlocker blocker(m_pConfirmBox);
    m_pConfirmBox->setChecked(shown.isConfirmed());
    const bool busy = m_looking.isRunning() || m_importing.isRunning();
    const bool images = shown.count() > 0;
    const QString output = m_pOutputEdit->text().trimmed();
    const bool exists = !output.isEmpty() && QFileInfo::exists(output);
    for (QWidget* pWidget : std::initializer_list<QWidget*>{m_pSourceEdit, m_pFolderButton, m_pFileButton,
                                                            m_pOutputEdit, m_pOutputButton, m_pOptions}) {
        pWidget->setEnabled(!busy);
    }
    for (QWidget* pWidget : std::initializer_list<QWidget*>{m_pKindBox, m_pTableView, m_pConfirmBox}) {
        pWidget->setEnabled(!busy && images);
    }
    m_pIntervalEdit->setEnabled(!busy && !m_source.path.isEmpty());
    m_pTableButton->setEnabled(!busy && !m_source.path.isEmpty());
    m_pConfirmBox->setVisible(images && shown.isInDoubt());
    m_pReplaceBox->setVisible(exists);
    m_pReplaceBox->setEnabled(!busy);
    m_pProgressBar->setVisible(busy);
    m_pAbortButton->setVisible(busy);
    m_pImportButton->setEnabled(!busy && shown.isReady() && !output.isEmpty() &&
                                (!exists || m_pReplaceBox->isChecked()));
    m_pSummaryLabel->setText(images ? shown.summary() : tr("No images yet."));

    QStringList sentences = m_errors;
    if (images) {
        sentences += shown.questions();
        sentences.append(shown.todo());
        sentences += shown.notes();
    }
    if (exists && !m_pReplaceBox->isChecked()) {
        sentences.append(tr("%1 exists already: choose another place, or tick \"Replace it\".").arg(output));
    }
    sentences.removeAll(QString());
    m_pMessages->setPlainText(sentences.join(QLatin1Char('\n')));
    m_pMessages->setVisible(!sentences.isEmpty());
}

bool ImportDialog::takeOptions(ImportOptions* pOptions)
{
    std::optional<double> exposure;
    std::optional<double> pixel;
    if (!positiveOf(*m_pExposureEdit, &exposure) || !positiveOf(*m_pPixelEdit, &pixel)) {
        QLineEdit* pWrong = positiveOf(*m_pExposureEdit, &exposure) ? m_pPixelEdit : m_pExposureEdit;
        m_errors = QStringList{tr("The exposure and the size of a pixel are numbers above 0.")};
        showState();
        pWrong->setFocus();
        pWrong->selectAll();
        return false;
    }
    pOptions->source = m_source.path;
    pOptions->tableText = m_pModel->table().toCsv();
    pOptions->photo = m_pPhotoEdit->text().trimmed();
    pOptions->dark = m_pDarkEdit->text().trimmed();
    pOptions->flat = m_pFlatEdit->text().trimmed();
    pOptions->output = m_pOutputEdit->text().trimmed();
    pOptions->force = m_pReplaceBox->isVisible() && m_pReplaceBox->isChecked();
    pOptions->pixelSize = pixel.value_or(0.0);
    if (exposure) {
        pOptions->exposures.append(*exposure);
    }
    return true;
}

void ImportDialog::import()
{
    ImportOptions options;
    if (m_importing.isRunning() || !m_pModel->table().isReady() || !takeOptions(&options)) {
        return;
    }
    m_errors.clear();
    m_pReport = std::make_shared<ImportReport>();
    const auto pReport = m_pReport;
    m_importing.start([options, pReport](const BackgroundWork::Progress& progress, QString* pError) {
        return importStack(options, progress, pReport.get(), pError);
    });
    m_pProgressBar->setRange(0, 0);
    showState();
    m_pAbortButton->setFocus();
}

void ImportDialog::endImport(bool bSuccess, const QString& strError)
{
    if (bSuccess) {
        m_strWritten = QFileInfo(m_pOutputEdit->text().trimmed()).absoluteFilePath();
        for (const QString& warning : m_pReport->warnings) {
            CORVLog::getLogObject()->log(warning, QString(), 0, QString(), kWarning, false);
        }
        accept();
        return;
    }
    QString error = strError;
    const int row = m_pModel->table().rowOfLine(takeTableLine(&error));
    m_errors =
        QStringList{m_pReport->aborted ? tr("The import was aborted; nothing was written.") : importWords(error)};
    showState();
    m_pImportButton->setFocus();
    if (row >= 0) {
        m_pTableView->setCurrentIndex(m_pModel->index(row, 1));
        m_pTableView->setFocus();
    }
}

void ImportDialog::showProgress(const QString& strWhat, double dFraction)
{
    constexpr int kSteps = 1000;
    m_pProgressBar->setRange(0, dFraction < 0.0 ? 0 : kSteps);
    m_pProgressBar->setValue(dFraction < 0.0 ? 0 : static_cast<int>(std::lround(dFraction * kSteps)));
    m_pProgressBar->setFormat(fontMetrics().elidedText(strWhat, Qt::ElideMiddle, m_pProgressBar->width() - 80) +
                              QStringLiteral("  %p %"));
}

void ImportDialog::reject()
{
    if (m_looking.isRunning() || m_importing.isRunning()) {
        m_looking.stop();
        m_importing.stop();
        m_pProgressBar->setFormat(tr("Stopping ..."));
        return;
    }
    QDialog::reject();
}

bool ImportDialog::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    if (pWatched == m_pTableView && pEvent->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(pEvent)->matches(QKeySequence::Paste)) {
        m_pModel->paste(m_pTableView->currentIndex(), QGuiApplication::clipboard()->text());
        return true;
    }
    return QDialog::eventFilter(pWatched, pEvent);
}
