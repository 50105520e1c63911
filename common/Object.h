// SPDX-License-Identifier: MIT
// Base of the objects a Variant can refer to (fonts, pictures, controls).
#pragma once

#include <string>

namespace kelvarin {

class Object {
public:
    virtual ~Object() = default;
    // The host's type name of the object ("Font", "Picture", "DateBox").
    virtual std::string TypeName() const = 0;
    // Whether the two stand for the same value; objects without a value of
    // their own (controls) are the same only as themselves.
    virtual bool SameAs(const Object& other) const { return this == &other; }

protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};

}  // namespace kelvarin
