// Helpers for the instrument-control tests: an event log that records the
// controls' signals in order, and showing a widget at a fixed size.
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include "controls/CNiControl.h"

namespace controltest {

// Records mouse down/up ("down 1 0") and double clicks ("double") of a control
// into a list that value events of the test add to as well.
struct EventLog {
    QStringList events;
    void Watch(CNiControl* control) {
        QObject::connect(control, &CNiControl::mouseDown, control, [this](int b, int s, QPoint) {
            events << QStringLiteral("down %1 %2").arg(b).arg(s);
        });
        QObject::connect(control, &CNiControl::mouseUp, control, [this](int b, int s, QPoint) {
            events << QStringLiteral("up %1 %2").arg(b).arg(s);
        });
        QObject::connect(control, &CNiControl::doubleClicked, control,
                         [this] { events << QStringLiteral("double"); });
    }
    void Add(const QString& e) { events << e; }
    QString Joined() const { return events.join(QStringLiteral(", ")); }
};

inline void ShowAt(QWidget* w, int width, int height) {
    w->setAttribute(Qt::WA_DontShowOnScreen);
    w->setFixedSize(width, height);
    w->show();
}

}  // namespace controltest
