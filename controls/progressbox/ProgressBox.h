// SPDX-License-Identifier: MIT
// ProgressBox: a progress bar painted as a colour gradient, with a caption
// of its text and percentage, that times a run from its minimum to its
// maximum and reports elapsed and estimated time.
//
// Sections: members; properties; life-cycle; input; painting; timing.
// The member table, persistence order and property reader and writer are
// in ProgressBoxMembers.cpp.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <kelvarin/Export.h>

#include "common/DateTime.h"
#include "common/OleColor.h"
#include "host/Control.h"

namespace kelvarin {
class clsGFX_2D;
}

namespace kelvarin::controls {

class KELVARIN_CORE_API ProgressBox : public host::Control {
public:
    // The rows of the member table, in type-library order
    // (ProgressBoxMembers.cpp).
    enum Row : int {
        kBackColor,
        kForeColor,
        kEnabled,
        kFont,
        kBorderStyle,
        kAppearance,
        kHWnd,
        kMouseIcon,
        kMousePointer,
        kStartColor,
        kFinishColor,
        kValue,
        kText,
        kShowPercentual,
        kAlignment,
        kMinValue,
        kMaxValue,
        kPercentual,
        kGradientStyle,
        kPivotColor,
        kTimerChangedInterval,
        kRowCount
    };
    // Event numbers in the event interface.
    enum Events : int {
        kClick = 1,
        kDblClick,
        kKeyDown,
        kKeyPress,
        kKeyUp,
        kMouseDown,
        kMouseMove,
        kMouseUp,
        kChange,
        kTimerChange,
    };

    // eGradientStyle: how the bar's colours run.
    enum GradientStyle : Long { kLinear = 0, kGaussian = 1, kGaussianSquared = 2 };

    ProgressBox();
    ~ProgressBox() override;

    static host::MemberTable Table();
    host::MemberTable Members() const override { return Table(); }

    // ---- Properties (typed API; each write repaints and notifies as it must)
    void SetBackColor(OLE_COLOR color);
    void SetForeColor(OLE_COLOR color);
    void SetEnabled(bool enabled);
    void SetFont(std::shared_ptr<Font> font);
    void SetBorderStyle(Long style);
    void SetAppearance(Long appearance);
    void SetMouseIcon(std::shared_ptr<Object> picture);
    void SetMousePointer(Integer pointer);
    void SetStartColor(OLE_COLOR color);
    void SetFinishColor(OLE_COLOR color);
    void SetPivotColor(OLE_COLOR color);
    void SetGradientStyle(Long style);
    void SetText(std::string text);
    void SetShowPercentual(bool show);
    void SetAlignment(Long alignment);
    void SetValue(double value);
    void SetMinValue(double value);
    void SetMaxValue(double value);
    void SetPercentual(double percentual);
    void SetTimerChangedInterval(Long milliseconds);

    OLE_COLOR StartColor() const noexcept { return startColor_; }
    OLE_COLOR FinishColor() const noexcept { return finishColor_; }
    OLE_COLOR PivotColor() const noexcept { return pivotColor_; }
    Long GradientStyle() const noexcept { return gradientStyle_; }
    const std::string& Text() const noexcept { return text_; }
    bool ShowPercentual() const noexcept { return showPercentual_; }
    Long Alignment() const noexcept { return alignment_; }
    double Value() const noexcept { return value_; }
    double MinValue() const noexcept { return minValue_; }
    double MaxValue() const noexcept { return maxValue_; }
    double Percentual() const noexcept { return percentual_; }
    Long TimerChangedInterval() const;
    bool TimerRunning() const;
    std::uint32_t StartTick() const noexcept { return startTick_; }

    // ---- Host
    void InitProperties() override;
    void ReadProperties(host::PropertyBag& bag) override;
    void WriteProperties(host::PropertyBag& bag) override;
    void Show() override;
    void Resize() override;
    void Paint() override;
    void KeyDown(Integer& keyCode, Integer shift) override;
    void KeyPress(Integer& keyAscii) override;
    void KeyUp(Integer& keyCode, Integer shift) override;
    void MouseDown(Integer button, Integer shift, Single x, Single y) override;
    void MouseMove(Integer button, Integer shift, Single x, Single y) override;
    void MouseUp(Integer button, Integer shift, Single x, Single y) override;
    void Click() override;
    void DblClick() override;
    std::vector<std::string> Dump() const override;

    // The caption as drawn: the text, then a blank and the rounded percentage.
    std::string Caption() const;

private:
    // Repaints and notifies after a write.
    void Changed(Row row);
    void StoreStartColor(OLE_COLOR color);
    void StoreFinishColor(OLE_COLOR color);
    void UpdatePercentual();
    void UpdateValue();
    void StartTiming();
    void StopTiming();
    void OnTimer();
    // What the pixels of a repaint depend on. A write that leaves it as the
    // last repaint left it skips the raster work; the arithmetic that finds
    // the bar's columns still runs, so it fails as the repaint would.
    struct Look {
        double width = 0, height = 0;
        Long style = 0;
        OLE_COLOR back = 0, start = 0, finish = 0, pivot = 0, fore = 0;
        Long first = 0, end = 0;  // the bar's columns (the pivot's, twice, for a Gaussian)
        std::string caption;
        Long alignment = 0;
        Font font;
        friend bool operator==(const Look&, const Look&) = default;
    };
    Look CurrentLook(double sw, double sh) const;
    // The first and last column of a linear bar from `from` to `to`, and
    // the pivot's column of a Gaussian one.
    std::pair<Long, Long> LinearColumns(double from, double to, Long last) const;
    Long PivotColumn(double to, Long width) const;
    // Repaints after a write; a host's paint or resize repaints whatever the look.
    void Redraw();
    void Repaint();
    void DrawBar(clsGFX_2D& gfx, double& from, double& to);
    void DrawCaption(host::Surface& surface, double sw, double sh);
    void EnsureTimer();

    OLE_COLOR startColor_ = kSysHighlight;
    OLE_COLOR startColorRGB_ = 0;
    OLE_COLOR finishColor_ = kSysHighlight;
    OLE_COLOR finishColorRGB_ = 0;
    OLE_COLOR pivotColor_ = kSysHighlight;
    Long gradientStyle_ = kLinear;
    double percentual_ = 0;
    double value_ = 0;
    double minValue_ = 0;
    double maxValue_ = 100;
    std::string text_;
    bool showPercentual_ = true;
    Long alignment_ = host::kCenter;
    std::uint32_t startTick_ = 0;
    bool ready_ = false;
    std::unique_ptr<host::Timer> tmrTimes_;
    std::optional<Look> painted_;  // none until a repaint has succeeded
    Long pendingInterval_ = 250;   // until the site gives the timer
};

}  // namespace kelvarin::controls
