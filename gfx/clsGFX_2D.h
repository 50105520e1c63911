// SPDX-License-Identifier: MIT
// clsGFX_2D: the library's off-screen raster, a device-independent bitmap
// with direct access to its bytes, and the drawing and colour operations the
// controls prepare their pictures with.
//
// Layout: rows bottom-up (row 0 is the lowest row as shown, and every y
// below is a row index), each padded to 4 bytes; a 24-bit pixel (x, y) is
// bytes 3x, 3x+1, 3x+2 of row y holding blue, green, red. A colour value is
// 0x00BBGGRR: red = c AND 255, green = (c div 256) AND 255, blue =
// (c div 65536) AND 255, div truncating towards zero as the host does.
//
// Errors: an operation that cannot work returns false or nothing and leaves
// a text for Get_LastError; success never clears it. The host's runtime
// errors (HostError) come out where its arithmetic or array access would
// raise them: a pixel index outside the pixel array raises 9 after the bytes
// that fell inside were written, an overflowing coordinate 6.
//
// Sections (and their sources): surface, picture exchange and pixel array
// (Surface.cpp); drawing (Draw.cpp); transforms (Transform.cpp); colour
// (Color.cpp); filters (Filter.cpp); effects (Effect.cpp).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "common/Numeric.h"
#include "common/Picture.h"
#include "gfx/DeviceContext.h"
#include "gfx/PixelArray.h"
#include "gfx/PixelMemory.h"

namespace kelvarin {

class clsGFX_2D final : public DeviceContext {
public:
    struct PointD {
        double x = 0;
        double y = 0;
    };
    struct ViewportRect {
        Long Xmin = 0, Ymin = 0, Xmax = 0, Ymax = 0;
    };
    using Histogram = std::array<Long, 256>;

    clsGFX_2D() = default;
    ~clsGFX_2D() override;
    clsGFX_2D(const clsGFX_2D&) = delete;
    clsGFX_2D& operator=(const clsGFX_2D&) = delete;

    // ---- Surface and picture exchange ----------------------------------------

    // Pixel memory a surface may have: whatever a file, a script or a caller
    // asks for, no surface takes more. The same bound as a picture's, so
    // that every surface can become one.
    static constexpr std::int64_t kMaxSurfaceBytes = Picture::kMaxPixelBytes;

    // A new zero-filled surface of 8, 16, 24 or 32 bits per pixel; anything
    // else or a size below 1 gives false and no surface (the header keeps
    // what was asked, as Get_Width shows); more than kMaxSurfaceBytes also
    // leaves a last-error text saying so.
    bool Create(Long lWidth, Long lHeight, Long BitPerPixels = 24);
    // A bitmap keeps its own depth and colour table. An icon gives a 24-bit
    // surface of twice its hot spot (its centre for a standard icon), filled
    // with lngBackColorForTransparentIcon first when that is 0 or more.
    bool Create_FromPicture(const Picture* picThis, Long lngBackColorForTransparentIcon = -1);
    // From lhDC at (lSrcLeft, lSrcTop), top-down coordinates, to this
    // surface at (0, 0); a negative size stands for the surface's.
    bool BitBlt_LoadPicture(const DeviceContext* lhDC, Long lSrcLeft = 0, Long lSrcTop = 0,
                            Long lSrcWidth = -1, Long lSrcHeight = -1,
                            std::uint32_t eRop = SRCCOPY);
    // From this surface at (lSrcLeft, lSrcTop) to lhDC at (lDestLeft, lDestTop).
    bool BitBlt_PaintPicture(DeviceContext* lhDC, Long lDestLeft = 0, Long lDestTop = 0,
                             Long lDestWidth = -1, Long lDestHeight = -1, Long lSrcLeft = 0,
                             Long lSrcTop = 0, std::uint32_t eRop = SRCCOPY);

    Long Get_BytesPerScanLine() const;
    Long Get_Width() const noexcept { return width_; }
    Long Get_Height() const noexcept { return height_; }
    // The surface as a device context; null when there is no surface.
    DeviceContext* Get_hDC() noexcept { return HasSurface() ? this : nullptr; }
    // A handle that names the current bitmap (a new one per Create); 0 when none.
    std::uintptr_t Get_hDIB() const noexcept { return HasSurface() ? handle_ : 0; }
    std::uint8_t* Get_ptrDIBSection() const noexcept { return bits_.get(); }
    std::uint8_t Get_BytesPerPixel() const;
    const std::string& Get_LastError() const noexcept { return lastError_; }
    // An independent 24-bit bitmap copy; null, with a last-error text, for an
    // empty or other-depth surface.
    std::shared_ptr<Picture> Get_Picture();

    // Points TempArray at the pixel memory; false, TempArray untouched,
    // while a drawing session is open.
    bool Data_Get(PixelArray& TempArray);
    void Data_Release(PixelArray& TempArray) noexcept { TempArray = PixelArray(); }

    void Draw_StartSession();
    void Draw_EndSession() noexcept;
    bool SessionOpen() const noexcept { return sessionOpen_; }
    // Where loops over the session end: (bytes per scan line - 1) div bytes
    // per pixel, which reaches into the row padding when there is any.
    Long LastColumnIndex() const noexcept { return lastColumn_; }
    Long LastRowIndex() const noexcept { return lastRow_; }

    // ---- Drawing: inside a session -------------------------------------------

    void Draw_SetViewport(Long lngXmin = 0, Long lngYmin = 0, Long lngXmax = -1, Long lngYmax = -1);
    ViewportRect Viewport() const noexcept { return viewport_; }
    void Draw_Clear();
    void Draw_RandomBits(bool bGray);
    void Draw_Pixel(Long X, Long Y, Long c);
    void Draw_Pixel_C(Long X, Long Y, Long c);
    // RGBbyte: red, green, blue.
    void Draw_PixelRGB(Long X, Long Y, const std::array<std::uint8_t, 3>& RGBbyte);
    void Draw_PixelRGB_C(Long X, Long Y, const std::array<std::uint8_t, 3>& RGBbyte);
    Long Draw_ReadPixel(Long X, Long Y) const;
    void Draw_ReadPixelRGB(Long X, Long Y, std::array<std::uint8_t, 3>& RGBbyte);
    void Draw_Line(Long x1, Long y1, Long x2, Long y2, Long c);
    void Draw_Line_C(Long x1, Long y1, Long x2, Long y2, Long c);
    void Draw_Bezier(PointD start, PointD control1, PointD control2, PointD end, Long c,
                     Long lngMaxRecursive);
    void Draw_Bezier_C(PointD start, PointD control1, PointD control2, PointD end, Long c,
                       Long lngMaxRecursive);
    void Draw_Circle(Long x1, Long y1, Long r, Long c);
    void Draw_Circle_C(Long x1, Long y1, Long r, Long c);

    // ---- Transforms: whole image, own session unless one is open -------------

    // Mirror left-right and top-bottom, moving whole pixels at any depth and
    // never the row padding; "Width=0" below one column.
    void Image_FlipX();
    void Image_FlipY();
    // Bilinear resize of a 24-bit image; a size Create refuses gives false
    // with its text and leaves the image as it was. The surface is made anew (a new
    // bitmap handle; a session the caller had open is reopened on it). A
    // width or height of 1 raises Division by zero (11) once the new
    // surface exists.
    bool Image_Resample(Long lNewWidth, Long lNewHeight);
    // A quarter turn counter-clockwise as shown, at any depth; square only.
    bool Image_Rotate();

    // ---- Colour: whole image, own session unless one is open -----------------
    // Those limited to 24 bits return false and set the last error elsewhere.

    void Color_Fill(Long lngColor);
    bool Color_Invert(bool blnRed = true, bool blnGreen = true, bool blnBlue = true);
    bool Color_Gray(Long lngMaskColor, bool blnStdAverageCalc);
    void Color_Replace(Long lngOriginal, Long lngReplace);
    bool Color_FadeTo(Long lngMaskColor, Long lngFadeTo, double dblFadeWeight);
    bool Color_Halftone_ErrorDiffusion(bool blnColor);
    bool Color_Halftone_Dithering(bool blnColor);
    bool Color_Colourise(std::uint8_t bytHue, std::uint8_t bytSaturation);
    // 0 red, 1 green, 2 blue, 4 hue, 8 saturation, 16 luminance.
    bool Color_ChannelComponent(Long lngChannel);
    // Counts of the red (lngIstogram1), green and blue bytes. lngResult gets
    // the largest count of the histogram chosen by lngSelector (0 red,
    // 1 green, 2 blue; any other value: of all three).
    bool Color_GetIstogram(Long lngSelector, Histogram& lngIstogram1, Histogram& lngIstogram2,
                           Histogram& lngIstogram3, Long& lngResult);
    // Channels as Color_ChannelComponent; 4, 8 and 16 convert the image to
    // hue, saturation, luminance first and leave it so.
    bool Color_EqualizeIstogram(Long lngChannel);
    // Hue into the red byte, saturation into green, luminance into blue.
    bool Color_ConvertRGBToHSL();
    bool Color_ConvertHSLToRGB();
    // Hue, saturation and luminance on a 0-255 scale; the luminance is the
    // weighted sum 0.3 red + 0.59 green + 0.11 blue.
    static void GFX2D_conv_cRGB_cHLS(std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                                     Single& hue, Single& saturation, Single& luminance);
    static void GFX2D_conv_cHLS_cRGB(Single hue, Single saturation, Single luminance,
                                     std::uint8_t& red, std::uint8_t& green, std::uint8_t& blue);

    // ---- Filters: 24 bits, own session unless one is open -------------------

    // Stores an odd n x n kernel (n up to 9) with a non-zero divisor.
    // lngMatrix holds the rows one after the other, the first row being the
    // offset -n div 2 (the lower row in memory); each row runs from the
    // left. Fewer than n * n values raise Subscript out of range (9).
    bool Filter_StandardFilterSetCustom(Long lngMatrixSize, std::span<const Long> lngMatrix,
                                        Long lngWeight);
    // Convolves the interior with the stored kernel (-1) or built-in kernel
    // 0-8, which then becomes the stored one, adding the low three bytes of
    // lngAddColor per channel. With no kernel ever stored, type -1 raises
    // Subscript out of range (9) as it reaches the kernel. A kernel whose
    // sums leave 32 bits raises Overflow (6) where they do.
    void Filter_StandardFilter(Long lngFilterType = -1, Long lngAddColor = 0);
    void Filter_EdgeDetection();
    // A 3 x 3 median in place (or, with blnLinePreserve, the line-keeping
    // rule of Filter.cpp) inside a frame two pixels wide.
    void Filter_Smoothing(bool blnLinePreserve = false);

    // ---- Effects: 24 bits, own session unless one is open -------------------
    // Animated effects, one step a call. Each keeps its state (particles,
    // streams, heat, water heights) with the surface until the next Create.
    // Their randomness comes from the surface's one generator, the ring that
    // Draw_RandomBits reads, so after Effect_Seed the frames repeat exactly.
    // Where an effect takes an Original, it is a 24-bit picture of this
    // surface's size that the effect is drawn over ("Original must have
    // identical size of this" otherwise); this surface itself stands for none.
    // On an empty surface the effects set "Image has width=0".

    // Fills the generator's ring afresh from lngSeed and starts reading it
    // from its first entry.
    void Effect_Seed(Long lngSeed);
    // The Euclidean distance between two points rounded down to a whole
    // pixel: the exact integer square root of dx^2 + dy^2, no table. A
    // distance beyond a Long raises Overflow (6). Water drops take their
    // shape from it.
    static Long Effect_CalculateDist(Long X1, Long Y1, Long X2, Long Y2);

    // Adds lngCount particles at (X, Y), each moving (VX, VY) pixels a step
    // plus a random push of up to sngSpread pixels a step in a random
    // direction, in colour lngColor, for lngLife steps. The pool holds at
    // most kMaxParticles: dead particles' places are reused, and what does
    // not fit is refused (false, "Effect_ParticleAdd: the pool is full").
    bool Effect_ParticleAdd(Single X, Single Y, Single VX, Single VY, Long lngColor, Long lngLife,
                            Long lngCount = 1, Single sngSpread = 0);
    // One step: the picture first fades half way back to Original (black
    // without one), which leaves short trails; then every particle falls by
    // sngGravity (pixels a step per step, towards row 0), loses the fraction
    // sngDrag (0 to 1) of its speed, moves, ages, and is added onto the
    // surface, a dot with a halo, in its colour scaled by the life it has
    // left. A particle that dies or leaves through the sides or the bottom
    // frees its place; one above the top is kept, unseen, while it lives.
    bool Effect_Particle(Single sngGravity = 0.05f, Single sngDrag = 0.01f,
                         const clsGFX_2D* Original = nullptr);
    // How many particles live.
    Long Get_ParticleCount() const noexcept;
    static constexpr Long kMaxParticles = 65536;

    // Starts a stream of glyphs falling down glyph column lngColumn (cells of
    // kGlyphCellWidth x kGlyphCellHeight from the top left; -1 picks one at
    // random) at sngSpeed glyph rows a step (0 or less: a random speed from
    // 0.15 to 0.6), its trail in lngColor. At most kMaxStreams fall at once
    // ("Effect_MatrixAdd: too many streams" beyond).
    bool Effect_MatrixAdd(Long lngColumn = -1, Single sngSpeed = 0, Long lngColor = 0x0046FF00);
    // One step of the rain: the picture fades towards Original (black
    // without one) by lngFade 256ths (1 to 256: smaller leaves longer
    // trails); each stream falls, and the glyph at its head, from the
    // built-in font, is drawn near white and changes at random while the
    // head is in its cell; once the head moves on, that glyph stays in the
    // stream's colour, at a random brightness, and fades with the picture.
    // A stream whose head has left the bottom ends.
    bool Effect_Matrix(Long lngFade = 16, const clsGFX_2D* Original = nullptr);
    static constexpr Long kGlyphCellWidth = 12;
    static constexpr Long kGlyphCellHeight = 16;
    static constexpr Long kMaxStreams = 4096;

    // Seeds the fire's hot rows. The fire is a heat field, the true fire,
    // that the surface shows through a palette; it reaches two rows below the
    // surface, and those are the hot rows: each of their cells gets lngHeat
    // (0 to 255) or none, in random runs of 1 to 8 cells, so that the flames
    // flicker. With Mask (24 bits), every pixel of it that is not black
    // burns at lngHeat too ("True Fire must have identical size of Mask"
    // when the sizes differ).
    bool Effect_FireTest(Long lngHeat = 255, const clsGFX_2D* Mask = nullptr);
    // One step of the fire: every heat cell above the hot rows becomes
    // the sum of the four below it (left, under and right in the row below,
    // under in the row below that) less lngCooling (0 to 1020), divided by 4
    // and at least 0, so the heat rises, spreads and dies away: each 4 of
    // lngCooling take one step of heat a row. The surface then shows the
    // heat through the fire palette, black through red, orange and yellow to
    // white. With Original, the palette colour is added onto the picture
    // instead, so that cold air shows the picture as it is.
    bool Effect_Fire(Long lngCooling = 4, const clsGFX_2D* Original = nullptr);

    // One step of the water, a height per pixel kept in two buffers (this
    // step and the one before). A drop of radius lngRadius (none when 0 or
    // less) and depth lngDepth (heights are kept within +-8191) goes in at
    // (X, Y) first, its height falling off linearly with Effect_CalculateDist
    // from the centre. Then each height becomes half the sum of its four
    // neighbours (halved towards zero, so that troughs and crests fare
    // alike) less its value of the step before, and loses 1/2^lngDamping
    // of itself (1 to 15), rounded away from zero so that every ripple comes
    // to rest. The surface shows Original (without one: the picture the
    // surface held when the water was last at rest) displaced by the slope
    // of the water and lit by it.
    bool Effect_Water(Long X = 0, Long Y = 0, Long lngRadius = 0, Long lngDepth = 0,
                      Long lngDamping = 5, const clsGFX_2D* Original = nullptr);

    // ---- DeviceContext -------------------------------------------------------

    int PixelWidth() const override { return HasSurface() ? width_ : 0; }
    int PixelHeight() const override { return HasSurface() ? height_ : 0; }
    int BitsPerPixel() const override { return bitsPerPixel_; }
    const std::uint8_t* ScanLine(int y) const override;
    std::uint8_t* WritableScanLine(int y) override;
    std::span<const RgbQuad> ColorTable() const override { return colorTable_; }

private:
    // Opens a session for one operation unless the caller has one open.
    class SessionScope {
    public:
        explicit SessionScope(clsGFX_2D& gfx) : gfx_(gfx), opened_(!gfx.sessionOpen_) {
            if (opened_) gfx_.Draw_StartSession();
        }
        ~SessionScope() {
            if (opened_) gfx_.Draw_EndSession();
        }
        SessionScope(const SessionScope&) = delete;
        SessionScope& operator=(const SessionScope&) = delete;

    private:
        clsGFX_2D& gfx_;
        bool opened_;
    };

    // Rows 0..height-1 of the session array with the pixel bytes of columns
    // 0..width-1 in each; a session array that does not hold them raises 9,
    // as the first access outside it would.
    struct ImageRows {
        std::uint8_t* base = nullptr;
        std::ptrdiff_t stride = 0;
        Long width = 0;
        Long height = 0;
        std::uint8_t* Row(Long y) const { return base + y * stride; }
    };

    bool HasSurface() const noexcept { return bits_ != nullptr; }
    void Release() noexcept;
    // Create without the zero fill, for operations that write every byte.
    bool Allocate(Long lWidth, Long lHeight, Long BitPerPixels, bool zeroFill);
    // Takes over other's surface as Create would leave it; other is emptied.
    void AdoptSurface(clsGFX_2D& other) noexcept;
    // Both block transfers, one end being this surface: an unknown operation
    // is reported under the operation's name; a missing context or surface
    // copies nothing; a negative size stands for the surface's.
    bool Transfer(const char* operation, DeviceContext* dst, Long dstX, Long dstY, Long width,
                  Long height, const DeviceContext* src, Long srcX, Long srcY, std::uint32_t rop);
    void StoreKernel(Long size, std::span<const Long> values, Long weight);
    ImageRows SessionRows() const;
    bool Require24(const char* message);
    // The halftones: 24 bits only, and grey by luminance first unless in colour.
    bool Halftone(bool color, void (*method)(ImageRows));
    // The colour operations that change each pixel by itself (Color.cpp):
    // false with message below 24 bits, else visit(p) for every pixel's
    // bytes after rowKernel(row, width) did as many as it returns from the
    // row's start (a vector kernel giving the same bytes, or none).
    template <typename Visit, typename RowKernel>
    bool ForEachPixel24(const char* message, Visit visit, RowKernel rowKernel);
    void PutPixelChecked(Long X, Long Y, Long c);
    float NextRandom();
    template <int kBytes>
    void LineUnchecked(Long x1, Long y1, Long x2, Long y2, Long c);
    void LineChecked(Long x1, Long y1, Long x2, Long y2, Long c);
    void Bezier(PointD s, PointD c1, PointD c2, PointD e, Long c, Long depth, bool clipped);

    // The effects' state, made on first use (Effect.cpp).
    struct EffectState;
    struct EffectStateDelete {
        void operator()(EffectState* state) const noexcept;
    };
    EffectState& Effects();
    // The session's rows for an effect, after the checks every effect makes:
    // a surface, 24 bits (else message), and an Original that fits.
    bool EffectCheck(const char* message, const clsGFX_2D* Original);

    // Header of the current bitmap, as last asked for by Create.
    Long width_ = 0;
    Long height_ = 0;
    Long bitsPerPixel_ = 0;
    Long bytesPerPixel_ = 0;
    std::vector<RgbQuad> colorTable_;  // 8 bits only

    gfx_detail::PixelBuffer bits_;
    std::uintptr_t handle_ = 0;

    bool sessionOpen_ = false;
    PixelArray session_;
    Long lastColumn_ = 0;
    Long lastRow_ = 0;

    std::string lastError_;
    ViewportRect viewport_;
    static constexpr int kRandomRingSize = 7002;
    std::vector<float> randomRing_;
    Long randomIndex_ = -1;

    // The convolution kernel: kernelSize_ x kernelSize_ values, row offset
    // -half first; size 0 until one is stored.
    Long kernelSize_ = 0;
    Long kernelWeight_ = 0;
    std::vector<Long> kernel_;

    std::unique_ptr<EffectState, EffectStateDelete> effects_;
};

}  // namespace kelvarin
