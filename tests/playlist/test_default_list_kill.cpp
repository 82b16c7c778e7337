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
    std::uniform_int_distribution<int> delayUs(0, 20000);
    int seenLarge = 0;
    for (int round = 0; round < 25; ++round) {
        // The child says when each save has finished: the kill then falls
        // a random moment after a finished save, most often inside the next.
        int saves[2];
        ASSERT_EQ(pipe(saves), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(saves[0]);
            for (int i = 0;; ++i) {
                (i % 2 == 0 ? large : small).Save(path, ".m3u");
                const char done = 1;
                (void)!write(saves[1], &done, 1);
            }
        }
        close(saves[1]);
        char done = 0;
        ASSERT_EQ(read(saves[0], &done, 1), 1);  // the first (large) save is done
        usleep(static_cast<useconds_t>(round % 5 == 0 ? 0 : delayUs(random)));
        kill(child, SIGKILL);
        close(saves[0]);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));

        PlayList onDisk;
        const ListLoadResult loaded = onDisk.Load(path);
        ASSERT_EQ(loaded.status, ListFileStatus::Ok) << "round " << round;
        ASSERT_TRUE(onDisk.Count() == 50 || onDisk.Count() == 3000)
            << "round " << round << ": " << onDisk.Count() << " entries";
        const std::string tag = onDisk.Count() == 50 ? "small" : "large";
        EXPECT_EQ(onDisk.Path(onDisk.Count() - 1),
                  "/music/" + tag + "/track " + std::to_string(onDisk.Count() - 1) + ".mp3");
        seenLarge += onDisk.Count() == 3000;
    }
    // A kill right after the large save finished always finds it.
    EXPECT_GT(seenLarge, 0);
}
