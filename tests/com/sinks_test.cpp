// How sinks come and go: connection point, container and their enumerators.

#include <gtest/gtest.h>

#include "tests/com/held_sink.h"

namespace corvane::testing {
namespace {

class Sinks : public ComponentTest {
protected:
    Sink sinks[4];  // outlive the control, as it may hold them to its end
    ComReference<_clsScriptControl> control = newControl();
    ComReference<IConnectionPoint> point = connectionPointOf(*control.get());

    void TearDown() override {
        point = {};
        control = {};
        ComponentTest::TearDown();
    }
    ComReference<IConnectionPointContainer> container() {
        return queryFor<IConnectionPointContainer>(control.get(), IID_IConnectionPointContainer);
    }
    ComReference<IEnumConnections> connections() {
        ComReference<IEnumConnections> enumerator;
        EXPECT_EQ(point->EnumConnections(enumerator.receive()), S_OK);
        return enumerator;
    }
    DWORD advise(Sink& sink) {
        DWORD cookie = 0;
        EXPECT_EQ(point->Advise(&sink, &cookie), S_OK);
        return cookie;
    }
};

/// A sink that bears the interfaces it is told to bear.
class ChoosySink final : public Sink {
public:
    explicit ChoosySink(std::vector<IID> borne) : borne_(std::move(borne)) {}
    int events = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        for (const IID& borne : borne_) {
            if (!IsEqualIID(id, borne)) continue;
            *object = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        ++events;
        succeed(event, *arguments);
        return S_OK;
    }

private:
    std::vector<IID> borne_;
};

TEST_F(Sinks, ASinkBearsTheEventInterfaceOrIDispatch) {
    struct Row {
        std::vector<IID> borne;
        HRESULT result;
    };
    const Row rows[] = {{{IID_IUnknown, DIID___clsScriptControl}, S_OK},
                        {{IID_IUnknown, IID_IDispatch}, S_OK},
                        {{IID_IUnknown}, CONNECT_E_CANNOTCONNECT},
                        {{}, CONNECT_E_CANNOTCONNECT}};
    ASSERT_TRUE(load(*control.get(), u"Park()"));
    for (const Row& row : rows) {
        ChoosySink sink(row.borne);
        DWORD cookie = 77;
        EXPECT_EQ(point->Advise(&sink, &cookie), row.result);
        EXPECT_EQ(cookie != 0, row.result == S_OK);
        run(*control.get());
        EXPECT_EQ(sink.events, row.result == S_OK ? 3 : 0);
        EXPECT_EQ(point->Unadvise(cookie), row.result == S_OK ? S_OK : CONNECT_E_NOCONNECTION);
        EXPECT_EQ(sink.references(), 0);
    }
}

TEST_F(Sinks, AConnectionIsEndedOnce) {
    Sink sink;
    const DWORD cookie = advise(sink);
    EXPECT_NE(cookie, 0U);
    EXPECT_EQ(sink.references(), 1);
    EXPECT_EQ(point->Unadvise(cookie + 1), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(point->Unadvise(0), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(sink.references(), 1);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(sink.references(), 0);
    EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
}

TEST_F(Sinks, ACookieIsNeverUsedAgain) {
    Sink sink;
    const DWORD first = advise(sink);
    EXPECT_EQ(point->Unadvise(first), S_OK);
    const DWORD second = advise(sink);
    EXPECT_NE(first, second);
    EXPECT_EQ(point->Unadvise(first), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(point->Unadvise(second), S_OK);
}

TEST_F(Sinks, TheSameSinkMayBeAdvisedTwice) {
    int events = 0;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        ++events;
        Sink::succeed(event, arguments);
        return S_OK;
    });
    const DWORD first = advise(sink);
    const DWORD second = advise(sink);
    ASSERT_TRUE(load(*control.get(), u"Park()"));
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    EXPECT_EQ(events, 6);
    EXPECT_EQ(point->Unadvise(first), S_OK);
    EXPECT_EQ(sink.references(), 1);
    EXPECT_EQ(point->Unadvise(second), S_OK);
    EXPECT_EQ(sink.references(), 0);
}

TEST_F(Sinks, SinksLeftBehindAreReleasedWithTheControl) {
    Sink first;
    Sink second;
    advise(first);
    advise(second);
    point = {};
    control = {};
    EXPECT_EQ(first.references(), 0);
    EXPECT_EQ(second.references(), 0);
}

TEST_F(Sinks, TheContainerHasOnePoint) {
    ComReference<IConnectionPoint> found;
    EXPECT_EQ(container()->FindConnectionPoint(DIID___clsScriptControl, found.receive()), S_OK);
    EXPECT_EQ(found.get(), point.get());
    IConnectionPoint* other = point.get();
    for (const IID& id : {IID_IDispatch, IID__clsScriptControl, IID_NULL}) {
        EXPECT_EQ(container()->FindConnectionPoint(id, &other), CONNECT_E_NOCONNECTION);
        EXPECT_EQ(other, nullptr);
    }
    IID id{};
    EXPECT_EQ(point->GetConnectionInterface(&id), S_OK);
    EXPECT_TRUE(IsEqualIID(id, DIID___clsScriptControl));
    ComReference<IConnectionPointContainer> back;
    EXPECT_EQ(point->GetConnectionPointContainer(back.receive()), S_OK);
    EXPECT_EQ(back.get(), container().get());
}

TEST_F(Sinks, NullPointersAreRefused) {
    Sink sink;
    DWORD cookie = 7;
    EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
    EXPECT_EQ(point->Advise(&sink, nullptr), E_POINTER);
    EXPECT_EQ(sink.references(), 0);
    EXPECT_EQ(point->EnumConnections(nullptr), E_POINTER);
    EXPECT_EQ(point->GetConnectionInterface(nullptr), E_POINTER);
    EXPECT_EQ(point->GetConnectionPointContainer(nullptr), E_POINTER);
    EXPECT_EQ(container()->FindConnectionPoint(DIID___clsScriptControl, nullptr), E_POINTER);
    EXPECT_EQ(container()->EnumConnectionPoints(nullptr), E_POINTER);
}

TEST_F(Sinks, ConnectionsAreEnumeratedInTheOrderOfAdvising) {
    DWORD cookies[3]{};
    for (std::size_t i = 0; i < 3; ++i) cookies[i] = advise(sinks[i]);
    const auto enumerator = connections();

    CONNECTDATA listed[4]{};
    ULONG count = 0;
    EXPECT_EQ(enumerator->Next(2, listed, &count), S_OK);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(enumerator->Next(2, listed + 2, &count), S_FALSE);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(enumerator->Next(1, listed + 3, &count), S_FALSE);
    EXPECT_EQ(count, 0U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(listed[i].dwCookie, cookies[i]);
        EXPECT_EQ(listed[i].pUnk, static_cast<IUnknown*>(&sinks[i]));
        listed[i].pUnk->Release();
        EXPECT_EQ(sinks[i].references(), 1);
    }
}

TEST_F(Sinks, AnEnumerationSkipsStartsAnewAndIsCopied) {
    DWORD cookies[4]{};
    for (std::size_t i = 0; i < 4; ++i) cookies[i] = advise(sinks[i]);
    const auto enumerator = connections();
    const auto expectNext = [](IEnumConnections& from, DWORD cookie) {
        CONNECTDATA listed{};
        ASSERT_EQ(from.Next(1, &listed, nullptr), S_OK);
        EXPECT_EQ(listed.dwCookie, cookie);
        listed.pUnk->Release();
    };
    EXPECT_EQ(enumerator->Skip(0), S_OK);
    EXPECT_EQ(enumerator->Skip(2), S_OK);
    ComReference<IEnumConnections> copy;
    EXPECT_EQ(enumerator->Clone(copy.receive()), S_OK);
    expectNext(*enumerator.get(), cookies[2]);
    EXPECT_EQ(enumerator->Skip(2), S_FALSE);
    CONNECTDATA none{};
    EXPECT_EQ(enumerator->Next(1, &none, nullptr), S_FALSE);
    expectNext(*copy.get(), cookies[2]);
    EXPECT_EQ(enumerator->Skip(0xFFFFFFFF), S_FALSE);
    EXPECT_EQ(enumerator->Reset(), S_OK);
    expectNext(*enumerator.get(), cookies[0]);
    expectNext(*copy.get(), cookies[3]);
    EXPECT_EQ(copy->Skip(1), S_FALSE);
}

TEST_F(Sinks, AnEnumerationRefusesNullPointers) {
    advise(sinks[0]);
    const auto enumerator = connections();
    CONNECTDATA listed[2]{};
    ULONG count = 0;
    EXPECT_EQ(enumerator->Next(1, nullptr, &count), E_POINTER);
    EXPECT_EQ(enumerator->Next(2, listed, nullptr), E_POINTER) << "the count may be left out for one only";
    EXPECT_EQ(enumerator->Clone(nullptr), E_POINTER);
    EXPECT_EQ(enumerator->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(enumerator->Next(0, listed, &count), S_OK);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(enumerator->Next(1, listed, nullptr), S_OK) << "none of the refused calls took an item";
    listed[0].pUnk->Release();
}

TEST_F(Sinks, WithoutConnectionsAnEnumerationIsEmpty) {
    const auto enumerator = connections();
    CONNECTDATA listed{};
    EXPECT_EQ(enumerator->Next(1, &listed, nullptr), S_FALSE);
    EXPECT_EQ(enumerator->Skip(1), S_FALSE);
    EXPECT_EQ(enumerator->Reset(), S_OK);
}

TEST_F(Sinks, ThePointIsEnumerated) {
    ComReference<IEnumConnectionPoints> points;
    ASSERT_EQ(container()->EnumConnectionPoints(points.receive()), S_OK);
    IConnectionPoint* listed[2]{};
    ULONG count = 7;
    EXPECT_EQ(points->Next(2, listed, &count), S_FALSE);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(listed[0], point.get());
    listed[0]->Release();
    ComReference<IEnumConnectionPoints> copy;
    EXPECT_EQ(points->Clone(copy.receive()), S_OK);
    EXPECT_EQ(copy->Next(1, listed, nullptr), S_FALSE);
    EXPECT_EQ(copy->Reset(), S_OK);
    EXPECT_EQ(copy->Skip(1), S_OK);
    EXPECT_EQ(points->Skip(1), S_FALSE);
    EXPECT_EQ(points->Next(1, nullptr, &count), E_POINTER);
    EXPECT_EQ(points->Clone(nullptr), E_POINTER);
}

}  // namespace
}  // namespace corvane::testing
