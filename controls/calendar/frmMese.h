// SPDX-License-Identifier: MIT
// frmMese: the month calendar a DateBox drops down. One month as seven
// columns (Monday first) by six week rows under a header with month and
// year spinners and the weekday names, and a last line with today's date.
// Keys and the mouse move the highlighted date; Enter, a click on a day or
// on the "Oggi: " line accepts, Escape restores the opening date, and a
// press outside or the loss of activation closes it without a choice.
// Every outcome goes back through the exchange label (CalendarHook.h).
//
// The popup paints itself on whatever surface its host gives it and takes
// input in its own pixels, so a host only shows a frameless window of
// ClientSize(), calls Paint and forwards input, and repaints after each
// event it forwards.
//
// Sections: shared helpers; state; geometry; life-cycle; input; painting.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "common/DateTime.h"
#include "common/Font.h"
#include "host/ControlSite.h"

namespace kelvarin::controls {

// ---- Shared helpers -------------------------------------------------------------

// Keeps a date within CalendarMinDate..CalendarMaxDate and never before
// 1 February 100; the empty date (0) passes unchanged.
Date ClampCalendarDate(Date d) noexcept;
// Sets the change flags and writes the date (or "-1/-1/-1" for the empty
// one) into the exchange label, whose owner takes it over at once.
void SetCalendarResult(Date d, bool notify, bool force);

class frmMese final : public host::Popup {
public:
    // Where the header spinners are, in pixels; each half is a closed range.
    struct Geometry {
        int cw = 1;  // column width
        int rh = 1;  // row height
        int monthSpinLeft = 0, monthSpinRight = 0;
        int yearSpinLeft = 0, yearSpinRight = 0;
        int upperTop = 0;     // upper halves run from here to rh
        int lowerBottom = 0;  // lower halves from rh to here
        int monthNameLeft = 0, monthNameWidth = 0;
        int yearLeft = 0, yearWidth = 0;
    };
    enum class SpinnerHalf { None, MonthUp, MonthDown, YearUp, YearDown };

    // Loads the popup: copies `ownerFont`, hooks itself, takes the capture and
    // reads the opening date from the exchange label. `site` is the opening
    // control's: the popup measures, reads the clock and the locale through it.
    frmMese(host::ControlSite& site, const Font& ownerFont);
    ~frmMese() override;
    frmMese(const frmMese&) = delete;
    frmMese& operator=(const frmMese&) = delete;

    // ---- State
    Date CurrentDate() const noexcept override { return currentDate_; }
    Long ShownMonth() const noexcept override { return shownMonth_; }
    Long ShownYear() const noexcept override { return shownYear_; }
    // Month, year and day of the opening date; -1 where it had none.
    const std::array<Long, 3>& OpeningDateParts() const noexcept { return openingDateParts_; }
    bool HasCapture() const noexcept { return capture_; }
    const Font& FormFont() const noexcept { return font_; }

    // ---- Geometry
    const Geometry& Layout() const noexcept { return geometry_; }
    // The date a cell shows: column 1 (Monday) to 7, week row 0 to 5. A month
    // that starts on a Monday starts in the second row, so the first row
    // always shows the end of the previous month.
    Date CellDate(int column, int weekRow) const;
    // Column and week row under a point (week row -3 is the header's top row).
    int ColumnAt(Single x) const;
    int WeekRowAt(Single y) const;
    SpinnerHalf SpinnerAt(Single x, Single y) const;

    // ---- Life-cycle
    // Closes the popup: unhooks, releases the capture and resets the change
    // flags. Idempotent.
    void Unload();

    // ---- host::Popup
    host::Size ClientSize() override;
    void Paint(host::Surface& surface) override;
    void KeyDown(Integer& keyCode, Integer shift) override;
    void KeyPress(Integer& keyAscii) override;
    void KeyUp(Integer& keyCode, Integer shift) override;
    void MouseDown(Integer button, Integer shift, Single x, Single y) override;
    void MouseMove(Integer button, Integer shift, Single x, Single y) override;
    void MouseUp(Integer button, Integer shift, Single x, Single y) override;
    void Deactivated() override;
    bool IsOpen() const override { return open_; }
    std::vector<std::string> Dump() const override;

    // ---- Painting
    void PaintHeader(host::Surface& surface);
    // A box in three strokes: the outline, then its left and top edges, in
    // button shadow and highlight; `raised` puts the highlight on the left
    // and top edges, otherwise the shadow.
    static void DrawBevelBox(host::Surface& surface, int x1, int y1, int x2, int y2, bool raised);

private:
    void Measure();
    Date Today() const;
    // Adds an interval, keeping the date where the result would leave the calendar.
    Date Moved(const char* interval, int count) const;
    // Clamps CurrentDate and shows its month.
    void FollowCurrentDate();
    void RestoreOpeningDate();
    Date FirstShown() const;

    host::ControlSite& site_;
    Font font_;
    Font boldFont_;
    Geometry geometry_;
    Date currentDate_ = 0;
    Long shownMonth_ = 1;
    Long shownYear_ = 2000;
    std::array<Long, 3> openingDateParts_ = {-1, -1, -1};
    bool openedWithoutDate_ = false;  // the owner sent its no-date text
    SpinnerHalf pressed_ = SpinnerHalf::None;
    bool capture_ = false;
    bool open_ = true;
};

}  // namespace kelvarin::controls
