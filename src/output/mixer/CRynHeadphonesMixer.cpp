#include "output/mixer/CRynHeadphonesMixer.h"

#include <QCloseEvent>
#include <QHBoxLayout>

#include "controls/CNiSlide.h"

CRynHeadphonesMixer::CRynHeadphonesMixer(QWidget* parent)
    : CRynWindow("CRynHeadphonesMixer", kTemplateId, parent) {
    setWindowTitle(QStringLiteral("Headphones Mixer"));
    resize(280, 300);
    auto* row = new QHBoxLayout(this);
    for (auto& level : levels_) {
        level = new CNiSlide(Qt::Vertical, this);
        row->addWidget(level);
    }
    crossFader_ = new CNiSlide(Qt::Horizontal, this);
    crossFader_->SetAxis(-1.0, 1.0);
    volume_ = new CNiSlide(Qt::Vertical, this);
    row->addWidget(crossFader_);
    row->addWidget(volume_);
}

void CRynHeadphonesMixer::Initialise(WindowHandle mainMixer) {
    mainMixer_ = mainMixer;
}

void CRynHeadphonesMixer::SetDeckColours(int deck, const QColor& first, const QColor& second) {
    if (deck < 0 || deck > 1)
        return;
    colours_[deck] = {first, second};
    update();
}

void CRynHeadphonesMixer::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(mainMixer_, UWM_WINDOW_CLOSED, kTemplateId, 0);
}
