#include "cli/window_dialogs.h"
#include "cli/window_form-win32.h"
#include "ui/windows_dialogs.h"

namespace corvane {
namespace {

/// Dialogs of a program in a console, which is another program's window: the input box stands over it all the same.
class DialogsOverConsole final : public OperatorDialogs {
public:
    explicit DialogsOverConsole(const NumberLocale& locale) : dialogs_(locale, &console_) {}

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override {
        return dialogs_.showMessage(message);
    }
    InputAnswer askInput(const InputRequest& request) override { return dialogs_.askInput(request); }

private:
    // Newer consoles give each program an unseen window, which belongs to the one that is seen.
    WindowForm console_{GetAncestor(GetConsoleWindow(), GA_ROOTOWNER)};
    WindowsDialogs dialogs_;
};

}  // namespace

bool hasWindowDialogs() { return true; }

std::unique_ptr<OperatorDialogs> makeWindowDialogs(const NumberLocale& locale) {
    return std::make_unique<DialogsOverConsole>(locale);
}

}  // namespace corvane
