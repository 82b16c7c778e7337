// Cost of the play list window's edits on a long list: 20000 entries, every
// row filled. Search scans every row from the top to the last one (the worst
// case); add puts three files before a selected row in the middle and delete
// takes them out again; a move exchanges two rows. Goal: each stays under one
// screen frame (16 ms), so the window feels instant however long the list.
#include <benchmark/benchmark.h>

#include <QApplication>

#include <string>

#include "playlist/window/CRynCEdit.h"
#include "playlist/window/CRynPlayList.h"

namespace {

constexpr int kEntries = 20000;
constexpr double kGoalMs = 16.0;  // one frame at 60 Hz

struct LongList {
    CRynPlayList window;
    LongList() {
        window.Initialise(0, 0);
        for (int i = 0; i < kEntries; ++i)
            window.List().Add(
                "/music/set " + std::to_string(i / 100) + "/track " + std::to_string(i) + ".mp3",
                "", 180.0f + float(i % 300), 0);
        window.List().Add("/music/last/Club MIX.mp3", "", 200.0f, 0);
        window.RebuildRows();
        while (window.FillOneRow()) {
        }
    }
    ~LongList() { window.StopPlayList(); }
};

void Report(benchmark::State& state) {
    state.counters["goal_ms"] = kGoalMs;
}

void BM_SearchToTheLastRow(benchmark::State& state) {
    LongList list;
    list.window.SearchField()->setText(QStringLiteral("club mix"));
    for (auto _ : state) {
        list.window.SelectNone();
        list.window.Search();
        benchmark::DoNotOptimize(list.window.SelectedRow());
    }
    Report(state);
}
BENCHMARK(BM_SearchToTheLastRow)->Unit(benchmark::kMillisecond);

void BM_AddThreeFilesThenDeleteThem(benchmark::State& state) {
    LongList list;
    const QStringList files = {"/new/a.mp3", "/new/b.mp3", "/new/c.mp3"};
    for (auto _ : state) {
        list.window.ClickRow(kEntries / 2);
        list.window.AddFiles(files);
        for (int i = 0; i < 3; ++i) {
            list.window.ClickRow(kEntries / 2);
            list.window.DeleteItem(0);
        }
    }
    Report(state);
}
BENCHMARK(BM_AddThreeFilesThenDeleteThem)->Unit(benchmark::kMillisecond);

void BM_MoveUpAndDown(benchmark::State& state) {
    LongList list;
    list.window.ClickRow(kEntries / 2);
    for (auto _ : state) {
        list.window.MoveItemUp();
        list.window.MoveItemDown();
    }
    Report(state);
}
BENCHMARK(BM_MoveUpAndDown)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
