// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultMaps.h"

#include "services/basis/Failure.h"

#include <QFileInfo>
#include <QImage>

#include <limits>

ResultMaps::ResultMaps(const QString& strFolder) : m_folder(strFolder, strFolder), m_files(m_folder.mapFiles())
{
    const QList<UnmixFolder::Component>& components = m_folder.components();
    if (m_files.isEmpty()) {
        for (const auto& component : components) {
            m_files.append(component.map);
        }
    }
    if (m_files.isEmpty()) {
        throw Failure(QStringLiteral("%1 names no maps").arg(m_folder.summaryPath()));
    }
    if (!(static_cast<float>(m_folder.binning()) > 0.0F)) {
        throw Failure(QStringLiteral("%1 does not tell the binning of the maps").arg(m_folder.summaryPath()));
    }
    for (int i = 0; i < m_files.size(); ++i) {
        m_names.append(m_files.size() == components.size() ? components[i].name
                                                           : QFileInfo(m_files[i]).completeBaseName());
    }
}

CILImage ResultMaps::read(int n) const
{
    CILImage map = UnmixFolder::readMap(m_folder.path() + m_files[n]);
    map.m_fBinning = static_cast<float>(m_folder.binning());
    maskOut(map);
    return map;
}

void ResultMaps::maskOut(CILImage& map) const
{
    const QImage mask = m_folder.readMask(map.m_lWidth, map.m_lHeight);
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            if (mask.constScanLine(y)[x] == 0) {
                map.floats()[y * mask.width() + x] = std::numeric_limits<float>::quiet_NaN();
            }
        }
    }
}
