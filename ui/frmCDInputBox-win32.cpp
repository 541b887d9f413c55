#include <windows.h>

#include "ui/frmCDInputBox.h"
// After windows.h, which it needs.
#include <commctrl.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/automation_error.h"
#include "platform/desktop-win32.h"
#include "platform/floating_point.h"
#include "ui/input_rules.h"
#include "ui/late_bound-win32.h"
#include "ui/live_region-win32.h"
#include "ui/placement.h"

namespace corvane {
namespace {

// ------------------------------------------------------------------------------------------------- the owner, by name

// Beyond every screen, and harmless to calculate with.
constexpr double farAway = 1e6;

// Where the system puts what is minimised is less than this, in pixels; no screen is there.
constexpr int minimised = -20000;

// None for a form that does not tell all four, and for one that is minimised.
std::optional<ScreenArea> areaOfForm(IDispatch* form) {
    const LateBoundObject owner(form);
    const auto pixels = [&owner](const wchar_t* property) {
        const double twips = owner.get(property).toDouble();
        const ComponentArithmetic arithmetic;
        if (std::isnan(twips)) throw automation_error(ErrorNumber::Overflow);
        return static_cast<int>(std::clamp(twips * systemDpi() / twipsPerInch, -farAway, farAway));
    };
    try {
        const ScreenArea area{pixels(L"Left"), pixels(L"Top"), pixels(L"Width"), pixels(L"Height")};
        return area.left < minimised && area.top < minimised ? std::nullopt : std::optional(area);
    } catch (const automation_error&) {
        return std::nullopt;
    }
}

ScreenArea areaOf(const RECT& rectangle) {
    return {rectangle.left, rectangle.top, rectangle.right - rectangle.left, rectangle.bottom - rectangle.top};
}

// Of the screen that shows most of `area`, what no task bar covers.
ScreenArea workArea(const ScreenArea& area) {
    const RECT rectangle{area.left, area.top, area.left + area.width, area.top + area.height};
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoW(MonitorFromRect(&rectangle, MONITOR_DEFAULTTONEAREST), &info);
    return areaOf(info.rcWork);
}

// ------------------------------------------------------------------------------------------------- resolution and font

// Windows has had these from version 10 on; before, all screens of a program had one resolution.
template <typename Function>
Function systemFunction(const char* name) {
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"user32.dll"), name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

int dpiOf(HWND window) {
    const auto getDpi = systemFunction<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const int dpi = getDpi != nullptr ? static_cast<int>(getDpi(window)) : 0;
    return dpi > 0 ? dpi : systemDpi();
}

// This window lays itself out anew; the system would stretch its controls as well.
void keepFromStretching(HWND window) {
    constexpr int dialogDpiChangeDisableAll = 1;
    const auto setBehaviour = systemFunction<BOOL(WINAPI*)(HWND, int, int)>("SetDialogDpiChangeBehavior");
    if (setBehaviour != nullptr) setBehaviour(window, dialogDpiChangeDisableAll, dialogDpiChangeDisableAll);
}

// What the user has chosen for the text of messages.
LOGFONTW messageFont(int dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    const auto forDpi = systemFunction<BOOL(WINAPI*)(UINT, UINT, void*, UINT, UINT)>("SystemParametersInfoForDpi");
    if (forDpi != nullptr &&
        forDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, static_cast<UINT>(dpi)) != FALSE)
        return metrics.lfMessageFont;
    LOGFONTW font{};
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0) != FALSE) {
        font = metrics.lfMessageFont;
    } else {
        // Windows before version 6 knows the structure without its last member only.
        metrics.cbSize = offsetof(NONCLIENTMETRICSW, iPaddedBorderWidth);
        if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0) != FALSE)
            font = metrics.lfMessageFont;
        else
            GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    }
    font.lfHeight = MulDiv(font.lfHeight, dpi, systemDpi());
    return font;
}

struct FontDeleter {
    using pointer = HFONT;
    void operator()(HFONT font) const { DeleteObject(font); }
};
using Font = std::unique_ptr<HFONT, FontDeleter>;

/// The labels are in Arial, as large as the user's messages; the rest is in the font of messages.
struct Fonts {
    Font message;
    Font label;
    Font boldLabel;

    explicit Fonts(int dpi) {
        LOGFONTW font = messageFont(dpi);
        message.reset(CreateFontIndirectW(&font));
        const LONG height = font.lfHeight;
        font = LOGFONTW{};
        font.lfHeight = height;
        font.lfCharSet = DEFAULT_CHARSET;
        font.lfQuality = CLEARTYPE_QUALITY;
        lstrcpyW(font.lfFaceName, L"Arial");
        font.lfWeight = FW_NORMAL;
        label.reset(CreateFontIndirectW(&font));
        font.lfWeight = FW_BOLD;
        boldLabel.reset(CreateFontIndirectW(&font));
    }
};

/// Measures text as a window's labels draw it.
class TextMeasure {
public:
    TextMeasure(HWND window, const Font& font) : window_(window), context_(GetDC(window)) {
        before_ = SelectObject(context_, font.get());
    }
    TextMeasure(const TextMeasure&) = delete;
    TextMeasure& operator=(const TextMeasure&) = delete;
    ~TextMeasure() {
        SelectObject(context_, before_);
        ReleaseDC(window_, context_);
    }

    int lineHeight() const {
        TEXTMETRICW metrics{};
        GetTextMetricsW(context_, &metrics);
        return metrics.tmHeight;
    }
    int width(std::wstring_view text) const {
        SIZE size{};
        GetTextExtentPoint32W(context_, text.data(), static_cast<int>(text.size()), &size);
        return size.cx;
    }
    /// Of `text` broken into lines of at most `width`.
    int height(const std::wstring& text, int width) const {
        RECT area{0, 0, width, 0};
        DrawTextW(context_, text.c_str(), static_cast<int>(text.size()), &area,
                  DT_CALCRECT | DT_WORDBREAK | DT_EDITCONTROL | DT_EXPANDTABS | DT_NOPREFIX);
        return area.bottom;
    }

private:
    HWND window_;
    HDC context_;
    HGDIOBJ before_;
};

// ---------------------------------------------------------------------------------------------------------- the window

// Marks the window of an open box. A box that is open is found by it, so that no thread has to remember one.
constexpr const wchar_t* openMark = L"CorvaneInputBox";

bool isOpenOnThisThread() {
    bool isOpen = false;
    const auto step = [](HWND window, LPARAM argument) CALLBACK -> BOOL {
        if (GetPropW(window, openMark) == nullptr) return TRUE;
        *reinterpret_cast<bool*>(argument) = true;
        return FALSE;
    };
    EnumThreadWindows(GetCurrentThreadId(), step, reinterpret_cast<LPARAM>(&isOpen));
    return isOpen;
}

bool isHighContrast() {
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != FALSE &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

// Edit controls end their lines with both characters only.
std::wstring withPairedLineEnds(const std::wstring& text) {
    std::wstring paired;
    paired.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'\r' && text[i] != L'\n') {
            paired.push_back(text[i]);
            continue;
        }
        if (text[i] == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n') ++i;
        paired += L"\r\n";
    }
    return paired;
}

std::u16string textOf(HWND control) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    const int length = GetWindowTextW(control, text.data(), static_cast<int>(text.size()));
    return {text.begin(), text.begin() + length};
}

void setText(HWND control, std::u16string_view text) {
    const std::wstring shown = windowText(text);
    SetWindowTextW(control, shown.c_str());
}

// The rules calculate, and the host may have set how: in its own way only its windows and the system work.
template <typename Step>
auto inOwnArithmetic(Step step) {
    const ComponentArithmetic arithmetic;
    return step();
}

class InputWindow {
public:
    InputWindow(InputRules& rules, std::u16string_view decimalSeparator, IDispatch* ownerForm)
        : rules_(rules), decimalSeparator_(decimalSeparator), ownerForm_(ownerForm) {}

    /// True when the operator has closed the window; false when there was none, or something else closed it.
    bool show();

private:
    using Form = frmCDInputBox;
    bool asksNumber() const { return rules_.kind() != InputKind::String; }
    HWND control(Form::Control id) const { return GetDlgItem(window_, id); }
    HWND entry() const { return control(asksNumber() ? Form::txtNumValue : Form::txtStrValue); }
    int scaled(int pixels) const { return MulDiv(pixels, dpi_, USER_DEFAULT_SCREEN_DPI); }

    static INT_PTR CALLBACK dialogProcedure(HWND window, UINT message, WPARAM first, LPARAM second);
    static LRESULT CALLBACK entryProcedure(HWND entry, UINT message, WPARAM first, LPARAM second);
    template <typename Step>
    void guarded(Step step);

    void open(HWND window);
    INT_PTR handle(UINT message, WPARAM first, LPARAM second);
    void handleCommand(WORD id, WORD notification);
    void handleKey(char16_t key);
    void createControls();
    HWND createControl(const wchar_t* kind, Form::Control id, const std::wstring& text, DWORD style,
                       DWORD extendedStyle = 0);
    void createEntry(Form::Control id, const std::wstring& text);
    Form::Control unusedEntry() const { return asksNumber() ? Form::txtStrValue : Form::txtNumValue; }
    bool mustQuestionScroll() const;
    void createQuestion();
    void fillScrolledQuestion() const;
    void addToolTip();
    void setFonts();
    int contentWidth() const;
    int captionWidth() const;
    int reasonWidth() const;
    int buttonWidth() const;
    int questionHeight(int width) const;
    void layOut();
    void place(Form::Control id, int left, int top, int width, int height) const;
    void setClientSize(int width, int height) const;
    SIZE frame() const;
    int highestQuestion() const { return screen_.height / 2; }
    void standOver(const ScreenArea& place);
    std::optional<ScreenArea> ownerArea() const;
    void CenterForm() const;
    void changeResolution(int dpi, const ScreenArea& proposed);
    void showState();
    std::optional<LabelLook> lookOf(HWND label) const;
    void close(bool isAccepted);

    InputRules& rules_;
    std::u16string_view decimalSeparator_;
    IDispatch* ownerForm_;
    HWND owner_ = nullptr;
    HWND window_ = nullptr;
    WNDPROC entryBefore_ = nullptr;
    int dpi_ = USER_DEFAULT_SCREEN_DPI;
    std::optional<Fonts> fonts_;
    ScreenArea place_;   // what the window stands over
    ScreenArea screen_;  // of the screen that `place_` is on, what no task bar covers
    std::wstring questionText_;
    bool questionScrolls_ = false;
    std::optional<LiveRegion> reasonSaid_;
    Correction correctionSaid_ = Correction::None;
    bool isClosed_ = false;
    std::exception_ptr failure_;
};

bool InputWindow::show() {
    struct {
        alignas(DWORD) DLGTEMPLATE dialog;
        WORD menu, windowClass, title;
    } shape{};
    owner_ = hostWindow();
    shape.dialog.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
    const ModalScope modal(owner_);
    DialogBoxIndirectParamW(ownModule(), &shape.dialog, owner_, dialogProcedure, reinterpret_cast<LPARAM>(this));
    if (failure_) std::rethrow_exception(failure_);
    return isClosed_;
}

INT_PTR CALLBACK InputWindow::dialogProcedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_INITDIALOG) {
        auto* const self = reinterpret_cast<InputWindow*>(second);
        SetWindowLongPtrW(window, DWLP_USER, second);
        self->guarded([&] { self->open(window); });
        return FALSE;
    }
    auto* const self = reinterpret_cast<InputWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr) return FALSE;
    INT_PTR result = FALSE;
    self->guarded([&] { result = self->handle(message, first, second); });
    return result;
}

// No exception may pass through the system's own code on its way to the caller.
template <typename Step>
void InputWindow::guarded(Step step) {
    try {
        step();
    } catch (...) {
        failure_ = std::current_exception();
        EndDialog(window_, 0);
    }
}

void InputWindow::open(HWND window) {
    window_ = window;
    SetPropW(window_, openMark, window_);
    keepFromStretching(window_);
    dpi_ = dpiOf(window_);
    fonts_.emplace(dpi_);
    RECT rectangle{};
    GetWindowRect(window_, &rectangle);
    standOver(ownerArea().value_or(workArea(areaOf(rectangle))));
    questionText_ = windowText(rules_.question());
    setText(window_, rules_.title());
    createControls();
    showState();
    layOut();
    fillScrolledQuestion();
    CenterForm();
    if (owner_ == nullptr) SetForegroundWindow(window_);
    SetFocus(entry());
}

INT_PTR InputWindow::handle(UINT message, WPARAM first, LPARAM second) {
    switch (message) {
        case WM_COMMAND: handleCommand(LOWORD(first), HIWORD(first)); return TRUE;
        case WM_CTLCOLORSTATIC: {
            const auto context = reinterpret_cast<HDC>(first);
            const std::optional<LabelLook> look = lookOf(reinterpret_cast<HWND>(second));
            SetTextColor(context, look && !isHighContrast() ? look->colour : GetSysColor(COLOR_BTNTEXT));
            SetBkColor(context, GetSysColor(COLOR_BTNFACE));
            return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
        }
        case WM_DPICHANGED:
            changeResolution(HIWORD(first), areaOf(*reinterpret_cast<const RECT*>(second)));
            return TRUE;
        case WM_DESTROY:
            reasonSaid_.reset();
            RemovePropW(window_, openMark);
            return TRUE;
        default: return FALSE;
    }
}

void InputWindow::handleCommand(WORD id, WORD notification) {
    if (id == Form::cmdOK && notification == BN_CLICKED) close(true);
    if (id == Form::cmdCancel && notification == BN_CLICKED) close(false);
    if (id != GetDlgCtrlID(entry())) return;
    if (notification == EN_SETFOCUS) SendMessageW(entry(), EM_SETSEL, 0, -1);
    if (notification == EN_CHANGE) {
        const std::u16string text = textOf(entry());
        inOwnArithmetic([&] { rules_.change(text); });
        showState();
    }
}

void InputWindow::close(bool isAccepted) {
    if (isAccepted)
        rules_.pressOk();
    else
        rules_.pressCancel();
    isClosed_ = true;
    EndDialog(window_, 0);
}

// --------------------------------------------------------------------------------------------------------------- keys

// The keys Enter and Escape do not come here: in every dialog they press the default button and Cancel. Their codes do,
// since Ctrl+M and Ctrl+[ are typed as these.
LRESULT CALLBACK InputWindow::entryProcedure(HWND entry, UINT message, WPARAM first, LPARAM second) {
    auto* const self = reinterpret_cast<InputWindow*>(GetWindowLongPtrW(GetParent(entry), DWLP_USER));
    if (message != WM_CHAR) return CallWindowProcW(self->entryBefore_, entry, message, first, second);
    self->guarded([&] { self->handleKey(static_cast<char16_t>(first)); });
    return 0;
}

void InputWindow::handleKey(char16_t key) {
    const HWND target = entry();
    DWORD caret = 0;
    SendMessageW(target, EM_GETSEL, reinterpret_cast<WPARAM>(&caret), 0);
    const KeyEffect effect = asksNumber() ? numberKey(key, textOf(target), caret, decimalSeparator_) : stringKey(key);
    switch (effect.action) {
        case KeyEffect::Action::Insert: CallWindowProcW(entryBefore_, target, WM_CHAR, key, 1); return;
        case KeyEffect::Action::Reject: return;
        case KeyEffect::Action::Ok: close(true); return;
        case KeyEffect::Action::Cancel: close(false); return;
        case KeyEffect::Action::Replace:
            setText(target, effect.text);
            SendMessageW(target, EM_SETSEL, effect.caret, static_cast<LPARAM>(effect.caret));
            return;
    }
}

// ------------------------------------------------------------------------------------------------------------ controls

HWND InputWindow::createControl(const wchar_t* kind, Form::Control id, const std::wstring& text, DWORD style,
                                DWORD extendedStyle) {
    return CreateWindowExW(extendedStyle, kind, text.c_str(), WS_CHILD | style, 0, 0, 0, 0, window_,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ownModule(), nullptr);
}

// Order is the order of the Tab key, and an entry takes the name that it is announced by from the label before it.
void InputWindow::createControls() {
    constexpr DWORD label = WS_VISIBLE | SS_LEFT | SS_NOPREFIX;
    constexpr DWORD line = WS_VISIBLE | SS_LEFTNOWORDWRAP | SS_NOPREFIX;
    createEntry(unusedEntry(), {});
    createQuestion();
    createEntry(asksNumber() ? Form::txtNumValue : Form::txtStrValue, windowText(rules_.initialText()));
    createControl(WC_STATICW, Form::lblValueCaption, L"Value:", label);
    createControl(WC_STATICW, Form::lblReturnValue, {}, line | SS_ENDELLIPSIS | SS_NOTIFY);
    reasonSaid_.emplace(createControl(WC_STATICW, Form::lblReason, {}, line));
    createControl(WC_STATICW, Form::lblRange, windowText(rules_.rangeText()), SS_LEFTNOWORDWRAP | SS_NOPREFIX);
    createControl(WC_BUTTONW, Form::cmdOK, L"&OK", WS_VISIBLE | WS_TABSTOP | BS_DEFPUSHBUTTON);
    createControl(WC_BUTTONW, Form::cmdCancel, L"&Cancel", WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON);
    addToolTip();

    const HWND used = entry();
    ShowWindow(used, SW_SHOW);
    constexpr WPARAM noLimit = 0x7FFFFFFE;
    const auto limit = static_cast<WPARAM>(rules_.maximumLength());
    SendMessageW(used, EM_SETLIMITTEXT, limit == 0 ? noLimit : limit, 0);
    entryBefore_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(used, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&InputWindow::entryProcedure)));
    setFonts();
}

void InputWindow::createEntry(Form::Control id, const std::wstring& text) {
    createControl(WC_EDITW, id, text, WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE);
}

bool InputWindow::mustQuestionScroll() const {
    constexpr std::size_t alwaysScrolled = 4096;
    return questionText_.size() > alwaysScrolled || questionHeight(contentWidth()) > highestQuestion();
}

// A question that no screen is high enough for gets a scroll bar. It is no label any more then, so that the entry would
// have no name: a label that nobody sees gives it one.
void InputWindow::createQuestion() {
    constexpr std::size_t longestName = 200;
    questionScrolls_ = mustQuestionScroll();
    DestroyWindow(control(Form::lblQuestion));
    DestroyWindow(control(Form::lblEntryName));
    const auto putBehind = [this](HWND created, Form::Control id) {
        SetWindowPos(created, control(id), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    };
    if (!questionScrolls_) {
        putBehind(createControl(WC_STATICW, Form::lblQuestion, questionText_,
                                WS_VISIBLE | SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL),
                  unusedEntry());
        return;
    }
    putBehind(createControl(WC_EDITW, Form::lblQuestion, {},
                            WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY, WS_EX_CLIENTEDGE),
              unusedEntry());
    putBehind(createControl(WC_STATICW, Form::lblEntryName, questionText_.substr(0, longestName),
                            WS_VISIBLE | SS_LEFT | SS_NOPREFIX),
              Form::lblQuestion);
}

// After the layout: a narrower control would break the text into many more lines.
void InputWindow::fillScrolledQuestion() const {
    const HWND question = control(Form::lblQuestion);
    if (questionScrolls_ && GetWindowTextLengthW(question) == 0)
        SetWindowTextW(question, withPairedLineEnds(questionText_).c_str());
}

void InputWindow::addToolTip() {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
    const HWND toolTip =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, window_, nullptr, ownModule(), nullptr);
    std::wstring text = L"Number that will be returned";
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = window_;
    tool.uId = reinterpret_cast<UINT_PTR>(control(Form::lblReturnValue));
    tool.lpszText = text.data();
    SendMessageW(toolTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void InputWindow::setFonts() {
    const auto set = [this](Form::Control id, const Font& font) {
        SendMessageW(control(id), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
    };
    for (const Form::Control id : {Form::txtNumValue, Form::txtStrValue, Form::cmdOK, Form::cmdCancel})
        set(id, fonts_->message);
    for (const Form::Control id : {Form::lblQuestion, Form::lblValueCaption, Form::lblRange}) set(id, fonts_->label);
    set(Form::lblReturnValue, rules_.returnValueLook().bold ? fonts_->boldLabel : fonts_->label);
    set(Form::lblReason, rules_.reasonLook().bold ? fonts_->boldLabel : fonts_->label);
}

std::optional<LabelLook> InputWindow::lookOf(HWND label) const {
    switch (GetDlgCtrlID(label)) {
        case Form::lblReturnValue: return rules_.returnValueLook();
        case Form::lblReason: return rules_.reasonLook();
        default: return std::nullopt;
    }
}

void InputWindow::showState() {
    setText(control(Form::lblReturnValue), inOwnArithmetic([&] { return rules_.returnValueText(); }));
    setText(control(Form::lblReason), rules_.reason());
    const Font& reasonFont = rules_.reasonLook().bold ? fonts_->boldLabel : fonts_->label;
    SendMessageW(control(Form::lblReason), WM_SETFONT, reinterpret_cast<WPARAM>(reasonFont.get()), TRUE);
    ShowWindow(control(Form::lblRange), rules_.isRangeVisible() ? SW_SHOWNA : SW_HIDE);
    if (std::exchange(correctionSaid_, rules_.correction()) != rules_.correction()) reasonSaid_->announce();
}

// -------------------------------------------------------------------------------------------------------------- layout

// Lengths are in pixels of 96 to the inch.
constexpr int margin = 12;
constexpr int narrow = 300;
constexpr int wide = 420;
constexpr int widest = 560;
constexpr int narrowestButton = 80;
constexpr int lowestButton = 24;
constexpr int smallGap = 6;
constexpr int largeGap = 14;

int InputWindow::questionHeight(int width) const {
    return TextMeasure(window_, fonts_->label).height(questionText_, width);
}

int InputWindow::captionWidth() const {
    return TextMeasure(window_, fonts_->label).width(L"Value:") + scaled(smallGap);
}

int InputWindow::reasonWidth() const {
    if (!asksNumber()) return 0;
    const TextMeasure measure(window_, fonts_->boldLabel);
    int width = 0;
    for (const Correction each : {Correction::NonLong, Correction::TooLarge, Correction::TooSmall, Correction::Zero})
        width = std::max(width, measure.width(windowText(reasonText(each))));
    return width;
}

int InputWindow::buttonWidth() const {
    const TextMeasure measure(window_, fonts_->message);
    const int text = std::max(measure.width(L"OK"), measure.width(L"Cancel"));
    return std::max(scaled(narrowestButton), text + 2 * scaled(largeGap));
}

// Wide enough for every line below the question, and wider the more there is to read.
int InputWindow::contentWidth() const {
    constexpr std::size_t shortQuestion = 120;
    constexpr std::size_t longQuestion = 400;
    const std::size_t length = questionText_.size();
    const int wanted = scaled(length <= shortQuestion ? narrow : length <= longQuestion ? wide : widest);
    const int width = std::min(wanted, screen_.width - static_cast<int>(frame().cx) - 2 * scaled(margin));
    const int range = TextMeasure(window_, fonts_->label).width(windowText(rules_.rangeText()));
    // The longest text of a number; a string's is cut off.
    const int value = TextMeasure(window_, fonts_->boldLabel).width(L"-1.234567E-30 ");
    const int buttons = 2 * buttonWidth() + scaled(smallGap);
    return std::max({width, range, captionWidth() + value + reasonWidth(), buttons});
}

void InputWindow::place(Form::Control id, int left, int top, int width, int height) const {
    SetWindowPos(control(id), nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void InputWindow::layOut() {
    const int width = contentWidth();
    const int left = scaled(margin);
    const int lineHeight = TextMeasure(window_, fonts_->boldLabel).lineHeight();
    const int messageHeight = TextMeasure(window_, fonts_->message).lineHeight();
    constexpr int scrolledLines = 16;

    int top = left;
    const int questionLines =
        questionScrolls_ ? std::min(scrolledLines * lineHeight, highestQuestion()) : questionHeight(width);
    place(Form::lblQuestion, left, top, width, questionLines);
    top += questionLines + scaled(smallGap);

    // An entry draws its text at its top.
    const int entryHeight = messageHeight + 2 * GetSystemMetrics(SM_CYEDGE) + scaled(4);
    place(Form::txtNumValue, left, top, width, entryHeight);
    place(Form::txtStrValue, left, top, width, entryHeight);
    top += entryHeight + scaled(smallGap) * 2;

    const int caption = captionWidth();
    const int reason = reasonWidth();
    place(Form::lblValueCaption, left, top, caption, lineHeight);
    place(Form::lblReturnValue, left + caption, top, width - caption - reason, lineHeight);
    place(Form::lblReason, left + width - reason, top, reason, lineHeight);
    top += lineHeight + scaled(smallGap);
    place(Form::lblRange, left, top, width, lineHeight);
    top += lineHeight + scaled(largeGap);

    const int button = buttonWidth();
    const int buttonHeight = std::max(scaled(lowestButton), messageHeight + scaled(smallGap));
    const int cancelLeft = left + width - button;
    place(Form::cmdCancel, cancelLeft, top, button, buttonHeight);
    place(Form::cmdOK, cancelLeft - scaled(smallGap) - button, top, button, buttonHeight);
    setClientSize(left + width + left, top + buttonHeight + left);
}

// What the frame adds to the size, as the window has it now.
SIZE InputWindow::frame() const {
    RECT outside{};
    RECT inside{};
    GetWindowRect(window_, &outside);
    GetClientRect(window_, &inside);
    return {areaOf(outside).width - areaOf(inside).width, areaOf(outside).height - areaOf(inside).height};
}

void InputWindow::setClientSize(int width, int height) const {
    const SIZE around = frame();
    SetWindowPos(window_, nullptr, 0, 0, width + around.cx, height + around.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void InputWindow::standOver(const ScreenArea& place) {
    place_ = place;
    screen_ = workArea(place);
}

std::optional<ScreenArea> InputWindow::ownerArea() const {
    std::optional<ScreenArea> owner = ownerForm_ != nullptr ? areaOfForm(ownerForm_) : std::nullopt;
    RECT rectangle{};
    if (!owner && owner_ != nullptr && IsIconic(owner_) == FALSE && GetWindowRect(owner_, &rectangle) != FALSE)
        owner = areaOf(rectangle);
    return owner;
}

void InputWindow::CenterForm() const {
    RECT rectangle{};
    GetWindowRect(window_, &rectangle);
    const ScreenArea centred = centredOver(place_, areaOf(rectangle).width, areaOf(rectangle).height);
    const ScreenArea area = keptWithin(screen_, centred);
    SetWindowPos(window_, nullptr, area.left, area.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// A window that is seen has been moved by somebody, or its screen has changed: it stays where it is. One that is not
// yet seen is on its way to its place.
void InputWindow::changeResolution(int dpi, const ScreenArea& proposed) {
    dpi_ = dpi;
    fonts_.emplace(dpi_);
    if (IsWindowVisible(window_) != FALSE) standOver(proposed);
    if (mustQuestionScroll() != questionScrolls_) {
        const bool hadFocus = GetFocus() == control(Form::lblQuestion);
        createQuestion();
        if (hadFocus) SetFocus(entry());
    }
    setFonts();
    layOut();
    fillScrolledQuestion();
    CenterForm();
}

}  // namespace

frmCDInputBox::frmCDInputBox(NumberLocale locale) : locale_(std::move(locale)) {}

InputAnswer frmCDInputBox::GetInput(const InputRequest& request, IDispatch* tOwnerForm) {
    using enum InputAnswer::Ending;
    if (!hasDesktop() || isToQuit() || isOpenOnThisThread()) return {request.initialValue, Unavailable};
    const std::u16string title = applicationTitle();
    InputRules rules = inOwnArithmetic([&] { return InputRules(request, title, locale_); });
    const std::u16string decimalSeparator = locale_.decimalMark;
    if (!InputWindow(rules, decimalSeparator, tOwnerForm).show()) return {request.initialValue, Unavailable};
    return {rules.result(), rules.isCancelled() ? Cancelled : Accepted};
}

}  // namespace corvane
