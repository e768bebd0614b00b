// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/libraryChoice.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct Case
{
    const char* name;
    LibraryChoice choice;
    bool taken;
    const char* hint;
};

std::ostream& operator<<(std::ostream& out, const Case& c)
{
    return out << c.name;
}

LibraryChoice choiceOf(bool bMultiSelect, bool bAppend, int nSelected, bool bCovered = true)
{
    LibraryChoice choice;
    choice.multiSelect = bMultiSelect;
    choice.appendOffered = bAppend;
    choice.selected = nSelected;
    choice.covered = bCovered;
    choice.uncovered = "Dye %2";
    choice.missing = {"675", "720"};
    return choice;
}

LibraryChoice withoutLibraries()
{
    LibraryChoice choice;
    choice.anyLibrary = false;
    return choice;
}

class LibraryChoiceTest : public ::testing::TestWithParam<Case>
{
};

TEST_P(LibraryChoiceTest, TellsWhetherItCanBeTakenAndWhyNot)
{
    EXPECT_EQ(canBeTaken(GetParam().choice), GetParam().taken);
    EXPECT_EQ(choiceHint(GetParam().choice), QString(GetParam().hint));
}

const char* const kLacks = "\"Dye %2\" has no value for 675, 720.";
const char* const kOne = "Select one or more spectra of a library.";
const char* const kTwo = "Select two or more spectra of a library.";
const char* const kImport = "Select one spectrum of a library.";

INSTANTIATE_TEST_SUITE_P(
    Choices, LibraryChoiceTest,
    ::testing::Values(Case{"none of several", choiceOf(true, false, 0), false, kOne},
                      Case{"one of several", choiceOf(true, false, 1), true, ""},
                      Case{"many of several", choiceOf(true, false, 10000), true, ""},
                      Case{"none to append", choiceOf(true, true, 0), false, kTwo},
                      Case{"one to append", choiceOf(true, true, 1), false, kTwo},
                      Case{"two to append", choiceOf(true, true, 2), true, ""},
                      Case{"none to import", choiceOf(false, false, 0), false, kImport},
                      Case{"one to import", choiceOf(false, false, 1), true, ""},
                      Case{"one to import, whatever is offered", choiceOf(false, true, 1), true, ""},
                      Case{"two to import", choiceOf(false, false, 2), false, kImport},
                      Case{"one that lacks an image", choiceOf(true, false, 1, false), false, kLacks},
                      Case{"two of which one lacks an image", choiceOf(true, true, 2, false), false, kLacks},
                      Case{"one to import that lacks an image", choiceOf(false, false, 1, false), false, kLacks},
                      Case{"no library", withoutLibraries(), false,
                           "There is no library yet. Spectra that are saved make one."}));

} // namespace
