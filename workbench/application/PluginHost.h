// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QObject>
#include <QPixmap>
#include <QPointer>
#include <QStringList>

class CORVDataset;
class CORVSequenceDataset;
class CORVToolPalettePluginBase;
class QWidget;
struct downloaded_save_data;

// The plug-in, or why there is none. Hands it what happens in the program, and hands on what it asks for. Everything
// does nothing while there is no plug-in.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    // Deletes the plug-in, and so its palette, wherever that is shown.
    ~PluginHost() override;

    // False with reason() and file(); a plug-in that is there stays then.
    bool load(const QStringList& folders);
    // Takes the plug-in over.
    void take(CORVToolPalettePluginBase* pPlugin);
    bool isLoaded() const;
    QString file() const { return m_strFile; }
    QString reason() const { return m_strReason; }

    // The plug-in's own, made at the first call.
    QWidget* palette();
    QString name();
    // As the plug-in told last.
    bool isValid() const { return m_bValid; }

    void tellSequenceAdded(CORVSequenceDataset* pSequence);
    void tellSequenceRemoved(CORVSequenceDataset* pSequence);
    void tellDatasetRemoved(CORVDataset* pDataset);
    // What is in front; null for nothing.
    void tellSequence(CORVSequenceDataset* pSequence);
    void tellDataset(CORVDataset* pDataset);
    void tellTab(const QString& strTab);
    // Lets the tool offer to keep what would be lost. False when the user wants to go back.
    bool askToSave();
    // The answers come as signals, before the call returns, or not at all.
    void askForPicture(bool bPreview);
    void askToCopy(const QString& strTab);
    // Whether the tool can work through many sequences with spectra that are chosen once.
    bool canBatch() const;
    // Lets the user choose those spectra; batchWanted() comes before the call returns when there are some.
    void chooseBatchSpectra();
    void endBatch();

Q_SIGNALS:
    void validityTold(bool bValid);
    void loadFileWanted(const QString& strPath, bool bShow, ESTATUS* pStatus);
    void unitWanted(const QString& strSequenceId, EDISPLAYUNIT eUnit);
    void sequenceWanted(const QStringList& clickInfos, bool bShow);
    void printWanted(const QPixmap& pixmap);
    void previewWanted(const QPixmap& pixmap);
    // False while a run keeps everything but its abort out of reach.
    void windowsWanted(bool bRestored);
    // The tool has its spectra, with values for these filters, and waits for sequences.
    void batchWanted(const QList<QString>& excitation, const QList<QString>& emission);

private:
    void connectPlugin();
    // Calls the plug-in, if there is one.
    template <typename... Parameters, typename... Arguments>
    void tell(void (CORVToolPalettePluginBase::*pMember)(Parameters...), Arguments... arguments);

    QPointer<CORVToolPalettePluginBase> m_pPlugin;
    QString m_strFile;
    QString m_strReason;
    bool m_bValid = false;
};
