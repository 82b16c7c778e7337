#include "output/mixer/CRynHeadphonesMixer.h"

#include <QCloseEvent>

CRynHeadphonesMixer::CRynHeadphonesMixer(QWidget* parent)
    : CRynWindow("CRynHeadphonesMixer", kTemplateId, parent) {
    setWindowTitle(QStringLiteral("Headphones Mixer"));
    resize(280, 300);
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
