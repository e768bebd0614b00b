// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/PictureStyle.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CILPalette.h"
#include "spectra/SpectrumPlotParams.h"

namespace {

// Found by search over the colours of sRGB whose relative luminance lies between those two contrasts: the set whose
// least difference is largest, exchanged colour by colour, then continued one by one. Differences by CIEDE2000; sight
// without one kind of cones after G. Machado, M. Oliveira and L. Fernandes (2009).
constexpr QRgb publishedColors[] = {0xff0c7955, 0xffb61800, 0xff0049ff, 0xffaa9200, 0xfff36186, 0xff249ece,
                                    0xff864979, 0xff798649, 0xffb66d9e, 0xff5579f3, 0xff6d55aa, 0xffaa313d};

// The one table whose lower colours are the bright ones.
const QString& upsideDown()
{
    static const QString name = QStringLiteral("Rainbow");
    return name;
}

} // namespace

QColor componentColor(int nComponent)
{
    constexpr int count = static_cast<int>(sizeof(publishedColors) / sizeof(publishedColors[0]));
    return QColor(publishedColors[nComponent % count]);
}

PictureStyle pictureStyleOf(const CORVSpumKyvo& engine)
{
    PictureStyle style;
    style.colorTable = engine.m_nColorMap;
    style.reversed = engine.m_bReverse;
    for (const SpectrumPlotParams* pPlot : engine.m_spectrumPlots) {
        QColor color;
        color.setNamedColor(pPlot->settings.color);
        style.components.append(color);
    }
    return style;
}

PictureStyle pictureStyleOf(const CORVSpumKyvo& engine, const PictureRequest& request)
{
    PictureStyle style = pictureStyleOf(engine);
    style.scale = request.scale;
    if (request.colorTable >= 0) {
        style.colorTable = request.colorTable;
        style.reversed = request.reversed;
    }
    for (int i = 0; i < style.components.size(); ++i) {
        style.components[i] = componentColor(i);
    }
    return style;
}

bool takeColors(const QString& strText, PictureRequest* pRequest)
{
    static const QString ending = QStringLiteral(":reversed");
    const bool turned = strText.endsWith(ending, Qt::CaseInsensitive);
    const QString name = strText.left(strText.size() - (turned ? ending.size() : 0));
    const int table = CILPalette::colorTableIndex(name);
    if (table < 0) {
        return false;
    }
    pRequest->colorTable = table;
    pRequest->reversed = turned != (table == CILPalette::colorTableIndex(upsideDown()));
    return true;
}

QStringList colorsOnOffer()
{
    QStringList names;
    for (const QString& name : CILPalette::colorTableNames()) {
        names.append(name.toLower());
    }
    return names;
}
