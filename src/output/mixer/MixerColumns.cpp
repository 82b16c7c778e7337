#include "output/mixer/MixerColumns.h"

#include <QLabel>
#include <QVBoxLayout>

#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"

namespace mixer_columns {

QVBoxLayout* LevelColumn(CNiSlide* slide, int height, const QString& caption, QWidget* parent) {
    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    slide->setFixedSize(28, height);
    column->addWidget(slide, 0, Qt::AlignHCenter);
    column->addWidget(control_look::Caption(caption, parent));
    return column;
}

QVBoxLayout* CaptionedSlide(CNiSlide* slide, const QString& caption, QWidget* parent) {
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    slide->setFixedHeight(22);
    column->addWidget(slide);
    column->addWidget(control_look::Caption(caption, parent));
    return column;
}

}  // namespace mixer_columns
