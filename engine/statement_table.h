#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "engine/event_table.h"
#include "engine/modCommand.h"

/// The 49 statement kinds, one row a kind: its catalogue record and how it is executed.
///
/// To add a kind: its enumeration value, its row in statement_table.cpp and, if it runs inside the engine, a handler.
/// Rows carry their key and stand in its order without gaps; a static_assert holds that.
namespace corvane {

class clsCommandList;
class StatementResult;
struct StatementStep;
class clsCommand;

inline constexpr std::size_t statementKindCount = 49;
inline constexpr enumCommandType firstStatementKind = ctGoto;
inline constexpr enumCommandType lastStatementKind = ctBlockStart;

/// What executing a statement does: the engine carries it out itself, or it raises one event, whose n-th argument the
/// statement's n-th parameter becomes.
struct alignas(32) Execution {  // so that a kind's place is found by a shift
    using Handler = StatementResult (*)(clsCommandList&, const clsCommand&, bool execute, const Execution&);

    Handler handler;
    enumCommandType calledAs;  ///< the kind that FunctionCalled tells
    HostEvent event;           ///< none of them: the engine carries the statement out
    std::uint8_t passed;       ///< how many parameters go to the event
    float rest;                ///< what the event's other arguments are filled with

    constexpr bool raises() const { return event != HostEvent{}; }
};

struct StatementRow {
    enumCommandType kind;
    FunctionDefinition definition;
    Execution execution;

    consteval StatementRow(enumCommandType type, std::u16string_view keyword, std::int32_t parameterCount,
                           std::u16string_view description, std::initializer_list<ParameterDefinition> parameters,
                           Execution how)
        : kind(type), definition{keyword, parameterCount, {}, description}, execution(how) {
        if (execution.calledAs == ctUnknown) execution.calledAs = kind;
        std::size_t slot = 0;
        for (const ParameterDefinition& parameter : parameters) definition.Params.at(slot++) = parameter;
    }
};

extern const std::array<StatementRow, statementKindCount> statementTable;

/// The row of a kind, or null for a kind that is no statement.
inline const StatementRow* findStatementRow(std::int32_t kind) {
    if (kind < firstStatementKind || kind > lastStatementKind) return nullptr;
    return &statementTable[static_cast<std::size_t>(kind - firstStatementKind)];
}

/// The kind of the published statement with that keyword, in any case; ctUnknown when there is none.
std::int32_t statementKindNamed(std::u16string_view keyword);

/// The executions of all rows by themselves: a run reads one of them a statement, and they lie close together.
extern const std::array<Execution, statementKindCount> executionTable;

/// How a kind is executed, or null for a kind that is no statement.
inline const Execution* findExecution(std::int32_t kind) {
    const auto position = static_cast<std::uint32_t>(kind - firstStatementKind);
    return position < statementKindCount ? &executionTable[position] : nullptr;
}

}  // namespace corvane
