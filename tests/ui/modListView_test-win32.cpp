#include <windows.h>
// After windows.h, which it needs.
#include <commctrl.h>

#include <algorithm>
#include <iterator>

#include "platform/script_file.h"
#include "tests/support/engine_fixture.h"
#include "tests/ui/list_control-win32.h"
#include "ui/modListView.h"
#include "ui/text_table.h"

namespace corvane {
namespace {

using testing::Cells;
using testing::Step;

Cells narrow(const std::vector<std::u16string>& texts) {
    Cells cells;
    std::transform(texts.begin(), texts.end(), std::back_inserter(cells),
                   [](const auto& text) { return toUtf8(text); });
    return cells;
}

/// An engine and a list control.
class ListView : public testing::EngineTest {
protected:
    testing::Happenings happenings;
    testing::ListWindow window;
    testing::Held<testing::ListControl> control{new testing::ListControl(happenings, window)};

    /// Fills the control with the statements.
    void fill() { DisplayDataInListViews(engine, &*control); }
    void fillIdentifiers() { DisplayDataInListViews(engine, nullptr, &*control); }

    /// Has the n-th step of the test fail.
    void failAt(int step, HRESULT result = E_FAIL) {
        happenings.onStep = [step, result](const Step& asked) {
            return asked.number == step ? std::optional(result) : std::nullopt;
        };
    }
    /// Has each read of a property, or result of a method, be what `answer` makes of an empty variant.
    template <typename Answer>
    void answerWith(std::wstring_view member, Answer answer) {
        happenings.onStep = [member, answer](const Step& asked) -> std::optional<HRESULT> {
            if (asked.member != member || asked.result == nullptr) return std::nullopt;
            answer(*asked.result);
            return S_OK;
        };
    }
    void failWith(std::wstring_view member, HRESULT result) {
        happenings.onStep = [member, result](const Step& asked) {
            return asked.member == member ? std::optional(result) : std::nullopt;
        };
    }
    bool isFitted() const { return !window.fittings.empty(); }
};

// What is shown

TEST_F(ListView, OfAnEmptyScriptHasTwentySevenColumnsAndNoRow) {
    ASSERT_TRUE(load(u""));
    fill();
    const Cells headers = {"No.", "Function", "P1",  "P2",  "P3",  "P4",  "P5",  "P6",  "P7",
                           "P8",  "P9",       "P10", "P11", "P12", "P13", "P14", "P15", "P16",
                           "P17", "P18",      "P19", "P20", "P21", "P22", "P23", "P24", "P25"};
    EXPECT_EQ(window.columns(), headers);
    EXPECT_EQ(window.rows(), std::vector<Cells>());
    EXPECT_EQ(window.fittings.size(), 27u);
}

TEST_F(ListView, ShowsTheStatements) {
    ASSERT_TRUE(load(u"VAR Count = 0\nAgain:\nIncrement(Count)\nWaitTime(2.5, \"one two\")\nGoto(Again)"));
    fill();
    const auto row = [](Cells cells) {
        cells.resize(27, " ");
        return cells;
    };
    EXPECT_EQ(window.rows(),
              std::vector<Cells>({row({"1", "Increment", "Count"}), row({"2", "WaitTime", "2.5", "one two"}),
                                  row({"3", "Goto", "0 - (Label Again)"})}));
}

TEST_F(ListView, ShowsTheIdentifiers) {
    ASSERT_TRUE(load(u"VAR Länge = 2.5\nCONST T = \"t\""));
    fillIdentifiers();
    EXPECT_EQ(window.columns(), Cells({"No.", "Identifier", "Type", "Initial Val"}));
    EXPECT_EQ(
        window.rows(),
        std::vector<Cells>({{"0", "FINISH_LOOP_FLAG", "16", "0"}, {"1", "Länge", "2", "2.5"}, {"2", "T", "132", "t"}}));
    EXPECT_EQ(window.fittings.size(), 4u);
}

TEST_F(ListView, ShowsARealScriptAsTheTextTableDoes) {
    ASSERT_TRUE(load(readScriptFile(u"examples/flow_and_stability.script")));
    testing::ListWindow second;
    const testing::Held identifiers(new testing::ListControl(happenings, second));
    DisplayDataInListViews(engine, &*control, &*identifiers);
    TextTable statementTable;
    TextTable identifierTable;
    engine.DisplayDataInListViews(&statementTable, &identifierTable);
    for (const auto& [shown, table] : {std::pair(&window, &statementTable),
                                       std::pair<testing::ListWindow*, TextTable*>(&second, &identifierTable)}) {
        EXPECT_EQ(shown->columns(), narrow(table->columns()));
        std::vector<Cells> rows;
        std::transform(table->rows().begin(), table->rows().end(), std::back_inserter(rows), narrow);
        EXPECT_GT(rows.size(), 10u);
        EXPECT_EQ(shown->rows(), rows);
    }
}

TEST_F(ListView, ThatIsNotGivenIsSkipped) {
    ASSERT_TRUE(load(u"Park()"));
    DisplayDataInListViews(engine, &*control, nullptr);
    EXPECT_EQ(window.columns().size(), 27u);
    DisplayDataInListViews(engine, nullptr, &*control);
    EXPECT_EQ(window.columns().size(), 4u);
    happenings.calls = 0;
    DisplayDataInListViews(engine, nullptr);
    EXPECT_EQ(happenings.calls, 0);
}

TEST_F(ListView, IsFilledAnewEachTime) {
    ASSERT_TRUE(load(u"Park()\nPark()"));
    fill();
    ASSERT_TRUE(load(u"EndTest()"));
    fill();
    EXPECT_EQ(window.columns().size(), 27u);
    ASSERT_EQ(window.rows().size(), 1u);
    EXPECT_EQ(window.rows()[0][1], "EndTest");
}

// How the control is used

TEST_F(ListView, IsMadeAReadOnlyReport) {
    ASSERT_TRUE(load(u""));
    fill();
    EXPECT_TRUE(window.isReport());
    EXPECT_FALSE(window.hasStyle(LVS_EDITLABELS));
    EXPECT_FALSE(window.hasStyle(LVS_SORTASCENDING));
    EXPECT_TRUE(window.hasStyle(LVS_SHOWSELALWAYS));
    EXPECT_TRUE(window.hasExtendedStyle(LVS_EX_FULLROWSELECT));
    EXPECT_TRUE(window.hasExtendedStyle(LVS_EX_GRIDLINES));
}

TEST_F(ListView, IsPreparedFilledAndFittedInThisOrder) {
    ASSERT_TRUE(load(u"VAR X = 1"));
    fillIdentifiers();
    EXPECT_EQ(
        happenings.lines,
        Cells({"View = 3", "LabelEdit = 1", "FullRowSelect = True", "GridLines = True", "HideSelection = False",
               "Sorted = False", "ColumnHeaders.Clear()", "ListItems.Clear()",
               "ColumnHeaders.Add(missing, missing, \"No.\")", "ColumnHeaders.Add(missing, missing, \"Identifier\")",
               "ColumnHeaders.Add(missing, missing, \"Type\")", "ColumnHeaders.Add(missing, missing, \"Initial Val\")",
               "ListItems.Add(missing, missing, \"0\")", "ListItems.Add(missing, missing, \"1\")", "Visible = False",
               "Visible = True"}));
}

TEST_F(ListView, NeedsAsMuchForEachRowAsForTheFirst) {
    const auto steps = [&](int rows, auto show) {
        std::u16string script;
        for (int n = 0; n < rows; ++n) {
            script += u"VAR V";
            script += static_cast<char16_t>(u'A' + n % 26);
            script += u"\nPark()\n";
        }
        EXPECT_TRUE(load(script));
        happenings.lookUps = happenings.calls = 0;
        show();
        return std::pair(happenings.lookUps, happenings.calls);
    };
    const auto ofStatements = [&](int rows) { return steps(rows, [&] { fill(); }); };
    const auto ofIdentifiers = [&](int rows) { return steps(rows, [&] { fillIdentifiers(); }); };
    const auto [statementLookUps, statementCalls] = ofStatements(0);
    const auto [identifierLookUps, identifierCalls] = ofIdentifiers(0);
    for (const int rows : {1, 10, 400}) {
        EXPECT_EQ(ofStatements(rows), std::pair(statementLookUps + rows, statementCalls + rows * (1 + 1 + 25)));
        EXPECT_EQ(ofIdentifiers(rows), std::pair(identifierLookUps + rows, identifierCalls + rows * (1 + 3)));
    }
}

// Fitting

TEST_F(ListView, FitsEveryColumnWhileItIsHidden) {
    ASSERT_TRUE(load(u"VAR AnIdentifierWithALongName = 1\nVAR B = \"a text of some length\""));
    fillIdentifiers();
    const testing::ListWindow::Fitting expected[] = {{0, -2, false}, {1, -2, false}, {2, -2, false}, {3, -2, false}};
    EXPECT_TRUE(std::ranges::equal(window.fittings, expected));
    EXPECT_TRUE(window.isVisible());

    const std::vector<int> widths = window.widths();
    const Cells widest = {"No.", "AnIdentifierWithALongName", "Type", "a text of some length"};
    for (std::size_t i = 0; i < widest.size(); ++i) EXPECT_GT(widths[i], window.widthOf(widest[i])) << widest[i];
    EXPECT_LT(widths[0], widths[1]);
    EXPECT_LT(widths[2], widths[1]);
}

TEST_F(ListView, FitsByTheHandleInWhateverTypeItComes) {
    ASSERT_TRUE(load(u""));
    for (const VARTYPE type : {VT_I4, VT_I8, VT_UI4, VT_R8, VT_BSTR}) {
        control->handleType = type;
        window.fittings.clear();
        fill();
        EXPECT_EQ(window.fittings.size(), 27u) << type;
    }
}

TEST_F(ListView, SendsNothingToWhatIsNoWindow) {
    ASSERT_TRUE(load(u""));
    const auto handle = [](LONG number) {
        return [number](VARIANT& result) {
            V_VT(&result) = VT_I4;
            V_I4(&result) = number;
        };
    };
    for (const LONG number : {0L, -1L, 0xFFFFL, 1L}) {
        answerWith(L"hWnd", handle(number));
        fill();
        EXPECT_FALSE(isFitted()) << number;
        EXPECT_TRUE(window.isVisible());
    }
    answerWith(L"hWnd", [](VARIANT&) {});
    fill();
    EXPECT_FALSE(isFitted());
    EXPECT_EQ(happenings.lines.back(), "Visible = True");
}

TEST_F(ListView, IsNotFittedInAnotherView) {
    ASSERT_TRUE(load(u"Park()"));
    answerWith(L"View", [](VARIANT& result) {
        V_VT(&result) = VT_I4;
        V_I4(&result) = 2;
    });
    fill();
    EXPECT_FALSE(isFitted());
    EXPECT_EQ(std::ranges::count(happenings.lines, "Visible = False"), 0);
    EXPECT_EQ(window.rows().size(), 1u);
}

TEST_F(ListView, DoesNotBelieveInMoreColumnsThanItWasGiven) {
    ASSERT_TRUE(load(u""));
    answerWith(L"Count", [](VARIANT& result) {
        V_VT(&result) = VT_I4;
        V_I4(&result) = 0x7FFFFFFF;
    });
    fill();
    EXPECT_EQ(window.fittings.size(), 27u);
}

TEST_F(ListView, IgnoresEveryErrorOfFittingAndIsShownAgain) {
    ASSERT_TRUE(load(u"Park()"));
    // Reading View has its place in fitting only.
    for (const std::wstring_view member : {L"hWnd", L"Count", L"Visible"}) {
        for (const HRESULT result : {E_FAIL, DISP_E_MEMBERNOTFOUND, DISP_E_EXCEPTION, E_OUTOFMEMORY}) {
            failWith(member, result);
            EXPECT_NO_THROW(fill());
            EXPECT_TRUE(window.isVisible());
            EXPECT_EQ(window.rows().size(), 1u);
        }
    }
    answerWith(L"View", [](VARIANT& result) { V_VT(&result) = VT_NULL; });
    EXPECT_NO_THROW(fill());
}

TEST_F(ListView, ThatDoesNotShowItselfIsShownByItsWindow) {
    ASSERT_TRUE(load(u""));
    happenings.onStep = [this](const Step& asked) {
        const bool showsAgain = asked.member == L"Visible" && asked.kind == DISPATCH_PROPERTYPUT && !window.isVisible();
        return showsAgain ? std::optional(E_FAIL) : std::nullopt;
    };
    fill();
    EXPECT_TRUE(isFitted());
    EXPECT_TRUE(window.isVisible());
}

// Kept: whoever hid the control before finds it shown.
TEST_F(ListView, IsShownInAnyCase) {
    ASSERT_TRUE(load(u""));
    ShowWindow(window.handle(), SW_HIDE);
    fill();
    EXPECT_TRUE(window.isVisible());
}

// Failing controls

TEST_F(ListView, MayFailAtAnyStep) {
    ASSERT_TRUE(load(u"VAR X = 1\nPark()\nSet(X, 2)"));
    fill();
    const int steps = happenings.lookUps + happenings.calls;
    ASSERT_GT(steps, 100);
    int failed = 0;
    for (int step = 1; step <= steps; ++step) {
        happenings.lookUps = happenings.calls = 0;
        happenings.lines.clear();
        failAt(step);
        const bool mayFail = testing::errorOf([&] { fill(); }) == 440;
        const bool hasBegunFitting = std::ranges::count(happenings.lines, "Visible = False") != 0;
        EXPECT_FALSE(mayFail && hasBegunFitting) << step;
        if (mayFail) ++failed;
        EXPECT_TRUE(window.isVisible()) << step;
        EXPECT_EQ(control->references(), 1) << step;
        EXPECT_EQ(happenings.objects, 1) << step;
    }
    // View, Visible, hWnd, Count and Visible: each looked up and used, without consequence.
    EXPECT_EQ(failed, steps - 10);
    happenings.onStep = nullptr;
    fill();
    EXPECT_EQ(window.rows().size(), 2u);
}

TEST_F(ListView, FailsWithTheNumberThatTheControlGives) {
    ASSERT_TRUE(load(u""));
    const std::pair<HRESULT, int> rows[] = {
        {DISP_E_MEMBERNOTFOUND, 438},
        {DISP_E_UNKNOWNNAME, 438},
        {E_NOTIMPL, 438},
        {DISP_E_TYPEMISMATCH, 13},
        {DISP_E_BADVARTYPE, 13},
        {DISP_E_BADPARAMCOUNT, 5},
        {E_INVALIDARG, 5},
        {DISP_E_BADINDEX, 9},
        {DISP_E_OVERFLOW, 6},
        {E_OUTOFMEMORY, 7},
        {E_FAIL, 440},
        {E_POINTER, 440},
        {RPC_E_DISCONNECTED, 440},
        {static_cast<HRESULT>(0x800A0009), 9},
        {static_cast<HRESULT>(0x800A8B0D), 35597},
        {DISP_E_EXCEPTION, 440},  // without a report
    };
    for (const auto& [result, number] : rows) {
        failWith(L"ListItems", result);
        EXPECT_EQ(testing::errorOf([&] { fill(); }), number) << std::hex << result;
    }
}

TEST_F(ListView, FailsAsTheControlReports) {
    ASSERT_TRUE(load(u""));
    struct Row {
        WORD code;
        HRESULT result;
        const wchar_t* description;
        bool isDeferred;
        int number;
        const char* text;
    };
    const Row rows[] = {
        {0, static_cast<HRESULT>(0x800A8B0D), L"Grün ist keine Ansicht", false, 35597, "Grün ist keine Ansicht"},
        {1234, 0, L"The host's own", false, 1234, "The host's own"},
        {9, E_FAIL, nullptr, false, 9, "Subscript out of range"},
        {0, E_FAIL, L"Out of order", false, 440, "Out of order"},
        {0, E_FAIL, nullptr, false, 440, "Automation error"},
        {0, 0, L"Said late", true, 440, "Said late"},
    };
    for (const Row& row : rows) {
        static const Row* current;
        current = &row;
        const auto report = [](EXCEPINFO* fault) -> HRESULT {
            fault->wCode = current->code;
            fault->scode = current->result;
            fault->bstrSource = SysAllocString(L"ListView");
            fault->bstrDescription = current->description == nullptr ? nullptr : SysAllocString(current->description);
            return S_OK;
        };
        static HRESULT (*reporter)(EXCEPINFO*);
        reporter = report;
        happenings.onStep = [](const Step& asked) -> std::optional<HRESULT> {
            if (asked.member != L"GridLines" || asked.kind == 0) return std::nullopt;
            if (current->isDeferred) asked.fault->pfnDeferredFillIn = [](EXCEPINFO * fault) -> HRESULT __stdcall {
                    return reporter(fault);
                };
            else
                reporter(asked.fault);
            return DISP_E_EXCEPTION;
        };
        try {
            fill();
            ADD_FAILURE() << row.text;
        } catch (const automation_error& error) {
            EXPECT_EQ(static_cast<int>(error.number()), row.number) << row.text;
            EXPECT_STREQ(error.what(), row.text);
        }
    }
}

TEST_F(ListView, FailsWhereAnObjectIsMissing) {
    ASSERT_TRUE(load(u"Park()"));
    const auto nothing = [](VARIANT&) {};
    const auto number = [](VARIANT& result) {
        V_VT(&result) = VT_I4;
        V_I4(&result) = 7;
    };
    const auto text = [](VARIANT& result) {
        V_VT(&result) = VT_BSTR;
        V_BSTR(&result) = SysAllocString(L"no object");
    };
    const auto noObject = [](VARIANT& result) { V_VT(&result) = VT_DISPATCH; };
    const auto noUnknown = [](VARIANT& result) { V_VT(&result) = VT_UNKNOWN; };
    // Add is asked for its result by the items only: column headers are not looked at again.
    for (const std::wstring_view member : {L"ColumnHeaders", L"ListItems", L"Add"}) {
        answerWith(member, nothing);
        EXPECT_EQ(testing::errorOf([&] { fill(); }), 424);
        answerWith(member, number);
        EXPECT_EQ(testing::errorOf([&] { fill(); }), 424);
        answerWith(member, text);
        EXPECT_EQ(testing::errorOf([&] { fill(); }), 424);
        answerWith(member, noObject);
        EXPECT_EQ(testing::errorOf([&] { fill(); }), 91);
        answerWith(member, noUnknown);
        EXPECT_EQ(testing::errorOf([&] { fill(); }), 91);
    }
}

TEST_F(ListView, FailsAtAnObjectOfAnotherKind) {
    ASSERT_TRUE(load(u"Park()"));
    for (const std::wstring_view member : {L"ColumnHeaders", L"ListItems", L"Add"}) {
        answerWith(member, [this](VARIANT& result) {
            V_VT(&result) = VT_DISPATCH;
            V_DISPATCH(&result) = &*control;
            control->AddRef();
        });
        EXPECT_EQ(testing::errorOf([&] { fill(); }), 438);
        EXPECT_EQ(control->references(), 1);
    }
}

TEST_F(ListView, TakesObjectsThatComeAsUnknownOnes) {
    ASSERT_TRUE(load(u"Park()"));
    const testing::Held other(new testing::ListControl(happenings, window));
    answerWith(L"ListItems", [&](VARIANT& result) {
        happenings.onStep = nullptr;
        DISPID id = 0;
        wchar_t name[] = L"ListItems";
        LPOLESTR names = name;
        other->GetIDsOfNames(IID_NULL, &names, 1, 0, &id);
        DISPPARAMS none{};
        other->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr);
        V_VT(&result) = VT_UNKNOWN;
    });
    fill();
    EXPECT_EQ(window.rows().size(), 1u);
}

TEST_F(ListView, IsKeptUntilItIsFilled) {
    ASSERT_TRUE(load(u"Park()\nPark()"));
    happenings.onStep = [this](const Step& asked) -> std::optional<HRESULT> {
        if (asked.member != L"LabelEdit") return std::nullopt;
        control.release();
        happenings.onStep = nullptr;
        return std::nullopt;
    };
    DisplayDataInListViews(engine, &*control);
    EXPECT_EQ(happenings.objects, 0);
    EXPECT_EQ(window.rows().size(), 2u);
    EXPECT_TRUE(isFitted());
}

TEST_F(ListView, MayLoseItsWindowAtAnyStep) {
    ASSERT_TRUE(load(u"VAR X = 1"));
    int step = 0;
    bool isLost = true;
    while (isLost) {
        ++step;
        testing::ListWindow mortal;
        const testing::Held other(new testing::ListControl(happenings, mortal));
        isLost = false;
        happenings.lookUps = happenings.calls = 0;
        happenings.onStep = [&](const Step& asked) -> std::optional<HRESULT> {
            if (asked.number != step) return std::nullopt;
            isLost = true;
            DestroyWindow(mortal.handle());
            return std::nullopt;
        };
        const int error = testing::errorOf([&] { DisplayDataInListViews(engine, nullptr, &*other); });
        EXPECT_TRUE(error == 0 || error == 440 || error == 9) << step << ": " << error;
    }
    EXPECT_GT(step, 40);
}

TEST_F(ListView, MayLoadAScriptWhileItIsFilled) {
    ASSERT_TRUE(load(u"Park()\nPark()\nPark()"));
    happenings.onStep = [this](const Step& asked) -> std::optional<HRESULT> {
        if (asked.member != L"SubItems" || asked.kind == 0) return std::nullopt;
        happenings.onStep = nullptr;
        EXPECT_TRUE(load(u"EndTest()"));
        return std::nullopt;
    };
    fill();
    EXPECT_EQ(window.rows().size(), 1u);
}

TEST_F(ListView, MayBeFilledWhileItIsFilled) {
    ASSERT_TRUE(load(u"Park()"));
    happenings.onStep = [this](const Step& asked) -> std::optional<HRESULT> {
        if (asked.member != L"SubItems" || asked.kind == 0) return std::nullopt;
        happenings.onStep = nullptr;
        fill();
        return std::nullopt;
    };
    fill();
    EXPECT_EQ(window.columns().size(), 27u);
    EXPECT_EQ(happenings.objects, 1);
}

}  // namespace
}  // namespace corvane
