#include <windows.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/console.h"
#include "host/clsScriptControl.h"
#include "platform/message_box.h"
#include "platform/message_pump.h"
#include "platform/utf8.h"
#include "platform/value_rules.h"
#include "tests/com/component.h"
#include "ui/frmCDInputBox.h"
#include "ui/windows_dialogs.h"

// The operator dialogs for tests that type real keys and for pictures:
//
//   dialog_tool ask whole|single|string INITIAL MINIMUM MAXIMUM ALLOWZERO QUESTION TITLE
//   dialog_tool message TEXT CAPTION STYLE
//   dialog_tool load SCRIPT             a script's text; its faults are shown
//   dialog_tool component SCRIPT        a script's text, run by the component for a host that leaves all dialogs to it
//   dialog_tool watch                   for each line of input, the open dialogs of all programs as one line of JSON

namespace corvane {
namespace {

using Json = nlohmann::json;

std::string textOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    const auto length = SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return toUtf8(std::u16string(text.begin(), text.begin() + length));
}

std::string className(HWND window) {
    wchar_t name[64];
    const int length = GetClassNameW(window, name, 64);
    return {name, name + length};
}

Json areaOf(HWND window) {
    RECT area;
    GetWindowRect(window, &area);
    return {area.left, area.top, area.right, area.bottom};
}

Json controlsOf(HWND dialog) {
    GUITHREADINFO thread{};
    thread.cbSize = sizeof thread;
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &thread);
    Json controls = Json::array();
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const auto style = static_cast<DWORD>(GetWindowLongPtrW(child, GWL_STYLE));
        const bool isIcon = className(child) == "Static" && (style & SS_TYPEMASK) == SS_ICON;
        controls.push_back({{"id", GetDlgCtrlID(child)},
                            {"class", className(child)},
                            {"text", textOf(child)},
                            {"visible", IsWindowVisible(child) != FALSE},
                            {"focus", child == thread.hwndFocus},
                            {"icon", isIcon && SendMessageW(child, STM_GETICON, 0, 0) != 0},
                            {"area", areaOf(child)}});
    }
    return controls;
}

BOOL CALLBACK describe(HWND window, LPARAM argument) {
    if (IsWindowVisible(window) == FALSE || className(window) != "#32770") return TRUE;
    reinterpret_cast<Json*>(argument)->push_back(
        {{"title", textOf(window)}, {"area", areaOf(window)}, {"controls", controlsOf(window)}});
    return TRUE;
}

int watch() {
    std::string line;
    while (std::getline(std::cin, line)) {
        Json dialogs = Json::array();
        EnumWindows(describe, reinterpret_cast<LPARAM>(&dialogs));
        std::cout << dialogs.dump() << std::endl;
    }
    return 0;
}

int ask(const std::vector<std::u16string>& arguments) {
    const NumberLocale locale = NumberLocale::user();
    const auto single = [&](std::size_t index) { return toSingle(Value::ofText(arguments.at(index)), locale); };
    InputRequest request;
    request.kind = arguments.at(0) == u"whole"    ? InputKind::WholeNumber
                   : arguments.at(0) == u"single" ? InputKind::SingleNumber
                                                  : InputKind::String;
    request.initialValue =
        request.kind == InputKind::String ? Value::ofText(arguments.at(1)) : Value::ofSingle(single(1));
    request.minimum = single(2);
    request.maximum = single(3);
    request.allowZero = arguments.at(4) == u"1";
    request.question = arguments.at(5);
    request.title = arguments.at(6);
    const InputAnswer answer = frmCDInputBox(locale).GetInput(request);
    constexpr const char* endings[] = {"accepted", "cancelled", "unavailable"};
    std::cout << Json{{"ending", endings[static_cast<int>(answer.ending)]},
                      {"value", toUtf8(std::u16string(toText(answer.value, locale).view()))}}
                     .dump()
              << '\n';
    return 0;
}

// As in a host, whose active window stands behind the message.
void openHostWindow() {
    SetForegroundWindow(
        CreateWindowExW(0, L"STATIC", L"Host", WS_POPUP | WS_VISIBLE, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
}

int showMessage(const std::vector<std::u16string>& arguments) {
    openHostWindow();
    const std::int32_t style = toLong(Value::ofText(arguments.at(2)), NumberLocale::pointDecimal());
    std::cout << showMessageBox(arguments.at(0), arguments.at(1), style).value_or(0) << '\n';
    return 0;
}

int load(const std::vector<std::u16string>& arguments) {
    openHostWindow();
    WindowsDialogs dialogs;
    SystemMessagePump pump;
    clsScriptControl control({dialogs, pump});
    std::cout << control.LoadScript_FromScript(arguments.at(0), u"", 0, 0) << '\n';
    return 0;
}

// Informations are told, so that a script can show what it was given.
HRESULT answerEvent(DISPID event, DISPPARAMS& arguments) {
    constexpr DISPID info = 5;
    if (event == info)
        std::cout << Json{{"info", toUtf8(viewOf(*V_BSTRREF(&arguments.rgvarg[1])))}}.dump() << std::endl;
    testing::Sink::succeed(event, arguments);
    return S_OK;
}

int runByComponent(const std::vector<std::u16string>& arguments) {
    openHostWindow();
    testing::Sink sink(answerEvent);
    const ComReference<_clsScriptControl> control = testing::newControl();
    const testing::Advised advised(*control.get(), sink);
    const bool loaded = testing::load(*control.get(), arguments.at(0));
    VARIANT_BOOL ran = VARIANT_FALSE;
    const HRESULT result = loaded ? control->RunScript(&ran) : S_OK;
    std::cout << Json{{"loaded", loaded}, {"result", result}, {"ran", ran != VARIANT_FALSE}}.dump() << std::endl;
    return 0;
}

int run(const std::vector<std::string>& arguments) {
    std::vector<std::u16string> rest;
    for (std::size_t i = 1; i < arguments.size(); ++i) rest.push_back(fromUtf8(arguments[i]));
    if (arguments.at(0) == "ask") return ask(rest);
    if (arguments.at(0) == "message") return showMessage(rest);
    if (arguments.at(0) == "load") return load(rest);
    if (arguments.at(0) == "component") return runByComponent(rest);
    return watch();
}

}  // namespace
}  // namespace corvane

int main(int count, char** texts) {
    const std::shared_ptr<void> console = corvane::prepareConsole();
    return corvane::run(corvane::commandLineArguments(count, texts));
}
