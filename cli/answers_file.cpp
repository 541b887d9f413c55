// The file is read in two steps: JSON text to a tree, which finds faults of form, then the tree to answers, which finds
// faults of content. The first fault is reported.

#include "cli/answers_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <span>
#include <utility>

#include "cli/message_buttons.h"
#include "platform/control_character.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

using Json = nlohmann::json;

/// Leaves the reading at the first fault of content; caught in `readAnswers`.
struct ContentFault {
    std::string text;
};

[[noreturn]] void refuse(const std::string& path, const std::string& text) {
    throw ContentFault{(path.empty() ? "/" : path) + ": " + text};
}

std::string quotedName(const std::string& name) {
    return Json(name).dump(-1, ' ', true, Json::error_handler_t::replace);
}

std::string below(const std::string& path, const std::string& key) {
    // Names from the file end up on a terminal, so what is no plain ASCII is escaped.
    const std::string escaped = quotedName(key);
    return path + "/" + escaped.substr(1, escaped.size() - 2);
}
std::string below(const std::string& path, std::size_t index) { return path + "/" + std::to_string(index); }

const Json& wanted(const Json& node, Json::value_t type, const std::string& path, const char* what) {
    if (node.type() != type) refuse(path, std::string("must be ") + what);
    return node;
}
const Json& object(const Json& node, const std::string& path) {
    return wanted(node, Json::value_t::object, path, "an object");
}
const Json& array(const Json& node, const std::string& path) {
    return wanted(node, Json::value_t::array, path, "an array");
}

void admitOnly(const Json& node, std::initializer_list<const char*> keys, const std::string& path) {
    for (const auto& member : node.items()) {
        const bool known = std::any_of(keys.begin(), keys.end(), [&](const char* key) { return member.key() == key; });
        if (!known) refuse(below(path, member.key()), "is not known here");
    }
}

std::int64_t positiveInteger(const Json& node, const std::string& path) {
    const bool fits = node.is_number_unsigned() &&
                      node.get<std::uint64_t>() <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    if (!fits || node.get<std::int64_t>() < 1) refuse(path, "must be a whole number from 1");
    return node.get<std::int64_t>();
}

float singleNumber(const Json& node, const std::string& path) {
    if (!node.is_number()) refuse(path, "must be a number");
    const double number = node.get<double>();
    if (!(std::abs(number) <= std::numeric_limits<float>::max())) refuse(path, "must fit a single");
    return static_cast<float>(number);
}

std::int32_t longNumber(const Json& node, const std::string& path) {
    const bool fits = node.is_number_unsigned()
                          ? node.get<std::uint64_t>() <= 0x7FFFFFFF
                          : node.is_number_integer() && node.get<std::int64_t>() < 0 &&
                                node.get<std::int64_t>() >= std::numeric_limits<std::int32_t>::min();
    if (!fits) refuse(path, "must be a whole number of 32 bits");
    return static_cast<std::int32_t>(node.get<std::int64_t>());
}

Value answerOf(const EventArgument& argument, const Json& node, const std::string& path) {
    switch (argument.type) {
        case ValueType::Text:
            if (!node.is_string()) refuse(path, "must be a text");
            return Value::ofText(fromUtf8(node.get<std::string>()));
        case ValueType::Boolean:
            if (!node.is_boolean()) refuse(path, "must be true or false");
            return Value::ofBoolean(node.get<bool>());
        case ValueType::Single: return Value::ofSingle(singleNumber(node, path));
        default: return Value::ofLong(longNumber(node, path));
    }
}

EventAnswer eventAnswer(const EventRow& row, const Json& node, const std::string& path) {
    EventAnswer values;
    for (const auto& member : object(node, path).items()) {
        const auto* first = row.arguments.begin();
        const auto* last = first + row.argumentCount;
        const auto* argument =
            std::find_if(first, last, [&](const EventArgument& a) { return a.name == member.key(); });
        const std::string place = below(path, member.key());
        if (argument == last) refuse(place, std::string(row.name) + " has no such argument");
        if (!argument->byReference) refuse(place, "is passed by value and takes no answer");
        values.emplace_back(argument - first, answerOf(*argument, member.value(), place));
    }
    return values;
}

void readEvent(Answers& answers, const EventRow& row, const Json& node, const std::string& path) {
    for (std::size_t i = 0; i < array(node, path).size(); ++i) {
        const std::string place = below(path, i);
        const Json& entry = object(node[i], place);
        admitOnly(entry, {"occurrence", "answer"}, place);
        if (!entry.contains("answer")) refuse(place, "has no \"answer\"");
        std::int64_t occurrence = 0;
        if (entry.contains("occurrence")) occurrence = positiveInteger(entry["occurrence"], below(place, "occurrence"));
        EventAnswer answer = eventAnswer(row, entry["answer"], below(place, "answer"));
        if (!answers.events.try_emplace({row.id, occurrence}, std::move(answer)).second)
            refuse(place, "answers the same occurrence once more");
    }
}

/// The words of all buttons: "yes", "no" or "ok".
std::string buttonWords() {
    const std::span<const MessageButton> buttons = messageButtons();
    std::string words;
    for (const MessageButton& button : buttons) {
        if (&button != &buttons.front()) words += &button == &buttons.back() ? " or " : ", ";
        words.append("\"").append(button.word).append("\"");
    }
    return words;
}

std::int32_t messageAnswer(const Json& node, const std::string& path) {
    if (node.is_string())
        for (const MessageButton& button : messageButtons())
            if (node.get_ref<const std::string&>() == button.word) return button.answer;
    refuse(path, "must be " + buttonWords());
}

TypedInput typedInput(const Json& node, const std::string& path) {
    if (node.is_number()) return {TypedInput::Kind::Number, singleNumber(node, path), {}};
    if (node.is_string()) return {TypedInput::Kind::Text, 0, fromUtf8(node.get<std::string>())};
    if (node != Json{{"cancel", true}}) refuse(path, "must be a number, a text or {\"cancel\": true}");
    return {};
}

DialogAnswers dialogsOf(const Json& node, const std::string& path) {
    admitOnly(object(node, path), {"messages", "inputs"}, path);
    DialogAnswers answers;
    const auto each = [&](const char* key, const auto& read) {
        if (!node.contains(key)) return;
        const std::string place = below(path, key);
        for (std::size_t i = 0; i < array(node[key], place).size(); ++i) read(node[key][i], below(place, i));
    };
    each("messages", [&](const Json& n, const std::string& p) { answers.messages.push_back(messageAnswer(n, p)); });
    each("inputs", [&](const Json& n, const std::string& p) { answers.inputs.push_back(typedInput(n, p)); });
    return answers;
}

Answers answersOf(const Json& root) {
    admitOnly(object(root, ""), {"$schema", "events", "dialogs", "finishLoopAfter"}, "");
    Answers answers;
    if (root.contains("events"))
        for (const auto& [name, entries] : object(root["events"], "/events").items()) {
            const EventRow* row = findEvent(name);
            if (row == nullptr) refuse(below("/events", name), "there is no such event");
            readEvent(answers, *row, entries, below("/events", name));
        }
    if (root.contains("dialogs")) answers.dialogs = dialogsOf(root["dialogs"], "/dialogs");
    if (root.contains("finishLoopAfter"))
        answers.finishLoopAfter = positiveInteger(root["finishLoopAfter"], "/finishLoopAfter");
    return answers;
}

/// Follows the reading to know where it is, and refuses two members of one name, of which the library would keep the
/// last without a word.
class ReadingPlace {
public:
    bool operator()(int, Json::parse_event_t event, Json& parsed) {
        switch (event) {
            case Json::parse_event_t::object_start: open_.push_back({false, 0, {}, {}}); break;
            case Json::parse_event_t::array_start: open_.push_back({true, 0, {}, {}}); break;
            case Json::parse_event_t::key: startMember(parsed.get<std::string>()); break;
            case Json::parse_event_t::object_end:
            case Json::parse_event_t::array_end: open_.pop_back(); [[fallthrough]];
            case Json::parse_event_t::value:
                if (!open_.empty()) ++open_.back().index;
        }
        return true;
    }

    /// Of the value that is being read.
    std::string path() const {
        std::string path;
        for (const Open& open : open_) path = open.isArray ? below(path, open.index) : below(path, open.name);
        return path;
    }

private:
    struct Open {
        bool isArray;
        std::size_t index;
        std::string name;
        std::set<std::string> names;
    };

    void startMember(const std::string& name) {
        open_.back().name = name;
        if (!open_.back().names.insert(name).second) refuse(path(), "stands twice in one object");
    }

    std::vector<Open> open_;
};

/// Line and column, from 1, of the byte that reading stopped at.
std::string placeOf(std::string_view bytes, std::size_t stoppedAfter) {
    const std::string_view before = bytes.substr(0, stoppedAfter == 0 ? 0 : stoppedAfter - 1);
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const std::string_view line = before.substr(before.rfind('\n') + 1);
    const std::u16string characters = fromUtf8(line);
    return std::to_string(lines + 1) + ":" + std::to_string(characters.size() + 1);
}

/// The library's own words without its preamble and position; what it quotes of the file as plain text.
std::string withoutPreamble(const Json::exception& error) {
    std::string text = error.what();
    for (const std::string_view end : {"] ", ": "}) {
        const std::size_t start = text.find(end);
        if (start != text.npos && (end == "] " || text.starts_with("parse error at")))
            text.erase(0, start + end.size());
    }
    std::u16string shown = fromUtf8(text);
    std::replace_if(shown.begin(), shown.end(), isControl, u'\xFFFD');
    return toUtf8(shown);
}

}  // namespace

const EventAnswer* Answers::find(HostEvent event, std::int64_t occurrence) const {
    auto answer = events.find({event, occurrence});
    if (answer == events.end()) answer = events.find({event, 0});
    return answer == events.end() ? nullptr : &answer->second;
}

AnswersResult readAnswers(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    ReadingPlace place;
    try {
        const Json root = Json::parse(bytes.begin(), bytes.end(), std::ref(place));
        return {answersOf(root), {}};
    } catch (const Json::parse_error& error) {
        return {std::nullopt, placeOf(bytes, error.byte) + ": " + withoutPreamble(error)};
    } catch (const Json::out_of_range& error) {
        const std::string path = place.path();
        return {std::nullopt, (path.empty() ? "/" : path) + ": " + withoutPreamble(error)};
    } catch (const ContentFault& fault) {
        return {std::nullopt, fault.text};
    }
}

}  // namespace corvane
