// From text to statements: lines are cut and classified here, one handler for each kind of line; statement lines go on
// to clsCommand. The doors are CreateCommandList and CheckCommandList, which differ only in what becomes of a fault.

#include <algorithm>
#include <functional>
#include <new>
#include <string>
#include <unordered_set>

#include "engine/clsCommandList.h"
#include "engine/numeric_reading.h"
#include "engine/text_utilities.h"
#include "platform/automation_error.h"
#include "platform/utf8.h"
#include "platform/value_rules.h"

namespace corvane {
namespace {

constexpr std::u16string_view variableKeyword = u"VAR ";
constexpr std::u16string_view constantKeyword = u"CONST ";
constexpr std::u16string_view environmentKeyword = u"ENV ";
constexpr std::u16string_view finishLoopFlagName = u"FINISH_LOOP_FLAG";

constexpr std::int32_t labelOrForwardReference = ptLabel | ptUndeclared;
constexpr std::int32_t numericConstant = ptConstant | ptNumber;
constexpr std::int32_t stringConstant = ptConstant | ptString;

/// Cuts the next line off `rest`. CR, LF and CR LF end a line; LF CR therefore ends two. The text after the last line
/// end is a line too, so false comes only when that one has been taken; an empty text has no lines at all.
class LineReader {
public:
    explicit LineReader(std::u16string_view text) : rest_(text), atEnd_(text.empty()) {}

    bool next(std::u16string_view& line) {
        if (atEnd_) return false;
        const char16_t* const begin = rest_.data();
        const auto end = static_cast<std::size_t>(FindEither(begin, begin + rest_.size(), u'\r', u'\n') - begin);
        line = rest_.substr(0, end);
        atEnd_ = end == rest_.size();
        if (atEnd_) return true;
        const bool pair = rest_[end] == u'\r' && end + 1 < rest_.size() && rest_[end + 1] == u'\n';
        rest_.remove_prefix(end + (pair ? 2 : 1));
        return true;
    }

private:
    std::u16string_view rest_;
    bool atEnd_;
};

std::int32_t countLines(std::u16string_view text) {
    std::int32_t lines = 0;
    LineReader reader(text);
    for (std::u16string_view line; reader.next(line);) ++lines;
    return lines;
}

struct Declaration {
    std::u16string_view name;
    std::u16string_view value;
};

Declaration splitDeclaration(std::u16string_view line, std::u16string_view keyword) {
    std::u16string_view rest = TrimBlanksAndTabs(line.substr(keyword.size()));
    const std::u16string_view name = TrimBlanksAndTabs(SplitAtEquals(rest));
    return {name, TrimBlanksAndTabs(rest)};
}

/// What an item is declared to hold: a number, or the string that the text stands for.
Value declaredValue(const NumericReading& reading, const NumberLocale& locale) {
    if (reading.isNumber()) return Value::ofSingle(reading.single(locale));
    return Value::ofText(StripQuotes(reading.text()));
}

}  // namespace

/// A load that looks for every fault instead of stopping at the first.
struct clsCommandList::Check {
    struct ForwardReference {
        std::uint32_t item;
        std::int32_t line;
        std::int32_t column;
    };

    FaultListener& listener;
    std::u16string_view line;  // the present one, untrimmed
    std::int32_t lineNumber = 0;
    bool lineIsFaulty = false;
    bool rejected = false;
    std::vector<ForwardReference> forwardReferences;

    explicit Check(FaultListener& faults) : listener(faults) {}

    void startLine(std::int32_t number, std::u16string_view text) {
        lineNumber = number;
        line = text;
        lineIsFaulty = false;
    }
    /// Where a stretch of the present line begins; the line's first mark when it is no part of the line.
    std::int32_t columnOf(std::u16string_view where) const {
        const std::less_equal<const char16_t*> notBehind;  // a total order, also over other texts
        const bool isWithin =
            notBehind(line.data(), where.data()) && notBehind(where.data(), line.data() + line.size());
        if (where.data() != nullptr && isWithin) return static_cast<std::int32_t>(where.data() - line.data());
        return static_cast<std::int32_t>(std::min(line.find_first_not_of(u" \t"), line.size()));
    }
    void report(std::u16string_view message, std::u16string_view where, bool rejects = true) {
        lineIsFaulty = true;
        rejected = rejected || rejects;
        listener.fault({lineNumber, columnOf(where), message, rejects});
    }
    void reportUndefinedLabel(const ForwardReference& reference, std::u16string_view message) {
        rejected = true;
        listener.fault({reference.line, reference.column, message, true});
    }
};

bool clsCommandList::CreateCommandList(std::u16string_view tScriptString) { return load(tScriptString, nullptr); }

bool clsCommandList::CheckCommandList(std::u16string_view tScriptString, FaultListener& faults) {
    Check check(faults);
    return load(tScriptString, &check) && !check.rejected;
}

bool clsCommandList::load(std::u16string_view text, Check* check) {
    if (loading_)
        throw automation_error(ErrorNumber::InvalidProcedureCall,
                               "A script is being loaded; another load cannot begin");
    struct LoadGuard {
        clsCommandList& engine;
        LoadGuard(clsCommandList& list, Check* check) : engine(list) {
            engine.loading_ = true;
            engine.check_ = check;  // cppcheck-suppress danglingLifetime ; the guard takes it back
        }
        ~LoadGuard() {
            engine.loading_ = false;
            engine.check_ = nullptr;
        }
    } guard(*this, check);

    userLocale_.reset();
    if (traceSink_ != nullptr)
        traceSink_->trace(doParsing, u"Creating command list from " + decimal(countLines(text)) + u" lines");
    currentLine_ = 0;
    syntaxErrorCount_ = 0;
    discardScript();
    clsDataList& memory = script_->dataMemory;
    finishLoopItem_ = memory.AddItem(finishLoopFlagName, ptEnvironment, Value::ofInteger(0)).position();

    bool accepted = false;
    try {
        accepted = parseLines(text);
    } catch (const automation_error&) {
        return false;
    } catch (const std::bad_alloc&) {
        if (check != nullptr) throw;  // an answer without a fault would say nothing
        return false;
    }
    if (accepted) accepted = resolveLabels();
    if (traceSink_ != nullptr && (debugOptions() & doTables) != 0) {
        const NumberLocale numbers = locale();  // a copy: the sink may call back and have the locale read anew
        memory.DebugPrint(*traceSink_, numbers);
    }
    return accepted;
}

void clsCommandList::discardScript() {
    auto script = std::make_unique<LoadedScript>(*this, listener_);
    if (scriptUses_ != 0) replacedScripts_.push_back(std::move(script_));  // or, without memory, all stays as it was
    script.swap(script_);
    finishLoopItem_.reset();
}

bool clsCommandList::parseLines(std::u16string_view text) {
    LineReader reader(text);
    for (std::u16string_view line; reader.next(line); ++currentLine_) {
        if (check_ != nullptr) {
            check_->startLine(currentLine_, line);
            checkLine(TrimBlanksAndTabs(line));
        } else if (!parseLine(TrimBlanksAndTabs(line))) {
            return false;
        }
    }
    return true;
}

// A fault of one line must not hide those of the next, whatever its kind.
void clsCommandList::checkLine(std::u16string_view line) {
    try {
        parseLine(line);
    } catch (const automation_error& error) {
        ++syntaxErrorCount_;
        check_->report(fromUtf8(error.what()), {});
    }
}

bool clsCommandList::parseLine(std::u16string_view line) {
    if (line.empty()) {
        if (traceSink_ != nullptr) traceSink_->trace(doParsing, u"File Line: " + decimal(currentLine_) + u":   Blank");
        return true;
    }
    if (line.front() == u';') {
        if (traceSink_ != nullptr) traceLine(u"Comment", line);
        return true;
    }
    if (traceSink_ != nullptr) traceLine(u"Script", line);
    if (parseScriptLine(line)) return true;
    // In a check a line that has said what is wrong with it needs no second message.
    if (check_ == nullptr || !check_->lineIsFaulty)
        SyntaxError(std::u16string(u"Invalid input:\r\n\r\n'").append(line).append(u"'"), line);
    return false;
}

bool clsCommandList::parseScriptLine(std::u16string_view line) {
    if (line.ends_with(u':')) return parseLabel(line);
    if (line.starts_with(variableKeyword)) return parseVariable(line);
    if (line.starts_with(constantKeyword)) return parseConstant(line);
    if (line.starts_with(environmentKeyword)) return parseEnvironmentVariable(line);
    return parseStatement(line);
}

bool clsCommandList::parseLabel(std::u16string_view line) {
    if (traceSink_ != nullptr) traceSink_->trace(doParsing, u"   o Line is a Label");
    const std::u16string_view name = line.substr(0, line.size() - 1);  // Kept: a blank before the colon belongs to it
    const Value address = Value::ofLong(commandCount());
    clsDataList& memory = DataMemory();
    std::int32_t position = 0;
    if (!memory.FindItem(name, position, labelOrForwardReference)) {
        memory.AddItem(name, ptLabel, address);
        return true;
    }
    clsData item = memory.Item(position);
    if (item.ParameterType() != ptUndeclared) {
        reportDuplicateLabel(name);
        return true;  // Kept: the load goes on and may be accepted; the first definition stays in force
    }
    item.setParameterType(ptLabel);
    item.setInitialValue(address);
    return true;
}

void clsCommandList::reportDuplicateLabel(std::u16string_view name) {
    const std::u16string message = std::u16string(u"Duplicate Lable Defined: ").append(name);
    if (check_ == nullptr) {
        SyntaxError(message, name);
        return;
    }
    ++syntaxErrorCount_;
    check_->report(message, name, false);
}

bool clsCommandList::parseVariable(std::u16string_view line) {
    if (traceSink_ != nullptr) traceSink_->trace(doParsing, u"   o Line is a Variable");
    const auto [name, value] = splitDeclaration(line, variableKeyword);
    const NumericReading declared(value, locale());
    const bool isNumber = value.empty() || declared.isNumber();
    clsData item = DataMemory().AddItem(name, isNumber ? ptNumber : ptString, Value::ofInteger(0));
    if (!value.empty()) item.setInitialValue(declaredValue(declared, locale()));
    raiseDeclaration(HostEvent::VariableAdded, name, item.InitialValue());
    return true;
}

bool clsCommandList::parseConstant(std::u16string_view line) {
    if (traceSink_ != nullptr) traceSink_->trace(doParsing, u"   o Line is a Constant");
    const auto [name, value] = splitDeclaration(line, constantKeyword);
    if (value.empty()) return parseEmptyConstant(name);
    const NumericReading declared(value, locale());
    clsData item =
        DataMemory().AddItem(name, declared.isNumber() ? numericConstant : stringConstant, Value::ofInteger(0));
    item.setInitialValue(declaredValue(declared, locale()));
    raiseDeclaration(HostEvent::ConstantAdded, name, item.InitialValue());
    return true;
}

// Kept: the event is raised for a constant without a value as well, before the load stops. A check goes on, and takes
// the name for a constant, so that its uses are no faults of their own.
bool clsCommandList::parseEmptyConstant(std::u16string_view name) {
    const clsData item =
        DataMemory().AddItem(name, check_ == nullptr ? ptUndeclared : numericConstant, Value::ofInteger(0));
    raiseDeclaration(HostEvent::ConstantAdded, name, item.InitialValue());
    return false;
}

// Kept: the value is the text as it stands, with its quotes and "|".
bool clsCommandList::parseEnvironmentVariable(std::u16string_view line) {
    if (traceSink_ != nullptr) traceSink_->trace(doParsing, u"   o Line is a Constant");  // Kept: the text of constants
    const auto [name, value] = splitDeclaration(line, environmentKeyword);
    clsDataList& memory = DataMemory();
    const Value text = Value::ofText(value);
    std::int32_t position = 0;
    if (!memory.FindItem(name, position, ptEnvironment)) memory.AddItem(name, ptEnvironment, text);
    clsData item = memory.Item(position);  // where there was none, the position is that of the new one
    item.setInitialValue(text);
    raiseDeclaration(HostEvent::EnvironmentVariableAdded, item.Identifier(), text);
    return true;
}

bool clsCommandList::parseStatement(std::u16string_view line) {
    if (traceSink_ != nullptr) traceSink_->trace(doParsing, u"   o Line is a Keyword");
    clsCommand command(*this);
    if (!command.ProcessKeyword(line)) return false;
    script_->statements.emplaceBack(command);
    return true;
}

bool clsCommandList::resolveLabels() {
    clsDataList& memory = DataMemory();
    if (memory.undeclaredCount() == 0) return true;
    const auto message = [](const clsData& item) {
        return std::u16string(u"Undefined Label: ").append(item.Identifier());
    };
    if (check_ != nullptr) {
        std::unordered_set<std::uint32_t> reported;  // each label at its first use only
        for (const Check::ForwardReference& reference : check_->forwardReferences) {
            const clsData item = memory.at(reference.item);
            if (item.ParameterType() != ptUndeclared || !reported.insert(reference.item).second) continue;
            ++syntaxErrorCount_;
            check_->reportUndefinedLabel(reference, message(item));
        }
    } else {
        std::int32_t first = 0;
        while (memory.Item(first).ParameterType() != ptUndeclared) ++first;
        SyntaxError(message(memory.Item(first)));
    }
    return false;
}

void clsCommandList::SyntaxError(std::u16string_view tMsg, std::u16string_view where) {
    if (check_ != nullptr) {
        check_->report(tMsg, where);
    } else if (syntaxErrorCount_ == 0) {
        const std::u16string title = u"Syntax Error on Line " + decimal(currentLine_);
        services_.dialogs.showMessage({.text = tMsg, .caption = title, .style = okExclamationStyle, .helpFile = {}});
    }
    ++syntaxErrorCount_;
}

void clsCommandList::noteForwardReference(std::uint32_t position, std::u16string_view where) {
    if (check_ != nullptr) check_->forwardReferences.push_back({position, currentLine_, check_->columnOf(where)});
}

void clsCommandList::raiseDeclaration(HostEvent event, std::u16string_view identifier, const Value& initialValue) {
    Event declaration(event);
    declaration.append(Value::ofText(identifier));
    declaration.append(Value::ofText(toText(initialValue, locale())));
    declaration.append(Value::ofBoolean(false));
    owner_.raise(declaration);
}

void clsCommandList::traceLine(std::u16string_view kind, std::u16string_view line) {
    std::u16string text = u"File Line: " + decimal(currentLine_);
    text.append(u":   ").append(kind).append(u" Text: '").append(line).append(u"'");
    traceSink_->trace(doParsing, text);
}

}  // namespace corvane
