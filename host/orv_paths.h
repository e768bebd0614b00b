// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

class CPLCameraInfo;

// A folder of the host, absolute, with forward slashes and one at its end. The bool makes a user folder that is
// missing; the camera is not looked at. Empty when there is no such folder (no home, or it cannot be made).
QString getORVPath(ORV_PATH_TAGS eTag, bool bCreate, const CPLCameraInfo* pCamera);
