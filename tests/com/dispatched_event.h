#pragma once

#include "engine/event.h"
#include "host/clsDataSetParameters.h"
#include "host/com/automation.h"

namespace corvane::testing {

/// How a host reaches the properties of the data-set object that an event hands it.
class DataSetAccess {
public:
    virtual ~DataSetAccess() = default;
    virtual void read(IDispatch& object, clsDataSetParameters& record) = 0;
    virtual void write(const clsDataSetParameters& record, IDispatch& object) = 0;
};

/// An event as a sink's call carries it, made into the record that this system's own hosts answer.
class DispatchedEvent {
public:
    /// Throws std::runtime_error, which tells the argument, where the call is not exactly as published.
    DispatchedEvent(DISPID event, DISPPARAMS& arguments, DataSetAccess& dataSets);

    Event& event() { return event_; }
    /// Writes the answers through the references of the call.
    void giveBack();

private:
    Event read(DISPID event, DataSetAccess& dataSets);
    VARIANTARG& argument(std::size_t position) { return arguments_.rgvarg[arguments_.cArgs - 1 - position]; }

    DISPPARAMS& arguments_;
    DataSetAccess& dataSets_;
    Event event_;
};

}  // namespace corvane::testing
