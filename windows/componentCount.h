// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// How many components may be resolved: at least kMinComponents, at most kMaxComponents and the number of selected
// images.
constexpr int kMinComponents = 2;
constexpr int kMaxComponents = 6;

// The probes of the table and the two background signals.
int componentCount(int nProbes, bool bTissue, bool bFood);

// min(images, kMaxComponents); below kMinComponents, as for one image, no number of components will do.
int componentLimit(int nImages);

// Whether `n` components can be resolved from the images.
bool isComponentCountValid(int n, int nImages);

// Whether one more component may be added to `n`.
bool canAddComponent(int n, int nImages);

// What to tell the user of the number of components: empty when it is valid. Two images have a text of their own; one
// image is asked for "2-1".
QString componentCountWarning(int n, int nImages);
