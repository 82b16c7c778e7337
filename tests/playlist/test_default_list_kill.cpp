// A deck's default list survives the program being killed while it saves:
// a child process saves two different lists over the default list again and
// again and is killed at random moments; every time, the file that is left is
// one of the two lists, whole.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <random>

#include "PlayListTestFiles.h"
#include "playlist/PlayList.h"

namespace {

void FillList(PlayList& list, int entries, const std::string& tag) {
    for (int i = 0; i < entries; ++i)
        list.Add("/music/" + tag + "/track " + std::to_string(i) + ".mp3", tag, 100.0f + i, 0);
}

}  // namespace

TEST(DefaultListKill, AKillDuringTheSaveLeavesTheOldOrTheNewListWhole) {
    QTemporaryDir dir;
    const std::string path = dir.path().toStdString() + "/DeckAPlayList.m3u";
    PlayList small, large;
    FillList(small, 50, "small");
    FillList(large, 3000, "large");
    ASSERT_EQ(small.Save(path, ".m3u"), ListFileStatus::Ok);

    std::mt19937 random(24);
    std::uniform_int_distribution<int> delayUs(0, 30000);
    int seenLarge = 0;
    for (int round = 0; round < 25; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0;; ++i)
                (i % 2 == 0 ? large : small).Save(path, ".m3u");
        }
        usleep(static_cast<useconds_t>(delayUs(random)));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));

        PlayList read;
        const ListLoadResult loaded = read.Load(path);
        ASSERT_EQ(loaded.status, ListFileStatus::Ok) << "round " << round;
        ASSERT_TRUE(read.Count() == 50 || read.Count() == 3000)
            << "round " << round << ": " << read.Count() << " entries";
        const std::string tag = read.Count() == 50 ? "small" : "large";
        EXPECT_EQ(read.Path(read.Count() - 1),
                  "/music/" + tag + "/track " + std::to_string(read.Count() - 1) + ".mp3");
        seenLarge += read.Count() == 3000;
    }
    // The kills fell on both sides of a finished save.
    EXPECT_GT(seenLarge, 0);
}
