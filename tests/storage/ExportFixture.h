// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLClickInfo.h"
#include "platform/orvimage/TiffIo.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

inline const QString noFolderLine =
    "SpumKyvo: Unable to open the unmixed image because failed to access the system's temporary directory!";
inline const QString noDatasetLine = "SpumKyvo: Unable to locate the required dataset. It looks like the sequence has "
                                     "been modified. Please close and restart.";
inline const QString noImageLine =
    "SpumKyvo: Invalid fluorescent image instance encountered, unable to load the image.";

// An analysed sequence of 2 x 2 pixels and a temporary directory of its own, with a blank and a letter beyond ASCII in
// its name.
//
// Images at 640 nm excitation and emissions 700, 720, ... Component c is brightest in image c, where its spectrum is c
// + 1. The concentration of component c at pixel i of spot s is 100 c + 10 s + i.
class ExportFixture : public ::testing::Test
{
protected:
    static constexpr int side = 2;

    void SetUp() override
    {
        m_earlier = qgetenv("TMPDIR");
        ASSERT_TRUE(m_folder.isValid());
        ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("t \u00e4")));
        ASSERT_TRUE(qputenv("TMPDIR", temporary().toUtf8()));
        ASSERT_EQ(QDir::tempPath(), temporary());
    }
    void TearDown() override
    {
        m_pEngine.reset();
        m_pSequence.reset();
        if (m_earlier.isNull()) {
            qunsetenv("TMPDIR");
        } else {
            qputenv("TMPDIR", m_earlier);
        }
    }

    QString temporary() const { return m_folder.path() + QStringLiteral("/t \u00e4"); }
    QString target() const { return temporary() + "/SPUM_" + sequence().id(); }

    TestSequence& sequence() { return *m_pSequence; }
    const TestSequence& sequence() const { return *m_pSequence; }
    CORVSpumKyvo& engine() { return *m_pEngine; }
    CORVDataset& dataset(int n) { return *(*m_pSequence)->getDatasets().at(n); }

    // Without spots for nSpots 0.
    void makeResult(int nComponents, int nImages, int nSpots = 0, int eUnit = DISPLAYUNIT_COUNTS)
    {
        m_pSequence = std::make_unique<TestSequence>("SEQ12345");
        sequence()->isFluorescence = true;
        sequence()->isTransillumination = nSpots > 0;
        for (int s = 0; s < std::max(1, nSpots); ++s) {
            for (int j = 0; j < nImages; ++j) {
                TestImage image;
                image.excitation = "640nm";
                image.emission = QString("%1nm").arg(700 + 20 * j);
                image.side = side;
                image.value = [j](int i) { return static_cast<float>(10 * j + i); };
                image.spotX = nSpots > 0 ? QString("%1.5").arg(s) : QString();
                image.spotY = nSpots > 0 ? QString("-%1").arg(s) : QString();
                sequence().add(image);
            }
        }
        m_pEngine = std::make_unique<CORVSpumKyvo>(sequence().id());
        ASSERT_TRUE(engine().buildDatasetInfo());
        ASSERT_TRUE(engine().createImageList());
        ASSERT_TRUE(engine().setBinningAndSize(true));
        engine().m_eUnit = eUnit;
        fillResult(nComponents, nImages, std::max(1, nSpots), side * side);
    }

    void fillResult(int nComponents, int nImages, int nSpots, int nPixels)
    {
        engine().m_spectra = XTNT::Matrix<double>(nComponents, nImages);
        engine().m_concentrations = XTNT::Matrix<double>(nComponents, nSpots * nPixels);
        for (int c = 0; c < nComponents; ++c) {
            engine().m_spectra[c][c] = c + 1.0;
            for (int s = 0; s < nSpots; ++s) {
                for (int i = 0; i < nPixels; ++i) {
                    engine().m_concentrations[c][s * nPixels + i] = 100.0 * c + 10.0 * s + i;
                }
            }
        }
    }

    static CPLClickInfo clickInfoAt(const QString& strPath)
    {
        CPLClickInfo info;
        EXPECT_EQ(info.loadClickInfo(strPath), 0) << qPrintable(strPath);
        return info;
    }
    static std::vector<double> pixelsAt(const QString& strPath, ORVDataTypes* pType = nullptr)
    {
        CILImage image;
        QString strReason;
        EXPECT_TRUE(readTiff(strPath, 0, TiffReadOptions(), image, &strReason)) << qPrintable(strReason);
        std::vector<double> pixels;
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            pixels.push_back(image.value(i));
        }
        if (pType != nullptr) {
            *pType = image.dataType();
        }
        return pixels;
    }
    static QStringList namesIn(const QString& strFolder)
    {
        return QDir(strFolder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    // "key=value", in order; "(no section)" without it.
    static QStringList entriesOf(const CPLClickInfo& info, const QString& strSection)
    {
        const CPLSection* pSection = info[strSection];
        if (pSection == nullptr) {
            return {"(no section)"};
        }
        QStringList keys;
        QStringList values;
        pSection->getKeyList(&keys);
        pSection->getValueList(&values);
        QStringList entries;
        for (int i = 0; i < keys.size(); ++i) {
            entries.append(keys.at(i) + "=" + values.at(i));
        }
        return entries;
    }
    static QStringList sectionKeys(const CPLClickInfo& info)
    {
        QStringList keys;
        int nCount = 0;
        info.getSectionCount(&nCount);
        for (int i = 0; i < nCount; ++i) {
            QString strKey;
            info.section(i)->getSectionKey(&strKey);
            keys.append(strKey);
        }
        return keys;
    }

private:
    QTemporaryDir m_folder;
    QByteArray m_earlier;
    std::unique_ptr<TestSequence> m_pSequence;
    std::unique_ptr<CORVSpumKyvo> m_pEngine;
};
