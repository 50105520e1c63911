#include "host/TextLayout.h"

#include <algorithm>

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

std::vector<std::string> BreakParagraph(const std::string& paragraph, int maxWidth,
                                        const MeasureFunction& measure) {
    std::vector<std::string> lines;
    std::string line;
    std::size_t i = 0;
    while (i < paragraph.size()) {
        std::size_t end = paragraph.find(' ', i);
        if (end == std::string::npos) end = paragraph.size();
        const std::string word = paragraph.substr(i, end - i);
        const std::string candidate = line.empty() ? word : line + " " + word;
        if (!line.empty() && measure(candidate) > maxWidth) {
            lines.push_back(line);
            line = word;
        } else {
            line = candidate;
        }
        i = end + 1;
    }
    lines.push_back(line);
    return lines;
}

}  // namespace

int CharacterCount(std::string_view utf8) noexcept {
    int n = 0;
    for (unsigned char c : utf8) n += (c & 0xC0) != 0x80;
    return n;
}

TextLayout LayoutText(std::string_view text, const Rect& rect, unsigned format,
                      const MeasureFunction& measure, int lineHeight) {
    int accessIndex = -1;
    const std::string resolved =
        (format & DT_NOPREFIX) ? std::string(text) : ResolvePrefixes(text, accessIndex);

    std::vector<std::string> rows;
    if (format & DT_SINGLELINE) {
        rows.push_back(resolved);
    } else {
        std::size_t start = 0;
        while (true) {
            std::size_t nl = resolved.find('\n', start);
            std::string paragraph =
                resolved.substr(start, nl == std::string::npos ? std::string::npos : nl - start);
            if (!paragraph.empty() && paragraph.back() == '\r') paragraph.pop_back();
            if (format & DT_WORDBREAK) {
                for (auto& l : BreakParagraph(paragraph, rect.Width(), measure)) rows.push_back(l);
            } else {
                rows.push_back(paragraph);
            }
            if (nl == std::string::npos) break;
            start = nl + 1;
        }
    }

    TextLayout layout;
    layout.height = static_cast<int>(rows.size()) * lineHeight;
    int y = rect.top;
    if (format & DT_SINGLELINE) {
        if (format & DT_VCENTER) y = rect.top + (rect.Height() - lineHeight) / 2;
        else if (format & DT_BOTTOM) y = rect.bottom - lineHeight;
    }
    std::size_t offset = 0;  // of the row within the resolved text, for the access key
    for (auto& row : rows) {
        TextLine line;
        line.width = measure(row);
        line.x = (format & DT_CENTER)  ? rect.left + (rect.Width() - line.width) / 2
                 : (format & DT_RIGHT) ? rect.right - line.width
                                       : rect.left;
        line.y = y;
        const std::size_t pos = resolved.find(row, offset);
        if (accessIndex >= 0 && pos != std::string::npos &&
            static_cast<std::size_t>(accessIndex) >= pos &&
            static_cast<std::size_t>(accessIndex) < pos + row.size()) {
            line.accessIndex = accessIndex - static_cast<int>(pos);
        }
        if (pos != std::string::npos) offset = pos + row.size();
        line.text = std::move(row);
        layout.width = std::max(layout.width, line.width);
        layout.lines.push_back(std::move(line));
        y += lineHeight;
    }
    return layout;
}

}  // namespace kelvarin::host
