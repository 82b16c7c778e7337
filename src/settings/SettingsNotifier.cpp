#include "settings/SettingsNotifier.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QtGlobal>

namespace {

bool HasRealDisplay() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return false;
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

void Notify(const QString& message) {
    qWarning("Mixora settings: %s", qPrintable(message));
    if (!HasRealDisplay())
        return;
    // Queued: the store may be called while a window is being built.
    QTimer::singleShot(0, QCoreApplication::instance(), [message] {
        QMessageBox::warning(nullptr, QStringLiteral("Mixora Settings"), message);
    });
}

}  // namespace

SettingsNotifier DefaultSettingsNotifier() {
    return Notify;
}
