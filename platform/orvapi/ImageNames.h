// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QList>
#include <QString>
#include <QStringList>

// Where a dataset keeps an image of each type: its file, and the section of the click info that describes it.

// Every type that a dataset can hold.
QList<tag_eimagetype> allImageTypes();
// Names of the file, the preferred one first; compared without regard to case when a folder is read. The fluorescent
// reference has a second name for an image taken in transmission.
QStringList imageFileNames(tag_eimagetype eType);
QString imageSection(tag_eimagetype eType);
// The sections that tell of an image's acquisition, the one that counts first: a separate main data image takes from
// the luminescent image's section what its own lacks.
QStringList acquisitionSections(tag_eimagetype eType);
