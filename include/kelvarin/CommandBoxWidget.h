// SPDX-License-Identifier: MIT
// The picture button as a Qt widget. Its properties carry the names of the
// type library (setProperty("AlignPicture", 3), Designer's property sheet)
// and go through dispatch like any host's; its events are signals in the
// order of the event interface.
//
// The face is the control's own painting on the widget's persistent image;
// a Qt paint event only shows that image. Hover is the control's 50 ms
// pointer check, answered by the widget under the cursor. Colours are OLE
// colours as unsigned numbers, as for the progress bar.
#pragma once

#include <QFont>
#include <QPixmap>
#include <QString>

#include <kelvarin/ControlWidget.h>
#include <kelvarin/Export.h>

namespace kelvarin::qt {

class KELVARIN_WIDGETS_API CommandBoxWidget : public ControlWidget {
    Q_OBJECT
    Q_PROPERTY(uint BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(uint ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE SetMouseIcon)
    Q_PROPERTY(int MousePointer READ MousePointer WRITE SetMousePointer)
    Q_PROPERTY(int OLEDropMode READ OLEDropMode WRITE SetOLEDropMode)
    Q_PROPERTY(QPixmap Picture READ Picture WRITE SetPicture)
    Q_PROPERTY(bool RightToLeft READ RightToLeft WRITE SetRightToLeft)
    Q_PROPERTY(ControlWidget::AlignmentText Alignment READ Alignment WRITE SetAlignment)
    Q_PROPERTY(AlignPictureKind AlignPicture READ AlignPicture WRITE SetAlignPicture)
    Q_PROPERTY(int Interleave READ Interleave WRITE SetInterleave)
    Q_PROPERTY(QString Text READ Text WRITE SetText)
    // Lower case, as the type library spells it.
    Q_PROPERTY(StyleKind style READ Style WRITE SetStyle)
    Q_PROPERTY(bool ShowFocusRect READ ShowFocusRect WRITE SetShowFocusRect)
    Q_PROPERTY(int hWnd READ hWnd DESIGNABLE false)
    Q_PROPERTY(uint MaskColor READ MaskColor WRITE SetMaskColor)
    Q_PROPERTY(bool UseMaskColor READ UseMaskColor WRITE SetUseMaskColor)
    Q_PROPERTY(bool HighLighted READ HighLighted WRITE SetHighLighted)
    Q_PROPERTY(uint ForeColorHighLighted READ ForeColorHighLighted WRITE SetForeColorHighLighted)

public:
    // eAlignPicture and eStyle (the type library's names have blanks). Any
    // number is stored, so they are as wide as the property.
    enum AlignPictureKind : int { LeftAlign, RightAlign, CenterAlign, UpAlign, DownAlign };
    Q_ENUM(AlignPictureKind)
    enum StyleKind : int { Standard = 0, DoubleBorder = 1 };
    Q_ENUM(StyleKind)

    // A new control.
    explicit CommandBoxWidget(QWidget* parent = nullptr);
    // A control of a form (see ControlWidget).
    CommandBoxWidget(host::FormControl& entry, const QString& place, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {120, 32}; }

    int OLEDropMode() { return intMember("OLEDropMode"); }
    void SetOLEDropMode(int mode) { letMember(QStringLiteral("OLEDropMode"), mode); }
    QPixmap Picture();
    void SetPicture(const QPixmap& picture) { setMember(QStringLiteral("Picture"), picture); }
    // The picture in an image file of any format Qt reads (PNG, BMP, ICO,
    // SVG at its own size); false, with nothing changed, when it cannot be
    // read (the reason is reported as an error).
    bool loadPicture(const QString& path);
    bool RightToLeft() { return getMember(QStringLiteral("RightToLeft")).toBool(); }
    void SetRightToLeft(bool on) { letMember(QStringLiteral("RightToLeft"), on); }
    AlignmentText Alignment() { return static_cast<AlignmentText>(intMember("Alignment")); }
    void SetAlignment(AlignmentText a) { letMember(QStringLiteral("Alignment"), int(a)); }
    AlignPictureKind AlignPicture() {
        return static_cast<AlignPictureKind>(intMember("AlignPicture"));
    }
    void SetAlignPicture(AlignPictureKind a) { letMember(QStringLiteral("AlignPicture"), int(a)); }
    // In the container's units: pixels in a Qt window.
    int Interleave() { return intMember("Interleave"); }
    void SetInterleave(int gap) { letMember(QStringLiteral("Interleave"), gap); }
    QString Text() { return getMember(QStringLiteral("Text")).toString(); }
    void SetText(const QString& text) { letMember(QStringLiteral("Text"), text); }
    StyleKind Style() { return static_cast<StyleKind>(intMember("style")); }
    void SetStyle(StyleKind s) { letMember(QStringLiteral("style"), int(s)); }
    bool ShowFocusRect() { return getMember(QStringLiteral("ShowFocusRect")).toBool(); }
    void SetShowFocusRect(bool on) { letMember(QStringLiteral("ShowFocusRect"), on); }
    uint MaskColor() { return colorMember("MaskColor"); }
    void SetMaskColor(uint c) { letMember(QStringLiteral("MaskColor"), c); }
    bool UseMaskColor() { return getMember(QStringLiteral("UseMaskColor")).toBool(); }
    void SetUseMaskColor(bool on) { letMember(QStringLiteral("UseMaskColor"), on); }
    bool HighLighted() { return getMember(QStringLiteral("HighLighted")).toBool(); }
    void SetHighLighted(bool on) { letMember(QStringLiteral("HighLighted"), on); }
    uint ForeColorHighLighted() { return colorMember("ForeColorHighLighted"); }
    void SetForeColorHighLighted(uint c) { letMember(QStringLiteral("ForeColorHighLighted"), c); }

signals:
    void Click();
    void DblClick();
    void KeyDown(int KeyCode, int Shift);
    void KeyPress(int KeyAscii);
    void KeyUp(int KeyCode, int Shift);
    void MouseDown(int Button, int Shift, float X, float Y);
    void MouseMove(int Button, int Shift, float X, float Y);
    void MouseUp(int Button, int Shift, float X, float Y);

protected:
    void emitTypedEvent(int number, const QVariantList& args) override;
};

}  // namespace kelvarin::qt
