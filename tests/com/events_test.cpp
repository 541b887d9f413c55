// What a sink is handed with each event, and what of its answers counts.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <set>

#include "host/clsDataSetParameters.h"
#include "host/com/event_dispatch.h"
#include "platform/utf8.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

// ------------------------------------------------------------------------------------- through the dispatcher alone

/// A value for an argument, different for each position.
Value sampleOf(const EventArgument& argument, std::size_t position, clsDataSetParameters& record) {
    switch (argument.type) {
        case ValueType::Text: return Value::ofText(fromUtf8("text " + std::to_string(position)));
        case ValueType::Single: return Value::ofSingle(static_cast<float>(position) + 0.5F);
        case ValueType::Long: return Value::ofLong(static_cast<std::int32_t>(position) + 100);
        case ValueType::Object: return Value::ofObject(record);
        default: return Value::ofBoolean(position % 2 == 0);
    }
}

/// One object's, for all deliveries: what a sink has done to the arguments once must not show in the next event.
KeptArguments& kept() {
    static KeptArguments arguments;
    return arguments;
}

/// An event with sample values, and its way to sinks.
class Delivery {
public:
    explicit Delivery(const EventRow& row) : event_(row.id, samples(row)) {}

    EventDelivery& operator*() { return delivery_; }
    Event& event() { return event_; }
    void to(Sink& sink) { delivery_.deliverTo(sink, FloatingPointState::present()); }
    void to(const Sink::Handler& handler) {
        Sink sink(handler);
        to(sink);
        EXPECT_EQ(sink.references(), 0);
    }
    clsDataSetParameters& record() { return *record_; }

private:
    std::vector<Value> samples(const EventRow& row) {
        std::vector<Value> values;
        for (std::size_t i = 0; i + 1 < row.argumentCount; ++i)
            values.push_back(sampleOf(row.arguments[i], i, *record_));
        return values;
    }

    Reference<clsDataSetParameters> record_ = makeReference<clsDataSetParameters>();
    Event event_;
    EventDelivery delivery_{event_, kept()};
};

/// A sink that sees the whole call.
class CallSink final : public Sink {
public:
    int calls = 0;

    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID id, LCID locale, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT* faultyArgument) override {
        ++calls;
        const EventRow& row = rowOf(event);
        EXPECT_TRUE(IsEqualIID(id, IID_NULL));
        EXPECT_EQ(locale, static_cast<LCID>(LOCALE_USER_DEFAULT));
        EXPECT_EQ(flags, DISPATCH_METHOD);
        EXPECT_EQ(arguments->cArgs, row.argumentCount);
        EXPECT_EQ(arguments->cNamedArgs, 0U);
        EXPECT_NE(result, nullptr);
        EXPECT_NE(exception, nullptr);
        EXPECT_NE(faultyArgument, nullptr);
        std::set<const void*> cells;
        for (std::size_t i = 0; i < row.argumentCount; ++i) {
            VARIANTARG& argument = argumentOf(*arguments, i);
            EXPECT_EQ(V_VT(&argument), publishedTypeOf(row.arguments[i])) << row.name << ", " << row.arguments[i].name;
            const bool isSeparate = !row.arguments[i].byReference || cells.insert(V_BYREF(&argument)).second;
            EXPECT_TRUE(isSeparate) << row.name << ": two arguments in one place";
        }
        return S_OK;
    }
};

using Events = ComponentTest;

TEST_F(Events, ArgumentsHaveThePublishedTypesTheLastComesFirst) {
    for (const EventRow& row : eventTable) {
        CallSink sink;
        Delivery delivery(row);
        delivery.to(sink);
        EXPECT_EQ(sink.calls, 1);
    }
}

TEST_F(Events, ArgumentsHaveTheValuesOfTheEvent) {
    for (const EventRow& row : eventTable) {
        Delivery delivery(row);
        std::string expected(row.name);
        for (std::size_t i = 0; i + 1 < row.argumentCount; ++i) {
            const EventArgument& argument = row.arguments[i];
            expected += argument.byReference ? " &" : " ";
            switch (argument.type) {
                case ValueType::Text: expected += "\"text " + std::to_string(i) + "\""; break;
                case ValueType::Single: expected += std::to_string(i) + ".5"; break;
                case ValueType::Long: expected += std::to_string(i + 100); break;
                case ValueType::Object: expected += "object"; break;
                default: expected += i % 2 == 0 ? "True" : "False";
            }
        }
        std::string seen;
        delivery.to([&](DISPID event, DISPPARAMS& arguments) {
            EXPECT_EQ(event, static_cast<DISPID>(row.id));
            seen = show(event, arguments);
            return S_OK;
        });
        EXPECT_EQ(seen, expected + " &False");
    }
}

/// What a sink writes into a cell, different from every sample.
Value answerOf(const EventArgument& argument, std::size_t position) {
    switch (argument.type) {
        case ValueType::Text: return Value::ofText(fromUtf8("answer " + std::to_string(position)));
        case ValueType::Single: return Value::ofSingle(-static_cast<float>(position) - 0.25F);
        case ValueType::Long: return Value::ofLong(-static_cast<std::int32_t>(position) - 1);
        default: return Value::ofBoolean(position % 2 != 0);
    }
}

void writeCell(VARIANTARG& argument, const Value& value) {
    switch (value.type()) {
        case ValueType::Text:
            SysFreeString(*V_BSTRREF(&argument));
            *V_BSTRREF(&argument) = newText(value.textView());
            break;
        case ValueType::Single: *V_R4REF(&argument) = value.single(); break;
        case ValueType::Long: *V_I4REF(&argument) = value.longInteger(); break;
        default: *V_BOOLREF(&argument) = variantBool(value.boolean());
    }
}

/// Writes every cell that a sink can write.
void writeCells(DISPID event, DISPPARAMS& arguments) {
    const EventRow& row = rowOf(event);
    for (std::size_t i = 0; i < row.argumentCount; ++i)
        if (row.arguments[i].byReference) writeCell(argumentOf(arguments, i), answerOf(row.arguments[i], i));
}

/// Writes over what was passed by value.
void writeValues(DISPID event, DISPPARAMS& arguments) {
    const EventRow& row = rowOf(event);
    for (std::size_t i = 0; i < row.argumentCount; ++i) {
        VARIANTARG& argument = argumentOf(arguments, i);
        switch (V_VT(&argument)) {
            case VT_R4: V_R4(&argument) = -1; break;
            case VT_I4: V_I4(&argument) = -1; break;
            case VT_BSTR:
                VariantClear(&argument);
                V_VT(&argument) = VT_BSTR;
                V_BSTR(&argument) = newText(u"the sink's own");
                break;
            case VT_DISPATCH:
                VariantClear(&argument);
                V_VT(&argument) = VT_DISPATCH;
                V_DISPATCH(&argument) = nullptr;
                break;
            default: break;
        }
    }
}

std::string lineOf(Event& event) {
    Sink sink;
    std::string line;
    Sink reader([&](DISPID id, DISPPARAMS& arguments) {
        line = show(id, arguments);
        return S_OK;
    });
    EventDelivery(event, kept()).deliverTo(reader, FloatingPointState::present());
    return line;
}

bool same(const Value& left, const Value& right) {
    if (left.type() != right.type()) return false;
    switch (left.type()) {
        case ValueType::Text: return left.textView() == right.textView();
        case ValueType::Single:
            return std::bit_cast<std::uint32_t>(left.single()) == std::bit_cast<std::uint32_t>(right.single());
        case ValueType::Long: return left.longInteger() == right.longInteger();
        case ValueType::Boolean: return left.boolean() == right.boolean();
        default: return &left.object() == &right.object();
    }
}

/// Whether every by-reference argument has the sink's answer, and every other its sample.
void expectAnswered(Delivery& delivery) {
    const EventRow& row = delivery.event().row();
    for (std::size_t i = 0; i < row.argumentCount; ++i) {
        const EventArgument& argument = row.arguments[i];
        const Value expected = argument.byReference ? answerOf(argument, i) : sampleOf(argument, i, delivery.record());
        EXPECT_TRUE(same(delivery.event().argument(i), expected)) << row.name << ", " << argument.name;
    }
}

void expectUnanswered(Delivery& delivery) {
    const EventRow& row = delivery.event().row();
    for (std::size_t i = 0; i + 1 < row.argumentCount; ++i)
        EXPECT_TRUE(same(delivery.event().argument(i), sampleOf(row.arguments[i], i, delivery.record())))
            << row.name << ", " << row.arguments[i].name;
    EXPECT_FALSE(delivery.event().succeeded()) << row.name;
}

TEST_F(Events, WhatIsWrittenByReferenceReachesTheEngine) {
    for (const EventRow& row : eventTable) {
        Delivery delivery(row);
        delivery.to([](DISPID event, DISPPARAMS& arguments) {
            writeCells(event, arguments);
            return S_OK;
        });
        expectAnswered(delivery);
    }
}

TEST_F(Events, ASuccessOfAnotherKindIsAnAnswerToo) {
    Delivery delivery(eventRow(HostEvent::Park));
    delivery.to([](DISPID event, DISPPARAMS& arguments) {
        writeCells(event, arguments);
        return S_FALSE;
    });
    EXPECT_FALSE(delivery.event().succeeded());  // position 0: the sink's answer is false
    delivery.to([](DISPID, DISPPARAMS& arguments) {
        *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
        return S_FALSE;
    });
    EXPECT_TRUE(delivery.event().succeeded());
}

TEST_F(Events, CellsAreReadInThePublishedTypeWhateverTagASinkLeaves) {
    constexpr VARTYPE tags[] = {VT_EMPTY,
                                VT_NULL,
                                VT_BYREF | VT_I2,
                                VT_BYREF | VT_R8,
                                VT_BYREF | VT_VARIANT,
                                VT_BYREF | VT_BSTR,
                                VT_BYREF | VT_BOOL,
                                VT_BYREF | VT_DISPATCH,
                                VT_I4,
                                VT_BOOL,
                                VT_ERROR,
                                VT_BSTR,
                                VT_DISPATCH,
                                VT_UNKNOWN,
                                VT_ARRAY | VT_BSTR,
                                VT_RESERVED | 77,
                                0xFFFF};
    for (const EventRow& row : eventTable) {
        for (const VARTYPE tag : tags) {
            Delivery delivery(row);
            delivery.to([&](DISPID event, DISPPARAMS& arguments) {
                writeCells(event, arguments);
                for (std::size_t i = 0; i < row.argumentCount; ++i)
                    if (row.arguments[i].byReference) V_VT(&argumentOf(arguments, i)) = tag;
                return S_OK;
            });
            expectAnswered(delivery);
        }
    }
}

TEST_F(Events, TrueIsAnyNonZero) {
    for (const EventRow& row : eventTable) {
        constexpr VARIANT_BOOL truths[] = {-1, 1, 2, 0x1234, 0x0100, 0x7FFF, -0x8000, 0};
        for (const VARIANT_BOOL truth : truths) {
            Delivery delivery(row);
            delivery.to([&](DISPID, DISPPARAMS& arguments) {
                for (std::size_t i = 0; i < row.argumentCount; ++i)
                    if (V_VT(&argumentOf(arguments, i)) == (VT_BYREF | VT_BOOL))
                        *V_BOOLREF(&argumentOf(arguments, i)) = truth;
                return S_OK;
            });
            for (std::size_t i = 0; i < row.argumentCount; ++i)
                if (row.arguments[i].type == ValueType::Boolean) {
                    EXPECT_EQ(delivery.event().argument(i).boolean(), truth != 0) << row.name << ", " << truth;
                }
            delivery.to([&](DISPID, DISPPARAMS& arguments) {
                EXPECT_EQ(*V_BOOLREF(&arguments.rgvarg[0]), truth != 0 ? VARIANT_TRUE : VARIANT_FALSE)
                    << "the next sink sees an automation Boolean";
                return S_OK;
            });
        }
    }
}

TEST_F(Events, WhatIsPassedByValueIsEachSinksOwnCopy) {
    for (const EventRow& row : eventTable) {
        Delivery delivery(row);
        const std::string before = lineOf(delivery.event());
        delivery.to([](DISPID event, DISPPARAMS& arguments) {
            writeValues(event, arguments);
            return S_OK;
        });
        EXPECT_EQ(lineOf(delivery.event()), before);
        expectUnanswered(delivery);
    }
}

constexpr HRESULT failures[] = {
    DISP_E_MEMBERNOTFOUND,
    DISP_E_EXCEPTION,
    DISP_E_TYPEMISMATCH,
    DISP_E_BADPARAMCOUNT,
    DISP_E_UNKNOWNNAME,
    E_FAIL,
    E_NOTIMPL,
    E_OUTOFMEMORY,
    E_UNEXPECTED,
    E_ACCESSDENIED,
    E_INVALIDARG,
    E_POINTER,
    E_ABORT,
    automationError(9),
    static_cast<HRESULT>(0x80010108),
};

TEST_F(Events, ASinkThatFailsHasNotAnswered) {
    for (const EventRow& row : eventTable) {
        for (const HRESULT failure : failures) {
            Delivery delivery(row);
            delivery.to([&](DISPID event, DISPPARAMS& arguments) {
                writeCells(event, arguments);
                writeValues(event, arguments);
                return failure;
            });
            expectUnanswered(delivery);
        }
    }
}

TEST_F(Events, SinksSeeTheAnswersOfThoseBefore) {
    for (const EventRow& row : eventTable) {
        Delivery delivery(row);
        delivery.to([](DISPID event, DISPPARAMS& arguments) {
            writeCells(event, arguments);
            return S_OK;
        });
        const std::string answered = lineOf(delivery.event());
        std::string seen;
        delivery.to([&](DISPID event, DISPPARAMS& arguments) {
            seen = show(event, arguments);
            for (std::size_t i = 0; i < row.argumentCount; ++i)
                if (V_VT(&argumentOf(arguments, i)) == (VT_BYREF | VT_BSTR))
                    writeCell(argumentOf(arguments, i), Value::ofText(u"of one that fails"));
            return E_FAIL;
        });
        EXPECT_EQ(seen, answered);
        delivery.to([&](DISPID event, DISPPARAMS& arguments) {
            seen = show(event, arguments);
            return S_OK;
        });
        EXPECT_EQ(seen, answered) << "after a sink that failed";
    }
}

TEST_F(Events, NumbersArriveAsTheyWereWritten) {
    struct Row {
        float single;
        LONG longInteger;
    };
    constexpr Row rows[] = {{std::numeric_limits<float>::infinity(), std::numeric_limits<LONG>::max()},
                            {-std::numeric_limits<float>::infinity(), std::numeric_limits<LONG>::min()},
                            {std::numeric_limits<float>::quiet_NaN(), -1},
                            {std::bit_cast<float>(0x7FC12345U), 0},
                            {std::numeric_limits<float>::denorm_min(), 1},
                            {std::numeric_limits<float>::max(), 2},
                            {-0.0F, 3}};
    for (const EventRow& row : eventTable) {
        for (const Row& wild : rows) {
            Delivery delivery(row);
            delivery.to([&](DISPID, DISPPARAMS& arguments) {
                for (std::size_t i = 0; i < row.argumentCount; ++i) {
                    VARIANTARG& argument = argumentOf(arguments, i);
                    if (V_VT(&argument) == (VT_BYREF | VT_R4)) *V_R4REF(&argument) = wild.single;
                    if (V_VT(&argument) == (VT_BYREF | VT_I4)) *V_I4REF(&argument) = wild.longInteger;
                }
                return S_OK;
            });
            for (std::size_t i = 0; i < row.argumentCount; ++i) {
                if (!row.arguments[i].byReference) continue;
                const Value& value = delivery.event().argument(i);
                if (value.type() == ValueType::Single) {
                    EXPECT_TRUE(same(value, Value::ofSingle(wild.single))) << row.name << ", " << wild.single;
                }
                if (value.type() == ValueType::Long) {
                    EXPECT_EQ(value.longInteger(), wild.longInteger) << row.name;
                }
            }
        }
    }
}

// --------------------------------------------------------------------------------------- texts and objects of a sink

/// The text that an Info's cell was left with.
std::u16string answeredText(const std::function<void(BSTR& cell)>& write) {
    Delivery delivery(eventRow(HostEvent::Info));
    delivery.to([&](DISPID, DISPPARAMS& arguments) {
        write(*V_BSTRREF(&argumentOf(arguments, 0)));
        return S_OK;
    });
    return std::u16string(delivery.event().argument(0).textView());
}

TEST_F(Events, ATextMayBeReplacedOrFreedInPlace) {
    EXPECT_EQ(answeredText([](BSTR&) {}), u"text 0");
    EXPECT_EQ(answeredText([](BSTR& cell) {
                  SysFreeString(cell);
                  cell = nullptr;
              }),
              u"");
    EXPECT_EQ(answeredText([](BSTR& cell) {
                  SysFreeString(cell);
                  cell = newText(u"another, and a longer one");
              }),
              u"another, and a longer one");
    EXPECT_EQ(answeredText([](BSTR& cell) {
                  const std::u16string text = u"short";
                  SysReAllocStringLen(&cell, reinterpret_cast<const OLECHAR*>(text.data()), 5);
              }),
              u"short");
    EXPECT_EQ(answeredText([](BSTR& cell) { cell[0] = u'T'; }), u"Text 0") << "in its own storage";
    const std::u16string_view withZero(u"a\0b", 3);
    EXPECT_EQ(answeredText([&](BSTR& cell) {
                  SysFreeString(cell);
                  cell = newText(withZero);
              }),
              withZero);
}

TEST_F(Events, ATextOfAnOddNumberOfBytesIsReadByWholeUnits) {
    EXPECT_EQ(answeredText([](BSTR& cell) {
                  SysFreeString(cell);
                  cell = SysAllocStringByteLen("a\0b\0c", 5);
              }),
              u"ab");
}

/// The text that a sink is handed with the next event of that kind.
std::u16string nextText(const EventRow& row) {
    std::u16string seen;
    Delivery delivery(row);
    delivery.to([&](DISPID, DISPPARAMS& arguments) {
        const VARIANTARG& argument = argumentOf(arguments, 0);
        const BSTR text = row.arguments[0].byReference ? *V_BSTRREF(&argument) : V_BSTR(&argument);
        EXPECT_EQ(text[SysStringLen(text)], 0) << "a text ends where its length says";
        seen = viewOf(text);
        return S_OK;
    });
    return seen;
}

TEST_F(Events, ATextOfTheNextEventIsFreshWhateverASinkHasWrittenIntoTheLast) {
    for (const HostEvent kind : {HostEvent::Info, HostEvent::RequiredFinishLoopFlag}) {
        const EventRow& row = eventRow(kind);
        const auto writeOver = [&](DISPPARAMS& arguments, std::size_t unit) {
            const VARIANTARG& argument = argumentOf(arguments, 0);
            (row.arguments[0].byReference ? *V_BSTRREF(&argument) : V_BSTR(&argument))[unit] = u'#';
        };
        for (const HRESULT result : {S_OK, E_FAIL}) {
            for (const std::size_t unit : {0, 6}) {
                Delivery delivery(row);
                delivery.to([&](DISPID, DISPPARAMS&) { return S_OK; });
                delivery.to([&](DISPID, DISPPARAMS& arguments) {
                    writeOver(arguments, unit);
                    return result;
                });
                EXPECT_EQ(nextText(row), u"text 0") << row.name << ", " << result << ", unit " << unit;
            }
        }
    }
}

TEST_F(Events, ATextOfTheSameEventIsFreshForTheNextSinkAfterOneThatFails) {
    Delivery delivery(eventRow(HostEvent::Info));
    delivery.to([](DISPID, DISPPARAMS&) { return S_OK; });
    delivery.to([](DISPID, DISPPARAMS& arguments) {
        (*V_BSTRREF(&argumentOf(arguments, 0)))[0] = u'#';
        return E_FAIL;
    });
    delivery.to([](DISPID, DISPPARAMS& arguments) {
        EXPECT_EQ(viewOf(*V_BSTRREF(&argumentOf(arguments, 0))), u"text 0");
        return S_OK;
    });
}

TEST_F(Events, AnEventInsideAnotherOfItsKindHasArgumentsOfItsOwn) {
    for (const EventRow& row : eventTable) {
        Delivery outer(row);
        std::string inside;
        outer.to([&](DISPID event, DISPPARAMS& arguments) {
            const std::string before = show(event, arguments);
            Delivery inner(row);
            inner.to([&](DISPID, DISPPARAMS& own) {
                EXPECT_NE(own.rgvarg, arguments.rgvarg) << row.name;
                writeCells(event, own);
                writeValues(event, own);
                return S_OK;
            });
            expectAnswered(inner);
            inside = show(event, arguments);
            EXPECT_EQ(inside, before) << row.name;
            return S_OK;
        });
        expectUnanswered(outer);
        EXPECT_EQ(lineOf(outer.event()), inside) << row.name;
    }
}

TEST_F(Events, AReferenceThatASinkTurnsElsewhereIsTheComponentsAgainForTheNext) {
    Delivery delivery(eventRow(HostEvent::Park));
    VARIANT_BOOL elsewhere = VARIANT_TRUE;
    const void* given = nullptr;
    delivery.to([&](DISPID, DISPPARAMS& arguments) {
        given = V_BYREF(&arguments.rgvarg[0]);
        V_BOOLREF(&arguments.rgvarg[0]) = &elsewhere;
        return S_OK;
    });
    expectUnanswered(delivery);
    delivery.to([&](DISPID, DISPPARAMS& arguments) {
        EXPECT_EQ(V_BYREF(&arguments.rgvarg[0]), given);
        return S_OK;
    });
}

TEST_F(Events, WhatASinkPutsInThePlaceOfAnArgumentIsReleasedOnce) {
    for (const EventRow& row : eventTable) {
        for (const HRESULT result : {S_OK, E_FAIL}) {
            Sink object;
            Delivery delivery(row);
            delivery.to([&](DISPID, DISPPARAMS& arguments) {
                for (std::size_t i = 0; i < row.argumentCount; ++i) {
                    VARIANTARG& argument = argumentOf(arguments, i);
                    VariantClear(&argument);
                    if (i % 2 == 0) {
                        object.AddRef();
                        V_VT(&argument) = VT_DISPATCH;
                        V_DISPATCH(&argument) = &object;
                    } else {
                        V_VT(&argument) = VT_BSTR;
                        V_BSTR(&argument) = newText(u"the sink's own");
                    }
                }
                EXPECT_EQ(object.references(), (row.argumentCount + 1) / 2);
                return result;
            });
            EXPECT_EQ(object.references(), 0) << row.name;
            expectUnanswered(delivery);
        }
    }
}

TEST_F(Events, AResultAndAnExceptionOfASinkAreReleased) {
    class TalkativeSink final : public Sink {
    public:
        Sink object;
        HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO* exception,
                                         UINT* faultyArgument) override {
            object.AddRef();
            V_VT(result) = VT_DISPATCH;
            V_DISPATCH(result) = &object;
            exception->bstrSource = newText(u"a host");
            exception->bstrDescription = newText(u"cannot do it");
            exception->bstrHelpFile = newText(u"host.chm");
            *faultyArgument = 7;
            return DISP_E_EXCEPTION;
        }
    } sink;
    Delivery delivery(eventRow(HostEvent::Park));
    delivery.to(sink);
    EXPECT_EQ(sink.object.references(), 0);
}

// ----------------------------------------------------------------------------------------------------- the data set

TEST_F(Events, AllSinksOfAnEventAreHandedTheSameDataSet) {
    Delivery delivery(eventRow(HostEvent::GetDataSet));
    delivery.record().Height = 7;
    ComReference<IUnknown> first;
    const Sink::Handler keep = [&](DISPID, DISPPARAMS& arguments) {
        const auto identity = queryFor<IUnknown>(V_DISPATCH(&argumentOf(arguments, 0)), IID_IUnknown);
        if (!first) first = identity;
        EXPECT_EQ(first.get(), identity.get());
        const auto set = queryFor<_clsDataSetParameters>(identity.get(), IID__clsDataSetParameters);
        float height = 0;
        EXPECT_EQ(set->get_Height(&height), S_OK);
        EXPECT_EQ(height, 7);
        return S_OK;
    };
    delivery.to(keep);
    delivery.to(keep);
    first = {};
}

TEST_F(Events, TheDataSetIsWrittenInPlace) {
    Delivery delivery(eventRow(HostEvent::GetDataSet));
    delivery.to([](DISPID, DISPPARAMS& arguments) {
        const auto set =
            queryFor<_clsDataSetParameters>(V_DISPATCH(&argumentOf(arguments, 0)), IID__clsDataSetParameters);
        float force = 12.5;
        EXPECT_EQ(set->put_Force(&force), S_OK);
        return E_FAIL;
    });
    EXPECT_EQ(delivery.record().Force, 12.5F);
}

// ------------------------------------------------------------------------------------------- through the component

class EventsOfScripts : public ComponentTest {
protected:
    ComReference<_clsScriptControl> control = newControl();

    void TearDown() override {
        control = {};
        ComponentTest::TearDown();
    }
};

TEST_F(EventsOfScripts, EveryEventHasItsPublishedArguments) {
    Lines lines;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        if (event != 37 && event != 41) lines.push_back(show(event, arguments));
        answer(event, arguments);
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    ASSERT_TRUE(load(*control.get(), everyEventScript));
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    const Lines expected = {
        "EnvironmentVariableAdded &\"Room\" &\"Lab 2\" &False",
        "ConstantAdded &\"Limit\" &\"10\" &False",
        "VariableAdded &\"Number\" &\"5\" &False",
        "VariableAdded &\"Text\" &\"old\" &False",
        "MathsFunction &\"Power\" &11 &12.5 &13 &14 &0 &False",
        "InputNumber &\"How many?\" &11 &12 &0 &True &False",
        "InputString &\"Who?\" &11 &\"old\" &True &False",
        "Info &\"fact\" &False",
        "MsgAsk &\"Sure?\" &0 &True &False",
        "MsgInfo &\"note\" &True &False",
        "MsgInfoEx &\"beep\" &11 &True &False",
        "WaitTime &11.5 &\"settling\" &False",
        "AddAnalysisMacro &\"m\" &False",
        "AddAnalysisMacroEx &\"name\" &\"unit\" &\"format\" &\"macro\" &False",
        "AddTestVariable \"name\" \"value\" \"unit\" 0 &False",
        "AddDataSetVariable \"name\" \"value\" \"unit\" 3 &False",
        "GetDataSet object &False",
        "RotateForDuration 11 12.5 13 14.5 &False",
        "MoveToHeight &11.5 &12 &13.5 &14.5 &False",
        "CompactToForce &11.5 &12.5 &13.5 &14.5 &15 &False",
        "CompactToForceEx &11.5 &12 &13.5 &14 &15.5 &16.5 &17.5 &18.5 &19 &False",
        "SCTest &11.5 &12.5 &13 &14.5 &15.5 &16.5 &17 &18.5 &19.5 &20.5 &21 &22 &23.5 &False",
        ("SCTestEx &11.5 &12.5 &13.5 &14.5 &15.5 &16.5 &17 &18.5 &19.5 &20.5 &21.5 &22.5 &\"a\" &\"b\" &\"c\" &\"d\" "
         "&27.5 &\"f\" &\"g\" &\"h\" &False"),
        ("SCTestFull &True &12.5 &13.5 &False &15.5 &16.5 &True &False &19.5 &20.5 &21 &22.5 &True &24.5 &False &True "
         "&27.5 &\"3,6,9\" &29.5 &30.5 &False &\"a\" &\"b\" &\"c\" &\"d\" &False"),
        "Park &False",
        "ShakeBlade 11 -1 -1 &False",
        "MoveIntoVessel 11.5 &False",
        "MoveIntoVesselEx 11.5 12 13 0 0 0 &False",
        "TareWeight &False",
        "TareWeightEx 11 0 0 0 0 0 &False",
        "ChangeBlade 11 0 0 0 0 0 &False",
        "ChangeVessel 11 0 0 0 0 0 &False",
        "VesselSplit 11 0 0 0 0 0 &False",
        "SaveData &False",
        "TextCommand &\"cmd\" &\"a\" &\"b\" &\"c\" &\"d\" &\"e\" &\"f\" &False",
        "AerationControl &11 &12.5 &\"a\" &\"b\" &\"c\" &\"d\" &\"e\" &False",
        "PressureControl &11 &12.5 &13.5 &14.5 &15.5 &16.5 &17 &\"a\" &False",
        "EndTest &False",
    };
    EXPECT_EQ(lines, expected);
}

TEST_F(EventsOfScripts, EachStatementIsAnnouncedAndFollowedByAQuestion) {
    Lines lines;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        lines.push_back(show(event, arguments));
        answer(event, arguments);
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    ASSERT_TRUE(load(*control.get(), u"Park()\r\nBlockStart(\"block\")"));
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    EXPECT_EQ(lines, (Lines{"FunctionCalled &37 &True &False", "Park &False", "KeepGoing &False",
                            "FunctionCalled &19 &True &False", "Info &\"block\" &False", "KeepGoing &False"}));
}

TEST_F(EventsOfScripts, ATextOfTheSameLengthAsTheLastIsWholeToo) {
    Lines lines;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        if (event == 5) lines.push_back(show(event, arguments));
        answer(event, arguments);
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    ASSERT_TRUE(load(*control.get(), u"Info(\"Fill the vessel\")\r\nInfo(\"Weigh the blade\")\r\nInfo(\"A\")"));
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    EXPECT_EQ(lines,
              (Lines{"Info &\"Fill the vessel\" &False", "Info &\"Weigh the blade\" &False", "Info &\"A\" &False"}));
}

/// The events of a load and a run in which one event is answered by nobody.
std::vector<DISPID> eventsWhere(_clsScriptControl& control, const Sink::Handler& handler) {
    std::vector<DISPID> events;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        events.push_back(event);
        return handler(event, arguments);
    });
    const Advised advised(control, sink);
    EXPECT_TRUE(load(control, everyEventScript));
    EXPECT_EQ(run(control).result, S_OK);
    return events;
}

TEST_F(EventsOfScripts, ASinkThatFailsCountsAsUnansweredInEachEvent) {
    for (const DISPID unanswered : scriptEvents) {
        // The component's own dialogs stay shut in both cases.
        Sink calm([](DISPID event, DISPPARAMS& arguments) {
            takeOver(event, arguments);
            return S_OK;
        });
        const Advised calmed(*control.get(), calm);
        const std::vector<DISPID> expected = eventsWhere(*control.get(), [&](DISPID event, DISPPARAMS& arguments) {
            if (event != unanswered) answer(event, arguments);
            return S_OK;
        });
        for (const HRESULT failure : failures) {
            const std::vector<DISPID> events = eventsWhere(*control.get(), [&](DISPID event, DISPPARAMS& arguments) {
                answer(event, arguments);
                if (event != unanswered) return S_OK;
                writeCells(event, arguments);
                writeValues(event, arguments);
                return failure;
            });
            EXPECT_EQ(events, expected) << rowOf(unanswered).name;
        }
    }
}

TEST_F(EventsOfScripts, AnUnansweredInstrumentEventEndsTheRunThere) {
    const std::vector<DISPID> events = eventsWhere(*control.get(), [](DISPID event, DISPPARAMS& arguments) {
        answer(event, arguments);
        return event == 9 ? DISP_E_MEMBERNOTFOUND : S_OK;
    });
    EXPECT_EQ(events, (std::vector<DISPID>{38, 39, 40, 40, 41, 2,  37, 41, 3,  37, 41, 4,  37, 41,
                                           5,  37, 41, 6,  37, 41, 7,  37, 41, 8,  37, 41, 9,  37}));
}

TEST_F(EventsOfScripts, ASinkThatKnowsOneEventOnlyIsAskedForAll) {
    std::vector<DISPID> events;
    Sink onlyPark([&](DISPID event, DISPPARAMS& arguments) {
        events.push_back(event);
        if (event != 22) return DISP_E_MEMBERNOTFOUND;
        Sink::succeed(event, arguments);
        return S_OK;
    });
    const Advised advised(*control.get(), onlyPark);
    ASSERT_TRUE(load(*control.get(), u"Park()\r\nPark()"));
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_FALSE})) << "nobody answers KeepGoing";
    EXPECT_EQ(events, (std::vector<DISPID>{41, 22, 37}));
}

TEST_F(EventsOfScripts, WithoutASinkARunEndsAfterItsFirstStatement) {
    ASSERT_TRUE(load(*control.get(), u"VAR A = 1\r\nPark()\r\nPark()"));
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_FALSE}));
}

TEST_F(EventsOfScripts, SinksAreCalledInTheOrderOfAdvising) {
    std::string order;
    const auto named = [&](char name) {
        return [&order, name](DISPID event, DISPPARAMS& arguments) {
            if (event == 22) order += name;
            Sink::succeed(event, arguments);
            return S_OK;
        };
    };
    Sink a(named('a'));
    Sink b(named('b'));
    Sink c(named('c'));
    Advised second(*control.get(), b);
    const Advised third(*control.get(), c);
    const Advised first(*control.get(), a);
    ASSERT_TRUE(load(*control.get(), u"Park()"));
    run(*control.get());
    EXPECT_EQ(std::exchange(order, ""), "bca");
    second.unadvise();
    const Advised again(*control.get(), b);
    const Advised twice(*control.get(), c);
    run(*control.get());
    EXPECT_EQ(order, "cabc");
}

TEST_F(EventsOfScripts, TheEngineTakesTheAnswerOfTheLastSinkThatWrote) {
    Sink first([](DISPID event, DISPPARAMS& arguments) {
        Sink::succeed(event, arguments);
        if (event == 2) *V_R4REF(&argumentOf(arguments, 5)) = 7;
        return S_OK;
    });
    Sink second([](DISPID event, DISPPARAMS& arguments) {
        if (event == 2) *V_R4REF(&argumentOf(arguments, 5)) *= 2;
        return S_OK;
    });
    Sink third([](DISPID event, DISPPARAMS& arguments) {
        if (event == 2) *V_R4REF(&argumentOf(arguments, 5)) = 1;
        return E_FAIL;
    });
    std::string told;
    Sink reader([&](DISPID event, DISPPARAMS& arguments) {
        if (event == 12) told = show(event, arguments);
        return S_OK;
    });
    const Advised advised[] = {
        {*control.get(), first}, {*control.get(), second}, {*control.get(), third}, {*control.get(), reader}};
    ASSERT_TRUE(
        load(*control.get(), u"VAR N = 1\r\nMathsFunction(\"f\", N, 1, 2, 3, 4)\r\nAddTestVariable(\"n\", N, \"u\")"));
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    EXPECT_EQ(told, "AddTestVariable \"n\" \"14\" \"u\" 0 &True");
}

TEST_F(EventsOfScripts, WildAnswersLeaveTheComponentUsable) {
    const float singles[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                             -std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min()};
    const LONG longs[] = {std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max(), -1, 0x7777};
    const VARIANT_BOOL booleans[] = {1, 0x1234, 2, -0x8000};
    for (std::size_t wild = 0; wild < std::size(singles); ++wild) {
        Sink sink([&](DISPID event, DISPPARAMS& arguments) {
            for (std::size_t i = 0; i < arguments.cArgs; ++i) {
                VARIANTARG& argument = argumentOf(arguments, i);
                switch (V_VT(&argument)) {
                    case VT_BYREF | VT_R4: *V_R4REF(&argument) = singles[wild]; break;
                    case VT_BYREF | VT_I4: *V_I4REF(&argument) = longs[wild]; break;
                    case VT_BYREF | VT_BOOL: *V_BOOLREF(&argument) = booleans[wild]; break;
                    case VT_BYREF | VT_BSTR:
                        SysFreeString(*V_BSTRREF(&argument));
                        *V_BSTRREF(&argument) = wild % 2 == 0 ? nullptr : newText(std::u16string(70000, u'\xD800'));
                        break;
                    case VT_BSTR: VariantClear(&argument); break;
                    default: break;
                }
            }
            takeOver(event, arguments);
            return S_OK;
        });
        const Advised advised(*control.get(), sink);
        ASSERT_TRUE(load(*control.get(), everyEventScript));
        EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    }
}

TEST_F(EventsOfScripts, AHostMayKeepTheDataSet) {
    std::vector<ComReference<_clsDataSetParameters>> kept;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        answer(event, arguments);
        if (event == 14) {
            kept.push_back(
                queryFor<_clsDataSetParameters>(V_DISPATCH(&argumentOf(arguments, 0)), IID__clsDataSetParameters));
            float force = static_cast<float>(kept.size());
            EXPECT_EQ(kept.back()->put_Force(&force), S_OK);
        }
        return S_OK;
    });
    {
        const Advised advised(*control.get(), sink);
        ASSERT_TRUE(load(*control.get(), u"GetDataSet(11, 12, 13.5, 4)\r\nGetDataSet(1, 2, 3, 0)"));
        EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    }
    control = {};
    ASSERT_EQ(kept.size(), 2U);
    const float expected[][3] = {{11, 13.5, 1}, {1, 3, 2}};
    for (std::size_t i = 0; i < 2; ++i) {
        float helix = 0;
        float height = 0;
        float force = 0;
        kept[i]->get_HelixAngle(&helix);
        kept[i]->get_Height(&height);
        kept[i]->get_Force(&force);
        EXPECT_EQ(helix, expected[i][0]);
        EXPECT_EQ(height, expected[i][1]);
        EXPECT_EQ(force, expected[i][2]);
    }
    EXPECT_EQ(canUnloadNow(), S_FALSE);
    kept.clear();
}

}  // namespace
}  // namespace corvane::testing
