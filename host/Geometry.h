// SPDX-License-Identifier: MIT
// Points, sizes and rectangles in pixels, top-left origin.
#pragma once

#include "common/Numeric.h"

namespace kelvarin::host {

struct Point {
    int x = 0;
    int y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    int width = 0;
    int height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

// Right and bottom are exclusive, as in the platform's rectangles.
struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    // Overflow (6) for a rectangle whose extent is no int, as the runtime's
    // arithmetic on it would raise.
    int Width() const { return CheckedSub(right, left); }
    int Height() const { return CheckedSub(bottom, top); }
    bool Contains(Point p) const noexcept {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }
    friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace kelvarin::host
