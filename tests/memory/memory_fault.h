#pragma once

#include <cstddef>
#include <utility>

namespace corvane::test {

/// Which requests for memory are refused.
enum class Refused { OnlyThat, ThatAndAllLater };

/// Until the end of the scope the n-th request for memory, counted from 1, is refused. There is one at a time, and one
/// thread. Whoever hands out memory asks it; see allocation_counter.cpp for operator new.
class MemoryFault {
public:
    explicit MemoryFault(std::size_t nth, Refused refused = Refused::OnlyThat) : nth_(nth), refused_(refused) {
        present = this;
    }
    MemoryFault(const MemoryFault&) = delete;
    MemoryFault& operator=(const MemoryFault&) = delete;
    ~MemoryFault() { present = nullptr; }

    std::size_t requests() const { return requests_; }
    bool isReached() const { return requests_ >= nth_; }

    /// Whether the request being made is granted.
    static bool grants() noexcept { return present == nullptr || present->grantsNext(); }

private:
    friend class HostsOwnMemory;

    bool grantsNext() noexcept {
        ++requests_;
        return refused_ == Refused::OnlyThat ? requests_ != nth_ : requests_ < nth_;
    }

    static inline MemoryFault* present = nullptr;

    std::size_t nth_;
    Refused refused_;
    std::size_t requests_ = 0;
};

/// In this scope a host works, which the component has called: what it asks for is granted and not counted.
class HostsOwnMemory {
public:
    HostsOwnMemory() : suspended_(std::exchange(MemoryFault::present, nullptr)) {}
    HostsOwnMemory(const HostsOwnMemory&) = delete;
    HostsOwnMemory& operator=(const HostsOwnMemory&) = delete;
    ~HostsOwnMemory() { MemoryFault::present = suspended_; }

private:
    MemoryFault* suspended_;
};

}  // namespace corvane::test
