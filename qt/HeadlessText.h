// SPDX-License-Identifier: MIT
// Qt fonts for the headless host's rasters: the script host's --qt mode
// keeps its scripted clock, timers and pointer and draws text as the Qt
// host does. Needs a QGuiApplication (the offscreen platform will do).
#pragma once

#include "host/headless/Raster.h"
#include "qt/QtText.h"

namespace kelvarin::qt {

class HeadlessText : public host::headless::RasterText {
public:
    host::Size Measure(std::string_view text, const Font& font) override;
    int Draw(host::headless::Raster& raster, const host::Rect& view, std::string_view text,
             host::Rect& rect, unsigned format, const Font& font, OLE_COLOR color) override;

private:
    TextPainter painter_;
};

// The raster as a Qt image (a copy).
QImage ToQImage(const host::headless::Raster& raster);

}  // namespace kelvarin::qt
