// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class QCommandLineParser;

// What a call of `spum library` asks for.
struct LibraryCall
{
    // What is asked for of one sequence, or of none.
    struct Part
    {
        QString sequence;
        QStringList files;
        QStringList probes;
        QStringList regions;

        bool isEmpty() const { return files.isEmpty() && probes.isEmpty() && regions.isEmpty(); }
        bool needsSequence() const { return !probes.isEmpty() || !regions.isEmpty(); }
    };

    QString action;
    QStringList arguments; // behind the action, as many as it takes
    QList<Part> parts;     // save, append
    QString sequence;      // import: may be empty
    QString select;
    int unit = -1;                             // in which regions are measured; -1: the best that the images have
    QStringList spectra;                       // remove, template
    QList<QPair<QString, QString>> newSpectra; // rename: old and new names
    QString out;                               // template: the file, empty for one after the sequence
    QString note;
    bool hasNote = false;
    bool force = false;

    // Throws CallRefusal with all that is wrong, whatever files, sequences and libraries hold.
    static LibraryCall of(const QCommandLineParser& parser);
};
