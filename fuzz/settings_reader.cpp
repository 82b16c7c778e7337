// Fuzzes the settings file reader: the input becomes Mixora.conf (in memory:
// the store's memory file, so no run waits on a disk), the store opens it and
// every setting and window record is read (repairing what is missing or
// damaged). Checks that whatever was read writes back to a file that parses
// clean and gives the same values. The tests read damaged files from disk.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QByteArray>
#include <QSize>
#include <memory>

#include "settings/CRynSettings.h"
#include "settings/SettingsFile.h"
#include "settings/SettingsIni.h"
#include "settings/SettingsStore.h"

namespace {

void Check(bool condition) {
    if (!condition)
        __builtin_trap();
}

// Every setting and window record: the whole start-up read.
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

// A few settings and one window record picked by `pick`: most runs read a
// slice, so that the fuzzer stays fast; over many runs every one is read.
void ReadSome(CRynSettings& settings, std::uint32_t pick) {
    constexpr std::size_t kSlice = 8;
    SettingsStore::Batch batch(settings.Store());
    for (std::size_t i = 0; i < kSlice; ++i)
        settings.Read(static_cast<Setting>((pick + i * 37) % kSettingsTable.size()));
    const SettingsWindow window = kAllSettingsWindows[pick % kAllSettingsWindows.size()];
    const int deck = (pick >> 8) & 1;
    const bool lowRes = (pick >> 9) & 1;
    settings.ReadWindowRect(window, deck, lowRes);
    settings.ReadShow(window, deck, lowRes);
    settings.ReadHasMoved(window, deck);
    settings.ReadOrdinal(window, deck);
}

// A cheap mix of the input's bytes.
std::uint32_t Pick(const std::uint8_t* data, std::size_t size) {
    std::uint32_t h = 2166136261u ^ static_cast<std::uint32_t>(size);
    for (std::size_t i = 0; i < size && i < 64; ++i)
        h = (h ^ data[i]) * 16777619u;
    return h;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));

    // The parser: what it took must survive a write and a second read.
    const SettingsParse first = ParseSettingsIni(bytes);
    const SettingsParse again = ParseSettingsIni(SerializeSettingsIni(first.values));
    Check(!again.damaged);
    Check(again.values == first.values);

    // The store over a memory file holding the input.
    auto owned = std::make_unique<MemorySettingsFile>(bytes);
    MemorySettingsFile& file = *owned;
    SettingsStore store(std::move(owned), QStringLiteral("Mixora.conf"), [](const QString&) {});
    CRynSettings settings(store, [] { return QSize(1024, 740); });
    const std::uint32_t pick = Pick(data, size);
    if (pick % 64 == 0)
        ReadEverything(settings);
    else
        ReadSome(settings, pick >> 6);

    // Repaired: the file is clean and holds what the store holds; a damaged
    // input was kept whole.
    Check(file.Exists());
    const SettingsParse repaired = ParseSettingsIni(file.Contents());
    Check(!repaired.damaged);
    Check(repaired.values == store.Values());
    if (first.damaged)
        Check(file.HasDamagedCopy() && file.DamagedCopy() == bytes);
    // Reads are stable, bit for bit: reals are kept bit-exact, NaN payloads too.
    Check(std::bit_cast<std::uint32_t>(settings.GetDeckLevel(0, 1)) ==
          std::bit_cast<std::uint32_t>(settings.GetDeckLevel(0, 1)));
    return 0;
}
