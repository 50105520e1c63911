// A control that records what its host calls, for the site protocol's tests
// on every host: life-cycle steps with the client size they see ("Show
// 96x20": the frame was laid out before), pointer calls with their
// arguments ("MouseDown 1 0 5 5"), clicks. It has a fixed single 3D border
// of its own when new, persists BorderStyle, and can fail at a step.
#pragma once

#include <string>
#include <vector>

#include "common/HostError.h"
#include "host/Control.h"

namespace kelvarin::host::test {

class Recorder : public Control {
public:
    Recorder() : Control("Recorder") {}

    std::vector<std::string> log;
    std::string failAt;  // a step that raises Overflow after it is logged

    void InitProperties() override {
        SurfaceState().borderStyle = 1;
        Record("InitProperties");
    }
    void ReadProperties(PropertyBag& bag) override {
        SurfaceState().borderStyle =
            bag.ReadProperty("BorderStyle", Variant(Integer(1))).ToInteger();
        Record("ReadProperties");
    }
    void WriteProperties(PropertyBag& bag) override {
        bag.WriteProperty("BorderStyle", Variant(SurfaceState().borderStyle), Variant(Integer(1)));
    }
    void Show() override { Record("Show " + ClientSize()); }
    void Resize() override { Record("Resize " + ClientSize()); }
    void Paint() override { Record("Paint"); }
    void MouseDown(Integer b, Integer s, Single x, Single y) override {
        Record("MouseDown" + Args(b, s, x, y));
    }
    void MouseMove(Integer b, Integer s, Single x, Single y) override {
        Record("MouseMove" + Args(b, s, x, y));
    }
    void MouseUp(Integer b, Integer s, Single x, Single y) override {
        Record("MouseUp" + Args(b, s, x, y));
    }
    void Click() override { Record("Click"); }
    void DblClick() override { Record("DblClick"); }

    // BorderStyle is DISPID 1.
    Variant GetProperty(DispId id) override {
        if (id == 1) return Variant(SurfaceState().borderStyle);
        return Control::GetProperty(id);
    }
    void PutProperty(DispId id, const Variant& value) override {
        if (id != 1) return Control::PutProperty(id, value);
        SurfaceState().borderStyle = value.ToInteger();
    }
    std::vector<std::string> Dump() const override { return log; }

private:
    void Record(std::string entry) {
        const bool fail = entry.starts_with(failAt) && !failAt.empty();
        log.push_back(std::move(entry));
        if (fail) RaiseHostError(HostErrorCode::Overflow);
    }
    std::string ClientSize() const {
        return std::to_string(ScaleWidth()) + "x" + std::to_string(ScaleHeight());
    }
    static std::string Args(Integer b, Integer s, Single x, Single y) {
        const auto n = [](Single v) { return std::to_string(static_cast<int>(v)); };
        return " " + std::to_string(b) + " " + std::to_string(s) + " " + n(x) + " " + n(y);
    }
};

}  // namespace kelvarin::host::test
