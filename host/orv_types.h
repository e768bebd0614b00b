// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Status of a host operation: 0 is success, UNIT_UNAVAILABLE (16) tells that a calibrated image cannot be had in the
// requested unit, any other value is a failure.
enum tag_estatus
{
    ESTATUS_SUCCESS = 0,
    ESTATUS_FAILURE = 1,
    ESTATUS_INVALID_ARGUMENT = 2,
    ESTATUS_IMAGE_MISSING = 3,
    ESTATUS_FILE_UNREADABLE = 4,
    ESTATUS_FILE_UNWRITABLE = 5,
    ESTATUS_UNIT_UNAVAILABLE = 16
};
using ESTATUS = tag_estatus;

// Status of an image-library operation: 0 is success.
enum EILSTATUS
{
    EIL_SUCCESS = 0,
    EIL_FAILURE = 1,
    EIL_INVALID_ARGUMENT = 2,
    EIL_NO_MEMORY = 3,
    EIL_FILE_UNREADABLE = 4,
    EIL_FILE_UNWRITABLE = 5
};

// Unit in which an image is shown and analysed.
enum tag_edisplayunit
{
    DISPLAYUNIT_COUNTS = 0,             // camera counts at a binning, an exposure and an f-number
    DISPLAYUNIT_RADIANCE = 1,           // p/s/cm^2/sr
    DISPLAYUNIT_RADIANT_EFFICIENCY = 2, // radiance over the excitation irradiance
    DISPLAYUNIT_EFFICIENCY = 3          // radiance over the transmitted reference
};
using EDISPLAYUNIT = tag_edisplayunit;

// The images that a dataset can hold.
enum tag_eimagetype
{
    IMAGETYPE_PHOTOGRAPH = 0,
    IMAGETYPE_LUMINESCENT = 1,
    IMAGETYPE_REFERENCE = 6,
    IMAGETYPE_STRUCTURE = 7,
    IMAGETYPE_FLUORESCENT_REFERENCE = 9, // of a transillumination dataset: the transmission image
    IMAGETYPE_XRAY = 12,
    IMAGETYPE_XRAY_PHOTOGRAPH = 13,
    IMAGETYPE_MAIN_DATA = 17 // the main data image; its binning defines the analysis binning
};

// Type of an image's pixels.
enum ORVDataTypes
{
    ORVTYPE_NONE = 0,
    ORVTYPE_BYTE = 1,   // 8 bit unsigned
    ORVTYPE_USHORT = 2, // 16 bit unsigned
    ORVTYPE_INT = 3,    // 32 bit signed
    ORVTYPE_FLOAT = 4,
    ORVTYPE_DOUBLE = 5
};

enum tag_eLongProcessTypes
{
    LONGPROCESS_GENERAL = 0,
    LONGPROCESS_LOADING = 1,
    LONGPROCESS_ANALYSIS = 2048,
    LONGPROCESS_ACQUISITION = 4096
};

// How an image is brought to another size.
enum IL_RESAMPLEMODES
{
    IL_RESAMPLE_NEAREST = 0,
    IL_RESAMPLE_LINEAR = 1,
    IL_RESAMPLE_AREA = 2, // mean over the area of the new pixel
    IL_RESAMPLE_CUBIC = 3,
    IL_RESAMPLE_SMOOTH = 4 // smooth, keeps the range of the values
};

// Folders of the host.
enum ORV_PATH_TAGS
{
    ORV_PATH_PROGRAM_DATA = 0, // read-only data installed with the program
    ORV_PATH_USER = 1,         // the user's base folder
    ORV_PATH_USER_DATA = 2,    // the user's data folder: spectrum libraries and own reference tables
    ORV_PATH_TEMP = 3
};

// Display record of a sequence.
struct tag_simageadjust
{
    int m_nColorTable = 1; // index into the list of colour tables
    bool m_bReversed = true;
    bool m_bLogScale = false;
};
