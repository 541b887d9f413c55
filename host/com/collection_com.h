#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/clsProgramFunction.h"
#include "host/com/automation_object.h"

namespace corvane {

/// An ordinary automation collection: any variants in order, positions from 1, keys without regard to case.
///
/// It is the listing that the program function list fills and hosts share. A recorded statement gets its automation
/// object when somebody first asks for it.
class CollectionObject final : public AutomationObject<_Collection, FunctionCollection> {
public:
    CollectionObject() : AutomationObject(publishedCollection) {}
    ~CollectionObject() override;

    // FunctionCollection

    void Add(Reference<clsProgramFunction> function) override;
    std::int32_t Count() const override { return static_cast<std::int32_t>(entries_.size()); }
    /// Error 13 where a host has put something else.
    clsProgramFunction& Item(std::int32_t position) const override;

    // _Collection: error 9 for a position outside 1 to Count, 5 for a key that is not there, 13 for an index that is
    // neither number nor text

    HRESULT STDMETHODCALLTYPE get_Item(VARIANT Index, VARIANT* tValue) override;
    /// Error 457 when the key is in use; 5 when the entry is to stand both before and after another.
    HRESULT STDMETHODCALLTYPE Add(VARIANT Item, VARIANT Key, VARIANT Before, VARIANT After) override;
    HRESULT STDMETHODCALLTYPE get_Count(LONG* tValue) override;
    HRESULT STDMETHODCALLTYPE Remove(VARIANT Index) override;
    HRESULT STDMETHODCALLTYPE get__NewEnum(IUnknown** tValue) override;

    /// Copies the item at a position from 0; false behind the last one. Throws error 7.
    bool copyItem(std::size_t position, VARIANT& item);

private:
    struct Entry {
        OwnedVariant item;                       // empty as long as the record has no object
        Reference<clsProgramFunction> recorded;  // none where a host added the entry
        std::optional<std::u16string> key;       // as it is compared
    };

    std::size_t positionOf(const VARIANT& index) const;
    const Entry* withKey(const VARIANT& key) const;
    std::size_t insertionPosition(const VARIANT& before, const VARIANT& after) const;

    std::vector<std::unique_ptr<Entry>> entries_;
    std::unordered_map<std::u16string, const Entry*> keys_;
};

}  // namespace corvane
