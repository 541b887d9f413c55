// What a control holds of automation's texts, which only the stand-in can count.

#include <gtest/gtest.h>

#include "tests/com/held_sink.h"
#include "tests/com/stand_in.h"

namespace corvane::testing {
namespace {

class LivingTexts : public ComponentTest {
protected:
    int living = 0;
    ComReference<_clsScriptControl> control = newControl();

    void TearDown() override {
        control = {};
        ComponentTest::TearDown();
    }
    std::size_t textsAfterARun(std::u16string_view script) {
        EXPECT_TRUE(load(*control.get(), script));
        EXPECT_EQ(run(*control.get()).result, S_OK);
        return livingAutomationBlocks();
    }
    void adviseOne() {
        adviseHeld(*control.get(), living, [](DISPID event, DISPPARAMS& arguments) {
            answer(event, arguments);
            return S_OK;
        });
    }
};

TEST_F(LivingTexts, GoWithTheControl) {
    const std::size_t before = livingAutomationBlocks();
    adviseOne();
    EXPECT_GT(textsAfterARun(everyEventScript), before) << "texts are kept for the next event";
    control = {};
    EXPECT_EQ(livingAutomationBlocks(), before);
}

TEST_F(LivingTexts, OfAFailedCallAreReleased) {
    class FailingSink final : public Sink {
    public:
        HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception,
                                         UINT*) override {
            exception->bstrSource = newText(u"a host");
            exception->bstrDescription = newText(u"cannot do it");
            exception->bstrHelpFile = newText(u"host.chm");
            return DISP_E_EXCEPTION;
        }
    } sink;
    const Advised advised(*control.get(), sink);
    const std::size_t before = livingAutomationBlocks();
    EXPECT_EQ(textsAfterARun(u"Park()"), before);
}

TEST_F(LivingTexts, OfAnEventGoWhereTheyAreLong) {
    adviseOne();
    const std::u16string_view note = u"MsgInfo(\"note\")";
    const std::u16string longNote = u"MsgInfo(\"" + std::u16string(5000, u'x') + u"\")";
    const std::size_t kept = textsAfterARun(note);
    EXPECT_EQ(textsAfterARun(longNote), kept - 1);
    EXPECT_EQ(textsAfterARun(note), kept);
}

}  // namespace
}  // namespace corvane::testing
