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

// Whether the bytes are well-formed UTF-8: no stray or missing continuation
// bytes, no overlong forms, no surrogates, nothing past U+10FFFF.
inline bool IsValidUtf8(std::string_view s) noexcept {
    for (std::size_t i = 0; i < s.size();) {
        const auto b = static_cast<unsigned char>(s[i]);
        std::size_t n = 0;
        unsigned char lo = 0x80, hi = 0xBF;  // the second byte's range
        if (b < 0x80) n = 1;
        else if (b >= 0xC2 && b <= 0xDF) n = 2;
        else if (b >= 0xE0 && b <= 0xEF)
            n = 3, lo = b == 0xE0 ? 0xA0 : 0x80, hi = b == 0xED ? 0x9F : 0xBF;
        else if (b >= 0xF0 && b <= 0xF4)
            n = 4, lo = b == 0xF0 ? 0x90 : 0x80, hi = b == 0xF4 ? 0x8F : 0xBF;
        else return false;
        if (i + n > s.size()) return false;
        for (std::size_t k = 1; k < n; ++k) {
            const auto c = static_cast<unsigned char>(s[i + k]);
            if (k == 1 ? c < lo || c > hi : !IsUtf8Continuation(s[i + k])) return false;
        }
        i += n;
    }
    return true;
}

// The size in bytes of the character that starts at byte i.
inline std::size_t Utf8CharSize(std::string_view s, std::size_t i) noexcept {
    std::size_t n = 1;
    while (i + n < s.size() && IsUtf8Continuation(s[i + n])) ++n;
    return n;
}

}  // namespace kelvarin
