// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The path, or with the first number behind it ("-2", "-3", ...) under which there is nothing yet.
QString freePlace(const QString& strPath);
