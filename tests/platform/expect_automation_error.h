#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/automation_error.h"

namespace corvane {

/// Expects `action` to raise the automation error `number` with a description that holds `inDescription`.
template <typename Action>
void expectAutomationError(Action action, ErrorNumber number, const std::string& inDescription) {
    try {
        action();
        ADD_FAILURE() << "no automation error; expected " << static_cast<int>(number);
    } catch (const automation_error& error) {
        EXPECT_EQ(static_cast<int>(error.number()), static_cast<int>(number)) << error.what();
        EXPECT_NE(std::string(error.what()).find(inDescription), std::string::npos) << error.what();
    }
}

}  // namespace corvane
