// SPDX-License-Identifier: MIT
#include "tests/library/Probe.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "library/ClassFactory.h"

namespace kelvarin::library::test {

namespace {

using namespace host::rows;

// Every property keeps what was written to it, by DISPID.
template <DispId Id>
Variant Stored(host::Control& c) {
    auto& p = static_cast<Probe&>(c);
    const auto it = p.values.find(Id);
    return it == p.values.end() ? Variant() : it->second;
}

template <DispId Id>
void Store(host::Control& c, const Variant& v) {
    auto& p = static_cast<Probe&>(c);
    if (Id == host::DISPID_FONT)
        p.SurfaceState().font = std::dynamic_pointer_cast<Font>(v.ToObject());
    p.values[Id] = v;
    p.puts.push_back(Id);
}

template <DispId Id>
host::rows::Row Stored(const char* name, TypeRef type, unsigned access) {
    const int row = Id == host::DISPID_FONT ? kType : Id - 1;
    return Property(row, name, Id, type).Raw(access, &Stored<Id>, &Store<Id>);
}

Variant Add(host::Control&, std::span<Variant> args) {
    return Variant(static_cast<Long>(args[0].ToLong() + args[1].ToLong()));
}

Variant Bump(host::Control&, std::span<Variant> args) {
    args[0] = Variant(static_cast<Integer>(args[0].ToInteger() + 1));
    return Variant(Long{7});
}

Variant Ring(host::Control&, std::span<Variant>) {
    return Variant(Long{99});  // ignored: Ring returns nothing
}

Variant Type(host::Control& c, std::span<Variant> args) {
    Variant key = args[0];
    static_cast<Probe&>(c).Raise(1, {&key, 1});
    return key;
}

}  // namespace

host::MemberTable Probe::Table() {
    static const host::Member rows[] = {
        Stored<kNumber>("Number", AsLong, kGet | kLet),
        Stored<kSmall>("Small", AsInteger, kGet | kLet),
        Stored<kFlag>("Flag", AsBoolean, kGet | kLet),
        Stored<kRatio>("Ratio", AsSingle, kGet | kLet),
        Stored<kAmount>("Amount", AsDouble, kGet | kLet),
        Stored<kWhen>("When", AsDate, kGet | kLet),
        Stored<kCaption>("Caption", AsString, kGet | kLet),
        Stored<kData>("Data", AsVariant, kGet | kLet),
        Stored<kColour>("Colour", AsColor, kGet | kLet),
        Stored<kMode>("Mode", Enum("eAlignment"), kGet | kLet),
        Property(kHandle - 1, "Handle", kHandle, AsLong)
            .Raw(kGet, [](host::Control&) { return Variant(Long{0x1234}); }),
        Stored<kIcon>("Icon", AsPicture, kGet | kSet),
        Method(kAdd - 1, "Add", kAdd, AsLong, {AsLong, AsLong}, &Add),
        Method(kBump - 1, "Bump", kBump, AsLong, {AsInteger}, &Bump),
        Method(kRing - 1, "Ring", kRing, AsVoid, {}, &Ring),
        Method(kType - 1, "Type", kType, AsInteger, {AsInteger}, &Type),
        Stored<host::DISPID_FONT>("Font", AsFont, kGet | kSet),
    };
    static const host::MemberTable table = host::CheckedTable(rows);
    return table;
}

const ClassInfo& RegisterProbe() {
    static const ClassInfo info{
        "Probe",
        Guid{0x5E1F0C11, 0x2B7A, 0x4C3D, {0x9A, 0x10, 0x44, 0x21, 0x6B, 0x0D, 0x3E, 0x77}},
        "_Probe",
        {},
        "__Probe",
        {},
        Probe::Table(),
        {{1, "Typed", {{"KeyAscii", {BaseType::Integer}}}, {}}},
    };
    ClassRegistry::Instance().Register(info, [] { return std::make_unique<Probe>(); });
    return info;
}

TempDir::TempDir() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "kelvarin-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

ScopedEnv::ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Put(name, value);
}

void ScopedEnv::Put(const char* name, const char* value) {
    if (value) ::setenv(name, value, 1);
    else ::unsetenv(name);
}

std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void WriteFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << text;
}

}  // namespace kelvarin::library::test
