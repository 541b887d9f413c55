#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/enumerations.h"
#include "platform/shared_record.h"
#include "platform/text.h"

namespace corvane {

/// One statement of a program listing.
class clsProgramFunction final : public SharedRecord {
public:
    enumCommandType FunctionType = ctUnknown;
    std::u16string FunctionName;  ///< the name of that kind

    /// Appends a parameter's text.
    void AddParam(std::u16string_view tParam) { parameters_.emplace_back(tParam); }
    /// The parameter at `tIndex`, 0 to ParamCount - 1; error 9 elsewhere.
    std::u16string_view Param(std::int32_t tIndex) const;
    std::int32_t ParamCount() const { return static_cast<std::int32_t>(parameters_.size()); }
    /// Kept for hosts that call it: no output, no effect.
    void DebugPrint(std::int32_t /*tIndex*/, bool /*tPrintParams*/) const {}

private:
    std::vector<Text> parameters_;
};

/// An ordered collection of listed statements, shared by everybody who holds it.
class FunctionCollection : public SharedRecord {
public:
    virtual void Add(Reference<clsProgramFunction> function) = 0;
    virtual std::int32_t Count() const = 0;
    /// The entry at a position from 1 to Count; error 9 elsewhere.
    virtual clsProgramFunction& Item(std::int32_t position) const = 0;
};

/// The plain collection.
class FunctionListing final : public FunctionCollection {
public:
    void Add(Reference<clsProgramFunction> function) override { functions_.push_back(std::move(function)); }
    std::int32_t Count() const override { return static_cast<std::int32_t>(functions_.size()); }
    clsProgramFunction& Item(std::int32_t position) const override;

private:
    std::vector<Reference<clsProgramFunction>> functions_;
};

}  // namespace corvane
