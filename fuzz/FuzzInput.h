// SPDX-License-Identifier: MIT
// What the fuzz targets share: reading typed values off the fuzzer's bytes,
// values of every Variant type, a control's readable properties as text
// (to check that a failed write changed nothing and that a saved control
// loads back the same), and the check that stops a run on a broken rule.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "common/Font.h"
#include "common/HostError.h"
#include "common/Picture.h"
#include "common/Variant.h"
#include "host/Control.h"
#include "host/FormFile.h"
#include "host/Keys.h"
#include "host/Site.h"
#include "host/headless/HeadlessHost.h"
#include "library/ClassFactory.h"

namespace kelvarin::fuzz {

// A broken rule is a finding: say which and stop, so that libFuzzer keeps the input.
inline void Require(bool holds, const std::string& rule) {
    if (holds) return;
    std::fprintf(stderr, "broken rule: %s\n", rule.c_str());
    std::abort();
}

class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

    bool Empty() const noexcept { return at_ >= bytes_.size(); }
    // Zero once the bytes run out, so every input decodes to something.
    std::uint8_t Byte() noexcept { return Empty() ? 0 : bytes_[at_++]; }
    bool Bool() noexcept { return (Byte() & 1) != 0; }
    std::uint32_t Bits32() noexcept {
        std::uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v |= std::uint32_t{Byte()} << (8 * i);
        return v;
    }
    // lo..hi inclusive.
    int Int(int lo, int hi) noexcept {
        const auto span = static_cast<std::uint32_t>(hi - lo) + 1;
        const std::uint32_t raw = span <= 256 ? Byte() : Bits32();
        return lo + static_cast<int>(span == 0 ? raw : raw % span);
    }
    template <class T>
    const T& Pick(std::span<const T> items) noexcept {
        return items[static_cast<std::size_t>(Int(0, static_cast<int>(items.size()) - 1))];
    }
    // Edges first: the values that break arithmetic, else any 32 bits.
    Long AnyLong() noexcept {
        static constexpr Long kEdges[] = {0,
                                          1,
                                          -1,
                                          2,
                                          255,
                                          256,
                                          32767,
                                          -32768,
                                          65535,
                                          0x7FFFFFFF,
                                          -0x7FFFFFFF - 1,
                                          static_cast<Long>(0x8000000F),
                                          100};
        const std::uint8_t how = Byte();
        if (how < 128) return kEdges[how % std::size(kEdges)];
        return static_cast<Long>(Bits32());
    }
    double AnyDouble() noexcept {
        static constexpr double kEdges[] = {0.0,
                                            -0.0,
                                            0.5,
                                            1.5,
                                            -1.25,
                                            1e308,
                                            -1e308,
                                            2958465.99999,  // 31 December 9999
                                            -657434.0,      // 1 January 100
                                            1e-300,
                                            std::numeric_limits<double>::infinity(),
                                            std::numeric_limits<double>::quiet_NaN(),
                                            4294967296.0,
                                            32767.5};
        const std::uint8_t how = Byte();
        if (how < 128) return kEdges[how % std::size(kEdges)];
        if (how < 192) return AnyLong() / 8.0;
        std::uint64_t bits = Bits32();
        bits |= std::uint64_t{Bits32()} << 32;
        double d;
        std::memcpy(&d, &bits, sizeof d);
        return d;
    }
    // A length byte, then that many bytes (fewer at the end).
    std::string Text(std::size_t max = 64) {
        std::size_t n = Byte() % (max + 1);
        n = std::min(n, bytes_.size() - std::min(at_, bytes_.size()));
        std::string s(reinterpret_cast<const char*>(bytes_.data() + at_), n);
        at_ += n;
        return s;
    }
    // A value of every Variant type, objects included.
    Variant AnyVariant() {
        switch (Int(0, 11)) {
            case 0: return Variant();
            case 1: return Variant::Null();
            case 2: return Variant(Bool());
            case 3: return Variant(static_cast<Integer>(AnyLong()));
            case 4: return Variant(AnyLong());
            case 5: return Variant(static_cast<Single>(AnyDouble()));
            case 6: return Variant(AnyDouble());
            case 7: return Variant::FromDate(AnyDouble());
            case 8: return Variant(Text());
            case 9:
                return Variant(std::shared_ptr<Object>(
                    std::make_shared<Font>(Text(16), AnyDouble(), Bool(), Bool(), Bool(), Bool())));
            case 10: return Variant(std::shared_ptr<Object>(AnyPicture()));
            default: return Variant::Nothing();
        }
    }
    // A small picture of any kind, or none.
    std::shared_ptr<Picture> AnyPicture() {
        switch (Int(0, 3)) {
            case 0: {
                static constexpr int kDepths[] = {8, 16, 24, 32};
                auto p = Picture::MakeBitmap(Int(1, 40), Int(1, 40), Pick<int>(kDepths));
                for (int y = 0; y < p->Height(); ++y)
                    for (std::uint8_t& b : p->Row(y)) b = Byte();
                return p;
            }
            case 1: return Picture::MakeIcon(Int(1, 40), Int(1, 40), Int(-2, 40), Int(-2, 40));
            case 2: return Picture::MakeOfType(PictureType::Metafile);
            default: return Picture::MakeOfType(PictureType::None);
        }
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

// A value as exact text: the type, then the value (floating point in hex,
// fonts by their fields, pictures by kind, size and bytes).
inline std::string Describe(const Variant& v) {
    char buffer[64];
    switch (v.Type()) {
        case VarType::Single:
        case VarType::Double:
        case VarType::Date: {
            // -0 is 0: a form does not write a value equal to its default,
            // whatever the sign of its zero.
            const double x = v.ToDouble();
            std::snprintf(buffer, sizeof buffer, "%s %a", VarTypeName(v.Type()), x == 0 ? 0.0 : x);
            return buffer;
        }
        case VarType::Object: {
            const auto o = v.ToObject();
            if (!o) return "Nothing";
            if (const auto* f = dynamic_cast<const Font*>(o.get())) {
                std::snprintf(buffer, sizeof buffer, " %a %d%d%d%d", f->size, f->bold, f->italic,
                              f->underline, f->strikethrough);
                return "Font " + f->name + buffer;
            }
            if (const auto* p = dynamic_cast<const Picture*>(o.get())) {
                std::uint32_t hash = 2166136261u;
                for (std::uint8_t b : p->Bits()) hash = (hash ^ b) * 16777619u;
                std::snprintf(buffer, sizeof buffer, "Picture %d %dx%dx%d %08x",
                              static_cast<int>(p->Type()), p->Width(), p->Height(),
                              p->BitsPerPixel(), hash);
                return buffer;
            }
            return o->TypeName();
        }
        case VarType::Empty:
        case VarType::Null:
        case VarType::Boolean:
        case VarType::Integer:
        case VarType::Long:
        case VarType::String: break;
    }
    return std::string(VarTypeName(v.Type())) + " " + (v.IsNull() ? "" : v.ToString());
}

// Every readable property of a control, "Name=value" (or the error a read
// raises), in table order; with `storedOnly`, those the property writer keeps.
inline std::vector<std::string> Properties(host::Control& control, bool storedOnly = false) {
    std::vector<std::string> lines;
    for (const host::Member& m : control.Members()) {
        if (m.kind != host::MemberKind::Property || (m.access & host::kGet) == 0) continue;
        if (storedOnly && m.persisted.empty()) continue;
        std::string line(m.name);
        try {
            line += "=" + Describe(host::GetMember(m, control));
        } catch (const HostError& e) {
            line += " raises " + std::to_string(e.Number());
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

// ---- Driving a placed control ---------------------------------------------

// Keys a date field, a button and a calendar react to, and some they don't.
inline int AnyKey(FuzzInput& in) {
    using namespace host;
    static constexpr int kKeys[] = {kKeyUp,          kKeyDown,   kKeyLeft,  kKeyRight,  kKeyPageUp,
                                    kKeyPageDown,    kKeyHome,   kKeyEnd,   kKeyDelete, kKeyBack,
                                    kKeyReturn,      kKeyEscape, kKeySpace, kKeyF4,     kKeyF5,
                                    kKeyTab,         kKey0,      kKey0 + 1, kKey0 + 2,  kKey0 + 9,
                                    kKeyNumpad0 + 3, kKeyA,      kKeyZ,     kKeyMenu,   kKeySlash};
    return in.Byte() < 230 ? in.Pick<int>(kKeys) : static_cast<Integer>(in.AnyLong());
}

// One key: down, press (the character it types) and up.
inline void Stroke(host::Control& target, int code, Integer shift) {
    Integer key = static_cast<Integer>(code);
    target.KeyDown(key, shift);
    Integer ascii = static_cast<Integer>(code >= host::kKeyNumpad0 && code <= host::kKeyNumpad0 + 9
                                             ? code - host::kKeyNumpad0 + '0'
                                             : code);
    target.KeyPress(ascii);
    key = static_cast<Integer>(code);
    target.KeyUp(key, shift);
}

// Works the open popup with a few keys and clicks, then takes the
// activation away if it is still open.
inline void WorkPopup(host::Popup& popup, FuzzInput& in) {
    for (int i = 0; i < 6 && popup.IsOpen() && !in.Empty(); ++i) {
        const host::Size size = popup.ClientSize();
        if (in.Bool()) {
            Integer key = static_cast<Integer>(AnyKey(in));
            popup.KeyDown(key, static_cast<Integer>(in.Int(0, 7)));
            continue;
        }
        const auto x = static_cast<Single>(in.Int(-4, size.width + 4));
        const auto y = static_cast<Single>(in.Int(-4, size.height + 4));
        popup.MouseMove(0, 0, x, y);
        popup.MouseDown(1, 0, x, y);
        if (popup.IsOpen()) popup.MouseUp(1, 0, x, y);
    }
    if (popup.IsOpen()) popup.Deactivated();
}

// One action of a user on a placed control: a key, a press, move or
// release of the pointer, a click, the focus, or time passing. True when it
// typed into the control, a digit or a deletion (a typed field is held to
// its own range only, not to a date field's limits, and a part-typed year
// is completed in this century).
inline bool UserAction(host::headless::HeadlessHost& host, host::headless::Placed& placed,
                       FuzzInput& in) {
    const host::Size size = placed.OuterSize();
    const host::PointerEvent e{static_cast<Integer>(in.Int(0, 4)),
                               static_cast<Integer>(in.Int(0, 7)),
                               static_cast<Single>(in.Int(-4, size.width + 4)),
                               static_cast<Single>(in.Int(-4, size.height + 4))};
    const bool enabled = placed.Get().SurfaceState().enabled;
    switch (in.Int(0, 6)) {
        case 0:
        case 1: {
            if (host.Focused() != &placed) return false;
            const int key = AnyKey(in);
            Stroke(placed.Get(), key, e.shift);
            return (key >= host::kKey0 && key <= host::kKey0 + 9) ||
                   (key >= host::kKeyNumpad0 && key <= host::kKeyNumpad0 + 9) ||
                   key == host::kKeyDelete || key == host::kKeyBack;
        }
        case 2:
            if (!enabled) return false;
            host.SetFocus(&placed);
            placed.Pointer().Press(e, in.Byte() < 32);
            return false;
        case 3:
            if (enabled) placed.Pointer().Release(e, placed.Covers(e.x, e.y));
            return false;
        case 4:
            if (enabled) placed.Pointer().Move(e);
            return false;
        case 5: host.SetFocus(&placed); return false;
        default: host.Advance(static_cast<std::uint32_t>(in.Int(0, 2000))); return false;
    }
}

inline std::string Join(const std::vector<std::string>& lines) {
    std::string all;
    for (const std::string& l : lines) all += l + "\n";
    return all;
}

// Writes a placed control to a form file and reads it back into a fresh
// control of the same class, name and size on `form`; the file's text, or
// why it did not load.
inline std::string SaveAndLoad(host::headless::Placed& placed, host::headless::HeadlessHost& form,
                               host::headless::Placed*& loaded, bool& failed) {
    host::Control& control = placed.Get();
    host::Form file;
    host::FormControl& fc = file.controls.emplace_back();
    fc.className = control.TypeName();
    fc.name = placed.Name();
    fc.width = placed.OuterSize().width;
    fc.height = placed.OuterSize().height;
    host::FormPropertyBag bag(fc.properties, fc.name);
    control.WriteProperties(bag);
    std::string text;
    try {
        text = host::WriteForm(file);
    } catch (const host::FormError&) {
        return {};  // a value no form keeps (a font of 1e47 points) is refused: nothing saved
    }
    host::Form back;
    try {
        back = host::ReadForm(text, "saved", [](std::string_view) { return true; });
    } catch (const host::FormError& e) {
        failed = true;
        return std::string("a saved form does not load: ") + e.what() + "\n" + text;
    }
    host::FormControl& read = back.controls.at(0);
    loaded = &form.Add(read.name, library::ClassRegistry::Instance().Create(read.className),
                       {read.width, read.height});
    host::FormPropertyBag readBag(read.properties, read.name);
    try {
        host::PlaceLoaded(loaded->Get(), readBag, *loaded);
    } catch (const HostError&) {
        // The control keeps what it read, which is what is compared.
    }
    return text;
}

// A saved control loads back with the same stored properties: empty when
// it does, else both lists and the file. Loading may lower what the control
// lowers on every load (a DateBox's MaxDate to 31 December 9980, and its
// Value with it, deliberately), but a second save and load changes nothing.
inline std::string SavedLoadsBack(host::headless::Placed& placed) {
    host::headless::HeadlessHost first, second;
    host::headless::Placed* copies[2] = {};
    host::headless::Placed* from = &placed;
    for (int trip = 0; trip < 2; ++trip) {
        bool failed = false;
        const std::string text =
            SaveAndLoad(*from, trip == 0 ? first : second, copies[trip], failed);
        if (failed) return text;
        if (!copies[trip]) return {};  // refused as it was written: nothing saved
        const auto saved = Properties(from->Get(), true),
                   read = Properties(copies[trip]->Get(), true);
        bool same = saved.size() == read.size();
        for (std::size_t i = 0; same && i < saved.size(); ++i) {
            const bool lowered =
                trip == 0 && from->Get().TypeName() == "DateBox" &&
                (saved[i].starts_with("MaxDate=") || saved[i].starts_with("Value="));
            same = saved[i] == read[i] || lowered;
        }
        if (!same) {
            return "a saved " + from->Get().TypeName() + " loads back different:\n" + Join(saved) +
                   "--- loaded:\n" + Join(read) + "--- file:\n" + text;
        }
        from = copies[trip];
    }
    return {};
}

inline void RequireSavedLoadsBack(host::headless::Placed& placed) {
    const std::string difference = SavedLoadsBack(placed);
    Require(difference.empty(), difference);
}

}  // namespace kelvarin::fuzz
