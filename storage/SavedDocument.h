// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

// What the file of a saved result says, without its sequence being looked at.
struct SavedDocument
{
    struct Spectrum
    {
        QString name;
        QString color;
        QList<KeyPair> pairs;
        QVector<double> values;
    };

    QString path;
    QString error; // why it cannot be read; empty when it can
    QString date;
    QString version;
    QString note;
    QString sequence; // id
    int images = 0;
    QList<Spectrum> spectra;
    QList<QPair<QString, QString>> properties;
    int regions = 0;
    QString isotope; // of a sequence with Cherenkov light
    QString halfLifeMinutes;
    bool decayCorrected = false;

    // A property's value, empty without it.
    QString property(const QString& strKey) const;
    QStringList names() const;
};

// Reads it tolerantly; a path that is empty or leads to no result leaves `error`.
SavedDocument readSavedDocument(const QString& strPath);
