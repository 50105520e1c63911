// Laying out text the way the platform's text drawing does: access-key
// prefixes, word breaking, single-line alignment. Hosts measure, this places.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Geometry.h"

namespace kelvarin::host {

struct TextLine {
    std::string text;       // with prefixes resolved
    int x = 0;              // left of the line
    int y = 0;              // top of the line
    int width = 0;
    int accessIndex = -1;   // byte offset of the underlined access character, or -1
};

struct TextLayout {
    std::vector<TextLine> lines;
    int width = 0;   // of the widest line
    int height = 0;  // of all lines
};

using MeasureFunction = std::function<int(std::string_view)>;

// Places text in rect by the DT_* format flags (DT_CALCRECT is the caller's
// business: it only reads width and height of the result).
TextLayout LayoutText(std::string_view text, const Rect& rect, unsigned format,
                      const MeasureFunction& measure, int lineHeight);

// Number of characters of UTF-8 text.
int CharacterCount(std::string_view utf8) noexcept;

}  // namespace kelvarin::host
