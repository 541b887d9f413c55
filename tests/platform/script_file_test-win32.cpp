#include <gtest/gtest.h>
#include <windows.h>

#include "platform/code_page.h"
#include "platform/script_file.h"
#include "tests/platform/expect_automation_error.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

TEST(CodePage, AgreesWithTheSystemsConversion) {
    for (int number = 0; number < 256; ++number) {
        const char byte = static_cast<char>(number);
        const std::u16string text = fromSystemCodePage(std::string_view(&byte, 1));
        ASSERT_EQ(text.size(), 1U);
        wchar_t wide = 0;
        const bool isCharacter = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &byte, 1, &wide, 1) == 1;
        EXPECT_EQ(+text[0], isCharacter ? +static_cast<char16_t>(wide) : number) << number;
    }
}

TEST(ScriptFile, ReportsAFileThatAnotherHasLocked) {
    const TemporaryFolder folder;
    const auto path = folder.write("locked.script", "text");
    const HANDLE lock = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    expectAutomationError([&] { readScriptFile(path.u16string()); }, ErrorNumber::PermissionDenied, "locked.script'");
    expectAutomationError([&] { readExistingScriptFile(path.u16string()); }, ErrorNumber::PermissionDenied,
                          "locked.script'");
    CloseHandle(lock);
}

TEST(ScriptFile, ReadsAFileThatAnotherWritesTo) {
    const TemporaryFolder folder;
    const auto path = folder.write("shared.script", "text");
    const HANDLE writer = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    EXPECT_EQ(readScriptFile(path.u16string()), u"text");
    CloseHandle(writer);
}

TEST(ScriptFile, RefusesCharactersThatNoNameMayHold) {
    const TemporaryFolder folder;
    for (const char16_t character : u"<>\"|?*") {
        if (character == u'\0') continue;
        const std::u16string name = folder.path("a").u16string() + character + u"b.script";
        expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::BadFileName, "b.script'");
        expectAutomationError([&] { readExistingScriptFile(name); }, ErrorNumber::BadFileName, "b.script'");
    }
}

TEST(ScriptFile, RefusesADevice) {
    expectAutomationError([] { readScriptFile(u"NUL"); }, ErrorNumber::PathFileAccess, "NUL'");
    expectAutomationError([] { readExistingScriptFile(u"NUL"); }, ErrorNumber::PathFileAccess, "NUL'");
}

TEST(ScriptFile, DoesNotWaitForAPipe) {
    const wchar_t* name = L"\\\\.\\pipe\\corvane_script_file_test";
    const HANDLE pipe =
        CreateNamedPipeW(name, PIPE_ACCESS_DUPLEX, PIPE_WAIT, PIPE_UNLIMITED_INSTANCES, 64, 64, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    const std::wstring wide = name;
    const std::u16string path(wide.begin(), wide.end());
    expectAutomationError([&] { readScriptFile(path); }, ErrorNumber::PathFileAccess, "script_file_test'");
    CloseHandle(pipe);
}

}  // namespace
}  // namespace corvane
