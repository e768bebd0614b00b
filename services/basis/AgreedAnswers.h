// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// While it lives, the questions of the libraries below that can be answered with Yes are, without a word: the user has
// agreed beforehand. All else goes to whoever is asked otherwise.
class AgreedAnswers
{
public:
    AgreedAnswers();
    ~AgreedAnswers();
    AgreedAnswers(const AgreedAnswers&) = delete;
    AgreedAnswers& operator=(const AgreedAnswers&) = delete;
};
