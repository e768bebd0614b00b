// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

class CORVSpumKyvo;

// The pixels of the engine's cube, white on black, at the size of its images.
QImage maskPicture(const CORVSpumKyvo& engine);
