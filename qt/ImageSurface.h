// SPDX-License-Identifier: MIT
// The Qt host's drawing surface: a rectangle (the view) of a persistent
// 24-bit image (QImage::Format_BGR888: blue, green, red bytes, rows top
// down, each bytesPerLine() long). Fills, lines and pixels write the bytes
// directly, so they are exact; text goes through QPainter.
#pragma once

#include <QImage>
#include <QRect>

#include "host/Surface.h"
#include "qt/QtText.h"

namespace kelvarin::qt {

class ImageSurface : public host::Surface {
public:
    // The image and the text painter must outlive the surface; the image may
    // be replaced (resized) in place, after which SetView must be called.
    ImageSurface(QImage& image, TextPainter& text) : image_(image), text_(text) {}

    void SetView(const QRect& view) noexcept { view_ = view; }
    QRect View() const noexcept { return view_; }

    int Width() const override { return view_.width(); }
    int Height() const override { return view_.height(); }
    void FillRect(const host::Rect& rect, OLE_COLOR color) override;
    void SetPixel(host::Point p, OLE_COLOR color) override;
    OLE_COLOR GetPixel(host::Point p) const override;
    int DrawText(std::string_view text, host::Rect& rect, unsigned format, const Font& font,
                 OLE_COLOR color) override;
    host::Size MeasureText(std::string_view text, const Font& font) override;

    // ---- DeviceContext: the view's rows.
    int PixelWidth() const override { return Width(); }
    int PixelHeight() const override { return Height(); }
    int BitsPerPixel() const override { return 24; }
    const std::uint8_t* ScanLine(int y) const override;
    std::uint8_t* WritableScanLine(int y) override;

private:
    bool Inside(int x, int y) const noexcept;
    std::uint8_t* Pixel(int x, int y) noexcept;

    QImage& image_;
    TextPainter& text_;
    QRect view_;
};

// Copies `part` of a 24-bit image to the top-left of `shown`, which is made
// Qt's own 32-bit format and at least the part's size. Qt blends a 24-bit
// image through its general per-pixel path; this copy, drawn instead, is a
// plain copy for it, several times faster, with the same pixels.
void CopyForShowing(const QImage& image, const QRect& part, QImage& shown);

}  // namespace kelvarin::qt
