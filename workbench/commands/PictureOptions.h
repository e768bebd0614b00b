// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/PictureStyle.h"

class CommandParser;
class QCommandLineParser;

// Declares --colors and --scale.
void declarePictureOptions(CommandParser& parser);
// Declares --colors alone.
void declareColorsOption(CommandParser& parser);

// Reads those that are declared; `pCommand` is named in the messages. Throws Failure (bad request).
PictureRequest pictureRequestOf(const QCommandLineParser& parser, const char* pCommand);
