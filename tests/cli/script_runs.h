#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace corvane {

/// The bytes of a file; none when it is not there.
inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The scripts of a folder, by name.
inline std::vector<std::filesystem::path> scriptsIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> scripts;
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".script") scripts.push_back(entry.path());
    std::sort(scripts.begin(), scripts.end());
    return scripts;
}

/// One way to run a script.
struct WayToRun {
    std::string suffix;  ///< of the log's name: ".faithful"
    std::vector<std::string> options;
};

/// NAME.runs holds a line for each way to run a script: its name and further options. Without it there is one way.
inline std::vector<WayToRun> waysToRun(std::filesystem::path script) {
    std::vector<WayToRun> ways;
    std::istringstream lines(contentOf(script.replace_extension("runs")));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        words >> name;
        ways.push_back({"." + name, {std::istream_iterator<std::string>(words), {}}});
    }
    if (ways.empty()) ways.emplace_back();
    return ways;
}

}  // namespace corvane
