// SPDX-License-Identifier: GPL-3.0-or-later
// A window with one of each kind of thing that the driver reaches; it tells on its label what happened to it.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDial>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QThread>
#include <QUrl>
#include <QVBoxLayout>

namespace {

class DropLabel : public QLabel
{
public:
    DropLabel()
    {
        setAcceptDrops(true);
        setObjectName("said");
    }

protected:
    void dragEnterEvent(QDragEnterEvent* pEvent) override { pEvent->acceptProposedAction(); }
    void dropEvent(QDropEvent* pEvent) override
    {
        setText("dropped " + pEvent->mimeData()->urls().value(0).fileName());
        pEvent->acceptProposedAction();
    }
};

template <class Widget>
Widget* named(Widget* pWidget, const char* pName, QLayout* pLayout)
{
    pWidget->setObjectName(pName);
    pLayout->addWidget(pWidget);
    return pWidget;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    auto* pCentre = new QWidget;
    auto* pLayout = new QVBoxLayout(pCentre);
    window.setCentralWidget(pCentre);
    auto* pSaid = new DropLabel;
    pLayout->addWidget(pSaid);

    auto* pAsk = named(new QPushButton("&Ask"), "ask", pLayout);
    QObject::connect(pAsk, &QPushButton::clicked, [&] {
        QMessageBox box(QMessageBox::Question, "A question", "Really?", QMessageBox::Yes | QMessageBox::No, &window);
        pSaid->setText(box.exec() == QMessageBox::Yes ? "yes" : "no");
    });
    auto* pOff = named(new QPushButton("Off"), "off", pLayout);
    pOff->setEnabled(false);
    QObject::connect(pOff, &QPushButton::clicked, [&] { pSaid->setText("never"); });
    auto* pBusy = named(new QPushButton("Busy"), "busy", pLayout);
    QObject::connect(pBusy, &QPushButton::clicked, [&] {
        bool bStop = false;
        const auto stop = QObject::connect(pAsk, &QPushButton::pressed, [&] { bStop = true; });
        while (!bStop) {
            QApplication::processEvents();
        }
        QObject::disconnect(stop);
        pSaid->setText("stopped");
    });
    auto* pSlow = named(new QPushButton("Slow"), "slow", pLayout);
    QObject::connect(pSlow, &QPushButton::clicked, [&] { QThread::msleep(300); });
    auto* pCombo = named(new QComboBox, "fruit", pLayout);
    pCombo->addItems({"apple", "pear", "plum"});
    auto* pEdit = named(new QLineEdit, "edit", pLayout);
    QObject::connect(pEdit, &QLineEdit::returnPressed, [&] { pSaid->setText("entered " + pEdit->text()); });
    auto* pSlider = named(new QSlider(Qt::Horizontal), "slider", pLayout);
    pSlider->setRange(0, 100);
    auto* pList = named(new QListWidget, "list", pLayout);
    pList->addItems({"one", "two", "three"});
    QObject::connect(pList, &QListWidget::currentTextChanged, pSaid, &QLabel::setText);
    auto* pTabs = named(new QTabWidget, "tabs", pLayout);
    pTabs->addTab(new QCheckBox("Inside"), "First");
    pTabs->addTab(new QLabel("Other"), "Second");
    named(new QLabel("A text that is longer than its place"), "long", pLayout)->setFixedWidth(40);
    named(new QLabel("A text that has its place"), "short", pLayout);
    auto* pDial = named(new QDial, "dial", pLayout);
    pDial->setAccessibleName("Angle");
    QObject::connect(window.menuBar()->addMenu("&File")->addAction("&Open..."), &QAction::triggered,
                     [&] { pSaid->setText("open"); });
    window.show();
    window.activateWindow();
    return QApplication::exec();
}
