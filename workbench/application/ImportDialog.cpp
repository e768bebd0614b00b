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
#include "workbench/application/PlaneBoxes.h"
#include "workbench/application/importWords.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QTableView>
#include <QVBoxLayout>

#include <cmath>

namespace {

constexpr long kInformation = 1;
constexpr long kWarning = 2;
constexpr int kTitleBar = 32;

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
    PlanePosition sizes{1, 1, 1};
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
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    resize(QSize(860, 640).boundedTo(screen.size() - QSize(0, kTitleBar)));
    connectControls();
    takeSource(ImportSource::of(paths));
    m_pFolderButton->setFocus();
}

ImportDialog::~ImportDialog()
{
    // The end of the window takes the focus, and that would be the end of an edit.
    m_pIntervalEdit->disconnect(this);
}

const ImportTable& ImportDialog::table() const
{
    return m_pModel->table();
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
    connect(m_pPlaneBoxes, &PlaneBoxes::chosen, this, &ImportDialog::look);
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
    m_bTableChosen = false;
    m_pPlaneBoxes->setSizes({1, 1, 1});
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
    const PlaneChoice planes = m_pPlaneBoxes->choice();
    m_looking.start([pLooked, path, interval, planes](const BackgroundWork::Progress& progress, QString* pError) {
        ImageFinder finder;
        const bool found = finder.find(path, progress, pError, false, planes);
        pLooked->sizes = finder.sizes();
        if (!found) {
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
    if (!bSuccess) {
        endLookWithout(strError);
        return;
    }
    m_strInterval = m_pIntervalEdit->text();
    m_pPlaneBoxes->setSizes(m_pLooked->sizes);
    m_planes = m_pPlaneBoxes->choice();
    for (const QString& warning : m_pLooked->warnings) {
        m_errors.append(importWords(warning));
    }
    ImportTable table(*m_pLooked->table);
    if (!m_source.files.isEmpty()) {
        table.useFiles(m_source.files);
    }
    const ImportTable before = m_pModel->table();
    // A table that lies with the images tells more than their names, which leave something open or tell nothing.
    const QString own = QDir(m_source.path).filePath(QStringLiteral("images.csv"));
    const bool open = !table.isReady() || table.kind() == ImportTable::Kind::Channels;
    const bool wanted = open && m_source.files.isEmpty() && QFileInfo(own).isFile();
    if (!wanted || !takeOwnTable(own, before)) {
        table.takeEdits(before);
        m_pModel->setTable(table);
    }
    if (!m_pPlaneBoxes->takeFocusBack()) {
        (m_pImportButton->isEnabled() ? static_cast<QWidget*>(m_pImportButton) : m_pTableView)->setFocus();
    }
}

// A table that was there before stays, with its interval and its planes.
void ImportDialog::endLookWithout(const QString& strError)
{
    const bool stopped = m_looking.isStopWanted();
    m_errors = QStringList{stopped ? tr("Stopped before all images were looked at.") : importWords(strError)};
    m_pIntervalEdit->setText(m_strInterval);
    if (m_pModel->table().count() > 0) {
        m_pPlaneBoxes->setChoice(m_planes);
    } else if (!stopped) {
        m_pPlaneBoxes->setSizes(m_pLooked->sizes);
    }
    showState();
    if (!m_pPlaneBoxes->takeFocusBack() && m_pPlaneBoxes->isVisible()) {
        m_pPlaneBoxes->setFocus();
    }
}

void ImportDialog::chooseTable()
{
    const QString path = CORVFileDialog::getOpenFileName(this, tr("Table of Images"),
                                                         QFileInfo(m_source.path).isDir() ? m_source.path : QString(),
                                                         tr("Tables (*.csv);;All files (*)"));
    if (path.isEmpty()) {
        return;
    }
    m_errors.clear();
    if (takeOwnTable(path, ImportTable())) {
        m_bTableChosen = true;
        showState();
    }
}

bool ImportDialog::takeOwnTable(const QString& strPath, const ImportTable& before)
{
    ImagesTable table;
    QString error;
    if (!table.load(strPath, &error)) {
        m_errors = QStringList{error};
        showState();
        return false;
    }
    const QString name = QFileInfo(strPath).fileName();
    m_errors.append(tr("The figures are those of %1.").arg(name));
    ImportTable shown(table, name);
    shown.takeEdits(before);
    m_pModel->setTable(shown);
    return true;
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
    m_pIntervalEdit->setEnabled(!busy && !m_source.path.isEmpty() && !m_bTableChosen);
    m_pPlaneBoxes->setEnabled(!busy && !m_bTableChosen);
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
    QString reason;
    if (!m_pBackgroundEdit->text().trimmed().isEmpty() &&
        !pOptions->background.parse(m_pBackgroundEdit->text(), &reason)) {
        m_errors = QStringList{tr("The background: %1.").arg(reason)};
        showState();
        m_pBackgroundEdit->setFocus();
        m_pBackgroundEdit->selectAll();
        return false;
    }
    pOptions->sizes = static_cast<SizeRule>(m_pSizesBox->currentData().toInt());
    pOptions->skipInvalid = m_pInvalidBox->isChecked();
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

// How much was subtracted from each image.
void ImportDialog::logPrepared() const
{
    for (int i = 0; i < m_pReport->prepared.size(); ++i) {
        const PreparedImage& image = m_pReport->prepared.at(i);
        if (!image.isSubtracted()) {
            continue;
        }
        QStringList parts;
        if (!image.dark.isEmpty()) {
            parts.append(tr("dark image %1").arg(image.dark));
        }
        if (image.background) {
            parts.append(tr("background %1 (%2)").arg(*image.background).arg(image.rule));
        }
        CORVLog::getLogObject()->log(
            tr("%1: subtracted %2; %3 pixels are below 0")
                .arg(m_pReport->names.at(i), parts.join(QStringLiteral(", ")), QString::number(image.negatives)),
            QString(), 0, QString(), kInformation, false);
    }
}

void ImportDialog::endImport(bool bSuccess, const QString& strError)
{
    if (bSuccess) {
        m_strWritten = QFileInfo(m_pOutputEdit->text().trimmed()).absoluteFilePath();
        for (const QString& warning : m_pReport->warnings) {
            CORVLog::getLogObject()->log(warning, QString(), 0, QString(), kWarning, false);
        }
        logPrepared();
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
