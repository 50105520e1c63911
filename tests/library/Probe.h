// SPDX-License-Identifier: MIT
// A small control for the library tests: one property of every boundary
// type, a read-only one, methods with and without arguments, and an event.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/Control.h"
#include "library/TypeLib.h"

namespace kelvarin::library::test {

// DISPIDs of the probe's members; each stands at row DISPID - 1 of its
// table, and Font (the standard DISPID) last.
enum ProbeId : DispId {
    kNumber = 1,  // Long
    kSmall,       // Integer
    kFlag,        // Boolean
    kRatio,       // Single
    kAmount,      // Double
    kWhen,        // Date
    kCaption,     // String
    kData,        // Variant
    kColour,      // OLE_COLOR
    kMode,        // eAlignment
    kHandle,      // Long, get only
    kIcon,        // Picture
    kAdd,         // method Add(A As Long, B As Long) As Long
    kBump,        // method Bump(N As Integer): adds one to N
    kRing,        // method Ring(): returns nothing
    kType,        // method Type(KeyAscii As Integer) As Integer: raises Typed
};

class Probe : public host::Control {
public:
    Probe() : Control("Probe") {}

    static host::MemberTable Table();
    host::MemberTable Members() const override { return Table(); }
    void Raise(int number, std::span<Variant> args) { RaiseEvent(number, args); }

    std::map<DispId, Variant> values;
    std::vector<DispId> puts;  // every property write, in order
};

// The probe's class information, registered in the process's ClassRegistry
// under "Probe" (again on every call: tests may run in any order).
const ClassInfo& RegisterProbe();

// A fresh directory, removed with everything in it when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir() { std::filesystem::remove_all(path_, ignored_); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& Path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
    std::error_code ignored_;
};

// Sets (or, for nullptr, clears) an environment variable while it lives.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value);
    ~ScopedEnv() { Put(name_, old_ ? old_->c_str() : nullptr); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    static void Put(const char* name, const char* value);
    const char* name_;
    std::optional<std::string> old_;
};

std::string ReadFile(const std::filesystem::path& file);
void WriteFile(const std::filesystem::path& file, const std::string& text);

}  // namespace kelvarin::library::test
