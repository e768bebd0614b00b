// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Names of the sections and keys of "SequenceInfo.txt" and "ClickInfo.txt" that this program reads and writes, with
// their units. Numbers are in the C locale, flags are 0 or 1. docs/formats.md describes the files.

// Files of a sequence and of a dataset.
namespace SequenceFiles {
constexpr const char* const kSequenceInfo = "SequenceInfo.txt";
constexpr const char* const kClickInfo = "ClickInfo.txt";
constexpr const char* const kValidPixels = "valid.tif"; // of an import: 1 where every image has a value, else 0
constexpr const char* const kAnalyzedClickInfo =
    "AnalyzedClickInfo.txt"; // of an unmixed map: without the camera's section
} // namespace SequenceFiles

namespace SequenceKeys {
constexpr const char* const kSequence = "Sequence"; // section
constexpr const char* const kId = "Sequence ID";
constexpr const char* const kName = "Sequence Name";
constexpr const char* const kKind = "Kind"; // "spectral" or "temporal"
constexpr const char* const kFluorescence = "Fluorescence";
constexpr const char* const kSecondKind = "Second Kind"; // of fluorescence; written when set
constexpr const char* const kTransillumination = "Transillumination";
constexpr const char* const k3DSceneOnly = "3D Scene Only";
constexpr const char* const kCTScan = "CT Scan"; // "none", "incomplete" or "complete"
constexpr const char* const kPhotographOrigin = "Photograph Origin";
constexpr const char* const kTruthFolder = "Truth Folder";

constexpr const char* const kImageAdjust = "Image Adjust"; // section
constexpr const char* const kColorTable = "Color Table Index";
constexpr const char* const kReversed = "Reversed";
constexpr const char* const kLogScale = "ColorTableIsLog";

constexpr const char* const kDatasets = "Datasets"; // section
constexpr const char* const kDatasetCount = "Dataset Count";
constexpr const char* const kDataset = "Dataset"; // a folder below the sequence's; one entry each, in sequence order
} // namespace SequenceKeys

namespace ClickKeys {
// Sections.
constexpr const char* const kClickNumber = "ClickNumber";
constexpr const char* const kLuminescentImage = "luminescent image";
constexpr const char* const kMainDataImage = "main data image"; // of a separate main data image; else the above serves
constexpr const char* const kPhotographicImage = "photographic image";
constexpr const char* const kFluorescentReferenceImage = "fluorescent reference image";
constexpr const char* const kReferenceImage = "reference image";
constexpr const char* const kStructureImage = "structure image";
constexpr const char* const kXRayImage = "x-ray image";
constexpr const char* const kXRayPhotographicImage = "x-ray photographic image";
constexpr const char* const kCameraSystemInfo = "Camera System Info";
constexpr const char* const kROIs = "ROIs"; // regions of interest; its entries are ROISection's

// Section "ClickNumber"; the entry "ClickNumber" bears the section's name.
constexpr const char* const kFolderOnDisk = "Folder On Disk";
constexpr const char* const kKyVoTime = "KyVo Time(s)"; // s
constexpr const char* const kKyVoInterval = "KyVo Interval";

// Sections of images.
constexpr const char* const kExposureTime = "Exposure Time Sec"; // s
constexpr const char* const kBinning = "Binning Factor";
constexpr const char* const kFNumber = "f Number";
constexpr const char* const kReadBiasLevel = "Read Bias Level";            // counts a stored pixel
constexpr const char* const kBackgroundCorrected = "Background Corrected"; // 1: the bias has been taken off already

// Section "luminescent image".
constexpr const char* const kExcitationFilter = "Excitation Filter"; // text such as "640nm"
constexpr const char* const kEmissionFilter = "Emission Filter";
constexpr const char* const kFLXSpot = "FL x-spot";
constexpr const char* const kFLYSpot = "FL y-spot";
constexpr const char* const kFlatFieldCorrected = "Flat Field Corrected";
constexpr const char* const kFLBackgroundCorrected = "FL Background Corrected";
constexpr const char* const kSaturated = "Saturated";
constexpr const char* const kAcquisitionDate = "Acquisition Date"; // yyyy-MM-dd, UTC
constexpr const char* const kAcquisitionTime = "Acquisition Time"; // HH:mm:ss.zzz, UTC, start of the exposure
constexpr const char* const kProbe = "Probe";                      // names, separated by commas
constexpr const char* const kSubjectType = "Subject Type";
constexpr const char* const kIsotope = "Isotope";
constexpr const char* const kExcitationIrradiance = "Excitation Irradiance"; // uW/cm^2
constexpr const char* const kReferenceRadiance = "Reference Radiance";       // p/s/cm^2/sr
constexpr const char* const kNativeUnit = "Native Unit";                     // 0 to 3, or the unit's text
constexpr const char* const kStoredUnit = "Stored Unit";                     // unit of the stored pixels, else counts
constexpr const char* const kImageExtent = "Image Extent";                   // "w x h", pixels before padding
constexpr const char* const kProjection = "Projection";                      // of planes that an import made one of
constexpr const char* const kDarkImage = "Dark Image";                       // that was subtracted by an import
constexpr const char* const kBackgroundLevel = "Background Level";        // subtracted from all pixels, in their unit
constexpr const char* const kBackgroundRule = "Background Rule";          // how it was found (BackgroundRule)
constexpr const char* const kNegativePixels = "Negative Pixels";          // below 0 because of dark or background
constexpr const char* const kChannelName = "Channel Name";                // of a numbered channel (ChannelInfo)
constexpr const char* const kChannelWavelength = "Channel Wavelength nm"; // nm
constexpr const char* const kChannelWavenumber = "Channel Wavenumber";    // 1/cm

// Section "Camera System Info".
constexpr const char* const kPhotonsPerCount = "Photons per Count";     // photons
constexpr const char* const kElectronsPerCount = "Electrons per Count"; // the camera's gain
constexpr const char* const kReadNoise = "Read Noise Electrons";        // standard deviation, a stored pixel
constexpr const char* const kPixelSize = "Pixel Size cm";               // cm, in the object plane, unbinned
constexpr const char* const kLensSolidAngle = "Lens Solid Angle sr";    // sr, at f/1; at f/N it is this over N^2
} // namespace ClickKeys
