#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <random>
#include <set>
#include <string>

#include "tests/memory/memory_fault.h"

namespace corvane::test {

/// The requests to refuse, of `count`: all in the long test, otherwise at most `most` drawn by the seed, the first and
/// the last among them.
inline std::set<std::size_t> chosenRequests(std::size_t count, std::size_t most) {
    std::set<std::size_t> chosen;
    if (count <= most || std::getenv("CORVANE_LONG") != nullptr) {
        for (std::size_t n = 1; n <= count; ++n) chosen.insert(n);
        return chosen;
    }
    chosen = {1, count};
    std::mt19937 random(static_cast<unsigned>(count));
    while (chosen.size() < most) chosen.insert(1 + random() % count);
    return chosen;
}

/// Refuses each of the requests for memory that an attempt makes, alone and with all later ones. `attempt` makes its
/// objects, does the work under the fault that it is told, says what is wrong, and lets all go; it answers how many
/// requests the work made. After each the blocks that `living` counts are as many as before. The number of requests of
/// an undisturbed attempt becomes the property `name` of the test's record.
template <typename Living, typename Attempt>
void refuseEachRequest(const std::string& name, std::size_t most, Living&& living, Attempt&& attempt) {
    constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
    attempt(never, Refused::OnlyThat);  // what is made once a process is made now
    const std::size_t count = attempt(never, Refused::OnlyThat);
    ::testing::Test::RecordProperty(name, std::to_string(count));
    const std::set<std::size_t> chosen = chosenRequests(count, most);
    for (const std::size_t nth : chosen)
        for (const Refused refused : {Refused::OnlyThat, Refused::ThatAndAllLater}) {
            const std::size_t before = living();
            const std::size_t requests = attempt(nth, refused);
            const std::size_t after = living();
            EXPECT_GE(requests, nth);
            EXPECT_EQ(after, before) << "blocks are left behind";
            if (!::testing::Test::HasFailure()) continue;
            ADD_FAILURE() << name << ", request " << nth << " of " << count
                          << (refused == Refused::OnlyThat ? "" : " and all later ones");
            return;
        }
}

}  // namespace corvane::test
