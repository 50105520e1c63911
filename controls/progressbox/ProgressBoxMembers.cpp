// SPDX-License-Identifier: MIT
// ProgressBox's member table, the order its properties are stored in, and
// its property reader and writer.
#include "controls/progressbox/ProgressBox.h"

namespace kelvarin::controls {

using namespace host::rows;
using PB = ProgressBox;

host::MemberTable ProgressBox::Table() {
    static const host::Member rows[] = {
        Property(kBackColor, "BackColor", Id(0x68030027), AsColor)
            .Get<&PB::BackColor>()
            .Let<&PB::SetBackColor>()
            .Persist(Color(kSysButtonFace),
                     [](PB& c, OLE_COLOR v) { c.SurfaceState().backColor = v; })
            .Help("Restituisce o imposta il colore di sfondo utilizzato per la visualizzazione di "
                  "testo e grafica in un oggetto."),
        Property(kForeColor, "ForeColor", Id(0x68030026), AsColor)
            .Get<&PB::ForeColor>()
            .Let<&PB::SetForeColor>()
            .Persist(Color(kSysButtonText),
                     [](PB& c, OLE_COLOR v) { c.SurfaceState().foreColor = v; })
            .Help("Restituisce o imposta il colore di primo piano utilizzato per la "
                  "visualizzazione di testo e grafica in un oggetto."),
        Property(kEnabled, "Enabled", Id(0x68030025), AsBoolean)
            .Get<&PB::Enabled>()
            .Let<&PB::SetEnabled>()
            .Persist(true, [](PB& c, bool v) { c.SurfaceState().enabled = v; })
            .Help("Restituisce o imposta un valore che determina se un oggetto \u00E8 in grado di "
                  "rispondere agli eventi generati dall'utente."),
        Property(kFont, "Font", host::DISPID_FONT, AsFont)
            .Get<&PB::GetFont>()
            .Set<&PB::SetFont>()
            .Persist({}, [](PB& c, std::shared_ptr<Font> v) { c.SurfaceState().font = v; })
            .Help("Restituisce un oggetto Font."),
        Property(kBorderStyle, "BorderStyle", Id(0x68030024), Enum("eBorderStyle"))
            .Get<&PB::BorderStyle>()
            .Let<&PB::SetBorderStyle>()
            .Persist(Integer(0), [](PB& c, Integer v) { c.SurfaceState().borderStyle = v; })
            .Help("Restituisce o imposta lo stile del bordo di un oggetto."),
        Property(kAppearance, "Appearance", Id(0x68030023), Enum("eAppearance"))
            .Get<&PB::Appearance>()
            .Let<&PB::SetAppearance>()
            .Persist(Integer(1), [](PB& c, Integer v) { c.SurfaceState().appearance = v; })
            .Help("Restituisce o imposta un valore che indica se un oggetto viene ridisegnato con "
                  "effetti tridimensionali in fase di esecuzione."),
        Property(kHWnd, "hWnd", Id(0x68030022), AsLong)
            .Get<&PB::HWnd>()
            .Help("Restituisce un handle (da Microsoft Windows) alla finestra di un oggetto."),
        Property(kMouseIcon, "MouseIcon", Id(0x68030021), AsPicture)
            .Get<&PB::MouseIcon>()
            .Set<&PB::SetMouseIcon>()
            .Persist(Variant::Nothing(),
                     [](PB& c, std::shared_ptr<Object> v) { c.SurfaceState().mouseIcon = v; })
            .Help("Imposta un'icona personalizzata per il puntatore del mouse."),
        Property(kMousePointer, "MousePointer", Id(0x68030020), AsInteger)
            .Get<&PB::MousePointer>()
            .Let<&PB::SetMousePointer>()
            .Persist(Integer(0), [](PB& c, Integer v) { c.SurfaceState().mousePointer = v; })
            .Help("Restituisce o imposta il tipo di puntatore del mouse visualizzato quando il "
                  "puntatore si trova su una parte specifica di un oggetto."),
        Property(kStartColor, "StartColor", Id(0x6803001F), AsColor)
            .Get<&PB::StartColor>()
            .Let<&PB::SetStartColor>()
            .Persist(Color(kSysHighlight), [](PB& c, OLE_COLOR v) { c.StoreStartColor(v); })
            .Help("Colore iniziale da cui inziare la barra"),
        Property(kFinishColor, "FinishColor", Id(0x6803001E), AsColor)
            .Get<&PB::FinishColor>()
            .Let<&PB::SetFinishColor>()
            .Persist(Color(kSysHighlight), [](PB& c, OLE_COLOR v) { c.StoreFinishColor(v); })
            .Help("Colore a cui la barra tender\u00E0 alla fine del processo"),
        Property(kValue, "Value", Id(0x6803001D), AsDouble)
            .Get<&PB::Value>()
            .Let<&PB::SetValue>()
            .Persist(0.0, [](PB& c, double v) { c.value_ = v; })
            .Help("Valore corrente della barra"),
        Property(kText, "Text", Id(0x6803001C), AsString)
            .Get<&PB::Text>()
            .Let<&PB::SetText>()
            .Persist("", [](PB& c, std::string v) { c.text_ = std::move(v); })
            .Help("Testo aggiuntivo visualizzato prima della percentuale"),
        Property(kShowPercentual, "ShowPercentual", Id(0x6803001B), AsBoolean)
            .Get<&PB::ShowPercentual>()
            .Let<&PB::SetShowPercentual>()
            .Persist(true, [](PB& c, bool v) { c.showPercentual_ = v; })
            .Help("Indica se visualizzare o no la percentuale di completamento del processo"),
        Property(kAlignment, "Alignment", Id(0x6803001A), Enum("eAlignmentText"))
            .Get<&PB::Alignment>()
            .Let<&PB::SetAlignment>()
            .Persist(Long(host::kCenter), [](PB& c, Long v) { c.alignment_ = v; }),
        Property(kMinValue, "MinValue", Id(0x68030019), AsDouble)
            .Get<&PB::MinValue>()
            .Let<&PB::SetMinValue>()
            .Persist(0.0, [](PB& c, double v) { c.minValue_ = v; })
            .Help("Valore minimo consentito"),
        Property(kMaxValue, "MaxValue", Id(0x68030018), AsDouble)
            .Get<&PB::MaxValue>()
            .Let<&PB::SetMaxValue>()
            .Persist(100.0, [](PB& c, double v) { c.maxValue_ = v; })
            .Help("Valore massimo consentito"),
        Property(kPercentual, "Percentual", Id(0x68030017), AsDouble)
            .Get<&PB::Percentual>()
            .Let<&PB::SetPercentual>()
            .Persist(0.0, [](PB& c, double v) { c.percentual_ = v; })
            .Help("Restituisce o imposta la percentuale a cui si trova il controllo"),
        Property(kGradientStyle, "GradientStyle", Id(0x68030016), Enum("eGradientStyle"))
            .Get<&PB::GradientStyle>()
            .Let<&PB::SetGradientStyle>()
            .Persist(Long(kLinear), [](PB& c, Long v) { c.gradientStyle_ = v; }),
        Property(kPivotColor, "PivotColor", Id(0x68030015), AsColor)
            .Get<&PB::PivotColor>()
            .Let<&PB::SetPivotColor>()
            .Persist(Color(kSysHighlight), [](PB& c, OLE_COLOR v) { c.pivotColor_ = v; }),
        Property(kTimerChangedInterval, "TimerChangedInterval", Id(0x68030014), AsLong)
            .Get<&PB::TimerChangedInterval>()
            .Let<&PB::SetTimerChangedInterval>()
            .Persist(Long(250), [](PB& c, Long v) { c.tmrTimes_->SetInterval(v); }),
    };
    static_assert(std::size(rows) == kRowCount);
    static const host::MemberTable table = host::CheckedTable(rows);
    return table;
}

namespace {

using enum ProgressBox::Row;

// The order the properties are read and written in: not the type library's.
constexpr int kPersistOrder[] = {
    kEnabled,        kFont,          kBorderStyle, kAppearance,  kBackColor,
    kMouseIcon,      kMousePointer,  kStartColor,  kFinishColor, kText,
    kShowPercentual, kAlignment,     kMinValue,    kMaxValue,    kValue,
    kPercentual,     kGradientStyle, kPivotColor,  kForeColor,   kTimerChangedInterval};

}  // namespace

// Loaded values go straight into the fields: no clamping, coupling, timing
// or notification.
void ProgressBox::ReadProperties(host::PropertyBag& bag) {
    EnsureTimer();
    host::ReadMembers(bag, *this, kPersistOrder);
    ready_ = true;
    Redraw();
}

void ProgressBox::WriteProperties(host::PropertyBag& bag) {
    host::WriteMembers(bag, *this, kPersistOrder);
}

}  // namespace kelvarin::controls
