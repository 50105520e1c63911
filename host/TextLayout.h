// SPDX-License-Identifier: MIT
// Laying out text the way the platform's text drawing does: access-key
// prefixes, word breaking, single-line alignment. Hosts measure and draw;
// this places. A single line without prefixes is placed without allocating.
#pragma once

#include <functional>
#include <string_view>

#include <kelvarin/Export.h>

#include "host/Geometry.h"

namespace kelvarin::host {

struct TextLine {
    std::string_view text;  // prefixes resolved; valid during the callback only
    int x = 0;              // left of the line
    int y = 0;              // top of the line
    int width = 0;
    int accessIndex = -1;  // byte offset in `text` of the underlined access key, or -1
};

struct TextExtent {
    int width = 0;   // of the widest line
    int height = 0;  // of all lines
};

using MeasureFunction = std::function<int(std::string_view)>;
using LineFunction = std::function<void(const TextLine&)>;

// Places text in rect by the DT_* format flags, calling `line` (if given)
// for each line from the top, and returns the extent (DT_CALCRECT is the
// caller's business).
KELVARIN_CORE_API TextExtent LayoutText(std::string_view text, const Rect& rect, unsigned format,
                                        const MeasureFunction& measure, int lineHeight,
                                        const LineFunction& line = {});

}  // namespace kelvarin::host
