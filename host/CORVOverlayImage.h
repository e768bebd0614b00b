// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

// A pseudo-colour image over a photograph. It is itself an image that shows the blend (CILImage::toQImage).
class CORVOverlayImage : public CILImage
{
public:
    // The layers are taken as pictures (CILImage::toQImage) that no change of the image reaches, so an overlay may be
    // its own layer; pictures that are at hand are shared. The type is a label
    // and changes nothing. Photograph and background are the same layer, as are luminescent and foreground; null or an
    // empty image takes a layer away. A foreground in four colours whose palette has limits (SetImageMinMax) is clear
    // below the lower one over a background, so that a map does not cover the photograph where it has nothing to show.
    void setBackground(const CILImage* image, tag_eimagetype type);
    void setForeground(const CILImage* image, tag_eimagetype type);
    void setPhotograph(const CILImage* image, tag_eimagetype type) { setBackground(image, type); }
    void setLuminescent(const CILImage* image, tag_eimagetype type) { setForeground(image, type); }

    // Composes the layers at the background's size (the foreground's without one): foreground at `opacity` (limited to
    // 0 to 1) times its own alpha over the background, alone over nothing. The foreground is brought to that size
    // smoothly with `smooth` non-zero, else by nearest neighbour. Fails without any layer; the picture is then as it
    // was. The pixels are made when they are asked for, the picture each time (toQImage): who draws it often keeps it.
    EILSTATUS blend(float opacity, int smooth);

private:
    std::shared_ptr<const orvimage::Layer> m_background;
    std::shared_ptr<const orvimage::Layer> m_foreground;
};
