// Calls of the host from inside everything that the component calls out with. The input's text is several scripts,
// parted by form feeds, which loads from inside choose among.

#include <vector>

#include "host/clsProgramFunctionList.h"
#include "tests/fuzz/choosing_host.h"
#include "ui/text_table.h"

namespace corvane::fuzz {
namespace {

/// A view whose owner calls the control while it is filled.
class CallingView final : public TableView {
public:
    explicit CallingView(const std::function<void()>& call) : call_(call) {}
    void prepare() override { table_.prepare(); }
    void addColumn(std::u16string_view header) override { table_.addColumn(header); }
    void addRow(std::u16string_view text) override {
        call_();
        table_.addRow(text);
    }
    void setSubItem(int column, std::u16string_view text) override { table_.setSubItem(column, text); }
    void fitColumns() override { call_(); }

private:
    const std::function<void()>& call_;
    TextTable table_;
};

class CallingFaults final : public FaultListener {
public:
    explicit CallingFaults(const std::function<void()>& call) : call_(call) {}
    void fault(const ScriptFault& fault) override {
        const std::u16string message(fault.message);
        call_();
        require(message == fault.message, "a fault is valid during the call");
    }

private:
    const std::function<void()>& call_;
};

class Session {
public:
    explicit Session(FuzzInput& input)
        : choices_(input.choices),
          scripts_(input.scripts()),
          host_(input),
          control_(host_.services(), {.designedMemberAccess = !choices_.oneIn(8)}),
          functions_(host_.services()) {
        control_.setEventSink(&host_);
        observe();
        host_.onCallOut = [this] { inside(); };
    }
    ~Session() { host_.onCallOut = nullptr; }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void play() {
        for (int i = 0; i < 4; ++i) {
            guarded([&] { load(scripts_.front()); });
            guarded([&] { control_.RunScript(); });
            if (choices_.isSpent()) break;
            guarded([&] { act(); });
        }
        require(!control_.engine().isRunning(), "nothing runs when all calls have returned");
    }

private:
    static constexpr int mostDepth = 4;
    static constexpr int mostActions = 60;

    template <typename Call>
    static void guarded(Call&& call) {
        try {
            succeeds(call);
        } catch (const Enough&) {
        }
    }

    void inside() {
        if (depth_ >= mostDepth || actions_ >= mostActions || !choices_.oneIn(4)) return;
        ++depth_;
        ++actions_;
        struct Leave {
            int& depth;
            ~Leave() { --depth; }
        } const leave{depth_};
        guarded([&] { act(); });
        // As a host's handler may, from where exceptions have a way out.
        if (choices_.oneIn(32)) throw automation_error(ErrorNumber::InvalidProcedureCall);
    }

    void observe() {
        control_.engine().setListener(choices_.oneIn(2) ? &host_ : nullptr);
        control_.engine().setTraceSink(choices_.oneIn(2) ? &host_ : nullptr);
        control_.setDebugMode(static_cast<std::int32_t>(choices_.below(8)));
    }

    const std::u16string& script() { return scripts_[choices_.below(static_cast<std::uint32_t>(scripts_.size()))]; }

    void load(const std::u16string& text) { control_.LoadScript_FromScript(text, u"name", 1, 1); }

    void act() {
        clsDataList& memory = control_.engine().DataMemory();
        switch (choices_.below(13)) {
            case 0: load(script()); break;
            case 1: control_.RunScript(); break;
            case 2: edit(); break;
            case 3: control_.FinishLoopFlag(); break;
            case 4: makeEditable(memory); break;
            case 5: show(); break;
            case 6: control_.setEventSink(choices_.oneIn(2) ? nullptr : &host_); break;
            case 7: observe(); break;
            case 8: control_.GetMemoryValue(script()); break;
            case 9: functions_.LoadProgramScript_FromDatabase(script(), u"name", 1, 1); break;
            case 10: list(); break;
            case 11: check(); break;
            default: control_.engine().setStopExecution(choices_.oneIn(2)); break;
        }
    }

    void edit() {
        const std::int32_t position = choices_.longInteger();
        control_.EditDataVariable(position, choices_.single());
    }

    void makeEditable(clsDataList& memory) {
        clsData item = memory.Item(choices_.longInteger());
        item.setIsEditable(choices_.oneIn(2));
        item.setUnits(u"mm");
        memory.setEditableCount(static_cast<std::int32_t>(choices_.below(4)));
        StringTable table;
        std::int32_t count = -1;
        control_.GetEditable(table, count);
        require(count == memory.EditableCount(), "the editable items are counted");
    }

    void show() {
        CallingView statements(host_.onCallOut);
        CallingView items(host_.onCallOut);
        control_.engine().DisplayDataInListViews(&statements, &items);
    }

    void check() {
        CallingFaults faults(host_.onCallOut);
        control_.engine().CheckCommandList(script(), faults);
    }

    void list() {
        Reference<FunctionCollection> listing;
        functions_.CreateFunctionList(listing);
    }

    Choices& choices_;
    std::vector<std::u16string> scripts_;
    ChoosingHost host_;
    clsScriptControl control_;
    clsProgramFunctionList functions_;
    int depth_ = 0;
    int actions_ = 0;
};

}  // namespace
}  // namespace corvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane::fuzz;
    FuzzInput input(data, size);
    Session session(input);
    session.play();
    return 0;
}
