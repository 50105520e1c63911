// SPDX-License-Identifier: MIT
#include <kelvarin/ControlWidget.h>

#include <cstring>
#include <utility>

#include <QApplication>
#include <QCursor>
#include <QDateTime>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QScreen>
#include <QStyleHints>
#include <QTimer>

#include "common/HostError.h"
#include "common/Picture.h"
#include "host/Control.h"
#include "host/FormFile.h"
#include "host/Pointer.h"
#include "host/Site.h"
#include "library/Dispatch.h"
#include "qt/Accessibility.h"
#include "qt/Guard.h"
#include "qt/ImageSurface.h"
#include "qt/PictureImage.h"
#include "qt/PopupWindow.h"
#include "qt/QtPlatform.h"
#include "qt/QtText.h"

namespace kelvarin::qt {

namespace {

// The host numbers windows; ours count up from a value no real handle uses.
Long NextHandle() {
    static Long next = 0x20010;
    return next += 2;
}

std::string Utf8(const QString& s) { return s.toStdString(); }

// An interval timer on a QTimer. An interval of 0 keeps it from firing, as
// the host's timers do, although it stays enabled.
class QtTimer : public host::Timer {
public:
    explicit QtTimer(host::TimerCallback onTick) {
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, [cb = std::move(onTick)] { cb(); });
    }
    Long Interval() const override { return interval_; }
    void SetInterval(Long milliseconds) override {
        if (milliseconds < 0) RaiseHostError(HostErrorCode::InvalidPropertyValue);
        interval_ = milliseconds;
        Apply(true);
    }
    bool Enabled() const override { return enabled_; }
    void SetEnabled(bool enabled) override {
        const bool restart = enabled && !enabled_;
        enabled_ = enabled;
        Apply(restart);
    }

private:
    void Apply(bool restart) {
        if (!enabled_ || interval_ <= 0) {
            timer_.stop();
            return;
        }
        timer_.setInterval(static_cast<int>(interval_));
        if (restart || !timer_.isActive()) timer_.start();
    }

    QTimer timer_;
    Long interval_ = 0;
    bool enabled_ = false;
};

Qt::CursorShape CursorOf(Integer pointer) {
    switch (pointer) {
        case 2: return Qt::CrossCursor;
        case 3: return Qt::IBeamCursor;
        case 5:
        case 15: return Qt::SizeAllCursor;
        case 6: return Qt::SizeBDiagCursor;
        case 7: return Qt::SizeVerCursor;
        case 8: return Qt::SizeFDiagCursor;
        case 9: return Qt::SizeHorCursor;
        case 10: return Qt::UpArrowCursor;
        case 11: return Qt::WaitCursor;
        case 12: return Qt::ForbiddenCursor;
        case 13: return Qt::BusyCursor;
        case 14: return Qt::WhatsThisCursor;
        default: return Qt::ArrowCursor;
    }
}

// Alt and a control's access key is the window's, wherever the focus is:
// the first visible control of the window whose access keys hold the key
// takes it, and the stroke goes no further (its release neither), so the
// focused widget hears nothing and keeps the focus. One filter serves the
// application.
class AccessKeyFilter : public QObject {
public:
    using QObject::QObject;

    static void Install() {
        static QPointer<AccessKeyFilter> filter;
        if (filter || !qApp) return;
        filter = new AccessKeyFilter(qApp);
        qApp->installEventFilter(filter);
    }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        if (event->type() == QEvent::KeyRelease) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (swallowRelease_ == 0 || key->key() != swallowRelease_ || key->isAutoRepeat())
                return false;
            swallowRelease_ = 0;
            return true;
        }
        if (event->type() != QEvent::KeyPress || !receiver->isWidgetType()) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const Qt::KeyboardModifiers held =
            key->modifiers() & (Qt::AltModifier | Qt::ControlModifier | Qt::MetaModifier);
        if (held != Qt::AltModifier) return false;
        const int code = KeyCodeOf(*key);
        if (code == 0) return false;
        QWidget* window = static_cast<QWidget*>(receiver)->window();
        for (ControlWidget* w : window->findChildren<ControlWidget*>()) {
            if (!w->control() || !w->isVisible() || !w->control()->HasAccessKey(code)) continue;
            swallowRelease_ = key->key();
            w->accessKeyPress(static_cast<Integer>(code));
            return true;
        }
        return false;
    }

private:
    int swallowRelease_ = 0;  // the Qt key whose release is the consumed stroke's
};

}  // namespace

// ---- The site ---------------------------------------------------------------------

// What the control asks of its container, answered by the widget.
class ControlWidget::Site final : public host::ControlSite, public host::SiteFrame {
public:
    explicit Site(ControlWidget& widget) : w_(widget) {}
    ControlWidget& Widget() noexcept { return w_; }

    void PropertyChanged(std::string_view name) override;
    void RaiseEvent(int number, std::span<Variant> args) override;
    std::shared_ptr<kelvarin::Font> AmbientFont() override;
    bool AmbientDisplayAsDefault() override { return w_.displayAsDefault_; }
    std::string ExtenderName() override { return Utf8(w_.objectName()); }
    double ExtenderLeft() override { return w_.x(); }
    double ExtenderTop() override { return w_.y(); }
    double ExtenderWidth() override { return w_.width(); }
    double ContainerUnitsPerPixel() override { return 1.0; }
    Long WindowHandle() override { return w_.handle_; }
    host::Surface& ClientSurface() override { return *w_.client_; }
    void Refresh() override { w_.update(); }
    std::unique_ptr<host::Timer> CreateTimer(host::TimerCallback onTick) override;
    std::uint32_t TickCount() override { return qt::TickCount(); }
    Date Now() override { return LocalDateTime(std::chrono::system_clock::now()); }
    bool IsPointerOver() override;
    host::Size ScreenSize() override;
    host::Point ClientToScreen(host::Point client) override;
    void DoEvents() override { QCoreApplication::processEvents(QEventLoop::AllEvents); }
    void ShowModal(host::Popup& popup, host::Point screen) override;
    const Locale& UserLocale() override { return CurrentLocale(); }
    int FrameBorder() const override { return w_.client_->View().left(); }
    void LayOutFrame() override { w_.layOutFrame(); }

private:
    ControlWidget& w_;
};

// ---- Creation ---------------------------------------------------------------------

ControlWidget::ControlWidget(std::unique_ptr<host::Control> control, QWidget* parent)
    : ControlWidget(std::move(control), nullptr, QString(), parent) {}

ControlWidget::ControlWidget(std::unique_ptr<host::Control> control, host::FormControl& entry,
                             const QString& place, QWidget* parent)
    : ControlWidget(std::move(control), &entry, place, parent) {}

ControlWidget::ControlWidget(std::unique_ptr<host::Control> control, host::FormControl* entry,
                             const QString& place, QWidget* parent)
    : QWidget(parent),
      control_(std::move(control)),
      site_(std::make_unique<Site>(*this)),
      text_(std::make_unique<TextPainter>()),
      client_(std::make_unique<ImageSurface>(image_, *text_)),
      handle_(NextHandle()),
      sysColors_(SysColorsFrom(palette())) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);  // the control hears every move, buttons or not
    setFocusPolicy(Qt::StrongFocus);
    if (entry) {
        setObjectName(QString::fromStdString(entry->name));
        setGeometry(entry->left, entry->top, std::max(entry->width, 0), std::max(entry->height, 0));
    } else {
        resize(sizeHint());
    }
    // Text is kept for a sharp showing from the first drawing on, where the
    // screen asks for it.
    text_->SetRecording(devicePixelRatioF() > 1);
    resizeImage();
    if (!control_) {
        lastErrorText_ = QStringLiteral("no such control class");
        return;
    }
    control_->SetSite(site_.get());
    pointer_ = std::make_unique<host::PointerProtocol>(*control_);
    AccessKeyFilter::Install();
    InstallAccessibility();
    if (entry) {
        host::FormPropertyBag bag(entry->properties, Utf8(place));
        guard("Place", [&] { host::PlaceLoaded(*control_, bag, *site_); });
    } else {
        guard("Place", [&] { host::PlaceNew(*control_, *site_); });
    }
    placed_ = true;
    syncSurface();
}

ControlWidget::~ControlWidget() {
    if (!control_) return;
    guard("Terminate", [&] { control_->Terminate(); });
    control_->SetSite(nullptr);
    pointer_.reset();
    control_.reset();  // its timers call back into this widget
}

QString ControlWidget::className() const {
    return control_ ? QString::fromStdString(control_->TypeName()) : QString();
}

QSize ControlWidget::sizeHint() const { return {200, 24}; }

host::ControlSite& ControlWidget::site() noexcept { return *site_; }

ControlWidget* ControlWidget::Of(host::Control& control) noexcept {
    if (!control.HasSite()) return nullptr;
    auto* site = dynamic_cast<Site*>(&control.Site());
    return site ? &site->Widget() : nullptr;
}

// System colours are the widget's own palette's while f runs, so a palette
// set on a parent or on the widget is what the control paints with.
// Each call into the control is one paint pass: a redraw inside it pays for
// one painter, ended before anything outside reads the image.
bool ControlWidget::guard(const char* where, const std::function<void()>& f) const noexcept {
    const ScopedSysColors colors(sysColors_);
    const TextPainter::Pass pass(*text_);
    const Failure failure = Guard(f);
    if (failure) report(where, failure);
    return !failure;
}

void ControlWidget::forward(const char* where, const std::function<void()>& f) noexcept {
    if (!control_) return;
    guard(where, f);
    syncSurface();
}

bool ControlWidget::dispatch(const char* where,
                             const std::function<void(host::Control&)>& f) noexcept {
    const bool ok = guard(where, [&] {
        if (!control_) RaiseHostError(HostErrorCode::ObjectDoesNotSupport);
        f(*control_);
    });
    syncSurface();
    return ok;
}

void ControlWidget::report(const char* where, const Failure& failure) const noexcept {
    lastErrorNumber_ = failure.number;
    lastErrorText_ = failure.text;
    WarnFailure(objectName(), where, failure);
    // A read that fails is reported like any call: the signal is the
    // widget's diagnostics, not a change of its state.
    emit const_cast<ControlWidget*>(this)->hostError(failure.number, failure.text,
                                                     QString::fromUtf8(where));
}

// ---- Dispatch -----------------------------------------------------------------------

Variant ControlWidget::ToVariant(const QVariant& value) {
    if (!value.isValid()) return Variant();
    switch (value.metaType().id()) {
        case QMetaType::Nullptr: return Variant::Null();
        case QMetaType::Bool: return Variant(value.toBool());
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
        case QMetaType::Int: return Variant(static_cast<Long>(value.toInt()));
        // Wider or unsigned numbers go as Double, so conversion to the
        // member's type checks their range (a colour up to &HFFFFFFFF fits).
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double: return Variant(value.toDouble());
        case QMetaType::Float: return Variant(static_cast<Single>(value.toFloat()));
        case QMetaType::QString: return Variant(Utf8(value.toString()));
        case QMetaType::QByteArray: return Variant(value.toByteArray().toStdString());
        case QMetaType::QFont:
            return Variant(std::shared_ptr<Object>(
                std::make_shared<kelvarin::Font>(FromQFont(value.value<QFont>()))));
        case QMetaType::QColor:
            return Variant(static_cast<Long>(FromQColor(value.value<QColor>())));
        case QMetaType::QImage: {
            const QImage image = value.value<QImage>();
            return image.isNull() ? Variant::Nothing()
                                  : Variant(std::shared_ptr<Object>(FromQImage(image)));
        }
        case QMetaType::QPixmap: {
            const QPixmap pixmap = value.value<QPixmap>();
            return pixmap.isNull() ? Variant::Nothing()
                                   : Variant(std::shared_ptr<Object>(FromQImage(pixmap.toImage())));
        }
        case QMetaType::QDate: {
            const QDate d = value.toDate();
            if (!d.isValid()) RaiseHostError(HostErrorCode::TypeMismatch);
            return Variant::FromDate(DateSerial(d.year(), d.month(), d.day()));
        }
        case QMetaType::QTime: {
            const QTime t = value.toTime();
            if (!t.isValid()) RaiseHostError(HostErrorCode::TypeMismatch);
            return Variant::FromDate(TimeSerial(t.hour(), t.minute(), t.second()));
        }
        case QMetaType::QDateTime: {
            const QDateTime dt = value.toDateTime();
            if (!dt.isValid()) RaiseHostError(HostErrorCode::TypeMismatch);
            const QDate d = dt.date();
            const QTime t = dt.time();
            return Variant::FromDate(CombineDateTime(DateSerial(d.year(), d.month(), d.day()),
                                                     TimeSerial(t.hour(), t.minute(), t.second())));
        }
        default: break;
    }
    if (value.metaType().flags() & QMetaType::IsEnumeration)
        return Variant(static_cast<Long>(value.toInt()));
    if (value.canConvert<double>() && value.metaType().id() != QMetaType::QString)
        return Variant(value.toDouble());
    RaiseHostError(HostErrorCode::TypeMismatch);
}

QVariant ControlWidget::FromVariant(const Variant& value) {
    switch (value.Type()) {
        case VarType::Empty: return {};
        case VarType::Null: return QVariant::fromValue(nullptr);
        case VarType::Boolean: return value.ToBoolean();
        case VarType::Integer:
        case VarType::Long: return static_cast<int>(value.ToLong());
        case VarType::Single: return static_cast<double>(value.ToSingle());
        case VarType::Double: return value.ToDouble();
        case VarType::Date: {
            const DateParts p = SplitDate(value.ToDate());
            // A wall-clock value: kept in UTC so that no time of day falls
            // into a daylight-saving gap.
            return QDateTime(QDate(p.year, p.month, p.day), QTime(p.hour, p.minute, p.second),
                             Qt::UTC);
        }
        case VarType::String: return QString::fromStdString(value.ToString());
        case VarType::Object: {
            const std::shared_ptr<Object> object = value.ToObject();
            if (const auto font = std::dynamic_pointer_cast<kelvarin::Font>(object))
                return ToQFont(*font);
            if (const auto picture = std::dynamic_pointer_cast<Picture>(object))
                return ToQImage(*picture);
            return {};
        }
    }
    return {};
}

QVariant ControlWidget::getMember(const QString& name) const {
    QVariant result;
    guard("Get", [&] {
        if (!control_) RaiseHostError(HostErrorCode::ObjectDoesNotSupport);
        result = FromVariant(library::Get(*control_, Utf8(name)));
    });
    return result;
}

QPixmap ControlWidget::MouseIcon() const {
    const QImage image = getMember(QStringLiteral("MouseIcon")).value<QImage>();
    return image.isNull() ? QPixmap() : QPixmap::fromImage(image);
}

uint ControlWidget::colorMember(const char* name) const {
    return static_cast<uint>(getMember(QString::fromLatin1(name)).toInt());
}

int ControlWidget::intMember(const char* name) const {
    return getMember(QString::fromLatin1(name)).toInt();
}

QColor ControlWidget::qColorMember(const char* name) const {
    const ScopedSysColors colors(sysColors_);
    return ToQColor(colorMember(name));
}

void ControlWidget::resetMember(const char* name) {
    dispatch("Reset", [&](host::Control& c) {
        for (const host::Member& m : c.Members()) {
            if (m.name != name) continue;
            library::Let(c, m.name, m.defaultValue);
            return;
        }
        RaiseHostError(HostErrorCode::ObjectDoesNotSupport);
    });
}

bool ControlWidget::letMember(const QString& name, const QVariant& value) {
    return dispatch("Let",
                    [&](host::Control& c) { library::Let(c, Utf8(name), ToVariant(value)); });
}

bool ControlWidget::setMember(const QString& name, const QVariant& value) {
    return dispatch("Set",
                    [&](host::Control& c) { library::Set(c, Utf8(name), ToVariant(value)); });
}

QVariant ControlWidget::callMember(const QString& name, const QVariantList& args) {
    QVariant result;
    dispatch("Call", [&](host::Control& c) {
        std::vector<Variant> converted;
        for (const QVariant& a : args) converted.push_back(ToVariant(a));
        result = FromVariant(library::Call(c, Utf8(name), converted));
    });
    return result;
}

// ---- Persistence ----------------------------------------------------------------------

host::FormControl ControlWidget::toFormControl() {
    host::FormControl entry;
    entry.className = Utf8(className());
    entry.name = Utf8(objectName());
    entry.left = x();
    entry.top = y();
    entry.width = width();
    entry.height = height();
    if (control_) {
        guard("WriteProperties", [&] {
            host::FormPropertyBag bag(entry.properties, entry.name);
            control_->WriteProperties(bag);
        });
    }
    return entry;
}

// ---- Frame and surface ------------------------------------------------------------------

const QImage& ControlWidget::image() const noexcept {
    text_->End();
    return image_;
}

void ControlWidget::resizeImage() {
    const QSize size = this->size();
    if (image_.size() != size) {
        text_->End();  // the painter goes with the image it paints
        image_ =
            QImage(std::max(size.width(), 0), std::max(size.height(), 0), QImage::Format_BGR888);
        const ScopedSysColors colors(sysColors_);
        const OLE_COLOR back = control_ ? TranslateSysColor(control_->SurfaceState().backColor)
                                        : GetSysColor(COLOR_BTNFACE);
        image_.fill(ToQColor(back));
    }
    paintFrame();
}

void ControlWidget::paintFrame() {
    const int b = control_ ? host::BorderWidth(control_->SurfaceState()) : 0;
    const int w = image_.width(), h = image_.height();
    client_->SetView(QRect(b, b, std::max(w - 2 * b, 0), std::max(h - 2 * b, 0)));
    if (!control_ || b == 0 || image_.isNull()) return;
    const ScopedSysColors colors(sysColors_);
    ImageSurface whole(image_, *text_);
    whole.SetView(image_.rect());
    host::PaintBorder(whole, control_->SurfaceState(), w, h);
}

void ControlWidget::layOutFrame() {
    paintFrame();
    update();
}

void ControlWidget::syncSurface() {
    if (!control_ || !placed_) return;
    const host::SurfaceProperties& s = control_->SurfaceState();
    syncEnabledAndFont();
    if (s.mousePointer == 99) {
        const auto icon = std::dynamic_pointer_cast<Picture>(s.mouseIcon);
        if (icon && icon->HasHandle()) {
            const QImage image = ToQImage(*icon);
            setCursor(QCursor(QPixmap::fromImage(image), icon->HotSpotX(), icon->HotSpotY()));
        }
    } else if (s.mousePointer == 0) {
        unsetCursor();
    } else {
        setCursor(CursorOf(s.mousePointer));
    }
    guard("Resize", [&] { host::SyncFrame(*control_, *site_); });
}

bool ControlWidget::hasEnabledAndFont() const {
    int found = 0;
    for (const host::Member& m : control_->Members())
        found += m.kind == host::MemberKind::Property && (m.name == "Enabled" || m.name == "Font");
    return found == 2;
}

// The widget's own enabled flag (not its parent's) is the control's
// Enabled: a control in a disabled panel takes no input, as Qt has it, but
// keeps, and saves, its own Enabled.
void ControlWidget::syncEnabledAndFont() {
    if (!control_ || !placed_ || syncing_) return;
    if (!hasEnabledAndFont()) return;
    bool enabled = true;
    std::shared_ptr<kelvarin::Font> font;
    const bool read = guard("Get", [&] {
        enabled = library::Get(*control_, "Enabled").ToBoolean();
        font =
            std::dynamic_pointer_cast<kelvarin::Font>(library::Get(*control_, "Font").ToObject());
    });
    if (!read) return;
    syncing_ = true;
    if (testAttribute(Qt::WA_ForceDisabled) == enabled) setEnabled(enabled);
    // Compared in the control's terms: a font the widget only inherits
    // (its container's) is not made the widget's own.
    if (font && !(FromQFont(this->font()) == *font)) setFont(ToQFont(*font));
    syncing_ = false;
}

void ControlWidget::takeEnabledAndFont() {
    if (!control_ || !placed_ || syncing_ || !hasEnabledAndFont()) return;
    syncing_ = true;
    const bool enabled = !testAttribute(Qt::WA_ForceDisabled);
    if (getMember(QStringLiteral("Enabled")).toBool() != enabled)
        letMember(QStringLiteral("Enabled"), enabled);
    if (!(FromQFont(getMember(QStringLiteral("Font")).value<QFont>()) == FromQFont(font())))
        setMember(QStringLiteral("Font"), font());
    syncing_ = false;
}

// A property-changed notification, under the persisted name: the
// propertyChanged signal, then the NOTIFY signal of the Q_PROPERTY.
void ControlWidget::notifyChanged(std::string_view name) {
    emit propertyChanged(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
    // The NOTIFY signal goes by the member's name, which the notification
    // gives in its persisted form.
    std::string_view member = name;
    for (const host::Member& m : control_->Members()) {
        if (m.persisted == name || m.name == name) {
            member = m.name;
            break;
        }
    }
    const QByteArray signal = QByteArray(member.data(), static_cast<qsizetype>(member.size())) +
                              QByteArrayLiteral("Changed()");
    const int index = metaObject()->indexOfSignal(signal.constData());
    if (index >= 0) metaObject()->method(index).invoke(this, Qt::DirectConnection);
}

// ---- The site ------------------------------------------------------------------------------

void ControlWidget::Site::PropertyChanged(std::string_view name) { w_.notifyChanged(name); }

void ControlWidget::Site::RaiseEvent(int number, std::span<Variant> args) {
    QVariantList list;
    for (const Variant& a : args) list.append(FromVariant(a));
    const std::string_view name = library::EventName(*w_.control_, number);
    emit w_.eventRaised(number, QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())),
                        list);
    w_.emitTypedEvent(number, list);
}

std::shared_ptr<kelvarin::Font> ControlWidget::Site::AmbientFont() {
    const QWidget* container = w_.parentWidget();
    return std::make_shared<kelvarin::Font>(
        FromQFont(container ? container->font() : QApplication::font()));
}

std::unique_ptr<host::Timer> ControlWidget::Site::CreateTimer(host::TimerCallback onTick) {
    // A tick runs inside the guard: an error of the control is reported,
    // never thrown into the event loop.
    return std::make_unique<QtTimer>([this, cb = std::move(onTick)] { w_.guard("Timer", cb); });
}

bool ControlWidget::Site::IsPointerOver() { return w_.isPointerOver(); }

bool ControlWidget::isPointerOver() const { return QApplication::widgetAt(QCursor::pos()) == this; }

host::Size ControlWidget::Site::ScreenSize() {
    const QScreen* s = w_.screen() ? w_.screen() : QApplication::primaryScreen();
    if (!s) return {};
    return {s->geometry().width(), s->geometry().height()};
}

host::Point ControlWidget::Site::ClientToScreen(host::Point client) {
    const QRect view = w_.client_->View();
    const QPoint p = w_.mapToGlobal(QPoint(view.left() + client.x, view.top() + client.y));
    return {p.x(), p.y()};
}

void ControlWidget::Site::ShowModal(host::Popup& popup, host::Point screen) {
    PopupWindow window(popup, &w_);
    QObject::connect(&window, &PopupWindow::hostError, &w_, &ControlWidget::hostError);
    window.exec(QPoint(screen.x, screen.y));
}

void ControlWidget::setDisplayAsDefault(bool value) {
    if (displayAsDefault_ == value) return;
    displayAsDefault_ = value;
    if (control_) guard("AmbientChanged", [&] { control_->AmbientChanged("DisplayAsDefault"); });
}

// ---- Qt events ---------------------------------------------------------------------------------

// The exposed part is shown through a 32-bit copy (CopyForShowing).
void ControlWidget::paintEvent(QPaintEvent* event) {
    const QRect exposed = event->rect().intersected(image_.rect());
    if (exposed.isEmpty()) return;
    const qreal ratio = devicePixelRatioF();
    if (text_->Recording() != (ratio > 1)) {
        // The ratio changed (another screen): text is kept for it from a
        // fresh paint on, or no longer kept.
        text_->SetRecording(ratio > 1);
        if (control_ && placed_) guard("DisplayChanged", [&] { control_->DisplayChanged(); });
    }
    // A paint may come inside a call into the control (DoEvents): its
    // painter is ended before the image is read, and begun again after.
    text_->End();
    if (ratio > 1) {
        QPainter(this).drawImage(QPoint(0, 0), text_->ShowAtRatio(image_, ratio));
        return;
    }
    CopyForShowing(image_, exposed, shown_);
    QPainter painter(this);
    painter.drawImage(exposed.topLeft(), shown_, QRect(QPoint(0, 0), exposed.size()));
}

void ControlWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (image_.size() == size()) return;
    resizeImage();
    if (placed_) {
        guard("Resize", [&] {
            control_->Resize();
            control_->Paint();
        });
    }
}

void ControlWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (!placed_) return;
    switch (event->type()) {
        case QEvent::EnabledChange: takeEnabledAndFont(); break;
        case QEvent::FontChange:
            if (!testAttribute(Qt::WA_SetFont))
                guard("AmbientChanged", [&] { control_->AmbientChanged("Font"); });
            takeEnabledAndFont();
            break;
        case QEvent::PaletteChange: {
            // Our palette, the container's or the desktop theme changed: the
            // system colours are read again from the palette now in effect.
            sysColors_ = SysColorsFrom(palette());
            if (palette() == QApplication::palette()) SetSysColors(sysColors_);
            paintFrame();
            guard("DisplayChanged", [&] { control_->DisplayChanged(); });
            update();
            break;
        }
        default: break;
    }
}

void ControlWidget::keyPressEvent(QKeyEvent* event) {
    if (!control_) return QWidget::keyPressEvent(event);
    const Integer shift = static_cast<Integer>(ShiftMaskOf(event->modifiers()));
    forward("KeyDown", [&] {
        if (Integer code = static_cast<Integer>(KeyCodeOf(*event))) control_->KeyDown(code, shift);
        // The character the key typed, as the host's ANSI code.
        const QString text = event->text();
        if (!text.isEmpty()) {
            Integer ascii = static_cast<Integer>(text[0].unicode() < 256 ? text[0].unicode() : '?');
            control_->KeyPress(ascii);
        }
    });
    event->accept();
}

void ControlWidget::keyReleaseEvent(QKeyEvent* event) {
    if (!control_ || event->isAutoRepeat()) return QWidget::keyReleaseEvent(event);
    const Integer shift = static_cast<Integer>(ShiftMaskOf(event->modifiers()));
    if (Integer code = static_cast<Integer>(KeyCodeOf(*event)))
        forward("KeyUp", [&] { control_->KeyUp(code, shift); });
    event->accept();
}

host::PointerEvent ControlWidget::pointerEvent(const QMouseEvent& event,
                                               Qt::MouseButtons buttons) const {
    const QPointF p = event.position() - QPointF(client_->View().topLeft());
    return {static_cast<Integer>(ButtonMaskOf(buttons)),
            static_cast<Integer>(ShiftMaskOf(event.modifiers())), ToSingle(p.x()), ToSingle(p.y())};
}

// Qt delivers the second press of a double click as a press, then a
// double-click event. The press is known for what it is by Qt's own rule:
// the same button again within the double-click time and distance of the
// last press.
bool ControlWidget::isSecondClick(const QMouseEvent& event) {
    const QPoint at = event.globalPosition().toPoint();
    const auto* hints = QGuiApplication::styleHints();
    const bool second = lastPressButton_ == event.button() && lastPressTime_ != 0 &&
                        event.timestamp() - lastPressTime_ <
                            static_cast<quint64>(hints->mouseDoubleClickInterval()) &&
                        (at - lastPressAt_).manhattanLength() <= hints->mouseDoubleClickDistance();
    // After a double click the next press starts afresh, as it does for Qt.
    lastPressTime_ = second ? 0 : event.timestamp();
    lastPressButton_ = event.button();
    lastPressAt_ = at;
    return second;
}

void ControlWidget::mousePressEvent(QMouseEvent* event) {
    if (!pointer_) return;
    if (focusPolicy() & Qt::ClickFocus) setFocus(Qt::MouseFocusReason);
    const bool second = isSecondClick(*event);
    forward("MouseDown", [&] { pointer_->Press(pointerEvent(*event, event->button()), second); });
}

void ControlWidget::mouseMoveEvent(QMouseEvent* event) {
    if (pointer_)
        guard("MouseMove", [&] { pointer_->Move(pointerEvent(*event, event->buttons())); });
}

void ControlWidget::mouseReleaseEvent(QMouseEvent* event) {
    const bool over = rect().contains(event->position().toPoint());
    forward("MouseUp", [&] { pointer_->Release(pointerEvent(*event, event->button()), over); });
}

void ControlWidget::accessKeyPress(Integer keyCode) {
    forward("AccessKeyPress", [&] { control_->AccessKeyPress(keyCode); });
}

void ControlWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const auto button = static_cast<Integer>(ButtonMaskOf(event->button()));
    forward("DblClick", [&] { pointer_->DoubleClick(button); });
}

// The control hears of focus moves inside its window only: a popup that
// takes the keys for a while (the calendar), or another application's window
// coming to the front, neither takes the focus nor gives it back.
void ControlWidget::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    if (!control_ || hasControlFocus_) return;
    hasControlFocus_ = true;
    guard("GotFocus", [&] { control_->GotFocus(); });
}

// Every move inside the window, whatever made it (Tab, the mouse, a
// shortcut, the application's setFocus), asks the control as Tab does: the
// field being left is completed, and a control that will not be left takes
// the focus back at once, before anything else can act on the move.
void ControlWidget::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (!control_ || !hasControlFocus_ || reason == Qt::PopupFocusReason ||
        reason == Qt::ActiveWindowFocusReason)
        return;
    // A control taking the focus back is not asked to give it up again.
    const bool ask = !std::exchange(leaveGranted_, false) &&
                     (!reclaiming_ || QApplication::focusWidget() != reclaiming_);
    bool leave = true;
    if (ask) guard("QueryLeaveFocus", [&] { leave = control_->QueryLeaveFocus(); });
    if (!leave) {
        reclaiming_ = this;
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (reclaiming_ == this) setFocus(Qt::OtherFocusReason);
                reclaiming_ = nullptr;
            },
            Qt::QueuedConnection);
        return;
    }
    hasControlFocus_ = false;
    guard("LostFocus", [&] { control_->LostFocus(); });
}

bool ControlWidget::focusNextPrevChild(bool next) {
    // The control may keep the focus (an invalid entry it will not leave).
    bool leave = true;
    // Being disabled moves the focus on whatever the control would say.
    if (control_ && hasControlFocus_ && !syncing_)
        guard("QueryLeaveFocus", [&] { leave = control_->QueryLeaveFocus(); });
    if (!leave) return true;
    leaveGranted_ = hasControlFocus_;
    const bool moved = QWidget::focusNextPrevChild(next);
    leaveGranted_ = false;
    return moved;
}

}  // namespace kelvarin::qt
