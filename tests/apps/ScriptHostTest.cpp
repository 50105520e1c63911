#include "apps/host/ScriptHost.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "library/ClassFactory.h"
#include "tests/host/RecorderClass.h"

namespace kelvarin::script {
namespace {

// A small control that exercises the frame: a few typed properties, a
// method, events, a timer, persistence and a focus it can keep.
class Gauge : public host::Control {
public:
    Gauge() : Control("Gauge") {}

    enum Row : int { kCaption, kCount, kColour, kWhen, kBump, kInterval };

    static host::MemberTable Table() {
        using namespace host::rows;
        using host::Box, host::Unbox, host::kGet, host::kLet;
        static const host::Member rows[] = {
            Property(kCaption, "Caption", 1, AsString)
                .Raw(
                    kGet | kLet, [](host::Control& c) { return Variant(Self(c).caption_); },
                    [](host::Control& c, const Variant& v) {
                        Self(c).Put(kCaption, [&] { Self(c).caption_ = v.ToString(); });
                    })
                .Persist("", [](Gauge& g, std::string v) { g.caption_ = std::move(v); }),
            Property(kCount, "Count", 2, AsLong)
                .Raw(
                    kGet | kLet, [](host::Control& c) { return Variant(Self(c).count_); },
                    [](host::Control& c, const Variant& v) {
                        Self(c).Put(kCount, [&] { Self(c).count_ = v.ToLong(); });
                    })
                .Persist(Long(0), [](Gauge& g, Long v) { g.count_ = v; }),
            Property(kColour, "Color", 3, AsColor)
                .Raw(
                    kGet | kLet, [](host::Control& c) { return Box(Self(c).color_); },
                    [](host::Control& c, const Variant& v) {
                        Self(c).Put(kColour, [&] {
                            Self(c).color_ = Unbox<OLE_COLOR>(v);
                            Self(c).Paint();
                        });
                    })
                .Persist(Long(255), [](Gauge& g, OLE_COLOR v) { g.color_ = v; }),
            Property(kWhen, "When", 4, AsDate)
                .Raw(
                    kGet | kLet, [](host::Control& c) { return Variant::FromDate(Self(c).when_); },
                    [](host::Control& c, const Variant& v) {
                        Self(c).Put(kWhen, [&] { Self(c).when_ = v.ToDate(); });
                    }),
            Method(kBump, "Bump", 5, AsLong, {AsLong},
                   [](host::Control& c, std::span<Variant> args) {
                       Self(c).count_ += args[0].ToLong();
                       return Variant(Self(c).count_);
                   }),
            Property(kInterval, "Interval", 6, AsLong)
                .Raw(
                    kGet | kLet,
                    [](host::Control& c) {
                        return Variant(Self(c).timer_ ? Self(c).timer_->Interval() : Long(0));
                    },
                    [](host::Control& c, const Variant& v) {
                        Self(c).Put(kInterval, [&] {
                            Self(c).timer_->SetInterval(v.ToLong());
                            Self(c).timer_->SetEnabled(v.ToLong() > 0);
                        });
                    }),
        };
        static const host::MemberTable table = host::CheckedTable(rows);
        return table;
    }
    host::MemberTable Members() const override { return Table(); }

    void InitProperties() override { caption_ = Site().ExtenderName(); }
    void ReadProperties(host::PropertyBag& bag) override {
        static constexpr int order[] = {kCaption, kCount, kColour};
        host::ReadMembers(bag, *this, order);
    }
    void WriteProperties(host::PropertyBag& bag) override {
        static constexpr int order[] = {kCaption, kCount, kColour};
        host::WriteMembers(bag, *this, order);
    }
    void Show() override {
        timer_ = Site().CreateTimer([this] { Bump(); });
    }
    void Paint() override {
        host::Surface& s = Site().ClientSurface();
        s.FillRect({0, 0, s.Width(), s.Height()}, TranslateSysColor(color_));
    }
    void KeyDown(Integer& keyCode, Integer shift) override {
        Variant args[] = {Variant(keyCode), Variant(shift)};
        RaiseEvent(2, args);
    }
    void KeyPress(Integer& keyAscii) override {
        Variant args[] = {Variant(keyAscii)};
        RaiseEvent(3, args);
    }
    bool QueryLeaveFocus() override { return caption_ != "stay"; }

    std::vector<std::string> Dump() const override { return {"count " + std::to_string(count_)}; }

private:
    static Gauge& Self(host::Control& c) { return static_cast<Gauge&>(c); }
    void Put(int row, auto&& store) {
        store();
        PropertyChanged(row);
    }
    void Bump() {
        ++count_;
        RaiseEvent(1, {});
    }
    std::string caption_;
    Long count_ = 0;
    OLE_COLOR color_ = 255;
    Date when_ = 0;
    std::unique_ptr<host::Timer> timer_;
};

const library::ClassInfo& GaugeClass() {
    static const library::ClassInfo info = {
        "Gauge",
        {},
        "_Gauge",
        {},
        "__Gauge",
        {},
        Gauge::Table(),
        {{1, "Changed", {}, ""},
         {2, "KeyDown", {{"KeyCode", host::rows::AsInteger}, {"Shift", host::rows::AsInteger}}, ""},
         {3, "KeyPress", {{"KeyAscii", host::rows::AsInteger}}, ""}},
    };
    return info;
}

std::string RunScript(const std::string& script, bool* ok = nullptr) {
    library::ClassRegistry::Instance().Register(GaugeClass(),
                                                [] { return std::make_unique<Gauge>(); });
    std::ostringstream out;
    ScriptHost host(out);
    std::istringstream in(script);
    const bool result = host.Run(in);
    if (ok) *ok = result;
    return out.str();
}

TEST(ScriptHost, PropertiesMethodsAndErrors) {
    bool ok = true;
    EXPECT_EQ(RunScript(R"(# a comment
create Gauge g1 40 10
get g1.Caption
let G1.count "12"
get g1.COUNT
let g1.Color &H8000000F
get g1.Color
let g1.When "2007-12-25"
get g1.When
call g1.Bump 3
let g1.Count abc
let g1.Count "abc"
let g1.Nope 1
get g2.Count
create Gauge g1
frobnicate
echo still "here"
notified
)",
                        &ok),
              R"(g1.Caption = "g1"
g1.Count = 12
g1.Color = &H8000000F
g1.When = #2007-12-25#
g1.Bump = 15
error: 0 not a value: abc
error: 13 Type mismatch
error: 438 Object doesn't support this property or method
error: 0 no control named g2
error: 0 a control named g1 exists already
error: 0 unknown command frobnicate
still "here"
g1 notified Count
g1 notified Color
g1 notified When
)");
    EXPECT_FALSE(ok);
    EXPECT_TRUE((RunScript("echo fine\n", &ok), ok));
}

TEST(ScriptHost, KeysFocusTimersAndPixels) {
    EXPECT_EQ(RunScript(R"(create Gauge a 4 4
create Gauge b 4 4
key down 13
focus a
stroke 65 1
stroke 37
type 7x
let a.Caption "stay"
focus b
let a.Interval 100
tick 250
dump a
events
pixel a 0 0
let a.Color &H00123456
pixel a 3 3
)"),
              R"(error: 0 no control has the focus
focus refused
count 2
a.KeyDown(65, 1)
a.KeyPress(65)
a.KeyDown(37, 0)
a.KeyDown(55, 0)
a.KeyPress(55)
a.KeyDown(88, 0)
a.KeyPress(120)
a.Changed()
a.Changed()
&H000000FF
&H00123456
)");
}

TEST(ScriptHost, SaveAndLoadKeepTheOldFormWhenAFileIsBad) {
    const auto dir = std::filesystem::temp_directory_path() / "kelvarin-script-test";
    std::filesystem::create_directories(dir);
    const std::string good = (dir / "good.json").string();
    const std::string bad = (dir / "bad.json").string();
    std::ofstream(bad) << R"({"format":"kelvarin-form","version":1,"controls":[)"
                          R"({"class":"Gauge","name":"x","left":0,"top":0,"width":5,"height":5,)"
                          R"("properties":{"Count":"many"}}]})";
    EXPECT_EQ(RunScript("create Gauge g1 10 10\nlet g1.Count 7\nmove g1 3 4\nsave " + good +
                        "\ndestroy g1\ncreate Gauge other 5 5\nload " + good +
                        "\nget g1.Count\nget other.Count\nload " + bad + "\nget g1.Count\n"),
              "g1.Count = 7\nerror: 0 no control named other\nerror: 0 " + bad +
                  ": x.properties.Count: expected a number, found a text\ng1.Count = 7\n");
    std::filesystem::remove_all(dir);
}

// The host's own sequences, as a control sees them: a new control is
// initialised and a loaded one only reads, each framed before it is shown; a
// border written later lays it out again; clicks follow the pointer protocol.
TEST(ScriptHost, PlacesControlsAndClicksThemAsEveryHostDoes) {
    host::test::RegisterRecorder();
    const auto dir = std::filesystem::temp_directory_path() / "kelvarin-script-site";
    std::filesystem::create_directories(dir);
    const std::string form = (dir / "form.json").string();
    EXPECT_EQ(
        RunScript("create Recorder r 100 24\nlet r.BorderStyle 0\nlet r.BorderStyle 0\ndump r\n"
                  "save " +
                  form + "\ndestroy r\nload " + form + "\ndump r\n" + R"(destroy r
create Recorder r 100 24
click r 5 5
dblclick r 5 6
mouse r down 1 0 5 5
mouse r move 1 0 120 5
mouse r up 1 0 120 5
mouse r down 2 1 5 5
mouse r up 2 1 5 5
dump r
)"),
        R"(InitProperties
Show 96x20
Resize 96x20
Paint
Resize 100x24
Paint
ReadProperties
Show 100x24
Resize 100x24
Paint
InitProperties
Show 96x20
Resize 96x20
Paint
MouseDown 1 0 5 5
MouseUp 1 0 5 5
Click
MouseDown 1 0 5 6
MouseUp 1 0 5 6
Click
DblClick
MouseUp 1 0 5 6
MouseDown 1 0 5 5
MouseMove 1 0 120 5
MouseUp 1 0 120 5
MouseDown 2 1 5 5
MouseUp 2 1 5 5
)");
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace kelvarin::script
