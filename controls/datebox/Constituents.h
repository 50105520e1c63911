// SPDX-License-Identifier: MIT
// The pieces a DateBox is built from, as plain models the control owns and
// paints itself: the field boxes (txtData), the separator labels
// (lblSeparator), the calendar button (cmdSelezione) and the hidden label
// through which the calendar hands a date back (lblValueChanged).
//
// Element arrays count from 1. Element 0 is the template every new element
// is loaded from; it is never shown, and it receives every setting the
// shown elements receive, so elements loaded later look like the others.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/Font.h"
#include "common/OleColor.h"
#include "common/Text.h"

namespace kelvarin::controls {

struct TextBoxElement {
    std::string text;
    int selStart = 0;  // in characters
    int selLength = 0;
    int left = 0, top = 0, width = 0, height = 0;
    bool visible = false;
    bool enabled = true;
    bool locked = false;
    bool tabStop = true;
    std::string tag;  // the index of the box's token, in decimal
    OLE_COLOR backColor = kSysWindow;
    OLE_COLOR foreColor = kSysWindowText;
    std::shared_ptr<Font> font = std::make_shared<Font>();

    // Writing the text puts the caret at the start, as a text box does.
    void SetText(std::string value) {
        text = std::move(value);
        selStart = 0;
        selLength = 0;
    }
    int Length() const noexcept { return Utf8Length(text); }
};

struct LabelElement {
    std::string caption;
    int left = 0, top = 0, width = 0, height = 0;
    bool visible = false;
    bool enabled = true;
    std::string tag;
    OLE_COLOR foreColor = kSysWindowText;
    std::shared_ptr<Font> font = std::make_shared<Font>();
};

// The hidden exchange label: whoever writes its caption runs its change
// handler, as a label's Change event does.
class ExchangeLabel {
public:
    const std::string& Caption() const noexcept { return caption_; }
    void SetCaption(std::string caption) {
        caption_ = std::move(caption);
        if (onChange) onChange();
    }
    bool Visible() const noexcept { return false; }
    std::function<void()> onChange;

private:
    std::string caption_;
};

struct ButtonElement {
    int left = 0, top = 0, width = 0, height = 0;
    bool visible = true;
    bool enabled = true;
    int glyphPoints = 1;  // size of the drop-down glyph, in points
};

// An element array from 1, with its template at 0.
template <class Element>
class ElementArray {
public:
    ElementArray() : elements_(1) {}

    // Loaded elements, not counting the template.
    int Count() const noexcept { return static_cast<int>(elements_.size()) - 1; }
    bool Exists(int index) const noexcept { return index >= 1 && index <= Count(); }
    Element& Template() noexcept { return elements_.front(); }
    const Element& Template() const noexcept { return elements_.front(); }
    // Element `index`; the template where it does not exist.
    Element& operator()(int index) noexcept {
        return Exists(index) ? elements_[index] : Template();
    }
    const Element& operator()(int index) const noexcept {
        return Exists(index) ? elements_[index] : Template();
    }
    // Loads the next element as a copy of the template.
    Element& Load() { return elements_.emplace_back(elements_.front()); }
    void UnloadLast() {
        if (Count() > 0) elements_.pop_back();
    }
    // The template and every loaded element, for settings that go to all.
    std::vector<Element>& All() noexcept { return elements_; }

private:
    std::vector<Element> elements_;
};

}  // namespace kelvarin::controls
