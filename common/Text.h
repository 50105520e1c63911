// Small text helpers on UTF-8 strings whose letters that matter are ASCII
// (names, keywords, patterns).
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace kelvarin {

inline char ToLowerAscii(char c) noexcept {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

inline std::string ToLowerAscii(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = ToLowerAscii(c);
    return out;
}

// Case-insensitive for ASCII letters, as the host compares names.
inline bool EqualsIgnoreCase(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (ToLowerAscii(a[i]) != ToLowerAscii(b[i])) return false;
    return true;
}

inline std::string_view TrimBlanks(std::string_view s) noexcept {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

}  // namespace kelvarin
