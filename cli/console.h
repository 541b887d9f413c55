#pragma once

#include <string>
#include <vector>

namespace corvane {

/// The program's connection to its console as long as it lives: UTF-8, no translation of line ends.
class Console {
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console();

    /// The arguments without the program's name, UTF-8.
    static std::vector<std::string> arguments(int count, char** texts);

private:
    unsigned inputCodePage_ = 0;
    unsigned outputCodePage_ = 0;
};

}  // namespace corvane
