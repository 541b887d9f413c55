#include <windows.h>

#include "cli/console.h"
// After windows.h, which it needs.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <csignal>
#include <cstdio>
#include <iostream>

#include "platform/utf8.h"

namespace corvane {
namespace {

/// The console outlives the program and belongs to others then.
class CodePages {
public:
    CodePages() : input_(GetConsoleCP()), output_(GetConsoleOutputCP()) {
        SetConsoleCP(CP_UTF8);
        SetConsoleOutputCP(CP_UTF8);
    }
    CodePages(const CodePages&) = delete;
    CodePages& operator=(const CodePages&) = delete;
    ~CodePages() {
        if (input_ != 0) SetConsoleCP(input_);
        if (output_ != 0) SetConsoleOutputCP(output_);
    }

private:
    UINT input_;
    UINT output_;
};

}  // namespace

std::shared_ptr<void> prepareConsole() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    return std::make_shared<CodePages>();
}

// The system itself takes the handler away when it calls it, and ends a read from the console.
void onInterruption(void (*noted)(int)) { std::signal(SIGINT, noted); }

std::istream& standardInput() { return std::cin; }

bool inputIsTerminal() { return _isatty(_fileno(stdin)) != 0; }

// The arguments that C hands over have gone through the code page, which has not every character.
std::vector<std::string> commandLineArguments(int, char**) {
    int count = 0;
    wchar_t** const texts = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        const std::wstring text = texts[i];
        arguments.push_back(toUtf8(std::u16string(text.begin(), text.end())));
    }
    LocalFree(texts);
    return arguments;
}

}  // namespace corvane
