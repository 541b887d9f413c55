#include <windows.h>

#include "cli/console.h"
// After windows.h, which it needs.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>

#include "platform/utf8.h"

namespace corvane {

Console::Console() : inputCodePage_(GetConsoleCP()), outputCodePage_(GetConsoleOutputCP()) {
    SetConsoleCP(CP_UTF8);
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

// The console outlives the program and belongs to others then.
Console::~Console() {
    if (inputCodePage_ != 0) SetConsoleCP(inputCodePage_);
    if (outputCodePage_ != 0) SetConsoleOutputCP(outputCodePage_);
}

// The arguments that C hands over have gone through the code page, which has not every character.
std::vector<std::string> Console::arguments(int, char**) {
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
