// Fuzzes the settings file's text form alone, at the speed a parser deserves:
// whatever the parser takes from any bytes must write back to a text that
// parses clean and gives the same values, and a clean text must survive a
// second round trip byte for byte. The store and its repairs over the same
// bytes are fuzzed by settings_reader; the tests read damaged files from disk.
#include <cstddef>
#include <cstdint>

#include <QByteArray>

#include "settings/SettingsIni.h"

namespace {

void Check(bool condition) {
    if (!condition)
        __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const SettingsParse first = ParseSettingsIni(bytes);
    Check(first.damaged == (first.firstBadLine > 0));
    const QByteArray written = SerializeSettingsIni(first.values);
    const SettingsParse again = ParseSettingsIni(written);
    Check(!again.damaged);
    Check(again.values == first.values);
    Check(SerializeSettingsIni(again.values) == written);
    return 0;
}
