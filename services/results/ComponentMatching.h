// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <vector>

// A component as far as it can be compared with another one: a map over some pixels and a spectrum over some images.
// Either may be empty when it is not known.
struct ComponentShape
{
    QString name;
    std::vector<double> map;
    std::vector<double> spectrum;
};

// Cosine of the angle between two spectra, and Pearson's correlation of two maps; their sum. What is not known of
// either component, or not defined, counts as 0. Between 0 and 2 for components without negative values that follow
// each other.
double likeness(const ComponentShape& a, const ComponentShape& b);

// For each of `found` the place in `reference` of the component of its name, or -1.
std::vector<int> matchByName(const std::vector<ComponentShape>& found, const std::vector<ComponentShape>& reference);

// The pairing of `found` with `reference`, each at most once, in which the likeness adds up to the most; as many pairs
// as the shorter list allows. For each of `found` its partner's place, or -1. (H. W. Kuhn, The Hungarian method for the
// assignment problem, 1955.)
std::vector<int> matchByShape(const std::vector<ComponentShape>& found, const std::vector<ComponentShape>& reference);
