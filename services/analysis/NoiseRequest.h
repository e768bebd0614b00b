// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the noise of the images is taken for where known spectra are fitted.
struct NoiseRequest
{
    enum class Kind
    {
        None,    // one weight for all, as the engine fits
        Poisson, // of counted light, which grows with it, and of the camera's reading
        Gaussian // of a size of its own in each image, whatever the light
    };
    Kind kind = Kind::None;
    bool errors = false; // maps of standard errors
};
