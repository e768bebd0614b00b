// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/OwnerRecord.h"

#include <QList>
#include <QRect>
#include <QString>

class CORVSettings;

// What is open, in the user's settings at every moment, so that the next start finds it however this program ends.
// Programs that run side by side keep a session each.
class Session
{
public:
    struct Window
    {
        QString folder; // of the sequence
        QRect place;    // in the work area; invalid for a window that fills it

        bool operator==(const Window& other) const { return folder == other.folder && place == other.place; }
    };
    using Windows = QList<Window>;

    // The settings are borrowed.
    explicit Session(CORVSettings& settings);

    // The windows that were open when a program last ended as it should, the one in front last; and those of programs
    // that were killed. They leave the settings, so that nobody else takes them up too.
    Windows takeLast();
    Windows takeAbandoned();

    // What is open now.
    void keep(const Windows& windows);
    // The program ends as it should, with these windows open.
    void close(const Windows& windows);

private:
    CORVSettings& m_settings;
    QString m_strId;
    orv::OwnerRecord m_record; // without one nothing is kept until the program closes
    bool m_bRecorded;
};
