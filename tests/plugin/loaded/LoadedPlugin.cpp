// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoadedPlugin.h"

#include "host/CILImage.h"
#include "host/CORVChildWindow.h"
#include "host/CORVMdiSubWindow.h"
#include "platform/orvimage/TiffIo.h"
#include "support/simulated.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QTest>
#include <QWizard>

#include <cmath>

namespace loaded {

namespace {

QStringList* g_pQtWarnings = nullptr;

void keepWarnings(QtMsgType eType, const QMessageLogContext&, const QString& strMessage)
{
    if (eType != QtDebugMsg && eType != QtInfoMsg && g_pQtWarnings != nullptr) {
        *g_pQtWarnings << strMessage;
    }
}

class Responder : public orv::MessageResponder
{
public:
    explicit Responder(Answers& answers) : m_answers(answers) {}
    int ask(const orv::MessageRequest& request) override
    {
        m_answers.asked << request.m_strText;
        const QList<int> offered = request.answers();
        return offered.size() == 1 ? offered.first() : m_answers.answer;
    }

private:
    Answers& m_answers;
};

} // namespace

Opened::~Opened()
{
    if (window) {
        QWidget* pFrame = window->parentWidget();
        delete window.data();
        delete pFrame;
    }
}

LoadedPlugin::LoadedPlugin() : m_loader(QStringLiteral(ORV_PLUGIN_FILE)), m_pArea(new QMdiArea)
{
    g_pQtWarnings = &m_qtWarnings;
    qInstallMessageHandler(keepWarnings);
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    m_nSink = orv::addLogSink([this](const orv::LogRecord& line) {
        if (line.m_nLevel == 2 || line.m_nLevel == 3) {
            m_complaints << line.m_strMessage;
        }
    });
    orv::setMessageResponder(std::make_unique<Responder>(m_answers));
    m_main.setCentralWidget(m_pArea);
    m_main.resize(1200, 900);
    CORVChildWindow::setMainWindow(&m_main);
    m_pPlugin = qobject_cast<CORVToolPalettePluginBase*>(m_loader.instance());
    EXPECT_NE(m_pPlugin, nullptr) << m_loader.errorString().toStdString();
    m_pPalette = m_pPlugin->paletteWidget();
}

LoadedPlugin::~LoadedPlugin()
{
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    for (const auto& opened : m_opened) {
        if (opened) {
            m_pPlugin->onSignalSequenceRemoved(opened->sequence.get());
        }
    }
    // The instance, not the library: what it has told Qt of its types stays.
    delete m_pPlugin;
    m_opened.clear();
    CORVChildWindow::setMainWindow(nullptr);
    orv::setMessageResponder(nullptr);
    orv::removeLogSink(m_nSink);
    orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    qInstallMessageHandler(nullptr);
    g_pQtWarnings = nullptr;
    for (const QString& warning : qAsConst(m_qtWarnings)) {
        EXPECT_FALSE(warning.contains("QObject::connect")) << warning.toStdString();
    }
}

QString LoadedPlugin::simulated(const QString& strName, const QStringList& options)
{
    const QString strFolder = m_folder.filePath(strName);
    simulated::into(strFolder, options);
    return strFolder;
}

Opened& LoadedPlugin::open(const QString& strFolder)
{
    m_opened.push_back(std::make_unique<Opened>());
    Opened& opened = *m_opened.back();
    opened.sequence = std::make_unique<CORVSequenceDataset>();
    QString strReason;
    EXPECT_EQ(opened.sequence->open(strFolder, &strReason), ESTATUS_SUCCESS) << strReason.toStdString();
    opened.window = new CORVSequenceWindow(opened.sequence.get());
    opened.window->addTabWidget(new QLabel("images", opened.window), nullptr, nullptr, QIcon(), "Sequence View", -1,
                                true);
    auto* pFrame = new CORVMdiSubWindow;
    pFrame->setWidget(opened.window);
    m_pArea->addSubWindow(pFrame);
    pFrame->showMaximized();
    m_pPlugin->onSignalSequenceAdded(opened.sequence.get());
    m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
    return opened;
}

void LoadedPlugin::close(Opened& opened)
{
    m_pPlugin->onSignalSequenceRemoved(opened.sequence.get());
    for (auto& candidate : m_opened) {
        if (candidate.get() == &opened) {
            candidate.reset();
            break;
        }
    }
}

void LoadedPlugin::click(const char* pButton)
{
    auto* pFound = find<QAbstractButton>(pButton);
    ASSERT_NE(pFound, nullptr) << pButton;
    ASSERT_TRUE(pFound->isEnabled()) << pButton;
    pFound->click();
}

void LoadedPlugin::choose(const char* pMethod)
{
    auto* pMethods = find<QComboBox>("m_pUnmixingMethodsCMB");
    pMethods->setCurrentIndex(pMethods->findText(pMethod));
    ASSERT_EQ(pMethods->currentText(), pMethod);
}

void LoadedPlugin::unmixAutomatically()
{
    choose("Automatic");
    click("m_pUnmixSpectraButton");
    auto* pWizard = find<QWizard>("SpUnmixWizardWnd");
    ASSERT_NE(pWizard, nullptr);
    ASSERT_TRUE(pWizard->button(QWizard::FinishButton)->isEnabled());
    pWizard->button(QWizard::FinishButton)->click();
}

QStringList LoadedPlugin::resultItems() const
{
    QStringList items;
    const auto* pTree = find<QTreeWidget>("m_pSPUnResultsLV");
    for (int i = 0; i < pTree->topLevelItemCount(); ++i) {
        items << pTree->topLevelItem(i)->text(0);
    }
    return items;
}

QStringList LoadedPlugin::savedNames() const
{
    QStringList names;
    const auto* pCombo = find<QComboBox>("m_pSavedResultsCB");
    for (int i = 0; i < pCombo->count(); ++i) {
        names << pCombo->itemText(i);
    }
    return names;
}

// Exported maps are the concentrations as floats, each over the largest value of its spectrum, which is 1 here.
void LoadedPlugin::expectMapsOf(const QString& strResults)
{
    QStringList exported;
    const auto connection = QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::createSequence,
                                             [&exported](const QStringList& paths, bool) { exported = paths; });
    click("m_pExportAsSequence");
    QObject::disconnect(connection);
    const QDir command(strResults);
    const QStringList maps = command.entryList({"0*.tif"}, QDir::Files, QDir::Name);
    ASSERT_EQ(maps.size(), exported.size());
    ASSERT_GE(maps.size(), 2);
    for (int k = 0; k < maps.size(); ++k) {
        const std::vector<double> byCommand = pixelsOf(command.filePath(maps.at(k)));
        const std::vector<double> byWindow = pixelsOf(QFileInfo(exported.at(k)).path() + "/luminescent.TIF");
        ASSERT_EQ(byCommand.size(), byWindow.size());
        int nInside = 0;
        for (std::size_t i = 0; i < byCommand.size(); ++i) {
            // Outside the mask the one says so, and the other is 0.
            const bool bInside = !std::isnan(byCommand[i]);
            nInside += bInside ? 1 : 0;
            ASSERT_EQ(byWindow[i], bInside ? byCommand[i] : 0.0) << maps.at(k).toStdString() << ", pixel " << i;
        }
        EXPECT_GT(nInside, 100) << maps.at(k).toStdString();
    }
}

std::vector<double> pixelsOf(const QString& strTiff)
{
    CILImage image;
    QString strReason;
    EXPECT_TRUE(readTiff(strTiff, 0, image, &strReason)) << strReason.toStdString();
    std::vector<double> values;
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        values.push_back(image.value(i));
    }
    return values;
}

} // namespace loaded
