// The play list model: edits keep the current entry, the deck operations
// (with LoadIndex's inverted result), sums and duration texts, CD track
// lists, and the duration-probe hand-off.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "playlist/PlayList.h"

namespace {

std::vector<std::string> Paths(const PlayList& list) {
    std::vector<std::string> out;
    for (int i = 0; i < list.Count(); ++i)
        out.push_back(list.Path(i));
    return out;
}

// Records what the model tells its window.
class RecordingView : public PlayListView {
  public:
    void TitleChanged(const std::string& name) override { titles.push_back(name); }
    void RowsCleared() override { ++cleared; }
    void SelectRow(int row) override { selected.push_back(row); }
    void ScrollIntoView(int row) override { scrolled.push_back(row); }
    void IconChanged(int row) override { icons.push_back(row); }
    void IconsChanged() override { ++allIcons; }
    std::vector<std::string> titles;
    std::vector<int> selected, scrolled, icons;
    int cleared = 0, allIcons = 0;
};

TEST(PlayListModel, AccessOutsideTheListReadsAsEmpty) {
    PlayList list;
    list.Add("/m/Intro.mix.mp3", "Intro", 12.5f, 7);
    EXPECT_EQ(list.FileTitle(0), "Intro.mix");
    EXPECT_EQ(list.ItemNumber(0), 7);
    for (int i : {-1, 1, 1000}) {
        EXPECT_EQ(list.Title(i), "");
        EXPECT_EQ(list.Path(i), "");
        EXPECT_EQ(list.FileTitle(i), "");
        EXPECT_EQ(list.Duration(i), -1.0f);
        EXPECT_EQ(list.ItemNumber(i), 0);
        EXPECT_EQ(list.DurationText(i), "");
        EXPECT_FALSE(list.Loaded(i));
        EXPECT_EQ(list.TagTitle(i), "");
    }
    list.SetDuration(5, 3.0f);
    list.Remove(5);
    list.MoveUp(5);
    list.MoveDown(-3);
    EXPECT_EQ(list.Count(), 1);
    // With no current entry the current fields read as empty too.
    EXPECT_EQ(list.CurrentPath(), "");
    EXPECT_EQ(list.CurrentDuration(), -1.0f);
    EXPECT_EQ(list.CurrentItemNumber(), -1);
}

TEST(PlayListModel, AddInsertsAndAddSortedStartsWhereAsked) {
    PlayList list;
    list.Add("b", "", -1, 0);
    list.Add("a", "", -1, 0, 0);
    list.Add("d", "", -1, 0, -1);
    list.Add("c", "", -1, 0, 2);
    list.Add("e", "", -1, 0, 99);  // past the end: appended
    EXPECT_EQ(Paths(list), (std::vector<std::string>{"a", "b", "c", "d", "e"}));

    PlayList sorted;
    sorted.AddSorted("/m/b.mp3", "", -1, 0, 5);  // an empty list: appended whatever the start
    EXPECT_EQ(Paths(sorted), std::vector<std::string>{"/m/b.mp3"});

    PlayList from0, from2;
    for (PlayList* l : {&from0, &from2}) {
        l->Add("a.mp3", "", -1, 0);
        l->Add("c.mp3", "", -1, 0);
    }
    EXPECT_EQ(from0.AddSorted("b.mp3", "", -1, 0, 0), 1);
    EXPECT_EQ(Paths(from0), (std::vector<std::string>{"a.mp3", "b.mp3", "c.mp3"}));
    EXPECT_EQ(from2.AddSorted("b.mp3", "", -1, 0, 2), 2);
    EXPECT_EQ(Paths(from2), (std::vector<std::string>{"a.mp3", "c.mp3", "b.mp3"}));
    // Negative start counts as 0; the comparison is byte-wise ("B" < "a", UTF-8 after ASCII).
    from0.AddSorted("B.mp3", "", -1, 0, -4);
    from0.AddSorted("\xC3\xA9.mp3", "", -1, 0, 0);
    EXPECT_EQ(Paths(from0),
              (std::vector<std::string>{"B.mp3", "a.mp3", "b.mp3", "c.mp3", "\xC3\xA9.mp3"}));
}

TEST(PlayListModel, MovesAndEditsKeepTheCurrentEntry) {
    RecordingView view;
    PlayList list(&view);
    for (const char* p : {"a", "b", "c", "d"})
        list.Add(p, "", -1, 0);
    EXPECT_FALSE(list.LoadIndex(2));  // "c"
    EXPECT_EQ(view.scrolled, std::vector<int>{2});

    list.MoveUp(0);    // first stays first
    list.MoveDown(3);  // last stays last
    EXPECT_EQ(Paths(list), (std::vector<std::string>{"a", "b", "c", "d"}));
    list.MoveUp(2);
    EXPECT_EQ(Paths(list), (std::vector<std::string>{"a", "c", "b", "d"}));
    EXPECT_EQ(list.CurrentPath(), "c");
    list.MoveDown(0);
    EXPECT_EQ(Paths(list), (std::vector<std::string>{"c", "a", "b", "d"}));
    EXPECT_EQ(list.CurrentIndex(), 0);
    list.Add("z", "", -1, 0, 0);
    list.AddSorted("0", "", -1, 0, 0);
    EXPECT_EQ(list.CurrentPath(), "c");
    list.Remove(0);
    EXPECT_EQ(list.CurrentPath(), "c");
    list.Remove(list.Count() - 1);
    EXPECT_EQ(list.CurrentPath(), "c");

    // Removing the current entry leaves none loaded.
    list.Remove(list.CurrentIndex());
    EXPECT_EQ(list.CurrentIndex(), -1);
    EXPECT_EQ(list.CurrentItemNumber(), -1);

    // LoadIndex does not unload: after two of them, removing the current one
    // falls back to the other entry still marked loaded.
    EXPECT_FALSE(list.LoadIndex(0));
    EXPECT_FALSE(list.LoadIndex(2));
    list.Remove(2);
    EXPECT_EQ(list.CurrentIndex(), 0);
    EXPECT_TRUE(list.LoadIndex(17));
    EXPECT_TRUE(list.LoadIndex(-1));
    EXPECT_EQ(list.CurrentIndex(), 0);

    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.CurrentIndex(), -1);
    EXPECT_EQ(view.cleared, 1);
}

TEST(PlayListModel, DeckWalksTheList) {
    RecordingView view;
    PlayList list(&view);
    EXPECT_FALSE(list.Previous());
    list.First();  // empty list: nothing loaded
    EXPECT_EQ(list.CurrentIndex(), -1);
    EXPECT_EQ(list.NextPath(), "");
    for (const char* p : {"/m/1.mp3", "/m/2.mp3", "/m/3.mp3"})
        list.Add(p, "", -1, 0);

    // With nothing loaded, the next track is the first one.
    EXPECT_EQ(list.NextPath(), "/m/1.mp3");
    list.First();
    EXPECT_EQ(list.CurrentIndex(), 0);
    EXPECT_FALSE(list.Previous());
    EXPECT_TRUE(list.Next());
    EXPECT_TRUE(list.Next());
    EXPECT_EQ(list.CurrentPath(), "/m/3.mp3");
    EXPECT_EQ(list.CurrentFileTitle(), "3");
    EXPECT_FALSE(list.Next());
    EXPECT_EQ(list.NextPath(), "");
    EXPECT_TRUE(list.Previous());
    EXPECT_EQ(list.NextPath(), "/m/3.mp3");
    list.LoadFrom(0);
    EXPECT_EQ(list.CurrentIndex(), 0);
    // Exactly one entry is marked loaded after the unloading operations.
    int loaded = 0;
    for (int i = 0; i < list.Count(); ++i)
        loaded += list.Loaded(i) ? 1 : 0;
    EXPECT_EQ(loaded, 1);

    list.SetCurrentDuration(61.0f);
    EXPECT_EQ(list.Duration(0), 61.0f);
    view.icons.clear();
    list.SetPlaying(1);
    EXPECT_EQ(list.Playing(), 1);
    EXPECT_EQ(view.icons, std::vector<int>{0});
}

TEST(PlayListModel, CdTracksAndConsecutiveItems) {
    RecordingView view;
    PlayList list(&view);
    list.Add("/m/old.mp3", "", -1, 0);
    list.ShowCdTracks(3, [](int t) { return 60.0 * t + 0.5; });
    EXPECT_EQ(Paths(list), (std::vector<std::string>{"Track 1", "Track 2", "Track 3"}));
    EXPECT_EQ(view.selected, std::vector<int>{0});
    EXPECT_EQ(list.Title(1), "");
    EXPECT_EQ(list.DurationText(1), "2:00");
    EXPECT_FALSE(list.NextIsConsecutive());  // nothing loaded
    list.First();
    EXPECT_EQ(list.CurrentItemNumber(), 1);
    EXPECT_TRUE(list.NextIsConsecutive());
    list.MoveDown(1);  // 1, 3, 2
    EXPECT_FALSE(list.NextIsConsecutive());
    list.LoadFrom(2);
    EXPECT_FALSE(list.NextIsConsecutive());  // last entry
}

TEST(PlayListModel, SumsAndDurationTexts) {
    EXPECT_EQ(FormatDuration(187.6f), "3:07");
    EXPECT_EQ(FormatDuration(765.0f), "12:45");
    EXPECT_EQ(FormatDuration(9.99f), "0:09");
    EXPECT_EQ(FormatDuration(59.9f), "0:59");
    EXPECT_EQ(FormatDuration(600.0f), "10:00");
    EXPECT_EQ(FormatDuration(0.0f), "0:00");
    EXPECT_EQ(FormatDuration(-1.0f), "");

    PlayList list;
    list.Add("a", "", 187.6f, 0);
    list.Add("b", "", -1.0f, 0);
    list.Add("c", "", 10.9f, 0);
    list.Add("d", "", -7.0f, 0);  // any negative duration is unknown
    EXPECT_EQ(list.Duration(3), -1.0f);
    EXPECT_EQ(list.TotalSeconds(), 187 - 1 + 10 - 1);
    EXPECT_EQ(list.SecondsBefore(0), 0);
    EXPECT_EQ(list.SecondsBefore(2), 186);
    EXPECT_EQ(list.SecondsBefore(99), list.TotalSeconds());
    EXPECT_EQ(list.SecondsBefore(-3), 0);
    list.SetDuration(1, 1e30f);  // clamped, so sums stay defined
    EXPECT_EQ(list.Duration(1), kMaxDurationSeconds);
}

TEST(PlayListModel, DurationProbeHandOff) {
    PlayList list;
    list.Add("a", "", 3.0f, 0);
    list.Add("b", "", -1.0f, 0);
    list.Add("c", "", -1.0f, 0);
    EXPECT_EQ(list.FirstUnknownDuration(), 1);
    EXPECT_EQ(list.FirstUnknownDuration(2), 2);
    EXPECT_EQ(list.StoreProbedDuration(5.0f), -1);  // nothing asked for

    list.MarkProbing(1);
    list.MarkProbing(2);  // only one entry is probed at a time
    EXPECT_FALSE(list.Probing(1));
    EXPECT_EQ(list.ProbingIndex(), 2);
    // An entry inserted before it does not misdirect the result.
    list.Add("0", "", -1.0f, 0, 0);
    EXPECT_EQ(list.StoreProbedDuration(42.5f), 3);
    EXPECT_EQ(list.DurationText(3), "0:42");
    EXPECT_EQ(list.ProbingIndex(), -1);

    // The probed entry removed while the probe ran: the result goes nowhere.
    list.MarkProbing(0);
    list.Remove(0);
    EXPECT_EQ(list.StoreProbedDuration(9.0f), -1);
    EXPECT_EQ(list.FirstUnknownDuration(), 1);
}

}  // namespace
