#pragma once

// Included ahead of everything else in the programs that tools/mutate builds. Their sources ask at each place that has
// mutants whether one of them is chosen for this process.

#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace mutation {

inline constexpr int mostMutants = 20000;

/// The number of the chosen mutant; 0 is the program as it is.
inline const int chosen = [] {
    const char* const number = std::getenv("CORVANE_MUTANT");
    return number == nullptr ? 0 : std::atoi(number);
}();

/// Which mutants' places the process came to. Written at its end, a number a line, where a file is asked for.
struct Reach {
    bool isReached[mostMutants] = {};

    ~Reach() {
        const char* const name = std::getenv("CORVANE_MUTANT_REACH");
        std::FILE* const file = name == nullptr ? nullptr : std::fopen(name, "w");
        if (file == nullptr) return;
        for (int number = 0; number < mostMutants; ++number)
            if (isReached[number]) std::fprintf(file, "%d\n", number);
        std::fclose(file);
    }
};
inline Reach reach;

/// Whether the mutant is chosen. What the compiler works out stays as it is.
constexpr bool on(int number) {
    if (std::is_constant_evaluated()) return false;
    reach.isReached[number] = true;
    return number == chosen;
}

/// The same value, moved by one.
template <typename Number>
constexpr Number moved(Number number, int distance) {
    if constexpr (std::is_enum_v<Number>)
        return static_cast<Number>(moved(static_cast<std::underlying_type_t<Number>>(number), distance));
    else
        return static_cast<Number>(number + static_cast<Number>(distance));
}

}  // namespace mutation
