// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/screen.h"

#include "host/CORVGLXYPlot1.h"
#include "host/orv_paths.h"
#include "platform/orvutils/LogSinks.h"
#include "spectra/NameEdit.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

// A folder of libraries, and what is logged; beside a fixture.
class LibraryFolder
{
protected:
    LibraryFolder() : m_folder(getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum/")
    {
        QDir(m_folder).removeRecursively(); // whatever another test left
        EXPECT_TRUE(QDir().mkpath(m_folder));
        orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
        m_nSink = orv::addLogSink([this](const orv::LogRecord& line) { m_log.append(line.m_strMessage); });
    }
    ~LibraryFolder()
    {
        orv::removeLogSink(m_nSink);
        QDir(m_folder).removeRecursively();
    }
    LibraryFolder(const LibraryFolder&) = delete;
    LibraryFolder& operator=(const LibraryFolder&) = delete;

    void write(const QString& strName, const QByteArray& content) const
    {
        QFile file(m_folder + strName + ".csv");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray read(const QString& strName) const
    {
        QFile file(m_folder + strName + ".csv");
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    void remove(const QString& strName) const { ASSERT_TRUE(QFile::remove(m_folder + strName + ".csv")); }

    QString m_folder;
    QStringList m_log;
    int m_nSink = 0;
};

namespace library {

// Two spectra over two bands.
inline QByteArray twoDyes()
{
    return "$,Note,two dyes\n$,NumSpec,2\n$,Color,red,blue\n$,Origin,lab,bench\n$,Select,1,1\n"
           "Excitation,Emission,A,B\n500,540,0.5,0.1\n500,560,1,0.2\n";
}

// As many spectra "Dye 1", "Dye 2" ... over as many emissions of one excitation.
inline QByteArray dyes(int nSpectra, int nBands, int nSelected)
{
    QByteArray color = "$,Color";
    QByteArray origin = "$,Origin";
    QByteArray select = "$,Select";
    QByteArray names = "Excitation,Emission";
    for (int i = 0; i < nSpectra; ++i) {
        color += ",blue";
        origin += ",lab";
        select += i < nSelected ? ",1" : ",0";
        names += ",Dye " + QByteArray::number(i + 1);
    }
    QByteArray all = "$,NumSpec," + QByteArray::number(nSpectra) + '\n' + color + '\n' + origin + '\n' + select + '\n' +
                     names + '\n';
    for (int band = 0; band < nBands; ++band) {
        all += "500," + QByteArray::number(520 + 20 * band);
        for (int i = 0; i < nSpectra; ++i) {
            all += ',' + QByteArray::number(1 + (i + band) % 7);
        }
        all += '\n';
    }
    return all;
}

} // namespace library

// The window over that folder.
class LibraryWindowTest : public ::testing::Test, public LibraryFolder
{
protected:
    void open()
    {
        m_pWindow = std::make_unique<SpUnmixSpectrumLibraryWnd>();
        screen::show(*m_pWindow);
    }
    SpUnmixSpectrumLibraryWnd& window() const { return *m_pWindow; }
    QListWidget& list() const { return *m_pWindow->m_pSpumLibraryList; }
    void click(const QString& strName) const
    {
        const QList<QListWidgetItem*> found = list().findItems(strName, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1);
        QTest::mouseClick(list().viewport(), Qt::LeftButton, Qt::NoModifier,
                          list().visualItemRect(found.first()).center());
        QApplication::processEvents(); // which shows the rows
    }
    SpumKyvoSpectrumCtrl& row(int nRow) const { return *m_pWindow->m_rows.at(nRow); }
    // What the plot draws, as the table that it saves.
    QByteArray plotted() const
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("plot.csv");
        EXPECT_TRUE(window().m_pPlot->saveData(QFile::encodeName(path).constData(), 0, ','));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    QStringList handedBack() const
    {
        QStringList names;
        const QList<SpectrumPlotParams*> spectra = window().selectedSpectra();
        for (const SpectrumPlotParams* pSpectrum : spectra) {
            names << pSpectrum->settings.name;
        }
        qDeleteAll(spectra);
        return names;
    }
    QStringList shown() const
    {
        QStringList names;
        for (int i = 0; i < list().count(); ++i) {
            if (!list().item(i)->isHidden()) {
                names << list().item(i)->text();
            }
        }
        return names;
    }

    std::unique_ptr<SpUnmixSpectrumLibraryWnd> m_pWindow;
};
