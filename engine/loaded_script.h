#pragma once

#include "engine/block_vector.h"
#include "engine/clsCommand.h"
#include "engine/clsDataList.h"

namespace corvane {

/// What one load has made of a script's text. It is discarded whole: by the next load, or, when that load happens while
/// one of these statements runs, when the statement has ended.
struct LoadedScript {
    LoadedScript(clsCommandList& owner, EngineListener* const& listener) : engine(owner), dataMemory(listener) {}

    clsCommandList& engine;
    clsDataList dataMemory;
    BlockVector<clsCommand> statements;
    RunArena<std::uint32_t> slots;  // the statements' parameters: positions in the data memory
};

inline clsData clsCommand::ParamPtr(std::int32_t tIndex) const {
    if (tIndex < 0 || tIndex >= boundCount_) refuseSlot(tIndex);
    return script_->dataMemory.at(slots_[tIndex]);
}

}  // namespace corvane
