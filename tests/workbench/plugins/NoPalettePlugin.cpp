// SPDX-License-Identifier: GPL-3.0-or-later
#include <QObject>
#include <QtPlugin>

// A plug-in for something else.
class NoPalettePlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "hal.orvia.other")
};

#include "NoPalettePlugin.moc"
