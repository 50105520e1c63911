// libkelvarin.so as a host program sees it: loaded with dlopen, registered
// into a registry file of its own, classes found by programmatic name. The
// results of each entry point in detail are the server's and the
// registration's tests; here, that they cross the library's boundary.
#include <dlfcn.h>
#include <gtest/gtest.h>

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
        handle_ = ::dlopen(KELVARIN_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle_, nullptr) << ::dlerror();
        getClassObject = Symbol<KelvarinDllGetClassObjectFn>("DllGetClassObject");
        canUnloadNow = Symbol<KelvarinDllCanUnloadNowFn>("DllCanUnloadNow");
        registerServer = Symbol<KelvarinDllRegisterServerFn>("DllRegisterServer");
        unregisterServer = Symbol<KelvarinDllUnregisterServerFn>("DllUnregisterServer");
        lastError = Symbol<KelvarinLastErrorFn>("KelvarinLastError");
    }
    void TearDown() override { EXPECT_TRUE(handle_ == nullptr || ::dlclose(handle_) == 0); }

    template <typename Fn>
    Fn Symbol(const char* name) {
        void* symbol = ::dlsym(handle_, name);
        EXPECT_NE(symbol, nullptr) << name;
        return reinterpret_cast<Fn>(symbol);
    }

    json Records() const { return json::parse(test::ReadFile(registry)).at("classes"); }

    // What DllGetClassObject answers for the class a host finds under a
    // programmatic name; the factory, if any, in `factory`.
    KelvarinResult ClassObject(std::string_view progId, void** factory) {
        for (const json& record : Records()) {
            if (record.value("progId", "") != progId) continue;
            const KelvarinGuid id =
                ToKelvarinGuid(*Guid::Parse(record.at("clsid").get<std::string>()));
            return getClassObject(&id, &KELVARIN_IID_ICLASSFACTORY, factory);
        }
        ADD_FAILURE() << "no record of " << progId;
        return KELVARIN_E_FAIL;
    }

    test::TempDir dir;
    fs::path registry = dir.Path() / "registry.json";
    test::ScopedEnv registryVariable{"KELVARIN_REGISTRY", registry.c_str()};
    KelvarinDllGetClassObjectFn getClassObject = nullptr;
    KelvarinDllCanUnloadNowFn canUnloadNow = nullptr;
    KelvarinDllRegisterServerFn registerServer = nullptr;
    KelvarinDllUnregisterServerFn unregisterServer = nullptr;
    KelvarinLastErrorFn lastError = nullptr;

private:
    void* handle_ = nullptr;
};

// Register, make the control that is built in, refuse the others, unregister.
TEST_F(SharedLibraryTest, RegistersCreatesByProgrammaticNameAndUnregisters) {
    test::WriteFile(registry, R"({"classes": [{"progId": "Other.Grid",
                                               "clsid": "{11111111-2222-3333-4444-555555555555}"}]})");
    ASSERT_EQ(registerServer(), KELVARIN_S_OK) << lastError();
    // The records name the loaded file itself.
    EXPECT_EQ(Records()[1].at("library"), fs::canonical(KELVARIN_SHARED_LIBRARY).string());

    void* object = nullptr;
    ASSERT_EQ(ClassObject("Kelvarin.ProgressBox", &object), KELVARIN_S_OK) << lastError();
    auto* factory = static_cast<KelvarinClassFactory*>(object);
    ASSERT_EQ(factory->vtbl->CreateInstance(factory, nullptr, &KELVARIN_IID_CONTROL, &object),
              KELVARIN_S_OK)
        << lastError();
    auto* control = static_cast<KelvarinControl*>(object);
    EXPECT_STREQ(control->vtbl->ClassName(control), "ProgressBox");
    factory->vtbl->Release(factory);
    EXPECT_EQ(canUnloadNow(), KELVARIN_S_FALSE);  // the control is still alive
    control->vtbl->Release(control);
    EXPECT_EQ(canUnloadNow(), KELVARIN_S_OK);

    // Another library's class.
    EXPECT_EQ(ClassObject("Other.Grid", &object), KELVARIN_CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_NE(std::string(lastError()).find("{11111111-2222-3333-4444-555555555555}"),
              std::string::npos)
        << lastError();

    ASSERT_EQ(unregisterServer(), KELVARIN_S_OK) << lastError();
    ASSERT_EQ(Records().size(), 1u);
    EXPECT_EQ(Records()[0].at("progId"), "Other.Grid");
}

TEST_F(SharedLibraryTest, TheLibraryKeepsItsOwnClassRegistry) {
    // A class registered in this program is not a class of the loaded library.
    const KelvarinGuid id = ToKelvarinGuid(test::RegisterProbe().clsid);
    void* factory = nullptr;
    EXPECT_EQ(getClassObject(&id, &KELVARIN_IID_ICLASSFACTORY, &factory),
              KELVARIN_CLASS_E_CLASSNOTAVAILABLE);
}

}  // namespace
}  // namespace kelvarin::library
