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
    // Colours: the OLE colour for code (a system colour reads back as one)
    // and, under the Qt name, a QColor for Designer's colour picker.
    Q_PROPERTY(
        uint BackColor READ BackColor WRITE SetBackColor NOTIFY BackColorChanged DESIGNABLE false)
    Q_PROPERTY(QColor backColor READ backColor WRITE setBackColor RESET resetBackColor NOTIFY
                   BackColorChanged)
    Q_PROPERTY(
        uint ForeColor READ ForeColor WRITE SetForeColor NOTIFY ForeColorChanged DESIGNABLE false)
    Q_PROPERTY(QColor foreColor READ foreColor WRITE setForeColor RESET resetForeColor NOTIFY
                   ForeColorChanged)
    // The widget's own enabled and font, under the type library's names.
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled NOTIFY EnabledChanged DESIGNABLE false)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont NOTIFY FontChanged DESIGNABLE false)
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE SetMouseIcon NOTIFY MouseIconChanged)
    Q_PROPERTY(int MousePointer READ MousePointer WRITE SetMousePointer NOTIFY MousePointerChanged)
    Q_PROPERTY(int OLEDropMode READ OLEDropMode WRITE SetOLEDropMode NOTIFY OLEDropModeChanged)
    Q_PROPERTY(QPixmap Picture READ Picture WRITE SetPicture NOTIFY PictureChanged)
    Q_PROPERTY(bool RightToLeft READ RightToLeft WRITE SetRightToLeft NOTIFY RightToLeftChanged)
    Q_PROPERTY(ControlWidget::AlignmentText Alignment READ Alignment WRITE SetAlignment NOTIFY
                   AlignmentChanged)
    Q_PROPERTY(AlignPictureKind AlignPicture READ AlignPicture WRITE SetAlignPicture NOTIFY
                   AlignPictureChanged)
    Q_PROPERTY(int Interleave READ Interleave WRITE SetInterleave NOTIFY InterleaveChanged)
    Q_PROPERTY(QString Text READ Text WRITE SetText NOTIFY TextChanged)
    // Lower case, as the type library spells it.
    Q_PROPERTY(StyleKind style READ Style WRITE SetStyle NOTIFY styleChanged)
    Q_PROPERTY(
        bool ShowFocusRect READ ShowFocusRect WRITE SetShowFocusRect NOTIFY ShowFocusRectChanged)
    Q_PROPERTY(int hWnd READ hWnd CONSTANT DESIGNABLE false)
    Q_PROPERTY(
        uint MaskColor READ MaskColor WRITE SetMaskColor NOTIFY MaskColorChanged DESIGNABLE false)
    Q_PROPERTY(QColor maskColor READ maskColor WRITE setMaskColor RESET resetMaskColor NOTIFY
                   MaskColorChanged)
    Q_PROPERTY(bool UseMaskColor READ UseMaskColor WRITE SetUseMaskColor NOTIFY UseMaskColorChanged)
    Q_PROPERTY(bool HighLighted READ HighLighted WRITE SetHighLighted NOTIFY HighLightedChanged)
    Q_PROPERTY(uint ForeColorHighLighted READ ForeColorHighLighted WRITE SetForeColorHighLighted
                   NOTIFY ForeColorHighLightedChanged DESIGNABLE false)
    Q_PROPERTY(QColor foreColorHighLighted READ foreColorHighLighted WRITE setForeColorHighLighted
                   RESET resetForeColorHighLighted NOTIFY ForeColorHighLightedChanged)

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

    int OLEDropMode() const { return intMember("OLEDropMode"); }
    void SetOLEDropMode(int mode) { letMember(QStringLiteral("OLEDropMode"), mode); }
    QPixmap Picture() const;
    void SetPicture(const QPixmap& picture) { setMember(QStringLiteral("Picture"), picture); }
    // The picture in an image file of any format Qt reads (PNG, BMP, ICO,
    // SVG at its own size); false, with nothing changed, when it cannot be
    // read (the reason is reported as an error).
    bool loadPicture(const QString& path);
    bool RightToLeft() const { return getMember(QStringLiteral("RightToLeft")).toBool(); }
    void SetRightToLeft(bool on) { letMember(QStringLiteral("RightToLeft"), on); }
    AlignmentText Alignment() const { return static_cast<AlignmentText>(intMember("Alignment")); }
    void SetAlignment(AlignmentText a) { letMember(QStringLiteral("Alignment"), int(a)); }
    AlignPictureKind AlignPicture() const {
        return static_cast<AlignPictureKind>(intMember("AlignPicture"));
    }
    void SetAlignPicture(AlignPictureKind a) { letMember(QStringLiteral("AlignPicture"), int(a)); }
    // In the container's units: pixels in a Qt window.
    int Interleave() const { return intMember("Interleave"); }
    void SetInterleave(int gap) { letMember(QStringLiteral("Interleave"), gap); }
    QString Text() const { return getMember(QStringLiteral("Text")).toString(); }
    void SetText(const QString& text) { letMember(QStringLiteral("Text"), text); }
    StyleKind Style() const { return static_cast<StyleKind>(intMember("style")); }
    void SetStyle(StyleKind s) { letMember(QStringLiteral("style"), int(s)); }
    bool ShowFocusRect() const { return getMember(QStringLiteral("ShowFocusRect")).toBool(); }
    void SetShowFocusRect(bool on) { letMember(QStringLiteral("ShowFocusRect"), on); }
    QColor maskColor() const { return qColorMember("MaskColor"); }
    void setMaskColor(const QColor& c) { letMember(QStringLiteral("MaskColor"), c); }
    void resetMaskColor() { resetMember("MaskColor"); }
    QColor foreColorHighLighted() const { return qColorMember("ForeColorHighLighted"); }
    void setForeColorHighLighted(const QColor& c) {
        letMember(QStringLiteral("ForeColorHighLighted"), c);
    }
    void resetForeColorHighLighted() { resetMember("ForeColorHighLighted"); }
    uint MaskColor() const { return colorMember("MaskColor"); }
    void SetMaskColor(uint c) { letMember(QStringLiteral("MaskColor"), c); }
    bool UseMaskColor() const { return getMember(QStringLiteral("UseMaskColor")).toBool(); }
    void SetUseMaskColor(bool on) { letMember(QStringLiteral("UseMaskColor"), on); }
    bool HighLighted() const { return getMember(QStringLiteral("HighLighted")).toBool(); }
    void SetHighLighted(bool on) { letMember(QStringLiteral("HighLighted"), on); }
    uint ForeColorHighLighted() const { return colorMember("ForeColorHighLighted"); }
    void SetForeColorHighLighted(uint c) { letMember(QStringLiteral("ForeColorHighLighted"), c); }

signals:
    void OLEDropModeChanged();
    void PictureChanged();
    void RightToLeftChanged();
    void AlignmentChanged();
    void AlignPictureChanged();
    void InterleaveChanged();
    void TextChanged();
    void styleChanged();
    void ShowFocusRectChanged();
    void MaskColorChanged();
    void UseMaskColorChanged();
    void HighLightedChanged();
    void ForeColorHighLightedChanged();
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
