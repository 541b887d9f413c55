#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "host/clsProgramFunction.h"
#include "host/clsScriptControl.h"

namespace corvane {

/// Lists, for a program editor, the statements that a script performs: it runs the script on a private
/// clsScriptControl, answers every event at once with success and records one entry for each declaration, instrument
/// and dialog event.
///
/// The list follows the path that the script takes; a statement reached several times is listed several times. A script
/// that waits in a loop for its finish-loop flag is not stopped. The object must not be destroyed from inside its
/// calls.
class clsProgramFunctionList final : private EventSink {
public:
    /// Makes the collection of a new listing; it may throw.
    using CollectionMaker = std::function<Reference<FunctionCollection>()>;
    static Reference<FunctionCollection> newListing() { return Reference<FunctionCollection>(new FunctionListing); }

    explicit clsProgramFunctionList(const EngineServices& services, EngineOptions options = {},
                                    CollectionMaker newCollection = newListing)
        : services_(services), options_(options), newCollection_(std::move(newCollection)) {}
    clsProgramFunctionList(const clsProgramFunctionList&) = delete;
    clsProgramFunctionList& operator=(const clsProgramFunctionList&) = delete;
    ~clsProgramFunctionList() override { releaseControl(); }

    /// The result of the last load; false before any.
    bool ScriptLoaded() const { return scriptLoaded_; }
    /// The listing, shared with whom it was handed to; null before the first load.
    const Reference<FunctionCollection>& FunctionList() const { return functionList_; }

    /// Loads a script into a new control and starts a new listing, which holds the declarations when the load returns.
    /// Results and errors as those of clsScriptControl.
    bool LoadProgramScript_FromFile(std::u16string_view tFileName);
    bool LoadProgramScript_FromDatabase(std::u16string_view tScriptString, std::u16string_view tScriptName,
                                        std::int32_t tUID, std::int32_t tVersion);

    /// Runs the script and hands out the listing; the result is that of the run. False, and `tFunctionList` is left as
    /// it is, when no script is loaded. A second call appends the run's entries once more.
    bool CreateFunctionList(Reference<FunctionCollection>& tFunctionList);

private:
    void raise(Event& event) override;
    void record(const Event& event);
    void recordDataSet(clsProgramFunction& entry, const Event& event) const;
    void addParameter(clsProgramFunction& entry, const Value& value) const;
    std::shared_ptr<clsScriptControl> startListing();
    bool finishLoad(const clsScriptControl& control, bool loaded);
    void releaseControl();

    EngineServices services_;
    EngineOptions options_;
    CollectionMaker newCollection_;
    bool scriptLoaded_ = false;
    Reference<FunctionCollection> functionList_;
    std::shared_ptr<clsScriptControl> control_;  // shared with the call that runs it, which a new load may outlive
};

}  // namespace corvane
