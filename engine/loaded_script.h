#pragma once

#include "engine/block_vector.h"
#include "engine/clsCommand.h"
#include "engine/clsDataList.h"
#include "engine/slab_memory.h"

namespace corvane {

/// What one load has made of a script's text. It is discarded whole: by the next load, or, when that load happens
/// during a run, before the run's next statement or at its end.
struct LoadedScript {
    LoadedScript(clsCommandList& owner, EngineListener* const& listener)
        : engine(owner), dataMemory(memory, listener), statements(memory) {}

    clsCommandList& engine;
    SlabMemory memory;  // of all that follows
    clsDataList dataMemory;
    BlockVector<clsCommand> statements;
};

inline clsData clsCommand::ParamPtr(std::int32_t tIndex) const {
    return script_->dataMemory.itemOf(slotRecord(tIndex));
}

}  // namespace corvane
