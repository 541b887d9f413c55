#pragma once

#include <cstdint>
#include <utility>

namespace corvane {

/// Base of the objects that travel in a Value: reference counted, used on one thread.
class SharedRecord {
public:
    SharedRecord() noexcept = default;
    SharedRecord(const SharedRecord&) = delete;
    SharedRecord& operator=(const SharedRecord&) = delete;
    virtual ~SharedRecord() = default;

    void retain() noexcept { ++references_; }
    void release() noexcept {
        if (--references_ == 0) delete this;
    }

private:
    std::uint32_t references_ = 0;
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
