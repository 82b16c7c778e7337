#include "app/ShellLog.h"

#include <QFile>

namespace {
QStringList& Lines() {
    static QStringList lines;
    return lines;
}
}  // namespace

void ShellLog(const QString& line) {
    Lines() << line;
    const QString path = qEnvironmentVariable("MIXORA_SHELL_LOG");
    if (path.isEmpty())
        return;
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
        f.write(line.toUtf8() + '\n');
    }
}

const QStringList& ShellLogLines() {
    return Lines();
}

void ClearShellLogForTest() {
    Lines().clear();
}
