// SPDX-License-Identifier: MIT
// What a control draws on: its client area, in pixels, top-left origin.
#pragma once

#include <cstdint>
#include <string_view>

#include <kelvarin/Export.h>

#include "common/Font.h"
#include "common/OleColor.h"
#include "gfx/DeviceContext.h"
#include "host/Geometry.h"

namespace kelvarin::host {

// Text format flags, with the values the controls pass to the platform.
enum TextFormat : unsigned {
    DT_LEFT = 0x0,
    DT_CENTER = 0x1,
    DT_RIGHT = 0x2,
    DT_VCENTER = 0x4,
    DT_BOTTOM = 0x8,
    DT_WORDBREAK = 0x10,
    DT_SINGLELINE = 0x20,
    DT_CALCRECT = 0x400,
    DT_NOPREFIX = 0x800,
};

// eAlignmentText, the caption alignment of the progress bar and the command
// button: its values are the text format's alignment flags.
enum AlignmentText : int { kLeftJustify = DT_LEFT, kCenter = DT_CENTER, kRightJustify = DT_RIGHT };

// A surface is also a 24-bit device context, so raster surfaces blit to it.
class KELVARIN_CORE_API Surface : public DeviceContext {
public:
    virtual int Width() const = 0;
    virtual int Height() const = 0;

    // Colours are plain RGB (0x00BBGGRR): callers translate system colours.
    virtual void FillRect(const Rect& rect, OLE_COLOR color) = 0;
    // From (x1, y1) up to, not including, (x2, y2), as the platform draws lines.
    // Level and upright lines are filled as one-pixel rectangles, others
    // drawn pixel by pixel through SetPixel; a host may draw it faster.
    virtual void DrawLine(Point from, Point to, OLE_COLOR color);
    virtual void SetPixel(Point p, OLE_COLOR color) = 0;
    virtual OLE_COLOR GetPixel(Point p) const = 0;

    // Draws text in rect with the format flags; with DT_CALCRECT it only
    // measures, setting rect's right and bottom. Returns the text height.
    virtual int DrawText(std::string_view text, Rect& rect, unsigned format, const Font& font,
                         OLE_COLOR color) = 0;
    // Width and height of one line of text.
    virtual Size MeasureText(std::string_view text, const Font& font) = 0;
    // The dotted focus rectangle, drawn by inverting.
    // Drawn pixel by pixel through GetPixel and SetPixel.
    virtual void DrawFocusRect(const Rect& rect);
};

}  // namespace kelvarin::host
