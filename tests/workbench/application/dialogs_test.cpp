// SPDX-License-Identifier: GPL-3.0-or-later
// The dialogs of the main window, and pictures on paper and on the clipboard.
#include "MainWindowFixture.h"

#include "host/CORVPreferenceSignals.h"
#include "host/CORVSequenceWindow.h"
#include "host/S3DViewSettings.h"
#include "workbench/application/DatasetView.h"
#include "workbench/application/DatasetWindow.h"
#include "workbench/application/PreferencesDialog.h"
#include "workbench/application/SimulateDialog.h"
#include "workbench/application/helpTexts.h"
#include "workbench/application/openable.h"
#include "workbench/application/printing.h"
#include "workbench/application/settingNames.h"

#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrinter>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTextBrowser>
#include <QTimer>

namespace {

const QString spum = QStringLiteral(ORV_BINARY_DIR "/bin/spum");

class DialogsTest : public MainWindowFixture
{
protected:
    // Looks at the modal dialog that the next event loop runs, and ends it.
    static void whenAsked(const std::function<void(QWidget&)>& look)
    {
        QTimer::singleShot(100, qApp, [look] {
            QWidget* pDialog = QApplication::activeModalWidget();
            EXPECT_NE(pDialog, nullptr);
            if (pDialog != nullptr) {
                look(*pDialog);
                pDialog->close();
            }
        });
    }
    template <typename Widget>
    static Widget& part(QWidget& dialog, const char* pName)
    {
        auto* pPart = dialog.findChild<Widget*>(QLatin1String(pName));
        EXPECT_NE(pPart, nullptr) << pName;
        return *pPart;
    }
};

TEST_F(DialogsTest, ASimulatedMouseIsWrittenWhereItWasSaid)
{
    SimulateDialog dialog(m_folder.path(), spum, nullptr);
    EXPECT_EQ(dialog.folder(), m_folder.filePath("mouse"));
    part<QComboBox>(dialog, "simulateKind").setCurrentIndex(1);
    EXPECT_EQ(dialog.folder(), m_folder.filePath("mouse-luminescent"));
    part<QComboBox>(dialog, "simulateSize").setCurrentIndex(0);
    dialog.show();
    QTest::mouseClick(&part<QPushButton>(dialog, "simulateStart"), Qt::LeftButton);
    EXPECT_FALSE(part<QPushButton>(dialog, "simulateStart").isEnabled());
    EXPECT_TRUE(QTest::qWaitFor([&dialog] { return dialog.result() == QDialog::Accepted; }, 60000))
        << qPrintable(part<QLabel>(dialog, "simulateMessage").text());
    EXPECT_EQ(openableKind(dialog.folder()), Openable::Sequence);
}

TEST_F(DialogsTest, AFolderThatTheUserNamedStays)
{
    SimulateDialog dialog(m_folder.path(), spum, nullptr);
    part<QLineEdit>(dialog, "simulateFolder").setText("/data/mine");
    part<QComboBox>(dialog, "simulateKind").setCurrentIndex(2);
    EXPECT_EQ(dialog.folder(), "/data/mine");
}

TEST_F(DialogsTest, ASimulationThatFailsSaysWhy)
{
    SimulateDialog dialog(m_folder.path(), spum, nullptr);
    dialog.show();
    part<QLineEdit>(dialog, "simulateFolder").setText(m_folder.filePath("no/such/place"));
    QTest::mouseClick(&part<QPushButton>(dialog, "simulateStart"), Qt::LeftButton);
    auto& message = part<QLabel>(dialog, "simulateMessage");
    EXPECT_TRUE(QTest::qWaitFor([&] { return message.text().contains("no/such"); }, 30000))
        << qPrintable(message.text());
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_TRUE(part<QPushButton>(dialog, "simulateStart").isEnabled());
}

TEST_F(DialogsTest, AProgramThatIsMissingIsTold)
{
    SimulateDialog dialog(m_folder.path(), "/none/spum", nullptr);
    dialog.show();
    QTest::mouseClick(&part<QPushButton>(dialog, "simulateStart"), Qt::LeftButton);
    auto& message = part<QLabel>(dialog, "simulateMessage");
    EXPECT_TRUE(QTest::qWaitFor([&] { return message.text().contains("/none/spum"); }, 5000));
}

TEST_F(DialogsTest, AnAbortedSimulationLeavesNothing)
{
    SimulateDialog dialog(m_folder.path(), spum, nullptr);
    auto& sizes = part<QComboBox>(dialog, "simulateSize");
    sizes.setCurrentIndex(sizes.count() - 1);
    dialog.show();
    QTest::mouseClick(&part<QPushButton>(dialog, "simulateStart"), Qt::LeftButton);
    QTest::qWait(300);
    QTest::keyClick(&dialog, Qt::Key_Escape);
    auto& message = part<QLabel>(dialog, "simulateMessage");
    EXPECT_TRUE(QTest::qWaitFor([&] { return message.text().startsWith("Aborted;"); }, 30000));
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(DialogsTest, PreferencesAreKeptAndTold)
{
    PreferencesDialog dialog(nullptr);
    part<QSpinBox>(dialog, "preferencesLabelSize").setValue(17);
    part<QComboBox>(dialog, "preferencesFormat").setCurrentIndex(1);
    part<QLineEdit>(dialog, "preferencesPlugins").setText(" /opt/tools ");
    QSignalSpy told(CORVPreference::getSignalHandler(), &CORVPreferenceSignals::updatePreferenceSetting);
    dialog.reject();
    EXPECT_EQ(told.size(), 0);
    dialog.accept();
    EXPECT_EQ(told.size(), 1);
    S3DViewSettings views;
    CORVPreference::get3DViewPreferences(views);
    EXPECT_EQ(views.labelFontSize, 17);
    EXPECT_EQ(CORVPreference::usersPreferredFormat(), "png");
    EXPECT_EQ(CORVPreference::getSettings()->value(settingNames::pluginFolder()).toString(), "/opt/tools");
}

TEST_F(DialogsTest, AboutTellsVersionLicenceAndTools)
{
    makeWindowWithTool();
    QString text;
    whenAsked([&text](QWidget& box) { text = static_cast<QMessageBox&>(box).text(); });
    trigger("aboutAction");
    EXPECT_TRUE(text.contains(CORVPreference::getAppVersion()));
    EXPECT_TRUE(text.contains("GNU General Public License"));
    EXPECT_TRUE(text.contains("Fake"));
    EXPECT_TRUE(helpTexts::about("1", "<b>").contains("&lt;b&gt;"));
}

TEST_F(DialogsTest, HelpTellsHowToBegin)
{
    makeWindow();
    QString text;
    whenAsked([&text](QWidget& box) { text = box.findChild<QTextBrowser*>()->toPlainText(); });
    QTest::keyClick(m_pWindow.get(), Qt::Key_F1);
    EXPECT_TRUE(QTest::qWaitFor([&text] { return !text.isEmpty(); }, 2000));
    for (const char* pWord : {"Start Unmixing", "Ctrl+O", "Esc", "Results"}) {
        EXPECT_TRUE(text.contains(pWord)) << pWord;
    }
}

// What the guide says of keys is what the menus do.
TEST_F(DialogsTest, TheGuideNamesTheKeysOfTheMenus)
{
    makeWindow();
    const QString text = helpTexts::guide();
    for (const char* pName :
         {"openAction", "importAction", "closeAction", "quitAction", "copyPictureAction", "printAction",
          "switchPaneAction", "fullScreenAction", "nextWindowAction", "undoAction"}) {
        const QString keys = find<QAction>(pName)->shortcut().toString(QKeySequence::PortableText);
        EXPECT_TRUE(text.contains("<td>" + keys)) << pName << ' ' << qPrintable(keys);
    }
}

TEST_F(DialogsTest, NoTwoActionsHaveTheSameKeys)
{
    makeWindow();
    QStringList all;
    for (const QAction* pAction : m_pWindow->findChildren<QAction*>()) {
        for (const QKeySequence& keys : pAction->shortcuts()) {
            if (!keys.isEmpty() && pAction->shortcutContext() == Qt::WindowShortcut) {
                EXPECT_FALSE(all.contains(keys.toString())) << qPrintable(keys.toString());
                all << keys.toString();
            }
        }
    }
    EXPECT_GE(all.size(), 15);
}

TEST_F(DialogsTest, ThePictureOfATabIsCopied)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    QApplication::clipboard()->clear();
    trigger("copyPictureAction");
    EXPECT_GT(QApplication::clipboard()->image().width(), 100);
}

TEST_F(DialogsTest, AnImageIsCopiedWithItsBarAndWithoutItsControls)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    CORVDataset* pDataset = m_pWindow->documents().currentSequence()->getDatasets().first();
    m_pWindow->documents().showDataset(pDataset);
    trigger("copyPictureAction");
    auto* pShown = qobject_cast<DatasetWindow*>(CORVImageWindow::getImageWindow(pDataset));
    ASSERT_NE(pShown, nullptr);
    const QImage picture = pShown->view()->pictureToKeep();
    ASSERT_GT(picture.width(), 100);
    EXPECT_EQ(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
              picture.convertToFormat(QImage::Format_RGB32));
}

TEST_F(DialogsTest, APictureIsPaintedOnPaper)
{
    QPixmap picture(300, 200);
    picture.fill(Qt::red);
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(m_folder.filePath("page.pdf"));
    printing::paint(printer, picture);
    QFile file(m_folder.filePath("page.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
    EXPECT_GT(file.size(), 1000);
}

TEST_F(DialogsTest, APageThatCannotBeWrittenIsTold)
{
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(m_folder.filePath("no/folder/page.pdf"));
    printing::paint(printer, QPixmap(10, 10));
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_script.m_asked.first().startsWith("Nothing was printed"));
}

TEST_F(DialogsTest, PreviewShowsThePage)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    QString name;
    whenAsked([&name](QWidget& dialog) { name = dialog.objectName(); });
    trigger("previewAction");
    EXPECT_EQ(name, "PrintPreviewDialog");
    EXPECT_TRUE(m_pTool->m_told.contains("print"));
}

TEST_F(DialogsTest, TheToolsPictureIsPrintedInPlaceOfTheTabs)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    QString name;
    whenAsked([&name](QWidget& dialog) { name = dialog.objectName(); });
    QPixmap picture(50, 50);
    picture.fill(Qt::blue);
    Q_EMIT m_pTool->printPixmap(picture, true);
    EXPECT_EQ(name, "PrintDialog");
}

TEST_F(DialogsTest, TheToolHasASequenceMadeOfMaps)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    QStringList clickInfos;
    for (const CORVDataset* pDataset : m_pWindow->documents().currentSequence()->getDatasets().mid(0, 2)) {
        clickInfos << pDataset->folderPath() + "ClickInfo.txt";
    }
    m_script.m_file = m_folder.filePath("maps");
    Q_EMIT m_pTool->createSequence(clickInfos, false);
    EXPECT_EQ(m_script.m_titles, QStringList("Folder of the new sequence"));
    EXPECT_EQ(m_pWindow->documents().currentSequence()->getSequenceName(), "maps");
    EXPECT_EQ(m_pWindow->documents().currentSequence()->getDatasets().size(), 2);
}

TEST_F(DialogsTest, TheToolChangesTheUnitOfASequence)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    auto* pBox = find<QComboBox>("m_pSequenceUnitBox");
    ASSERT_NE(pBox->currentData().toInt(), static_cast<int>(DISPLAYUNIT_COUNTS));
    Q_EMIT m_pTool->changeSeqWndUnit(m_pWindow->documents().currentSequence()->getSequenceID(), DISPLAYUNIT_COUNTS);
    EXPECT_EQ(pBox->currentData().toInt(), static_cast<int>(DISPLAYUNIT_COUNTS));
    Q_EMIT m_pTool->changeSeqWndUnit("no such sequence", DISPLAYUNIT_RADIANCE);
    EXPECT_EQ(pBox->currentData().toInt(), static_cast<int>(DISPLAYUNIT_COUNTS));
}

TEST_F(DialogsTest, OneKeyGoesToThePanelAndBack)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    auto* pTab = find<QComboBox>("m_pSequenceUnitBox");
    pTab->setFocus();
    QTest::keyClick(m_pWindow.get(), Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), m_pTool->m_pFirst);
    m_pTool->m_pStart->setFocus();
    QTest::keyClick(m_pWindow.get(), Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), pTab);
    QTest::keyClick(m_pWindow.get(), Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), m_pTool->m_pStart);
}

} // namespace
