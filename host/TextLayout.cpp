// SPDX-License-Identifier: MIT
#include "host/TextLayout.h"

#include <algorithm>
#include <string>

#include "host/Surface.h"

namespace kelvarin::host {

namespace {

// Resolves "&&" to "&" and "&x" to x, remembering the first access character.
std::string ResolvePrefixes(std::string_view text, int& accessIndex) {
    std::string out;
    accessIndex = -1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) {
            ++i;
            if (text[i] != '&' && accessIndex < 0) accessIndex = static_cast<int>(out.size());
        }
        out += text[i];
    }
    return out;
}

// Calls `row` for each line of a paragraph broken greedily at blanks to fit
// maxWidth; a word wider than that keeps a line of its own.
template <typename Row>
void BreakParagraph(std::string_view paragraph, int maxWidth, const MeasureFunction& measure,
                    Row&& row) {
    std::size_t lineStart = 0;
    std::size_t lineEnd = std::string_view::npos;  // none yet
    std::size_t i = 0;
    while (i <= paragraph.size()) {
        std::size_t end = paragraph.find(' ', i);
        if (end == std::string_view::npos) end = paragraph.size();
        if (lineEnd != std::string_view::npos &&
            measure(paragraph.substr(lineStart, end - lineStart)) > maxWidth) {
            row(paragraph.substr(lineStart, lineEnd - lineStart));
            lineStart = i;
        }
        lineEnd = end;
        i = end + 1;
    }
    row(paragraph.substr(
        lineStart, (lineEnd == std::string_view::npos ? paragraph.size() : lineEnd) - lineStart));
}

}  // namespace

TextExtent LayoutText(std::string_view text, const Rect& rect, unsigned format,
                      const MeasureFunction& measure, int lineHeight, const LineFunction& line) {
    int accessIndex = -1;
    std::string resolvedStore;
    std::string_view resolved = text;
    if (!(format & DT_NOPREFIX) && text.find('&') != std::string_view::npos) {
        resolvedStore = ResolvePrefixes(text, accessIndex);
        resolved = resolvedStore;
    }

    TextExtent extent;
    int y = rect.top;
    if (format & DT_SINGLELINE) {
        if (format & DT_VCENTER) y = rect.top + (rect.Height() - lineHeight) / 2;
        else if (format & DT_BOTTOM) y = rect.bottom - lineHeight;
    }
    const auto place = [&](std::string_view row) {
        TextLine placed;
        placed.text = row;
        placed.width = measure(row);
        placed.x = (format & DT_CENTER)  ? rect.left + (rect.Width() - placed.width) / 2
                   : (format & DT_RIGHT) ? rect.right - placed.width
                                         : rect.left;
        placed.y = y;
        const auto offset = static_cast<int>(row.data() - resolved.data());
        if (accessIndex >= offset && accessIndex < offset + static_cast<int>(row.size()))
            placed.accessIndex = accessIndex - offset;
        extent.width = std::max(extent.width, placed.width);
        extent.height += lineHeight;
        y += lineHeight;
        if (line) line(placed);
    };

    if (format & DT_SINGLELINE) {
        place(resolved);
        return extent;
    }
    std::size_t start = 0;
    while (true) {
        const std::size_t nl = resolved.find('\n', start);
        std::string_view paragraph = resolved.substr(
            start, nl == std::string_view::npos ? std::string_view::npos : nl - start);
        if (!paragraph.empty() && paragraph.back() == '\r') paragraph.remove_suffix(1);
        if (format & DT_WORDBREAK) {
            BreakParagraph(paragraph, rect.Width(), measure, place);
        } else {
            place(paragraph);
        }
        if (nl == std::string_view::npos) break;
        start = nl + 1;
    }
    return extent;
}

}  // namespace kelvarin::host
