// SPDX-License-Identifier: MIT
#include "library/Server.h"

#include <gtest/gtest.h>

#include <string>

#include "common/HostError.h"
#include "library/ClassFactory.h"
#include "library/Dispatch.h"
#include "tests/library/Probe.h"

namespace kelvarin::library {
namespace {

KelvarinGuid ClassId(std::string_view name) {
    const ClassInfo* info = ClassRegistry::Instance().Find(name);
    if (info == nullptr) throw std::logic_error("no class " + std::string(name));
    return ToKelvarinGuid(info->clsid);
}

class ServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        test::RegisterProbe();
        ASSERT_EQ(CanUnloadNow(), KELVARIN_S_OK) << "a previous test leaked an object";
    }
    void TearDown() override { EXPECT_EQ(CanUnloadNow(), KELVARIN_S_OK); }

    KelvarinClassFactory* Factory(std::string_view name) {
        void* object = nullptr;
        const KelvarinGuid id = ClassId(name);
        EXPECT_EQ(GetClassObject(&id, &KELVARIN_IID_ICLASSFACTORY, &object), KELVARIN_S_OK);
        return static_cast<KelvarinClassFactory*>(object);
    }
};

TEST(ClassRegistryTest, FindsTheLibrarysClassesAndMakesRegisteredControlsByAnyName) {
    const ClassInfo& probe = test::RegisterProbe();
    ClassRegistry& registry = ClassRegistry::Instance();
    for (const ClassInfo& c : Kelvarin().classes) {
        EXPECT_EQ(registry.Find(c.name), &c);
        EXPECT_EQ(registry.Find(c.ProgId()), &c);
        EXPECT_EQ(registry.Find(c.clsid), &c);
    }
    EXPECT_EQ(registry.Find("Nonsense"), nullptr);
    // The property page is made like a control; it has no members.
    EXPECT_TRUE(registry.IsCreatable(Kelvarin().FindClass("General")->clsid));
    EXPECT_TRUE(registry.Create("General")->Members().empty());
    for (std::string_view name : {"Probe", "probe", "Kelvarin.Probe"}) {
        std::unique_ptr<host::Control> control = registry.Create(name);
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(&ClassOf(*control), &probe);
    }
    EXPECT_TRUE(registry.IsCreatable(probe.clsid));
}

// A factory for a class that can be made, and otherwise a reason.
TEST_F(ServerTest, GetClassObjectGivesFactoriesOfClassesThatCanBeMade) {
    const KelvarinGuid probe = ClassId("Probe");
    const KelvarinGuid unknown{0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};
    void* object = &object;
    EXPECT_EQ(GetClassObject(&probe, &KELVARIN_IID_ICLASSFACTORY, nullptr), KELVARIN_E_POINTER);
    EXPECT_EQ(GetClassObject(nullptr, &KELVARIN_IID_ICLASSFACTORY, &object), KELVARIN_E_INVALIDARG);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(GetClassObject(&probe, &KELVARIN_IID_CONTROL, &object), KELVARIN_E_NOINTERFACE);
    EXPECT_EQ(GetClassObject(&unknown, &KELVARIN_IID_ICLASSFACTORY, &object),
              KELVARIN_CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_NE(std::string(LastError()).find("{01234567-89AB-CDEF-0102-030405060708}"),
              std::string::npos)
        << LastError();
    ASSERT_EQ(GetClassObject(&probe, &KELVARIN_IID_IUNKNOWN, &object), KELVARIN_S_OK);
    EXPECT_STREQ(LastError(), "");  // a success clears the reason
    static_cast<KelvarinClassFactory*>(object)->vtbl->Release(
        static_cast<KelvarinClassFactory*>(object));
}

TEST_F(ServerTest, FactoryMakesControlsAndCountsThemAlive) {
    KelvarinClassFactory* factory = Factory("Probe");
    ASSERT_NE(factory, nullptr);
    void* object = &object;
    EXPECT_EQ(factory->vtbl->QueryInterface(factory, &KELVARIN_IID_CONTROL, &object),
              KELVARIN_E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->vtbl->CreateInstance(factory, nullptr, &KELVARIN_IID_ICLASSFACTORY, &object),
              KELVARIN_E_NOINTERFACE);
    int outer = 0;
    EXPECT_EQ(factory->vtbl->CreateInstance(factory, &outer, &KELVARIN_IID_CONTROL, &object),
              KELVARIN_CLASS_E_NOAGGREGATION);
    ASSERT_EQ(factory->vtbl->CreateInstance(factory, nullptr, &KELVARIN_IID_CONTROL, &object),
              KELVARIN_S_OK);
    auto* control = static_cast<KelvarinControl*>(object);
    EXPECT_STREQ(control->vtbl->ClassName(control), "Probe");
    auto* native = static_cast<host::Control*>(control->vtbl->NativeControl(control));
    Let(*native, "Number", Variant("5"));
    EXPECT_EQ(Get(*native, "Number"), Variant(Long{5}));

    void* again = nullptr;
    ASSERT_EQ(control->vtbl->QueryInterface(control, &KELVARIN_IID_IUNKNOWN, &again),
              KELVARIN_S_OK);
    EXPECT_EQ(again, control);
    EXPECT_EQ(control->vtbl->Release(control), 1u);

    factory->vtbl->Release(factory);
    EXPECT_EQ(CanUnloadNow(), KELVARIN_S_FALSE);  // the control still lives
    EXPECT_EQ(control->vtbl->Release(control), 0u);
    EXPECT_EQ(CanUnloadNow(), KELVARIN_S_OK);
}

TEST_F(ServerTest, ServerLocksKeepTheLibraryLoaded) {
    KelvarinClassFactory* factory = Factory("Probe");
    EXPECT_EQ(factory->vtbl->LockServer(factory, 1), KELVARIN_S_OK);
    factory->vtbl->Release(factory);
    EXPECT_EQ(CanUnloadNow(), KELVARIN_S_FALSE);

    factory = Factory("Probe");
    EXPECT_EQ(factory->vtbl->LockServer(factory, 0), KELVARIN_S_OK);
    // One unlock too many does not release another object's count.
    EXPECT_EQ(factory->vtbl->LockServer(factory, 0), KELVARIN_E_UNEXPECTED);
    EXPECT_EQ(CanUnloadNow(), KELVARIN_S_FALSE);
    factory->vtbl->Release(factory);
}

TEST_F(ServerTest, AControlThatFailsToStartIsReportedNotThrown) {
    static const ClassInfo faulty{
        "Faulty",  Guid{0x7A0C1D2E, 0x1111, 0x4222, {0x83, 0, 0, 0, 0, 0, 0, 1}},
        "_Faulty", Guid{},
        {},        Guid{},
        {},        {}};
    ClassRegistry::Instance().Register(faulty, []() -> std::unique_ptr<host::Control> {
        RaiseHostError(HostErrorCode::Overflow);
    });
    KelvarinClassFactory* factory = Factory("Faulty");
    ASSERT_NE(factory, nullptr);
    void* object = &object;
    EXPECT_EQ(factory->vtbl->CreateInstance(factory, nullptr, &KELVARIN_IID_CONTROL, &object),
              KELVARIN_E_FAIL);
    EXPECT_EQ(object, nullptr);
    EXPECT_NE(std::string(LastError()).find("Overflow"), std::string::npos) << LastError();
    factory->vtbl->Release(factory);
}

}  // namespace
}  // namespace kelvarin::library
