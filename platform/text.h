#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace corvane {

/// An immutable UTF-16 text that copies share: copying counts a reference, it allocates nothing.
///
/// Code units are kept as they come; unpaired surrogates are allowed. The count is not atomic, since everything of an
/// engine happens on one thread: to hand a text to another thread, copy its `view()`.
class Text {
public:
    Text() noexcept = default;
    /// Throws std::bad_alloc; a text holds fewer than 2^31 code units.
    explicit Text(std::u16string_view characters);
    Text(const Text& other) noexcept : buffer_(other.buffer_) { retain(buffer_); }
    Text(Text&& other) noexcept : buffer_(std::exchange(other.buffer_, nullptr)) {}
    Text& operator=(Text other) noexcept {
        std::swap(buffer_, other.buffer_);
        return *this;
    }
    ~Text() { release(buffer_); }

    /// A text of `left` followed by `right`, in one allocation.
    static Text join(std::u16string_view left, std::u16string_view right);

    std::u16string_view view() const noexcept { return view(buffer_); }
    bool empty() const noexcept { return buffer_ == nullptr; }

private:
    friend class Value;
    friend class ValueView;
    struct Buffer {
        std::uint32_t references;
        std::uint32_t length;
    };

    static Buffer* allocate(std::size_t length);
    static char16_t* characters(Buffer* buffer) noexcept { return reinterpret_cast<char16_t*>(buffer + 1); }
    static std::u16string_view view(Buffer* buffer) noexcept {
        return buffer == nullptr ? std::u16string_view() : std::u16string_view(characters(buffer), buffer->length);
    }
    static void retain(Buffer* buffer) noexcept {
        if (buffer != nullptr) ++buffer->references;
    }
    static void release(Buffer* buffer) noexcept {
        if (buffer != nullptr && --buffer->references == 0) free(buffer);
    }
    static void free(Buffer* buffer) noexcept;

    Buffer* buffer_ = nullptr;  // null is the empty text
};

}  // namespace corvane
