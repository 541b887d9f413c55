// Lua 5.4 and LuaJIT: this file is compiled once against each.

#include <cstring>
#include <lua.hpp>
#include <memory>

#include "bench/peer.h"

namespace corvane::bench {
namespace {

#ifdef LUAJIT_VERSION
constexpr const char* system = "LuaJIT";
constexpr std::size_t mostLines = 10'000;  // it takes 65,536 constants in a function
#else
constexpr const char* system = "Lua 5.4";
constexpr std::size_t mostLines = 1'000'000;
#endif

Counts counts;

int before(lua_State*) {
    ++counts.before;
    return 0;
}
int after(lua_State*) {
    ++counts.after;
    return 0;
}
int numbers(lua_State* state) {
    for (int i = 1; i <= 13; ++i) counts.sum += luaL_checknumber(state, i);
    ++counts.calls;
    return 0;
}
int mixed(lua_State* state) {
    for (int i = 1; i <= 25; ++i) {
        if (i == 18 || i > 21) {
            std::size_t length = 0;
            luaL_checklstring(state, i, &length);
            counts.characters += length;
        } else {
            counts.sum += luaL_checknumber(state, i);
        }
    }
    ++counts.calls;
    return 0;
}
int succeed(lua_State*) {
    ++counts.calls;
    return 0;
}

/// Counts lines and nothing else.
void countLine(lua_State*, lua_Debug*) { ++counts.lines; }

/// Learns which script and line it is, as a host does that watches each statement.
void findLine(lua_State* state, lua_Debug* record) {
    lua_getinfo(state, "Sl", record);
    if (record->currentline > 0 && record->source != nullptr) ++counts.lines;
}

class State {
public:
    State() : state_(luaL_newstate()) {
        expect(state_ != nullptr, "no Lua state");
        for (const auto& [name, function] : {std::pair<const char*, lua_CFunction>{"before", before},
                                             {"after", after},
                                             {"SCTest", numbers},
                                             {"SCTestFull", mixed},
                                             {"MoveToHeight", succeed},
                                             {"Info", succeed}}) {
            lua_pushcfunction(state_, function);
            lua_setglobal(state_, name);
        }
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { lua_close(state_); }

    void load(const std::string& text) {
        if (luaL_loadbuffer(state_, text.data(), text.size(), "script") != 0)
            throw std::runtime_error(lua_tostring(state_, -1));
    }
    void run() {
        lua_pushvalue(state_, -1);
        if (lua_pcall(state_, 0, 0, 0) != 0) throw std::runtime_error(lua_tostring(state_, -1));
    }
    lua_State* get() { return state_; }

private:
    lua_State* state_;
};

const Notation notation{
    "Count = 0\nLimit = 0\n",
    [](const std::string& call) { return call; },
    [](const std::string& name) { return "::" + name + "::"; },
    [](const std::string& label) { return "if Count < Limit then goto " + label + " end"; },
};

std::string loopOf(const std::string& beforeEach, const std::string& afterEach) {
    return "local count, limit = 0, " + std::to_string(turnsOfLoop) + "\nlocal less\nrepeat\n" + beforeEach +
           "count = count + 1\n" + afterEach + beforeEach + "less = count < limit\n" + afterEach + "until not less\n";
}

Workload loop(const std::string& manner, const std::string& text, lua_Hook hook, const std::function<void()>& check) {
    auto state = std::make_shared<State>();
    luaL_openlibs(state->get());
    state->load(text);
    const auto run = [=] {
        if (hook != nullptr) lua_sethook(state->get(), hook, LUA_MASKLINE, 0);
        state->run();
        lua_sethook(state->get(), nullptr, 0, 0);
    };
    return loopWorkload(std::string(system) + "/" + manner, counts, run, check);
}

/// A statement a line: what comes before one is what comes after the one ahead of it.
std::string loopOfHook() {
    return "local count, limit = 0, " + std::to_string(turnsOfLoop) +
           "\nrepeat count = count + 1\nuntil count >= limit\n";
}

Workload statement(const std::string& name, const std::string& call, double sum, std::size_t characters) {
    auto state = std::make_shared<State>();
    state->load("local before, after, SCTest, SCTestFull = before, after, SCTest, SCTestFull\nfor n = 1, " +
                std::to_string(turnsOfStatement) + " do\n" + callsInTurn("before()\n" + call + "\nafter()\n") +
                "before() after()\nend\n");
    return statementWorkload(name + "/" + system, counts, sum, characters, [=] { state->run(); });
}

Workload load(const MixSize& size) {
    const std::size_t rounds = 100'000 / size.lines + 1;
    return {loadName(size) + "/" + system, static_cast<std::int64_t>(size.lines * rounds), [=] {
                const std::string text = mixOf(size.lines, size.labels, notation);
                double seconds = 0;
                for (std::size_t round = 0; round < rounds; ++round) {
                    State state;
                    seconds += secondsOf([&] { state.load(text); });
                }
                return seconds;
            }};
}

Workload shortScript() {
    constexpr std::int64_t rounds = 1'000;
    const std::string text = mixOf(linesOfShortScript, 1, notation);
    return {std::string("short script/") + system, rounds, [=] {
                return secondsOf([&] {
                    for (std::int64_t i = 0; i < rounds; ++i) {
                        counts = {};
                        State state;
                        state.load(text);
                        state.run();
                        expect(counts.calls == linesOfShortScript - 2, "short script");
                    }
                });
            }};
}

}  // namespace

extern "C" void addWorkloads(std::vector<Workload>& workloads) {
    const std::int64_t turns = turnsOfLoop;
    const auto nothing = [] {};
    const auto everyLine = [=] { expect(counts.lines >= 2 * turns, "lines hooked"); };
    const auto everyCall = [] {
        expect(counts.before == statementsOfLoop && counts.after == statementsOfLoop, "natives called");
    };
    workloads.push_back(loop("plain", loopOf("", ""), nullptr, nothing));
    workloads.push_back(loop("line hook that counts", loopOfHook(), countLine, everyLine));
    workloads.push_back(loop("line hook that asks where it is", loopOfHook(), findLine, everyLine));
    workloads.push_back(loop("natives", "local before, after = before, after\n" + loopOf("before()\n", "after()\n"),
                             nullptr, everyCall));
#ifdef LUAJIT_VERSION
    // The address of a function of the host's, called by compiled code without the interpreter's stack. Made once: the
    // code is compiled for these very objects.
    static void (*const countBefore)() = [] { ++counts.before; };
    static void (*const countAfter)() = [] { ++counts.after; };
    const auto address = [](void (*const* function)()) {
        return "ffi.cast('void (**)()', " + std::to_string(reinterpret_cast<std::uintptr_t>(function)) + "ULL)[0]";
    };
    workloads.push_back(loop("compiled foreign calls",
                             "if not foreign then\nlocal ffi = require('ffi')\nforeign = {" + address(&countBefore) +
                                 ", " + address(&countAfter) +
                                 "}\nend\nlocal before, after = foreign[1], foreign[2]\n" +
                                 loopOf("before()\n", "after()\n"),
                             nullptr, everyCall));
#endif
    workloads.push_back(statement("13 numbers", numbersCall(), sumOfNumbersCall, 0));
    workloads.push_back(statement("25 mixed", mixedCall(), sumOfMixedCall, textsOfMixedCall));
    for (const MixSize& size : mixSizes)
        if (size.lines <= mostLines) workloads.push_back(load(size));
    workloads.push_back(makeWorkload<State>(system, 1'000));
    workloads.push_back(shortScript());
}

extern "C" void prepareLoad(std::size_t lines, std::function<void()>& load) {
    static State state;
    load = [text = mixOf(lines, 1, notation)] { state.load(text); };
}

}  // namespace corvane::bench
