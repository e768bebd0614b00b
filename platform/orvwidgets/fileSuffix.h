// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// The suffix of a filter's first pattern, in the spelling of the filter: "png" of "PNG image (*.png *.PNG)", "csv" of
// "*.csv", "tar.gz" of "*.tar.gz". Empty for a pattern that is no plain suffix, as in "All files (*)".
QString firstSuffix(const QString& strFilter);

// The path, with ".suffix" behind a file name that has no suffix; a dot at the name's end is no suffix, and neither is
// what stands behind the dot of a hidden file. An empty path or suffix leaves the path as it is.
QString withSuffix(const QString& strPath, const QString& strSuffix);

} // namespace orv
