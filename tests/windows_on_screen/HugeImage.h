// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <new>

// An image whose pixels find no memory once somebody looks at them.
class HugeImage : public CILImage
{
public:
    HugeImage()
    {
        m_lWidth = 480;
        m_lHeight = 480;
    }

protected:
    void makePixels() const override { throw std::bad_alloc(); }
};
