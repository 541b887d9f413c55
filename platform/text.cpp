#include "platform/text.h"

#include <cstring>
#include <limits>
#include <new>

namespace corvane {

Text::Buffer* Text::allocate(std::size_t length) {
    if (length == 0) return nullptr;
    if (length > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    void* memory = ::operator new(sizeof(Buffer) + length * sizeof(char16_t));
    return new (memory) Buffer{1, static_cast<std::uint32_t>(length)};
}

void Text::free(Buffer* buffer) noexcept { ::operator delete(buffer); }

Text::Text(std::u16string_view characters) : buffer_(allocate(characters.size())) {
    if (buffer_ != nullptr)
        std::memcpy(Text::characters(buffer_), characters.data(), characters.size() * sizeof(char16_t));
}

Text Text::join(std::u16string_view left, std::u16string_view right) {
    Text joined;
    joined.buffer_ = allocate(left.size() + right.size());
    if (joined.buffer_ == nullptr) return joined;
    char16_t* to = characters(joined.buffer_);
    if (!left.empty()) std::memcpy(to, left.data(), left.size() * sizeof(char16_t));
    if (!right.empty()) std::memcpy(to + left.size(), right.data(), right.size() * sizeof(char16_t));
    return joined;
}

}  // namespace corvane
