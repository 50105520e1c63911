// SPDX-License-Identifier: MIT
// Fuzz target for the registry file: any file is either refused, and left
// byte for byte as it was, or gets this library's records; registering
// again, or unregistering and registering, gives the same file.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/FuzzInput.h"
#include "library/Registration.h"

namespace {

namespace fs = std::filesystem;
using kelvarin::fuzz::Require;
using kelvarin::library::RegistryError;

// A folder of this process's own, in memory where there is one.
const fs::path& Folder() {
    static const fs::path folder = [] {
        const fs::path base =
            fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        fs::path dir = base / ("kelvarin-registry-fuzz-" + std::to_string(::getpid()));
        fs::create_directories(dir);
        return dir;
    }();
    return folder;
}

std::string Contents(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fs::path file = Folder() / "registry.json";
    const std::string original(reinterpret_cast<const char*>(data), size);
    std::ofstream(file, std::ios::binary | std::ios::trunc) << original;
    const std::string library = "/usr/lib/libkelvarin.so";
    try {
        kelvarin::library::RegisterClasses(file, library);
    } catch (const RegistryError&) {
        Require(Contents(file) == original, "a refused registry file was changed");
        return 0;
    }
    const std::string registered = Contents(file);
    try {
        kelvarin::library::RegisterClasses(file, library);
        Require(Contents(file) == registered, "registering twice differs from once");
        kelvarin::library::UnregisterClasses(file);
        kelvarin::library::RegisterClasses(file, library);
        Require(Contents(file) == registered, "unregistering and registering again differs");
    } catch (const RegistryError& e) {
        Require(false, std::string("a registry this library wrote is refused: ") + e.what());
    }
    return 0;
}
