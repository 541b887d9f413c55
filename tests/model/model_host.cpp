// Plays cases, as cases.py describes them, and writes what a host sees: cases come in on the standard input, the log
// goes out on the standard output. A line "measure" between two cases asks what the process holds.

#include <bit>
#include <cstdio>
#include <iostream>
#include <map>
#include <optional>
#include <vector>

#include "host/clsDataSetParameters.h"
#include "tests/model/measurement.h"
#include "tests/model/model_control.h"

namespace corvane::testing {

namespace {

std::string hexadecimal(std::uint64_t number, int digits) {
    std::string text(static_cast<std::size_t>(digits), '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4)
        *digit = "0123456789abcdef"[number & 15];
    return text;
}

std::vector<std::string_view> split(std::string_view line) {
    std::vector<std::string_view> words;
    while (!line.empty()) {
        const std::size_t end = std::min(line.find(' '), line.size());
        if (end > 0) words.push_back(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return words;
}

std::int32_t readNumber(std::string_view word) { return static_cast<std::int32_t>(std::stol(std::string(word))); }

std::uint32_t readBits(std::string_view word) {
    return static_cast<std::uint32_t>(std::stoul(std::string(word), nullptr, 16));
}

std::u16string readText(std::string_view word) {
    std::u16string text;
    for (std::size_t i = 1; i < word.size(); ++i) {
        if (word[i] == '\\') {
            text += static_cast<char16_t>(readBits(word.substr(i + 1, 4)));
            i += 4;
        } else {
            text += static_cast<char16_t>(word[i]);
        }
    }
    return text;
}

Value readValue(std::string_view word) {
    if (word.starts_with("$")) return Value::ofText(readText(word));
    if (word.starts_with("r4:")) return Value::ofSingle(std::bit_cast<float>(readBits(word.substr(3))));
    if (word.starts_with("b:")) return Value::ofBoolean(word == "b:1");
    return Value::ofLong(readNumber(word.substr(3)));
}

std::string written(const clsDataSetParameters& record) {
    const auto integer = [](std::int32_t number) { return ",i4:" + std::to_string(number); };
    const auto single = [](float number) { return "," + writtenSingle(number); };
    return "{" + writtenSingle(record.HelixAngle) + single(record.TipSpeed) + single(record.Height) +
           single(record.Force) + single(record.SampleDelta) + integer(record.SampleType) +
           integer(record.DataSetType) + integer(record.TestResult) + integer(record.Direction) +
           integer(record.LevellingFrom) + integer(record.LevellingType) + single(record.LevellingTrigger) +
           single(record.LevellingHix) + single(record.LevellingTip) + "}";
}

void storeResult(clsDataSetParameters& record, std::string_view field, std::string_view value) {
    if (field == "TestResult")
        record.TestResult = static_cast<enumTestResult>(readValue(value).longInteger());
    else if (field == "Direction")
        record.Direction = readValue(value).longInteger();
    else if (field == "Force")
        record.Force = readValue(value).single();
    else
        throw std::runtime_error("no such field: " + std::string(field));
}

struct Rule {
    std::int32_t nth;
    std::vector<std::string> action;
};

constexpr std::string_view pump = "Pump";

/// One case: the host that it describes, and its log.
class CaseHost final : public EventSink, public CaseOperator {
public:
    explicit CaseHost(std::string_view opening) {
        const auto words = split(opening);
        if (words.size() != 4) throw std::runtime_error("not the opening of a case: " + std::string(opening));
        const auto flagged = [&](char letter) { return words[3].find(letter) != words[3].npos; };
        settings_ = {.comma = words[2] == "comma",
                     .designed = flagged('d'),
                     .traced = flagged('t'),
                     .traceParameters = flagged('p'),
                     .listened = flagged('l'),
                     .unattended = flagged('u'),
                     .lateBound = flagged('b')};
        log("case " + std::string(words[1]));
    }

    void read(std::string_view line) {
        const auto words = split(line);
        if (words[0] == "limit") {
            limit_ = readNumber(words[1]);
        } else if (words[0] == "on") {
            rules_[std::string(words[1])].push_back({readNumber(words[2]), {words.begin() + 3, words.end()}});
        } else if (words[0] == "box") {
            buttons_.push_back(readNumber(words[1]));
        } else if (words[0] == "input") {
            inputs_.emplace_back(words[1] == "ok", words.size() > 2 ? std::optional(readText(words[2])) : std::nullopt);
        } else if (words[0] == "do") {
            actions_.emplace_back(words.begin() + 1, words.end());
        } else {
            throw std::runtime_error("unknown line: " + std::string(line));
        }
    }

    std::string play() {
        control_ = makeModelControl(settings_, *this, *this);
        for (const auto& action : actions_) {
            pumps_ = going_ = 0;
            act(action);
            log("pumps " + std::to_string(pumps_));
        }
        control_.reset();
        return std::move(log_);
    }

    void raise(Event& event) override {
        const EventRow& row = event.row();
        std::string line = " e " + std::string(row.name);
        for (std::size_t i = 0; i < event.count(); ++i) {
            const Value& value = event.argument(i);
            line += " " + std::string(row.arguments[i].name) + "=" +
                    (value.type() == ValueType::Object ? written(dataSet(value)) : testing::written(value));
        }
        log(line);
        event.succeed(event.id() != HostEvent::KeepGoing || ++going_ < limit_);
        for (const Rule* rule : due(row.name)) {
            const auto& action = rule->action;
            if (action[0] == "answer")
                event.answer(action[1], readValue(action[2]));
            else if (action[0] == "result")
                storeResult(dataSet(event.argument(0)), action[1], action[2]);
            else
                act(action);
        }
    }

    void log(std::string line) override { (log_ += line) += '\n'; }

    std::int32_t nextButton() override { return nextButton_ < buttons_.size() ? buttons_[nextButton_++] : 6; }

    bool nextInput(std::unique_ptr<std::u16string>& entry) override {
        if (nextInput_ == inputs_.size()) return false;
        const auto& [accepted, text] = inputs_[nextInput_++];
        if (text) entry = std::make_unique<std::u16string>(*text);
        return accepted;
    }

    void pumped() override {
        ++pumps_;
        if (listing_) {
            if (pumps_ >= mostPumpsOfAListing) throw CallFailed{runaway};
            return;
        }
        for (const Rule* rule : due(pump)) act(rule->action);
    }

private:
    static constexpr std::int32_t mostPumpsOfAListing = 120;
    static constexpr std::int32_t runaway = -1;

    static clsDataSetParameters& dataSet(const Value& value) {
        return static_cast<clsDataSetParameters&>(value.object());
    }

    std::vector<const Rule*> due(std::string_view name) {
        std::vector<const Rule*> found;
        const std::string key(name);
        const std::int32_t count = ++counts_[key];
        for (const Rule& rule : rules_[key])
            if (rule.nth == 0 || rule.nth == count) found.push_back(&rule);
        return found;
    }

    void act(const std::vector<std::string>& action) {
        log("> " + action[0]);
        try {
            log(perform(action));
        } catch (const CallFailed& failure) {
            log("! " + std::to_string(failure.number));
        }
    }

    std::string perform(const std::vector<std::string>& action) {
        const std::string& name = action[0];
        const auto truth = [](bool result) { return result ? "= b:1" : "= b:0"; };
        if (name == "load")
            return truth(
                control_->load(readText(action[1]), readText(action[2]), readNumber(action[3]), readNumber(action[4])));
        if (name == "run") return truth(control_->run());
        if (name == "flag") {
            control_->finishLoopFlag();
            return "=";
        }
        if (name == "edit")
            return truth(control_->edit(readNumber(action[1]), std::bit_cast<float>(readBits(action[2]))));
        if (name == "value") {
            const std::u16string key = readText(action[1]);
            const std::string variable = testing::written(control_->environmentVariable(key));
            const std::string constant = testing::written(control_->constant(key));
            return "= " + variable + " " + constant + " " + testing::written(control_->memoryValue(key));
        }
        if (name == "sinks") {
            control_->onlookers(readNumber(action[1]));
            return "=";
        }
        if (name == "memory") {
            control_->logMemory();
            return "=";
        }
        if (name == "state")
            return "= " + std::to_string(control_->scriptFrom()) + " " + testing::written(control_->scriptFile()) +
                   " " + std::to_string(control_->uid()) + " " + std::to_string(control_->version()) + " " +
                   std::to_string(control_->editableCount());
        if (name == "kind") return "= " + testing::written(control_->kindName(readNumber(action[1])));
        if (name != "list") throw std::runtime_error("unknown action: " + name);
        listing_ = true;
        control_->list(readNumber(action[1]), readText(action[2]));
        listing_ = false;
        return "=";
    }

    CaseSettings settings_;
    std::int32_t limit_ = 50;
    std::map<std::string, std::vector<Rule>> rules_;
    std::vector<std::int32_t> buttons_;
    std::vector<std::pair<bool, std::optional<std::u16string>>> inputs_;
    std::vector<std::vector<std::string>> actions_;

    std::unique_ptr<ModelControl> control_;
    std::map<std::string, std::int32_t> counts_;
    std::size_t nextButton_ = 0;
    std::size_t nextInput_ = 0;
    std::int32_t going_ = 0;
    std::int32_t pumps_ = 0;
    bool listing_ = false;
    std::string log_;
};

void playAll(std::istream& cases, std::ostream& log) {
    std::optional<CaseHost> host;
    for (std::string line; std::getline(cases, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.starts_with("case ")) {
            host.emplace(line);
        } else if (line == "end") {
            log << host.value().play() << std::flush;
            host.reset();
        } else if (line == "measure") {
            log << measurement() << std::endl;
        } else {
            host.value().read(line);
        }
    }
}

}  // namespace

std::string writtenSingle(float number) { return "r4:" + hexadecimal(std::bit_cast<std::uint32_t>(number), 8); }

std::string written(std::u16string_view text) {
    std::string line = "$";
    for (const char16_t unit : text) {
        if (unit > u' ' && unit <= u'~' && unit != u'\\')
            line += static_cast<char>(unit);
        else
            line += "\\" + hexadecimal(unit, 4);
    }
    return line;
}

std::string written(const Value& value) {
    switch (value.type()) {
        case ValueType::Integer: return "i2:" + std::to_string(value.integer());
        case ValueType::Long: return "i4:" + std::to_string(value.longInteger());
        case ValueType::Single: return writtenSingle(value.single());
        case ValueType::Double: return "r8:" + hexadecimal(std::bit_cast<std::uint64_t>(value.doubleFloat()), 16);
        case ValueType::Boolean: return value.boolean() ? "b:1" : "b:0";
        case ValueType::Text: return written(value.textView());
        case ValueType::Object: break;
    }
    return "object";
}

}  // namespace corvane::testing

int main() {
    std::ios::sync_with_stdio(false);
    try {
        corvane::testing::playAll(std::cin, std::cout);
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
