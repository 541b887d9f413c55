#include "host/clsProgramFunctionList.h"

#include <filesystem>
#include <string>
#include <vector>

#include "engine/trace.h"
#include "tests/platform/expect_automation_error.h"
#include "tests/platform/temporary_folder.h"
#include "tests/support/engine_fixture.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

/// Each entry as one line: kind name(parameter|parameter...).
Lines listed(const Reference<FunctionCollection>& functions, std::int32_t from = 1) {
    Lines lines;
    for (std::int32_t i = from; i <= functions->Count(); ++i) {
        const clsProgramFunction& entry = functions->Item(i);
        std::string line = std::to_string(entry.FunctionType) + " " + toUtf8(entry.FunctionName) + "(";
        for (std::int32_t p = 0; p < entry.ParamCount(); ++p) line += (p == 0 ? "" : "|") + toUtf8(entry.Param(p));
        lines.push_back(line + ")");
    }
    return lines;
}

class ProgramFunctionList : public ::testing::Test {
protected:
    NumberLocale numbers = NumberLocale::pointDecimal();
    ScriptedDialogs dialogs;
    CountingPump pump;
    EngineServices services{dialogs, pump, &numbers};
    clsProgramFunctionList list{services};
    Reference<FunctionCollection> functions;

    void TearDown() override { setDebugOptions(0); }

    bool load(std::u16string_view script) { return list.LoadProgramScript_FromDatabase(script, u"name", 1, 1); }

    /// The entries that a run of `script` adds to those of its declarations.
    Lines listing(std::u16string_view script) {
        EXPECT_TRUE(load(script));
        const std::int32_t declarations = list.FunctionList()->Count();
        EXPECT_TRUE(list.CreateFunctionList(functions));
        return listed(functions, declarations + 1);
    }
};

// Entries

TEST(ProgramFunction, GrowsByItsParameters) {
    const Reference<clsProgramFunction> entry = makeReference<clsProgramFunction>();
    EXPECT_EQ(entry->FunctionType, ctUnknown);
    EXPECT_EQ(entry->FunctionName, u"");
    EXPECT_EQ(entry->ParamCount(), 0);
    entry->AddParam(u"first");
    entry->AddParam(u"");
    entry->AddParam(u"    ");
    EXPECT_EQ(entry->ParamCount(), 3);
    EXPECT_EQ(entry->Param(0), u"first");
    EXPECT_EQ(entry->Param(1), u"");
    EXPECT_EQ(entry->Param(2), u"    ");
    entry->DebugPrint(1, true);
    EXPECT_EQ(entry->ParamCount(), 3);
}

TEST(ProgramFunction, RefusesAnIndexOutside) {
    const Reference<clsProgramFunction> entry = makeReference<clsProgramFunction>();
    EXPECT_EQ(errorOf([&] { entry->Param(0); }), 9) << "no parameters at all";
    entry->AddParam(u"only");
    EXPECT_EQ(errorOf([&] { entry->Param(0); }), 0);
    EXPECT_EQ(errorOf([&] { entry->Param(1); }), 9);
    EXPECT_EQ(errorOf([&] { entry->Param(-1); }), 9);
}

TEST(FunctionCollection, CountsFromOne) {
    const Reference<FunctionListing> collection = makeReference<FunctionListing>();
    EXPECT_EQ(collection->Count(), 0);
    EXPECT_EQ(errorOf([&] { collection->Item(1); }), 9);
    const Reference<clsProgramFunction> first = makeReference<clsProgramFunction>();
    collection->Add(first);
    collection->Add(makeReference<clsProgramFunction>());
    EXPECT_EQ(collection->Count(), 2);
    EXPECT_EQ(&collection->Item(1), first.get());
    EXPECT_EQ(errorOf([&] { collection->Item(0); }), 9);
    EXPECT_EQ(errorOf([&] { collection->Item(3); }), 9);
    EXPECT_EQ(errorOf([&] { collection->Item(-2147483647 - 1); }), 9);
}

// Lifecycle

TEST_F(ProgramFunctionList, BeforeALoadThereIsNothing) {
    EXPECT_FALSE(list.ScriptLoaded());
    EXPECT_FALSE(list.FunctionList());
    const Reference<FunctionCollection> own(new FunctionListing);
    functions = own;
    EXPECT_FALSE(list.CreateFunctionList(functions));
    EXPECT_EQ(functions, own) << "left as it is";
}

TEST_F(ProgramFunctionList, HoldsTheDeclarationsInScriptOrderAfterTheLoad) {
    EXPECT_TRUE(load(u"VAR Count = 2.5\nENV Operator = \"Ann\"\nCONST Title = \"a|b\"\nPark()\nVAR Empty"));
    EXPECT_TRUE(list.ScriptLoaded());
    EXPECT_EQ(listed(list.FunctionList()),
              (Lines{"2 Declare Variable(Count|2.5)", "1 Declare Environment Variable(Operator|\"Ann\")",
                     "3 Declare Constant(Title|a\r\nb)", "2 Declare Variable(Empty|0)"}));
}

TEST_F(ProgramFunctionList, AFailedParseKeepsTheDeclarationsAndIsNotRun) {
    EXPECT_FALSE(load(u"VAR A = 1\nPark()\nCONST B\nCONST C = 1"));
    EXPECT_FALSE(list.ScriptLoaded());
    const Lines declarations = {"2 Declare Variable(A|1)", "3 Declare Constant(B|0)"};
    EXPECT_EQ(listed(list.FunctionList()), declarations);
    EXPECT_FALSE(list.CreateFunctionList(functions));
    EXPECT_FALSE(functions);
    EXPECT_EQ(listed(list.FunctionList()), declarations);
    EXPECT_EQ(pump.yields, 0);
}

TEST_F(ProgramFunctionList, HandsOutTheVeryCollectionThatItHolds) {
    EXPECT_TRUE(load(u"VAR A = 1\nPark()"));
    const Reference<FunctionCollection> before = list.FunctionList();
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(functions, list.FunctionList());
    EXPECT_EQ(functions, before);
    EXPECT_EQ(functions->Count(), 2);
}

TEST_F(ProgramFunctionList, ASecondListingIsAppendedToTheFirst) {
    EXPECT_TRUE(load(u"VAR A = 1\nPark()\nMoveIntoVessel(A)\nIncrement(A)"));
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(listed(functions), (Lines{"2 Declare Variable(A|1)", "37 Park()", "40 MoveIntoVessel(1)", "37 Park()",
                                        "40 MoveIntoVessel(1)"}));
}

TEST_F(ProgramFunctionList, ALaterLoadStartsOverAndLeavesWhatWasHandedOut) {
    EXPECT_TRUE(load(u"VAR A = 1\nPark()"));
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_TRUE(load(u"EndTest()"));
    EXPECT_NE(list.FunctionList(), functions);
    EXPECT_EQ(list.FunctionList()->Count(), 0);
    EXPECT_EQ(listed(functions), (Lines{"2 Declare Variable(A|1)", "37 Park()"}));
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(listed(functions), Lines{"47 EndTest()"});
}

TEST_F(ProgramFunctionList, ALaterLoadThatFailsUnloadsTheScript) {
    EXPECT_TRUE(load(u"Park()"));
    EXPECT_FALSE(load(u"nonsense"));
    EXPECT_FALSE(list.ScriptLoaded());
    EXPECT_FALSE(list.CreateFunctionList(functions));
}

TEST_F(ProgramFunctionList, TheListingOutlivesItsMaker) {
    {
        clsProgramFunctionList temporary(services);
        EXPECT_TRUE(temporary.LoadProgramScript_FromDatabase(u"Info(\"kept\")", u"", 0, 0));
        EXPECT_TRUE(temporary.CreateFunctionList(functions));
    }
    EXPECT_EQ(listed(functions), Lines{"19 Info(kept)"});
}

TEST_F(ProgramFunctionList, TurnsTheDebugOptionsOff) {
    setDebugOptions(doParsing | doTables);
    EXPECT_TRUE(load(u"Park()"));
    EXPECT_EQ(debugOptions(), doParsing | doTables);
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(debugOptions(), 0);
}

// Files

TEST_F(ProgramFunctionList, LoadsAFile) {
    const TemporaryFolder folder;
    EXPECT_TRUE(list.LoadProgramScript_FromFile(folder.write("a.script", "CONST C = 1\r\nPark()").u16string()));
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(listed(functions), (Lines{"3 Declare Constant(C|1)", "37 Park()"}));
    EXPECT_FALSE(list.LoadProgramScript_FromFile(folder.write("b.script", "nonsense").u16string()));
    EXPECT_FALSE(list.ScriptLoaded());
}

TEST_F(ProgramFunctionList, AFileThatDoesNotExistIsCreatedEmptyAndCannotBeRun) {
    const TemporaryFolder folder;
    const auto path = folder.path("new.script");
    EXPECT_TRUE(list.LoadProgramScript_FromFile(path.u16string()));
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_TRUE(list.ScriptLoaded());
    EXPECT_EQ(errorOf([&] { list.CreateFunctionList(functions); }), 9);
}

TEST_F(ProgramFunctionList, ErrorsOfALoadPassToTheCaller) {
    const TemporaryFolder folder;
    expectAutomationError([&] { list.LoadProgramScript_FromFile(folder.path("nowhere/a.script").u16string()); },
                          ErrorNumber::PathNotFound, "a.script");
    EXPECT_FALSE(list.ScriptLoaded());
    EXPECT_EQ(list.FunctionList()->Count(), 0) << "the new listing had begun";
}

TEST_F(ProgramFunctionList, ALoadThatEndsInAnErrorLeavesScriptLoadedAndStartsOver) {
    const TemporaryFolder folder;
    EXPECT_TRUE(load(u"VAR A = 1\nPark()"));
    const Reference<FunctionCollection> before = list.FunctionList();
    expectAutomationError([&] { list.LoadProgramScript_FromFile(folder.path("nowhere/a.script").u16string()); },
                          ErrorNumber::PathNotFound, "a.script");
    EXPECT_TRUE(list.ScriptLoaded()) << "only a load that returned assigns it";
    EXPECT_NE(list.FunctionList(), before);
    EXPECT_EQ(list.FunctionList()->Count(), 0);
    EXPECT_EQ(errorOf([&] { list.CreateFunctionList(functions); }), 9) << "the new control has no statement";
    EXPECT_FALSE(functions);
    EXPECT_EQ(before->Count(), 1);
}

TEST_F(ProgramFunctionList, ErrorsOfARunPassToTheCallerAndLeaveTheEntries) {
    EXPECT_TRUE(load(u"VAR N = 1\nPark()\nSet(N, \"x\")\nIncrement(N)\nEndTest()"));
    EXPECT_EQ(errorOf([&] { list.CreateFunctionList(functions); }), 13);
    EXPECT_FALSE(functions);
    EXPECT_EQ(listed(list.FunctionList()), (Lines{"2 Declare Variable(N|1)", "37 Park()"}));
}

// What is recorded

TEST_F(ProgramFunctionList, ListsEveryStatementKindWithItsParameters) {
    const Lines expected = {
        "15 MathsFunction(f|11.5|12|13|14)",
        "17 InputNumber(How many?|11|12.5|5)",
        "18 InputString(Who?|11|old)",
        "19 Info(fact)",
        "20 MsgAsk(Sure?)",
        "21 MsgInfo(note)",
        "22 MsgInfoEx(beep|11|True)",
        "23 WaitTime(11.5|settling)",
        "24 AddAnalysisMacro(macro)",
        "25 AddAnalysisMacroEx(a|b|c|d)",
        "26 AddTestVariable(name|11.5|unit|0)",
        "27 AddDataSetVariable(name|11.5|unit|3)",
        "28 GetDataSet(13.5|11|12|4|0|0|0|0|0)",
        "28 GetDataSet(13.5|11|12|4|2|3|14.5|15|16)",
        "30 RotateForDuration(11|12.5|13|14.5)",
        "31 MoveToHeight(11.5|12|13.5|14.5)",
        "32 CompactToForce(11.5|12.5|13.5|14.5|15)",
        "33 CompactToForceEx(11.5|12|13.5|14|15.5|16.5|17.5|18.5|19)",
        "34 SCTest(11.5|12.5|13|14.5|15.5|16.5|17|18.5|19.5|20.5|21|22|23.5)",
        "35 SCTestEx(11.5|12.5|13.5|14.5|15.5|16.5|17|18.5|19.5|20.5|21.5|22.5|a|b|c|d|27.5|f|g|h)",
        std::string("36 SCTestFull(True|12.5|13.5|False|15.5|16.5|True|False|19.5|20.5|21|22.5|True|24.5|False|True|") +
            "27.5|3,6,9|29.5|30.5|False|a|b|c|d)",
        "37 Park()",
        "38 ShakeBlade(11|-1|-1)",
        "38 ShakeBlade(11|12.5|13.5)",
        "40 MoveIntoVessel(11.5)",
        "41 MoveIntoVesselEx(11.5|12|13)",
        "42 TareWeight()",
        "43 TareWeightEx(11)",
        "44 ChangeBlade(11)",
        "45 ChangeVessel(11)",
        "46 VesselSplit(11)",
        "47 EndTest()",
        "48 SaveData()",
        "49 TextCommand(cmd|a|b|c|d|e|f)",
        "50 AerationControl(11|12.5|a|b|c|d|e)",
        "51 PressureControl(11|12.5|13.5|14.5|15.5|16.5|17|a)",
        "19 Info(block)",
        "7 IfNotFinishLoopFlag(Done?)",
    };
    clsProgramFunctionList designed(services, {.designedMemberAccess = true});
    ASSERT_TRUE(designed.LoadProgramScript_FromDatabase(
        u"VAR N = 5\nVAR M = 5\nVAR S = \"old\"\nGoto(Begin)\nPark()\nBegin:\nCall(Sub)\nGoto(Main)\nSub:\nReturn()\n"
        u"Main:\nIfGreaterThan(1, 2, Never)\nIfLessThan(2, 1, Never)\nIfNotEqual(1, 1, Never)\nIfEqual(1, 2, Never)\n"
        u"Set(M, 4)\nDecrement(M)\nIncrement(M)\n"
        u"MathsFunction(\"f\", M, 11.5, 12, 13, 14)\nConCatString(S, \"ol\", \"d\")\n"
        u"InputNumber(\"How many?\", N, 11, 12.5)\nInputString(\"Who?\", S, 11)\nInfo(\"fact\")\n"
        u"MsgAsk(\"Sure?\", Never)\nMsgInfo(\"note\")\nMsgInfoEx(\"beep\", \"11\")\nWaitTime(11.5, \"settling\")\n"
        u"AddAnalysisMacro(\"macro\")\nAddAnalysisMacroEx(\"a\", \"b\", \"c\", \"d\")\n"
        u"AddTestVariable(\"name\", 11.5, \"unit\")\nAddDataSetVariable(\"name\", 11.5, \"unit\", 3)\n"
        u"GetDataSet(11, 12, 13.5, 4)\nGetDataSetEx(11, 12, 13.5, 4, 2, 3, 14.5, 15, 16)\n"
        u"RotateForDuration(11, 12.5, 13, 14.5)\nMoveToHeight(11.5, 12, 13.5, 14.5)\n"
        u"CompactToForce(11.5, 12.5, 13.5, 14.5, 15)\n"
        u"CompactToForceEx(11.5, 12, 13.5, 14, 15.5, 16.5, 17.5, 18.5, 19)\n"
        u"SCTest(11.5, 12.5, 13, 14.5, 15.5, 16.5, 17, 18.5, 19.5, 20.5, 21, 22, 23.5)\n"
        u"SCTestEx(11.5, 12.5, 13.5, 14.5, 15.5, 16.5, 17, 18.5, 19.5, 20.5, 21.5, 22.5, \"a\", \"b\", \"c\", \"d\", "
        u"27.5, \"f\", \"g\", \"h\")\n"
        u"SCTestFull(1, 12.5, 13.5, 0, 15.5, 16.5, 1, 0, 19.5, 20.5, 21, 22.5, 1, 24.5, 0, 1, 27.5, \"3,6,9\", 29.5, "
        u"30.5, 0, \"a\", \"b\", \"c\", \"d\")\n"
        u"Park()\nShakeBlade(11)\nShakeBladeEx(11, 12.5, 13.5, 14, 15, 16)\nMoveIntoVessel(11.5)\n"
        u"MoveIntoVesselEx(11.5, 12, 13, 14, 15, 16)\nTareWeight()\nTareWeightEx(11, 12, 13, 14, 15, 16)\n"
        u"ChangeBlade(11, 12, 13, 14, 15, 16)\nChangeVessel(11, 12, 13, 14, 15, 16)\n"
        u"VesselSplit(11, 12, 13, 14, 15, 16)\nEndTest()\nSaveData()\n"
        u"TextCommand(\"cmd\", \"a\", \"b\", \"c\", \"d\", \"e\", \"f\")\n"
        u"AerationControl(11, 12.5, \"a\", \"b\", \"c\", \"d\", \"e\")\n"
        u"PressureControl(11, 12.5, 13.5, 14.5, 15.5, 16.5, 17, \"a\")\nBlockStart(\"block\")\n"
        u"IfNotFinishLoopFlag(\"Done?\", End)\nNever:\nPark()\nEnd:",
        u"", 0, 0));
    EXPECT_TRUE(designed.CreateFunctionList(functions));
    EXPECT_EQ(listed(functions, 4), expected);
}

TEST_F(ProgramFunctionList, RecordsOfEachEventItsPublishedPart) {
    struct Row {
        const char* event;
        std::int32_t kind;
        std::int32_t recorded;
    };
    // What no statement raises, and what a listing answers without recording.
    for (const Row& row : {Row{"ShakeBladeEx", 39, 3}, Row{"RequiredFinishLoopFlag", 7, 1}, Row{"FunctionCalled", 0, 0},
                           Row{"KeepGoing", 0, 0}}) {
        const EventRow* const event = findEvent(row.event);
        ASSERT_NE(event, nullptr) << row.event;
        EXPECT_EQ(event->recordedAs, row.kind) << row.event;
        EXPECT_EQ(event->recordedCount, row.recorded) << row.event;
    }
}

TEST_F(ProgramFunctionList, StatementsWithoutAnEventAreNotListed) {
    EXPECT_EQ(
        listing(u"VAR N = 1\nVAR S = \"s\"\nSet(N, 2)\nIncrement(N)\nDecrement(N)\nConCatString(S, N, S)\n"
                u"IfEqual(N, 2, There)\nThere:\nCall(Sub)\nGoto(End)\nSub:\nReturn()\nEnd:\nIfLessThan(1, 0, End)"),
        Lines{});
}

TEST_F(ProgramFunctionList, FollowsThePathOfTheScript) {
    EXPECT_EQ(
        listing(u"VAR N = 0\nAgain:\nMoveToHeight(N, 0, 1, 2)\nIncrement(N)\nIfLessThan(N, 3, Again)\n"
                u"Goto(End)\nPark()\nEnd:\nEndTest()"),
        (Lines{"31 MoveToHeight(0|0|1|2)", "31 MoveToHeight(1|0|1|2)", "31 MoveToHeight(2|0|1|2)", "47 EndTest()"}));
}

TEST_F(ProgramFunctionList, AnAnswerOfTheListingIsNotAValue) {
    EXPECT_EQ(listing(u"VAR N = 5\nVAR S = \"old\"\nInputNumber(\"q\", N, 1, 9)\nInputString(\"q\", S, 9)\n"
                      u"MathsFunction(\"f\", N, 1, 2, 3, 4)\nMoveIntoVessel(N)\nInfo(S)"),
              (Lines{"17 InputNumber(q|1|9|5)", "18 InputString(q|9|old)", "15 MathsFunction(f|1|2|3|4)",
                     "40 MoveIntoVessel(0)", "19 Info(old)"}))
        << "the listing leaves the return of a calculation at 0";
    EXPECT_TRUE(dialogs.inputs.empty());
}

TEST_F(ProgramFunctionList, AQuestionIsNeverAnsweredYes) {
    dialogs.messageAnswers = {yesAnswer};
    EXPECT_EQ(listing(u"MsgAsk(\"q\", There)\nPark()\nThere:\nEndTest()"),
              (Lines{"20 MsgAsk(q)", "37 Park()", "47 EndTest()"}));
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ProgramFunctionList, AParameterOfFourBlanksIsMissing) {
    EXPECT_EQ(listing(u"TextCommand(\"    \", \"a\", \"    \", \"b\", \"\", \"   \", \"     \")"),
              Lines{"49 TextCommand(a|b||   |     )"})
        << "only exactly four blanks are dropped, and those that follow move up";
    const clsProgramFunction& entry = functions->Item(1);
    EXPECT_EQ(entry.ParamCount(), 5);
    EXPECT_EQ(entry.Param(0), u"a");
}

TEST_F(ProgramFunctionList, ADeclarationOfFourBlanksLosesItsValue) {
    EXPECT_TRUE(load(u"VAR S = \"    \"\nVAR T = \"\"\nCONST =  1"));
    EXPECT_EQ(listed(list.FunctionList()),
              (Lines{"2 Declare Variable(S)", "2 Declare Variable(T|)", "3 Declare Constant(|1)"}));
}

TEST_F(ProgramFunctionList, WritesNumbersInTheUsersForm) {
    numbers = NumberLocale::commaDecimal();
    EXPECT_EQ(listing(u"CONST C = 2.5\nMoveIntoVessel(C)\nGetDataSet(0.1, 16777220, 0.0001, 0)"),
              (Lines{"40 MoveIntoVessel(2,5)", "28 GetDataSet(0,0001|0,1|1,677722E+07|0|0|0|0|0|0)"}));
    EXPECT_EQ(listed(functions).at(0), "3 Declare Constant(C|2,5)");
}

// Boxes and messages

TEST_F(ProgramFunctionList, OnlyMsgInfoExShowsItsBoxOnceAStatement) {
    listing(u"MsgInfo(\"a\")\nMsgInfoEx(\"b\", \"16\")\nMsgAsk(\"c\", End)\nMsgInfoEx(\"d\", \"0\")\nEnd:");
    ASSERT_EQ(dialogs.messages.size(), 2U);
    EXPECT_EQ(dialogs.messages[0].text, "b");
    EXPECT_EQ(dialogs.messages[0].style, 16);
    EXPECT_EQ(dialogs.messages[0].caption, "64");
    EXPECT_EQ(dialogs.messages[0].helpFile, "Corvane");
    EXPECT_EQ(dialogs.messages[1].text, "d");
}

TEST_F(ProgramFunctionList, LetsMessagesThroughOnceInEachFunctionCalledAndOnceAStatement) {
    EXPECT_TRUE(load(u"VAR N = 1\nIncrement(N)\nPark()\nEndTest()"));
    EXPECT_EQ(pump.yields, 0) << "not during a load";
    std::vector<std::int32_t> entries;
    pump.onYield = [&] { entries.push_back(list.FunctionList()->Count()); };
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(entries, (std::vector<std::int32_t>{1, 1, 1, 2, 2, 3}))
        << "before the statement is recorded and after it is done";
}

TEST_F(ProgramFunctionList, AFinishLoopTestEndsTheListingWithError438) {
    EXPECT_TRUE(load(u"Park()\nIfNotFinishLoopFlag(\"q\", End)\nEnd:"));
    EXPECT_EQ(errorOf([&] { list.CreateFunctionList(functions); }), 438);
    EXPECT_EQ(listed(list.FunctionList()), Lines{"37 Park()"});
}

// Calls from inside a listing

TEST_F(ProgramFunctionList, ALoadInsideARunningListingEndsTheOldRun) {
    EXPECT_TRUE(load(u"VAR N = 1\nPark()\nMoveIntoVessel(N)\nEndTest()"));
    const Reference<FunctionCollection> old = list.FunctionList();
    pump.onYield = [&] {
        if (pump.yields != 3) return;
        EXPECT_TRUE(load(u"CONST New = 2\nSaveData()"));
    };
    EXPECT_FALSE(list.CreateFunctionList(functions)) << "nobody answers the old run's KeepGoing";
    EXPECT_EQ(listed(old), (Lines{"2 Declare Variable(N|1)", "37 Park()"}));
    EXPECT_EQ(functions, list.FunctionList());
    EXPECT_EQ(listed(functions), Lines{"3 Declare Constant(New|2)"});
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(listed(functions), (Lines{"3 Declare Constant(New|2)", "48 SaveData()"}));
}

TEST_F(ProgramFunctionList, ALoadInTheYieldAfterAStatementStopsTheOldRunAfterItsNextOne) {
    EXPECT_TRUE(load(u"Park()\nMoveIntoVessel(1)\nEndTest()"));
    const Reference<FunctionCollection> old = list.FunctionList();
    pump.onYield = [&] {
        if (pump.yields != 2) return;
        EXPECT_TRUE(load(u"SaveData()"));
    };
    EXPECT_FALSE(list.CreateFunctionList(functions));
    EXPECT_EQ(listed(old), Lines{"37 Park()"});
    EXPECT_EQ(functions->Count(), 0);
}

TEST_F(ProgramFunctionList, AListingInsideAListingIsError5) {
    EXPECT_TRUE(load(u"Park()\nEndTest()"));
    int error = 0;
    pump.onYield = [&] {
        Reference<FunctionCollection> inner;
        if (pump.yields == 1) error = errorOf([&] { list.CreateFunctionList(inner); });
    };
    EXPECT_TRUE(list.CreateFunctionList(functions));
    EXPECT_EQ(error, 5);
    EXPECT_EQ(listed(functions), (Lines{"37 Park()", "47 EndTest()"}));
}

TEST_F(ProgramFunctionList, AListingOfANewScriptMayRunInsideTheOldOne) {
    EXPECT_TRUE(load(u"Park()\nEndTest()"));
    Reference<FunctionCollection> inner;
    pump.onYield = [&] {
        if (pump.yields != 1) return;
        EXPECT_TRUE(load(u"SaveData()"));
        EXPECT_TRUE(list.CreateFunctionList(inner));
    };
    EXPECT_FALSE(list.CreateFunctionList(functions));
    EXPECT_EQ(listed(inner), Lines{"48 SaveData()"});
    EXPECT_EQ(functions, inner);
}

}  // namespace
}  // namespace corvane::testing
