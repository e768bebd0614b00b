// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/CORVSpumBrowseDlg.h"

#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "spectra/plainToolTip.h"

#include <QFile>
#include <QStringList>

#include <filesystem>

namespace {

constexpr char folderSetting[] = "Batch/SpumDatasetPath";
// Of the installation that the dialog was first made for.
constexpr char firstFolder[] = "B:/ORV/Dataset/SPUM/";

// Whatever lies in the folder, with its path. An error ends the walk with what was found until then.
QStringList entriesOf(const QString& strFolder)
{
    QStringList paths;
    try {
        for (const auto& entry : std::filesystem::directory_iterator(QFile::encodeName(strFolder).constData())) {
            paths.append(QFile::decodeName(entry.path().c_str()));
        }
    } catch (const std::filesystem::filesystem_error&) {
    }
    paths.sort();
    return paths;
}

} // namespace

CORVSpumBrowseDlg::CORVSpumBrowseDlg(QWidget* pParent) : QDialog(pParent)
{
    setupUi(this);
    fillList();
    connect(m_pDatasetList, &QListWidget::itemClicked, this, &CORVSpumBrowseDlg::onSelectListItem);
    connect(m_pDatasetList, &QListWidget::itemSelectionChanged, this, &CORVSpumBrowseDlg::onListViewSelectionChanged);
}

void CORVSpumBrowseDlg::fillList()
{
    const QString strFolder =
        CORVPreference::getSettings()->value(QLatin1String(folderSetting), QLatin1String(firstFolder)).toString();
    for (const QString& path : entriesOf(strFolder)) {
        auto* pItem = new QListWidgetItem(path, m_pDatasetList);
        pItem->setToolTip(plainToolTip(path));
    }
}

void CORVSpumBrowseDlg::onSelectListItem(QListWidgetItem* /*pItem*/) {}

void CORVSpumBrowseDlg::onListViewSelectionChanged()
{
    if (m_pDatasetList->currentRow() < 0) {
        m_pDatasetList->setCurrentRow(m_pDatasetList->count() - 1);
    }
}
