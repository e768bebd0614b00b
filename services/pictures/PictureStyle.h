// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>

class CORVSpumKyvo;

// Which maps of a result share a scale.
enum class MapScale
{
    Own,       // none
    Component, // those of a component, at all spots of a scan
    All
};

// What is asked of the pictures of a result.
struct PictureRequest
{
    int colorTable = -1; // -1: the sequence's, as it stands there
    bool reversed = false;
    MapScale scale = MapScale::Component;
};

// How the pictures of a result look.
struct PictureStyle
{
    int colorTable = 1; // as in CILPalette::colorTableNames()
    bool reversed = true;
    MapScale scale = MapScale::Component;
    QList<QColor> components; // a colour each, in every picture
};

// As the engine shows its result: the colours of its spectra, which a window lets choose and saved results keep.
PictureStyle pictureStyleOf(const CORVSpumKyvo& engine);
// For files: colours that the colour-blind tell apart, see componentColor().
PictureStyle pictureStyleOf(const CORVSpumKyvo& engine, const PictureRequest& request);

// Colour of a component (from 0) in pictures to be published. Seven have a difference (CIEDE2000) of at least 17 from
// one another, for normal sight as without one of the three kinds of cones, twelve of at least 8; all have a contrast
// of at least 3 (as relative luminances, W3C 2008) on white and on black. Behind the twelfth they begin again.
QColor componentColor(int nComponent);

// A colour table by name in any case ("viridis"), from its dark end up; ":reversed" behind it turns it round. False,
// and nothing changed, for another name.
bool takeColors(const QString& strText, PictureRequest* pRequest);
// The names, in small letters.
QStringList colorsOnOffer();
