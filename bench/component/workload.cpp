#include "bench/component/workload.h"

namespace corvane::bench {
namespace {

std::u16string number(std::size_t value) {
    const std::string digits = std::to_string(value);
    return std::u16string(digits.begin(), digits.end());
}

std::u16string statementAt(std::size_t line) {
    const std::u16string height = number(line % 90) + u".5";
    switch (line % 3) {
        case 0: return u"SCTest(" + height + u", 60, 1, 18, 5, 30, 1, 7.5, 18, 5, 1, 0, 12)";
        case 1: return u"MoveToHeight(" + height + u", 0, 5, 60)";
        default: return u"Info(\"Step " + number(line) + u"\")";
    }
}

std::u16string asItIs(const std::u16string& call) { return call; }
std::u16string ofHost(const std::u16string& call) { return u"ok = " + call; }

}  // namespace

const Notation scriptNotation{u"VAR Count = 0\r\nCONST Limit = 3\r\n", u"", asItIs,
                              [](const std::u16string& name) { return name + u":"; },
                              [](const std::u16string& name) { return u"IfLessThan(Count, Limit, " + name + u")"; }};

// Neither language has a jump: a definition and a condition of the same length stand for label and jump.
const Notation vbscriptText{u"Sub Work\r\n", u"End Sub\r\n", ofHost,
                            [](const std::u16string& name) { return name + u" = 0"; },
                            [](const std::u16string& name) { return u"If Count < Limit Then " + name + u" = 1"; }};
const Notation jscriptText{u"function Work() {\r\n", u"}\r\n",
                           [](const std::u16string& call) { return ofHost(call) + u";"; },
                           [](const std::u16string& name) { return name + u": ;"; },
                           [](const std::u16string& name) { return u"if (Count < Limit) " + name + u" = 1;"; }};

const Notation vbscriptWork{u"Sub Work\r\nDim ok, Count\r\nCount = 0\r\n",
                            u"End Sub\r\n",
                            [](const std::u16string& call) {
                                return u"If FunctionCalled(26, True) Then " + ofHost(call) +
                                       u"\r\nIf Not KeepGoing() Then Exit Sub";
                            },
                            {},
                            {}};
const Notation jscriptWork{u"function Work() {\r\nvar ok, Count = 0;\r\n",
                           u"}\r\n",
                           [](const std::u16string& call) {
                               return u"if (FunctionCalled(26, true)) " + ofHost(call) +
                                      u";\r\nif (!KeepGoing()) return;";
                           },
                           {},
                           {}};

std::u16string repeated(const std::u16string& call, std::size_t times, const Notation& notation) {
    std::u16string text = notation.head;
    for (std::size_t i = 0; i < times; ++i) text.append(notation.statement(call)).append(u"\r\n");
    return text.append(notation.tail);
}

std::u16string looped(const std::u16string& call, std::size_t times, std::size_t turns) {
    return u"VAR Turn = 0\r\nAgain:\r\n" + repeated(call, times, scriptNotation) +
           u"Increment(Turn)\r\nIfLessThan(Turn, " + number(turns) + u", Again)";
}

std::u16string mix(std::size_t lines, const Notation& notation) {
    std::u16string text = notation.head;
    for (std::size_t line = 0; line < lines; ++line) {
        const std::u16string label = u"Label" + number(line / 100);
        switch (line % 100) {
            case 1: text.append(notation.label(label)); break;
            case 3: text.append(notation.jump(label)); break;
            default: text.append(notation.statement(statementAt(line))); break;
        }
        text.append(u"\r\n");
    }
    return text.append(notation.tail);
}

}  // namespace corvane::bench
