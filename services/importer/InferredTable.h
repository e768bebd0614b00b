// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/ImageFinder.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

// The table "images.csv" made of what names and metadata tell. Nothing is guessed: whatever could be meant in two ways,
// is missing or occurs twice is a doubt, and a table with doubts is only a template to fill in.
class InferredTable
{
public:
    struct Row
    {
        QString file;
        std::optional<int> page;          // from 1
        PageProjection projection;        // of pages from that one on
        std::optional<int> band;          // from 1
        QString name;                     // for people
        std::optional<double> excitation; // nm
        std::optional<double> emission;   // nm
        std::optional<double> time;       // s
        std::optional<int> interval;
        QString spotX; // of a scan, as it was written; empty without
        QString spotY;
        ImageFacts facts;
        QString channel;                  // what the file calls the image
        std::optional<double> wavelength; // nm, of a numbered channel
        std::optional<double> wavenumber; // 1/cm, of a numbered channel
        QString origin;                   // where the figures come from
    };

    // `interval`, in seconds, is what the user says lies between two frames; numbers of frames then become times
    // (number times interval). Without it they are a doubt, as is a run of times without unit that counts up by one
    // (frames or seconds); such times with gaps are taken as seconds, which a note tells. Images that wavelengths tell
    // apart are a spectral sequence, whatever times they have besides; images of one pair of wavelengths at several
    // times a temporal one, and so are images whose metadata say so. `doubts` are those that came up when the images
    // were found.
    //
    // Images of which neither wavelengths nor times are told are numbered channels, and so are images of emissions that
    // filters do not tell apart (beyond 100 to 999 nm, closer than a nanometre, wavenumbers), and channels of one file
    // that tells the wavelengths of some. With `bNumber` all images are, and nothing is in doubt.
    InferredTable(const QVector<FoundImage>& images, const QStringList& doubts, std::optional<double> interval,
                  bool bNumber = false);

    bool isTemporal() const { return m_bTemporal; }
    bool isNumbered() const { return m_bNumbered; }
    const QVector<Row>& rows() const { return m_rows; }
    // One sentence each; empty when the table can be used.
    const QStringList& doubts() const { return m_doubts; }
    // Those of them that the rows do not show by themselves, as missing figures and repeated ones do: what can be meant
    // in two ways.
    const QStringList& questions() const { return m_questions; }
    // What a user should know of the choices made, one sentence each.
    const QStringList& notes() const { return m_notes; }

    // As ImagesTable reads it, with a column "origin" behind. The table in doubt leaves open what is not known.
    QByteArray toCsv() const;

private:
    void takeFigures(const QVector<FoundImage>& images, std::optional<double> interval);
    void takeSpot(const FoundImage& image, Row& row);
    void takeTimes(const QVector<FoundImage>& images, std::optional<double> interval);
    void noteFacts();
    void refuseLineEnds(const QVector<FoundImage>& images);
    void choose();
    bool mustBeNumbered(const QVector<FoundImage>& images);
    bool isOutOfFilters() const;
    void number(const QVector<FoundImage>& images);
    void refuseMissing();
    void refuseDuplicates();
    void doubt(const QString& strSentence);
    void doubtOfRows(const QString& strSentence) { m_doubts.append(strSentence); }

    QVector<Row> m_rows;
    QStringList m_doubts;
    QStringList m_questions;
    QStringList m_notes;
    bool m_bTemporal = false;
    bool m_bSpectral = false;
    bool m_bNumbered = false;
    bool m_bInterval = false; // seconds between frames were told
};
