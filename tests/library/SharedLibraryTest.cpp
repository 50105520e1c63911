// libkelvarin.so as a host program sees it: loaded with dlopen, registered
// into a registry file of its own, classes found by programmatic name.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "library/Kelvarin.h"
#include "library/Server.h"
#include "library/TypeLib.h"
#include "tests/library/Probe.h"

namespace kelvarin::library {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class SharedLibraryTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (const char* old = std::getenv("KELVARIN_REGISTRY")) oldRegistry_ = old;
        ::setenv("KELVARIN_REGISTRY", registry.c_str(), 1);
        handle_ = ::dlopen(KELVARIN_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle_, nullptr) << ::dlerror();
        getClassObject = Symbol<KelvarinDllGetClassObjectFn>("DllGetClassObject");
        canUnloadNow = Symbol<KelvarinDllCanUnloadNowFn>("DllCanUnloadNow");
        registerServer = Symbol<KelvarinDllRegisterServerFn>("DllRegisterServer");
        unregisterServer = Symbol<KelvarinDllUnregisterServerFn>("DllUnregisterServer");
        lastError = Symbol<KelvarinLastErrorFn>("KelvarinLastError");
    }
    void TearDown() override {
        if (handle_ != nullptr) {
            EXPECT_EQ(::dlclose(handle_), 0);
        }
        if (oldRegistry_) ::setenv("KELVARIN_REGISTRY", oldRegistry_->c_str(), 1);
        else ::unsetenv("KELVARIN_REGISTRY");
    }

    template <typename Fn>
    Fn Symbol(const char* name) {
        void* symbol = ::dlsym(handle_, name);
        EXPECT_NE(symbol, nullptr) << name;
        return reinterpret_cast<Fn>(symbol);
    }

    // The class identifier a host finds under a programmatic name.
    std::optional<KelvarinGuid> ClassIdOf(std::string_view progId) {
        const json registryFile = json::parse(test::ReadFile(registry));
        for (const json& record : registryFile.at("classes")) {
            if (record.value("progId", "") != progId) continue;
            const auto id = Guid::Parse(record.at("clsid").get<std::string>());
            if (!id) return std::nullopt;
            return ToKelvarinGuid(*id);
        }
        return std::nullopt;
    }

    test::TempDir dir;
    fs::path registry = dir.Path() / "registry.json";
    KelvarinDllGetClassObjectFn getClassObject = nullptr;
    KelvarinDllCanUnloadNowFn canUnloadNow = nullptr;
    KelvarinDllRegisterServerFn registerServer = nullptr;
    KelvarinDllUnregisterServerFn unregisterServer = nullptr;
    KelvarinLastErrorFn lastError = nullptr;

private:
    void* handle_ = nullptr;
    std::optional<std::string> oldRegistry_;
};

// Register, find the classes by programmatic name, make the one control
// that is built in, refuse the others, unregister.
TEST_F(SharedLibraryTest, RegistersCreatesByProgrammaticNameAndUnregisters) {
    test::WriteFile(registry, R"({"classes": [{"progId": "Other.Grid",
                                               "clsid": "{11111111-2222-3333-4444-555555555555}"}]})");
    ASSERT_EQ(registerServer(), KELVARIN_S_OK) << lastError();
    const json records = json::parse(test::ReadFile(registry)).at("classes");
    ASSERT_EQ(records.size(), 5u);
    for (const json& record : records) {
        if (record.at("progId") == "Other.Grid") continue;
        EXPECT_EQ(record.at("library"), fs::canonical(KELVARIN_SHARED_LIBRARY).string());
    }

    const std::optional<KelvarinGuid> id = ClassIdOf("Kelvarin.ProgressBox");
    ASSERT_TRUE(id.has_value());
    void* object = nullptr;
    ASSERT_EQ(getClassObject(&*id, &KELVARIN_IID_ICLASSFACTORY, &object), KELVARIN_S_OK)
        << lastError();
    auto* factory = static_cast<KelvarinClassFactory*>(object);
    void* made = nullptr;
    ASSERT_EQ(factory->vtbl->CreateInstance(factory, nullptr, &KELVARIN_IID_CONTROL, &made),
              KELVARIN_S_OK)
        << lastError();
    auto* control = static_cast<KelvarinControl*>(made);
    EXPECT_STREQ(control->vtbl->ClassName(control), "ProgressBox");
    EXPECT_NE(control->vtbl->NativeControl(control), nullptr);
    factory->vtbl->Release(factory);
    EXPECT_EQ(canUnloadNow(), KELVARIN_S_FALSE);  // the control is still alive
    control->vtbl->Release(control);
    EXPECT_EQ(canUnloadNow(), KELVARIN_S_OK);

    // Known to the library but not built into it, a page, another library's class.
    for (const char* progId : {"Kelvarin.CommandBox", "Kelvarin.General", "Other.Grid"}) {
        const std::optional<KelvarinGuid> other = ClassIdOf(progId);
        ASSERT_TRUE(other.has_value()) << progId;
        void* none = &none;
        EXPECT_EQ(getClassObject(&*other, &KELVARIN_IID_ICLASSFACTORY, &none),
                  KELVARIN_CLASS_E_CLASSNOTAVAILABLE)
            << progId;
        EXPECT_EQ(none, nullptr);
    }
    EXPECT_NE(std::string(lastError()).find("{11111111-2222-3333-4444-555555555555}"),
              std::string::npos)
        << lastError();

    ASSERT_EQ(unregisterServer(), KELVARIN_S_OK) << lastError();
    const json left = json::parse(test::ReadFile(registry)).at("classes");
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].at("progId"), "Other.Grid");
}

TEST_F(SharedLibraryTest, TheLibraryKeepsItsOwnClassRegistry) {
    // A class registered in this program is not a class of the loaded library.
    const KelvarinGuid id = ToKelvarinGuid(test::RegisterProbe().clsid);
    void* factory = nullptr;
    EXPECT_EQ(getClassObject(&id, &KELVARIN_IID_ICLASSFACTORY, &factory),
              KELVARIN_CLASS_E_CLASSNOTAVAILABLE);
}

TEST_F(SharedLibraryTest, AMalformedRegistryIsReportedAndLeftAsItIs) {
    const std::string text = "{\"classes\": [ oops";
    test::WriteFile(registry, text);
    EXPECT_NE(registerServer(), KELVARIN_S_OK);
    EXPECT_NE(std::string(lastError()).find(registry.string()), std::string::npos) << lastError();
    EXPECT_EQ(test::ReadFile(registry), text);
    EXPECT_NE(unregisterServer(), KELVARIN_S_OK);
    EXPECT_EQ(test::ReadFile(registry), text);

    // Mended, it registers again, and the reason is cleared.
    test::WriteFile(registry, "{}");
    EXPECT_EQ(registerServer(), KELVARIN_S_OK);
    EXPECT_STREQ(lastError(), "");
}

}  // namespace
}  // namespace kelvarin::library
