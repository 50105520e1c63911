#include "tests/library/Probe.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "library/ClassFactory.h"

namespace kelvarin::library::test {

Variant Probe::GetProperty(DispId id) {
    if (id == kHandle) return Variant(Long{0x1234});
    if (id == host::DISPID_FONT) return Variant(std::shared_ptr<Object>(SurfaceState().font));
    const auto it = values.find(id);
    if (it != values.end()) return it->second;
    if (id >= kNumber && id <= kIcon) return Variant();
    return Control::GetProperty(id);
}

void Probe::PutProperty(DispId id, const Variant& value) {
    if (id == host::DISPID_FONT) {
        SurfaceState().font = std::dynamic_pointer_cast<Font>(value.ToObject());
    }
    values[id] = value;
    puts.push_back(id);
}

Variant Probe::CallMethod(DispId id, std::span<Variant> args) {
    switch (id) {
        case kAdd: return Variant(static_cast<Long>(args[0].ToLong() + args[1].ToLong()));
        case kBump:
            args[0] = Variant(static_cast<Integer>(args[0].ToInteger() + 1));
            return Variant(Long{7});
        case kRing: {
            Variant count(Long{3});
            RaiseEvent(1, {&count, 1});
            return Variant(Long{99});  // ignored: Ring returns nothing
        }
        case kType: {
            Variant key = args[0];
            RaiseEvent(2, {&key, 1});
            return key;
        }
        default: return Control::CallMethod(id, args);
    }
}

const ClassInfo& RegisterProbe() {
    static const ClassInfo info{
        "Probe",
        Guid{0x5E1F0C11, 0x2B7A, 0x4C3D, {0x9A, 0x10, 0x44, 0x21, 0x6B, 0x0D, 0x3E, 0x77}},
        "_Probe",
        Guid{0x5E1F0C12, 0x2B7A, 0x4C3D, {0x9A, 0x10, 0x44, 0x21, 0x6B, 0x0D, 0x3E, 0x77}},
        "__Probe",
        Guid{0x5E1F0C13, 0x2B7A, 0x4C3D, {0x9A, 0x10, 0x44, 0x21, 0x6B, 0x0D, 0x3E, 0x77}},
        {
            {"Number", MemberKind::Property, {BaseType::Long}, kNumber, kGet | kLet, {}},
            {"Small", MemberKind::Property, {BaseType::Integer}, kSmall, kGet | kLet, {}},
            {"Flag", MemberKind::Property, {BaseType::Boolean}, kFlag, kGet | kLet, {}},
            {"Ratio", MemberKind::Property, {BaseType::Single}, kRatio, kGet | kLet, {}},
            {"Amount", MemberKind::Property, {BaseType::Double}, kAmount, kGet | kLet, {}},
            {"When", MemberKind::Property, {BaseType::Date}, kWhen, kGet | kLet, {}},
            {"Caption", MemberKind::Property, {BaseType::String}, kCaption, kGet | kLet, {}},
            {"Data", MemberKind::Property, {BaseType::Variant}, kData, kGet | kLet, {}},
            {"Colour", MemberKind::Property, {BaseType::OleColor}, kColour, kGet | kLet, {}},
            {"Mode", MemberKind::Property, {BaseType::Enum, "eAlignment"}, kMode, kGet | kLet, {}},
            {"Handle", MemberKind::Property, {BaseType::Long}, kHandle, kGet, {}},
            {"Font", MemberKind::Property, {BaseType::Font}, host::DISPID_FONT, kGet | kSet, {}},
            {"Icon", MemberKind::Property, {BaseType::Picture}, kIcon, kGet | kSet, {}},
            {"Add",
             MemberKind::Method,
             {BaseType::Long},
             kAdd,
             0,
             {},
             false,
             {{BaseType::Long}, {BaseType::Long}}},
            {"Bump",
             MemberKind::Method,
             {BaseType::Long},
             kBump,
             0,
             {},
             false,
             {{BaseType::Integer}}},
            {"Ring", MemberKind::Method, {BaseType::Void}, kRing, 0, {}},
            {"Type",
             MemberKind::Method,
             {BaseType::Integer},
             kType,
             0,
             {},
             false,
             {{BaseType::Integer}}},
        },
        {
            {1, "Rang", {{"Count", {BaseType::Long}}}, {}},
            {2, "Typed", {{"KeyAscii", {BaseType::Integer}}}, {}},
        },
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

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ec);
    std::filesystem::remove_all(path_, ec);
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
