// SPDX-License-Identifier: MIT
#include "library/Dispatch.h"

#include <gtest/gtest.h>

#include <vector>

#include "host/headless/HeadlessHost.h"
#include "library/ClassFactory.h"
#include "tests/ErrorOf.h"
#include "tests/library/Probe.h"

namespace kelvarin::library {
namespace {

using kelvarin::test::ErrorOf;

using test::Probe;

class PictureStandIn : public Object {
public:
    std::string TypeName() const override { return "Picture"; }
};

class DispatchTest : public ::testing::Test {
protected:
    void SetUp() override { test::RegisterProbe(); }
    Probe probe;
};

TEST_F(DispatchTest, BindsByNameInAnyCaseAndByDispId) {
    Let(probe, "Number", Variant(Long{5}));
    EXPECT_EQ(Get(probe, "nUMBER"), Variant(Long{5}));
    EXPECT_EQ(Get(probe, DispId{test::kNumber}), Variant(Long{5}));

    Let(probe, DispId{test::kCaption}, Variant("hello"));
    EXPECT_EQ(Get(probe, "cApTiOn"), Variant("hello"));

    std::vector<Variant> args{Variant(Long{2}), Variant(Long{3})};
    EXPECT_EQ(Call(probe, "ADD", args), Variant(Long{5}));
    EXPECT_EQ(Call(probe, DispId{test::kAdd}, args), Variant(Long{5}));
}

// A value that cannot be converted raises the host's error, and nothing
// reaches the control; which values convert is the variant's own test.
TEST_F(DispatchTest, ConvertsArgumentsToTheMembersTypeOrRaises) {
    constexpr auto kButtonFace = static_cast<Long>(0x8000000F);
    const struct {
        const char* name;
        Variant in, stored;
        int error = 0;
    } rows[] = {
        {"Number", Variant("12"), Variant(Long{12})},
        {"Small", Variant(2.5), Variant(Integer{2})},  // ties go to even
        {"Flag", Variant("True"), Variant(true)},
        {"Ratio", Variant(0.5), Variant(Single{0.5f})},
        {"Amount", Variant(Integer{-3}), Variant(-3.0)},
        {"When", Variant(Long{2}), Variant::FromDate(2.0)},
        {"Caption", Variant(Long{42}), Variant("42")},
        // An enumeration is a Long by another name; its range is the control's business.
        {"Mode", Variant("7"), Variant(Long{7})},
        {"Data", Variant::Null(), Variant::Null()},  // a Variant takes anything
        // Colours take their bits from a Long, written signed or unsigned.
        {"Colour", Variant("&H8000000F"), Variant(kButtonFace)},
        {"Colour", Variant(2147483663.0), Variant(kButtonFace)},
        {"Colour", Variant(4294967296.0), {}, 6},
        {"Colour", Variant("red"), {}, 13},
        {"Number", Variant(std::make_shared<Font>()), {}, 13},
    };
    for (const auto& r : rows) {
        probe.puts.clear();
        EXPECT_EQ(ErrorOf([&] { Let(probe, r.name, r.in); }), r.error) << r.name;
        if (r.error != 0) {
            EXPECT_TRUE(probe.puts.empty()) << r.name;
            continue;
        }
        EXPECT_EQ(probe.values[ClassOf(probe).FindMember(r.name)->dispid], r.stored) << r.name;
    }
}

TEST_F(DispatchTest, ObjectPropertiesNeedAnObjectOfTheirType) {
    auto font = std::make_shared<Font>("Serif", 12.0, true);
    Set(probe, "font", Variant(font));
    EXPECT_EQ(probe.SurfaceState().font, font);

    // The standard font DISPID reaches the same member.
    auto other = std::make_shared<Font>("Mono", 9.0);
    Set(probe, DispId{-512}, Variant(other));
    EXPECT_EQ(probe.SurfaceState().font, other);

    Set(probe, "Icon", Variant(std::make_shared<PictureStandIn>()));
    EXPECT_EQ(probe.values[test::kIcon].ToObject()->TypeName(), "Picture");
    Set(probe, "Icon", Variant::Nothing());
    EXPECT_EQ(probe.values[test::kIcon].ToObject(), nullptr);

    const std::size_t before = probe.puts.size();
    EXPECT_EQ(ErrorOf([&] { Set(probe, "Icon", Variant(font)); }), 13);
    EXPECT_EQ(ErrorOf([&] { Set(probe, "Font", Variant("Serif")); }), 13);
    EXPECT_EQ(probe.puts.size(), before);
}

TEST_F(DispatchTest, MissingMembersAndAccessorsRaise438) {
    std::vector<Variant> none;
    const auto unsupported = [](auto action) { return ErrorOf(action) == 438; };
    EXPECT_TRUE(unsupported([&] { Get(probe, "Nonsense"); }));
    EXPECT_TRUE(unsupported([&] { Get(probe, DispId{999}); }));
    EXPECT_TRUE(unsupported([&] { Let(probe, "Handle", Variant(Long{1})); }));  // read-only
    EXPECT_TRUE(unsupported([&] { Get(probe, "Ring"); }));                      // a method
    EXPECT_TRUE(unsupported([&] { Set(probe, "Number", Variant(std::make_shared<Font>())); }));
    EXPECT_TRUE(unsupported([&] { Let(probe, "Font", Variant(std::make_shared<Font>())); }));
    EXPECT_TRUE(unsupported([&] { Call(probe, "Number", none); }));  // a property
    EXPECT_TRUE(probe.puts.empty());
    EXPECT_EQ(Get(probe, "hANDLE"), Variant(Long{0x1234}));
}

TEST_F(DispatchTest, AControlOfAnUnregisteredClassHasNoMembers) {
    class Stranger : public host::Control {
    public:
        Stranger() : Control("Stranger") {}
    } stranger;
    EXPECT_EQ(ErrorOf([&] { ClassOf(stranger); }), 438);
    EXPECT_EQ(ErrorOf([&] { Get(stranger, "Number"); }), 438);
}

TEST_F(DispatchTest, MethodsCheckTheirArgumentCount) {
    std::vector<Variant> one{Variant(Long{1})};
    std::vector<Variant> three{Variant(Long{1}), Variant(Long{2}), Variant(Long{3})};
    std::vector<Variant> none;
    EXPECT_EQ(ErrorOf([&] { Call(probe, "Add", one); }), 450);
    EXPECT_EQ(ErrorOf([&] { Call(probe, "Add", three); }), 450);
    EXPECT_EQ(ErrorOf([&] { Call(probe, "Ring", one); }), 450);

    std::vector<Variant> mixed{Variant("2"), Variant(2.5)};
    EXPECT_EQ(Call(probe, "Add", mixed), Variant(Long{4}));
    std::vector<Variant> wrong{Variant("x"), Variant(Long{1})};
    EXPECT_EQ(ErrorOf([&] { Call(probe, "Add", wrong); }), 13);
    // A method without a result gives Empty, whatever the control returned.
    EXPECT_TRUE(Call(probe, "Ring", none).IsEmpty());
}

TEST_F(DispatchTest, ArgumentsOfTheRightTypeArePassedByReference) {
    std::vector<Variant> exact{Variant(Integer{41})};
    Call(probe, "Bump", exact);
    EXPECT_EQ(exact[0], Variant(Integer{42}));

    // A value that had to be converted went in as a copy, as with the host.
    std::vector<Variant> converted{Variant(Long{41})};
    Call(probe, "Bump", converted);
    EXPECT_EQ(converted[0], Variant(Long{41}));
}

// A site that answers key events by cancelling the key, as a form's handler does.
class CancellingSite : public host::headless::Placed {
public:
    using Placed::Placed;
    void RaiseEvent(int number, std::span<Variant> args) override {
        Placed::RaiseEvent(number, args);
        if (EventName(Get(), number) == "Typed") args[0] = Variant(Integer{0});
    }
};

// Events reach the container by number and name in every acceptance script;
// here, the container changes a by-reference argument and the control sees it.
TEST_F(DispatchTest, TheContainerChangesAByReferenceEventArgument) {
    host::headless::HeadlessHost host;
    host.eventNames = EventName;
    CancellingSite site(host, "P2", std::make_unique<Probe>());
    std::vector<Variant> key{Variant(Integer{65})};
    EXPECT_EQ(Call(site.Get(), "Type", key), Variant(Integer{0}));
}

}  // namespace
}  // namespace kelvarin::library
