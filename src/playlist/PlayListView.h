// What the play list model tells the window that shows it. The model runs on
// the user-interface thread and calls these synchronously after its edits.
#pragma once

#include <string>

class PlayListView {
  public:
    virtual ~PlayListView() = default;
    // The list file name changed (after a load or a save); it is the window title.
    virtual void TitleChanged(const std::string& listFileName) = 0;
    // Every entry is gone: drop every row.
    virtual void RowsCleared() = 0;
    // Make `row` the selected row.
    virtual void SelectRow(int row) = 0;
    // `row` became the loaded entry: scroll it into view.
    virtual void ScrollIntoView(int row) = 0;
    // Redraw the loaded/playing icon of one row, or of every row.
    virtual void IconChanged(int row) = 0;
    virtual void IconsChanged() = 0;
};

// A view that shows nothing: the model's default until a window attaches.
class NullPlayListView final : public PlayListView {
  public:
    void TitleChanged(const std::string&) override {}
    void RowsCleared() override {}
    void SelectRow(int) override {}
    void ScrollIntoView(int) override {}
    void IconChanged(int) override {}
    void IconsChanged() override {}
};
