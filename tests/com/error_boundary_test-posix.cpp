// What becomes of exceptions that are no automation errors, which no script and no host can cause.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "host/com/error_boundary.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

constexpr CallSource source{IID__clsScriptControl, u"prjCorvaneScript.clsScriptControl"};

template <typename Exception>
HRESULT resultOfThrowing(const Exception& exception) {
    return guardedCall(source, [&](const FloatingPointState&) { throw exception; });
}

TEST(ErrorBoundary, AFaultOfOurOwnIsAnInternalErrorInItsOwnWords) {
    EXPECT_EQ(resultOfThrowing(std::logic_error("no such argument")), resultOf(51));
    const ErrorSeen error = takeError();
    EXPECT_EQ(error.source, "prjCorvaneScript.clsScriptControl");
    EXPECT_EQ(error.description, "no such argument");
}

TEST(ErrorBoundary, WhatIsNoExceptionIsAnInternalError) {
    EXPECT_EQ(resultOfThrowing(7), resultOf(51));
    EXPECT_EQ(takeError().description, "Internal error");
}

TEST(ErrorBoundary, ExhaustedMemoryIsError7) {
    EXPECT_EQ(resultOfThrowing(std::bad_alloc()), resultOf(7));
    EXPECT_EQ(takeError().description, "Out of memory");
}

}  // namespace
}  // namespace corvane::testing
