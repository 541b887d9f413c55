#include "cli/script_check.h"

#include <algorithm>
#include <ostream>

#include "host/clsScriptControl.h"
#include "platform/automation_error.h"
#include "platform/control_character.h"
#include "platform/script_file.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

class FaultCollector final : public FaultListener {
public:
    explicit FaultCollector(std::vector<FoundFault>& faults) : faults_(faults) {}
    void fault(const ScriptFault& fault) override {
        faults_.push_back({fault.line, fault.column, std::u16string(fault.message), fault.rejects});
    }

private:
    std::vector<FoundFault>& faults_;
};

// A line of bytes that are no script may be as long as the file.
constexpr std::size_t longestMessage = 300;
constexpr std::size_t longestExcerpt = 160;
constexpr std::size_t excerptBeforeColumn = 80;

/// One line of it: line ends become a blank, other control characters a replacement character.
std::u16string shortened(std::u16string_view message) {
    std::u16string line;
    for (const char16_t unit : message) {
        const bool isBreak = unit == u'\r' || unit == u'\n';
        if (isBreak && line.ends_with(u' ')) continue;
        line += isBreak || unit == u'\t' ? u' ' : isControl(unit) ? u'\xFFFD' : unit;
        if (line.size() > longestMessage) return line + u"...";
    }
    return line;
}

void writeSource(std::ostream& output, std::u16string_view line, std::size_t column) {
    column = std::min(column, line.size());
    std::u16string shown;
    std::u16string below;
    if (column > excerptBeforeColumn && line.size() > longestExcerpt) {
        const std::size_t cut = column - excerptBeforeColumn;
        line.remove_prefix(cut);
        column -= cut;
        shown = u"...";
        below = u"   ";
    }
    const bool isCut = line.size() > longestExcerpt;
    line = line.substr(0, longestExcerpt);
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char16_t unit = line[i];
        shown += isControl(unit) && unit != u'\t' ? u'\xFFFD' : unit;
        // A tab below a tab keeps the caret in place whatever the width of tabs.
        if (i < column) below += unit == u'\t' ? u'\t' : u' ';
    }
    output << "  " << toUtf8(shown) << (isCut ? "..." : "") << "\n  " << toUtf8(below) << "^\n";
}

}  // namespace

CheckedScript checkScript(std::u16string_view text, const NumberLocale* locale) {
    NoOperator dialogs;
    SystemMessagePump pump;
    clsScriptControl control({dialogs, pump, locale});
    CheckedScript script;
    FaultCollector collector(script.faults);
    script.accepted = control.engine().CheckCommandList(text, collector);
    script.statements = control.engine().commandCount();
    return script;
}

std::optional<std::u16string> readScript(std::string_view path, std::string& fault) {
    try {
        std::optional<std::u16string> text = readExistingScriptFile(fromUtf8(path));
        if (!text) fault = "no such file: '" + printable(path) + "'";
        return text;
    } catch (const automation_error& error) {
        fault = error.what();
        return std::nullopt;
    }
}

std::vector<std::u16string_view> scriptLines(std::u16string_view text) {
    std::vector<std::u16string_view> lines;
    for (;;) {
        const std::size_t end = std::min(text.find_first_of(u"\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        if (end == text.size()) return lines;
        text.remove_prefix(end + (text.substr(end).starts_with(u"\r\n") ? 2 : 1));
    }
}

void writeFaults(std::ostream& output, std::string_view file, std::u16string_view text,
                 const std::vector<FoundFault>& faults) {
    if (faults.empty()) return;
    const std::vector<std::u16string_view> lines = scriptLines(text);
    for (const FoundFault& fault : faults) {
        output << printable(file) << ':' << fault.line + 1LL << ':' << fault.column + 1LL << ": "
               << (fault.rejects ? "error: " : "warning: ") << toUtf8(shortened(fault.message)) << '\n';
        const auto line = static_cast<std::size_t>(fault.line);
        if (line < lines.size()) writeSource(output, lines[line], static_cast<std::size_t>(fault.column));
    }
}

std::string printable(std::string_view utf8) {
    std::u16string text = fromUtf8(utf8);
    std::replace_if(text.begin(), text.end(), isControl, u'\xFFFD');
    return toUtf8(text);
}

}  // namespace corvane
