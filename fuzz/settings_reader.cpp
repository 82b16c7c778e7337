// Fuzzes the settings file reader: the input becomes Mixora.conf, the store
// opens it and every setting and window record is read (repairing what is
// missing or damaged). Checks that whatever was read writes back to a file
// that parses clean and gives the same values.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QSize>

#include "settings/CRynSettings.h"
#include "settings/SettingsIni.h"
#include "settings/SettingsStore.h"

namespace {

// A scratch folder, in memory when /dev/shm exists (fsync costs nothing there).
const QString& ScratchDir() {
    static const QString dir = [] {
        QByteArray templ =
            QDir("/dev/shm").exists() ? "/dev/shm/mixora-fuzz-XXXXXX" : "/tmp/mixora-fuzz-XXXXXX";
        return QString::fromLocal8Bit(::mkdtemp(templ.data()));
    }();
    return dir;
}

void Check(bool condition) {
    if (!condition)
        __builtin_trap();
}

void ReadEverything(CRynSettings& settings) {
    settings.ReadEverySetting();
    SettingsStore::Batch batch(settings.Store());
    settings.GetSoundDeviceMain();
    settings.GetSoundDevicePhones();
    for (SettingsWindow window : kAllSettingsWindows) {
        for (int deck = 0; deck < 2; ++deck) {
            for (bool lowRes : {false, true}) {
                settings.ReadWindowRect(window, deck, lowRes);
                settings.ReadShow(window, deck, lowRes);
            }
            settings.ReadHasMoved(window, deck);
            settings.ReadOrdinal(window, deck);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));

    // The parser: what it took must survive a write and a second read.
    const SettingsParse first = ParseSettingsIni(bytes);
    const SettingsParse again = ParseSettingsIni(SerializeSettingsIni(first.values));
    Check(!again.damaged);
    Check(again.values == first.values);

    // The store over a file holding the input.
    const QString path = ScratchDir() + QStringLiteral("/Mixora.conf");
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(bytes);
    }
    SettingsStore store(path, [](const QString&) {});
    CRynSettings settings(store, [] { return QSize(1024, 740); });
    ReadEverything(settings);

    // Repaired: the file is clean and holds what the store holds.
    QFile file(path);
    Check(file.open(QIODevice::ReadOnly));
    const SettingsParse repaired = ParseSettingsIni(file.readAll());
    Check(!repaired.damaged);
    Check(repaired.values == store.Values());
    Check(settings.GetDeckLevel(0, 1) == settings.GetDeckLevel(0, 1));  // reads are stable
    return 0;
}
