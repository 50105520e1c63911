// SPDX-License-Identifier: MIT
// The library's type information as tables, and the lookups over them.
//
// Sections: GUIDs; lookups; the tables (helpers, enumerations, events,
// DateBox, CommandBox, ProgressBox, General).
#include "library/TypeLib.h"

#include <cctype>
#include <cstdio>

#include "controls/commandbox/CommandBox.h"
#include "controls/datebox/DateBox.h"
#include "controls/progressbox/ProgressBox.h"

namespace kelvarin::library {

// ---- GUIDs ------------------------------------------------------------------

std::string Guid::ToString() const {
    char buf[39];
    std::snprintf(buf, sizeof buf, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(data1), static_cast<unsigned>(data2),
                  static_cast<unsigned>(data3), data4[0], data4[1], data4[2], data4[3], data4[4],
                  data4[5], data4[6], data4[7]);
    return buf;
}

namespace {

int HexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Reads `count` hexadecimal digits at text[pos]; nothing if any is not one.
std::optional<std::uint32_t> HexField(std::string_view text, std::size_t pos, std::size_t count) {
    std::uint32_t v = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const int d = HexDigit(text[pos + i]);
        if (d < 0) return std::nullopt;
        v = v << 4 | static_cast<std::uint32_t>(d);
    }
    return v;
}

}  // namespace

std::optional<Guid> Guid::Parse(std::string_view text) {
    if (text.size() == 38) {
        if (text.front() != '{' || text.back() != '}') return std::nullopt;
        text = text.substr(1, 36);
    }
    if (text.size() != 36) return std::nullopt;
    for (std::size_t dash : {8u, 13u, 18u, 23u})
        if (text[dash] != '-') return std::nullopt;
    const auto d1 = HexField(text, 0, 8);
    const auto d2 = HexField(text, 9, 4);
    const auto d3 = HexField(text, 14, 4);
    if (!d1 || !d2 || !d3) return std::nullopt;
    Guid g;
    g.data1 = *d1;
    g.data2 = static_cast<std::uint16_t>(*d2);
    g.data3 = static_cast<std::uint16_t>(*d3);
    static constexpr std::size_t kByteAt[8] = {19, 21, 24, 26, 28, 30, 32, 34};
    for (std::size_t i = 0; i < 8; ++i) {
        const auto b = HexField(text, kByteAt[i], 2);
        if (!b) return std::nullopt;
        g.data4[i] = static_cast<std::uint8_t>(*b);
    }
    return g;
}

// ---- Lookups ----------------------------------------------------------------

namespace {

// The first element of a table that satisfies `match`, or null.
template <class Range, class Match>
auto FindIn(const Range& range, Match match) -> decltype(&*std::begin(range)) {
    for (const auto& element : range)
        if (match(element)) return &element;
    return nullptr;
}

// Names are matched as the host binds them: ignoring case.
auto Named(std::string_view name) {
    return [name](const auto& e) { return EqualsIgnoreCase(e.name, name); };
}

}  // namespace

const EnumMemberInfo* EnumInfo::FindMember(std::string_view memberName) const {
    return FindIn(members, Named(memberName));
}
const EnumMemberInfo* EnumInfo::FindValue(std::int32_t value) const {
    return FindIn(members, [value](const EnumMemberInfo& m) { return m.value == value; });
}
const MemberInfo* ClassInfo::FindMember(std::string_view memberName) const {
    return FindIn(members, Named(memberName));
}
const MemberInfo* ClassInfo::FindMember(DispId id) const {
    return FindIn(members, [id](const MemberInfo& m) { return m.dispid == id; });
}
const EventInfo* ClassInfo::FindEvent(std::string_view eventName) const {
    return FindIn(events, Named(eventName));
}
const EventInfo* ClassInfo::FindEvent(int number) const {
    return FindIn(events, [number](const EventInfo& e) { return e.number == number; });
}

std::string ClassInfo::ProgId() const {
    return std::string(Kelvarin().name) + "." + std::string(name);
}

const ClassInfo* TypeLibrary::FindClass(std::string_view className) const {
    // A programmatic name is the library's name, a dot, and the class name.
    if (className.size() > name.size() && className[name.size()] == '.' &&
        EqualsIgnoreCase(className.substr(0, name.size()), name)) {
        className.remove_prefix(name.size() + 1);
    }
    return FindIn(classes, Named(className));
}
const ClassInfo* TypeLibrary::FindClass(const Guid& clsid) const {
    return FindIn(classes, [&clsid](const ClassInfo& c) { return c.clsid == clsid; });
}
const EnumInfo* TypeLibrary::FindEnum(std::string_view enumName) const {
    return FindIn(enums, Named(enumName));
}

// ---- The tables -------------------------------------------------------------

namespace {

constexpr Guid MakeGuid(std::uint32_t d1, std::uint16_t d2, std::uint16_t d3,
                        std::array<std::uint8_t, 8> d4) {
    return Guid{d1, d2, d3, d4};
}

// Chosen once; hosts that cache registrations depend on them never changing.
constexpr Guid kLibId =
    MakeGuid(0x15B581C9, 0xD00D, 0x4A6E, {0x99, 0xF7, 0x9D, 0x67, 0x24, 0x42, 0x3E, 0x3B});
constexpr Guid kDateBoxClsid =
    MakeGuid(0x8F327F32, 0x38FC, 0x43ED, {0xB2, 0x11, 0x4F, 0x71, 0x6C, 0x31, 0x4D, 0xD9});
constexpr Guid kDateBoxIid =
    MakeGuid(0xDD3B2657, 0xB4FF, 0x419D, {0x8E, 0xB4, 0xF7, 0xD6, 0x7B, 0xC8, 0xAF, 0x0E});
constexpr Guid kDateBoxEventsIid =
    MakeGuid(0x92759961, 0x7A63, 0x4CA3, {0xA6, 0xE5, 0x17, 0x83, 0x8C, 0x71, 0xB8, 0xB0});
constexpr Guid kCommandBoxClsid =
    MakeGuid(0x47FD0707, 0x396A, 0x4169, {0xBB, 0x21, 0x85, 0x0C, 0x55, 0x44, 0xAC, 0x94});
constexpr Guid kCommandBoxIid =
    MakeGuid(0x01E6CDC8, 0x9E6D, 0x4612, {0xBE, 0x82, 0xB7, 0x4A, 0xE2, 0xB7, 0x3E, 0xA9});
constexpr Guid kCommandBoxEventsIid =
    MakeGuid(0x7EEAA5F7, 0xF769, 0x4843, {0xB0, 0xDA, 0x33, 0x67, 0x37, 0x33, 0x37, 0x64});
constexpr Guid kProgressBoxClsid =
    MakeGuid(0x0F9AFF12, 0x8B64, 0x47CA, {0x93, 0x84, 0xD9, 0x2B, 0x80, 0x90, 0x44, 0xBD});
constexpr Guid kProgressBoxIid =
    MakeGuid(0xA9B508BC, 0x7669, 0x402E, {0x85, 0xFD, 0x22, 0x7D, 0x11, 0xEA, 0x9F, 0x1E});
constexpr Guid kProgressBoxEventsIid =
    MakeGuid(0x42CDD739, 0x6888, 0x432B, {0x93, 0x78, 0xC9, 0xD5, 0xEC, 0x1D, 0x0E, 0x91});
constexpr Guid kGeneralClsid =
    MakeGuid(0xF4834713, 0x7408, 0x4BFE, {0x97, 0x74, 0x02, 0x3F, 0x55, 0xB8, 0x3A, 0x71});
constexpr Guid kGeneralIid =
    MakeGuid(0x233EA613, 0xAA06, 0x4306, {0x95, 0x59, 0x47, 0xED, 0x90, 0xC5, 0x8A, 0x58});

// Table helpers -----------------------------------------------------------------

using namespace host::rows;

// Event arguments ----------------------------------------------------------------

// The events every control shares have the same arguments everywhere;
// another event is named with its own. Events are numbered by position.
std::vector<ParamInfo> StandardArgs(std::string_view event) {
    if (event == "KeyDown" || event == "KeyUp")
        return {{"KeyCode", AsInteger}, {"Shift", AsInteger}};
    if (event == "KeyPress") return {{"KeyAscii", AsInteger}};
    if (event.starts_with("Mouse"))
        return {{"Button", AsInteger}, {"Shift", AsInteger}, {"X", AsSingle}, {"Y", AsSingle}};
    return {};
}

struct EventRow {
    std::string_view name;
    std::string_view help = {};
    std::vector<ParamInfo> params = StandardArgs(name);
};

std::vector<EventInfo> Events(std::initializer_list<EventRow> rows) {
    std::vector<EventInfo> events;
    for (const EventRow& row : rows)
        events.push_back({static_cast<int>(events.size()) + 1, row.name, row.params, row.help});
    return events;
}

// Events with no help strings.
std::vector<EventInfo> Events(std::initializer_list<std::string_view> names) {
    std::vector<EventInfo> events;
    for (std::string_view name : names)
        events.push_back({static_cast<int>(events.size()) + 1, name, StandardArgs(name), {}});
    return events;
}

// Enumerations -------------------------------------------------------------------

std::vector<EnumInfo> Enumerations() {
    return {
        {"eAlignment", {{"Left Justify", 0}, {"Right Justify", 1}, {"Center", 2}}},
        // Not the order of eAlignment: value 1 centres here.
        {"eAlignmentText", {{"Left Justify", 0}, {"Center", 1}, {"Right Justify", 2}}},
        {"eAppearance", {{"Flat", 0}, {"3D", 1}}},
        {"eBorderStyle", {{"None", 0}, {"Fixed Single", 1}}},
        {"eAlignPicture",
         {{"Left Align", 0},
          {"Right Align", 1},
          {"Center Align", 2},
          {"Up Align", 3},
          {"Down Align", 4}}},
        {"eStyle", {{"Standard", 0}, {"Double Border", 1}}},
        {"eGradientStyle", {{"Linear", 0}, {"Gaussian", 1}, {"Gaussian\u00B2", 2}}},
    };
}

// DateBox ------------------------------------------------------------------------

ClassInfo DateBox() {
    return ClassInfo{
        "DateBox",
        kDateBoxClsid,
        "_DateBox",
        kDateBoxIid,
        "__DateBox",
        kDateBoxEventsIid,
        controls::DateBox::Table(),
        Events({"KeyDown", "KeyPress", "KeyUp", "Change", "MouseDown", "MouseUp", "MouseMove"}),
    };
}

// CommandBox ---------------------------------------------------------------------

ClassInfo CommandBox() {
    return ClassInfo{
        "CommandBox",
        kCommandBoxClsid,
        "_CommandBox",
        kCommandBoxIid,
        "__CommandBox",
        kCommandBoxEventsIid,
        controls::CommandBox::Table(),
        Events({"Click", "DblClick", "KeyDown", "KeyPress", "KeyUp", "MouseDown", "MouseMove",
                "MouseUp"}),
    };
}

// ProgressBox --------------------------------------------------------------------

ClassInfo ProgressBox() {
    return ClassInfo{
        "ProgressBox",
        kProgressBoxClsid,
        "_ProgressBox",
        kProgressBoxIid,
        "__ProgressBox",
        kProgressBoxEventsIid,
        controls::ProgressBox::Table(),
        Events({
            {"Click",
             "Viene generato quando si preme e quindi si rilascia un pulsante del mouse "
             "su un oggetto."},
            {"DblClick",
             "Viene generato quando si preme e si rilascia due volte in rapida "
             "successione un pulsante del mouse su un oggetto."},
            {"KeyDown",
             "Viene generato quando si preme un tasto mentre lo stato attivo si trova "
             "su un oggetto."},
            {"KeyPress", "Viene generato quando si preme e si rilascia un tasto ANSI."},
            {"KeyUp",
             "Viene generato quando si rilascia un tasto mentre lo stato attivo si trova "
             "su un oggetto."},
            {"MouseDown",
             "Viene generato quando si preme il pulsante del mouse mentre lo stato "
             "attivo si trova su un oggetto."},
            {"MouseMove", "Viene generato quando si sposta il mouse."},
            {"MouseUp",
             "Viene generato quando si rilascia il pulsante del mouse mentre lo stato "
             "attivo si trova su un oggetto."},
            {"Change"},
            {"TimerChange", {}, {{"TimeElapsed", AsLong}, {"TimeEstimated", AsLong}}},
        }),
    };
}

// General: the property page, with an empty interface and no events.
ClassInfo General() {
    return ClassInfo{"General", kGeneralClsid, "_General", kGeneralIid, {}, Guid{}, {}, {}};
}

TypeLibrary Build() {
    return TypeLibrary{
        "Kelvarin",
        "Dranthel - Controlli avanzati Windows",
        kLibId,
        1,
        0,
        {DateBox(), CommandBox(), ProgressBox(), General()},
        Enumerations(),
    };
}

}  // namespace

const TypeLibrary& Kelvarin() {
    static const TypeLibrary library = Build();
    return library;
}

}  // namespace kelvarin::library
