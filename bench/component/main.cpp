// Measures the component as automation hosts meet it, beside the system's script engines and a plain way to raise
// events, and prints a table of ratios.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

#include "bench/component/event_workload.h"
#include "bench/component/loaded_dll.h"
#include "bench/component/script_peer.h"
#include "bench/component/workload.h"

namespace corvane::bench {
namespace {

// Each round is so short that most of them run without interruption, whatever else the machine does.
constexpr std::size_t rounds = 41;

double nanosecondsOf(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count();
}

/// One workload: a measurement per round, and how many units of work that was.
struct Measurement {
    const char* name;
    std::size_t units;
    std::function<double()> nanoseconds;
    std::vector<double> results{};

    double median() const {
        std::vector<double> sorted = results;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2] / static_cast<double>(units);
    }
};

/// One row of the table: a workload of ours beside another one.
struct Comparison {
    const char* what;
    const char* beside;
    Measurement ours;
    Measurement other;
    double must;
    double stretch;
};

/// An automation text of a host's.
class HostText {
public:
    explicit HostText(std::u16string_view text) : text_(newText(text)) {}
    HostText(const HostText&) = delete;
    HostText& operator=(const HostText&) = delete;
    ~HostText() { SysFreeString(text_); }
    BSTR* address() { return &text_; }

private:
    BSTR text_;
};

/// A control of the real DLL with a host's sink.
class DllHost {
public:
    explicit DllHost(const LoadedDll& dll) : control_(dll.newControl()) {
        const auto container = queryFor<IConnectionPointContainer>(control_.get(), IID_IConnectionPointContainer);
        container->FindConnectionPoint(DIID___clsScriptControl, point_.receive());
        require(SUCCEEDED(point_->Advise(&sink_, &cookie_)), "the sink is not advised");
    }
    DllHost(const DllHost&) = delete;
    DllHost& operator=(const DllHost&) = delete;
    ~DllHost() { point_->Unadvise(cookie_); }

    void load(HostText& text) {
        HostText name(u"bench");
        LONG number = 1;
        VARIANT_BOOL loaded = VARIANT_FALSE;
        control_->LoadScript_FromScript(text.address(), name.address(), &number, &number, &loaded);
        require(loaded != VARIANT_FALSE, "a script is not loaded");
    }
    /// A run that raises so many events.
    void run(std::size_t events) {
        sink_.events = 0;
        VARIANT_BOOL done = VARIANT_FALSE;
        control_->RunScript(&done);
        require(done != VARIANT_FALSE && sink_.events == events, "a script does not run to its end");
    }

private:
    CountingSink sink_;
    ComReference<_clsScriptControl> control_;
    ComReference<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

Measurement timed(const char* name, std::size_t units, std::function<void()> work) {
    return {name, units, [work = std::move(work)] { return nanosecondsOf(work); }};
}

Comparison eventComparison(const char* what, HostEvent kind, double must, double stretch) {
    constexpr std::size_t times = 5000;
    const auto workload = std::make_shared<EventWorkload>(kind);
    return {what,
            "plain delivery",
            timed("ours", times, [workload] { workload->throughRelay(times); }),
            timed("plain", times, [workload] { workload->plainly(times); }),
            must,
            stretch};
}

// What a run costs at its start must not show in its statements.
constexpr std::size_t statementsInTurn = 100;
constexpr std::size_t turns = 20;
constexpr std::size_t statementsInRun = statementsInTurn * turns;

constexpr std::size_t eventsInRun(std::size_t eventsOfStatement) {
    constexpr std::size_t eventsOfLoop = 4;
    return turns * (statementsInTurn * eventsOfStatement + eventsOfLoop);
}

/// A script of one statement over and over, in a control of its own.
std::shared_ptr<DllHost> hostOf(const LoadedDll& dll, const std::u16string& call) {
    auto host = std::make_shared<DllHost>(dll);
    HostText text(looped(call, statementsInTurn, turns));
    host->load(text);
    return host;
}

Measurement dllStatement(LoadedDll& dll, const std::u16string& call, std::size_t events) {
    const auto host = hostOf(dll, call);
    return {"DLL", statementsInRun, [host, &dll, events] {
                dll.use(LoadedDll::Queue::LeftOut);
                const double time = nanosecondsOf([&] { host->run(eventsInRun(events)); });
                dll.use(LoadedDll::Queue::Real);
                return time;
            }};
}

Measurement dllStatementAndYield(LoadedDll& dll, const std::u16string& call) {
    const auto host = hostOf(dll, call);
    dll.use(LoadedDll::Queue::Counted);
    host->run(eventsInRun(3));
    require(LoadedDll::queueCalls() == statementsInRun + 2 * turns, "a statement does not call the queue once");
    dll.use(LoadedDll::Queue::Real);
    return timed("DLL", statementsInRun + 2 * turns, [host] { host->run(eventsInRun(3)); });
}

Measurement bareYield() {
    constexpr std::size_t calls = statementsInRun;
    return timed("PeekMessage", calls, [] {
        MSG message;
        for (std::size_t i = 0; i < calls; ++i) {
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
        }
    });
}

Measurement peerStatement(const char* name, const CLSID& language, const Notation& notation, const std::u16string& call,
                          std::size_t argumentsPerStatement) {
    constexpr std::size_t statements = 200;
    const auto host = std::make_shared<ScriptHost>();
    const auto peer = std::make_shared<ScriptPeer>(language, *host);
    peer->load(repeated(call, statements, notation));
    return timed(name, statements, [host, peer, argumentsPerStatement] {
        host->calls = 0;
        host->arguments = 0;
        peer->work();
        require(host->calls == 3 * statements && host->arguments == argumentsPerStatement * statements,
                "a peer loses calls");
    });
}

constexpr std::size_t loadedLines = 1000;

Measurement dllLoad(const LoadedDll& dll) {
    const auto host = std::make_shared<DllHost>(dll);
    const auto text = std::make_shared<HostText>(mix(loadedLines, scriptNotation));
    return timed("DLL", loadedLines, [host, text] { host->load(*text); });
}

Measurement peerLoad(const char* name, const CLSID& language, const Notation& notation) {
    const auto text = std::make_shared<std::u16string>(mix(loadedLines, notation));
    return {name, loadedLines, [text, &language] {
                ScriptHost host;
                ScriptPeer peer(language, host);
                return nanosecondsOf([&] { peer.load(*text); });
            }};
}

std::vector<Comparison> comparisons(LoadedDll& dll) {
    // Of the statement and the two calls around it.
    constexpr std::size_t ofIncrement = 3;
    constexpr std::size_t ofPark = 2;
    constexpr std::size_t ofNumbers = 15;
    constexpr std::size_t ofMixed = 27;
    std::vector<Comparison> all;
    all.push_back(eventComparison("event, 1 argument", HostEvent::Park, 0.50, 0.25));
    all.push_back(eventComparison("event, 14 arguments", HostEvent::SCTest, 0.75, 0.60));
    all.push_back(eventComparison("event, 26 arguments, 5 of them texts", HostEvent::SCTestFull, 0.35, 0.13));
    struct Statement {
        const char* what;
        const std::u16string& call;
        std::size_t arguments;
        std::size_t events;
    };
    const Statement statements[] = {{"statement `Increment`, yield left out", incrementCall, ofIncrement, 2},
                                    {"statement `Park`, yield left out", parkCall, ofPark, 3},
                                    {"statement `SCTest`, yield left out", numbersCall, ofNumbers, 3},
                                    {"statement `SCTestFull`, yield left out", mixedCall, ofMixed, 3}};
    for (const Statement& row : statements) {
        all.push_back({row.what, "VBScript natives", dllStatement(dll, row.call, row.events),
                       peerStatement("VBScript", vbscript, vbscriptWork, row.call, row.arguments), 0.01, 0.006});
        all.push_back({row.what, "JScript natives", dllStatement(dll, row.call, row.events),
                       peerStatement("JScript", jscript, jscriptWork, row.call, row.arguments), 0.03, 0.018});
    }
    all.push_back({"statement `SCTest` with its yield", "bare `PeekMessage`", dllStatementAndYield(dll, numbersCall),
                   bareYield(), 1.05, 1.02});
    all.push_back(
        {"load, a line", "VBScript, a line", dllLoad(dll), peerLoad("VBScript", vbscript, vbscriptText), 0.15, 0.08});
    all.push_back({"load, a line", "JScript, a line", dllLoad(dll), peerLoad("JScript", jscript, jscriptText), 0, 0});
    return all;
}

void measure(std::vector<Comparison>& all) {
    for (std::size_t round = 0; round <= rounds; ++round) {
        for (Comparison& row : all) {
            for (Measurement* const one : {&row.ours, &row.other}) {
                const double nanoseconds = one->nanoseconds();
                // The first round only warms up.
                if (round != 0) one->results.push_back(nanoseconds);
            }
        }
    }
}

void print(const std::vector<Comparison>& all) {
    std::puts("| What | Ours, ns | Beside | Its ns | Ratio | Must | Stretch |\n|---|---|---|---|---|---|---|");
    for (const Comparison& row : all) {
        const double ours = row.ours.median();
        const double other = row.other.median();
        std::printf("| %s | %.1f | %s | %.1f | %.4f |", row.what, ours, row.beside, other, ours / other);
        if (row.must != 0)
            std::printf(" %g | %g |\n", row.must, row.stretch);
        else
            std::puts(" | |");
    }
}

}  // namespace
}  // namespace corvane::bench

// Given a word: only the rows that bear it.
int main(int count, char** words) {
    using namespace corvane::bench;
    try {
        CoInitialize(nullptr);
        LoadedDll dll(CORVANE_COMPONENT);
        std::vector<Comparison> all = comparisons(dll);
        if (count > 1)
            std::erase_if(all, [&](const Comparison& row) { return std::strstr(row.what, words[1]) == nullptr; });
        measure(all);
        print(all);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_component: %s\n", error.what());
        return 1;
    }
}
