// SPDX-License-Identifier: MIT
// clsGFX_2D: the surface, its picture exchange, the pixel array and sessions.
//
//   1. Create and release
//   2. Pictures in and out
//   3. Block transfers
//   4. Header queries
//   5. Pixel array and drawing sessions
#include "gfx/clsGFX_2D.h"

#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "common/HostError.h"
#include "gfx/PictureDC.h"
#include "gfx/PixelMemory.h"

namespace kelvarin {

namespace {

std::uintptr_t NextHandle() noexcept {
    static std::uintptr_t last = 0;  // the user-interface thread only
    return ++last;
}

std::string UnknownRopText(const char* operation, std::uint32_t rop) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string hex = "0x00000000";
    for (int i = 0; i < 8; ++i) hex[9 - i] = kDigits[rop >> (4 * i) & 15];
    return std::string(operation) + ": unknown raster operation " + hex;
}

}  // namespace

// ---- 1. Create and release -------------------------------------------------

clsGFX_2D::~clsGFX_2D() { Release(); }

void clsGFX_2D::Release() noexcept {
    Draw_EndSession();
    bits_.reset();
    effects_.reset();  // particles, heat and heights belong to the old bitmap
}

bool clsGFX_2D::Create(Long lWidth, Long lHeight, Long BitPerPixels) {
    return Allocate(lWidth, lHeight, BitPerPixels, true);
}

bool clsGFX_2D::Allocate(Long lWidth, Long lHeight, Long BitPerPixels, bool zeroFill) {
    Release();
    width_ = lWidth;
    height_ = lHeight;
    bitsPerPixel_ = BitPerPixels;
    bytesPerPixel_ = BitPerPixels / 8;
    colorTable_.clear();
    if (BitPerPixels == 8) {
        colorTable_.resize(256);
        for (int i = 0; i < 256; ++i) {
            const auto v = static_cast<std::uint8_t>(i);
            colorTable_[static_cast<std::size_t>(i)] = RgbQuad{v, v, v, 0};
        }
    }

    const bool depthOk =
        BitPerPixels == 8 || BitPerPixels == 16 || BitPerPixels == 24 || BitPerPixels == 32;
    if (!depthOk || lWidth < 1 || lHeight < 1) return false;
    const std::int64_t stride = (std::int64_t{lWidth} * bytesPerPixel_ + 3) / 4 * 4;
    if (stride > kMaxSurfaceBytes / lHeight) {
        lastError_ = "Create: " + std::to_string(lWidth) + "x" + std::to_string(lHeight) + " at " +
                     std::to_string(BitPerPixels) + " bits is more than the " +
                     std::to_string(kMaxSurfaceBytes >> 20) + " MiB a surface may have";
        return false;
    }
    const std::int64_t bytes = stride * lHeight;
    const auto size = static_cast<std::size_t>(bytes);
    bits_ = gfx_detail::AcquirePixels(size, zeroFill);
    if (!bits_) return false;
    handle_ = NextHandle();
    viewport_ = ViewportRect{0, 0, lWidth - 1, lHeight - 1};
    return true;
}

void clsGFX_2D::AdoptSurface(clsGFX_2D& other) noexcept {
    Release();
    other.Draw_EndSession();
    width_ = other.width_;
    height_ = other.height_;
    bitsPerPixel_ = other.bitsPerPixel_;
    bytesPerPixel_ = other.bytesPerPixel_;
    colorTable_ = std::move(other.colorTable_);
    bits_ = std::move(other.bits_);
    handle_ = other.handle_;
    viewport_ = ViewportRect{0, 0, width_ - 1, height_ - 1};
    other.handle_ = 0;
}

// ---- 2. Pictures in and out --------------------------------------------------

bool clsGFX_2D::Create_FromPicture(const Picture* picThis, Long lngBackColorForTransparentIcon) {
    Release();
    if (picThis == nullptr || !picThis->HasHandle()) return false;
    switch (picThis->Type()) {
        case PictureType::Bitmap: {
            if (!Create(picThis->Width(), picThis->Height(), picThis->BitsPerPixel())) {
                return false;
            }
            const BitmapDC source(*picThis);
            if (bytesPerPixel_ == 1) {
                const auto table = source.ColorTable();
                for (std::size_t i = 0; i < table.size() && i < colorTable_.size(); ++i) {
                    colorTable_[i] = table[i];
                }
            }
            BitBlt_LoadPicture(&source, 0, 0, -1, -1, SRCCOPY);
            viewport_ = ViewportRect{0, 0, width_ - 1, height_ - 1};
            return true;
        }
        case PictureType::Icon: {
            // The icon's size is taken as twice its hot spot: right for
            // standard icons, whose hot spot is their centre.
            if (!Create(CheckedMul(2, picThis->HotSpotX()), CheckedMul(2, picThis->HotSpotY()),
                        24)) {
                return false;
            }
            if (lngBackColorForTransparentIcon >= 0) Color_Fill(lngBackColorForTransparentIcon);
            return DrawIcon(*this, 0, 0, *picThis);
        }
        case PictureType::None:
        case PictureType::Metafile:
        case PictureType::EnhancedMetafile: return false;
    }
    return false;
}

std::shared_ptr<Picture> clsGFX_2D::Get_Picture() {
    if (width_ < 1) {
        lastError_ = "Image has width=0";
        return nullptr;
    }
    if (bytesPerPixel_ != 3) {
        lastError_ = "Picture property is only for 24bit depth images";
        return nullptr;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    auto picture = Picture::MakeBitmap(width_, height_, 24);
    for (Long y = 0; y < rows.height; ++y) {
        const auto to = picture->Row(y);
        std::memcpy(to.data(), rows.Row(y), to.size());
    }
    return picture;
}

// ---- 3. Block transfers ----------------------------------------------------

bool clsGFX_2D::BitBlt_LoadPicture(const DeviceContext* lhDC, Long lSrcLeft, Long lSrcTop,
                                   Long lSrcWidth, Long lSrcHeight, std::uint32_t eRop) {
    return Transfer("BitBlt_LoadPicture", this, 0, 0, lSrcWidth, lSrcHeight, lhDC, lSrcLeft,
                    lSrcTop, eRop);
}

bool clsGFX_2D::BitBlt_PaintPicture(DeviceContext* lhDC, Long lDestLeft, Long lDestTop,
                                    Long lDestWidth, Long lDestHeight, Long lSrcLeft, Long lSrcTop,
                                    std::uint32_t eRop) {
    return Transfer("BitBlt_PaintPicture", lhDC, lDestLeft, lDestTop, lDestWidth, lDestHeight, this,
                    lSrcLeft, lSrcTop, eRop);
}

bool clsGFX_2D::Transfer(const char* operation, DeviceContext* dst, Long dstX, Long dstY,
                         Long width, Long height, const DeviceContext* src, Long srcX, Long srcY,
                         std::uint32_t rop) {
    if (!IsKnownRasterOp(rop)) {
        lastError_ = UnknownRopText(operation, rop);
        return false;
    }
    if (dst == nullptr || src == nullptr || !HasSurface()) return false;
    return BitBlt(*dst, dstX, dstY, width < 0 ? width_ : width, height < 0 ? height_ : height, src,
                  srcX, srcY, rop);
}

// ---- 4. Header queries -----------------------------------------------------

Long clsGFX_2D::Get_BytesPerScanLine() const {
    const std::int64_t stride = (std::int64_t{bytesPerPixel_} * width_ + 3) / 4 * 4;
    if (stride > INT32_MAX || stride < INT32_MIN) RaiseHostError(HostErrorCode::Overflow);
    return static_cast<Long>(stride);
}

std::uint8_t clsGFX_2D::Get_BytesPerPixel() const {
    if (bytesPerPixel_ < 0 || bytesPerPixel_ > 255) RaiseHostError(HostErrorCode::Overflow);
    return static_cast<std::uint8_t>(bytesPerPixel_);
}

const std::uint8_t* clsGFX_2D::ScanLine(int y) const {
    if (!HasSurface() || y < 0 || y >= height_) return nullptr;
    // Device coordinates count rows from the top; the memory is bottom-up.
    return bits_.get() + static_cast<std::ptrdiff_t>(height_ - 1 - y) * Get_BytesPerScanLine();
}

std::uint8_t* clsGFX_2D::WritableScanLine(int y) {
    return const_cast<std::uint8_t*>(std::as_const(*this).ScanLine(y));
}

// ---- 5. Pixel array and drawing sessions -------------------------------------

bool clsGFX_2D::Data_Get(PixelArray& TempArray) {
    if (sessionOpen_) return false;
    TempArray =
        HasSurface() ? PixelArray(bits_.get(), Get_BytesPerScanLine(), height_) : PixelArray();
    return true;
}

void clsGFX_2D::Draw_StartSession() {
    const Long stride = Get_BytesPerScanLine();
    lastColumn_ = IntDiv(CheckedSub(stride, 1), bytesPerPixel_);
    lastRow_ = CheckedSub(height_, 1);
    session_ = HasSurface() ? PixelArray(bits_.get(), stride, height_) : PixelArray();
    sessionOpen_ = true;
}

void clsGFX_2D::Draw_EndSession() noexcept {
    session_ = PixelArray();
    sessionOpen_ = false;
}

clsGFX_2D::ImageRows clsGFX_2D::SessionRows() const {
    ImageRows rows;
    if (width_ < 1 || height_ < 1) return rows;
    const std::int64_t rowBytes = std::int64_t{width_} * bytesPerPixel_;
    if (session_.Empty() || session_.Rows() < height_ || session_.BytesPerRow() < rowBytes) {
        RaiseHostError(HostErrorCode::SubscriptOutOfRange);
    }
    rows.base = session_.Data();
    rows.stride = session_.BytesPerRow();
    rows.width = width_;
    rows.height = height_;
    return rows;
}

bool clsGFX_2D::Require24(const char* message) {
    if (bytesPerPixel_ == 3) return true;
    lastError_ = message;
    return false;
}

}  // namespace kelvarin
