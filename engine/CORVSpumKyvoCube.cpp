// SPDX-License-Identifier: GPL-3.0-or-later
// From the selection to the cube, and the data mask.
#include "engine/CORVSpumKyvo.h"

#include "engine/imageChoice.h"
#include "engine/unitLadder.h"
#include "spectra/logLine.h"

#include "XTNT/xtnt_parallel.h"
#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"

#include <new>
#include <utility>
#include <vector>

namespace {

// Images that are stored in one pass over the cube: the memory for them against the traffic of a pass.
constexpr std::size_t imagesPerPass = 4;

// Stores images k, k + 1, ... of the image list, all of one spot.
void storeImages(CImageCube& cube, int k, int nImages, const std::vector<CILImage>& images)
{
    std::vector<const float*> pixels;
    pixels.reserve(images.size());
    for (const CILImage& image : images) {
        pixels.push_back(image.floats());
    }
    cube.setImages(k / nImages, k % nImages, pixels, images.front().pixelCount());
}

int binningOf(CORVDataset* pDataset)
{
    return static_cast<int>(pDataset->getBinningForImage(IMAGETYPE_MAIN_DATA));
}

// Exhausted memory travels as an exception, as it does from the cube itself.
bool succeeded(EILSTATUS eStatus)
{
    if (eStatus == EIL_NO_MEMORY) {
        throw std::bad_alloc();
    }
    return eStatus == EIL_SUCCESS;
}

} // namespace

bool CORVSpumKyvo::createImageList()
{
    if (!imagesOfSelection(m_imageRecords, m_selectedKeyPairs, m_spots, m_eSeqKind, m_imageList)) {
        logLine("SpumKyvo: unable to find the matching image in createImageList()!", CORVLOG_WARNING);
        return false;
    }
    return true;
}

bool CORVSpumKyvo::setBinningAndSize(bool bAuto)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSeqId);
    if (pSequence == nullptr) {
        return false;
    }
    if (bAuto || m_nBinning < 1) {
        BinningChoice choice(m_nBinning);
        for (const QString& strClickNumber : qAsConst(m_imageList)) {
            CORVDataset* pDataset = pSequence->getDataset(strClickNumber);
            if (pDataset == nullptr) {
                return false;
            }
            choice.count(binningOf(pDataset));
            m_nBinning = choice.binning();
        }
    }
    if (m_imageList.isEmpty()) {
        return true;
    }
    CORVDataset* pFirst = pSequence->getDataset(m_imageList.first());
    long lSide = 0;
    if (pFirst == nullptr || m_nBinning < 1 || !pFirst->getImageSize(IMAGETYPE_MAIN_DATA, &lSide, nullptr)) {
        return false;
    }
    // Images are square: both sides come from the same one.
    m_nWidth = sideAtBinning(static_cast<int>(lSide), binningOf(pFirst), m_nBinning);
    m_nHeight = m_nWidth;
    return true;
}

bool CORVSpumKyvo::buildImageCube(const std::function<void(double dShare)>& step)
{
    if (m_bCubeValid) {
        return true;
    }
    try {
        if (!createImageList() || !setBinningAndSize(m_bAutoBinning) || !fillImageCube(step)) {
            m_cube.clear();
            return false;
        }
        if (m_bCherenkov) {
            m_cube.m_rawData.reshape(0, 0);
            m_cube.m_rawData = m_cube.m_data.deepCopy();
            if (m_eMode == RUNMODE_AUTOMATIC && m_analysisInput.decayCorrection) {
                applyDecayCorrection(m_cube, m_analysisInput.halfLifeSeconds, m_strSeqId, m_imageList);
            }
        }
    } catch (const std::bad_alloc&) {
        logLine("SpumKyvo: insufficient memory to generate the image cube!", CORVLOG_WARNING);
        m_cube.clear();
        return false;
    }
    m_bCubeValid = true;
    return true;
}

bool CORVSpumKyvo::fillImageCube(const std::function<void(double dShare)>& step)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSeqId);
    const int nImages = m_selectedKeyPairs.size();
    const int nSpots = nImages > 0 ? m_imageList.size() / nImages : 0;
    // A refused mask shows later, as an empty matrix.
    m_cube.init(m_nWidth, m_nHeight, nSpots, nImages, m_maskIndices);

    m_imageFindings = ImageFindings();
    const ImageFindings::Frame frame{m_nWidth, m_nBinning, &m_maskIndices};
    std::vector<CILImage> waiting; // to be stored together
    bool bUnitFixed = false;       // once a unit was refused, all images are taken in the one below
    for (int k = 0; k < m_imageList.size();) {
        XTNT::cancellationPoint();
        if (step) {
            step(static_cast<double>(k) / m_imageList.size());
        }
        CORVDataset* pDataset = pSequence->getDataset(m_imageList.at(k));
        CILImage image;
        ESTATUS eStatus = ESTATUS_FAILURE;
        if (pDataset != nullptr) {
            if (!bUnitFixed) {
                m_eUnit = unitForImage(pDataset->nativeUnit, pSequence->isFluorescence, pSequence->isTransillumination);
            }
            eStatus = pDataset->getCalibratedLuminImage(static_cast<tag_edisplayunit>(m_eUnit), &image, "SpumKyvo");
        }
        if (eStatus == ESTATUS_UNIT_UNAVAILABLE) {
            const UnitStep fallback = nextUnit(m_eUnit);
            if (fallback.possible) {
                logLine(fallback.strMessage, CORVLOG_WARNING);
                m_eUnit = fallback.unit;
                bUnitFixed = true;
                waiting.clear();
                m_imageFindings = ImageFindings();
                k = 0;
                continue;
            }
        }
        if (eStatus != ESTATUS_SUCCESS) {
            m_imageFindings.cannotBeRead(m_imageList.at(k));
            logLine("SpumKyvo: unable to getCalibratedLuminImage in buildImageCube()!", CORVLOG_WARNING);
            return false;
        }
        if (!succeeded(image.ChangeType(ORVTYPE_FLOAT))) {
            return false;
        }
        m_imageFindings.look(m_imageList.at(k), image, frame);
        if (!bringToCubeSize(image)) {
            return false;
        }
        m_imageFindings.lookAtCube(m_imageList.at(k), image, frame);
        waiting.push_back(std::move(image));
        ++k;
        if (k % nImages == 0 || waiting.size() == imagesPerPass) {
            storeImages(m_cube, k - static_cast<int>(waiting.size()), nImages, waiting);
            waiting.clear();
        }
    }
    return true;
}

// Of an image of floats. Calibrated units are densities and keep their values when the binning changes; counts add up.
bool CORVSpumKyvo::bringToCubeSize(CILImage& image) const
{
    bool bOk = true;
    const int nBinning = static_cast<int>(image.m_fBinning);
    if (nBinning != m_nBinning) {
        if (m_eUnit == DISPLAYUNIT_COUNTS) {
            CILImage binned;
            if (!succeeded(image.changeBinning(m_nBinning, binned))) {
                logLine("SpumKyvo: unable to change the binning in buildImageCube()!", CORVLOG_WARNING);
                return false;
            }
            image = std::move(binned);
        } else if (nBinning > m_nBinning) {
            bOk = succeeded(image.upSample(m_nWidth, m_nHeight, IL_RESAMPLE_SMOOTH));
        } else {
            bOk = succeeded(image.downSample(m_nWidth, m_nHeight, IL_RESAMPLE_AREA));
        }
    }
    if (!bOk || image.m_lWidth != m_nWidth || image.m_lHeight != m_nHeight) {
        // Otherwise its column would silently stay empty.
        logLine("SpumKyvo: an image does not have the size of the image cube in buildImageCube()!", CORVLOG_WARNING);
        return false;
    }
    return true;
}

bool CORVSpumKyvo::takeDataMask(MaskPixels eWhich)
{
    std::vector<int> indices;
    if (!maskIndicesAtBinning(m_analysisInput.maskImage, m_nBinning, m_nWidth, m_nHeight, eWhich, indices)) {
        logLine("SpumKyvo: unable to get a valid photo mask!", CORVLOG_WARNING);
        return false;
    }
    m_bCubeValid = false;
    m_bUseMask = 1;
    m_maskIndices.swap(indices);
    return true;
}

void CORVSpumKyvo::correctDecay(CImageCube& cube)
{
    if (!m_bCherenkov) {
        return;
    }
    if (m_analysisInput.decayCorrection) {
        applyDecayCorrection(cube, m_analysisInput.halfLifeSeconds, m_strSeqId, m_imageList);
    } else {
        cube.applyDecayFactors(cube.m_rawData, QVector<double>(cube.m_nImages, 1.0), false);
    }
}

void CORVSpumKyvo::applyDecayCorrection(CImageCube cube, double dHalfLifeSec, const QString& strSeqId,
                                        const QVector<QString>& clickNumbers)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(strSeqId);
    if (pSequence == nullptr) {
        return;
    }
    QVector<double> factors;
    if (!pSequence->calculateDecayCorrectFactor_CherenkovData(clickNumbers, dHalfLifeSec, factors)) {
        logLine(QStringLiteral("Fail to obtain Decay Factor: Half Life (second) %1 SequenceID %2 Image Count %3.")
                    .arg(QString::number(dHalfLifeSec, 'g'), m_strSeqId, QString::number(clickNumbers.size())),
                CORVLOG_ERROR);
        return;
    }
    cube.applyDecayFactors(cube.m_rawData, factors, true);
}
