// SPDX-License-Identifier: GPL-3.0-or-later
// The plug-in, loaded into a host with a main window and windows of sequences on disk.
#pragma once

#include "host/CORVDataset.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVToolPalettePluginBase.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/MessageResponder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QMainWindow>
#include <QMdiArea>
#include <QPluginLoader>
#include <QPointer>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace loaded {

// Texts of questions, each answered by `answer` where that is offered.
struct Answers
{
    QStringList asked;
    int answer = CORVMessageBox::YesButton;
};

// A sequence with its window.
struct Opened
{
    std::unique_ptr<CORVSequenceDataset> sequence;
    QPointer<CORVSequenceWindow> window;
    ~Opened();
};

class LoadedPlugin : public ::testing::Test
{
protected:
    LoadedPlugin();
    ~LoadedPlugin() override;

    // A simulated mouse of that many bands in a folder of its own.
    QString simulated(const QString& strName, const QStringList& options);
    // Opens the sequence in the folder, as the host does: window first, then the tool is told.
    Opened& open(const QString& strFolder);
    void close(Opened& opened);

    // By object name, in the palette or in any window.
    template <class Widget>
    Widget* find(const char* pName) const
    {
        if (auto* pFound = m_pPalette->findChild<Widget*>(pName)) {
            return pFound;
        }
        for (QWidget* pWidget : QApplication::allWidgets()) {
            auto* pFound = qobject_cast<Widget*>(pWidget);
            if (pFound != nullptr && pFound->objectName() == QLatin1String(pName)) {
                return pFound;
            }
        }
        return nullptr;
    }
    void click(const char* pButton);
    void choose(const char* pMethod);
    // Start, and Finish of the wizard.
    void unmixAutomatically();
    QStringList resultItems() const;
    QStringList savedNames() const;
    // Exports the maps on screen, and compares them to the bit with those in a folder of results of the command line.
    void expectMapsOf(const QString& strResults);
    // What the log warned of.
    std::string complaints() const { return m_complaints.join("\n").toStdString(); }

    QPluginLoader m_loader;
    CORVToolPalettePluginBase* m_pPlugin = nullptr;
    QWidget* m_pPalette = nullptr;
    QMainWindow m_main;
    QMdiArea* m_pArea = nullptr;
    Answers m_answers;
    QStringList m_complaints;
    QStringList m_qtWarnings;
    std::vector<std::unique_ptr<Opened>> m_opened;
    std::vector<std::unique_ptr<CORVDataset>> m_maps; // that the host was asked to open
    QTemporaryDir m_folder;

private:
    int m_nSink = 0;
};

// The values of a TIFF of floats or doubles.
std::vector<double> pixelsOf(const QString& strTiff);

} // namespace loaded
