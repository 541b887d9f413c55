#include <malloc.h>

#include <filesystem>
#include <iterator>

#include "tests/model/measurement.h"

namespace corvane::testing {

std::string measurement() {
    malloc_trim(0);
    const auto memory = mallinfo2();
    const auto files = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    return "heap=" + std::to_string(memory.uordblks + memory.hblkhd) +
           " private=" + std::to_string(memory.arena + memory.hblkhd) + " files=" + std::to_string(files);
}

}  // namespace corvane::testing
