// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CORVSequenceDataset;
class QWidget;

// What the saving and loading of results asks of the window around it, in the words of that window. A program without
// one takes this class as it is: nothing happens, and no result is shown that could be lost.
class SavedResultsOwner
{
public:
    SavedResultsOwner() = default;
    SavedResultsOwner(const SavedResultsOwner&) = delete;
    SavedResultsOwner& operator=(const SavedResultsOwner&) = delete;
    virtual ~SavedResultsOwner() = default;

    // Parents of messages; may be null.
    virtual QWidget* messageParent() { return nullptr; }
    virtual QWidget* activeChildWindow() { return nullptr; }

    // Lets the sequence's window give a sequence without a folder one; 0 when it has one afterwards, or there is no
    // window.
    virtual int giveSequenceHome(CORVSequenceDataset*) { return 0; }
    // Shows the parent of the sequence's window if it is minimised.
    virtual void showMinimisedWindow(CORVSequenceDataset*) {}
    virtual void activateSequenceWindow(CORVSequenceDataset*) {}

    virtual void setEnabled(bool) {}
    // Copies the engine's key pairs and spectrum type.
    virtual void takeSelection() {}
    virtual void updateUI() {}
    // Whether the tree of result properties has an item.
    virtual bool showsResult() const { return false; }
    virtual void fillResultsTree() {}
    virtual void clearResultsTree() {}
    virtual void showResultsTab() {}
};
