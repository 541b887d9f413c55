#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

namespace corvane {

/// Base of the objects that travel in a Value: reference counted. An object is used on one thread; references to it may
/// be released on others, as hosts with a garbage collector do.
class SharedRecord {
public:
    SharedRecord() noexcept = default;
    SharedRecord(const SharedRecord&) = delete;
    SharedRecord& operator=(const SharedRecord&) = delete;
    virtual ~SharedRecord() = default;

    /// The number of references afterwards.
    std::uint32_t retain() noexcept { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }
    std::uint32_t release() noexcept {
        const std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) {
            // What the object lets go of may refer to it once more on its way; that must not destroy it again.
            references_.store(beingDestroyed, std::memory_order_relaxed);
            delete this;
        }
        return left;
    }

private:
    static constexpr std::uint32_t beingDestroyed = 0x40000000;

    std::atomic<std::uint32_t> references_{0};
};

/// A counted reference to a SharedRecord, or none.
template <typename Record>
class Reference {
public:
    Reference() noexcept = default;
    explicit Reference(Record* record) noexcept : record_(record) {
        if (record_ != nullptr) record_->retain();
    }
    Reference(const Reference& other) noexcept : Reference(other.record_) {}
    Reference(Reference&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
    Reference& operator=(Reference other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }
    ~Reference() {
        if (record_ != nullptr) record_->release();
    }

    Record* get() const noexcept { return record_; }
    Record* operator->() const noexcept { return record_; }
    Record& operator*() const noexcept { return *record_; }
    explicit operator bool() const noexcept { return record_ != nullptr; }
    friend bool operator==(const Reference&, const Reference&) noexcept = default;

private:
    Record* record_ = nullptr;
};

template <typename Record, typename... Arguments>
Reference<Record> makeReference(Arguments&&... arguments) {
    return Reference<Record>(new Record(std::forward<Arguments>(arguments)...));
}

}  // namespace corvane
