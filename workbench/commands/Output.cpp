// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/Output.h"

#include <cerrno>
#include <unistd.h>

bool writeAll(int descriptor, const QByteArray& bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const auto written = ::write(descriptor, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        done += written;
    }
    return true;
}
