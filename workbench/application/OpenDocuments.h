// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/application/documentWindows.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class CORVChildWindow;
class CORVDataset;
class CORVMdiSubWindow;
class CORVSequenceDataset;
class CORVSequenceWindow;
class QMdiArea;
class QMdiSubWindow;

// What is open, a window of the work area each: sequences, images of their datasets, and datasets by themselves, such
// as maps. Whatever is opened here belongs to this object and lives as long as its window, whichever way that is
// closed.
class OpenDocuments : public QObject
{
    Q_OBJECT

public:
    // How an opening ended. The sequence or the dataset is null with an error.
    template <typename Document>
    struct Outcome
    {
        Document* document = nullptr;
        bool wasOpen = false;
        QString error;        // file and reason
        QStringList warnings; // what could be passed over
    };

    explicit OpenDocuments(QMdiArea* pArea, QObject* pParent = nullptr);
    // Closes everything, and asks nobody.
    ~OpenDocuments() override;

    // Opens the sequence of that folder or info file and shows it in front; one that is open already comes to the
    // front.
    Outcome<CORVSequenceDataset> openSequence(const QString& strPath);
    // Opens the dataset of that folder or click info file, out of the window of a sequence or by itself, with its
    // images in memory, so that it stays what it is when a program writes another one into the folder.
    Outcome<CORVDataset> openDataset(const QString& strPath, bool bShow, bool bOfSequenceWindow = false);
    // Datasets that were opened by themselves, in the order of their opening.
    QList<CORVDataset*> ownDatasets() const;
    // Closes the window of such a dataset, shown or hidden, as the user would.
    void closeDataset(const CORVDataset* pDataset);
    // Shows a dataset of an open sequence in an image window.
    void showDataset(CORVDataset* pDataset);

    QList<CORVSequenceDataset*> sequences() const;
    // Where the window of a sequence is in the work area; invalid for one that fills it. It is put where it can be
    // reached.
    QRect place(const CORVSequenceDataset* pSequence) const;
    void setPlace(const CORVSequenceDataset* pSequence, const QRect& place);
    // Of the window in front; null when that shows something else, or nothing.
    CORVSequenceDataset* currentSequence() const;
    CORVSequenceWindow* currentSequenceWindow() const;
    CORVDataset* currentDataset() const;
    // As its window is called, without the mark of a change.
    QString currentTitle() const;
    int count() const;

    // Asked before a window closes, the answer false keeps it; without one every window closes.
    void setClosingQuestion(std::function<bool(CORVChildWindow*)> question);
    // Closes the window in front, or all, as the user would. False when one stays; then all of them do.
    bool closeCurrent();
    bool closeAll();

Q_SIGNALS:
    void sequenceAdded(CORVSequenceDataset* pSequence);
    // The sequence and its window are still there, and go next.
    void sequenceRemoved(CORVSequenceDataset* pSequence);
    void datasetRemoved(CORVDataset* pDataset);
    // Another window is in front, or none.
    void currentChanged();
    // Of the sequence window in front.
    void tabChanged(const QString& strTab);
    // What lies below the pointer, for the status bar; empty when it lies nowhere.
    void readOut(const QString& strText);

private:
    // A window with what it shows. A dataset of a sequence belongs to that.
    struct Shown
    {
        CORVChildWindow* m_pWindow = nullptr;
        // Asked for while it ends, too, when it is no CORVMdiSubWindow any more.
        QPointer<QMdiSubWindow> m_pFrame;
        CORVSequenceDataset* m_pSequence = nullptr;
        CORVDataset* m_pDataset = nullptr;
        std::unique_ptr<QObject> m_pOwnedSequence;
        std::unique_ptr<CORVDataset> m_pOwnedDataset;
        bool m_bClosing = false;
    };

    documentWindows::Listener listener();
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    CORVMdiSubWindow* add(Shown&& shown);
    CORVMdiSubWindow* frameOf(const CORVSequenceDataset* pSequence) const;
    Shown* shownBy(const QObject* pWindow);
    const Shown* current() const;
    bool allowsClosing(Shown& shown);
    void closeWindowsOfDatasets(const CORVSequenceDataset* pSequence);
    void forget(const QObject* pWindow);
    void noteCurrent();

    QMdiArea* m_pArea;
    std::vector<std::unique_ptr<Shown>> m_shown;
    std::function<bool(CORVChildWindow*)> m_question;
    const CORVChildWindow* m_pNoted = nullptr; // the one in front as it was told last
    bool m_bQuiet = false;                     // many windows are about to close
};
