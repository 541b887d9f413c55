#include "host/com/collection_com.h"

#include <algorithm>

#include "host/com/enumerator.h"
#include "host/com/records_com.h"
#include "platform/automation_error.h"
#include "platform/text_case.h"

namespace corvane {
namespace {

bool isLeftOut(const VARIANT& argument) {
    return V_VT(&argument) == VT_EMPTY || (V_VT(&argument) == VT_ERROR && V_ERROR(&argument) == DISP_E_PARAMNOTFOUND);
}

/// A copy of what a variant holds or refers to.
class Dereferenced {
public:
    explicit Dereferenced(const VARIANT& variant) {
        const HRESULT copied = VariantCopyInd(value_.get(), const_cast<VARIANT*>(&variant));
        if (copied == E_OUTOFMEMORY) throw automation_error(ErrorNumber::OutOfMemory);
        if (FAILED(copied)) throw automation_error(ErrorNumber::TypeMismatch);
    }
    const VARIANT& operator*() const { return *value_.get(); }
    OwnedVariant& owned() { return value_; }

private:
    OwnedVariant value_;
};

std::u16string keyOf(const VARIANT& text) {
    if (V_VT(&text) != VT_BSTR) throw automation_error(ErrorNumber::TypeMismatch);
    return toLower(viewOf(V_BSTR(&text)));
}

std::int64_t numberOf(const VARIANT& number) {
    const VARTYPE type = V_VT(&number);
    OwnedVariant converted;
    if (type == VT_DISPATCH || type == VT_UNKNOWN || type == VT_EMPTY || type == VT_NULL || type == VT_ERROR)
        throw automation_error(ErrorNumber::TypeMismatch);
    const HRESULT result = VariantChangeType(converted.get(), const_cast<VARIANT*>(&number), 0, VT_I4);
    if (result == DISP_E_OVERFLOW) throw automation_error(ErrorNumber::SubscriptOutOfRange);
    if (result == E_OUTOFMEMORY) throw automation_error(ErrorNumber::OutOfMemory);
    if (FAILED(result)) throw automation_error(ErrorNumber::TypeMismatch);
    return V_I4(converted.get());
}

/// What an enumeration walks: the collection itself, as it is at each step.
class LiveItems {
public:
    explicit LiveItems(CollectionObject& collection) : collection_(&collection) {}
    std::size_t count() const { return static_cast<std::size_t>(collection_->Count()); }
    bool item(std::size_t position, VARIANT& item) const { return collection_->copyItem(position, item); }

private:
    Reference<CollectionObject> collection_;
};

}  // namespace

CollectionObject::~CollectionObject() {
    // The last reference to an item goes with its entry, and the item may call in once more on its way, even to add
    // something: it finds a collection in order.
    while (!entries_.empty()) {
        keys_.clear();
        const std::vector<std::unique_ptr<Entry>> going = std::exchange(entries_, {});
    }
}

void CollectionObject::Add(Reference<clsProgramFunction> function) {
    auto entry = std::make_unique<Entry>();
    entry->recorded = std::move(function);
    entries_.push_back(std::move(entry));
}

clsProgramFunction& CollectionObject::Item(std::int32_t position) const {
    if (position < 1 || position > Count()) throw automation_error(ErrorNumber::SubscriptOutOfRange);
    const Entry& entry = *entries_[static_cast<std::size_t>(position) - 1];
    if (!entry.recorded) throw automation_error(ErrorNumber::TypeMismatch);
    return *entry.recorded;
}

const CollectionObject::Entry* CollectionObject::withKey(const VARIANT& key) const {
    const auto found = keys_.find(keyOf(key));
    if (found == keys_.end()) throw automation_error(ErrorNumber::InvalidProcedureCall);
    return found->second;
}

std::size_t CollectionObject::positionOf(const VARIANT& index) const {
    if (V_VT(&index) == VT_BSTR) {
        const Entry* const entry = withKey(index);
        const auto place = std::find_if(entries_.begin(), entries_.end(), [&](const std::unique_ptr<Entry>& candidate) {
            return candidate.get() == entry;
        });
        return static_cast<std::size_t>(place - entries_.begin());
    }
    const std::int64_t position = numberOf(index);
    if (position < 1 || position > Count()) throw automation_error(ErrorNumber::SubscriptOutOfRange);
    return static_cast<std::size_t>(position) - 1;
}

std::size_t CollectionObject::insertionPosition(const VARIANT& before, const VARIANT& after) const {
    if (!isLeftOut(before) && !isLeftOut(after)) throw automation_error(ErrorNumber::InvalidProcedureCall);
    if (!isLeftOut(before)) return positionOf(before);
    if (!isLeftOut(after)) return positionOf(after) + 1;
    return entries_.size();
}

bool CollectionObject::copyItem(std::size_t position, VARIANT& item) {
    if (position >= entries_.size()) return false;
    Entry& entry = *entries_[position];
    if (entry.recorded && V_VT(entry.item.get()) == VT_EMPTY) {
        V_DISPATCH(entry.item.get()) = newProgramFunctionFace(*entry.recorded).detach();
        V_VT(entry.item.get()) = VT_DISPATCH;
    }
    VariantInit(&item);
    if (FAILED(VariantCopy(&item, entry.item.get()))) throw automation_error(ErrorNumber::OutOfMemory);
    return true;
}

HRESULT CollectionObject::get_Item(VARIANT Index, VARIANT* tValue) {
    if (tValue != nullptr) VariantInit(tValue);
    return call(
        [&] {
            const Dereferenced index(Index);
            copyItem(positionOf(*index), *tValue);
        },
        tValue);
}

HRESULT CollectionObject::Add(VARIANT Item, VARIANT Key, VARIANT Before, VARIANT After) {
    return call([&] {
        Dereferenced item(Item);
        const Dereferenced key(Key);
        const Dereferenced before(Before);
        const Dereferenced after(After);
        auto entry = std::make_unique<Entry>();
        item.owned().moveTo(*entry->item.get());
        const std::size_t position = insertionPosition(*before, *after);
        if (entries_.size() == entries_.capacity()) entries_.reserve(entries_.size() * 2 + 1);
        if (!isLeftOut(*key)) {
            entry->key = keyOf(*key);
            if (!keys_.try_emplace(*entry->key, entry.get()).second)
                throw automation_error(ErrorNumber::KeyAlreadyInUse);
        }
        entries_.insert(entries_.begin() + static_cast<std::ptrdiff_t>(position), std::move(entry));
    });
}

HRESULT CollectionObject::get_Count(LONG* tValue) {
    return call([&] { *tValue = Count(); }, tValue);
}

HRESULT CollectionObject::Remove(VARIANT Index) {
    return call([&] {
        const Dereferenced index(Index);
        const auto place = entries_.begin() + static_cast<std::ptrdiff_t>(positionOf(*index));
        // The item's last reference may go with the entry, so the collection is in order again before.
        const std::unique_ptr<Entry> removed = std::move(*place);
        entries_.erase(place);
        if (removed->key) keys_.erase(*removed->key);
    });
}

HRESULT CollectionObject::get__NewEnum(IUnknown** tValue) {
    if (tValue != nullptr) *tValue = nullptr;
    return call(
        [&] {
            ComReference<IEnumVARIANT> created(
                new Enumerator<IEnumVARIANT, VARIANT, LiveItems>(IID_IEnumVARIANT, LiveItems(*this)));
            *tValue = created.detach();
        },
        tValue);
}

}  // namespace corvane
