// The widgets as Qt users expect them: one enabled state and one font shared
// by the widget and its control, system colours from the widget's own
// palette, a NOTIFY signal and a const getter for every property, colour
// properties Designer's picker edits, and the size and focus policies of Qt's own peers.
#include <gtest/gtest.h>

#include <memory>

#include <QApplication>
#include <QLineEdit>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "host/FormFile.h"
#include "library/Dispatch.h"
#include "qt/QtPlatform.h"
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

std::vector<std::unique_ptr<ControlWidget>> AllThree(QWidget* parent) {
    std::vector<std::unique_ptr<ControlWidget>> out;
    out.push_back(std::make_unique<DateBoxWidget>(parent));
    out.push_back(std::make_unique<ProgressBoxWidget>(parent));
    out.push_back(std::make_unique<CommandBoxWidget>(parent));
    return out;
}

bool ControlEnabled(ControlWidget& w) { return library::Get(*w.control(), "Enabled").ToBoolean(); }

// Fault: QWidget::setEnabled(false) left the control enabled, and the
// control's Enabled False left isEnabled() true and the widget taking the
// focus (a DateBox keeps Enabled in its fields, not in its surface).
TEST(WidgetConventionsTest, TheWidgetsEnabledIsTheControlsEnabledBothWays) {
    QWidget window;
    for (const auto& w : AllThree(&window)) {
        SCOPED_TRACE(w->className().toStdString());
        w->setEnabled(false);
        EXPECT_FALSE(ControlEnabled(*w));
        w->setEnabled(true);
        EXPECT_TRUE(ControlEnabled(*w));

        QSignalSpy notified(w.get(), SIGNAL(EnabledChanged()));
        // Dispatch, the script host's path, reaches the widget once the call is back.
        ASSERT_TRUE(w->letMember(QStringLiteral("Enabled"), false));
        EXPECT_FALSE(w->isEnabled());
        EXPECT_FALSE(w->property("Enabled").toBool());
        EXPECT_GE(notified.count(), 1);
        ASSERT_TRUE(w->setProperty("Enabled", true));
        EXPECT_TRUE(w->isEnabled());
        EXPECT_TRUE(ControlEnabled(*w));
    }
}

// A disabled container disables the control's input, as Qt has it, but the
// control keeps (and saves) its own Enabled.
TEST(WidgetConventionsTest, ADisabledContainerLeavesTheControlsOwnEnabled) {
    QWidget window;
    DateBoxWidget box(&window);
    window.setEnabled(false);
    EXPECT_FALSE(box.isEnabled());
    EXPECT_TRUE(ControlEnabled(box));
    window.setEnabled(true);
    box.setEnabled(false);
    host::FormControl entry = box.toFormControl();
    DateBoxWidget loaded(entry, QStringLiteral("form"), &window);
    EXPECT_FALSE(loaded.isEnabled());
    EXPECT_FALSE(ControlEnabled(loaded));
}

TEST(WidgetConventionsTest, TheWidgetsFontIsTheControlsFontBothWays) {
    QWidget window;
    for (const auto& w : AllThree(&window)) {
        SCOPED_TRACE(w->className().toStdString());
        QFont big(QStringLiteral("DejaVu Serif"));
        big.setPointSizeF(14);
        big.setBold(true);
        w->setFont(big);
        const auto font = std::dynamic_pointer_cast<kelvarin::Font>(
            library::Get(*w->control(), "Font").ToObject());
        ASSERT_TRUE(font);
        EXPECT_EQ(*font, FromQFont(big));

        const Font small("DejaVu Sans", 7, false, true);
        ASSERT_TRUE(w->setMember(QStringLiteral("Font"), ToQFont(small)));
        EXPECT_EQ(FromQFont(w->font()), small);
        EXPECT_EQ(FromQFont(w->property("Font").value<QFont>()), small);
    }
    // A font only inherited from the container is the control's too, and
    // stays inherited (not made the widget's own).
    QFont panelFont(QStringLiteral("DejaVu Sans Mono"));
    panelFont.setPointSizeF(11);
    DateBoxWidget inherits(&window);
    window.setFont(panelFont);
    EXPECT_FALSE(inherits.testAttribute(Qt::WA_SetFont));
    EXPECT_EQ(FromQFont(inherits.property("Font").value<QFont>()), FromQFont(panelFont));
}

// Fault: a palette set on a parent (or the widget) was ignored; system
// colours came from the application's palette only.
TEST(WidgetConventionsTest, SystemColoursComeFromTheWidgetsOwnPalette) {
    QWidget window;
    window.resize(300, 200);
    DateBoxWidget box(&window);  // BackColor is the window colour (system colour 5)
    ProgressBoxWidget bar(&window);
    bar.move(0, 40);
    CommandBoxWidget button(&window);  // its face keeps only on its persistent image
    button.move(0, 80);
    ASSERT_TRUE(box.letMember(QStringLiteral("BorderStyle"), 0));
    ASSERT_TRUE(bar.letMember(QStringLiteral("BorderStyle"), 0));
    const QRgb before = box.image().pixel(box.width() - 30, box.height() / 2);

    QPalette dark = window.palette();
    dark.setColor(QPalette::Base, QColor(20, 30, 40));
    dark.setColor(QPalette::Text, QColor(220, 220, 200));
    dark.setColor(QPalette::Button, QColor(50, 40, 30));
    window.setPalette(dark);
    EXPECT_NE(box.image().pixel(box.width() - 30, box.height() / 2), before);
    EXPECT_EQ(QColor(box.image().pixel(box.width() - 30, box.height() / 2)), QColor(20, 30, 40));
    // The bar's back colour is the button face: the empty part of the bar.
    EXPECT_EQ(QColor(bar.image().pixel(bar.width() - 2, bar.height() / 2)), QColor(50, 40, 30));
    EXPECT_EQ(QColor(button.image().pixel(6, button.height() / 2)), QColor(50, 40, 30));
    // The property still holds the system colour, and the picker shows it
    // as this widget's palette gives it.
    EXPECT_EQ(box.BackColor(), kSysWindow);
    EXPECT_EQ(box.property("backColor").value<QColor>(), QColor(20, 30, 40));
    // The application's table is not this widget's business.
    EXPECT_NE(TranslateSysColor(kSysWindow), RGB(20, 30, 40));

    // A palette of the widget's own wins over its container's.
    QPalette light = dark;
    light.setColor(QPalette::Base, QColor(250, 240, 200));
    box.setPalette(light);
    EXPECT_EQ(QColor(box.image().pixel(box.width() - 30, box.height() / 2)), QColor(250, 240, 200));
}

// Every property tells its changes; every getter is const; colours are
// QColor properties for Designer beside the OLE colour for code, and the
// reset gives the system colour back.
TEST(WidgetConventionsTest, PropertiesNotifyAndColoursHaveAPickerAndAReset) {
    QWidget window;
    for (const auto& w : AllThree(&window)) {
        const QMetaObject* meta = w->metaObject();
        for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
            const QMetaProperty p = meta->property(i);
            SCOPED_TRACE(std::string(meta->className()) + "::" + p.name());
            EXPECT_TRUE(p.hasNotifySignal() || p.isConstant());
            if (p.metaType().id() == QMetaType::UInt) {
                // An OLE colour: kept out of Designer, which edits the QColor one.
                EXPECT_FALSE(p.isDesignable());
                QByteArray qtName = p.name();
                qtName[0] = static_cast<char>(QChar::toLower(qtName[0]));
                const int picker = meta->indexOfProperty(qtName.constData());
                ASSERT_GE(picker, 0);
                EXPECT_EQ(meta->property(picker).metaType().id(), QMetaType::QColor);
                EXPECT_TRUE(meta->property(picker).isDesignable());
                EXPECT_TRUE(meta->property(picker).isResettable());
            }
        }
        // The widget's own enabled and font are the ones Designer shows.
        EXPECT_FALSE(meta->property(meta->indexOfProperty("Enabled")).isDesignable());
        EXPECT_FALSE(meta->property(meta->indexOfProperty("Font")).isDesignable());
    }

    ProgressBoxWidget bar(&window);
    QSignalSpy changed(&bar, &ProgressBoxWidget::StartColorChanged);
    QSignalSpy value(&bar, &ProgressBoxWidget::ValueChanged);
    ASSERT_TRUE(bar.setProperty("startColor", QColor(10, 20, 30)));
    EXPECT_EQ(bar.StartColor(), RGB(10, 20, 30));
    EXPECT_EQ(changed.count(), 1);
    bar.resetStartColor();
    EXPECT_EQ(bar.StartColor(), kSysHighlight);
    bar.SetValue(40);
    EXPECT_EQ(value.count(), 1);
    const ProgressBoxWidget& constBar = bar;  // getters read through a const widget
    EXPECT_EQ(constBar.Value(), 40);
}

// Writes tell ValueChanged once, and so does typing, which raises Change only.
TEST(WidgetConventionsTest, ValueChangedFollowsWritesAndTyping) {
    QWidget window;
    DateBoxWidget box(&window);
    window.show();
    QApplication::setActiveWindow(&window);
    QSignalSpy changed(&box, &DateBoxWidget::ValueChanged);
    box.SetValue(QDateTime(QDate(2007, 12, 25), QTime(), Qt::UTC));
    EXPECT_EQ(changed.count(), 1);
    box.setProperty("ValueDB", QVariant::fromValue(nullptr));
    EXPECT_EQ(changed.count(), 2);
    box.setFocus(Qt::TabFocusReason);
    for (Qt::Key k :
         {Qt::Key_0, Qt::Key_9, Qt::Key_0, Qt::Key_3, Qt::Key_2, Qt::Key_0, Qt::Key_0, Qt::Key_7})
        QTest::keyClick(&box, k);
    EXPECT_EQ(box.displayText(), QStringLiteral("09/03/2007"));
    EXPECT_GE(changed.count(), 3);
}

// In a layout a date box is as tall as it asks, like a line edit; a bar
// takes the focus on a click but is no Tab stop.
TEST(WidgetConventionsTest, SizeAndFocusPoliciesAreThoseOfQtsPeers) {
    const QLineEdit lineEdit;
    DateBoxWidget box;
    EXPECT_EQ(box.sizePolicy(), lineEdit.sizePolicy());
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* inLayout = new DateBoxWidget;
    layout->addWidget(inLayout);
    layout->addStretch();
    window.resize(300, 400);
    window.show();
    QApplication::processEvents();
    EXPECT_EQ(inLayout->height(), inLayout->sizeHint().height());

    auto* bar = new ProgressBoxWidget;
    auto* after = new QLineEdit;
    layout->insertWidget(0, bar);
    layout->insertWidget(0, after);
    QApplication::processEvents();  // the layout shows them
    QWidget::setTabOrder(after, bar);
    QWidget::setTabOrder(bar, inLayout);
    after->setFocus();
    QTest::keyClick(after, Qt::Key_Tab);
    EXPECT_TRUE(inLayout->hasFocus());
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_TRUE(bar->hasFocus());
}

}  // namespace
}  // namespace kelvarin::qt
