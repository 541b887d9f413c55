#pragma once

#include <xmmintrin.h>

#include <cstdint>

namespace corvane {

/// How the processor calculates: both of its units, as their control registers hold it.
struct FloatingPointState {
    std::uint16_t x87;
    std::uint32_t sse;

    static FloatingPointState present() noexcept {
        FloatingPointState state{};
        state.x87 = presentControlWord();
        state.sse = _mm_getcsr();
        return state;
    }
    /// Exceptions of the x87 unit that were noted so far are forgotten: a pending one would strike where it is
    /// unmasked.
    void apply() const noexcept {
        __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(x87));
        _mm_setcsr(sse);
    }
    /// The same, and quicker where nothing was noted.
    void applyQuickly() const noexcept {
        constexpr std::uint16_t anyException = 0x00FF;
        std::uint16_t noted = 0;
        __asm__ volatile("fnstsw %0" : "=m"(noted));
        if ((noted & anyException) != 0) __asm__ volatile("fnclex");
        __asm__ volatile("fldcw %0" : : "m"(x87));
        _mm_setcsr(sse);
    }
    static std::uint16_t presentControlWord() noexcept {
        std::uint16_t x87 = 0;
        __asm__ volatile("fnstcw %0" : "=m"(x87));
        return x87;
    }
};

/// All exceptions masked, rounding to nearest, 53 bits: what this component calculates with.
inline constexpr FloatingPointState ownFloatingPoint{0x027F, 0x1F80};

/// Calculates in the component's own way until the end of the scope. Hosts made by some compilers run with
/// floating-point exceptions unmasked, which would bring them down at a harmless division or comparison in here.
class ComponentArithmetic {
public:
    ComponentArithmetic() noexcept : host_(FloatingPointState::present()) { ownFloatingPoint.apply(); }
    ComponentArithmetic(const ComponentArithmetic&) = delete;
    ComponentArithmetic& operator=(const ComponentArithmetic&) = delete;
    ~ComponentArithmetic() { host_.apply(); }

    const FloatingPointState& host() const noexcept { return host_; }

private:
    FloatingPointState host_;
};

/// Gives the host its own way of calculating back until the end of the scope, where the component calls out.
class HostArithmetic {
public:
    explicit HostArithmetic(const FloatingPointState& host) noexcept { host.applyQuickly(); }
    HostArithmetic(const HostArithmetic&) = delete;
    HostArithmetic& operator=(const HostArithmetic&) = delete;
    ~HostArithmetic() { ownFloatingPoint.applyQuickly(); }
};

}  // namespace corvane
