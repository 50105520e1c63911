// SPDX-License-Identifier: MIT
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
        ReadMembers(bag, *this, kStored);
        Record("ReadProperties");
    }
    void WriteProperties(PropertyBag& bag) override { WriteMembers(bag, *this, kStored); }
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

    // One member, BorderStyle (DISPID 1).
    static MemberTable Table() {
        using namespace rows;
        static const Member table[] = {
            Property(0, "BorderStyle", 1, AsInteger)
                .Get<&Recorder::BorderStyle>()
                .Let<&Recorder::SetBorderStyle>()
                .Persist(Integer(1), [](Recorder& r, Integer v) { r.SetBorderStyle(v); }),
        };
        return table;
    }
    MemberTable Members() const override { return Table(); }
    void SetBorderStyle(Integer style) { SurfaceState().borderStyle = style; }
    std::vector<std::string> Dump() const override { return log; }

private:
    static constexpr int kStored[] = {0};
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
