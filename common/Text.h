// SPDX-License-Identifier: MIT
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

// UTF-8: characters are counted by their first bytes; a stray continuation
// byte at the start counts as a character of its own.
inline bool IsUtf8Continuation(char c) noexcept {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// The number of characters.
inline int Utf8Length(std::string_view s) noexcept {
    int n = 0;
    for (char c : s) n += !IsUtf8Continuation(c);
    return n;
}

// The byte offset of character `characters` (the size for one past the end).
inline std::size_t Utf8Offset(std::string_view s, int characters) noexcept {
    if (characters <= 0) return 0;
    int seen = 0;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (IsUtf8Continuation(s[i])) continue;
        if (seen == characters) return i;
        ++seen;
    }
    return s.size();
}

// The size in bytes of the character that starts at byte i.
inline std::size_t Utf8CharSize(std::string_view s, std::size_t i) noexcept {
    std::size_t n = 1;
    while (i + n < s.size() && IsUtf8Continuation(s[i + n])) ++n;
    return n;
}

}  // namespace kelvarin
