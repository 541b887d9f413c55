// Tcl, the classic line-oriented command language.

#include <tcl.h>

#include <cstring>
#include <memory>

#include "bench/peer.h"

namespace corvane::bench {
namespace {

Counts counts;

int before(ClientData, Tcl_Interp*, int, Tcl_Obj* const*) {
    ++counts.before;
    return TCL_OK;
}
int after(ClientData, Tcl_Interp*, int, Tcl_Obj* const*) {
    ++counts.after;
    return TCL_OK;
}
int numbers(ClientData, Tcl_Interp*, int, Tcl_Obj* const* values) {
    for (int i = 1; i <= 13; ++i) {
        double number = 0;
        Tcl_GetDoubleFromObj(nullptr, values[i], &number);
        counts.sum += number;
    }
    return TCL_OK;
}
int mixed(ClientData, Tcl_Interp*, int, Tcl_Obj* const* values) {
    for (int i = 1; i <= 25; ++i) {
        if (i == 18 || i > 21) {
            int length = 0;
            Tcl_GetStringFromObj(values[i], &length);
            counts.characters += static_cast<std::size_t>(length);
        } else {
            double number = 0;
            Tcl_GetDoubleFromObj(nullptr, values[i], &number);
            counts.sum += number;
        }
    }
    return TCL_OK;
}

class Interpreter {
public:
    Interpreter() : interpreter_(Tcl_CreateInterp()) {
        for (const auto& [name, function] : {std::pair<const char*, Tcl_ObjCmdProc*>{"before", before},
                                             {"after", after},
                                             {"SCTest", numbers},
                                             {"SCTestFull", mixed}})
            Tcl_CreateObjCommand(interpreter_, name, function, nullptr, nullptr);
    }
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;
    ~Interpreter() { Tcl_DeleteInterp(interpreter_); }

    void run(const std::string& text) {
        if (Tcl_EvalEx(interpreter_, text.data(), static_cast<int>(text.size()), 0) != TCL_OK)
            throw std::runtime_error(Tcl_GetStringResult(interpreter_));
    }

private:
    Tcl_Interp* interpreter_;
};

/// "Name(a, b)" as "Name a b".
std::string commandOf(const std::string& call) {
    std::string command;
    bool quoted = false;
    for (const char c : call) {
        if (c == '"') quoted = !quoted;
        if (!quoted && (c == '(' || c == ','))
            command += ' ';
        else if (quoted || (c != ')' && c != ' '))
            command += c;
    }
    return command;
}

std::string loopOf(const std::string& beforeEach, const std::string& afterEach) {
    return "proc work {} {\nset count 0\nset limit " + std::to_string(turnsOfLoop) + "\nset less 1\nwhile {$less} {\n" +
           beforeEach + "incr count\n" + afterEach + beforeEach + "set less [expr {$count < $limit}]\n" + afterEach +
           "}\n}\n";
}

Workload loop(const std::string& manner, const std::string& text, std::int64_t calls) {
    auto interpreter = std::make_shared<Interpreter>();
    interpreter->run(text);
    return loopWorkload(
        "Tcl/" + manner, counts, [=] { interpreter->run("work"); },
        [calls] { expect(counts.before == calls && counts.after == calls, "natives called"); });
}

Workload statement(const std::string& name, const std::string& call, double sum, std::size_t characters) {
    auto interpreter = std::make_shared<Interpreter>();
    interpreter->run("proc work {} {\nfor {set n 0} {$n < " + std::to_string(turnsOfStatement) + "} {incr n} {\n" +
                     callsInTurn("before\n" + commandOf(call) + "\nafter\n") + "before\nafter\n}\n}\n");
    return statementWorkload(name + "/Tcl", counts, sum, characters, [=] { interpreter->run("work"); });
}

}  // namespace

extern "C" void addWorkloads(std::vector<Workload>& workloads) {
    Tcl_FindExecutable(nullptr);
    workloads.push_back(loop("plain", loopOf("", ""), 0));
    workloads.push_back(loop("natives", loopOf("before\n", "after\n"), statementsOfLoop));
    workloads.push_back(statement("13 numbers", numbersCall(), sumOfNumbersCall, 0));
    workloads.push_back(statement("25 mixed", mixedCall(), sumOfMixedCall, textsOfMixedCall));
    workloads.push_back(makeWorkload<Interpreter>("Tcl", 20));
}

}  // namespace corvane::bench
