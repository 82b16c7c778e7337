// A deck's play list window (template 144): the deck's list as rows of two
// columns ("Files", "Time") and the buttons that edit it. It also runs the
// list's background work on its own thread, a little per timer tick:
//
//   timer 0..3  750 ms once  the add files, add folder, add list and save as
//                            dialogs (each button first asks the deck for the
//                            maximum equalizer latency, then waits for it)
//   timer 4     10 ms        fills one row per tick
//   timer 5     500 ms       duration measurement, one file at a time, by the
//                            deck's duration probe thread
//   timer 6     4 ms         inserts one file of a scanned folder per tick
//   timer 7     100 ms       waits for a CD name lookup's answer
//   timer 8     50 ms        moves the progress bar of a folder insertion
//
// Modes: in File mode the rows show the file name ("Name"), the tag title
// ("Tag") or the full path ("Path"), as the name/tag/path button's caption
// says; the deck's default list is loaded when File mode is set and saved
// when the deck goes to CD mode and at shutdown. In CD mode the caption is
// empty, the button looks the disc's names up on the CDDB server (a right
// click sets the server: CddbServerDialog), and the
// rows show the track titles once found (the window title then shows the
// disc artist, " //" and the disc title).
//
// The selection mark is the window's own (-1: none): it decides where added
// files go, what delete, move and search start from, and which row shows the
// selected image. Rows are model entries 0 .. RowCount()-1 in order; rows
// beyond that are still to be filled.
//
// The window is split by concern:
//   CRynPlayList.cpp         controls, layout, modes, timers, messages, shutdown
//   CRynPlayListRows.cpp     row fill, images, selection, clicks, durations, names
//   CRynPlayListButtons.cpp  delete, move, search, files, folders and lists
//   CRynPlayListRegistry.cpp the controls' titles, descriptions and tool tips
#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>
#include <memory>

#include "core/CRynWindow.h"
#include "platform/cd/CddbClient.h"
#include "playlist/PlayList.h"
#include "playlist/PlayListView.h"

class CNiButton;
class CRynCEdit;
class CRynCdAudio;
class CdNameLookup;
class DurationProbe;
class QProgressBar;
class QTreeWidget;
class QTreeWidgetItem;

class CRynPlayList : public CRynWindow, public PlayListView {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 144;

    static constexpr int kAddFilesTimer = 0;
    static constexpr int kAddFolderTimer = 1;
    static constexpr int kAddListTimer = 2;
    static constexpr int kSaveAsTimer = 3;
    static constexpr int kRowFillTimer = 4;
    static constexpr int kDurationTimer = 5;
    static constexpr int kInsertTimer = 6;
    static constexpr int kNamesTimer = 7;
    static constexpr int kProgressTimer = 8;
    static constexpr int kDialogDelayMs = 750;

    // The "Time" column's width, and what the "Files" column leaves beside it.
    static constexpr int kTimeColumnWidth = 60;
    static constexpr int kFilesColumnMargin = 88;
    // The "BPM" column (the tracks' measured tempos) beside the time; the
    // "Files" column leaves room for it too.
    static constexpr int kTempoColumnWidth = 48;
    // What the time column shows for a file whose duration cannot be measured.
    static constexpr const char* kNoDuration = "-:--";

    explicit CRynPlayList(QWidget* parent = nullptr);
    ~CRynPlayList() override;

    // Start-up: the deck's window and index (0 = A, 1 = B). Starts the
    // deck's duration probe thread and the measurement timer.
    void Initialise(WindowHandle deckWindow, int deck);
    // The program's CD reader (not owned; null: no CD names).
    void SetCdAudio(CRynCdAudio* cd) { cd_ = cd; }
    // The CDDB client the name lookups use (libcddb unless replaced).
    void SetCddbClient(std::shared_ptr<cd::CddbClient> client);

    // The deck's list: the entries the deck loads from.
    PlayList& List() { return list_; }
    int DeckIndex() const { return deck_; }
    WindowHandle DeckWindow() const { return deckWindow_; }

    // 1 = File mode (title, "Name" display, the default list loaded unless
    // the window is in File mode already), 0 = CD mode (a list still in File
    // mode is first saved as the default list; empty display caption).
    void SetListMode(int mode);
    int ListMode() const { return mode_; }
    QString DisplayMode() const;

    // Shutdown: in File mode the list is saved as the deck's default list;
    // every timer stops and the probe thread ends. Nothing works after it.
    void StopPlayList();
    bool Stopped() const { return stopped_; }

    // --- What the user does (the controls call these; so do tests) ---
    // Delete: with `shift` non-zero (Shift, Ctrl or Alt) every entry goes.
    void DeleteItem(int shift);
    void MoveItemUp();
    void MoveItemDown();
    void Search();
    void SelectNone();
    void NameTagPath();
    void SaveList();
    void OpenList();
    void ClickRow(int row);
    void DoubleClickRow(int row);
    // What the dialogs hand back.
    void AddFiles(const QStringList& files);
    void AddFolder(const QString& folder);
    void AddList(const QString& file);
    void SaveListAs(const QString& file);

    // --- Background work, one step (the timers call these) ---
    // Fills the next row; false (and the images redrawn) when every entry has one.
    bool FillOneRow();
    void DurationTick();
    // Inserts one pending folder file; false when none was left.
    bool InsertPendingTick();
    void ProgressTick();
    // Collects a finished CD name lookup; true when one was collected.
    bool NamesTick();
    // Deletes every row and starts filling them again.
    void RebuildRows();

    // --- What the user sees (tests read these) ---
    QTreeWidget* ListControl() const { return rows_; }
    // The tempo measured for the file `path`: stored in its entries and shown
    // in their "BPM" cells (one decimal; bpm 0 shows nothing).
    void ShowTempo(const std::string& path, float bpm);
    int RowCount() const;
    QString RowText(int row) const;
    QString RowTime(int row) const;
    int RowItemData(int row) const;
    int RowImage(int row) const;
    int SelectedRow() const { return selected_; }
    CRynCEdit* SearchField() const { return search_; }
    QProgressBar* ProgressBar() const { return progress_; }
    CNiButton* NameTagPathButton() const { return nameTagPath_; }
    bool LookupRunning() const;
    // The row images: 0 selected, 1 plain, 2 loaded and playing, 3 loaded, 4
    // selected and loaded, 5 selected, loaded and playing, 6 a CD track.
    static QIcon RowIcon(int image);

    // --- Tests: the dialogs' answers instead of real dialogs (empty: cancelled) ---
    struct Dialogs {
        std::function<QStringList()> addFiles;
        std::function<QString()> addFolder;
        std::function<QString()> openList;  // open list and add list
        std::function<QString()> saveAs;
        std::function<void(const QString&)> message;  // a problem to show
    };
    void SetDialogsForTest(Dialogs dialogs) { dialogs_ = std::move(dialogs); }
    // The filters of the list and the audio file dialogs.
    static QString ListFilter();
    static QString AudioFilter();

    // --- PlayListView ---
    void TitleChanged(const std::string& listFileName) override;
    void RowsCleared() override;
    void SelectRow(int row) override;
    void ScrollIntoView(int row) override;
    void IconChanged(int row) override;
    void IconsChanged() override;

    LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void OnWindowTimer(int id) override;

  private:
    void BuildControls();
    void WireControls();
    void RegisterControls();
    void PlaceControls();
    void SetModeTitle();
    void ShowModeGroup();
    // The dialog buttons: ask the deck for maximum latency, open after the delay.
    void DeferDialog(int timerId);
    void LatencyBack();
    void ShowAddFilesDialog();
    void ShowAddFolderDialog();
    void ShowAddListDialog();
    void ShowSaveAsDialog();
    void ShowMessage(const QString& text);
    void EditCddbServer();
    void ReportLoad(const ListLoadResult& result, const std::string& file);

    QString RowTextFor(int row);
    QTreeWidgetItem* MakeRow(int row);
    void InsertRow(int row);
    void SetRowImage(int row);
    void SetSelection(int row);
    void EnsureFilling();
    void PostTrackNumber();
    bool OutputShort() const;
    bool CdNamesShown() const;
    void CheckNames();
    void StartNamesLookup();

    int deck_ = 0;
    WindowHandle deckWindow_ = 0;
    int mode_ = -1;  // none until the deck sets one
    bool stopped_ = false;
    int selected_ = -1;
    PlayList list_;
    CRynCdAudio* cd_ = nullptr;
    std::unique_ptr<DurationProbe> probe_;
    bool awaitingProbe_ = false;
    int probeWaitTicks_ = 0;
    std::shared_ptr<cd::CddbClient> cddb_;
    std::unique_ptr<CdNameLookup> lookup_;
    std::string namesDiscId_;  // the disc the drive's names were found for
    bool showNames_ = false;   // the rows being filled show them
    int insertTotal_ = 0;
    int inserted_ = 0;
    bool inserting_ = false;
    int insertStart_ = 0;
    Dialogs dialogs_;

    QTreeWidget* rows_ = nullptr;
    CNiButton* openList_ = nullptr;
    CNiButton* addFile_ = nullptr;
    CNiButton* addFolder_ = nullptr;
    CNiButton* addList_ = nullptr;
    CNiButton* saveAs_ = nullptr;
    CNiButton* save_ = nullptr;
    CNiButton* nameTagPath_ = nullptr;
    CNiButton* delete_ = nullptr;
    CNiButton* moveUp_ = nullptr;
    CNiButton* moveDown_ = nullptr;
    CNiButton* searchButton_ = nullptr;
    CNiButton* selectNone_ = nullptr;
    CRynCEdit* search_ = nullptr;
    QProgressBar* progress_ = nullptr;
};
