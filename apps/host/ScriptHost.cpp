#include "apps/host/ScriptHost.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>

#include "apps/host/ScriptValues.h"
#include "common/BmpFile.h"
#include "common/HostError.h"
#include "common/Picture.h"
#include "common/Text.h"
#include "host/FormFile.h"
#include "host/Keys.h"
#include "library/ClassFactory.h"
#include "library/Dispatch.h"

namespace kelvarin::script {

using host::headless::Placed;

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

void Need(const std::vector<std::string>& words, std::size_t min, std::size_t max,
          const char* usage) {
    if (words.size() < min || words.size() > max) throw ScriptError{std::string("usage: ") + usage};
}

// Keys that type a character, and the character they type.
int TypedCharacter(int code) {
    if (code == 8 || code == 13 || code == 27 || code == 32) return code;
    if ((code >= 48 && code <= 57) || (code >= 65 && code <= 90)) return code;
    if (code >= 96 && code <= 105) return code - 96 + '0';
    return 0;
}

bool IsColor(const library::ClassInfo& info, std::string_view member) {
    const library::MemberInfo* m = info.FindMember(member);
    return m && m->type.base == library::BaseType::OleColor;
}

}  // namespace

ScriptHost::ScriptHost(std::ostream& out) : out_(out) {
    host_.modalLoop = [this](host::Popup& popup, host::Point screen) { RunModal(popup, screen); };
    host_.eventNames = library::EventName;
}

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
    std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos || line[first] == '#') return;
    try {
        const std::vector<std::string> words = SplitWords(line);
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
        placed.Get().InitProperties();
        placed.PaintFrame();  // a control's own default border changes the client area
        placed.Get().Resize();
        placed.Get().Show();
        placed.Get().Paint();
    } catch (...) {
        host_.Remove(name);
        throw;
    }
}

void ScriptHost::AfterWrite(Placed& placed, int borderBefore) {
    // The frame belongs to the host: a new border changes the client area.
    placed.PaintFrame();
    if (host::BorderWidth(placed.Get().SurfaceState()) != borderBefore) {
        placed.Get().Resize();
        placed.Get().Paint();
    }
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
                placed.Get().ReadProperties(bag);
                placed.PaintFrame();
                placed.Get().Resize();
                placed.Get().Show();
                placed.Get().Paint();
            } catch (const HostError& e) {
                if (!controlError) controlError = e;
            }
        }
    } catch (...) {
        host_.AttachAll(std::move(old));
        throw;
    }
    for (auto& p : old) p->Get().Terminate();
    if (controlError) throw *controlError;
}

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
    if (action == "down") focused->Get().KeyDown(key, mask);
    else if (action == "up") focused->Get().KeyUp(key, mask);
    else focused->Get().KeyPress(key);
}

void ScriptHost::SendMouse(std::string_view target, std::string_view action, int button, int shift,
                           double x, double y) {
    const Integer b = static_cast<Integer>(button), s = static_cast<Integer>(shift);
    const Single fx = ToSingle(x), fy = ToSingle(y);
    if (EqualsIgnoreCase(target, "popup")) {
        host::Popup* popup = host_.openPopup;
        if (!popup) throw ScriptError{"no popup is open"};
        if (action == "down") popup->MouseDown(b, s, fx, fy);
        else if (action == "up") popup->MouseUp(b, s, fx, fy);
        else popup->MouseMove(b, s, fx, fy);
        return;
    }
    Placed& placed = Control(target);
    if (!placed.Get().SurfaceState().enabled) return;  // a disabled window gets no input
    if (host_.openPopup) {
        // A press outside the modal popup reaches the popup, not the control.
        if (action == "down") host_.openPopup->Deactivated();
        return;
    }
    if (action == "down") {
        host_.SetFocus(&placed);
        placed.Get().MouseDown(b, s, fx, fy);
    } else if (action == "up") {
        placed.Get().MouseUp(b, s, fx, fy);
    } else {
        placed.Get().MouseMove(b, s, fx, fy);
    }
}

// A control's pixels with its frame, or the open popup's, painted now.
const host::headless::Raster& ScriptHost::Pixels(std::string_view target) {
    if (EqualsIgnoreCase(target, "popup")) {
        if (!host_.openPopup) throw ScriptError{"no popup is open"};
        return host_.PaintPopup();
    }
    Placed& p = Control(target);
    p.PaintFrame();
    return p.Pixels();
}

void ScriptHost::PrintEvents(std::string_view name) {
    auto& events = host_.events;
    std::vector<host::headless::EventRecord> kept;
    for (auto& e : events) {
        if (!name.empty() && !EqualsIgnoreCase(e.control, name)) {
            kept.push_back(std::move(e));
            continue;
        }
        out_ << e.control << "." << e.name << "(";
        for (std::size_t i = 0; i < e.args.size(); ++i)
            out_ << (i ? ", " : "") << FormatValue(e.args[i]);
        out_ << ")\n";
    }
    events = std::move(kept);
}

void ScriptHost::PrintNotifications(std::string_view name) {
    auto& records = host_.notifications;
    std::vector<host::headless::NotificationRecord> kept;
    for (auto& n : records) {
        if (!name.empty() && !EqualsIgnoreCase(n.control, name)) {
            kept.push_back(std::move(n));
            continue;
        }
        out_ << n.control << " notified " << n.property << "\n";
    }
    records = std::move(kept);
}

void ScriptHost::Dispatch(const std::vector<std::string>& w, std::string_view line) {
    const std::string& cmd = w[0];
    if (cmd == "echo") {
        out_ << (line.size() > 5 ? line.substr(5) : std::string_view()) << "\n";
    } else if (cmd == "create") {
        Need(w, 3, 5, "create CLASS NAME [WIDTH HEIGHT]");
        if (w.size() == 4) throw ScriptError{"usage: create CLASS NAME [WIDTH HEIGHT]"};
        const host::Size size =
            w.size() == 5 ? host::Size{ToInt(w[3]), ToInt(w[4])} : host::Size{120, 24};
        Create(w[1], w[2], size);
    } else if (cmd == "destroy") {
        Need(w, 2, 2, "destroy NAME");
        Control(w[1]);
        host_.Remove(w[1]);
    } else if (cmd == "resize") {
        Need(w, 4, 4, "resize NAME WIDTH HEIGHT");
        Placed& p = Control(w[1]);
        const int width = ToInt(w[2]), height = ToInt(w[3]);
        if (width < 0 || height < 0 || width > 32767 || height > 32767)
            throw ScriptError{"impossible size"};
        p.SetOuterSize({width, height});
        p.Get().Resize();
        p.Get().Paint();
    } else if (cmd == "move") {
        Need(w, 4, 4, "move NAME X Y");
        Control(w[1]).MoveTo({ToInt(w[2]), ToInt(w[3])});
    } else if (cmd == "screen") {
        Need(w, 3, 3, "screen WIDTH HEIGHT");
        host_.screen = {ToInt(w[1]), ToInt(w[2])};
    } else if (cmd == "let" || cmd == "set") {
        Need(w, 3, 3, "let|set NAME.PROPERTY VALUE");
        auto [placed, member] = Target(w[1]);
        const Variant value = ParseValue(w[2]);
        const int border = host::BorderWidth(placed->Get().SurfaceState());
        if (cmd == "let") library::Let(placed->Get(), member, value);
        else library::Set(placed->Get(), member, value);
        AfterWrite(*placed, border);
    } else if (cmd == "get") {
        Need(w, 2, 2, "get NAME.PROPERTY");
        auto [placed, member] = Target(w[1]);
        const Variant value = library::Get(placed->Get(), member);
        const library::ClassInfo& info = library::ClassOf(placed->Get());
        out_ << placed->Name() << "." << info.FindMember(member)->name << " = "
             << FormatValue(value, IsColor(info, member)) << "\n";
    } else if (cmd == "call") {
        Need(w, 2, 64, "call NAME.METHOD [ARGUMENTS]");
        auto [placed, member] = Target(w[1]);
        std::vector<Variant> args;
        for (std::size_t i = 2; i < w.size(); ++i) args.push_back(ParseValue(w[i]));
        const int border = host::BorderWidth(placed->Get().SurfaceState());
        const Variant result = library::Call(placed->Get(), member, args);
        AfterWrite(*placed, border);
        if (!result.IsEmpty()) {
            out_ << placed->Name() << "."
                 << library::ClassOf(placed->Get()).FindMember(member)->name << " = "
                 << FormatValue(result) << "\n";
        }
    } else if (cmd == "save") {
        Need(w, 2, 2, "save FILE");
        Save(w[1]);
    } else if (cmd == "load") {
        Need(w, 2, 2, "load FILE");
        Load(w[1]);
    } else if (cmd == "ambient") {
        Need(w, 3, 3, "ambient Font|DisplayAsDefault VALUE");
        const Variant value = ParseValue(w[2]);
        std::string name;
        if (EqualsIgnoreCase(w[1], "Font")) {
            auto font = std::dynamic_pointer_cast<Font>(value.ToObject());
            if (!font) RaiseHostError(HostErrorCode::TypeMismatch);
            host_.ambientFont = font;
            name = "Font";
        } else if (EqualsIgnoreCase(w[1], "DisplayAsDefault")) {
            host_.displayAsDefault = value.ToBoolean();
            name = "DisplayAsDefault";
        } else {
            throw ScriptError{"no ambient property " + w[1]};
        }
        for (Placed* p : host_.Controls()) p->Get().AmbientChanged(name);
    } else if (cmd == "focus") {
        Need(w, 2, 2, "focus NAME");
        if (!host_.SetFocus(&Control(w[1]))) out_ << "focus refused\n";
    } else if (cmd == "key") {
        Need(w, 3, 4, "key down|up CODE [SHIFT] or key press ASCII");
        if (w[1] != "down" && w[1] != "up" && w[1] != "press")
            throw ScriptError{"usage: key down|up CODE [SHIFT] or key press ASCII"};
        SendKey(w[1], ToInt(w[2]), w.size() == 4 ? ToInt(w[3]) : 0);
    } else if (cmd == "stroke") {
        Need(w, 2, 3, "stroke CODE [SHIFT]");
        const int code = ToInt(w[1]), shift = w.size() == 3 ? ToInt(w[2]) : 0;
        SendKey("down", code, shift);
        if (const int c = TypedCharacter(code)) SendKey("press", c, shift);
        SendKey("up", code, shift);
    } else if (cmd == "type") {
        Need(w, 2, 2, "type TEXT");
        // A quoted word is read as a value; a bare one is the text itself.
        const std::string text = w[1].front() == '"' ? ParseValue(w[1]).ToString() : w[1];
        for (char ch : text) {
            const unsigned char c = static_cast<unsigned char>(ch);
            if (std::isdigit(c) || c == ' ') {
                SendKey("down", c, 0);
                SendKey("press", c, 0);
                SendKey("up", c, 0);
            } else if (std::isalpha(c)) {
                const int shift = std::isupper(c) ? 1 : 0;
                SendKey("down", std::toupper(c), shift);
                SendKey("press", c, shift);
                SendKey("up", std::toupper(c), shift);
            } else {
                SendKey("press", c, 0);
            }
        }
    } else if (cmd == "mouse") {
        Need(w, 7, 7, "mouse TARGET down|up|move BUTTON SHIFT X Y");
        if (w[2] != "down" && w[2] != "up" && w[2] != "move")
            throw ScriptError{"usage: mouse TARGET down|up|move BUTTON SHIFT X Y"};
        SendMouse(w[1], w[2], ToInt(w[3]), ToInt(w[4]), ToNumber(w[5]), ToNumber(w[6]));
    } else if (cmd == "click" || cmd == "dblclick") {
        Need(w, 4, 4, "click|dblclick TARGET X Y");
        const double x = ToNumber(w[2]), y = ToNumber(w[3]);
        SendMouse(w[1], "down", 1, 0, x, y);
        SendMouse(w[1], "up", 1, 0, x, y);
        if (!EqualsIgnoreCase(w[1], "popup") && !host_.openPopup &&
            Control(w[1]).Get().SurfaceState().enabled) {
            Placed& p = Control(w[1]);
            p.Get().Click();
            if (cmd == "dblclick") {
                p.Get().DblClick();
                SendMouse(w[1], "up", 1, 0, x, y);
            }
        }
    } else if (cmd == "pointer") {
        Need(w, 3, 3, "pointer NAME over|away");
        if (w[2] != "over" && w[2] != "away") throw ScriptError{"usage: pointer NAME over|away"};
        Placed& target = Control(w[1]);
        for (Placed* p : host_.Controls()) p->pointerOver = false;
        target.pointerOver = w[2] == "over";
    } else if (cmd == "today") {
        Need(w, 2, 2, "today YYYY-MM-DD");
        const Variant d = ParseValue("#" + w[1] + "#");
        host_.today = DatePortion(d.ToDate());
    } else if (cmd == "tick") {
        Need(w, 2, 2, "tick MS");
        const double ms = ToNumber(w[1]);
        if (ms < 0 || ms > 4294967295.0 || ms != std::floor(ms))
            throw ScriptError{"tick needs a whole number of milliseconds"};
        host_.Advance(static_cast<std::uint32_t>(ms));
    } else if (cmd == "tickcount") {
        Need(w, 2, 2, "tickcount N");
        const double n = ToNumber(w[1]);
        if (n < 0 || n > 4294967295.0 || n != std::floor(n))
            throw ScriptError{"tickcount needs a whole number from 0 to 4294967295"};
        host_.SetTickCount(static_cast<std::uint32_t>(n));
    } else if (cmd == "events") {
        Need(w, 1, 2, "events [NAME]");
        PrintEvents(w.size() == 2 ? w[1] : "");
    } else if (cmd == "notified") {
        Need(w, 1, 2, "notified [NAME]");
        PrintNotifications(w.size() == 2 ? w[1] : "");
    } else if (cmd == "dump") {
        Need(w, 2, 2, "dump NAME");
        std::vector<std::string> lines;
        if (EqualsIgnoreCase(w[1], "popup")) {
            if (!host_.openPopup) throw ScriptError{"no popup is open"};
            lines = host_.openPopup->Dump();
            char buf[48];
            std::snprintf(buf, sizeof buf, "position %d %d", popupPosition_.x, popupPosition_.y);
            lines.emplace_back(buf);
        } else {
            lines = Control(w[1]).Get().Dump();
        }
        for (const std::string& l : lines) out_ << l << "\n";
    } else if (cmd == "deactivate") {
        Need(w, 2, 2, "deactivate popup");
        if (!host_.openPopup) throw ScriptError{"no popup is open"};
        host_.openPopup->Deactivated();
    } else if (cmd == "paint") {
        Need(w, 3, 3, "paint NAME|popup FILE.bmp");
        const host::headless::Raster& r = Pixels(w[1]);
        if (r.width == 0 || r.height == 0) throw ScriptError{"the control has no pixels"};
        auto picture = Picture::MakeBitmap(r.width, r.height, 24);
        for (int y = 0; y < r.height; ++y) {  // the raster is top-down, bitmaps bottom-up
            const auto* row = r.bgr.data() + static_cast<std::size_t>(y) * r.width * 3;
            std::copy(row, row + r.width * 3, picture->Row(r.height - 1 - y).begin());
        }
        if (const std::string error = SaveBmpFile(*picture, w[2]); !error.empty())
            throw ScriptError{w[2] + ": " + error};
        if (afterPaint) afterPaint(r, w[2]);
    } else if (cmd == "pixel") {
        Need(w, 4, 4, "pixel NAME|popup X Y");
        const host::headless::Raster& r = Pixels(w[1]);
        const int x = ToInt(w[2]), y = ToInt(w[3]);
        if (x < 0 || y < 0 || x >= r.width || y >= r.height)
            throw ScriptError{"pixel outside the control"};
        out_ << FormatValue(Variant(static_cast<Long>(r.Get(x, y))), true) << "\n";
    } else {
        throw ScriptError{"unknown command " + cmd};
    }
}

}  // namespace kelvarin::script
