// The engine itself, with a host that does what the peers' hosts do: it is called before and after each statement and
// once more where the message loop is let through, counts, and reads every argument of what it is asked to do.

#include "bench/corvane.h"

#include <memory>

#include "bench/scripts.h"
#include "engine/clsCommandList.h"
#include "platform/utf8.h"

namespace corvane::bench {
namespace {

double sumOfNumbers(const Event& event) {
    const auto single = [&](std::size_t i) -> double { return event.argument(i).single(); };
    const auto integer = [&](std::size_t i) -> double { return event.argument(i).longInteger(); };
    return single(0) + single(1) + integer(2) + single(3) + single(4) + single(5) + integer(6) + single(7) + single(8) +
           single(9) + integer(10) + integer(11) + single(12);
}

double sumOfMixed(const Event& event) {
    const auto single = [&](std::size_t i) -> double { return event.argument(i).single(); };
    const auto truth = [&](std::size_t i) -> double { return event.argument(i).boolean() ? 1 : 0; };
    return truth(0) + single(1) + single(2) + truth(3) + single(4) + single(5) + truth(6) + truth(7) + single(8) +
           single(9) + event.argument(10).longInteger() + single(11) + truth(12) + single(13) + truth(14) + truth(15) +
           single(16) + single(18) + single(19) + truth(20);
}

std::size_t charactersOfMixed(const Event& event) {
    std::size_t characters = event.argument(17).textView().size();
    for (std::size_t i = 21; i < 25; ++i) characters += event.argument(i).textView().size();
    return characters;
}

class Host final : public EngineOwner, public MessagePump {
public:
    void raise(Event& event) override {
        switch (event.id()) {
            case HostEvent::FunctionCalled: ++before; break;
            case HostEvent::SCTest: sum += sumOfNumbers(event); break;
            case HostEvent::SCTestFull:
                sum += sumOfMixed(event);
                characters += charactersOfMixed(event);
                break;
            default: break;
        }
        event.succeed();
    }
    void CommandComplete(std::int32_t, std::int32_t) override {
        if (++after == last) engine->setStopExecution(true);
    }
    void yield() override { ++yields; }

    std::int64_t before = 0;
    std::int64_t after = 0;
    std::int64_t yields = 0;
    double sum = 0;
    std::size_t characters = 0;
    std::int64_t last = -1;
    clsCommandList* engine = nullptr;
};

class Instrument {
public:
    Instrument() { host.engine = &engine; }
    void load(const std::u16string& text) { expect(engine.CreateCommandList(text), "the script was refused"); }

    Host host;
    NoOperator nobody;
    NumberLocale numbers = NumberLocale::pointDecimal();
    clsCommandList engine{host, EngineServices{nobody, host, &numbers}};
};

const Notation notation{
    "VAR Count = 0\nCONST Limit = 0\n",
    [](const std::string& call) { return call; },
    [](const std::string& name) { return name + ":"; },
    [](const std::string& label) { return "IfLessThan(Count, Limit, " + label + ")"; },
};

Workload loop() {
    auto instrument = std::make_shared<Instrument>();
    instrument->load(u"VAR Count = 0\nCONST Limit = " + fromUtf8(std::to_string(turnsOfLoop)) +
                     u"\nAgain:\nIncrement(Count)\nIfLessThan(Count, Limit, Again)\n");
    constexpr std::int64_t statements = 2 * static_cast<std::int64_t>(turnsOfLoop);
    return {"loop/corvane", statements, [instrument] {
                Host& host = instrument->host;
                host.before = host.after = host.yields = 0;
                const double seconds = secondsOf([&] { instrument->engine.ExecuteList(); });
                expect(host.before == statements && host.after == statements && host.yields == statements, "loop");
                return seconds;
            }};
}

Workload statement(const std::string& name, const std::string& call, double sum, std::size_t characters) {
    auto instrument = std::make_shared<Instrument>();
    instrument->load(fromUtf8("Again:\n" + callsInTurn(call + "\n") + "Goto(Again)\n"));
    return {name, static_cast<std::int64_t>(callsOfStatement), [=] {
                Host& host = instrument->host;
                host.sum = 0;
                host.characters = 0;
                host.after = 0;
                host.last = static_cast<std::int64_t>(callsOfStatement + turnsOfStatement);
                const double seconds = secondsOf([&] { instrument->engine.ExecuteList(); });
                expect(host.sum == sum * static_cast<double>(callsOfStatement), name);
                expect(host.characters == characters * callsOfStatement, name);
                return seconds;
            }};
}

Workload load(const MixSize& size) {
    const std::size_t rounds = 100'000 / size.lines + 1;
    return {loadName(size) + "/corvane", static_cast<std::int64_t>(size.lines * rounds), [=] {
                const std::u16string text = fromUtf8(mixOf(size.lines, size.labels, notation));
                double seconds = 0;
                for (std::size_t round = 0; round < rounds; ++round) {
                    Instrument instrument;
                    seconds += secondsOf([&] { instrument.load(text); });
                }
                return seconds;
            }};
}

Workload make() {
    constexpr std::int64_t engines = 10'000;
    return {"make and destroy/corvane", engines, [] {
                return secondsOf([] {
                    for (std::int64_t i = 0; i < engines; ++i) const Instrument instrument;
                });
            }};
}

Workload shortScript() {
    constexpr std::int64_t rounds = 1'000;
    const std::u16string text = fromUtf8(mixOf(linesOfShortScript, 1, notation));
    return {"short script/corvane", rounds, [=] {
                return secondsOf([&] {
                    for (std::int64_t i = 0; i < rounds; ++i) {
                        Instrument instrument;
                        instrument.load(text);
                        instrument.engine.ExecuteList();
                        expect(instrument.host.after == linesOfShortScript - 1, "short script");
                    }
                });
            }};
}

}  // namespace

void addCorvane(std::vector<Workload>& workloads) {
    workloads.push_back(loop());
    workloads.push_back(statement("13 numbers/corvane", numbersCall(), sumOfNumbersCall, 0));
    workloads.push_back(statement("25 mixed/corvane", mixedCall(), sumOfMixedCall, textsOfMixedCall));
    for (const MixSize& size : mixSizes) workloads.push_back(load(size));
    workloads.push_back(make());
    workloads.push_back(shortScript());
}

void prepareCorvane(std::size_t lines, std::function<void()>& load) {
    static Instrument instrument;
    load = [text = fromUtf8(mixOf(lines, 1, notation))] { instrument.load(text); };
}

}  // namespace corvane::bench
