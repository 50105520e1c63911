// SPDX-License-Identifier: MIT
// The month calendar's paint on the headless host: the whole popup (band,
// spinners, weekday names, 42 days, today's line, frame) into a raster of
// its own size, opened on 5 March 2007 with the default font. The text is
// the headless host's solid blocks, so this times the popup's own work and
// the raster's fills; the Qt paint is qt_datebox_bench's.
#include <benchmark/benchmark.h>

#include "controls/calendar/CalendarHook.h"
#include "controls/calendar/frmMese.h"
#include "controls/datebox/DateBox.h"
#include "host/Site.h"
#include "host/headless/HeadlessHost.h"
#include "host/headless/Raster.h"

namespace {

using kelvarin::controls::DateBox;
using kelvarin::controls::frmMese;

void BM_CalendarPaint(benchmark::State& state) {
    kelvarin::host::headless::HeadlessHost host;
    host.recording = false;
    auto& placed = host.Add("d1", std::make_unique<DateBox>(), {120, 24});
    kelvarin::host::PlaceNew(placed.Get(), placed);
    host.today = kelvarin::DateSerial(2007, 3, 14);
    kelvarin::controls::ExchangeLabel label;
    kelvarin::controls::SetCalendarResultLabel(&label);
    label.SetCaption("05/03/2007");
    {
        frmMese popup(placed, kelvarin::Font("Sans Serif", 8.0));
        const kelvarin::host::Size size = popup.ClientSize();
        auto raster = std::make_shared<kelvarin::host::headless::Raster>();
        raster->Resize(size.width, size.height, 0);
        kelvarin::host::headless::RasterSurface surface(raster, {0, 0, size.width, size.height});
        for (auto _ : state) {
            popup.Paint(surface);
            benchmark::DoNotOptimize(raster->bgr.data());
        }
        state.counters["width"] = size.width;
        state.counters["height"] = size.height;
    }
    kelvarin::controls::UnhookCalendar();
    kelvarin::controls::ForgetCalendarResultLabel(&label);
}
BENCHMARK(BM_CalendarPaint)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
