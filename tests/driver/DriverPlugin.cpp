// SPDX-License-Identifier: GPL-3.0-or-later
// Loaded into a program by QT_QPA_GENERIC_PLUGINS=orvdriver:SOCKET with QT_PLUGIN_PATH naming the folder above
// generic/: listens on the local socket SOCKET for commands (see CommandServer.h).
#include "driver/CommandServer.h"

#include <QGenericPlugin>
#include <QTimer>

class DriverPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "orvdriver.json")

public:
    QObject* create(const QString& strKey, const QString& strSocket) override
    {
        if (strKey.compare("orvdriver", Qt::CaseInsensitive) != 0) {
            return nullptr;
        }
        // The application is still being made.
        auto* pServer = new CommandServer;
        QTimer::singleShot(0, pServer, [pServer, strSocket] { pServer->listen(strSocket); });
        return pServer;
    }
};

#include "DriverPlugin.moc"
