// SPDX-License-Identifier: MIT
// OLE colours: 0x00BBGGRR for a plain colour, 0x80000000 + n for system
// colour n, and TranslateSysColor to turn either into plain RGB.
#pragma once

#include <array>
#include <cstdint>

#include <kelvarin/Export.h>

namespace kelvarin {

using OLE_COLOR = std::uint32_t;

inline constexpr OLE_COLOR kSysColorFlag = 0x80000000u;

// Indices of the system colour table that the controls name.
enum SysColor : int {
    COLOR_WINDOW = 5,
    COLOR_WINDOWFRAME = 6,
    COLOR_WINDOWTEXT = 8,
    COLOR_HIGHLIGHT = 13,
    COLOR_HIGHLIGHTTEXT = 14,
    COLOR_BTNFACE = 15,
    COLOR_BTNSHADOW = 16,
    COLOR_GRAYTEXT = 17,
    COLOR_BTNTEXT = 18,
    COLOR_BTNHIGHLIGHT = 20,
    COLOR_3DDKSHADOW = 21,
    COLOR_3DLIGHT = 22,
};

inline constexpr int kSysColorCount = 31;  // entries 0 to 30
using SysColorTable = std::array<OLE_COLOR, kSysColorCount>;

constexpr OLE_COLOR RGB(int r, int g, int b) noexcept {
    return static_cast<OLE_COLOR>((r & 255) | (g & 255) << 8 | (b & 255) << 16);
}
constexpr int RedOf(OLE_COLOR c) noexcept { return static_cast<int>(c & 255); }
constexpr int GreenOf(OLE_COLOR c) noexcept { return static_cast<int>((c >> 8) & 255); }
constexpr int BlueOf(OLE_COLOR c) noexcept { return static_cast<int>((c >> 16) & 255); }
constexpr OLE_COLOR SystemColor(int index) noexcept {
    return kSysColorFlag + static_cast<OLE_COLOR>(index);
}

// The system colours by name, as OLE colours (what properties hold).
inline constexpr OLE_COLOR kSysWindow = SystemColor(COLOR_WINDOW);
inline constexpr OLE_COLOR kSysWindowFrame = SystemColor(COLOR_WINDOWFRAME);
inline constexpr OLE_COLOR kSysWindowText = SystemColor(COLOR_WINDOWTEXT);
inline constexpr OLE_COLOR kSysHighlight = SystemColor(COLOR_HIGHLIGHT);
inline constexpr OLE_COLOR kSysHighlightText = SystemColor(COLOR_HIGHLIGHTTEXT);
inline constexpr OLE_COLOR kSysButtonFace = SystemColor(COLOR_BTNFACE);
inline constexpr OLE_COLOR kSysButtonShadow = SystemColor(COLOR_BTNSHADOW);
inline constexpr OLE_COLOR kSysGrayText = SystemColor(COLOR_GRAYTEXT);
inline constexpr OLE_COLOR kSysButtonText = SystemColor(COLOR_BTNTEXT);
inline constexpr OLE_COLOR kSysButtonHighlight = SystemColor(COLOR_BTNHIGHLIGHT);

// The fixed light theme used until a host supplies its own table.
KELVARIN_CORE_API const SysColorTable& DefaultSysColors() noexcept;

// The host's current table (the user-interface thread's; hosts set it once
// at start and when the desktop theme changes).
KELVARIN_CORE_API void SetSysColors(const SysColorTable& table) noexcept;
KELVARIN_CORE_API const SysColorTable& CurrentSysColors() noexcept;

// Makes a table the current one for as long as it lives, then restores the
// one before: a host whose parts have tables of their own (a dark panel in
// a light window) sets each part's around every call into its control.
class ScopedSysColors {
public:
    explicit ScopedSysColors(const SysColorTable& table) noexcept : saved_(CurrentSysColors()) {
        SetSysColors(table);
    }
    ~ScopedSysColors() { SetSysColors(saved_); }
    ScopedSysColors(const ScopedSysColors&) = delete;
    ScopedSysColors& operator=(const ScopedSysColors&) = delete;

private:
    SysColorTable saved_;
};

// Colour n of the current table; 0 for an index outside it, as the system does.
KELVARIN_CORE_API OLE_COLOR GetSysColor(std::uint32_t index) noexcept;

// Plain values come back unchanged; a value with the high bit set is system
// colour (value AND 0x7FFFFFFF).
KELVARIN_CORE_API OLE_COLOR TranslateSysColor(OLE_COLOR color) noexcept;

}  // namespace kelvarin
