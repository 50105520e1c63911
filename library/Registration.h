// SPDX-License-Identifier: MIT
// The per-user registry file in which the library records its classes, so
// that a host finds the library and a class identifier by programmatic name.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace kelvarin::library {

// The registry file cannot be found, read, understood or written.
class RegistryError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// $KELVARIN_REGISTRY, else $XDG_DATA_HOME/kelvarin/registry.json (an
// absolute XDG_DATA_HOME only), else ~/.local/share/kelvarin/registry.json.
std::filesystem::path RegistryFilePath();

// The absolute path of the binary this code was loaded from.
std::string LoadedLibraryPath();

// Adds one record per class of the type library, replacing earlier records
// of the same class identifiers and keeping every other record. The file is
// replaced atomically; a malformed file is reported and left untouched.
void RegisterClasses(const std::filesystem::path& registryFile, const std::string& libraryPath);
// Removes the records of the type library's class identifiers, and nothing
// else. A missing file has nothing to remove.
void UnregisterClasses(const std::filesystem::path& registryFile);

}  // namespace kelvarin::library
