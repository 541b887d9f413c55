#include "engine/name_index.h"

#include <algorithm>

#include "platform/text_case.h"

namespace corvane {

std::uint32_t NameIndex::hashIgnoringCase(std::u16string_view name) noexcept {
    std::uint32_t hash = 2166136261U;  // FNV-1a
    for (const char16_t c : name) hash = (hash ^ toLower(c)) * 16777619U;
    return hash ^ (hash >> 15);
}

NameIndex::Entry* NameIndex::lookUp(std::u16string_view name) const noexcept {
    if (table_.empty()) return nullptr;
    const std::uint32_t hash = hashIgnoringCase(name);
    const std::size_t mask = table_.size() - 1;
    for (std::size_t i = hash & mask; table_[i] != nullptr; i = (i + 1) & mask)
        if (table_[i]->hash == hash && equalIgnoringCase(table_[i]->name, name)) return table_[i];
    return nullptr;
}

NameIndex::Entry& NameIndex::entryFor(std::u16string_view name) {
    if (name.empty()) return unnamed_;
    if (Entry* known = lookUp(name)) return *known;
    if ((entries_.size() + 1) * 2 > table_.size()) grow();
    Entry& entry = entries_.emplaceBack(name, hashIgnoringCase(name));
    const std::size_t mask = table_.size() - 1;
    std::size_t i = entry.hash & mask;
    while (table_[i] != nullptr) i = (i + 1) & mask;
    table_[i] = &entry;
    return entry;
}

void NameIndex::grow() {
    std::vector<Entry*> larger(std::max<std::size_t>(16, table_.size() * 2), nullptr);
    const std::size_t mask = larger.size() - 1;
    for (Entry* entry : table_) {
        if (entry == nullptr) continue;
        std::size_t i = entry->hash & mask;
        while (larger[i] != nullptr) i = (i + 1) & mask;
        larger[i] = entry;
    }
    table_.swap(larger);
}

void NameIndex::insert(std::u16string_view name, std::int32_t typeCode, std::uint32_t position) {
    Entry& entry = entryFor(name);
    const std::size_t code = rank(typeCode);
    if (entry.first[code] != none) entry.several |= static_cast<std::uint8_t>(1U << code);
    entry.first[code] = std::min(entry.first[code], position);
}

bool NameIndex::remove(std::u16string_view name, std::int32_t typeCode, std::uint32_t position) {
    Entry& entry = entryFor(name);
    const std::size_t code = rank(typeCode);
    if ((entry.several >> code & 1U) != 0) return entry.first[code] != position;
    entry.first[code] = none;
    return true;
}

std::uint32_t NameIndex::find(std::u16string_view name, std::int32_t filter) const noexcept {
    const Entry* entry = name.empty() ? &unnamed_ : lookUp(name);
    std::uint32_t lowest = none;
    if (entry == nullptr) return lowest;
    for (std::size_t code = 0; code < rankCount; ++code)
        if ((codes[code] & filter) != 0) lowest = std::min(lowest, entry->first[code]);
    return lowest;
}

}  // namespace corvane
