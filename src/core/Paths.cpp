#include "core/Paths.h"

#include <QDir>
#include <QStandardPaths>

namespace {

// $`variable` when set, else `suffix` under the standard location; the
// folder is made when missing.
QString FolderFor(const char* variable, QStandardPaths::StandardLocation location,
                  const QString& suffix) {
    QString dir = QString::fromLocal8Bit(qgetenv(variable));
    if (dir.isEmpty())
        dir = QStandardPaths::writableLocation(location) + suffix;
    QDir().mkpath(dir);
    return dir;
}

}  // namespace

QString ConfigDir() {
    return FolderFor("MIXORA_CONFIG_DIR", QStandardPaths::GenericConfigLocation,
                     QStringLiteral("/Orvane"));
}

QString DataDir() {
    return FolderFor("MIXORA_DATA_DIR", QStandardPaths::GenericDataLocation,
                     QStringLiteral("/Orvane/Mixora"));
}
