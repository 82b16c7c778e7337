// A writer killed at any moment never leaves a broken settings file: a child
// process rewrites the settings in a tight loop and is killed with SIGKILL
// after a random short delay, fifty times over.
#include <gtest/gtest.h>

#include <QDir>
#include <QRandomGenerator>

#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include "SettingsTestSupport.h"

using settingstest::Fixture;

namespace {

// Writes generation g, g+1, ... forever. Each write carries three values that
// must agree: a number, its complement and a text (plus bulk, so that every
// write takes a while).
[[noreturn]] void WriteForever(const QString& path, std::uint32_t generation) {
    SettingsStore store(path, [](const QString&) {});
    for (;; ++generation) {
        SettingsStore::Batch batch(store);
        store.WriteNumber("generation", generation);
        store.WriteNumber("complement", ~generation);
        store.WriteText("label", QString("generation %1").arg(generation));
        for (int i = 0; i < 50; ++i)
            store.WriteNumber(QString("bulk%1").arg(i), generation + static_cast<std::uint32_t>(i));
    }
}

}  // namespace

TEST(SettingsCrash, KilledWriterLeavesOldOrNewFile) {
    Fixture f;
    ASSERT_TRUE(f.store->WriteNumber("generation", 0));
    ASSERT_TRUE(f.store->WriteNumber("complement", ~0u));
    ASSERT_TRUE(f.store->WriteText("label", "generation 0"));
    QRandomGenerator rng(7);
    std::uint32_t last = 0;
    int advanced = 0;
    for (int round = 0; round < 50; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            WriteForever(f.path, last + 1);
        usleep(rng.bounded(1000u, 60000u));  // a write takes 1 to 20 ms
        ASSERT_EQ(kill(child, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));

        const QByteArray bytes = settingstest::ReadFileBytes(f.path);
        const SettingsParse parse = ParseSettingsIni(bytes);
        ASSERT_FALSE(parse.damaged) << "round " << round << " line " << parse.firstBadLine;
        const std::uint32_t g = parse.values.value("generation").number;
        ASSERT_GE(g, last) << "round " << round;
        EXPECT_EQ(parse.values.value("complement"), SettingsValue::OfNumber(~g));
        EXPECT_EQ(parse.values.value("label"),
                  SettingsValue::OfText(QString("generation %1").arg(g)));
        if (g > last)
            ++advanced;
        last = g;
    }
    EXPECT_GT(advanced, 0);  // the children really were writing when killed

    // The store opens the file cleanly and clears the killed writers' leftovers.
    f.Reopen();
    EXPECT_EQ(f.store->ReadNumber("generation"), last);
    EXPECT_TRUE(f.messages.isEmpty());
    const QStringList leftovers =
        QDir(f.dir.path()).entryList({"Mixora.conf.tmp.*"}, QDir::Files | QDir::Hidden);
    EXPECT_TRUE(leftovers.isEmpty()) << leftovers.join(' ').toStdString();
}
