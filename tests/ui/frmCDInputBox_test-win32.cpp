#include <windows.h>

#include "ui/frmCDInputBox.h"
// After windows.h, which it needs.
#include <commctrl.h>
#include <gmock/gmock.h>
#include <oleacc.h>
#include <oleauto.h>

#include <limits>
#include <thread>

#include "platform/desktop-win32.h"
#include "platform/floating_point.h"
#include "platform/message_box.h"
#include "platform/value_rules.h"
#include "tests/platform/open_dialog-win32.h"
#include "ui/input_rules.h"

namespace corvane {
namespace {

using Form = frmCDInputBox;
using Ending = InputAnswer::Ending;

// The bits in which the processor notes the exceptions that it has met.
constexpr std::uint32_t exceptionsNoted = 0x3F;

constexpr Form::Control labels[] = {Form::lblQuestion, Form::lblRange, Form::lblReturnValue, Form::lblReason,
                                    Form::lblValueCaption};
constexpr Form::Control allControls[] = {Form::lblQuestion,     Form::txtNumValue, Form::txtStrValue,
                                         Form::lblRange,        Form::lblReason,   Form::lblReturnValue,
                                         Form::lblValueCaption, Form::cmdOK,       Form::cmdCancel};

/// An open box, as its controls tell.
class OpenBox {
public:
    explicit OpenBox(HWND window) : window_(window) {}
    HWND window() const { return window_; }
    HWND control(Form::Control id) const { return GetDlgItem(window_, id); }
    std::u16string text(Form::Control id) const { return textOf(control(id)); }
    bool isVisible(Form::Control id) const { return IsWindowVisible(control(id)) != FALSE; }
    HWND entry() const { return control(isVisible(Form::txtNumValue) ? Form::txtNumValue : Form::txtStrValue); }

    LabelLook look(Form::Control label) const {
        const HDC context = CreateCompatibleDC(nullptr);
        SendMessageW(window_, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                     reinterpret_cast<LPARAM>(control(label)));
        const COLORREF colour = GetTextColor(context);
        DeleteDC(context);
        return {colour, font(label).lfWeight == FW_BOLD};
    }
    LOGFONTW font(Form::Control id) const {
        LOGFONTW font{};
        GetObjectW(reinterpret_cast<HFONT>(SendMessageW(control(id), WM_GETFONT, 0, 0)), sizeof font, &font);
        return font;
    }
    RECT place(Form::Control id) const {
        RECT place{};
        GetWindowRect(control(id), &place);
        MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    RECT area() const {
        RECT area{};
        GetWindowRect(window_, &area);
        return area;
    }

    void setEntry(const wchar_t* text, int caret) const {
        SetWindowTextW(entry(), text);
        SendMessageW(entry(), EM_SETSEL, static_cast<WPARAM>(caret), caret);
    }
    void type(std::u16string_view keys) const {
        for (const char16_t key : keys) SendMessageW(entry(), WM_CHAR, key, 1);
    }
    /// As it comes from a keyboard: through the dialog's message loop, after what is happening now.
    void post(WPARAM virtualKey, UINT message = WM_KEYDOWN) const {
        PostMessageW(GetFocus(), message, virtualKey, message == WM_SYSCHAR ? 1 << 29 : 1);
    }
    /// As the Tab key does it.
    void moveTo(Form::Control id) const {
        SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control(id)), TRUE);
    }
    std::pair<DWORD, DWORD> selection() const {
        DWORD begin = 0;
        DWORD end = 0;
        SendMessageW(entry(), EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
        return {begin, end};
    }
    void press(Form::Control button) const { PostMessageW(control(button), BM_CLICK, 0, 0); }
    /// As the system tells it, with the area that it proposes.
    void changeResolution(int dpi, RECT proposed) const {
        SendMessageW(window_, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&proposed));
    }

private:
    HWND window_;
};

InputRequest number(float minimum, float maximum, InputKind kind = InputKind::SingleNumber) {
    return {.initialValue = Value::ofSingle(2.5F),
            .kind = kind,
            .question = u"How much?",
            .minimum = minimum,
            .maximum = maximum,
            .title = u"Enter Number"};
}

InputRequest string(std::u16string_view initial, float maximum) {
    return {.initialValue = Value::ofText(initial),
            .kind = InputKind::String,
            .question = u"Which batch?",
            .minimum = unlimitedMinimum,
            .maximum = maximum,
            .title = u"Enter String"};
}

// Opens a box, lets `act` work in it and presses OK.
InputAnswer asked(const InputRequest& request, const std::function<void(const OpenBox&)>& act,
                  const NumberLocale& locale = NumberLocale::pointDecimal(), IDispatch* ownerForm = nullptr) {
    const WhileOpen whileOpen([&](HWND window) {
        const OpenBox box(window);
        act(box);
        box.press(Form::cmdOK);
    });
    return frmCDInputBox(locale).GetInput(request, ownerForm);
}

// Opens a box and lets `act` close it.
InputAnswer closed(const InputRequest& request, const std::function<void(const OpenBox&)>& act) {
    const WhileOpen whileOpen([&](HWND window) { act(OpenBox(window)); });
    return frmCDInputBox(NumberLocale::pointDecimal()).GetInput(request);
}

// ------------------------------------------------------------------------------------------------------ what it shows

TEST(InputBoxWindow, ShowsTheControlsOfANumber) {
    const InputAnswer answer = asked(number(1, 10), [](const OpenBox& box) {
        EXPECT_EQ(textOf(box.window()), u"Enter Number");
        EXPECT_EQ(box.text(Form::lblQuestion), u"How much?");
        EXPECT_EQ(box.text(Form::txtNumValue), u"2.5");
        EXPECT_TRUE(box.isVisible(Form::txtNumValue));
        EXPECT_FALSE(box.isVisible(Form::txtStrValue));
        EXPECT_EQ(box.text(Form::lblRange), u"(Please enter a value between: 1 and 10)");
        EXPECT_FALSE(box.isVisible(Form::lblRange));
        EXPECT_EQ(box.text(Form::lblValueCaption), u"Value:");
        EXPECT_EQ(box.text(Form::lblReturnValue), u"2.5");
        EXPECT_EQ(box.text(Form::lblReason), u"");
        EXPECT_EQ(box.text(Form::cmdCancel), u"&Cancel");
        EXPECT_EQ(GetFocus(), box.control(Form::txtNumValue));
    });
    EXPECT_EQ(answer.ending, Ending::Accepted);
    EXPECT_EQ(answer.value.single(), 2.5F);
}

TEST(InputBoxWindow, ShowsTheControlsOfAString) {
    const InputAnswer answer = asked(string(u"b & c", 20), [](const OpenBox& box) {
        EXPECT_EQ(textOf(box.window()), u"Enter String");
        EXPECT_EQ(box.text(Form::txtStrValue), u"b & c");
        EXPECT_TRUE(box.isVisible(Form::txtStrValue));
        EXPECT_FALSE(box.isVisible(Form::txtNumValue));
        EXPECT_EQ(box.text(Form::lblRange), u"(Maximum String Lenght: 20)");
        EXPECT_TRUE(box.isVisible(Form::lblRange));
        EXPECT_EQ(box.text(Form::lblReturnValue), u"b & c");
        EXPECT_EQ(box.text(Form::lblReason), u"");
        EXPECT_EQ(GetFocus(), box.control(Form::txtStrValue));
    });
    EXPECT_EQ(answer.ending, Ending::Accepted);
    EXPECT_EQ(answer.value.textView(), u"b & c");
}

TEST(InputBoxWindow, HasTextsOfItsOwnWhereNoneAreGiven) {
    const std::u16string title = applicationTitle();
    const auto shows = [&](const char16_t* question) {
        return [&title, question](const OpenBox& box) {
            EXPECT_EQ(textOf(box.window()), title);
            EXPECT_EQ(box.text(Form::lblQuestion), question);
        };
    };
    struct Row {
        InputKind kind;
        const char16_t* question;
    };
    for (const Row& row :
         {Row{InputKind::WholeNumber, u"Please enter an Long:"},
          Row{InputKind::SingleNumber, u"Please enter a Single:"}, Row{InputKind::String, u"Please enter a String:"}}) {
        InputRequest request = number(0, 10, row.kind);
        request.question = {};
        request.title = {};
        asked(request, shows(row.question));
    }
}

TEST(InputBoxWindow, CorrectsAsTheOperatorTypes) {
    struct Row {
        InputKind kind;
        bool allowZero;
        const char16_t* typed;
        const char16_t* value;
        const char16_t* reason;
        bool isRangeVisible;
    };
    constexpr auto whole = InputKind::WholeNumber;
    constexpr auto single = InputKind::SingleNumber;
    const Row rows[] = {
        {single, true, u"3.25", u"3.25", u"", false},
        {single, true, u"10", u"10", u"", false},
        {single, true, u"10.5", u"10", u"(Too large)", true},
        {single, true, u"-2", u"0", u"(Too small)", true},
        {single, true, u"5-", u"0", u"(Too small)", true},
        {single, true, u"0", u"0", u"", false},
        {single, false, u"0", u"1", u"(Value is Zero)", false},
        {single, false, u"", u"1", u"(Value is Zero)", false},
        {whole, true, u"7", u"7", u"", false},
        {whole, true, u"2.5", u"2", u"(Non Long)", false},
        {whole, true, u"3.5", u"4", u"(Non Long)", false},
        {whole, true, u"10.6", u"11", u"(Non Long)", false},
        {whole, true, u"11", u"10", u"(Too large)", true},
        {whole, false, u"-", u"1", u"(Value is Zero)", false},
    };
    for (const Row& row : rows) {
        InputRequest request = number(10, 0, row.kind);
        request.allowZero = row.allowZero;
        const InputAnswer answer = asked(request, [&row](const OpenBox& box) {
            box.setEntry(L"", 0);
            box.type(row.typed);
            EXPECT_EQ(box.text(Form::lblReturnValue), row.value);
            EXPECT_EQ(box.text(Form::lblReason), row.reason);
            EXPECT_EQ(box.isVisible(Form::lblRange), row.isRangeVisible);
            EXPECT_EQ(box.look(Form::lblReturnValue), (LabelLook{0x800000, true}));
            const bool isCorrected = *row.reason != u'\0';
            EXPECT_EQ(box.look(Form::lblReason),
                      isCorrected ? (LabelLook{0x800000, true}) : (LabelLook{0x404040, false}));
        });
        EXPECT_EQ(answer.ending, Ending::Accepted);
        const std::u16string shown(toText(answer.value, NumberLocale::pointDecimal()).view());
        EXPECT_EQ(shown, row.value) << testing::PrintToString(row.typed);
    }
}

/// Has the system tell this program that the user wants high contrast, which no system lets a program decide for tests.
class HighContrast {
public:
    HighContrast() : slot_(importedAt()), before_(*slot_) { set(reinterpret_cast<void*>(&HighContrast::answer)); }
    HighContrast(const HighContrast&) = delete;
    HighContrast& operator=(const HighContrast&) = delete;
    ~HighContrast() { set(before_); }

private:
    using Function = decltype(&SystemParametersInfoW);

    // Where this program keeps the function's address.
    static void** importedAt() {
        auto* const base = reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr));
        const auto& start = *reinterpret_cast<IMAGE_DOS_HEADER*>(base);
        const auto& headers = *reinterpret_cast<IMAGE_NT_HEADERS*>(base + start.e_lfanew);
        const IMAGE_DATA_DIRECTORY& table = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
        auto** const begin = reinterpret_cast<void**>(base + table.VirtualAddress);
        system_ = &SystemParametersInfoW;
        return std::find(begin, begin + table.Size / sizeof(void*), reinterpret_cast<void*>(system_));
    }
    static BOOL WINAPI answer(UINT action, UINT size, void* value, UINT flags) {
        if (action != SPI_GETHIGHCONTRAST) return system_(action, size, value, flags);
        static_cast<HIGHCONTRASTW*>(value)->dwFlags = HCF_HIGHCONTRASTON | HCF_AVAILABLE;
        return TRUE;
    }
    void set(void* function) const {
        DWORD protection = 0;
        VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &protection);
        *slot_ = function;
        VirtualProtect(slot_, sizeof *slot_, protection, &protection);
    }

    static inline Function system_ = nullptr;
    void** slot_;
    void* before_;
};

TEST(InputBoxWindow, HasTheUsersColoursInHighContrast) {
    const HighContrast contrast;
    const COLORREF text = GetSysColor(COLOR_BTNTEXT);
    asked(number(0, 10), [text](const OpenBox& box) {
        EXPECT_EQ(box.look(Form::lblReturnValue), (LabelLook{text, true}));
        EXPECT_EQ(box.look(Form::lblReason), (LabelLook{text, false}));
        SetWindowTextW(box.entry(), L"11");
        EXPECT_EQ(box.text(Form::lblReason), u"(Too large)");
        EXPECT_EQ(box.look(Form::lblReason), (LabelLook{text, true}));
    });
}

/// A host whose processor rounds up and stops at every mistake.
class PeculiarHost {
public:
    PeculiarHost() : before_(FloatingPointState::present()) { settings.apply(); }
    PeculiarHost(const PeculiarHost&) = delete;
    PeculiarHost& operator=(const PeculiarHost&) = delete;
    ~PeculiarHost() { before_.apply(); }

    // Rounding up, in 53 bits; invalid operations, divisions by zero and overflows are not masked.
    static constexpr FloatingPointState settings{0x0A72, 0x5900};

private:
    FloatingPointState before_;
};

TEST(InputBoxWindow, CalculatesInItsOwnWayWhateverTheHostHasSet) {
    InputRequest request = number(1, 10, InputKind::WholeNumber);
    const PeculiarHost host;
    const InputAnswer answer = asked(request, [](const OpenBox& box) {
        EXPECT_EQ(box.text(Form::lblReturnValue), u"2");
        EXPECT_EQ(box.text(Form::lblReason), u"(Non Long)");
        struct Row {
            const wchar_t* text;
            const char16_t* value;
            const char16_t* reason;
        };
        for (const Row& row : {Row{L"4.5", u"4", u"(Non Long)"}, Row{L"3.2", u"3", u"(Non Long)"},
                               Row{L"1e300", u"10", u"(Too large)"}, Row{L"2.5", u"2", u"(Non Long)"}}) {
            SetWindowTextW(box.entry(), row.text);
            EXPECT_EQ(box.text(Form::lblReturnValue), row.value);
            EXPECT_EQ(box.text(Form::lblReason), row.reason);
        }
        // The host's windows are painted meanwhile, in the host's way.
        EXPECT_EQ(FloatingPointState::present().x87, PeculiarHost::settings.x87);
        EXPECT_EQ(FloatingPointState::present().sse & ~exceptionsNoted, PeculiarHost::settings.sse);
    });
    EXPECT_EQ(answer.value.longInteger(), 2);
}

// The tool tips of a box, which nobody shows before the mouse stays.
HWND toolTipOf(const OpenBox& box) {
    struct Search {
        HWND owner;
        HWND found;
    } search{box.window(), nullptr};
    const auto step = [](HWND window, LPARAM argument) CALLBACK -> BOOL {
        auto& current = *reinterpret_cast<Search*>(argument);
        wchar_t name[32];
        GetClassNameW(window, name, 32);
        if (std::wstring_view(name) == TOOLTIPS_CLASSW && GetWindow(window, GW_OWNER) == current.owner)
            current.found = window;
        return TRUE;
    };
    EnumThreadWindows(GetCurrentThreadId(), step, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

TEST(InputBoxWindow, ExplainsTheReturnValueWhereTheMouseStays) {
    asked(number(0, 10), [](const OpenBox& box) {
        const HWND toolTip = toolTipOf(box);
        ASSERT_NE(toolTip, nullptr);
        wchar_t text[80] = {};
        TTTOOLINFOW tool{};
        tool.cbSize = TTTOOLINFOW_V1_SIZE;
        tool.hwnd = box.window();
        tool.uId = reinterpret_cast<UINT_PTR>(box.control(Form::lblReturnValue));
        tool.lpszText = text;
        SendMessageW(toolTip, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
        EXPECT_STREQ(text, L"Number that will be returned");
        EXPECT_EQ(SendMessageW(toolTip, TTM_GETTOOLCOUNT, 0, 0), 1);
    });
}

TEST(InputBoxWindow, ReturnsTheCorrectedInitialValueWithoutTyping) {
    const auto nothing = [](const OpenBox&) {};
    EXPECT_EQ(asked(number(5, 10), nothing).value.single(), 5.0F);
    EXPECT_EQ(asked(number(0, 10, InputKind::WholeNumber), nothing).value.longInteger(), 2);
    InputRequest empty = string(u"", 10);
    empty.allowZero = false;
    EXPECT_EQ(asked(empty, nothing).value.textView(), u" ");
}

TEST(InputBoxWindow, KeepsAnInitialTextThatNoEntryCouldHold) {
    const std::u16string_view text(u"a\0b\r\nc", 6);
    EXPECT_EQ(asked(string(text, 3), [](const OpenBox&) {}).value.textView(), text);
}

TEST(InputBoxWindow, LimitsWhatIsTypedToTheGreatestLength) {
    struct Row {
        float maximum;
        const char16_t* text;
    };
    for (const Row& row : {Row{3, u"abc"}, Row{0, u"abcdef"}, Row{unlimitedMaximum, u"abcdef"}}) {
        const InputAnswer answer = asked(string(u"", row.maximum), [](const OpenBox& box) { box.type(u"abcdef"); });
        EXPECT_EQ(answer.value.textView(), row.text);
    }
}

// --------------------------------------------------------------------------------------------------------------- keys

TEST(InputBoxWindow, TakesTheKeysOfANumberOnly) {
    struct Row {
        const wchar_t* before;
        int caret;
        char16_t key;
        bool comma;
        const char16_t* after;
        DWORD caretAfter;
    };
    const Row rows[] = {
        {L"12", 2, u'-', false, u"-12", 3}, {L"-12", 3, u'-', false, u"12", 2},  {L"-12", 0, u'-', false, u"12", 0},
        {L"12", 1, u'.', false, u"1.2", 2}, {L"1.2", 3, u'.', false, u"1.2", 3}, {L"12", 2, u',', false, u"12", 2},
        {L"12", 1, u'n', false, u"1n2", 2}, {L"1.2", 3, u'n', false, u"1.2", 3}, {L"12", 1, u',', true, u"1,2", 2},
        {L"1,2", 3, u',', true, u"1,2", 3}, {L"12", 2, u'.', true, u"12", 2},    {L"12", 2, u'n', true, u"12", 2},
        {L"12", 1, u'0', false, u"102", 2}, {L"12", 1, u'9', false, u"192", 2},  {L"12", 1, u'\b', false, u"2", 0},
        {L"12", 2, u'a', false, u"12", 2},  {L"12", 2, u' ', false, u"12", 2},   {L"12", 2, u'+', false, u"12", 2},
        {L"12", 2, u'e', false, u"12", 2},  {L"12", 2, u'N', false, u"12", 2},   {L"12", 2, 22, false, u"12", 2},
    };
    for (const Row& row : rows) {
        const auto& locale = row.comma ? NumberLocale::commaDecimal() : NumberLocale::pointDecimal();
        asked(
            number(0, 100),
            [&row](const OpenBox& box) {
                box.setEntry(row.before, row.caret);
                SendMessageW(box.entry(), WM_CHAR, row.key, 1);
                EXPECT_EQ(textOf(box.entry()), row.after) << +row.key;
                EXPECT_EQ(box.selection(), std::pair(row.caretAfter, row.caretAfter)) << +row.key;
            },
            locale);
    }
}

TEST(InputBoxWindow, WritesNumbersAsTheUserDoes) {
    const InputAnswer answer = asked(
        number(0.5F, 10),
        [](const OpenBox& box) {
            EXPECT_EQ(box.text(Form::txtNumValue), u"2,5");
            EXPECT_EQ(box.text(Form::lblRange), u"(Please enter a value between: 0,5 and 10)");
            box.setEntry(L"", 0);
            box.type(u"3,75");
            EXPECT_EQ(box.text(Form::lblReturnValue), u"3,75");
        },
        NumberLocale::commaDecimal());
    EXPECT_EQ(answer.value.single(), 3.75F);
}

TEST(InputBoxWindow, JudgesAPastedText) {
    EXPECT_EQ(asked(number(0, 10), [](const OpenBox& box) { SetWindowTextW(box.entry(), L"abc"); }).value.single(),
              0.0F);
}

TEST(InputBoxWindow, ClosesByItsKeysAndButtons) {
    struct Row {
        const char* how;
        std::function<void(const OpenBox&)> act;
        Ending ending;
    };
    const Row rows[] = {
        {"Enter", [](const OpenBox& box) { box.post(VK_RETURN); }, Ending::Accepted},
        {"Escape", [](const OpenBox& box) { box.post(VK_ESCAPE); }, Ending::Cancelled},
        {"Enter's code", [](const OpenBox& box) { box.type(u"\r"); }, Ending::Accepted},
        {"Escape's code", [](const OpenBox& box) { box.type(u"\x1B"); }, Ending::Cancelled},
        {"OK", [](const OpenBox& box) { box.press(Form::cmdOK); }, Ending::Accepted},
        {"Cancel", [](const OpenBox& box) { box.press(Form::cmdCancel); }, Ending::Cancelled},
        {"Alt+O", [](const OpenBox& box) { box.post(L'o', WM_SYSCHAR); }, Ending::Accepted},
        {"Alt+C", [](const OpenBox& box) { box.post(L'c', WM_SYSCHAR); }, Ending::Cancelled},
        {"the frame", [](const OpenBox& box) { PostMessageW(box.window(), WM_SYSCOMMAND, SC_CLOSE, 0); },
         Ending::Cancelled},
        {"Enter on Cancel",
         [](const OpenBox& box) {
             box.moveTo(Form::cmdCancel);
             box.post(VK_RETURN);
         },
         Ending::Cancelled},
        {"Escape on OK",
         [](const OpenBox& box) {
             box.moveTo(Form::cmdOK);
             box.post(VK_ESCAPE);
         },
         Ending::Cancelled},
    };
    for (const Row& row : rows)
        for (const bool asksNumber : {true, false}) {
            const InputAnswer answer = closed(asksNumber ? number(5, 10) : string(u"b", 10), row.act);
            EXPECT_EQ(answer.ending, row.ending) << row.how;
            const bool isInitial = asksNumber ? answer.value.single() == 2.5F : answer.value.textView() == u"b";
            EXPECT_EQ(isInitial, row.ending == Ending::Cancelled || !asksNumber) << row.how;
        }
}

TEST(InputBoxWindow, SelectsAllWhenTheEntryGetsTheFocus) {
    for (const bool asksNumber : {true, false})
        asked(asksNumber ? number(0, 10) : string(u"abc", 10), [](const OpenBox& box) {
            EXPECT_EQ(box.selection(), std::pair(DWORD{0}, DWORD{3}));
            SendMessageW(box.entry(), EM_SETSEL, 1, 1);
            SetFocus(box.control(Form::cmdOK));
            SetFocus(box.entry());
            EXPECT_EQ(box.selection(), std::pair(DWORD{0}, DWORD{3}));
        });
}

TEST(InputBoxWindow, GoesFromTheEntryOverOkToCancel) {
    asked(number(0, 10), [](const OpenBox& box) {
        const auto next = [&](HWND from) { return GetNextDlgTabItem(box.window(), from, FALSE); };
        EXPECT_EQ(next(box.entry()), box.control(Form::cmdOK));
        EXPECT_EQ(next(box.control(Form::cmdOK)), box.control(Form::cmdCancel));
        EXPECT_EQ(next(box.control(Form::cmdCancel)), box.entry());
    });
}

// What screen readers call a control, as the system tells them.
std::u16string nameOf(HWND control) {
    IAccessible* accessible = nullptr;
    // The one of the compiler's library is another's.
    constexpr GUID accessibleInterface = {0x618736e0, 0x3c3d, 0x11cf, {0x81, 0x0c, 0x00, 0xaa, 0x00, 0x38, 0x9b, 0x71}};
    if (FAILED(AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), accessibleInterface,
                                          reinterpret_cast<void**>(&accessible))))
        return u"(not accessible)";
    VARIANT self;
    V_VT(&self) = VT_I4;
    V_I4(&self) = CHILDID_SELF;
    BSTR name = nullptr;
    accessible->get_accName(self, &name);
    accessible->Release();
    const std::u16string text(reinterpret_cast<const char16_t*>(name), SysStringLen(name));
    SysFreeString(name);
    return text;
}

HWND visibleBefore(HWND control) {
    do control = GetWindow(control, GW_HWNDPREV);
    while (control != nullptr && IsWindowVisible(control) == FALSE);
    return control;
}

TEST(InputBoxWindow, NamesTheEntryByTheQuestion) {
    for (const bool asksNumber : {true, false})
        asked(asksNumber ? number(0, 10) : string(u"abc", 10), [asksNumber](const OpenBox& box) {
            // Without knowledge of its own a screen reader takes the visible label before it.
            EXPECT_EQ(visibleBefore(box.entry()), box.control(Form::lblQuestion));
            EXPECT_EQ(nameOf(box.entry()), asksNumber ? u"How much?" : u"Which batch?");
        });
}

TEST(InputBoxWindow, NamesTheEntryByTheBeginningOfAQuestionThatScrolls) {
    InputRequest request = number(0, 10);
    const std::u16string question = u"How much of this? " + std::u16string(5000, u'x');
    request.question = question;
    asked(request, [&](const OpenBox& box) {
        EXPECT_EQ(visibleBefore(box.entry()), box.control(Form::lblEntryName));
        EXPECT_EQ(nameOf(box.entry()), question.substr(0, 200));
        const RECT place = box.place(Form::lblEntryName);
        EXPECT_EQ(place.left, place.right);
    });
}

TEST(InputBoxWindow, NamesItsButtons) {
    asked(number(0, 10), [](const OpenBox& box) {
        EXPECT_EQ(nameOf(box.control(Form::cmdOK)), u"OK");
        EXPECT_EQ(nameOf(box.control(Form::cmdCancel)), u"Cancel");
    });
}

// The labels that say that their text has changed.
std::vector<HWND>& announced() {
    static std::vector<HWND> windows;
    return windows;
}

void CALLBACK noteAnnouncement(HWINEVENTHOOK, DWORD, HWND window, LONG, LONG, DWORD, DWORD) {
    announced().push_back(window);
}

TEST(InputBoxWindow, HasScreenReadersSayTheReasonWhenItChanges) {
    announced().clear();
    const HWINEVENTHOOK hook =
        SetWinEventHook(EVENT_OBJECT_LIVEREGIONCHANGED, EVENT_OBJECT_LIVEREGIONCHANGED, GetModuleHandleW(nullptr),
                        noteAnnouncement, GetCurrentProcessId(), GetCurrentThreadId(), WINEVENT_INCONTEXT);
    asked(number(0, 10), [](const OpenBox& box) {
        const auto announcedBy = [&box](const wchar_t* text) {
            const std::size_t before = announced().size();
            SetWindowTextW(box.entry(), text);
            return announced().size() - before;
        };
        EXPECT_EQ(announcedBy(L"5"), 0u);
        EXPECT_EQ(announcedBy(L"50"), 1u);
        EXPECT_EQ(announcedBy(L"500"), 0u);
        EXPECT_EQ(announcedBy(L"-5"), 1u);
        EXPECT_EQ(announcedBy(L"7"), 1u);
        EXPECT_EQ(announced(), std::vector<HWND>(3, box.control(Form::lblReason)));
    });
    UnhookWinEvent(hook);
}

// -------------------------------------------------------------------------------------------------------------- layout

// How high the question is drawn at the width that it has.
int neededHeight(const OpenBox& box) {
    const RECT place = box.place(Form::lblQuestion);
    RECT needed{0, 0, place.right - place.left, 0};
    const HDC context = GetDC(box.window());
    const HGDIOBJ before =
        SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(box.control(Form::lblQuestion), WM_GETFONT, 0, 0)));
    const std::u16string text = box.text(Form::lblQuestion);
    const std::wstring wide(text.begin(), text.end());
    DrawTextW(context, wide.c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX);
    SelectObject(context, before);
    ReleaseDC(box.window(), context);
    return needed.bottom;
}

void expectTidy(const OpenBox& box) {
    RECT client{};
    GetClientRect(box.window(), &client);
    for (const Form::Control id : allControls) {
        const RECT place = box.place(id);
        EXPECT_GT(place.left, 0) << id;
        EXPECT_GT(place.top, 0) << id;
        EXPECT_LT(place.right, client.right) << id;
        EXPECT_LT(place.bottom, client.bottom) << id;
    }
    EXPECT_LE(box.place(Form::lblQuestion).bottom, box.place(Form::txtNumValue).top);
    EXPECT_LE(box.place(Form::txtNumValue).bottom, box.place(Form::lblReturnValue).top);
    EXPECT_LE(box.place(Form::lblReturnValue).right, box.place(Form::lblReason).left);
    EXPECT_LE(box.place(Form::lblReturnValue).bottom, box.place(Form::lblRange).top);
    EXPECT_LE(box.place(Form::lblRange).bottom, box.place(Form::cmdOK).top);
    EXPECT_LE(box.place(Form::cmdOK).right, box.place(Form::cmdCancel).left);
    RECT screen{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    const RECT area = box.area();
    EXPECT_TRUE(area.left >= screen.left && area.top >= screen.top);
    EXPECT_TRUE(area.right <= screen.right && area.bottom <= screen.bottom);
}

std::u16string repeated(std::u16string_view part, int times) {
    std::u16string text;
    for (int i = 0; i < times; ++i) text += part;
    return text;
}

TEST(InputBoxWindow, GrowsWithItsQuestion) {
    int heightBefore = 0;
    for (const int words : {1, 30, 60, 120, 240}) {
        const std::u16string question = repeated(u"powder ", words);
        InputRequest request = number(0, 10);
        request.question = question;
        asked(request, [&](const OpenBox& box) {
            expectTidy(box);
            const RECT place = box.place(Form::lblQuestion);
            const int height = place.bottom - place.top;
            EXPECT_GE(height, neededHeight(box));
            EXPECT_GT(height, heightBefore);
            heightBefore = height;
        });
    }
}

TEST(InputBoxWindow, BreaksLongWordsAndLines) {
    for (const std::u16string& question : {repeated(u"W", 300), std::u16string(u"one\r\ntwo\nthree\rfour")}) {
        InputRequest request = number(0, 10);
        request.question = question;
        asked(request, [](const OpenBox& box) {
            expectTidy(box);
            const RECT place = box.place(Form::lblQuestion);
            EXPECT_GE(place.bottom - place.top, neededHeight(box));
            EXPECT_GE(place.bottom - place.top, 3 * std::abs(box.font(Form::lblQuestion).lfHeight));
        });
    }
}

/// What the calling thread has worked so far, whatever else the machine is busy with.
ULONGLONG millisecondsWorked() {
    FILETIME created;
    FILETIME ended;
    FILETIME system;
    FILETIME user;
    EXPECT_NE(GetThreadTimes(GetCurrentThread(), &created, &ended, &system, &user), FALSE);
    const auto ticks = [](const FILETIME& time) {
        return ULARGE_INTEGER{.u = {.LowPart = time.dwLowDateTime, .HighPart = time.dwHighDateTime}}.QuadPart;
    };
    return (ticks(system) + ticks(user)) / 10000;
}

TEST(InputBoxWindow, ScrollsAQuestionThatIsTooLongForTheScreen) {
    for (const int lines : {200, 20000}) {
        const std::u16string question = repeated(u"a line of a question\n", lines) + u"the end";
        InputRequest request = number(0, 10);
        request.question = question;
        const ULONGLONG before = millisecondsWorked();
        asked(request, [](const OpenBox& box) {
            expectTidy(box);
            EXPECT_NE(GetWindowLongPtrW(box.control(Form::lblQuestion), GWL_STYLE) & WS_VSCROLL, 0);
            EXPECT_TRUE(box.text(Form::lblQuestion).ends_with(u"question\r\nthe end"));
            EXPECT_EQ(GetFocus(), box.entry());
            const HWND afterCancel = GetNextDlgTabItem(box.window(), box.control(Form::cmdCancel), FALSE);
            EXPECT_EQ(afterCancel, box.control(Form::lblQuestion));
        });
        EXPECT_LT(millisecondsWorked() - before, 5000U);
    }
}

TEST(InputBoxWindow, IsAsWideAsItsRange) {
    asked(number(-1.234567e-30F, 1.234567e+30F), [](const OpenBox& box) { expectTidy(box); });
    asked(number(-16777215, 16777215), [](const OpenBox& box) { expectTidy(box); });
}

TEST(InputBoxWindow, IsReadableAtEachResolution) {
    InputRequest request = number(0, 10);
    const std::u16string question = repeated(u"powder ", 40);
    request.question = question;
    asked(request, [](const OpenBox& box) {
        const LONG normalHeight = std::abs(box.font(Form::txtNumValue).lfHeight);
        const RECT normal = box.area();
        for (const int dpi : {144, 192, 96}) {
            box.changeResolution(dpi, normal);
            expectTidy(box);
            EXPECT_NEAR(std::abs(box.font(Form::txtNumValue).lfHeight), normalHeight * dpi / 96, 1);
            EXPECT_NEAR(std::abs(box.font(Form::lblQuestion).lfHeight), normalHeight * dpi / 96, 1);
            const RECT place = box.place(Form::lblQuestion);
            EXPECT_GE(place.bottom - place.top, neededHeight(box));
            const RECT button = box.place(Form::cmdOK);
            EXPECT_GE(button.right - button.left, MulDiv(80, dpi, 96));
        }
    });
}

int textWidth(const OpenBox& box, Form::Control id, const std::wstring& text) {
    const HDC context = GetDC(box.window());
    const HGDIOBJ before =
        SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(box.control(id), WM_GETFONT, 0, 0)));
    SIZE size{};
    GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(context, before);
    ReleaseDC(box.window(), context);
    return size.cx;
}

/// What the user has chosen for messages, at another size while the object lives.
class LargeMessages {
public:
    explicit LargeMessages(LONG height) {
        before_.cbSize = sizeof before_;
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof before_, &before_, 0);
        NONCLIENTMETRICSW large = before_;
        large.lfMessageFont.lfHeight = -height;
        EXPECT_NE(SystemParametersInfoW(SPI_SETNONCLIENTMETRICS, sizeof large, &large, 0), FALSE);
    }
    LargeMessages(const LargeMessages&) = delete;
    LargeMessages& operator=(const LargeMessages&) = delete;
    ~LargeMessages() { SystemParametersInfoW(SPI_SETNONCLIENTMETRICS, sizeof before_, &before_, 0); }

private:
    NONCLIENTMETRICSW before_{};
};

TEST(InputBoxWindow, HasRoomForTheUsersLetters) {
    for (const LONG height : {12, 24, 36}) {
        const LargeMessages large(height);
        InputRequest request = number(-10, 10);
        request.allowZero = false;
        asked(request, [height](const OpenBox& box) {
            EXPECT_EQ(box.font(Form::cmdOK).lfHeight, -height);
            SetWindowTextW(box.entry(), L"0");
            EXPECT_EQ(box.text(Form::lblReason), u"(Value is Zero)");
            const auto widthOf = [&box](Form::Control id) { return box.place(id).right - box.place(id).left; };
            EXPECT_GE(widthOf(Form::lblReason), textWidth(box, Form::lblReason, L"(Value is Zero)")) << height;
            EXPECT_GE(widthOf(Form::lblReturnValue), textWidth(box, Form::lblReturnValue, L"-1.234567E-30")) << height;
            EXPECT_GT(widthOf(Form::cmdCancel), textWidth(box, Form::cmdCancel, L"Cancel")) << height;
            EXPECT_GT(box.place(Form::cmdCancel).bottom - box.place(Form::cmdCancel).top, height);
            expectTidy(box);
        });
    }
}

TEST(InputBoxWindow, HasLabelsInArialAndTheRestInTheFontOfMessages) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    asked(number(0, 10), [&](const OpenBox& box) {
        for (const Form::Control id : labels) EXPECT_STREQ(box.font(id).lfFaceName, L"Arial");
        for (const Form::Control id : {Form::txtNumValue, Form::txtStrValue, Form::cmdOK, Form::cmdCancel})
            EXPECT_STREQ(box.font(id).lfFaceName, metrics.lfMessageFont.lfFaceName);
    });
}

// ----------------------------------------------------------------------------------------------------------- placement

/// A form of a host, by its four properties.
class HostForm final : public IDispatch {
public:
    HostForm(double left, double top, double width, double height) : values_{left, top, width, height} {}
    void failAt(int position) { failing_ = position; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        constexpr const wchar_t* properties[] = {L"Left", L"Top", L"Width", L"Height"};
        for (int i = 0; i < 4; ++i)
            if (std::wstring_view(names[0]) == properties[i]) {
                ids[0] = 10 + i;
                return S_OK;
            }
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        // Some languages offer what is read as properties, some as methods.
        const WORD offered = id == 12 ? DISPATCH_METHOD : DISPATCH_PROPERTYGET;
        if (id - 10 == failing_ || (flags & offered) == 0 || parameters->cArgs != 0) return DISP_E_EXCEPTION;
        // As varied as hosts are.
        V_VT(result) = VT_R8;
        V_R8(result) = values_[id - 10];
        if (id == 10) return VariantChangeType(result, result, 0, VT_R4);
        if (id == 11) return VariantChangeType(result, result, 0, VT_BSTR);
        return S_OK;
    }

private:
    double values_[4];
    int failing_ = -1;
};

POINT middle(const RECT& area) { return {(area.left + area.right) / 2, (area.top + area.bottom) / 2}; }

void expectMiddle(const RECT& area, long x, long y) {
    EXPECT_NEAR(middle(area).x, x, 1);
    EXPECT_NEAR(middle(area).y, y, 1);
}

TEST(InputBoxWindow, StandsCentredOverTheOwnerForm) {
    // 15 twips are a pixel of 96 to the inch.
    HostForm form(100 * 15, 200 * 15, 600 * 15, 400 * 15);
    asked(
        number(0, 10), [](const OpenBox& box) { expectMiddle(box.area(), 400, 400); }, NumberLocale::pointDecimal(),
        &form);
}

TEST(InputBoxWindow, IsKeptOnTheScreen) {
    for (const double at : {-1e9, -5000.0, 5000.0, 1e9}) {
        HostForm form(at * 15, at * 15, 6000, 4000);
        asked(
            number(0, 10), [](const OpenBox& box) { expectTidy(box); }, NumberLocale::pointDecimal(), &form);
    }
}

TEST(InputBoxWindow, StandsOverTheHostsWindowWithoutAUsableForm) {
    const HostWindow host(L"Host", 100, 80, 700, 500);
    SetActiveWindow(host);
    const auto overHost = [](const OpenBox& box) { expectMiddle(box.area(), 450, 330); };
    asked(number(0, 10), overHost);
    for (int position = 0; position < 4; ++position) {
        HostForm form(0, 0, 9000, 9000);
        form.failAt(position);
        asked(number(0, 10), overHost, NumberLocale::pointDecimal(), &form);
    }
    HostForm nowhere(0, 0, std::numeric_limits<double>::quiet_NaN(), 9000);
    asked(number(0, 10), overHost, NumberLocale::pointDecimal(), &nowhere);
}

TEST(InputBoxWindow, StandsOverTheHostsWindowWhenTheFormIsMinimised) {
    const HostWindow host(L"Host", 100, 80, 700, 500);
    SetActiveWindow(host);
    HostForm form(-32000 * 15, -32000 * 15, 160 * 15, 28 * 15);
    asked(
        number(0, 10), [](const OpenBox& box) { expectMiddle(box.area(), 450, 330); }, NumberLocale::pointDecimal(),
        &form);
}

TEST(InputBoxWindow, StaysWhereItIsWhenTheResolutionChanges) {
    asked(number(0, 10), [](const OpenBox& box) {
        for (const int dpi : {144, 192, 120, 96}) {
            const RECT proposed{200, 150, 200 + 3 * dpi, 150 + 2 * dpi};
            box.changeResolution(dpi, proposed);
            expectMiddle(box.area(), middle(proposed).x, middle(proposed).y);
            EXPECT_EQ(GetFocus(), box.entry());
        }
    });
}

TEST(InputBoxWindow, IsKeptOnTheScreenWhenTheResolutionChanges) {
    RECT screen{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    for (const int words : {1, 200})
        for (const int dpi : {96, 144, 192}) {
            InputRequest request = number(0, 10);
            const std::u16string question = repeated(u"powder ", words);
            request.question = question;
            asked(request, [&](const OpenBox& box) {
                for (const LONG x : {screen.left - 500, screen.right - 100})
                    for (const LONG y : {screen.top - 500, screen.bottom - 100}) {
                        box.changeResolution(dpi, {x, y, x + 300, y + 200});
                        expectTidy(box);
                    }
            });
        }
}

// Whether the question of a box has a scroll bar.
bool scrolls(const OpenBox& box) {
    return (GetWindowLongPtrW(box.control(Form::lblQuestion), GWL_STYLE) & WS_VSCROLL) != 0;
}

TEST(InputBoxWindow, ScrollsAQuestionWhileTheResolutionLeavesNoRoomForIt) {
    const std::u16string question = repeated(u"a line of a question\r\n", 16) + u"the end";
    InputRequest request = number(0, 10);
    request.question = question;
    asked(request, [&](const OpenBox& box) {
        const RECT before = box.area();
        EXPECT_FALSE(scrolls(box));
        for (const int dpi : {192, 96, 192}) {
            box.changeResolution(dpi, before);
            EXPECT_EQ(scrolls(box), dpi == 192);
            EXPECT_EQ(box.text(Form::lblQuestion), question);
            expectTidy(box);
            EXPECT_EQ(visibleBefore(box.entry()), box.control(scrolls(box) ? Form::lblEntryName : Form::lblQuestion));
        }
        SetFocus(box.control(Form::lblQuestion));
        box.changeResolution(96, before);
        EXPECT_EQ(GetFocus(), box.entry());
    });
}

TEST(InputBoxWindow, StandsInTheMiddleOfTheScreenWithoutAHost) {
    RECT screen{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    asked(number(0, 10), [&](const OpenBox& box) { expectMiddle(box.area(), middle(screen).x, middle(screen).y); });
}

// ------------------------------------------------------------------------------------------------------ among the host

TEST(InputBoxWindow, KeepsTheHostsWindowsFromInputWhileItIsOpen) {
    const HostWindow main(L"Main");
    const HostWindow other(L"Other", 300, 200);
    SetActiveWindow(main);
    asked(number(0, 10), [&](const OpenBox& box) {
        EXPECT_EQ(GetWindow(box.window(), GW_OWNER), static_cast<HWND>(main));
        EXPECT_FALSE(main.takesInput() || other.takesInput());
    });
    EXPECT_TRUE(main.takesInput() && other.takesInput());
    EXPECT_EQ(GetActiveWindow(), static_cast<HWND>(main));
}

TEST(InputBoxWindow, IsTheOnlyOneOfItsThread) {
    const InputAnswer first = asked(number(0, 10), [](const OpenBox& box) {
        const UntouchedQueue atOnce;
        const InputAnswer second = frmCDInputBox(NumberLocale::pointDecimal()).GetInput(string(u"second", 10));
        EXPECT_EQ(second.ending, Ending::Unavailable);
        EXPECT_EQ(second.value.textView(), u"second");
        EXPECT_EQ(openDialogs().size(), 1U);
        box.setEntry(L"7", 1);
    });
    EXPECT_EQ(first.ending, Ending::Accepted);
    EXPECT_EQ(first.value.single(), 7.0F);
    EXPECT_EQ(asked(number(0, 10), [](const OpenBox&) {}).ending, Ending::Accepted);
}

void CALLBACK pressOk(HWND, UINT, UINT_PTR, DWORD) {
    for (const HWND dialog : openDialogs()) OpenBox(dialog).press(Form::cmdOK);
}

TEST(InputBoxWindow, MayHaveAMessageBoxOverIt) {
    asked(number(0, 10), [](const OpenBox&) {
        const WhileOpen whileOpen([](HWND message) { PostMessageW(message, WM_COMMAND, IDYES, 0); });
        EXPECT_EQ(showMessageBox(u"Sure?", u"Corvane", MB_YESNO), IDYES);
    });
}

TEST(InputBoxWindow, OpensOnEachThread) {
    asked(number(0, 10), [](const OpenBox& box) {
        InputAnswer other;
        std::thread thread([&other] {
            const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, pressOk);
            other = frmCDInputBox(NumberLocale::pointDecimal()).GetInput(number(4, 10));
            KillTimer(nullptr, timer);
        });
        thread.join();
        EXPECT_EQ(other.ending, Ending::Accepted);
        EXPECT_EQ(other.value.single(), 4.0F);
        EXPECT_NE(IsWindow(box.window()), FALSE);
    });
}

TEST(InputBoxWindow, ClosesWhenTheProgramIsToQuit) {
    const InputAnswer answer = closed(number(5, 10), [](const OpenBox&) { PostQuitMessage(9); });
    EXPECT_EQ(answer.ending, Ending::Unavailable);
    EXPECT_EQ(answer.value.single(), 2.5F);
    EXPECT_EQ(waitingQuit(), 9);
    EXPECT_TRUE(openDialogs().empty());
}

TEST(InputBoxWindow, ClosesWithItsOwner) {
    std::optional<HostWindow> host(std::in_place);
    SetActiveWindow(*host);
    const InputAnswer answer = closed(number(5, 10), [&](const OpenBox&) { host.reset(); });
    EXPECT_EQ(answer.ending, Ending::Unavailable);
    EXPECT_EQ(asked(number(0, 10), [](const OpenBox&) {}).ending, Ending::Accepted);
}

TEST(InputBoxWindow, IsAnsweredAtOnceWhereNobodySeesTheDesktop) {
    const UnseenDesktop unseen;
    WhileOpen whileOpen([](HWND) {});
    whileOpen.mayStayClosed();
    const UntouchedQueue atOnce;
    const InputAnswer answer = frmCDInputBox(NumberLocale::pointDecimal()).GetInput(number(5, 10));
    EXPECT_EQ(answer.ending, Ending::Unavailable);
    EXPECT_EQ(answer.value.single(), 2.5F);
    EXPECT_FALSE(whileOpen.hasActed());
}

TEST(InputBoxWindow, LeavesNothingBehind) {
    std::vector<HGDIOBJ> fonts;
    std::vector<HWND> windows;
    asked(number(0, 10), [&](const OpenBox& box) {
        windows = {box.window(), toolTipOf(box)};
        for (const Form::Control id : allControls) {
            windows.push_back(box.control(id));
            fonts.push_back(reinterpret_cast<HGDIOBJ>(SendMessageW(box.control(id), WM_GETFONT, 0, 0)));
        }
        for (const HGDIOBJ font : fonts) EXPECT_EQ(GetObjectType(font), DWORD{OBJ_FONT});
        for (const HWND window : windows) EXPECT_NE(IsWindow(window), FALSE);
    });
    for (const HGDIOBJ font : fonts) EXPECT_EQ(GetObjectType(font), 0U);
    for (const HWND window : windows) EXPECT_EQ(IsWindow(window), FALSE);
    EXPECT_TRUE(openDialogs().empty());
}

}  // namespace
}  // namespace corvane
