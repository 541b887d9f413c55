#include "platform/automation_error.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(AutomationError, EachNumberHasThePlatformsSentence) {
    struct Row {
        std::int32_t number;
        const char* text;
    };
    const Row rows[] = {
        {5, "Invalid procedure call or argument"},
        {6, "Overflow"},
        {7, "Out of memory"},
        {9, "Subscript out of range"},
        {10, "This array is fixed or temporarily locked"},
        {13, "Type mismatch"},
        {51, "Internal error"},
        {52, "Bad file name or number"},
        {57, "Device I/O error"},
        {70, "Permission denied"},
        {75, "Path/File access error"},
        {76, "Path not found"},
        {91, "Object variable not set"},
        {438, "Object doesn't support this property or method"},
        {457, "This key is already associated with an element of this collection"},
        {1234, "Application-defined or object-defined error"},
    };
    for (const Row& row : rows) {
        const automation_error error(static_cast<ErrorNumber>(row.number));
        EXPECT_STREQ(error.what(), row.text);
        EXPECT_EQ(static_cast<std::int32_t>(error.number()), row.number);
    }
}

TEST(AutomationError, ADescriptionReplacesTheSentence) {
    const automation_error error(ErrorNumber::DeviceIoError, "the cable is out");
    EXPECT_STREQ(error.what(), "the cable is out");
    EXPECT_EQ(error.number(), ErrorNumber::DeviceIoError);
}

}  // namespace
}  // namespace corvane
