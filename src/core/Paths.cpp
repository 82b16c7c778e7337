#include "core/Paths.h"

#include <QDir>
#include <QStandardPaths>

namespace {
QString FromEnv(const char* name) {
    return QString::fromLocal8Bit(qgetenv(name));
}
}  // namespace

QString ConfigDir() {
    QString dir = FromEnv("MIXORA_CONFIG_DIR");
    if (dir.isEmpty()) {
        dir = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
              QStringLiteral("/Orvane");
    }
    QDir().mkpath(dir);
    return dir;
}

QString DataDir() {
    QString dir = FromEnv("MIXORA_DATA_DIR");
    if (dir.isEmpty()) {
        dir = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
              QStringLiteral("/Orvane/Mixora");
    }
    QDir().mkpath(dir);
    return dir;
}
