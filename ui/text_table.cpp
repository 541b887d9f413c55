#include "ui/text_table.h"

#include <algorithm>
#include <cassert>

#include "platform/control_character.h"

namespace corvane {
namespace {

bool isBlank(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c == u' '; });
}

/// Characters, counting a surrogate pair once.
std::size_t width(std::u16string_view text) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isHigh = text[i] >= 0xD800 && text[i] <= 0xDBFF;
        if (isHigh && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) ++i;
        ++characters;
    }
    return characters;
}

void trimEnd(std::u16string& line) { line.erase(line.find_last_not_of(u' ') + 1); }

}  // namespace

std::u16string cellText(std::u16string_view cell) {
    constexpr std::u16string_view digits = u"0123456789abcdef";
    std::u16string shown;
    for (const char16_t c : cell) {
        if (c == u'\r')
            shown += u"\\r";
        else if (c == u'\n')
            shown += u"\\n";
        else if (c == u'\t')
            shown += u"\\t";
        else if (isControl(c))
            shown.append(u"\\x").append(1, digits[c >> 4U]).append(1, digits[c & 15U]);
        else
            shown += c;
    }
    return shown;
}

void TextTable::prepare() {
    columns_.clear();
    rows_.clear();
}

void TextTable::addColumn(std::u16string_view header) { columns_.emplace_back(header); }

void TextTable::addRow(std::u16string_view text) {
    rows_.emplace_back(columns_.size());
    rows_.back().at(0) = text;
}

void TextTable::setSubItem(int column, std::u16string_view text) {
    rows_.back().at(static_cast<std::size_t>(column)) = text;
}

std::u16string TextTable::aligned() const {
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (const auto& row : rows_)
        for (std::size_t i = 0; i < row.size(); ++i)
            if (!isBlank(row[i])) widths[i] = std::max(widths[i], width(cellText(row[i])));
    for (std::size_t i = 0; i < columns_.size(); ++i)
        if (rows_.empty() || widths[i] != 0) widths[i] = std::max(widths[i], width(columns_[i]));

    std::u16string text;
    const auto addLine = [&](const auto& cellOf) {
        std::u16string line;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (widths[i] == 0) continue;
            const std::u16string cell = cellOf(i);
            line.append(cell).append(widths[i] - width(cell) + 2, u' ');
        }
        trimEnd(line);
        text.append(line).append(u"\n");
    };
    addLine([&](std::size_t i) { return columns_[i]; });
    addLine([&](std::size_t i) { return std::u16string(widths[i], u'-'); });
    for (const auto& row : rows_)
        addLine([&](std::size_t i) { return isBlank(row[i]) ? std::u16string() : cellText(row[i]); });
    return text;
}

}  // namespace corvane
