// SPDX-License-Identifier: MIT
// The face: where picture and caption go, the three prepared pictures, and
// the painting of everything onto the persistent image.
//
// Sections: inset and access keys; layout; painting; edges; pictures.
#include <algorithm>
#include <exception>

#include "common/Numeric.h"
#include "common/Text.h"
#include "controls/commandbox/CommandBox.h"
#include "gfx/PictureDC.h"

namespace kelvarin::controls {

namespace {

OLE_COLOR Sys(int index) { return TranslateSysColor(SystemColor(index)); }

// A line from the first point up to, not including, the second.
void Line(host::Surface& s, Long x1, Long y1, Long x2, Long y2, OLE_COLOR color) {
    s.DrawLine({x1, y1}, {x2, y2}, color);
}

// A rectangle's outline, both corners included.
void Box(host::Surface& s, Long x1, Long y1, Long x2, Long y2, OLE_COLOR color) {
    const Long l = std::min(x1, x2), r = std::max(x1, x2);
    const Long t = std::min(y1, y2), b = std::max(y1, y2);
    for (Long x = l; x <= r; ++x) {
        s.SetPixel({x, t}, color);
        s.SetPixel({x, b}, color);
    }
    for (Long y = t + 1; y < b; ++y) {
        s.SetPixel({l, y}, color);
        s.SetPixel({r, y}, color);
    }
}

Long Half(Long x) { return x / 2; }

}  // namespace

// ---- Inset and access keys ------------------------------------------------------
//
// The focus term is the focus at the moment the inset is set: gaining or
// losing the focus alone does not move the content.
void CommandBox::SetBorderInset() {
    const Long focus = hasFocus_ ? 1 : 0;
    if (style_ == kStandard) borderInset_ = focus + 2;
    else if (style_ == kDoubleBorder) borderInset_ = focus + 4;
}

// The character after the last single "&". A caption without one keeps the
// previous key.
void CommandBox::UpdateAccessKeys() {
    std::string s;
    for (std::size_t i = 0; i < text_.size(); ++i) {
        if (text_[i] == '&' && i + 1 < text_.size() && text_[i + 1] == '&') ++i;
        else s += text_[i];
    }
    const std::size_t p = s.rfind('&');
    if (p == std::string::npos) return;
    SurfaceState().accessKeys = s.substr(p + 1, Utf8CharSize(s, p + 1));
}

// ---- Layout ------------------------------------------------------------------------

// The caption's height when broken into lines as wide as rect.
Long CommandBox::MeasureText(host::Surface& s, host::Rect rect) {
    s.DrawText(text_, rect, host::DT_CALCRECT | host::DT_WORDBREAK, *SurfaceState().font, 0);
    return CheckedSub(rect.bottom, rect.top);
}

void CommandBox::Arrange() {
    UpdateAccessKeys();
    host::Surface& s = Site().ClientSurface();
    const Long w = ScaleWidth(), h = ScaleHeight();
    const bool hasPicture = pictureState_ != kNoPicture;
    const Long pw = hasPicture && surfaces_[0] ? surfaces_[0]->Get_Width() : 0;
    const Long ph = hasPicture && surfaces_[0] ? surfaces_[0]->Get_Height() : 0;
    const Long b = borderInset_, i = interleave_;
    // The content box's edges.
    const auto near = [&] { return CheckedAdd(b, i); };
    const auto farFrom = [&](Long extent) { return CheckedSub(CheckedSub(extent, b), i); };
    host::Rect& r = textRect_;
    const auto measure = [&] { return MeasureText(s, r); };

    switch (alignPicture_) {
        case kLeftAlign:
        case kRightAlign: {
            const bool left = alignPicture_ == kLeftAlign;
            picLeft_ = left ? near() : CheckedSub(farFrom(w), pw);
            picTop_ = Half(CheckedSub(h, ph));
            r.left = near();
            r.right = farFrom(w);
            if (hasPicture && left) r.left = CheckedAdd(CheckedAdd(r.left, pw), i);
            if (hasPicture && !left) r.right = CheckedSub(CheckedSub(r.right, pw), i);
            r.top = 0;
            const Long th = measure();
            r.top = Half(CheckedSub(h, th));
            r.bottom = CheckedAdd(r.top, th);
            break;
        }
        case kCenterAlign: {
            r.left = near();
            r.right = farFrom(w);
            r.top = 0;
            const Long th = measure();
            picLeft_ = Half(CheckedSub(w, pw));
            // The picture subtracts the gap before halving and the caption
            // does not: the gap between them comes out near one and a half.
            picTop_ = text_.empty() ? Half(CheckedSub(h, ph))
                                    : Half(CheckedSub(CheckedSub(CheckedSub(h, ph), th), i));
            r.top = hasPicture
                        ? CheckedAdd(CheckedAdd(Half(CheckedSub(CheckedSub(h, th), ph)), ph), i)
                        : Half(CheckedSub(h, th));
            r.bottom = CheckedAdd(r.top, th);
            break;
        }
        case kUpAlign: {
            picLeft_ = Half(CheckedSub(w, pw));
            picTop_ = near();
            r.left = near();
            r.right = farFrom(w);
            r.top = hasPicture ? CheckedAdd(CheckedAdd(near(), ph), i) : near();
            r.bottom = CheckedAdd(r.top, measure());
            break;
        }
        case kDownAlign: {
            picLeft_ = Half(CheckedSub(w, pw));
            picTop_ = CheckedSub(farFrom(h), ph);
            r.left = near();
            r.right = farFrom(w);
            r.bottom = hasPicture ? CheckedSub(CheckedSub(farFrom(h), ph), i) : farFrom(h);
            r.top = CheckedSub(r.bottom, measure());
            break;
        }
        default: break;  // an unknown placement keeps the last geometry
    }
    Redraw();
}

// ---- Painting ------------------------------------------------------------------------
//
// Background, picture, edges, caption, in that order: the edges cover a
// picture that reaches the border.
void CommandBox::Redraw() {
    host::Surface& s = Site().ClientSurface();
    s.FillRect({0, 0, s.Width(), s.Height()}, TranslateSysColor(BackColor()));
    const Long off = pressed_ ? 1 : 0;
    const host::Rect r{textRect_.left + off, textRect_.top + off, textRect_.right + off,
                       textRect_.bottom + off};

    // Focused, the button is the default one. Otherwise the container says,
    // and the rest of the face is painted whatever fails along the way.
    bool showFocus = showFocusRect_, isDefault = true, ignoreErrors = false;
    if (!hasFocus_) {
        ignoreErrors = true;
        showFocus = false;
        try {
            isDefault = Site().AmbientDisplayAsDefault() && Enabled();
        } catch (const std::exception&) {
            isDefault = false;
        }
    }
    const auto step = [ignoreErrors](auto&& paint) {
        if (!ignoreErrors) return paint();
        try {
            paint();
        } catch (const std::exception&) {
        }
    };

    if (pictureState_ != kNoPicture) {
        step([&] {
            const int index = pictureState_ == kNormal && !highLighted_ ? 0 : pictureState_;
            if (clsGFX_2D* picture = surfaces_.at(index).get())
                picture->BitBlt_PaintPicture(&s, CheckedAdd(picLeft_, off),
                                             CheckedAdd(picTop_, off), -1, -1, 0, 0, SRCCOPY);
        });
    }
    step([&] {
        if (style_ == kStandard) PaintStandardEdges(s, !pressed_, showFocus, isDefault);
        else if (style_ == kDoubleBorder)
            PaintDoubleBorderEdges(s, !pressed_, showFocus, isDefault);
    });
    step([&] { PaintCaption(s, r, alignment_); });
    step([&] { Site().Refresh(); });
}

// Enabled: the fore colour, or the highlighted one while the pointer is
// over a highlighted button. Disabled: embossed, a light copy one pixel
// down and right under a shadow one.
void CommandBox::PaintCaption(host::Surface& s, host::Rect rect, Long format) {
    const unsigned flags = static_cast<unsigned>(format) | host::DT_WORDBREAK;
    const Font& font = *SurfaceState().font;
    if (Enabled()) {
        const OLE_COLOR color =
            highLighted_ && pictureState_ == kHot ? foreColorHighLighted_ : ForeColor();
        s.DrawText(text_, rect, flags, font, TranslateSysColor(color));
        return;
    }
    host::Rect moved{rect.left + 1, rect.top + 1, rect.right + 1, rect.bottom + 1};
    s.DrawText(text_, moved, flags, font, Sys(COLOR_BTNHIGHLIGHT));
    s.DrawText(text_, rect, flags, font, Sys(COLOR_BTNSHADOW));
}

// ---- Edges -----------------------------------------------------------------------------
//
// The host keeps a control's size within 16 bits, so edge coordinates
// cannot overflow.

// A raised button (eight lines) or a pressed one (one shadow box) with its
// outer corner at (o, o) and its far edges at w1 - 1 and h1 - 1.
void CommandBox::PaintButtonEdges(host::Surface& s, bool raised, Long o, Long w1, Long h1) {
    if (!raised) {
        Box(s, o, o, w1 - 1, h1 - 1, Sys(COLOR_BTNSHADOW));
        return;
    }
    Line(s, o, o, w1 - 1, o, Sys(COLOR_BTNHIGHLIGHT));
    Line(s, o, o, o, h1 - 1, Sys(COLOR_BTNHIGHLIGHT));
    Line(s, o + 1, o + 1, w1 - 3, o + 1, Sys(COLOR_3DLIGHT));
    Line(s, o + 1, o + 1, o + 1, h1 - 2, Sys(COLOR_3DLIGHT));
    Line(s, o + 1, h1 - 2, w1 - 2, h1 - 2, Sys(COLOR_BTNSHADOW));
    Line(s, w1 - 2, o + 1, w1 - 2, h1 - 1, Sys(COLOR_BTNSHADOW));
    Line(s, o, h1 - 1, w1, h1 - 1, Sys(COLOR_3DDKSHADOW));
    Line(s, w1 - 1, o, w1 - 1, h1, Sys(COLOR_3DDKSHADOW));
}

void CommandBox::PaintStandardEdges(host::Surface& s, bool raised, bool showFocus, bool isDefault) {
    const Long d = isDefault ? 1 : 0;
    const Long sw = ScaleWidth(), sh = ScaleHeight();
    PaintButtonEdges(s, raised, d, sw - d, sh - d);
    if (isDefault) Box(s, 0, 0, sw - 1, sh - 1, 0);
    // Drawn with the fore colour set to black, which an inverting outline
    // does not read: there is nothing to save and restore around it.
    if (showFocus && isDefault) s.DrawFocusRect({d + 2, d + 2, sw - d - 2, sh - d - 2});
}

// An inner button inside a two-pixel sunken well.
void CommandBox::PaintDoubleBorderEdges(host::Surface& s, bool raised, bool showFocus,
                                        bool isDefault) {
    const Long d = isDefault ? 1 : 0;
    const Long x = ScaleWidth(), y = ScaleHeight();
    PaintButtonEdges(s, raised, d + 2, x - d - 2, y - d - 2);
    Line(s, 0, 0, x - 1, 0, Sys(COLOR_BTNSHADOW));
    Line(s, 0, 0, 0, y - 1, Sys(COLOR_BTNSHADOW));
    Line(s, 1, 1, x - 2, 1, Sys(COLOR_3DDKSHADOW));
    Line(s, 1, 1, 1, y - 2, Sys(COLOR_3DDKSHADOW));
    Line(s, 1, y - 2, x - 2, y - 2, Sys(COLOR_3DLIGHT));
    Line(s, x - 2, 1, x - 2, y - 1, Sys(COLOR_3DLIGHT));
    Line(s, 0, y - 1, x, y - 1, Sys(COLOR_BTNHIGHLIGHT));
    Line(s, x - 1, 0, x - 1, y, Sys(COLOR_BTNHIGHLIGHT));
    if (isDefault) Box(s, 2, 2, x - 3, y - 3, 0);
    if (showFocus && isDefault) s.DrawFocusRect({d + 4, d + 4, x - d - 4, y - d - 4});
}

// ---- Pictures ------------------------------------------------------------------------------
//
// Three copies of the picture as rendered on the face colour: full colour,
// grey, and grey faded half-way to the face. Face-coloured pixels (and the
// mask colour, which becomes the face colour) are left out of both colour
// operations, so they blend with the face.
void CommandBox::PreparePictures() {
    if (!picture_ || !picture_->HasHandle()) {
        pictureState_ = kNoPicture;
        return;
    }
    const Long pw = picture_->Width(), ph = picture_->Height();
    const OLE_COLOR bk = TranslateSysColor(BackColor());
    const RenderedPictureDC rendered(*picture_, TranslateSysColor(pictureBackColor_));
    for (auto& surface : surfaces_) {
        surface = std::make_unique<clsGFX_2D>();
        surface->Create(pw, ph, 24);
        surface->BitBlt_LoadPicture(&rendered, 0, 0, -1, -1, SRCCOPY);
        if (useMaskColor_)
            surface->Color_Replace(static_cast<Long>(TranslateSysColor(maskColor_)),
                                   static_cast<Long>(bk));
    }
    surfaces_[1]->Color_Gray(static_cast<Long>(bk), true);
    surfaces_[2]->Color_Gray(static_cast<Long>(bk), true);
    surfaces_[2]->Color_FadeTo(static_cast<Long>(bk), static_cast<Long>(bk), 1.0);
    pictureState_ = Enabled() ? kNormal : kDisabled;
}

}  // namespace kelvarin::controls
