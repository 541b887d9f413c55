#include <windows.h>
// After windows.h, which it needs.
#include <commctrl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/clsScriptControl.h"
#include "tests/ui/list_control-win32.h"
#include "ui/modListView.h"

// What it costs to show ten times as many rows of a list view: the list views of scripts of 1,000 and of 10,000 rows
// are filled in turn, through the members of a host's control, as the component does it.
//
//   list_view_rows [REPETITIONS]     three, if not given
//
// The exit code is 1 where ten times as many rows cost more than twelve times as much.
//
// "counting" is a control without a window, which counts its calls and does nothing: what is left is our own work.
// "window" is a control over a list view window of the system's, fitted and shown as in a host.

namespace corvane {
namespace {

constexpr int fewRows = 1000;
constexpr int manyRows = 10 * fewRows;
constexpr double greatestRatio = 12;

/// A control, its collections and its rows in one: every member is there and does nothing. It says that it shows no
/// report, as there are no columns to fit.
class CountingControl final : public IDispatch {
public:
    long calls = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool isKnown = IsEqualIID(id, IID_IUnknown) != FALSE || IsEqualIID(id, IID_IDispatch) != FALSE;
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR** names, UINT, LCID, DISPID* ids) override {
        ids[0] = lstrcmpW(names[0], L"View") == 0 ? view : anythingElse;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) override {
        ++calls;
        if (result == nullptr) return S_OK;
        V_VT(result) = id == view ? VT_I4 : VT_DISPATCH;
        if (id == view)
            V_I4(result) = 0;
        else
            V_DISPATCH(result) = this;
        return S_OK;
    }

private:
    enum Member : DISPID { view = 1, anythingElse };
};

/// A loaded script whose two views have so many rows each, but for the identifier that every script has.
class Script {
public:
    explicit Script(int rows) {
        std::u16string text;
        for (int row = 1; row < rows; ++row) text += u"VAR Value = 2.5\n";
        for (int row = 0; row < rows; ++row) text += u"Increment(Value)\n";
        if (!control_.LoadScript_FromScript(text, u"", 0, 0)) std::abort();
    }
    clsCommandList& engine() { return control_.engine(); }

private:
    NoOperator dialogs_;
    SystemMessagePump pump_;
    clsScriptControl control_{{dialogs_, pump_}};
};

/// A control of one of the two kinds, new for each filling, as a host's windows are.
void fillCounting(clsCommandList& engine, bool isOfStatements) {
    CountingControl control;
    DisplayDataInListViews(engine, isOfStatements ? &control : nullptr, isOfStatements ? nullptr : &control);
    if (control.calls < fewRows) std::abort();
}

void fillWindow(clsCommandList& engine, bool isOfStatements) {
    testing::Happenings happenings;
    const testing::ListWindow window;
    const testing::Held control(new testing::ListControl(happenings, window));
    DisplayDataInListViews(engine, isOfStatements ? &*control : nullptr, isOfStatements ? nullptr : &*control);
    if (SendMessageW(window.handle(), LVM_GETITEMCOUNT, 0, 0) < fewRows) std::abort();
}

struct Measurement {
    const char* name;
    void (*fill)(clsCommandList&, bool isOfStatements);
    bool isOfStatements;
    int times;  ///< in each repetition: what is over soon is disturbed easily
};

double milliseconds(const Measurement& measurement, Script& script) {
    const auto start = std::chrono::steady_clock::now();
    measurement.fill(script.engine(), measurement.isOfStatements);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The median of the ratios of neighbouring measurements, which other work of the machine slows down alike.
double measure(const Measurement& measurement, int repetitions, Script& few, Script& many) {
    std::vector<double> ofFew;
    std::vector<double> ofMany;
    std::vector<double> ratios;
    milliseconds(measurement, few);
    for (int repetition = 0; repetition < repetitions * measurement.times; ++repetition) {
        ofFew.push_back(milliseconds(measurement, few));
        ofMany.push_back(milliseconds(measurement, many));
        ratios.push_back(ofMany.back() / ofFew.back());
    }
    const double ratio = median(ratios);
    std::printf("%-24s %10.2f ms %10.2f ms %8.2f\n", measurement.name, median(ofFew), median(ofMany), ratio);
    std::fflush(stdout);
    return ratio;
}

int run(int repetitions) {
    Script few(fewRows);
    Script many(manyRows);
    constexpr std::array<Measurement, 4> measurements = {{
        {"statements, counting", fillCounting, true, 15},
        {"identifiers, counting", fillCounting, false, 15},
        {"statements, window", fillWindow, true, 1},
        {"identifiers, window", fillWindow, false, 1},
    }};
    std::printf("%-24s %10d rows %7d rows %8s\n", "median of", fewRows, manyRows, "ratio");
    bool isLinear = true;
    for (const Measurement& measurement : measurements)
        isLinear = measure(measurement, repetitions, few, many) <= greatestRatio && isLinear;
    return isLinear ? 0 : 1;
}

}  // namespace
}  // namespace corvane

int main(int count, char** arguments) { return corvane::run(count > 1 ? std::max(1, std::atoi(arguments[1])) : 3); }
