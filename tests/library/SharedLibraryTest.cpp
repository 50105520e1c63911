// SPDX-License-Identifier: MIT
// libkelvarin.so as a host program sees it: loaded with dlopen, registered
// into a registry file of its own, a class found by programmatic name and
// made. What each entry point answers in detail (refusals, counts, locks)
// is the server's and the registration's tests; here, that the entry points
// cross the library's boundary.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include <nlohmann/json.hpp>

#include <kelvarin/Kelvarin.h>
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

    test::TempDir dir;
    fs::path registry = dir.Path() / "registry.json";
    test::ScopedEnv registryVariable{"KELVARIN_REGISTRY", registry.c_str()};
    KelvarinDllGetClassObjectFn getClassObject = nullptr;
    KelvarinLastErrorFn lastError = nullptr;

private:
    void* handle_ = nullptr;
};

TEST_F(SharedLibraryTest, RegistersMakesAClassFoundByProgrammaticNameAndUnregisters) {
    ASSERT_EQ(Symbol<KelvarinDllRegisterServerFn>("DllRegisterServer")(), KELVARIN_S_OK)
        << lastError();
    const json records = Records();
    const auto record = std::find_if(records.begin(), records.end(), [](const json& r) {
        return r.at("progId") == "Kelvarin.ProgressBox";
    });
    ASSERT_NE(record, records.end());
    // The record names the loaded file itself.
    EXPECT_EQ(record->at("library"), fs::canonical(KELVARIN_SHARED_LIBRARY).string());

    const KelvarinGuid id = ToKelvarinGuid(*Guid::Parse(record->at("clsid").get<std::string>()));
    void* object = nullptr;
    ASSERT_EQ(getClassObject(&id, &KELVARIN_IID_ICLASSFACTORY, &object), KELVARIN_S_OK)
        << lastError();
    auto* factory = static_cast<KelvarinClassFactory*>(object);
    ASSERT_EQ(factory->vtbl->CreateInstance(factory, nullptr, &KELVARIN_IID_CONTROL, &object),
              KELVARIN_S_OK)
        << lastError();
    auto* control = static_cast<KelvarinControl*>(object);
    EXPECT_STREQ(control->vtbl->ClassName(control), "ProgressBox");
    control->vtbl->Release(control);
    factory->vtbl->Release(factory);
    EXPECT_EQ(Symbol<KelvarinDllCanUnloadNowFn>("DllCanUnloadNow")(), KELVARIN_S_OK);

    ASSERT_EQ(Symbol<KelvarinDllUnregisterServerFn>("DllUnregisterServer")(), KELVARIN_S_OK)
        << lastError();
    EXPECT_TRUE(Records().empty());
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
