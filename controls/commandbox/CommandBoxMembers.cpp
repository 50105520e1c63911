// SPDX-License-Identifier: MIT
// CommandBox's member table, the order its properties are stored in, and
// its property reader and writer.
#include "controls/commandbox/CommandBox.h"
#include "host/PropertyBag.h"

namespace kelvarin::controls {

using namespace host::rows;
using CB = CommandBox;

host::MemberTable CommandBox::Table() {
    static const host::Member rows[] = {
        Property(kBackColor, "BackColor", Id(0x68030037), AsColor)
            .Get<&CB::BackColor>()
            .Let<&CB::SetBackColor>()
            .Persist(Color(kSysButtonFace),
                     [](CB& c, OLE_COLOR v) {
                         c.SurfaceState().backColor = v;
                         c.pictureBackColor_ = v;
                     })
            .Help("Set or retrieve the background color of the object"),
        Property(kForeColor, "ForeColor", Id(0x68030036), AsColor)
            .Get<&CB::ForeColor>()
            .Let<&CB::SetForeColor>()
            .Persist(Color(kSysButtonText),
                     [](CB& c, OLE_COLOR v) { c.SurfaceState().foreColor = v; })
            .Help("Set or retrieve the color used to draw text in the control"),
        Property(kEnabled, "Enabled", Id(0x68030035), AsBoolean)
            .Get<&CB::Enabled>()
            .Let<&CB::SetEnabled>()
            .Persist(true, [](CB& c, bool v) { c.SurfaceState().enabled = v; })
            .Help("Set or retrieve a value which indicates if the object is allowed to answer to "
                  "systen events"),
        Property(kFont, "Font", host::DISPID_FONT, AsFont)
            .Get<&CB::GetFont>()
            .Set<&CB::SetFont>()
            .Persist({}, [](CB& c, std::shared_ptr<Font> v) { c.SurfaceState().font = v; })
            .Help("Set or retrieve the font object of the control"),
        Method<&CB::Refresh>(kRefresh, "Refresh", Id(0x60030049), AsVoid)
            .Help("Ridisegna completamente un oggetto."),
        // Read through the public setter, which also notifies.
        Property(kMouseIcon, "MouseIcon", Id(0x68030034), AsPicture)
            .Get<&CB::MouseIcon>()
            .Set<&CB::SetMouseIcon>()
            .Persist(Variant::Nothing(),
                     [](CB& c, std::shared_ptr<Object> v) { c.SetMouseIcon(std::move(v)); })
            .Help("Imposta un'icona personalizzata per il puntatore del mouse."),
        Property(kMousePointer, "MousePointer", Id(0x68030033), AsInteger)
            .Get<&CB::MousePointer>()
            .Let<&CB::SetMousePointer>()
            .Persist(Integer(0), [](CB& c, Integer v) { c.SurfaceState().mousePointer = v; })
            .Help("Set or retrieve mouse pointer style when the mouse in on the object"),
        Property(kOLEDropMode, "OLEDropMode", Id(0x68030032), AsInteger)
            .Get<&CB::OLEDropMode>()
            .Let<&CB::SetOLEDropMode>()
            .Persist(Integer(0), [](CB& c, Integer v) { c.SurfaceState().oleDropMode = v; })
            .Help("Restituisce o imposta un valore che indica se l'oggetto pu\u00F2 fungere da "
                  "destinazione di rilascio per il trascinamento OLE."),
        // The picture holder is painted on the control's back colour.
        Property(kPicture, "Picture", Id(0x68030031), AsPicture)
            .Get<&CB::GetPicture>()
            .Set<&CB::SetPicture>()
            .Persist(Variant::Nothing(),
                     [](CB& c, std::shared_ptr<Picture> v) {
                         c.picture_ = std::move(v);
                         c.pictureBackColor_ = c.BackColor();
                     })
            .Help("Set or retrieve a graphical element for the control"),
        Property(kRightToLeft, "RightToLeft", Id(0x68030030), AsBoolean)
            .Get<&CB::RightToLeft>()
            .Let<&CB::SetRightToLeft>()
            .Persist(false, [](CB& c, bool v) { c.SurfaceState().rightToLeft = v; })
            .Help("Determina la direzione di visualizzazione del testo e l'aspetto del controllo "
                  "in un sistema bidirezionale."),
        Property(kAlignment, "Alignment", Id(0x6803002F), Enum("eAlignmentText"))
            .Get<&CB::Alignment>()
            .Let<&CB::SetAlignment>()
            .Persist(Long(host::kCenter), [](CB& c, Long v) { c.alignment_ = v; })
            .Help("Set or retrieve the text alignment"),
        Property(kAlignPicture, "AlignPicture", Id(0x6803002E), Enum("eAlignPicture"))
            .Get<&CB::GetAlignPicture>()
            .Let<&CB::SetAlignPicture>()
            .Persist(Long(kLeftAlign), [](CB& c, Long v) { c.alignPicture_ = v; })
            .Help("Set or retrieve the picture alignment"),
        // Published in the container's units, stored in pixels as they are.
        Property(kInterleave, "Interleave", Id(0x6803002D), AsLong)
            .Get<&CB::Interleave>()
            .Let<&CB::SetInterleave>()
            .Persist(kDefaultInterleave, [](CB& c, Long v) { c.interleave_ = v; })
            .SaveVia<&CB::InterleavePixels>()
            .Help("Set or retrieve the distance between control border and object, and between "
                  "text and picture"),
        // A new button shows its own name.
        Property(kText, "Text", Id(0x6803002C), AsString)
            .Get<&CB::Text>()
            .Let<&CB::SetText>()
            .Persist({}, [](CB& c, std::string v) { c.text_ = std::move(v); })
            .DefaultFrom([](host::Control& c) { return Variant(c.Site().ExtenderName()); })
            .Help("Set or retrieve the text of the control"),
        // Lower case in the interface; stored and notified as "Style".
        Property(kStyle, "style", Id(0x6803002B), Enum("eStyle"))
            .Get<&CB::GetStyle>()
            .Let<&CB::SetStyle>()
            .PersistAs("Style", Long(kDoubleBorder), [](CB& c, Long v) { c.style_ = v; })
            .Help("Set or retrieve the style of the control"),
        Property(kShowFocusRect, "ShowFocusRect", Id(0x6803002A), AsBoolean)
            .Get<&CB::ShowFocusRect>()
            .Let<&CB::SetShowFocusRect>()
            .Persist(true, [](CB& c, bool v) { c.showFocusRect_ = v; })
            .Help("Set or retrieve the value which determinates if the focus rect is drawn or "
                  "not"),
        Property(kHWnd, "hWnd", Id(0x68030029), AsLong)
            .Get<&CB::HWnd>()
            .Help("Retrieve control handle")
            .Hidden(),
        Property(kMaskColor, "MaskColor", Id(0x68030028), AsColor)
            .Get<&CB::MaskColor>()
            .Let<&CB::SetMaskColor>()
            .Persist(Color(kDefaultMaskColor), [](CB& c, OLE_COLOR v) { c.maskColor_ = v; })
            .Help("Set or retrieve the color which will be treated as trasparent"),
        Property(kUseMaskColor, "UseMaskColor", Id(0x68030027), AsBoolean)
            .Get<&CB::UseMaskColor>()
            .Let<&CB::SetUseMaskColor>()
            .Persist(false, [](CB& c, bool v) { c.useMaskColor_ = v; })
            .Help("Set or retrieve the value which indicates if the control shoul use mask "
                  "color"),
        Property(kHighLighted, "HighLighted", Id(0x68030026), AsBoolean)
            .Get<&CB::HighLighted>()
            .Let<&CB::SetHighLighted>()
            .Persist(false, [](CB& c, bool v) { c.highLighted_ = v; })
            .Help("Set or retrieve the value which indicates if the pictuer change with mouse "
                  "over event"),
        Property(kForeColorHighLighted, "ForeColorHighLighted", Id(0x68030025), AsColor)
            .Get<&CB::ForeColorHighLighted>()
            .Let<&CB::SetForeColorHighLighted>()
            .Persist(Color(kSysButtonText), [](CB& c, OLE_COLOR v) { c.foreColorHighLighted_ = v; })
            .Help("Set or retrieve the value which indicates if the color of the text when the "
                  "mouse is over and the property HiLighted is set to True"),
    };
    static_assert(std::size(rows) == kRowCount);
    static const host::MemberTable table = host::CheckedTable(rows);
    return table;
}

namespace {

using enum CommandBox::Row;

// The order the properties are read and written in, around the surface's
// own mask colour, which is stored under "MaskColor" too, before the
// button's: a stored mask colour feeds both, and the button's is the one
// written last.
constexpr int kBeforeSurfaceMask[] = {kBackColor, kForeColor, kEnabled, kFont};
constexpr int kAfterSurfaceMask[] = {
    kMouseIcon,     kMousePointer, kOLEDropMode,  kPicture,     kRightToLeft,
    kAlignment,     kAlignPicture, kInterleave,   kText,        kStyle,
    kShowFocusRect, kMaskColor,    kUseMaskColor, kHighLighted, kForeColorHighLighted};

const host::Member& SurfaceMaskRow() { return CommandBox::Table()[kMaskColor]; }

}  // namespace

// Loaded values go straight into the fields; the pictures are prepared and
// the inset set once at the end. The host's resize lays the face out.
void CommandBox::ReadProperties(host::PropertyBag& bag) {
    host::ReadMembers(bag, *this, kBeforeSurfaceMask);
    const host::Member& mask = SurfaceMaskRow();
    SurfaceState().maskColor =
        static_cast<OLE_COLOR>(bag.ReadProperty(mask.persisted, mask.defaultValue).ToLong());
    host::ReadMembers(bag, *this, kAfterSurfaceMask);
    PreparePictures();
    SetBorderInset();
}

void CommandBox::WriteProperties(host::PropertyBag& bag) {
    host::WriteMembers(bag, *this, kBeforeSurfaceMask);
    const host::Member& mask = SurfaceMaskRow();
    bag.WriteProperty(mask.persisted, host::Box(SurfaceState().maskColor), mask.defaultValue);
    host::WriteMembers(bag, *this, kAfterSurfaceMask);
}

}  // namespace kelvarin::controls
