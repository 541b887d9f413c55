#include <windows.h>
#include <winioctl.h>

#include "tests/limits/script_file.h"

namespace corvane::testing {
namespace {

using ScriptFiles = ComponentTest;

TEST_F(ScriptFiles, AFileOf3GBIsRefusedUnread) {
    const TemporaryFolder folder;
    const auto path = folder.path("huge.script");
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD answered = 0;
    DeviceIoControl(file, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &answered, nullptr);  // where there is such a thing
    const LARGE_INTEGER size{.QuadPart = LONGLONG{3} << 30};
    ASSERT_NE(SetFilePointerEx(file, size, nullptr, FILE_BEGIN), FALSE);
    ASSERT_NE(SetEndOfFile(file), FALSE);
    CloseHandle(file);
    EXPECT_EQ(loadFile(*newControl().get(), path.u16string()),
              errorOf("7: Out of memory", path.u16string()) + " is larger than a text can be");
}

TEST_F(ScriptFiles, ANamedPipeIsNotWaitedFor) {
    const std::u16string path = u"\\\\.\\pipe\\corvane_script_files_test";
    const HANDLE pipe = CreateNamedPipeW(reinterpret_cast<const wchar_t*>(path.c_str()), PIPE_ACCESS_DUPLEX, PIPE_WAIT,
                                         PIPE_UNLIMITED_INSTANCES, 64, 64, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    EXPECT_EQ(loadFile(*newControl().get(), path), errorOf("75: Path/File access error", path));
    CloseHandle(pipe);
}

TEST_F(ScriptFiles, ALockedFileIsPermissionDenied) {
    const TemporaryFolder folder;
    const auto path = folder.write("locked.script", "Park()");
    const HANDLE locked = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(locked, INVALID_HANDLE_VALUE);
    const auto control = newControl();
    EXPECT_EQ(loadFile(*control.get(), path.u16string()), errorOf("70: Permission denied", path.u16string()));
    CloseHandle(locked);
    EXPECT_EQ(loadFile(*control.get(), path.u16string()), "True");
}

}  // namespace
}  // namespace corvane::testing
