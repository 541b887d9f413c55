#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>

/// The texts that are loaded and run here, in the component's notation and in those of the peers.
namespace corvane::bench {

/// How a language writes what the workloads consist of.
struct Notation {
    std::u16string head;  ///< before the first line
    std::u16string tail;  ///< after the last
    std::function<std::u16string(const std::u16string& call)> statement;
    std::function<std::u16string(const std::u16string& name)> label;
    std::function<std::u16string(const std::u16string& name)> jump;
};

/// The component's own.
extern const Notation scriptNotation;
/// A procedure `Work` that asks and tells its host as the component does: before each statement and after it.
extern const Notation vbscriptWork;
extern const Notation jscriptWork;
/// The same with the plain calls only, line by line as long as the component's.
extern const Notation vbscriptText;
extern const Notation jscriptText;

inline const std::u16string incrementCall = u"Increment(Count)";
inline const std::u16string parkCall = u"Park()";
inline const std::u16string numbersCall = u"SCTest(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13)";
inline const std::u16string mixedCall =
    u"SCTestFull(1, 2, 3, 1, 5, 6, 1, 1, 9, 10, 11, 12, 1, 14, 1, 1, 17, \"3,6,9\", 19, 20, 1, \"first\", \"second\", "
    u"\"third\", \"fourth\")";

/// One statement, again and again.
std::u16string repeated(const std::u16string& call, std::size_t times, const Notation& notation);

/// The same as the component's script, so many times in each of so many turns of a loop, which has two statements.
std::u16string looped(const std::u16string& call, std::size_t times, std::size_t turns);

/// A long script: one third `SCTest` with 13 numbers, one third `MoveToHeight` with 4, one third `Info` with a text;
/// of each hundred lines one is a label and one a conditional jump.
std::u16string mix(std::size_t lines, const Notation& notation);

}  // namespace corvane::bench
