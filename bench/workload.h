#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace corvane::bench {

/// One thing that is measured in one system.
struct Workload {
    std::string name;             ///< workload/system, or workload/system/manner
    std::int64_t units;           ///< statements, lines or engines that one run makes
    std::function<double()> run;  ///< makes one run and returns its seconds; throws when the result is wrong
};

/// What a peer's library exports under the name "addWorkloads". Peers live in libraries of their own, since two of them
/// have functions of the same names.
using AddWorkloads = void(std::vector<Workload>& workloads);

/// Prepares a load of `lines` lines of the mix of statements; what `load` makes is kept until the process ends.
/// Exported under the name "prepareLoad".
using PrepareLoad = void(std::size_t lines, std::function<void()>& load);

/// Processor time of this thread, so that other processes do not count.
inline double secondsOf(const std::function<void()>& work) {
    const auto now = [] {
        std::timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

inline void expect(bool isRight, const std::string& what) {
    if (!isRight) throw std::runtime_error("wrong result: " + what);
}

}  // namespace corvane::bench
