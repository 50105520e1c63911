// SPDX-License-Identifier: MIT
// The form file: a form's controls, each with class, name, geometry and
// stored properties, as JSON (fonts as objects, pictures as embedded
// bitmap files in base64, texts that are not UTF-8 as {"bytes": base64}, numbers JSON cannot
// hold as {"number": "inf" | "-inf" | "nan" | "-nan"}). Reading validates the
// whole file first, so a corrupt or hostile file is refused with the place of the fault and nothing
// half-read is ever used.
#pragma once

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <kelvarin/Export.h>

#include "host/PropertyBag.h"

namespace kelvarin::host {

class FormError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct FormControl {
    std::string className;
    std::string name;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    MemoryPropertyBag properties;
};

struct Form {
    std::vector<FormControl> controls;
};

// Reads property values for a control and refuses a stored value of the
// wrong kind for its default (a text where a number belongs, say), naming
// the place, instead of letting a conversion deep in the control fail.
class KELVARIN_CORE_API FormPropertyBag : public PropertyBag {
public:
    FormPropertyBag(MemoryPropertyBag& stored, std::string place)
        : stored_(stored), place_(std::move(place)) {}
    Variant ReadProperty(std::string_view name, const Variant& defaultValue) override;
    void WriteProperty(std::string_view name, const Variant& value,
                       const Variant& defaultValue) override;

private:
    MemoryPropertyBag& stored_;
    std::string place_;
};

std::string WriteForm(const Form& form);
// `source` names the text in messages ("form.json"); `classExists` refuses
// unknown classes. Limits: 10 000 controls, nesting 32 deep, 64 MiB of text.
Form ReadForm(std::string_view text, std::string_view source,
              const std::function<bool(std::string_view)>& classExists);

KELVARIN_CORE_API void SaveFormFile(const std::filesystem::path& path, const Form& form);
KELVARIN_CORE_API Form LoadFormFile(const std::filesystem::path& path,
                                    const std::function<bool(std::string_view)>& classExists);

}  // namespace kelvarin::host
