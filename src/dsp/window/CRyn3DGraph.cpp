#include "dsp/window/CRyn3DGraph.h"

#include <QCloseEvent>

CRyn3DGraph::CRyn3DGraph(QWidget* parent) : CRynWindow("CRyn3DGraph", kTemplateId, parent) {
    setWindowTitle(QStringLiteral("3D Graph"));
    resize(400, 300);
}

void CRyn3DGraph::Initialise(WindowHandle mainMixer) {
    mainMixer_ = mainMixer;
}

void CRyn3DGraph::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(mainMixer_, UWM_WINDOW_CLOSED, kTemplateId, 0);
}
