// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

struct CommandManual;

// Where a page comes from, for its head and foot.
struct ManPageFrame
{
    QString version;     // of the program
    QString date;        // "2026-03-01"
    QStringList seeAlso; // other pages of this section: "spum-pca"
};

// A manual page of section 1 in the language of man(7), UTF-8.
QByteArray manPage(const CommandManual& manual, const ManPageFrame& frame);

// "spum-unmix.1" for "spum unmix".
QString manPageFile(const CommandManual& manual);
