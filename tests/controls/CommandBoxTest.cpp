// SPDX-License-Identifier: MIT
// Layout, keys, hover, access keys and persistence run end to end in the
// commandbox_*.khs scripts; here, the pixels where edge lines meet, the
// bytes of the three picture looks, the unit factor's failures and the
// order the store sees.
#include "controls/commandbox/CommandBox.h"

#include <gtest/gtest.h>

#include "host/Site.h"
#include "host/headless/HeadlessHost.h"
#include "tests/ErrorOf.h"

namespace kelvarin::controls {
namespace {

using kelvarin::test::ErrorOf;

class CommandBoxTest : public ::testing::Test {
protected:
    CommandBox& Make(int width, int height) {
        auto box = std::make_unique<CommandBox>();
        CommandBox& b = *box;
        placed_ = &host_.Add("b" + std::to_string(++count_), std::move(box), {width, height});
        host::PlaceNew(b, *placed_);
        return b;
    }
    OLE_COLOR At(int x, int y) { return placed_->Pixels().Get(x, y); }

    host::headless::HeadlessHost host_;
    host::headless::Placed* placed_ = nullptr;
    int count_ = 0;
};

// The colours of the default light theme.
constexpr OLE_COLOR kFace = 0xF0F0F0, kHighlight = 0xFFFFFF, kLight = 0xE3E3E3, kShadow = 0xA0A0A0,
                    kDark = 0x696969, kBlack = 0, kInverted = 0x0F0F0F;

// Lines stop before their end point and boxes include both corners, so the
// corners tell which line was drawn last and how far each reached.
TEST_F(CommandBoxTest, EdgesMeetAtTheirCornersAsTheLinesAreDrawn) {
    struct Pixel {
        int x, y;
        OLE_COLOR color;
    };
    struct Case {
        const char* name;
        Long style;
        bool pressed, focused;
        std::vector<Pixel> pixels;
    };
    const Case cases[] = {
        {"standard raised",
         CommandBox::kStandard,
         false,
         false,
         {{0, 0, kHighlight},
          {73, 0, kHighlight},
          {74, 0, kDark},
          {0, 21, kHighlight},
          {0, 22, kDark},
          {74, 22, kDark},
          {1, 1, kLight},
          {71, 1, kLight},
          {72, 1, kFace},
          {1, 20, kLight},
          {1, 21, kShadow},
          {72, 21, kShadow},
          {73, 1, kShadow},
          {73, 21, kShadow},
          {2, 2, kFace}}},
        {"standard pressed: one shadow box",
         CommandBox::kStandard,
         true,
         false,
         {{0, 0, kShadow},
          {74, 0, kShadow},
          {0, 22, kShadow},
          {74, 22, kShadow},
          {1, 1, kFace},
          {73, 21, kFace}}},
        {"standard focused: default frame outside, focus rectangle inside",
         CommandBox::kStandard,
         false,
         true,
         {{0, 0, kBlack},
          {74, 22, kBlack},
          {1, 1, kHighlight},
          {73, 1, kDark},
          {1, 21, kDark},
          {2, 2, kLight},
          {3, 3, kInverted},
          {4, 3, kFace},
          {71, 19, kInverted},
          {72, 20, kShadow}}},
        {"double border raised: inner button in a sunken well",
         CommandBox::kDoubleBorder,
         false,
         false,
         {{0, 0, kShadow},
          {74, 0, kHighlight},
          {0, 22, kHighlight},
          {1, 1, kDark},
          {72, 1, kDark},
          {73, 1, kLight},
          {1, 21, kLight},
          {73, 21, kLight},
          {2, 2, kHighlight},
          {72, 2, kDark},
          {2, 20, kDark},
          {71, 19, kShadow},
          {3, 3, kLight}}},
        {"double border pressed keeps its well",
         CommandBox::kDoubleBorder,
         true,
         false,
         {{0, 0, kShadow}, {1, 1, kDark}, {2, 2, kShadow}, {72, 20, kShadow}, {3, 3, kFace}}},
        {"double border focused: frame between well and button",
         CommandBox::kDoubleBorder,
         false,
         true,
         {{0, 0, kShadow},
          {1, 1, kDark},
          {2, 2, kBlack},
          {72, 20, kBlack},
          {3, 3, kHighlight},
          {5, 5, kInverted},
          {6, 5, kFace},
          {69, 17, kInverted}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CommandBox& b = Make(75, 23);
        b.SetText("");
        if (c.focused) {
            ASSERT_TRUE(host_.SetFocus(placed_));
        }
        b.SetStyle(c.style);
        if (c.pressed) b.MouseDown(1, 0, 5, 5);
        for (const Pixel& p : c.pixels)
            EXPECT_EQ(At(p.x, p.y), p.color) << "at " << p.x << "," << p.y;
    }
}

// A 4 x 1 picture: red, blue, the face colour and magenta.
std::shared_ptr<Picture> Swatch() {
    auto picture = Picture::MakeBitmap(4, 1, 24);
    const std::uint8_t bgr[] = {30, 30, 200, 220, 40, 20, 240, 240, 240, 255, 0, 255};
    std::copy(std::begin(bgr), std::end(bgr), picture->Row(0).begin());
    return picture;
}

// Grey is the weighted luminance rounded half to even; disabled is that
// grey faded half-way to the face. Face-coloured pixels are left alone,
// and with the mask on the mask colour becomes the face in every look.
TEST_F(CommandBoxTest, PicturesShowInFullColourGreyAndFadedWithTheirMask) {
    CommandBox& b = Make(40, 20);
    b.SetText("");
    b.SetAlignPicture(CommandBox::kCenterAlign);  // at (18, 9)
    b.SetPicture(Swatch());
    const auto row = [&] {
        return std::vector<OLE_COLOR>{At(18, 9), At(19, 9), At(20, 9), At(21, 9)};
    };
    using Row = std::vector<OLE_COLOR>;
    EXPECT_EQ(row(), (Row{RGB(200, 30, 30), RGB(20, 40, 220), kFace, RGB(255, 0, 255)}));
    b.SetHighLighted(true);
    EXPECT_EQ(row(), (Row{0x444444, 0x303030, kFace, 0x4B4B4B}));  // 68, 48, face, 75
    b.SetEnabled(false);
    EXPECT_EQ(row(), (Row{0x9A9A9A, 0x909090, kFace, 0x9D9D9D}));  // (g + 240) div 2
    b.SetUseMaskColor(true);
    EXPECT_EQ(row(), (Row{0x9A9A9A, 0x909090, kFace, kFace}));
    b.SetEnabled(true);
    b.SetHighLighted(false);
    EXPECT_EQ(row(), (Row{RGB(200, 30, 30), RGB(20, 40, 220), kFace, kFace}));
    // The prepared pictures change only with the picture, colours or mask.
    const clsGFX_2D* prepared = b.PreparedPicture(0);
    b.SetHighLighted(true);
    b.MouseDown(1, 0, 1, 1);
    EXPECT_EQ(b.PreparedPicture(0), prepared);
    b.SetMaskColor(RGB(1, 2, 3));
    EXPECT_NE(b.PreparedPicture(0), prepared);
}

// F is container units per pixel, rounded: below 0.5 a write divides by
// zero and stores nothing; a value too large to publish overflows.
TEST_F(CommandBoxTest, InterleaveFailsInCoarseContainersAndOnOverflow) {
    host_.unitsPerPixel = 1.0 / 96;  // inches
    CommandBox& inches = Make(75, 23);
    EXPECT_EQ(inches.Interleave(), 0);
    EXPECT_EQ(ErrorOf([&] { inches.SetInterleave(1); }), 11);
    EXPECT_EQ(inches.InterleavePixels(), CommandBox::kDefaultInterleave);

    host_.unitsPerPixel = 1;
    CommandBox& pixels = Make(75, 23);
    EXPECT_EQ(ErrorOf([&] { pixels.SetInterleave(2147483647); }), 6);  // stored, then laid out
    EXPECT_EQ(pixels.InterleavePixels(), 2147483647);
    host_.unitsPerPixel = 15;
    EXPECT_EQ(ErrorOf([&] { (void)pixels.Interleave(); }), 6);
    // Found by fuzzing: an interleave that leaves the caption's rectangle
    // wider than an int could measure overflowed silently in the text layout.
    host_.unitsPerPixel = 1;
    CommandBox& wide = Make(75, 23);
    EXPECT_EQ(ErrorOf([&] { wide.SetInterleave(1549305890); }), 6);
    EXPECT_EQ(wide.InterleavePixels(), 1549305890);
}

// Records each write: the store keeps only the last value of a name.
class WriteLog : public host::MemoryPropertyBag {
public:
    std::vector<std::string> names;
    void WriteProperty(std::string_view name, const Variant& value, const Variant& def) override {
        names.emplace_back(name);
        MemoryPropertyBag::WriteProperty(name, value, def);
    }
};

TEST_F(CommandBoxTest, MaskColorIsStoredTwiceAndFeedsBothOnLoad) {
    CommandBox& b = Make(75, 23);
    b.SetMaskColor(RGB(0, 255, 0));
    WriteLog log;
    b.WriteProperties(log);
    const std::vector<std::string> order = {
        "BackColor",     "ForeColor",    "Enabled",      "Font",        "MaskColor",
        "MouseIcon",     "MousePointer", "OLEDropMode",  "Picture",     "RightToLeft",
        "Alignment",     "AlignPicture", "Interleave",   "Text",        "Style",
        "ShowFocusRect", "MaskColor",    "UseMaskColor", "HighLighted", "ForeColorHighLighted"};
    EXPECT_EQ(log.names, order);
    // The button's own mask colour, written last, is the one kept; the
    // caption equal to the control's name is left out.
    EXPECT_EQ(log.ReadProperty("MaskColor", Variant()).ToLong(), RGB(0, 255, 0));
    EXPECT_TRUE(log.ReadProperty("Text", Variant()).IsEmpty());

    auto loaded = std::make_unique<CommandBox>();
    CommandBox& c = *loaded;
    placed_ = &host_.Add("loaded", std::move(loaded), {75, 23});
    host::PlaceLoaded(c, log, *placed_);
    EXPECT_EQ(c.MaskColor(), RGB(0, 255, 0));
    EXPECT_EQ(c.SurfaceState().maskColor, RGB(0, 255, 0));
    EXPECT_EQ(c.Text(), "loaded");  // the default is the new control's name
}

}  // namespace
}  // namespace kelvarin::controls
