// SPDX-License-Identifier: MIT
#include "library/TypeLib.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

#include "library/ClassFactory.h"

namespace kelvarin::library {
namespace {

const ClassInfo& Class(std::string_view name) {
    const ClassInfo* c = Kelvarin().FindClass(name);
    if (c == nullptr) throw std::logic_error("no class " + std::string(name));
    return *c;
}

TEST(GuidTest, PrintsAndReadsTheRegistryForm) {
    const Guid g{0x0F9AFF12, 0x8B64, 0x47CA, {0x93, 0x84, 0xD9, 0x2B, 0x80, 0x90, 0x44, 0xBD}};
    EXPECT_EQ(g.ToString(), "{0F9AFF12-8B64-47CA-9384-D92B809044BD}");
    // Both spellings read back in the registration's tests; these do not.
    for (const char* bad :
         {"", "{0F9AFF12-8B64-47CA-9384-D92B809044BD", "0F9AFF12-8B64-47CA-9384_D92B809044BD",
          "0F9AFF12-8B64-47CA-9384-D92B809044BG"}) {
        EXPECT_FALSE(Guid::Parse(bad).has_value()) << bad;
    }
}

// Kept fixed once published: a registered host finds the library by its
// identifier, and every identifier is distinct.
TEST(TypeLibTest, IdentifiersAreFixedAndDistinct) {
    const TypeLibrary& lib = Kelvarin();
    EXPECT_EQ(lib.libid.ToString(), "{15B581C9-D00D-4A6E-99F7-9D6724423E3B}");
    std::set<std::string> ids{lib.libid.ToString(), Guid{}.ToString()};
    for (const ClassInfo& c : lib.classes) {
        for (const Guid* id : {&c.clsid, &c.iid, &c.eventIid}) {
            if (*id == Guid{}) continue;  // General has no event interface
            EXPECT_TRUE(ids.insert(id->ToString()).second) << c.name;
        }
    }
}

// Classes by name, programmatic name or identifier, and events by name,
// all names in any case.
TEST(TypeLibTest, LookupsIgnoreCaseAndRefuseNearMisses) {
    const TypeLibrary& lib = Kelvarin();
    const ClassInfo* dateBox = lib.FindClass("DateBox");
    ASSERT_NE(dateBox, nullptr);
    EXPECT_EQ(lib.FindClass("datebox"), dateBox);
    EXPECT_EQ(lib.FindClass("KELVARIN.datebox"), dateBox);
    EXPECT_EQ(lib.FindClass(dateBox->clsid), dateBox);

    EXPECT_EQ(lib.FindClass("Other.DateBox"), nullptr);
    EXPECT_EQ(lib.FindClass("DateBo"), nullptr);
    EXPECT_EQ(lib.FindClass("frmMese"), nullptr);     // private
    EXPECT_EQ(lib.FindClass(dateBox->iid), nullptr);  // an interface, not a class

    // Members by name in any case, and near misses, are dispatch's.
    const EventInfo* change = Class("ProgressBox").FindEvent("change");
    ASSERT_NE(change, nullptr);
    EXPECT_EQ(Class("ProgressBox").FindEvent("CHANGE"), change);
}

// Every table: unique DISPIDs and names, enumerations that exist, and on a
// class that can be created, the accessors its access and persistence need.
TEST(TypeLibTest, EveryTableIsComplete) {
    for (const ClassInfo& c : Kelvarin().classes) {
        const bool built = ClassRegistry::Instance().Create(c.name) != nullptr;
        std::set<DispId> seen;
        for (const MemberInfo& m : c.members) {
            const std::string where = std::string(c.name) + "." + std::string(m.name);
            EXPECT_TRUE(seen.insert(m.dispid).second) << where;
            EXPECT_EQ(c.FindMember(m.dispid), &m) << where;
            EXPECT_EQ(c.FindMember(m.name), &m) << where;
            if (m.type.base == BaseType::Enum) {
                EXPECT_NE(Kelvarin().FindEnum(m.type.enumName), nullptr) << where;
            }
            if (m.kind == MemberKind::Method) {
                EXPECT_EQ(m.call != nullptr, built) << where;
                continue;
            }
            EXPECT_NE(m.access & kGet, 0u) << where;
            if (!built) continue;
            EXPECT_NE(m.get, nullptr) << where;
            EXPECT_EQ(m.put != nullptr, (m.access & (kLet | kSet)) != 0) << where;
            EXPECT_EQ(m.load != nullptr, !m.persisted.empty()) << where;
        }
    }
    // The superscript two of the last gradient style is UTF-8.
    EXPECT_EQ(Kelvarin().FindEnum("eGradientStyle")->FindMember("GAUSSIAN\xC2\xB2")->value, 2);
}

}  // namespace
}  // namespace kelvarin::library
