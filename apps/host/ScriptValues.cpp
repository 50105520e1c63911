// SPDX-License-Identifier: MIT
#include "apps/host/ScriptValues.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "common/BmpFile.h"
#include "common/Font.h"
#include "common/HostError.h"
#include "common/Picture.h"
#include "common/Text.h"

namespace kelvarin::script {

namespace {

[[noreturn]] void Bad(std::string_view word) {
    throw ScriptError{"not a value: " + std::string(word)};
}

// "text with ""quotes""" -> text with "quotes"
std::string Unquote(std::string_view word) {
    if (word.size() < 2 || word.front() != '"' || word.back() != '"') Bad(word);
    std::string out;
    for (std::size_t i = 1; i + 1 < word.size(); ++i) {
        if (word[i] == '"') {
            if (i + 2 < word.size() && word[i + 1] == '"') ++i;
            else Bad(word);
        }
        out += word[i];
    }
    return out;
}

Date ParseDateWord(std::string_view inner, std::string_view word) {
    int y = 1899, mo = 12, d = 30, h = 0, mi = 0, s = 0;
    char tail = 0;
    const std::string text(inner);
    if (text.find('-') == std::string::npos) {  // a time alone
        if (std::sscanf(text.c_str(), "%d:%d:%d%c", &h, &mi, &s, &tail) != 3) Bad(word);
    } else {
        const int n =
            std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d%c", &y, &mo, &d, &h, &mi, &s, &tail);
        if (n != 3 && n != 6) Bad(word);
    }
    if (y < 100 || y > 9999 || mo < 1 || mo > 12 || d < 1 || d > DaysInMonth(y, mo) || h < 0 ||
        h > 23 || mi < 0 || mi > 59 || s < 0 || s > 59) {
        Bad(word);
    }
    return CombineDateTime(DateSerial(y, mo, d), (h * 3600 + mi * 60 + s) / 86400.0);
}

Variant ParseFont(std::string_view inner, std::string_view word) {
    const std::vector<std::string> parts = SplitWords(inner);
    // parts: "Name", ',' glued to the name or alone, size, flags
    std::vector<std::string> items;
    for (std::string p : parts) {
        if (!p.empty() && p.back() == ',') p.pop_back();
        if (!p.empty()) items.push_back(p);
    }
    if (items.size() < 2) Bad(word);
    auto font = std::make_shared<Font>();
    font->name = Unquote(items[0]);
    const std::string& size = items[1];
    double v = 0;
    const auto [end, ec] = std::from_chars(size.data(), size.data() + size.size(), v);
    if (ec != std::errc() || end != size.data() + size.size() || !(v > 0 && v <= 2048)) Bad(word);
    font->size = v;
    for (std::size_t i = 2; i < items.size(); ++i) {
        if (EqualsIgnoreCase(items[i], "bold")) font->bold = true;
        else if (EqualsIgnoreCase(items[i], "italic")) font->italic = true;
        else if (EqualsIgnoreCase(items[i], "underline")) font->underline = true;
        else if (EqualsIgnoreCase(items[i], "strikethrough")) font->strikethrough = true;
        else Bad(word);
    }
    return Variant(std::shared_ptr<Object>(font));
}

}  // namespace

namespace {

// Whether a word starting at `i` begins a comment: a # that does not open a
// date (#2007-12-25#, #13:45:00#), whose first character is a digit.
bool StartsComment(std::string_view line, std::size_t i) {
    return line[i] == '#' &&
           (i + 1 == line.size() || !std::isdigit(static_cast<unsigned char>(line[i + 1])));
}

// The end of the word that starts at `i`.
std::size_t WordEnd(std::string_view line, std::size_t i) {
    if (line[i] == '"') {
        ++i;
        while (i < line.size()) {
            if (line[i] == '"') {
                if (i + 1 < line.size() && line[i + 1] == '"') {
                    i += 2;
                    continue;
                }
                return i + 1;
            }
            ++i;
        }
        return i;
    }
    if (line[i] == '#') {
        const std::size_t close = line.find('#', i + 1);
        return close == std::string_view::npos ? line.size() : close + 1;
    }
    int depth = 0;
    bool quoted = false;
    while (i < line.size()) {
        const char c = line[i];
        if (quoted) {
            if (c == '"') quoted = false;
        } else if (c == '"' && depth > 0) {
            quoted = true;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            --depth;
        } else if (depth <= 0 && std::isspace(static_cast<unsigned char>(c))) {
            break;
        }
        ++i;
    }
    return i;
}

}  // namespace

std::string_view WithoutComment(std::string_view line) {
    std::size_t i = 0, end = 0;
    while (i < line.size()) {
        if (std::isspace(static_cast<unsigned char>(line[i]))) {
            ++i;
            continue;
        }
        if (line[i] == '#' && (end == 0 || StartsComment(line, i))) break;
        i = end = WordEnd(line, i);
    }
    return line.substr(0, end);
}

std::vector<std::string> SplitWords(std::string_view line) {
    std::vector<std::string> words;
    std::size_t i = 0;
    while (i < line.size()) {
        if (std::isspace(static_cast<unsigned char>(line[i]))) {
            ++i;
            continue;
        }
        const std::size_t start = i;
        i = WordEnd(line, i);
        words.emplace_back(line.substr(start, i - start));
    }
    return words;
}

Variant ParseValue(std::string_view word) {
    if (word.empty()) Bad(word);
    if (word.front() == '"') return Variant(Unquote(word));
    if (word.front() == '#') {
        if (word.size() < 3 || word.back() != '#') Bad(word);
        return Variant::FromDate(ParseDateWord(word.substr(1, word.size() - 2), word));
    }
    if (EqualsIgnoreCase(word, "True")) return Variant(true);
    if (EqualsIgnoreCase(word, "False")) return Variant(false);
    if (EqualsIgnoreCase(word, "Null")) return Variant::Null();
    if (EqualsIgnoreCase(word, "Empty")) return Variant();
    if (EqualsIgnoreCase(word, "Nothing")) return Variant::Nothing();
    if (word.size() > 5 && EqualsIgnoreCase(word.substr(0, 5), "font(") && word.back() == ')')
        return ParseFont(word.substr(5, word.size() - 6), word);
    if (word.size() > 8 && EqualsIgnoreCase(word.substr(0, 8), "picture(") && word.back() == ')') {
        const std::string path = Unquote(word.substr(8, word.size() - 9));
        BmpReadResult read = LoadBmpFile(path);
        if (!read) throw ScriptError{path + ": " + read.error};
        return Variant(std::shared_ptr<Object>(read.picture));
    }
    if (word.size() > 2 && word[0] == '&' && (word[1] == 'H' || word[1] == 'h')) {
        std::uint32_t v = 0;
        const auto [end, ec] = std::from_chars(word.data() + 2, word.data() + word.size(), v, 16);
        if (ec != std::errc() || end != word.data() + word.size() || word.size() > 10) Bad(word);
        return Variant(static_cast<Long>(v));
    }
    double v = 0;
    const char* first = word.data() + (word.front() == '+' ? 1 : 0);
    const auto [end, ec] = std::from_chars(first, word.data() + word.size(), v);
    if (ec != std::errc() || end != word.data() + word.size() || !std::isfinite(v)) Bad(word);
    if (v == std::floor(v) && v >= -2147483648.0 && v <= 2147483647.0 &&
        word.find_first_of(".eE") == std::string_view::npos) {
        return Variant(static_cast<Long>(v));
    }
    return Variant(v);
}

namespace {

std::string ShortestNumber(double v, bool single) {
    if (v == 0) return "0";
    char buf[64];
    const auto [end, ec] = single ? std::to_chars(buf, buf + sizeof buf, static_cast<float>(v))
                                  : std::to_chars(buf, buf + sizeof buf, v);
    std::string s(buf, end);
    for (char& c : s)
        if (c == 'e') c = 'E';
    return s;
}

}  // namespace

std::string FormatValue(const Variant& value, bool asColor) {
    switch (value.Type()) {
        case VarType::Empty: return "Empty";
        case VarType::Null: return "Null";
        case VarType::Boolean: return value.ToBoolean() ? "True" : "False";
        case VarType::Integer:
        case VarType::Long: {
            if (!asColor) return std::to_string(value.ToLong());
            char buf[16];
            std::snprintf(buf, sizeof buf, "&H%08X", static_cast<std::uint32_t>(value.ToLong()));
            return buf;
        }
        case VarType::Single: return ShortestNumber(value.ToDouble(), true);
        case VarType::Double: return ShortestNumber(value.ToDouble(), false);
        case VarType::Date: {
            const Date d = value.ToDate();
            const DateParts p = SplitDate(d);
            const bool dateless = DatePortion(d) == 0 && (p.hour || p.minute || p.second);
            const bool timeless = !p.hour && !p.minute && !p.second;
            char buf[40];
            if (dateless)
                std::snprintf(buf, sizeof buf, "#%02d:%02d:%02d#", p.hour, p.minute, p.second);
            else if (timeless)
                std::snprintf(buf, sizeof buf, "#%04d-%02d-%02d#", p.year, p.month, p.day);
            else
                std::snprintf(buf, sizeof buf, "#%04d-%02d-%02d %02d:%02d:%02d#", p.year, p.month,
                              p.day, p.hour, p.minute, p.second);
            return buf;
        }
        case VarType::String: {
            std::string out = "\"";
            for (char c : value.ToString()) {
                if (c == '"') out += '"';
                out += c;
            }
            return out + "\"";
        }
        case VarType::Object: {
            const auto object = value.ToObject();
            if (!object) return "Nothing";
            if (const auto* font = dynamic_cast<const Font*>(object.get())) {
                std::string out = "font(" + FormatValue(Variant(font->name)) + ", " +
                                  ShortestNumber(font->size, false);
                if (font->bold) out += " bold";
                if (font->italic) out += " italic";
                if (font->underline) out += " underline";
                if (font->strikethrough) out += " strikethrough";
                return out + ")";
            }
            if (const auto* picture = dynamic_cast<const Picture*>(object.get())) {
                const auto size =
                    std::to_string(picture->Width()) + "x" + std::to_string(picture->Height());
                switch (picture->Type()) {
                    case PictureType::Bitmap: return "picture(bitmap " + size + ")";
                    case PictureType::Icon: return "picture(icon " + size + ")";
                    case PictureType::None: return "picture(none)";
                    case PictureType::Metafile:
                    case PictureType::EnhancedMetafile: return "picture(metafile)";
                }
            }
            return object->TypeName();
        }
    }
    return "?";
}

}  // namespace kelvarin::script
