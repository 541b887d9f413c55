#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/limits/limited_process-posix.h"
#include "tests/limits/script_file.h"
#include "tests/platform/ordinary_user-posix.h"

namespace corvane::testing {
namespace {

using ScriptFiles = ComponentTest;

TEST_F(ScriptFiles, AFileOf3GBIsRefusedUnread) {
    const TemporaryFolder folder;
    const auto path = folder.write("huge.script", "");
    std::filesystem::resize_file(path, std::uintmax_t{3} << 30);
    const auto load = [&] { return loadFile(*newControl().get(), path.u16string()); };
    EXPECT_EQ(inLimitedProcess(100, load),
              errorOf("7: Out of memory", path.u16string()) + " is larger than a text can be");
}

TEST_F(ScriptFiles, ANamedPipeIsNotWaitedFor) {
    const TemporaryFolder folder;
    const auto path = folder.path("pipe.script");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(loadFile(*newControl().get(), path.u16string()), errorOf("75: Path/File access error", path.u16string()));
}

TEST_F(ScriptFiles, AFileThatMayNotBeReadIsPermissionDenied) {
    const TemporaryFolder folder;
    const auto path = folder.write("secret.script", "Park()");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    const auto control = newControl();
    const OrdinaryUser user;
    EXPECT_EQ(loadFile(*control.get(), path.u16string()), errorOf("70: Permission denied", path.u16string()));
}

TEST_F(ScriptFiles, ALockOfAnotherHoldsForThoseWhoAskForItOnly) {
    const TemporaryFolder folder;
    const auto path = folder.write("locked.script", "Park()");
    const int locked = open(path.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(flock(locked, LOCK_EX), 0);
    EXPECT_EQ(loadFile(*newControl().get(), path.u16string()), "True");
    close(locked);
}

}  // namespace
}  // namespace corvane::testing
