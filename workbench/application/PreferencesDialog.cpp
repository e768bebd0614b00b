// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/PreferencesDialog.h"

#include "host/CORVPreference.h"
#include "host/CORVPreferenceSignals.h"
#include "host/CORVSettings.h"
#include "host/S3DViewSettings.h"
#include "workbench/application/settingNames.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFontComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

QSpinBox* sizeBox(int nValue, const char* pName, QWidget* pParent)
{
    auto* pBox = new QSpinBox(pParent);
    pBox->setObjectName(QLatin1String(pName));
    pBox->setRange(6, 48);
    pBox->setSuffix(QStringLiteral(" pt"));
    pBox->setValue(nValue);
    return pBox;
}

} // namespace

PreferencesDialog::PreferencesDialog(QWidget* pParent) : QDialog(pParent)
{
    setObjectName(QStringLiteral("preferencesDialog"));
    setWindowTitle(tr("Preferences"));
    S3DViewSettings views;
    CORVPreference::get3DViewPreferences(views);
    m_pFont = new QFontComboBox(this);
    m_pFont->setObjectName(QStringLiteral("preferencesFont"));
    m_pFont->setCurrentFont(QFont(views.fontFamily));
    m_pLabelSize = sizeBox(views.labelFontSize, "preferencesLabelSize", this);
    m_pBarSize = sizeBox(views.barFontSize, "preferencesBarSize", this);
    m_pFormat = new QComboBox(this);
    m_pFormat->setObjectName(QStringLiteral("preferencesFormat"));
    m_pFormat->addItem(tr("No preference"), QString());
    for (const char* pSuffix : {"png", "tif", "jpg", "bmp"}) {
        m_pFormat->addItem(QString::fromLatin1(pSuffix).toUpper(), QString::fromLatin1(pSuffix));
    }
    m_pFormat->setCurrentIndex(qMax(0, m_pFormat->findData(CORVPreference::usersPreferredFormat())));
    m_pPlugins = new QLineEdit(CORVPreference::getSettings()->value(settingNames::pluginFolder()).toString(), this);
    m_pPlugins->setObjectName(QStringLiteral("preferencesPlugins"));
    m_pPlugins->setPlaceholderText(tr("the program's own"));
    m_pPlugins->setToolTip(tr("Counts from the next start on"));
    m_pPlugins->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
    auto* pForm = new QFormLayout;
    pForm->addRow(tr("&Font in views:"), m_pFont);
    pForm->addRow(tr("Size of &labels:"), m_pLabelSize);
    pForm->addRow(tr("Size at colour &bars:"), m_pBarSize);
    pForm->addRow(tr("Format of &pictures:"), m_pFormat);
    pForm->addRow(tr("Folder with the &tools:"), m_pPlugins);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &PreferencesDialog::reject);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addLayout(pForm);
    pLayout->addWidget(pButtons);
}

void PreferencesDialog::accept()
{
    CORVSettings& settings = *CORVPreference::getSettings();
    settings.setValue(QStringLiteral("Views/FontFamily"), m_pFont->currentFont().family());
    settings.setValue(QStringLiteral("Views/LabelFontSize"), m_pLabelSize->value());
    settings.setValue(QStringLiteral("Views/BarFontSize"), m_pBarSize->value());
    CORVPreference::setUsersPreferredFormat(m_pFormat->currentData().toString());
    settings.setValue(settingNames::pluginFolder(), QDir::fromNativeSeparators(m_pPlugins->text().trimmed()));
    QDialog::accept();
    Q_EMIT CORVPreference::getSignalHandler()->updatePreferenceSetting();
}
