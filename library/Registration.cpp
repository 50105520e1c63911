// SPDX-License-Identifier: MIT
#include "library/Registration.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

#include <nlohmann/json.hpp>

#include "library/TypeLib.h"

namespace kelvarin::library {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// A registry is a few records per library; anything this large is not one.
constexpr std::uintmax_t kMaxRegistryBytes = 16u << 20;

[[noreturn]] void Fail(const fs::path& file, const std::string& why) {
    throw RegistryError(file.string() + ": " + why);
}

std::string ErrnoText(int error) { return std::strerror(error); }

const char* NonEmptyEnv(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

// The registry's contents; an empty registry when the file does not exist.
json Read(const fs::path& file) {
    std::error_code ec;
    const fs::file_status status = fs::status(file, ec);
    if (ec && ec != std::errc::no_such_file_or_directory) Fail(file, ec.message());
    if (!fs::exists(status)) return json{{"classes", json::array()}};
    if (!fs::is_regular_file(status)) Fail(file, "not a regular file");
    if (fs::file_size(file, ec) > kMaxRegistryBytes) Fail(file, "too large for a registry file");

    std::ifstream in(file, std::ios::binary);
    if (!in) Fail(file, "cannot be read: " + ErrnoText(errno));
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) Fail(file, "cannot be read");

    json registry;
    try {
        registry = json::parse(text.str());
    } catch (const json::exception& e) {
        Fail(file, std::string("malformed registry file, left as it is: ") + e.what());
    }
    if (!registry.is_object()) Fail(file, "malformed registry file, left as it is: not an object");
    if (!registry.contains("classes")) {
        registry["classes"] = json::array();
        return registry;
    }
    const json& classes = registry["classes"];
    if (!classes.is_array()) {
        Fail(file, "malformed registry file, left as it is: \"classes\" is not a list");
    }
    for (std::size_t i = 0; i < classes.size(); ++i) {
        if (!classes[i].is_object()) {
            Fail(file, "malformed registry file, left as it is: record " + std::to_string(i + 1) +
                           " is not an object");
        }
    }
    return registry;
}

// Writes beside the file and renames over it, so that a reader sees either
// the old registry or the new one, never half of one.
void Write(const fs::path& file, const json& registry) {
    const fs::path dir = file.has_parent_path() ? file.parent_path() : fs::path(".");
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (ec) Fail(file, "cannot create its folder: " + ec.message());

    // Keep the permissions of the file being replaced.
    struct stat old {};
    const bool existed = ::stat(file.c_str(), &old) == 0;

    std::string name = (dir / (file.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(name.data());
    if (fd < 0) Fail(file, "cannot create a temporary file: " + ErrnoText(errno));
    const std::string text = registry.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
    const auto abandon = [&](const std::string& why) {
        const int error = errno;
        ::close(fd);
        ::unlink(name.c_str());
        Fail(file, why + ": " + ErrnoText(error));
    };
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) abandon("cannot write the temporary file");
        done += static_cast<std::size_t>(n);
    }
    if (::fchmod(fd, existed ? (old.st_mode & 07777) : 0644) != 0) {
        abandon("cannot set the temporary file's permissions");
    }
    if (::fsync(fd) != 0) abandon("cannot flush the temporary file");
    if (::close(fd) != 0) {
        const int error = errno;
        ::unlink(name.c_str());
        Fail(file, "cannot close the temporary file: " + ErrnoText(error));
    }
    if (::rename(name.c_str(), file.c_str()) != 0) {
        const int error = errno;
        ::unlink(name.c_str());
        Fail(file, "cannot replace the file: " + ErrnoText(error));
    }
}

// Whether a record names one of the type library's classes.
bool IsOurs(const json& record) {
    const auto clsid = record.find("clsid");
    if (clsid == record.end() || !clsid->is_string()) return false;
    const std::optional<Guid> id = Guid::Parse(clsid->get<std::string>());
    return id && Kelvarin().FindClass(*id) != nullptr;
}

// Removes our records; true when there were any.
bool RemoveOurs(json& classes) {
    const std::size_t before = classes.size();
    json kept = json::array();
    for (json& record : classes)
        if (!IsOurs(record)) kept.push_back(std::move(record));
    classes = std::move(kept);
    return classes.size() != before;
}

}  // namespace

fs::path RegistryFilePath() {
    if (const char* path = NonEmptyEnv("KELVARIN_REGISTRY")) return path;
    if (const char* data = NonEmptyEnv("XDG_DATA_HOME"); data != nullptr && data[0] == '/') {
        return fs::path(data) / "kelvarin" / "registry.json";
    }
    if (const char* home = NonEmptyEnv("HOME")) {
        return fs::path(home) / ".local" / "share" / "kelvarin" / "registry.json";
    }
    throw RegistryError(
        "no registry file: neither KELVARIN_REGISTRY, XDG_DATA_HOME nor HOME is set");
}

std::string LoadedLibraryPath() {
    static const char anchor = 0;
    Dl_info info{};
    if (::dladdr(&anchor, &info) == 0 || info.dli_fname == nullptr || *info.dli_fname == '\0') {
        // The main program itself has no name of its own in the loader's list.
        std::error_code ec;
        fs::path self = fs::read_symlink("/proc/self/exe", ec);
        if (ec) throw RegistryError("cannot find where the library was loaded from");
        return self.string();
    }
    std::error_code ec;
    const fs::path path = fs::canonical(info.dli_fname, ec);
    return ec ? fs::absolute(info.dli_fname).string() : path.string();
}

void RegisterClasses(const fs::path& registryFile, const std::string& libraryPath) {
    json registry = Read(registryFile);
    json& classes = registry["classes"];
    RemoveOurs(classes);
    const TypeLibrary& lib = Kelvarin();
    const std::string version =
        std::to_string(lib.majorVersion) + "." + std::to_string(lib.minorVersion);
    for (const ClassInfo& c : lib.classes) {
        classes.push_back(json{
            {"progId", c.ProgId()},
            {"clsid", c.clsid.ToString()},
            {"typeLibrary", lib.libid.ToString()},
            {"library", libraryPath},
            {"version", version},
            {"OLESelfRegister", true},
        });
    }
    Write(registryFile, registry);
}

void UnregisterClasses(const fs::path& registryFile) {
    std::error_code ec;
    if (!fs::exists(registryFile, ec) && !ec) return;
    json registry = Read(registryFile);
    if (RemoveOurs(registry["classes"])) Write(registryFile, registry);
}

}  // namespace kelvarin::library
