#include "controls/datebox/Constituents.h"

namespace kelvarin::controls {

namespace {

bool IsContinuation(char c) noexcept { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

int TextLength(std::string_view text) noexcept {
    int n = 0;
    for (char c : text)
        if (!IsContinuation(c)) ++n;
    return n;
}

std::size_t ByteOffset(std::string_view text, int characters) noexcept {
    if (characters <= 0) return 0;
    int seen = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsContinuation(text[i])) continue;
        if (seen == characters) return i;
        ++seen;
    }
    return text.size();
}

}  // namespace kelvarin::controls
