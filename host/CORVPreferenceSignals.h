// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

// What CORVPreference::getSignalHandler() answers with.
class CORVPreferenceSignals : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    void updatePreferenceSetting();
};
