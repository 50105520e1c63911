// SPDX-License-Identifier: MIT
// Sections: construction; properties; life-cycle; input and focus; hover;
// diagnostics.
#include "controls/commandbox/CommandBox.h"

#include "common/HostError.h"
#include "common/Numeric.h"
#include "host/Keys.h"

namespace kelvarin::controls {

// ---- Construction -------------------------------------------------------------

CommandBox::CommandBox() : Control("CommandBox") {
    for (auto& surface : surfaces_) surface = std::make_unique<clsGFX_2D>();
}

CommandBox::~CommandBox() = default;

// ---- Properties ---------------------------------------------------------------
//
// A write stores, then lays out, prepares the pictures or repaints as the
// property needs, and notifies under the stored name.

void CommandBox::SetBackColor(OLE_COLOR color) {
    SurfaceState().backColor = color;
    pictureBackColor_ = color;
    PreparePictures();
    Redraw();
    PropertyChanged(kBackColor);
}

void CommandBox::SetForeColor(OLE_COLOR color) {
    SurfaceState().foreColor = color;
    Redraw();
    PropertyChanged(kForeColor);
}

// Enabling sets the picture's look whether there is a picture or not.
void CommandBox::SetEnabled(bool enabled) {
    SurfaceState().enabled = enabled;
    if (enabled) pictureState_ = IsPointerOver() ? kHot : kNormal;
    else pictureState_ = kDisabled;
    Redraw();
    PropertyChanged(kEnabled);
}

void CommandBox::SetFont(std::shared_ptr<Font> font) {
    if (!font) RaiseHostError(HostErrorCode::InvalidPropertyValue);
    SurfaceState().font = std::move(font);
    Arrange();
    PropertyChanged(kFont);
}

void CommandBox::SetMouseIcon(std::shared_ptr<Object> picture) {
    SurfaceState().mouseIcon = std::move(picture);
    PropertyChanged(kMouseIcon);
}

void CommandBox::SetMousePointer(Integer pointer) {
    SurfaceState().mousePointer = pointer;
    PropertyChanged(kMousePointer);
}

void CommandBox::SetOLEDropMode(Integer mode) {
    SurfaceState().oleDropMode = mode;
    PropertyChanged(kOLEDropMode);
}

void CommandBox::SetPicture(std::shared_ptr<Picture> picture) {
    picture_ = std::move(picture);
    PreparePictures();
    Arrange();
    PropertyChanged(kPicture);
}

void CommandBox::SetRightToLeft(bool rightToLeft) {
    SurfaceState().rightToLeft = rightToLeft;
    PropertyChanged(kRightToLeft);
}

void CommandBox::SetAlignment(Long alignment) {
    alignment_ = alignment;
    Arrange();
    PropertyChanged(kAlignment);
}

// Out-of-range placements are kept: Arrange then leaves the geometry as it was.
void CommandBox::SetAlignPicture(Long align) {
    alignPicture_ = align;
    Arrange();
    PropertyChanged(kAlignPicture);
}

// The public value is in the container's units, the stored one in pixels;
// in a container of more than two pixels per unit the factor rounds to 0.
Single CommandBox::UnitsPerPixel() const { return ToSingle(Site().ContainerUnitsPerPixel()); }

Long CommandBox::UnitFactor() const { return ToLong(UnitsPerPixel()); }

Long CommandBox::Interleave() const {
    return ToLong(static_cast<double>(UnitsPerPixel()) * interleave_);
}

void CommandBox::SetInterleave(Long interleave) {
    interleave_ = IntDiv(interleave, UnitFactor());
    Arrange();
    PropertyChanged(kInterleave);
}

void CommandBox::SetText(std::string text) {
    text_ = std::move(text);
    Arrange();
    PropertyChanged(kText);
}

void CommandBox::SetStyle(Long style) {
    style_ = style;
    SetBorderInset();
    Arrange();
    PropertyChanged(kStyle);
}

void CommandBox::SetShowFocusRect(bool show) {
    showFocusRect_ = show;
    Redraw();
    PropertyChanged(kShowFocusRect);
}

void CommandBox::SetMaskColor(OLE_COLOR color) {
    maskColor_ = color;
    PreparePictures();
    Redraw();
    PropertyChanged(kMaskColor);
}

void CommandBox::SetUseMaskColor(bool use) {
    useMaskColor_ = use;
    PreparePictures();
    Redraw();
    PropertyChanged(kUseMaskColor);
}

void CommandBox::SetHighLighted(bool highLighted) {
    highLighted_ = highLighted;
    Redraw();
    PropertyChanged(kHighLighted);
}

void CommandBox::SetForeColorHighLighted(OLE_COLOR color) {
    foreColorHighLighted_ = color;
    Redraw();
    PropertyChanged(kForeColorHighLighted);
}

void CommandBox::Refresh() { Site().Refresh(); }

// ---- Life-cycle -----------------------------------------------------------------

// Back colour, fore colour and enabled keep the surface's defaults.
void CommandBox::InitProperties() {
    SurfaceState().font = Site().AmbientFont()->Clone();
    alignPicture_ = kLeftAlign;
    interleave_ = kDefaultInterleave;
    text_ = Site().ExtenderName();
    alignment_ = host::kCenter;
    style_ = kDoubleBorder;
    showFocusRect_ = true;
    maskColor_ = kDefaultMaskColor;
    useMaskColor_ = false;
    highLighted_ = false;
    foreColorHighLighted_ = kSysButtonText;
    picture_ = nullptr;
    pictureState_ = kNoPicture;
    pressed_ = false;
    hasFocus_ = false;
    SetBorderInset();
}

void CommandBox::Resize() { Arrange(); }

void CommandBox::AmbientChanged(std::string_view name) {
    if (name != "DisplayAsDefault") return;
    SetBorderInset();
    Arrange();
}

// The pictures were rendered on the face colour, which may be a system
// colour: they are rendered again, in the look they had.
void CommandBox::DisplayChanged() {
    const Integer state = pictureState_;
    PreparePictures();
    if (pictureState_ != kNoPicture) pictureState_ = state;
    Redraw();
}

void CommandBox::Terminate() {
    terminating_ = true;
    for (auto& surface : surfaces_) surface.reset();
    StopHoverWatch();
}

// ---- Input and focus ---------------------------------------------------------------
//
// Enter clicks on key down, space on key up after showing the pressed face,
// the mouse through the host's click notice for the left button only.

void CommandBox::KeyDown(Integer& keyCode, Integer shift) {
    if (keyCode == host::kKeyReturn) {
        RaiseEvent(kClick, {});
    } else if (keyCode == host::kKeySpace) {
        if (pressed_) return;
        pressed_ = true;
        Redraw();
    } else {
        RaiseKey(kKeyDown, keyCode, shift);
    }
}

void CommandBox::KeyPress(Integer& keyAscii) { RaiseKeyPress(kKeyPress, keyAscii); }

// Enter's release clears the pressed state without repainting the face.
void CommandBox::KeyUp(Integer& keyCode, Integer shift) {
    pressed_ = false;
    if (keyCode == host::kKeyReturn) return;
    Redraw();
    if (keyCode == host::kKeySpace) RaiseEvent(kClick, {});
    RaiseKey(kKeyUp, keyCode, shift);
}

void CommandBox::MouseDown(Integer button, Integer shift, Single x, Single y) {
    if (button & host::kLeftButton) {
        pressed_ = true;
        Redraw();
    }
    RaiseMouse(kMouseDown, button, shift, x, y);
}

void CommandBox::MouseMove(Integer button, Integer shift, Single x, Single y) {
    StartHoverWatch();
    RaiseMouse(kMouseMove, button, shift, x, y);
}

void CommandBox::MouseUp(Integer button, Integer shift, Single x, Single y) {
    if ((button & host::kLeftButton) && pressed_) {
        pressed_ = false;
        Redraw();
    }
    lastButton_ = button;
    RaiseMouse(kMouseUp, button, shift, x, y);
}

void CommandBox::Click() {
    if (lastButton_ & host::kLeftButton) RaiseEvent(kClick, {});
}

void CommandBox::DblClick() { RaiseEvent(kDblClick, {}); }

void CommandBox::AccessKeyPress(Integer) {
    if (Enabled()) RaiseEvent(kClick, {});
}

void CommandBox::GotFocus() {
    hasFocus_ = true;
    Redraw();
}

void CommandBox::LostFocus() {
    hasFocus_ = false;
    Redraw();
}

// ---- Hover ----------------------------------------------------------------------------
//
// The timer runs from the first pointer move over the button until the
// first tick that finds the pointer elsewhere.

bool CommandBox::IsPointerOver() { return Site().IsPointerOver(); }

void CommandBox::CheckHover() {
    if (terminating_) {
        StopHoverWatch();
        return;
    }
    if (!IsPointerOver()) {
        if (pictureState_ == kHot) {
            pictureState_ = kNormal;
            Redraw();
        }
        StopHoverWatch();
    } else if (pictureState_ == kNormal) {
        pictureState_ = kHot;
        Redraw();
    }
}

void CommandBox::StartHoverWatch() {
    if (HoverWatchRunning()) return;
    if (!timerProc_) {
        timerProc_ = Site().CreateTimer([this] { CheckHover(); });
        timerProc_->SetInterval(kHoverInterval);
    }
    CheckHover();
    timerProc_->SetEnabled(true);
}

void CommandBox::StopHoverWatch() {
    if (timerProc_) timerProc_->SetEnabled(false);
}

bool CommandBox::HoverWatchRunning() const { return timerProc_ && timerProc_->Enabled(); }

// ---- Diagnostics -------------------------------------------------------------------------

std::vector<std::string> CommandBox::Dump() const {
    const auto number = [](Long v) { return std::to_string(v); };
    const clsGFX_2D* picture = surfaces_[0].get();
    const bool present = pictureState_ != kNoPicture && picture != nullptr;
    return {
        "inset " + number(borderInset_),
        "text rect " + number(textRect_.left) + " " + number(textRect_.top) + " " +
            number(textRect_.right) + " " + number(textRect_.bottom),
        "picture " + number(picLeft_) + " " + number(picTop_) + " " +
            number(present ? picture->Get_Width() : 0) + " " +
            number(present ? picture->Get_Height() : 0),
        "state " + number(pictureState_),
        std::string("pressed ") + (pressed_ ? "True" : "False"),
        std::string("focus ") + (hasFocus_ ? "True" : "False"),
        "access keys \"" + SurfaceState().accessKeys + "\"",
        std::string("hover timer ") + (HoverWatchRunning() ? "running" : "idle"),
    };
}

}  // namespace kelvarin::controls
