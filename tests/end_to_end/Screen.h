// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "driver/DrivenProgram.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

// A screen and a palette that people have.
struct Screen
{
    const char* name;
    const char* scale;
    int width;
    int height;
    bool dark;
};

inline std::ostream& operator<<(std::ostream& out, const Screen& screen)
{
    return out << screen.name;
}

inline auto screens()
{
    return ::testing::Values(Screen{"usual", "1", 1600, 1200, false}, Screen{"small", "1", 1024, 700, false},
                             Screen{"sharp", "2", 800, 600, false}, Screen{"dark", "1", 1280, 900, true},
                             Screen{"darkSharp", "2", 800, 600, true});
}

inline std::string nameOfScreen(const ::testing::TestParamInfo<Screen>& each)
{
    return each.param.name;
}

// The texts of an answer, a line each.
inline std::string joined(const QJsonArray& texts)
{
    QStringList lines;
    for (const QJsonValue& text : texts) {
        lines.append(text.toString());
    }
    return lines.join('\n').toStdString();
}

// Keeps a picture of the screen, and expects that nothing in a window is cut, every control has a name and every box is
// seen.
inline void look(DrivenProgram& program, const Screen& screen, const QString& strStage, const QString& strWindow)
{
    program.call({{"do", "quiet"}, {"ms", 100}});
    program.picture(QStringLiteral("looks/%1_%2.png").arg(screen.name, strStage));
    const QJsonObject faults = program.call({{"do", "faults"}, {"widget", strWindow}});
    EXPECT_EQ(joined(faults["cut"].toArray()), "") << strStage.toStdString();
    EXPECT_EQ(joined(faults["nameless"].toArray()), "") << strStage.toStdString();
    EXPECT_EQ(joined(faults["faint"].toArray()), "") << strStage.toStdString();
}
