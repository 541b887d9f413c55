#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// What the linked-in component meets where the tests run without the platform: nobody answers its dialogs, and there
/// are no window messages but those that a test plays.
namespace corvane::testing {

struct StandInServices {
    std::vector<std::string> messages;   ///< the texts of the message boxes shown
    std::vector<std::string> questions;  ///< those of the input boxes
    int yields = 0;
    std::function<void()> onYield;    ///< called at each yield to the message loop
    std::function<void()> onMessage;  ///< called while a message box is shown
};

/// Shared by all objects of the component; a test that uses it begins and ends with an empty one.
StandInServices& standInServices();

/// How many blocks of automation texts and arrays nobody has released. A `test::MemoryFault` refuses them.
std::size_t livingAutomationBlocks();

}  // namespace corvane::testing
