#include "controls/CNiButton.h"

#include <QMouseEvent>
#include <QPainter>
#include <QRadialGradient>

#include "controls/ControlLook.h"

using namespace control_look;

namespace {

// Default colours until a window sets its own: a green lamp (the meters' green
// pair) and, for push buttons, a muted green face over the panel grey.
const QColor kLampOn(40, 255, 60);
const QColor kLampOff(10, 100, 10);
const QColor kPushOn(44, 118, 80);

bool IsLamp(CNiButton::Style s) {
    return s == CNiButton::kRoundLamp || s == CNiButton::kSquareLamp;
}

// Black or white text, whichever reads better on the face.
QColor TextOn(const QColor& face, double threshold = 0.62) {
    return face.lightnessF() > threshold ? QColor(12, 14, 16) : TextColor();
}

}  // namespace

CNiButton::CNiButton(QWidget* parent) : CNiControl(parent) {
    onColor_ = kPushOn;
    offColor_ = FaceColor();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

CNiButton::CNiButton(const QString& offText, const QString& onText, QWidget* parent)
    : CNiButton(parent) {
    offText_ = offText;
    onText_ = onText;
    caption_ = offText;
}

void CNiButton::SetValue(bool on) {
    if (on == value_)
        return;
    value_ = on;
    if (!onText_.isEmpty() || !offText_.isEmpty())
        caption_ = on ? onText_ : offText_;
    update();
    emit valueChanged(on);
}

void CNiButton::SetCaption(const QString& text) {
    if (text == caption_)
        return;
    caption_ = text;
    update();
}

void CNiButton::SetOnText(const QString& text) {
    onText_ = text;
    if (value_)
        SetCaption(text);
}

void CNiButton::SetOffText(const QString& text) {
    offText_ = text;
    if (!value_)
        SetCaption(text);
}

void CNiButton::SetOnColor(const QColor& c) {
    onColor_ = c;
    update();
}

void CNiButton::SetOffColor(const QColor& c) {
    offColor_ = c;
    update();
}

void CNiButton::SetColors(const QColor& on, const QColor& off) {
    onColor_ = on;
    offColor_ = off;
    update();
}

void CNiButton::SetPicture(const QPixmap& enabled) {
    picture_ = enabled;
    update();
}

void CNiButton::SetDisabledPicture(const QPixmap& disabled) {
    disabledPicture_ = disabled;
    update();
}

void CNiButton::SetStyle(Style style) {
    const bool wasLamp = IsLamp(style_) || style_ == kLedButton;
    const bool isLamp = IsLamp(style) || style == kLedButton;
    // Swap in the default colours of the new kind unless a window set its own.
    if (wasLamp != isLamp) {
        if (isLamp && onColor_ == kPushOn && offColor_ == FaceColor()) {
            onColor_ = kLampOn;
            offColor_ = kLampOff;
        } else if (!isLamp && onColor_ == kLampOn && offColor_ == kLampOff) {
            onColor_ = kPushOn;
            offColor_ = FaceColor();
        }
    }
    style_ = style;
    if (IsLamp(style))
        action_ = kIndicator;
    updateGeometry();
    update();
}

QSize CNiButton::sizeHint() const {
    const QFontMetrics fm = fontMetrics();
    const QString longest =
        fm.horizontalAdvance(onText_) > fm.horizontalAdvance(offText_) ? onText_ : offText_;
    const int textW = std::max(fm.horizontalAdvance(caption_), fm.horizontalAdvance(longest));
    const int pic = picture_.isNull() ? 0 : 24;
    switch (style_) {
        case kRoundLamp:
            return QSize(std::max(18, textW + 8), 18);
        case kSquareLamp:
            return QSize(std::max(18, textW + 8), 12);
        case kLedButton:
            return QSize(std::max(64, textW + 30 + pic), 24);
        case kPushButton:
        default:
            return QSize(std::max(56, textW + 18 + pic), std::max(24, pic ? 30 : 0));
    }
}

QSize CNiButton::minimumSizeHint() const {
    return IsLamp(style_) ? QSize(8, 8) : QSize(24, 16);
}

void CNiButton::PressAt(QMouseEvent*) {
    if (action_ == kIndicator)
        return;
    held_ = true;
    if (action_ == kSwitchWhenPressed)
        SetValue(!value_);
    else
        SetValue(true);
    update();
}

void CNiButton::ReleaseAt(QMouseEvent*) {
    CancelPress();
}

// Also when the button is disabled while held: it must not stay pressed.
void CNiButton::CancelPress() {
    if (!held_)
        return;
    held_ = false;
    if (action_ == kSwitchUntilReleased)
        SetValue(false);
    update();
}

void CNiButton::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(rect(), PanelColor());
    const QRectF r = QRectF(rect()).adjusted(1, 1, -1, -1);
    switch (style_) {
        case kRoundLamp:
            PaintLamp(p, r, true);
            break;
        case kSquareLamp:
            PaintLamp(p, r, false);
            break;
        default:
            PaintPush(p, r);
            break;
    }
}

void CNiButton::PaintPush(QPainter& p, const QRectF& r) {
    const bool led = style_ == kLedButton;
    const QColor face = ShownColor(led ? FaceColor() : (value_ ? onColor_ : offColor_), 0.55);
    const bool sunken = held_ || (!led && value_ && action_ != kIndicator);
    DrawBevel(p, r, face, sunken, 3.0);

    QRectF content = r.adjusted(4, 2, -4, -2);
    if (sunken)
        content.translate(0, 1);
    if (led) {
        // The lamp: a small rounded bar at the left edge of the face.
        const qreal h = std::min<qreal>(content.height() - 4, 14);
        const QRectF lamp(content.left() + 1, content.center().y() - h / 2, 7, h);
        const QColor c = ShownColor(value_ ? onColor_ : offColor_, 0.5);
        p.setPen(QPen(FaceDarkColor(), 1.0));
        p.setBrush(c);
        p.drawRoundedRect(lamp, 2, 2);
        if (value_ && isEnabled()) {
            p.setPen(Qt::NoPen);
            p.setBrush(QColor(255, 255, 255, 70));
            p.drawRoundedRect(lamp.adjusted(1.5, 1.5, -1.5, -h / 2), 1, 1);
        }
        content.setLeft(lamp.right() + 5);
    }
    const QRectF used = PaintPicture(p, content);
    if (!used.isNull())
        content.setLeft(used.right() + 4);
    PaintCaption(p, content, face);
}

QRectF CNiButton::PaintPicture(QPainter& p, const QRectF& r) {
    const bool useDisabled = !isEnabled() && !disabledPicture_.isNull();
    const QPixmap& pm = useDisabled ? disabledPicture_ : picture_;
    if (pm.isNull() || r.width() < 4 || r.height() < 4)
        return QRectF();
    const QSizeF sz = QSizeF(pm.size()).scaled(r.size(), Qt::KeepAspectRatio);
    const bool alone = caption_.isEmpty();
    const QPointF topLeft(alone ? r.center().x() - sz.width() / 2 : r.left(),
                          r.center().y() - sz.height() / 2);
    const QRectF target(topLeft, sz);
    p.save();
    if (!isEnabled() && !useDisabled)
        p.setOpacity(0.4);
    p.drawPixmap(target, pm, QRectF(pm.rect()));
    p.restore();
    return alone ? QRectF() : target;
}

void CNiButton::PaintCaption(QPainter& p, const QRectF& r, const QColor& face) {
    if (caption_.isEmpty())
        return;
    // Lamps glow: dark text reads better on them from a lower brightness on.
    const double threshold = IsLamp(style_) ? 0.45 : 0.62;
    p.setPen(isEnabled() ? TextOn(face, threshold) : DimTextColor());
    p.setFont(font());
    p.drawText(r, Qt::AlignCenter | Qt::TextSingleLine, caption_);
}

void CNiButton::PaintLamp(QPainter& p, const QRectF& r, bool round) {
    const QColor c = ShownColor(value_ ? onColor_ : offColor_, 0.5);
    QRectF lamp = r;
    if (round) {
        const qreal d = std::min(r.width(), r.height());
        lamp = QRectF(r.center().x() - d / 2, r.center().y() - d / 2, d, d);
        QRadialGradient g(lamp.center() - QPointF(d * 0.18, d * 0.18), d * 0.7);
        g.setColorAt(0.0, c.lighter(value_ ? 160 : 125));
        g.setColorAt(1.0, c.darker(value_ ? 110 : 140));
        p.setPen(QPen(FaceDarkColor(), 1.2));
        p.setBrush(g);
        p.drawEllipse(lamp);
    } else {
        QLinearGradient g(lamp.topLeft(), lamp.bottomLeft());
        g.setColorAt(0.0, c.lighter(value_ ? 140 : 115));
        g.setColorAt(1.0, c.darker(120));
        p.setPen(QPen(FaceDarkColor(), 1.0));
        p.setBrush(g);
        p.drawRoundedRect(lamp, 1.5, 1.5);
    }
    PaintCaption(p, lamp, c);
}
