// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVToolPalettePluginBase.h"

#include <QLabel>

#include <memory>

// A tool that takes up every sequence and shows a label.
class PlainPlugin : public CORVToolPalettePluginBase
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "hal.orvia.test")
    Q_INTERFACES(CORVToolPalettePluginBase)

public:
    QWidget* paletteWidget() override
    {
        if (!m_pPalette) {
            m_pPalette = std::make_unique<QLabel>(QStringLiteral("plain tool"));
            m_pPalette->setObjectName(QStringLiteral("plainPalette"));
        }
        return m_pPalette.get();
    }
    QString pluginName() override { return QStringLiteral("Plain Tool"); }
    int pluginTypeCode() override { return 1; }
    QString shortName() override { return QStringLiteral("Plain"); }
    bool isEnabledByDefault() override { return true; }
    void onSignalSequenceChanged(CORVSequenceDataset* pSequence) override
    {
        Q_EMIT updatePluginValidity(paletteWidget(), pSequence != nullptr);
    }

private:
    std::unique_ptr<QWidget> m_pPalette;
};

#include "PlainPlugin.moc"
