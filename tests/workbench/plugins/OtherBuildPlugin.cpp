// SPDX-License-Identifier: GPL-3.0-or-later
#include <QObject>
#include <QtPlugin>

int functionThatNoLibraryHas();

class OtherBuildPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "hal.orvia.test")

public:
    int ask() const { return functionThatNoLibraryHas(); }
};

// So that the call is there.
extern "C" Q_DECL_EXPORT int askOtherBuild(const OtherBuildPlugin* pPlugin)
{
    return pPlugin->ask();
}

#include "OtherBuildPlugin.moc"
