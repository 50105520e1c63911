// SPDX-License-Identifier: MIT
// DateBox's member table, the orders its properties are read and written
// in, and its property reader and writer.
#include "controls/datebox/ChangeFlags.h"
#include "controls/datebox/DateBox.h"

namespace kelvarin::controls {

using namespace host::rows;
using DB = DateBox;

host::MemberTable DateBox::Table() {
    static const host::Member rows[] = {
        Method<&DB::TextLeft>(kTextLeft, "TextLeft", Id(0x60030024), AsLong),
        Method<&DB::TextWidth>(kTextWidth, "TextWidth", Id(0x60030025), AsLong),
        Method<&DB::TextHeight>(kTextHeight, "TextHeight", Id(0x60030026), AsLong),
        Method<&DB::TextTop>(kTextTop, "TextTop", Id(0x60030027), AsLong),
        Property(kAppearance, "Appearance", Id(0x68030023), Enum("eAppearance"))
            .Get<&DB::Appearance>()
            .Let<&DB::SetAppearance>()
            .Persist(Long(1),
                     [](DB& c, Long v) {
                         c.SurfaceState().appearance = ToInteger(v);
                         c.initialised_ = true;
                     }),
        Property(kBackColor, "BackColor", Id(0x68030022), AsColor)
            .Get<&DB::BackColor>()
            .Let<&DB::SetBackColor>()
            .Persist(Color(kSysWindow), [](DB& c, OLE_COLOR v) { c.StoreBackColor(v); }),
        Property(kForeColor, "ForeColor", Id(0x68030021), AsColor)
            .Get<&DB::ForeColor>()
            .Let<&DB::SetForeColor>()
            .Persist(Color(kSysWindowText), [](DB& c, OLE_COLOR v) { c.StoreForeColor(v); }),
        Property(kAlignment, "Alignment", Id(0x68030020), Enum("eAlignment"))
            .Get<&DB::Alignment>()
            .Let<&DB::SetAlignment>()
            .Persist(Long(kLeftJustify), [](DB& c, Long v) { c.alignment_ = v; }),
        Property(kEnabled, "Enabled", Id(0x6803001F), AsBoolean)
            .Get<&DB::Enabled>()
            .Let<&DB::SetEnabled>()
            .Persist(true, [](DB& c, bool v) { c.StoreEnabled(v); }),
        Property(kFont, "Font", Id(0x6803001E), AsFont)
            .Get<&DB::GetFont>()
            .Set<&DB::SetFont>()
            .Persist({}, [](DB& c, std::shared_ptr<Font> v) { c.StoreFont(v); }),
        Property(kBorderStyle, "BorderStyle", Id(0x6803001D), Enum("eBorderStyle"))
            .Get<&DB::BorderStyle>()
            .Let<&DB::SetBorderStyle>()
            .Persist(Integer(1), [](DB& c, Integer v) { c.SurfaceState().borderStyle = v; }),
        Property(kLocked, "Locked", Id(0x6803001C), AsBoolean)
            .Get<&DB::Locked>()
            .Let<&DB::SetLocked>()
            .Persist(false, [](DB& c, bool v) { c.StoreLocked(v); }),
        Property(kValue, "Value", Id(0x6803001B), AsDate)
            .Get<&DB::Value>()
            .Let<&DB::SetValue>()
            .Persist(Variant::FromDate(0), [](DB& c, double v) { c.value_ = v; }),
        Property(kValueDB, "ValueDB", Id(0x68030028), AsVariant)
            .Get<&DB::ValueDB>()
            .Let<&DB::SetValueDB>(),
        Property(kDateFormat, "DateFormat", Id(0x6803001A), AsString)
            .Get<&DB::DateFormat>()
            .Let<&DB::SetDateFormat>()
            .Persist(kDefaultFormat, [](DB& c, std::string v) { c.dateFormat_ = std::move(v); }),
        Property(kSmallChange, "SmallChange", Id(0x68030019), AsLong)
            .Get<&DB::SmallChange>()
            .Let<&DB::SetSmallChange>()
            .Persist(Long(1), [](DB& c, Long v) { c.smallChange_ = v; }),
        Property(kLargeChange, "LargeChange", Id(0x68030018), AsLong)
            .Get<&DB::LargeChange>()
            .Let<&DB::SetLargeChange>()
            .Persist(Long(10), [](DB& c, Long v) { c.largeChange_ = v; }),
        Property(kNullable, "Nullable", Id(0x68030017), AsBoolean)
            .Get<&DB::Nullable>()
            .Let<&DB::SetNullable>()
            .Persist(true, [](DB& c, bool v) { c.nullable_ = v; }),
        Property(kCalendarButton, "CalendarButton", Id(0x68030016), AsBoolean)
            .Get<&DB::CalendarButton>()
            .Let<&DB::SetCalendarButton>()
            .Persist(true,
                     [](DB& c, bool v) {
                         c.calendarButton_ = v;
                         c.cmdSelezione_.visible = v;
                     }),
        Property(kMinDate, "MinDate", Id(0x68030015), AsDate)
            .Get<&DB::MinDate>()
            .Let<&DB::SetMinDate>()
            .Persist(Variant::FromDate(kMinDateSerial), [](DB& c, double v) { c.minDate_ = v; }),
        Property(kMaxDate, "MaxDate", Id(0x68030014), AsDate)
            .Get<&DB::MaxDate>()
            .Let<&DB::SetMaxDate>()
            .Persist(Variant::FromDate(kMaxDateSerial), [](DB& c, double v) { c.maxDate_ = v; }),
    };
    static_assert(std::size(rows) == kRowCount);
    static const host::MemberTable table = host::CheckedTable(rows);
    return table;
}

namespace {

using enum DateBox::Row;

// Appearance is read first, before anything that lays the fields out; the
// two orders differ from each other and from the type library's.
constexpr int kReadOrder[] = {kAppearance, kBackColor,      kFont,        kEnabled,
                              kLocked,     kForeColor,      kBorderStyle, kValue,
                              kAlignment,  kDateFormat,     kSmallChange, kLargeChange,
                              kNullable,   kCalendarButton, kMinDate,     kMaxDate};
constexpr int kWriteOrder[] = {kAppearance, kBackColor,      kBorderStyle, kForeColor,
                               kEnabled,    kFont,           kLocked,      kValue,
                               kAlignment,  kDateFormat,     kSmallChange, kLargeChange,
                               kNullable,   kCalendarButton, kMinDate,     kMaxDate};

}  // namespace

// The stored values go into the fields as they are; then the fields are
// built for the stored pattern and value, which is brought within the limits.
void DateBox::ReadProperties(host::PropertyBag& bag) {
    host::ReadMembers(bag, *this, kReadOrder);
    SetNotifyOnChange(true);
    SetForceChange(false);
    editor_.SetParts(value_);
    CheckLimits();
    RebuildBoxes();
    LayoutBoxes();
    Redraw();
}

void DateBox::WriteProperties(host::PropertyBag& bag) {
    host::WriteMembers(bag, *this, kWriteOrder);
}

}  // namespace kelvarin::controls
