// The mixers' slide columns: a slide with its caption under it, as both the
// main and the headphones mixer lay out their level, volume and balance
// slides.
#pragma once

#include <QString>

class CNiSlide;
class QVBoxLayout;
class QWidget;

namespace mixer_columns {

// A vertical level slide 28 pixels wide and `height` tall, centred, with
// `caption` under it ("A", "volume").
QVBoxLayout* LevelColumn(CNiSlide* slide, int height, const QString& caption, QWidget* parent);

// A horizontal slide 22 pixels tall with `caption` right under it
// ("balance", "A balance").
QVBoxLayout* CaptionedSlide(CNiSlide* slide, const QString& caption, QWidget* parent);

}  // namespace mixer_columns
