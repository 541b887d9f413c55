#include "platform/utf8.h"

#include <cstddef>

namespace corvane {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

constexpr bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void appendBytes(std::string& bytes, char32_t character) {
    const auto continuation = [&](int shift) {
        bytes.push_back(static_cast<char>(0x80 | (character >> shift & 0x3F)));
    };
    if (character < 0x80) {
        bytes.push_back(static_cast<char>(character));
    } else if (character < 0x800) {
        bytes.push_back(static_cast<char>(0xC0 | character >> 6));
        continuation(0);
    } else if (character < 0x10000) {
        bytes.push_back(static_cast<char>(0xE0 | character >> 12));
        continuation(6);
        continuation(0);
    } else {
        bytes.push_back(static_cast<char>(0xF0 | character >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

void appendUnits(std::u16string& text, char32_t character) {
    if (character < 0x10000) {
        text.push_back(static_cast<char16_t>(character));
    } else {
        text.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
        text.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
    }
}

// What a lead byte promises. The second byte's range shuts out overlong forms, surrogates and what lies beyond
// U+10FFFF; later bytes are any continuation.
struct Sequence {
    int continuations;  // none for a byte that cannot lead
    unsigned char secondLow = 0x80;
    unsigned char secondHigh = 0xBF;
    char32_t leadBits = 0;
};

Sequence sequenceOf(unsigned char lead) {
    const char32_t bits = lead;
    if (lead >= 0xC2 && lead <= 0xDF) return {1, 0x80, 0xBF, bits & 0x1F};
    if (lead == 0xE0) return {2, 0xA0, 0xBF, 0};
    if (lead == 0xED) return {2, 0x80, 0x9F, bits & 0x0F};
    if (lead >= 0xE1 && lead <= 0xEF) return {2, 0x80, 0xBF, bits & 0x0F};
    if (lead == 0xF0) return {3, 0x90, 0xBF, 0};
    if (lead >= 0xF1 && lead <= 0xF3) return {3, 0x80, 0xBF, bits & 0x07};
    if (lead == 0xF4) return {3, 0x80, 0x8F, bits & 0x07};
    return {0};
}

// Reads the sequence at `position`, which does not hold ASCII, and moves behind it or behind its well-formed beginning.
char32_t nextCharacter(std::string_view bytes, std::size_t& position) {
    const Sequence sequence = sequenceOf(static_cast<unsigned char>(bytes[position++]));
    if (sequence.continuations == 0) return replacementCharacter;
    char32_t character = sequence.leadBits;
    for (int index = 0; index < sequence.continuations; ++index) {
        if (position == bytes.size()) return replacementCharacter;
        const auto byte = static_cast<unsigned char>(bytes[position]);
        const unsigned char low = index == 0 ? sequence.secondLow : 0x80;
        const unsigned char high = index == 0 ? sequence.secondHigh : 0xBF;
        if (byte < low || byte > high) return replacementCharacter;
        character = character << 6 | (byte & 0x3FU);
        ++position;
    }
    return character;
}

}  // namespace

std::string toUtf8(std::u16string_view text, LoneSurrogate lone) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        char32_t character = text[index];
        if (isHighSurrogate(character) && index + 1 < text.size() && isLowSurrogate(text[index + 1]))
            character = 0x10000 + ((character - 0xD800) << 10) + (text[++index] - 0xDC00U);
        else if ((isHighSurrogate(character) || isLowSurrogate(character)) && lone == LoneSurrogate::Replace)
            character = replacementCharacter;
        appendBytes(bytes, character);
    }
    return bytes;
}

std::u16string fromUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t position = 0; position < bytes.size();) {
        const auto byte = static_cast<unsigned char>(bytes[position]);
        if (byte < 0x80) {
            text.push_back(byte);
            ++position;
        } else {
            appendUnits(text, nextCharacter(bytes, position));
        }
    }
    return text;
}

}  // namespace corvane
