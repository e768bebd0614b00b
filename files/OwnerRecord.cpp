// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/OwnerRecord.h"

#include "files/diskCalls.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv {

bool OwnerRecord::make(const QString& strFile)
{
    end();
    m_nFile = openHeld(QFile::encodeName(strFile), O_CREAT);
    m_strFile = strFile;
    return m_nFile >= 0;
}

bool OwnerRecord::takeAbandoned(const QString& strFile)
{
    end();
    const QByteArray file = QFile::encodeName(strFile);
    struct stat facts = {};
    if (::lstat(file.constData(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_uid != ::geteuid()) {
        return false;
    }
    m_nFile = openHeld(file, O_NONBLOCK);
    m_strFile = strFile;
    return m_nFile >= 0;
}

void OwnerRecord::end()
{
    if (m_nFile >= 0) {
        QFile::remove(m_strFile);
        ::close(m_nFile);
    }
    m_nFile = -1;
}

} // namespace orv
