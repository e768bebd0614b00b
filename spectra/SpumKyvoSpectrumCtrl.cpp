// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpumKyvoSpectrumCtrl.h"

#include "spectra/ColorCombo.h"
#include "spectra/DefaultColors.h"
#include "spectra/NameEdit.h"
#include "spectra/colorSwatch.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QToolButton>

// The icons are linked from a static library, so nothing registers them unless asked. Q_INIT_RESOURCE must stand
// outside every namespace.
static void initSpectraResources()
{
    Q_INIT_RESOURCE(spectra);
}

namespace {

// Face of the tool button for each `shape`.
constexpr const char* shapeTexts[] = {"Thin", "Medium", "Thick"};
constexpr const char* shapeIcons[] = {":/Resource/pencilthin.xpm", ":/Resource/pencilmedium.xpm",
                                      ":/Resource/pencilthick.xpm"};
constexpr int shapeCount = 3;
constexpr int shapeMedium = 1;
constexpr int swatchWidth = 56; // pixels of the colour combo that its swatch and its arrow take

} // namespace

SpumKyvoSpectrumCtrl::SpumKyvoSpectrumCtrl(QWidget* parent, bool withImport, bool multiSelect)
    : m_bMultiSelect(multiSelect)
{
    initSpectraResources();
    m_pLayout = new QHBoxLayout;
    m_pLayout->setContentsMargins(3, 0, 3, 0);
    m_pLayout->setSpacing(3);

    m_pIndexLabel = new QLabel(QStringLiteral("0"), parent);
    m_pIndexLabel->setEnabled(false); // for its look only
    m_pLayout->addWidget(m_pIndexLabel);

    if (multiSelect) {
        m_pSelectBox = new QCheckBox(parent);
    } else {
        m_pSelectBox = new QRadioButton(parent);
    }
    m_pLayout->addWidget(m_pSelectBox);

    m_pNameEdit = new NameEdit(QStringLiteral("NoName"), parent);
    m_pNameEdit->setEnabled(false);
    m_pLayout->addWidget(m_pNameEdit, 2);

    buildColorCombo(parent);
    buildTool(parent, withImport);
}

SpumKyvoSpectrumCtrl::~SpumKyvoSpectrumCtrl()
{
    delete m_pToolButton;
    delete m_pToolMenu; // and its actions
    delete m_pColorCombo;
    delete m_pNameEdit;
    delete m_pSelectBox;
    delete m_pIndexLabel;
    delete m_pLayout;
}

void SpumKyvoSpectrumCtrl::buildColorCombo(QWidget* parent)
{
    m_pColorCombo = new ColorCombo(parent);
    m_pColorCombo->setMinimumContentsLength(15);
    // In a narrow list the swatch tells enough, and two thirds of the room are the name's.
    m_pColorCombo->setMinimumWidth(swatchWidth);
    m_pColorCombo->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    for (const QString& name : defaultSpectrumColors()) {
        m_colorEntries.append({name, colorSwatch(name)});
        m_pColorCombo->addItem(m_colorEntries.last().icon, name);
    }
    m_pLayout->addWidget(m_pColorCombo, 1);
}

void SpumKyvoSpectrumCtrl::buildTool(QWidget* parent, bool withImport)
{
    m_pToolMenu = new QMenu(parent);
    QAction* pMedium = nullptr;
    for (int i = 0; i < shapeCount; ++i) {
        QAction* pAction = m_pToolMenu->addAction(QIcon(QLatin1String(shapeIcons[i])), QLatin1String(shapeTexts[i]));
        pMedium = i == shapeMedium ? pAction : pMedium;
    }
    if (withImport) {
        m_pImportAction =
            m_pToolMenu->addAction(QIcon(QStringLiteral(":/Resource/fileopen_enabled.xpm")), QStringLiteral("Import"));
    }
    // The default of the menu and not of the button: a button with a default action triggers that at each click and
    // would fall back to "Medium" instead of being turned on and off.
    m_pToolMenu->setDefaultAction(pMedium);

    m_pToolButton = new QToolButton(parent);
    m_pToolButton->setMenu(m_pToolMenu);
    m_pToolButton->setPopupMode(QToolButton::MenuButtonPopup);
    m_pToolButton->setAutoRaise(true);
    m_pToolButton->setCheckable(true);
    m_pToolButton->setIcon(pMedium->icon());
    m_pToolButton->setText(pMedium->text());
    m_pLayout->addWidget(m_pToolButton);
}

SpectrumSettings SpumKyvoSpectrumCtrl::settings() const
{
    SpectrumSettings result;
    result.curveId = m_nCurveId;
    result.curveFlag = m_nCurveFlag;
    if (m_pIndexLabel) {
        result.index = m_pIndexLabel->text().toInt();
    }
    if (m_pSelectBox) {
        result.selected = m_pSelectBox->isChecked();
    }
    if (m_pNameEdit) {
        result.name = m_pNameEdit->text();
        // Of its own, so that a window which is disabled for a while does not enter the record.
        result.enabled = m_pNameEdit->isEnabledTo(m_pNameEdit->parentWidget());
    }
    if (m_pColorCombo) {
        result.color = m_pColorCombo->currentText();
    }
    if (m_pToolButton) {
        for (int i = 0; i < shapeCount; ++i) {
            if (m_pToolButton->text().compare(QLatin1String(shapeTexts[i]), Qt::CaseInsensitive) == 0) {
                result.shape = i;
            }
        }
    }
    return result;
}

void SpumKyvoSpectrumCtrl::setSettings(const SpectrumSettings& settings)
{
    m_nCurveId = settings.curveId;
    m_nCurveFlag = settings.curveFlag;
    if (m_pIndexLabel) {
        m_pIndexLabel->setText(QString::number(settings.index));
    }
    if (m_pSelectBox) {
        const QSignalBlocker blocker(m_pSelectBox);
        setSelected(settings.selected);
    }
    if (m_pNameEdit) {
        m_pNameEdit->setText(settings.name);
        m_pNameEdit->setEnabled(settings.enabled);
    }
    const int position = defaultColorPosition(settings.color);
    if (m_pColorCombo && position >= 0) {
        const QSignalBlocker blocker(m_pColorCombo);
        m_pColorCombo->setCurrentIndex(position);
    }
    if (m_pToolButton && settings.shape >= 0 && settings.shape < shapeCount) {
        m_pToolButton->setIcon(QIcon(QLatin1String(shapeIcons[settings.shape])));
        m_pToolButton->setText(QLatin1String(shapeTexts[settings.shape]));
    }
}

void SpumKyvoSpectrumCtrl::setControlsEnabled(bool hasData, bool force)
{
    const bool bEnabled = hasData || force;
    if (m_pSelectBox) {
        m_pSelectBox->setEnabled(bEnabled);
    }
    if (m_pNameEdit) {
        m_pNameEdit->setEnabled(bEnabled);
    }
}

void SpumKyvoSpectrumCtrl::hide()
{
    if (m_pToolButton) {
        m_pToolButton->hide();
    }
}

void SpumKyvoSpectrumCtrl::uncheck()
{
    if (m_pSelectBox) {
        setSelected(false);
    }
}

// The checked one of a group of radio buttons refuses to be unchecked, unless it leaves the group meanwhile.
void SpumKyvoSpectrumCtrl::setSelected(bool bSelected)
{
    const bool bExclusive = m_pSelectBox->autoExclusive();
    if (!bSelected) {
        m_pSelectBox->setAutoExclusive(false);
    }
    m_pSelectBox->setChecked(bSelected);
    m_pSelectBox->setAutoExclusive(bExclusive);
}
