// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class CORVDataset;

// Who wants to know that pixels or regions of a dataset have changed: the windows, which this library does not know.
using ImageObserver = std::function<void(CORVDataset* pDataset)>;

// The one observer of the process; empty without. To be set and used on the user-interface thread.
ImageObserver& imageObserver();
