// One control in a Qt window: the widget is the control's site. It keeps
// the control's persistent image (painted by the control, shown by
// paintEvent with the frame around it), translates Qt's input into the
// host's calls, and turns the control's events and property-changed
// notifications into Qt signals.
//
// Every call into the control goes through one guard: a runtime error the
// control raises (a HostError) is reported by qWarning and the hostError
// signal, and never reaches Qt's event loop.
//
// Sections: creation; dispatch; persistence; signals; ControlSite; Qt events.
#pragma once

#include <cstdint>
#include <memory>

#include <QImage>
#include <QString>
#include <QVariant>
#include <QWidget>

#include "host/Control.h"
#include "host/FormFile.h"
#include "qt/ImageSurface.h"
#include "qt/QtText.h"

namespace kelvarin::qt {

class ControlWidget : public QWidget, public host::ControlSite {
    Q_OBJECT

public:
    // The enumerations every control's frame shares (the type library's
    // names have blanks).
    enum BorderStyleKind { None = 0, FixedSingle = 1 };
    Q_ENUM(BorderStyleKind)
    enum AppearanceKind { Flat = 0, ThreeD = 1 };
    Q_ENUM(AppearanceKind)

    // Sites a control made by the class factory and initialises it as a new
    // instance placed on a form. A null control (an unknown class) makes an
    // empty widget whose calls all fail with a reported error.
    explicit ControlWidget(std::unique_ptr<host::Control> control, QWidget* parent = nullptr);
    ~ControlWidget() override;
    ControlWidget(const ControlWidget&) = delete;
    ControlWidget& operator=(const ControlWidget&) = delete;

    // The control's class name ("ProgressBox"), empty without a control.
    QString className() const;
    host::Control* control() noexcept { return control_.get(); }
    const host::Control* control() const noexcept { return control_.get(); }

    // ---- Dispatch by member name (case-insensitive) --------------------------
    // These are the widget's only way into the control's properties and
    // methods (the typed properties of subclasses use them too). A failure
    // is reported and gives an invalid QVariant or false.
    QVariant getMember(const QString& name);
    bool letMember(const QString& name, const QVariant& value);
    bool setMember(const QString& name, const QVariant& value);  // object references
    QVariant callMember(const QString& name, const QVariantList& args = {});

    // ---- Persistence ------------------------------------------------------------
    // The control as one entry of a form file: class, object name, geometry
    // in the parent, and the properties the control writes.
    host::FormControl toFormControl();
    // Takes geometry and properties from a form entry of the same class;
    // false (and reported) when the control raised an error while reading.
    bool readFormControl(host::FormControl& entry, const QString& place);
    // The properties alone, as the control reads them when a form loads;
    // `place` names the properties in error messages.
    bool readProperties(host::MemoryPropertyBag& stored, const QString& place);

    // The last error the guard reported (number 0 for a non-runtime error).
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

protected:
    // Emits the subclass's typed signal for an event.
    virtual void emitTypedEvent(int number, const QVariantList& args) {
        (void)number;
        (void)args;
    }

    // Typed reads for the Q_PROPERTYs of subclasses. Colours travel as the
    // 32 bits of a Long and read back unsigned.
    uint colorMember(const char* name);
    int intMember(const char* name);

    // Runs f, reporting any error; false when one was raised.
    template <typename F>
    bool guard(const char* where, F&& f) noexcept {
        try {
            f();
            return true;
        } catch (...) {
            reportCurrentError(where);
            return false;
        }
    }

public:
    // ---- ControlSite ------------------------------------------------------------
    void PropertyChanged(std::string_view name) override;
    void RaiseEvent(int number, std::span<Variant> args) override;
    std::shared_ptr<Font> AmbientFont() override;
    bool AmbientDisplayAsDefault() override { return displayAsDefault_; }
    std::string ExtenderName() override;
    double ExtenderLeft() override { return x(); }
    double ExtenderTop() override { return y(); }
    double ExtenderWidth() override { return width(); }
    double ContainerUnitsPerPixel() override { return 1.0; }
    Long WindowHandle() override { return handle_; }
    host::Surface& ClientSurface() override { return client_; }
    void Refresh() override { update(); }
    std::unique_ptr<host::Timer> CreateTimer(host::TimerCallback onTick) override;
    std::uint32_t TickCount() override;
    Date Now() override;
    bool IsPointerOver() override;
    host::Size ScreenSize() override;
    host::Point ClientToScreen(host::Point client) override;
    void DoEvents() override;
    void ShowModal(host::Popup& popup, host::Point screen) override;
    const Locale& UserLocale() override;

    // The ambient DisplayAsDefault the container gives (false unless set).
    void setDisplayAsDefault(bool value);
    // The image as shown, frame included (for tests and screenshots).
    const QImage& image() const noexcept { return image_; }

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
    void reportCurrentError(const char* where) noexcept;
    // Makes the image the widget's size and lays out the client area.
    void relayout();
    // After a call into the control: the frame, enabled state and pointer
    // follow the surface properties it may have changed.
    void syncSurface();
    void paintFrame();
    QPointF clientPoint(const QPointF& widgetPoint) const;
    bool isSecondClick(const QMouseEvent& event);

    std::unique_ptr<host::Control> control_;
    QImage image_;
    TextPainter text_;
    ImageSurface client_;
    Long handle_;
    bool displayAsDefault_ = false;
    bool initialised_ = false;
    bool afterDoubleClick_ = false;
    bool doubleClickPending_ = false;
    bool hasControlFocus_ = false;  // GotFocus told, LostFocus not yet
    quint64 lastPressTime_ = 0;
    Qt::MouseButton lastPressButton_ = Qt::NoButton;
    QPoint lastPressAt_;
    int frameWidth_ = -1;
    std::int16_t frameStyle_ = -1, frameAppearance_ = -1;
    int lastErrorNumber_ = 0;
    QString lastErrorText_;
};

}  // namespace kelvarin::qt
