// Hosts that call in, let go, load, run, advise and unadvise while they are being called.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <utility>

#include "host/com/clsScriptControl_com.h"
#include "tests/com/held_sink.h"

namespace corvane::testing {
namespace {

using Events = std::vector<DISPID>;

/// A host with one control and one sink, which does something strange once, in the first event of a kind.
class Lifetimes : public ComponentTest {
protected:
    int living = 0;
    ComReference<_clsScriptControl> control = newControl();
    Events events;
    Events undisturbed;  ///< what a host is told that only answers
    int acted = 0;

    void SetUp() override {
        ComponentTest::SetUp();
        EXPECT_EQ(performActingIn(37, [] {}), (RunResult{S_OK, VARIANT_TRUE}));
        undisturbed = std::exchange(events, {});
        acted = 0;
        control = newControl();
    }
    void TearDown() override {
        control = {};
        EXPECT_EQ(living, 0) << "sinks that nobody released";
        ComponentTest::TearDown();
    }

    /// The sink's handler: everything is answered, and `act` is called in the first event `when`.
    Sink::Handler actingIn(DISPID when, std::function<void()> act) {
        return [this, when, act = std::move(act)](DISPID event, DISPPARAMS& arguments) {
            events.push_back(event);
            if (event == when && acted++ == 0) act();
            answer(event, arguments);
            return S_OK;
        };
    }

    /// Loads and runs the script with every event on a fresh control whose sink acts in `when`; the run's end.
    RunResult performActingIn(DISPID when, std::function<void()> act) {
        control = newControl();
        events.clear();
        acted = 0;
        adviseHeld(*control.get(), living, actingIn(when, std::move(act)));
        EXPECT_TRUE(load(*control.get(), everyEventScript));
        const RunResult ended = control ? run(*control.get()) : RunResult{};
        EXPECT_EQ(acted > 0, true) << rowOf(when).name << " was not raised";
        return ended;
    }
};

constexpr RunResult ranToItsEnd{S_OK, VARIANT_TRUE};

TEST_F(Lifetimes, TheLastReferenceMayGoInsideEachEvent) {
    for (const DISPID when : scriptEvents) {
        const RunResult ended = performActingIn(when, [this] { control = {}; });
        if (!isDeclaration(when)) {
            EXPECT_EQ(ended, ranToItsEnd) << rowOf(when).name;
            EXPECT_EQ(events, undisturbed);
        }
        EXPECT_EQ(living, 0) << "the control did not go with the call";
        EXPECT_EQ(canUnloadNow(), S_OK) << rowOf(when).name;
    }
}

TEST_F(Lifetimes, ASinkMayUnadviseItselfAndLetEverythingGo) {
    for (const DISPID when : scriptEvents) {
        control = newControl();
        acted = 0;
        DWORD cookie = 0;
        cookie = adviseHeld(*control.get(), living, actingIn(when, [&] {
            EXPECT_EQ(connectionPointOf(*control.get())->Unadvise(cookie), S_OK);
            control = {};
        }));
        EXPECT_TRUE(load(*control.get(), everyEventScript));
        if (control) {
            EXPECT_EQ(run(*control.get()).result, S_OK);
        }
        EXPECT_EQ(living, 0);
        EXPECT_EQ(canUnloadNow(), S_OK) << rowOf(when).name;
    }
}

TEST_F(Lifetimes, ALoadInsideARunIsTakenOverAtTheSamePlace) {
    for (const DISPID when : scriptEvents) {
        if (isDeclaration(when)) continue;
        const RunResult ended = performActingIn(when, [this] { EXPECT_TRUE(load(*control.get(), everyEventScript)); });
        EXPECT_EQ(ended, ranToItsEnd) << rowOf(when).name;
        // The second load's declarations, and otherwise the same.
        Events expected = undisturbed;
        expected.insert(std::find(expected.begin(), expected.end(), when) + 1, {38, 39, 40, 40});
        EXPECT_EQ(events, expected) << rowOf(when).name;
    }
}

TEST_F(Lifetimes, ALoadOfAShorterScriptInsideARunEndsIt) {
    for (const DISPID when : scriptEvents) {
        if (isDeclaration(when)) continue;
        const RunResult ended = performActingIn(when, [this] { EXPECT_TRUE(load(*control.get(), u"VAR X = 1")); });
        // After KeepGoing the next statement is fetched, and there is none.
        const RunResult expected = when == 37 ? RunResult{automationError(9), VARIANT_FALSE} : ranToItsEnd;
        EXPECT_EQ(ended, expected) << rowOf(when).name;
        EXPECT_TRUE(load(*control.get(), everyEventScript));
        EXPECT_EQ(run(*control.get()), ranToItsEnd) << "the object is usable";
    }
}

TEST_F(Lifetimes, ALoadInsideALoadIsRefused) {
    for (const DISPID when : {38, 39, 40}) {
        const RunResult ended = performActingIn(when, [this] {
            HostText script(u"Park()");
            LONG number = 0;
            VARIANT_BOOL result = VARIANT_TRUE;
            EXPECT_EQ(control->LoadScript_FromScript(script.address(), script.address(), &number, &number, &result),
                      automationError(5));
            EXPECT_EQ(result, VARIANT_FALSE);
            EXPECT_EQ(takeError().description, "A script is being loaded; another load cannot begin");
        });
        EXPECT_EQ(ended, ranToItsEnd);
        EXPECT_EQ(events, undisturbed);
    }
}

TEST_F(Lifetimes, ARunInsideARunIsRefused) {
    for (const DISPID when : scriptEvents) {
        const RunResult ended = performActingIn(when, [this, when] {
            // During the load there is no statement yet.
            EXPECT_EQ(run(*control.get()).result, automationError(isDeclaration(when) ? 9 : 5));
        });
        EXPECT_EQ(ended, ranToItsEnd) << rowOf(when).name;
        EXPECT_EQ(events, undisturbed);
    }
}

TEST_F(Lifetimes, ARunInsideALoadRunsWhatIsLoadedSoFar) {
    RunResult inner;
    adviseHeld(*control.get(), living, actingIn(40, [&] { inner = run(*control.get()); }));
    EXPECT_TRUE(load(*control.get(), u"Park()\r\nVAR X = 1\r\nSaveData()"));
    EXPECT_EQ(inner, ranToItsEnd);
    EXPECT_EQ(run(*control.get()), ranToItsEnd);
    EXPECT_EQ(events, (Events{40, 41, 22, 37, 41, 22, 37, 41, 32, 37}));
}

TEST_F(Lifetimes, TheDataMemoryMayBeEditedInsideEachEvent) {
    for (const DISPID when : scriptEvents) {
        const RunResult ended = performActingIn(when, [this] {
            LONG first = 0;
            LONG behind = 1000;
            float value = 3;
            VARIANT_BOOL result = VARIANT_FALSE;
            EXPECT_EQ(control->EditDataVariable(&first, &value, &result), S_OK);
            EXPECT_EQ(result, VARIANT_TRUE);
            EXPECT_EQ(control->EditDataVariable(&behind, &value, &result), automationError(5));
            EXPECT_EQ(control->FinishLoopFlag(), S_OK);
        });
        EXPECT_EQ(ended, ranToItsEnd) << rowOf(when).name;
        EXPECT_EQ(events, undisturbed);
        HostText flag(u"FINISH_LOOP_FLAG");
        BSTR value = nullptr;
        EXPECT_EQ(control->GetEnvironmentVariable(flag.address(), &value), S_OK);
        EXPECT_EQ(taken(value), u"3");
    }
}

TEST_F(Lifetimes, ASecondControlMayLiveInsideEachEvent) {
    for (const DISPID when : scriptEvents) {
        int second = 0;
        const RunResult ended = performActingIn(when, [&] {
            const ComReference<_clsScriptControl> another = newControl();
            adviseHeld(*another.get(), living, [&](DISPID event, DISPPARAMS& arguments) {
                ++second;
                answer(event, arguments);
                return S_OK;
            });
            EXPECT_TRUE(load(*another.get(), everyEventScript));
            EXPECT_EQ(run(*another.get()), ranToItsEnd);
        });
        EXPECT_EQ(ended, ranToItsEnd) << rowOf(when).name;
        EXPECT_EQ(second, static_cast<int>(undisturbed.size()));
        EXPECT_EQ(events, undisturbed);
        EXPECT_EQ(living, 1) << "the second control's sink went with it";
    }
}

/// The side of a facade that its engine sees.
EngineOwner& engineSide(clsScriptControl& facade) { return (EngineOwner&)facade; }

TEST_F(Lifetimes, TheEventsThatNoScriptRaisesAreAsSafe) {
    DWORD cookie = 0;
    const std::function<void()> acts[] = {
        [] {},
        [this] { control = {}; },
        [this, &cookie] {
            EXPECT_EQ(connectionPointOf(*control.get())->Unadvise(cookie), S_OK);
            control = {};
        },
        [this] { EXPECT_TRUE(load(*control.get(), u"Park()\r\nPark()")); },
        [this] { EXPECT_EQ(run(*control.get()).result, automationError(5)); },
        [this] {
            LONG first = 0;
            float value = 3;
            VARIANT_BOOL result = VARIANT_FALSE;
            EXPECT_EQ(control->EditDataVariable(&first, &value, &result), S_OK);
            EXPECT_EQ(control->FinishLoopFlag(), S_OK);
        },
        [this] {
            const ComReference<_clsScriptControl> another = newControl();
            adviseHeld(*another.get(), living, {});
            EXPECT_TRUE(load(*another.get(), u"Park()"));
            EXPECT_EQ(run(*another.get()), ranToItsEnd);
        },
    };
    const std::vector<Value> promptOnly = {Value::ofText(u"Done?")};
    const std::vector<Value> shake = {Value::ofLong(3), Value::ofSingle(1), Value::ofSingle(2),
                                      Value::ofLong(4), Value::ofLong(5),   Value::ofLong(6)};
    for (const HostEvent raised : {HostEvent::RequiredFinishLoopFlag, HostEvent::ShakeBladeEx}) {
        for (const std::function<void()>& act : acts) {
            control = newControl();
            acted = 0;
            int raises = 0;
            clsScriptControl& facade = facadeOf(*control.get());
            const Sink::Handler handler = actingIn(static_cast<DISPID>(raised), act);
            cookie = adviseHeld(*control.get(), living, [&](DISPID event, DISPPARAMS& arguments) {
                if (event == 22 && raises++ == 0) {
                    Event inner(raised, raised == HostEvent::ShakeBladeEx ? shake : promptOnly);
                    engineSide(facade).raise(inner);
                    EXPECT_TRUE(inner.succeeded());
                }
                return handler(event, arguments);
            });
            EXPECT_TRUE(load(*control.get(), u"Park()\r\nPark()"));
            EXPECT_EQ(run(*control.get()).result, S_OK);
            EXPECT_EQ(acted, 1) << rowOf(static_cast<DISPID>(raised)).name;
            control = {};
            EXPECT_EQ(living, 0);
            EXPECT_EQ(canUnloadNow(), S_OK);
        }
    }
}

// ------------------------------------------------------------------------------- advising and unadvising on the way

/// Sinks by name on one control; each event Park is told as the names of those it reached.
class AdvisingInside : public Lifetimes {
protected:
    std::string reached;
    std::map<char, DWORD> cookies;
    std::function<void(char)> act;  // once

    void advise(char name) {
        cookies[name] = adviseHeld(*control.get(), living, [this, name](DISPID event, DISPPARAMS& arguments) {
            Sink::succeed(event, arguments);
            if (event != 22) return S_OK;
            reached += name;
            if (act) std::exchange(act, nullptr)(name);
            return S_OK;
        });
    }
    HRESULT unadvise(char name) { return connectionPointOf(*control.get())->Unadvise(cookies.at(name)); }
    /// Whom two Park events reach when the first sink of the first event does this.
    std::string reachedWhen(std::function<void(char)> action) {
        for (const char name : {'a', 'b', 'c'}) advise(name);
        act = std::move(action);
        EXPECT_TRUE(load(*control.get(), u"Park()\r\nWaitTime(1, \"-\")\r\nPark()"));
        RunResult ended = run(*control.get());
        EXPECT_EQ(ended.result, S_OK);
        return reached;
    }
};

TEST_F(AdvisingInside, UndisturbedAllAreReached) {
    EXPECT_EQ(reachedWhen([](char) {}), "abcabc");
}

TEST_F(AdvisingInside, ANewSinkIsReachedFromTheNextEventOn) {
    EXPECT_EQ(reachedWhen([this](char) { advise('d'); }), "abcabcd");
}

TEST_F(AdvisingInside, AnUnadvisedSinkIsNotReachedAnyMore) {
    EXPECT_EQ(reachedWhen([this](char) { EXPECT_EQ(unadvise('b'), S_OK); }), "acac");
    EXPECT_EQ(living, 2);
}

TEST_F(AdvisingInside, ASinkMayUnadviseItself) {
    EXPECT_EQ(reachedWhen([this](char self) {
                  EXPECT_EQ(unadvise(self), S_OK);
                  EXPECT_EQ(unadvise(self), CONNECT_E_NOCONNECTION);
                  EXPECT_EQ(living, 3) << "it lives as long as it is being called";
              }),
              "abcbc");
    EXPECT_EQ(living, 2);
}

TEST_F(AdvisingInside, ASinkAdvisedAnewStandsLastAndWaitsForTheNextEvent) {
    EXPECT_EQ(reachedWhen([this](char self) {
                  EXPECT_EQ(unadvise(self), S_OK);
                  advise(self);
              }),
              "abcbca");
}

TEST_F(AdvisingInside, AllMayGo) {
    EXPECT_EQ(reachedWhen([this](char) {
                  for (const char name : {'c', 'a', 'b'}) EXPECT_EQ(unadvise(name), S_OK);
              }),
              "a");
    EXPECT_EQ(living, 0);
}

TEST_F(AdvisingInside, AnExchangeOfAllSinksTakesEffectAtTheNextEvent) {
    EXPECT_EQ(reachedWhen([this](char) {
                  for (const char name : {'a', 'b', 'c'}) EXPECT_EQ(unadvise(name), S_OK);
                  advise('x');
                  advise('y');
              }),
              "axy");
}

// -------------------------------------------------------------------------------------- objects that outlive others

TEST_F(Lifetimes, TheConnectionPointKeepsItsControl) {
    adviseHeld(*control.get(), living, actingIn(22, [] {}));
    ASSERT_TRUE(load(*control.get(), u"Park()"));
    ComReference<IConnectionPoint> point = connectionPointOf(*control.get());
    control = {};
    EXPECT_EQ(living, 1);
    EXPECT_EQ(canUnloadNow(), S_FALSE);
    ComReference<IConnectionPointContainer> container;
    ASSERT_EQ(point->GetConnectionPointContainer(container.receive()), S_OK);
    point = {};
    control = queryFor<_clsScriptControl>(container.get(), IID__clsScriptControl);
    container = {};
    EXPECT_EQ(run(*control.get()), ranToItsEnd);
    EXPECT_EQ(events, (Events{41, 22, 37}));
}

TEST_F(Lifetimes, AnEnumerationOfConnectionsKeepsItsSinksOnly) {
    adviseHeld(*control.get(), living, {});
    ComReference<IEnumConnections> connections;
    ASSERT_EQ(connectionPointOf(*control.get())->EnumConnections(connections.receive()), S_OK);
    control = {};
    EXPECT_EQ(living, 1);
    EXPECT_EQ(canUnloadNow(), S_FALSE);
    CONNECTDATA connection{};
    EXPECT_EQ(connections->Next(1, &connection, nullptr), S_OK);
    connections = {};
    EXPECT_EQ(living, 1);
    EXPECT_EQ(canUnloadNow(), S_OK);
    connection.pUnk->Release();
}

TEST_F(Lifetimes, AnEnumerationOfPointsKeepsTheControl) {
    ASSERT_TRUE(load(*control.get(), u"Park()"));
    ComReference<IEnumConnectionPoints> points;
    ASSERT_EQ(queryFor<IConnectionPointContainer>(control.get(), IID_IConnectionPointContainer)
                  ->EnumConnectionPoints(points.receive()),
              S_OK);
    control = {};
    ComReference<IConnectionPoint> point;
    EXPECT_EQ(points->Next(1, point.receive(), nullptr), S_OK);
    points = {};
    ComReference<IConnectionPointContainer> container;
    ASSERT_EQ(point->GetConnectionPointContainer(container.receive()), S_OK);
    control = queryFor<_clsScriptControl>(container.get(), IID__clsScriptControl);
    EXPECT_EQ(run(*control.get()).result, S_OK);
}

TEST_F(Lifetimes, AnEnumerationBeginsWithTheConnectionsOfItsTime) {
    const DWORD first = adviseHeld(*control.get(), living, {});
    const auto point = connectionPointOf(*control.get());
    ComReference<IEnumConnections> connections;
    ASSERT_EQ(point->EnumConnections(connections.receive()), S_OK);
    EXPECT_EQ(point->Unadvise(first), S_OK);
    adviseHeld(*control.get(), living, {});
    CONNECTDATA listed[2]{};
    ULONG count = 7;
    EXPECT_EQ(connections->Next(2, listed, &count), S_FALSE);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(listed[0].dwCookie, first);
    listed[0].pUnk->Release();
}

TEST_F(Lifetimes, ASinkMayCallInOnceMoreWhileItsControlGoes) {
    _clsScriptControl* const raw = control.get();
    IConnectionPoint* const point = connectionPointOf(*raw).get();
    DWORD cookie = 0;
    int asked = 0;
    cookie = adviseHeld(*raw, living, {}, [&] {
        ++asked;
        raw->AddRef();
        EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
        LONG version = 7;
        EXPECT_EQ(raw->get_ScriptDB_Version(&version), S_OK);
        EXPECT_EQ(version, 0);
        raw->Release();
    });
    control = {};
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(canUnloadNow(), S_OK);
}

TEST_F(Lifetimes, ASinkThatIsUnadvisedMayAdviseAnotherOnItsWay) {
    const auto point = connectionPointOf(*control.get());
    const DWORD cookie =
        adviseHeld(*control.get(), living, {}, [&] { adviseHeld(*control.get(), living, actingIn(22, [] {})); });
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(living, 1);
    ASSERT_TRUE(load(*control.get(), u"Park()"));
    EXPECT_EQ(run(*control.get()), ranToItsEnd);
}

// ------------------------------------------------------------------------------------------------ all of it, at random

/// A host that does anything at any time, as a seed says.
class RandomHost {
public:
    explicit RandomHost(unsigned seed) : random_(seed), control_(newControl()) {}

    /// Some loads and runs; then everything is let go.
    void perform() {
        object_ = control_.get();
        // Answers first and stays, so that runs go on and the component's own dialogs stay shut.
        adviseHeld(*object_, living_, [](DISPID event, DISPPARAMS& arguments) {
            answer(event, arguments);
            return S_OK;
        });
        for (unsigned i = below(4); i > 0; --i) adviseOne();
        for (unsigned i = 1 + below(3); i > 0 && control_; --i) {
            load(*object_, script());
            if (!control_) break;  // let go inside, and gone with the call
            const RunResult ended = run(*object_);
            EXPECT_TRUE(ended.result == S_OK || ended.result == automationError(9)) << std::hex << ended.result;
        }
        letGo();
    }
    int living() const { return living_; }

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

    std::u16string script() {
        std::vector<std::u16string_view> lines;
        for (std::u16string_view rest = everyEventScript; !rest.empty();) {
            const std::size_t end = rest.find(u"\r\n") + 2;
            lines.push_back(rest.substr(0, end));
            rest.remove_prefix(end);
        }
        std::u16string text;
        for (std::size_t i = 0; i < lines.size(); ++i)
            if (i < 4 || i + 1 == lines.size() || below(4) == 0) text += lines[i];
        return text;
    }

    void adviseOne() {
        if (advised_.size() >= 8) return;
        const auto place = std::make_shared<DWORD>(0);
        *place = adviseHeld(*object_, living_, [this, place](DISPID event, DISPPARAMS& arguments) {
            EXPECT_EQ(advised_.count(*place), 1U) << "a sink is called that is not advised";
            return handle(*place, event, arguments);
        });
        EXPECT_TRUE(advised_.insert({*place, living_}).second) << "a cookie is used twice";
    }
    void unadvise(DWORD cookie) {
        const bool known = advised_.erase(cookie) != 0;
        EXPECT_EQ(connectionPointOf(*object_)->Unadvise(cookie), known ? S_OK : CONNECT_E_NOCONNECTION);
    }

    HRESULT handle(DWORD self, DISPID event, DISPPARAMS& arguments) {
        for (unsigned i = below(8) == 0 ? 1 + below(3) : 0; i > 0; --i) act(self, event, arguments);
        switch (below(12)) {
            case 0: return E_FAIL;
            case 1: return DISP_E_MEMBERNOTFOUND;
            case 2: return S_OK;
            case 3: writeWild(arguments); break;
            default: Sink::succeed(event, arguments);
        }
        takeOver(event, arguments);
        return below(12) == 0 ? E_ABORT : S_OK;
    }

    void act(DWORD self, DISPID event, DISPPARAMS& arguments) {
        switch (below(14)) {
            case 0:
            case 1: adviseOne(); break;
            case 2: unadvise(self); break;
            case 3:
                if (!advised_.empty())
                    unadvise(
                        std::next(advised_.begin(), static_cast<int>(below(static_cast<unsigned>(advised_.size()))))
                            ->first);
                break;
            case 4: unadvise(below(20) + 1000); break;
            case 5: control_ = below(2) == 0 ? ComReference<_clsScriptControl>() : ComReference(object_); break;
            case 6:
                if (depth_ < 2) {
                    ++depth_;
                    load(*object_, script());
                    --depth_;
                }
                break;
            case 7: nestedRun(); break;
            case 8: edit(); break;
            case 9: object_->FinishLoopFlag(); break;
            case 10: secondControl(); break;
            case 11: enumerate(); break;
            case 12:
                if (event == 14) sets_.emplace_back(V_DISPATCH(&argumentOf(arguments, 0)));
                break;
            default: connections_.clear(); sets_.clear();
        }
    }

    void nestedRun() {
        // Inside a load it runs what is there; that may be as deep as loads go.
        if (depth_ >= 2) return;
        ++depth_;
        run(*object_);
        --depth_;
    }

    void edit() {
        auto position = static_cast<LONG>(below(30));
        float value = 2;
        VARIANT_BOOL result = VARIANT_FALSE;
        object_->EditDataVariable(&position, &value, &result);
        HostText name(u"Text");
        VARIANT found;
        if (SUCCEEDED(object_->GetMemoryValue(name.address(), &found))) VariantClear(&found);
    }

    void secondControl() {
        if (depth_ >= 2) return;
        ++depth_;
        RandomHost another(below(1000000));
        another.depth_ = depth_;
        another.perform();
        EXPECT_EQ(another.living(), 0);
        --depth_;
    }

    void enumerate() {
        ComReference<IEnumConnections> connections;
        EXPECT_EQ(connectionPointOf(*object_)->EnumConnections(connections.receive()), S_OK);
        CONNECTDATA connection{};
        while (below(3) != 0 && connections->Next(1, &connection, nullptr) == S_OK) connection.pUnk->Release();
        connections_.push_back(connections);
    }

    static void writeWild(DISPPARAMS& arguments) {
        for (std::size_t i = 0; i < arguments.cArgs; ++i) {
            VARIANTARG& argument = argumentOf(arguments, i);
            switch (V_VT(&argument)) {
                case VT_BYREF | VT_R4: *V_R4REF(&argument) = std::numeric_limits<float>::quiet_NaN(); break;
                case VT_BYREF | VT_I4: *V_I4REF(&argument) = std::numeric_limits<LONG>::min(); break;
                case VT_BYREF | VT_BOOL: *V_BOOLREF(&argument) = 0x1234; break;
                case VT_BYREF | VT_BSTR:
                    SysFreeString(*V_BSTRREF(&argument));
                    *V_BSTRREF(&argument) = i % 2 == 0 ? nullptr : newText(u"\xDC00 and more");
                    break;
                default: VariantClear(&argument);
            }
        }
    }

    void letGo() {
        connections_.clear();
        sets_.clear();
        control_ = {};
    }

    std::mt19937 random_;
    ComReference<_clsScriptControl> control_;  // let go at any time
    _clsScriptControl* object_ = nullptr;      // the same, alive as long as it is being called
    std::map<DWORD, int> advised_;
    std::vector<ComReference<IEnumConnections>> connections_;
    std::vector<ComReference<IDispatch>> sets_;
    int living_ = 0;
    int depth_ = 0;
};

TEST_F(Lifetimes, HostsMayDoAnythingAtAnyTime) {
    control = {};
    const unsigned seeds = std::getenv("CORVANE_LONG") == nullptr ? 2000 : 100000;
    for (unsigned seed = 1; seed <= seeds && !HasFailure(); ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        RandomHost host(seed);
        host.perform();
        EXPECT_EQ(host.living(), 0);
        EXPECT_EQ(canUnloadNow(), S_OK);
    }
}

}  // namespace
}  // namespace corvane::testing
