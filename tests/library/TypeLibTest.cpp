#include "library/TypeLib.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

namespace kelvarin::library {
namespace {

const ClassInfo& Class(std::string_view name) {
    const ClassInfo* c = Kelvarin().FindClass(name);
    if (c == nullptr) throw std::logic_error("no class " + std::string(name));
    return *c;
}

const MemberInfo& Member(std::string_view cls, std::string_view member) {
    const MemberInfo* m = Class(cls).FindMember(member);
    if (m == nullptr) throw std::logic_error("no member " + std::string(member));
    return *m;
}

TEST(GuidTest, PrintsAndReadsTheRegistryForm) {
    const Guid g{0x0F9AFF12, 0x8B64, 0x47CA, {0x93, 0x84, 0xD9, 0x2B, 0x80, 0x90, 0x44, 0xBD}};
    EXPECT_EQ(g.ToString(), "{0F9AFF12-8B64-47CA-9384-D92B809044BD}");
    EXPECT_EQ(Guid::Parse("{0F9AFF12-8B64-47CA-9384-D92B809044BD}"), g);
    EXPECT_EQ(Guid::Parse("0f9aff12-8b64-47ca-9384-d92b809044bd"), g);
    EXPECT_EQ(Guid{}.ToString(), "{00000000-0000-0000-0000-000000000000}");

    for (const char* bad :
         {"", "{0F9AFF12-8B64-47CA-9384-D92B809044BD", "(0F9AFF12-8B64-47CA-9384-D92B809044BD)",
          "0F9AFF12-8B64-47CA-9384_D92B809044BD", "0F9AFF12-8B64-47CA-9384-D92B809044BG"}) {
        EXPECT_FALSE(Guid::Parse(bad).has_value()) << bad;
    }
}

TEST(TypeLibTest, LibraryIdentityAndDistinctIdentifiers) {
    const TypeLibrary& lib = Kelvarin();
    EXPECT_EQ(lib.name, "Kelvarin");
    EXPECT_EQ(lib.help, "Dranthel - Controlli avanzati Windows");
    EXPECT_EQ(lib.majorVersion, 1);
    EXPECT_EQ(lib.minorVersion, 0);
    // Kept fixed once published: a registered host finds the library by it.
    EXPECT_EQ(lib.libid.ToString(), "{15B581C9-D00D-4A6E-99F7-9D6724423E3B}");

    std::set<std::string> ids{lib.libid.ToString()};
    std::size_t expected = 1;
    for (const ClassInfo& c : lib.classes) {
        ids.insert(c.clsid.ToString());
        ids.insert(c.iid.ToString());
        expected += 2;
        if (!c.eventInterfaceName.empty()) {
            ids.insert(c.eventIid.ToString());
            ++expected;
        }
    }
    EXPECT_EQ(ids.size(), expected);
    EXPECT_EQ(ids.count(Guid{}.ToString()), 0u);
}

TEST(TypeLibTest, ClassesAndTheirInterfaces) {
    const TypeLibrary& lib = Kelvarin();
    ASSERT_EQ(lib.classes.size(), 4u);
    EXPECT_EQ(lib.classes[0].name, "DateBox");
    EXPECT_EQ(lib.classes[3].name, "General");
    EXPECT_EQ(Class("ProgressBox").interfaceName, "_ProgressBox");
    EXPECT_EQ(Class("ProgressBox").eventInterfaceName, "__ProgressBox");
    EXPECT_EQ(Class("CommandBox").ProgId(), "Kelvarin.CommandBox");

    const ClassInfo& general = Class("General");
    EXPECT_EQ(general.interfaceName, "_General");
    EXPECT_TRUE(general.members.empty());
    EXPECT_TRUE(general.eventInterfaceName.empty());
    EXPECT_TRUE(general.events.empty());
}

TEST(TypeLibTest, FindsClassesByNameProgIdAndGuid) {
    const TypeLibrary& lib = Kelvarin();
    const ClassInfo* dateBox = lib.FindClass("DateBox");
    ASSERT_NE(dateBox, nullptr);
    EXPECT_EQ(lib.FindClass("datebox"), dateBox);
    EXPECT_EQ(lib.FindClass("Kelvarin.DateBox"), dateBox);
    EXPECT_EQ(lib.FindClass("KELVARIN.datebox"), dateBox);
    EXPECT_EQ(lib.FindClass(dateBox->clsid), dateBox);

    EXPECT_EQ(lib.FindClass("Other.DateBox"), nullptr);
    EXPECT_EQ(lib.FindClass("Kelvarin."), nullptr);
    EXPECT_EQ(lib.FindClass("DateBo"), nullptr);
    EXPECT_EQ(lib.FindClass("frmMese"), nullptr);     // private
    EXPECT_EQ(lib.FindClass(dateBox->iid), nullptr);  // an interface, not a class
}

TEST(TypeLibTest, MembersKeepTypeLibraryOrder) {
    const ClassInfo& dateBox = Class("DateBox");
    ASSERT_GE(dateBox.members.size(), 5u);
    EXPECT_EQ(dateBox.members.front().name, "TextLeft");
    EXPECT_EQ(dateBox.members[4].name, "Appearance");
    EXPECT_EQ(dateBox.members.back().name, "MaxDate");
    EXPECT_EQ(Class("ProgressBox").members.back().name, "TimerChangedInterval");

    const MemberInfo& textLeft = dateBox.members.front();
    EXPECT_EQ(textLeft.kind, MemberKind::Method);
    EXPECT_EQ(textLeft.type.base, BaseType::Long);
    EXPECT_EQ(textLeft.dispid, 0x60030024);
    EXPECT_TRUE(textLeft.params.empty());
}

TEST(TypeLibTest, MemberLookupIgnoresCaseAndFindsDispIds) {
    const ClassInfo& commandBox = Class("CommandBox");
    const MemberInfo* style = commandBox.FindMember("Style");
    ASSERT_NE(style, nullptr);
    EXPECT_EQ(style->name, "style");  // lower case in the interface
    EXPECT_EQ(style->type.base, BaseType::Enum);
    EXPECT_EQ(style->type.enumName, "eStyle");
    EXPECT_EQ(commandBox.FindMember(0x6803002B), style);
    EXPECT_EQ(commandBox.FindMember("styles"), nullptr);
    EXPECT_EQ(commandBox.FindMember(0x12345678), nullptr);
}

TEST(TypeLibTest, SelectedMembers) {
    // The standard font DISPID on two classes, not on DateBox.
    EXPECT_EQ(Member("CommandBox", "Font").dispid, -512);
    EXPECT_EQ(Class("ProgressBox").FindMember(host::DISPID_FONT)->name, "Font");
    EXPECT_EQ(Member("DateBox", "Font").dispid, 0x6803001E);
    EXPECT_EQ(Class("DateBox").FindMember(-512), nullptr);
    EXPECT_EQ(Member("CommandBox", "Font").access, unsigned{kGet | kSet});

    EXPECT_EQ(Member("CommandBox", "hWnd").access, unsigned{kGet});
    EXPECT_TRUE(Member("CommandBox", "hWnd").hidden);
    EXPECT_FALSE(Member("ProgressBox", "hwnd").hidden);

    const MemberInfo& refresh = Member("CommandBox", "Refresh");
    EXPECT_EQ(refresh.kind, MemberKind::Method);
    EXPECT_EQ(refresh.type.base, BaseType::Void);
    EXPECT_EQ(Member("DateBox", "ValueDB").type.base, BaseType::Variant);
    EXPECT_EQ(Member("ProgressBox", "Value").type.base, BaseType::Double);
}

TEST(TypeLibTest, HelpStringsAreKeptAsPublished) {
    EXPECT_EQ(Member("CommandBox", "Enabled").help,
              "Set or retrieve a value which indicates if the object is allowed to answer to "
              "systen events");
    // UTF-8 for the accented letters.
    EXPECT_NE(Member("CommandBox", "OLEDropMode").help.find("pu\xC3\xB2 fungere"),
              std::string_view::npos);
    EXPECT_EQ(Member("ProgressBox", "FinishColor").help,
              "Colore a cui la barra tender\xC3\xA0 alla fine del processo");
    EXPECT_TRUE(Member("ProgressBox", "Alignment").help.empty());
}

TEST(TypeLibTest, DispIdsAreUniqueAndEnumTypesExist) {
    for (const ClassInfo& c : Kelvarin().classes) {
        std::set<DispId> seen;
        for (const MemberInfo& m : c.members) {
            EXPECT_TRUE(seen.insert(m.dispid).second) << c.name << "." << m.name;
            EXPECT_EQ(c.FindMember(m.dispid), &m);
            EXPECT_EQ(c.FindMember(m.name), &m);
            if (m.type.base == BaseType::Enum) {
                EXPECT_NE(Kelvarin().FindEnum(m.type.enumName), nullptr) << m.type.enumName;
            }
            if (m.kind == MemberKind::Property) {
                EXPECT_NE(m.access & kGet, 0u) << m.name;
            }
        }
    }
}

TEST(TypeLibTest, EventsAreNumberedByPosition) {
    for (const ClassInfo& c : Kelvarin().classes) {
        for (std::size_t i = 0; i < c.events.size(); ++i) {
            EXPECT_EQ(c.events[i].number, static_cast<int>(i + 1)) << c.name;
            EXPECT_EQ(c.FindEvent(c.events[i].number), &c.events[i]);
        }
    }
    // The same event has different numbers in different classes.
    EXPECT_EQ(Class("DateBox").FindEvent("MouseUp")->number, 6);
    EXPECT_EQ(Class("CommandBox").FindEvent("MouseUp")->number, 8);
    EXPECT_EQ(Class("DateBox").FindEvent("Change")->number, 4);
    EXPECT_EQ(Class("ProgressBox").FindEvent("change")->number, 9);
    EXPECT_EQ(Class("ProgressBox").FindEvent(10)->name, "TimerChange");
    EXPECT_EQ(Class("ProgressBox").FindEvent(11), nullptr);
    EXPECT_EQ(Class("CommandBox").FindEvent("Change"), nullptr);
}

TEST(TypeLibTest, EventArguments) {
    const EventInfo& move = *Class("CommandBox").FindEvent("MouseMove");
    ASSERT_EQ(move.params.size(), 4u);
    EXPECT_EQ(move.params[0].type.base, BaseType::Integer);
    EXPECT_EQ(move.params[2].name, "X");
    EXPECT_EQ(move.params[3].type.base, BaseType::Single);

    const EventInfo& timer = *Class("ProgressBox").FindEvent("TimerChange");
    ASSERT_EQ(timer.params.size(), 2u);
    EXPECT_EQ(timer.params[0].name, "TimeElapsed");
    EXPECT_EQ(timer.params[1].type.base, BaseType::Long);
    EXPECT_TRUE(timer.help.empty());

    EXPECT_EQ(Class("ProgressBox").FindEvent("KeyPress")->help,
              "Viene generato quando si preme e si rilascia un tasto ANSI.");
    EXPECT_EQ(Class("ProgressBox").FindEvent("KeyPress")->params[0].name, "KeyAscii");
}

TEST(TypeLibTest, TheTwoAlignmentEnumerationsDiffer) {
    const EnumInfo& dateBox = *Kelvarin().FindEnum("eAlignment");
    const EnumInfo& text = *Kelvarin().FindEnum("EALIGNMENTTEXT");
    EXPECT_EQ(dateBox.FindValue(1)->name, "Right Justify");
    EXPECT_EQ(text.FindValue(1)->name, "Center");
    EXPECT_EQ(dateBox.FindMember("center")->value, 2);
    EXPECT_EQ(text.FindMember("Right Justify")->value, 2);
    EXPECT_EQ(Member("DateBox", "Alignment").type.enumName, "eAlignment");
    EXPECT_EQ(Member("CommandBox", "Alignment").type.enumName, "eAlignmentText");
    EXPECT_EQ(Member("ProgressBox", "Alignment").type.enumName, "eAlignmentText");
}

TEST(TypeLibTest, EnumerationNamesAreExact) {
    EXPECT_EQ(Kelvarin().enums.size(), 7u);
    const EnumInfo& gradient = *Kelvarin().FindEnum("eGradientStyle");
    const std::string_view squared = gradient.FindValue(2)->name;
    // Ends in U+00B2 SUPERSCRIPT TWO, stored as UTF-8.
    EXPECT_EQ(squared, "Gaussian\xC2\xB2");
    EXPECT_EQ(gradient.FindMember("GAUSSIAN\xC2\xB2")->value, 2);
    EXPECT_EQ(gradient.FindMember("Gaussian")->value, 1);
    EXPECT_EQ(gradient.FindMember("Gaussian2"), nullptr);

    EXPECT_EQ(Kelvarin().FindEnum("eAppearance")->FindValue(1)->name, "3D");
    EXPECT_EQ(Kelvarin().FindEnum("eBorderStyle")->FindMember("fixed single")->value, 1);
    EXPECT_EQ(Kelvarin().FindEnum("eBorderStyle")->FindMember("FixedSingle"), nullptr);
    EXPECT_EQ(Kelvarin().FindEnum("eStyle")->FindValue(2), nullptr);
    EXPECT_EQ(Kelvarin().FindEnum("eColour"), nullptr);
}

}  // namespace
}  // namespace kelvarin::library
