// SPDX-License-Identifier: GPL-3.0-or-later
// The rooms of the house lie on floors; a file includes nothing of a room above its own.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const fs::path root = ORV_SOURCE_DIR;

// Rooms that stand on a floor. platform/ stands beside the house and is told below.
const std::map<std::string, int> floors = {{"files", 0},   {"host", 1},     {"algorithms", 2}, {"spectra", 2},
                                           {"windows", 3}, {"engine", 4},   {"storage", 5},    {"services", 6},
                                           {"plugin", 7},  {"workbench", 8}};

// Within services/ and workbench/: what a room may include besides itself and the floors below.
const std::map<std::string, std::set<std::string>> neighbours = {
    {"services/basis", {}},
    {"services/session", {"services/basis", "services/importer"}},
    {"services/pictures", {"services/basis"}},
    {"services/warnings", {"services/basis"}},
    {"services/results",
     {"services/basis", "services/session", "services/pictures", "services/warnings", "services/importer"}},
    {"services/regions", {"services/basis", "services/session", "services/pictures", "services/results"}},
    {"services/importer", {}},
    {"services/transfer", {"services/basis", "services/session", "services/importer"}},
    {"services/batch",
     {"services/basis", "services/session", "services/pictures", "services/warnings", "services/results",
      "services/importer"}},
    {"services/analysis",
     {"services/basis", "services/session", "services/pictures", "services/warnings", "services/results"}},
    {"workbench/start", {}},
    {"workbench/manual", {}},
    {"workbench/simulator", {}},
    {"workbench/commands", {"workbench/start", "workbench/manual", "workbench/simulator"}},
    {"workbench/application", {"workbench/start", "workbench/manual"}},
    {"workbench/manual_files", {"workbench/manual", "workbench/commands", "workbench/application"}}};

bool isContainer(const std::string& path)
{
    return path.rfind("XTNT/xtnt_", 0) == 0;
}

// The room's floor by a file's path from the root; nothing for a file outside the house.
std::optional<int> floorOf(const std::string& path)
{
    if (path.rfind("engine/CImageCube.", 0) == 0) {
        return 2; // a target of its own, below the windows that show it
    }
    const auto room = path.substr(0, path.find('/'));
    if (room == "XTNT") {
        return isContainer(path) ? 0 : 2;
    }
    const auto found = floors.find(room);
    if (found == floors.end()) {
        return std::nullopt;
    }
    return found->second;
}

// The room of a path two folders deep: "services/basis" of "services/basis/TextTable.h".
std::string innerRoomOf(const std::string& path)
{
    const auto first = path.find('/');
    const auto second = first == std::string::npos ? first : path.find('/', first + 1);
    return path.substr(0, second == std::string::npos ? 0 : second);
}

bool startsWith(const std::string& text, const std::string& head)
{
    return text.rfind(head, 0) == 0;
}

// What is wrong with `path` including `target`; an empty text when all is well.
std::string complaint(const std::string& path, const std::string& target)
{
    const bool targetIsPlatform = startsWith(target, "platform/");
    if (startsWith(path, "platform/")) {
        const bool allowed = targetIsPlatform || startsWith(target, "host/") || floorOf(target).value_or(0) == 0;
        return allowed ? "" : "platform/ includes only host/, floor 0 and itself";
    }
    const auto own = floorOf(path);
    if (!own) {
        return "";
    }
    if (targetIsPlatform) {
        const bool allowed = startsWith(path, "services/") || startsWith(path, "workbench/");
        return allowed ? "" : "only services/, workbench/ and tests include platform/";
    }
    const auto other = floorOf(target);
    if (other && *other > *own) {
        return "a room above its own";
    }
    const auto rooms = neighbours.find(innerRoomOf(path));
    const std::string room = innerRoomOf(target);
    if (rooms != neighbours.end() && other == own && room != rooms->first && rooms->second.count(room) == 0) {
        return "a room of its floor that it stands beside or below";
    }
    return "";
}

std::vector<std::string> includesOf(const fs::path& file)
{
    static const std::regex pattern(R"(^\s*#\s*include\s*\"([^\"]+)\")");
    std::vector<std::string> found;
    std::ifstream stream(file);
    std::smatch match;
    for (std::string line; std::getline(stream, line);) {
        if (std::regex_search(line, match, pattern)) {
            found.push_back(match[1]);
        }
    }
    return found;
}

std::vector<fs::path> sourcesOf(const std::string& room)
{
    std::vector<fs::path> files;
    if (!fs::exists(root / room)) {
        return files;
    }
    for (const auto& entry : fs::recursive_directory_iterator(root / room)) {
        if (entry.is_regular_file() && (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")) {
            files.push_back(entry.path());
        }
    }
    return files;
}

const char* const everyRoom[] = {"files",   "XTNT",   "host",    "platform", "algorithms", "spectra",
                                 "windows", "engine", "storage", "services", "plugin",     "workbench"};

TEST(FloorsTest, NoFileIncludesARoomAboveItsOwn)
{
    int looked = 0;
    for (const char* room : everyRoom) {
        for (const auto& file : sourcesOf(room)) {
            const auto path = fs::relative(file, root).generic_string();
            ++looked;
            for (const auto& target : includesOf(file)) {
                EXPECT_EQ(complaint(path, target), "") << path << " includes " << target;
            }
        }
    }
    EXPECT_GT(looked, 50);
}

TEST(FloorsTest, TheRuleItselfRefusesEachUpwardInclude)
{
    EXPECT_NE(complaint("host/CILImage.h", "engine/CImageCube.h"), "");
    EXPECT_NE(complaint("engine/CImageCube.cpp", "platform/orvimage/TiffIo.h"), "");
    EXPECT_NE(complaint("engine/CImageCube.cpp", "engine/EngineEnums.h"), "");
    EXPECT_NE(complaint("XTNT/xtnt_matrix.h", "XTNT/nnls.h"), "");
    EXPECT_NE(complaint("platform/orvapi/CORVDatabase.cpp", "spectra/KeyPair.h"), "");
    EXPECT_NE(complaint("files/AtomicFile.cpp", "host/CORVLog.h"), "");
    EXPECT_NE(complaint("spectra/KeyPair.h", "engine/ImageRecord.h"), "");
    EXPECT_EQ(complaint("engine/CImageCube.cpp", "XTNT/nnls.h"), "");
    EXPECT_EQ(complaint("windows/halfLife.h", "engine/CImageCube.h"), "");
    EXPECT_NE(complaint("storage/SavedResults.cpp", "services/basis/TextTable.h"), "");
    EXPECT_NE(complaint("services/basis/TextTable.cpp", "services/session/OpenedSequence.h"), "");
    EXPECT_NE(complaint("services/regions/RoiStore.cpp", "services/transfer/CubeFiles.h"), "");
    EXPECT_NE(complaint("services/transfer/CubeFiles.cpp", "workbench/commands/Command.h"), "");
    EXPECT_NE(complaint("workbench/simulator/simulate.cpp", "workbench/commands/Command.h"), "");
    EXPECT_EQ(complaint("services/transfer/CubeFiles.cpp", "services/basis/TextTable.h"), "");
    EXPECT_EQ(complaint("workbench/commands/UnmixCommand.cpp", "platform/orvimage/TiffIo.h"), "");
}

// A room that the table of neighbours forgets would be free to include anything of its floor.
TEST(FloorsTest, EveryRoomOfTheTopFloorsIsInTheTable)
{
    std::set<std::string> rooms;
    for (const char* floor : {"services", "workbench"}) {
        for (const auto& entry : fs::directory_iterator(root / floor)) {
            if (entry.is_directory()) {
                rooms.insert(std::string(floor) + '/' + entry.path().filename().string());
            }
        }
    }
    std::set<std::string> known;
    for (const auto& entry : neighbours) {
        known.insert(entry.first);
    }
    EXPECT_EQ(rooms, known);
}

// A unit is a header with its source; its place from the root without an ending names it.
using Units = std::map<std::string, std::set<std::string>>;

std::string unitOf(const std::string& path)
{
    return path.substr(0, path.rfind('.'));
}

Units unitsOfTheHouse()
{
    Units units;
    for (const char* room : everyRoom) {
        for (const auto& file : sourcesOf(room)) {
            const std::string unit = unitOf(fs::relative(file, root).generic_string());
            for (const auto& target : includesOf(file)) {
                if (unitOf(target) != unit) {
                    units[unit].insert(unitOf(target));
                }
            }
        }
    }
    return units;
}

// The first circle that is met on the way from `unit`, as "a -> b -> a"; empty when there is none.
std::string circleFrom(const std::string& unit, const Units& units, std::vector<std::string>& way,
                       std::set<std::string>& done)
{
    const auto before = std::find(way.begin(), way.end(), unit);
    if (before != way.end()) {
        std::string text;
        for (auto step = before; step != way.end(); ++step) {
            text += *step + " -> ";
        }
        return text + unit;
    }
    const auto targets = units.find(unit);
    if (targets == units.end() || !done.insert(unit).second) {
        return "";
    }
    way.push_back(unit);
    for (const auto& target : targets->second) {
        const std::string circle = circleFrom(target, units, way, done);
        if (!circle.empty()) {
            return circle;
        }
    }
    way.pop_back();
    return "";
}

std::string circleIn(const Units& units)
{
    std::set<std::string> done;
    for (const auto& entry : units) {
        std::vector<std::string> way;
        const std::string circle = circleFrom(entry.first, units, way, done);
        if (!circle.empty()) {
            return circle;
        }
    }
    return "";
}

// A source may include what its header may not; the units would still need each other.
TEST(FloorsTest, NoUnitsIncludeEachOtherInACircle)
{
    const Units units = unitsOfTheHouse();
    EXPECT_GT(units.size(), 200U);
    EXPECT_EQ(circleIn(units), "");
}

TEST(FloorsTest, ACircleIsFoundByWhateverWay)
{
    EXPECT_EQ(circleIn({{"a/X", {"a/Y"}}, {"a/Y", {"a/Z"}}, {"a/W", {"a/X", "a/Y", "a/Z"}}}), "");
    EXPECT_EQ(circleIn({{"a/X", {"a/Y"}}, {"a/Y", {"a/X"}}}), "a/X -> a/Y -> a/X");
    EXPECT_EQ(circleIn({{"a/A", {"a/B", "a/X"}}, {"a/B", {}}, {"a/X", {"b/Y"}}, {"b/Y", {"b/Z"}}, {"b/Z", {"a/X"}}}),
              "a/X -> b/Y -> b/Z -> a/X");
}

// A plug-in that links the services sees the host's declarations, not our libraries.
TEST(FloorsTest, HeadersOfTheServicesShowNoHeaderOfPlatform)
{
    int looked = 0;
    for (const auto& file : sourcesOf("services")) {
        const auto path = fs::relative(file, root).generic_string();
        // What reads foreign images holds a reader of pages.
        if (file.extension() != ".h" || path == "services/importer/ImageStack.h") {
            continue;
        }
        ++looked;
        for (const auto& target : includesOf(file)) {
            EXPECT_FALSE(startsWith(target, "platform/")) << path << " includes " << target;
        }
    }
    EXPECT_GT(looked, 30);
}

TEST(FloorsTest, IncludesNameTheirRoom)
{
    for (const char* room : everyRoom) {
        for (const auto& file : sourcesOf(room)) {
            for (const auto& target : includesOf(file)) {
                EXPECT_NE(target.find('/'), std::string::npos)
                    << file << " includes " << target << " without its room, past the check of floors";
            }
        }
    }
}

TEST(HouseTest, EverySourceFileStatesTheLicence)
{
    for (const char* room : {"files", "XTNT", "host", "platform", "algorithms", "spectra", "windows", "engine",
                             "storage", "services", "plugin", "workbench", "tests", "bench", "fuzz"}) {
        for (const auto& file : sourcesOf(room)) {
            std::ifstream stream(file);
            std::string line;
            std::getline(stream, line);
            EXPECT_EQ(line, "// SPDX-License-Identifier: GPL-3.0-or-later") << file;
        }
    }
}

} // namespace
