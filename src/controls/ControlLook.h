// ControlLook: the colours and small drawing helpers shared by the instrument
// controls, and the caption the windows put beside them, so that every window
// reads as one dark instrument panel.
#pragma once

#include <QColor>
#include <QRectF>

class QLabel;
class QPainter;
class QString;
class QWidget;

namespace control_look {

inline QColor PanelColor() {
    return QColor(28, 30, 34);
}  // behind a control
inline QColor FaceColor() {
    return QColor(52, 56, 63);
}  // raised surfaces
inline QColor FaceLightColor() {
    return QColor(78, 84, 94);
}  // top edge of a bevel
inline QColor FaceDarkColor() {
    return QColor(16, 17, 20);
}  // bottom edge of a bevel
inline QColor WellColor() {
    return QColor(10, 11, 13);
}  // sunken tracks, plot areas
inline QColor GridColor() {
    return QColor(44, 52, 48);
}  // graph grid lines
inline QColor TextColor() {
    return QColor(214, 220, 228);
}
inline QColor DimTextColor() {
    return QColor(120, 126, 136);
}  // disabled captions, ticks

// A raised (or, with sunken, pressed) rounded face with a light top edge and a
// dark bottom edge. radius in pixels.
void DrawBevel(QPainter& p, const QRectF& r, const QColor& face, bool sunken, qreal radius = 3.0);

// A sunken well: dark fill with a dark top edge and a light bottom edge.
void DrawWell(QPainter& p, const QRectF& r, qreal radius = 2.0);

// The colour a lit lamp glows with at the given brightness 0 … 1 between its
// off and on colours (linear mix of the channels).
QColor Mix(const QColor& off, const QColor& on, double t);

// A small dim caption naming a control: a label (owned by parent) in the dim
// text colour, its font 1.5 pt smaller than the default but never under 6 pt.
QLabel* Caption(const QString& text, QWidget* parent, Qt::Alignment alignment = Qt::AlignCenter);

}  // namespace control_look
