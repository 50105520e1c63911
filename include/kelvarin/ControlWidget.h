// SPDX-License-Identifier: MIT
// One control in a Qt window: the widget is the control's site and frame.
// It places the control as every host does (host/Site.h), keeps its
// persistent image (painted by the control, shown by paintEvent with the
// frame around it), hands Qt's input to the host's protocols in one line per
// event, and turns the control's events and property-changed notifications
// into Qt signals. Alt and one of a control's access keys, typed anywhere in
// its window, go to that control (accessKeyPress).
//
// Every call into the control goes through one guard (qt/Guard.h): a
// runtime error the control raises (a HostError) is reported by qWarning
// and the hostError signal, and never reaches Qt's event loop.
//
// The widget is its control's site through a private part (ControlWidget::Site,
// in ControlWidget.cpp), so this header needs none of the core's.
//
// Sections: creation; dispatch; persistence; signals; the site; Qt events.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include <array>

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPixmap>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>

#include <kelvarin/Export.h>

namespace kelvarin {
class Variant;
}  // namespace kelvarin
namespace kelvarin::host {
class Control;
class ControlSite;
class PointerProtocol;
struct FormControl;
struct PointerEvent;
}  // namespace kelvarin::host

namespace kelvarin::qt {

class ImageSurface;
class TextPainter;
struct Failure;

class KELVARIN_WIDGETS_API ControlWidget : public QWidget {
    Q_OBJECT

public:
    // The enumerations every control's frame shares (the type library's
    // names have blanks).
    enum BorderStyleKind { None = 0, FixedSingle = 1 };
    Q_ENUM(BorderStyleKind)
    enum AppearanceKind { Flat = 0, ThreeD = 1 };
    Q_ENUM(AppearanceKind)
    // eAlignmentText, the caption alignment of the bar and the button.
    enum AlignmentText { LeftJustify = 0, Center = 1, RightJustify = 2 };
    Q_ENUM(AlignmentText)

    // Sites a control made by the class factory and places it as a new
    // instance (InitProperties). A null control (an unknown class) makes an
    // empty widget whose calls all fail with a reported error.
    explicit ControlWidget(std::unique_ptr<host::Control> control, QWidget* parent = nullptr);
    // Sites a control of a form: the widget takes the entry's object name
    // and geometry in the parent, and the control reads the entry's
    // properties (ReadProperties) and is never initialised as a new one.
    // `place` names the properties in error messages. An error the control
    // raises meanwhile is reported (hasReportedError); it keeps what it read.
    ControlWidget(std::unique_ptr<host::Control> control, host::FormControl& entry,
                  const QString& place, QWidget* parent = nullptr);
    ~ControlWidget() override;
    ControlWidget(const ControlWidget&) = delete;
    ControlWidget& operator=(const ControlWidget&) = delete;

    // The control's class name ("ProgressBox"), empty without a control.
    QString className() const;
    host::Control* control() noexcept { return control_.get(); }
    const host::Control* control() const noexcept { return control_.get(); }
    // The widget's side of the control's site (its ambient properties,
    // timers, clock, screen).
    host::ControlSite& site() noexcept;
    // The widget that sites a control, or null.
    static ControlWidget* Of(host::Control& control) noexcept;

    // ---- Dispatch by member name (case-insensitive) --------------------------
    // These are the widget's only way into the control's properties and
    // methods (the typed properties of subclasses use them too). A failure
    // is reported and gives an invalid QVariant or false.
    QVariant getMember(const QString& name) const;
    bool letMember(const QString& name, const QVariant& value);
    bool setMember(const QString& name, const QVariant& value);  // object references
    QVariant callMember(const QString& name, const QVariantList& args = {});

    // ---- Persistence ------------------------------------------------------------
    // The control as one entry of a form file: class, object name, geometry
    // in the parent, and the properties the control writes. (A form is
    // read back through the constructor for a loaded control.)
    host::FormControl toFormControl();

    // The last error the guard reported (number 0 for a non-runtime error).
    bool hasReportedError() const noexcept { return !lastErrorText_.isEmpty(); }
    int lastErrorNumber() const noexcept { return lastErrorNumber_; }
    QString lastErrorText() const { return lastErrorText_; }

    QSize sizeHint() const override;

    // ---- Value conversions between Qt and the host ---------------------------
    static Variant ToVariant(const QVariant& value);
    static QVariant FromVariant(const Variant& value);

signals:
    // A property-changed notification, under the persisted name.
    void propertyChanged(const QString& name);
    // Every event of the control, in the order raised, with its number in
    // the event interface; subclasses also emit a typed signal per event,
    // right after this one.
    void eventRaised(int number, const QString& name, const QVariantList& args);
    // A runtime error the control raised (a HostError), or 0 and the text of
    // another failure; `where` names the call that failed.
    void hostError(int number, const QString& text, const QString& where);

    // The NOTIFY signals of the surface properties the subclasses publish.
    // A property-changed notification of the control emits the signal named
    // after the member (PropertyChanged), so every subclass's own
    // "<Member>Changed" signal is reached the same way.
    void BackColorChanged();
    void EnabledChanged();
    void FontChanged();
    void ForeColorChanged();
    void BorderStyleChanged();
    void AppearanceChanged();
    void MouseIconChanged();
    void MousePointerChanged();

public:
    // ---- The surface properties, for the Q_PROPERTYs of the subclasses whose
    // controls have them. Colours are the 32 bits of an OLE colour, unsigned;
    // the QColor ones are what Designer's colour picker edits (see
    // qColorMember). Enabled and Font are the widget's own enabled and font
    // (syncSurface and changeEvent keep them one state); their Q_PROPERTYs
    // are for code and scripts, and Designer shows only the widget's.
    uint BackColor() const { return colorMember("BackColor"); }
    void SetBackColor(uint color) { letMember(QStringLiteral("BackColor"), color); }
    QColor backColor() const { return qColorMember("BackColor"); }
    void setBackColor(const QColor& color) { letMember(QStringLiteral("BackColor"), color); }
    void resetBackColor() { resetMember("BackColor"); }
    uint ForeColor() const { return colorMember("ForeColor"); }
    void SetForeColor(uint color) { letMember(QStringLiteral("ForeColor"), color); }
    QColor foreColor() const { return qColorMember("ForeColor"); }
    void setForeColor(const QColor& color) { letMember(QStringLiteral("ForeColor"), color); }
    void resetForeColor() { resetMember("ForeColor"); }
    bool Enabled() const { return getMember(QStringLiteral("Enabled")).toBool(); }
    void SetEnabled(bool enabled) { letMember(QStringLiteral("Enabled"), enabled); }
    QFont Font() const { return getMember(QStringLiteral("Font")).value<QFont>(); }
    void SetFont(const QFont& font) { setMember(QStringLiteral("Font"), font); }
    BorderStyleKind BorderStyle() const { return BorderStyleKind(intMember("BorderStyle")); }
    void SetBorderStyle(BorderStyleKind style) { letMember(QStringLiteral("BorderStyle"), style); }
    AppearanceKind Appearance() const { return AppearanceKind(intMember("Appearance")); }
    void SetAppearance(AppearanceKind look) { letMember(QStringLiteral("Appearance"), look); }
    int hWnd() const { return intMember("hWnd"); }
    QPixmap MouseIcon() const;
    void SetMouseIcon(const QPixmap& icon) { setMember(QStringLiteral("MouseIcon"), icon); }
    int MousePointer() const { return intMember("MousePointer"); }
    void SetMousePointer(int pointer) { letMember(QStringLiteral("MousePointer"), pointer); }

protected:
    // Whether the pointer is over the control: the topmost widget under the
    // cursor is this one (another widget lying on top counts as outside).
    virtual bool isPointerOver() const;

    // Emits the subclass's typed signal for an event.
    virtual void emitTypedEvent(int number, const QVariantList& args) {
        (void)number;
        (void)args;
    }

    // Typed reads for the Q_PROPERTYs of subclasses. Colours travel as the
    // 32 bits of a Long and read back unsigned.
    uint colorMember(const char* name) const;
    int intMember(const char* name) const;
    // A colour property as Designer's colour picker shows it: a system
    // colour as the widget's palette gives it now. Writing it back stores a
    // plain colour, so a system colour stays one only while it is not edited;
    // the reset restores the member's default (a system colour again).
    QColor qColorMember(const char* name) const;
    void resetMember(const char* name);

    // Runs f, reporting any error; false when one was raised. System colours
    // are the widget's own palette's while f runs.
    bool guard(const char* where, const std::function<void()>& f) const noexcept;

public:
    // The user typed Alt and one of the control's access keys (its key code),
    // wherever the focus is in the window.
    void accessKeyPress(std::int16_t keyCode);

    // The ambient DisplayAsDefault the container gives (false unless set).
    bool displayAsDefault() const noexcept { return displayAsDefault_; }
    void setDisplayAsDefault(bool value);
    // The image as shown, frame included (for tests and screenshots).
    const QImage& image() const noexcept;

protected:
    // ---- Qt events: translated and forwarded -----------------------------------
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    class Site;
    friend class Site;

    // Both constructors: the widget, then the control placed as new
    // (entry null) or as loaded from the entry.
    ControlWidget(std::unique_ptr<host::Control> control, host::FormControl* entry,
                  const QString& place, QWidget* parent);
    void report(const char* where, const Failure& failure) const noexcept;
    // Makes the image the widget's size and lays out the client area.
    void resizeImage();
    // After a call into the control: the frame, enabled state, font and
    // pointer follow the surface properties it may have changed.
    void syncSurface();
    // The control's Enabled and Font are the widget's enabled and font: each
    // side follows the other after either changed.
    void syncEnabledAndFont();
    bool hasEnabledAndFont() const;  // every control of the library has both
    void notifyChanged(std::string_view name);
    void takeEnabledAndFont();
    void paintFrame();
    void layOutFrame();
    // Runs a call of input into the control, then follows its surface.
    void forward(const char* where, const std::function<void()>& f) noexcept;
    // Runs a call through dispatch (an error without a control), then
    // follows the surface; false when it raised.
    bool dispatch(const char* where, const std::function<void(host::Control&)>& f) noexcept;
    host::PointerEvent pointerEvent(const QMouseEvent& event, Qt::MouseButtons buttons) const;
    // Whether a press is the second of a double click, by Qt's own rule.
    bool isSecondClick(const QMouseEvent& event);

    std::unique_ptr<host::Control> control_;
    std::unique_ptr<Site> site_;
    std::unique_ptr<host::PointerProtocol> pointer_;
    QImage image_;
    QImage shown_;  // the part being painted, in Qt's own 32-bit format
    std::unique_ptr<TextPainter> text_;
    std::unique_ptr<ImageSurface> client_;
    std::int32_t handle_;
    bool displayAsDefault_ = false;
    bool placed_ = false;           // the placing sequence has run
    bool hasControlFocus_ = false;  // GotFocus told, LostFocus not yet
    bool leaveGranted_ = false;     // Tab has asked the control already
    // The control that refused to be left and is taking the focus back.
    static inline QPointer<ControlWidget> reclaiming_;
    quint64 lastPressTime_ = 0;
    Qt::MouseButton lastPressButton_ = Qt::NoButton;
    QPoint lastPressAt_;
    // The system colour table (common/OleColor.h) of the widget's effective palette.
    std::array<std::uint32_t, 31> sysColors_;
    bool syncing_ = false;  // inside syncEnabledAndFont or takeEnabledAndFont
    // Diagnostics: kept by the const reads too.
    mutable int lastErrorNumber_ = 0;
    mutable QString lastErrorText_;
};

}  // namespace kelvarin::qt
