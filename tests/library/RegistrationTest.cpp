// SPDX-License-Identifier: MIT
#include "library/Registration.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "library/TypeLib.h"
#include "tests/library/Probe.h"

namespace kelvarin::library {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::ReadFile;
using test::WriteFile;

json Records(const fs::path& file) { return json::parse(ReadFile(file)).at("classes"); }

const json* RecordOf(const json& records, std::string_view key, std::string_view value) {
    for (const json& r : records)
        if (r.value(key, "") == value) return &r;
    return nullptr;
}

// Files in the folder other than the registry: a temporary file left behind.
std::size_t StrayFiles(const fs::path& dir, const fs::path& registry) {
    std::size_t n = 0;
    for (const auto& entry : fs::directory_iterator(dir))
        if (entry.path() != registry) ++n;
    return n;
}

class RegistrationTest : public ::testing::Test {
protected:
    test::TempDir dir;
    fs::path file = dir.Path() / "data" / "kelvarin" / "registry.json";
};

// One record per class, written again in place of an older one of its own
// (its identifier in any spelling), and everything else in the file kept; a
// record that only borrows our name, under another identifier, is not ours.
TEST_F(RegistrationTest, RegisterWritesOneRecordPerClassAndUnregisterRemovesExactlyThose) {
    fs::create_directories(file.parent_path());
    WriteFile(file, R"({"owner": "desktop", "classes": [
        {"progId": "Other.Grid", "clsid": "{11111111-2222-3333-4444-555555555555}", "extra": [1, 2]},
        {"progId": "Kelvarin.DateBox", "clsid": "{AAAAAAAA-2222-3333-4444-555555555555}"},
        {"note": "no identifier at all"},
        {"progId": "Kelvarin.DateBox", "clsid": "8f327f32-38fc-43ed-b211-4f716c314dd9",
         "library": "/old/libkelvarin.so"}]})");
    RegisterClasses(file, "/opt/kelvarin/libkelvarin.so");
    RegisterClasses(file, "/opt/kelvarin/libkelvarin.so");

    const json registry = json::parse(ReadFile(file));
    EXPECT_EQ(registry.at("owner"), "desktop");
    const json& records = registry.at("classes");
    EXPECT_EQ(records.size(), Kelvarin().classes.size() + 3);
    EXPECT_NE(RecordOf(records, "progId", "Kelvarin.General"), nullptr);
    const std::string clsid = Kelvarin().FindClass("DateBox")->clsid.ToString();
    const json* dateBox = RecordOf(records, "clsid", clsid);
    ASSERT_NE(dateBox, nullptr);
    EXPECT_EQ(dateBox->at("progId"), "Kelvarin.DateBox");
    EXPECT_EQ(dateBox->at("library"), "/opt/kelvarin/libkelvarin.so");
    EXPECT_EQ(dateBox->at("version"), "1.0");
    EXPECT_EQ(dateBox->at("OLESelfRegister"), true);
    EXPECT_EQ(dateBox->at("typeLibrary"), Kelvarin().libid.ToString());
    EXPECT_EQ(StrayFiles(file.parent_path(), file), 0u);

    UnregisterClasses(file);
    const json left = Records(file);
    ASSERT_EQ(left.size(), 3u);
    EXPECT_EQ(left[0].at("extra"), json::array({1, 2}));
    EXPECT_EQ(left[1].at("clsid"), "{AAAAAAAA-2222-3333-4444-555555555555}");
    EXPECT_EQ(left[2].at("note"), "no identifier at all");
}

TEST_F(RegistrationTest, UnregisterWithoutARegistryCreatesNothing) {
    UnregisterClasses(file);
    EXPECT_FALSE(fs::exists(file.parent_path()));
}

TEST_F(RegistrationTest, AMalformedFileIsReportedAndLeftUntouched) {
    fs::create_directories(file.parent_path());
    for (const std::string& text :
         {std::string("{\"classes\": [ {\"progId\": "), std::string("[1, 2, 3]"),
          std::string("{\"classes\": 5}"), std::string("{\"classes\": [\"Kelvarin.DateBox\"]}")}) {
        WriteFile(file, text);
        for (bool registering : {true, false}) {
            try {
                if (registering) RegisterClasses(file, "/x/libkelvarin.so");
                else UnregisterClasses(file);
                ADD_FAILURE() << "accepted: " << text;
            } catch (const RegistryError& e) {
                EXPECT_NE(std::string(e.what()).find(file.string()), std::string::npos) << e.what();
            }
            EXPECT_EQ(ReadFile(file), text);
            EXPECT_EQ(StrayFiles(file.parent_path(), file), 0u);
        }
    }
}

TEST_F(RegistrationTest, APlaceThatCannotHoldTheFileFailsCleanly) {
    WriteFile(dir.Path() / "data", "a file where the folder should be");
    EXPECT_THROW(RegisterClasses(file, "/x/libkelvarin.so"), RegistryError);
    EXPECT_EQ(ReadFile(dir.Path() / "data"), "a file where the folder should be");

    const fs::path folderInstead = dir.Path() / "registry.json";
    fs::create_directories(folderInstead);
    EXPECT_THROW(RegisterClasses(folderInstead, "/x/libkelvarin.so"), RegistryError);
}

TEST_F(RegistrationTest, KeepsThePermissionsOfTheFileItReplaces) {
    fs::create_directories(file.parent_path());
    WriteFile(file, R"({"classes": []})");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    RegisterClasses(file, "/x/libkelvarin.so");
    EXPECT_EQ(fs::status(file).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST(RegistryFilePathTest, ChoosesTheFileFromTheEnvironment) {
    const struct {
        const char *registry, *dataHome, *home, *path;  // no path: nowhere to put it
    } rows[] = {
        {"/tmp/reg.json", "/data", "/home/ada", "/tmp/reg.json"},
        {"", "/data", "/home/ada", "/data/kelvarin/registry.json"},
        // A data home that is not absolute is ignored.
        {nullptr, "relative/data", "/home/ada", "/home/ada/.local/share/kelvarin/registry.json"},
        {nullptr, nullptr, nullptr, nullptr},
    };
    for (const auto& r : rows) {
        test::ScopedEnv registry("KELVARIN_REGISTRY", r.registry);
        test::ScopedEnv data("XDG_DATA_HOME", r.dataHome);
        test::ScopedEnv home("HOME", r.home);
        if (r.path == nullptr) {
            EXPECT_THROW(RegistryFilePath(), RegistryError);
            continue;
        }
        EXPECT_EQ(RegistryFilePath(), fs::path(r.path));
    }
}

}  // namespace
}  // namespace kelvarin::library
