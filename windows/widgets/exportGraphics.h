// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

class QWidget;

// Asks for a file, in the folder that was chosen last and with the user's preferred format first, and writes the
// picture to it in the format of its suffix. A DICOM file tells the subject of the sequence in whose window `pParent`
// lies, or else of the active one. True when it has been written; what went wrong is told in a box. `pParent` may be
// gone when this returns; the picture is taken by value, as the window may make another one while the question is open.
bool exportGraphics(QWidget* pParent, QImage picture);
