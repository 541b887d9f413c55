#pragma once

#include <algorithm>

namespace corvane {

/// A rectangle of a screen, in pixels.
struct ScreenArea {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const ScreenArea&, const ScreenArea&) = default;
};

/// An area of the given size whose middle is that of `owner`.
constexpr ScreenArea centredOver(const ScreenArea& owner, int width, int height) {
    return {owner.left + (owner.width - width) / 2, owner.top + (owner.height - height) / 2, width, height};
}

/// `area` moved as little as needed to lie within `screen`; its left upper corner does in any case.
constexpr ScreenArea keptWithin(const ScreenArea& screen, const ScreenArea& area) {
    ScreenArea kept = area;
    kept.left = std::max(screen.left, std::min(area.left, screen.left + screen.width - area.width));
    kept.top = std::max(screen.top, std::min(area.top, screen.top + screen.height - area.height));
    return kept;
}

}  // namespace corvane
