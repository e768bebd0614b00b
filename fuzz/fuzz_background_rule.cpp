// SPDX-License-Identifier: GPL-3.0-or-later
// Rules of backgrounds: whatever the text, a reason or a rule that is read back as it was, and that finds a number or
// tells why it finds none.
#include "require.h"
#include "services/importer/BackgroundRule.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    BackgroundRule rule;
    QString reason;
    if (!rule.parse(text, &reason)) {
        require(!reason.isEmpty() && rule.isEmpty());
        return 0;
    }
    BackgroundRule again;
    require(again.parse(rule.text(), &reason) && again.text() == rule.text());
    constexpr long side = 16;
    CILImage image;
    require(image.InitWithType(ORVTYPE_FLOAT, side, side) == EIL_SUCCESS);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, i % 5 == 0 ? std::nan("") : static_cast<double>(i));
    }
    double level = 0.0;
    require(rule.level(image, {}, &level, &reason) ? std::isfinite(level) && level >= 0.0 : !reason.isEmpty());
    return 0;
}
