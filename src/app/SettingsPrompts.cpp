#include "app/SettingsPrompts.h"

#include <QApplication>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>

#include "settings/CRynSettings.h"

namespace {

bool HasRealDisplay() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return false;
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

}  // namespace

SettingsNotifier SettingsMessageBoxNotifier() {
    return [warn = DefaultSettingsNotifier()](const QString& message) {
        warn(message);
        if (!HasRealDisplay())
            return;
        // Queued: the store may be called while a window is being built.
        QTimer::singleShot(0, QCoreApplication::instance(), [message] {
            QMessageBox::warning(nullptr, QStringLiteral("Mixora Settings"), message);
        });
    };
}

QSize PrimaryScreenSize() {
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (const QScreen* screen = QGuiApplication::primaryScreen()) {
            const QSize size = screen->availableSize();
            if (size.width() > 0 && size.height() > 0)
                return size;
        }
    }
    return CRynSettings::HeadlessScreenSize();
}

void InstallSettingsPrompts() {
    Settings().Store().SetNotifier(SettingsMessageBoxNotifier());
    Settings().SetScreenSizeSource(PrimaryScreenSize);
}
