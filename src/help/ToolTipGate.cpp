#include "help/ToolTipGate.h"

#include <QCoreApplication>
#include <QEvent>

#include "core/EngineState.h"

void ToolTipGate::Install() {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || app->findChild<ToolTipGate*>(QString(), Qt::FindDirectChildrenOnly))
        return;
    app->installEventFilter(new ToolTipGate(app));
}

bool ToolTipGate::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ToolTip && Engine().toolTipsOn.load() == 0)
        return true;
    return QObject::eventFilter(watched, event);
}
