#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/number_locale.h"
#include "platform/utf8.h"
#include "platform/value.h"

/// A fuzzer's door into a target: called once for each input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// What the fuzz targets share: how an input is taken apart, and how a target says that something is wrong.
///
/// An input is text up to its first NUL, which mutations by words of a dictionary keep readable, and decisions behind
/// it. An input without decisions is the everyday case: every answer succeeds.
namespace corvane::fuzz {

/// Ends the program with a word about what is broken, so that whoever drives the target keeps the input.
inline void require(bool holds, const char* rule) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", rule);
    std::abort();
}

/// The bytes as a script's text. What is no UTF-8 stands for half of a surrogate pair, which hosts can hand in as well.
inline std::u16string textOf(std::string_view bytes) {
    std::u16string text = fromUtf8(bytes);
    std::replace(text.begin(), text.end(), u'\xFFFD', u'\xD800');
    return text;
}

/// Decisions drawn from bytes; when those are used up, all are 0. One at a time: the order in which a call's arguments
/// are made is the compiler's, and an input means the same to all of them.
class Choices {
public:
    explicit Choices(std::string_view bytes) : rest_(bytes) {}

    bool isSpent() const { return rest_.empty(); }
    std::uint8_t byte() {
        if (rest_.empty()) return 0;
        const char first = rest_.front();
        rest_.remove_prefix(1);
        return static_cast<std::uint8_t>(first);
    }
    std::uint32_t below(std::uint32_t limit) { return byte() % limit; }
    /// Rather no.
    bool oneIn(std::uint32_t times) { return below(times) == times - 1; }

    /// A number of any bits.
    template <typename Number>
    Number bits() {
        Number number{};
        const std::size_t taken = std::min(sizeof number, rest_.size());
        std::memcpy(&number, rest_.data(), taken);
        rest_.remove_prefix(taken);
        return number;
    }
    /// Mostly a lowered number.
    float single() {
        const std::uint8_t kind = byte();
        if (kind >= 250) return bits<float>();
        return static_cast<float>(static_cast<std::int8_t>(byte())) / (kind % 2 == 0 ? 1.0F : 8.0F);
    }
    std::int32_t longInteger() { return byte() >= 250 ? bits<std::int32_t>() : static_cast<std::int8_t>(byte()); }
    std::u16string text() {
        const std::size_t wanted = byte();
        const std::size_t length = std::min(wanted, rest_.size());
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return textOf(taken);
    }
    /// Not for objects.
    Value value(ValueType type) {
        switch (type) {
            case ValueType::Integer: return Value::ofInteger(bits<std::int16_t>());
            case ValueType::Long: return Value::ofLong(longInteger());
            case ValueType::Single: return Value::ofSingle(single());
            case ValueType::Double: return Value::ofDouble(bits<double>());
            case ValueType::Boolean: return Value::ofBoolean(oneIn(2));
            default: return Value::ofText(text());
        }
    }
    NumberLocale locale() { return oneIn(2) ? NumberLocale::commaDecimal() : NumberLocale::pointDecimal(); }

private:
    std::string_view rest_;
};

struct FuzzInput {
    std::string_view text;
    Choices choices{{}};
    int mostStatements = 100;  ///< how many a run is to be let go on for

    FuzzInput(const std::uint8_t* data, std::size_t size) {
        const std::string_view bytes(reinterpret_cast<const char*>(data), size);
        const std::size_t end = std::min(bytes.find('\0'), size);
        text = bytes.substr(0, end);
        choices = Choices(bytes.substr(std::min(end + 1, size)));
        // Texts that are joined with themselves over and over would fill every memory.
        std::string lowered(bytes);
        std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        if (lowered.find("concat") != std::string::npos) mostStatements = 10;
    }

    /// The scripts that the text holds, parted by form feeds.
    std::vector<std::u16string> scripts() const {
        constexpr std::size_t most = 8;
        std::vector<std::u16string> scripts;
        std::string_view rest = text;
        for (;;) {
            const std::size_t end = std::min(rest.find('\f'), rest.size());
            scripts.push_back(textOf(rest.substr(0, end)));
            if (end == rest.size() || scripts.size() == most) return scripts;
            rest.remove_prefix(end + 1);
        }
    }
};

}  // namespace corvane::fuzz
