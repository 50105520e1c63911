// SPDX-License-Identifier: MIT
// Fuzz target for dispatch: the bytes are a sequence of creations of every
// creatable class, property writes and reads by name and by DISPID with
// values of every Variant type, method calls, keys, pointer actions, ticks,
// and form saves and loads. Only the host's runtime errors may come out; a
// write refused before it reaches the control changes nothing; a saved
// control loads back with the same properties.
#include <string>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "host/Site.h"
#include "library/ClassFactory.h"
#include "library/Dispatch.h"

namespace {

using namespace kelvarin;
using fuzz::FuzzInput;
using fuzz::Properties;
using fuzz::Require;
using host::headless::HeadlessHost;
using host::headless::Placed;
using library::ClassInfo;
using library::MemberInfo;

const std::vector<const ClassInfo*>& Creatable() {
    static const std::vector<const ClassInfo*> classes = [] {
        std::vector<const ClassInfo*> found;
        for (const ClassInfo& c : library::Kelvarin().classes)
            if (library::ClassRegistry::Instance().Create(c.name)) found.push_back(&c);
        return found;
    }();
    return classes;
}

// A member to bind to: a real one by name (in any case) or DISPID, or one
// that does not exist.
struct Binding {
    std::string name;
    host::DispId id = 0;
    bool byId = false;
};

Binding AnyBinding(const ClassInfo& info, FuzzInput& in) {
    Binding b;
    b.byId = in.Bool();
    if (in.Byte() < 16 || info.members.empty()) {
        b.name = in.Text(12);
        b.id = in.AnyLong();
        return b;
    }
    const MemberInfo& m = info.members[static_cast<std::size_t>(
        in.Int(0, static_cast<int>(info.members.size()) - 1))];
    b.name = m.name;
    if (in.Bool())
        for (char& c : b.name)
            c = static_cast<char>(c ^ 0x20 * (c >= 'A' && c <= 'z' && in.Bool()));
    b.id = m.dispid;
    return b;
}

const MemberInfo* Find(const ClassInfo& info, const Binding& b) {
    return b.byId ? info.FindMember(b.id) : info.FindMember(b.name);
}

// Whether dispatch refuses the write before the control sees it.
bool RefusedAtBoundary(const MemberInfo* m, unsigned access, const Variant& value) {
    if (!m || m->kind != host::MemberKind::Property || (m->access & access) == 0) return true;
    try {
        library::ConvertTo(m->type, value);
        return false;
    } catch (const HostError&) {
        return true;
    }
}

class Session {
public:
    explicit Session(FuzzInput& in) : in_(in) {
        host_.modalLoop = [this](host::Popup& popup, host::Point) { fuzz::WorkPopup(popup, in_); };
    }

    void Step() {
        const int op = in_.Int(0, 9);
        if (op == 0 || host_.Controls().empty()) return Create();
        Placed& placed = *host_.Controls()[static_cast<std::size_t>(
            in_.Int(0, static_cast<int>(host_.Controls().size()) - 1))];
        host::Control& control = placed.Get();
        const ClassInfo& info = library::ClassOf(control);
        switch (op) {
            case 1:
            case 2: return Write(placed, info, in_.Byte() < 200 ? host::kLet : host::kSet);
            case 3: {
                const Binding b = AnyBinding(info, in_);
                b.byId ? library::Get(control, b.id) : library::Get(control, b.name);
                return;
            }
            case 4: return Call(placed, info);
            case 5:
            case 6: fuzz::UserAction(host_, placed, in_); return;
            case 7: return fuzz::RequireSavedLoadsBack(placed);
            case 8: {
                placed.SetOuterSize({in_.Int(0, 400), in_.Int(0, 120)});
                control.Resize();
                control.Paint();
                return;
            }
            default: host_.Remove(placed.Name()); return;
        }
    }

private:
    void Create() {
        if (host_.Controls().size() >= 4) return;
        const ClassInfo& info = *in_.Pick<const ClassInfo*>(Creatable());
        Placed& placed = host_.Add("c" + std::to_string(++created_),
                                   library::ClassRegistry::Instance().Create(info.name),
                                   {in_.Int(0, 400), in_.Int(0, 120)});
        host::PlaceNew(placed.Get(), placed);
    }

    void Write(Placed& placed, const ClassInfo& info, unsigned access) {
        host::Control& control = placed.Get();
        const Binding b = AnyBinding(info, in_);
        const Variant value = in_.AnyVariant();
        const MemberInfo* m = Find(info, b);
        const bool refused = RefusedAtBoundary(m, access, value);
        const std::vector<std::string> before =
            refused ? Properties(control) : std::vector<std::string>{};
        try {
            if (access == host::kLet)
                b.byId ? library::Let(control, b.id, value) : library::Let(control, b.name, value);
            else b.byId ? library::Set(control, b.id, value) : library::Set(control, b.name, value);
            Require(!refused, "a write that dispatch refuses went through: " + b.name);
        } catch (const HostError&) {
            if (refused)
                Require(Properties(control) == before, "a refused write changed " + info.ProgId());
            throw;
        }
        host::SyncFrame(control, placed);
    }

    void Call(Placed& placed, const ClassInfo& info) {
        const Binding b = AnyBinding(info, in_);
        const MemberInfo* m = Find(info, b);
        int count = m ? static_cast<int>(m->params.size()) : 0;
        if (in_.Byte() < 24) count = in_.Int(0, 4);
        std::vector<Variant> args;
        for (int i = 0; i < count; ++i) args.push_back(in_.AnyVariant());
        b.byId ? library::Call(placed.Get(), b.id, args)
               : library::Call(placed.Get(), b.name, args);
        host::SyncFrame(placed.Get(), placed);
    }

    FuzzInput& in_;
    HeadlessHost host_;
    int created_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput in(data, size);
    Session session(in);
    for (int step = 0; step < 48 && !in.Empty(); ++step) {
        try {
            session.Step();
        } catch (const HostError&) {
            // The runtime's errors are the documented way out.
        }
    }
    return 0;
}
