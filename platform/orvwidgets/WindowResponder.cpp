// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/WindowResponder.h"

#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/BatchResponder.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace orv {

namespace {

QWidget* parentOf(QWidget* pNamed)
{
    if (pNamed != nullptr) {
        return pNamed;
    }
    QWidget* pModal = QApplication::activeModalWidget();
    return pModal != nullptr ? pModal : QApplication::activeWindow();
}

QMessageBox::Icon iconOf(MessageRequest::Kind eKind)
{
    switch (eKind) {
    case MessageRequest::Warning:
        return QMessageBox::Warning;
    case MessageRequest::Error:
        return QMessageBox::Critical;
    case MessageRequest::Information:
        break;
    }
    return QMessageBox::Information;
}

// What Escape means: backing out before "no" before the only answer there is.
int leastAnswer(const MessageRequest& request)
{
    const QList<int> offered = request.answers();
    if (!request.m_buttonTexts.isEmpty()) {
        return offered.last();
    }
    for (const int wish :
         {static_cast<int>(CORVMessageBox::CancelButton), static_cast<int>(CORVMessageBox::NoButtonAnswer)}) {
        if (offered.contains(wish)) {
            return wish;
        }
    }
    return offered.last();
}

// During a batch nobody is there to answer, but for who works in a dialog or with the main window.
bool isAttended(const QWidget* pAsking)
{
    return !CORVUtilityFns::getSpumBatchStatus() || QApplication::activeModalWidget() != nullptr ||
           qobject_cast<const QMainWindow*>(pAsking) != nullptr;
}

// Runs the dialog, which its parent may take along while it is open.
bool accepted(QPointer<QDialog> pDialog)
{
    const int nResult = pDialog->exec();
    return pDialog && nResult == QDialog::Accepted;
}

// The suffix is appended and the overwriting asked for by who puts the question.
void setUpFileDialog(QFileDialog& dialog, const FileRequest& request)
{
    dialog.setObjectName(QStringLiteral("FileDialog"));
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QFileInfo start(request.m_strFolder);
    if (start.isDir()) {
        dialog.setDirectory(start.absoluteFilePath());
    } else if (!request.m_strFolder.isEmpty()) {
        dialog.setDirectory(start.absolutePath());
        dialog.selectFile(start.fileName());
    }
    switch (request.m_eKind) {
    case FileRequest::SaveFile:
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        break;
    case FileRequest::OpenFile:
        dialog.setFileMode(QFileDialog::ExistingFile);
        break;
    case FileRequest::Folder:
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
        break;
    }
    if (!request.m_filters.isEmpty()) {
        dialog.setNameFilters(request.m_filters);
        dialog.selectNameFilter(request.m_strSelectedFilter);
    }
}

} // namespace

int WindowResponder::ask(const MessageRequest& request)
{
    if (!isAttended(request.m_pParent)) {
        return BatchResponder(CORVMessageBox::NoButtonAnswer).ask(request);
    }
    const QPointer<QMessageBox> pBox(new QMessageBox(parentOf(request.m_pParent)));
    pBox->setObjectName(QStringLiteral("MessageBox"));
    pBox->setIcon(iconOf(request.m_eKind));
    pBox->setWindowTitle(request.m_strCaption);
    pBox->setTextFormat(Qt::PlainText);
    pBox->setText(request.m_strText);
    pBox->setInformativeText(request.m_strDetail);
    const int nLeast = leastAnswer(request);
    QList<QPair<QAbstractButton*, int>> buttons;
    for (const int nAnswer : request.answers()) {
        QPushButton* pButton = nullptr;
        if (request.m_buttonTexts.isEmpty()) {
            pButton = pBox->addButton(static_cast<QMessageBox::StandardButton>(nAnswer));
        } else {
            // One role for all: they stay in the order of the texts.
            pButton = pBox->addButton(request.answerText(nAnswer), QMessageBox::AcceptRole);
        }
        buttons.append({pButton, nAnswer});
        if (nAnswer == request.defaultAnswer()) {
            pBox->setDefaultButton(pButton);
        }
        if (nAnswer == nLeast) {
            pBox->setEscapeButton(pButton);
        }
    }
    pBox->exec();
    if (!pBox) {
        return nLeast;
    }
    int nGiven = nLeast;
    for (const auto& [pButton, nAnswer] : buttons) {
        nGiven = pButton == pBox->clickedButton() ? nAnswer : nGiven;
    }
    delete pBox;
    return nGiven;
}

std::optional<QString> WindowResponder::chooseItem(const ItemRequest& request)
{
    const QPointer<QInputDialog> pDialog(new QInputDialog(parentOf(request.m_pParent)));
    pDialog->setObjectName(QStringLiteral("InputDialog"));
    pDialog->setWindowTitle(request.m_strTitle);
    pDialog->setLabelText(request.m_strLabel);
    pDialog->setComboBoxItems(request.m_items);
    pDialog->setComboBoxEditable(request.m_bEditable);
    pDialog->setTextValue(request.m_items.value(request.m_nCurrent));
    std::optional<QString> answer;
    if (accepted(pDialog.data())) {
        answer = pDialog->textValue();
    }
    delete pDialog;
    return answer;
}

std::optional<FileAnswer> WindowResponder::chooseFile(const FileRequest& request)
{
    const QPointer<QFileDialog> pDialog(new QFileDialog(parentOf(request.m_pParent), request.m_strTitle));
    setUpFileDialog(*pDialog, request);
    std::optional<FileAnswer> answer;
    if (accepted(pDialog.data()) && !pDialog->selectedFiles().isEmpty()) {
        answer = FileAnswer{pDialog->selectedFiles().first(), pDialog->selectedNameFilter()};
    }
    delete pDialog;
    return answer;
}

std::optional<QColor> WindowResponder::chooseColor(const ColorRequest& request)
{
    const QPointer<QColorDialog> pDialog(new QColorDialog(request.m_initial, parentOf(request.m_pParent)));
    pDialog->setObjectName(QStringLiteral("ColorDialog"));
    pDialog->setWindowTitle(request.m_strTitle);
    std::optional<QColor> answer;
    if (accepted(pDialog.data())) {
        answer = pDialog->selectedColor();
    }
    delete pDialog;
    return answer;
}

} // namespace orv
