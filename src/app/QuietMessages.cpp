#include "app/QuietMessages.h"

#include <QtGlobal>

#include "core/Trace.h"

namespace {

QtMessageHandler g_previous = nullptr;

void Filter(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg && IsHarmlessQtNote(message)) {
        if (lcTrace().isDebugEnabled() && g_previous)
            g_previous(QtDebugMsg, context, message);
        return;
    }
    if (g_previous)
        g_previous(type, context, message);
}

}  // namespace

bool IsHarmlessQtNote(const QString& message) {
    return message.startsWith(QLatin1String("This plugin does not support ")) ||
           message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set"));
}

void InstallQuietMessages() {
    if (g_previous == nullptr)
        g_previous = qInstallMessageHandler(Filter);
}
