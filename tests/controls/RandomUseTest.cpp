// SPDX-License-Identifier: MIT
// Long random sequences of user actions and property writes, with the
// controls' rules checked after every step. Each run is seeded; a failure
// names its seed and step, and the same seed replays it.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "controls/datebox/DateBox.h"
#include "controls/progressbox/ProgressBox.h"
#include "fuzz/FuzzInput.h"
#include "library/Dispatch.h"
#include "tests/ErrorOf.h"

namespace kelvarin::controls {
namespace {

using fuzz::FuzzInput;
using host::headless::HeadlessHost;
using host::headless::Placed;
using kelvarin::test::ErrorOf;

std::vector<std::uint8_t> RandomBytes(unsigned seed, std::size_t count) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t& b : bytes) b = static_cast<std::uint8_t>(random());
    return bytes;
}

std::string Where(unsigned seed, int step) {
    return "seed " + std::to_string(seed) + ", step " + std::to_string(step);
}

// Mostly days near each other, so that limits and values meet; sometimes
// the ends. (Whole days: a value composes from the fields its pattern
// shows, so a time of day in a limit would put a date-only value below it.)
Date AnyDate(FuzzInput& in) {
    if (in.Byte() < 16) return in.Bool() ? kMinDateSerial : kMaxDateSerial;
    return DateSerial(in.Int(1995, 2005), in.Int(1, 12), in.Int(1, 28));
}

// What a write does to the rule that the value lies within the limits.
enum class Limits { Restored, Kept, MayLeave };

// Writing the limits brings the value back within them; making the control
// non-nullable fills an empty value with today, wherever the limits are.
Limits WriteAnyDateBoxProperty(DateBox& box, FuzzInput& in) {
    static constexpr const char* kPatterns[] = {"dd/mm/yyyy", "dd mmmm yyyy", "dddd dd/mm/yyyy",
                                                "dd/mm/yyyy hh:nn", "yyyy-mm-dd"};
    switch (in.Int(0, 8)) {
        case 0: library::Let(box, "Nullable", Variant(in.Bool())); return Limits::MayLeave;
        case 1:
            library::Let(box, "MinDate", Variant::FromDate(AnyDate(in)));
            return Limits::Restored;
        case 2:
            library::Let(box, "MaxDate", Variant::FromDate(AnyDate(in)));
            return Limits::Restored;
        case 3: library::Let(box, "Value", Variant::FromDate(in.Bool() ? 0.0 : AnyDate(in))); break;
        case 4:
            library::Let(box, "ValueDB", in.Bool() ? Variant::Null() : Variant(in.Text(12)));
            break;
        case 5: library::Let(box, "DateFormat", Variant(in.Pick<const char*>(kPatterns))); break;
        case 6: library::Let(box, "SmallChange", Variant(Long{in.Int(-40, 40)})); break;
        case 7: library::Let(box, "LargeChange", Variant(Long{in.Int(-400, 400)})); break;
        default: library::Let(box, "Locked", Variant(in.Byte() < 32)); break;
    }
    return Limits::Kept;
}

// The value is empty only when the control may be empty (or while a blank
// field it may not leave is being edited), a complete value
// lies within the limits unless the user typed it (a typed field is held
// to its own range only), and a field box that is not being edited shows
// the value's part.
std::string BrokenDateBoxRule(DateBox& box, bool editing, bool typed) {
    const Date value = box.Value();
    if (value == 0 && !box.Nullable() && !editing) return "empty while not Nullable";
    if (value != 0 && !typed && (value < box.MinDate() || value > box.MaxDate()))
        return "value " + DateToText(value) + " outside " + DateToText(box.MinDate()) + ".." +
               DateToText(box.MaxDate());
    if (editing || value == 0 || DatePortion(value) == 0) return {};
    // A blank field (a time not filled in) shows underscores in its place.
    const std::string shown = box.ShownText(), expected = FormatDate(value, box.DateFormat());
    bool same = shown.size() == expected.size();
    for (std::size_t i = 0; same && i < shown.size(); ++i)
        same = shown[i] == expected[i] || shown[i] == '_';
    if (!same) return "the boxes show \"" + shown + "\" for " + DateToText(value);
    return {};
}

TEST(RandomUseTest, DateBoxKeepsItsRulesThroughKeysClicksCalendarPicksAndWrites) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        const auto bytes = RandomBytes(seed, 6000);
        FuzzInput in(bytes.data(), bytes.size());
        HeadlessHost host;
        host.modalLoop = [&](host::Popup& popup, host::Point) { fuzz::WorkPopup(popup, in); };
        auto owned = std::make_unique<DateBox>();
        DateBox& box = *owned;
        Placed& placed = host.Add("d", std::move(owned), {180, 21});
        host::PlaceNew(box, placed);
        Placed& other = host.Add("other", std::make_unique<DateBox>(), {120, 21});
        host::PlaceNew(other.Get(), other);
        bool typed = false;  // or today filled in, since the limits were last set
        for (int step = 0; step < 100; ++step) {
            switch (in.Int(0, 9)) {
                case 0:
                case 1: {
                    const Limits limits = WriteAnyDateBoxProperty(box, in);
                    typed = limits == Limits::MayLeave || (limits == Limits::Kept && typed);
                    break;
                }
                case 2:
                    // The calendar, picked from by WorkPopup.
                    host.SetFocus(&placed);
                    fuzz::Stroke(box, host::kKeyF4, 0);
                    break;
                case 3: host.SetFocus(&other); break;
                default: typed = fuzz::UserAction(host, placed, in) || typed; break;
            }
            const std::string broken = BrokenDateBoxRule(box, host.Focused() == &placed, typed);
            ASSERT_EQ(broken, "") << Where(seed, step);
        }
    }
}

void WriteAnyProgressBoxProperty(ProgressBox& bar, FuzzInput& in) {
    const auto number = [&] {
        return in.Byte() < 32 ? in.AnyLong() * 1.0 : in.Int(-200, 200) * 0.5;
    };
    switch (in.Int(0, 6)) {
        case 0: library::Let(bar, "Value", Variant(number())); return;
        case 1: library::Let(bar, "MinValue", Variant(number())); return;
        case 2: library::Let(bar, "MaxValue", Variant(number())); return;
        case 3: library::Let(bar, "Percentual", Variant(in.Int(-50, 150) * 1.0)); return;
        default: {
            // Any other member the table lets a user write, with a value of its type.
            const auto members = bar.Members();
            const host::Member& m =
                members[static_cast<std::size_t>(in.Int(0, static_cast<int>(members.size()) - 1))];
            // (The numbers of the range are the cases above, without NaN.)
            if (m.kind != host::MemberKind::Property || (m.access & host::kLet) == 0 ||
                m.type.base == host::BaseType::Double)
                return;
            const Variant value = in.AnyVariant();
            if (ErrorOf([&] { host::ConvertTo(m.type, value); }) != 0) return;
            library::Let(bar, m.name, value);
            return;
        }
    }
}

TEST(RandomUseTest, ProgressBoxKeepsValueClampedAndPaintsThroughRandomWrites) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        const auto bytes = RandomBytes(seed, 4000);
        FuzzInput in(bytes.data(), bytes.size());
        HeadlessHost host;
        auto owned = std::make_unique<ProgressBox>();
        ProgressBox& bar = *owned;
        Placed& placed = host.Add("p", std::move(owned), {150, 20});
        host::PlaceNew(bar, placed);
        for (int step = 0; step < 100; ++step) {
            // Only the runtime's arithmetic errors may come out, from the
            // drawing of values whose sums leave its ranges, and Invalid
            // property value (380) for a value a property refuses.
            const int error = ErrorOf([&] {
                if (in.Byte() < 200) WriteAnyProgressBoxProperty(bar, in);
                else fuzz::UserAction(host, placed, in);
                host::SyncFrame(bar, placed);
                bar.Paint();
            });
            ASSERT_TRUE(error == 0 || error == 6 || error == 11 || error == 380)
                << error << ", " << Where(seed, step);
            ASSERT_LT(bar.MinValue(), bar.MaxValue()) << Where(seed, step);
            ASSERT_GE(bar.Value(), bar.MinValue()) << Where(seed, step);
            ASSERT_LE(bar.Value(), bar.MaxValue()) << Where(seed, step);
            ASSERT_GE(bar.Percentual(), 0.0) << Where(seed, step);
            ASSERT_LE(bar.Percentual(), 100.0) << Where(seed, step);
        }
    }
}

TEST(RandomUseTest, EveryClassSavesAndLoadsBackRandomProperties) {
    for (const library::ClassInfo& info : library::Kelvarin().classes) {
        if (info.members.empty() || !library::ClassRegistry::Instance().Create(info.name)) continue;
        for (unsigned seed = 1; seed <= 40; ++seed) {
            const auto bytes = RandomBytes(seed, 3000);
            FuzzInput in(bytes.data(), bytes.size());
            HeadlessHost host;
            Placed& placed =
                host.Add("c", library::ClassRegistry::Instance().Create(info.name), {120, 30});
            host::PlaceNew(placed.Get(), placed);
            for (int write = 0; write < 25; ++write) {
                const host::Member& m = info.members[static_cast<std::size_t>(
                    in.Int(0, static_cast<int>(info.members.size()) - 1))];
                if (m.kind != host::MemberKind::Property) continue;
                const Variant value = in.AnyVariant();
                ErrorOf([&] {
                    if (m.access & host::kSet) library::Set(placed.Get(), m.name, value);
                    else if (m.access & host::kLet) library::Let(placed.Get(), m.name, value);
                });
            }
            ASSERT_EQ(fuzz::SavedLoadsBack(placed), "") << info.name << ", seed " << seed;
        }
    }
}

}  // namespace
}  // namespace kelvarin::controls
