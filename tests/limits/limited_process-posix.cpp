#include "tests/limits/limited_process-posix.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <fstream>
#include <stdexcept>

namespace corvane::testing {
namespace {

constexpr unsigned seconds = 60;

rlim_t addressSpaceInUse() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

std::string answerOf(const std::function<std::string()>& work) {
    try {
        return work();
    } catch (const std::exception& error) {
        return std::string("exception: ") + error.what();
    }
}

[[noreturn]] void workAndEnd(std::size_t megabytes, const std::function<std::string()>& work, int answerTo) {
    const rlim_t most = addressSpaceInUse() + (static_cast<rlim_t>(megabytes) << 20U);
    const rlimit limit{.rlim_cur = most, .rlim_max = most};
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(1);
    alarm(seconds);
    const std::string answer = answerOf(work);
    const ssize_t written = write(answerTo, answer.data(), answer.size());
    _exit(written == static_cast<ssize_t>(answer.size()) ? 0 : 1);
}

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> part;
    for (ssize_t count = 0; (count = read(descriptor, part.data(), part.size())) > 0;)
        text.append(part.data(), static_cast<std::size_t>(count));
    return text;
}

}  // namespace

std::string inLimitedProcess(std::size_t megabytes, const std::function<std::string()>& work) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) throw std::runtime_error("pipe");
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork");
    if (child == 0) workAndEnd(megabytes, work, ends[1]);
    close(ends[1]);
    std::string answer = readToEnd(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
    return answer;
}

}  // namespace corvane::testing
