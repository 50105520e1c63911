// SPDX-License-Identifier: MIT
#include "host/FormFile.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <span>
#include <sstream>

#include <nlohmann/json.hpp>

#include "common/BmpFile.h"
#include "common/DateTime.h"
#include "common/Font.h"
#include "common/Picture.h"
#include "common/Text.h"

namespace kelvarin::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxText = 64u << 20;
constexpr int kMaxDepth = 32;
constexpr std::size_t kMaxControls = 10000;
constexpr int kMaxCoordinate = 1000000;
constexpr int kMaxSize = 32767;

[[noreturn]] void Fail(const std::string& place, const std::string& what) {
    throw FormError(place + ": " + what);
}

const char* KindOf(const Variant& v) {
    if (v.IsNumeric()) return "a number";
    switch (v.Type()) {
        case VarType::String: return "a text";
        case VarType::Object: return "an object";
        case VarType::Null: return "Null";
        default: return "a value";
    }
}

// ---- Writing ------------------------------------------------------------------

std::string IsoText(Date d) {
    const DateParts p = SplitDate(d);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02dT%02d:%02d:%02d", p.year, p.month, p.day, p.hour,
                  p.minute, p.second);
    return buf;
}

// With the reading, below; a date written as text must read back as it was.
Date ParseIso(const std::string& s, const std::string& place);

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string ToBase64(std::span<const std::uint8_t> bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::uint32_t n = bytes[i] << 16 | (i + 1 < bytes.size() ? bytes[i + 1] << 8 : 0) |
                                (i + 2 < bytes.size() ? bytes[i + 2] : 0);
        out += kBase64[n >> 18 & 63];
        out += kBase64[n >> 12 & 63];
        out += i + 1 < bytes.size() ? kBase64[n >> 6 & 63] : '=';
        out += i + 2 < bytes.size() ? kBase64[n & 63] : '=';
    }
    return out;
}

std::vector<std::uint8_t> FromBase64(const std::string& text, const std::string& place) {
    if (text.size() % 4 != 0) Fail(place, "not base64");
    std::vector<std::uint8_t> out;
    out.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        std::uint32_t n = 0;
        int pad = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const char c = text[i + k];
            const char* at = c == '=' ? nullptr : std::strchr(kBase64, c);
            if (c == '=' && i + 4 == text.size() && k >= 2) {
                ++pad;
            } else if (!at || c == '\0' || pad) {
                Fail(place, "not base64");
            }
            n = n << 6 | (at ? static_cast<std::uint32_t>(at - kBase64) : 0);
        }
        out.push_back(static_cast<std::uint8_t>(n >> 16));
        if (pad < 2) out.push_back(static_cast<std::uint8_t>(n >> 8));
        if (pad < 1) out.push_back(static_cast<std::uint8_t>(n));
    }
    return out;
}

// Bitmaps are stored as bitmap files; an icon as its colour pixels in one,
// its mask in base64 and its hot spot.
Json EncodePicture(const Picture& picture, const std::string& place) {
    switch (picture.Type()) {
        case PictureType::None: return Json{{"type", "none"}};
        case PictureType::Metafile: return Json{{"type", "metafile"}};
        case PictureType::EnhancedMetafile: return Json{{"type", "enhmetafile"}};
        case PictureType::Bitmap: {
            const BmpWriteResult file = WriteBmp(picture);
            if (!file) Fail(place, file.error);
            return Json{{"type", "bitmap"}, {"bmp", ToBase64(file.bytes)}};
        }
        case PictureType::Icon: {
            auto colour = Picture::MakeBitmap(picture.Width(), picture.Height(), 24);
            std::vector<std::uint8_t> mask;
            for (int y = 0; y < picture.Height(); ++y) {
                const auto row = picture.Row(y);
                std::copy(row.begin(), row.end(), colour->Row(y).begin());
                const auto m = picture.MaskRow(y);
                mask.insert(mask.end(), m.begin(), m.end());
            }
            const BmpWriteResult file = WriteBmp(*colour);
            if (!file) Fail(place, file.error);
            return Json{{"type", "icon"},
                        {"bmp", ToBase64(file.bytes)},
                        {"mask", ToBase64(mask)},
                        {"hotX", picture.HotSpotX()},
                        {"hotY", picture.HotSpotY()}};
        }
    }
    Fail(place, "cannot store this picture");
}

// A text as JSON keeps only UTF-8; other bytes (texts are bytes to the
// controls) are stored as {"bytes": base64}, so that they load back as they were.
// Points; a font larger than this is no font a form keeps.
constexpr double kMaxFontSize = 2048;

Json EncodeText(const std::string& text) {
    if (IsValidUtf8(text)) return text;
    return Json{
        {"bytes", ToBase64({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()})}};
}

// JSON has no infinities and no NaN (a writer would put null in their
// place): they are stored as {"number": "inf" | "-inf" | "nan" | "-nan"}.
Json EncodeNumber(double v) {
    if (std::isfinite(v)) return v;
    const char* sign = std::signbit(v) ? "-" : "";
    return Json{{"number", std::string(sign) + (std::isnan(v) ? "nan" : "inf")}};
}

// A date is written as its text, unless the text would lose part of it (a
// time of day finer than a second): then as the host's serial number,
// {"dateSerial": days}. Either way it is a date of the host's range.
Json EncodeDate(Date d, const std::string& place) {
    if (!IsDateInRange(d)) Fail(place, "date out of range");
    const std::string iso = IsoText(d);
    if (ParseIso(iso, place) == d) return Json{{"date", iso}};
    return Json{{"dateSerial", d}};
}

Json Encode(const Variant& v, const std::string& place) {
    switch (v.Type()) {
        case VarType::Empty: return Json{{"empty", true}};
        case VarType::Null: return nullptr;
        case VarType::Boolean: return v.ToBoolean();
        case VarType::Integer:
        case VarType::Long: return v.ToLong();
        case VarType::Single:
        case VarType::Double: return EncodeNumber(v.ToDouble());
        case VarType::Date: return EncodeDate(v.ToDouble(), place);
        case VarType::String: return EncodeText(v.ToString());
        case VarType::Object: {
            const auto object = v.ToObject();
            if (!object) return Json{{"nothing", true}};
            if (const auto* font = dynamic_cast<const Font*>(object.get())) {
                // Refused here, not written for the reader to refuse.
                if (!(font->size > 0 && font->size <= kMaxFontSize))
                    Fail(place + ".size", "font size out of range");
                return Json{{"font",
                             {{"name", EncodeText(font->name)},
                              {"size", font->size},
                              {"bold", font->bold},
                              {"italic", font->italic},
                              {"underline", font->underline},
                              {"strikethrough", font->strikethrough}}}};
            }
            if (const auto* picture = dynamic_cast<const Picture*>(object.get()))
                return Json{{"picture", EncodePicture(*picture, place)}};
            Fail(place, "cannot store an object of type " + object->TypeName());
        }
    }
    Fail(place, "cannot store this value");
}

// ---- Reading ------------------------------------------------------------------

// Refuses nesting deeper than the limit before the parser sees the text.
void CheckDepth(std::string_view text, std::string_view source) {
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') ++i;
            else if (c == '"') inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            if (++depth > kMaxDepth)
                Fail(std::string(source),
                     "nested more than " + std::to_string(kMaxDepth) + " deep");
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
}

const Json& Member(const Json& object, const char* key, const std::string& place) {
    const auto it = object.find(key);
    if (it == object.end()) Fail(place, std::string("missing \"") + key + "\"");
    return *it;
}

std::string Text(const Json& j, const std::string& place, std::size_t maxLength = 1u << 20) {
    if (!j.is_string()) Fail(place, "expected a text");
    const auto& s = j.get_ref<const std::string&>();
    if (s.size() > maxLength) Fail(place, "text too long");
    return s;
}

// A text, or the {"bytes": base64} form EncodeText writes.
std::string TextOrBytes(const Json& j, const std::string& place, std::size_t maxLength) {
    if (!j.is_object()) return Text(j, place, maxLength);
    if (j.size() != 1 || !j.contains("bytes")) Fail(place, "expected a text");
    const auto bytes =
        FromBase64(Text(j["bytes"], place + ".bytes", maxLength * 2), place + ".bytes");
    if (bytes.size() > maxLength) Fail(place, "text too long");
    return std::string(bytes.begin(), bytes.end());
}

bool Flag(const Json& j, const std::string& place) {
    if (!j.is_boolean()) Fail(place, "expected true or false");
    return j.get<bool>();
}

double Number(const Json& j, const std::string& place) {
    if (!j.is_number()) Fail(place, "expected a number");
    const double v = j.get<double>();
    if (!std::isfinite(v)) Fail(place, "number out of range");
    return v;
}

int Whole(const Json& j, const std::string& place, int min, int max) {
    const double v = Number(j, place);
    if (v != std::floor(v)) Fail(place, "expected a whole number");
    if (v < min || v > max)
        Fail(place, "out of range " + std::to_string(min) + " to " + std::to_string(max));
    return static_cast<int>(v);
}

Date ParseIso(const std::string& s, const std::string& place) {
    int y, mo, d, h = 0, mi = 0, se = 0;
    char tail = 0;
    const int n =
        std::sscanf(s.c_str(), "%5d-%2d-%2dT%2d:%2d:%2d%c", &y, &mo, &d, &h, &mi, &se, &tail);
    if ((n != 3 && n != 6) || y < 100 || y > 9999 || mo < 1 || mo > 12 || d < 1 ||
        d > DaysInMonth(y, mo) || h < 0 || h > 23 || mi < 0 || mi > 59 || se < 0 || se > 59) {
        Fail(place, "expected a date as YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS");
    }
    return CombineDateTime(DateSerial(y, mo, d), (h * 3600 + mi * 60 + se) / 86400.0);
}

std::shared_ptr<Picture> ReadBitmapText(const Json& j, const std::string& place) {
    const BmpReadResult read = ReadBmp(FromBase64(Text(j, place, kMaxText), place));
    if (!read) Fail(place, read.error);
    return read.picture;
}

std::shared_ptr<Picture> DecodePicture(const Json& j, const std::string& place) {
    if (!j.is_object()) Fail(place, "expected an object");
    const std::string type = Text(Member(j, "type", place), place + ".type", 16);
    if (type == "none") return Picture::MakeOfType(PictureType::None);
    if (type == "metafile") return Picture::MakeOfType(PictureType::Metafile);
    if (type == "enhmetafile") return Picture::MakeOfType(PictureType::EnhancedMetafile);
    if (type == "bitmap") return ReadBitmapText(Member(j, "bmp", place), place + ".bmp");
    if (type != "icon") Fail(place + ".type", "unknown picture type \"" + type + "\"");
    const auto colour = ReadBitmapText(Member(j, "bmp", place), place + ".bmp");
    const int w = colour->Width(), h = colour->Height();
    const int hotX = Whole(Member(j, "hotX", place), place + ".hotX", 0, w);
    const int hotY = Whole(Member(j, "hotY", place), place + ".hotY", 0, h);
    const auto mask =
        FromBase64(Text(Member(j, "mask", place), place + ".mask", kMaxText), place + ".mask");
    if (colour->BitsPerPixel() != 24 || mask.size() != static_cast<std::size_t>(w) * h)
        Fail(place, "icon pixels and mask do not match");
    auto icon = Picture::MakeIcon(w, h, hotX, hotY);
    for (int y = 0; y < h; ++y) {
        const auto from = colour->Row(y);
        std::copy(from.begin(), from.end(), icon->Row(y).begin());
        std::copy_n(mask.begin() + static_cast<std::ptrdiff_t>(y) * w, w, icon->MaskRow(y).begin());
    }
    return icon;
}

double NonFinite(const std::string& text, const std::string& place) {
    const bool negative = !text.empty() && text[0] == '-';
    const std::string_view magnitude = std::string_view(text).substr(negative ? 1 : 0);
    double v;
    if (magnitude == "inf") v = std::numeric_limits<double>::infinity();
    else if (magnitude == "nan") v = std::numeric_limits<double>::quiet_NaN();
    else Fail(place, "expected inf, -inf, nan or -nan");
    return negative ? -v : v;
}

Variant Decode(const Json& j, const std::string& place) {
    switch (j.type()) {
        case Json::value_t::null: return Variant::Null();
        case Json::value_t::boolean: return Variant(j.get<bool>());
        case Json::value_t::number_integer:
        case Json::value_t::number_unsigned:
        case Json::value_t::number_float: {
            const double v = Number(j, place);
            if (v == std::floor(v) && v >= -2147483648.0 && v <= 2147483647.0)
                return Variant(static_cast<Long>(v));
            return Variant(v);
        }
        case Json::value_t::string: return Variant(Text(j, place));
        case Json::value_t::object: {
            if (j.size() != 1) Fail(place, "expected an object with one key");
            const auto only = j.begin();
            const std::string key = only.key();
            const Json& value = only.value();
            const std::string inner = place + "." + key;
            if (key == "date") return Variant::FromDate(ParseIso(Text(value, inner), inner));
            if (key == "number") return Variant(NonFinite(Text(value, inner), inner));
            if (key == "dateSerial") {
                const double d = Number(value, inner);
                if (!IsDateInRange(d)) Fail(inner, "out of range");
                return Variant::FromDate(d);
            }
            if (key == "bytes") return Variant(TextOrBytes(j, place, 1u << 20));
            if (key == "nothing") return Variant::Nothing();
            if (key == "empty") return Variant();
            if (key == "font") {
                if (!value.is_object()) Fail(inner, "expected an object");
                auto font = std::make_shared<Font>();
                font->name = TextOrBytes(Member(value, "name", inner), inner + ".name", 256);
                font->size = Number(Member(value, "size", inner), inner + ".size");
                if (!(font->size > 0 && font->size <= kMaxFontSize))
                    Fail(inner + ".size", "out of range");
                for (auto [flag, field] : {std::pair{"bold", &font->bold},
                                           {"italic", &font->italic},
                                           {"underline", &font->underline},
                                           {"strikethrough", &font->strikethrough}}) {
                    const auto it = value.find(flag);
                    if (it != value.end()) *field = Flag(*it, inner + "." + flag);
                }
                return Variant(std::shared_ptr<Object>(font));
            }
            if (key == "picture")
                return Variant(std::shared_ptr<Object>(DecodePicture(value, inner)));
            Fail(place, "unknown kind of value \"" + key + "\"");
        }
        case Json::value_t::array:
        case Json::value_t::binary:
        case Json::value_t::discarded: break;
    }
    Fail(place, "unexpected value");
}

bool IsName(const std::string& s) {
    if (s.empty() || s.size() > 64 ||
        !(std::isalpha(static_cast<unsigned char>(s[0])) || s[0] == '_'))
        return false;
    for (char c : s)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
    return true;
}

}  // namespace

Variant FormPropertyBag::ReadProperty(std::string_view name, const Variant& defaultValue) {
    Variant v = stored_.ReadProperty(name, defaultValue);
    const bool fits = defaultValue.IsEmpty() || v.IsNull() ||
                      (defaultValue.IsNumeric() ? v.IsNumeric() : v.Type() == defaultValue.Type());
    if (!fits) {
        throw FormError(place_ + "." + std::string(name) + ": expected " + KindOf(defaultValue) +
                        ", found " + KindOf(v));
    }
    return v;
}

void FormPropertyBag::WriteProperty(std::string_view name, const Variant& value,
                                    const Variant& defaultValue) {
    stored_.WriteProperty(name, value, defaultValue);
}

std::string WriteForm(const Form& form) {
    Json controls = Json::array();
    for (std::size_t i = 0; i < form.controls.size(); ++i) {
        const FormControl& c = form.controls[i];
        Json properties = Json::object();
        for (const auto& [name, value] : c.properties.Entries())
            properties[name] = Encode(value, "controls[" + std::to_string(i) + "]." + name);
        controls.push_back({{"class", c.className},
                            {"name", c.name},
                            {"left", c.left},
                            {"top", c.top},
                            {"width", c.width},
                            {"height", c.height},
                            {"properties", std::move(properties)}});
    }
    Json root = {{"format", "kelvarin-form"}, {"version", 1}, {"controls", std::move(controls)}};
    return root.dump(2) + "\n";
}

Form ReadForm(std::string_view text, std::string_view source,
              const std::function<bool(std::string_view)>& classExists) {
    const std::string file(source);
    if (text.size() > kMaxText) Fail(file, "file larger than 64 MiB");
    CheckDepth(text, source);
    Json root;
    try {
        root = Json::parse(text.begin(), text.end());
    } catch (const Json::exception& e) {
        Fail(file, std::string("not a form file: ") + e.what());
    }
    if (!root.is_object()) Fail(file, "expected an object");
    if (Text(Member(root, "format", file), file + ".format") != "kelvarin-form")
        Fail(file + ".format", "not a Kelvarin form");
    if (Whole(Member(root, "version", file), file + ".version", 0, 1000) != 1)
        Fail(file + ".version", "unsupported version");
    const Json& controls = Member(root, "controls", file);
    if (!controls.is_array()) Fail(file + ".controls", "expected a list");
    if (controls.size() > kMaxControls) Fail(file + ".controls", "too many controls");

    Form form;
    std::vector<std::string> seen;
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const std::string place = file + ": controls[" + std::to_string(i) + "]";
        const Json& c = controls[i];
        if (!c.is_object()) Fail(place, "expected an object");
        FormControl fc;
        fc.className = Text(Member(c, "class", place), place + ".class", 256);
        if (!classExists(fc.className))
            Fail(place + ".class", "unknown class \"" + fc.className + "\"");
        fc.name = Text(Member(c, "name", place), place + ".name", 256);
        if (!IsName(fc.name)) Fail(place + ".name", "not a control name: \"" + fc.name + "\"");
        const std::string key = ToLowerAscii(fc.name);
        if (std::find(seen.begin(), seen.end(), key) != seen.end())
            Fail(place + ".name", "a second control named \"" + fc.name + "\"");
        seen.push_back(key);
        fc.left = Whole(Member(c, "left", place), place + ".left", -kMaxCoordinate, kMaxCoordinate);
        fc.top = Whole(Member(c, "top", place), place + ".top", -kMaxCoordinate, kMaxCoordinate);
        fc.width = Whole(Member(c, "width", place), place + ".width", 0, kMaxSize);
        fc.height = Whole(Member(c, "height", place), place + ".height", 0, kMaxSize);
        const auto props = c.find("properties");
        if (props != c.end()) {
            if (!props->is_object()) Fail(place + ".properties", "expected an object");
            for (const auto& [name, value] : props->items()) {
                if (name.empty() || name.size() > 64)
                    Fail(place + ".properties", "bad property name");
                fc.properties.Set(name, Decode(value, place + ".properties." + name));
            }
        }
        form.controls.push_back(std::move(fc));
    }
    return form;
}

void SaveFormFile(const std::filesystem::path& path, const Form& form) {
    const std::string text = WriteForm(form);
    // Write beside the target, then rename, so a failed save keeps the old file.
    std::filesystem::path temp = path;
    temp += ".tmp";
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out) throw FormError(path.string() + ": cannot write");
        out << text;
        if (!out.flush()) throw FormError(path.string() + ": cannot write");
    }
    std::error_code ec;
    std::filesystem::rename(temp, path, ec);
    if (ec) throw FormError(path.string() + ": " + ec.message());
}

Form LoadFormFile(const std::filesystem::path& path,
                  const std::function<bool(std::string_view)>& classExists) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw FormError(path.string() + ": cannot open");
    std::ostringstream buffer;
    buffer << in.rdbuf();
    return ReadForm(buffer.str(), path.filename().string(), classExists);
}

}  // namespace kelvarin::host
