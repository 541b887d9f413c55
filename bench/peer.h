#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "bench/scripts.h"
#include "bench/workload.h"

/// What the peers have in common: what their natives count, and the workloads that check it.
namespace corvane::bench {

struct Counts {
    std::int64_t before = 0;
    std::int64_t after = 0;
    std::int64_t lines = 0;  ///< seen by a line hook
    std::int64_t calls = 0;  ///< of natives that stand for statements
    double sum = 0;
    std::size_t characters = 0;
};

inline constexpr std::int64_t statementsOfLoop = 2 * static_cast<std::int64_t>(turnsOfLoop);

/// The loop of two statements; `check` looks at the counts after each run.
inline Workload loopWorkload(const std::string& name, Counts& counts, const std::function<void()>& run,
                             const std::function<void()>& check) {
    return {"loop/" + name, statementsOfLoop, [=, &counts] {
                counts = {};
                const double seconds = secondsOf(run);
                check();
                return seconds;
            }};
}

/// The turns of one statement, whose arguments the native of the peer has added up.
inline Workload statementWorkload(const std::string& name, Counts& counts, double sum, std::size_t characters,
                                  const std::function<void()>& run) {
    return {name, static_cast<std::int64_t>(callsOfStatement), [=, &counts] {
                counts = {};
                const double seconds = secondsOf(run);
                expect(counts.sum == sum * static_cast<double>(callsOfStatement), name);
                expect(counts.characters == characters * callsOfStatement, name);
                return seconds;
            }};
}

template <typename Engine>
Workload makeWorkload(const std::string& system, std::int64_t engines) {
    return {"make and destroy/" + system, engines, [engines] {
                return secondsOf([engines] {
                    for (std::int64_t i = 0; i < engines; ++i) const Engine engine;
                });
            }};
}

}  // namespace corvane::bench
