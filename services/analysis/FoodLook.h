// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class CORVSpumKyvo;

// Whether the images of the engine's cube show food, before components are proposed. The analysed pixels are taken in
// squares of a twelfth of the image; the mean spectrum of each, excitation by excitation, is fitted with the known
// sources, as they are and behind tissue, without food and with it. Food lies in the gut: where a square is explained
// badly without it at an excitation and well with it, it is there. A source whose curve is only nearly right is off
// everywhere alike, and food explains a part of that anywhere.
struct FoodLook
{
    bool looked = false; // every other source has a known spectrum, and there is light
    int squares = 0;
    int fed = 0; // squares that food explains
    // Of the square that shows it best: what is left of the norm of its spectrum without and with food at the
    // excitation that tells; 0 without such a square.
    double without = 0.0;
    double with = 0.0;

    bool isFed() const { return fed > 0; }
    // `names` are those of the other components.
    static FoodLook of(const CORVSpumKyvo& engine, const QStringList& names);
};
