// SPDX-License-Identifier: GPL-3.0-or-later
#include "WorkbenchFixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace {

// Simulated sequences of this process; gone with it.
QTemporaryDir& sequenceFolder()
{
    static QTemporaryDir folder;
    return folder;
}

void copyFolder(const QString& strFrom, const QString& strTo)
{
    QDir().mkpath(strTo);
    QDirIterator entries(strFrom, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString strPath = entries.next();
        const QString strTarget = strTo + strPath.mid(strFrom.size());
        if (entries.fileInfo().isDir()) {
            QDir().mkpath(strTarget);
        } else {
            QDir().mkpath(QFileInfo(strTarget).path());
            QFile::copy(strPath, strTarget);
        }
    }
}

} // namespace

void WorkbenchFixture::SetUp()
{
    m_pProgram = std::make_unique<DrivenProgram>(QStringLiteral(ORV_BINARY_DIR "/bin/spum-workbench"));
}

void WorkbenchFixture::TearDown()
{
    const QString strErrors = m_pProgram->standardError();
    EXPECT_FALSE(strErrors.contains("QObject::connect")) << strErrors.toStdString();
    EXPECT_FALSE(strErrors.contains("QObject::~")) << strErrors.toStdString();
    EXPECT_FALSE(m_pProgram->crashed()) << strErrors.toStdString();
    if (HasFailure()) {
        const auto* pTest = ::testing::UnitTest::GetInstance()->current_test_info();
        m_pProgram->picture(QStringLiteral("end_to_end/failed/%1.png").arg(pTest->name()));
        std::cerr << strErrors.toStdString();
    }
}

QByteArray WorkbenchFixture::spum(const QStringList& arguments, int* pStatus)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ORV_BINARY_DIR "/bin/spum"), arguments);
    const bool bEnded = process.waitForFinished(300000);
    if (pStatus != nullptr) {
        *pStatus = bEnded ? process.exitCode() : -1;
    } else {
        EXPECT_TRUE(bEnded);
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    }
    return process.readAllStandardOutput();
}

QString WorkbenchFixture::sequence(const QStringList& options)
{
    const QByteArray key =
        QCryptographicHash::hash(options.join('\n').toUtf8(), QCryptographicHash::Md5).toHex().left(8);
    const QString strFolder = sequenceFolder().filePath("sequence " + QString::fromLatin1(key));
    if (!QFileInfo::exists(strFolder)) {
        spum(QStringList{"simulate", strFolder, "--quiet"} + options);
    }
    return strFolder;
}

QString WorkbenchFixture::copyOf(const QString& strFolder)
{
    const QString strCopy = m_work.filePath(QFileInfo(strFolder).fileName() + " copy");
    copyFolder(strFolder, strCopy);
    return strCopy;
}

void WorkbenchFixture::startProgram(const QStringList& arguments)
{
    ASSERT_TRUE(program().start(arguments)) << program().standardError().toStdString();
    ASSERT_TRUE(program().waitFor("mainWindow")) << program().standardError().toStdString();
}

bool WorkbenchFixture::openWizard(const QString& strMethod)
{
    program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Analyze"}});
    if (!program().waitFor("m_pWaveLengthTable/.QCheckBox") ||
        !program().call({{"do", "choose"}, {"widget", "m_pUnmixingMethodsCMB"}, {"text", strMethod}})["ok"].toBool() ||
        !program().waitUntil([&] { return text("m_pUnmixingMethodsCMB") == strMethod; }) ||
        !program().click("m_pUnmixSpectraButton")) {
        return false;
    }
    const bool bOpen = program().waitUntil([&] {
        if (program().isVisible(".QMessageBox")) {
            program().click(".QMessageBox/.QPushButton[No]");
        }
        return program().isVisible("SpUnmixWizardWnd");
    });
    program().call({{"do", "quiet"}, {"ms", 100}});
    return bOpen;
}

bool WorkbenchFixture::finishWizard()
{
    const bool bDone = program().waitUntilEnabled("qt_wizard_finish") && program().click("qt_wizard_finish") &&
                       program().waitFor("DistributionView", 120000) && program().waitFor("m_pSPUnResultsLV", 120000) &&
                       program().waitUntilEnabled("tabWidget1");
    program().call({{"do", "quiet"}, {"ms", 100}});
    return bDone;
}

QStringList WorkbenchFixture::rowNames()
{
    QStringList names;
    for (const QJsonValue& row :
         program()
             .call({{"do", "find"}, {"widget", "m_pGBSpectrumList/.NameEdit"}, {"all", true}})["found"]
             .toArray()) {
        names.append(row.toObject()["text"].toString());
    }
    return names;
}
