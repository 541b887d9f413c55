// Plays kept inputs to a target without a fuzzer: fuzz_TARGET FILE_OR_FOLDER...

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/fuzz/fuzz_input.h"

namespace {

namespace fs = std::filesystem;

void play(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(stream), {}};
    corvane::fuzz::require(!stream.bad(), "an input can be read");
    // In a block of exactly its size, so that the address sanitizer sees every step beyond.
    const std::vector<std::uint8_t> input(content.begin(), content.end());
    std::fprintf(stderr, "%s\n", file.c_str());
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int count, char** arguments) {
    std::size_t played = 0;
    for (int i = 1; i < count; ++i) {
        std::vector<fs::path> files{arguments[i]};
        if (fs::is_directory(arguments[i])) files.assign(fs::directory_iterator(arguments[i]), {});
        for (const fs::path& file : files) play(file);
        played += files.size();
    }
    std::printf("%zu inputs\n", played);
    return played == 0;
}
