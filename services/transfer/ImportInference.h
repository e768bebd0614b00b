// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/InferredTable.h"

#include <QJsonArray>
#include <QString>

#include <optional>

class JobMonitor;

// Finds the images of a stack, with progress, and makes their table. Hands on warnings; throws Failure when a file
// cannot be read. Doubts are in the table. `bFollow` as in EnviCube::open(); with `planes.each` all images are
// numbered.
InferredTable inferImagesTable(const QString& strSource, std::optional<double> interval, bool bFollow,
                               const PlaneChoice& planes, JobMonitor& monitor);

// The table for people, with where each figure comes from; of many rows the first and the last ones.
QString inferredTableText(const InferredTable& table);
QJsonArray inferredTableJson(const InferredTable& table);

// One sentence of the table's doubts, the first few of them.
QString doubtText(const InferredTable& table);
