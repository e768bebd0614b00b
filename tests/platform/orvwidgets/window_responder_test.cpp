// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/WindowResponder.h"

#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/LogSinks.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

namespace {

using orv::ColorRequest;
using orv::FileRequest;
using orv::ItemRequest;
using orv::MessageRequest;
using orv::WindowResponder;

// Does something with the dialog of this kind once it is open.
template <typename Dialog>
void whenOpen(std::function<void(Dialog*)> act)
{
    auto* pTimer = new QTimer;
    QObject::connect(pTimer, &QTimer::timeout, pTimer, [pTimer, act] {
        auto* pDialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        if (pDialog != nullptr && pDialog->isVisible()) {
            pTimer->stop();
            pTimer->deleteLater();
            act(pDialog);
        }
    });
    pTimer->start(1);
}

MessageRequest question(int nButtons, int nDefault = 0)
{
    MessageRequest request;
    request.m_eKind = MessageRequest::Warning;
    request.m_strCaption = "Orvia";
    request.m_strText = "Save <b>it</b>?";
    request.m_nButtons = nButtons;
    request.m_nDefault = nDefault;
    return request;
}

void clickText(QMessageBox* pBox, const QString& strText)
{
    for (QAbstractButton* pButton : pBox->buttons()) {
        if (pButton->text().remove('&') == strText) {
            pButton->click();
            return;
        }
    }
    ADD_FAILURE() << "no button " << strText.toStdString();
    pBox->reject();
}

struct ButtonCase
{
    const char* text;
    int answer;
};

class WindowResponderButtonTest : public ::testing::TestWithParam<ButtonCase>
{
};

TEST_P(WindowResponderButtonTest, GivesTheAnswerOfTheButton)
{
    const ButtonCase c = GetParam();
    whenOpen<QMessageBox>([c](QMessageBox* pBox) { clickText(pBox, QString::fromLatin1(c.text)); });
    EXPECT_EQ(WindowResponder().ask(question(CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer |
                                             CORVMessageBox::NoToAllButton | CORVMessageBox::CancelButton)),
              c.answer);
}

INSTANTIATE_TEST_SUITE_P(Table, WindowResponderButtonTest,
                         ::testing::Values(ButtonCase{"Yes", CORVMessageBox::YesButton},
                                           ButtonCase{"No", CORVMessageBox::NoButtonAnswer},
                                           ButtonCase{"No to All", CORVMessageBox::NoToAllButton},
                                           ButtonCase{"Cancel", CORVMessageBox::CancelButton}));

TEST(WindowResponderTest, ShowsTheTextsAsTheyAre)
{
    whenOpen<QMessageBox>([](QMessageBox* pBox) {
        EXPECT_EQ(pBox->objectName(), "MessageBox");
        EXPECT_EQ(pBox->windowTitle(), "Orvia");
        EXPECT_EQ(pBox->text(), "Save <b>it</b>?");
        EXPECT_EQ(pBox->textFormat(), Qt::PlainText);
        EXPECT_EQ(pBox->icon(), QMessageBox::Warning);
        EXPECT_EQ(pBox->informativeText(), "below");
        clickText(pBox, "OK");
    });
    MessageRequest request = question(CORVMessageBox::Ok);
    request.m_strDetail = "below";
    EXPECT_EQ(WindowResponder().ask(request), CORVMessageBox::Ok);
}

TEST(WindowResponderTest, EnterMeansTheDefault)
{
    whenOpen<QMessageBox>([](QMessageBox* pBox) {
        EXPECT_EQ(pBox->defaultButton()->text().remove('&'), "No");
        pBox->defaultButton()->click();
    });
    EXPECT_EQ(WindowResponder().ask(
                  question(CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer, CORVMessageBox::NoButtonAnswer)),
              CORVMessageBox::NoButtonAnswer);
}

struct EscapeCase
{
    int buttons;
    int answer;
};

class WindowResponderEscapeTest : public ::testing::TestWithParam<EscapeCase>
{
};

TEST_P(WindowResponderEscapeTest, MeansTheAnswerThatChangesLeast)
{
    whenOpen<QMessageBox>([](QMessageBox* pBox) { QTest::keyClick(pBox, Qt::Key_Escape); });
    EXPECT_EQ(WindowResponder().ask(question(GetParam().buttons, CORVMessageBox::YesButton)), GetParam().answer);
}

constexpr int yes = CORVMessageBox::YesButton;
constexpr int no = CORVMessageBox::NoButtonAnswer;
constexpr int noToAll = CORVMessageBox::NoToAllButton;
constexpr int cancel = CORVMessageBox::CancelButton;
INSTANTIATE_TEST_SUITE_P(Table, WindowResponderEscapeTest,
                         ::testing::Values(EscapeCase{CORVMessageBox::Ok, CORVMessageBox::Ok}, EscapeCase{yes | no, no},
                                           EscapeCase{yes | no | noToAll, no}, EscapeCase{yes | no | cancel, cancel},
                                           EscapeCase{CORVMessageBox::Ok | cancel, cancel}));

TEST(WindowResponderTest, ButtonsWithTextsAnswerByTheirPlace)
{
    MessageRequest request = question(0);
    request.m_buttonTexts = QStringList{"Keep", "", "Drop"};
    whenOpen<QMessageBox>([](QMessageBox* pBox) {
        EXPECT_EQ(pBox->buttons().size(), 2);
        clickText(pBox, "Drop");
    });
    EXPECT_EQ(WindowResponder().ask(request), 2);
    whenOpen<QMessageBox>([](QMessageBox* pBox) { clickText(pBox, "Keep"); });
    EXPECT_EQ(WindowResponder().ask(request), 0);
}

TEST(WindowResponderTest, StandsInFrontOfTheWindowThatAsks)
{
    QWidget window;
    window.show();
    MessageRequest request = question(CORVMessageBox::Ok);
    request.m_pParent = &window;
    whenOpen<QMessageBox>([&window](QMessageBox* pBox) {
        EXPECT_EQ(pBox->parentWidget(), &window);
        pBox->reject();
    });
    WindowResponder().ask(request);
}

TEST(WindowResponderTest, AWindowThatGoesWhileItAsksIsAnsweredWithTheLeast)
{
    auto* pWindow = new QWidget;
    pWindow->show();
    MessageRequest request = question(CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer);
    request.m_pParent = pWindow;
    whenOpen<QMessageBox>([pWindow](QMessageBox*) { delete pWindow; });
    EXPECT_EQ(WindowResponder().ask(request), CORVMessageBox::NoButtonAnswer);
}

TEST(WindowResponderTest, AnItemIsChosenFromAList)
{
    ItemRequest request;
    request.m_strTitle = "Select component to export)";
    request.m_strLabel = "Which one?";
    request.m_items = QStringList{"No.1", "No.2", "No.3"};
    request.m_nCurrent = 1;
    whenOpen<QInputDialog>([](QInputDialog* pDialog) {
        EXPECT_EQ(pDialog->objectName(), "InputDialog");
        EXPECT_EQ(pDialog->windowTitle(), "Select component to export)");
        EXPECT_EQ(pDialog->labelText(), "Which one?");
        EXPECT_EQ(pDialog->textValue(), "No.2");
        EXPECT_FALSE(pDialog->isComboBoxEditable());
        pDialog->setTextValue("No.3");
        pDialog->accept();
    });
    EXPECT_EQ(WindowResponder().chooseItem(request), QString("No.3"));
    whenOpen<QInputDialog>([](QInputDialog* pDialog) { pDialog->reject(); });
    EXPECT_EQ(WindowResponder().chooseItem(request), std::nullopt);
}

TEST(WindowResponderTest, AFileIsChosenWithItsFilterAndWithoutAQuestionOfItsOwn)
{
    QTemporaryDir folder;
    const QString taken = folder.filePath("a.csv");
    QFile file(taken);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    FileRequest request;
    request.m_strTitle = "Save Plot Data";
    request.m_strFolder = taken;
    request.m_filters = QStringList{"Text (*.txt)", "Plot Data (*.csv)"};
    request.m_strSelectedFilter = "Plot Data (*.csv)";
    whenOpen<QFileDialog>([&](QFileDialog* pDialog) {
        EXPECT_EQ(pDialog->objectName(), "FileDialog");
        EXPECT_EQ(pDialog->windowTitle(), "Save Plot Data");
        EXPECT_EQ(pDialog->selectedNameFilter(), "Plot Data (*.csv)");
        EXPECT_EQ(pDialog->selectedFiles(), QStringList{taken});
        QMetaObject::invokeMethod(pDialog, "accept");
    });
    const auto answer = WindowResponder().chooseFile(request);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->m_strPath, taken);
    EXPECT_EQ(answer->m_strFilter, "Plot Data (*.csv)");
    whenOpen<QFileDialog>([](QFileDialog* pDialog) { pDialog->reject(); });
    EXPECT_FALSE(WindowResponder().chooseFile(request));
}

TEST(WindowResponderTest, AFolderIsChosen)
{
    QTemporaryDir folder;
    FileRequest request;
    request.m_eKind = FileRequest::Folder;
    request.m_strFolder = folder.path();
    whenOpen<QFileDialog>([](QFileDialog* pDialog) {
        EXPECT_EQ(pDialog->fileMode(), QFileDialog::Directory);
        QMetaObject::invokeMethod(pDialog, "accept");
    });
    const auto answer = WindowResponder().chooseFile(request);
    ASSERT_TRUE(answer);
    EXPECT_EQ(QDir(answer->m_strPath), QDir(folder.path()));
}

TEST(WindowResponderTest, AColorIsChosen)
{
    ColorRequest request;
    request.m_strTitle = "Select Solid Color";
    request.m_initial = QColor("lime");
    whenOpen<QColorDialog>([](QColorDialog* pDialog) {
        EXPECT_EQ(pDialog->objectName(), "ColorDialog");
        EXPECT_EQ(pDialog->windowTitle(), "Select Solid Color");
        EXPECT_EQ(pDialog->currentColor(), QColor("lime"));
        pDialog->setCurrentColor(QColor("gold"));
        QMetaObject::invokeMethod(pDialog, "accept");
    });
    EXPECT_EQ(WindowResponder().chooseColor(request), QColor("gold"));
    whenOpen<QColorDialog>([](QColorDialog* pDialog) { pDialog->reject(); });
    EXPECT_EQ(WindowResponder().chooseColor(request), std::nullopt);
}

TEST(WindowResponderTest, ABatchIsNotHeldUpByQuestions)
{
    constexpr int yesNoCancel =
        CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer | CORVMessageBox::CancelButton;
    QStringList logged;
    const int nSink = orv::addLogSink([&logged](const orv::LogRecord& line) { logged << line.m_strMessage; });
    CORVUtilityFns::setSpumBatchStatus(true);
    EXPECT_EQ(WindowResponder().ask(question(yesNoCancel, CORVMessageBox::YesButton)), CORVMessageBox::NoButtonAnswer);
    EXPECT_EQ(WindowResponder().ask(question(CORVMessageBox::Ok)), CORVMessageBox::Ok);
    orv::removeLogSink(nSink);
    ASSERT_EQ(logged.size(), 2);
    EXPECT_TRUE(logged.first().contains("Save <b>it</b>?"));

    // Who closes the program or works in a dialog is there to be asked.
    QMainWindow window;
    MessageRequest closing = question(yesNoCancel);
    closing.m_pParent = &window;
    whenOpen<QMessageBox>([](QMessageBox* pBox) { clickText(pBox, "Yes"); });
    EXPECT_EQ(WindowResponder().ask(closing), CORVMessageBox::YesButton);
    QDialog dialog;
    int nAnswer = 0;
    QTimer::singleShot(0, &dialog, [&] {
        whenOpen<QMessageBox>([](QMessageBox* pBox) { clickText(pBox, "Yes"); });
        nAnswer = WindowResponder().ask(question(yesNoCancel));
        dialog.reject();
    });
    dialog.exec();
    CORVUtilityFns::setSpumBatchStatus(false);
    EXPECT_EQ(nAnswer, CORVMessageBox::YesButton);
}

} // namespace
