#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// The scripts that every system is given, each in its own notation.
namespace corvane::bench {

/// How a system writes what the scripts consist of.
struct Notation {
    std::string head;                               ///< declarations
    std::string (*call)(const std::string& call);   ///< a statement line: "Name(a, b)"
    std::string (*label)(const std::string& name);  ///< a label line
    std::string (*jump)(const std::string& label);  ///< jumps back to the label while Count is less than Limit
};

/// `lines` lines: a third SCTest with 13 numbers, a third MoveToHeight, a third Info; `labels` per cent of them labels
/// and as many conditional jumps. Run, each line is reached once.
std::string mixOf(std::size_t lines, int labels, const Notation& notation);

/// SCTest with 13 numbers, and SCTestFull with 25 parameters, 5 of them texts.
std::string numbersCall();
std::string mixedCall();
/// What the host's functions must find as the sum of the numbers of one such call.
inline constexpr double sumOfNumbersCall = 91;
inline constexpr double sumOfMixedCall = 136;
inline constexpr std::size_t textsOfMixedCall = 9;  ///< characters

inline constexpr std::size_t turnsOfLoop = 1'000'000;
inline constexpr std::size_t turnsOfStatement = 20'000;
inline constexpr std::size_t callsOfTurn = 10;  // so that what it takes to go round does not count for much
inline constexpr std::size_t callsOfStatement = turnsOfStatement * callsOfTurn;
/// What one turn consists of.
std::string callsInTurn(const std::string& call);
inline constexpr std::size_t linesOfShortScript = 100;

/// The sizes of script that a load is measured with, and the share of labels.
struct MixSize {
    std::size_t lines;
    int labels;
};
inline constexpr MixSize mixSizes[] = {{1'000, 1},  {10'000, 1},  {100'000, 1},  {1'000'000, 1},
                                       {1'000, 10}, {10'000, 10}, {100'000, 10}, {300'000, 10}};

inline std::string loadName(const MixSize& size) {
    return (size.labels == 1 ? "load " : "load with labels ") + std::to_string(size.lines);
}

}  // namespace corvane::bench
