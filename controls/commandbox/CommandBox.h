// SPDX-License-Identifier: MIT
// CommandBox: a push button that paints its own face: a word-wrapped
// caption with an access key, a picture in one of five placements with a
// full-colour, a grey and a disabled look, two edge styles, a default-button
// frame, a focus rectangle and a hover look polled by a timer.
//
// Sections, and the file that defines each:
//   members (the table, persistence order, reader and writer)
//                                                       CommandBoxMembers.cpp
//   construction; properties; life-cycle; input and focus; hover;
//   diagnostics                                         CommandBox.cpp
//   layout; painting; pictures                          CommandBoxFace.cpp
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "common/OleColor.h"
#include "common/Picture.h"
#include "gfx/clsGFX_2D.h"
#include "host/Control.h"

namespace kelvarin::controls {

class CommandBox : public host::Control {
public:
    // ---- Members ------------------------------------------------------------
    // The rows of the member table, in type-library order (CommandBoxMembers.cpp).
    enum Row : int {
        kBackColor,
        kForeColor,
        kEnabled,
        kFont,
        kRefresh,
        kMouseIcon,
        kMousePointer,
        kOLEDropMode,
        kPicture,
        kRightToLeft,
        kAlignment,
        kAlignPicture,
        kInterleave,
        kText,
        kStyle,
        kShowFocusRect,
        kHWnd,
        kMaskColor,
        kUseMaskColor,
        kHighLighted,
        kForeColorHighLighted,
        kRowCount
    };
    // Event numbers in the event interface.
    enum Events : int {
        kClick = 1,
        kDblClick,
        kKeyDown,
        kKeyPress,
        kKeyUp,
        kMouseDown,
        kMouseMove,
        kMouseUp,
    };
    // eAlignPicture: where the picture stands on the face.
    enum AlignPicture : Long { kLeftAlign, kRightAlign, kCenterAlign, kUpAlign, kDownAlign };
    // eStyle: the edges.
    enum Style : Long { kStandard = 0, kDoubleBorder = 1 };
    // The picture's look (pictureState): which prepared picture shows.
    enum PictureState : Integer { kNoPicture = -1, kHot = 0, kNormal = 1, kDisabled = 2 };

    static constexpr OLE_COLOR kDefaultMaskColor = 0x00FF00FF;
    static constexpr Long kDefaultInterleave = 5;
    static constexpr Long kHoverInterval = 50;  // milliseconds between pointer checks

    // ---- Construction -------------------------------------------------------
    CommandBox();
    ~CommandBox() override;

    static host::MemberTable Table();
    host::MemberTable Members() const override { return Table(); }

    // ---- Properties (typed API; each write repaints and notifies as it must)
    void SetBackColor(OLE_COLOR color);
    void SetForeColor(OLE_COLOR color);
    void SetEnabled(bool enabled);
    void SetFont(std::shared_ptr<Font> font);
    void SetMouseIcon(std::shared_ptr<Object> picture);
    void SetMousePointer(Integer pointer);
    void SetOLEDropMode(Integer mode);
    void SetPicture(std::shared_ptr<Picture> picture);
    void SetRightToLeft(bool rightToLeft);
    void SetAlignment(Long alignment);
    void SetAlignPicture(Long align);
    // In the container's units; kept in pixels.
    void SetInterleave(Long interleave);
    void SetText(std::string text);
    void SetStyle(Long style);
    void SetShowFocusRect(bool show);
    void SetMaskColor(OLE_COLOR color);
    void SetUseMaskColor(bool use);
    void SetHighLighted(bool highLighted);
    void SetForeColorHighLighted(OLE_COLOR color);
    // Shows the persistent image again; the face is not repainted.
    void Refresh();

    std::shared_ptr<Picture> GetPicture() const { return picture_; }
    Long Alignment() const noexcept { return alignment_; }
    Long GetAlignPicture() const noexcept { return alignPicture_; }
    Long Interleave() const;
    Long InterleavePixels() const noexcept { return interleave_; }
    const std::string& Text() const noexcept { return text_; }
    Long GetStyle() const noexcept { return style_; }
    bool ShowFocusRect() const noexcept { return showFocusRect_; }
    OLE_COLOR MaskColor() const noexcept { return maskColor_; }
    bool UseMaskColor() const noexcept { return useMaskColor_; }
    bool HighLighted() const noexcept { return highLighted_; }
    OLE_COLOR ForeColorHighLighted() const noexcept { return foreColorHighLighted_; }

    // ---- Host
    void InitProperties() override;
    void ReadProperties(host::PropertyBag& bag) override;
    void WriteProperties(host::PropertyBag& bag) override;
    void Resize() override;
    // The face is already on the persistent image: nothing to paint.
    void Paint() override {}
    void AmbientChanged(std::string_view name) override;
    void DisplayChanged() override;
    void Terminate() override;
    void KeyDown(Integer& keyCode, Integer shift) override;
    void KeyPress(Integer& keyAscii) override;
    void KeyUp(Integer& keyCode, Integer shift) override;
    void MouseDown(Integer button, Integer shift, Single x, Single y) override;
    void MouseMove(Integer button, Integer shift, Single x, Single y) override;
    void MouseUp(Integer button, Integer shift, Single x, Single y) override;
    void Click() override;
    void DblClick() override;
    void AccessKeyPress(Integer keyAscii) override;
    void GotFocus() override;
    void LostFocus() override;

    // ---- Diagnostics
    std::vector<std::string> Dump() const override;
    Integer GetPictureState() const noexcept { return pictureState_; }
    bool Pressed() const noexcept { return pressed_; }
    Long BorderInset() const noexcept { return borderInset_; }
    const host::Rect& TextRect() const noexcept { return textRect_; }
    host::Point PicturePosition() const noexcept { return {picLeft_, picTop_}; }
    // Null once the control has terminated.
    const clsGFX_2D* PreparedPicture(int index) const { return surfaces_.at(index).get(); }
    bool HoverWatchRunning() const;
    // The hover timer's poll, also for a host that learns at once that the
    // pointer has left.
    void CheckHover();

private:
    // Container units per pixel (15 in twips, 1 in pixels), and rounded.
    Single UnitsPerPixel() const;
    Long UnitFactor() const;

    // ---- Layout and painting (CommandBoxFace.cpp)
    void SetBorderInset();
    void Arrange();
    void Redraw();
    void PaintCaption(host::Surface& s, host::Rect rect, Long format);
    void PaintStandardEdges(host::Surface& s, bool raised, bool showFocus, bool isDefault);
    void PaintDoubleBorderEdges(host::Surface& s, bool raised, bool showFocus, bool isDefault);
    void PaintButtonEdges(host::Surface& s, bool raised, Long o, Long w1, Long h1);
    void PreparePictures();
    Long MeasureText(host::Surface& s, host::Rect rect);
    void UpdateAccessKeys();

    // ---- Hover
    bool IsPointerOver();
    void StartHoverWatch();
    void StopHoverWatch();

    // Layout.
    Long borderInset_ = 0;
    host::Rect textRect_;
    Long picLeft_ = 0;
    Long picTop_ = 0;
    // Look and input state.
    bool hasFocus_ = false;
    bool pressed_ = false;
    Integer pictureState_ = kNoPicture;
    Integer lastButton_ = 0;
    bool terminating_ = false;
    // Prepared pictures: full colour, grey, disabled; released on terminate.
    std::array<std::unique_ptr<clsGFX_2D>, 3> surfaces_;
    // Properties.
    Long alignPicture_ = kLeftAlign;
    Long interleave_ = kDefaultInterleave;  // pixels
    std::string text_;
    Long alignment_ = host::kCenter;
    Long style_ = kDoubleBorder;
    bool showFocusRect_ = true;
    OLE_COLOR maskColor_ = kDefaultMaskColor;
    bool useMaskColor_ = false;
    bool highLighted_ = false;
    OLE_COLOR foreColorHighLighted_ = kSysButtonText;
    // The picture holder: the picture as assigned, rendered on its own back colour.
    std::shared_ptr<Picture> picture_;
    OLE_COLOR pictureBackColor_ = kSysButtonFace;
    std::unique_ptr<host::Timer> timerProc_;
};

}  // namespace kelvarin::controls
