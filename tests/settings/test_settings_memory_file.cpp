// The store over its memory file reads, repairs and reports exactly as over
// the real file on disk: the same damaged input gives the same values, the
// same repaired file, the same damaged copy and the same message.
#include <gtest/gtest.h>

#include <QFile>
#include <QSize>
#include <QTemporaryDir>
#include <memory>

#include "settings/CRynSettings.h"
#include "settings/SettingsFile.h"
#include "settings/SettingsStore.h"

namespace {

struct Outcome {
    SettingsMap values;
    QByteArray file;
    QByteArray damagedCopy;
    QStringList messages;
};

void ReadSome(SettingsStore& store) {
    CRynSettings settings(store, [] { return QSize(1024, 740); });
    settings.ReadEverySetting();
}

Outcome OnDisk(const QByteArray& input) {
    QTemporaryDir dir;
    const QString path = dir.filePath("Mixora.conf");
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(input);
    f.close();
    Outcome out;
    SettingsStore store(path,
                        [&](const QString& m) { out.messages << QString(m).replace(path, "F"); });
    ReadSome(store);
    out.values = store.Values();
    QFile written(path), copy(store.DamagedCopyPath());
    if (written.open(QIODevice::ReadOnly))
        out.file = written.readAll();
    if (copy.open(QIODevice::ReadOnly))
        out.damagedCopy = copy.readAll();
    return out;
}

Outcome InMemory(const QByteArray& input) {
    auto owned = std::make_unique<MemorySettingsFile>(input);
    MemorySettingsFile& file = *owned;
    Outcome out;
    SettingsStore store(std::move(owned), "F", [&](const QString& m) { out.messages << m; });
    ReadSome(store);
    out.values = store.Values();
    out.file = file.Contents();
    out.damagedCopy = file.DamagedCopy();
    return out;
}

}  // namespace

TEST(SettingsMemoryFile, ReadsAndRepairsAsTheFileOnDisk) {
    const QByteArray inputs[] = {
        "",
        "[General]\nmainDeckALevel=1060320051\nturntableModeDeckA=\"Drag\"\n",
        "[General]\nmainDeckALevel=1048576000\nturntableModeDeckA=\"Dr",
        "\xef\xbb\xbf[Gen\nnumBandsInPlotDeckA=6\n[General]\ngarbage line\ntitleBarsOnState=0\n",
        QByteArray(SettingsStore::kMaxFileBytes + 1, 'x'),
    };
    for (const QByteArray& input : inputs) {
        const Outcome disk = OnDisk(input);
        const Outcome memory = InMemory(input);
        EXPECT_EQ(memory.values, disk.values) << input.left(40).toStdString();
        EXPECT_EQ(memory.file, disk.file) << input.left(40).toStdString();
        EXPECT_EQ(memory.damagedCopy, disk.damagedCopy) << input.left(40).toStdString();
        EXPECT_EQ(memory.messages, disk.messages) << input.left(40).toStdString();
        EXPECT_FALSE(memory.values.isEmpty());  // the defaults were written back
    }
}
