// Duktape, a small JavaScript engine.

#include <duktape.h>

#include <memory>

#include "bench/peer.h"

namespace corvane::bench {
namespace {

Counts counts;

duk_ret_t before(duk_context*) {
    ++counts.before;
    return 0;
}
duk_ret_t after(duk_context*) {
    ++counts.after;
    return 0;
}
duk_ret_t numbers(duk_context* context) {
    for (duk_idx_t i = 0; i < 13; ++i) counts.sum += duk_require_number(context, i);
    return 0;
}
duk_ret_t mixed(duk_context* context) {
    for (duk_idx_t i = 0; i < 25; ++i) {
        if (i == 17 || i > 20) {
            duk_size_t length = 0;
            duk_require_lstring(context, i, &length);
            counts.characters += length;
        } else {
            counts.sum += duk_require_number(context, i);
        }
    }
    return 0;
}

class Heap {
public:
    Heap() : context_(duk_create_heap_default()) {
        expect(context_ != nullptr, "no Duktape heap");
        for (const auto& [name, function] : {std::pair<const char*, duk_c_function>{"before", before},
                                             {"after", after},
                                             {"SCTest", numbers},
                                             {"SCTestFull", mixed}}) {
            duk_push_c_function(context_, function, DUK_VARARGS);
            duk_put_global_string(context_, name);
        }
    }
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;
    ~Heap() { duk_destroy_heap(context_); }

    void run(const std::string& text) {
        if (duk_peval_lstring(context_, text.data(), text.size()) != 0)
            throw std::runtime_error(duk_safe_to_string(context_, -1));
        duk_pop(context_);
    }

private:
    duk_context* context_;
};

std::string inFunction(const std::string& body) {
    return "(function () { var before = this.before, after = this.after, SCTest = this.SCTest, SCTestFull = "
           "this.SCTestFull;\n" +
           body + "}).call(this);";
}

std::string loopOf(const std::string& beforeEach, const std::string& afterEach) {
    return inFunction("var count = 0, limit = " + std::to_string(turnsOfLoop) + ", less;\ndo {\n" + beforeEach +
                      "count = count + 1;\n" + afterEach + beforeEach + "less = count < limit;\n" + afterEach +
                      "} while (less);\n");
}

Workload loop(const std::string& manner, const std::string& text, std::int64_t calls) {
    auto heap = std::make_shared<Heap>();
    return loopWorkload(
        "Duktape/" + manner, counts, [=] { heap->run(text); },
        [calls] { expect(counts.before == calls && counts.after == calls, "natives called"); });
}

Workload statement(const std::string& name, const std::string& call, double sum, std::size_t characters) {
    auto heap = std::make_shared<Heap>();
    const std::string text = inFunction("for (var n = 0; n < " + std::to_string(turnsOfStatement) + "; ++n) {\n" +
                                        callsInTurn("before();\n" + call + ";\nafter();\n") + "before(); after(); }\n");
    return statementWorkload(name + "/Duktape", counts, sum, characters, [=] { heap->run(text); });
}

}  // namespace

extern "C" void addWorkloads(std::vector<Workload>& workloads) {
    workloads.push_back(loop("plain", loopOf("", ""), 0));
    workloads.push_back(loop("natives", loopOf("before();\n", "after();\n"), statementsOfLoop));
    workloads.push_back(statement("13 numbers", numbersCall(), sumOfNumbersCall, 0));
    workloads.push_back(statement("25 mixed", mixedCall(), sumOfMixedCall, textsOfMixedCall));
    workloads.push_back(makeWorkload<Heap>("Duktape", 200));
}

}  // namespace corvane::bench
