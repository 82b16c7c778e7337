// Helpers for the settings tests: a store in a fresh folder whose messages are
// recorded, and raw file access.
#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QSize>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "settings/CRynSettings.h"
#include "settings/SettingsStore.h"

namespace settingstest {

inline QByteArray ReadFileBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline void WriteFileBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(bytes), bytes.size());
}

// A temporary settings folder with a store and the typed settings over it,
// on a 1024 x 740 screen. Messages to the user land in `messages`.
struct Fixture {
    QTemporaryDir dir;
    QString path = dir.path() + QStringLiteral("/Mixora.conf");
    QStringList messages;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<CRynSettings> settings;

    Fixture() { Reopen(); }

    // A new store on the same file, as at the next start of the program.
    void Reopen() {
        settings.reset();
        store = std::make_unique<SettingsStore>(
            path, [this](const QString& m) { messages.push_back(m); });
        settings = std::make_unique<CRynSettings>(*store, [] { return QSize(1024, 740); });
    }

    // The values the file holds now, read by a fresh parser.
    SettingsMap FileValues() const { return ParseSettingsIni(ReadFileBytes(path)).values; }
};

}  // namespace settingstest
