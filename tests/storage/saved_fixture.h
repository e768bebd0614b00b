// SPDX-License-Identifier: GPL-3.0-or-later
// A sequence on disk, its engine, and what was asked, told and called while results are saved beside it.
#pragma once

#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "storage/ResultsListInMemory.h"
#include "storage/SavedResults.h"
#include "storage/SavedResultsOwner.h"

#include "host/CORVMessageBox.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "host/CPLSettingsFileWrapper.h"
#include "platform/orvutils/MessageResponder.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

constexpr int yesNo = CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer;

// A box as one text: kind, caption, text, buttons, default.
inline QString boxText(int eKind, const QString& strCaption, const QString& strText, int nButtons, int nDefault)
{
    static const QStringList kinds{"warning", "information", "error"};
    const QString strShown = strCaption.isNull() ? QString("no caption") : strCaption;
    return QStringList({kinds.value(eKind), strShown, strText, QString::number(nButtons), QString::number(nDefault)})
        .join('|');
}

// A message that has nothing to choose.
inline QString told(const QString& strText)
{
    return boxText(orv::MessageRequest::Information, QString(), strText, CORVMessageBox::Ok, CORVMessageBox::NoButton);
}

// A question with the title of the application and No for its default.
inline QString asked(const QString& strText, int nButtons = yesNo)
{
    return boxText(orv::MessageRequest::Warning, "Orvia", strText, nButtons, CORVMessageBox::NoButtonAnswer);
}

inline QString overwriteQuestion(const QString& strName)
{
    return asked("Spectral Unmixing results are present under \"" + strName + "\".\n Do you want to overwrite?");
}

// Keeps the boxes and answers them.
struct Boxes
{
    QStringList shown;
    QList<QWidget*> parents;
    int answer = CORVMessageBox::NoButtonAnswer;
    std::function<void()> whileOpen;
};

class RecordingResponder : public orv::MessageResponder
{
public:
    explicit RecordingResponder(Boxes& boxes) : m_boxes(boxes) {}
    int ask(const orv::MessageRequest& request) override
    {
        m_boxes.shown +=
            boxText(request.m_eKind, request.m_strCaption, request.m_strText, request.m_nButtons, request.m_nDefault);
        m_boxes.parents += request.m_pParent;
        if (m_boxes.whileOpen) {
            m_boxes.whileOpen();
        }
        return request.answers().size() == 1 ? request.answers().first() : m_boxes.answer;
    }

private:
    Boxes& m_boxes;
};

class RecordingOwner : public SavedResultsOwner
{
public:
    int giveSequenceHome(CORVSequenceDataset*) override
    {
        calls += "home";
        return homeAnswer;
    }
    void showMinimisedWindow(CORVSequenceDataset*) override { calls += "show window"; }
    void activateSequenceWindow(CORVSequenceDataset*) override { calls += "activate window"; }
    void setEnabled(bool bEnabled) override { calls += bEnabled ? "enable" : "disable"; }
    void takeSelection() override { calls += "selection"; }
    void updateUI() override { calls += "update"; }
    bool showsResult() const override { return treeFilled; }
    void fillResultsTree() override
    {
        treeFilled = true;
        calls += "fill tree";
    }
    void clearResultsTree() override
    {
        treeFilled = false;
        calls += "clear tree";
    }
    void showResultsTab() override { calls += "results tab"; }

    QStringList calls;
    bool treeFilled = false;
    int homeAnswer = 0;
};

class RecordingList : public ResultsListInMemory
{
public:
    void updateSavedResultsForSelSeqId(const QString& strSequence) override
    {
        updates += strSequence;
        ResultsListInMemory::updateSavedResultsForSelSeqId(strSequence);
    }
    QStringList updates;
};

// Opens the sequence in the folder, made with one dataset without images.
inline void openPlainSequence(CORVSequenceDataset& sequence, const QString& strFolder)
{
    QDir().mkpath(strFolder + "/click");
    QFile file(strFolder + "/click/ClickInfo.txt");
    if (file.open(QIODevice::WriteOnly)) {
        file.write("[ClickNumber]\nClickNumber: SAVED-001\n");
        file.close();
    }
    sequence.open(strFolder);
    sequence.setSequenceID("seq-7");
    sequence.setSequenceName("Mouse seven");
}

class SavedFixture : public ::testing::Test
{
protected:
    SavedFixture()
    {
        // A user without rights has to reach it, too.
        QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7755));
        openPlainSequence(m_sequence, m_folder.filePath("two words"));
        m_results.setEngine(&m_engine);
        m_results.m_clock = [this] { return m_moment.addSecs(m_nStep * m_nAsked++); };
        orv::setMessageResponder(std::make_unique<RecordingResponder>(m_boxes));
    }
    ~SavedFixture() override
    {
        orv::setMessageResponder(nullptr);
        CORVMessageBox::setCancelClicked(false);
        CORVUtilityFns::setCloseAllClicked(false);
        CORVUtilityFns::setNoToAllClicked(false);
        CORVUtilityFns::setSpumBatchProcessingCount(0);
        CORVUtilityFns::setSpumBatchNewFolderStatus(false);
    }

    QString info() const { return m_sequence.getSequenceInfoPath(); }
    QString path(const QString& strRelative) const { return info() + strRelative; }

    // The note tells whose document it is.
    SaveOutcome save(const QString& strName)
    {
        m_engine.resultView().setNote("note of " + strName);
        m_list.setCurrentText(strName);
        return m_results.onClickSaveResults();
    }
    // Saves names with a second between them; true when all were saved.
    bool saveAll(const QStringList& names)
    {
        bool bAll = true;
        for (const QString& name : names) {
            bAll = save(name) == SaveOutcome::Saved && bAll;
            m_moment = m_moment.addSecs(1);
        }
        return bAll;
    }

    QByteArray bytes(const QString& strRelative) const
    {
        QFile file(path(strRelative));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    void writeBytes(const QString& strRelative, const QByteArray& content) const
    {
        QFile file(path(strRelative));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    // Names and files of an index, "name > file" each; one text when it cannot be read.
    QStringList entries(const QString& strFolder = "XML") const
    {
        CPLSettingsFileWrapper index;
        if (!index.load(path(strFolder + "/SPUM.txt"))) {
            return {"unreadable"};
        }
        index.setMenuNameTag("MenuName");
        index.setFileNameTag("FileName");
        QStringList found;
        for (const QString& name : index.getMenuNames("SPUM")) {
            found += name + " > " + index.getFileNameForMenuName(name, "none");
        }
        return found;
    }
    QStringList names(const QString& strFolder = "XML") const
    {
        QStringList found;
        for (const QString& entry : entries(strFolder)) {
            found += entry.section(" > ", 0, 0);
        }
        return found;
    }
    QStringList files(const QString& strFolder = "XML") const
    {
        return QDir(path(strFolder + "/SpecUnmix")).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    // The note of the document that the entry of this name points at.
    QString noteOf(const QString& strName, const QString& strFolder = "XML") const
    {
        for (const QString& entry : entries(strFolder)) {
            if (entry.section(" > ", 0, 0) == strName) {
                QDomDocument document;
                const QByteArray text = bytes(strFolder + "/" + entry.section(" > ", 1));
                return document.setContent(text) ? document.documentElement().attribute("Note") : QString("torn");
            }
        }
        return "not listed";
    }
    // The index can be read, and each entry points at a whole document of its own.
    bool isSound() const
    {
        for (const QString& name : names()) {
            if (noteOf(name) != "note of " + name) {
                ADD_FAILURE() << name.toStdString() << " has the note " << noteOf(name).toStdString();
                return false;
            }
        }
        return true;
    }

    QTemporaryDir m_folder;
    CORVSequenceDataset m_sequence;
    CORVSpumKyvo m_engine{"seq-7"};
    RecordingList m_list;
    RecordingOwner m_owner;
    SavedResults m_results{m_list, m_owner};
    Boxes m_boxes;
    LogCapture m_log;
    QDateTime m_moment{QDate(2024, 1, 31), QTime(23, 59, 50)};
    int m_nStep = 0;  // seconds between two looks at the clock
    int m_nAsked = 0; // looks
};
