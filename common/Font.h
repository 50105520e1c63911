// SPDX-License-Identifier: MIT
// The standard font object: face, size in points and style.
#pragma once

#include <memory>
#include <string>

#include "common/Object.h"

namespace kelvarin {

class Font : public Object {
public:
    Font() = default;
    Font(std::string name, double size, bool bold = false, bool italic = false,
         bool underline = false, bool strikethrough = false)
        : name(std::move(name)),
          size(size),
          bold(bold),
          italic(italic),
          underline(underline),
          strikethrough(strikethrough) {}

    std::string TypeName() const override { return "Font"; }
    bool SameAs(const Object& other) const override {
        const auto* font = dynamic_cast<const Font*>(&other);
        return font != nullptr && *font == *this;
    }

    std::shared_ptr<Font> Clone() const { return std::make_shared<Font>(*this); }

    std::string name = "Sans Serif";
    double size = 8.0;  // points
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikethrough = false;

    friend bool operator==(const Font& a, const Font& b) noexcept {
        return a.name == b.name && a.size == b.size && a.bold == b.bold && a.italic == b.italic &&
               a.underline == b.underline && a.strikethrough == b.strikethrough;
    }
};

}  // namespace kelvarin
