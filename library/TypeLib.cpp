// The library's type information as tables, and the lookups over them.
//
// Sections: GUIDs; lookups; the tables (helpers, enumerations, events,
// DateBox, CommandBox, ProgressBox, General).
#include "library/TypeLib.h"

#include <cctype>
#include <cstdio>

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

const EnumMemberInfo* EnumInfo::FindMember(std::string_view memberName) const {
    for (const EnumMemberInfo& m : members)
        if (EqualsIgnoreCase(m.name, memberName)) return &m;
    return nullptr;
}

const EnumMemberInfo* EnumInfo::FindValue(std::int32_t value) const {
    for (const EnumMemberInfo& m : members)
        if (m.value == value) return &m;
    return nullptr;
}

const MemberInfo* ClassInfo::FindMember(std::string_view memberName) const {
    for (const MemberInfo& m : members)
        if (EqualsIgnoreCase(m.name, memberName)) return &m;
    return nullptr;
}

const MemberInfo* ClassInfo::FindMember(DispId id) const {
    for (const MemberInfo& m : members)
        if (m.dispid == id) return &m;
    return nullptr;
}

const EventInfo* ClassInfo::FindEvent(std::string_view eventName) const {
    for (const EventInfo& e : events)
        if (EqualsIgnoreCase(e.name, eventName)) return &e;
    return nullptr;
}

const EventInfo* ClassInfo::FindEvent(int number) const {
    for (const EventInfo& e : events)
        if (e.number == number) return &e;
    return nullptr;
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
    for (const ClassInfo& c : classes)
        if (EqualsIgnoreCase(c.name, className)) return &c;
    return nullptr;
}

const ClassInfo* TypeLibrary::FindClass(const Guid& clsid) const {
    for (const ClassInfo& c : classes)
        if (c.clsid == clsid) return &c;
    return nullptr;
}

const EnumInfo* TypeLibrary::FindEnum(std::string_view enumName) const {
    for (const EnumInfo& e : enums)
        if (EqualsIgnoreCase(e.name, enumName)) return &e;
    return nullptr;
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

constexpr TypeRef kBoolean{BaseType::Boolean};
constexpr TypeRef kInteger{BaseType::Integer};
constexpr TypeRef kLong{BaseType::Long};
constexpr TypeRef kSingle{BaseType::Single};
constexpr TypeRef kDouble{BaseType::Double};
constexpr TypeRef kDate{BaseType::Date};
constexpr TypeRef kString{BaseType::String};
constexpr TypeRef kVariant{BaseType::Variant};
constexpr TypeRef kColor{BaseType::OleColor};
constexpr TypeRef kFont{BaseType::Font};
constexpr TypeRef kPicture{BaseType::Picture};
constexpr TypeRef kVoid{BaseType::Void};

constexpr TypeRef Enum(std::string_view name) { return TypeRef{BaseType::Enum, name}; }

// Spelled in hexadecimal as type-library browsers show them.
constexpr DispId Id(std::uint32_t hex) { return static_cast<DispId>(hex); }

MemberInfo Prop(std::string_view name, TypeRef type, std::uint32_t id, unsigned access,
                std::string_view help = {}) {
    return MemberInfo{name, MemberKind::Property, type, Id(id), access, help};
}

MemberInfo Method(std::string_view name, TypeRef result, std::uint32_t id,
                  std::string_view help = {}) {
    return MemberInfo{name, MemberKind::Method, result, Id(id), 0, help};
}

// Kept out of object browsers; still reachable by name.
MemberInfo Hidden(MemberInfo m) {
    m.hidden = true;
    return m;
}

constexpr unsigned kGetLet = kGet | kLet;
constexpr unsigned kGetSet = kGet | kSet;
constexpr std::uint32_t kFontId = 0xFFFFFE00;  // the standard font identifier, -512

// Event arguments ----------------------------------------------------------------

std::vector<ParamInfo> KeyArgs() { return {{"KeyCode", kInteger}, {"Shift", kInteger}}; }
std::vector<ParamInfo> KeyPressArgs() { return {{"KeyAscii", kInteger}}; }
std::vector<ParamInfo> MouseArgs() {
    return {{"Button", kInteger}, {"Shift", kInteger}, {"X", kSingle}, {"Y", kSingle}};
}

// Numbers the events by their position.
std::vector<EventInfo> Numbered(std::vector<EventInfo> events) {
    int number = 0;
    for (EventInfo& e : events) e.number = ++number;
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
        {
            Method("TextLeft", kLong, 0x60030024),
            Method("TextWidth", kLong, 0x60030025),
            Method("TextHeight", kLong, 0x60030026),
            Method("TextTop", kLong, 0x60030027),
            Prop("Appearance", Enum("eAppearance"), 0x68030023, kGetLet),
            Prop("BackColor", kColor, 0x68030022, kGetLet),
            Prop("ForeColor", kColor, 0x68030021, kGetLet),
            Prop("Alignment", Enum("eAlignment"), 0x68030020, kGetLet),
            Prop("Enabled", kBoolean, 0x6803001F, kGetLet),
            Prop("Font", kFont, 0x6803001E, kGetSet),
            Prop("BorderStyle", Enum("eBorderStyle"), 0x6803001D, kGetLet),
            Prop("Locked", kBoolean, 0x6803001C, kGetLet),
            Prop("Value", kDate, 0x6803001B, kGetLet),
            Prop("ValueDB", kVariant, 0x68030028, kGetLet),
            Prop("DateFormat", kString, 0x6803001A, kGetLet),
            Prop("SmallChange", kLong, 0x68030019, kGetLet),
            Prop("LargeChange", kLong, 0x68030018, kGetLet),
            Prop("Nullable", kBoolean, 0x68030017, kGetLet),
            Prop("CalendarButton", kBoolean, 0x68030016, kGetLet),
            Prop("MinDate", kDate, 0x68030015, kGetLet),
            Prop("MaxDate", kDate, 0x68030014, kGetLet),
        },
        Numbered({
            {0, "KeyDown", KeyArgs(), {}},
            {0, "KeyPress", KeyPressArgs(), {}},
            {0, "KeyUp", KeyArgs(), {}},
            {0, "Change", {}, {}},
            {0, "MouseDown", MouseArgs(), {}},
            {0, "MouseUp", MouseArgs(), {}},
            {0, "MouseMove", MouseArgs(), {}},
        }),
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
        {
            Prop("BackColor", kColor, 0x68030037, kGetLet,
                 "Set or retrieve the background color of the object"),
            Prop("ForeColor", kColor, 0x68030036, kGetLet,
                 "Set or retrieve the color used to draw text in the control"),
            Prop("Enabled", kBoolean, 0x68030035, kGetLet,
                 "Set or retrieve a value which indicates if the object is allowed to answer to "
                 "systen events"),
            Prop("Font", kFont, kFontId, kGetSet, "Set or retrieve the font object of the control"),
            Method("Refresh", kVoid, 0x60030049, "Ridisegna completamente un oggetto."),
            Prop("MouseIcon", kPicture, 0x68030034, kGetSet,
                 "Imposta un'icona personalizzata per il puntatore del mouse."),
            Prop("MousePointer", kInteger, 0x68030033, kGetLet,
                 "Set or retrieve mouse pointer style when the mouse in on the object"),
            Prop("OLEDropMode", kInteger, 0x68030032, kGetLet,
                 "Restituisce o imposta un valore che indica se l'oggetto pu\u00F2 fungere da "
                 "destinazione di rilascio per il trascinamento OLE."),
            Prop("Picture", kPicture, 0x68030031, kGetSet,
                 "Set or retrieve a graphical element for the control"),
            Prop("RightToLeft", kBoolean, 0x68030030, kGetLet,
                 "Determina la direzione di visualizzazione del testo e l'aspetto del controllo in "
                 "un sistema bidirezionale."),
            Prop("Alignment", Enum("eAlignmentText"), 0x6803002F, kGetLet,
                 "Set or retrieve the text alignment"),
            Prop("AlignPicture", Enum("eAlignPicture"), 0x6803002E, kGetLet,
                 "Set or retrieve the picture alignment"),
            Prop("Interleave", kLong, 0x6803002D, kGetLet,
                 "Set or retrieve the distance between control border and object, and between text "
                 "and picture"),
            Prop("Text", kString, 0x6803002C, kGetLet, "Set or retrieve the text of the control"),
            // Lower case in the interface; persisted as "Style".
            Prop("style", Enum("eStyle"), 0x6803002B, kGetLet,
                 "Set or retrieve the style of the control"),
            Prop("ShowFocusRect", kBoolean, 0x6803002A, kGetLet,
                 "Set or retrieve the value which determinates if the focus rect is drawn or not"),
            Hidden(Prop("hWnd", kLong, 0x68030029, kGet, "Retrieve control handle")),
            Prop("MaskColor", kColor, 0x68030028, kGetLet,
                 "Set or retrieve the color which will be treated as trasparent"),
            Prop("UseMaskColor", kBoolean, 0x68030027, kGetLet,
                 "Set or retrieve the value which indicates if the control shoul use mask color"),
            Prop("HighLighted", kBoolean, 0x68030026, kGetLet,
                 "Set or retrieve the value which indicates if the pictuer change with mouse over "
                 "event"),
            Prop("ForeColorHighLighted", kColor, 0x68030025, kGetLet,
                 "Set or retrieve the value which indicates if the color of the text when the "
                 "mouse is over and the property HiLighted is set to True"),
        },
        Numbered({
            {0, "Click", {}, {}},
            {0, "DblClick", {}, {}},
            {0, "KeyDown", KeyArgs(), {}},
            {0, "KeyPress", KeyPressArgs(), {}},
            {0, "KeyUp", KeyArgs(), {}},
            {0, "MouseDown", MouseArgs(), {}},
            {0, "MouseMove", MouseArgs(), {}},
            {0, "MouseUp", MouseArgs(), {}},
        }),
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
        {
            Prop("BackColor", kColor, 0x68030027, kGetLet,
                 "Restituisce o imposta il colore di sfondo utilizzato per la visualizzazione di "
                 "testo e grafica in un oggetto."),
            Prop("ForeColor", kColor, 0x68030026, kGetLet,
                 "Restituisce o imposta il colore di primo piano utilizzato per la "
                 "visualizzazione di testo e grafica in un oggetto."),
            Prop("Enabled", kBoolean, 0x68030025, kGetLet,
                 "Restituisce o imposta un valore che determina se un oggetto \u00E8 in grado di "
                 "rispondere agli eventi generati dall'utente."),
            Prop("Font", kFont, kFontId, kGetSet, "Restituisce un oggetto Font."),
            Prop("BorderStyle", Enum("eBorderStyle"), 0x68030024, kGetLet,
                 "Restituisce o imposta lo stile del bordo di un oggetto."),
            Prop("Appearance", Enum("eAppearance"), 0x68030023, kGetLet,
                 "Restituisce o imposta un valore che indica se un oggetto viene ridisegnato con "
                 "effetti tridimensionali in fase di esecuzione."),
            Prop("hWnd", kLong, 0x68030022, kGet,
                 "Restituisce un handle (da Microsoft Windows) alla finestra di un oggetto."),
            Prop("MouseIcon", kPicture, 0x68030021, kGetSet,
                 "Imposta un'icona personalizzata per il puntatore del mouse."),
            Prop("MousePointer", kInteger, 0x68030020, kGetLet,
                 "Restituisce o imposta il tipo di puntatore del mouse visualizzato quando il "
                 "puntatore si trova su una parte specifica di un oggetto."),
            Prop("StartColor", kColor, 0x6803001F, kGetLet,
                 "Colore iniziale da cui inziare la barra"),
            Prop("FinishColor", kColor, 0x6803001E, kGetLet,
                 "Colore a cui la barra tender\u00E0 alla fine del processo"),
            Prop("Value", kDouble, 0x6803001D, kGetLet, "Valore corrente della barra"),
            Prop("Text", kString, 0x6803001C, kGetLet,
                 "Testo aggiuntivo visualizzato prima della percentuale"),
            Prop("ShowPercentual", kBoolean, 0x6803001B, kGetLet,
                 "Indica se visualizzare o no la percentuale di completamento del processo"),
            Prop("Alignment", Enum("eAlignmentText"), 0x6803001A, kGetLet),
            Prop("MinValue", kDouble, 0x68030019, kGetLet, "Valore minimo consentito"),
            Prop("MaxValue", kDouble, 0x68030018, kGetLet, "Valore massimo consentito"),
            Prop("Percentual", kDouble, 0x68030017, kGetLet,
                 "Restituisce o imposta la percentuale a cui si trova il controllo"),
            Prop("GradientStyle", Enum("eGradientStyle"), 0x68030016, kGetLet),
            Prop("PivotColor", kColor, 0x68030015, kGetLet),
            Prop("TimerChangedInterval", kLong, 0x68030014, kGetLet),
        },
        Numbered({
            {0,
             "Click",
             {},
             "Viene generato quando si preme e quindi si rilascia un pulsante del mouse su un "
             "oggetto."},
            {0,
             "DblClick",
             {},
             "Viene generato quando si preme e si rilascia due volte in rapida successione un "
             "pulsante del mouse su un oggetto."},
            {0, "KeyDown", KeyArgs(),
             "Viene generato quando si preme un tasto mentre lo stato attivo si trova su un "
             "oggetto."},
            {0, "KeyPress", KeyPressArgs(),
             "Viene generato quando si preme e si rilascia un tasto ANSI."},
            {0, "KeyUp", KeyArgs(),
             "Viene generato quando si rilascia un tasto mentre lo stato attivo si trova su un "
             "oggetto."},
            {0, "MouseDown", MouseArgs(),
             "Viene generato quando si preme il pulsante del mouse mentre lo stato attivo si "
             "trova su un oggetto."},
            {0, "MouseMove", MouseArgs(), "Viene generato quando si sposta il mouse."},
            {0, "MouseUp", MouseArgs(),
             "Viene generato quando si rilascia il pulsante del mouse mentre lo stato attivo si "
             "trova su un oggetto."},
            {0, "Change", {}, {}},
            {0, "TimerChange", {{"TimeElapsed", kLong}, {"TimeEstimated", kLong}}, {}},
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
