// SPDX-License-Identifier: MIT
#include "host/Surface.h"

#include <cstdlib>

namespace kelvarin::host {

void Surface::DrawLine(Point from, Point to, OLE_COLOR color) {
    // A level or upright line is a one-pixel rectangle: the same pixels,
    // written a row at a time rather than one by one (edges are such lines).
    if (from.y == to.y && from.x != to.x) {
        const int left = from.x < to.x ? from.x : to.x + 1;
        return FillRect({left, from.y, left + std::abs(to.x - from.x), from.y + 1}, color);
    }
    if (from.x == to.x && from.y != to.y) {
        const int top = from.y < to.y ? from.y : to.y + 1;
        return FillRect({from.x, top, from.x + 1, top + std::abs(to.y - from.y)}, color);
    }
    // Bresenham, leaving out the end point as the platform does.
    int x = from.x, y = from.y;
    const int dx = std::abs(to.x - x), dy = -std::abs(to.y - y);
    const int sx = x < to.x ? 1 : -1, sy = y < to.y ? 1 : -1;
    int err = dx + dy;
    while (x != to.x || y != to.y) {
        SetPixel({x, y}, color);
        const int e2 = 2 * err;
        if (e2 >= dy) {
            err += dy;
            x += sx;
        }
        if (e2 <= dx) {
            err += dx;
            y += sy;
        }
    }
}

void Surface::DrawFocusRect(const Rect& rect) {
    // A dotted outline drawn by inverting every other pixel, so drawing it
    // twice takes it away.
    const auto invert = [&](int x, int y) {
        if ((x + y) % 2 == 0) SetPixel({x, y}, GetPixel({x, y}) ^ 0x00FFFFFF);
    };
    for (int x = rect.left; x < rect.right; ++x) {
        invert(x, rect.top);
        if (rect.bottom - 1 > rect.top) invert(x, rect.bottom - 1);
    }
    for (int y = rect.top + 1; y < rect.bottom - 1; ++y) {
        invert(rect.left, y);
        if (rect.right - 1 > rect.left) invert(rect.right - 1, y);
    }
}

}  // namespace kelvarin::host
