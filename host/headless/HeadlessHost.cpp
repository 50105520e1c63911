// SPDX-License-Identifier: MIT
#include "host/headless/HeadlessHost.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <utility>

#include "common/HostError.h"
#include "common/Text.h"

namespace kelvarin::host::headless {

// ---- Timers -----------------------------------------------------------------

struct HeadlessHost::TimerSlot {
    HeadlessHost* host;
    std::uint64_t serial;
    TimerCallback onTick;
    Long interval = 0;
    bool enabled = false;
    std::uint64_t due = 0;

    void Restart() { due = host->elapsed_ + static_cast<std::uint64_t>(interval); }
};

class ManualTimer : public Timer {
public:
    ManualTimer(HeadlessHost& host, TimerCallback onTick)
        : slot_{&host, ++host.timerSerial_, std::move(onTick)} {
        host.timers_.push_back(&slot_);
    }
    ~ManualTimer() override { std::erase(slot_.host->timers_, &slot_); }

    Long Interval() const override { return slot_.interval; }
    void SetInterval(Long milliseconds) override {
        if (milliseconds < 0) RaiseHostError(HostErrorCode::InvalidPropertyValue);
        slot_.interval = milliseconds;
        slot_.Restart();
    }
    bool Enabled() const override { return slot_.enabled; }
    void SetEnabled(bool enabled) override {
        if (enabled && !slot_.enabled) slot_.Restart();
        slot_.enabled = enabled;
    }

private:
    HeadlessHost::TimerSlot slot_;
};

void HeadlessHost::Advance(std::uint32_t milliseconds) {
    const std::uint64_t target = elapsed_ + milliseconds;
    std::exception_ptr firstError;
    while (true) {
        TimerSlot* next = nullptr;
        for (TimerSlot* t : timers_) {
            if (!t->enabled || t->interval <= 0 || t->due > target) continue;
            if (!next || t->due < next->due || (t->due == next->due && t->serial < next->serial))
                next = t;
        }
        if (!next) break;
        tick_ += static_cast<std::uint32_t>(next->due - elapsed_);
        elapsed_ = next->due;
        next->due += static_cast<std::uint64_t>(next->interval);
        try {
            TimerCallback callback = next->onTick;  // the timer may go away while it runs
            callback();
        } catch (...) {
            if (!firstError) firstError = std::current_exception();
        }
    }
    tick_ += static_cast<std::uint32_t>(target - elapsed_);
    elapsed_ = target;
    if (firstError) std::rethrow_exception(firstError);
}

// ---- Placed controls ----------------------------------------------------------

Placed::Placed(HeadlessHost& host, std::string name, std::unique_ptr<Control> control)
    : host_(host),
      name_(std::move(name)),
      control_(std::move(control)),
      raster_(std::make_shared<Raster>()),
      client_(raster_, {}, host.text),
      handle_(host.nextHandle_ += 2),
      pointer_(*control_) {
    control_->SetSite(this);
}

Placed::~Placed() { control_->SetSite(nullptr); }

void Placed::SetOuterSize(Size size) {
    const Raster old = *raster_;
    raster_->Resize(size.width, size.height, TranslateSysColor(control_->SurfaceState().backColor));
    for (int y = 0; y < std::min(old.height, raster_->height); ++y)
        for (int x = 0; x < std::min(old.width, raster_->width); ++x)
            raster_->Put(x, y, old.Get(x, y));
    LayOutFrame();
}

bool Placed::Covers(Single x, Single y) const noexcept {
    const Rect view = client_.View();
    const double ox = x + view.left, oy = y + view.top;
    return ox >= 0 && oy >= 0 && ox < raster_->width && oy < raster_->height;
}

void Placed::LayOutFrame() {
    const int b = BorderWidth(control_->SurfaceState());
    client_.SetView({b, b, std::max(b, raster_->width - b), std::max(b, raster_->height - b)});
    RasterSurface whole(raster_, {0, 0, raster_->width, raster_->height});
    PaintBorder(whole, control_->SurfaceState(), raster_->width, raster_->height);
}

void Placed::PropertyChanged(std::string_view name) {
    if (!host_.recording) return;
    host_.notifications.push_back({name_, std::string(name)});
}

void Placed::RaiseEvent(int number, std::span<Variant> args) {
    if (!host_.recording) return;
    const std::string_view name = host_.eventNames ? host_.eventNames(*control_, number) : "";
    host_.events.push_back({name_, number, std::string(name), {args.begin(), args.end()}});
}

std::shared_ptr<Font> Placed::AmbientFont() { return host_.ambientFont; }
bool Placed::AmbientDisplayAsDefault() { return host_.displayAsDefault; }
double Placed::ExtenderLeft() { return position_.x * host_.unitsPerPixel; }
double Placed::ExtenderTop() { return position_.y * host_.unitsPerPixel; }
double Placed::ExtenderWidth() { return raster_->width * host_.unitsPerPixel; }
double Placed::ContainerUnitsPerPixel() { return host_.unitsPerPixel; }

std::unique_ptr<Timer> Placed::CreateTimer(TimerCallback onTick) {
    return std::make_unique<ManualTimer>(host_, std::move(onTick));
}

std::uint32_t Placed::TickCount() { return host_.TickCount(); }
Date Placed::Now() { return host_.today; }
Size Placed::ScreenSize() { return host_.screen; }

Point Placed::ClientToScreen(Point client) {
    const Rect view = client_.View();
    return {position_.x + view.left + client.x, position_.y + view.top + client.y};
}

void Placed::ShowModal(Popup& popup, Point screen) {
    Popup* outer = host_.openPopup;
    host_.openPopup = &popup;
    try {
        if (host_.modalLoop) {
            host_.modalLoop(popup, screen);
        } else if (popup.IsOpen()) {
            popup.Deactivated();
        }
    } catch (...) {
        host_.openPopup = outer;
        throw;
    }
    host_.openPopup = outer;
}

const Locale& Placed::UserLocale() { return *host_.locale; }

// ---- The host -----------------------------------------------------------------

HeadlessHost::HeadlessHost() : today(DateSerial(2026, 11, 22)), locale(&CurrentLocale()) {}

HeadlessHost::~HeadlessHost() { Clear(); }

Placed& HeadlessHost::Add(std::string name, std::unique_ptr<Control> control, Size size) {
    auto placed = std::make_unique<Placed>(*this, std::move(name), std::move(control));
    placed->SetOuterSize(size);
    placed_.push_back(std::move(placed));
    return *placed_.back();
}

Placed* HeadlessHost::Find(std::string_view name) {
    for (auto& p : placed_) {
        if (EqualsIgnoreCase(p->Name(), name)) return p.get();
    }
    return nullptr;
}

void HeadlessHost::Remove(std::string_view name) {
    Placed* p = Find(name);
    if (!p) return;
    if (focused_ == p) focused_ = nullptr;
    p->Get().Terminate();
    std::erase_if(placed_, [p](const auto& q) { return q.get() == p; });
}

void HeadlessHost::Clear() {
    focused_ = nullptr;
    for (auto& p : placed_) p->Get().Terminate();
    placed_.clear();
}

std::vector<std::unique_ptr<Placed>> HeadlessHost::DetachAll() {
    focused_ = nullptr;
    return std::exchange(placed_, {});
}

void HeadlessHost::AttachAll(std::vector<std::unique_ptr<Placed>> controls) {
    Clear();
    placed_ = std::move(controls);
}

const Raster& HeadlessHost::PaintPopup() {
    const Size size = openPopup ? openPopup->ClientSize() : Size{};
    popupPixels_->Resize(std::max(size.width, 0), std::max(size.height, 0), 0xFFFFFF);
    if (openPopup && popupPixels_->width > 0 && popupPixels_->height > 0) {
        RasterSurface surface(popupPixels_, {0, 0, popupPixels_->width, popupPixels_->height},
                              text);
        openPopup->Paint(surface);
    }
    return *popupPixels_;
}

std::vector<Placed*> HeadlessHost::Controls() {
    std::vector<Placed*> out;
    for (auto& p : placed_) out.push_back(p.get());
    return out;
}

bool HeadlessHost::SetFocus(Placed* target) {
    if (target == focused_) return true;
    if (target && !target->Get().SurfaceState().enabled)
        return false;  // a disabled window takes no focus
    if (focused_) {
        if (!focused_->Get().QueryLeaveFocus()) return false;
        Placed* old = focused_;
        focused_ = nullptr;
        old->Get().LostFocus();
    }
    focused_ = target;
    if (target) target->Get().GotFocus();
    return true;
}

Placed* HeadlessHost::AccessKeyOwner(int keyCode) {
    for (auto& p : placed_)
        if (p->Get().HasAccessKey(keyCode)) return p.get();
    return nullptr;
}

bool HeadlessHost::FocusNext(bool forward) {
    const auto count = static_cast<std::ptrdiff_t>(placed_.size());
    if (count == 0) return true;
    std::ptrdiff_t at = forward ? -1 : count;  // with no focus, from the first or the last
    for (std::ptrdiff_t i = 0; i < count; ++i)
        if (placed_[static_cast<std::size_t>(i)].get() == focused_) at = i;
    for (std::ptrdiff_t step = 1; step <= count; ++step) {
        const std::ptrdiff_t i = ((at + (forward ? step : -step)) % count + count) % count;
        Placed* next = placed_[static_cast<std::size_t>(i)].get();
        if (next->Get().SurfaceState().enabled) return SetFocus(next);
    }
    return true;
}

}  // namespace kelvarin::host::headless
