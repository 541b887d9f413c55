#include <stdexcept>
#include <thread>

#include "engine/modCommand.h"
#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using Cells = std::vector<std::string>;

/// Keeps what is written into it, and the calls other than cells as lines.
class RecordingView final : public TableView {
public:
    std::vector<std::string> calls;
    Cells columns;
    std::vector<Cells> rows;
    std::function<void()> onRow;
    std::function<void()> onCell;

    void prepare() override {
        calls.emplace_back("prepare");
        columns.clear();
        rows.clear();
    }
    void addColumn(std::u16string_view header) override {
        if (calls.back() != "columns") calls.emplace_back("columns");
        columns.push_back(toUtf8(header));
    }
    void addRow(std::u16string_view text) override {
        if (calls.back() != "rows") calls.emplace_back("rows");
        rows.push_back({toUtf8(text)});
        if (onRow) onRow();
    }
    void setSubItem(int column, std::u16string_view text) override {
        ASSERT_GE(column, 1);
        Cells& row = rows.back();
        if (row.size() <= static_cast<std::size_t>(column)) row.resize(static_cast<std::size_t>(column) + 1, "<unset>");
        row[static_cast<std::size_t>(column)] = toUtf8(text);
        if (onCell) onCell();
    }
    void fitColumns() override { calls.emplace_back("fit"); }
};

class DiagnosticViews : public testing::EngineTest {
protected:
    RecordingView statements;
    RecordingView items;

    /// A row of the statement view: the given cells and a blank in every other column.
    static Cells row(Cells cells) {
        cells.resize(27, " ");
        return cells;
    }
    void display() { engine.DisplayDataInListViews(&statements, &items); }
};

TEST_F(DiagnosticViews, AnEmptyScriptGivesTwentySevenColumnsAndNoRow) {
    ASSERT_TRUE(load(u""));
    engine.DisplayDataInListViews(&statements);
    Cells expected = {"No.", "Function"};
    for (int n = 1; n <= 25; ++n) expected.push_back("P" + std::to_string(n));
    EXPECT_EQ(statements.columns, expected);
    EXPECT_EQ(statements.columns.size(), 27u);
    EXPECT_TRUE(statements.rows.empty());
    EXPECT_EQ(statements.calls, Cells({"prepare", "columns", "fit"}));
}

TEST_F(DiagnosticViews, ShowBeforeAnyLoadHeadersOnly) {
    display();
    EXPECT_TRUE(statements.rows.empty());
    EXPECT_TRUE(items.rows.empty());
}

TEST_F(DiagnosticViews, ShowEachStatementWithItsParameters) {
    ASSERT_TRUE(
        load(u"VAR Count = 0\nCONST Limit = 10\nAgain:\nIncrement(count)\nPark()\nIfLessThan(Count, Limit, AGAIN)\n"
             u"WaitTime(2.5, \"one|two\")\nGoto(End)\nShakeBladeEx(1, 2, 3, Count, \"\", Again)\nEnd:"));
    engine.DisplayDataInListViews(&statements);
    EXPECT_EQ(statements.rows,
              std::vector<Cells>({row({"1", "Increment", "Count"}), row({"2", "Park"}),
                                  row({"3", "IfLessThan", "Count", "Limit", "0 - (Label Again)"}),
                                  row({"4", "WaitTime", "2.5", "one\r\ntwo"}), row({"5", "Goto", "6 - (Label End)"}),
                                  row({"6", "ShakeBladeEx", "1", "2", "3", "Count", "", "0 - (Label Again)"})}));
    EXPECT_EQ(statements.calls, Cells({"prepare", "columns", "rows", "fit"}));
}

TEST_F(DiagnosticViews, FillAllTwentyFiveParameterColumns) {
    ASSERT_TRUE(load(u"SCTestFull(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,\"18\",19,20,21,22,23,24,25)"));
    engine.DisplayDataInListViews(&statements);
    Cells expected = {"1", "SCTestFull"};
    for (int n = 1; n <= 25; ++n) expected.push_back(std::to_string(n));
    EXPECT_EQ(statements.rows, std::vector<Cells>({expected}));
}

TEST_F(DiagnosticViews, ShowAnUndefinedLabelByItsName) {
    EXPECT_FALSE(load(u"Goto(Nowhere)"));
    display();
    EXPECT_EQ(statements.rows, std::vector<Cells>({row({"1", "Goto", "Nowhere"})}));
    EXPECT_EQ(items.rows, std::vector<Cells>({{"0", "FINISH_LOOP_FLAG", "16", "0"}, {"1", "Nowhere", "1", "-1"}}));
}

TEST_F(DiagnosticViews, ShowWhatARejectedLoadHasBuilt) {
    EXPECT_FALSE(load(u"Park()\nVAR X = 1\nnonsense\nPark()"));
    display();
    EXPECT_EQ(statements.rows, std::vector<Cells>({row({"1", "Park"})}));
    EXPECT_EQ(items.rows.size(), 2u);
}

TEST_F(DiagnosticViews, ShowEachItemWithTypeAndInitialValue) {
    ASSERT_TRUE(load(
        u"VAR N = 2.5\nVAR Z\nVAR S = \"a|b\"\nCONST C = -1\nCONST T = \"t\"\nENV E = \"e\"\nL:\nWaitTime(7, \"w\")"));
    display();
    EXPECT_EQ(items.columns, Cells({"No.", "Identifier", "Type", "Initial Val"}));
    EXPECT_EQ(items.rows, std::vector<Cells>({{"0", "FINISH_LOOP_FLAG", "16", "0"},
                                              {"1", "N", "2", "2.5"},
                                              {"2", "Z", "2", "0"},
                                              {"3", "S", "4", "a\r\nb"},
                                              {"4", "C", "130", "-1"},
                                              {"5", "T", "132", "t"},
                                              {"6", "E", "16", "\"e\""},
                                              {"7", "L", "8", "0"},
                                              {"8", "", "130", "7"},
                                              {"9", "", "132", "w"}}));
    EXPECT_EQ(items.calls, Cells({"prepare", "columns", "rows", "fit"}));
}

TEST_F(DiagnosticViews, ShowInitialNotCurrentValues) {
    run(u"VAR X = 1\nSet(X, 5)");
    display();
    EXPECT_EQ(items.rows.at(1), Cells({"1", "X", "2", "1"}));
    item(u"X").setInitialValue(Value::ofText(u"edited"));
    display();
    EXPECT_EQ(items.rows.at(1), Cells({"1", "X", "2", "edited"}));
}

TEST_F(DiagnosticViews, WriteNumbersInTheLocalesForm) {
    numbers = NumberLocale::commaDecimal();
    ASSERT_TRUE(load(u"VAR X = 2.5\nWaitTime(0.5, \"w\")"));
    display();
    EXPECT_EQ(statements.rows, std::vector<Cells>({row({"1", "WaitTime", "0,5", "w"})}));
    EXPECT_EQ(items.rows.at(1), Cells({"1", "X", "2", "2,5"}));
}

TEST_F(DiagnosticViews, AViewThatIsNotThereIsSkipped) {
    ASSERT_TRUE(load(u"Park()"));
    engine.DisplayDataInListViews(&statements, nullptr);
    EXPECT_EQ(statements.rows.size(), 1u);
    EXPECT_TRUE(items.calls.empty());
    engine.DisplayDataInListViews(nullptr, &items);
    EXPECT_EQ(items.rows.size(), 1u);
    EXPECT_EQ(statements.calls, Cells({"prepare", "columns", "rows", "fit"}));  // of the first call only
    engine.DisplayDataInListViews(nullptr);
}

TEST_F(DiagnosticViews, EachFillReplacesTheOneBefore) {
    ASSERT_TRUE(load(u"Park()\nPark()"));
    display();
    ASSERT_TRUE(load(u"EndTest()"));
    display();
    EXPECT_EQ(statements.rows, std::vector<Cells>({row({"1", "EndTest"})}));
    EXPECT_EQ(statements.columns.size(), 27u);
    EXPECT_EQ(items.columns.size(), 4u);
}

TEST_F(DiagnosticViews, NameAStatementAsTheCatalogueDoes) {
    ASSERT_TRUE(load(u"AerationControl(1, 2, 0, 0, 0, 0, 0)\nBlockStart(\"b\")\nPark()"));
    SetFunctionDefinition(ctPark, u"Rest", 0, u"");
    display();
    BuildFunctionCatalogue();
    ASSERT_EQ(statements.rows.size(), 3u);
    EXPECT_EQ(statements.rows[0][1], "AerationControl");
    EXPECT_EQ(statements.rows[1][1], "BlockStart");
    EXPECT_EQ(statements.rows[2][1], "Rest");
}

TEST_F(DiagnosticViews, ChangeNothingOfTheEngine) {
    run(u"VAR X = 1\nIncrement(X)\nGoto(End)\nEnd:");
    testing::RecordingListener listener;
    engine.setListener(&listener);
    const std::int32_t itemCount = engine.DataMemory().Count();
    display();
    EXPECT_TRUE(listener.lines.empty());
    EXPECT_EQ(engine.DataMemory().Count(), itemCount);
    EXPECT_EQ(current(u"X"), "s2");
    EXPECT_EQ(engine.programCounter(), 2);
}

TEST_F(DiagnosticViews, MayBeFilledDuringARun) {
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) display();
    };
    EXPECT_TRUE(run(u"VAR X = 1\nPark()"));
    EXPECT_EQ(statements.rows.size(), 1u);
    EXPECT_EQ(items.rows.size(), 2u);
}

TEST_F(DiagnosticViews, SurviveALoadWhileTheyAreFilled) {
    const std::u16string_view old =
        u"VAR X = \"a text that is longer than any short text\"\nInfo(X)\nWaitTime(1, \"a text of some length as "
        u"well\")";
    for (const std::u16string_view fresh : {u"", u"Park()", u"Park()\nPark()\nPark()\nPark()"}) {
        for (std::function<void()> RecordingView::*const place : {&RecordingView::onRow, &RecordingView::onCell}) {
            for (RecordingView* const view : {&statements, &items}) {
                ASSERT_TRUE(load(old));
                view->*place = [&, first = true]() mutable {
                    if (!first) return;
                    first = false;
                    EXPECT_TRUE(load(fresh));
                };
                display();
                view->*place = nullptr;
                EXPECT_EQ(items.calls.back(), "fit");
            }
        }
    }
}

TEST_F(DiagnosticViews, AnExceptionOfAViewPassesAndLeavesTheEngineUsable) {
    ASSERT_TRUE(load(u"Park()"));
    statements.onRow = [] { throw std::runtime_error("the view's own"); };
    EXPECT_THROW(display(), std::runtime_error);
    statements.onRow = nullptr;
    EXPECT_TRUE(load(u"EndTest()"));
    display();
    EXPECT_EQ(statements.rows, std::vector<Cells>({row({"1", "EndTest"})}));
}

// Trace

TEST(DebugOptions, AreZeroAtFirstAndKeepEveryBit) {
    EXPECT_EQ(debugOptions(), 0);
    for (const std::int32_t options : {1, 2, 4, 7, 8, -1}) {
        setDebugOptions(options);
        EXPECT_EQ(debugOptions(), options);
    }
    setDebugOptions(0);
}

TEST(DebugOptions, BelongToTheThread) {
    setDebugOptions(doTables);
    std::int32_t before = -1;
    std::int32_t after = -1;
    std::thread other([&] {
        before = debugOptions();
        setDebugOptions(doParsing);
        after = debugOptions();
    });
    other.join();
    EXPECT_EQ(before, 0);
    EXPECT_EQ(after, doParsing);
    EXPECT_EQ(debugOptions(), doTables);
    setDebugOptions(0);
}

TEST_F(DiagnosticViews, DebugOptionsAreSharedByTheEnginesOfAThread) {
    clsCommandList other(owner, services);
    testing::RecordingTrace trace;
    engine.setTraceSink(&trace);
    other.setTraceSink(&trace);
    setDebugOptions(doTables);
    ASSERT_TRUE(load(u""));
    ASSERT_TRUE(other.CreateCommandList(u""));
    EXPECT_EQ(trace.lines, Cells({"1 Creating command list from 0 lines", "2 0: FINISH_LOOP_FLAG, 16, 0",
                                  "1 Creating command list from 0 lines", "2 0: FINISH_LOOP_FLAG, 16, 0"}));
}

}  // namespace
}  // namespace corvane
