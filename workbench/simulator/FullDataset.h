// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "platform/orvapi/SequenceWriter.h"

class MouseShape;
struct SimulationOptions;

// What a dataset can have beside what an analysis needs, so that readers meet all of it. Each dataset gets a main data
// image apart from the luminescent one, with the same pixels, and the flags and sections of an instrument; the first
// one also the images of a scan with structured light, an X-ray image with its photograph, and regions of interest of
// every shape.
class FullDataset
{
public:
    // False without memory. `photograph` must live as long as this.
    bool prepare(const SimulationOptions& options, const MouseShape& shape, const CILImage& photograph);

    // Adds to the click info and the images of a dataset; `data` is its luminescent image. What is added to `images` is
    // valid as long as this and `data` are.
    void addTo(DatasetDescription& dataset, SequenceWriter::Images& images, const CILImage& data, bool bFirst) const;

private:
    CILImage m_reference;
    CILImage m_structure;
    CILImage m_xRay;
    const CILImage* m_pPhotograph = nullptr;
    bool m_bExcited = true;
};
