// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/libraryChoice.h"

#include <QCoreApplication>

namespace {

QString text(const char* pText)
{
    return QCoreApplication::translate("libraryChoice", pText);
}

bool isNumberRight(const LibraryChoice& choice)
{
    if (!choice.multiSelect) {
        return choice.selected == 1;
    }
    return choice.selected >= (choice.appendOffered ? 2 : 1);
}

} // namespace

bool canBeTaken(const LibraryChoice& choice)
{
    return choice.covered && isNumberRight(choice);
}

QString choiceHint(const LibraryChoice& choice)
{
    if (!choice.anyLibrary) {
        return text("There is no library yet. Spectra that are saved make one.");
    }
    if (!choice.covered) {
        return text("\"%1\" has no value for %2, %3.")
            .arg(choice.uncovered, choice.missing.first, choice.missing.second);
    }
    if (isNumberRight(choice)) {
        return QString();
    }
    if (!choice.multiSelect) {
        return text("Select one spectrum of a library.");
    }
    return choice.appendOffered ? text("Select two or more spectra of a library.")
                                : text("Select one or more spectra of a library.");
}
