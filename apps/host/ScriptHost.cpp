// SPDX-License-Identifier: MIT
// Sections: words and keys; running lines; controls and forms; keys and the
// pointer; records and pixels; the command table.
#include "apps/host/ScriptHost.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "apps/host/ScriptValues.h"
#include "common/BmpFile.h"
#include "common/HostError.h"
#include "common/Picture.h"
#include "common/Text.h"
#include "gfx/clsGFX_2D.h"
#include "host/FormFile.h"
#include "host/Keys.h"
#include "host/Site.h"
#include "library/ClassFactory.h"
#include "library/Dispatch.h"

namespace kelvarin::script {

using host::headless::Placed;

// ---- Words and keys -----------------------------------------------------------

namespace {

int ToInt(std::string_view word) {
    int v = 0;
    const auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), v);
    if (ec != std::errc() || end != word.data() + word.size())
        throw ScriptError{"not a whole number: " + std::string(word)};
    return v;
}

double ToNumber(std::string_view word) {
    double v = 0;
    const auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), v);
    if (ec != std::errc() || end != word.data() + word.size() || !std::isfinite(v))
        throw ScriptError{"not a number: " + std::string(word)};
    return v;
}

// Keys that type a character, and the character they type.
int TypedCharacter(int code) {
    using namespace host;
    if (code == kKeyBack || code == kKeyReturn || code == kKeyEscape || code == kKeySpace)
        return code;
    if ((code >= kKey0 && code <= kKey9) || (code >= kKeyA && code <= kKeyZ)) return code;
    if (code >= kKeyNumpad0 && code <= kKeyNumpad9) return code - kKeyNumpad0 + '0';
    return 0;
}

bool IsColor(const library::ClassInfo& info, std::string_view member) {
    const library::MemberInfo* m = info.FindMember(member);
    return m && m->type.base == library::BaseType::OleColor;
}

}  // namespace

// ---- Running lines ---------------------------------------------------------------

ScriptHost::ScriptHost(std::ostream& out) : out_(out) {
    host_.modalLoop = [this](host::Popup& popup, host::Point screen) { RunModal(popup, screen); };
    host_.eventNames = library::EventName;
}

ScriptHost::~ScriptHost() = default;

bool ScriptHost::Run(std::istream& in) {
    in_ = &in;
    std::string line;
    while (std::getline(in, line)) Execute(line);
    in_ = nullptr;
    return !failed_;
}

void ScriptHost::RunModal(host::Popup& popup, host::Point screen) {
    popupPosition_ = screen;
    std::string line;
    while (popup.IsOpen() && in_ && std::getline(*in_, line)) Execute(line);
    // The script ended with the popup open: the application loses activation.
    if (popup.IsOpen()) popup.Deactivated();
}

void ScriptHost::Execute(std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    line = WithoutComment(line);
    std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos) return;
    try {
        // Blank to the words too: a line of other white space (vertical
        // tabs, form feeds) has no command.
        const std::vector<std::string> words = SplitWords(line);
        if (words.empty()) return;
        Dispatch(words, line.substr(first));
    } catch (const HostError& e) {
        failed_ = true;
        out_ << "error: " << e.Number() << " " << e.what() << "\n";
    } catch (const ScriptError& e) {
        failed_ = true;
        out_ << "error: 0 " << e.message << "\n";
    } catch (const host::FormError& e) {
        failed_ = true;
        out_ << "error: 0 " << e.what() << "\n";
    }
}

// ---- Controls and forms ------------------------------------------------------------

Placed& ScriptHost::Control(std::string_view name) {
    Placed* p = host_.Find(name);
    if (!p) throw ScriptError{"no control named " + std::string(name)};
    return *p;
}

std::pair<Placed*, std::string> ScriptHost::Target(std::string_view word) {
    const std::size_t dot = word.find('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == word.size())
        throw ScriptError{"expected NAME.MEMBER: " + std::string(word)};
    return {&Control(word.substr(0, dot)), std::string(word.substr(dot + 1))};
}

void ScriptHost::Create(const std::string& className, const std::string& name, host::Size size) {
    if (host_.Find(name)) throw ScriptError{"a control named " + name + " exists already"};
    if (size.width < 0 || size.height < 0 || size.width > 32767 || size.height > 32767)
        throw ScriptError{"impossible size"};
    auto control = library::ClassRegistry::Instance().Create(className);
    if (!control) throw ScriptError{"cannot create a control of class " + className};
    Placed& placed = host_.Add(name, std::move(control), size);
    try {
        host::PlaceNew(placed.Get(), placed);
    } catch (...) {
        Remove(name);
        throw;
    }
}

void ScriptHost::Remove(std::string_view name) {
    if (Placed* p = host_.Find(name); p && page_) page_->Forget(p->Get());
    host_.Remove(name);
}

void ScriptHost::Save(const std::string& path) {
    host::Form form;
    for (Placed* p : host_.Controls()) {
        host::FormControl fc;
        fc.className = p->Get().TypeName();
        fc.name = p->Name();
        fc.left = p->Position().x;
        fc.top = p->Position().y;
        fc.width = p->OuterSize().width;
        fc.height = p->OuterSize().height;
        host::FormPropertyBag bag(fc.properties, fc.name);
        p->Get().WriteProperties(bag);
        form.controls.push_back(std::move(fc));
    }
    host::SaveFormFile(path, form);
}

void ScriptHost::Load(const std::string& path) {
    auto& registry = library::ClassRegistry::Instance();
    host::Form form =
        host::LoadFormFile(path, [&](std::string_view c) { return registry.Find(c) != nullptr; });
    // Build the new form beside the old one; the old one stays if the file
    // turns out bad. A runtime error a control raises while it reads or
    // repaints is its own: the control keeps what it read, the load goes on,
    // and the first such error is reported at the end.
    auto old = host_.DetachAll();
    std::optional<HostError> controlError;
    try {
        for (host::FormControl& fc : form.controls) {
            auto control = registry.Create(fc.className);
            if (!control) throw ScriptError{"cannot create a control of class " + fc.className};
            Placed& placed = host_.Add(fc.name, std::move(control), {fc.width, fc.height});
            placed.MoveTo({fc.left, fc.top});
            host::FormPropertyBag bag(fc.properties, path + ": " + fc.name + ".properties");
            try {
                host::PlaceLoaded(placed.Get(), bag, placed);
            } catch (const HostError& e) {
                if (!controlError) controlError = e;
            }
        }
    } catch (...) {
        host_.AttachAll(std::move(old));
        throw;
    }
    for (auto& p : old) {
        if (page_) page_->Forget(p->Get());
        p->Get().Terminate();
    }
    if (controlError) throw *controlError;
}

// ---- Keys and the pointer -------------------------------------------------------------

void ScriptHost::SendKey(std::string_view action, int code, int shift) {
    if (code < -32768 || code > 32767 || shift < 0 || shift > 7)
        throw ScriptError{"key code or shift out of range"};
    Integer key = static_cast<Integer>(code);
    const Integer mask = static_cast<Integer>(shift);
    if (host::Popup* popup = host_.openPopup) {
        if (action == "down") popup->KeyDown(key, mask);
        else if (action == "up") popup->KeyUp(key, mask);
        else popup->KeyPress(key);
        return;
    }
    if (code == host::kKeyTab) {
        // The form takes Tab for itself: it moves the focus and no control sees the key.
        if (action == "down" && !host_.FocusNext((mask & host::kShiftMask) == 0))
            out_ << "focus refused\n";
        return;
    }
    Placed* focused = host_.Focused();
    if (!focused) throw ScriptError{"no control has the focus"};
    if (!focused->Get().SurfaceState().enabled) return;  // a disabled window gets no input
    if (action == "down") focused->Get().KeyDown(key, mask);
    else if (action == "up") focused->Get().KeyUp(key, mask);
    else focused->Get().KeyPress(key);
}

void ScriptHost::TypeText(const std::string& text) {
    for (char ch : text) {
        const unsigned char c = static_cast<unsigned char>(ch);
        if (std::isdigit(c) || c == ' ') {
            SendKey("down", c, 0);
            SendKey("press", c, 0);
            SendKey("up", c, 0);
        } else if (std::isalpha(c)) {
            const int shift = std::isupper(c) ? host::kShiftMask : 0;
            SendKey("down", std::toupper(c), shift);
            SendKey("press", c, shift);
            SendKey("up", std::toupper(c), shift);
        } else {
            SendKey("press", c, 0);
        }
    }
}

void ScriptHost::SendMouse(std::string_view target, std::string_view action, int button, int shift,
                           double x, double y, bool secondOfDouble) {
    const host::PointerEvent e{static_cast<Integer>(button), static_cast<Integer>(shift),
                               ToSingle(x), ToSingle(y)};
    if (EqualsIgnoreCase(target, "popup")) {
        host::Popup* popup = host_.openPopup;
        if (!popup) throw ScriptError{"no popup is open"};
        if (action == "down") popup->MouseDown(e.button, e.shift, e.x, e.y);
        else if (action == "up") popup->MouseUp(e.button, e.shift, e.x, e.y);
        else popup->MouseMove(e.button, e.shift, e.x, e.y);
        return;
    }
    Placed& placed = Control(target);
    if (host::Popup* popup = host_.openPopup; popup && popup->IsOpen()) {
        // A press outside the modal popup closes it, as a click outside a
        // popup window does, and then goes where it was aimed.
        if (action != "down") return;
        popup->Deactivated();
        if (popup->IsOpen()) return;
    }
    if (!placed.Get().SurfaceState().enabled) return;  // a disabled window gets no input
    if (action == "down") {
        host_.SetFocus(&placed);
        placed.Pointer().Press(e, secondOfDouble);
    } else if (action == "up") {
        placed.Pointer().Release(e, placed.Covers(e.x, e.y));
    } else {
        placed.Pointer().Move(e);
    }
}

// ---- Records and pixels -----------------------------------------------------------------

// A control's pixels with its frame, or the open popup's, painted now.
const host::headless::Raster& ScriptHost::Pixels(std::string_view target) {
    if (EqualsIgnoreCase(target, "popup")) {
        if (!host_.openPopup) throw ScriptError{"no popup is open"};
        return host_.PaintPopup();
    }
    Placed& p = Control(target);
    p.LayOutFrame();
    return p.Pixels();
}

namespace {

// Prints the records of one control (of every control for an empty name)
// and forgets them; the others stay for a later command.
template <typename Record, typename Print>
void Drain(std::vector<Record>& records, std::string_view name, Print print) {
    std::vector<Record> kept;
    for (Record& r : records) {
        if (name.empty() || EqualsIgnoreCase(r.control, name)) print(r);
        else kept.push_back(std::move(r));
    }
    records = std::move(kept);
}

}  // namespace

void ScriptHost::PrintEvents(std::string_view name) {
    Drain(host_.events, name, [this](const host::headless::EventRecord& e) {
        out_ << e.control << "." << e.name << "(";
        for (std::size_t i = 0; i < e.args.size(); ++i)
            out_ << (i ? ", " : "") << FormatValue(e.args[i]);
        out_ << ")\n";
    });
}

void ScriptHost::PrintNotifications(std::string_view name) {
    Drain(host_.notifications, name, [this](const host::headless::NotificationRecord& n) {
        out_ << n.control << " notified " << n.property << "\n";
    });
}

void ScriptHost::PrintDump(std::string_view target) {
    std::vector<std::string> lines;
    if (EqualsIgnoreCase(target, "popup")) {
        if (!host_.openPopup) throw ScriptError{"no popup is open"};
        lines = host_.openPopup->Dump();
        char buf[48];
        std::snprintf(buf, sizeof buf, "position %d %d", popupPosition_.x, popupPosition_.y);
        lines.emplace_back(buf);
    } else {
        lines = Control(target).Get().Dump();
    }
    for (const std::string& l : lines) out_ << l << "\n";
}

void ScriptHost::PaintToFile(std::string_view target, const std::string& path) {
    const host::headless::Raster& r = Pixels(target);
    if (r.width == 0 || r.height == 0) throw ScriptError{"the control has no pixels"};
    auto picture = Picture::MakeBitmap(r.width, r.height, 24);
    for (int y = 0; y < r.height; ++y) {  // the raster is top-down, bitmaps bottom-up
        const auto* row = r.bgr.data() + static_cast<std::size_t>(y) * r.width * 3;
        std::copy(row, row + r.width * 3, picture->Row(r.height - 1 - y).begin());
    }
    if (const std::string error = SaveBmpFile(*picture, path); !error.empty())
        throw ScriptError{path + ": " + error};
    if (afterPaint) afterPaint(r, path);
}

// ---- The property page ---------------------------------------------------------------

void ScriptHost::Page(const Words& w) {
    constexpr std::string_view usage =
        "usage: page open NAME [NAME...] | clear FIELD | type FIELD TEXT | key FIELD ASCII | "
        "check FIELD True|False | apply | dump";
    const std::string& action = w[1];
    const auto words = [&](std::size_t n) {
        if (w.size() != n) throw ScriptError{std::string(usage)};
    };
    if (!page_) {
        auto created = library::ClassRegistry::Instance().Create("General");
        page_.reset(static_cast<pages::General*>(created.release()));
    }
    pages::General& page = *page_;
    if (action == "open") {
        if (w.size() < 3) throw ScriptError{std::string(usage)};
        std::vector<host::Control*> selected;
        for (std::size_t i = 2; i < w.size(); ++i) selected.push_back(&Control(w[i]).Get());
        page.SelectionChanged(selected);
    } else if (action == "clear") {
        words(3);
        page.SetText(w[2], "");
    } else if (action == "type") {
        words(4);
        // A quoted word is read as a value; a bare one is the text itself.
        page.Type(w[2], w[3].front() == '"' ? ParseValue(w[3]).ToString() : w[3]);
    } else if (action == "key") {
        words(4);
        const int ascii = ToInt(w[3]);
        if (ascii < 0 || ascii > 255) throw ScriptError{"a character code is 0 to 255"};
        page.TypeCharacter(w[2], ascii);
    } else if (action == "check") {
        words(4);
        page.SetChecked(w[2], ParseValue(w[3]).ToBoolean());
    } else if (action == "apply") {
        words(2);
        page.Apply();
    } else if (action == "dump") {
        words(2);
        out_ << "group " << pages::GroupName(page.Shown()) << "\n";
        for (const pages::Field& f : page.Fields()) {
            if (f.group != page.Shown()) continue;
            out_ << f.name << " "
                 << (f.kind == pages::FieldKind::Check ? FormatValue(Variant(f.checked))
                                                       : FormatValue(Variant(f.text)))
                 << "\n";
        }
        out_ << "changed " << FormatValue(Variant(page.Changed())) << "\n";
    } else {
        throw ScriptError{std::string(usage)};
    }
}

// ---- The command table ---------------------------------------------------------------------

struct ScriptHost::Command {
    std::string_view name;
    std::string_view usage;  // shown after "usage: " when the words do not fit
    std::size_t minWords;    // the command's own name included
    std::size_t maxWords;
    void (*run)(ScriptHost& host, const Words& w, std::string_view line);
};

namespace {

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

double WholeMilliseconds(std::string_view word, const char* complaint) {
    const double n = ToNumber(word);
    if (n < 0 || n > 4294967295.0 || n != std::floor(n)) throw ScriptError{complaint};
    return n;
}

}  // namespace

void ScriptHost::Dispatch(const Words& w, std::string_view line) {
    for (const Command& c : Commands()) {
        if (c.name != w[0]) continue;
        if (w.size() < c.minWords || w.size() > c.maxWords)
            throw ScriptError{"usage: " + std::string(c.usage)};
        c.run(*this, w, line);
        return;
    }
    throw ScriptError{"unknown command " + w[0]};
}

const std::vector<ScriptHost::Command>& ScriptHost::Commands() {
    using L = std::string_view;  // the whole line, for echo
    // Commands that share a handler under two names.
    constexpr auto letOrSet = [](ScriptHost& h, const Words& w, L) {
        auto [placed, member] = h.Target(w[1]);
        const Variant value = ParseValue(w[2]);
        if (w[0] == "let") library::Let(placed->Get(), member, value);
        else library::Set(placed->Get(), member, value);
        host::SyncFrame(placed->Get(), *placed);
    };
    constexpr auto click = [](ScriptHost& h, const Words& w, L) {
        const double x = ToNumber(w[2]), y = ToNumber(w[3]);
        const int button = w.size() == 5 ? ToInt(w[4]) : host::kLeftButton;
        if (button < 1 || button > 7) throw ScriptError{"a button is 1 to 7"};
        h.SendMouse(w[1], "down", button, 0, x, y);
        h.SendMouse(w[1], "up", button, 0, x, y);
        // The second press only reaches a control that took the first click.
        if (w[0] != "dblclick" || EqualsIgnoreCase(w[1], "popup") || h.host_.openPopup ||
            !h.Control(w[1]).Get().SurfaceState().enabled)
            return;
        h.SendMouse(w[1], "down", host::kLeftButton, 0, x, y, true);
        h.SendMouse(w[1], "up", host::kLeftButton, 0, x, y);
    };
    static const std::vector<Command> table = {
        {"echo", "", 1, kAnyNumber,
         [](ScriptHost& h, const Words&, L line) {
             h.out_ << (line.size() > 5 ? line.substr(5) : std::string_view()) << "\n";
         }},
        {"create", "create CLASS NAME [WIDTH HEIGHT]", 3, 5,
         [](ScriptHost& h, const Words& w, L) {
             if (w.size() == 4) throw ScriptError{"usage: create CLASS NAME [WIDTH HEIGHT]"};
             const host::Size size =
                 w.size() == 5 ? host::Size{ToInt(w[3]), ToInt(w[4])} : host::Size{120, 24};
             h.Create(w[1], w[2], size);
         }},
        {"destroy", "destroy NAME", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             h.Control(w[1]);
             h.Remove(w[1]);
         }},
        {"resize", "resize NAME WIDTH HEIGHT", 4, 4,
         [](ScriptHost& h, const Words& w, L) {
             Placed& p = h.Control(w[1]);
             const int width = ToInt(w[2]), height = ToInt(w[3]);
             if (width < 0 || height < 0 || width > 32767 || height > 32767)
                 throw ScriptError{"impossible size"};
             p.SetOuterSize({width, height});
             p.Get().Resize();
             p.Get().Paint();
         }},
        {"move", "move NAME X Y", 4, 4,
         [](ScriptHost& h, const Words& w, L) {
             h.Control(w[1]).MoveTo({ToInt(w[2]), ToInt(w[3])});
         }},
        {"scale", "scale pixels|twips", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             if (w[1] != "pixels" && w[1] != "twips")
                 throw ScriptError{"usage: scale pixels|twips"};
             h.host_.unitsPerPixel = w[1] == "twips" ? 15.0 : 1.0;
         }},
        {"screen", "screen WIDTH HEIGHT", 3, 3,
         [](ScriptHost& h, const Words& w, L) {
             h.host_.screen = {ToInt(w[1]), ToInt(w[2])};
         }},
        {"let", "let|set NAME.PROPERTY VALUE", 3, 3, letOrSet},
        {"set", "let|set NAME.PROPERTY VALUE", 3, 3, letOrSet},
        {"get", "get NAME.PROPERTY", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             auto [placed, member] = h.Target(w[1]);
             const Variant value = library::Get(placed->Get(), member);
             const library::ClassInfo& info = library::ClassOf(placed->Get());
             h.out_ << placed->Name() << "." << info.FindMember(member)->name << " = "
                    << FormatValue(value, IsColor(info, member)) << "\n";
         }},
        {"call", "call NAME.METHOD [ARGUMENTS]", 2, 64,
         [](ScriptHost& h, const Words& w, L) {
             auto [placed, member] = h.Target(w[1]);
             std::vector<Variant> args;
             for (std::size_t i = 2; i < w.size(); ++i) args.push_back(ParseValue(w[i]));
             const Variant result = library::Call(placed->Get(), member, args);
             host::SyncFrame(placed->Get(), *placed);
             if (result.IsEmpty()) return;
             h.out_ << placed->Name() << "."
                    << library::ClassOf(placed->Get()).FindMember(member)->name << " = "
                    << FormatValue(result) << "\n";
         }},
        {"save", "save FILE", 2, 2, [](ScriptHost& h, const Words& w, L) { h.Save(w[1]); }},
        {"load", "load FILE", 2, 2, [](ScriptHost& h, const Words& w, L) { h.Load(w[1]); }},
        {"ambient", "ambient Font|DisplayAsDefault VALUE", 3, 3,
         [](ScriptHost& h, const Words& w, L) {
             const Variant value = ParseValue(w[2]);
             std::string name;
             if (EqualsIgnoreCase(w[1], "Font")) {
                 auto font = std::dynamic_pointer_cast<Font>(value.ToObject());
                 if (!font) RaiseHostError(HostErrorCode::TypeMismatch);
                 h.host_.ambientFont = font;
                 name = "Font";
             } else if (EqualsIgnoreCase(w[1], "DisplayAsDefault")) {
                 h.host_.displayAsDefault = value.ToBoolean();
                 name = "DisplayAsDefault";
             } else {
                 throw ScriptError{"no ambient property " + w[1]};
             }
             for (Placed* p : h.host_.Controls()) p->Get().AmbientChanged(name);
         }},
        {"focus", "focus NAME", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             if (!h.host_.SetFocus(&h.Control(w[1]))) h.out_ << "focus refused\n";
         }},
        {"key", "key down|up CODE [SHIFT] or key press ASCII", 3, 4,
         [](ScriptHost& h, const Words& w, L) {
             if (w[1] != "down" && w[1] != "up" && w[1] != "press")
                 throw ScriptError{"usage: key down|up CODE [SHIFT] or key press ASCII"};
             h.SendKey(w[1], ToInt(w[2]), w.size() == 4 ? ToInt(w[3]) : 0);
         }},
        {"stroke", "stroke CODE [SHIFT]", 2, 3,
         [](ScriptHost& h, const Words& w, L) {
             const int code = ToInt(w[1]), shift = w.size() == 3 ? ToInt(w[2]) : 0;
             // Alt and a control's access key is the form's: it goes to that
             // control and no further, and the focus stays where it is.
             if ((shift & host::kAltMask) && !h.host_.openPopup) {
                 if (Placed* owner = h.host_.AccessKeyOwner(code)) {
                     owner->Get().AccessKeyPress(static_cast<Integer>(code));
                     return;
                 }
             }
             h.SendKey("down", code, shift);
             if (const int c = TypedCharacter(code)) h.SendKey("press", c, shift);
             h.SendKey("up", code, shift);
         }},
        {"type", "type TEXT", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             // A quoted word is read as a value; a bare one is the text itself.
             h.TypeText(w[1].front() == '"' ? ParseValue(w[1]).ToString() : w[1]);
         }},
        {"mouse", "mouse TARGET down|up|move BUTTON SHIFT X Y", 7, 7,
         [](ScriptHost& h, const Words& w, L) {
             if (w[2] != "down" && w[2] != "up" && w[2] != "move")
                 throw ScriptError{"usage: mouse TARGET down|up|move BUTTON SHIFT X Y"};
             h.SendMouse(w[1], w[2], ToInt(w[3]), ToInt(w[4]), ToNumber(w[5]), ToNumber(w[6]));
         }},
        {"click", "click TARGET X Y [BUTTON]", 4, 5, click},
        {"dblclick", "dblclick TARGET X Y", 4, 4, click},
        {"pointer", "pointer NAME over|away", 3, 3,
         [](ScriptHost& h, const Words& w, L) {
             if (w[2] != "over" && w[2] != "away")
                 throw ScriptError{"usage: pointer NAME over|away"};
             Placed& target = h.Control(w[1]);
             for (Placed* p : h.host_.Controls()) p->pointerOver = false;
             target.pointerOver = w[2] == "over";
         }},
        {"today", "today YYYY-MM-DD", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             const Variant d = ParseValue("#" + w[1] + "#");
             h.host_.today = DatePortion(d.ToDate());
         }},
        {"tick", "tick MS", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             h.host_.Advance(static_cast<std::uint32_t>(
                 WholeMilliseconds(w[1], "tick needs a whole number of milliseconds")));
         }},
        {"tickcount", "tickcount N", 2, 2,
         [](ScriptHost& h, const Words& w, L) {
             h.host_.SetTickCount(static_cast<std::uint32_t>(
                 WholeMilliseconds(w[1], "tickcount needs a whole number from 0 to 4294967295")));
         }},
        {"events", "events [NAME]", 1, 2,
         [](ScriptHost& h, const Words& w, L) { h.PrintEvents(w.size() == 2 ? w[1] : ""); }},
        {"notified", "notified [NAME]", 1, 2,
         [](ScriptHost& h, const Words& w, L) { h.PrintNotifications(w.size() == 2 ? w[1] : ""); }},
        {"dump", "dump NAME", 2, 2, [](ScriptHost& h, const Words& w, L) { h.PrintDump(w[1]); }},
        {"page", "page open|clear|type|key|check|apply|dump ...", 2, kAnyNumber,
         [](ScriptHost& h, const Words& w, L) { h.Page(w); }},
        {"deactivate", "deactivate popup", 2, 2,
         [](ScriptHost& h, const Words&, L) {
             if (!h.host_.openPopup) throw ScriptError{"no popup is open"};
             h.host_.openPopup->Deactivated();
         }},
        {"paint", "paint NAME|popup FILE.bmp", 3, 3,
         [](ScriptHost& h, const Words& w, L) { h.PaintToFile(w[1], w[2]); }},
        {"gfx",
         "gfx NAME WIDTH HEIGHT [BITS] | NAME load|paint FILE.bmp | NAME checksum | "
         "NAME [repeat N] OPERATION [ARG...] [; OPERATION [ARG...]]...",
         3, kAnyNumber, [](ScriptHost& h, const Words& w, L) { h.Gfx(w); }},
        {"pixel", "pixel NAME|popup X Y", 4, 4,
         [](ScriptHost& h, const Words& w, L) {
             const host::headless::Raster& r = h.Pixels(w[1]);
             const int x = ToInt(w[2]), y = ToInt(w[3]);
             if (x < 0 || y < 0 || x >= r.width || y >= r.height)
                 throw ScriptError{"pixel outside the control"};
             h.out_ << FormatValue(Variant(static_cast<Long>(r.Get(x, y))), true) << "\n";
         }},
    };
    return table;
}

}  // namespace kelvarin::script
