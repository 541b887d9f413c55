#include <algorithm>
#include <new>
#include <random>
#include <stdexcept>

#include "engine/text_utilities.h"
#include "tests/allocation_counter.h"
#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using testing::errorOf;
using testing::show;
using Lines = std::vector<std::string>;

class ScriptParser : public testing::EngineTest {
protected:
    testing::RecordingTrace trace;

    /// The memory items after FINISH_LOOP_FLAG, as "name, type, initial value".
    Lines memory() {
        Lines items;
        for (std::int32_t i = 1; i < engine.DataMemory().Count(); ++i) {
            const clsData item = engine.DataMemory().Item(i);
            items.push_back(toUtf8(item.Identifier()) + ", " + std::to_string(item.ParameterType()) + ", " +
                            show(item.InitialValue()));
        }
        return items;
    }

    /// The trace of a load, without its first line.
    Lines traceOf(std::u16string_view script) {
        trace.lines.clear();
        engine.setTraceSink(&trace);
        load(script);
        engine.setTraceSink(nullptr);
        return trace.lines.empty() ? Lines() : Lines(trace.lines.begin() + 1, trace.lines.end());
    }

    std::string onlyMessage() {
        EXPECT_EQ(dialogs.messages.size(), 1u);
        return dialogs.messages.empty() ? "" : dialogs.messages.front().text;
    }
};

/// One followed by 39 zeros: a numeric text beyond the range of a single.
const std::u16string tooLarge = u"1" + std::u16string(39, u'0');

// Before and between loads

TEST_F(ScriptParser, StartsWithNothingLoaded) {
    EXPECT_EQ(engine.DataMemory().Count(), 0);
    EXPECT_EQ(engine.commandCount(), 0);
    EXPECT_EQ(engine.currentLine(), 0);
    EXPECT_EQ(engine.syntaxErrorCount(), 0);
    EXPECT_EQ(errorOf([&] { (void)engine.EnvFinishLoopFlag(); }), 91);
    EXPECT_EQ(errorOf([&] { engine.setEnvFinishLoopFlag(true); }), 91);
}

TEST_F(ScriptParser, AcceptsAnEmptyTextWithoutAnyLine) {
    engine.setTraceSink(&trace);
    EXPECT_TRUE(load(u""));
    EXPECT_EQ(trace.lines, Lines({"1 Creating command list from 0 lines"}));
    ASSERT_EQ(engine.DataMemory().Count(), 1);
    const clsData flag = engine.DataMemory().Item(0);
    EXPECT_EQ(toUtf8(flag.Identifier()), "FINISH_LOOP_FLAG");
    EXPECT_EQ(flag.ParameterType(), 16);
    EXPECT_EQ(show(flag.InitialValue()), "i0");
    EXPECT_EQ(engine.commandCount(), 0);
    EXPECT_EQ(engine.currentLine(), 0);
    EXPECT_EQ(owner.lines, Lines());
}

TEST_F(ScriptParser, EachLoadDiscardsMemoryAndStatementsOfTheOneBefore) {
    ASSERT_TRUE(load(u"VAR A = 1\nPark()\nPark()\nEnd:"));
    ASSERT_TRUE(load(u"VAR B = 2\nPark()"));
    EXPECT_EQ(memory(), Lines({"B, 2, s2"}));
    EXPECT_EQ(engine.commandCount(), 1);
    EXPECT_EQ(engine.currentLine(), 2);
    ASSERT_TRUE(load(u""));
    EXPECT_EQ(memory(), Lines());
    EXPECT_EQ(engine.commandCount(), 0);
    EXPECT_EQ(engine.currentLine(), 0);
}

TEST_F(ScriptParser, FailedLoadDiscardsTheScriptBeforeAsWell) {
    ASSERT_TRUE(load(u"VAR A = 1\nPark()"));
    EXPECT_FALSE(load(u"nonsense"));
    EXPECT_EQ(memory(), Lines());
    EXPECT_EQ(engine.commandCount(), 0);
}

TEST_F(ScriptParser, FailedLoadKeepsWhatWasDeclaredAndBoundUpToTheFailingLine) {
    EXPECT_FALSE(load(u"VAR A = 1\nPark()\nHere:\nSet(A, Missing)\nVAR B = 2\nPark()"));
    EXPECT_EQ(memory(), Lines({"A, 2, s1", "Here, 8, l1", "Missing, 1, i-1"}));
    EXPECT_EQ(engine.commandCount(), 1);
    EXPECT_EQ(engine.currentLine(), 3);
    EXPECT_EQ(owner.lines, Lines({"VariableAdded(\"A\", \"1\")"}));
}

TEST_F(ScriptParser, DataSetRecordIsNotTouchedByLoads) {
    engine.DataSetParameters().Height = 12;
    const clsDataSetParameters* const before = &engine.DataSetParameters();
    ASSERT_TRUE(load(u"Park()"));
    EXPECT_EQ(&engine.DataSetParameters(), before);
    EXPECT_EQ(engine.DataSetParameters().Height, 12);
}

TEST_F(ScriptParser, ErrorCountStartsAnewWithEachLoad) {
    EXPECT_FALSE(load(u"nonsense"));
    EXPECT_EQ(engine.syntaxErrorCount(), 1);
    EXPECT_FALSE(load(u"\nnonsense"));
    EXPECT_EQ(engine.syntaxErrorCount(), 1);
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_EQ(dialogs.messages[1].caption, "Syntax Error on Line 1");
    EXPECT_TRUE(load(u""));
    EXPECT_EQ(engine.syntaxErrorCount(), 0);
}

// Lines

TEST_F(ScriptParser, EndsLinesAtCrLfAndCrLf) {
    struct Case {
        std::u16string_view script;
        Lines lines;
    };
    const Case cases[] = {
        {u";A\r\n;B\r\n", {";A", ";B", ""}},
        {u";A\n\r;B", {";A", "", ";B"}},
        {u";A\n;B", {";A", ";B"}},
        {u";A\r;B", {";A", ";B"}},
        {u";A\r\n;B", {";A", ";B"}},
        {u";A\r\r\n;B", {";A", "", ";B"}},
        {u";A\n\n;B", {";A", "", ";B"}},
        {u";A\r\n\n;B", {";A", "", ";B"}},
        {u";A\n", {";A", ""}},
        {u";A\r", {";A", ""}},
        {u";A", {";A"}},
        {u"\n", {"", ""}},
        {u"\r\n", {"", ""}},
        {u"\n\r", {"", "", ""}},
        {u"\r", {"", ""}},
        {u" ", {""}},
        // No other character ends a line.
        {u";A\v;B\f;C\u0085;D\u2028;E", {";A\v;B\f;C\xC2\x85;D\xE2\x80\xA8;E"}},
    };
    for (const Case& c : cases) {
        Lines expected = {"1 Creating command list from " + std::to_string(c.lines.size()) + " lines"};
        for (std::size_t i = 0; i < c.lines.size(); ++i)
            expected.push_back("1 File Line: " + std::to_string(i) + ":   " +
                               (c.lines[i].empty() ? "Blank" : "Comment Text: '" + c.lines[i] + "'"));
        traceOf(c.script);
        EXPECT_EQ(trace.lines, expected) << toUtf8(c.script);
        EXPECT_EQ(engine.currentLine(), static_cast<std::int32_t>(c.lines.size()));
    }
}

TEST_F(ScriptParser, ReadsAZeroCharacterAsAnyOther) {
    const std::u16string script(u";A\0B\nVAR X\0Y = 1", 16);
    ASSERT_TRUE(load(script));
    ASSERT_EQ(engine.DataMemory().Count(), 2);
    EXPECT_EQ(engine.DataMemory().Item(1).Identifier(), std::u16string_view(u"X\0Y", 3));
}

TEST_F(ScriptParser, TrimsOnlySpacesAndTabs) {
    EXPECT_EQ(traceOf(u" \t ;A \t"), Lines({"1 File Line: 0:   Comment Text: ';A'"}));
    EXPECT_EQ(traceOf(u" \t \t"), Lines({"1 File Line: 0:   Blank"}));
    EXPECT_TRUE(load(u"\t Park() \t"));
    EXPECT_FALSE(load(u"\u00A0Park()"));
    EXPECT_FALSE(load(u"\vPark()"));
    EXPECT_FALSE(load(u"\uFEFFPark()"));  // a byte-order mark is no part of the language
}

TEST_F(ScriptParser, HasNoCommentsAtTheEndOfALine) {
    ASSERT_TRUE(load(u"VAR A = 1 ; one\nENV E = 2 ; two"));
    EXPECT_EQ(memory(), Lines({"A, 4, \" ; on\"", "E, 16, \"2 ; two\""}));
    EXPECT_FALSE(load(u"Park ; and rest"));
    EXPECT_TRUE(load(u"Park() ; ignored with all that follows the bracket"));
}

TEST_F(ScriptParser, ClassifiesLinesInItsOrder) {
    struct Case {
        std::u16string_view line;
        const char* kind;
        bool accepted;
    };
    const Case cases[] = {
        {u"Here:", "Label", true},
        {u"VAR X = 1:", "Label", true},
        {u"CONST X:", "Label", true},
        {u"ENV X = http:", "Label", true},
        {u"Goto(Nowhere):", "Label", true},
        {u"Nonsense:", "Label", true},
        {u":", "Label", true},
        {u"VAR X = \"a:\"", "Variable", true},
        {u"VAR X", "Variable", true},
        {u"VAR  X", "Variable", true},
        {u"VAR \tX", "Variable", true},
        {u"  VAR X = 1", "Variable", true},
        {u"VAR CONST X = 1", "Variable", true},
        {u"CONST X = 1", "Constant", true},
        {u"CONST X", "Constant", false},
        {u"ENV X = 1", "Constant", true},
        {u"ENV X", "Constant", true},
        {u"Park()", "Keyword", true},
        {u"VAR", "Keyword", false},
        {u"VAR ", "Keyword", false},
        {u"CONST", "Keyword", false},
        {u"ENV", "Keyword", false},
        {u"VAR\tX = 1", "Keyword", false},
        {u"CONST\tX = 1", "Keyword", false},
        {u"ENV\tX = 1", "Keyword", false},
        {u"var X = 1", "Keyword", false},
        {u"Const X = 1", "Keyword", false},
        {u"Env X = 1", "Keyword", false},
        {u"VARX = 1", "Keyword", false},
        {u"=", "Keyword", false},
        {u"(", "Keyword", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(load(c.line), c.accepted) << toUtf8(c.line);
        const Lines lines = traceOf(c.line);
        ASSERT_EQ(lines.size(), 2u) << toUtf8(c.line);
        EXPECT_EQ(lines[1], std::string("1    o Line is a ") + c.kind) << toUtf8(c.line);
    }
}

TEST_F(ScriptParser, ACommentThatEndsInAColonIsNoLabel) {
    ASSERT_TRUE(load(u";Here:\n  ; There:"));
    EXPECT_EQ(memory(), Lines());
}

// Variables

TEST_F(ScriptParser, DeclaresVariables) {
    struct Case {
        std::u16string_view line;
        const char* item;
        const char* event;
    };
    const Case cases[] = {
        {u"VAR Count = 0", "Count, 2, s0", "(\"Count\", \"0\")"},
        {u"VAR X", "X, 2, i0", "(\"X\", \"0\")"},
        {u"VAR X =", "X, 2, i0", "(\"X\", \"0\")"},
        {u"VAR X=\t", "X, 2, i0", "(\"X\", \"0\")"},
        {u"VAR X = x", "X, 4, \"\"", "(\"X\", \"\")"},
        {u"VAR X = \"", "X, 4, \"\"", "(\"X\", \"\")"},
        {u"VAR X = \"\"", "X, 4, \"\"", "(\"X\", \"\")"},
        {u"VAR X = \"a=b\"", "X, 4, \"a=b\"", "(\"X\", \"a=b\")"},
        {u"VAR X = a=b", "X, 4, \"=\"", "(\"X\", \"=\")"},
        {u"VAR X = \"Run|Two\"", "X, 4, \"Run\r\nTwo\"", "(\"X\", \"Run\r\nTwo\")"},
        {u"VAR X = |a||b|", "X, 4, \"a\r\n\r\nb\"", "(\"X\", \"a\r\n\r\nb\")"},
        {u"VAR X = 'text'", "X, 4, \"text\"", "(\"X\", \"text\")"},
        {u"VAR X = text", "X, 4, \"ex\"", "(\"X\", \"ex\")"},
        {u"VAR X = \"5\"", "X, 4, \"5\"", "(\"X\", \"5\")"},
        {u"VAR X = \" a \" \t", "X, 4, \" a \"", "(\"X\", \" a \")"},
        {u"VAR = 5", ", 2, s5", "(\"\", \"5\")"},
        {u"VAR =", ", 2, i0", "(\"\", \"0\")"},
        {u"VAR two words = 1", "two words, 2, s1", "(\"two words\", \"1\")"},
        {u"VAR 12 = 1", "12, 2, s1", "(\"12\", \"1\")"},
        {u"VAR \"a=b\" = 1", "\"a=b\", 2, s1", "(\"\"a=b\"\", \"1\")"},
        {u"VAR \"a=1", "\"a=1, 2, i0", "(\"\"a=1\", \"0\")"},
        {u"VAR \tX\t=\t1", "X, 2, s1", "(\"X\", \"1\")"},
        {u"VAR X=1", "X, 2, s1", "(\"X\", \"1\")"},
        {u"VAR X = -7", "X, 2, s-7", "(\"X\", \"-7\")"},
        {u"VAR X = +7", "X, 2, s7", "(\"X\", \"7\")"},
        {u"VAR X = 2.5", "X, 2, s2.5", "(\"X\", \"2.5\")"},
        {u"VAR X = 2,5", "X, 2, s25", "(\"X\", \"25\")"},  // the comma groups digits here
        {u"VAR X = 5-", "X, 2, s-5", "(\"X\", \"-5\")"},
        {u"VAR X = .5", "X, 2, s0.5", "(\"X\", \"0.5\")"},
        {u"VAR X = 16777216", "X, 2, s1.677722E+07", "(\"X\", \"1.677722E+07\")"},
        {u"VAR X = 0.0001", "X, 2, s0.0001", "(\"X\", \"0.0001\")"},
        {u"VAR X = 1e5", "X, 2, s100000", "(\"X\", \"100000\")"},
        {u"VAR X = 1e-10", "X, 2, s1E-10", "(\"X\", \"1E-10\")"},
        {u"VAR X = 1e", "X, 4, \"\"", "(\"X\", \"\")"},
        {u"VAR X = 1.2.3", "X, 4, \".2.\"", "(\"X\", \".2.\")"},
        {u"VAR X = 1 2", "X, 4, \" \"", "(\"X\", \" \")"},
    };
    for (const Case& c : cases) {
        owner.lines.clear();
        EXPECT_TRUE(load(c.line)) << toUtf8(c.line);
        EXPECT_EQ(memory(), Lines({c.item})) << toUtf8(c.line);
        EXPECT_EQ(owner.lines, Lines({std::string("VariableAdded") + c.event})) << toUtf8(c.line);
    }
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ScriptParser, DoesNotLookForAnEarlierVariableOrConstantOfTheName) {
    ASSERT_TRUE(load(u"VAR X = 1\nVAR X = 2\nCONST X = 3\nVAR x = \"four\"\nCONST X = 3"));
    EXPECT_EQ(memory(), Lines({"X, 2, s1", "X, 2, s2", "X, 130, s3", "x, 4, \"four\"", "X, 130, s3"}));
    EXPECT_EQ(owner.lines.size(), 5u);
}

TEST_F(ScriptParser, AStatementBindsTheFirstOfSeveralDeclarations) {
    run(u"VAR X = 1\nVAR X = 2\nSet(x, 5)");
    EXPECT_EQ(show(engine.DataMemory().Item(1).CurrentValue()), "s5");
    EXPECT_EQ(show(engine.DataMemory().Item(2).CurrentValue()), "s2");
}

// Constants

TEST_F(ScriptParser, DeclaresConstants) {
    struct Case {
        std::u16string_view line;
        const char* item;
        const char* event;
    };
    const Case cases[] = {
        {u"CONST Limit = 10", "Limit, 130, s10", "(\"Limit\", \"10\")"},
        {u"CONST Speed = 2.5", "Speed, 130, s2.5", "(\"Speed\", \"2.5\")"},
        {u"CONST X = -2e2", "X, 130, s-200", "(\"X\", \"-200\")"},
        {u"CONST X = \"a=b|c\"", "X, 132, \"a=b\r\nc\"", "(\"X\", \"a=b\r\nc\")"},
        {u"CONST X = x", "X, 132, \"\"", "(\"X\", \"\")"},
        {u"CONST X = \"\"", "X, 132, \"\"", "(\"X\", \"\")"},
        {u"CONST = 5", ", 130, s5", "(\"\", \"5\")"},
        {u"CONST two words=1", "two words, 130, s1", "(\"two words\", \"1\")"},
    };
    for (const Case& c : cases) {
        owner.lines.clear();
        EXPECT_TRUE(load(c.line)) << toUtf8(c.line);
        EXPECT_EQ(memory(), Lines({c.item})) << toUtf8(c.line);
        EXPECT_EQ(owner.lines, Lines({std::string("ConstantAdded") + c.event})) << toUtf8(c.line);
    }
}

TEST_F(ScriptParser, RejectsAConstantWithoutValueButRaisesItsEventAndKeepsItsItem) {
    for (const std::u16string_view line : {u"CONST X", u"CONST X =", u"CONST X = \t"}) {
        owner.lines.clear();
        dialogs.messages.clear();
        EXPECT_FALSE(load(std::u16string(line) + u"\nVAR Y = 1"));
        EXPECT_EQ(memory(), Lines({"X, 1, i0"}));
        EXPECT_EQ(owner.lines, Lines({"ConstantAdded(\"X\", \"0\")"}));
        EXPECT_EQ(onlyMessage(), "Invalid input:\r\n\r\n'" + toUtf8(TrimBlanksAndTabs(line)) + "'");
        EXPECT_EQ(engine.syntaxErrorCount(), 1);
    }
}

// Environment variables

TEST_F(ScriptParser, KeepsAnEnvironmentValueAsWritten) {
    struct Case {
        std::u16string_view line;
        const char* item;
        const char* event;
    };
    const Case cases[] = {
        {u"ENV Operator = \"Ann\"", "Operator, 16, \"\"Ann\"\"", "(\"Operator\", \"\"Ann\"\")"},
        {u"ENV X = 1", "X, 16, \"1\"", "(\"X\", \"1\")"},
        {u"ENV X = 2,50", "X, 16, \"2,50\"", "(\"X\", \"2,50\")"},
        {u"ENV X = a|b", "X, 16, \"a|b\"", "(\"X\", \"a|b\")"},
        {u"ENV X = a=b", "X, 16, \"a=b\"", "(\"X\", \"a=b\")"},
        {u"ENV X =  a b \t", "X, 16, \"a b\"", "(\"X\", \"a b\")"},
        {u"ENV X", "X, 16, \"\"", "(\"X\", \"\")"},
        {u"ENV X =", "X, 16, \"\"", "(\"X\", \"\")"},
        {u"ENV = v", ", 16, \"v\"", "(\"\", \"v\")"},
    };
    for (const Case& c : cases) {
        owner.lines.clear();
        EXPECT_TRUE(load(c.line)) << toUtf8(c.line);
        EXPECT_EQ(memory(), Lines({c.item})) << toUtf8(c.line);
        EXPECT_EQ(owner.lines, Lines({std::string("EnvironmentVariableAdded") + c.event})) << toUtf8(c.line);
    }
}

TEST_F(ScriptParser, ALaterEnvironmentValueWins) {
    ASSERT_TRUE(load(u"ENV X = one\nENV Y = two\nENV x = three"));
    EXPECT_EQ(memory(), Lines({"X, 16, \"three\"", "Y, 16, \"two\""}));
    EXPECT_EQ(owner.lines.size(), 3u);
}

TEST_F(ScriptParser, TellsOfAnEnvironmentVariableUnderTheNameOfItsItem) {
    ASSERT_TRUE(load(u"ENV Operator = one\nENV OPERATOR = two"));
    ASSERT_EQ(owner.lines.size(), 2u);
    EXPECT_EQ(owner.lines[1], "EnvironmentVariableAdded(\"Operator\", \"two\")");
}

TEST_F(ScriptParser, AnEnvironmentVariableIsNoOtherKindOfItem) {
    ASSERT_TRUE(load(u"VAR X = 1\nCONST X = 2\nX:\nENV X = 3"));
    EXPECT_EQ(memory(), Lines({"X, 2, s1", "X, 130, s2", "X, 8, l0", "X, 16, \"3\""}));
}

TEST_F(ScriptParser, AScriptMayRedefineTheFinishLoopFlag) {
    ASSERT_TRUE(load(u"ENV finish_loop_flag = 1"));
    EXPECT_EQ(memory(), Lines());
    const clsData flag = engine.DataMemory().Item(0);
    EXPECT_EQ(toUtf8(flag.Identifier()), "FINISH_LOOP_FLAG");
    EXPECT_EQ(flag.ParameterType(), 16);
    EXPECT_EQ(show(flag.InitialValue()), "\"1\"");
}

TEST_F(ScriptParser, FinishLoopFlagIsTheCurrentValueAsABoolean) {
    ASSERT_TRUE(load(u"ENV FINISH_LOOP_FLAG = 1"));
    EXPECT_FALSE(engine.EnvFinishLoopFlag());  // the current value is still that of a new item
    engine.DataMemory().InitialiseData();
    EXPECT_TRUE(engine.EnvFinishLoopFlag());
    engine.setEnvFinishLoopFlag(false);
    EXPECT_FALSE(engine.EnvFinishLoopFlag());
    EXPECT_EQ(current(u"FINISH_LOOP_FLAG"), "bFalse");
    EXPECT_EQ(initial(u"FINISH_LOOP_FLAG"), "\"1\"");
    engine.setEnvFinishLoopFlag(true);
    EXPECT_EQ(current(u"FINISH_LOOP_FLAG"), "bTrue");
    EXPECT_TRUE(engine.EnvFinishLoopFlag());

    ASSERT_TRUE(load(u"ENV FINISH_LOOP_FLAG = maybe"));
    engine.DataMemory().InitialiseData();
    EXPECT_EQ(errorOf([&] { (void)engine.EnvFinishLoopFlag(); }), 13);
    ASSERT_TRUE(load(u""));
    EXPECT_FALSE(engine.EnvFinishLoopFlag());
}

// Labels

TEST_F(ScriptParser, ALabelHoldsTheNumberOfStatementsBeforeIt) {
    ASSERT_TRUE(load(u"First:\nPark()\nPark()\n\n; comment\nThird:\nAlsoThird:\nVAR X\nPark()\nEnd:"));
    EXPECT_EQ(memory(), Lines({"First, 8, l0", "Third, 8, l2", "AlsoThird, 8, l2", "X, 2, i0", "End, 8, l3"}));
    EXPECT_EQ(engine.commandCount(), 3);
}

TEST_F(ScriptParser, ALabelTurnsTheForwardReferenceIntoItself) {
    ASSERT_TRUE(load(u"VAR Title = \"Run|Two\"\nENV Operator = \"Ann\"\nCONST Speed = 2.5\nGoto(Finish)\nFinish:"));
    EXPECT_EQ(memory(),
              Lines({"Title, 4, \"Run\r\nTwo\"", "Operator, 16, \"\"Ann\"\"", "Speed, 130, s2.5", "Finish, 8, l1"}));
    EXPECT_EQ(owner.lines,
              Lines({"VariableAdded(\"Title\", \"Run\r\nTwo\")", "EnvironmentVariableAdded(\"Operator\", \"\"Ann\"\")",
                     "ConstantAdded(\"Speed\", \"2.5\")"}));
}

TEST_F(ScriptParser, LabelsAreFoundInAnyCaseAndKeepTheNameFirstUsed) {
    ASSERT_TRUE(load(u"Goto(FINISH)\nGoto(finish)\nFinish:\nBack:\nGoto(bACK)"));
    EXPECT_EQ(memory(), Lines({"FINISH, 8, l2", "Back, 8, l2"}));
    ASSERT_TRUE(load(u"Goto(\u00C4nde)\n\u00E4nde:"));
    EXPECT_EQ(memory(), Lines({"\xC3\x84nde, 8, l1"}));
}

TEST_F(ScriptParser, AForwardReferenceIsOneItemForAllStatements) {
    ASSERT_TRUE(load(u"Goto(End)\nCall(End)\nGoto(end)\nEnd:"));
    EXPECT_EQ(memory(), Lines({"End, 8, l3"}));
    for (std::int32_t n = 1; n <= 3; ++n) EXPECT_EQ(engine.Command(n).ParamPtr(0), engine.DataMemory().Item(1));
}

TEST_F(ScriptParser, ALabelNameIsNotTrimmedBeforeItsColon) {
    ASSERT_TRUE(load(u"Loop :"));
    EXPECT_EQ(memory(), Lines({"Loop , 8, l0"}));
    EXPECT_FALSE(load(u"Goto(Loop)\nLoop :"));
    EXPECT_EQ(onlyMessage(), "Undefined Label: Loop");
}

TEST_F(ScriptParser, BlanksAfterTheColonDoNotCount) {
    ASSERT_TRUE(load(u"  Loop: \t\nGoto(Loop)"));
    EXPECT_EQ(memory(), Lines({"Loop, 8, l0"}));
}

TEST_F(ScriptParser, OnlyTheLastColonEndsALabel) {
    ASSERT_TRUE(load(u"a:b::\n:"));
    EXPECT_EQ(memory(), Lines({"a:b:, 8, l0", ", 8, l0"}));
}

TEST_F(ScriptParser, ALabelIsNoVariableOfItsName) {
    ASSERT_TRUE(load(u"VAR X = 1\nX:\nPark()"));
    EXPECT_EQ(memory(), Lines({"X, 2, s1", "X, 8, l0"}));
    EXPECT_FALSE(load(u"VAR X = 1\nX:\nGoto(X)"));  // the variable is found first
    EXPECT_EQ(onlyMessage(), "Incorrect parameter type: 1");
    EXPECT_TRUE(load(u"X:\nVAR X = 1\nGoto(X)"));
}

TEST_F(ScriptParser, ADuplicateLabelIsReportedAndTheFirstStays) {
    ASSERT_TRUE(load(u"Again:\nPark()\nAgain:\nPark()\nVAR X = 1"));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Duplicate Lable Defined: Again");
    EXPECT_EQ(dialogs.messages[0].caption, "Syntax Error on Line 2");
    EXPECT_EQ(memory(), Lines({"Again, 8, l0", "X, 2, s1"}));
    EXPECT_EQ(engine.commandCount(), 2);
    EXPECT_EQ(engine.syntaxErrorCount(), 1);
}

TEST_F(ScriptParser, ADuplicateIsNamedAsTheLineNamesIt) {
    ASSERT_TRUE(load(u"Goto(End)\nPark()\nEnd:\nPark()\neND:"));
    EXPECT_EQ(onlyMessage(), "Duplicate Lable Defined: eND");
    EXPECT_EQ(memory(), Lines({"End, 8, l2"}));
}

TEST_F(ScriptParser, OnlyTheFirstUndefinedLabelIsReportedUnderTheNumberOfLines) {
    EXPECT_FALSE(load(u"Goto(Nowhere)"));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Undefined Label: Nowhere");
    EXPECT_EQ(dialogs.messages[0].caption, "Syntax Error on Line 1");

    dialogs.messages.clear();
    EXPECT_FALSE(load(u"Goto(Here)\nCall(First)\nGoto(Second)\nHere:\n"));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Undefined Label: First");
    EXPECT_EQ(dialogs.messages[0].caption, "Syntax Error on Line 5");
    EXPECT_EQ(engine.syntaxErrorCount(), 1);
    EXPECT_EQ(engine.commandCount(), 3);
    EXPECT_EQ(engine.currentLine(), 5);
}

// Statements

TEST_F(ScriptParser, AppendsStatementsInTheirOrder) {
    ASSERT_TRUE(
        load(u"; fill and count\nVAR Count = 0\nCONST Limit = 10\n\nAgain:\nIncrement(Count)\n"
             u"IfLessThan(Count, Limit, Again)"));
    EXPECT_EQ(memory(), Lines({"Count, 2, s0", "Limit, 130, s10", "Again, 8, l0"}));
    EXPECT_EQ(owner.lines, Lines({"VariableAdded(\"Count\", \"0\")", "ConstantAdded(\"Limit\", \"10\")"}));
    ASSERT_EQ(engine.commandCount(), 2);
    EXPECT_EQ(engine.Command(1).CommandType(), ctIncrement);
    EXPECT_EQ(engine.Command(1).line(), 5);
    EXPECT_EQ(engine.Command(2).CommandType(), ctIfLessThan);
    EXPECT_EQ(engine.Command(2).line(), 6);
    EXPECT_EQ(engine.Command(2).ParamPtr(2), engine.DataMemory().Item(3));
}

TEST_F(ScriptParser, StatementsAreAtPositionsFromOne) {
    ASSERT_TRUE(load(u"Park()\nPark()"));
    for (const std::int32_t position : {-1, 0, 3, 2147483647})
        EXPECT_EQ(errorOf([&] { (void)engine.Command(position); }), 9) << position;
}

TEST_F(ScriptParser, AnUnknownKeywordStopsTheLoad) {
    EXPECT_FALSE(load(u"var Count = 0\nVAR X = 1"));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Invalid input:\r\n\r\n'var Count = 0'");
    EXPECT_EQ(dialogs.messages[0].caption, "Syntax Error on Line 0");
    EXPECT_EQ(dialogs.messages[0].style, 48);
    EXPECT_EQ(dialogs.messages[0].helpFile, "");
    EXPECT_EQ(engine.syntaxErrorCount(), 1);
    EXPECT_EQ(owner.lines, Lines());
    EXPECT_EQ(engine.currentLine(), 0);
}

TEST_F(ScriptParser, TheMessageShowsTheTrimmedLine) {
    EXPECT_FALSE(load(u"\r\n\t NoSuch( 1 ) \t\r\n"));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Invalid input:\r\n\r\n'NoSuch( 1 )'");
    EXPECT_EQ(dialogs.messages[0].caption, "Syntax Error on Line 1");
}

TEST_F(ScriptParser, AKeywordlessBracketIsInvalidInput) {
    for (const std::u16string_view line : {u"(Here)", u"()", u"\"", u"Declare Variable(X)", u"<unknown>"}) {
        dialogs.messages.clear();
        EXPECT_FALSE(load(line)) << toUtf8(line);
        EXPECT_EQ(onlyMessage(), "Invalid input:\r\n\r\n'" + toUtf8(line) + "'");
    }
}

// Messages

TEST_F(ScriptParser, ABadlyBoundStatementShowsItsOwnMessageOnly) {
    struct Case {
        std::u16string_view script;
        const char* message;
        std::int32_t line;
    };
    const Case cases[] = {
        {u"\nGoto()", "Goto requires 1 parameters", 1},
        {u"Return(5)", "Return requires 0 parameters", 0},
        {u"Set(X, 5)\nVAR X = 1", "Undeclared identifier", 0},
        {u"VAR S = \"a\"\nL:\nIfEqual(S, 1, L)", "Incorrect parameter type: 1", 2},
    };
    for (const Case& c : cases) {
        dialogs.messages.clear();
        EXPECT_FALSE(load(c.script)) << toUtf8(c.script);
        EXPECT_EQ(onlyMessage(), c.message);
        EXPECT_EQ(dialogs.messages.at(0).caption, "Syntax Error on Line " + std::to_string(c.line));
        EXPECT_EQ(engine.syntaxErrorCount(), 2) << toUtf8(c.script);  // its own and "Invalid input:"
    }
}

TEST_F(ScriptParser, ShowsOnlyTheFirstErrorOfALoad) {
    EXPECT_FALSE(load(u"A:\nA:\nA:\nGoto(Nowhere)"));
    EXPECT_EQ(onlyMessage(), "Duplicate Lable Defined: A");
    EXPECT_EQ(engine.syntaxErrorCount(), 3);

    dialogs.messages.clear();
    EXPECT_FALSE(load(u"A:\nA:\nnonsense"));
    EXPECT_EQ(onlyMessage(), "Duplicate Lable Defined: A");
    EXPECT_EQ(engine.syntaxErrorCount(), 2);

    dialogs.messages.clear();
    EXPECT_FALSE(load(u"Goto(Nowhere)\nnonsense\nnonsense too"));  // no label is resolved after a bad line
    EXPECT_EQ(onlyMessage(), "Invalid input:\r\n\r\n'nonsense'");
    EXPECT_EQ(engine.syntaxErrorCount(), 1);
}

TEST_F(ScriptParser, SyntaxErrorSharesTheLineAndTheCountOfTheLoad) {
    engine.SyntaxError(u"before any load");
    ASSERT_TRUE(load(u"Park()\nPark()"));
    engine.SyntaxError(u"after it");
    engine.SyntaxError(u"once more");
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_EQ(dialogs.messages[0].text, "before any load");
    EXPECT_EQ(dialogs.messages[0].caption, "Syntax Error on Line 0");
    EXPECT_EQ(dialogs.messages[1].text, "after it");
    EXPECT_EQ(dialogs.messages[1].caption, "Syntax Error on Line 2");
    EXPECT_EQ(engine.syntaxErrorCount(), 2);
}

TEST_F(ScriptParser, AnswersToASyntaxErrorDoNotMatter) {
    for (const std::int32_t answer : {okAnswer, cancelAnswer, noAnswer}) {
        dialogs.messageAnswers = {answer};
        EXPECT_FALSE(load(u"nonsense"));
    }
}

// Events during a load

TEST_F(ScriptParser, RaisesDeclarationsInTheOrderOfTheScript) {
    ASSERT_TRUE(load(u"CONST C = 1\nENV E = 2\nVAR V = 3\nPark()\nL:\nVAR W"));
    EXPECT_EQ(owner.lines, Lines({"ConstantAdded(\"C\", \"1\")", "EnvironmentVariableAdded(\"E\", \"2\")",
                                  "VariableAdded(\"V\", \"3\")", "VariableAdded(\"W\", \"0\")"}));
}

TEST_F(ScriptParser, RaisesADeclarationWhenItsItemIsComplete) {
    owner.onEvent = [&](Event& event) {
        EXPECT_EQ(event.argument("tSucess").boolean(), true);
        const clsData last = engine.DataMemory().Item(engine.DataMemory().Count() - 1);
        EXPECT_EQ(last.Identifier(), event.argument("tIdentifier").textView());
        EXPECT_NE(last.ParameterType(), ptUndeclared);
    };
    ASSERT_TRUE(load(u"VAR A = 1\nVAR B = \"b\"\nCONST C = 1\nCONST D = \"d\"\nENV E = e"));
    EXPECT_EQ(owner.lines.size(), 5u);
}

TEST_F(ScriptParser, RaisesDeclarationsWithSuccessFalse) {
    class Unanswering final : public EngineOwner {
    public:
        int events = 0;
        void raise(Event& event) override {
            ++events;
            EXPECT_EQ(event.count(), 3u);
            EXPECT_FALSE(event.succeeded());
        }
        void CommandComplete(std::int32_t, std::int32_t) override {}
    } unanswering;
    clsCommandList other(unanswering, services);
    EXPECT_TRUE(other.CreateCommandList(u"VAR A\nCONST B = 1\nENV C"));
    EXPECT_EQ(unanswering.events, 3);
}

TEST_F(ScriptParser, IgnoresWhatTheHostWritesIntoADeclaration) {
    owner.onEvent = [](Event& event) {
        event.succeed(false);
        event.answer("tIdentifier", Value::ofText(u"other"));
        event.answer("tValue", Value::ofText(u"99"));
    };
    EXPECT_TRUE(load(u"VAR A = 1\nCONST B = 2\nENV C = 3"));
    EXPECT_EQ(memory(), Lines({"A, 2, s1", "B, 130, s2", "C, 16, \"3\""}));
}

TEST_F(ScriptParser, AHostMayReadAndWriteTheMemoryDuringALoad) {
    owner.onEvent = [&](Event&) {
        clsData item = engine.DataMemory().Item(1);
        item.setIdentifier(u"Renamed");
        item.setInitialValue(Value::ofSingle(42));
    };
    ASSERT_TRUE(load(u"VAR A = 1\nSet(Renamed, 5)"));
    EXPECT_EQ(memory(), Lines({"Renamed, 2, s42", ", 130, s5"}));
}

// Failures during a load

TEST_F(ScriptParser, ATrappedFailureEndsTheLoadWithoutMessage) {
    const std::u16string twentySix = u"SCTestFull(0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0)";
    for (const std::u16string& line :
         {u"VAR X = " + tooLarge, u"CONST X = " + tooLarge, u"VAR X = -" + tooLarge, std::u16string(u"VAR X = 1e39"),
          std::u16string(u"CONST X = 1E+39"), u"WaitTime(" + tooLarge + u", \"wait\")", twentySix}) {
        owner.lines.clear();
        EXPECT_FALSE(load(u"VAR A = 1\nGoto(Nowhere)\n" + line + u"\nVAR B = 2\nnonsense")) << toUtf8(line);
        EXPECT_TRUE(dialogs.messages.empty()) << toUtf8(line);
        EXPECT_EQ(engine.syntaxErrorCount(), 0) << toUtf8(line);
        EXPECT_EQ(engine.currentLine(), 2) << toUtf8(line);
        EXPECT_EQ(engine.commandCount(), 1) << toUtf8(line);
        EXPECT_EQ(owner.lines, Lines({"VariableAdded(\"A\", \"1\")"})) << toUtf8(line);
        ASSERT_GE(memory().size(), 2u);
        EXPECT_EQ(memory()[0], "A, 2, s1");
        EXPECT_EQ(memory()[1], "Nowhere, 1, i-1");
    }
}

TEST_F(ScriptParser, ADeclarationTooLargeKeepsItsNamedItem) {
    EXPECT_FALSE(load(u"VAR X = " + tooLarge));
    EXPECT_EQ(memory(), Lines({"X, 2, i0"}));
    EXPECT_FALSE(load(u"CONST X = " + tooLarge));
    EXPECT_EQ(memory(), Lines({"X, 130, i0"}));
}

TEST_F(ScriptParser, AFailureAfterADuplicateLabelShowsTheDuplicateOnly) {
    EXPECT_FALSE(load(u"A:\nA:\nVAR X = " + tooLarge));
    EXPECT_EQ(onlyMessage(), "Duplicate Lable Defined: A");
}

TEST_F(ScriptParser, TwentyFiveParametersFillEverySlot) {
    EXPECT_TRUE(load(u"SCTestFull(0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\"a\",0,0,0,0,0,0,0)"));
    EXPECT_EQ(memory().size(), 25u);
    EXPECT_FALSE(load(u"SCTestFull(0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\"a\",0,0,0,0,0,0)"));
    EXPECT_EQ(onlyMessage(), "SCTestFull requires 25 parameters");
}

TEST_F(ScriptParser, TheLargestSingleIsStillANumber) {
    ASSERT_TRUE(load(u"VAR X = 3" + std::u16string(38, u'0')));
    EXPECT_EQ(memory(), Lines({"X, 2, s3E+38"}));
}

TEST_F(ScriptParser, TrapsAutomationErrorsAndLackOfMemoryOfASink) {
    owner.onEvent = [](Event&) { throw std::bad_alloc(); };
    EXPECT_FALSE(load(u"VAR X = 1\nnonsense"));
    EXPECT_EQ(memory(), Lines({"X, 2, s1"}));
    owner.onEvent = [](Event&) { throw automation_error(ErrorNumber::TypeMismatch); };
    EXPECT_FALSE(load(u"ENV X = 1\nGoto(Nowhere)"));
    EXPECT_EQ(memory(), Lines({"X, 16, \"1\""}));
    EXPECT_TRUE(dialogs.messages.empty());
    owner.onEvent = nullptr;
    EXPECT_TRUE(load(u"VAR X = 1"));
}

TEST_F(ScriptParser, OtherExceptionsOfASinkPassAndLeaveTheEngineUsable) {
    owner.onEvent = [](Event&) { throw std::runtime_error("the host's own"); };
    EXPECT_THROW(load(u"VAR X = 1\nPark()"), std::runtime_error);
    owner.onEvent = nullptr;
    EXPECT_EQ(engine.commandCount(), 0);
    EXPECT_TRUE(run(u"VAR X = 1\nPark()"));
    EXPECT_TRUE(dialogs.messages.empty());
}

// A load within a load

TEST_F(ScriptParser, RefusesALoadInsideALoad) {
    std::vector<int> errors;
    owner.onEvent = [&](Event&) {
        errors.push_back(errorOf([&] { load(u"Park()"); }));
        class Nobody final : public FaultListener {
            void fault(const ScriptFault&) override {}
        } nobody;
        errors.push_back(errorOf([&] { engine.CheckCommandList(u"Park()", nobody); }));
        try {
            load(u"");
        } catch (const automation_error& error) {
            EXPECT_STREQ(error.what(), "A script is being loaded; another load cannot begin");
        }
    };
    EXPECT_TRUE(load(u"VAR A = 1\nPark()\nVAR B = 2\nPark()"));
    EXPECT_EQ(errors, std::vector<int>({5, 5, 5, 5}));
    EXPECT_EQ(memory(), Lines({"A, 2, s1", "B, 2, s2"}));
    EXPECT_EQ(engine.commandCount(), 2);
    owner.onEvent = nullptr;
    EXPECT_TRUE(load(u"VAR C = 3"));
    EXPECT_EQ(memory(), Lines({"C, 2, s3"}));
}

TEST_F(ScriptParser, ALoadLeavesNothingOfTheScriptBefore) {
    const auto livingAfterALoad = [&] {
        EXPECT_TRUE(load(u"CONST Word = \"word\"\nInfo(Word)"));
        owner.lines = Lines();
        return test::livingAllocations();
    };
    const std::size_t living = livingAfterALoad();
    EXPECT_EQ(livingAfterALoad(), living);
}

TEST_F(ScriptParser, ATrappedErrorTracesNoTables) {
    setDebugOptions(doTables);
    const auto tablesOf = [this](const std::u16string& script) {
        Lines lines = traceOf(script);
        std::erase_if(lines, [](const std::string& line) { return line.front() != '0' + doTables; });
        return lines;
    };
    EXPECT_EQ(tablesOf(u"VAR A = 1\nVAR B = " + tooLarge), Lines());
    EXPECT_NE(tablesOf(u"VAR A = 1\nnonsense"), Lines()) << "a line that is no statement ends the load otherwise";
}

TEST_F(ScriptParser, AnEnvironmentVariableMayBearTheNameOfALabelThatIsYetToCome) {
    EXPECT_TRUE(load(u"Goto(End)\nENV End = far\nEnd:"));
    EXPECT_EQ(memory(), Lines({"End, 8, l1", "End, 16, \"far\""}));
}

TEST_F(ScriptParser, ALoadInsideALoadThatTheHostDoesNotCatchIsATrappedFailure) {
    owner.onEvent = [&](Event&) { load(u"Park()"); };
    EXPECT_FALSE(load(u"VAR A = 1\nVAR B = 2"));
    EXPECT_EQ(memory(), Lines({"A, 2, s1"}));
    EXPECT_TRUE(dialogs.messages.empty());
    owner.onEvent = nullptr;
    EXPECT_TRUE(load(u"VAR A = 1\nVAR B = 2"));
}

TEST_F(ScriptParser, ARunInsideALoadRunsWhatIsBoundSoFar) {
    bool result = false;
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::VariableAdded) result = engine.ExecuteList();
    };
    EXPECT_TRUE(load(u"Info(\"one\")\nVAR A\nInfo(\"two\")"));
    EXPECT_TRUE(result);
    EXPECT_EQ(owner.lines, Lines({"VariableAdded(\"A\", \"0\")", "Info(\"one\")"}));
    EXPECT_EQ(engine.commandCount(), 2);
}

// Locales

TEST_F(ScriptParser, ReadsEitherDecimalMarkUnderACommaLocaleAndWritesTheComma) {
    numbers = NumberLocale::commaDecimal();
    ASSERT_TRUE(
        load(u"VAR A = 2.5\nVAR B = 2,5\nCONST C = -2.5\nCONST D = -2,5\nENV E = 2.5\nENV F = 2,5\n"
             u"VAR G = \"2,5\"\nWaitTime(2.5, \"wait\")"));
    EXPECT_EQ(memory(), Lines({"A, 2, s2.5", "B, 2, s2.5", "C, 130, s-2.5", "D, 130, s-2.5", "E, 16, \"2.5\"",
                               "F, 16, \"2,5\"", "G, 4, \"2,5\"", ", 130, s2.5", ", 132, \"wait\""}));
    EXPECT_EQ(owner.lines,
              Lines({"VariableAdded(\"A\", \"2,5\")", "VariableAdded(\"B\", \"2,5\")", "ConstantAdded(\"C\", \"-2,5\")",
                     "ConstantAdded(\"D\", \"-2,5\")", "EnvironmentVariableAdded(\"E\", \"2.5\")",
                     "EnvironmentVariableAdded(\"F\", \"2,5\")", "VariableAdded(\"G\", \"2,5\")"}));
}

TEST_F(ScriptParser, ReadsAPointUnderAPointLocaleAndGroupsDigitsByTheComma) {
    ASSERT_TRUE(load(u"VAR A = 2.5\nVAR B = 2,5\nCONST C = 1,234.5\nWaitTime(2.5, \"wait\")"));
    EXPECT_EQ(memory(), Lines({"A, 2, s2.5", "B, 2, s25", "C, 130, s1234.5", ", 130, s2.5", ", 132, \"wait\""}));
    EXPECT_EQ(owner.lines, Lines({"VariableAdded(\"A\", \"2.5\")", "VariableAdded(\"B\", \"25\")",
                                  "ConstantAdded(\"C\", \"1234.5\")"}));
}

TEST_F(ScriptParser, ReadsNumbersWithAPointAlikeUnderEitherLocale) {
    const std::u16string_view script =
        u"VAR A = 12345678.9\nVAR B = .5\nVAR C = 5.\nVAR D = 5-\nVAR E = +0.25\nVAR F = -\nVAR G = .\nVAR H = -.\n"
        u"VAR I = 0000000.10\nVAR J = 1e3\nVAR K = 1.2.3\nCONST L = -0.0625\nCONST M = 1-2\n"
        u"WaitTime(-0.125, \"a\")\nWaitTime(.125, \"a\")\nWaitTime(12345678.5, \"a\")";
    ASSERT_TRUE(load(script));
    const Lines expected = {"A, 2, s1.234568E+07", "B, 2, s0.5", "C, 2, s5",   "D, 2, s-5",  "E, 2, s0.25",
                            "F, 4, \"\"",          "G, 4, \"\"", "H, 4, \"\"", "I, 2, s0.1", "J, 2, s1000"};
    const Lines underPoint = memory();
    EXPECT_EQ(Lines(underPoint.begin(), underPoint.begin() + 10), expected);
    numbers = NumberLocale::commaDecimal();
    ASSERT_TRUE(load(script.substr(0, script.find(u"VAR K"))));
    EXPECT_EQ(memory(), expected);
    const std::size_t constant = script.find(u"CONST L");
    ASSERT_TRUE(load(script.substr(constant)));
    EXPECT_EQ(memory(), Lines(underPoint.begin() + 11, underPoint.end()));
}

TEST_F(ScriptParser, ACommaStillSeparatesParametersUnderACommaLocale) {
    numbers = NumberLocale::commaDecimal();
    EXPECT_FALSE(load(u"WaitTime(2,5, \"wait\")"));
    EXPECT_EQ(onlyMessage(), "WaitTime requires 2 parameters");
}

TEST_F(ScriptParser, TracesNumbersInTheLocalesForm) {
    numbers = NumberLocale::commaDecimal();
    setDebugOptions(doParsing | doTables);
    EXPECT_EQ(traceOf(u"WaitTime(2.5, \"a\")"),
              Lines({"1 File Line: 0:   Script Text: 'WaitTime(2.5, \"a\")'", "1    o Line is a Keyword",
                     "1             Data: 2,5", "1             Data: a", "2 0: FINISH_LOOP_FLAG, 16, 0",
                     "2 1: , 130, 2,5", "2 2: , 132, a"}));
}

// Trace

TEST_F(ScriptParser, TracesEveryLineOfALoad) {
    engine.setTraceSink(&trace);
    ASSERT_TRUE(load(u"; count \t\n\n  VAR Count = 0\nCONST Limit = 10\nENV Who = Ann\nAgain:\nIncrement(Count)"));
    EXPECT_EQ(trace.lines,
              Lines({"1 Creating command list from 7 lines", "1 File Line: 0:   Comment Text: '; count'",
                     "1 File Line: 1:   Blank", "1 File Line: 2:   Script Text: 'VAR Count = 0'",
                     "1    o Line is a Variable", "1 File Line: 3:   Script Text: 'CONST Limit = 10'",
                     "1    o Line is a Constant", "1 File Line: 4:   Script Text: 'ENV Who = Ann'",
                     "1    o Line is a Constant", "1 File Line: 5:   Script Text: 'Again:'", "1    o Line is a Label",
                     "1 File Line: 6:   Script Text: 'Increment(Count)'", "1    o Line is a Keyword"}));
}

TEST_F(ScriptParser, TracesUpToTheLineThatStopsTheLoad) {
    EXPECT_EQ(traceOf(u"nonsense\nPark()"),
              Lines({"1 File Line: 0:   Script Text: 'nonsense'", "1    o Line is a Keyword"}));
    EXPECT_EQ(trace.lines[0], "1 Creating command list from 2 lines");
}

TEST_F(ScriptParser, TracesBoundParametersOnlyWithTheParsingOption) {
    const std::u16string_view script = u"VAR X\nSet(X, 5)";
    const std::size_t without = traceOf(script).size();
    setDebugOptions(doTables | doRuntimeResults);
    for (const std::string& line : traceOf(script)) EXPECT_EQ(line.find("Identifier: "), std::string::npos);
    setDebugOptions(doParsing);
    const Lines with = traceOf(script);
    EXPECT_EQ(with.size(), without + 2);
    EXPECT_EQ(Lines(with.end() - 2, with.end()), Lines({"1       Identifier: X", "1             Data: 5"}));
}

TEST_F(ScriptParser, TracesBoundParametersOfRejectedStatementsToo) {
    setDebugOptions(doParsing);
    EXPECT_EQ(traceOf(u"Goto(A, 7)"), Lines({"1 File Line: 0:   Script Text: 'Goto(A, 7)'", "1    o Line is a Keyword",
                                             "1       Identifier: A", "1             Data: 7"}));
}

TEST_F(ScriptParser, DumpsTheIdentifierTableOnlyWithTheTablesOption) {
    const auto tableLines = [&](std::u16string_view script) {
        Lines lines = traceOf(script);
        lines.erase(std::remove_if(lines.begin(), lines.end(), [](const std::string& line) { return line[0] != '2'; }),
                    lines.end());
        return lines;
    };
    EXPECT_EQ(tableLines(u"VAR X = 2.5"), Lines());
    setDebugOptions(doParsing | doRuntimeResults);
    EXPECT_EQ(tableLines(u"VAR X = 2.5"), Lines());
    setDebugOptions(doTables);
    EXPECT_EQ(tableLines(u"VAR X = 2.5\nL:"),
              Lines({"2 0: FINISH_LOOP_FLAG, 16, 0", "2 1: X, 2, 2.5", "2 2: L, 8, 0"}));
    EXPECT_EQ(tableLines(u"VAR X = 2.5\nnonsense"), Lines({"2 0: FINISH_LOOP_FLAG, 16, 0", "2 1: X, 2, 2.5"}));
    EXPECT_EQ(tableLines(u"Goto(Nowhere)"), Lines({"2 0: FINISH_LOOP_FLAG, 16, 0", "2 1: Nowhere, 1, -1"}));
    EXPECT_EQ(trace.lines.back(), "2 1: Nowhere, 1, -1");
}

TEST_F(ScriptParser, SyntaxErrorsAreShownBeforeTheIdentifierTableIsDumped) {
    class Sink final : public TraceSink {
    public:
        explicit Sink(const testing::ScriptedDialogs& dialogs) : dialogs_(dialogs) {}
        std::vector<std::size_t> shown;
        void trace(enumDebugOptions category, std::u16string_view) override {
            if (category == doTables) shown.push_back(dialogs_.messages.size());
        }

    private:
        const testing::ScriptedDialogs& dialogs_;
    } sink(dialogs);
    setDebugOptions(doTables);
    engine.setTraceSink(&sink);
    EXPECT_FALSE(load(u"Goto(Nowhere)"));
    EXPECT_EQ(sink.shown, std::vector<std::size_t>({1, 1}));
}

TEST_F(ScriptParser, LoadsWithoutATraceSinkWhateverTheOptions) {
    setDebugOptions(-1);
    EXPECT_EQ(engine.traceSink(), nullptr);
    EXPECT_TRUE(run(u"VAR X\nSet(X, 5)"));
    engine.setTraceSink(&trace);
    EXPECT_EQ(engine.traceSink(), &trace);
    engine.setTraceSink(nullptr);
    EXPECT_TRUE(run(u"VAR X\nSet(X, 5)"));
    EXPECT_EQ(trace.lines, Lines());
}

// Size and any input

TEST_F(ScriptParser, LoadsAVeryLongScript) {
    constexpr std::int32_t quarter = 50000;
    std::u16string script;
    for (std::int32_t i = 0; i < quarter; ++i) {
        std::u16string number;
        for (const char digit : std::to_string(i)) number += static_cast<char16_t>(digit);
        script.append(u"VAR Variable").append(number).append(u" = ").append(number).append(u"\n");
        script.append(u"Label").append(number).append(u":\r\n");
        script.append(u"Increment(VARIABLE").append(number).append(u")\r");
        script.append(u"Goto(Ahead").append(number).append(u")\n");
    }
    for (std::int32_t i = 0; i < quarter; ++i) {
        script += u"Ahead";
        for (const char digit : std::to_string(i)) script += static_cast<char16_t>(digit);
        script += u":\n";
    }
    ASSERT_TRUE(load(script));
    EXPECT_EQ(engine.currentLine(), 5 * quarter + 1);
    EXPECT_EQ(engine.commandCount(), 2 * quarter);
    EXPECT_EQ(engine.DataMemory().Count(), 1 + 3 * quarter);
    EXPECT_EQ(initial(u"label49999"), "l99998");
    EXPECT_EQ(initial(u"ahead0"), "l100000");
}

TEST_F(ScriptParser, LoadsALineOfAnyLength) {
    const std::u16string longText(1000000, u'x');
    EXPECT_TRUE(load(u";" + longText));
    EXPECT_TRUE(load(u"VAR " + longText + u" = \"" + longText + u"\""));
    EXPECT_TRUE(load(longText + u":"));
    EXPECT_FALSE(load(longText));
    EXPECT_EQ(onlyMessage().size(), 1000000u + 20u);
    EXPECT_FALSE(load(u"Goto(" + std::u16string(1000000, u',') + u")"));
    EXPECT_EQ(engine.syntaxErrorCount(), 2);
}

/// Scripts put together at random from pieces of the language, with some of their characters replaced.
class RandomScripts {
public:
    std::u16string next() {
        static constexpr std::u16string_view pieces[] = {
            u"VAR ",
            u"CONST ",
            u"ENV ",
            u"X",
            u"Y",
            u"Lop",
            u" = ",
            u"1",
            u"2.5",
            u"0,5",
            u"-3",
            u"\"text\"",
            u"\"a|b\"",
            u"\"",
            u"|",
            u":",
            u":\n",
            u"\n",
            u"\r\n",
            u"\r",
            u"\n\r",
            u"\t",
            u" ",
            u";",
            u"(",
            u")",
            u",",
            u"Goto(Lop)\n",
            u"Lop:\n",
            u"Call(Lop)\r\n",
            u"VAR X = 1\n",
            u"VAR Y = \"t\"\n",
            u"CONST C = 2\n",
            u"Increment(X)\n",
            u"Decrement(X)\n",
            u"IfLessThan(X, C, Lop)\n",
            u"IfEqual(X, 1, Lop)\n",
            u"Return\n",
            u"Park()\n",
            u"Info(Y)\n",
            u"Set(X, C)\n",
            u"Set(Y, X)\n",
            u"Set(X, Y)\n",
            u"ConCatString(Y, Y, X)\n",
            u"InputNumber(Y, X, 0, 9)\n",
            u"MsgAsk(Y, Lop)\n",
            u"MathsFunction(Y, X, 1, X, C, 4)\n",
            u"IfNotFinishLoopFlag(Y, Lop)\n",
            u"MsgInfoEx(Y, Y)\n",
            u"ENV FINISH_LOOP_FLAG = 1\n",
            u"WaitTime(X, Y)\n",
            u"InputString(Y, Y, X)\n",
            u"GetDataSet(X, X, C, 0)\n",
            u"1000000000000000000000000000000000000000000",
            u"SCTestFull(",
            u"0,0,0,0,0,0,0,0,0,0,0,0,0",
            u"\0",
            u"\xD800",
            u"\u00E4",
        };
        std::u16string script;
        for (std::size_t count = below(14); count > 0; --count) script += pieces[below(std::size(pieces))];
        if (!script.empty() && below(3) == 0)
            for (std::size_t count = below(6); count > 0; --count)
                script[below(script.size())] = static_cast<char16_t>(below(2) == 0 ? below(128) : below(65536));
        return script;
    }

private:
    std::size_t below(std::size_t limit) { return generator_() % limit; }
    std::mt19937 generator_{20240229};
};

TEST_F(ScriptParser, SurvivesAnyText) {
    RandomScripts scripts;
    testing::RecordingListener listener;
    clsCommandList designed(owner, services, {.designedMemberAccess = true});
    clsCommandList* const engines[] = {&engine, &designed};
    int accepted = 0;
    int rejected = 0;
    int ended = 0;
    int failed = 0;
    for (int i = 0; i < 4000; ++i) {
        const std::u16string script = scripts.next();
        clsCommandList& list = *engines[i % 2];
        numbers = i % 3 == 0 ? NumberLocale::commaDecimal() : NumberLocale::pointDecimal();
        list.setListener(i % 5 == 0 ? &listener : nullptr);
        list.setTraceSink(i % 7 == 0 ? &trace : nullptr);
        setDebugOptions(i % 8);
        dialogs.messageAnswers = {yesAnswer, noAnswer};
        int statements = 0;
        owner.onStep = [&](std::int32_t, std::int32_t) {
            if (++statements >= 40) list.setStopExecution(true);
        };
        ++(list.CreateCommandList(script) ? accepted : rejected);
        // What a rejected load has left behind runs as well.
        ++(errorOf([&] { list.ExecuteList(); }) == 0 ? ended : failed);
        EXPECT_FALSE(list.isRunning());
        EXPECT_LE(statements, 40);
        owner.lines.clear();
        dialogs.messages.clear();
        dialogs.inputs.clear();
        trace.lines.clear();
        listener.lines.clear();
    }
    // The pieces are such that each outcome is common.
    EXPECT_GT(accepted, 200);
    EXPECT_GT(rejected, 200);
    EXPECT_GT(ended, 100);
    EXPECT_GT(failed, 100);
    engine.setListener(nullptr);
    designed.setListener(nullptr);
}

TEST_F(ScriptParser, ADeclaredTextIsWhatTheNumericTestLeavesOfIt) {
    // Beyond any number, so both tests refuse it; the strict one has dropped the comma by then.
    const std::u16string nines(400, u'9');
    ASSERT_TRUE(load(u"VAR X = " + nines + u",\nCONST C = " + nines + u","));
    EXPECT_EQ(item(u"X").InitialValue().textView().size(), 398u);
    EXPECT_EQ(item(u"C").InitialValue().textView().size(), 398u);
}

}  // namespace
}  // namespace corvane
